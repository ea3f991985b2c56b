#include "view/screen_tables.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "geo/circle.h"
#include "view/arc_geometry.h"

namespace tavik {

namespace {

bool AnySampleOnScreen(const std::vector<double>& E, const std::vector<double>& N, const View& view) {
  for (std::size_t i = 0; i < E.size() && i < N.size(); ++i)
    if (view.InScreen(E[i], N[i])) return true;
  return false;
}

// The samples of an entity's arc or circle, as the screen test takes them; nothing for
// the other kinds.
void CurveSamples(const Entity& e, std::vector<double>& E, std::vector<double>& N) {
  E.clear();
  N.clear();
  switch (e.Kind) {
    case KindArc3:
      SampleArc3(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], E, N);
      break;
    case KindCircle3: {
      // The centre routine divides without looking; equal coordinates are pulled apart
      // first, as everywhere else a circle through three points is found.
      double x1 = e.X[0], y1 = e.Y[0], x2 = e.X[1], y2 = e.Y[1], x3 = e.X[2], y3 = e.Y[2];
      SeparationNudge(x1, y1, x2, y2, x3, y3);
      double ce = 0, cn = 0;
      CircleCentre3(x1, y1, x2, y2, x3, y3, ce, cn);
      double r = std::hypot(e.X[1] - ce, e.Y[1] - cn);
      if (std::isfinite(r)) SampleCircle(ce, cn, r, E, N);
      break;
    }
    case KindCircle2: {
      double r = std::hypot(e.X[1] - e.X[0], e.Y[1] - e.Y[0]);
      if (std::isfinite(r)) SampleCircle(e.X[0], e.Y[0], r, E, N);
      break;
    }
    default:
      break;
  }
}

// Where most rows lie: the 0.5th to the 99.5th centile on each axis, over at most 65536
// rows taken evenly, so that a few stray rows far off do not stretch the grid.
template <typename CoordOf>
Box MiddleExtent(int32_t rows, CoordOf coordOf) {
  std::vector<double> E, N;
  const int32_t step = std::max<int32_t>(1, rows / 65536);
  for (int32_t i = 0; i < rows; i += step) {
    double e = 0, n = 0;
    coordOf(i, e, n);
    if (std::isfinite(e) && std::isfinite(n)) E.push_back(e), N.push_back(n);
  }
  if (E.empty()) return {};
  auto centile = [](std::vector<double>& v, double q) {
    auto at = v.begin() + static_cast<std::ptrdiff_t>(q * static_cast<double>(v.size() - 1));
    std::nth_element(v.begin(), at, v.end());
    return *at;
  };
  return {centile(E, 0.005), centile(N, 0.005), centile(E, 0.995), centile(N, 0.995)};
}

uint64_t Mix(uint64_t h, double v) {
  return (h ^ std::bit_cast<uint64_t>(v)) * 0x100000001b3ULL;
}

// The keys of the first and the last indexed row: a table refilled, cut or shifted by
// code that forgot to say so almost never keeps both.
uint64_t PointCheck(const Document& doc, int32_t rows) {
  uint64_t h = 0xcbf29ce484222325ULL;
  for (int32_t i : {0, rows - 1}) {
    if (i < 0 || i >= rows) continue;
    const Point& p = doc.PointTable[static_cast<std::size_t>(i)];
    h = Mix(Mix(Mix(h, p.Number), p.E), p.N);
  }
  return h;
}

uint64_t EntityCheck(const Document& doc, int32_t rows) {
  uint64_t h = 0xcbf29ce484222325ULL;
  for (int32_t i : {0, rows - 1}) {
    if (i < 0 || i >= rows) continue;
    const Entity& e = doc.EntityTable[static_cast<std::size_t>(i)];
    h = Mix(h, e.Number);
    for (int k = 0; k < 3; ++k) h = Mix(Mix(h, e.X[k]), e.Y[k]);
  }
  return h;
}

// Rows appended since the build are walked plainly; past this many the grid is built
// again.
bool TooManyAppended(const RowGrid& g, int32_t rows) {
  return rows - g.BuiltRows() > std::max<int32_t>(4096, g.BuiltRows() / 8);
}

const RowGrid& PointIndex(Document& doc, int32_t rows) {
  RowGrid& g = doc.Index.Points;
  if (g.Built() && g.BuiltRows() <= rows && !TooManyAppended(g, rows) && g.Check == PointCheck(doc, g.BuiltRows()))
    return g;
  auto coordOf = [&](int32_t i, double& E, double& N) {
    E = doc.PointTable[static_cast<std::size_t>(i)].E;
    N = doc.PointTable[static_cast<std::size_t>(i)].N;
  };
  g.Build(rows, MiddleExtent(rows, coordOf), [&](int32_t i, std::vector<Box>& boxes) {
    double E = 0, N = 0;
    coordOf(i, E, N);
    boxes.push_back(Box::At(E, N));
  });
  g.Check = PointCheck(doc, rows);
  return g;
}

const RowGrid& EntityIndex(Document& doc, int32_t rows) {
  RowGrid& g = doc.Index.Entities;
  if (g.Built() && g.BuiltRows() <= rows && !TooManyAppended(g, rows) && g.Check == EntityCheck(doc, g.BuiltRows()))
    return g;
  auto coordOf = [&](int32_t i, double& E, double& N) {
    E = doc.EntityTable[static_cast<std::size_t>(i)].X[0];
    N = doc.EntityTable[static_cast<std::size_t>(i)].Y[0];
  };
  g.Build(rows, MiddleExtent(rows, coordOf), [&](int32_t i, std::vector<Box>& boxes) {
    EntityBoxes(doc.EntityTable[static_cast<std::size_t>(i)], boxes);
  });
  g.Check = EntityCheck(doc, rows);
  return g;
}

Box ScreenBox(const View& view) {
  return {view.ScreenMinE, view.ScreenMinN, view.ScreenMaxE, view.ScreenMaxN};
}

int32_t Rows(std::size_t size, int32_t count) {
  return static_cast<int32_t>(std::min<std::size_t>(size, count > 0 ? static_cast<std::size_t>(count) : 0));
}

}  // namespace

