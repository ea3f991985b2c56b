// Line intersection by its table of cases, the pick box and the chain-in-box test.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "geo/intersect.h"
#include "geo/pick.h"

namespace tavik {
namespace {

TEST(IntersectLines, TableOfCases) {
  struct Case {
    const char* what;
    double x1, y1, x2, y2, x3, y3, x4, y4;
    bool ok;
    double e, n;
  } cases[] = {
      {"vertical, vertical", 1, 0, 1, 5, 2, 0, 2, 5, false, 0, 0},
      {"vertical, horizontal", 1, 0, 1, 5, 0, 3, 9, 3, true, 1, 3},
      {"vertical, sloped", 4, 0, 4, 5, 0, 1, 2, 2, true, 4, 3},
      {"horizontal, horizontal", 0, 1, 5, 1, 0, 2, 5, 2, false, 0, 0},
      {"horizontal, vertical", 0, 2, 5, 2, 3, 0, 3, 7, true, 3, 2},
      {"horizontal, sloped", 0, 3, 5, 3, 0, 1, 2, 2, true, 4, 3},
      {"sloped, vertical", 0, 1, 2, 2, 4, 0, 4, 9, true, 4, 3},
      {"sloped, horizontal", 0, 1, 2, 2, 0, 3, 1, 3, true, 4, 3},
      {"sloped, sloped", 0, 0, 1, 1, 0, 4, 1, 3, true, 2, 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    double x1 = c.x1, e = -1, n = -1;
    bool ok = !c.ok;
    IntersectLines(x1, c.y1, c.x2, c.y2, c.x3, c.y3, c.x4, c.y4, e, n, ok);
    EXPECT_EQ(c.ok, ok);
    if (c.ok) {
      EXPECT_DOUBLE_EQ(c.e, e);
      EXPECT_DOUBLE_EQ(c.n, n);
    }
    EXPECT_EQ(c.x1, x1);  // only parallel sloped lines move X1
  }
}

TEST(IntersectLines, ParallelSlopedLinesNudgeX1BackToTheCaller) {
  // Line 1 y = x, line 2 y = x + 1: raising X1 by 0.0001 turns line 1 a little, and the
  // lines meet far away, on line 2.
  double x1 = 0, e = 0, n = 0;
  bool ok = false;
  IntersectLines(x1, 0, 10, 10, 0, 1, 10, 11, e, n, ok);
  EXPECT_TRUE(ok);
  EXPECT_EQ(0.0001, x1);
  EXPECT_GT(std::fabs(e), 1000);
  EXPECT_DOUBLE_EQ(e + 1, n);
}

TEST(PickBoxTest, BoxRoundThePointerBoundsIncluded) {
  View v;
  v.PaperMinE = 0;
  v.PaperMaxN = 100;
  // 1:100, 32.5 pixels a metre. Pointer at (101, 101): box centre pixel (100, 100),
  // world (100 / 32.5, 100 - 100 / 32.5); a box of 20 pixels reaches 10 / 32.5 m each way.
  const double ce = 100 / 32.5, cn = 100 - 100 / 32.5, half = 10 / 32.5;
  struct Case {
    double e, n;
    bool in;
  } cases[] = {
      {ce, cn, true},
      {ce + half * 0.99, cn - half * 0.99, true},
      {ce + half * 1.01, cn, false},
      {ce, cn + half * 1.01, false},
  };
  for (const auto& c : cases) EXPECT_EQ(c.in, PickBoxTest(v, 100, 101, 101, 20, c.e, c.n)) << c.e << " " << c.n;
  // A corner itself is inside.
  double e = 0, n = 0;
  PaperToWorld(v, 100, 101 - 1 - 10, 101 - 1 + 10, e, n);
  EXPECT_TRUE(PickBoxTest(v, 100, 101, 101, 20, e, n));
}

TEST(BoxHitsChain, EndPointsCrossingsAndMisses) {
  // The box is (4, 4) to (6, 6); its sides are tested south, east, north, west.
  struct Case {
    const char* what;
    std::vector<double> e, n, h;  // no heights: a null array, read as 0
    bool hit;
    double E, N, H;
  } cases[] = {
      // The east side at E 6 is found first, three tenths of the way along: H 106.
      {"through from west to east", {0, 20, 20}, {5, 5, 30}, {100, 120, 0}, true, 6, 5, 106},
      {"an end on a corner", {6, 9}, {6, 9}, {7, 8}, true, 6, 6, 7},
      {"vertical, found with its exact E", {5.5, 5.5}, {0, 10}, {}, true, 5.5, 4, 0},
      {"passing by", {0, 10, 10}, {7, 7, 20}, {}, false, 0, 0, 0},
      {"a single vertex", {0}, {7}, {}, false, 0, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    FoundPosition f;
    const int16_t count = static_cast<int16_t>(c.e.size());
    ASSERT_EQ(c.hit, BoxHitsChain(count, c.e.data(), c.n.data(), c.h.empty() ? nullptr : c.h.data(), 4, 4, 6, 6, f));
    if (!c.hit) continue;
    EXPECT_EQ(c.E, f.E);
    EXPECT_EQ(c.N, f.N);
    EXPECT_EQ(c.H, f.H);
  }
}

}  // namespace
}  // namespace tavik
