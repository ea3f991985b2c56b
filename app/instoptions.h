// InstOptions, 儀器選單: the window over InstOptionsLogic. Tabs for total stations,
// GNSS receivers and depth sounders with the motion sensor; the
// total-station tab has the option buttons, port and speed, 2D/3D, help, automatic
// identification, power and rotation; the GNSS tab the receiver kind, its port and
// speed, the correction format, the differential choice and the IMU offset; the sounder
// tab the sounder kind and the motion sensor kind, each with its port and speed. The
// dialog has its own port MSComm1 and the
// timers Timer1 (power-on delay) and Timer2 (identification probes).
#pragma once

#include <QDialog>
#include <map>
#include <string>
#include <vector>

#include "instruments/inst_options.h"
#include "platform/qt/qt_timer.h"
#include "platform/qt/serial_port.h"

class QComboBox;
class QLabel;
class QRadioButton;
class QTabWidget;

class InstOptions : public QDialog {
  Q_OBJECT
 public:
  InstOptions(tavik::InstrumentState& state, tavik::ui::Dialogs& dialogs, tavik::InstOptionsHost& host,
              tavik::ui::SettingsStore* settings, tavik::GnssSetup* gnss = nullptr, QWidget* parent = nullptr);

  tavik::InstOptionsLogic& Logic() { return logic_; }
  QRadioButton* Option(tavik::InstOption option) const { return options_.at(option); }
  QTabWidget* Tabs() const { return tabs_; }

 public slots:
  void accept() override;  // cmdOK
  void reject() override;  // cmdCancel

 private:
  void ShowState();
  void BuildGnssTab(QWidget* tab);
  void ShowGnss();
  void MarkReceiver();
  // A device of the sounder tab: its kinds as buttons ("無" for none) with port and speed.
  struct DeviceControls {
    std::map<std::string, QRadioButton*> kinds;
    QComboBox* port = nullptr;
    QComboBox* baud = nullptr;
  };
  QWidget* BuildDevice(QWidget* tab, const char* title, const char* name, const std::vector<std::string>& kinds,
                       std::string& kind, int16_t& port, int32_t& baud, DeviceControls& controls);
  void ShowDevice(const DeviceControls& controls, const std::string& kind, int16_t port, int32_t baud);

  tavik::InstrumentState& state_;
  tavik::ui::QtSerialPort port_;
  tavik::ui::QtTimer timer1_, timer2_;
  tavik::InstOptionsLogic logic_;
  QTabWidget* tabs_ = nullptr;
  std::map<tavik::InstOption, QRadioButton*> options_;
  QComboBox* combo4_ = nullptr;
  QComboBox* combo5_ = nullptr;
  QRadioButton* opt2D_ = nullptr;
  QRadioButton* opt3D_ = nullptr;
  QLabel* label6_ = nullptr;
  class QPushButton* ok_ = nullptr;
  tavik::GnssSetup* gnss_ = nullptr;
  std::map<std::string, QRadioButton*> receivers_;
  class QButtonGroup* receiverGroup_ = nullptr;
  QComboBox* gpsPort_ = nullptr;
  QComboBox* gpsBaud_ = nullptr;
  QComboBox* correction_ = nullptr;
  QRadioButton* differential_[3] = {};
  class QCheckBox* check3_ = nullptr;
  class QLineEdit* offsets_[3] = {};
  DeviceControls sounder_, motion_;
};
