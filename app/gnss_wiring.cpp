#include "app/gnss_wiring.h"

#include <QAction>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "app/formskyplot.h"
#include "app/program.h"
#include "core/numbers.h"

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

// A panel colour in the style sheet's words: 24-bit blue-green-red, or the button face.
QString Css(uint32_t colour) {
  if (colour == tavik::colour::ButtonFace) return "palette(button)";
  return QString("rgb(%1,%2,%3)").arg(colour & 0xFF).arg((colour >> 8) & 0xFF).arg((colour >> 16) & 0xFF);
}

void Paint(QLabel* l, const tavik::PanelLabel& p) {
  const QString text = Q(p.Caption);
  if (l->text() != text) l->setText(text);
  const QString style = QString("background-color: %1; color: %2").arg(Css(p.BackColor), Css(p.ForeColor));
  if (l->styleSheet() != style) l->setStyleSheet(style);
}

void SetText(QLabel* l, const std::string& s) {
  const QString text = Q(s);
  if (l && l->text() != text) l->setText(text);
}

}  // namespace

GnssWiring::GnssWiring(Program& program)
    : MSComm1(&program.store),
      MSComm_Axis3(&program.store),
      Ceastar(&program.store),
      MSComm2(&program.store),
      ESeaSound206(&program.store),
      MSTSSComm(&program.store),
      receiver(gps, setup, program.app.doc, program.gpsDatum),
      link(setup, program.dialogs, *this, Timer1_0),
      program_(program) {
  link.MSComm1 = &MSComm1;
  link.MSComm_Axis3 = &MSComm_Axis3;
  link.Ceastar = &Ceastar;
  link.MSComm2 = &MSComm2;
  link.ESeaSound206 = &ESeaSound206;
  link.MSTSSComm = &MSTSSComm;
  link.DocumentOpen = [this] { return program_.app.doc.IsOpen(); };
  link.GpsDatum = [this] { return program_.gpsDatum.GpsDatum; };

  receiver.view = this;
  receiver.hooks.StopWatchdog = [this] { link.DataArrived(); };
  MSComm1.OnByte = [this](char c) {
    receiver.MSComm1_OnComm(c);
    Received();
  };
  MSComm_Axis3.OnByte = [this](char c) {
    receiver.MSComm_Axis3_OnComm(c);
    Received();
  };
  Ceastar.OnByte = [this](char c) {
    receiver.Ceastar_OnComm(c);
    Received();
  };
  MSComm1.OnClosed = [this] { PortLost(MSComm1); };
  MSComm_Axis3.OnClosed = [this] { PortLost(MSComm_Axis3); };

  sky_ = new FormSkyPlot(&program_.frm);
  sky_->hide();
  BuildPanel();
  if (QMenu* mete = program_.frm.Menu("MainMnuMete")) {
    QAction* a = mete->addAction("衛星分佈圖");
    a->setObjectName("mnuSkyPlot");
    connect(a, &QAction::triggered, this, [this] { ShowSkyPlotWindow(); });
  }
}

GnssWiring::~GnssWiring() {
  *alive_ = false;
  for (tavik::ui::QtSerialPort* p : {&MSComm1, &MSComm_Axis3, &Ceastar, &MSComm2, &ESeaSound206, &MSTSSComm}) {
    p->OnByte = nullptr;
    p->OnClosed = nullptr;
    p->Close();
  }
  receiver.view = nullptr;
}

void GnssWiring::BuildPanel() {
  auto* frame = program_.frm.findChild<QFrame*>("InstFrame");
  panel_ = new QWidget(frame);
  panel_->setObjectName("GpsPanel");
  auto* form = new QFormLayout(panel_);
  form->setContentsMargins(0, 0, 0, 0);
  form->setVerticalSpacing(2);
  auto add = [&](const char* caption, const char* name) {
    auto* l = new QLabel(panel_);
    l->setObjectName(name);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    l->setMinimumHeight(20);
    labels_[name] = l;
    if (caption) {
      form->addRow(caption, l);
    } else {
      // Label11's caption is a label of its own, Label1(1), which GGA rewrites.
      auto* c = new QLabel("RTK共同衛星", panel_);
      c->setObjectName("Label1(1)");
      labels_["Label1(1)"] = c;
      form->addRow(c, l);
    }
  };
  add("基準", "Label25(0)");
  add("中央經線", "Label4");
  add("定位", "Label6");
  add("解算", "Label8");
  add("有效衛星", "Label12");
  add(nullptr, "Label11");
  add("E", "Label25(7)");
  add("N", "Label25(8)");
  add("GPS高程", "Label18");
  add("地盤高", "Label22");
  add("E精度", "Label25(9)");
  add("N精度", "Label25(3)");
  add("高程精度", "Label25(10)");
  add("方位角", "Label25(15)");
  add("精度", "Label25(16)");
  add("距前點", "Label3");
  add("距離", "Label10");
  auto* skyButton = new QPushButton("衛星分佈圖", panel_);
  skyButton->setObjectName("CmdSkyPlot");
  form->addRow(skyButton);
  connect(skyButton, &QPushButton::clicked, this, [this] { ShowSkyPlotWindow(); });
  if (frame) {
    if (auto* col = qobject_cast<QVBoxLayout*>(frame->layout())) col->insertWidget(col->count() - 1, panel_);
  }
  panel_->setVisible(false);  // shown in GPS mode
  panel_->installEventFilter(this);
  ShowDatum();
}