int32_t RebuildScreenPoints(Document& doc, const View& view) {
  doc.ScreenPointTable.clear();
  const int32_t n = Rows(doc.PointTable.size(), doc.PointCount);
  auto take = [&](int32_t i) {
    const Point& p = doc.PointTable[static_cast<std::size_t>(i)];
    if (!p.Deleted && view.InScreen(p.E, p.N)) doc.ScreenPointTable.push_back(p);
  };
  thread_local std::vector<int32_t> rows;
  const RowGrid& g = PointIndex(doc, n);
  int32_t from = 0;
  if (g.Query(ScreenBox(view), rows)) {
    for (int32_t i : rows) take(i);
    from = g.BuiltRows();
  }
  for (int32_t i = from; i < n; ++i) take(i);
  doc.ScreenPointCount = static_cast<int32_t>(doc.ScreenPointTable.size());
  return doc.ScreenPointCount;
}

namespace {

// The box of a circle, widened by a hair so that a last-bit difference in how a caller
// finds the same centre or radius can never leave the circle outside it.
Box CircleBox(double ce, double cn, double r) {
  const double hairE = 1e-9 * (std::fabs(ce) + r), hairN = 1e-9 * (std::fabs(cn) + r);
  return {ce - r - hairE, cn - r - hairN, ce + r + hairE, cn + r + hairN};
}

Box Union(const Box& a, const Box& b) {
  return {std::min(a.MinE, b.MinE), std::min(a.MinN, b.MinN), std::max(a.MaxE, b.MaxE), std::max(a.MaxN, b.MaxN)};
}

bool Usable(double ce, double cn, double r) { return std::isfinite(ce) && std::isfinite(cn) && !std::isnan(r); }

// Found by every query: an arc on a line, whose repaint reports it wherever it lies.
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr Box kEverywhere{-kInf, -kInf, kInf, kInf};

}  // namespace

