// A shot from the record button to the stored, logged point.
#include <gtest/gtest.h>

#include "core/numbers.h"
#include "core/record_text.h"
#include "core/text.h"
#include "geo/angles.h"
#include "procedures/observation_pipeline.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

struct Pipeline : testing::SurveyFixture {
  // Station S1 on (1000, 2000, 50), instrument 1.5 high, the circle turned so that a
  // reading of 0 points at azimuth 30°.
  Pipeline() {
    trueOc = DegreesToRadians(30);
    SetStation(1000, 2000, 50, trueOc);
    doc.InstrumentHeight = 1.5;
    doc.TargetHeight = 1.3;
  }
  std::string Slope() const { return num::Format(inst.ObsSlope, "0.000"); }
};

TEST_F(Pipeline, RecButtonRefusesWithoutStationAndAsksTheLink) {
  doc.StationSet = kFalse;
  RecButton(ctx);
  EXPECT_EQ(dialogs.Messages(), std::vector<std::string>{"請先設定測站位置"});
  EXPECT_EQ(link.shots, 0);
  EXPECT_EQ(inst.AwaitPointShot, kFalse);
  doc.StationSet = kTrue;
  RecButton(ctx);
  EXPECT_EQ(link.shots, 1);
  EXPECT_EQ(inst.AwaitPointShot, kTrue);
  EXPECT_FALSE(window.enabled["RecButton"]);
  EXPECT_TRUE(window.enabled["CmdSTOP"]);
}

TEST_F(Pipeline, ShotStoresPointWithHeightAndLogsIt) {
  dialogs.inputs.push_back("1.3");
  Deliver(1040, 2030, 52.25, 1.3);
  ReducePoint(ctx);
  ASSERT_EQ(doc.PointCount, 1);
  EXPECT_NEAR(doc.PointTable[0].E, 1040, 1e-9);
  EXPECT_NEAR(doc.PointTable[0].N, 2030, 1e-9);
  EXPECT_NEAR(doc.PointTable[0].H, 52.25, 1e-9);
  EXPECT_EQ(window.texts["Label1XY(0)"], "1040.000");
  EXPECT_EQ(window.texts["LabelHZ"], "52.250");
  EXPECT_EQ(window.texts["Label41"], "1");
  EXPECT_EQ(window.texts["StatusBar1(4)"], "測點 1");
  EXPECT_EQ(survey.PointAdded, kTrue);
  EXPECT_EQ(File(".OBS"), "1234512, 901530 ," + Slope() + ",1.30, 2026/11/21 08:00:00\r\n");
  EXPECT_EQ(File(".MAC"), "");  // only the point: no cadastral record
  // The prompt as the surveyor sees it.
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].title, "輸入覘標高");
  EXPECT_EQ(dialogs.shown[0].text, "(若不要高程,請輸入X)\r\n(若放棄本點,請按ESC或 [取消])\r\n輸入覘標高:");
}

TEST_F(Pipeline, TargetHeightAnswers) {
  const struct {
    std::optional<std::string> answer;
    bool stored;
    double H;
  } cases[] = {
      {"x", true, NoHeight}, {"X", true, NoHeight}, {std::nullopt, false, 0}, {"", false, 0},
      {" x ", false, 0},     {"1.2.3", false, 0},   {"abc", false, 0},       {"2", true, 50.25},
  };
  for (const auto& c : cases) {
    const int32_t before = doc.PointCount;
    window.calls.clear();
    dialogs.inputs.push_back(c.answer);
    Deliver(1010, 2010, 52.25, 0);  // zero target height: H difference 2.25 - 1.5 from the instrument
    ReducePoint(ctx);
    EXPECT_EQ(doc.PointCount - before, c.stored ? 1 : 0) << c.answer.value_or("<cancel>");
    if (c.stored) {
      EXPECT_NEAR(doc.PointTable.back().H, c.H, 1e-9) << *c.answer;
      // The height is written beside the point, the no-height mark too.
      EXPECT_EQ(window.calls[0], c.H == NoHeight ? "height -9999.000" : "height 50.250");
    }
  }
  EXPECT_EQ(doc.TargetHeight, 2);
  // After "x" the prompt offers the present target height, -99, as it stands.
  EXPECT_EQ(dialogs.inputDefaults[2], "-99");
}

TEST_F(Pipeline, PlanMapNeverPromptsAndNoDistanceIsRefused) {
  doc.MapType = 2;
  Deliver(990, 1990, 60, 1.3);
  ReducePoint(ctx);
  ASSERT_EQ(doc.PointCount, 1);
  EXPECT_EQ(doc.PointTable[0].H, 0);
  EXPECT_TRUE(dialogs.shown.empty());
  inst.ObsSlope = 0;
  ReducePoint(ctx);
  EXPECT_EQ(doc.PointCount, 1);
  EXPECT_EQ(window.texts["OBSBox"], "錯誤!!沒有距離值");
  EXPECT_TRUE(window.enabled["RecButton"]);
}

