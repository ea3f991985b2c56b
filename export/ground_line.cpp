// Heights along a line come from walking it through the triangles of the ground model.
// The line is first cut where it crosses the model's outline, so that each piece lies
// wholly inside or wholly outside. Inside, the piece is sampled coarsely; wherever two
// neighbouring samples fall in different triangles the stretch between them is halved
// until the two triangles share an edge, and the crossing with that edge is a bend of
// the ground. Samples that fall within one triangle add nothing, as the ground is a
// plane there, so only bends, vertices and the ends of the known ground are kept.
#include "export/ground_line.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"

namespace tavik::dxf {

double Route::Length() const {
  double L = 0;
  for (std::size_t i = 1; i < vertices.size(); ++i)
    L += std::hypot(vertices[i].E - vertices[i - 1].E, vertices[i].N - vertices[i - 1].N);
  return L;
}

PlanPoint Route::At(double s, double* dirE, double* dirN) const {
  double done = 0;
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    const PlanPoint a = vertices[i - 1], b = vertices[i];
    const double len = std::hypot(b.E - a.E, b.N - a.N);
    if (!(len > 0)) continue;
    if (s <= done + len || i + 1 == vertices.size()) {
      const double f = (s - done) / len;
      if (dirE) *dirE = (b.E - a.E) / len;
      if (dirN) *dirN = (b.N - a.N) / len;
      return {a.E + f * (b.E - a.E), a.N + f * (b.N - a.N)};
    }
    done += len;
  }
  if (dirE) *dirE = 0;
  if (dirN) *dirN = 1;
  return vertices.empty() ? PlanPoint{} : vertices.front();
}

double Route::Nearest(PlanPoint p, double* distance) const {
  double best = INFINITY, bestS = 0, done = 0;
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    const PlanPoint a = vertices[i - 1], b = vertices[i];
    const double dE = b.E - a.E, dN = b.N - a.N, len2 = dE * dE + dN * dN, len = std::sqrt(len2);
    double f = len2 > 0 ? ((p.E - a.E) * dE + (p.N - a.N) * dN) / len2 : 0;
    f = std::clamp(f, 0.0, 1.0);
    const double d = std::hypot(a.E + f * dE - p.E, a.N + f * dN - p.N);
    if (d < best) best = d, bestS = done + f * len;
    done += len;
  }
  if (distance) *distance = best;
  return bestS;
}

namespace {

bool Live(const Document& doc, int32_t i) {
  return i >= std::max(doc.ReferenceEntityCount, 0) && doc.EntityTable[i].Deleted == kFalse;
}

int32_t Entities(const Document& doc) {
  return std::min<int32_t>(doc.EntityCount, static_cast<int32_t>(doc.EntityTable.size()));
}

// Where the segment a-b meets the line through p and q, as the fraction along a-b;
// false when they run parallel.
bool Crossing(PlanPoint a, PlanPoint b, basemap::GroundVertex p, basemap::GroundVertex q, double& t, double* u = nullptr) {
  const double rE = b.E - a.E, rN = b.N - a.N, sE = q.E - p.E, sN = q.N - p.N;
  const double den = rE * sN - rN * sE;
  if (den == 0) return false;
  t = ((p.E - a.E) * sN - (p.N - a.N) * sE) / den;
  if (u) *u = ((p.E - a.E) * rN - (p.N - a.N) * rE) / den;
  return true;
}

struct Walker {
  const basemap::GroundModel& g;
  PlanPoint a, b;
  double s0 = 0, len = 0;
  std::vector<GroundPoint>* run = nullptr;
  int hint = 0;

