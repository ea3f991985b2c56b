#include "procedures/gps_stakeout.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/tables.h"
#include "core/temp_home.h"
#include "core/workfiles.h"
#include "geo/constants.h"
#include "platform/scripted/scripted.h"

namespace tavik {
namespace {

// Guidance of one position: beep strictly inside the circle, the arrow held while the
// rover moves less than its fix can tell from noise, R brought into 0 to 2π.
TEST(GpsStakeGuide, ArrowAndBeepFollowFixAndDistance) {
  struct Case {
    const char* fix;
    double prevE, prevN, E, N;  // previous position and position
    double tE, tN;              // target
    bool turn, beep;
    double relative;            // checked when the arrow turns
  };
  const Case cases[] = {
      // Heading north, target due east: the arrow points right.
      {"最佳解", 0, 0, 0, 1, 10, 1, true, false, Pi / 2},
      // Heading east, target due north: three quarters of a turn, never negative.
      {"DGPS", 0, 0, 1, 0, 1, 10, true, false, 3 * Pi / 2},
      // Reversing in place by 0.03 with the best fix: held. 0.04 is enough.
      {"最佳解", 0, 0.03, 0, 0, 0, 10, false, false, 0},
      {"最佳解", 0, 0.04, 0, 0, 10, 0, true, false, 3 * Pi / 2},
      {"WAAS", 0, 0, 0, 0.69, 0, 10, false, false, 0},
      {"單點定位", 0, 0, 0, 1.19, 0, 10, false, false, 0},
      {"單點定位", 0, 0, 0, 1.2, 0, 10, true, false, 0},
      // Any other fix text turns it whatever the movement, a standing rover included.
      {"DGPS", 5, 5, 5, 5, 5, 9, true, false, 0},
      // Exactly on the alarm circle (radius 1): no beep; just inside: beep.
      {"DGPS", 0, 0, 0, 1, 0, 2, true, false, 0},
      {"DGPS", 0, 0, 0, 1, 0, 1.999, true, true, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.fix) + " at " + std::to_string(c.E) + "," + std::to_string(c.N));
    const StakeGuidance g = StakeGuide(c.prevE, c.prevN, c.E, c.N, c.tE, c.tN, 1, c.fix);
    EXPECT_EQ(g.TurnArrow, c.turn);
    EXPECT_EQ(g.Beep, c.beep);
    EXPECT_GE(g.Relative, 0);
    EXPECT_LT(g.Relative, TwoPi);
    if (c.turn) {
      EXPECT_NEAR(g.Relative, c.relative, 1e-9);
    }
  }
  const StakeGuidance g = StakeGuide(0, 0, 0, 1, 3, 5, 1, "DGPS");  // 5 m at azimuth 36°52'12"
  EXPECT_EQ(g.Label9, "5.000");
  EXPECT_EQ(g.Label8, "36-52-12");
}

// A small map at 1:100 whose paper starts at E 0, N 100: pixel (x, y) is E = x / 32.5,
// N = 100 - y / 32.5.
struct StakeFixture : ::testing::Test {
  testing::TempHome home;
  AppPaths paths{home.path};
  WorkFiles work{paths};
  Document doc;
  View view;
  GpsState gps;
  ui::ScriptedDialogs dialogs;
  GpsStakeOutLogic logic{doc, view, gps, dialogs};
  std::vector<std::string> calls;

