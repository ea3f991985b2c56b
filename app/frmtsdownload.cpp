#include "app/frmtsdownload.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <fstream>

#include "core/text.h"
#include "instruments/link.h"
#include "procedures/ts_download.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

FrmTSDownLoad::FrmTSDownLoad(tavik::SurveyContext& ctx, tavik::TotalStationLink& link, std::string folder,
                             QWidget* parent)
    : QDialog(parent), ctx_(ctx), link_(link), folder_(std::move(folder)) {
  setObjectName("frmTSDownLoad");
  setWindowTitle("儀器記憶體下載");
  auto* top = new QHBoxLayout;
  top->addWidget(new QLabel("儀器:"));
  family_ = new QComboBox;
  family_->setObjectName("Combo1");
  family_->addItems({"SOKKIA (SDR33)", "TOPCON (GTS)"});
  if (tavik::FamilyOf(ctx.inst.InstrumentKind) == tavik::Family::Topcon) family_->setCurrentIndex(1);
  top->addWidget(family_);
  port_ = new QLabel;
  top->addWidget(port_, 1);
  logBox_ = new QPlainTextEdit;
  logBox_->setObjectName("LogBox");
  logBox_->setReadOnly(true);
  logBox_->setLineWrapMode(QPlainTextEdit::NoWrap);
  logBox_->setMinimumSize(560, 300);
  label1_ = new QLabel;
  label1_->setObjectName("Label1");
  label1_->setWordWrap(true);
  start_ = new QPushButton("開始下載");
  start_->setObjectName("Command1");
  stop_ = new QPushButton("停止下載");
  stop_->setObjectName("Command2");
  stop_->setEnabled(false);
  auto* close = new QPushButton("關閉");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(start_);
  buttons->addWidget(stop_);
  buttons->addStretch(1);
  buttons->addWidget(close);
  auto* lay = new QVBoxLayout(this);
  lay->addLayout(top);
  lay->addWidget(logBox_, 1);
  lay->addWidget(label1_);
  lay->addLayout(buttons);

  auto showPort = [this] {
    const tavik::Channel ch = format() == tavik::dump::Format::Sdr ? tavik::Channel::Set : tavik::Channel::Top;
    port_->setText(Q("  COM" + std::to_string(ctx_.inst.PortNumber) + "  " +
                     tavik::SettingsText(ch == tavik::Channel::Set ? "" : ctx_.inst.InstrumentKind,
                                         ctx_.inst.BaudRate)));
  };
  showPort();
  connect(family_, &QComboBox::currentIndexChanged, this, showPort);
  connect(start_, &QPushButton::clicked, this, &FrmTSDownLoad::Start);
  connect(stop_, &QPushButton::clicked, this, &FrmTSDownLoad::Stop);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  poll_ = new QTimer(this);
  poll_->setInterval(200);
  connect(poll_, &QTimer::timeout, this, &FrmTSDownLoad::Poll);
}

FrmTSDownLoad::~FrmTSDownLoad() {
  link_.download.Active = false;
  link_.download.StartConversion = nullptr;
}

tavik::dump::Format FrmTSDownLoad::format() const {
  return family_->currentIndex() == 1 ? tavik::dump::Format::Gts : tavik::dump::Format::Sdr;
}

tavik::ui::SerialPort* FrmTSDownLoad::Port() const {
  return link_.download.channel == tavik::Channel::Set ? link_.MSComm_SET : link_.MSComm_TOP;
}

void FrmTSDownLoad::Start() {
  tavik::TsDownload& d = link_.download;
  const bool sdr = format() == tavik::dump::Format::Sdr;
  d.channel = sdr ? tavik::Channel::Set : tavik::Channel::Top;
  d.FileName = sdr ? "$SOK.OBS" : "$GTS.OBS";
  d.Folder = folder_;
  d.LogBox.clear();
  d.Label1.clear();
  logBox_->clear();
  shown_ = 0;
  if (!link_.OpenChannel(d.channel)) {
    tavik::ui::SerialPort* p = Port();
    label1_->setText(Q("COM" + std::to_string(ctx_.inst.PortNumber) + " 無法開啟: " + (p ? p->Error() : "")));
    return;
  }
  d.StartConversion = [this] {
    link_.download.Active = false;
    Convert(true);
  };
  d.Active = true;
  label1_->setText("等待儀器傳送資料... 請在儀器上執行資料輸出.");
  start_->setEnabled(false);
  family_->setEnabled(false);
  stop_->setEnabled(true);
  poll_->start();
}

void FrmTSDownLoad::Stop() {
  if (!link_.download.Active) return;
  link_.download.Active = false;
  Poll();
  if (link_.download.LogBox.empty()) {
    label1_->setText("已停止, 沒有收到資料.");
    start_->setEnabled(true);
    family_->setEnabled(true);
    stop_->setEnabled(false);
    poll_->stop();
    return;
  }
  // A GTS stream has no end mark of its own: stopping it is its normal end, and a
  // record left open tells a cut. An SDR dump ends with its mark.
  Convert(format() == tavik::dump::Format::Gts);
}

void FrmTSDownLoad::Poll() {
  const std::string& text = link_.download.LogBox;
  if (text.size() < shown_) {
    logBox_->clear();
    shown_ = 0;
  }
  if (text.size() > shown_) {
    QScrollBar* bar = logBox_->verticalScrollBar();
    logBox_->moveCursor(QTextCursor::End);
    logBox_->insertPlainText(Q(tavik::text::FromCp950(std::string_view(text).substr(shown_))));
    bar->setValue(bar->maximum());
    shown_ = text.size();
  }
  if (!link_.download.Label1.empty()) label1_->setText(Q(link_.download.Label1));
  // The cable pulled or the adapter gone: what arrived is read as a cut transfer.
  tavik::ui::SerialPort* p = Port();
  if (link_.download.Active && (p == nullptr || !p->PortOpen())) {
    link_.download.Active = false;
    Convert(false);
  }
}

void FrmTSDownLoad::Convert(bool complete) {
  poll_->stop();
  Poll();
  // What arrived is kept as it came, a cut transfer too, beside the document.
  if (!complete || link_.download.channel == tavik::Channel::Top) {
    std::ofstream raw(link_.download.Folder + "/" + link_.download.FileName, std::ios::binary | std::ios::trunc);
    raw << link_.download.LogBox;
  }
  const tavik::DownloadResult r = tavik::ConvertDump(ctx_, format(), link_.download.LogBox, complete);
  label1_->setText(Q(r.message));
  start_->setEnabled(true);
  family_->setEnabled(true);
  stop_->setEnabled(false);
  ctx_.window.RedrawAll();
  if (r.cut) ctx_.dialogs.MsgBox(r.message, "下載中斷");
}

void FrmTSDownLoad::done(int r) {
  link_.download.Active = false;
  poll_->stop();
  QDialog::done(r);
}
