// Resection on a known geometry, the mirrored order, and the cases where the
// arithmetic has no answer.
#include <gtest/gtest.h>

#include <cmath>

#include "core/record_text.h"
#include "geo/angles.h"
#include "instruments/fake_port.h"
#include "procedures/resect_dialog.h"
#include "procedures/resection.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

using testing::ReadingTo;

// Known points P1, P2; the true station lies to the right of P1 -> P2.
constexpr double kSE = 1020.5, kSN = 1950.25, kSH = 48.7, kIH = 1.45, kOC = 0.8;

ResectSlot Observe(const char* name, double E, double N, double H, double th) {
  const auto r = ReadingTo(kSE, kSN, kSH, kIH, kOC, E, N, H, th);
  ResectSlot s;
  s.Name = name;
  s.E = E;
  s.N = N;
  s.H = H;
  s.Hz = r.hz;
  s.V = r.v;
  s.Slope = r.slope;
  s.Target = th;
  return s;
}

TEST(Resection, RecoversTheStationAndTheMirroredOrderShowsInTheClosure) {
  ResectSlot p1 = Observe("P1", 1000, 2000, 50, 1.3), p2 = Observe("P2", 1080, 2010, 51, 1.6);
  const ResectResult r = SolveResection(p1, p2, 1, kIH);
  ASSERT_EQ(r.outcome, ResectResult::Outcome::Solved);
  EXPECT_NEAR(r.StationE, kSE, 0.001);
  EXPECT_NEAR(r.StationN, kSN, 0.001);
  EXPECT_NEAR(r.StationH, kSH, 0.001);
  EXPECT_NEAR(r.Closure, 0, 1e-9);
  EXPECT_NEAR(r.CoordinateClosure, 0, 1e-6);
  EXPECT_NEAR(r.OrientationConstant, kOC, 1e-5);
  EXPECT_EQ(ClosureText(r.Closure), "0-00-00.0");
  // Swapped: both sides agree on the mirrored station, so only the angle closure shows it.
  p1 = Observe("P2", 1080, 2010, 51, 1.6), p2 = Observe("P1", 1000, 2000, 50, 1.3);
  const ResectResult m = SolveResection(p1, p2, 2, kIH);
  ASSERT_EQ(m.outcome, ResectResult::Outcome::Solved);
  EXPECT_GT(std::fabs(m.Closure), 1.0);
  EXPECT_NEAR(m.CoordinateClosure, 0, 1e-6);
  EXPECT_GT(std::hypot(m.StationE - kSE, m.StationN - kSN), 10.0);
  EXPECT_EQ(ClosureText(m.Closure).substr(0, 1), "-");
}

TEST(Resection, DegenerateCases) {
  // Two distances shorter than the known side.
  ResectSlot a = Observe("P1", 1000, 2000, 50, 1.3), b = Observe("P2", 1080, 2010, 51, 1.6);
  a.Slope = 10;
  b.Slope = 10;
  EXPECT_EQ(SolveResection(a, b, 2, 0).outcome, ResectResult::Outcome::SlopeSumShort);
  // Level shots summing exactly to the known side pass the test: the station is on
  // the line between the points.
  a = Observe("P1", 1000, 2000, 50, 0);
  b = Observe("P2", 1100, 2000, 50, 0);
  a.V = b.V = Pi / 2;
  a.Slope = 40;
  b.Slope = 60;
  ResectSlot a2 = a, b2 = b;
  const ResectResult onLine = SolveResection(a2, b2, 2, 0);
  ASSERT_EQ(onLine.outcome, ResectResult::Outcome::Solved);
  EXPECT_NEAR(onLine.StationE, 1040, 1e-9);
  EXPECT_NEAR(onLine.StationN, 2000, 1e-9);
  // Point 1 between the station and point 2: the half-angle rule reaches t = 1.
  a2 = a;
  b2 = b;
  a2.Slope = 40;
  b2.Slope = 140;
  EXPECT_EQ(SolveResection(a2, b2, 2, 0).outcome, ResectResult::Outcome::NoTriangle);
  // One side longer than the other two together.
  a.Slope = 300;
  b.Slope = 60;
  EXPECT_EQ(SolveResection(a, b, 2, 0).outcome, ResectResult::Outcome::NoTriangle);
  // The same spot twice stops without a word.
  b.E = a.E;
  b.N = a.N;
  EXPECT_EQ(SolveResection(a, b, 2, 0).outcome, ResectResult::Outcome::SameSpot);
}

