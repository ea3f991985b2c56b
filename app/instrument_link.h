// The total-station link of the running program: the instrument state, the two serial
// ports of the main window (MSComm_SET, MSComm_TOP), the link over them, the wait
// picture in the instrument frame, the robotic panel with Timer10, and the menu entry
// of the options dialog 儀器選單. The survey commands take `inst` and `link` from here.
#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <string>

#include "instruments/inst_options.h"
#include "instruments/instrument_state.h"
#include "instruments/link.h"
#include "instruments/robot_ctrl.h"
#include "platform/qt/qt_timer.h"
#include "platform/qt/serial_port.h"

class MainFrm;
class QLabel;
class QWidget;
class RobotCtrlPanel;

class InstrumentLink : public QObject, public tavik::WaitPictureView, public tavik::InstOptionsHost {
  Q_OBJECT
 public:
  InstrumentLink(MainFrm& frm, tavik::ui::Dialogs& dialogs, tavik::ui::SettingsStore* store);
  ~InstrumentLink() override;

  tavik::InstrumentState inst;
  tavik::ui::QtSerialPort MSComm_SET, MSComm_TOP;
  tavik::TotalStationLink link;
  tavik::ui::QtTimer Timer10;
  tavik::RobotCtrl robot;
  // RecButton and CmdSTOP live on the survey panel; the link says when they change.
  std::function<void(bool cmdStopEnabled, bool recButtonEnabled)> ShowButtons;
  // The receiver set-up that the options dialog's GNSS tab edits.
  tavik::GnssSetup* gnss = nullptr;

  void OpenInstOptions();
  RobotCtrlPanel* RobotPanel() const { return robotPanel_; }

  // WaitPictureView.
  void ShowWaitPicture(const tavik::WaitPicture& picture) override;
  // InstOptionsHost.
  void ShowMeasureMode(const std::string& mode) override;
  void ShowRobotPanel(bool inReach) override;
  void ShowInstrumentLabels(const std::string& kind, const std::string& serial) override;
  void ShowMapType(const std::string& word) override;
  void ShowOBSBox(const std::string& text) override;

 private:
  void PortClosed(tavik::ui::SerialPort& port);

  MainFrm& frm_;
  tavik::ui::Dialogs& dialogs_;
  tavik::ui::SettingsStore* store_;
  QWidget* waitPanel_ = nullptr;
  QLabel* msgObserve_ = nullptr;
  std::map<std::string, QLabel*> labels_;
  RobotCtrlPanel* robotPanel_ = nullptr;
};
