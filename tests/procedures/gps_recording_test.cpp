// GPS recording over a fresh survey context: the WAY and GSTK bytes from a fixed clock,
// the distance and time triggers, the view rules of a moving rover, and the button.
#include <gtest/gtest.h>

#include "core/numbers.h"
#include "procedures/gps_recording.h"
#include "survey_fixture.h"
#include "view/transform.h"

namespace tavik {
namespace {

struct GpsRecording : testing::SurveyFixture {
  GpsState gps;
  GnssSetup setup;
  GpsPanels panels;
  GpsRecorder rec{ctx, gps, setup, panels};
  std::vector<std::string> sent;
  int viewChanges = 0, markers = 0;
  bool portOpen = true;

  GpsRecording() {
    inst.MeasureMode = "GPS";
    rec.hooks.Clock = [] { return WayClock{"Mon 2026/11/23", "xx14:05:09"}; };
    rec.hooks.SendToReceiver = [this](const std::string& c) { sent.push_back(c); };
    rec.hooks.PortOpen = [this] { return portOpen; };
    rec.hooks.ViewChanged = [this] {
      ++viewChanges;
      view::ComputeView(doc, view);
    };
    rec.hooks.DrawMarker = [this](double, double, bool, double) { ++markers; };
    view::SetViewportSize(view, 800, 600);
    doc.ScaleDenominator = 1000;
    doc.ViewCentreE = 1000;
    doc.ViewCentreN = 2000;
    view::ComputeView(doc, view);
  }
  // A position as the receiver leaves it before the rest of the update.
  void At(double E, double N, double h = 30) {
    gps.GpsPrevX = gps.GpsX;
    gps.GpsPrevY = gps.GpsY;
    gps.GpsX = E;
    gps.GpsY = N;
    gps.GpsHeight = h;
    gps.GpsGround = h - 1.5;
    rec.ContinuePositionUpdate();
  }
  std::string Way() { return File(".WAY"); }
};

TEST_F(GpsRecording, WayAndGstkLinesByteForByte) {
  doc.InstrumentHeight = 1.5;
  doc.TargetHeight = 0.25;
  SetStation(1000, 2000, 10, 0);
  gps.GpsWeek = 2345;
  gps.GpsSeconds = 123456.5;
  gps.GpsHeight = 31.25;
  gps.GpsSigmaE = 0.0125;
  gps.GpsSigmaN = 0.02;
  gps.GpsSigmaH = 0.5;
  gps.GpsGround = 29.5;
  gps.SounderDepth = 3.5;
  gps.SounderDepth2 = 4.25;
  gps.Heave = 0.1;
  gps.Roll = -1.5;
  gps.Pitch = 2;
  panels.Label21[0] = "3.5";
  rec.RecordObservation(1, -1, 1003, 2004, 29.5);
  // The depths were written once; with a reference the line has its name and distance.
  rec.state.Combo3 = " K12 ";
  rec.RecordObservation(1, -1, 1006, 2008, 29.5);
  EXPECT_EQ(Way(),
            "2026/11/23,14:05:09,2345,123456.5,1003.000,2004.000,31.250,0.013,0.020,0.500,29.500,1.5,0.25,"
            "3.5,4.25,0.1,-1.5,2,3.5,\r\n"
            "2026/11/23,14:05:09,2345,123456.5,1006.000,2008.000,31.250,0.013,0.020,0.500,29.500,1.5,0.25,"
            "0,0,0.1,-1.5,2,3.5,K12,10.000\r\n");
  EXPECT_EQ(doc.PointCount, 2);

  gps.GpsX = 1010.5;
  gps.GpsY = 1999.25;
  gps.StakeName = "P7";
  gps.StakeX = 1010;
  gps.StakeY = 2000;
  rec.RecordObservation(3, -1, gps.GpsX, gps.GpsY, gps.GpsGround);
  EXPECT_EQ(File(".GSTK"), "P7,1010.500,1999.250,29.500,0.0125,0.02,0.5,2026/11/23,14:05:09,0.500,-0.750\r\n");
  EXPECT_EQ(doc.PointCount, 3);
  EXPECT_EQ(Way().find("1010.500"), std::string::npos);
}

TEST_F(GpsRecording, DistanceTriggerCountsFromTheLastRecordStrictlyGreater) {
  ASSERT_TRUE(rec.RecTypeOk("Dist", "5"));
  EXPECT_EQ(rec.state.LogButtonCaption, "連續記錄,每5公尺");
  doc.InstrumentHeight = 1.5;
  rec.LogButton_Click();
  EXPECT_EQ(rec.state.LogButtonCaption, "暫停連續記錄");
  struct Step {
    double E, N;
    int32_t points;  // after the position
  } steps[] = {
      {1000, 2000, 1},      // the first position of a run, whatever the distance
      {1003, 2004, 1},      // exactly 5 from the last record
      {1003, 2004.001, 2},  // beyond
      {1005, 2004.001, 2},  // 2 by 2: drift from the record adds up...
      {1007, 2004.001, 2},
      {1008.5, 2004.001, 3},  // ...to 5.5
  };
  for (const Step& s : steps) {
    At(s.E, s.N);
    EXPECT_EQ(doc.PointCount, s.points) << s.E << " " << s.N;
  }
  EXPECT_EQ(panels.Label3, "");  // the receiver's side shows it; nothing here writes it
  rec.LogButton_Click();
  EXPECT_EQ(rec.state.LogButtonCaption, "連續記錄,每5公尺");
  At(1020, 2004);  // the trigger is off: the run's memory is cleared
  EXPECT_EQ(doc.PointCount, 3);
  EXPECT_EQ(gps.LastRecordedX, 0);
  EXPECT_EQ(rec.state.DistPrevX, 0);
  // The WAY file has the ground elevation of each record.
  EXPECT_NE(Way().find(",1000.000,2000.000,30.000,0.000,0.000,0.000,28.500,"), std::string::npos);
  EXPECT_EQ(sent.size(), 0u);
}

TEST_F(GpsRecording, TimeTriggerStoresTheReceiverHeightAndSkipsAZeroHeight) {
  setup.GpsReceiverKind = "DL-RT2";
  int period = -1;
  rec.hooks.SetTimer4 = [&](int ms) { period = ms; };
  ASSERT_TRUE(rec.RecTypeOk("Time", "0.2"));
  doc.InstrumentHeight = 1.5;
  rec.LogButton_Click();
  EXPECT_EQ(period, 200);
  At(1000, 2000, 0);
  rec.Timer4Tick();
  EXPECT_EQ(doc.PointCount, 0);
  At(1000, 2000, 31);
  rec.Timer4Tick();
  ASSERT_EQ(doc.PointCount, 1);
  EXPECT_EQ(doc.PointTable[0].H, 31);  // GpsHeight, not the ground (29.5)
  rec.LogButton_Click();
  EXPECT_EQ(period, 0);
  EXPECT_EQ(sent, (std::vector<std::string>{"log com1,prtka,ondatetime.time,0.2", "log com1,PRTKA,ondatetime.time,1"}));
  EXPECT_EQ(rec.state.LogButtonCaption, "連續記錄,每0.2秒");
  rec.SetManual();
  EXPECT_EQ(rec.state.LogButtonCaption, "手動記錄");
}

TEST_F(GpsRecording, OffScreenRulesAndTheStakeOutZoom) {
  struct Case {
    int16_t shift, moveMap;
    double E, N;
    const char* expect;  // changes, scale, centre
  } cases[] = {
      {kFalse, kTrue, 5000, 2000, "0 1000 1000 2000"},     // the vehicle moves: the view stays
      {kFalse, kTrue, 1001, 2001, "0 1000 1000 2000"},     // on screen
      {kTrue, kFalse, 5000, 2000, "1 1000 5000 2000"},     // shifted at the same scale
      {kFalse, kFalse, 1001, 2001, "0 1000 1000 2000"},    // on screen
  };
  for (const Case& c : cases) {
    doc.ScaleDenominator = 1000;
    doc.ViewCentreE = 1000;
    doc.ViewCentreN = 2000;
    view::ComputeView(doc, view);
    viewChanges = 0;
    gps.OffScreenShift = c.shift;
    gps.MoveMap = c.moveMap;
    At(c.E, c.N);
    EXPECT_EQ(std::to_string(viewChanges) + " " + num::Plain(doc.ScaleDenominator) + " " +
                  num::Plain(doc.ViewCentreE) + " " + num::Plain(doc.ViewCentreN),
              c.expect)
        << c.shift << c.moveMap << " " << c.E;
  }
  // 圖面縮小: the view takes in the rover and grows by 5 per cent.
  gps.OffScreenShift = kFalse;
  gps.MoveMap = kFalse;
  At(5000, 2000);
  EXPECT_TRUE(view.InScreen(5000, 2000));
  EXPECT_GT(doc.ScaleDenominator, 1000);
  // Stake-out: rover and target both in sight, and the scale never below 1. The window
  // open without a target leaves the view alone.
  gps.StakeActive = kTrue;
  const double scale = doc.ScaleDenominator;
  At(5000, 2000);
  EXPECT_EQ(doc.ScaleDenominator, scale);
  gps.StakeName = "T";
  gps.StakeX = 9000;
  gps.StakeY = 9000;
  At(5000, 2000);
  EXPECT_TRUE(view.InScreen(9000, 9000));
  EXPECT_TRUE(view.InScreen(5000, 2000));
  gps.StakeX = 5000.0001;
  gps.StakeY = 2000;
  doc.ScaleDenominator = 1;
  view::ComputeView(doc, view);
  At(5000.001, 2000);
  EXPECT_GE(doc.ScaleDenominator, 1);
  // With no heading the marker follows the course: due east.
  EXPECT_EQ(panels.Label25[15], "90.00度");
  EXPECT_GT(markers, 0);
}

TEST_F(GpsRecording, ButtonChecksAndTheRouteLines) {
  doc.DocumentName.clear();
  rec.LogButton_Click();
  SetDocumentName(doc, (home.path / "field").string());
  portOpen = false;
  rec.LogButton_Click();
  portOpen = true;
  dialogs.inputs = {std::string("-1")};  // a negative antenna height is refused
  At(1000, 2000);
  rec.LogButton_Click();
  EXPECT_EQ(dialogs.Messages(), (std::vector<std::string>{"請先開圖!", "請先按[連接GPS]鈕", "天線高不得為負值"}));
  EXPECT_EQ(doc.PointCount, 1);  // the manual record went ahead at height 0

  rec.state.LinkPoints = kTrue;
  rec.state.LabelRoute = kTrue;
  rec.state.LabelDistance = kTrue;
  ASSERT_TRUE(rec.RecTypeOk("Dist", "1"));
  dialogs.inputs = {std::string("1.5"), std::string("r1")};
  rec.LogButton_Click();
  EXPECT_EQ(doc.InstrumentHeight, 1.5);
  EXPECT_EQ(rec.state.RouteName, "R1");
  for (double e : {1000.0, 1003.0, 1007.0}) At(e, 2000);
  rec.LogButton_Click();
  std::vector<std::string> names;
  for (const Entity& en : doc.EntityTable) {
    EXPECT_EQ(en.Code, CodeRoute);
    names.push_back(std::to_string(en.Kind) + en.Name);
  }
  // The last record is the present position: it is recorded again before the end.
  EXPECT_EQ(names, (std::vector<std::string>{"11R1BP", "21R1MP", "21R1MP", "11R1EP", "11DI7.000"}));
  EXPECT_EQ(doc.PointCount, 5);
  EXPECT_EQ(rec.state.RouteName, "");
  EXPECT_EQ(survey.PointAdded, kTrue);
}

}  // namespace
}  // namespace tavik