std::string SetAnswerFor(const ResectSlot& s) {
  int16_t d = 0, m = 0;
  double sec = 0;
  auto raw = [&](double rad) {
    RadiansToDms(rad, d, m, sec);
    char b[16];
    std::snprintf(b, sizeof b, "%03d%02d%02d", d, m, static_cast<int>(std::lround(sec)));
    return std::string(b);
  };
  char mm[16];
  std::snprintf(mm, sizeof mm, "%07ld", std::lround(s.Slope * 1000));
  return std::string(mm) + " " + raw(s.V) + " " + raw(s.Hz) + "\r\n";
}

struct ResectDialog : testing::SurveyFixture {
  test::FakePort port;  // records what the dialog sends
  ResectDialog() {
    AddControl("P1", 1000, 2000, 50);
    AddControl("P2", 1080, 2010, 51);
    AddControl("P3", 1000.05, 2000.01, 50);
  }
  // Both points chosen and the heights typed.
  void Prepare(ResectDlgLogic& dlg, const char* first, const char* second) {
    ASSERT_TRUE(dlg.Choose(0, first));
    ASSERT_TRUE(dlg.Choose(1, second));
    dlg.StationNameText = "R1";
    dlg.InstrumentHeightText = "1.45";
    dlg.TargetText[0] = "1.3";
    dlg.TargetText[1] = "1.6";
  }
  // Then both observed as the instrument would.
  void MeasureBoth(ResectDlgLogic& dlg, const char* first, const char* second, double h1, double h2) {
    Prepare(dlg, first, second);
    dlg.Measure(0);
    port.Receive(SetAnswerFor(Observe(first, 1000, 2000, h1, 1.3)));
    dlg.Measure(1);
    port.Receive(SetAnswerFor(Observe(second, 1080, 2010, h2, 1.6)));
  }
};

TEST_F(ResectDialog, MeasureSolveAndStore) {
  inst.InstrumentKind = "SET30R";
  ResectDlgLogic dlg(ctx, &port);
  ASSERT_TRUE(dlg.Choose(0, "P1"));
  EXPECT_FALSE(dlg.Choose(1, "P1"));
  EXPECT_EQ(dialogs.shown.back().text, "請重選,不可與第1點重覆");
  ASSERT_TRUE(dlg.Choose(1, "P2"));
  dlg.Solve();
  EXPECT_EQ(dialogs.Messages().back(), "缺第一點觀測資料");
  MeasureBoth(dlg, "P1", "P2", 50, 51);
  EXPECT_EQ(port.written.substr(0, 6), std::string("Xc\r\n\x11\r\n", 6));
  EXPECT_EQ(dlg.StatusLabel[0], "OK");
  EXPECT_EQ(dlg.StatusLabel[1], "OK");
  dlg.Solve();
  ASSERT_TRUE(dlg.OKEnabled);
  EXPECT_FALSE(dlg.Command2Enabled);
  // The instrument rounds to the second and the millimetre: within a centimetre.
  EXPECT_NEAR(dlg.Result().StationE, kSE, 0.01);
  EXPECT_NEAR(dlg.Result().StationN, kSN, 0.01);
  EXPECT_EQ(dlg.Label17.substr(0, std::string("座標閉合差").size()), "座標閉合差");
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_EQ(doc.StationSet, kTrue);
  EXPECT_EQ(doc.StationName, "R1");
  EXPECT_EQ(doc.BacksightName, "P1");
  EXPECT_EQ(doc.EntityTable.back().Code, 113);
  EXPECT_EQ(doc.EntityTable.back().Name, "R1");
  EXPECT_EQ(doc.PointCount, 1);
  EXPECT_EQ(File(".MAC"), "R1 P1\r\n");
  const auto obs = Lines(".OBS");
  ASSERT_EQ(obs.size(), 4u);
  EXPECT_EQ(obs[0], "-99,\", \",#2026/11/21 08:00:00#");
  EXPECT_EQ(obs[2], "\"P1\",1000,2000,50");
  // The readings of point 1 with V as the solver made it, an elevation angle, and the
  // last distance received (that of point 2).
  const std::string& readings = obs[3];
  const std::size_t comma = readings.rfind(',');
  EXPECT_EQ(readings.substr(readings.find(",\"") + 2, 3), "113") << readings;  // 1-13-xx, not the zenith 88-46-xx
  EXPECT_NEAR(std::stod(readings.substr(comma + 1)), Observe("P2", 1080, 2010, 51, 1.6).Slope, 0.0005);
}