  PlanPoint At(double t) const { return {a.E + t * (b.E - a.E), a.N + t * (b.N - a.N)}; }
  int Locate(double t) {
    const PlanPoint p = At(t);
    const int f = g.Locate(p.E, p.N, hint);
    if (f >= 0) hint = f;
    return f;
  }
  void Emit(double t, int f) {
    const PlanPoint p = At(t);
    const double s = s0 + t * len;
    if (!run->empty() && run->back().s >= s) return;
    run->push_back({s, p.E, p.N, g.HeightIn(f, p.E, p.N)});
  }
  // The bends between ta in triangle fa and tb in triangle fb.
  void Refine(double ta, int fa, double tb, int fb, int depth) {
    if (fa == fb) return;
    basemap::GroundVertex p, q;
    if (g.SharedEdge(fa, fb, p, q)) {
      double t;
      if (Crossing(a, b, p, q, t) && t > ta && t < tb) Emit(t, fa);
      return;
    }
    // Triangles that meet only at a corner once halving has closed in on it: the line
    // passes through that vertex, itself a bend.
    if (depth > 48 || (tb - ta) * len < 1e-4) {
      double t = (ta + tb) / 2;
      if (g.SharedCorner(fa, fb, p) && len > 0)
        t = std::clamp(((p.E - a.E) * (b.E - a.E) + (p.N - a.N) * (b.N - a.N)) / (len * len), ta, tb);
      return Emit(t, fa);
    }
    const double tm = (ta + tb) / 2;
    int fm = Locate(tm);
    if (fm < 0) fm = fa;  // on the outline within rounding
    Refine(ta, fa, tm, fm, depth + 1);
    Refine(tm, fm, tb, fb, depth + 1);
  }
};

}  // namespace

std::vector<Route> RoutesOf(const Document& doc) {
  std::vector<Route> routes;
  const int32_t n = Entities(doc);
  bool joined = false;
  for (int32_t i = 0; i < n; ++i) {
    if (!Live(doc, i)) continue;
    const Entity& e = doc.EntityTable[i];
    if (e.Code != CodeRoute || e.Kind != KindLine) {
      if (e.Kind != KindPoint) joined = false;
      continue;
    }
    const PlanPoint a{e.X[0], e.Y[0]}, b{e.X[1], e.Y[1]};
    if (joined && !routes.empty() && routes.back().vertices.back().E == a.E && routes.back().vertices.back().N == a.N) {
      routes.back().vertices.push_back(b);
    } else {
      routes.push_back({text::Trim(e.Name), {a, b}});
    }
    joined = true;
  }
  return routes;
}

std::vector<basemap::GroundVertex> SurveyHeights(const Document& doc) {
  std::vector<basemap::GroundVertex> v;
  if (doc.MapType != 1) return v;
  const int32_t n = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size()));
  for (int32_t i = std::max(doc.ReferencePointCount, 0); i < n; ++i) {
    const Point& p = doc.PointTable[i];
    if (p.Deleted != kFalse || p.H == NoHeight || !std::isfinite(p.E) || !std::isfinite(p.N) || !std::isfinite(p.H))
      continue;
    v.push_back({p.E, p.N, p.H});
  }
  return v;
}

bool GroundAt(const basemap::GroundModel& g, PlanPoint p, double& H) {
  const int f = g.Locate(p.E, p.N);
  if (f < 0) return false;
  H = g.HeightIn(f, p.E, p.N);
  return true;
}

std::vector<std::vector<GroundPoint>> GroundAlong(const basemap::GroundModel& g, const std::vector<PlanPoint>& line) {
  std::vector<std::vector<GroundPoint>> runs;
  if (!g.Ok() || line.size() < 2) return runs;
  const auto outline = g.Outline();
  std::vector<GroundPoint> run;
  auto close = [&] {
    if (run.size() >= 2) runs.push_back(std::move(run));
    run.clear();
  };
  double s0 = 0;
  for (std::size_t k = 1; k < line.size(); ++k) {
    Walker w{g, line[k - 1], line[k], s0, std::hypot(line[k].E - line[k - 1].E, line[k].N - line[k - 1].N), &run};
    s0 += w.len;
    if (!(w.len > 0)) continue;
    // Cuts: the ends, the crossings of the outline, and coarse samples between.
    std::vector<double> cuts = {0, 1};
    for (const auto& edge : outline) {
      double t, u;
      if (Crossing(w.a, w.b, edge[0], edge[1], t, &u) && t > 0 && t < 1 && u >= 0 && u <= 1) cuts.push_back(t);
    }
    std::vector<double> kept = cuts;  // the ends of the pieces; the samples below only guide the walk
    std::sort(kept.begin(), kept.end());
    auto isKept = [&](double t) { return std::binary_search(kept.begin(), kept.end(), t); };
    const int steps = static_cast<int>(std::min(2000.0, std::ceil(w.len / 2)));
    for (int i = 1; i < steps; ++i) cuts.push_back(static_cast<double>(i) / steps);
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    int prevFacet = -1;
    for (std::size_t i = 1; i < cuts.size(); ++i) {
      const double ta = cuts[i - 1], tb = cuts[i];
      const int fm = w.Locate((ta + tb) / 2);
      if (fm < 0) {
        close();
        prevFacet = -1;
        continue;
      }
      // An end on the outline may test as outside by rounding: the middle's triangle
      // then carries it.
      int fa = prevFacet >= 0 ? prevFacet : w.Locate(ta);
      if (fa < 0) fa = fm;
      int fb = w.Locate(tb);
      if (fb < 0) fb = fm;
      if (run.empty() || prevFacet < 0 || isKept(ta)) w.Emit(ta, fa);
      w.Refine(ta, fa, tb, fb, 0);
      // Keep the last point of the piece so a run ends at the outline or the line's end.
      if (isKept(tb) || w.Locate((tb + cuts[i + 1]) / 2) < 0) w.Emit(tb, fb);
      prevFacet = fb;
    }
    // A vertex of the line is always a point of its run.
    if (prevFacet >= 0) w.Emit(1, prevFacet);
  }
  close();
  return runs;
}

