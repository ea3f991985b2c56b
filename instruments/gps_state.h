// The process-wide GPS state: what the receiver said last, and the grid position made
// of it. There is one receiver at a time. The sentence parsers fill it, the position
// update converts it to the grid, and recording, stake-out and the RTK base read it.
// The values survive a disconnect and keep their last values until the next sentence.
#pragma once

#include <cstdint>
#include <string>

namespace tavik {

struct GpsState {
  // The last complete line, its head rewritten to "$GP" when it was "$GN" or "$IN", and
  // the copy of it that a parser splits and logs. UTF-8, as received (receivers speak ASCII).
  std::string GpsLine;
  std::string GpsLineCopy;

  int32_t GpsWeek = 0;     // only from $PRTKA
  double GpsSeconds = 0;   // seconds of the week (#BESTPOSA, $PRTKA); hhmmss.ss from GGA
  double GpsLat = 0;       // degrees of the last #BESTPOSA or $PRTKA
  double GpsLon = 0;
  double GpsHeight = 0;    // metres, as the receiver gives it
  double GpsSigmaE = 0, GpsSigmaN = 0, GpsSigmaH = 0;  // standard deviations, metres
  std::string GpsFixText;  // the text now shown in Label6
  // The last position sentence (GGA, #BESTPOSA, $PRTKA) carried a solution: a GGA
  // quality above 0, a position type other than NONE, a $PRTKA status other than 0.
  // The link clears it when reception starts, so a fix of an earlier session never counts.
  int16_t GpsHasFix = 0;
  double GpsHeading = 0;   // dual-antenna heading, radians; 0 means none
  double GpsPDOP = 0, GpsHDOP = 0, GpsVDOP = 0;  // from GSA

  // Satellites of the current GSV series. Rows: PRN, elevation and azimuth in degrees,
  // signal-to-noise; columns 0..11 are used.
  int16_t SatTable[4][17] = {};
  int16_t SatStoredCount = 0;

  // The RTK base logs raw data: "$POSA," lines then go to RawPath as well.
  int16_t GpsRawLogging = 0;
  std::string RawPath;  // the base's raw data file (*.GPS); raw sentences are appended to it

  // The grid position (E, N) of the current and of the previous sentence, and the ground
  // elevation under the antenna.
  double GpsX = 0, GpsY = 0;
  double GpsPrevX = 0, GpsPrevY = 0;
  double GpsGround = 0;

  // Position of the last record; 0, 0 when none. Recording sets it.
  double LastRecordedX = 0, LastRecordedY = 0;

  // The sounder's last depth, metres; the ground elevation takes it off when a sounder
  // is in use. A second depth (a dual-frequency sounder) and the motion sensor's values
  // go into the WAY records as they are.
  double SounderDepth = 0;
  double SounderDepth2 = 0;
  double Heave = 0, Roll = 0, Pitch = 0;
  // The line last assembled on a sounder port.
  std::string SounderLine;

  // What the view does when the position leaves the screen: with OffScreenShift the
  // centre moves to it at the same scale, otherwise the view widens to hold it, unless
  // MoveMap says the map is moved by hand.
  int16_t OffScreenShift = 0;
  int16_t MoveMap = 0;

  // The GPS stake-out target. An empty StakeName means no target; StakeCode is the
  // legend of the target's entity, 131 for a target without one. StakeRadius is the
  // alarm circle in metres. StakeActive is true while the stake-out window is open:
  // the view then keeps target and rover on the screen together.
  std::string StakeName;
  double StakeX = 0, StakeY = 0, StakeH = 0;
  int16_t StakeCode = 131;
  double StakeRadius = 1;
  int16_t StakeActive = 0;
};

}  // namespace tavik
