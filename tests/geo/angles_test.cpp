// Angle forms: the three carry thresholds, the sign rules and the text round of
// DmsToPacked.
#include <gtest/gtest.h>

#include "geo/angles.h"
#include "geo/constants.h"

namespace tavik {
namespace {

TEST(AngleSplit, CarryThresholdsOfTheThreeRoutines) {
  // Each routine carries the seconds into the minutes at its own threshold.
  enum From { Packed, Radians, Degrees };
  struct Case {
    From from;
    double in;  // packed value, or degrees (turned into radians for Radians)
    int16_t d, m;
    double s;
  } cases[] = {
      {Packed, 1234530.5, 123, 45, 30.5},
      {Packed, 1235960.0, 124, 0, 0},           // both carries
      {Packed, 1235959.9995, 124, 0, 0},        // 60 - s = 0.0005 <= 0.001
      {Packed, 1235959.998, 123, 59, 59.998},   // 0.002 away: no carry
      {Packed, 1234575.0, 123, 46, 0},          // 60 and above included: 75 s carries to 0
      {Packed, -1234530.5, -123, 45, 30.5},     // the sign goes to the degrees alone
      {Radians, 10 + 20 / 60.0 + 59.5 / 3600, 10, 21, 0},  // from 59.4 s the next minute
      {Radians, 10 + 20 / 60.0 + 59.3 / 3600, 10, 20, 59.3},
      {Radians, 10 + 59 / 60.0 + 59.6 / 3600, 11, 0, 0},  // on into the degrees
      {Degrees, 45 + 30 / 60.0 + 59.995 / 3600, 45, 31, 0},
      {Degrees, 45 + 30 / 60.0 + 59.98 / 3600, 45, 30, 59.98},
      {Degrees, 45 + 30 / 60.0 + 59.5 / 3600, 45, 30, 59.5},  // Radians would carry this one
      {Degrees, 45 + 59 / 60.0 + 59.995 / 3600, 46, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.from << " " << c.in);
    int16_t d = 0, m = 0;
    double s = 0;
    if (c.from == Packed) PackedToDms(c.in, d, m, s);
    if (c.from == Radians) RadiansToDms(c.in / RadToDeg, d, m, s);
    if (c.from == Degrees) DegreesToDms(c.in, d, m, s);
    EXPECT_EQ(c.d, d);
    EXPECT_EQ(c.m, m);
    EXPECT_NEAR(c.s, s, c.s == 0 ? 1e-9 : 1e-6);
  }
}

TEST(DmsToRadians, DegreesCarryTheSignAloneWithTheProgramsPi) {
  EXPECT_DOUBLE_EQ(-9.5 * Pi / 180, DmsToRadians(-10, 30, 0));
  EXPECT_DOUBLE_EQ((123 + 45 / 60.0 + 30.5 / 3600) * Pi / 180, PackedToRadians(1234530.5));
  EXPECT_EQ(3.14159265358979, DegreesToRadians(180));  // the literal, not the nearest double
  // Int goes towards minus infinity: -0.5° is -1° + 30'.
  EXPECT_NEAR(-1800, DegreesToSeconds(-0.5), 1e-9);
}

TEST(DmsToPacked, JoinsThePartsAsText) {
  struct Case {
    int16_t d, m;
    double s, want;
  } cases[] = {{123, 4, 5.25, 1230405.25}, {5, 0, 0, 50000}, {-10, 30, 0, -103000}, {0, 0, 12.125, 12.125}};
  for (const auto& c : cases) {
    double packed = 0;
    DmsToPacked(c.d, c.m, c.s, packed);
    EXPECT_EQ(c.want, packed) << c.d << " " << c.m << " " << c.s;
  }
}

}  // namespace
}  // namespace tavik
