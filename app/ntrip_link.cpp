#include "app/ntrip_link.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QStatusBar>

#include "app/mainfrm.h"
#include "app/ntripdlg.h"
#include "platform/dialogs.h"

using tavik::ntrip::Role;
using tavik::ntrip::State;

NtripLink::NtripLink(MainFrm& frm, tavik::ui::Dialogs& dialogs, tavik::ui::SettingsStore& store)
    : frm_(frm), dialogs_(dialogs), store_(store) {
  clock_.start();
  tick_.setInterval(200);
  connect(&tick_, &QTimer::timeout, this, [this] { Tick(); });
  QMenu* mete = frm.Menu("MainMnuMete");
  const struct {
    Role role;
    const char *setupName, *setupCaption, *runName, *runCaption, *statusName;
  } items[] = {{Role::Client, "mnuNtripClientSetup", "NTRIP 改正資料設定...", "mnuNtripClient",
                "接收 NTRIP 改正資料", "NtripClientStatus"},
               {Role::Server, "mnuNtripServerSetup", "NTRIP 基地站上傳設定...", "mnuNtripServer",
                "上傳基地站改正資料到 NTRIP", "NtripServerStatus"}};
  if (mete) mete->addSeparator();
  for (const auto& it : items) {
    Side& s = side(it.role);
    const Role role = it.role;
    if (mete) {
      QAction* setup = mete->addAction(QString::fromUtf8(it.setupCaption));
      setup->setObjectName(it.setupName);
      connect(setup, &QAction::triggered, this, [this, role] { OpenSettings(role); });
      s.run = mete->addAction(QString::fromUtf8(it.runCaption));
      s.run->setObjectName(it.runName);
      s.run->setCheckable(true);
      connect(s.run, &QAction::triggered, this, [this, role](bool on) {
        if (on)
          Start(role);
        else
          Stop(role);
      });
    }
    s.status = new QLabel(&frm);
    s.status->setObjectName(it.statusName);
    s.status->setFrameShape(QFrame::Panel);
    s.status->setFrameShadow(QFrame::Sunken);
    frm.statusBar()->addWidget(s.status);
    s.status->hide();
  }
}

NtripLink::~NtripLink() {
  Stop(Role::Client);
  Stop(Role::Server);
}

const tavik::ntrip::Session* NtripLink::Session(Role role) const { return side(role).session.get(); }

bool NtripLink::Running(Role role) const {
  const auto* s = Session(role);
  return s && s->state() != State::Stopped && s->state() != State::Failed;
}

QString NtripLink::StatusText(Role role) const { return side(role).status->text(); }

void NtripLink::OpenSettings(Role role) {
  const bool receiver = role == Role::Client && ReceiverPort && ReceiverPort() != nullptr;
  NtripDlg dlg(role, store_, dialogs_, receiver, &frm_);
  // New settings take effect at once for a session that is running.
  if (dlg.exec() == QDialog::Accepted && Running(role)) {
    Stop(role);
    Start(role);
  }
}