bool GnssWiring::eventFilter(QObject* watched, QEvent* event) {
  // Grid coordinates need a wider frame than the total station's readings.
  if (watched == panel_ && (event->type() == QEvent::Show || event->type() == QEvent::Hide)) {
    if (auto* frame = qobject_cast<QWidget*>(panel_->parent())) frame->setFixedWidth(event->type() == QEvent::Show ? 230 : 180);
  }
  return QObject::eventFilter(watched, event);
}

void GnssWiring::ShowDatum() {
  labels_["Label25(0)"]->setText(Q(program_.gpsDatum.GpsDatum));
  QLabel* meridian = labels_["Label4"];
  meridian->setText(Q(tavik::num::Plain(program_.gpsDatum.CentralMeridian)));
  meridian->setStyleSheet(program_.gpsDatum.CentralMeridian == 119 ? "color: rgb(255,0,0)" : "color: rgb(0,0,0)");
}

QLabel* GnssWiring::Label(const std::string& name) const {
  auto it = labels_.find(name);
  return it == labels_.end() ? nullptr : it->second;
}

void GnssWiring::ShowSkyPlotWindow() {
  sky_->ShowSkyPlot(receiver.Sky());
  sky_->show();
  sky_->raise();
}

void GnssWiring::Toolbar1Click(const std::string& key) {
  // A new start of reception waits for a position of its own before it counts as a fix.
  if (key == "連接COM1" || key == "接收資料") gps.GpsHasFix = 0;
  link.Toolbar1Click(key);
}

bool GnssWiring::HasFix() const { return link.Receiving() && gps.GpsHasFix != 0; }

void GnssWiring::CloseAll() {
  Timer1_0.SetEnabled(false);
  for (tavik::ui::QtSerialPort* p : {&MSComm1, &MSComm_Axis3, &Ceastar, &MSComm2, &ESeaSound206, &MSTSSComm})
    p->Close();
  EnableToolbarKey("停止接收", false);
  EnableToolbarKey("接收資料", false);
  receiver.ClearOBSBox();
}

void GnssWiring::Received() {
  if (refreshPending_) return;
  refreshPending_ = true;
  std::shared_ptr<bool> alive = alive_;
  QTimer::singleShot(0, this, [this, alive] {
    if (!*alive) return;
    refreshPending_ = false;
    receiver.Refresh();
  });
}

void GnssWiring::PortLost(tavik::ui::SerialPort& port) {
  Timer1_0.SetEnabled(false);
  obsReceiving_ = false;
  receiver.Panels().OBSBox = "COM" + std::to_string(port.CommPort) + " 通訊中斷: " + port.Error();
  receiver.Refresh();
}

void GnssWiring::EnableToolbarKey(const std::string& key, bool enabled) {
  if (QAction* a = program_.frm.findChild<QAction*>(Q(key))) a->setEnabled(enabled);
}

void GnssWiring::SetOBSBoxReceiving(bool receiving) {
  obsReceiving_ = receiving;
  receiver.Refresh();
}

void GnssWiring::ClearOBSBox() { receiver.ClearOBSBox(); }

void GnssWiring::ShowLabel25_0(const std::string& datum) {
  receiver.Panels().Label25[0] = datum;
  receiver.Refresh();
}

void GnssWiring::ShowGpsPanels(const tavik::GpsPanels& p) {
  Paint(labels_["Label6"], p.Label6);
  Paint(labels_["Label8"], p.Label8);
  Paint(labels_["Label11"], p.Label11);
  Paint(labels_["Label12"], p.Label12);
  QLabel* caption = labels_["Label1(1)"];
  SetText(caption, p.Label1_1);
  caption->setAlignment(p.Label1_1Centred ? Qt::AlignCenter : Qt::AlignLeft | Qt::AlignVCenter);
  for (int i : {0, 3, 7, 8, 9, 10, 15, 16}) {
    // The datum label keeps what the datum dialog showed until a connect writes it.
    if (i == 0 && p.Label25[0].empty()) continue;
    SetText(labels_["Label25(" + std::to_string(i) + ")"], p.Label25[static_cast<std::size_t>(i)]);
  }
  SetText(labels_["Label3"], p.Label3);
  SetText(labels_["Label10"], p.Label10);
  SetText(labels_["Label18"], p.Label18);
  SetText(labels_["Label22"], p.Label22);
  // OBSBox: black with white text while receiving, white with black text otherwise.
  if (auto* box = program_.frm.findChild<QLabel*>("OBSBox"))
    Paint(box, {p.OBSBox, obsReceiving_ ? tavik::colour::Black : tavik::colour::White,
                obsReceiving_ ? tavik::colour::White : tavik::colour::Black});
}

void GnssWiring::ShowSkyPlot(const tavik::SkyPlot& plot) {
  if (sky_->isVisible()) sky_->ShowSkyPlot(plot);
}
