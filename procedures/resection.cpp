#include "procedures/resection.h"

#include <cmath>

#include "core/numbers.h"
#include "geo/angles.h"
#include "geo/constants.h"
#include "geo/azimuth.h"
#include "procedures/reduction.h"

namespace tavik {
namespace {

// Angle of the triangle at the corner between sides `side` and `d`, by the half-angle
// rule: t = sin(A/2). False when the sides make no triangle or a side is zero, where
// the arithmetic has no answer.
bool HalfAngle(double side, double d, double s, double& angle) {
  const double denominator = side * d;
  if (denominator == 0) return false;
  const double q = ((s - side) * (s - d)) / denominator;
  if (!(q >= 0)) return false;
  const double t = std::sqrt(q);
  if (!(t < 1)) return false;
  angle = 2 * std::atan(t / std::sqrt(1 - t * t));
  return true;
}

}  // namespace

ResectResult SolveResection(ResectSlot& p1, ResectSlot& p2, int16_t mapType, double instrumentHeight) {
  ResectResult r;
  p1.V = ElevationOf(p1.V);
  p2.V = ElevationOf(p2.V);
  if (mapType == 1) {
    if (p1.H == 0 && p2.H == 0) {
      r.BothHeightsZero = true;
      r.StationH = 0;
    } else {
      r.H1 = p1.H + p1.Target - p1.Slope * std::sin(p1.V) - instrumentHeight;
      r.H2 = p2.H + p2.Target - p2.Slope * std::sin(p2.V) - instrumentHeight;
      r.StationH = (r.H1 + r.H2) / 2;
    }
  }
  AzimuthDistance(p1.E, p1.N, p2.E, p2.N, r.D, r.Az);
  if (r.D == 0) {
    r.outcome = ResectResult::Outcome::SameSpot;
    return r;
  }
  if (p1.Slope + p2.Slope < r.D) {
    r.outcome = ResectResult::Outcome::SlopeSumShort;
    return r;
  }
  if (r.Az < 0) r.Az += TwoPi;
  if (p2.Hz < p1.Hz) p2.Hz += TwoPi;
  r.G = p2.Hz - p1.Hz;
  const double hd1 = p1.Slope * std::cos(p1.V);
  const double hd2 = p2.Slope * std::cos(p2.V);
  if (hd1 == 0 || hd2 == 0) {
    r.outcome = ResectResult::Outcome::ZeroDistance;
    return r;
  }
  const double s = (hd1 + hd2 + r.D) / 2;
  if (!HalfAngle(hd1, r.D, s, r.A) || !HalfAngle(hd2, r.D, s, r.B)) {
    r.outcome = ResectResult::Outcome::NoTriangle;
    return r;
  }
  r.Closure = Pi - (r.A + r.G + r.B);
  const double az1 = r.Az + r.A;
  r.E1 = p1.E + hd1 * std::sin(az1);
  r.N1 = p1.N + hd1 * std::cos(az1);
  const double az2 = r.Az + Pi - r.B;
  r.E2 = p2.E + hd2 * std::sin(az2);
  r.N2 = p2.N + hd2 * std::cos(az2);
  r.CoordinateClosure = std::sqrt((r.N1 - r.N2) * (r.N1 - r.N2) + (r.E1 - r.E2) * (r.E1 - r.E2));
  r.StationE = (r.E1 + r.E2) / 2;
  r.StationN = (r.N1 + r.N2) / 2;
  const double toPoint1 = PairAzimuth(p1.E - r.StationE, p1.N - r.StationN);
  r.BacksightAzimuth = toPoint1;
  r.OrientationConstant = toPoint1 - p1.Hz;
  if (r.OrientationConstant < 0) r.OrientationConstant += TwoPi;
  return r;
}

std::string ClosureText(double radians) {
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(radians, d, m, s);
  return std::to_string(d) + "-" + num::Format(m, "00") + "-" + num::Format(s, "00.0");
}

}  // namespace tavik
