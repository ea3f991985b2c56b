#include "app/gps_record_controls.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/mainfrm.h"
#include "app/paper.h"
#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "core/numbers.h"
#include "view/transform.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
std::string S(const QString& s) { return s.toStdString(); }

void FillCombo(QComboBox* box, const std::vector<double>& values, double current) {
  box->setEditable(true);
  for (double v : values) box->addItem(Q(tavik::num::Plain(v)));
  box->setCurrentText(Q(tavik::num::Plain(current)));
}
}  // namespace

// ---------------------------------------------------------------------------------------
// RecType

RecType::RecType(tavik::GpsRecorder& rec, tavik::GpsState& gps, QWidget* parent)
    : QDialog(parent), rec_(rec), gps_(gps) {
  setWindowTitle("連續記錄設定");
  setObjectName("RecType");
  auto* layout = new QVBoxLayout(this);
  const tavik::GpsRecordState& st = rec.state;

  auto* mode = new QGroupBox("記錄方式", this);
  auto* grid = new QVBoxLayout(mode);
  auto* optTime = new QRadioButton("定時記錄(秒)", mode);
  optTime->setObjectName("OptTime");
  auto* combo1 = new QComboBox(mode);
  combo1->setObjectName("Combo1");
  FillCombo(combo1, tavik::GpsRecorder::TimeChoices(), st.RecordMode == "Time" ? st.RecordInterval : 1);
  auto* optDis = new QRadioButton("定距記錄(公尺)", mode);
  optDis->setObjectName("OptDis");
  auto* combo2 = new QComboBox(mode);
  combo2->setObjectName("Combo2");
  FillCombo(combo2, tavik::GpsRecorder::DistanceChoices(), st.RecordMode == "Dist" ? st.RecordInterval : 1);
  for (QWidget* w : std::initializer_list<QWidget*>{optTime, combo1, optDis, combo2}) grid->addWidget(w);
  (st.RecordMode == "Dist" ? optDis : optTime)->setChecked(true);
  auto sync = [=] {
    combo1->setEnabled(optTime->isChecked());
    combo2->setEnabled(optDis->isChecked());
  };
  connect(optTime, &QRadioButton::toggled, this, sync);
  sync();
  layout->addWidget(mode);

  auto* check1 = new QCheckBox("點-點間連線", this);
  check1->setObjectName("Check1");
  check1->setChecked(st.LinkPoints != 0);
  auto* check3 = new QCheckBox("起點標註路線名稱", this);
  check3->setObjectName("Check3");
  check3->setChecked(st.LabelRoute != 0);
  auto* check2 = new QCheckBox("終點標註距離長度", this);
  check2->setObjectName("Check2");
  check2->setChecked(st.LabelDistance != 0);
  for (QWidget* w : std::initializer_list<QWidget*>{check1, check3, check2}) layout->addWidget(w);

  auto pair = [&](const char* title, const char* n1, const char* c1, const char* n2, const char* c2, bool second) {
    auto* box = new QGroupBox(title, this);
    auto* row = new QHBoxLayout(box);
    auto* a = new QRadioButton(c1, box);
    a->setObjectName(n1);
    auto* b = new QRadioButton(c2, box);
    b->setObjectName(n2);
    (second ? b : a)->setChecked(true);
    row->addWidget(a);
    row->addWidget(b);
    layout->addWidget(box);
    return b;
  };
  QRadioButton* option2 = pair("測點出畫面時", "Option1", "圖面縮小", "Option2", "等比例平移", gps.OffScreenShift != 0);
  QRadioButton* option4 = pair("圖面移動方式", "Option3", "移動圖面", "Option4", "移動載具", gps.MoveMap == 0);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName("OKButton");
  buttons->button(QDialogButtonBox::Cancel)->setObjectName("CancelButton");
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(buttons, &QDialogButtonBox::accepted, this, [=, this] {
    tavik::GpsRecordState& s = rec_.state;
    s.LinkPoints = check1->isChecked() ? tavik::kTrue : tavik::kFalse;
    s.LabelRoute = check3->isChecked() ? tavik::kTrue : tavik::kFalse;
    s.LabelDistance = check2->isChecked() ? tavik::kTrue : tavik::kFalse;
    gps_.OffScreenShift = option2->isChecked() ? tavik::kTrue : tavik::kFalse;
    gps_.MoveMap = option4->isChecked() ? tavik::kFalse : tavik::kTrue;
    const bool time = optTime->isChecked();
    if (rec_.RecTypeOk(time ? "Time" : "Dist", S((time ? combo1 : combo2)->currentText()))) accept();
  });
}

