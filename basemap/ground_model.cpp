#include "basemap/ground_model.h"

#include <gdal_alg.h>

#include <algorithm>
#include <cmath>

#include "basemap/gdal_session.h"

namespace tavik::basemap {

namespace {
GDALTriangulation* T(void* p) { return static_cast<GDALTriangulation*>(p); }
}  // namespace

GroundModel::GroundModel(std::vector<GroundVertex> points) {
  std::sort(points.begin(), points.end(),
            [](const GroundVertex& a, const GroundVertex& b) { return a.E < b.E || (a.E == b.E && a.N < b.N); });
  for (std::size_t i = 0; i < points.size();) {
    std::size_t j = i;
    double sum = 0;
    for (; j < points.size() && points[j].E == points[i].E && points[j].N == points[i].N; ++j) sum += points[j].H;
    v_.push_back({points[i].E, points[i].N, sum / static_cast<double>(j - i)});
    i = j;
  }
  if (v_.size() < 3) return;
  // Coordinates of a national grid are large; relative to the first point the
  // triangulation keeps all the precision the survey has.
  originE_ = v_[0].E, originN_ = v_[0].N;
  for (auto& p : v_) {
    p.E -= originE_, p.N -= originN_;
    x_.push_back(p.E), y_.push_back(p.N);
  }
  // Points on one line span no surface; qhull would say so on standard error, so the
  // case is settled here.
  bool flat = true;
  const double aE = v_[1].E - v_[0].E, aN = v_[1].N - v_[0].N, a = std::hypot(aE, aN);
  for (std::size_t i = 2; i < v_.size() && flat; ++i) {
    const double bE = v_[i].E - v_[0].E, bN = v_[i].N - v_[0].N;
    flat = std::abs(aE * bN - aN * bE) <= 1e-12 * a * std::hypot(bE, bN);
  }
  if (flat) return;
  EnsureGdal();
  GDALTriangulation* t = GDALTriangulationCreateDelaunay(static_cast<int>(v_.size()), x_.data(), y_.data());
  TakeGdalError();  // points on one line: no surface, told by Ok()
  if (t == nullptr) return;
  if (t->nFacets <= 0 || !GDALTriangulationComputeBarycentricCoefficients(t, x_.data(), y_.data())) {
    GDALTriangulationFree(t);
    TakeGdalError();
    return;
  }
  tri_ = t;
}

GroundModel::~GroundModel() {
  if (tri_) GDALTriangulationFree(T(tri_));
}

int GroundModel::Locate(double E, double N, int hint) const {
  if (!tri_) return -1;
  const GDALTriangulation* t = T(tri_);
  if (hint < 0 || hint >= t->nFacets) hint = 0;
  int f = -1;
  if (GDALTriangulationFindFacetDirected(t, hint, E - originE_, N - originN_, &f) && f >= 0) return f;
  return -1;
}

double GroundModel::HeightIn(int f, double E, double N) const {
  const GDALTriangulation* t = T(tri_);
  const GDALTriBarycentricCoefficients& c = t->pasFacetCoefficients[f];
  const double x = E - originE_, y = N - originN_;
  const double l1 = c.dfMul1X * (x - c.dfCstX) + c.dfMul1Y * (y - c.dfCstY);
  const double l2 = c.dfMul2X * (x - c.dfCstX) + c.dfMul2Y * (y - c.dfCstY);
  const int* v = t->pasFacets[f].anVertexIdx;
  return l1 * v_[v[0]].H + l2 * v_[v[1]].H + (1 - l1 - l2) * v_[v[2]].H;
}

bool GroundModel::SharedEdge(int a, int b, GroundVertex& p, GroundVertex& q) const {
  const GDALTriFacet& f = T(tri_)->pasFacets[a];
  for (int k = 0; k < 3; ++k) {
    if (f.anNeighborIdx[k] != b) continue;
    p = v_[f.anVertexIdx[(k + 1) % 3]], q = v_[f.anVertexIdx[(k + 2) % 3]];
    p.E += originE_, p.N += originN_, q.E += originE_, q.N += originN_;
    return true;
  }
  return false;
}

bool GroundModel::SharedCorner(int a, int b, GroundVertex& p) const {
  const GDALTriFacet &fa = T(tri_)->pasFacets[a], &fb = T(tri_)->pasFacets[b];
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      if (fa.anVertexIdx[i] == fb.anVertexIdx[j]) {
        p = v_[fa.anVertexIdx[i]];
        p.E += originE_, p.N += originN_;
        return true;
      }
  return false;
}

std::vector<std::array<GroundVertex, 2>> GroundModel::Outline() const {
  std::vector<std::array<GroundVertex, 2>> out;
  if (!tri_) return out;
  const GDALTriangulation* t = T(tri_);
  for (int i = 0; i < t->nFacets; ++i) {
    const GDALTriFacet& f = t->pasFacets[i];
    for (int k = 0; k < 3; ++k) {
      if (f.anNeighborIdx[k] >= 0) continue;
      GroundVertex p = v_[f.anVertexIdx[(k + 1) % 3]], q = v_[f.anVertexIdx[(k + 2) % 3]];
      p.E += originE_, p.N += originN_, q.E += originE_, q.N += originN_;
      out.push_back({p, q});
    }
  }
  return out;
}

}  // namespace tavik::basemap