void EntityBoxes(const Entity& e, std::vector<Box>& boxes) {
  // Vertex 3 on its own: an unused one at 0, 0 takes part in the screen test too.
  boxes.push_back(Box::At(e.X[2], e.Y[2]));
  if (e.Kind == KindLine && !std::isnan(e.X[0] + e.Y[0] + e.X[1] + e.Y[1])) {
    // The whole segment, which may cross the paper with both ends off it.
    boxes.push_back({std::min(e.X[0], e.X[1]), std::min(e.Y[0], e.Y[1]), std::max(e.X[0], e.X[1]),
                     std::max(e.Y[0], e.Y[1])});
    return;
  }
  boxes.push_back(Box::At(e.X[0], e.Y[0]));
  boxes.push_back(Box::At(e.X[1], e.Y[1]));
  // A curve's samples lie on the circle of its centre and radius, found as the sampling
  // finds them; the drawing finds its circle its own way, which may differ in the last
  // bits: one box holds both.
  double ce = 0, cn = 0, r = 0;
  bool drawn = false;
  view::ArcGeometry arc;
  double de = 0, dn = 0, dr = 0;
  switch (e.Kind) {
    case KindArc3: {
      CircleCentre3(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], ce, cn);
      r = std::sqrt((e.X[1] - ce) * (e.X[1] - ce) + (e.Y[1] - cn) * (e.Y[1] - cn));
      if (Cross3(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2]) == 0) {
        boxes.push_back(kEverywhere);
        return;
      }
      drawn = view::ArcThrough(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], arc);
      de = arc.Ec, dn = arc.Nc, dr = arc.radius;
      break;
    }
    case KindCircle3: {
      double x1 = e.X[0], y1 = e.Y[0], x2 = e.X[1], y2 = e.Y[1], x3 = e.X[2], y3 = e.Y[2];
      SeparationNudge(x1, y1, x2, y2, x3, y3);
      CircleCentre3(x1, y1, x2, y2, x3, y3, ce, cn);
      r = std::hypot(e.X[1] - ce, e.Y[1] - cn);
      drawn = view::CircleThrough(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], de, dn, dr);
      break;
    }
    case KindCircle2:
      ce = e.X[0], cn = e.Y[0];
      r = std::hypot(e.X[1] - e.X[0], e.Y[1] - e.Y[0]);
      break;
    default:
      return;
  }
  const bool sampled = Usable(ce, cn, r);
  drawn = drawn && Usable(de, dn, dr);
  if (sampled && drawn)
    boxes.push_back(Union(CircleBox(ce, cn, r), CircleBox(de, dn, dr)));
  else if (sampled)
    boxes.push_back(CircleBox(ce, cn, r));
  else if (drawn)
    boxes.push_back(CircleBox(de, dn, dr));
}

bool EntityReachesScreen(const Entity& e, const View& view) {
  for (int k = 0; k < 3; ++k)
    if (view.InScreen(e.X[k], e.Y[k])) return true;
  if (e.Kind != KindArc3 && e.Kind != KindCircle3 && e.Kind != KindCircle2) return false;
  // The samples are scratch space kept between calls: a rebuild may test many entities.
  thread_local std::vector<double> E, N;
  CurveSamples(e, E, N);
  return AnySampleOnScreen(E, N, view);
}

int32_t RebuildScreenEntities(Document& doc, const View& view) {
  doc.ScreenEntityTable.clear();
  const int32_t n = Rows(doc.EntityTable.size(), doc.EntityCount);
  auto take = [&](int32_t i) {
    const Entity& e = doc.EntityTable[static_cast<std::size_t>(i)];
    if (EntityReachesScreen(e, view)) doc.ScreenEntityTable.push_back(e);
  };
  thread_local std::vector<int32_t> rows;
  const RowGrid& g = EntityIndex(doc, n);
  int32_t from = 0;
  if (g.Query(ScreenBox(view), rows)) {
    for (int32_t i : rows) take(i);
    from = g.BuiltRows();
  }
  for (int32_t i = from; i < n; ++i) take(i);
  doc.ScreenEntityCount = static_cast<int32_t>(doc.ScreenEntityTable.size());
  return doc.ScreenEntityCount;
}

namespace {

bool RowsNear(const RowGrid& g, std::size_t tableRows, const Box& box, std::vector<int32_t>& rows) {
  if (!g.Query(box, rows)) return false;
  for (auto i = static_cast<std::size_t>(g.BuiltRows()); i < tableRows; ++i) rows.push_back(static_cast<int32_t>(i));
  return true;
}

}  // namespace

bool PointRowsNear(Document& doc, const Box& box, std::vector<int32_t>& rows) {
  const RowGrid& g = PointIndex(doc, Rows(doc.PointTable.size(), doc.PointCount));
  return RowsNear(g, doc.PointTable.size(), box, rows);
}

bool EntityRowsNear(Document& doc, const Box& box, std::vector<int32_t>& rows) {
  const RowGrid& g = EntityIndex(doc, Rows(doc.EntityTable.size(), doc.EntityCount));
  return RowsNear(g, doc.EntityTable.size(), box, rows);
}

}  // namespace tavik