// ---------------------------------------------------------------------------------------
// The controls

GpsRecordControls::GpsRecordControls(Program& program, const GpsRecordEnds& ends)
    : QObject(&program.frm), program_(program), ends_(ends) {
  tavik::GpsReceiver& rx = *ends.receiver;
  rec_ = std::make_unique<tavik::GpsRecorder>(program.survey->ctx, *ends.gps, *ends.setup, rx.Panels());
  sounders_ = std::make_unique<tavik::SounderReader>(*ends.gps, rx.Panels(), *ends.setup);
  MainFrm& frm = program.frm;

  // Receiving: the rest of each position update, and the depth lines of the Ceastar port.
  rx.hooks.ContinuePositionUpdate = [this](double, double, double) { rec_->ContinuePositionUpdate(); };
  rx.hooks.SounderLine = [this](const std::string& l) { sounders_->CeastarLine(l); };
  rx.hooks.DepthSentence = [this](const std::string& l) { sounders_->DepthSentence(l); };
  sounders_->Changed = [this] {
    if (ends_.ShowPanels) ends_.ShowPanels();
  };
  if (ends.MSComm2) ends.MSComm2->OnByte = [this](char c) { sounders_->MSComm2_OnComm(c); };
  if (ends.ESeaSound206) ends.ESeaSound206->OnByte = [this](char c) { sounders_->ESeaSound206_OnComm(c); };
  if (ends.MSTSSComm) ends.MSTSSComm->OnByte = [this](char c) { sounders_->MSTSSComm_OnComm(c); };

  tavik::GpsRecordHooks& h = rec_->hooks;
  h.ViewChanged = [this] { ViewChanged(); };
  h.DrawStakeMarks = [this] {
    if (ends_.DrawStakeMarks) ends_.DrawStakeMarks();
  };
  h.DrawMarker = [this](double E, double N, bool plain, double heading) { DrawMarker(E, N, plain, heading); };
  h.StakeRefresh = [this] {
    if (ends_.StakeRefresh) ends_.StakeRefresh();
  };
  h.DrawLabel = [this](double E, double N, const std::string& text) {
    float x = 0, y = 0;
    const tavik::App& a = program_.app;
    tavik::WorldToPaper(a.view, a.doc.ScaleDenominator, E, N, x, y);
    x -= 1.5f * a.view.ViewWidthPixels;
    y -= 1.5f * a.view.ViewHeightPixels;
    program_.frm.Paper1()->Surface().Text(x + 3, y - 12, text, tavik::ui::MakeRgb(0, 0, 255), 12);
    program_.frm.Paper1()->update();
  };
  h.DrawEntity = [this](std::size_t) { program_.survey->panel()->RedrawAll(); };
  h.ShowLogButton = [this](const std::string& caption, bool running) {
    logButton_->setText(Q(caption));
    logButton_->setChecked(running);
  };
  h.SetTimer4 = [this](int ms) {
    if (ms > 0)
      timer4_.start(ms);
    else
      timer4_.stop();
  };
  h.SendToReceiver = [this](const std::string& c) {
    if (ends_.SendToReceiver) ends_.SendToReceiver(c);
  };
  h.PortOpen = [this] {
    tavik::ui::SerialPort* p =
        tavik::ListenOnlyKind(ends_.setup->GpsReceiverKind) ? ends_.MSComm_Axis3 : ends_.MSComm1;
    return p && p->PortOpen();
  };
  h.PanelsChanged = [this] {
    if (ends_.ShowPanels) ends_.ShowPanels();
  };
  connect(&timer4_, &QTimer::timeout, this, [this] { rec_->Timer4Tick(); });

  // A full repaint of the map takes the marker with it: draw it again on the new picture.
  auto redraw = frm.handlers.Redraw;
  frm.handlers.Redraw = [this, redraw](tavik::ui::Surface& s) {
    if (redraw) redraw(s);
    tavik::view::ForgetGpsMarker(marker_);
    if (markerWanted_) DrawMarker(markerE_, markerN_, marker_.plain, marker_.heading);
  };
  connect(&frm, &MainFrm::paperCleared, this, [this] {
    tavik::view::ForgetGpsMarker(marker_);
    markerWanted_ = false;
  });

  bar_ = new QToolBar("GPS記錄", &frm);
  bar_->setObjectName("GpsRecordBar");
  bar_->setProperty("measureMode", "GPS");
  frm.addToolBar(Qt::BottomToolBarArea, bar_);
  logButton_ = new QToolButton(bar_);
  logButton_->setObjectName("LogButton");
  logButton_->setCheckable(true);
  logButton_->setText(Q(tavik::kLogManual));
  logButton_->setToolButtonStyle(Qt::ToolButtonTextOnly);
  logButton_->setMinimumWidth(130);
  // The caption is the state: a click never toggles it by itself.
  connect(logButton_, &QToolButton::clicked, this, [this] {
    logButton_->setChecked(rec_->Running());
    rec_->LogButton_Click();
    logButton_->setChecked(rec_->Running());
  });
  bar_->addWidget(logButton_);
  QAction* setup = bar_->addAction("連續記錄設定...", this, &GpsRecordControls::OpenRecType);
  setup->setObjectName("RecTypeButton");
  QAction* manual = bar_->addAction("手動", this, [this] { rec_->SetManual(); });
  manual->setObjectName("MainMnuRecord");
  QAction* ih = bar_->addAction("天線高", this, [this] { rec_->CmdIh(); });
  ih->setObjectName("CmdIh");
  QAction* rod = bar_->addAction("吃水深", this, [this] { rec_->CmdRod(); });
  rod->setObjectName("CmdRod");
  bar_->addWidget(new QLabel(" 參考樁 ", bar_));
  combo3_ = new QComboBox(bar_);
  combo3_->setObjectName("Combo3");
  combo3_->setEditable(true);
  combo3_->addItem("距某點");
  combo3_->setMinimumWidth(90);
  connect(combo3_, &QComboBox::currentTextChanged, this, [this](const QString& t) { rec_->state.Combo3 = S(t); });
  bar_->addWidget(combo3_);
  frm.SetMeasureModeMenus(program.instruments.inst.MeasureMode);
}

