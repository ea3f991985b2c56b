// Picking on the map: whether a point lies in a box of pixels round the pointer, and
// whether a chain of segments passes through a box in world coordinates.
#pragma once

#include <cstdint>

#include "core/view_state.h"

namespace tavik {

// Where the last chain test met the box: a shared end point, or the crossing with H
// taken along the chain's segment.
struct FoundPosition {
  double E = 0, N = 0, H = 0;
};

// True when (E, N) lies in the box of `boxSize` pixels round pixel (X, Y), bounds
// included. The box is offset one pixel up and left, as the pointer's hot spot is.
bool PickBoxTest(const View& view, double scaleDenominator, double X, double Y, double boxSize, double E,
                 double N);

// True when a segment of the chain (count vertices, E and N arrays, H optional) meets
// one of the box's four sides or two diagonals; `found` receives where.
bool BoxHitsChain(int32_t count, const double* E, const double* N, const double* H, double minE, double minN,
                  double maxE, double maxN, FoundPosition& found);

// The test of one chain segment (E1, N1, H1)-(E2, N2, H2) against a box line
// (E3, N3)-(E4, N4): equal end points first, then a true crossing.
bool SegmentMeetsLine(double E1, double N1, double H1, double E2, double N2, double H2, double E3, double N3,
                      double E4, double N4, FoundPosition& found);

}  // namespace tavik
