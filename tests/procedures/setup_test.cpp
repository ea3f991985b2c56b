// Station set-up by UserDialog and FitDialog, then shots checked against a scene.
#include <gtest/gtest.h>

#include "core/numbers.h"
#include "core/record_text.h"
#include "geo/angles.h"
#include "procedures/fit_dialog.h"
#include "procedures/observation_pipeline.h"
#include "procedures/user_dialog.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

// The scene: control points K1, K2 and targets around them; the instrument's circle is
// set so that a reading of 0 points at azimuth 123.4°.
constexpr double kCircleZero = 123.4;
struct Target {
  double E, N, H;
};
const Target kTargets[] = {{1050, 2080, 51.2}, {960, 2030, 49.8}, {1010, 1930, 50.4}, {1100.5, 1999.9, 53}};

struct Setup : testing::SurveyFixture {
  Setup() { trueOc = DegreesToRadians(kCircleZero); }
  void ShootTargets() {
    for (const Target& t : kTargets) {
      dialogs.inputs.push_back("1.3");
      Deliver(t.E, t.N, t.H, 1.3);
      inst.AwaitPointShot = kFalse;
      ReducePoint(ctx);
    }
  }
  // The shots from `first` on land on the targets (E, N within tolEN, H exactly).
  void ExpectOnTargets(int first, double tolEN) {
    ASSERT_EQ(doc.PointCount, first + 4);
    for (int i = 0; i < 4; ++i) {
      EXPECT_NEAR(doc.PointTable[first + i].E, kTargets[i].E, tolEN) << i;
      EXPECT_NEAR(doc.PointTable[first + i].N, kTargets[i].N, tolEN) << i;
      EXPECT_NEAR(doc.PointTable[first + i].H, kTargets[i].H, 1e-6) << i;
    }
  }
};

TEST_F(Setup, UserDialogThenShots) {
  UserDialogLogic dlg(ctx);
  EXPECT_EQ(dlg.Xbox, "280850.000");
  // Heights missing are refused before anything is asked of the instrument.
  dlg.Measure();
  EXPECT_EQ(dialogs.Messages().back(), "請輸入儀器高");
  dlg.Text7 = "1.5";
  dlg.Measure();
  EXPECT_EQ(dialogs.Messages().back(), "請輸入覘標高");
  dlg.Text8 = "1.3";
  dlg.Xbox = "1000";
  dlg.Ybox = "2000";
  dlg.Zbox = "50";
  dlg.Text4 = "90";  // the backsight lies due east
  dlg.Measure();
  EXPECT_EQ(link.shots, 1);
  EXPECT_EQ(inst.AwaitStationShot, kTrue);
  // OK before the shot: no backsight coordinates.
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(dialogs.Messages().back(), "需要後視座標");
  EXPECT_EQ(doc.PointCount, 0);

  Deliver(1100, 2000, 52, 1.3);
  inst.AwaitStationShot = kFalse;
  dlg.MeasurementReceiver();
  EXPECT_EQ(dlg.LabelBsx, "1100.000");
  EXPECT_EQ(dlg.LabelBsy, "2000.000");
  EXPECT_EQ(dlg.LabelBsz, "52.000");
  EXPECT_FALSE(dlg.Text4Enabled);
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_EQ(doc.StationSet, kTrue);
  EXPECT_EQ(doc.StationName, "A1");
  EXPECT_EQ(doc.PointCount, 2);
  ASSERT_EQ(doc.EntityCount, 2);
  EXPECT_EQ(doc.EntityTable[1].Name, "A2");
  EXPECT_EQ(doc.EntityTable[1].Code, 113);
  EXPECT_EQ(File(".MAC"), "A1 A2\r\n");
  const auto obs = Lines(".OBS");
  ASSERT_EQ(obs.size(), 3u);
  EXPECT_EQ(obs[0], "-99 , 2026/11/21 08:00:00");
  EXPECT_EQ(obs[1], "A1,1000.000,2000.000,50.000,1.50");
  EXPECT_EQ(obs[2].substr(0, 34), "A2,1100.000,2000.000,52.000, 12345");

  // The map now reads true: shots land on the scene's targets.
  ShootTargets();
  ExpectOnTargets(2, 1e-6);
  EXPECT_EQ(Lines(".OBS").size(), 3u + 4);
}