  void SetUp() override {
    SetDocumentName(doc, (home.path / "SITE").string());
    view.PaperMinE = 0;
    view.PaperMaxN = 100;
    view.ScreenMinE = 0;
    view.ScreenMaxE = 100;
    view.ScreenMinN = 0;
    view.ScreenMaxN = 100;
    logic.hooks.DrawTargetMark = [this](double, double, int16_t code, const std::string& name) {
      calls.push_back("target " + std::to_string(code) + " " + name);
    };
    logic.hooks.EraseTargetMark = [this] { calls.push_back("erase"); };
    logic.hooks.Beep = [this] { calls.push_back("beep"); };
    logic.hooks.ViewChanged = [this] { calls.push_back("view"); };
    logic.hooks.RecordObservation = [this](double E, double N, double H) {
      AddPoint(doc, view, work, E, N, H);
      return true;
    };
    logic.hooks.AddNamedEntity = [this](int16_t code, double E, double N, double H, const std::string& name) {
      AddEntity(doc, view, work, code, E, N, H, name);
    };
  }
  static double Px(double E) { return E * 32.5 + 1; }
  static double Py(double N) { return (100 - N) * 32.5 + 1; }
};

// The three-step search: a named point entity first, then a bare point, then a line
// through the pick square; nothing gives the message.
TEST_F(StakeFixture, PickTargetSearchesEntitiesThenPointsThenLines) {
  AddPoint(doc, view, work, 10, 90, 5);
  AddEntity(doc, view, work, 201, 10, 90, 7, " K12 ");
  AddEntity(doc, view, work, 301, 10.1, 90, 0, "");  // no name: not a target
  AddPoint(doc, view, work, 20, 80, 3);
  AddEntity(doc, view, work, 500, KindLine, 30, 60, 1, 30, 80, 3, 0, 0, 0, "");

  EXPECT_TRUE(logic.PickTarget(Px(10), Py(90)));
  EXPECT_EQ(gps.StakeName, "K12");
  EXPECT_EQ(gps.StakeCode, 201);
  EXPECT_EQ(gps.StakeH, 7);
  EXPECT_EQ(logic.WindowTitle(), "GPS放樣-K12");

  EXPECT_TRUE(logic.PickTarget(Px(20), Py(80)));
  EXPECT_EQ(gps.StakeName, "NoName");
  EXPECT_EQ(gps.StakeCode, 131);
  EXPECT_EQ(gps.StakeX, 20);
  EXPECT_EQ(gps.StakeH, 3);

  EXPECT_TRUE(logic.PickTarget(Px(30.05), Py(70)));
  EXPECT_EQ(gps.StakeName, "NoName");
  EXPECT_NEAR(gps.StakeX, 30, 1e-9);
  EXPECT_NEAR(gps.StakeY, 70, 0.35);  // where the line meets the square
  EXPECT_NEAR(gps.StakeH, 1 + (gps.StakeY - 60) / 10, 1e-9);

  EXPECT_FALSE(logic.PickTarget(Px(60), Py(20)));
  EXPECT_EQ(dialogs.Messages().back(), "沒選到放樣資料");
  EXPECT_EQ(dialogs.shown.back().title, "沒有資料");
  EXPECT_EQ(calls.size(), 3u);  // one target mark per pick found
}

TEST_F(StakeFixture, SetupOffersNamedPointsAndChecksTheRadius) {
  AddEntity(doc, view, work, 201, 10, 90, 7, "A1");
  AddEntity(doc, view, work, 99, 11, 91, 0, "B2");
  AddEntity(doc, view, work, 201, 12, 92, 0, "A1");
  AddEntity(doc, view, work, 201, 13, 93, 0, "GONE");
  DeleteEntity(doc, work, 4);
  EXPECT_EQ(logic.TargetNames(), (std::vector<std::string>{"A1", "B2"}));

  EXPECT_FALSE(logic.Setup("B2", "abc", false));
  EXPECT_FALSE(logic.Setup("B2", "-1", false));
  EXPECT_EQ(gps.StakeName, "");
  EXPECT_TRUE(logic.Setup("B2", "2.5", true));
  EXPECT_EQ(gps.StakeName, "B2");
  EXPECT_EQ(gps.StakeX, 11);
  EXPECT_EQ(gps.StakeRadius, 2.5);
  EXPECT_TRUE(logic.AskNewName);
}

// Storing: with a new name asked for, an empty answer stores nothing; a name stores the
// point, the named entity with the target's code, and tells where the GSTK line went.
TEST_F(StakeFixture, StoringAsksForTheNameAndAnEmptyAnswerCancels) {
  AddEntity(doc, view, work, 201, 10, 90, 7, "K12");
  ASSERT_TRUE(logic.Setup("K12", "1", true));
  gps.GpsX = 10.01;
  gps.GpsY = 90.02;
  gps.GpsGround = 6.5;
  const int32_t entities = doc.EntityCount;

  dialogs.inputs = {std::string(""), std::nullopt};
  logic.Command2();
  logic.Command2();
  EXPECT_EQ(doc.PointCount, 0);
  EXPECT_EQ(doc.EntityCount, entities);
  EXPECT_EQ(dialogs.inputDefaults.front(), "K12");
  EXPECT_EQ(dialogs.shown.front().title, "輸入點名(樁號)");

  dialogs.inputs = {std::string(" K12-1 ")};
  logic.Command2();
  ASSERT_EQ(doc.PointCount, 1);
  EXPECT_EQ(doc.PointTable[0].E, 10.01);
  EXPECT_EQ(doc.PointTable[0].H, 6.5);
  ASSERT_EQ(doc.EntityCount, entities + 1);
  EXPECT_EQ(doc.EntityTable.back().Code, 201);
  EXPECT_EQ(doc.EntityTable.back().Name, "K12-1");
  EXPECT_EQ(dialogs.Messages().back(), "K12-1的觀測資料,己存入" + doc.GstkPath + "檔中");

  // With the original name kept there is no question; with no position yet, no record.
  ASSERT_TRUE(logic.Setup("", "1", false));
  const std::size_t shown = dialogs.shown.size();
  logic.Command2();
  EXPECT_EQ(doc.PointCount, 2);
  gps.GpsX = gps.GpsY = 0;
  logic.Command2();
  EXPECT_EQ(doc.PointCount, 2);
  EXPECT_EQ(dialogs.shown.size(), shown + 1);
}

// Refresh per position, the end of the target, and the view given back at closing.
TEST_F(StakeFixture, RefreshBeepsInsideAndClosingRestoresTheView) {
  doc.ScaleDenominator = 500;
  doc.ViewCentreE = 50;
  doc.ViewCentreN = 50;
  logic.Load();
  EXPECT_EQ(gps.StakeActive, kTrue);
  AddEntity(doc, view, work, 201, 10, 90, 7, "K12");
  ASSERT_TRUE(logic.Setup("K12", "1", false));
  gps.GpsFixText = "最佳解";
  auto at = [&](double E, double N) {
    gps.GpsPrevX = gps.GpsX;
    gps.GpsPrevY = gps.GpsY;
    gps.GpsX = E;
    gps.GpsY = N;
    logic.StakeRefresh();
  };
  at(10, 80);
  at(10, 85);
  EXPECT_TRUE(logic.ArrowShown);
  EXPECT_NEAR(logic.ArrowAngle, 0, 1e-12);
  EXPECT_EQ(logic.Label9, "5.000");
  at(10, 89.5);
  at(10, 89.5);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "beep"), 2);

  // The zoom of the approach changed the view; closing gives the opening's back.
  doc.ScaleDenominator = 1;
  doc.ViewCentreE = 10;
  logic.Command5();
  EXPECT_EQ(gps.StakeName, "");
  at(10, 89.6);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "beep"), 2);
  logic.Unload();
  EXPECT_EQ(gps.StakeActive, kFalse);
  EXPECT_EQ(doc.ScaleDenominator, 500);
  EXPECT_EQ(doc.ViewCentreE, 50);
  EXPECT_EQ(calls.back(), "view");
}

}  // namespace
}  // namespace tavik
