// The ground surface spanned by the surveyed points that have a height: a Delaunay
// triangulation of their E and N, each triangle a plane through its three heights.
// Profiles and cross-sections read their heights from it.
//
// The triangulation is GDAL's (qhull underneath): qhull lifts the points onto a
// paraboloid and takes the lower convex hull, O(n log n), and its merged facets keep
// it correct for points on one circle or one line, which hand-written incremental
// code gets wrong in floating point. Delaunay rather than any triangulation because it
// avoids long thin triangles, so a height is interpolated from the nearest shots.
#pragma once

#include <array>
#include <vector>

namespace tavik::basemap {

struct GroundVertex {
  double E = 0, N = 0, H = 0;
};

class GroundModel {
 public:
  // Points that share E and N exactly are merged, their heights averaged.
  explicit GroundModel(std::vector<GroundVertex> points);
  ~GroundModel();
  GroundModel(const GroundModel&) = delete;
  GroundModel& operator=(const GroundModel&) = delete;

  // False when no surface could be built (fewer than three points, or all on a line).
  bool Ok() const { return tri_ != nullptr; }
  int VertexCount() const { return static_cast<int>(v_.size()); }

  // The triangle holding E, N, or -1 outside the surface. The walk starts from hint.
  int Locate(double E, double N, int hint = -1) const;
  // The height of triangle f's plane at E, N.
  double HeightIn(int f, double E, double N) const;
  // When triangles a and b share an edge: its two ends, true.
  bool SharedEdge(int a, int b, GroundVertex& p, GroundVertex& q) const;
  // When triangles a and b have a corner in common (and no edge): that corner, true.
  bool SharedCorner(int a, int b, GroundVertex& p) const;
  // The edges of the surface's outline, as pairs of ends.
  std::vector<std::array<GroundVertex, 2>> Outline() const;

 private:
  std::vector<GroundVertex> v_;  // E and N relative to origin_
  double originE_ = 0, originN_ = 0;
  void* tri_ = nullptr;          // GDALTriangulation
  std::vector<double> x_, y_;
};

}  // namespace tavik::basemap
