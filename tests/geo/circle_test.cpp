// Circles and arcs through three points: centre, nudge, half-sweep point, drawing and
// sampling counts.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "geo/circle.h"
#include "geo/constants.h"
#include "platform/scripted/scripted.h"

namespace tavik {
namespace {

double Dist(double e1, double n1, double e2, double n2) { return std::hypot(e2 - e1, n2 - n1); }

// First E, first N, last E, last N of a sampled chain.
void ExpectEnds(const std::vector<double>& e, const std::vector<double>& n, std::array<double, 4> want, double tol) {
  const double got[] = {e.front(), n.front(), e.back(), n.back()};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(want[i], got[i], tol) << i;
}

TEST(CircleCentre3, CentreOfThreePointsAndTheSeparationNudge) {
  double ec = 0, nc = 0;
  CircleCentre3(250010, 2650000, 250000, 2650010, 250006, 2650008, ec, nc);
  EXPECT_NEAR(250000, ec, 1e-6);
  EXPECT_NEAR(2650000, nc, 1e-6);
  // The nudge moves the second of each equal pair, in order: E2 moves to 5.0001, which
  // then equals E3, so E3 moves on; N1 = N3 moves N3.
  double e1 = 5, n1 = 1, e2 = 5, n2 = 2, e3 = 5.0001, n3 = 1;
  SeparationNudge(e1, n1, e2, n2, e3, n3);
  EXPECT_EQ((std::vector<double>{5, 1, 5 + 0.0001, 2, 5.0001 + 0.0001, 1 + 0.0001}),
            (std::vector<double>{e1, n1, e2, n2, e3, n3}));
}

TEST(ArcMidPoint, HalfTheSweepOnEitherTurnAndHeightRules) {
  // From (-10, 0) over (0, N2) to (10, 0): radius 10 round (0, 0), so the midpoint is
  // (0, N2) on either turn. Heights start at 7.
  ui::ScriptedDialogs dlg;
  struct Case {
    int16_t mapType;
    double n2, h1, h3, wantH;
  } cases[] = {
      {1, 10, 10, 20, 15},  {1, -10, 10, 20, 15}, {1, 10, 0, 20, 20},
      {1, 10, 10, -1, 10},  {1, 10, 0, 0, 7},     {2, 10, 10, 20, 7},  // plan map: height untouched
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.mapType << " " << c.n2 << " " << c.h1 << " " << c.h3);
    double em = 0, nm = 0, hm = 7;
    ASSERT_TRUE(ArcMidPoint(dlg, c.mapType, -10, 0, c.h1, 0, c.n2, 10, 0, c.h3, em, nm, hm));
    EXPECT_NEAR(0, em, 2e-4);  // the nudge moves points by 0.0001
    EXPECT_NEAR(c.n2, nm, 2e-4);
    EXPECT_EQ(c.wantH, hm);
  }
  EXPECT_TRUE(dlg.shown.empty());
}

TEST(ThreePointRoutines, CollinearPoints) {
  ui::ScriptedDialogs dlg;
  ui::RecordingSurface paper;
  View v;
  double em = 1, nm = 2, hm = 3, len = 4;
  EXPECT_FALSE(ArcMidPoint(dlg, 1, 5, 5, 0, 5, 5, 5, 5, 0, em, nm, hm));
  EXPECT_FALSE(DrawArc3(paper, dlg, v, 100, 0, 0, 1, 1, 2, 2, len));
  EXPECT_EQ((std::vector<std::string>{"錯誤:三點共線.", "錯誤:三點共線."}), dlg.Messages());
  EXPECT_EQ(1, em);
  EXPECT_EQ(4, len);
  EXPECT_TRUE(paper.ops.empty());
  std::vector<double> e = {9}, n = {9};
  SampleArc3(5, 5, 5, 5, 5, 5, e, n);  // says nothing, leaves the arrays
  EXPECT_EQ(std::vector<double>{9}, e);
  EXPECT_EQ(2u, dlg.shown.size());
}

TEST(DrawArc3, SingleArcAndArcAcrossZero) {
  ui::ScriptedDialogs dlg;
  View v;
  v.PaperMinE = 0;
  v.PaperMaxN = 100;
  // Points on a circle of radius 10 m round (50, 50), by azimuth in degrees. At 1:100
  // one metre is 32.5 pixels, so the radius on paper is 325 pixels.
  auto at = [](double deg, double& e, double& n) {
    e = 50 + 10 * std::sin(deg * Pi / 180);
    n = 50 + 10 * std::cos(deg * Pi / 180);
  };
  struct Case {
    const char* what;
    double az1, az2, az3;
    std::vector<double> pieces;  // surface angles in degrees, two per arc drawn
  } cases[] = {
      // Clockwise on the ground from 290° over 10° to 80°: on the surface (counted
      // counterclockwise from east) from 10° to 160°, one piece.
      {"one piece", 290, 10, 80, {10, 160}},
      // Clockwise from 20° over 90° to 150°: surface 300° to 70°, across zero.
      {"across zero", 20, 90, 150, {300, 360, 0, 70}},
      // The same arc given from its other end turns the other way and draws the same.
      {"reversed", 150, 90, 20, {300, 360, 0, 70}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    double e1, n1, e2, n2, e3, n3;
    at(c.az1, e1, n1);
    at(c.az2, e2, n2);
    at(c.az3, e3, n3);
    ui::RecordingSurface paper;
    double len = 0;
    ASSERT_TRUE(DrawArc3(paper, dlg, v, 100, e1, n1, e2, n2, e3, n3, len));
    ASSERT_EQ(c.pieces.size() / 2, paper.Count("arc"));
    double sweep = 0;
    for (std::size_t i = 0; i < paper.ops.size(); ++i) {
      const auto& a = paper.ops[i].v;
      EXPECT_NEAR(50 * 32.5, a[0], 1e-3);
      EXPECT_NEAR(50 * 32.5, a[1], 1e-3);
      EXPECT_NEAR(325, a[2], 1e-3);
      EXPECT_NEAR(c.pieces[2 * i] * Pi / 180, a[3], 1e-9);
      EXPECT_NEAR(c.pieces[2 * i + 1] * Pi / 180, a[4], 1e-9);
      sweep += a[4] - a[3];
    }
    EXPECT_NEAR(sweep * 325, len, 1e-2);
  }
  EXPECT_TRUE(dlg.shown.empty());
}

TEST(SampleCircle, StepCountsAndClosure) {
  struct Case {
    double radius;
    int32_t steps;
  } cases[] = {{0, 36}, {100, 36}, {120, 42}, {-5, 36}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.radius);
    EXPECT_EQ(c.steps, CircleSteps(c.radius));
    std::vector<double> e, n;
    SampleCircle(1000, 2000, c.radius, e, n);
    ASSERT_EQ(static_cast<std::size_t>(c.steps + 1), e.size());
    EXPECT_EQ(e.front(), e.back());
    EXPECT_EQ(n.front(), n.back());
    EXPECT_EQ(1000, e[0]);                // first vertex due north
    EXPECT_EQ(2000 + c.radius, n[0]);
    for (std::size_t i = 0; i < e.size(); ++i) EXPECT_NEAR(std::fabs(c.radius), Dist(1000, 2000, e[i], n[i]), 1e-9);
  }
}

TEST(SampleArc3, CountsAndEnds) {
  // A half circle of radius 100 (36 steps a turn): 18 steps of 10°, so 19 vertices,
  // unless the float sweep falls a hair short of 18 steps; then the end is still exact.
  std::vector<double> e, n;
  SampleArc3(-100, 0, 0, 100, 100, 0, e, n);
  ASSERT_GE(e.size(), 18u);
  ASSERT_LE(e.size(), 19u);
  ExpectEnds(e, n, {-100, 0, 100, 0}, 1e-9);
  for (std::size_t i = 0; i < e.size(); ++i) {
    EXPECT_NEAR(100, Dist(0, 0, e[i], n[i]), 1e-9);
    EXPECT_GE(n[i], -1e-9);  // over the north, the way point 2 lies
  }
  // A short arc of 25° at radius 300 (78 steps a turn, 4.615° each): Int(25 / 4.615) = 5
  // steps, 6 vertices, the last on point 3.
  const double r = 300, a3 = 25 * Pi / 180;
  std::vector<double> e3, n3;
  SampleArc3(0, r, r * std::sin(a3 / 2), r * std::cos(a3 / 2), r * std::sin(a3), r * std::cos(a3), e3, n3);
  ASSERT_EQ(6u, e3.size());
  EXPECT_NEAR(r * std::sin(a3), e3.back(), 1e-9);
  EXPECT_NEAR(r * std::sin(TwoPi / 78), e3[1], 1e-6);
}

TEST(SampleArc3, FirstTwoPointsOnOneGridLineSampleToNothing) {
  // E1 = E2 leaves the centre formula nothing to divide by. Sampling takes the points
  // as they stand (only drawing and the midpoint nudge them), so the arc gives no
  // chain, and the arrays keep what they held.
  std::vector<double> e{7}, n{8};
  SampleArc3(0, 100, 0, -100, 100, 0, e, n);
  EXPECT_EQ(std::vector<double>{7}, e);
  EXPECT_EQ(std::vector<double>{8}, n);
}

}  // namespace
}  // namespace tavik
