#include "cadastre/split_geometry.h"

#include <cmath>

#include "geo/area.h"
#include "geo/azimuth.h"
#include "geo/constants.h"
#include "geo/intersect.h"

namespace tavik::cadastre {

Edges EdgesOf(const Document& doc, int32_t count) {
  Edges e;
  const auto& d = doc.SplitBoundaryEdges;
  std::size_t n = count > 0 ? static_cast<std::size_t>(count) : 0;
  for (const auto& c : d) n = std::min(n, c.size());
  for (int k = 0; k < 4; ++k) e.v[k].assign(d[k].begin(), d[k].begin() + static_cast<std::ptrdiff_t>(n));
  return e;
}

Box MinMaxEdges(const Edges& e) {
  Box b{9999999, 9999999, -9999999, -9999999};
  for (int32_t i = 0; i < e.Count(); ++i) {
    for (int end = 0; end < 2; ++end) {
      const double E = e.v[2 * end][i], N = e.v[2 * end + 1][i];
      if (E < b.MinE) b.MinE = E;
      if (E > b.MaxE) b.MaxE = E;
      if (N < b.MinN) b.MinN = N;
      if (N > b.MaxN) b.MaxN = N;
    }
  }
  return b;
}

namespace {

// The shoelace sum over the first ends of the chained piece; 0 for fewer than three edges.
double PieceArea(Cut& cut) {
  ChainPiece(cut);
  if (cut.SplitPieceCount <= 2) return 0;
  return ShoelaceArea(cut.SplitPiece.v[0].data(), cut.SplitPiece.v[1].data(), cut.SplitPieceCount);
}

// One crossing of the cut: counted, and the first two become A1 and A2, the second also
// closing the piece along the cut. False when it was one too many.
bool TakeCrossing(Cut& cut, int& crossings, double E, double N) {
  if (++crossings > 2) {
    cut.SplitMultiCross = kTrue;
    cut.SplitPieceCount = cut.SplitPiece.Count();
    return false;
  }
  if (crossings == 1) {
    cut.A1E = E, cut.A1N = N;
  } else {
    cut.A2E = E, cut.A2N = N;
    cut.SplitPiece.Add(cut.A1E, cut.A1N, cut.A2E, cut.A2N);
  }
  return true;
}

}  // namespace

double AreaLeftOf(Cut& cut, const Edges& e, double E1, double N1, double E2, double N2) {
  cut.SplitMultiCross = kFalse;
  cut.SplitPiece.Clear();
  cut.SplitPieceCount = 0;
  int crossings = 0;
  const double x = E1;
  for (int32_t i = 0; i < e.Count(); ++i) {
    const double Ea = e.v[0][i], Na = e.v[1][i], Eb = e.v[2][i], Nb = e.v[3][i];
    if (Ea <= x && Eb <= x) {
      cut.SplitPiece.Add(Ea, Na, Eb, Nb);
    } else if ((Ea > x && Eb <= x) || (Eb > x && Ea <= x)) {
      double X1 = Ea, E = 0, N = 0;
      bool ok = false;
      IntersectLines(X1, Na, Eb, Nb, E1, N1, E2, N2, E, N, ok);
      if (!ok) continue;
      if (Ea <= x)
        cut.SplitPiece.Add(Ea, Na, E, N);
      else
        cut.SplitPiece.Add(Eb, Nb, E, N);
      // The part is added before the count is looked at, so a piece cut short by a
      // third crossing still holds it; the area is 0 all the same.
      if (!TakeCrossing(cut, crossings, E, N)) return 0;
    }
  }
  cut.SplitPieceCount = cut.SplitPiece.Count();
  return PieceArea(cut);
}

double AreaRightOf(Cut& cut, const Edges& e, double E1, double N1, double E2, double N2) {
  cut.SplitMultiCross = kFalse;
  cut.SplitPiece.Clear();
  cut.SplitPieceCount = 0;
  int crossings = 0;
  const double x = E1;
  for (int32_t i = 0; i < e.Count(); ++i) {
    const double Ea = e.v[0][i], Na = e.v[1][i], Eb = e.v[2][i], Nb = e.v[3][i];
    if (Ea >= x && Eb >= x) {
      cut.SplitPiece.Add(Ea, Na, Eb, Nb);
    } else if ((Ea > x && Eb < x) || (Eb > x && Ea < x)) {
      double X1 = Ea, E = 0, N = 0;
      bool ok = false;
      IntersectLines(X1, Na, Eb, Nb, E1, N1, E2, N2, E, N, ok);
      if (!ok) continue;
      if (Ea <= x)
        cut.SplitPiece.Add(Eb, Nb, E, N);
      else
        cut.SplitPiece.Add(Ea, Na, E, N);
      if (!TakeCrossing(cut, crossings, E, N)) return 0;
    }
  }
  cut.SplitPieceCount = cut.SplitPiece.Count();
  return PieceArea(cut);
}

bool ChainPiece(Cut& cut) {
  Edges& p = cut.SplitPiece;
  const int32_t m = cut.SplitPieceCount;
  if (m <= 0 || p.Count() < m) return m <= 0;
  std::vector<double> E{p.v[0][0]}, N{p.v[1][0]};
  E.reserve(static_cast<std::size_t>(m) + 1);
  N.reserve(static_cast<std::size_t>(m) + 1);
  double curE = p.v[2][0], curN = p.v[3][0];
  while (static_cast<int32_t>(E.size()) < m) {
    const double lastE = E.back(), lastN = N.back();
    bool found = false;
    for (int32_t j = 1; j < m && !found; ++j) {
      const double aE = p.v[0][j], aN = p.v[1][j], bE = p.v[2][j], bN = p.v[3][j];
      if (aE == curE && aN == curN && !(bE == lastE && bN == lastN)) {
        E.push_back(curE), N.push_back(curN);
        curE = bE, curN = bN;
        found = true;
      } else if (bE == curE && bN == curN && !(aE == lastE && aN == lastN)) {
        E.push_back(curE), N.push_back(curN);
        curE = aE, curN = aN;
        found = true;
      }
    }
    if (!found) return false;  // an open chain: no way on
  }
  E.push_back(E.front()), N.push_back(N.front());
  for (int32_t k = 0; k < m; ++k) {
    const auto i = static_cast<std::size_t>(k);
    p.v[0][i] = E[i], p.v[1][i] = N[i], p.v[2][i] = E[i + 1], p.v[3][i] = N[i + 1];
  }
  return true;
}

void TurnPoint(double CE, double CN, double angle, double& E, double& N) {
  double d = 0, a = 0;
  AzimuthDistance(CE, CN, E, N, d, a);
  E = std::sin(a + angle) * d + CE;
  N = std::cos(a + angle) * d + CN;
}

void TurnEdges(const Edges& in, double CE, double CN, double angle, Edges& out) {
  out = in;
  for (int32_t i = 0; i < out.Count(); ++i) {
    TurnPoint(CE, CN, angle, out.v[0][i], out.v[1][i]);
    TurnPoint(CE, CN, angle, out.v[2][i], out.v[3][i]);
  }
}

void TurnCut(Cut& cut, double CE, double CN, double angle) {
  TurnPoint(CE, CN, angle, cut.A1E, cut.A1N);
  TurnPoint(CE, CN, angle, cut.A2E, cut.A2N);
  Edges turned;
  TurnEdges(cut.SplitPiece, CE, CN, angle, turned);
  cut.SplitPiece = std::move(turned);
}

namespace {

// A stage cannot take more steps than this. Only a parcel of absurd coordinates (where
// a micrometre no longer moves the line) comes near it; a real one takes a few hundred.
constexpr long MaxStepsPerStage = 20000000;

}  // namespace

double ScanSplit(Cut& cut, const Edges& turned, double target, bool fromRight, bool passMultiCross) {
  const Box b = MinMaxEdges(turned);
  if (!std::isfinite(b.MinE) || !std::isfinite(b.MaxE) || !std::isfinite(b.MinN) || !std::isfinite(b.MaxN))
    return 0;
  static constexpr double steps[4] = {1.0, 0.01, 0.0001, 0.000001};
  const double dir = fromRight ? -1 : 1;
  double x = fromRight ? b.MaxE : b.MinE;
  double area = 0;
  for (int stage = 0; stage < 4; ++stage) {
    const double step = steps[stage] * dir;
    for (long n = 0; n < MaxStepsPerStage; ++n) {
      const double before = x;
      x += step;
      area = fromRight ? AreaRightOf(cut, turned, x, b.MinN, x, b.MaxN) : AreaLeftOf(cut, turned, x, b.MinN, x, b.MaxN);
      const bool look = !(passMultiCross && stage == 0 && cut.SplitMultiCross);
      if (look && area > target) {
        if (stage == 3) return area;
        x -= step;
        break;
      }
      if (fromRight ? x < b.MinE : x > b.MaxE) break;
      if (x == before) break;
    }
  }
  return area;
}

double PivotSplit(Cut& cut, const Edges& edges, double QE, double QN, double A, bool positive, double target) {
  // Degrees, minutes, seconds and hundredths of a second, in radians.
  static constexpr double steps[4] = {1.0 / 180 * Pi, 1.0 / 60 / 180 * Pi, 1.0 / 3600 / 180 * Pi,
                                      0.01 / 3600 / 180 * Pi};
  double t = 0, area = 0;
  Edges turned;
  for (int stage = 0; stage < 4; ++stage) {
    const double step = steps[stage];
    for (long n = 0; n < MaxStepsPerStage; ++n) {
      t += step;
      TurnEdges(edges, QE, QN, positive ? -(A + t) : -(A - t), turned);
      const Box b = MinMaxEdges(turned);
      area = positive ? AreaLeftOf(cut, turned, QE, b.MinN, QE, b.MaxN) : AreaRightOf(cut, turned, QE, b.MinN, QE, b.MaxN);
      const bool exceeded = (!positive && stage == 0) ? area >= target : area > target;
      if (exceeded) {
        t -= step;
        break;
      }
      if (t < -Pi || t > Pi) break;
    }
  }
  // The cut goes back with the t left after the last step back, one step short of the
  // t it was evaluated at.
  TurnCut(cut, QE, QN, positive ? A + t : A - t);
  return area;
}

}  // namespace tavik::cadastre