bool NtripLink::Start(Role role) {
  Side& s = side(role);
  Stop(role);
  s.options = tavik::ntrip::LoadOptions(store_, role);
  tavik::ntrip::Settings& set = s.options.session;
  std::string why = set.host.empty() ? "請先在 NTRIP 設定中輸入 NTRIP 主機" : tavik::ntrip::CheckMount(set.mount);
  if (why.empty()) {
    if (role == Role::Client && s.options.receiverPort) {
      s.port = ReceiverPort ? ReceiverPort() : nullptr;
      if (!s.port) why = "接收儀的通訊埠沒有開啟,請先連接接收儀或改用電腦的通訊埠";
    } else if (MakePort) {
      s.ownPort = MakePort();
      s.ownPort->CommPort = s.options.comPort;
      s.ownPort->Settings = s.options.portSettings;
      if (!s.ownPort->Open()) {
        why = "無法開啟 COM" + std::to_string(s.options.comPort) + ": " + s.ownPort->Error();
      } else {
        s.port = s.ownPort.get();
        // A pulled cable ends the session: corrections written to nowhere would only
        // make the display lie.
        s.ownPort->OnClosed = [this, role] {
          QTimer::singleShot(0, this, [this, role] {
            const int com = side(role).options.comPort;
            Stop(role);
            dialogs_.MsgBox("COM" + std::to_string(com) + " 已中斷,NTRIP 停止", "NTRIP", tavik::ui::Buttons::Ok,
                            tavik::ui::Icon::Exclamation);
          });
        };
      }
    } else {
      why = "沒有可用的通訊埠";
    }
  }
  if (!why.empty()) {
    s.ownPort.reset();
    s.port = nullptr;
    if (s.run) s.run->setChecked(false);
    dialogs_.MsgBox(why, "NTRIP", tavik::ui::Buttons::Ok, tavik::ui::Icon::Exclamation);
    return false;
  }
  if (role == Role::Client && LatestGga) {
    const std::string gga = LatestGga();
    if (!gga.empty()) set.gga = gga;
  }
  s.link = std::make_unique<tavik::ui::QtTcpLink>();
  s.session = std::make_unique<tavik::ntrip::Session>(*s.link, set);
  tavik::ntrip::Session* session = s.session.get();
  if (role == Role::Client) {
    session->OnCorrections = [&s](std::string_view bytes) {
      if (s.port) s.port->Output(bytes);
    };
  } else {
    // The bytes of one read arrive one at a time; they go up together once the read
    // is over.
    s.port->OnByte = [this, &s](char c) {
      if (s.pending.empty())
        QTimer::singleShot(0, this, [this, &s] {
          if (s.session) s.session->Push(s.pending, Now());
          s.pending.clear();
        });
      s.pending.push_back(c);
    };
  }
  session->OnStateChanged = [this, &s, role] {
    ShowState(s);
    if (s.session && s.session->state() == State::Failed) {
      // A refusal ends the session: say why once, after the socket's event is over.
      const std::string why = s.session->LastError();
      if (s.run) s.run->setChecked(false);
      QTimer::singleShot(0, this, [this, why, role] {
        if (side(role).session && side(role).session->state() == State::Failed)
          dialogs_.MsgBox(why, "NTRIP", tavik::ui::Buttons::Ok, tavik::ui::Icon::Exclamation);
      });
    }
  };
  if (s.run) s.run->setChecked(true);
  session->Start(Now());
  ShowState(s);
  tick_.start();
  return true;
}

void NtripLink::Stop(Role role) {
  Side& s = side(role);
  s.session.reset();
  s.link.reset();
  if (s.ownPort) {
    s.ownPort->OnByte = nullptr;
    s.ownPort->Close();
  }
  s.ownPort.reset();
  s.port = nullptr;
  s.pending.clear();
  if (s.run) s.run->setChecked(false);
  s.status->hide();
  if (!client_.session && !server_.session) tick_.stop();
}

void NtripLink::Tick() {
  for (Side* s : {&client_, &server_}) {
    if (!s->session) continue;
    if (s == &client_ && LatestGga) {
      const std::string gga = LatestGga();
      if (!gga.empty()) s->session->SetGga(gga);
    }
    s->session->Tick(Now());
    ShowState(*s);
  }
}

void NtripLink::ShowState(Side& s) {
  if (!s.session) return;
  s.status->setText(QString::fromStdString(tavik::ntrip::StatusLine(*s.session, Now())));
  s.status->setToolTip(QString::fromStdString(s.session->LastError()));
  const State st = s.session->state();
  s.status->setStyleSheet(st == State::Streaming ? "color: rgb(0,128,0)"
                          : st == State::Failed  ? "color: rgb(192,0,0)"
                                                 : "color: rgb(160,96,0)");
  s.status->show();
}
