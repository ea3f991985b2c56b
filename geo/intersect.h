// The intersection of two infinite lines, line 1 through (X1, Y1), (X2, Y2) and line 2
// through (X3, Y3), (X4, Y4). Vertical and horizontal lines are cases of their own so
// that the crossing takes the exact coordinate of such a line.
#pragma once

namespace tavik {

// `ok` is false for two vertical or two horizontal lines. Two sloped lines of exactly
// equal slope are made to meet: X1 is raised by 0.0001, written back to the caller,
// until the slopes differ.
void IntersectLines(double& X1, double Y1, double X2, double Y2, double X3, double Y3, double X4, double Y4,
                    double& E, double& N, bool& ok);

}  // namespace tavik
