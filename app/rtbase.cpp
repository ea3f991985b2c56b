#include "app/rtbase.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "app/edit_wiring.h"
#include "app/gnss_wiring.h"
#include "app/mainfrm.h"
#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "core/numbers.h"
#include "edit/editor.h"

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }
std::string S(const QString& s) { return s.toStdString(); }

// Where the base's choices are kept between runs, beside the recent-file list.
constexpr const char* kStoreApp = "TAVIK";
constexpr const char* kStoreSection = "RtBase";

}  // namespace

RTBASE::RTBASE(tavik::Document& doc, const tavik::View& view, tavik::GpsState& gps, tavik::GnssSetup& setup,
               tavik::GpsPanels& panels, const tavik::GpsDatumSettings& datum, tavik::ui::Dialogs& dialogs,
               QWidget* parent)
    : QDialog(parent), setup_(setup), panels_(panels), logic_(doc, view, gps, setup, panels, datum, dialogs) {
  setObjectName("RTBASE");
  setWindowTitle(tavik::RtBaseLogic::Caption);
  auto named = [this](QWidget* w, const char* name) {
    w->setObjectName(name);
    controls_[name] = w;
    return w;
  };
  auto button = [&](const char* caption, const char* name) {
    auto* b = new QPushButton(caption, this);
    b->setAutoDefault(false);
    named(b, name);
    return b;
  };
  auto label = [&](const char* name) {
    auto* l = new QLabel(this);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    l->setMinimumWidth(120);
    named(l, name);
    return l;
  };

  // The position and where it comes from.
  auto* position = new QGroupBox("基地站座標", this);
  option1_ = static_cast<QRadioButton*>(named(new QRadioButton("人工輸入", position), "Option1"));
  option2_ = static_cast<QRadioButton*>(named(new QRadioButton("自動接收", position), "Option2"));
  option3_ = static_cast<QRadioButton*>(named(new QRadioButton("圖上選點", position), "Option3"));
  option1_->setChecked(true);
  xe_ = static_cast<QLineEdit*>(named(new QLineEdit(position), "XEbox"));
  yn_ = static_cast<QLineEdit*>(named(new QLineEdit(position), "YNbox"));
  zh_ = static_cast<QLineEdit*>(named(new QLineEdit(position), "ZHbox"));
  text1_ = static_cast<QLineEdit*>(named(new QLineEdit(position), "Text1"));
  QPushButton* command2 = button("自動接收", "Command2");
  averageButton_ = button("平均定位", "CmdAverage");
  averageAmount_ = static_cast<QSpinBox*>(named(new QSpinBox(position), "AverageAmount"));
  averageAmount_->setRange(1, 86400);
  averageAmount_->setValue(60);
  averageUnit_ = static_cast<QComboBox*>(named(new QComboBox(position), "AverageUnit"));
  averageUnit_->addItems({"秒", "筆"});
  averageStatus_ = static_cast<QLabel*>(named(new QLabel(position), "LabelAverage"));
  label13_ = label("Label13");
  QPushButton* command3 = button("修改天線高", "Command3");
  checkMkPt_ = static_cast<QCheckBox*>(named(new QCheckBox("啟動後在圖上標出位置", position), "CheckMkPt"));

  auto* sources = new QHBoxLayout;
  for (QRadioButton* o : {option1_, option2_, option3_}) sources->addWidget(o);
  sources->addStretch();
  auto* boxes = new QFormLayout;
  boxes->addRow("橫座標E:", xe_);
  boxes->addRow("縱座標N:", yn_);
  boxes->addRow("高程H:", zh_);
  boxes->addRow("基地站點名", text1_);
  auto* antenna = new QHBoxLayout;
  antenna->addWidget(label13_, 1);
  antenna->addWidget(command3);
  boxes->addRow("天線高", antenna);
  auto* receive = new QHBoxLayout;
  receive->addWidget(command2);
  receive->addSpacing(12);
  receive->addWidget(averageButton_);
  receive->addWidget(averageAmount_);
  receive->addWidget(averageUnit_);
  receive->addStretch();
  auto* positionCol = new QVBoxLayout(position);
  positionCol->addLayout(sources);
  positionCol->addLayout(boxes);
  positionCol->addLayout(receive);
  positionCol->addWidget(averageStatus_);
  positionCol->addWidget(checkMkPt_);

  // The correction format: the kinds take different sets; the others are greyed.
  auto* formats = new QGroupBox("訊號格式", this);
  auto* formatGrid = new QGridLayout(formats);
  int k = 0;
  for (const tavik::BaseFormatOption& f : tavik::BaseFormatOptions()) {
    auto* o = static_cast<QRadioButton*>(named(new QRadioButton(f.caption, formats), f.control));
    o->setEnabled(tavik::BaseFormatSupported(setup.GpsReceiverKind, f.word));
    formats_[f.word] = o;
    formatGrid->addWidget(o, k / 2, k % 2);
    ++k;
    connect(o, &QRadioButton::clicked, this, [this, word = std::string(f.word)] {
      logic_.BaseFormat = word;
      if (SettingsChanged) SettingsChanged();
    });
  }
  auto* label16 = static_cast<QLabel*>(named(new QLabel("注意:UHF數據機的鮑率要設為38400", formats), "Label16"));
  label16->setStyleSheet("color: rgb(255,0,0)");
  formatGrid->addWidget(label16, k / 2 + 1, 0, 1, 2);

  // Raw data: to a file on the computer, or (PP7) inside the receiver.
  auto periods = [&](const char* name) {
    auto* c = static_cast<QComboBox*>(named(new QComboBox(this), name));
    for (double p : tavik::RawPeriods()) c->addItem(Q(tavik::num::Plain(p)));
    c->setCurrentText(Q(tavik::num::Plain(setup.RawPeriodSeconds)));
    connect(c, &QComboBox::activated, this, [this, c] {
      logic_.SetRawPeriod(tavik::num::ParseLenient(S(c->currentText())));
      if (SettingsChanged) SettingsChanged();
    });
    return c;
  };
  auto* raw = static_cast<QGroupBox*>(named(new QGroupBox("RAW 資料", this), "RawFrame"));
  rawDataCheckFlag_ = static_cast<QCheckBox*>(named(new QCheckBox("同時記錄 RAW 檔案", raw), "RawDataCheckFlag"));
  QPushButton* command1 = button("檔名...", "Command1");
  rawPath_ = label("LabelRawPath");
  combo2_ = periods("Combo2");
  label6_ = label("Label6");
  auto* rawForm = new QFormLayout(raw);
  auto* rawRow = new QHBoxLayout;
  rawRow->addWidget(rawDataCheckFlag_);
  rawRow->addWidget(command1);
  rawForm->addRow(rawRow);
  rawForm->addRow("檔案", rawPath_);
  rawForm->addRow("間隔(秒)", combo2_);
  rawForm->addRow("資料筆數:", label6_);
  auto* inside = static_cast<QGroupBox*>(named(new QGroupBox("RAW 資料(PwrPak7)", this), "Pp7RawFrame"));
  check1_ = static_cast<QCheckBox*>(named(new QCheckBox("同時記錄 RAW 檔案", inside), "Check1"));
  combo3_ = periods("Combo3");
  auto* insideForm = new QFormLayout(inside);
  insideForm->addRow(check1_);
  insideForm->addRow("間隔(秒)", combo3_);
  auto* note = new QLabel("注意! PwrPak7的Raw Data是記錄在儀器內,不是記錄在電腦中.", inside);
  note->setWordWrap(true);
  insideForm->addRow(note);
  const bool pp7 = setup.GpsReceiverKind == "PP7";
  raw->setVisible(!pp7);
  inside->setVisible(pp7);

  // What the receiver was started with.
  auto* result = new QGroupBox("基地站", this);
  label15_ = label("Label15");
  label45_ = label("Label45");
  label10_ = label("Label10");
  label11_ = label("Label11");
  auto* resultForm = new QFormLayout(result);
  resultForm->addRow("點名", label15_);
  resultForm->addRow("經度", label45_);
  resultForm->addRow("緯度", label10_);
  resultForm->addRow("高程", label11_);

  QPushButton* start = button("啟動基地站", "cmd_start");
  QPushButton* end = button("離開", "Cmd_end");
  QPushButton* undo = button("取消並離開", "Command4");
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(start);
  buttons->addStretch();
  buttons->addWidget(end);
  buttons->addWidget(undo);

  auto* left = new QVBoxLayout;
  left->addWidget(position);
  left->addWidget(result);
  auto* right = new QVBoxLayout;
  right->addWidget(formats);
  right->addWidget(raw);
  right->addWidget(inside);
  right->addStretch();
  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 1);
  columns->addLayout(right, 1);
  auto* col = new QVBoxLayout(this);
  col->addLayout(columns);
  col->addLayout(buttons);

  connect(option1_, &QRadioButton::clicked, this, [this] { logic_.Source = tavik::BaseSource::Typed; });
  connect(option2_, &QRadioButton::clicked, this, [this] { logic_.Source = tavik::BaseSource::Received; });
  connect(option3_, &QRadioButton::clicked, this, [this] {
    Pull();
    logic_.Source = tavik::BaseSource::Picked;
    if (StartPick) StartPick();
  });
  connect(command2, &QPushButton::clicked, this, [this] {
    Pull();
    logic_.Source = tavik::BaseSource::Received;
    logic_.Command2();
    Push();
  });
  connect(command3, &QPushButton::clicked, this, [this] {
    Pull();
    logic_.Command3();
    Push();
  });
  connect(command1, &QPushButton::clicked, this, [this] {
    Pull();
    if (logic_.Command1()) rawDataCheckFlag_->setChecked(true);
    Push();
  });
  connect(averageButton_, &QPushButton::clicked, this, &RTBASE::ToggleAveraging);
  connect(start, &QPushButton::clicked, this, &RTBASE::Start);
  connect(end, &QPushButton::clicked, this, &QDialog::close);
  connect(undo, &QPushButton::clicked, this, [this] {
    if (logic_.Command4()) close();
  });
  connect(&timer_, &QTimer::timeout, this, &RTBASE::Tick);
  timer_.start(500);
  clock_.start();
  Push();
}