// A shot in face two on either point: the reminder, then the link's horizontal-distance
// refusal; the slot stays empty until the point is observed again in face one.
TEST_F(ResectDialog, FaceTwoShotIsRefusedAndTheFaceOneShotIsTaken) {
  inst.InstrumentKind = "SET30R";
  for (int face2 = 0; face2 < 2; ++face2) {
    SCOPED_TRACE(face2);
    dialogs.shown.clear();
    link.obsBox.clear();
    ResectDlgLogic dlg(ctx, &port);
    Prepare(dlg, "P1", "P2");
    const ResectSlot seen[2] = {Observe("P1", 1000, 2000, 50, 1.3), Observe("P2", 1080, 2010, 51, 1.6)};
    for (int i = 0; i < 2; ++i) {
      dlg.Measure(i);
      if (i == face2) {
        ResectSlot other = seen[i];
        other.V = 2 * Pi - other.V;
        other.Hz = std::fmod(other.Hz + Pi, 2 * Pi);
        port.Receive(SetAnswerFor(other));
        ASSERT_EQ(dialogs.shown.size(), 2u);
        EXPECT_EQ(dialogs.shown[0].title, "倒鏡提示");
        EXPECT_EQ(dialogs.shown[1].title, "HD資料錯誤");
        EXPECT_EQ(dialogs.Messages().back(), "平距值錯誤.");
        EXPECT_EQ(link.obsBox, " 距離值錯誤.");
        EXPECT_EQ(dlg.StatusLabel[i], "");
      }
      port.Receive(SetAnswerFor(seen[i]));  // the flag is still set
      EXPECT_EQ(dlg.StatusLabel[i], "OK");
    }
    dlg.Solve();
    ASSERT_TRUE(dlg.OKEnabled);
    EXPECT_NEAR(dlg.Result().StationE, kSE, 0.01);
    EXPECT_NEAR(dlg.Result().OrientationConstant, kOC, 1e-4);
  }
}

TEST_F(ResectDialog, KeyedObservationsAreRefusedAndCloseControlPointsWarned) {
  inst.InstrumentKind = "Keyin";
  ResectDlgLogic dlg(ctx, &port);
  dlg.Measure(0);
  EXPECT_EQ(dialogs.shown.back().title, "限使用儀器");
  EXPECT_EQ(port.written, "");
  dlg.Choose(0, "P1");
  dlg.Choose(1, "P3");
  EXPECT_EQ(dialogs.shown.back().title, "警告");
  EXPECT_EQ(dialogs.shown.back().text, "兩點距離有問題!");
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(doc.StationSet, kFalse);
}

TEST_F(ResectDialog, BackPointsWithoutHeightGiveAStationAtZero) {
  inst.InstrumentKind = "SET30R";
  AddControl("Q1", 1000, 2000, 0);
  AddControl("Q2", 1080, 2010, 0);
  ResectDlgLogic dlg(ctx, &port);
  MeasureBoth(dlg, "Q1", "Q2", 0, 0);
  EXPECT_EQ(dialogs.Messages()[0], "提示:Q1沒有高程值");
  EXPECT_EQ(dlg.HeightNote[1], "的高程為0");
  dlg.Solve();
  EXPECT_EQ(dialogs.shown.back().title, "高程有問題");
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_EQ(doc.StationH, 0);
}

TEST_F(ResectDialog, FailedSolveLeavesNoStation) {
  inst.InstrumentKind = "SET30R";
  doc.MapType = 2;
  ResectDlgLogic dlg(ctx, &port);
  dlg.Choose(0, "P1");
  dlg.Choose(1, "P2");
  dlg.Measure(0);
  port.Receive("0010000 0900000 0000000\r\n");  // 10 m
  dlg.Measure(1);
  port.Receive("0010000 0900000 0900000\r\n");  // 10 m: the pair cannot reach 80.6 m
  dlg.Solve();
  // A plan map takes an instrument height of 0; the pair is refused on its distances.
  EXPECT_EQ(dlg.InstrumentHeightText, "0");
  EXPECT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown.back().title, "嚴重取樣錯誤");
  EXPECT_EQ(dlg.Command2Caption, "嚴重取樣錯誤");
  EXPECT_FALSE(dlg.OKEnabled);
  EXPECT_FALSE(dlg.OKButton());
  EXPECT_EQ(doc.StationSet, kFalse);
  EXPECT_EQ(doc.PointCount, 0);
}

}  // namespace
}  // namespace tavik
