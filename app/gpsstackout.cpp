#include "app/gpsstackout.h"

#include <QApplication>
#include <QComboBox>
#include <QDoubleValidator>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QtMath>

#include "core/numbers.h"
#include "geo/constants.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }

QLabel* Big(QWidget* parent, const char* name) {
  auto* l = new QLabel(parent);
  l->setObjectName(name);
  QFont f = l->font();
  f.setPointSize(f.pointSize() + 8);
  f.setBold(true);
  l->setFont(f);
  l->setAlignment(Qt::AlignCenter);
  return l;
}
}  // namespace

// --- Picture1 ------------------------------------------------------------------------

StakeArrow::StakeArrow(QWidget* parent) : QWidget(parent) {
  setObjectName("Picture1");
  setMinimumSize(140, 140);
  setAutoFillBackground(true);
  QPalette p = palette();
  p.setColor(QPalette::Window, Qt::white);
  setPalette(p);
}

void StakeArrow::SetAngle(double radians, bool shown) {
  if (radians == angle_ && shown == shown_) return;
  angle_ = radians;
  shown_ = shown;
  update();
}

QPointF StakeArrow::Tip() const {
  const double r = std::min(width(), height()) / 2.0 * 0.8;
  return {width() / 2.0 + r * std::sin(angle_), height() / 2.0 - r * std::cos(angle_)};
}

void StakeArrow::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.setRenderHint(QPainter::Antialiasing);
  const double R = std::min(width(), height()) / 2.0;
  p.translate(width() / 2.0, height() / 2.0);
  // Shape1 with a mark at the top: the direction of travel.
  p.setPen(QPen(Qt::gray, 1));
  p.drawEllipse(QPointF(0, 0), R * 0.92, R * 0.92);
  p.drawLine(QPointF(0, -R * 0.92), QPointF(0, -R));
  if (!shown_) return;
  p.rotate(angle_ * 180 / tavik::Pi);
  const double r = R * 0.8;
  p.setPen(QPen(Qt::red, 5, Qt::SolidLine, Qt::RoundCap));
  p.drawLine(QPointF(0, r * 0.75), QPointF(0, -r));                 // Line1
  p.drawLine(QPointF(0, -r), QPointF(-r * 0.3, -r * 0.55));         // Line2
  p.drawLine(QPointF(0, -r), QPointF(r * 0.3, -r * 0.55));          // Line5
  p.drawLine(QPointF(-r * 0.2, r * 0.75), QPointF(r * 0.2, r * 0.75));  // Line6
}

// --- DlgStackSetup -------------------------------------------------------------------

DlgStackSetup::DlgStackSetup(tavik::GpsStakeOutLogic& logic, const tavik::GpsState& gps, QWidget* parent)
    : QDialog(parent), logic_(logic) {
  setObjectName("DlgStackSetup");
  setWindowTitle("選放樣點");
  combo1_ = new QComboBox(this);
  combo1_->setObjectName("Combo1");
  combo1_->setEditable(true);
  combo1_->addItem(QString());
  for (const std::string& name : logic.TargetNames()) combo1_->addItem(Q(name));
  combo1_->setCurrentText(Q(gps.StakeName == "NoName" ? std::string() : gps.StakeName));
  auto* pick = new QPushButton("點選位置", this);
  pick->setObjectName("Command1");
  text2_ = new QLineEdit(Q(tavik::num::Plain(gps.StakeRadius)), this);
  text2_->setObjectName("Text2");
  option1_ = new QRadioButton("使用原來點名記錄", this);
  option1_->setObjectName("Option1");
  option2_ = new QRadioButton("詢問新點名", this);
  option2_->setObjectName("Option2");
  (logic.AskNewName ? option2_ : option1_)->setChecked(true);
  auto* ok = new QPushButton("確定", this);
  ok->setObjectName("OKButton");
  ok->setDefault(true);

  auto* form = new QFormLayout;
  auto* targetRow = new QHBoxLayout;
  targetRow->addWidget(combo1_, 1);
  targetRow->addWidget(pick);
  form->addRow("放樣點", targetRow);
  form->addRow("提示圈半徑", text2_);
  auto* naming = new QGroupBox("記錄點名", this);
  auto* namingCol = new QVBoxLayout(naming);
  namingCol->addWidget(option1_);
  namingCol->addWidget(option2_);
  auto* col = new QVBoxLayout(this);
  col->addLayout(form);
  col->addWidget(naming);
  col->addWidget(ok, 0, Qt::AlignRight);
  connect(ok, &QPushButton::clicked, this, [this] {
    if (Ok()) accept();
  });
  connect(pick, &QPushButton::clicked, this, [this] {
    // The radius and the naming are taken before the map is picked on.
    if (!logic_.Setup("", text2_->text().toStdString(), option2_->isChecked())) return;
    accept();
    if (StartPick) StartPick();
  });
}