QWidget* RTBASE::Control(const std::string& name) const {
  auto it = controls_.find(name);
  return it == controls_.end() ? nullptr : it->second;
}

QString RTBASE::Text(const std::string& name) const {
  QWidget* w = Control(name);
  if (auto* l = qobject_cast<QLabel*>(w)) return l->text();
  if (auto* e = qobject_cast<QLineEdit*>(w)) return e->text();
  return QString();
}

void RTBASE::Pull() {
  logic_.XEbox = S(xe_->text());
  logic_.YNbox = S(yn_->text());
  logic_.ZHbox = S(zh_->text());
  logic_.Text1 = S(text1_->text());
  logic_.CheckMkPt = checkMkPt_->isChecked() ? tavik::kTrue : tavik::kFalse;
  logic_.RawDataCheckFlag = rawDataCheckFlag_->isChecked() ? tavik::kTrue : tavik::kFalse;
  logic_.Check1 = check1_->isChecked() ? tavik::kTrue : tavik::kFalse;
  if (option1_->isChecked()) logic_.Source = tavik::BaseSource::Typed;
  if (option2_->isChecked()) logic_.Source = tavik::BaseSource::Received;
  if (option3_->isChecked()) logic_.Source = tavik::BaseSource::Picked;
}

void RTBASE::Push() {
  xe_->setText(Q(logic_.XEbox));
  yn_->setText(Q(logic_.YNbox));
  zh_->setText(Q(logic_.ZHbox));
  text1_->setText(Q(logic_.Text1));
  label13_->setText(Q(logic_.Label13));
  switch (logic_.Source) {
    case tavik::BaseSource::Typed: option1_->setChecked(true); break;
    case tavik::BaseSource::Received: option2_->setChecked(true); break;
    case tavik::BaseSource::Picked: option3_->setChecked(true); break;
  }
  if (auto it = formats_.find(logic_.BaseFormat); it != formats_.end() && it->second->isEnabled())
    it->second->setChecked(true);
  rawPath_->setText(Q(logic_.RawPath()));
  rawPath_->setToolTip(rawPath_->text());
  label15_->setText(Q(logic_.Label15));
  label45_->setText(Q(logic_.Label45));
  label10_->setText(Q(logic_.Label10));
  label11_->setText(Q(logic_.Label11));
  Tick();
}

