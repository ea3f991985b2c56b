// The robotic panel RobotCtrl: step turns, a turn to a typed angle, the search range,
// and the cycling mode buttons of a motorised SOKKIA. Each button writes one command on
// the SET channel; a cycling button picks its command by its present caption, which is
// the only record of the instrument's mode (kept in InstrumentState).
#pragma once

#include <optional>
#include <string>

#include "instruments/instrument_state.h"
#include "instruments/link.h"
#include "platform/dialogs.h"
#include "platform/serial.h"
#include "platform/surface.h"
#include "platform/timer.h"

namespace tavik {

enum class StepButton { DirUp, DirUp7, DirDown, DirDown7, DirLeft, DirLeft7, DirRight, DirRight7 };

// The command of a step button, without its closing CR.
const char* StepCommand(StepButton button);

class RobotCtrl {
 public:
  // Timer10 is the main window's one-shot that ends a motion; gnssPort is MSComm1,
  // closed after a shot or prism mode change (may be null).
  RobotCtrl(InstrumentState& state, TotalStationLink& link, ui::Dialogs& dialogs, ui::Timer& timer10,
            ui::SerialPort* gnssPort = nullptr);

  // Button colours; nullopt keeps the form's colour.
  struct Colours {
    std::optional<ui::Rgb> ShotMode, PrismMode, LaserOnOff, LaserSW, TrkSrhOnOff;
  } colours;
  std::function<void()> RefreshPaper;  // gives the focus back to the map

  void Step(StepButton button);
  void Timer10Tick();
  void EscapeBtm();
  void TurnTo();
  void BtmSrchArea();
  void ShotModeClick();
  void PrismModeClick();
  void LaserOnOffClick();
  void LaserSWClick();
  void TrkSrhSWClick();
  void TrkSrhOnOffClick();

 private:
  // The common frame: open the SET channel, write, refresh the map. False when the
  // port failed; nothing is said.
  bool Send(const std::string& bytes);
  void CloseGnssPort();

  InstrumentState& state_;
  TotalStationLink& link_;
  ui::Dialogs& dialogs_;
  ui::Timer& timer10_;
  ui::SerialPort* gnss_;
};

}  // namespace tavik
