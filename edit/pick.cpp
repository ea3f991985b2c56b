// Picking on the map. A press hits a point when the point lies in a square of pixels
// about the press (shifted one pixel up and left, the pointer's hot spot); points are
// tried first, then the vertices of entities, and the first hit wins. A line is hit when
// it passes through a box about the pointer; the entities on the screen are tried from
// the newest, then the base map from its first row. Only the screen tables are walked:
// a pick must answer at once on a large survey.
#include <algorithm>
#include <cmath>
#include <limits>

#include "core/tables.h"
#include "edit/editor.h"
#include "geo/circle.h"
#include "geo/pick.h"

namespace tavik::edit {

namespace {

struct Box {
  double minE, minN, maxE, maxN;
  bool Has(double E, double N) const { return E >= minE && E <= maxE && N >= minN && N <= maxN; }
};

Box PixelBox(const Document& doc, const View& view, double cx, double cy, double half) {
  double E1, N1, E2, N2;
  PaperToWorld(view, doc.ScaleDenominator, cx - half, cy + half, E1, N1);
  PaperToWorld(view, doc.ScaleDenominator, cx + half, cy - half, E2, N2);
  return {std::min(E1, E2), std::min(N1, N2), std::max(E1, E2), std::max(N1, N2)};
}

int UsedVertices(int16_t kind) {
  switch (kind) {
    case KindPoint:
      return 1;
    case KindLine:
    case KindCircle2:
      return 2;
    case KindCircle3:
    case KindArc3:
      return 3;
    default:
      return 0;
  }
}

// Curves larger than this are not sampled for a pick: a damaged record (or three nearly
// collinear points) would otherwise ask for millions of samples on every click.
constexpr double MaxPickRadius = 100000;

bool Pickable(double radius) { return std::isfinite(radius) && radius <= MaxPickRadius; }

// The outline of a record as a chain: the segment itself, or the sampled curve.
template <class Rec>
void Outline(const Rec& r, std::vector<double>& E, std::vector<double>& N) {
  E.clear();
  N.clear();
  switch (r.Kind) {
    case KindLine:
      E = {r.X[0], r.X[1]};
      N = {r.Y[0], r.Y[1]};
      break;
    case KindCircle2: {
      const double radius = std::hypot(r.X[1] - r.X[0], r.Y[1] - r.Y[0]);
      if (Pickable(radius)) SampleCircle(r.X[0], r.Y[0], radius, E, N);
      break;
    }
    case KindCircle3: {
      if (Cross3(r.X[0], r.Y[0], r.X[1], r.Y[1], r.X[2], r.Y[2]) == 0) break;
      double e1 = r.X[0], n1 = r.Y[0], e2 = r.X[1], n2 = r.Y[1], e3 = r.X[2], n3 = r.Y[2];
      SeparationNudge(e1, n1, e2, n2, e3, n3);
      double ec, nc;
      CircleCentre3(e1, n1, e2, n2, e3, n3, ec, nc);
      const double radius = std::hypot(r.X[1] - ec, r.Y[1] - nc);
      if (Pickable(radius)) SampleCircle(ec, nc, radius, E, N);
      break;
    }
    case KindArc3: {
      if (Cross3(r.X[0], r.Y[0], r.X[1], r.Y[1], r.X[2], r.Y[2]) == 0) break;
      double ec, nc;
      CircleCentre3(r.X[0], r.Y[0], r.X[1], r.Y[1], r.X[2], r.Y[2], ec, nc);
      if (Pickable(std::hypot(r.X[1] - ec, r.Y[1] - nc)))
        SampleArc3(r.X[0], r.Y[0], r.X[1], r.Y[1], r.X[2], r.Y[2], E, N);
      break;
    }
    default:
      break;
  }
}

template <class Rec>
bool RecordHit(const Rec& r, const Box& box) {
  if (r.Kind == KindPoint) return box.Has(r.X[0], r.Y[0]);
  std::vector<double> E, N;
  Outline(r, E, N);
  if (E.size() < 2) return false;
  FoundPosition found;
  if (BoxHitsChain(static_cast<int32_t>(E.size()), E.data(), N.data(), nullptr, box.minE, box.minN, box.maxE,
                   box.maxN, found))
    return true;
  // A short segment lying wholly inside the box meets none of its sides.
  return box.Has(E.front(), N.front());
}

double SegmentDistance(double px, double py, double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  const double len2 = dx * dx + dy * dy;
  double t = len2 > 0 ? ((px - x1) * dx + (py - y1) * dy) / len2 : 0;
  t = std::clamp(t, 0.0, 1.0);
  return std::hypot(px - (x1 + t * dx), py - (y1 + t * dy));
}

}  // namespace

PickHit Editor::PickPoint(float x, float y, float side) const {
  const Box box = PixelBox(doc, view, x - 1.0, y - 1.0, side / 2.0);
  for (int32_t i = 0; i < doc.ScreenPointCount && i < static_cast<int32_t>(doc.ScreenPointTable.size()); ++i) {
    const Point& p = doc.ScreenPointTable[i];
    if (p.Deleted) continue;
    if (box.Has(p.E, p.N)) return {true, p.E, p.N, p.H};
  }
  for (int32_t i = 0; i < doc.ScreenEntityCount && i < static_cast<int32_t>(doc.ScreenEntityTable.size()); ++i) {
    const Entity& e = doc.ScreenEntityTable[i];
    if (e.Deleted) continue;
    const int n = UsedVertices(e.Kind);
    // An area label keeps the area in its H: it is no height.
    const bool heightless = e.Kind == KindPoint && e.Code == 13;
    for (int v = 0; v < n; ++v)
      if (box.Has(e.X[v], e.Y[v])) return {true, e.X[v], e.Y[v], heightless ? 0.0 : e.Z[v]};
  }
  return {};
}

int32_t Editor::PickEntityRow(float x, float y, float half, std::initializer_list<int16_t> kinds,
                              bool withBaseMap, bool* onBaseMap, int32_t skipRow, bool skipOnBaseMap) const {
  auto counts = [&](int16_t kind) {
    if (kinds.size() == 0) return true;
    for (int16_t k : kinds)
      if (k == kind) return true;
    return false;
  };
  if (onBaseMap) *onBaseMap = false;
  const Box box = PixelBox(doc, view, x, y, half);
  const int32_t screenRows = std::min<int32_t>(doc.ScreenEntityCount, static_cast<int32_t>(doc.ScreenEntityTable.size()));
  for (int32_t i = screenRows - 1; i >= 0; --i) {
    const Entity& e = doc.ScreenEntityTable[i];
    const int32_t row = EntityRow(doc, e.Number);
    if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) continue;
    if (e.Deleted || doc.EntityTable[row].Deleted) continue;
    if (!counts(e.Kind) || (!skipOnBaseMap && row == skipRow)) continue;
    if (RecordHit(e, box)) return row;
  }
  if (!withBaseMap) return -1;
  const int32_t baseRows = std::min<int32_t>(doc.BaseMapCount, static_cast<int32_t>(doc.BaseMapTable.size()));
  for (int32_t i = 0; i < baseRows; ++i) {
    const BaseMapLine& b = doc.BaseMapTable[i];
    if (b.Kind == KindPoint || !counts(b.Kind) || (skipOnBaseMap && i == skipRow)) continue;
    if (RecordHit(b, box)) {
      if (onBaseMap) *onBaseMap = true;
      return i;
    }
  }
  return -1;
}

