#include "geo/azimuth.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "geo/constants.h"

namespace tavik {
namespace {

// Steps 2 to 7 of the bearing rule; `distance` comes in already computed and is
// replaced by the plain axis distance on the axis cases.
void AxisOrArctan(double dE, double dN, double& distance, double& azimuth) {
  if (distance == 0) {
    azimuth = 0;
  } else if (dE == 0 && dN > 0) {
    distance = std::fabs(dN);
    azimuth = 0;
  } else if (dE == 0 && dN < 0) {
    distance = std::fabs(dN);
    azimuth = Pi;
  } else if (dE > 0 && dN == 0) {
    distance = std::fabs(dE);
    azimuth = Pi / 2;
  } else if (dE < 0 && dN == 0) {
    distance = std::fabs(dE);
    azimuth = ThreePi / 2;
  } else if (dE > 0) {
    azimuth = Pi / 2 - std::atan(dN / dE);
  } else {
    azimuth = ThreePi / 2 - std::atan(dN / dE);
  }
}

}  // namespace

void AzimuthDistance(double E1, double N1, double E2, double N2, double& distance, double& azimuth) {
  const double dE = E2 - E1, dN = N2 - N1;
  distance = std::sqrt(dE * dE + dN * dN);
  AxisOrArctan(dE, dN, distance, azimuth);
}

void AzimuthDistance3(double E1, double N1, double H1, double E2, double N2, double H2, double& distance,
                      double& azimuth) {
  const double dE = E2 - E1, dN = N2 - N1, dH = H2 - H1;
  distance = std::sqrt(dE * dE + dN * dN + dH * dH);
  if (dE == 0 && dN == 0 && distance != 0) {
    // Straight up or down: no horizontal direction, and the arctangent would divide
    // nothing by nothing. Azimuth 0, as for two equal points.
    azimuth = 0;
    return;
  }
  AxisOrArctan(dE, dN, distance, azimuth);
}

void AzimuthDistanceVar(std::optional<double> E1, std::optional<double> N1, std::optional<double> E2,
                        std::optional<double> N2, double& distance, double& azimuth) {
  AzimuthDistance(E1.value_or(0), N1.value_or(0), E2.value_or(0), N2.value_or(0), distance, azimuth);
}

void SortPairs(std::vector<double> (&pairs)[2], int32_t count) {
  const int32_t n = std::min<int32_t>(count, static_cast<int32_t>(std::min(pairs[0].size(), pairs[1].size())));
  for (int32_t p = 0; p < n; ++p) {
    for (int32_t i = 0; i + 1 < n - p; ++i) {
      if (pairs[0][i] > pairs[0][i + 1]) {
        std::swap(pairs[0][i], pairs[0][i + 1]);
        std::swap(pairs[1][i], pairs[1][i + 1]);
      }
    }
  }
}

namespace {

// Steps 1, 2, 4 and 5 of the foot rule; `along` receives cos(δ) * L and `length` L2
// for the height step.
bool FootCommon(double PE, double PN, double& E1, double& N1, double& E2, double& N2, Foot& foot,
                double& along, double& length) {
  double a2 = 0, a = 0, l = 0;
  AzimuthDistance(E1, N1, E2, N2, length, a2);
  AzimuthDistance(E1, N1, PE, PN, l, a);
  along = std::cos(a2 - a) * l;
  foot.FootE = along * std::sin(a2) + E1;
  foot.FootN = along * std::cos(a2) + N1;
  if (E1 > E2) std::swap(E1, E2);
  if (N1 > N2) std::swap(N1, N2);
  return foot.FootE >= E1 && foot.FootE <= E2 && foot.FootN >= N1 && foot.FootN <= N2;
}

}  // namespace

bool FootOnSegment(double PE, double PN, double& E1, double& N1, double& E2, double& N2, Foot& foot) {
  double along = 0, length = 0;
  return FootCommon(PE, PN, E1, N1, E2, N2, foot, along, length);
}

bool FootOnSegment3(double PE, double PN, double& E1, double& N1, double H1, double& E2, double& N2,
                    double H2, int16_t mapType, Foot& foot) {
  double along = 0, length = 0;
  const bool on = FootCommon(PE, PN, E1, N1, E2, N2, foot, along, length);
  if (mapType == 1) {
    if (H1 != 0 && H2 != 0) {
      foot.FootH = H1 != H2 ? H1 + (H2 - H1) * along / length : H1;
    } else if (H1 != 0) {
      foot.FootH = H1;
    } else if (H2 != 0) {
      foot.FootH = H2;
    } else {
      foot.FootH = 0;
    }
  }
  return on;
}

}  // namespace tavik
