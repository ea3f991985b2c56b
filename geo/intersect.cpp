#include "geo/intersect.h"

#include <cmath>

namespace tavik {

void IntersectLines(double& X1, double Y1, double X2, double Y2, double X3, double Y3, double X4, double Y4,
                    double& E, double& N, bool& ok) {
  ok = false;
  const bool vertical1 = X2 == X1, horizontal1 = Y2 == Y1;
  const bool vertical2 = X4 == X3, horizontal2 = Y4 == Y3;
  const double m2 = vertical2 ? 0 : (Y4 - Y3) / (X4 - X3);
  double x = 0, y = 0;
  if (vertical1) {
    if (vertical2) return;
    if (horizontal2) {
      x = X1;
      y = Y3;
    } else {
      x = X1;
      y = (X1 - X3) * m2 + Y3;
    }
  } else if (horizontal1) {
    if (horizontal2) return;
    if (vertical2) {
      x = X3;
      y = Y1;
    } else {
      x = X4 - (Y4 - Y1) / m2;
      y = Y1;
    }
  } else {
    double m1 = (Y2 - Y1) / (X2 - X1);
    if (vertical2) {
      x = X3;
      y = (X3 - X1) * m1 + Y1;
    } else if (horizontal2) {
      x = X2 - (Y2 - Y3) / m1;
      y = Y3;
    } else {
      // Parallel sloped lines are pushed apart in X1 until they meet somewhere. The
      // bound ends the loop where 0.0001 no longer changes X1 (a damaged coordinate).
      for (int round = 0; m1 == m2; ++round) {
        const double raised = X1 + 0.0001;
        if (raised == X1 || round == 100000) return;
        X1 = raised;
        m1 = (Y2 - Y1) / (X2 - X1);
      }
      if (X2 == X1) {
        // The push made line 1 vertical.
        x = X1;
        y = (X1 - X3) * m2 + Y3;
      } else {
        x = ((m1 * X1 - m2 * X3) - Y1 + Y3) / (m1 - m2);
        y = (x - X3) * m2 + Y3;
      }
    }
  }
  if (!std::isfinite(x) || !std::isfinite(y)) return;
  E = x;
  N = y;
  ok = true;
}

}  // namespace tavik
