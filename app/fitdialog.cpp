#include "app/fitdialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "app/mainfrm.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

FitDialog::FitDialog(tavik::SurveyContext& ctx, QWidget* parent) : QDialog(parent), logic_(ctx) {
  setObjectName("FitDialog");
  setWindowTitle(tavik::FitDialogLogic::Caption);
  combo1_ = new QComboBox(this);
  combo1_->setObjectName("Combo1");
  combo2_ = new QComboBox(this);
  combo2_->setObjectName("Combo2");
  combo1_->addItem("");
  combo2_->addItem("");
  for (const auto& n : logic_.Combo1) combo1_->addItem(Q(n));
  for (const auto& n : logic_.Combo2) combo2_->addItem(Q(n));
  text4_ = new QLineEdit(Q(logic_.Text4), this);
  text4_->setObjectName("Text4");
  text3_ = new QLineEdit(Q(logic_.Text3), this);
  text3_->setObjectName("Text3");
  text5_ = new QLabel(this);
  text5_->setObjectName("Text5");
  label9_ = new QLabel(this);
  label9_->setObjectName("Label9");
  label10_ = new QLabel(this);
  label10_->setObjectName("Label10");
  label13_ = new QLabel(this);
  label13_->setObjectName("Label13");
  // 框選 beside each combo: a rectangle on the map chooses that point.
  auto* pick1 = new QPushButton("框選", this);
  pick1->setObjectName("Command1");
  auto* pick2 = new QPushButton("框選", this);
  pick2->setObjectName("Command2");
  auto withPick = [this](QComboBox* combo, QPushButton* pick) {
    auto* line = new QHBoxLayout;
    line->addWidget(combo, 1);
    line->addWidget(pick);
    return line;
  };
  auto* form = new QFormLayout;
  form->addRow("測站", withPick(combo1_, pick1));
  form->addRow("後視", withPick(combo2_, pick2));
  form->addRow("兩點距離", label9_);
  if (logic_.HeightsShown()) {
    form->addRow("儀器高", text4_);
    form->addRow("覘標高", text3_);
  } else {
    text4_->hide();
    text3_->hide();
  }
  form->addRow("平距", label10_);
  form->addRow("斜距", label13_);
  form->addRow("讀數", text5_);

  command3_ = new QPushButton("測距", this);
  command3_->setObjectName("Command3");
  command4_ = new QPushButton("測角", this);
  command4_->setObjectName("Command4");
  command5_ = new QPushButton("讀數", this);
  command5_->setObjectName("Command5");
  command6_ = new QPushButton("手輸入角度", this);
  command6_->setObjectName("Command6");
  auto* ok = new QPushButton("完成", this);
  ok->setObjectName("OKButton");
  auto* cancel = new QPushButton("取消", this);
  cancel->setObjectName("CancelButton");
  command3_->setEnabled(logic_.MeasureButtonsEnabled());
  command4_->setEnabled(logic_.MeasureButtonsEnabled());
  command5_->setVisible(logic_.Command5Visible());
  connect(pick1, &QPushButton::clicked, this, [this] { if (StartPick) StartPick("FIT"); });
  connect(pick2, &QPushButton::clicked, this, [this] { if (StartPick) StartPick("FIT2"); });
  auto* row = new QHBoxLayout;
  for (QPushButton* b : {pick1, pick2}) b->setAutoDefault(false);
  for (QPushButton* b : {command3_, command4_, command5_, command6_, ok, cancel}) {
    b->setAutoDefault(false);
    row->addWidget(b);
  }
  auto* col = new QVBoxLayout(this);
  col->addLayout(form);
  col->addLayout(row);

  connect(combo1_, &QComboBox::currentTextChanged, this, [this](const QString& t) {
    if (t.isEmpty()) return;
    if (!logic_.ChooseStation(t.toStdString())) combo1_->setCurrentIndex(0);
    Push();
  });
  connect(combo2_, &QComboBox::currentTextChanged, this, [this](const QString& t) {
    if (t.isEmpty()) return;
    if (!logic_.ChooseBacksight(t.toStdString())) combo2_->setCurrentIndex(0);
    Push();
  });
  auto run = [this](void (tavik::FitDialogLogic::*m)()) {
    return [this, m] {
      Pull();
      (logic_.*m)();
      Push();
    };
  };
  connect(command3_, &QPushButton::clicked, this, run(&tavik::FitDialogLogic::Command3));
  connect(command4_, &QPushButton::clicked, this, run(&tavik::FitDialogLogic::Command4));
  connect(command5_, &QPushButton::clicked, this, run(&tavik::FitDialogLogic::Command5));
  connect(command6_, &QPushButton::clicked, this, run(&tavik::FitDialogLogic::Command6));
  connect(ok, &QPushButton::clicked, this, [this] {
    Pull();
    if (logic_.OKButton()) {
      accept();
      return;
    }
    Push();
  });
  connect(cancel, &QPushButton::clicked, this, &FitDialog::reject);
  Push();
}

void FitDialog::reject() {
  logic_.CancelButton();
  QDialog::reject();
}

void FitDialog::DistanceReceived() {
  logic_.DistanceReceiver();
  Push();
}

void FitDialog::AngleReceived() {
  logic_.AngleReceiver();
  Push();
}

void FitDialog::Pick(double x, double y, bool backsight) {
  if (logic_.PickFit(x, y, backsight)) {
    QComboBox* combo = backsight ? combo2_ : combo1_;
    const QString name = QString::fromStdString(backsight ? logic_.BacksightChosenName() : logic_.StationChosenName());
    const QSignalBlocker block(combo);
    combo->setCurrentText(name);
  }
  Push();
}

void FitDialog::Pull() {
  logic_.Text4 = text4_->text().toStdString();
  logic_.Text3 = text3_->text().toStdString();
}

void FitDialog::Push() {
  text5_->setText(Q(MainFrm::AngleText(logic_.Text5)));
  text5_->setStyleSheet(logic_.Text5Red ? "color: red" : "");
  label9_->setText(Q(logic_.Label9));
  label10_->setText(Q(logic_.Label10));
  label13_->setText(Q(logic_.Label13));
  const char* colour = logic_.DistanceRed ? "color: red" : "";
  label10_->setStyleSheet(colour);
  label13_->setStyleSheet(colour);
  command5_->setEnabled(logic_.Command5Enabled);
  if (QWidget* w = findChild<QWidget*>(Q(logic_.Focus))) w->setFocus();
}
