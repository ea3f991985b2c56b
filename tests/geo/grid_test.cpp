// Datums and the grid conversion: constants, the start-up asymmetry, the fixed details
// of the series, and the inverse search's failure in bounded time.
#include <gtest/gtest.h>

#include <cmath>

#include "geo/datum.h"
#include "geo/grid.h"

namespace tavik {
namespace {

TEST(Datums, DerivedConstants) {
  GpsDatumSettings s;
  EXPECT_EQ("TWD97", s.GpsDatum);
  EXPECT_EQ(121, s.CentralMeridian);
  // b from the flattening 1/298.257223563, e² and e'² from a² = 40680631590769.
  EXPECT_NEAR(6356752.314245179, s.EllipsoidB, 1e-8);
  EXPECT_NEAR(0.006694379990141, s.EllipsoidE2, 1e-14);
  EXPECT_NEAR(0.006739496742276, s.EllipsoidEP2, 1e-14);
  EXPECT_NEAR(s.EllipsoidEP2, s.EllipsoidEP2Alt, 1e-15);
  SetDatumTWD67(s);
  EXPECT_EQ("TWD67", s.GpsDatum);
  EXPECT_EQ(6378160, s.EllipsoidA);
  EXPECT_EQ(6356774.7192, s.EllipsoidB);
}

TEST(Datums, StoredPairAtStartUp) {
  GpsDatumSettings twd97, twd67;
  SetDatumTWD67(twd67);
  // Only an exact "TWD97" gets its own ellipsoid; anything else starts on TWD67's.
  struct Case {
    const char* stored;
    const GpsDatumSettings& want;
  } cases[] = {{"TWD97", twd97}, {"WGS84", twd67}, {"", twd67}, {"twd97", twd67}};
  for (const auto& c : cases) {
    GpsDatumSettings s;
    LoadStoredDatum(s, c.stored, 119);
    EXPECT_EQ(c.stored, s.GpsDatum);  // the name is kept whatever was loaded
    EXPECT_EQ(c.want.EllipsoidA, s.EllipsoidA) << c.stored;
    EXPECT_EQ(c.want.EllipsoidEP2, s.EllipsoidEP2) << c.stored;
    EXPECT_EQ(119, s.CentralMeridian);
  }
  GpsDatumSettings s;
  EXPECT_FALSE(SetDatumByName(s, "TWD2020"));
  EXPECT_EQ("TWD97", s.GpsDatum);
  EXPECT_TRUE(SetDatumByName(s, "WGS84"));
  EXPECT_EQ("WGS84", s.GpsDatum);
}

TEST(DegToArcSeconds, FloorsTowardsMinusInfinity) {
  EXPECT_NEAR(-1.5 * 3600, DegToArcSeconds(-1.5), 1e-9);
  EXPECT_NEAR(-0.25 * 3600, DegToArcSeconds(-0.25), 1e-9);
}

TEST(g2xy, FixedDetailsOfTheSeries) {
  GpsDatumSettings s;
  double e = 0, n = 0;
  g2xy(s, 121, 23.5, e, n);
  EXPECT_EQ(250000 - 0.0009, e);  // on the central meridian the correction shows alone
  double e0 = 0, n0 = 0;
  g2xy(s, 121, 0, e0, n0);
  EXPECT_EQ(0, n0);  // the equator: every northing term vanishes
  // West of the meridian the easting falls below the false easting, symmetrically.
  double ew = 0, nw = 0, ee = 0, ne = 0;
  g2xy(s, 120.5, 23.5, ew, nw);
  g2xy(s, 121.5, 23.5, ee, ne);
  EXPECT_LT(ew, 250000);
  EXPECT_NEAR(250000 - 0.0009, (ew + ee) / 2, 1e-6);
  EXPECT_NEAR(nw, ne, 1e-6);
  // 119 keeps the false easting of 250000.
  GpsDatumSettings p = s;
  p.CentralMeridian = 119;
  double ep = 0, np = 0;
  g2xy(p, 119, 23.5, ep, np);
  EXPECT_EQ(250000 - 0.0009, ep);
  EXPECT_EQ(n, np);
  // Switching between TWD97 and WGS84 changes no coordinate; TWD67 does.
  GpsDatumSettings w, old;
  SetDatumWGS84(w);
  SetDatumTWD67(old);
  double we = 0, wn = 0, oe = 0, on = 0;
  g2xy(w, 121.5, 23.5, we, wn);
  g2xy(old, 121.5, 23.5, oe, on);
  EXPECT_EQ(ee, we);
  EXPECT_EQ(ne, wn);
  EXPECT_GT(std::fabs(on - ne), 1);
}

TEST(XyToLonLat, OutsideTheSearchBoxFailsInBoundedTimeInsideSettles) {
  GpsDatumSettings s;
  const double cases[][2] = {{0, 0}, {-5e6, 2.6e6}, {250000, 9e6}, {1e9, 1e9}, {NAN, 2600000}, {250000, INFINITY}};
  for (const auto& c : cases) {
    double lon = -1, lat = -1;
    bool failed = false;
    XyToLonLat(s, c[0], c[1], lon, lat, failed);  // returns at all: the rounds are bounded
    EXPECT_TRUE(failed) << c[0] << " " << c[1];
    EXPECT_EQ(-1, lon);  // left as it was
    EXPECT_EQ(-1, lat);
  }
  double lon = 0, lat = 0;
  bool failed = true;
  XyToLonLat(s, 250000 - 0.0009, 2655000, lon, lat, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(121, lon, 1e-8);
}

}  // namespace
}  // namespace tavik