GpsRecordControls::~GpsRecordControls() = default;

void GpsRecordControls::OpenRecType() {
  RecType dlg(*rec_, *ends_.gps, &program_.frm);
  dlg.exec();
}

void GpsRecordControls::ViewChanged() {
  tavik::App& app = program_.app;
  program_.cycle.hooks.ComputeView(app.doc, app.view);
  program_.cycle.hooks.RebuildScreenTables(app.doc, app.view);
  app.work.WriteRecoveryHeader(app.doc);
  program_.survey->panel()->RedrawAll();
  program_.cycle.ShowCounts();
}

void GpsRecordControls::DrawMarker(double E, double N, bool plain, double heading) {
  const tavik::App& a = program_.app;
  float x = 0, y = 0;
  tavik::WorldToPaper(a.view, a.doc.ScaleDenominator, E, N, x, y);
  x -= 1.5f * a.view.ViewWidthPixels;
  y -= 1.5f * a.view.ViewHeightPixels;
  tavik::view::MoveGpsMarker(program_.frm.Paper1()->Surface(), marker_, x, y, plain, heading);
  markerE_ = E;
  markerN_ = N;
  markerWanted_ = true;
  program_.frm.Paper1()->update();
}

void GpsRecordControls::HideMarker() {
  if (marker_.shown) {
    tavik::view::DrawGpsMarkerShape(program_.frm.Paper1()->Surface(), marker_.x, marker_.y, marker_.plain,
                                    marker_.heading);
    program_.frm.Paper1()->update();
  }
  tavik::view::ForgetGpsMarker(marker_);
  markerWanted_ = false;
  rec_->state.MarkerDrawn = false;
}

void GpsRecordControls::WireLink(tavik::GnssLink& link) {
  link.ContinuousRecording = [this] { return rec_->Running(); };
  link.StopContinuousRecording = [this] { rec_->StopReception(); };
  link.StopReceptionMarker = [this] {
    timer4_.stop();
    HideMarker();
  };
}