// A plan map needs no heights (an instrument height of 0 passes); the azimuth typed
// after the shot, here emptied to 0, sets the orientation from the circle reading.
TEST_F(Setup, UserDialogPlanMapWithTheAzimuthClearedAfterTheShot) {
  doc.MapType = 2;
  UserDialogLogic dlg(ctx);
  EXPECT_FALSE(dlg.HeightsShown());
  dlg.Xbox = "1000";
  dlg.Ybox = "2000";
  dlg.Text4 = "90";
  dlg.Measure();
  ASSERT_EQ(link.shots, 1);
  Deliver(1100, 2000, 52, 1.3);
  const double reading = inst.ObsHz;
  dlg.MeasurementReceiver();
  dlg.Text4 = "";
  dlg.AzimuthEntered();
  EXPECT_EQ(dlg.LabelBsx, "1000.000");
  EXPECT_EQ(dlg.LabelBsy, "2100.000");
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_NEAR(doc.OrientationConstant, 2 * Pi - reading, 1e-12);
  EXPECT_EQ(doc.StationH, 0);
  EXPECT_EQ(doc.PointTable[1].H, 0);
}

TEST_F(Setup, UserDialogForcedBacksightHeight) {
  UserDialogLogic dlg(ctx);
  dlg.Text7 = "1.5";
  dlg.Text8 = "1.3";
  dlg.Xbox = "1000";
  dlg.Ybox = "2000";
  dlg.SetCheck2(true);
  EXPECT_EQ(dlg.Zbox, "");
  EXPECT_FALSE(dlg.ZboxEnabled);
  dlg.LabelBsz = "52";
  dlg.Measure();
  Deliver(1100, 2000, 52, 1.3);
  dlg.MeasurementReceiver();
  EXPECT_EQ(dlg.Zbox, "50.000");  // the station height follows the backsight's
  dlg.SetCheck2(false);
  EXPECT_EQ(dlg.Zbox, "100.000");
  EXPECT_EQ(dlg.LabelBsz, "");
  // Heights incomplete: refused, the document untouched.
  dlg.Zbox = "";
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(dialogs.Messages().back(), "高程值不完整");
  EXPECT_EQ(doc.StationSet, kFalse);
  EXPECT_EQ(doc.PointCount, 0);
}

struct Fit : Setup {
  Fit() {
    AddControl("K1", 1000, 2000, 50);
    AddControl("K2", 1100, 2000, 52);
    AddControl("K3", 1000.05, 2000, 50);
    AddControl("DITCH", 1200, 2100, 0, 301);  // not a control legend
  }
};

TEST_F(Fit, ListsControlPointsAndRefusesBadPairs) {
  FitDialogLogic dlg(ctx);
  EXPECT_EQ(dlg.Combo1, (std::vector<std::string>{"K1", "K2", "K3"}));
  // OK checks in order: station, backsight, an observation.
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(dlg.Text5, "尚未指定測站");
  ASSERT_TRUE(dlg.ChooseStation("K1"));
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(dlg.Text5, "沒有指定後視");
  dlg.Command3();
  EXPECT_EQ(dialogs.Messages().back(), "請指定後視點");
  EXPECT_EQ(link.shots, 0);
  EXPECT_FALSE(dlg.ChooseBacksight("K1"));
  EXPECT_EQ(dialogs.shown.back().title, "錯誤!");
  EXPECT_EQ(dialogs.shown.back().text, "測站和後視同一點");
  // Two points 0.05 m apart: warned, and the set-up goes on.
  EXPECT_TRUE(dlg.ChooseBacksight("K3"));
  EXPECT_EQ(dialogs.shown.back().title, "警告");
  EXPECT_EQ(dialogs.shown.back().text, "兩點距離有問題!");
  EXPECT_EQ(dlg.Label9, "0.050");
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(dlg.Text5, "角度或距離至少要有一個");
  // An angle read shows the link's own reading text (a Trimble 3600's, here).
  ctx.link.Label29 = [] { return std::string("123-45-12.3"); };
  inst.ObsHz = DegreesToRadians(123.75);
  dlg.AngleReceiver();
  EXPECT_EQ(dlg.Text5, "123-45-12.3");
}

