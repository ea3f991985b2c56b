// The ground along a line: on a plane every height is the plane's, whatever the
// triangles (a square grid is the worst case for Delaunay, every four points on one
// circle); on a pyramid the bends fall where the line crosses the ridges; the known
// ground stops exactly at the outline of the survey.
#include <gtest/gtest.h>

#include <cmath>

#include "export/ground_line.h"

using namespace tavik;
using namespace tavik::dxf;

namespace {

constexpr double E0 = 280000, N0 = 2750000;
double Plane(double E, double N) { return 50 + 0.02 * (E - E0) - 0.01 * (N - N0); }

// A grid of 11 x 11 points 10 m apart on the plane, and a point without height in the middle.
std::vector<basemap::GroundVertex> Grid() {
  std::vector<basemap::GroundVertex> v;
  for (int i = 0; i <= 10; ++i)
    for (int j = 0; j <= 10; ++j) v.push_back({E0 + 10.0 * i, N0 + 10.0 * j, Plane(E0 + 10.0 * i, N0 + 10.0 * j)});
  return v;
}

TEST(GroundLine, PlaneGroundIsExactAndStopsAtTheOutline) {
  const basemap::GroundModel g(Grid());
  ASSERT_TRUE(g.Ok());
  // No surface from points on one line, nor from three shots of which two share a place.
  EXPECT_FALSE(basemap::GroundModel({{0, 0, 1}, {1, 1, 2}, {3, 3, 3}}).Ok());
  EXPECT_FALSE(basemap::GroundModel({{0, 0, 1}, {5, 0, 2}, {5, 0, 3}}).Ok());
  struct Case {
    const char* legend;
    std::vector<PlanPoint> line;
    std::vector<std::pair<double, double>> runs;  // s from, s to
  } cases[] = {
      {"inside, diagonal", {{E0 + 5, N0 + 3}, {E0 + 95, N0 + 88}}, {{0, std::hypot(90, 85)}}},
      {"in from the west, out to the east", {{E0 - 50, N0 + 55}, {E0 + 150, N0 + 55}}, {{50, 150}}},
      {"along the outline itself", {{E0, N0}, {E0 + 100, N0}}, {{0, 100}}},
      {"out and back in over a bend", {{E0 + 50, N0 + 50}, {E0 + 50, N0 + 130}, {E0 + 60, N0 + 50}},
       {{0, 50}, {80 + std::hypot(10, 80) * 30 / 80, 80 + std::hypot(10, 80)}}},
      {"wholly outside", {{E0 - 10, N0 - 10}, {E0 + 200, N0 - 10}}, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.legend);
    const auto runs = GroundAlong(g, c.line);
    ASSERT_EQ(runs.size(), c.runs.size());
    for (std::size_t i = 0; i < runs.size(); ++i) {
      EXPECT_NEAR(runs[i].front().s, c.runs[i].first, 1e-6);
      EXPECT_NEAR(runs[i].back().s, c.runs[i].second, 1e-6);
      for (const auto& p : runs[i]) EXPECT_NEAR(p.H, Plane(p.E, p.N), 1e-9) << p.s;
    }
  }
}

TEST(GroundLine, BendsFallOnTheRidgesOfAPyramid) {
  // Four corners at 0 and a summit of 10: the line from west to east through the
  // summit rises straight to 10 in the middle and falls again.
  const basemap::GroundModel g({{0, 0, 0}, {100, 0, 0}, {100, 100, 0}, {0, 100, 0}, {50, 50, 10}, {50, 50, -4}});
  const auto runs = GroundAlong(g, {{0, 50}, {100, 50}});
  ASSERT_EQ(runs.size(), 1u);
  double top = -1, topS = -1;
  for (const auto& p : runs[0])
    if (p.H > top) top = p.H, topS = p.s;
  EXPECT_DOUBLE_EQ(top, 3);  // the two heights at the summit are averaged
  EXPECT_NEAR(topS, 50, 1e-9);
  EXPECT_NEAR(runs[0].front().H, 0, 1e-9);
  EXPECT_NEAR(runs[0].back().H, 0, 1e-9);
  // Straight in between: only the ends and the bend are needed.
  EXPECT_LE(runs[0].size(), 4u);
}

TEST(GroundLine, RoutesAndSectionLinesFromTheDocument) {
  Document doc;
  auto add = [&](int16_t code, int16_t kind, double x1, double y1, double x2, double y2, const char* name) {
    Entity e;
    e.Number = ++doc.EntityCount, e.Code = code, e.Kind = kind, e.Name = name;
    e.X[0] = x1, e.Y[0] = y1, e.X[1] = x2, e.Y[1] = y2;
    doc.EntityTable.push_back(e);
  };
  add(520, KindLine, 0, 0, 100, 0, "R1");
  add(520, KindPoint, 50, 5, 0, 0, "label");  // a note between two segments keeps the run
  add(520, KindLine, 100, 0, 100, 60, "");
  add(301, KindLine, 0, 0, 5, 5, "");
  add(520, KindLine, 500, 500, 600, 500, "R2");
  add(521, KindLine, 30, -10, 30, 20, "S2");     // across R1 at 30, drawn right to left
  add(521, KindLine, 110, 40, 90, 40, "S3");     // across the second leg at 140
  add(521, KindLine, 15, 10, 15, 20, "S1");      // short of the route: centred on its foot
  const auto routes = RoutesOf(doc);
  ASSERT_EQ(routes.size(), 2u);
  EXPECT_EQ(routes[0].name, "R1");
  EXPECT_EQ(routes[0].vertices.size(), 3u);
  EXPECT_DOUBLE_EQ(routes[0].Length(), 160);

  const auto s = SectionLines(doc, routes, 0);
  ASSERT_EQ(s.size(), 3u);
  struct Want {
    const char* name;
    double chainage, leftE, leftN, centre;
  } want[] = {{"S1", 15, 15, 20, 20}, {"S2", 30, 30, 20, 20}, {"S3", 140, 90, 40, 10}};
  for (std::size_t i = 0; i < 3; ++i) {
    SCOPED_TRACE(want[i].name);
    EXPECT_EQ(s[i].name, want[i].name);
    EXPECT_NEAR(s[i].chainage, want[i].chainage, 1e-9);
    EXPECT_NEAR(s[i].left.E, want[i].leftE, 1e-9);
    EXPECT_NEAR(s[i].left.N, want[i].leftN, 1e-9);
    EXPECT_NEAR(s[i].centre, want[i].centre, 1e-9);
  }
  // At an interval: 0, 40, 80, 120, 160 on the first route, 0, 40, 80, 100 on the second.
  const auto every = SectionLines(doc, routes, 40);
  ASSERT_EQ(every.size(), 9u);
  EXPECT_NEAR(every[3].chainage, 120, 1e-9);
  EXPECT_NEAR(every[3].left.E, 100 - IntervalSectionHalfWidth, 1e-9);  // left of a leg running north
  EXPECT_NEAR(every[4].chainage, 160, 1e-9);
}

}  // namespace