void RTBASE::Start() {
  Pull();
  if (logic_.CmdStart() && SettingsChanged) SettingsChanged();
  Push();
}

void RTBASE::Pick(double x, double y) {
  show();
  raise();
  logic_.PickBase(x, y);
  Push();
}

void RTBASE::PositionArrived() {
  if (!logic_.Averager.Running()) return;
  if (logic_.PositionArrived(Now())) Push();
  Tick();
}

void RTBASE::ToggleAveraging() {
  if (logic_.Averager.Running()) {
    Pull();
    logic_.StopAveraging();
    Push();
    return;
  }
  Pull();
  const auto until = averageUnit_->currentIndex() == 0 ? tavik::PositionAverager::Until::Seconds
                                                       : tavik::PositionAverager::Until::Count;
  logic_.StartAveraging(until, averageAmount_->value(), Now());
  Tick();
}

void RTBASE::Tick() {
  if (logic_.AveragingTick(Now())) {
    Push();
    return;
  }
  const bool running = logic_.Averager.Running();
  averageButton_->setText(running ? "停止平均" : "平均定位");
  averageAmount_->setEnabled(!running);
  averageUnit_->setEnabled(!running);
  averageStatus_->setText(running || logic_.Averager.Count() > 0 ? Q(logic_.Averager.StatusText(Now())) : QString());
  label6_->setText(QString::number(panels_.RawCount));
}

