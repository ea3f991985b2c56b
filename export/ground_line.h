// The ground under a line on the map: routes (runs of `Code` 520 segments), the
// section lines across them (`Code` 521 segments, or lines square to the route at a
// chosen interval), and the heights of the ground model along any of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "basemap/ground_model.h"
#include "core/document.h"

namespace tavik::dxf {

constexpr int16_t CodeRoute = 520;
constexpr int16_t CodeSectionLine = 521;
// Half the width of a section taken at an interval, to each side of the route.
constexpr double IntervalSectionHalfWidth = 20;

struct PlanPoint {
  double E = 0, N = 0;
};

// A route: a run of segments, each starting where the one before it ends.
struct Route {
  std::string name;  // the trimmed Name of its first segment
  std::vector<PlanPoint> vertices;
  double Length() const;
  // The place at chainage s, and the azimuth-free unit direction there.
  PlanPoint At(double s, double* dirE = nullptr, double* dirN = nullptr) const;
  // The chainage of the route's point nearest to p, and the distance to it.
  double Nearest(PlanPoint p, double* distance = nullptr) const;
};

// The routes of the survey (reference rows left out), in table order.
std::vector<Route> RoutesOf(const Document& doc);

// The ground model of the survey's points with a height: live points of the survey,
// H -9999 (no height) left out. A plan map (no heights) gives no points.
std::vector<basemap::GroundVertex> SurveyHeights(const Document& doc);

// A point of the ground along a line: the distance along the line, its place and height.
struct GroundPoint {
  double s = 0, E = 0, N = 0, H = 0;
};
// Stretches of known ground along the polyline, each a run of points: the line's
// vertices, every crossing of a triangle's edge (where the ground bends) and the
// points where the line enters and leaves the surface. Between two points of a run the
// ground is straight, so the runs are the exact ground of the model.
std::vector<std::vector<GroundPoint>> GroundAlong(const basemap::GroundModel& g, const std::vector<PlanPoint>& line);

// The height at one place, false outside the surface.
bool GroundAt(const basemap::GroundModel& g, PlanPoint p, double& H);

// A cross-section: its line from the left end to the right end as one looks along the
// route, and where it meets the route.
struct SectionLine {
  std::string name;
  std::size_t route = 0;  // index into the routes
  double chainage = 0;
  PlanPoint left, right;
  double centre = 0;      // distance from the left end to the route
};
// At the 521 lines (interval 0), each given to the route nearest its middle, in order
// of chainage; or square to each route at 0, interval, 2 interval ... and its end.
std::vector<SectionLine> SectionLines(const Document& doc, const std::vector<Route>& routes, double interval);

}  // namespace tavik::dxf