TEST_F(Pipeline, CadastralShotWritesMacAndNamedEntityUnlessCancelled) {
  dialogs.inputs = {"1.3", "1.3"};
  window.cadastralChoices = {0, 1};
  window.cadastralNames.push_back(" 界12 ");
  Deliver(1040, 2030, 52.25, 1.3);
  survey.LastE = 7;
  ReducePoint(ctx);  // cancelled: nothing stored, but the reduction stands
  EXPECT_EQ(doc.PointCount, 0);
  EXPECT_EQ(File(".OBS"), "");
  EXPECT_EQ(survey.PrevE, 7);
  EXPECT_NEAR(survey.LastE, 1040, 1e-9);
  EXPECT_EQ(window.texts["Label1XY(0)"], "1040.000");
  EXPECT_EQ(survey.PointHistoryE[0], 0);

  doc.BacksightAzimuth = doc.OrientationConstant;  // readings are angles turned from the backsight
  Deliver(1040, 2030, 52.25, 1.3);
  ReducePoint(ctx);
  ASSERT_EQ(doc.EntityCount, 1);
  EXPECT_EQ(doc.EntityTable[0].Code, CodeNamedPoint);
  EXPECT_EQ(doc.EntityTable[0].Name, "界12");
  EXPECT_EQ(doc.SerialCounter, 1);
  EXPECT_EQ(File(".MAC"), text::ToCp950("界12 123.4512 90.1530 " + Slope() + " \r\n"));
}

TEST_F(Pipeline, GuardKeepsOneObservationFromBeingStoredTwice) {
  doc.MapType = 2;
  Deliver(1040, 2030, 50, 0);
  survey.CurrentLegendActive = kTrue;
  ReducePoint(ctx);
  EXPECT_EQ(survey.CurrentLegendActive, kFalse);  // a stored point uses the legend up
  AddSurveyPoint(ctx, 1, true, survey.LastE, survey.LastN, survey.LastH);
  EXPECT_EQ(doc.PointCount, 1);
  EXPECT_EQ(Lines(".OBS").size(), 1u);
}

TEST_F(Pipeline, HistoryOfThreeAndAutoLink) {
  doc.MapType = 2;
  survey.AutoLink = kTrue;
  const double pts[4][2] = {{1010, 2010}, {1020, 2015}, {1030, 2005}, {1040, 2000}};
  for (const auto& p : pts) {
    Deliver(p[0], p[1], 50, 0);
    survey.PointHistoryFlags[3] = 1;
    ReducePoint(ctx);
  }
  EXPECT_NEAR(survey.PointHistoryE[0], 1040, 1e-9);
  EXPECT_NEAR(survey.PointHistoryE[1], 1030, 1e-9);
  EXPECT_NEAR(survey.PointHistoryE[2], 1020, 1e-9);
  EXPECT_EQ(survey.PointHistoryFlags[3], 0);
  EXPECT_EQ(window.linkCount, 3);  // not for the first point
}

TEST_F(Pipeline, ViewFollowsAPointLeavingTheScreen) {
  doc.MapType = 2;
  view.ScreenMinE = 900;
  view.ScreenMaxE = 1100;
  view.ScreenMinN = 1900;
  view.ScreenMaxN = 2100;
  Deliver(1050, 2050, 50, 0);
  ReducePoint(ctx);
  Deliver(1150, 2050, 50, 0);
  ReducePoint(ctx);
  int fits = 0;
  for (const auto& c : window.calls) fits += c.rfind("fit 1.05", 0) == 0;
  EXPECT_EQ(fits, 1);
}

TEST_F(Pipeline, KeyedObservationRunsTheSamePath) {
  inst.InstrumentKind = "Keyin";
  doc.MapType = 2;
  doc.OrientationConstant = 0;
  window.keyed.push_back({"900000", "900000", "25"});
  RecButton(ctx);
  ASSERT_EQ(doc.PointCount, 1);
  EXPECT_NEAR(doc.PointTable[0].E, 1025, 1e-6);
  // cos of the literal pi/2 leaves N equal to the station's in full precision: nudged.
  EXPECT_EQ(doc.PointTable[0].N, 2000.0001);
  EXPECT_EQ(inst.AwaitPointShot, kFalse);
  EXPECT_EQ(File(".OBS"), "900000, 900000 ,25.000,1.30, 2026/11/21 08:00:00\r\n");
  // A refused reading (zero distance) stores nothing and gives the buttons back.
  window.keyed.push_back({"900000", "900000", "0"});
  RecButton(ctx);
  EXPECT_EQ(doc.PointCount, 1);
  EXPECT_TRUE(window.enabled["RecButton"]);
}

}  // namespace
}  // namespace tavik