// ---------------------------------------------------------------------------------------

RtBaseStation::RtBaseStation(Program& program, EditWiring& edit)
    : QObject(&program.frm), program_(program), edit_(edit) {
  tavik::ui::SettingsStore& store = program.store;
  baseFormat_ = store.GetSetting(kStoreApp, kStoreSection, "BaseFormat", "RTCMV3");
  const std::string period = store.GetSetting(kStoreApp, kStoreSection, "RawPeriodSeconds");
  if (auto p = tavik::num::ParseStrict(period); p && *p > 0) program.gnss->setup.RawPeriodSeconds = *p;

  if (QMenu* mete = program.frm.Menu("MainMnuMete")) {
    QAction* a = mete->addAction("啟動 RTK 基地站...");
    a->setObjectName("MainMnuRtBase");
    a->setProperty("measureMode", "GPS");
    connect(a, &QAction::triggered, this, &RtBaseStation::Open);
  }
  program.frm.SetMeasureModeMenus(program.instruments.inst.MeasureMode);

  edit.Host().Plugs["BasePt"] = [this](tavik::edit::PlugEvent e, double E, double N) {
    if (e != tavik::edit::PlugEvent::Press || !dialog_) return false;
    float x = 0, y = 0;
    tavik::WorldToPaper(program_.app.view, program_.app.doc.ScaleDenominator, E, N, x, y);
    edit_.Editor().Reset();
    dialog_->Pick(x + 1, y + 1);
    return true;
  };

  // Each position of the receiver also reaches the base dialog (自動接收, averaging).
  tavik::GpsReceiver& rx = program.gnss->receiver;
  rx.hooks.ContinuePositionUpdate = [this, before = rx.hooks.ContinuePositionUpdate](double lon, double lat,
                                                                                       double h) {
    if (before) before(lon, lat, h);
    if (dialog_) dialog_->PositionArrived();
  };
}

RtBaseStation::~RtBaseStation() { delete dialog_; }

void RtBaseStation::Open() {
  if (dialog_) {
    dialog_->show();
    dialog_->raise();
    return;
  }
  GnssWiring& g = *program_.gnss;
  if (!tavik::BaseKind(g.setup.GpsReceiverKind)) {
    program_.dialogs.MsgBox("接收儀 " + g.setup.GpsReceiverKind + " 不能設為基地站", tavik::RtBaseLogic::Caption);
    return;
  }
  tavik::App& app = program_.app;
  dialog_ = new RTBASE(app.doc, app.view, g.gps, g.setup, g.receiver.Panels(), program_.gpsDatum, program_.dialogs,
                       &program_.frm);
  dialog_->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog_, &QObject::destroyed, this, [this] { dialog_ = nullptr; });
  tavik::RtBaseLogic& logic = dialog_->Logic();
  logic.MSComm1 = &g.MSComm1;
  logic.WorkFolder = app.paths.WorkFolder().string();
  logic.BaseFormat = tavik::BaseFormatSupported(g.setup.GpsReceiverKind, baseFormat_) ? baseFormat_ : "";
  logic.hooks.MarkBase = [this](double E, double N) { program_.survey->panel()->DrawStationMark(E, N); };
  dialog_->Push();
  dialog_->SettingsChanged = [this] {
    if (!dialog_) return;
    tavik::ui::SettingsStore& store = program_.store;
    if (!dialog_->Logic().BaseFormat.empty()) baseFormat_ = dialog_->Logic().BaseFormat;
    store.SaveSetting(kStoreApp, kStoreSection, "BaseFormat", baseFormat_);
    store.SaveSetting(kStoreApp, kStoreSection, "RawPeriodSeconds",
                      tavik::num::Plain(program_.gnss->setup.RawPeriodSeconds));
  };
  dialog_->StartPick = [this] {
    dialog_->hide();
    edit_.Editor().StartCommand("BasePt");
  };
  dialog_->show();
  dialog_->raise();
}