int32_t Editor::PickBaseMapRow(float x, float y, float half, std::initializer_list<int16_t> kinds) const {
  const Box box = PixelBox(doc, view, x, y, half);
  const int32_t baseRows = std::min<int32_t>(doc.BaseMapCount, static_cast<int32_t>(doc.BaseMapTable.size()));
  for (int32_t i = 0; i < baseRows; ++i) {
    const BaseMapLine& b = doc.BaseMapTable[i];
    if (b.Kind == KindPoint || std::find(kinds.begin(), kinds.end(), b.Kind) == kinds.end()) continue;
    if (RecordHit(b, box)) return i;
  }
  return -1;
}

PickHit Editor::PickBaseMapVertex(float x, float y, float side) const {
  const Box box = PixelBox(doc, view, x - 1.0, y - 1.0, side / 2.0);
  const int32_t baseRows = std::min<int32_t>(doc.BaseMapCount, static_cast<int32_t>(doc.BaseMapTable.size()));
  for (int32_t i = 0; i < baseRows; ++i) {
    const BaseMapLine& b = doc.BaseMapTable[i];
    if (b.Kind != KindLine && b.Kind != KindArc3) continue;
    for (int v = 0; v < UsedVertices(b.Kind); ++v)
      if (box.Has(b.X[v], b.Y[v])) return {true, b.X[v], b.Y[v], b.Z[v]};
  }
  return {};
}

