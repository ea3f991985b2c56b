// NTRIP in the running program: the rover's client, which brings a caster's corrections
// to the receiver, and the base's server, which pushes the base receiver's corrections
// to a caster. Each has a settings dialog, a start/stop item in the 測量 menu, and a
// line of state in the main window's status bar. Both run on the user-interface thread
// over asynchronous sockets and a 200 ms tick; nothing here waits on the network.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>

#include "instruments/ntrip_options.h"
#include "platform/qt/qt_tcp_link.h"
#include "platform/serial.h"
#include "platform/settings_store.h"

class MainFrm;
class QAction;
class QLabel;
namespace tavik::ui {
class Dialogs;
}

class NtripLink : public QObject {
  Q_OBJECT
 public:
  NtripLink(MainFrm& frm, tavik::ui::Dialogs& dialogs, tavik::ui::SettingsStore& store);
  ~NtripLink() override;

  // The receiver's own port (the GNSS link's), when the program has one; the choice
  // "接收儀的通訊埠" is offered only then.
  std::function<tavik::ui::SerialPort*()> ReceiverPort;
  // The rover's latest GGA sentence, when the GNSS link has one; otherwise the fixed
  // sentence of the settings goes up.
  std::function<std::string()> LatestGga;
  // A computer's serial port for the corrections or the base's bytes.
  std::function<std::unique_ptr<tavik::ui::SerialPort>()> MakePort;

  // Starts or stops with the stored settings; Start shows a message and returns false
  // when they are not usable (no caster, no mount point, the port will not open).
  bool Start(tavik::ntrip::Role role);
  void Stop(tavik::ntrip::Role role);
  bool Running(tavik::ntrip::Role role) const;
  void OpenSettings(tavik::ntrip::Role role);
  const tavik::ntrip::Session* Session(tavik::ntrip::Role role) const;
  QString StatusText(tavik::ntrip::Role role) const;

 private:
  struct Side {
    tavik::ntrip::Options options;
    std::unique_ptr<tavik::ui::QtTcpLink> link;
    std::unique_ptr<tavik::ntrip::Session> session;
    std::unique_ptr<tavik::ui::SerialPort> ownPort;  // opened by us, closed by Stop
    tavik::ui::SerialPort* port = nullptr;            // where the bytes go or come from
    QAction* run = nullptr;
    QLabel* status = nullptr;
    std::string pending;  // base bytes read in this event, pushed together
  };
  Side& side(tavik::ntrip::Role r) { return r == tavik::ntrip::Role::Client ? client_ : server_; }
  const Side& side(tavik::ntrip::Role r) const { return r == tavik::ntrip::Role::Client ? client_ : server_; }
  void Tick();
  void ShowState(Side& s);
  int64_t Now() const { return clock_.elapsed(); }

  MainFrm& frm_;
  tavik::ui::Dialogs& dialogs_;
  tavik::ui::SettingsStore& store_;
  Side client_, server_;
  QTimer tick_;
  QElapsedTimer clock_;
};
