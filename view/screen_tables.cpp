#include "view/screen_tables.h"

#include <cmath>
#include <vector>

#include "geo/circle.h"

namespace tavik {

namespace {

bool AnySampleOnScreen(const std::vector<double>& E, const std::vector<double>& N, const View& view) {
  for (std::size_t i = 0; i < E.size() && i < N.size(); ++i)
    if (view.InScreen(E[i], N[i])) return true;
  return false;
}

}  // namespace

int32_t RebuildScreenPoints(Document& doc, const View& view) {
  doc.ScreenPointTable.clear();
  const std::size_t n = std::min<std::size_t>(doc.PointTable.size(), doc.PointCount > 0 ? doc.PointCount : 0);
  for (std::size_t i = 0; i < n; ++i) {
    const Point& p = doc.PointTable[i];
    if (!p.Deleted && view.InScreen(p.E, p.N)) doc.ScreenPointTable.push_back(p);
  }
  doc.ScreenPointCount = static_cast<int32_t>(doc.ScreenPointTable.size());
  return doc.ScreenPointCount;
}

bool EntityReachesScreen(const Entity& e, const View& view) {
  for (int k = 0; k < 3; ++k)
    if (view.InScreen(e.X[k], e.Y[k])) return true;
  // The samples are scratch space kept between calls: a rebuild walks every entity.
  thread_local std::vector<double> E, N;
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
      return false;
  }
  return AnySampleOnScreen(E, N, view);
}

int32_t RebuildScreenEntities(Document& doc, const View& view) {
  doc.ScreenEntityTable.clear();
  const std::size_t n = std::min<std::size_t>(doc.EntityTable.size(), doc.EntityCount > 0 ? doc.EntityCount : 0);
  for (std::size_t i = 0; i < n; ++i)
    if (EntityReachesScreen(doc.EntityTable[i], view)) doc.ScreenEntityTable.push_back(doc.EntityTable[i]);
  doc.ScreenEntityCount = static_cast<int32_t>(doc.ScreenEntityTable.size());
  return doc.ScreenEntityCount;
}

}  // namespace tavik