bool DlgStackSetup::Ok() {
  return logic_.Setup(combo1_->currentText().toStdString(), text2_->text().toStdString(), option2_->isChecked());
}

// --- GPSstackOut ---------------------------------------------------------------------

GPSstackOut::GPSstackOut(tavik::Document& doc, const tavik::View& view, tavik::GpsState& gps,
                         tavik::ui::Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), gps_(gps), logic_(doc, view, gps, dialogs) {
  setObjectName("GPSstackOut");
  picture1_ = new StakeArrow(this);
  label9_ = Big(this, "Label9");
  label8_ = new QLabel(this);
  label8_->setObjectName("Label8");
  label8_->setAlignment(Qt::AlignCenter);
  auto* setup = new QPushButton("選放樣點", this);
  setup->setObjectName("Command1");
  command2_ = new QPushButton("記錄", this);
  command2_->setObjectName("Command2");
  command5_ = new QPushButton("結束", this);
  command5_->setObjectName("Command5");
  auto* form = new QFormLayout;
  form->addRow("距離", label9_);
  form->addRow("方位角", label8_);
  auto* row = new QHBoxLayout;
  for (QPushButton* b : {setup, command2_, command5_}) {
    b->setAutoDefault(false);
    row->addWidget(b);
  }
  auto* col = new QVBoxLayout(this);
  col->addWidget(picture1_, 1);
  col->addLayout(form);
  col->addLayout(row);
  connect(setup, &QPushButton::clicked, this, &GPSstackOut::OpenSetup);
  connect(command2_, &QPushButton::clicked, this, [this] {
    logic_.Command2();
    Push();
  });
  connect(command5_, &QPushButton::clicked, this, [this] {
    logic_.Command5();
    Push();
  });
  logic_.hooks.Beep = [] { QApplication::beep(); };
  logic_.Load();
  Push();
}

GPSstackOut::~GPSstackOut() { logic_.Unload(); }

void GPSstackOut::done(int r) {
  logic_.Unload();
  QDialog::done(r);
}

void GPSstackOut::OpenSetup() {
  DlgStackSetup dlg(logic_, gps_, this);
  dlg.StartPick = [this] {
    if (StartPick) StartPick();
  };
  dlg.exec();
  // The alarm circle may have a new radius.
  if (!gps_.StakeName.empty() && logic_.hooks.DrawTargetMark)
    logic_.hooks.DrawTargetMark(gps_.StakeX, gps_.StakeY, gps_.StakeCode, gps_.StakeName);
  Push();
}

void GPSstackOut::StakeRefresh() {
  logic_.StakeRefresh();
  Push();
}

void GPSstackOut::PickTarget(double x, double y) {
  logic_.PickTarget(x, y);
  Push();
}

QString GPSstackOut::Label8() const { return label8_->text(); }
QString GPSstackOut::Label9() const { return label9_->text(); }

void GPSstackOut::Push() {
  setWindowTitle(Q(logic_.WindowTitle()));
  label8_->setText(Q(logic_.Label8));
  label9_->setText(Q(logic_.Label9));
  picture1_->SetAngle(logic_.ArrowAngle, logic_.ArrowShown);
  command2_->setEnabled(!gps_.StakeName.empty());
}
