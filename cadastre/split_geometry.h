// The geometry of the land split: cutting a parcel with a vertical line and measuring
// the piece on one side, turning a parcel about a point, and sliding the cut until the
// piece just exceeds the wanted area.
//
// The search is brute force on purpose: the parcel is turned so that the wanted cut
// direction is vertical (north), then a vertical line is stepped across it with steps
// of 1 m, 1 cm, 0.1 mm and 1 micrometre, the area on one side measured at every step.
// The result is the first position whose area exceeds the target, so a cut always
// comes out just above what was asked. A cut that meets the boundary more than twice
// (at a concave notch) measures 0, so a scan passes over such a position.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "core/document.h"

namespace tavik::cadastre {

// Boundary edges, one row per edge: E1, N1, E2, N2.
struct Edges {
  std::array<std::vector<double>, 4> v;
  int32_t Count() const { return static_cast<int32_t>(v[0].size()); }
  void Add(double E1, double N1, double E2, double N2) {
    v[0].push_back(E1), v[1].push_back(N1), v[2].push_back(E2), v[3].push_back(N2);
  }
  void Clear() {
    for (auto& c : v) c.clear();
  }
};

// The first `count` rows of the document's SplitBoundaryEdges (fewer when the table has
// fewer rows).
Edges EdgesOf(const Document& doc, int32_t count);

// What one evaluation of a cut leaves behind.
struct Cut {
  Edges SplitPiece;  // the edges of the piece on the measured side; after chaining, end to end
  int32_t SplitPieceCount = 0;
  int16_t SplitMultiCross = kFalse;  // the cut met the boundary more than twice
  double A1E = 0, A1N = 0, A2E = 0, A2N = 0;  // where the cut meets the boundary
};

struct Box {
  double MinE = 0, MinN = 0, MaxE = 0, MaxN = 0;
};

// Bounding box of both ends of all edges; the start values are 9999999 and -9999999,
// so an empty array gives an inverted box.
Box MinMaxEdges(const Edges& e);

// Cuts the parcel at the vertical line E = E1 (from (E1, N1) to (E2, N2)) and measures
// the piece west of it. An edge end lying on the line counts as a crossing. A1 and A2
// become the first and second crossings. More than two crossings: SplitMultiCross is
// set and the area is 0 at once. Fewer than three piece edges: area 0.
double AreaLeftOf(Cut& cut, const Edges& e, double E1, double N1, double E2, double N2);
// The same keeping what lies east of the line. Here a crossing needs the two ends
// strictly on either side, so an end lying on the line is not a crossing.
double AreaRightOf(Cut& cut, const Edges& e, double E1, double N1, double E2, double N2);

// Puts the piece's edges in boundary order, end to end, comparing ends exactly. A
// chain that does not close (only a damaged parcel gives one) stops the walk and
// leaves the piece as it was; the return is then false.
bool ChainPiece(Cut& cut);

// (E, N) turned about (CE, CN): the point at the same distance at azimuth
// (azimuth from C to P) + angle. A negative angle turns anticlockwise.
void TurnPoint(double CE, double CN, double angle, double& E, double& N);
// Every end of every edge turned the same way, into `out`.
void TurnEdges(const Edges& in, double CE, double CN, double angle, Edges& out);
// A1, A2 and the piece turned the same way.
void TurnCut(Cut& cut, double CE, double CN, double angle);

// The slide: from the box's MinE upward with AreaLeftOf, or (`fromRight`) from MaxE
// downward with AreaRightOf, in four stages of 1, 0.01, 0.0001 and 0.000001. A stage
// ends at the first area strictly above `target` (stepping back, except in the last
// stage) or when the line leaves the box (no step back). `passMultiCross`: in the first
// stage a position with more than two crossings is not looked at. Returns the area of
// the last evaluation; `cut` holds its crossings and piece.
double ScanSplit(Cut& cut, const Edges& turned, double target, bool fromRight, bool passMultiCross = false);

// The pivot turn about Q: the ray from Q at azimuth A + t (positive sense, AreaLeftOf)
// or A - t (negative sense, AreaRightOf) is turned through four stages of 1 degree, 1
// minute, 1 second and 0.01 second until the piece exceeds the target; in the negative
// sense the first stage already stops at an equal area. t ends one step back from the
// last evaluation, and the cut is turned back with that t. Returns the area of the last
// evaluation; `cut` is in true coordinates.
double PivotSplit(Cut& cut, const Edges& edges, double QE, double QN, double A, bool positive, double target);

}  // namespace tavik::cadastre
