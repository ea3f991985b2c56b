#include "view/arc_geometry.h"

#include <cmath>
#include <utility>

#include "geo/circle.h"
#include "geo/constants.h"

namespace tavik::view {
namespace {

double IntoTurn(double a) {
  if (a > TwoPi) return a - TwoPi;
  if (a < 0) return a + TwoPi;
  return a;
}

}  // namespace

double ArcGeometry::Sweep() const {
  double s = a2 - a1;
  if (s < 0) s += TwoPi;
  return s;
}

bool ArcThrough(double E1, double N1, double E2, double N2, double E3, double N3, ArcGeometry& arc) {
  const double c = Cross3(E1, N1, E2, N2, E3, N3);
  if (c == 0 || !std::isfinite(c)) return false;
  SeparationNudge(E1, N1, E2, N2, E3, N3);
  CircleCentre3(E1, N1, E2, N2, E3, N3, arc.Ec, arc.Nc);
  double az1 = 0, az3 = 0;
  CentreAzimuth(arc.Ec, arc.Nc, E1, N1, az1);
  CentreAzimuth(arc.Ec, arc.Nc, E3, N3, az3);
  arc.a1 = IntoTurn(5 * Pi / 2 - az1);
  arc.a2 = IntoTurn(5 * Pi / 2 - az3);
  if (c < 0) std::swap(arc.a1, arc.a2);
  arc.radius = std::hypot(E1 - arc.Ec, N1 - arc.Nc);
  return std::isfinite(arc.Ec) && std::isfinite(arc.Nc) && std::isfinite(arc.radius);
}

bool CircleThrough(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc,
                   double& radius) {
  const double e1 = E1, n1 = N1;
  SeparationNudge(E1, N1, E2, N2, E3, N3);
  CircleCentre3(E1, N1, E2, N2, E3, N3, Ec, Nc);
  radius = std::hypot(e1 - Ec, n1 - Nc);
  return std::isfinite(Ec) && std::isfinite(Nc) && std::isfinite(radius);
}

}  // namespace tavik::view
