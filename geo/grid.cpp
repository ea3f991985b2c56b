#include "geo/grid.h"

#include <cmath>

#include "geo/angles.h"
#include "geo/constants.h"

namespace tavik {
namespace {

// sin 1" times 10000.
constexpr double S = 0.048481368110953584;
constexpr double S2 = S * S, S3 = S2 * S, S4 = S3 * S, S5 = S4 * S, S6 = S5 * S;

}  // namespace

double DegToRad(double x) { return x / 180 * Pi; }

double DegToArcSeconds(double x) {
  const int16_t d = Int16Floor(x);
  const int16_t m = Int16Floor((x - d) * 60);
  const double s = ((x - d) * 60 - std::floor((x - d) * 60)) * 60;
  return d * 3600.0 + m * 60.0 + s;
}

void g2xy(const GpsDatumSettings& s, double Lon, double Lat, double& E, double& N) {
  const double a = s.EllipsoidA, e2 = s.EllipsoidE2, k = s.EllipsoidEP2;
  const double phi = DegToRad(Lat);
  const double sinPhi = std::sin(phi), cosPhi = std::cos(phi);
  const double nu = a / std::sqrt(1 - e2 * (sinPhi * sinPhi));
  const double p = DegToArcSeconds(Lon - s.CentralMeridian) * 0.0001;
  const double t = std::tan(phi);
  const double t2 = t * t;
  const double eta = k * (cosPhi * cosPhi);
  const double cos3 = cosPhi * cosPhi * cosPhi, cos5 = cos3 * cosPhi * cosPhi;
  const double p2 = p * p, p3 = p2 * p, p4 = p3 * p, p5 = p4 * p, p6 = p5 * p;

  // Easting.
  const double iv = nu * S * cosPhi;
  const double v = S3 * (nu / 6) * cos3 * (1 - t2 + eta);
  const double w = t2 * t2 + (5 - 18 * t2) + 14 * eta - 58 * eta * t2;
  const double vi = cos5 * (nu / 120) * S5 * w;
  E = (p3 * v + iv * p + p5 * vi) * 0.9999 + 250000 - 0.0009;

  // Meridian arc, its coefficients in the second eccentricity squared.
  const double k2 = k * k, k3 = k2 * k, k4 = k3 * k;
  const double A = k2 * 45 / 64 + (1 - 3.0 / 4 * k) - k3 * 175 / 256 + k4 * 11025 / 16384;
  const double B = 3.0 / 4 * k - k2 * 15 / 16 + k3 * 525 / 512 - k4 * 2205 / 2048;
  const double C = k2 * 15 / 64 - k3 * 105 / 256 + k4 * 2205 / 4096;
  const double D = k3 * 35 / 512 - k4 * 315 / 2048;
  const double F = k4 * 315 / 16834;
  const double sin0 = std::sin(0.0);
  const double arc = A * phi - (std::sin(2 * phi) - sin0) * B / 2 + (std::sin(4 * phi) - sin0) * C / 4 -
                     (std::sin(6 * phi) - sin0) * D / 6 + (std::sin(8 * phi) - sin0) * F / 8;
  const double i = std::sqrt(1 + k) * a * arc;

  // Northing.
  const double ii = S2 * (nu / 2) * sinPhi * cosPhi;
  const double iii = S4 * (nu / 24) * sinPhi * cos3 * (5 - t2 + 9 * eta + 4 * eta * eta);
  const double w2 = t2 * t2 + (61 - 58 * t2) + 270 * eta - 330 * eta * t2;
  const double vii = sinPhi * (S6 * nu / 720) * cos5 * w2;
  const double falseNorthing = 0;
  N = (p4 * iii + (p2 * ii + i) + p6 * vii + falseNorthing) * 0.9999;
}

namespace {

// One side of the search box: its two edges, their earlier values, the bounds found
// on the grid, and whether this coordinate has settled.
struct SearchAxis {
  double Min, Max;
  double SavedMin, SavedMax;
  double Lower = 0, Upper = 0;
  bool Settled = false;
  double Result = 0;
};

// Lower bound from the two grid values g1, g2 of the box's low edge: returns false
// when the target lies below both, after putting the edge back where it was.
bool ChooseLower(SearchAxis& ax, double target, double g1, double g2) {
  if (target > g1 && target > g2) {
    ax.Lower = g1 > g2 ? g1 : g2;
  } else if ((target > g1 && target < g2) || (target < g1 && target > g2)) {
    ax.Lower = g1 < g2 ? g1 : g2;
  } else if (target < g1 && target < g2) {
    ax.Min = ax.SavedMin;  // the last halving overshot
    return false;
  }
  return true;
}

bool ChooseUpper(SearchAxis& ax, double target, double g1, double g2) {
  if (target < g1 && target < g2) {
    ax.Upper = g1 < g2 ? g1 : g2;
  } else if ((target > g1 && target < g2) || (target < g1 && target > g2)) {
    ax.Upper = g1 > g2 ? g1 : g2;
  } else if (target > g1 && target > g2) {
    ax.Max = ax.SavedMax;
    return false;
  }
  return true;
}

void Halve(SearchAxis& ax, double target) {
  if (ax.Settled) return;
  if (std::fabs(ax.Upper - target) < 0.0001) {
    ax.Settled = true;
    ax.Result = ax.Max;
  } else if (std::fabs(target - ax.Lower) < 0.0001) {
    ax.Settled = true;
    ax.Result = ax.Min;
  } else if (target - ax.Lower < ax.Upper - target) {
    ax.SavedMax = ax.Max;
    ax.Max = (ax.Min + ax.Max) / 2;
  } else {
    ax.SavedMin = ax.Min;
    ax.Min = (ax.Min + ax.Max) / 2;
  }
}

// The bisection settles each axis against one corner of the box, and by then the other
// axis may have moved a little, so the settled pair can miss the target by a few
// millimetres on the grid. Newton steps on g2xy itself, with its slopes taken over a
// small difference, close that gap until the pair returns to the target within
// 0.0001 m on both axes. False when they cannot.
bool PolishLonLat(const GpsDatumSettings& s, double E, double N, double& lon, double& lat) {
  constexpr double Tolerance = 0.0001, Delta = 1e-6;
  for (int step = 0; step <= 8; ++step) {
    double e = 0, n = 0;
    g2xy(s, lon, lat, e, n);
    const double dE = E - e, dN = N - n;
    if (std::fabs(dE) < Tolerance && std::fabs(dN) < Tolerance) return true;
    if (step == 8) break;
    double eLon = 0, nLon = 0, eLat = 0, nLat = 0;
    g2xy(s, lon + Delta, lat, eLon, nLon);
    g2xy(s, lon, lat + Delta, eLat, nLat);
    const double a = (eLon - e) / Delta, b = (eLat - e) / Delta;
    const double c = (nLon - n) / Delta, d = (nLat - n) / Delta;
    const double det = a * d - b * c;
    if (!std::isfinite(det) || det == 0) return false;
    lon += (d * dE - b * dN) / det;
    lat += (a * dN - c * dE) / det;
  }
  return false;
}

}  // namespace

void XyToLonLat(const GpsDatumSettings& s, double E, double N, double& Lon, double& Lat, bool& Failed) {
  Failed = false;
  SearchAxis lon{119.137, 125.7, 119.137, 125.7};
  SearchAxis lat{19.33, 28.67, 19.33, 28.67};
  double e1 = 0, e2 = 0, n1 = 0, n2 = 0;
  for (int round = 0; !(lon.Settled && lat.Settled); ++round) {
    if (round == XyToLonLatMaxRounds || !std::isfinite(E) || !std::isfinite(N)) {
      Failed = true;
      return;
    }
    // Longitude: the western corners give the lower bound, the eastern the upper.
    g2xy(s, lon.Min, lat.Max, e1, n1);
    g2xy(s, lon.Min, lat.Min, e2, n2);
    if (ChooseLower(lon, E, e1, e2)) {
      g2xy(s, lon.Max, lat.Max, e1, n1);
      g2xy(s, lon.Max, lat.Min, e2, n2);
      if (ChooseUpper(lon, E, e1, e2)) Halve(lon, E);
    }
    // Latitude: the southern corners give the lower bound, the northern the upper.
    g2xy(s, lon.Min, lat.Min, e1, n1);
    g2xy(s, lon.Max, lat.Min, e2, n2);
    if (ChooseLower(lat, N, n1, n2)) {
      g2xy(s, lon.Min, lat.Max, e1, n1);
      g2xy(s, lon.Max, lat.Max, e2, n2);
      if (ChooseUpper(lat, N, n1, n2)) Halve(lat, N);
    }
  }
  double lonResult = lon.Result, latResult = lat.Result;
  if (!PolishLonLat(s, E, N, lonResult, latResult)) {
    Failed = true;
    return;
  }
  Lon = lonResult;
  Lat = latResult;
}

}  // namespace tavik
