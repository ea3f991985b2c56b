// Depth sounders and the motion sensor on a boat. They only talk: nothing is ever sent
// to them. Each has a serial port of its own and delivers one character per receive
// event; the readers here turn what they send into SounderDepth, SounderDepth2, Heave,
// Roll and Pitch of the GPS state, which every WAY record carries, and show the depths
// in the two depth labels as plain numbers.
//
// No sentence is checked: a field that is not a number reads as 0, and a stray line on
// a HydroBox port may set a depth to 0. A line that lacks a field the reader needs ends
// its reading there, keeping what was already taken.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "instruments/gnss_commands.h"
#include "instruments/gps_panels.h"
#include "instruments/gps_state.h"

namespace tavik {

class SounderReader {
 public:
  // A run of bytes longer than any device's line is dropped, so that noise cannot grow
  // memory.
  static constexpr std::size_t kMaxLine = 4096;

  SounderReader(GpsState& gps, GpsPanels& panels, const GnssSetup& setup)
      : gps_(gps), panels_(panels), setup_(setup) {}

  // Called after each event that changed a value or a label.
  std::function<void()> Changed;

  // E Sea Sound 206 on its own port: an "E" line then an "HR" line, read as one.
  void ESeaSound206_OnComm(char c);
  // A whole line of the Ceastar port when SounderKind is "Ceastar" ("A" lines or comma
  // lines, depths in centimetres).
  void CeastarLine(const std::string& line);
  // "$SDDBT" / "$SMDBT" on the Ceastar port with any other sounder kind.
  void DepthSentence(const std::string& line);
  // HydroBox on MSComm2: lines end at LF.
  void MSComm2_OnComm(char c);
  // TSS_DMS3 on MSTSSComm: frames from ":" to CR.
  void MSTSSComm_OnComm(char c);

  // The readers of a whole E Sea Sound line and a whole HydroBox line.
  void ESeaSoundParse(const std::string& line);
  void HydroBoxParse(const std::string& line);

  enum class Port { ESeaSound206, MSComm2, MSTSSComm };
  void Feed(Port port, std::string_view bytes);

 private:
  void ShowDepths();
  void Done();

  GpsState& gps_;
  GpsPanels& panels_;
  const GnssSetup& setup_;
  std::string eseaBuffer_, eseaFirstHalf_, hydroBuffer_, tssBuffer_;
};

}  // namespace tavik
