#include "app/frmlocus.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include "instruments/link.h"

FrmLocus::FrmLocus(tavik::SurveyContext& ctx, tavik::TotalStationLink& link, double& spacingCm, QWidget* parent)
    : QDialog(parent), ctx_(ctx), link_(link), spacingCm_(spacingCm), track_(ctx) {
  setObjectName("FrmLocus");
  setWindowTitle("軌跡測量");
  spacing_ = new QDoubleSpinBox;
  spacing_->setObjectName("Text1");
  spacing_->setRange(1, 100000);
  spacing_->setDecimals(0);
  spacing_->setSuffix(" cm");
  spacing_->setValue(spacingCm_);
  count_ = new QLabel("0");
  count_->setObjectName("Label2");
  start_ = new QPushButton("開始");
  start_->setObjectName("Command1");
  stop_ = new QPushButton("停止");
  stop_->setObjectName("Command2");
  stop_->setEnabled(false);
  auto* grid = new QGridLayout(this);
  grid->addWidget(new QLabel("最小間距:"), 0, 0);
  grid->addWidget(spacing_, 0, 1);
  grid->addWidget(new QLabel("軌跡點數:"), 1, 0);
  grid->addWidget(count_, 1, 1);
  grid->addWidget(start_, 2, 0);
  grid->addWidget(stop_, 2, 1);
  connect(spacing_, &QDoubleSpinBox::valueChanged, this, [this](double v) {
    spacingCm_ = v;
    track_.SpacingCm = v;
  });
  connect(start_, &QPushButton::clicked, this, &FrmLocus::Start);
  connect(stop_, &QPushButton::clicked, this, &FrmLocus::Stop);
  again_ = new QTimer(this);
  again_->setSingleShot(true);
  again_->setInterval(500);
  connect(again_, &QTimer::timeout, this, [this] {
    if (track_.Running()) link_.StartShot();
  });
}

FrmLocus::~FrmLocus() {
  if (track_.Running()) Stop();
}

void FrmLocus::Start() {
  if (track_.Running()) return;
  track_.SpacingCm = spacingCm_;
  if (!track_.Start()) return;
  link_.receivers.Tracked = [this] { Tracked(); };
  const tavik::Family family = tavik::FamilyOf(ctx_.inst.InstrumentKind);
  if (family == tavik::Family::Set) {
    // Tracking shot mode, and no stop after each answer: the instrument keeps measuring.
    keptShotMode_ = ctx_.inst.ShotMode;
    ctx_.inst.ShotMode = "連測";
    if (link_.OpenChannel(tavik::Channel::Set) && link_.MSComm_SET) {
      link_.MSComm_SET->Output("Xc\r\n");
    }
  }
  link_.StartShot();
  start_->setEnabled(false);
  stop_->setEnabled(true);
  spacing_->setEnabled(false);
  Show();
  emit runningChanged(true);
}

void FrmLocus::Stop() {
  if (!track_.Running()) return;
  track_.Stop();
  again_->stop();
  link_.receivers.Tracked = nullptr;
  if (!keptShotMode_.empty()) {
    ctx_.inst.ShotMode = keptShotMode_;
    keptShotMode_.clear();
  }
  link_.StopShot();
  start_->setEnabled(true);
  stop_->setEnabled(false);
  spacing_->setEnabled(true);
  emit runningChanged(false);
}

void FrmLocus::Tracked() {
  track_.Take();
  Show();
  if (tavik::FamilyOf(ctx_.inst.InstrumentKind) != tavik::Family::Set && track_.Running()) again_->start();
}

void FrmLocus::Show() { count_->setText(QString::number(track_.Vertices())); }

void FrmLocus::done(int r) {
  Stop();
  QDialog::done(r);
}
