// The RTK base dialog's logic without a receiver: the checks of a start in their order,
// what a start writes and leaves behind, the pick on the map, the raw file, the undo,
// and the averaging of the base position. The sequences themselves are checked byte
// for byte against the simulator (rt_base_e2e_test.cpp).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <unistd.h>

#include "geo/grid.h"
#include "instruments/fake_port.h"
#include "instruments/rt_base.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {
namespace {

struct BaseRig {
  Document doc;
  View view;
  GpsState gps;
  GnssSetup setup;
  GpsPanels panels;
  GpsDatumSettings datum;
  ui::ScriptedDialogs dialogs;
  FakePort port;
  RtBaseLogic base{doc, view, gps, setup, panels, datum, dialogs};

  BaseRig() {
    setup.GpsReceiverKind = "DL-4";
    setup.CommPortNumber = 3;
    setup.CommBaud = 38400;
    base.MSComm1 = &port;
    base.XEbox = "326158.123";
    base.YNbox = "2739072.456";
    base.ZHbox = "12.5";
    base.Label13 = "1.5";
    base.BaseFormat = "RTCMV3";
  }
  std::vector<std::string> Written() const {
    std::vector<std::string> out;
    std::string rest = port.written;
    for (std::size_t at; (at = rest.find("\r\n")) != std::string::npos; rest.erase(0, at + 2))
      out.push_back(rest.substr(0, at));
    return out;
  }
};

TEST(RtBase, StartChecksComeInOrderAndStopAtTheFirstFault) {
  struct Case {
    const char* what;
    std::function<void(BaseRig&)> arrange;
    const char* message;  // nullptr: the base starts
    const char* title;
  };
  const Case cases[] = {
      {"a blank box outranks everything", [](BaseRig& r) { r.base.ZHbox = " "; r.base.BaseFormat.clear(); },
       "動作錯誤! 要有座標才能啟動.", "沒有座標資料"},
      {"a grid position outside Taiwan", [](BaseRig& r) { r.base.XEbox = "-9e6"; r.base.BaseFormat.clear(); },
       "無法轉成經緯度.", "輸入的座標有錯"},
      {"picked boxes are converted too", [](BaseRig& r) { r.base.Source = BaseSource::Picked; r.base.YNbox = "0"; },
       "無法轉成經緯度.", "輸入的座標有錯"},
      {"自動接收 before any position", [](BaseRig& r) { r.base.Source = BaseSource::Received; },
       "還沒有收到GPS定位資料.", "沒有經緯度"},
      {"a height that is not a number", [](BaseRig& r) { r.base.ZHbox = "12.5m"; r.base.BaseFormat.clear(); },
       "高程H要是數字.", "輸入的座標有錯"},
      {"an antenna height that is not a number", [](BaseRig& r) { r.base.Label13 = "abc"; },
       "天線高要是數字.", "輸入的座標有錯"},
      {"no format", [](BaseRig& r) { r.base.BaseFormat.clear(); r.port.refuseOpen = true; },
       "請指定訊號格式.", "沒有訊號格式"},
      {"the port does not open", [](BaseRig& r) { r.port.refuseOpen = true; },
       "通訊埠編號有錯", "請檢查通訊埠設定或儀器狀態,--儀器請先開機."},
      // 自動接收 takes the last sentence's latitude and longitude; the grid boxes are not read.
      {"自動接收 skips the grid conversion",
       [](BaseRig& r) {
         r.base.Source = BaseSource::Received;
         r.base.XEbox = "not a number";
         r.gps.GpsLat = 24.5;
         r.gps.GpsLon = 121.25;
       },
       nullptr, nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    BaseRig r;
    c.arrange(r);
    EXPECT_EQ(r.base.CmdStart(), c.message == nullptr);
    if (!c.message) {
      EXPECT_TRUE(r.dialogs.shown.empty());
      EXPECT_TRUE(r.base.Started);
      continue;
    }
    ASSERT_EQ(r.dialogs.shown.size(), 1u);
    EXPECT_EQ(r.dialogs.shown[0].text, c.message);
    EXPECT_EQ(r.dialogs.shown[0].title, c.title);
    EXPECT_TRUE(r.port.written.empty());
  }
}

TEST(RtBase, AStartFixesTheAntennaOnTheTypedPointAndMarksIt) {
  BaseRig r;
  r.base.CheckMkPt = kTrue;
  double markedE = 0;
  r.base.hooks.MarkBase = [&](double E, double) { markedE = E; };
  ASSERT_TRUE(r.base.CmdStart());
  EXPECT_EQ(r.port.openedWith, (std::vector<std::string>{"COM3 38400,n,8,1"}));
  // The grid position goes to the receiver as latitude and longitude that lead back to it.
  double E = 0, N = 0;
  g2xy(r.datum, r.gps.GpsLon, r.gps.GpsLat, E, N);
  EXPECT_NEAR(E, 326158.123, 1e-4);
  EXPECT_NEAR(N, 2739072.456, 1e-4);
  const std::vector<std::string> lines = r.Written();
  EXPECT_EQ(std::count(lines.begin(), lines.end(), FixPositionLine(r.gps.GpsLat, r.gps.GpsLon, 14)), 1);
  // Without a raw file nothing raw is asked for, whatever the check box says.
  EXPECT_EQ(lines.back(), "LOG COM2 RTCM1020 ONTIME 120");
  EXPECT_EQ(r.gps.GpsHeight, 0);
  EXPECT_EQ(markedE, 326158.123);
}

TEST(RtBase, RawLoggingNeedsTheFileAndTheOldestKindCapturesItsPositions) {
  BaseRig r;
  r.base.RawDataCheckFlag = kTrue;
  ASSERT_TRUE(r.base.CmdStart());
  EXPECT_EQ(r.port.written.find("rangecmpa"), std::string::npos);
  EXPECT_EQ(r.gps.GpsRawLogging, kFalse);

  r.setup.GpsReceiverKind = "DL-RT2";
  ASSERT_TRUE(r.base.CmdStart());
  EXPECT_EQ(r.gps.GpsRawLogging, kTrue);
  // The program ends: the receiver stops logging and the port is let go.
  r.port.written.clear();
  RtBaseLogic::StopBaseLogging(r.gps, &r.port);
  EXPECT_EQ(r.port.written, "unlogall\r\n");
  EXPECT_FALSE(r.port.PortOpen());
  // The undo cannot reach the receiver either.
  r.port.refuseOpen = true;
  EXPECT_FALSE(r.base.Command4());
  EXPECT_EQ(r.dialogs.Messages(), std::vector<std::string>{"通訊埠編號有錯"});
}

TEST(RtBase, PickPassesOverAnUnnamedPointEntityForTheSurveyPointElseSaysSo) {
  // (A named point entity is picked in the window test.)
  BaseRig r;
  r.doc.ScaleDenominator = 1000;
  r.view.PaperMinE = 900;
  r.view.PaperMaxN = 2100;
  Entity unnamed;
  unnamed.Kind = KindPoint;
  unnamed.X[0] = 1010, unnamed.Y[0] = 2000;
  r.doc.ScreenEntityTable = {unnamed};
  Point p;
  p.E = 1010, p.N = 2000, p.H = 3;
  r.doc.ScreenPointTable = {p};
  float x = 0, y = 0;
  WorldToPaper(r.view, r.doc.ScaleDenominator, 1010, 2000, x, y);
  ASSERT_TRUE(r.base.PickBase(x + 1, y + 1));
  EXPECT_EQ(r.base.Text1, "NoName");
  EXPECT_EQ(r.base.XEbox, "1010.000");
  EXPECT_EQ(r.doc.StationSet, kTrue);
  EXPECT_FALSE(r.base.PickBase(x + 200, y));
  EXPECT_EQ(r.dialogs.shown.back().text, "沒有找到資料");
  EXPECT_EQ(r.dialogs.shown.back().title, "沒有資料");
}

TEST(RtBase, RawFileIsEmptiedOnlyWhenOverwritingIsConfirmed) {
  const std::filesystem::path dir = std::filesystem::temp_directory_path() / ("rt_base_test_" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const std::string path = (dir / "base.GPS").string();
  std::ofstream(path) << "old\r\n";
  for (ui::Answer answer : {ui::Answer::No, ui::Answer::Yes}) {
    BaseRig r;
    r.panels.RawCount = 9;
    r.dialogs.files = {path};
    r.dialogs.answers = {answer};
    EXPECT_EQ(r.base.Command1(), answer == ui::Answer::Yes);
    EXPECT_EQ(r.dialogs.shown.back().title, "發現同名檔");
    EXPECT_EQ(std::filesystem::file_size(path), answer == ui::Answer::Yes ? 0u : 5u);
    EXPECT_EQ(r.gps.RawPath, answer == ui::Answer::Yes ? path : "");
    EXPECT_EQ(r.panels.RawCount, answer == ui::Answer::Yes ? 0 : 9);
  }
  BaseRig typed;
  typed.dialogs.files = {(dir / "new").string()};
  EXPECT_TRUE(typed.base.Command1());
  EXPECT_EQ(typed.gps.RawPath, (dir / "new.GPS").string());
  std::filesystem::remove_all(dir);
}

TEST(RtBase, AveragingKeepsMillimetresOnGridValuesAndEndsByCountOrTime) {
  // Four positions 2 mm apart around a grid position of millions of metres: a naive
  // sum of squares would lose the spread entirely.
  PositionAverager a;
  a.Start(PositionAverager::Until::Count, 4, 0);
  const double e[] = {326158.001, 326158.003, 326158.005, 326158.007};
  for (int k = 0; k < 4; ++k) EXPECT_EQ(a.Add(e[k], 2739072.5, 10 + k * 0.01, k), k == 3);
  EXPECT_FALSE(a.Running());
  EXPECT_NEAR(a.MeanE(), 326158.004, 1e-9);
  EXPECT_NEAR(a.SigmaE(), 0.00258199, 1e-7);
  EXPECT_EQ(a.SigmaN(), 0);
  EXPECT_NEAR(a.SigmaH(), 0.0129099, 1e-6);
  // By time: a position that comes after the time is up is not counted.
  a.Start(PositionAverager::Until::Seconds, 10, 100);
  EXPECT_FALSE(a.Add(1, 2, 3, 101));
  EXPECT_TRUE(a.Add(5, 5, 5, 110));
  EXPECT_EQ(a.Count(), 1);
}

TEST(RtBase, TheMeanFillsTheBoxesAsTypedValuesUnlessNothingCame) {
  BaseRig r;
  r.base.Source = BaseSource::Received;
  r.base.StartAveraging(PositionAverager::Until::Seconds, 5, 0);
  r.gps.GpsX = 100.0004, r.gps.GpsY = 200, r.gps.GpsGround = 5;
  EXPECT_FALSE(r.base.PositionArrived(1));
  r.base.StopAveraging();
  EXPECT_EQ(r.base.XEbox, "100.000");
  EXPECT_EQ(r.base.Source, BaseSource::Typed);
  r.base.XEbox = "1";
  r.base.StartAveraging(PositionAverager::Until::Seconds, 5, 0);
  EXPECT_TRUE(r.base.AveragingTick(6));
  EXPECT_EQ(r.base.XEbox, "1");
}

}  // namespace
}  // namespace tavik::test
