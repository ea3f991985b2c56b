#include "app/robotctrl.h"

#include <QGridLayout>
#include <QPushButton>

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

void Paint(QPushButton* b, const std::optional<tavik::ui::Rgb>& colour) {
  if (!colour) {
    b->setStyleSheet("");
    return;
  }
  b->setStyleSheet(QString("background-color: rgb(%1,%2,%3)")
                       .arg(tavik::ui::RedOf(*colour))
                       .arg(tavik::ui::GreenOf(*colour))
                       .arg(tavik::ui::BlueOf(*colour)));
}

}  // namespace

RobotCtrlPanel::RobotCtrlPanel(tavik::RobotCtrl& robot, tavik::InstrumentState& state, QWidget* parent)
    : QWidget(parent), robot_(robot), state_(state) {
  setObjectName("RobotCtrl");
  auto* grid = new QGridLayout(this);
  grid->setSpacing(2);
  grid->setContentsMargins(0, 0, 0, 0);
  using tavik::StepButton;
  struct Step {
    const char* name;
    const char* caption;
    StepButton button;
    int row, col;
  };
  const Step steps[] = {
      {"DirUp", "⇑", StepButton::DirUp, 0, 2},        {"DirUp7", "↑", StepButton::DirUp7, 1, 2},
      {"DirLeft", "⇐", StepButton::DirLeft, 2, 0},    {"DirLeft7", "←", StepButton::DirLeft7, 2, 1},
      {"DirRight7", "→", StepButton::DirRight7, 2, 3}, {"DirRight", "⇒", StepButton::DirRight, 2, 4},
      {"DirDown7", "↓", StepButton::DirDown7, 3, 2},  {"DirDown", "⇓", StepButton::DirDown, 4, 2},
  };
  for (const Step& s : steps) {
    QPushButton* b = Add(s.name, QString::fromUtf8(s.caption), [this, button = s.button] { robot_.Step(button); });
    b->setFixedWidth(30);
    grid->addWidget(b, s.row, s.col);
  }
  grid->addWidget(Add("EscapeBtm", "ESC", [this] { robot_.EscapeBtm(); }), 2, 2);
  grid->addWidget(Add("TurnTo", "指定角", [this] { robot_.TurnTo(); }), 5, 0, 1, 2);
  grid->addWidget(Add("BtmSrchArea", "改視野", [this] { robot_.BtmSrchArea(); }), 5, 3, 1, 2);
  grid->addWidget(Add("ShotMode", "", [this] { robot_.ShotModeClick(); }), 6, 0, 1, 2);
  grid->addWidget(Add("PrismMode", "", [this] { robot_.PrismModeClick(); }), 6, 3, 1, 2);
  grid->addWidget(Add("LaserOnOff", "", [this] { robot_.LaserOnOffClick(); }), 7, 0, 1, 2);
  grid->addWidget(Add("LaserSW", "", [this] { robot_.LaserSWClick(); }), 7, 3, 1, 2);
  grid->addWidget(Add("TrkSrhOnOff", "", [this] { robot_.TrkSrhOnOffClick(); }), 8, 0, 1, 2);
  grid->addWidget(Add("TrkSrhSW", "", [this] { robot_.TrkSrhSWClick(); }), 8, 3, 1, 2);
  ShowState();
}

QPushButton* RobotCtrlPanel::Add(const char* name, const QString& caption, std::function<void()> click) {
  auto* b = new QPushButton(caption, this);
  b->setObjectName(name);
  b->setFocusPolicy(Qt::NoFocus);  // the focus stays with the map
  connect(b, &QPushButton::clicked, this, [this, click = std::move(click)] {
    click();
    ShowState();
  });
  buttons_[name] = b;
  return b;
}

void RobotCtrlPanel::ShowState() {
  buttons_["ShotMode"]->setText(Q(state_.ShotMode));
  buttons_["PrismMode"]->setText(Q(state_.PrismMode));
  buttons_["LaserOnOff"]->setText(Q(state_.LaserOnOff));
  buttons_["LaserSW"]->setText(Q(state_.LaserSW));
  buttons_["TrkSrhOnOff"]->setText(Q(state_.TrkSrhOnOff));
  buttons_["TrkSrhSW"]->setText(Q(state_.TrkSrhSW));
  Paint(buttons_["ShotMode"], robot_.colours.ShotMode);
  Paint(buttons_["PrismMode"], robot_.colours.PrismMode);
  Paint(buttons_["LaserOnOff"], robot_.colours.LaserOnOff);
  Paint(buttons_["LaserSW"], robot_.colours.LaserSW);
  Paint(buttons_["TrkSrhOnOff"], robot_.colours.TrkSrhOnOff);
}
