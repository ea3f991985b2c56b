#include "app/frmreplay.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

FrmRePlay::FrmRePlay(tavik::App& app, tavik::GpsState& gps, tavik::GpsPanels& panels, tavik::ui::Dialogs& dialogs,
                     tavik::ui::TimerFactory& timers, QWidget* parent)
    : QDialog(parent), app_(app), gps_(gps) {
  setObjectName("FrmRePlay");
  setWindowTitle(tavik::RePlayLogic::Caption);
  setWindowModality(Qt::ApplicationModal);
  logic_ = std::make_unique<tavik::RePlayLogic>(app, gps, panels, dialogs, timers,
                                                (app.paths.Home / "replay").string());
  logic_->hooks.Changed = [this] { Push(); };

  text1_ = new QLineEdit(this);
  text1_->setObjectName("Text1");
  text1_->setReadOnly(true);
  text1_->setMinimumWidth(320);
  auto* browse = new QPushButton("瀏覽", this);
  browse->setObjectName("Command2");
  check1_ = new QCheckBox("重覆播放", this);
  check1_->setObjectName("Check1");
  auto* frame = new QGroupBox("測點出圖的動作", this);
  option1_ = new QRadioButton("等比例平移", frame);
  option1_->setObjectName("Option1");
  option2_ = new QRadioButton("圖面縮小", frame);
  option2_->setObjectName("Option2");
  (gps.OffScreenShift != tavik::kFalse ? option1_ : option2_)->setChecked(true);
  auto* frameCol = new QHBoxLayout(frame);
  frameCol->addWidget(option1_);
  frameCol->addWidget(option2_);
  label3_ = new QLabel(this);
  label3_->setObjectName("Label3");
  label3_->setMinimumWidth(40);

  const char* captions[5] = {"播放", "暫停", "結束", "加速", "減速"};
  auto* buttons = new QHBoxLayout;
  for (int i = 0; i < 5; ++i) {
    command1_[i] = new QPushButton(captions[i], this);
    command1_[i]->setObjectName(QString("Command1(%1)").arg(i));
    command1_[i]->setAutoDefault(false);
    buttons->addWidget(command1_[i]);
  }
  auto* fileRow = new QHBoxLayout;
  fileRow->addWidget(text1_, 1);
  fileRow->addWidget(browse);
  auto* rateRow = new QHBoxLayout;
  rateRow->addWidget(check1_);
  rateRow->addStretch(1);
  rateRow->addWidget(new QLabel("每秒筆數", this));
  rateRow->addWidget(label3_);
  auto* col = new QVBoxLayout(this);
  col->addLayout(fileRow);
  col->addLayout(rateRow);
  col->addWidget(frame);
  col->addLayout(buttons);

  connect(browse, &QPushButton::clicked, this, [this] {
    logic_->Browse(app_.paths.WorkFolder().string());
    Push();
  });
  connect(check1_, &QCheckBox::toggled, this, [this](bool on) { logic_->Check1 = on ? tavik::kTrue : tavik::kFalse; });
  connect(option1_, &QRadioButton::toggled, this,
          [this](bool on) { gps_.OffScreenShift = on ? tavik::kTrue : tavik::kFalse; });
  auto press = [this](int i, void (tavik::RePlayLogic::*action)()) {
    connect(command1_[i], &QPushButton::clicked, this, [this, action] {
      (logic_.get()->*action)();
      Push();
    });
  };
  press(0, &tavik::RePlayLogic::Play);
  press(1, &tavik::RePlayLogic::Pause);
  press(3, &tavik::RePlayLogic::Faster);
  press(4, &tavik::RePlayLogic::Slower);
  connect(command1_[2], &QPushButton::clicked, this, [this] {
    logic_->End();
    accept();
  });
  Push();
}

FrmRePlay::~FrmRePlay() { logic_.reset(); }

// However the dialog closes, the surveyor's document comes back.
void FrmRePlay::done(int r) {
  logic_->Unload();
  Push();
  QDialog::done(r);
}

void FrmRePlay::Push() {
  const tavik::RePlayLogic& l = *logic_;
  text1_->setText(Q(l.Text1));
  label3_->setText(Q(l.Label3));
  command1_[1]->setText(Q(l.Command1_1Caption));
  for (int i = 0; i < 5; ++i) command1_[i]->setEnabled(l.Command1Enabled[i]);
}
