// The field books read back from the text logs that travel with a map, for the office:
// the observation book (every total-station shot of the .OBS log, with its station and
// backsight, reduced to E, N and H, and the name the cadastral book .MAC gave it) and
// the stake-out book (each point recorded by the total-station stake-out in .STK and
// by the GPS stake-out in .GSTK, beside its target).
//
// Reading is forgiving: a line that is not a record of its log is passed over and
// counted, so a log cut by a power failure still gives every whole record.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/document.h"

namespace tavik::books {

struct Observation {
  int setup = 0;              // 1 for the first set-up of the log
  bool backsight = false;     // the set-up's reading on the backsight
  std::string station, backsightName, point;  // point: the backsight's or the .MAC name
  double stationE = 0, stationN = 0, stationH = 0, instrumentHeight = 0;
  int32_t hzRaw = 0, vRaw = 0;  // DDDMMSS as the instrument gave them
  double slope = 0, targetHeight = 0;
  std::string when;             // the log's date and time
  // Reduced with the set-up's orientation (the azimuth to the backsight less the
  // reading on it): the angle turned from the backsight, the azimuth, the horizontal
  // distance and the point.
  double turned = 0, azimuth = 0, horizontal = 0, E = 0, N = 0, H = 0;
  bool hasHeight = false;       // a map with heights and a target height given
};

struct ObservationBook {
  std::vector<Observation> rows;
  int skipped = 0;  // lines that were no record
};

// Reads the .OBS text and the .MAC text (both UTF-8). mapType 1 keeps heights.
ObservationBook ReadObservationBook(const std::string& obs, const std::string& mac, int16_t mapType);

struct Stake {
  bool gps = false;             // from .GSTK
  std::string name;
  double E = 0, N = 0, H = 0;   // the point reached
  bool hasTarget = false;       // the target's place is known
  double targetE = 0, targetN = 0;
  // Total station: the set-up and the shot.
  std::string station, backsightName, hz, v;  // angles as the log wrote them, d-mm-ss
  double slope = 0, targetHeight = 0, instrumentHeight = 0;
  bool hasShot = false;
  // GPS: the precision and the time.
  double sigmaE = 0, sigmaN = 0, sigmaH = 0;
  bool hasSigma = false;
  std::string when;
};

struct StakeBook {
  std::vector<Stake> rows;
  int skipped = 0;
};

// Reads the .STK and .GSTK texts. The target of a total-station stake is found in the
// document by its name (a live named point feature, else the survey point of that
// number); a GPS stake carries its own difference to the target.
StakeBook ReadStakeBook(const std::string& stk, const std::string& gstk, const Document& doc);

}  // namespace tavik::books
