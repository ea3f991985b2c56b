// The reduction of a reading to coordinates, on both faces and at the edge values.
#include <gtest/gtest.h>

#include <cmath>

#include "geo/constants.h"
#include "procedures/reduction.h"

namespace tavik {
namespace {

TEST(Reduction, FacesAndOrientation) {
  const struct {
    const char* what;
    double hz, v, oc;
    double wantHz, wantV;
  } cases[] = {
      {"face one, level", 1.0, Pi / 2, 0, 1.0, 0},
      {"face one, up 0.1", 1.0, Pi / 2 - 0.1, 0.5, 1.5, 0.1},
      {"face two turns the circle back", 1.0 + Pi, 3 * Pi / 2 + 0.1, 0, 1.0, 0.1},
      {"face two below pi turns forward", 1.0, ThreePi / 2, 0, 1.0 + Pi, 0},
      {"pi itself is face two", 0.5, Pi, 0, 0.5 + Pi, Pi - ThreePi / 2},
      {"orientation wraps above 2pi", 5.0, 1.0, 2.0, 7.0 - TwoPi, Pi / 2 - 1.0},
      {"zero reading, zero constant", 0, Pi / 2, 0, 0, 0},
  };
  for (const auto& c : cases) {
    double hz = c.hz, v = c.v;
    FaceAndOrient(hz, v, c.oc);
    EXPECT_NEAR(hz, c.wantHz, 1e-12) << c.what;
    EXPECT_NEAR(v, c.wantV, 1e-12) << c.what;
  }
  // A sum of exactly 2pi stays: only a value above it is reduced.
  EXPECT_EQ(OrientReading(TwoPi - 1, 1), TwoPi - 1 + 1);
}

TEST(Reduction, PolarPointNudgesOnlyExactEquality) {
  double E = 0, N = 0;
  // Due north: sin(0) is exactly 0, so E equals the station and is nudged.
  PolarPoint(1000, 2000, 10, 0, 0, E, N);
  EXPECT_EQ(E, 1000.0001);
  EXPECT_EQ(N, 2010);
  // Zero distance: both nudged.
  PolarPoint(5, 6, 0, 1, 0, E, N);
  EXPECT_EQ(E, 5.0001);
  EXPECT_EQ(N, 6.0001);
}

TEST(Reduction, PairAzimuthQuadrantsAndNudge) {
  EXPECT_NEAR(PairAzimuth(1, 1), Pi / 4, 1e-12);
  EXPECT_NEAR(PairAzimuth(1, -1), 3 * Pi / 4, 1e-12);
  EXPECT_NEAR(PairAzimuth(-1, -1), 5 * Pi / 4, 1e-12);
  EXPECT_NEAR(PairAzimuth(-1, 1), 7 * Pi / 4, 1e-12);
  // Due north: dE 0 becomes 0.0001, nearly 0 and not pi.
  EXPECT_NEAR(PairAzimuth(0, 100), 0, 2e-6);
  // The stake-out form has no nudge: dE 0 falls to the last branch.
  EXPECT_NEAR(PairAzimuthNoNudge(0, 100), Pi, 1e-12);
}

TEST(Reduction, TurnedAngleForTheCadastralBook) {
  // Reading 10°00'00" with a constant equal to the backsight azimuth: 10°.
  EXPECT_EQ(TurnedAnglePacked(100000, 1.0, 1.0), 100000);
  // Constant below the backsight azimuth by 20°: raised by a turn, 350°.
  EXPECT_EQ(TurnedAnglePacked(100000, 0, 30.0 / 180 * Pi), 3400000);
  EXPECT_EQ(TurnedAnglePacked(0, 0.5, 0.5), 0);
  EXPECT_EQ(TurnedAnglePacked(1234512, 0, 0), 1234512);
}

}  // namespace
}  // namespace tavik
