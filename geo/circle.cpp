#include "geo/circle.h"

#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "geo/constants.h"

namespace tavik {

void CircleCentre3(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc) {
  const double a1 = 2 * E1 - 2 * E2, b1 = 2 * N1 - 2 * N2;
  const double c1 = (N1 * N1 - N2 * N2) + (E1 * E1 - E2 * E2);
  const double a2 = 2 * E2 - 2 * E3, b2 = 2 * N2 - 2 * N3;
  const double c2 = (N2 * N2 - N3 * N3) + (E2 * E2 - E3 * E3);
  Nc = (a2 * c1 - a1 * c2) / (a2 * b1 - a1 * b2);
  Ec = (c1 - Nc * b1) / a1;
}

double Cross3(double E1, double N1, double E2, double N2, double E3, double N3) {
  return (N3 - N2) * (E2 - E1) - (N2 - N1) * (E3 - E2);
}

void SeparationNudge(double& E1, double& N1, double& E2, double& N2, double& E3, double& N3) {
  if (E1 == E2) E2 = E2 + 0.0001;
  if (E2 == E3) E3 = E3 + 0.0001;
  if (E1 == E3) E3 = E3 + 0.0001;
  if (N1 == N2) N2 = N2 + 0.0001;
  if (N2 == N3) N3 = N3 + 0.0001;
  if (N1 == N3) N3 = N3 + 0.0001;
}

void CentreAzimuth(double Ec, double Nc, double E, double N, double& azimuth) {
  const double dE = E - Ec, dN = N - Nc;
  if (dE > 0) azimuth = Pi / 2 - std::atan(dN / dE);
  if (dE < 0) azimuth = ThreePi / 2 - std::atan(dN / dE);
}

namespace {

// One subtraction or addition of a turn.
double IntoTurn(double a) {
  if (a > TwoPi) return a - TwoPi;
  if (a < 0) return a + TwoPi;
  return a;
}

}  // namespace

// The common start of the drawn and the halved arc: refuse three collinear points with
// the message, keep the points apart (in the caller's copies), find the centre and the
// azimuths of the two ends seen from it.
static bool ArcFrame(ui::Dialogs& dialogs, double& E1, double& N1, double& E2, double& N2, double& E3, double& N3,
                     double& c, double& Ec, double& Nc, double& az1, double& az3) {
  c = Cross3(E1, N1, E2, N2, E3, N3);
  if (c == 0) {
    dialogs.MsgBox("錯誤:三點共線.");
    return false;
  }
  SeparationNudge(E1, N1, E2, N2, E3, N3);
  Ec = 0;
  Nc = 0;
  CircleCentre3(E1, N1, E2, N2, E3, N3, Ec, Nc);
  az1 = 0;
  az3 = 0;
  CentreAzimuth(Ec, Nc, E1, N1, az1);
  CentreAzimuth(Ec, Nc, E3, N3, az3);
  return true;
}

bool ArcMidPoint(ui::Dialogs& dialogs, int16_t mapType, double E1, double N1, double H1, double E2, double N2,
                 double E3, double N3, double H3, double& Em, double& Nm, double& Hm) {
  double c = 0, Ec = 0, Nc = 0, a1 = 0, a3 = 0;
  if (!ArcFrame(dialogs, E1, N1, E2, N2, E3, N3, c, Ec, Nc, a1, a3)) return false;
  if (c > 0) std::swap(a1, a3);
  if (a3 < a1) a3 += TwoPi;
  const double a = IntoTurn((a1 + a3) / 2);
  const double radius = std::sqrt((E3 - Ec) * (E3 - Ec) + (N3 - Nc) * (N3 - Nc));
  Em = Ec + radius * std::sin(a);
  Nm = Nc + radius * std::cos(a);
  if (mapType == 1) {
    if (H1 > 0 && H3 > 0) {
      Hm = (H1 + H3) / 2;
    } else if (H1 > 0) {
      Hm = H1;
    } else if (H3 > 0) {
      Hm = H3;
    }
  }
  return true;
}

bool DrawArc3(ui::Surface& paper, ui::Dialogs& dialogs, const View& view, double scaleDenominator, double E1,
              double N1, double E2, double N2, double E3, double N3, double& lengthPixels) {
  double c = 0, Ec = 0, Nc = 0, az1 = 0, az3 = 0;
  if (!ArcFrame(dialogs, E1, N1, E2, N2, E3, N3, c, Ec, Nc, az1, az3)) return false;
  // The surface counts counterclockwise from +E: 5π/2 - azimuth.
  double a1 = IntoTurn(Pi * 5 / 2 - az1), a2 = IntoTurn(Pi * 5 / 2 - az3);
  if (c < 0) std::swap(a1, a2);
  float cx = 0, cy = 0, px = 0, py = 0;
  WorldToPaper(view, scaleDenominator, Ec, Nc, cx, cy);
  WorldToPaper(view, scaleDenominator, E1, N1, px, py);
  const double r = std::sqrt(static_cast<double>(px - cx) * (px - cx) + static_cast<double>(py - cy) * (py - cy));
  if (a1 > a2) {
    paper.Arc(cx, cy, static_cast<float>(r), a1, TwoPi);
    paper.Arc(cx, cy, static_cast<float>(r), 0, a2);
    lengthPixels = (TwoPi - a1) * r + r * a2;
  } else {
    paper.Arc(cx, cy, static_cast<float>(r), a1, a2);
    lengthPixels = (a2 - a1) * r;
  }
  return true;
}

// No surveyed circle comes near this many vertices (a radius of some 500 km); the
// bound keeps a damaged radius from asking for all the memory there is.
constexpr int32_t MaxCircleSteps = 100000;

int32_t CircleSteps(double radius) {
  if (!std::isfinite(radius)) return 36;
  const double n = num::Int(radius / 30) * 6 + 18;
  if (n < 36) return 36;
  if (n > MaxCircleSteps) return MaxCircleSteps;
  return static_cast<int32_t>(n);
}

void SampleCircle(double Ec, double Nc, double radius, std::vector<double>& E, std::vector<double>& N) {
  const int32_t n = CircleSteps(radius);
  const double step = TwoPi / n;
  E.assign(n + 1, 0);
  N.assign(n + 1, 0);
  for (int32_t i = 0; i < n; ++i) {
    E[i] = Ec + radius * std::sin(i * step);
    N[i] = Nc + radius * std::cos(i * step);
  }
  E[n] = E[0];
  N[n] = N[0];
}

void SampleArc3(double E1, double N1, double E2, double N2, double E3, double N3, std::vector<double>& E,
                std::vector<double>& N) {
  const double c = Cross3(E1, N1, E2, N2, E3, N3);
  if (c == 0) return;
  double Ec = 0, Nc = 0;
  // Sampled arcs are taken as they stand, with no nudge: when points 1 and 2 share
  // their E the division has nothing to divide by, and such an arc samples to nothing.
  CircleCentre3(E1, N1, E2, N2, E3, N3, Ec, Nc);
  if (!std::isfinite(Ec) || !std::isfinite(Nc)) return;
  const double radius = std::sqrt((E2 - Ec) * (E2 - Ec) + (N2 - Nc) * (N2 - Nc));
  double a1 = 0, a3 = 0;
  CentreAzimuth(Ec, Nc, E1, N1, a1);
  CentreAzimuth(Ec, Nc, E3, N3, a3);
  a1 = IntoTurn(a1);
  a3 = IntoTurn(a3);
  if (c > 0) std::swap(a1, a3);
  if (a1 > a3) a3 += TwoPi;
  const double step = TwoPi / CircleSteps(radius);
  const double steps = num::Int((a3 - a1) / step);
  // A centre that the division left undefined gives no arc rather than a wild size.
  if (!std::isfinite(steps) || steps < 0 || steps > MaxCircleSteps) return;
  const auto m = static_cast<std::size_t>(steps);
  E.assign(m + 1, 0);
  N.assign(m + 1, 0);
  for (std::size_t i = 0; i < m; ++i) {
    E[i] = Ec + radius * std::sin(a1 + i * step);
    N[i] = Nc + radius * std::cos(a1 + i * step);
  }
  E[m] = Ec + radius * std::sin(a3);
  N[m] = Nc + radius * std::cos(a3);
}

}  // namespace tavik
