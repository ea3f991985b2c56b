// Stake-out: the target pick, the turn, and the advice as the rod comes in.
#include <gtest/gtest.h>

#include "core/numbers.h"
#include "core/record_text.h"
#include "core/text.h"
#include "geo/angles.h"
#include "procedures/stakeout.h"
#include "procedures/stakeout_guide.h"
#include "instruments/fake_port.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

using testing::ReadingTo;

constexpr double kOC = 0.3;

TEST(StakeoutGuide, AdviceAsTheRodApproaches) {
  const TargetAim aim = AimAtTarget(1000, 2000, 1030, 2040, kOC);
  EXPECT_NEAR(aim.Distance, 50, 1e-12);
  const double az = std::atan2(30.0, 40.0);
  const struct {
    double E, N;
    const char* distance;
    const char* turn;
  } steps[] = {
      {1000 + 45 * std::sin(az), 2000 + 45 * std::cos(az), "後退-5.000m", nullptr},
      {1000 + 52 * std::sin(az), 2000 + 52 * std::cos(az), "向前2.000m", nullptr},
      {1000 + 50 * std::sin(az + 0.01), 2000 + 50 * std::cos(az + 0.01), nullptr, "向右 0-34-23"},
      // Not reduced: a large left turn.
      {1000 + 50 * std::sin(az - 0.01), 2000 + 50 * std::cos(az - 0.01), nullptr, "向左 359-25-37"},
  };
  for (const auto& s : steps) {
    const auto r = ReadingTo(1000, 2000, 0, 0, kOC, s.E, s.N, 0, 0);
    const GuideAdvice g = Guide(r.hz, r.v, r.slope, 1000, 2000, kOC, 1030, 2040, aim.Circle);
    EXPECT_NEAR(g.E, s.E, 1e-9);
    EXPECT_NEAR(g.N, s.N, 1e-9);
    if (s.distance) {
      EXPECT_EQ(g.DistanceText, s.distance);
    }
    if (s.turn) {
      EXPECT_EQ(g.TurnText, s.turn);
    }
  }
}

TEST(StakeoutGuide, TurnAdviceByTheSizeOfT) {
  const struct {
    double T;
    const char* text;
  } cases[] = {
      {0, "向左 0-00-00"},  // exactly on the target's reading
      {Pi, "向左 180-00-00"},
      {-0.01, "向左 0-34-23"},
  };
  for (const auto& c : cases) EXPECT_EQ(TurnText(c.T), c.text) << c.T;
}

struct Stakeout : testing::SurveyFixture {
  Stakeout() {
    SetStation(1000, 2000, 50, kOC);
    view.PaperMinE = 900;
    view.PaperMaxN = 2100;
    doc.ScaleDenominator = 100;
    inst.InstrumentKind = "SET30R";
  }
  // The pixel of a world point (the pick box is centred one pixel up and left).
  std::pair<double, double> PixelOf(double E, double N) {
    float x = 0, y = 0;
    WorldToPaper(view, doc.ScaleDenominator, E, N, x, y);
    return {x + 1, y + 1};
  }
  // A base map of one line (or point) from (E0, N) to (E1, N).
  void BaseMap(int16_t kind, double E0, double E1, double N) {
    BaseMapLine b;
    b.Kind = kind;
    b.X[0] = E0, b.X[1] = E1, b.Y[0] = b.Y[1] = N;
    doc.BaseMapTable = {b};
    doc.BaseMapCount = 1;
  }
};

TEST_F(Stakeout, OpeningNeedsAStation) {
  doc.StationSet = kFalse;
  EXPECT_FALSE(StackOutLogic::CanOpen(ctx));
  EXPECT_EQ(dialogs.Messages().back(), "請先設定測站");
  doc.StationSet = kTrue;
  EXPECT_TRUE(StackOutLogic::CanOpen(ctx));
  EXPECT_EQ(inst.StakeOutActive, kTrue);
}

TEST_F(Stakeout, TargetSearchOrder) {
  StackOutLogic dlg(ctx, nullptr);
  // A nameless entity over a numbered point: the point is found.
  AddEntity(doc, view, work, 301, 1030, 2040, 0, "");
  AddPoint(doc, view, work, 1030, 2040, 51);
  auto [x, y] = PixelOf(1030, 2040);
  ASSERT_TRUE(dlg.ChooseTarget(x, y));
  EXPECT_EQ(survey.StakeTargetName, "1");
  EXPECT_EQ(dlg.StakeTargetCode, 99);
  EXPECT_EQ(dlg.Label5, "50.000");
  // A named entity wins over the point.
  AddEntity(doc, view, work, 113, 1030.01, 2040, 0, "K9");
  ASSERT_TRUE(dlg.ChooseTarget(x, y));
  EXPECT_EQ(survey.StakeTargetName, "K9");
  EXPECT_EQ(dlg.StakeTargetCode, 113);
  // The station itself.
  AddPoint(doc, view, work, 1000, 2000, 50);
  std::tie(x, y) = PixelOf(1000, 2000);
  EXPECT_FALSE(dlg.ChooseTarget(x, y));
  EXPECT_EQ(dialogs.shown.back().title, "選錯點");
  EXPECT_EQ(dialogs.shown.back().text, "這是測站");
  // Nothing there.
  std::tie(x, y) = PixelOf(950, 1950);
  EXPECT_FALSE(dlg.ChooseTarget(x, y));
  EXPECT_EQ(dialogs.shown.back().title, "沒有資料");
  EXPECT_FALSE(dlg.TargetChosen);
}