std::vector<Editor::PickedLine> Editor::LinesInWindow(double E1, double N1, double E2, double N2) const {
  const Box box{std::min(E1, E2), std::min(N1, N2), std::max(E1, E2), std::max(N1, N2)};
  std::vector<PickedLine> lines;
  auto take = [&](const auto& r, int32_t row, bool base) {
    PickedLine l;
    l.Found = true, l.OnBaseMap = base, l.Row = row, l.Code = r.Code, l.Kind = r.Kind;
    for (int i = 0; i < 3; ++i) l.X[i] = r.X[i], l.Y[i] = r.Y[i], l.Z[i] = r.Z[i];
    lines.push_back(l);
  };
  const int32_t screenRows = std::min<int32_t>(doc.ScreenEntityCount, static_cast<int32_t>(doc.ScreenEntityTable.size()));
  for (int32_t i = screenRows - 1; i >= 0; --i) {
    const Entity& e = doc.ScreenEntityTable[i];
    const int32_t row = EntityRow(doc, e.Number);
    if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) continue;
    if (e.Kind != KindLine || e.Deleted || doc.EntityTable[row].Deleted) continue;
    if (RecordHit(e, box)) take(doc.EntityTable[row], row, false);
  }
  const int32_t baseRows = std::min<int32_t>(doc.BaseMapCount, static_cast<int32_t>(doc.BaseMapTable.size()));
  for (int32_t i = 0; i < baseRows; ++i) {
    const BaseMapLine& b = doc.BaseMapTable[i];
    if (b.Kind == KindLine && RecordHit(b, box)) take(b, i, true);
  }
  return lines;
}

int32_t Editor::NearestEntityRow(float x, float y) const {
  int32_t best = -1;
  double bestDist = std::numeric_limits<double>::infinity();
  std::vector<double> E, N;
  const int32_t screenRows = std::min<int32_t>(doc.ScreenEntityCount, static_cast<int32_t>(doc.ScreenEntityTable.size()));
  for (int32_t i = 0; i < screenRows; ++i) {
    const Entity& e = doc.ScreenEntityTable[i];
    const int32_t row = EntityRow(doc, e.Number);
    if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) continue;
    if (e.Deleted || doc.EntityTable[row].Deleted) continue;
    double d = std::numeric_limits<double>::infinity();
    float px, py;
    if (e.Kind == KindPoint) {
      WorldToPixel(e.X[0], e.Y[0], px, py);
      d = std::hypot(px - x, py - y);
    } else {
      Outline(e, E, N);
      float qx, qy;
      for (std::size_t k = 0; k + 1 < E.size(); ++k) {
        WorldToPixel(E[k], N[k], px, py);
        WorldToPixel(E[k + 1], N[k + 1], qx, qy);
        d = std::min(d, SegmentDistance(x, y, px, py, qx, qy));
      }
    }
    if (d < bestDist) {
      bestDist = d;
      best = row;
    }
  }
  return best;
}

}  // namespace tavik::edit
