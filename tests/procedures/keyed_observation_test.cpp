// Readings typed as a surveyor keys them, and the choice of an .OBS file to import.
#include <gtest/gtest.h>

#include "core/temp_home.h"
#include "geo/angles.h"
#include "platform/scripted/scripted.h"
#include "procedures/import_obs.h"
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
  // A fraction of a second stays in radians; the packed reading drops it.
  ASSERT_FALSE(KeyinObservation(inst, "450512.5", "900000", "1").has_value());
  EXPECT_EQ(inst.ObsHzRaw, 450512);
  EXPECT_EQ(inst.ObsHz, PackedToRadians(450512.5));
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

TEST(ImportObs, ChecksTheChosenFile) {
  testing::TempHome home;
  testing::WriteBytes(home.path / "a.obs", "x");
  testing::WriteBytes(home.path / "a.txt", "x");
  ui::ScriptedDialogs d;
  EXPECT_FALSE(ImportOBS(d, home.path.string()));  // cancelled: no word
  EXPECT_TRUE(d.Messages().empty());
  d.files = {(home.path / "none.OBS").string(), (home.path / "a.txt").string(), (home.path / "a.obs").string()};
  EXPECT_FALSE(ImportOBS(d, ""));
  EXPECT_EQ(d.Messages().back(), "檔案不存在!");
  EXPECT_FALSE(ImportOBS(d, ""));
  EXPECT_EQ(d.shown.back().title, "檔案格式或檔案型別不符");
  EXPECT_EQ(d.shown.back().text, "必需是TAVIK的OBS格式檔");
  EXPECT_TRUE(ImportOBS(d, ""));
  EXPECT_EQ(d.shown.size(), 6u);  // four file dialogs, two messages
}

}  // namespace
}  // namespace tavik
