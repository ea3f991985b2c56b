#include "procedures/stakeout_guide.h"

#include <cmath>

#include "core/numbers.h"
#include "geo/angles.h"
#include "geo/constants.h"
#include "procedures/reduction.h"

namespace tavik {
namespace {
double PlaneDistance(double e1, double n1, double e2, double n2) {
  return std::sqrt((e2 - e1) * (e2 - e1) + (n2 - n1) * (n2 - n1));
}
}  // namespace

TargetAim AimAtTarget(double stationE, double stationN, double targetE, double targetN,
                      double orientationConstant) {
  TargetAim aim;
  aim.Distance = PlaneDistance(stationE, stationN, targetE, targetN);
  const double azimuth = PairAzimuthNoNudge(targetE - stationE, targetN - stationN);
  double c = azimuth - orientationConstant;
  if (c < 0) c += TwoPi;
  if (TwoPi < c) c -= TwoPi;
  aim.Circle = c;
  return aim;
}

std::string DmsLabel(double radians) {
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(radians, d, m, s);
  return num::Format(d, "0-") + num::Format(m, "00-") + num::Format(s, "00");
}

GuideAdvice Guide(double hz, double v, double slope, double stationE, double stationN,
                  double orientationConstant, double targetE, double targetN, double targetCircle) {
  GuideAdvice g;
  hz = OrientReading(hz, orientationConstant);
  v = ElevationOf(v);
  PolarPoint(stationE, stationN, slope, hz, v, g.E, g.N);
  g.Along = PlaneDistance(stationE, stationN, g.E, g.N) - PlaneDistance(stationE, stationN, targetE, targetN);
  g.DistanceText = (g.Along > 0 ? "向前" : "後退") + num::Format(g.Along, "0.000m");
  double t = hz - orientationConstant + TwoPi - targetCircle;
  if (TwoPi < t) t -= TwoPi;
  g.Turn = t;
  g.TurnText = TurnText(t);
  return g;
}

std::string TurnText(double T) {
  return T > 0 && T < Pi ? "向右 " + DmsLabel(T) : "向左 " + DmsLabel(std::fabs(T));
}

}  // namespace tavik
