#include "app/userdialog.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
std::string S(const QLineEdit* e) { return e->text().toStdString(); }
}  // namespace

QLineEdit* UserDialog::Edit(const char* name) {
  auto* e = new QLineEdit(this);
  e->setObjectName(name);
  return e;
}

UserDialog::UserDialog(tavik::SurveyContext& ctx, QWidget* parent) : QDialog(parent), logic_(ctx) {
  setObjectName("UserDialog");
  setWindowTitle(tavik::UserDialogLogic::Caption);
  text5_ = Edit("Text5");
  xbox_ = Edit("Xbox");
  ybox_ = Edit("Ybox");
  zbox_ = Edit("Zbox");
  text6_ = Edit("Text6");
  bsx_ = Edit("LabelBsx");
  bsy_ = Edit("LabelBsy");
  bsz_ = Edit("LabelBsz");
  text4_ = Edit("Text4");
  text7_ = Edit("Text7");
  text8_ = Edit("Text8");
  bsx_->setReadOnly(true);
  bsy_->setReadOnly(true);
  check2_ = new QCheckBox("強制符合後視高程", this);
  check2_->setObjectName("Check2");
  const bool heights = logic_.HeightsShown();
  // Command4: the two help buttons, beside the azimuth and beside the forced height.
  auto* helpAzimuth = new QPushButton("?", this);
  helpAzimuth->setObjectName("Command4(1)");
  auto* helpHeight = new QPushButton("?", this);
  helpHeight->setObjectName("Command4(0)");
  for (QPushButton* b : {helpAzimuth, helpHeight}) {
    b->setAutoDefault(false);
    b->setFixedWidth(b->fontMetrics().horizontalAdvance("?") * 3);
  }
  connect(helpAzimuth, &QPushButton::clicked, this, [this] {
    QMessageBox::information(this, windowTitle(),
                             QString("%1\n%2").arg(Q(tavik::UserDialogLogic::HelpAzimuth),
                                                   Q(tavik::UserDialogLogic::HelpAzimuthWhen)));
  });
  connect(helpHeight, &QPushButton::clicked, this, [this] {
    QMessageBox::information(this, windowTitle(), Q(tavik::UserDialogLogic::HelpForceHeight));
  });
  auto withHelp = [this](QWidget* field, QPushButton* help) {
    auto* line = new QHBoxLayout;
    line->addWidget(field, 1);
    line->addWidget(help);
    return line;
  };
  auto* form = new QFormLayout;
  form->addRow("測站點名", text5_);
  form->addRow("測站 E", xbox_);
  form->addRow("測站 N", ybox_);
  if (heights) form->addRow("測站 H", zbox_);
  form->addRow("後視點名", text6_);
  form->addRow("後視方位角(度)", withHelp(text4_, helpAzimuth));
  if (heights) {
    form->addRow("儀器高", text7_);
    form->addRow("覘標高", text8_);
    form->addRow(withHelp(check2_, helpHeight));
  }
  form->addRow("後視 E", bsx_);
  form->addRow("後視 N", bsy_);
  if (heights) form->addRow("後視 H", bsz_);
  zbox_->setVisible(heights);
  text7_->setVisible(heights);
  text8_->setVisible(heights);
  bsz_->setVisible(heights);
  check2_->setVisible(heights);
  helpHeight->setVisible(heights);

  measure_ = new QPushButton(Q(logic_.MeasureCaption()), this);
  measure_->setObjectName("Measure");
  stop_ = new QPushButton("中斷測量", this);
  stop_->setObjectName("CommandStop");
  stop_->setVisible(logic_.CommandStopVisible());
  clear_ = new QPushButton("清除重來", this);
  clear_->setObjectName("Command2");
  auto* help = new QPushButton("說明", this);
  help->setObjectName("Command1");
  auto* ok = new QPushButton("確定", this);
  ok->setObjectName("OKButton");
  auto* cancel = new QPushButton("取消", this);
  cancel->setObjectName("CancelButton");
  auto* pick = new QPushButton("螢幕  點一下", this);
  pick->setObjectName("Command3");
  connect(pick, &QPushButton::clicked, this, [this] { if (StartPick) StartPick("PickCoord"); });
  auto* row = new QHBoxLayout;
  for (QPushButton* b : {measure_, stop_, clear_, pick, help, ok, cancel}) {
    b->setAutoDefault(false);
    row->addWidget(b);
  }
  auto* col = new QVBoxLayout(this);
  col->addLayout(form);
  col->addLayout(row);

  connect(check2_, &QCheckBox::toggled, this, [this](bool on) {
    Pull();
    logic_.SetCheck2(on);
    Push();
  });
  connect(measure_, &QPushButton::clicked, this, [this] {
    Pull();
    logic_.Measure();
    Push();
  });
  connect(stop_, &QPushButton::clicked, this, [this] { logic_.CommandStop(); });
  connect(clear_, &QPushButton::clicked, this, [this] {
    Pull();
    logic_.Command2();
    Push();
  });
  connect(help, &QPushButton::clicked, this, [this] {
    QMessageBox::information(this, windowTitle(), Q(tavik::UserDialogLogic::HelpMapType));
  });
  connect(text4_, &QLineEdit::returnPressed, this, [this] {
    Pull();
    logic_.AzimuthEntered();
    Push();
  });
  // Enter moves on, as the surveyor types down the form.
  connect(xbox_, &QLineEdit::returnPressed, ybox_, [this] { ybox_->setFocus(); });
  connect(ybox_, &QLineEdit::returnPressed, zbox_, [this] { zbox_->setFocus(); });
  connect(text7_, &QLineEdit::returnPressed, text8_, [this] { text8_->setFocus(); });
  connect(text8_, &QLineEdit::returnPressed, ok, [ok] { ok->setFocus(); });
  connect(ok, &QPushButton::clicked, this, [this] {
    Pull();
    if (logic_.OKButton()) accept();
    Push();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  Push();
}

void UserDialog::Received() {
  Pull();
  logic_.MeasurementReceiver();
  Push();
}

void UserDialog::PickCoord(double E, double N) {
  Pull();
  logic_.PickCoord(E, N);
  Push();
}

void UserDialog::Pull() {
  logic_.Text5 = S(text5_);
  logic_.Xbox = S(xbox_);
  logic_.Ybox = S(ybox_);
  logic_.Zbox = S(zbox_);
  logic_.Text6 = S(text6_);
  logic_.LabelBsz = S(bsz_);
  logic_.Text4 = S(text4_);
  logic_.Text7 = S(text7_);
  logic_.Text8 = S(text8_);
}

void UserDialog::Push() {
  text5_->setText(Q(logic_.Text5));
  xbox_->setText(Q(logic_.Xbox));
  ybox_->setText(Q(logic_.Ybox));
  zbox_->setText(Q(logic_.Zbox));
  zbox_->setReadOnly(!logic_.ZboxEnabled);
  text6_->setText(Q(logic_.Text6));
  bsx_->setText(Q(logic_.LabelBsx));
  bsy_->setText(Q(logic_.LabelBsy));
  bsz_->setText(Q(logic_.LabelBsz));
  bsz_->setReadOnly(!logic_.LabelBszEnabled);
  text4_->setText(Q(logic_.Text4));
  text4_->setEnabled(logic_.Text4Enabled);
  text7_->setText(Q(logic_.Text7));
  text8_->setText(Q(logic_.Text8));
  clear_->setVisible(logic_.Command2Visible);
  if (QWidget* w = findChild<QWidget*>(Q(logic_.Focus))) w->setFocus();
}
