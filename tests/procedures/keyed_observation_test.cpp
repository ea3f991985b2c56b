// Readings typed as a surveyor keys them.
#include <gtest/gtest.h>

#include "geo/angles.h"
#include "procedures/keyed_observation.h"

namespace tavik {
namespace {

TEST(KeyedObservation, AcceptsDddmmssAndLeavesAnInstrumentsAnswer) {
  InstrumentState inst;
  ASSERT_FALSE(KeyinObservation(inst, "1234512", " 901530 ", "25.5").has_value());
  EXPECT_EQ(inst.ObsHzRaw, 1234512);
  EXPECT_EQ(inst.ObsVRaw, 901530);
  EXPECT_EQ(inst.ObsHz, PackedToRadians(1234512));
  EXPECT_EQ(inst.ObsV, PackedToRadians(901530));
  EXPECT_EQ(inst.ObsSlope, 25.5);
}

TEST(KeyedObservation, RefusalsChangeNothing) {
  const struct {
    const char *hz, *v, *slope, *title;
  } cases[] = {
      {"1236512", "900000", "10", "水平角錯誤"},   // 65 minutes
      {"1234560", "900000", "10", "水平角錯誤"},   // 60 seconds
      {"3600000", "900000", "10", "水平角錯誤"},
      {"-10000", "900000", "10", "水平角錯誤"},
      {"12a", "900000", "10", "水平角錯誤"},
      {"", "900000", "10", "水平角錯誤"},
      {"0", "abc", "10", "天頂距錯誤"},
      {"0", "900000", "0", "斜距錯誤"},
      {"0", "900000", "-3", "斜距錯誤"},
      {"0", "900000", "x", "斜距錯誤"},
  };
  for (const auto& c : cases) {
    InstrumentState inst;
    inst.ObsSlope = 7;
    const auto e = KeyinObservation(inst, c.hz, c.v, c.slope);
    ASSERT_TRUE(e.has_value()) << c.hz << " " << c.v << " " << c.slope;
    EXPECT_EQ(e->title, c.title);
    EXPECT_EQ(inst.ObsSlope, 7);
    EXPECT_EQ(inst.ObsHzRaw, 0);
  }
}

TEST(KeyedObservation, FractionOfASecondIsKeptInRadians) {
  InstrumentState inst;
  ASSERT_FALSE(KeyinObservation(inst, "450512.5", "900000", "1").has_value());
  EXPECT_EQ(inst.ObsHzRaw, 450512);
  EXPECT_EQ(inst.ObsHz, PackedToRadians(450512.5));
}

}  // namespace
}  // namespace tavik