TEST_F(Stakeout, RoboticTurnCommands) {
  AddPoint(doc, view, work, 1030, 2040, 51);
  auto [x, y] = PixelOf(1030, 2040);
  inst.InstrumentKind = "SET3110M";
  inst.ObsVRaw = 901530;
  int timer = 0;
  ctx.link.StartTimer10 = [&](int ms) { timer = ms; };
  StackOutLogic dlg(ctx, nullptr);
  ASSERT_TRUE(dlg.ChooseTarget(x, y));
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(dlg.TargetCircle, d, m, s);
  char want[64];
  std::snprintf(want, sizeof want, "*DHA%03d%02d%02.0fVA0901530\r\n", d, m, s);
  EXPECT_EQ(link.set, want);
  EXPECT_EQ(timer, 7000);
  EXPECT_EQ(dlg.Label6, std::to_string(d) + "-" + (m < 10 ? "0" : "") + std::to_string(m) + "-" + num::Format(s, "00"));
}

TEST_F(Stakeout, SetLinesDriveTheGuideAndRecord) {
  AddEntity(doc, view, work, 113, 1030, 2040, 51, "T1");
  StackOutLogic dlg(ctx, nullptr);
  dlg.Load();
  EXPECT_EQ(link.set, "Xe\r\nEe\r\n*/PF,1,2\r\n*GLON\r\n");
  EXPECT_EQ(inst.LaserSW, "導光");
  link.set.clear();
  dlg.ReadTS();  // no target yet: nothing
  EXPECT_EQ(link.set, "");
  auto [x, y] = PixelOf(1030, 2040);
  ASSERT_TRUE(dlg.ChooseTarget(x, y));  // a SET30R is not turned: nothing written
  EXPECT_TRUE(dlg.ReadTSEnabled);
  dlg.ReadTS();
  EXPECT_EQ(link.set, std::string("Xe\r\n\x11\r\n"));
  dlg.SetLine("0045000 0900000 0\r\n");  // too short: ignored
  EXPECT_EQ(dlg.Label8, "");
  // 45.000 m along the target's line, level.
  const auto r = ReadingTo(1000, 2000, 0, 0, kOC, 1027, 2036, 0, 0);
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(r.hz, d, m, s);
  char line[64];
  std::snprintf(line, sizeof line, "   0045000 0900000 %03d%02d%02d\r\n", d, m, static_cast<int>(std::lround(s)));
  dlg.SetLine(line);
  EXPECT_EQ(dlg.Label8, "後退-5.000m");
  EXPECT_EQ(dlg.LabelS, "45.000");
  EXPECT_EQ(survey.PointAdded, kFalse);
  // A tracking line carries only the zenith.
  dlg.SetLine("12.3,4.5,6.7,Ee,89.5,0\r\n");
  EXPECT_EQ(inst.ObsVRaw, 895000);
  // Recording: the .STK line, its message and the entity.
  survey.LastH = 49;
  doc.TargetHeight = 1.3;
  dlg.Command2();
  ASSERT_EQ(doc.PointCount, 1);
  EXPECT_EQ(dialogs.Messages().back(), "T1的觀測資料,己存入" + doc.StkPath + "檔中");
  EXPECT_EQ(doc.EntityTable.back().Name, "T1");
  EXPECT_EQ(doc.EntityTable.back().Code, 113);
  const auto stk = Lines(".STK");
  ASSERT_EQ(stk.size(), 1u);
  EXPECT_EQ(stk[0].substr(0, 3), "T1,");
  // A second record without a new observation adds no point, but the named entity again.
  const int32_t entities = doc.EntityCount;
  dlg.Command2();
  EXPECT_EQ(doc.PointCount, 1);
  EXPECT_EQ(doc.EntityCount, entities + 1);
  dlg.Command18();
  EXPECT_EQ(link.set.substr(link.set.size() - 3), std::string("\x12\r\n"));
  EXPECT_TRUE(dlg.Command5Enabled);
}

