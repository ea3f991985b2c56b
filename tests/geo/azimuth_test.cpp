// Bearings on and off the axes, the foot of a perpendicular, pair sorting and point names.
#include <gtest/gtest.h>

#include <cmath>

#include "geo/azimuth.h"
#include "geo/constants.h"
#include "geo/point_name.h"

namespace tavik {
namespace {

TEST(AzimuthDistance, AxesAndQuadrants) {
  const double r18 = std::sqrt(18.0), q = std::atan(1.0);
  struct Case {
    const char* what;
    double dE, dN, distance, azimuth;
  } cases[] = {
      {"same point", 0, 0, 0, 0},          {"north", 0, 5, 5, 0},
      {"south", 0, -5, 5, Pi},             {"east", 5, 0, 5, Pi / 2},
      {"west", -5, 0, 5, ThreePi / 2},     {"north-east", 3, 3, r18, Pi / 2 - q},
      {"south-east", 3, -3, r18, Pi / 2 + q}, {"south-west", -3, -3, r18, ThreePi / 2 - q},
      {"north-west", -3, 3, r18, ThreePi / 2 + q},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    double d = -1, a = -1;
    AzimuthDistance(100, 200, 100 + c.dE, 200 + c.dN, d, a);
    EXPECT_DOUBLE_EQ(c.distance, d);
    EXPECT_EQ(c.azimuth, a);  // the same expression, so exactly the same value
  }
}

TEST(AzimuthDistance, HeightAndEmptyValues) {
  double d = 0, a = 0;
  AzimuthDistance3(0, 0, 0, 0, 4, 3, d, a);  // along N, 3 m up: the axis case drops the height
  EXPECT_EQ(4, d);
  EXPECT_EQ(0, a);
  AzimuthDistance3(0, 0, 0, 3, 4, 12, d, a);  // off the axes: in space
  EXPECT_DOUBLE_EQ(13, d);
  AzimuthDistance3(0, 0, 0, 0, 0, 7, d, a);  // straight up: not the "same point" case
  EXPECT_EQ(7, d);
  EXPECT_EQ(0, a);
  AzimuthDistanceVar(std::nullopt, std::nullopt, 0.0, 2.0, d, a);  // empty reads as zero
  EXPECT_EQ(2, d);
  EXPECT_EQ(0, a);
}

TEST(FootOnSegment, FootAndInOutSorting) {
  Foot f;
  double e1 = 10, n1 = 10, e2 = 0, n2 = 0;  // given from the high end
  EXPECT_TRUE(FootOnSegment(10, 0, e1, n1, e2, n2, f));
  EXPECT_NEAR(5, f.FootE, 1e-9);
  EXPECT_NEAR(5, f.FootN, 1e-9);
  // The caller's copies come back sorted.
  EXPECT_EQ((std::vector<double>{0, 0, 10, 10}), (std::vector<double>{e1, n1, e2, n2}));
  double a1 = 0, b1 = 0, a2 = 10, b2 = 0;
  EXPECT_FALSE(FootOnSegment(12, 3, a1, b1, a2, b2, f));  // beyond the end
  EXPECT_NEAR(12, f.FootE, 1e-9);
}

TEST(FootOnSegment3, HeightRules) {
  struct Case {
    double h1, h2;
    int16_t mapType;
    double want;
  } cases[] = {
      {10, 20, 1, 12.5},  // a quarter of the way along
      {0, 20, 1, 20}, {10, 0, 1, 10}, {0, 0, 1, 0},
      {10, 20, 2, -5},  // plan map: FootH is not touched
  };
  for (const auto& c : cases) {
    Foot f;
    f.FootH = -5;
    double e1 = 0, n1 = 0, e2 = 8, n2 = 0;
    FootOnSegment3(2, 4, e1, n1, c.h1, e2, n2, c.h2, c.mapType, f);
    EXPECT_NEAR(c.want, f.FootH, 1e-9) << c.h1 << " " << c.h2 << " " << c.mapType;
  }
}

TEST(SortPairs, AscendingByFirstCoordinateCarryingTheSecond) {
  std::vector<double> p[2] = {{3, 1, 2, 9}, {30, 10, 20, 90}};
  SortPairs(p, 3);  // the fourth row is outside the count
  EXPECT_EQ((std::vector<double>{1, 2, 3, 9}), p[0]);
  EXPECT_EQ((std::vector<double>{10, 20, 30, 90}), p[1]);
}

TEST(SplitPointName, PrefixNumberWidth) {
  struct Case {
    const char* name;
    const char* prefix;
    int16_t number, width;
  } cases[] = {
      {"12A", "", 0, 1},      {"ABC", "ABC", 0, 1}, {"P12345", "P", 2345, 4}, {"CP012", "CP", 12, 3},
      {"圖根5", "圖根", 5, 1}, {"", "", 0, 1},       {"A1B", "A", 1, 2},
  };
  for (const auto& c : cases) {
    std::string prefix = "x";
    int16_t number = -1, width = -1;
    SplitPointName(c.name, prefix, number, width);
    EXPECT_EQ(c.prefix, prefix) << c.name;
    EXPECT_EQ(c.number, number) << c.name;
    EXPECT_EQ(c.width, width) << c.name;
  }
}

}  // namespace
}  // namespace tavik
