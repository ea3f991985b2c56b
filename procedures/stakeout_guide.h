// Stake-out arithmetic: the circle reading that points at a target, and the advice
// after each observation on how far to move along the line of sight and how far to
// turn. The advice words are written for the person reading the instrument, in the
// opposite sense to the person at the prism.
#pragma once

#include <string>

namespace tavik {

// The circle reading that points at the target from the station, and the plane
// distance to it.
struct TargetAim {
  double Distance = 0;
  double Circle = 0;  // TargetCircle, radians
};
TargetAim AimAtTarget(double stationE, double stationN, double targetE, double targetN,
                      double orientationConstant);

// An angle in radians as "D-MM-SS" with the formats "0-", "00-", "00".
std::string DmsLabel(double radians);

// The turn advice for T, the reading minus the target's, in radians: "向右 " and T for
// T strictly between 0 and pi, otherwise "向左 " and |T| as it stands, not reduced.
std::string TurnText(double T);

struct GuideAdvice {
  double E = 0, N = 0;      // where the prism is
  double Along = 0;         // L: metres beyond the target along the line of sight
  double Turn = 0;          // T: radians
  std::string DistanceText; // Label8
  std::string TurnText;     // Label9
};
// One observation of the prism: circle reading hz, zenith v, slope distance.
GuideAdvice Guide(double hz, double v, double slope, double stationE, double stationN,
                  double orientationConstant, double targetE, double targetN, double targetCircle);

}  // namespace tavik