TEST_F(Stakeout, BaseMapTargets) {
  const struct {
    int16_t kind;
    double pickE, wantE;
    const char* wantName;
  } cases[] = {
      {KindLine, 1010.4, 1010.5, "1"},  // a line gives its nearer end
      {KindPoint, 1010, 1010, "NoName"},
  };
  for (const auto& c : cases) {
    BaseMap(c.kind, 1010, 1010.5, 2010);
    StackOutLogic dlg(ctx, nullptr);
    auto [x, y] = PixelOf(c.pickE, 2010);
    ASSERT_TRUE(dlg.ChooseTarget(x, y)) << c.wantName;
    EXPECT_EQ(dlg.StakeTargetE, c.wantE) << c.wantName;
    EXPECT_EQ(dlg.StakeTargetCode, 131);
    EXPECT_EQ(survey.StakeTargetName, c.wantName);
    // At stop a nameless target vanishes; a named one stays.
    const bool nameless = std::string(c.wantName) == "NoName";
    if (nameless) {
      // Recorded before the stop, the entity carries the very name "NoName".
      dlg.Command2();
      EXPECT_EQ(doc.EntityTable.back().Name, "NoName");
    }
    dlg.Command18();
    EXPECT_EQ(dlg.TargetChosen, !nameless) << c.wantName;
    EXPECT_EQ(dlg.StakeTargetE, nameless ? 0 : c.wantE) << c.wantName;
    EXPECT_EQ(dlg.StakeTargetCode, nameless ? 0 : 131);
  }
}

TEST_F(Stakeout, EqualDistancesToBothEndsTakeTheFirst) {
  auto [x, y] = PixelOf(1010, 2010);
  double cE = 0, cN = 0;
  PaperToWorld(view, doc.ScaleDenominator, x, y, cE, cN);
  BaseMap(KindLine, cE + 0.25, cE - 0.25, cN);
  StackOutLogic dlg(ctx, nullptr);
  ASSERT_TRUE(dlg.ChooseTarget(x, y));
  EXPECT_EQ(dlg.StakeTargetE, cE + 0.25);
}

TEST_F(Stakeout, LastObservedPointIsATargetWhenTheSettingsOfferIt) {
  doc.BaseMapTable = {BaseMapLine{}};
  doc.BaseMapCount = 1;
  survey.LastE = 1020;
  survey.LastN = 2030;
  auto [x, y] = PixelOf(1020, 2030);
  StackOutLogic dlg(ctx, nullptr);
  EXPECT_FALSE(dlg.ChooseTarget(x, y));
  survey.StakeLastObserved = kTrue;
  ASSERT_TRUE(dlg.ChooseTarget(x, y));
  EXPECT_EQ(dlg.StakeTargetE, 1020);
  EXPECT_EQ(dlg.StakeTargetCode, 131);
}

// Answers over the dialog's own port: damaged or refused ones are shown as the link
// shows them, one without a distance is dropped and guides nothing.
TEST_F(Stakeout, DialogPortAnswersThatGuideNothing) {
  AddEntity(doc, view, work, 113, 1030, 2040, 51, "T1");
  auto [x, y] = PixelOf(1030, 2040);
  std::string k3600V2(90, ' ');
  k3600V2.replace(43, 2, "SD").replace(45, 12, "      12.345").replace(74, 2, "V2");
  const struct {
    const char* kind;
    std::string answer;
    const char* box;
    const char* obsBox;
  } cases[] = {
      {"PENTAX", "HD  0123.45.12\r\n", nullptr, "資料錯誤!!(資料不全)"},
      {"Trimble3600", k3600V2 + "\r\n", "垂直角定義錯誤", ""},
      {"TCR1103", "*21.322+12345670 *22.324+09000000 *87.000+00000000\r\n", nullptr, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.kind);
    dialogs.shown.clear();
    link.obsBox.clear();
    link.obsBoxRed = false;
    inst.InstrumentKind = c.kind;
    test::FakePort port;
    StackOutLogic dlg(ctx, &port);
    ASSERT_TRUE(dlg.ChooseTarget(x, y));
    dlg.ReadTS();
    port.Receive(c.answer);
    EXPECT_EQ(dlg.Label8, "");
    EXPECT_EQ(dialogs.Messages(), c.box ? std::vector<std::string>{c.box} : std::vector<std::string>{});
    EXPECT_EQ(link.obsBox, c.obsBox);
    EXPECT_EQ(link.obsBoxRed, std::string(c.kind) == "PENTAX");
  }
}

TEST_F(Stakeout, TrimbleLeavesTheAutosaveTimerStopped) {
  inst.InstrumentKind = "Trimble";
  std::vector<bool> timer5;
  ctx.link.EnableTimer5 = [&](bool on) { timer5.push_back(on); };
  test::FakePort port;
  StackOutLogic dlg(ctx, &port);
  dlg.Load();
  dlg.Command5();
  EXPECT_EQ(timer5, std::vector<bool>{false});
  EXPECT_EQ(port.written, "TG\r\nPG,3=0\r\n");
}

}  // namespace
}  // namespace tavik
