// The grid conversion against an independent implementation: PROJ's transverse
// Mercator on the same ellipsoid (scale 0.9999, false easting 250000, no false
// northing), over grids of positions covering the main island on meridian 121 and
// Penghu on meridian 119. The series may differ from it by the 0.0009 m of the false
// easting and the truncation of its terms, within 0.002 m; the inverse search must
// come back to the starting grid position within 0.0001 m.
#include <gtest/gtest.h>
#include <proj.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "geo/grid.h"

namespace tavik {
namespace {

struct Area {
  const char* what;
  double meridian, lonMin, lonMax, latMin, latMax;
};

const Area kAreas[] = {
    {"main island", 121, 119.95, 122.05, 21.85, 25.35},
    {"Penghu", 119, 119.25, 119.75, 23.15, 23.85},
};

class ProjTmerc {
 public:
  ProjTmerc(const GpsDatumSettings& s) {
    ctx_ = proj_context_create();
    char def[400];
    std::snprintf(def, sizeof def,
                  "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                  "+step +proj=tmerc +lat_0=0 +lon_0=%.0f +k=0.9999 +x_0=250000 +y_0=0 +a=%.17g +b=%.17g",
                  s.CentralMeridian, s.EllipsoidA, s.EllipsoidB);
    pj_ = proj_create(ctx_, def);
  }
  ~ProjTmerc() {
    if (pj_) proj_destroy(pj_);
    proj_context_destroy(ctx_);
  }
  bool Ok() const { return pj_ != nullptr; }
  void Forward(double lon, double lat, double& e, double& n) const {
    PJ_COORD c = proj_trans(pj_, PJ_FWD, proj_coord(lon, lat, 0, 0));
    e = c.xy.x;
    n = c.xy.y;
  }

 private:
  PJ_CONTEXT* ctx_ = nullptr;
  PJ* pj_ = nullptr;
};

TEST(GridAgainstProj, ForwardWithinTwoMillimetresAndRoundTrip) {
  for (const char* datum : {"TWD97", "TWD67"}) {
    for (const auto& area : kAreas) {
      SCOPED_TRACE(std::string(datum) + " " + area.what);
      GpsDatumSettings s;
      ASSERT_TRUE(SetDatumByName(s, datum));
      s.CentralMeridian = area.meridian;
      ProjTmerc proj(s);
      ASSERT_TRUE(proj.Ok());
      const int steps = 24;
      double worstE = 0, worstN = 0, worstRound = 0;
      for (int i = 0; i <= steps; ++i) {
        for (int j = 0; j <= steps; ++j) {
          const double lon = area.lonMin + (area.lonMax - area.lonMin) * i / steps;
          const double lat = area.latMin + (area.latMax - area.latMin) * j / steps;
          double e = 0, n = 0, pe = 0, pn = 0;
          g2xy(s, lon, lat, e, n);
          proj.Forward(lon, lat, pe, pn);
          worstE = std::max(worstE, std::fabs(e - pe));
          worstN = std::max(worstN, std::fabs(n - pn));
          double lon2 = 0, lat2 = 0, e2 = 0, n2 = 0;
          bool failed = true;
          XyToLonLat(s, e, n, lon2, lat2, failed);
          ASSERT_FALSE(failed) << lon << " " << lat;
          g2xy(s, lon2, lat2, e2, n2);
          worstRound = std::max({worstRound, std::fabs(e2 - e), std::fabs(n2 - n)});
        }
      }
      EXPECT_LT(worstE, 0.002);
      EXPECT_LT(worstN, 0.002);
      EXPECT_LT(worstRound, 0.0001);
    }
  }
}

}  // namespace
}  // namespace tavik
