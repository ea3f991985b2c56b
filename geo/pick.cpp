#include "geo/pick.h"

#include <algorithm>
#include <cmath>

namespace tavik {

bool PickBoxTest(const View& view, double scaleDenominator, double X, double Y, double boxSize, double E,
                 double N) {
  const double s = boxSize;
  double e1 = 0, n1 = 0, e2 = 0, n2 = 0;
  PaperToWorld(view, scaleDenominator, X - 1 - s / 2, Y - 1 + s / 2, e1, n1);
  PaperToWorld(view, scaleDenominator, X - 1 + s / 2, Y - 1 - s / 2, e2, n2);
  return E >= e1 && E <= e2 && N >= n1 && N <= n2;
}

namespace {

bool Within(double v, double a, double b) { return v >= std::min(a, b) && v <= std::max(a, b); }

}  // namespace

bool SegmentMeetsLine(double E1, double N1, double H1, double E2, double N2, double H2, double E3, double N3,
                      double E4, double N4, FoundPosition& found) {
  const bool firstShared = (E1 == E3 && N1 == N3) || (E1 == E4 && N1 == N4);
  const bool secondShared = (E2 == E3 && N2 == N3) || (E2 == E4 && N2 == N4);
  if (firstShared || secondShared) {
    found = firstShared ? FoundPosition{E1, N1, H1} : FoundPosition{E2, N2, H2};
    return true;
  }
  const bool vertical1 = E1 == E2, vertical2 = E3 == E4;
  const bool horizontal1 = N1 == N2, horizontal2 = N3 == N4;
  double x = 0, y = 0;
  if (vertical1 && vertical2) return false;
  if (horizontal1 && horizontal2) return false;
  if (vertical1) {
    x = E1;
    y = horizontal2 ? N3 : N3 + (x - E3) * (N4 - N3) / (E4 - E3);
  } else if (vertical2) {
    x = E3;
    y = horizontal1 ? N1 : N1 + (x - E1) * (N2 - N1) / (E2 - E1);
  } else if (horizontal1) {
    y = N1;
    x = E3 + (y - N3) * (E4 - E3) / (N4 - N3);
  } else if (horizontal2) {
    y = N3;
    x = E1 + (y - N1) * (E2 - E1) / (N2 - N1);
  } else {
    const double m1 = (N2 - N1) / (E2 - E1), m2 = (N4 - N3) / (E4 - E3);
    if (m1 == m2) return false;
    x = ((m1 * E1 - m2 * E3) - N1 + N3) / (m1 - m2);
    y = (x - E1) * m1 + N1;
  }
  if (!std::isfinite(x) || !std::isfinite(y)) return false;
  if (!Within(x, E1, E2) || !Within(y, N1, N2) || !Within(x, E3, E4) || !Within(y, N3, N4)) return false;
  const double length = std::hypot(E2 - E1, N2 - N1);
  const double t = length > 0 ? std::hypot(x - E1, y - N1) / length : 0;
  found = FoundPosition{x, y, H1 + (H2 - H1) * t};
  return true;
}

bool BoxHitsChain(int32_t count, const double* E, const double* N, const double* H, double minE, double minN,
                  double maxE, double maxN, FoundPosition& found) {
  // Four sides, then the two diagonals.
  const double lines[6][4] = {
      {minE, minN, maxE, minN}, {maxE, minN, maxE, maxN}, {maxE, maxN, minE, maxN},
      {minE, maxN, minE, minN}, {minE, minN, maxE, maxN}, {minE, maxN, maxE, minN},
  };
  for (int32_t i = 0; i + 1 < count; ++i) {
    const double h1 = H ? H[i] : 0, h2 = H ? H[i + 1] : 0;
    for (const auto& l : lines) {
      if (SegmentMeetsLine(E[i], N[i], h1, E[i + 1], N[i + 1], h2, l[0], l[1], l[2], l[3], found)) return true;
    }
  }
  return false;
}

}  // namespace tavik