std::vector<SectionLine> SectionLines(const Document& doc, const std::vector<Route>& routes, double interval) {
  std::vector<SectionLine> out;
  if (routes.empty()) return out;
  if (interval > 0) {
    for (std::size_t r = 0; r < routes.size(); ++r) {
      const double L = routes[r].Length();
      for (double k = 0;; ++k) {
        double s = std::min(k * interval, L);
        double dE, dN;
        const PlanPoint c = routes[r].At(s, &dE, &dN);
        // Left of the direction of travel is (-dN, dE).
        const double W = IntervalSectionHalfWidth;
        out.push_back({"", r, s, {c.E - W * dN, c.N + W * dE}, {c.E + W * dN, c.N - W * dE}, W});
        if (s >= L) break;
      }
    }
    return out;
  }
  const int32_t n = Entities(doc);
  for (int32_t i = 0; i < n; ++i) {
    if (!Live(doc, i)) continue;
    const Entity& e = doc.EntityTable[i];
    if (e.Code != CodeSectionLine || e.Kind != KindLine) continue;
    SectionLine sec;
    sec.name = text::Trim(e.Name);
    sec.left = {e.X[0], e.Y[0]}, sec.right = {e.X[1], e.Y[1]};
    const double len = std::hypot(sec.right.E - sec.left.E, sec.right.N - sec.left.N);
    if (!(len > 0)) continue;
    const PlanPoint mid{(sec.left.E + sec.right.E) / 2, (sec.left.N + sec.right.N) / 2};
    double best = INFINITY;
    for (std::size_t r = 0; r < routes.size(); ++r) {
      double d;
      routes[r].Nearest(mid, &d);
      if (d < best) best = d, sec.route = r;
    }
    const Route& route = routes[sec.route];
    // Where the section line meets the route; a line that stops short of it is centred
    // on the foot of the route point nearest its middle.
    bool met = false;
    double done = 0;
    for (std::size_t k = 1; k < route.vertices.size() && !met; ++k) {
      const PlanPoint a = route.vertices[k - 1], b = route.vertices[k];
      const double segLen = std::hypot(b.E - a.E, b.N - a.N);
      double t, u;
      if (Crossing(sec.left, sec.right, {a.E, a.N, 0}, {b.E, b.N, 0}, t, &u) && t >= 0 && t <= 1 && u >= 0 && u <= 1) {
        sec.chainage = done + u * segLen;
        sec.centre = t * len;
        met = true;
      }
      done += segLen;
    }
    if (!met) {
      sec.chainage = route.Nearest(mid);
      const PlanPoint c = route.At(sec.chainage);
      sec.centre = ((c.E - sec.left.E) * (sec.right.E - sec.left.E) + (c.N - sec.left.N) * (sec.right.N - sec.left.N)) / len;
    }
    // Left to right as one looks along the route.
    double dE, dN;
    route.At(sec.chainage, &dE, &dN);
    if ((sec.right.E - sec.left.E) * dN - (sec.right.N - sec.left.N) * dE < 0) {
      std::swap(sec.left, sec.right);
      sec.centre = len - sec.centre;
    }
    out.push_back(sec);
  }
  std::stable_sort(out.begin(), out.end(), [](const SectionLine& x, const SectionLine& y) {
    return x.route < y.route || (x.route == y.route && x.chainage < y.chainage);
  });
  return out;
}

}  // namespace tavik::dxf
