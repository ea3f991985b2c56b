// Datums and the grid conversion: constants, the start-up asymmetry, the fixed details
// of the series, and the inverse search's failure in bounded time.
#include <gtest/gtest.h>

#include <cmath>

#include "geo/datum.h"
#include "geo/grid.h"

namespace tavik {
namespace {

TEST(Datums, ConstantsAndNames) {
  GpsDatumSettings s;
  EXPECT_EQ("TWD97", s.GpsDatum);
  EXPECT_EQ(121, s.CentralMeridian);
  EXPECT_EQ(6378137, s.EllipsoidA);
  // b from the flattening 1/298.257223563, e² and e'² from a² = 40680631590769.
  EXPECT_NEAR(6356752.314245179, s.EllipsoidB, 1e-8);
  EXPECT_NEAR(0.006694379990141, s.EllipsoidE2, 1e-14);
  EXPECT_NEAR(0.006739496742276, s.EllipsoidEP2, 1e-14);
  EXPECT_NEAR(s.EllipsoidEP2, s.EllipsoidEP2Alt, 1e-15);

  SetDatumTWD67(s);
  EXPECT_EQ("TWD67", s.GpsDatum);
  EXPECT_EQ(6378160, s.EllipsoidA);
  EXPECT_EQ(6356774.7192, s.EllipsoidB);
  // e² = (a² - b²) / a² written out with the literals of the 1967 ellipsoid.
  EXPECT_NEAR((6378160.0 * 6378160 - 6356774.7192 * 6356774.7192) / (6378160.0 * 6378160), s.EllipsoidE2, 1e-13);

  GpsDatumSettings w;
  SetDatumWGS84(w);
  GpsDatumSettings t;
  SetDatumTWD97(t);
  EXPECT_EQ("WGS84", w.GpsDatum);
  EXPECT_EQ(t.EllipsoidA, w.EllipsoidA);
  EXPECT_EQ(t.EllipsoidB, w.EllipsoidB);
  EXPECT_EQ(t.EllipsoidEP2, w.EllipsoidEP2);
}

TEST(Datums, StoredPairAtStartUp) {
  GpsDatumSettings twd67;
  SetDatumTWD67(twd67);
  struct Case {
    const char* stored;
    double wantA;
  } cases[] = {{"TWD97", 6378137}, {"TWD67", 6378160}, {"WGS84", 6378160}, {"", 6378160}, {"twd97", 6378160}};
  for (const auto& c : cases) {
    GpsDatumSettings s;
    LoadStoredDatum(s, c.stored, 119);
    EXPECT_EQ(c.stored, s.GpsDatum);  // the name is kept whatever was loaded
    EXPECT_EQ(c.wantA, s.EllipsoidA) << c.stored;
    EXPECT_EQ(119, s.CentralMeridian);
    if (c.wantA == 6378160) {
      EXPECT_EQ(twd67.EllipsoidEP2, s.EllipsoidEP2);
    }
  }
  GpsDatumSettings s;
  EXPECT_FALSE(SetDatumByName(s, "TWD2020"));
  EXPECT_EQ("TWD97", s.GpsDatum);
  EXPECT_TRUE(SetDatumByName(s, "WGS84"));
  EXPECT_EQ("WGS84", s.GpsDatum);
}

TEST(DegToArcSeconds, FloorsTowardsMinusInfinity) {
  EXPECT_NEAR(1.5 * 3600, DegToArcSeconds(1.5), 1e-9);
  EXPECT_NEAR(-1.5 * 3600, DegToArcSeconds(-1.5), 1e-9);
  EXPECT_NEAR(-0.25 * 3600, DegToArcSeconds(-0.25), 1e-9);
  EXPECT_EQ(0, DegToArcSeconds(0));
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
  GpsDatumSettings w;
  SetDatumWGS84(w);
  double we = 0, wn = 0;
  g2xy(w, 121.5, 23.5, we, wn);
  EXPECT_EQ(ee, we);
  EXPECT_EQ(ne, wn);
  GpsDatumSettings old;
  SetDatumTWD67(old);
  double oe = 0, on = 0;
  g2xy(old, 121.5, 23.5, oe, on);
  EXPECT_GT(std::fabs(on - ne), 1);
}

TEST(XyToLonLat, OutsideTheSearchBoxFailsInBoundedTime) {
  GpsDatumSettings s;
  const double cases[][2] = {
      {0, 0}, {250000, 1000000}, {-5e6, 2.6e6}, {250000, 9e6}, {1e9, 1e9}, {NAN, 2600000}, {250000, INFINITY},
  };
  for (const auto& c : cases) {
    double lon = -1, lat = -1;
    bool failed = false;
    XyToLonLat(s, c[0], c[1], lon, lat, failed);  // returns at all: the rounds are bounded
    EXPECT_TRUE(failed) << c[0] << " " << c[1];
    EXPECT_EQ(-1, lon);  // left as it was
    EXPECT_EQ(-1, lat);
  }
}

TEST(XyToLonLat, InsideTheBoxSettles) {
  GpsDatumSettings s;
  double lon = 0, lat = 0;
  bool failed = true;
  XyToLonLat(s, 250000 - 0.0009, 2655000, lon, lat, failed);
  ASSERT_FALSE(failed);
  EXPECT_NEAR(121, lon, 1e-8);
  double e = 0, n = 0;
  g2xy(s, lon, lat, e, n);
  EXPECT_NEAR(2655000, n, 1e-4);
}

}  // namespace
}  // namespace tavik
