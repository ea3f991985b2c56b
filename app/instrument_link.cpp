#include "app/instrument_link.h"

#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

#include "app/instoptions.h"
#include "app/mainfrm.h"
#include "app/robotctrl.h"

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

// Instrument text may carry line ends and stray control bytes; the box shows one line.
QString Printable(const std::string& s) {
  std::string out;
  for (char c : s) {
    if (static_cast<unsigned char>(c) >= 0x20) out.push_back(c);
    else if (c == '\r' || c == '\n') continue;
    else out.push_back('?');
  }
  return QString::fromUtf8(out.data(), static_cast<qsizetype>(out.size()));
}

}  // namespace

InstrumentLink::InstrumentLink(MainFrm& frm, tavik::ui::Dialogs& dialogs, tavik::ui::SettingsStore* store)
    : MSComm_SET(store),
      MSComm_TOP(store),
      link(inst, dialogs),
      robot(inst, link, dialogs, Timer10),
      frm_(frm),
      dialogs_(dialogs),
      store_(store) {
  link.MSComm_SET = &MSComm_SET;
  link.MSComm_TOP = &MSComm_TOP;
  link.view = this;
  MSComm_SET.OnByte = [this](char c) { link.OnByte(tavik::Channel::Set, c); };
  MSComm_TOP.OnByte = [this](char c) { link.OnByte(tavik::Channel::Top, c); };
  MSComm_SET.OnClosed = [this] { PortClosed(MSComm_SET); };
  MSComm_TOP.OnClosed = [this] { PortClosed(MSComm_TOP); };
  robot.RefreshPaper = [this] {
    if (frm_.Paper1()) frm_.Paper1()->setFocus();
  };

  // The wait picture and the robotic panel go into the instrument frame.
  auto* frame = frm.findChild<QFrame*>("InstFrame");
  waitPanel_ = new QWidget(frame);
  waitPanel_->setObjectName("WaitPanel");
  auto* form = new QFormLayout(waitPanel_);
  form->setContentsMargins(0, 0, 0, 0);
  msgObserve_ = new QLabel("儀器觀測中...", waitPanel_);
  msgObserve_->setObjectName("MsgObserve");
  msgObserve_->setStyleSheet("background-color: rgb(255,255,128); color: rgb(0,0,160); padding: 4px");
  msgObserve_->setAlignment(Qt::AlignCenter);
  msgObserve_->hide();
  form->addRow(msgObserve_);
  const std::pair<const char*, const char*> rows[] = {{"Label23", "型號"}, {"Label24", "序號"},
                                                      {"Label29", "水平角"}, {"LabelZA", "天頂距"},
                                                      {"LabelS", "斜距"},  {"Label45", "平距"}};
  for (auto [name, caption] : rows) {
    auto* l = new QLabel(waitPanel_);
    l->setObjectName(name);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    form->addRow(caption, l);
    labels_[name] = l;
  }
  robotPanel_ = new RobotCtrlPanel(robot, inst, frame);
  robotPanel_->setVisible(tavik::KindHasRobotPanel(inst.InstrumentKind));
  if (frame) {
    if (auto* col = qobject_cast<QVBoxLayout*>(frame->layout())) {
      col->insertWidget(col->count() - 1, waitPanel_);
      col->insertWidget(col->count() - 1, robotPanel_);
    }
  }
  ShowInstrumentLabels(inst.InstrumentKind, inst.InstrumentSerial);

  if (QMenu* setup = frm.Menu("MainMnuSetup")) {
    QAction* a = setup->addAction("儀器選單...");
    a->setObjectName("mnuInstOptions");
    connect(a, &QAction::triggered, this, [this] { OpenInstOptions(); });
    // The face-two reminder after each answer, on by default.
    QAction* face = setup->addAction("倒鏡提示");
    face->setObjectName("SetupFace2");
    face->setCheckable(true);
    face->setChecked(inst.FaceWarning != 0);
    connect(face, &QAction::toggled, this, [this](bool on) { inst.FaceWarning = on ? -1 : 0; });
  }
}

InstrumentLink::~InstrumentLink() {
  // The ports go before the link they call into.
  MSComm_SET.OnByte = nullptr;
  MSComm_TOP.OnByte = nullptr;
  MSComm_SET.Close();
  MSComm_TOP.Close();
}

void InstrumentLink::OpenInstOptions() {
  // The dialog talks to the instrument on its own port, and a serial device opens only
  // once: the main window's ports let go of it. The next request opens them again, on
  // the port and with the settings chosen here.
  MSComm_SET.Close();
  MSComm_TOP.Close();
  InstOptions dlg(inst, dialogs_, *this, store_, gnss, &frm_);
  dlg.exec();
}

void InstrumentLink::ShowWaitPicture(const tavik::WaitPicture& p) {
  if (auto* box = frm_.findChild<QLabel*>("OBSBox")) {
    box->setText(Printable(p.OBSBox));
    box->setStyleSheet(p.OBSBoxRed ? "color: red" : "");
  }
  msgObserve_->setVisible(p.MsgObserve);
  labels_["Label29"]->setText(Q(MainFrm::AngleText(p.Label29)));
  labels_["LabelZA"]->setText(Q(MainFrm::AngleText(p.LabelZA)));
  labels_["LabelS"]->setText(Q(p.LabelS));
  labels_["Label45"]->setText(Q(p.Label45));
  if (ShowButtons) ShowButtons(p.CmdSTOPEnabled, p.RecButtonEnabled);
}

void InstrumentLink::ShowMeasureMode(const std::string& mode) {
  frm_.SetMeasureModeMenus(mode);
  frm_.ShowInstrumentFrame();
}

void InstrumentLink::ShowRobotPanel(bool inReach) { robotPanel_->setVisible(inReach); }

void InstrumentLink::ShowInstrumentLabels(const std::string& kind, const std::string& serial) {
  labels_["Label23"]->setText(Q(kind));
  labels_["Label24"]->setText(Q(serial));
}

void InstrumentLink::ShowMapType(const std::string& word) { frm_.SetMAPtype(word); }

void InstrumentLink::ShowOBSBox(const std::string& text) { frm_.SetOBSBox(text); }

void InstrumentLink::PortClosed(tavik::ui::SerialPort& port) {
  link.picture.MsgObserve = false;
  link.picture.OBSBox = "COM" + std::to_string(port.CommPort) + " 通訊中斷: " + port.Error();
  ShowWaitPicture(link.picture);
}