TEST_F(Fit, DistanceShotThenSurvey) {
  FitDialogLogic dlg(ctx);
  dlg.ChooseStation("K1");
  dlg.ChooseBacksight("K2");
  dlg.Text4 = "1.5";
  dlg.Text3 = "1.3";
  dlg.Command3();
  EXPECT_EQ(link.shots, 1);
  EXPECT_EQ(inst.AwaitFitShot, kTrue);
  Deliver(1100, 2000, 52, 1.3);
  inst.AwaitFitShot = kFalse;
  dlg.DistanceReceiver();
  EXPECT_EQ(dlg.Label10, "100.000平");
  EXPECT_TRUE(dlg.DistanceRed);  // the reference distance is never assigned
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_EQ(doc.StationSet, kTrue);
  // The pair azimuth nudges the zero dN of K1-K2 to 0.0001.
  EXPECT_NEAR(doc.OrientationConstant, trueOc - std::atan(0.0001 / 100), 1e-9);
  EXPECT_EQ(File(".MAC"), "K1 K2\r\n");
  const auto obs = Lines(".OBS");
  ASSERT_EQ(obs.size(), 3u);
  EXPECT_EQ(obs[1], "K1,1000.000,2000.000,50.000,1.50");
  EXPECT_EQ(obs[2], "K2,1100.000,2000.000,52.000, 1234512 , 901530 ," + num::Format(inst.ObsSlope, "0.000"));
  ShootTargets();
  ExpectOnTargets(0, 2e-4);  // the pair azimuth's 0.0001 nudge turns the circle by a microradian
}

TEST_F(Fit, TypedReadingAndTheGtsAcknowledge) {
  inst.InstrumentKind = "GTS22X";
  inst.MeasureMode = "GPS";  // the book's station line is written whatever the mode
  doc.TargetHeight = NoTargetHeight;
  inst.ObsHzRaw = 1234512;  // from an earlier answer
  inst.ObsVRaw = 901530;
  inst.ObsSlope = 12.5;
  FitDialogLogic dlg(ctx);
  EXPECT_EQ(dlg.Text3, "-99");
  EXPECT_TRUE(dlg.Command5Visible());
  dlg.ChooseStation("K1");
  dlg.ChooseBacksight("K2");
  // Cancelled prompt: nothing.
  dlg.Command6();
  EXPECT_FALSE(dlg.OKButton());
  dialogs.inputs.push_back("3333600");  // 333°36'00": the backsight east is azimuth 90°
  dlg.Command6();
  EXPECT_EQ(dlg.Text5, "3333600");
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_NEAR(doc.OrientationConstant, DegreesToRadians(90 - 333.6 + 360), 1e-4);
  EXPECT_EQ(link.top, std::string("Z32091\x03\r\n", 9));
  EXPECT_EQ(File(".MAC"), "K1 K2\r\n");
  // The typed reading changes no raw value: the record keeps the last answer's.
  EXPECT_EQ(Lines(".OBS").back(), "K2,1100.000,2000.000,52.000, 1234512 , 901530 ,12.500");
}

TEST_F(Fit, CancelRestoresTheFormerSetup) {
  SetStation(5, 6, 7, 0.25);
  doc.StationName = "OLD";
  doc.InstrumentHeight = 1.1;
  FitDialogLogic dlg(ctx);
  dlg.ChooseStation("K1");
  dlg.ChooseBacksight("K2");
  dlg.Text4 = "1.5";
  dlg.Text3 = "1.3";
  dlg.Command3();
  Deliver(1100, 2000, 52, 1.3);
  dlg.DistanceReceiver();
  EXPECT_NE(doc.OrientationConstant, 0.25);
  dlg.CancelButton();
  EXPECT_EQ(doc.StationName, "OLD");
  EXPECT_EQ(doc.StationE, 5);
  EXPECT_EQ(doc.OrientationConstant, 0.25);
  EXPECT_EQ(doc.InstrumentHeight, 1.1);
  EXPECT_EQ(doc.StationSet, kTrue);
  EXPECT_EQ(File(".OBS"), "");
}

}  // namespace
}  // namespace tavik
