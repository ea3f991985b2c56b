// The three text logs that travel with a map: the observation book (.OBS), the
// stake-out record (.STK) and the cadastral observation book (.MAC). Every record is
// one line ended by CR LF, in code page 950, appended with the file opened and closed
// around it so that a power failure costs at most the record being written. The logs
// are never rewritten.
//
// The line builders are pure so that the exact bytes can be checked; the Append*
// routines do the file work.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace tavik::obslog {

// An integer or double in "number form": a leading blank when not negative, the value
// in plain form, and a trailing blank. -99 gives "-99 ", 1234512 gives " 1234512 ".
std::string NumberForm(double value);

// Present date and time as written in the logs: "2026/11/21 08:05:03".
std::string NowText();

// The set-up group written to the .OBS file at each station set-up.
std::string SetupMarkLine(const std::string& dateTime);
std::string StationLine(const std::string& stationName, double E, double N, double H,
                        double instrumentHeight);
std::string BacksightLine(const std::string& backsightName, double E, double N, double H,
                          int32_t hzRaw, int32_t vRaw, double slope);
// One shot.
std::string ObservationLine(int32_t hzRaw, int32_t vRaw, double slope, double targetHeight,
                            const std::string& dateTime);

// The .STK line of a recorded stake-out point.
struct StakeRecord {
  std::string TargetName;
  double E = 0, N = 0, H = 0;
  std::string StationName;
  double StationE = 0, StationN = 0, StationH = 0, InstrumentHeight = 0;
  std::string BacksightName;
  double BacksightE = 0, BacksightN = 0;
  int32_t HzRaw = 0, VRaw = 0;
  double Slope = 0, TargetHeight = 0;
};
std::string StakeLine(const StakeRecord& r);

// .MAC: the station line "A1 A2" and a cadastral shot. `packedTurned` is the angle
// turned from the backsight as an integer DDDMMSS; 0 takes the short form.
std::string MacStationLine(const std::string& stationName, const std::string& backsightName);
std::string MacShotLine(const std::string& pointName, int32_t packedTurned, int32_t vRaw, double slope);

// Appends one line (UTF-8 inside, written as CP950 with CR LF). False when the file
// cannot be opened or written; the caller goes on silently.
bool AppendLine(const std::string& path, const std::string& lineUtf8);

}  // namespace tavik::obslog
