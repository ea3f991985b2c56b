// The logic of the instrument options dialog InstOptions ("儀器選單"). The total-station
// tab: the option buttons and what each stores, port and speed, plan or topographic
// map, power and rotation, the automatic identification of a connected instrument. The
// GNSS tab: receiver kind, its port and speed, correction format, the differential
// choice and the IMU offset. And the OK and Cancel rules. The Qt dialog only shows these fields and forwards clicks,
// bytes of its own port MSComm1, and the ticks of Timer1 and Timer2.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/gnss_commands.h"
#include "instruments/instrument_state.h"
#include "platform/dialogs.h"
#include "platform/serial.h"
#include "platform/timer.h"

namespace tavik {

enum class InstOption {
  OptHand, Option4, Option6, Option9, Option14, Opt_030R, Option5, Option25,
  Option18, Option23, Option22, Option2, Option3, Option24,
};

struct InstOptionRow {
  InstOption id;
  const char* control;
  const char* caption;
  const char* kind;  // "" for Option24, whose kind is read from the instrument
};
const std::vector<InstOptionRow>& InstOptionTable();
// The option button marked for a kind when the dialog opens.
std::optional<InstOption> OptionForKind(std::string_view kind);
// The kinds for which the robotic panel is in reach.
bool KindHasRobotPanel(std::string_view kind);

// The main window as the dialog needs it.
class InstOptionsHost {
 public:
  virtual ~InstOptionsHost() = default;
  virtual void ShowMeasureMode(const std::string& mode) = 0;  // toolbar and instrument panel
  virtual void ShowRobotPanel(bool inReach) = 0;              // FrameInst tall enough for RobotCtrl
  virtual void ShowInstrumentLabels(const std::string& kind, const std::string& serial) = 0;  // Label23, Label24
  virtual void ShowMapType(const std::string& word) = 0;
  virtual void ShowOBSBox(const std::string& text) = 0;
};

class InstOptionsLogic {
 public:
  static constexpr int kProbeInterval = 1500;  // ms between identification probes
  static constexpr int kProbeCount = 6;        // probes before giving up
  static constexpr int kPowerDelay = 300;      // ms before "*PON"

  InstOptionsLogic(InstrumentState& state, ui::Dialogs& dialogs, InstOptionsHost& host, ui::SerialPort& MSComm1,
                   ui::Timer& Timer1, ui::Timer& Timer2, std::string* sounderKind = nullptr);

  // Dialog fields the window shows.
  std::optional<InstOption> marked;
  bool Opt2D = false, Opt3D = false;
  std::string Label6_1;
  bool focusOK = false;
  bool unloaded = false;
  std::string IdBuffer;

  void Load();
  void PickOption(InstOption option);
  void Combo4Click(int port);
  void Combo5Click(int baud);
  void Opt2DClick();
  void Opt3DClick();
  void Command2Click();  // 說明
  void Command1Click();  // 自動偵測
  void Timer2Tick();
  void ProbeStep();
  void Timer1Tick();
  void Command3Click();  // 開機
  void Command5Click();  // 關機
  void Command4Click();  // ROTA
  void OnByte(char c);
  void cmdOKClick();
  void cmdCancelClick();

  // The GNSS tab, when the program has a receiver link. Picking a receiver switches to
  // GPS mode; the kind is also the instrument kind of that mode.
  GnssSetup* gnss = nullptr;
  enum class Differential { Sbas, Egps, Rtk };  // Option7 "SBAS差分", Option19 "eGPS", Option21 "RTK"
  void PickReceiver(const std::string& kind);
  void PickDifferential(Differential d);
  static std::vector<std::string> CorrectionFormats();

  static std::vector<int> PortChoices();
  static std::vector<int> SpeedChoices();

 private:
  bool OpenPort(const std::string& settings);
  void Write(const std::string& bytes);
  void ReopenLeica();
  void Identified();
  void Unload();

  InstrumentState& state_;
  ui::Dialogs& dialogs_;
  InstOptionsHost& host_;
  ui::SerialPort& port_;
  ui::Timer& timer1_;
  ui::Timer& timer2_;
  std::string* sounderKind_;
  std::string savedMode_, savedKind_, savedSounder_, savedReceiver_;
  bool probeToggle_ = false;
  int probes_ = 0;
};

}  // namespace tavik
