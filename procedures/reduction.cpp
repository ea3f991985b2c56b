#include "procedures/reduction.h"

#include <cmath>

#include "core/numbers.h"
#include "geo/angles.h"
#include "geo/constants.h"

namespace tavik {

double ElevationOf(double zenith) { return zenith < Pi ? Pi / 2 - zenith : zenith - ThreePi / 2; }

void FaceAndOrient(double& hz, double& v, double orientationConstant) {
  if (v < Pi) {
    v = Pi / 2 - v;
  } else {
    v = v - ThreePi / 2;
    hz = hz > Pi ? hz - Pi : hz + Pi;
  }
  hz = OrientReading(hz, orientationConstant);
}

double OrientReading(double hz, double orientationConstant) {
  double a = hz + orientationConstant;
  if (TwoPi < a) a -= TwoPi;
  return a;
}

void PolarPoint(double stationE, double stationN, double slope, double azimuth, double elevation,
                double& E, double& N) {
  E = stationE + slope * std::cos(elevation) * std::sin(azimuth);
  N = stationN + slope * std::cos(elevation) * std::cos(azimuth);
  if (E == stationE) E += 0.0001;
  if (N == stationN) N += 0.0001;
}

double PairAzimuthNoNudge(double dE, double dN) {
  const double a = std::atan(dN / dE);
  return dE > 0 ? Pi / 2 - a : ThreePi / 2 - a;
}

double PairAzimuth(double dE, double dN) {
  if (dE == 0) dE = 0.0001;
  if (dN == 0) dN = 0.0001;
  return PairAzimuthNoNudge(dE, dN);
}

int32_t TurnedAnglePacked(int32_t hzRaw, double orientationConstant, double backsightAzimuth) {
  double a = PackedToRadians(hzRaw) + orientationConstant - backsightAzimuth;
  if (TwoPi < a) a -= TwoPi;
  if (a < 0) a += TwoPi;
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(a, d, m, s);
  return num::CLng(d * 10000.0 + m * 100.0 + s);
}

}  // namespace tavik
