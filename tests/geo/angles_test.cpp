// Angle forms: the three carry thresholds, the sign rules and the text round of
// DmsToPacked.
#include <gtest/gtest.h>

#include <cmath>

#include "geo/angles.h"
#include "geo/constants.h"

namespace tavik {
namespace {

struct Parts {
  int16_t d, m;
  double s;
};

void ExpectParts(const Parts& want, int16_t d, int16_t m, double s, double tol) {
  EXPECT_EQ(want.d, d);
  EXPECT_EQ(want.m, m);
  EXPECT_NEAR(want.s, s, tol);
}

TEST(PackedToDms, CarriesWithinOneThousandthOfSixty) {
  struct Case {
    double packed;
    Parts want;
  } cases[] = {
      {1234530.5, {123, 45, 30.5}},
      {1235960.0, {124, 0, 0}},       // both carries
      {1235959.9995, {124, 0, 0}},    // 60 - s = 0.0005 <= 0.001
      {1235959.998, {123, 59, 59.998}},  // 0.002 away: no carry
      {1234560.0, {123, 46, 0}},      // seconds carry, minutes stay below 60
      {1234575.0, {123, 46, 0}},      // 60 and above included: 75 s carries to 0
      {-1234530.5, {-123, 45, 30.5}}, // the sign goes to the degrees alone
      {0.0, {0, 0, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.packed);
    int16_t d = 0, m = 0;
    double s = 0;
    PackedToDms(c.packed, d, m, s);
    ExpectParts(c.want, d, m, s, 1e-6);
  }
}

TEST(RadiansToDms, CarriesOnlyInOpenRangeFrom59_4) {
  // Angles given in degrees, minutes and seconds, turned into radians with the
  // program's constants so that the split sees the value it would see in use.
  struct Case {
    double seconds;
    Parts want;
  } cases[] = {
      {59.5, {10, 21, 0}},    // 59.5 s prints as the next whole minute
      {59.3, {10, 20, 59.3}}, // below 59.4: kept
      {30.0, {10, 20, 30}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.seconds);
    const double rad = (10 + 20 / 60.0 + c.seconds / 3600) / RadToDeg;
    int16_t d = 0, m = 0;
    double s = 0;
    RadiansToDms(rad, d, m, s);
    ExpectParts(c.want, d, m, s, 1e-6);
  }
  // A carry into the sixtieth minute carries on into the degrees.
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms((10 + 59 / 60.0 + 59.6 / 3600) / RadToDeg, d, m, s);
  ExpectParts({11, 0, 0}, d, m, s, 1e-9);
}

TEST(DegreesToDms, CarriesOnlyAbove59_99) {
  struct Case {
    double seconds;
    Parts want;
  } cases[] = {
      {59.995, {45, 31, 0}},
      {59.98, {45, 30, 59.98}},
      {59.5, {45, 30, 59.5}},  // RadiansToDms would carry this one; this routine does not
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.seconds);
    int16_t d = 0, m = 0;
    double s = 0;
    DegreesToDms(45 + 30 / 60.0 + c.seconds / 3600, d, m, s);
    ExpectParts(c.want, d, m, s, 1e-6);
  }
  int16_t d = 0, m = 0;
  double s = 0;
  DegreesToDms(45 + 59 / 60.0 + 59.995 / 3600, d, m, s);
  ExpectParts({46, 0, 0}, d, m, s, 1e-9);
}

TEST(DmsToRadians, DegreesCarryTheSignAlone) {
  EXPECT_DOUBLE_EQ(-9.5 * Pi / 180, DmsToRadians(-10, 30, 0));
  EXPECT_DOUBLE_EQ((123 + 45 / 60.0 + 30.5 / 3600) * Pi / 180, PackedToRadians(1234530.5));
  // The program's pi, not the nearest double: half a turn is the literal.
  EXPECT_EQ(3.14159265358979, DegreesToRadians(180));
  EXPECT_NE(M_PI, DegreesToRadians(180));
}

TEST(DmsToPacked, JoinsThePartsAsText) {
  struct Case {
    int16_t d, m;
    double s, want;
  } cases[] = {
      {123, 4, 5.25, 1230405.25},
      {123, 45, 30.5, 1234530.5},
      {5, 0, 0, 50000},
      {-10, 30, 0, -103000},
      {0, 0, 12.125, 12.125},
  };
  for (const auto& c : cases) {
    double packed = 0;
    DmsToPacked(c.d, c.m, c.s, packed);
    EXPECT_EQ(c.want, packed) << c.d << " " << c.m << " " << c.s;
  }
}

TEST(DegreesToSeconds, WholeDegreesMinutesAndTheRest) {
  EXPECT_NEAR(123 * 3600 + 45 * 60 + 30.5, DegreesToSeconds(123 + 45 / 60.0 + 30.5 / 3600), 1e-8);
  // Int goes towards minus infinity: -0.5° is -1° + 30'.
  EXPECT_NEAR(-1800, DegreesToSeconds(-0.5), 1e-9);
}

}  // namespace
}  // namespace tavik
