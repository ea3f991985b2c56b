// New points from lines, arcs and base-map lines, and the distance and area inquiries.
#include <cmath>
#include <optional>

#include "edit_fixture.h"

namespace tavik::edit {
namespace {

class Constructions : public EditFixture {
 protected:
  void BaseLine(double E1, double N1, double E2, double N2) {
    BaseMapLine b;
    b.Number = ++doc.BaseMapCount;
    b.Code = 299;
    b.Kind = KindLine;
    b.X[0] = E1, b.Y[0] = N1, b.X[1] = E2, b.Y[1] = N2;
    doc.BaseMapTable.push_back(b);
  }
};

TEST_F(Constructions, MidpointOfALineAnArcAndABaseMapLine) {
  struct Case {
    const char* what;
    double clickE, clickN, E, N, H;
  };
  Line(1000, 2000, 10, 1010, 2004, 20);
  ASSERT_TRUE(AddEntity(doc, view, work, 301, KindArc3, 1020, 2000, 10, 1025, 2005, 0, 1030, 2000, 0, ""));
  BaseLine(1040, 2000, 1050, 2000);
  const Case cases[] = {
      {"line: rule of heights gives the mean", 1005, 2002, 1005, 2002, 15},
      {"arc: the middle of the sweep, the height of the end that has one", 1025, 2005, 1025, 2005, 10},
      {"base-map line: a survey point, height as it was", 1045, 2000, 1045, 2000, 10},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    ed.StartCommand(mode::NP_MidOf);
    EXPECT_EQ(host.prompts.back(), "請點選一條線");
    const auto before = doc.PointCount;
    Click(c.clickE + 3, c.clickN + 3);  // beside the line: nothing, the command waits
    EXPECT_EQ(doc.PointCount, before);
    Click(c.clickE, c.clickN);
    EXPECT_EQ(ed.Ptr.ActionMode, "");
    ASSERT_EQ(doc.PointCount, before + 1);
    ExpectAt(doc.PointTable.back(), c.E, c.N, 1e-3);
    EXPECT_NEAR(doc.PointTable.back().H, c.H, 1e-9);
  }
  EXPECT_EQ(doc.BaseMapCount, 1);
  EXPECT_EQ(JournalLines(work.Paths().TempP0()).size(), 3u);
}

TEST_F(Constructions, DivisionOfALine) {
  Line(1000, 2000, 10, 1010, 2000, 20);
  const std::pair<std::optional<std::string>, int> cases[] = {{std::nullopt, 0}, {"", 0}, {"1", 0},
                                                              {"abc", 0},        {"4", 3}, {"11", 9}};
  for (const auto& [answer, points] : cases) {
    SCOPED_TRACE(answer.value_or("(cancel)"));
    ed.StartCommand(mode::NP_DevideTo);
    doc.PointTable.clear(), doc.PointCount = 0;
    dialogs.inputs = {answer};
    Click(1003, 2000);
    ASSERT_EQ(doc.PointCount, points);
    for (int i = 0; i < points; ++i) {
      const double t = double(i + 1) / (points + 1);
      EXPECT_NEAR(doc.PointTable[i].E, 1000 + 10 * t, 1e-9);
      EXPECT_NEAR(doc.PointTable[i].H, 10 + 10 * t, 1e-9);
    }
  }
  EXPECT_EQ(dialogs.shown.back().title, "均分一條線(最多分成10段)");
  EXPECT_EQ(dialogs.shown.back().text, "要分成幾段?");
}

TEST_F(Constructions, HeightsOfDividedPointsAndFeet) {
  // Heights climb along the line only where kept and known at both ends; otherwise the
  // end that has one gives it, end 1 first; with none the height stays as it was.
  struct Case {
    int16_t mapType;
    double H1, H2, expected;
  };
  const Case cases[] = {{1, 10, 20, 15}, {2, 10, 20, 10}, {1, 0, 20, 20}, {2, -9999, 20, 20}, {1, 0, 0, 7}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "MapType " << c.mapType << " H " << c.H1 << ", " << c.H2);
    doc.MapType = c.mapType;
    ClearTables();
    Line(1000, 2000, c.H1, 1010, 2000, c.H2);
    ed.NewPointH = 7;
    ed.StartCommand(mode::NP_DevideTo);
    dialogs.inputs = {"2"};
    Click(1003, 2000);
    ASSERT_FALSE(doc.PointTable.empty());
    EXPECT_EQ(doc.PointTable.back().H, c.expected);
  }
  // The foot's height is worked out where heights are kept and held over elsewhere.
  ClearTables();
  Line(1000, 2010, 10, 1010, 2010, 20);
  Pt(1005, 2015);
  for (const int16_t mapType : {1, 2}) {
    doc.MapType = mapType;
    ed.StartCommand(mode::NP_PerOf);
    Click(1005, 2015);
    Click(1002, 2010);
    EXPECT_EQ(doc.PointTable.back().H, 15) << "MapType " << mapType;
  }
  ed.Reset();  // a new document starts with no height held over
  ed.StartCommand(mode::NP_PerOf);
  Click(1005, 2015);
  Click(1002, 2010);
  EXPECT_EQ(doc.PointTable.back().H, 0);
}

TEST_F(Constructions, IntersectionExtensionAndProjection) {
  Line(1000, 2000, 0, 1010, 2010, 0);
  Line(1000, 2010, 0, 1010, 2000, 0);
  ed.StartCommand(mode::NP_IntOf);
  Click(1005, 2005);
  ASSERT_EQ(doc.PointCount, 1);
  ExpectAt(doc.PointTable[0], 1005, 2005);

  Line(1020, 2000, 0, 1024, 2000, 0, 407);
  Line(1030, 1995, 0, 1030, 2005, 0);
  ed.StartCommand(mode::NP_Extend);
  EXPECT_EQ(host.prompts.back(), "先選延伸線,再選被投射線");
  Click(1022, 2000);
  EXPECT_EQ(host.prompts.back(), "找到延伸線, 請選被投射線");
  Click(1030, 2003);
  ASSERT_EQ(doc.PointCount, 2);
  ExpectAt(doc.PointTable[1], 1030, 2000);
  EXPECT_EQ(doc.EntityTable.back().Code, 407);
  EXPECT_EQ(doc.EntityTable.back().X[0], 1024);
  EXPECT_NEAR(doc.EntityTable.back().X[1], 1030, 1e-9);

  ed.StartCommand(mode::PointProject);
  Click(1035, 1999.9);  // beside nothing
  Click(1021, 2000.1);
  ASSERT_EQ(doc.PointCount, 3);
  ExpectAt(doc.PointTable[2], 1021, 2000, 1e-3);

  // A perpendicular's foot may lie on the line's extension.
  Line(1000, 2015, 0, 1002, 2015, 0);
  Pt(1005, 2010);
  ed.StartCommand(mode::NP_PerOf);
  Click(1001, 2012.5);  // no point there: nothing
  EXPECT_EQ(doc.PointCount, 4);
  Click(1005, 2010);
  Click(1001, 2015);
  ASSERT_EQ(doc.PointCount, 5);
  ExpectAt(doc.PointTable[4], 1005, 2015, 1e-6);
}

TEST_F(Constructions, CrossingOfTwoLinesInAWindow) {
  Line(1000, 2000, 10, 1010, 2010, 20);
  Line(1000, 2010, 30, 1010, 2000, 30);  // the newest line in the window gives the height
  Line(1020, 2000, 0, 1020, 2010, 0);    // crosses the first only far outside the window
  auto window = [&](double E1, double N1, double E2, double N2) {
    ed.MouseDownAt(LeftButton, E1, N1);
    ed.MouseMoveAt(LeftButton, E2, N2);
    ed.MouseUpAt(LeftButton, E2, N2);
  };
  ed.StartCommand(mode::QX2Line);
  EXPECT_EQ(host.prompts.back(), "請點選交點位置");
  window(1001, 2001, 1003, 2004);  // one line only: nothing, the command waits
  EXPECT_EQ(ed.Ptr.ActionMode, mode::QX2Line);
  window(1004, 2004, 1006, 2006);
  EXPECT_EQ(Messages(), std::vector<std::string>{"E: 1005.000\r\nN: 2005.000"});
  EXPECT_EQ(doc.PointCount, 0);  // an inquiry stores nothing
  EXPECT_EQ(ed.Ptr.ActionMode, "");

  ed.StartCommand(mode::QX2LineMark);
  window(1006, 2006, 1004, 2004);  // dragged either way
  ASSERT_EQ(doc.PointCount, 1);
  ExpectAt(doc.PointTable[0], 1005, 2005);
  EXPECT_EQ(doc.PointTable[0].H, 30);
}

TEST_F(Constructions, KeyedCoordinatesAndALeadPoint) {
  struct Case {
    std::optional<std::string> answer;
    int points;
    const char* message;
  };
  const Case keyed[] = {{std::nullopt, 0, nullptr},      {" ", 0, nullptr},
                        {"1005.5, 2003.25, 12", 1, nullptr}, {"1006,2004", 1, nullptr},
                        {"1006;2004", 0, "座標格式不正確: 1006;2004"}, {"1,2,3,4", 0, "座標格式不正確: 1,2,3,4"},
                        {"1006,", 0, "座標格式不正確: 1006,"}};
  for (const auto& c : keyed) {
    SCOPED_TRACE(c.answer.value_or("(cancel)"));
    const auto before = doc.PointCount;
    dialogs.shown.clear();
    dialogs.inputs = {c.answer};
    ed.Toolbar1Click("輸入座標");
    EXPECT_EQ(doc.PointCount, before + c.points);
    EXPECT_EQ(Messages(), c.message ? std::vector<std::string>{c.message} : std::vector<std::string>{});
  }
  ExpectAt(doc.PointTable[0], 1005.5, 2003.25);
  EXPECT_EQ(doc.PointTable[0].H, 12);
  EXPECT_EQ(doc.PointTable[1].H, 0);

  // 手動引點: a picked point, then bearing and distance; a bad answer is asked again.
  dialogs.shown.clear();
  ed.Toolbar1Click("手動引點");
  EXPECT_EQ(host.prompts.back(), "請點選引點的起點");
  dialogs.inputs = {"1234567,5"};
  Click(1005.5, 2003.25);
  EXPECT_EQ(doc.PointCount, 2);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::SS1);
  dialogs.inputs = {"900000, 10"};
  Click(1005.5, 2003.25);
  ASSERT_EQ(doc.PointCount, 3);
  ExpectAt(doc.PointTable[2], 1015.5, 2003.25, 1e-9);
  EXPECT_EQ(doc.PointTable[2].H, 12);  // the height of the point it was led from
  EXPECT_EQ(ed.Ptr.ActionMode, "");
  EXPECT_EQ(Messages().size(), 1u);
}

TEST_F(Constructions, NoPointAtZeroAndTheViewFollowsANewPoint) {
  EXPECT_FALSE(ed.AddNewPoint(0, 2000, 0) || ed.AddNewPoint(1000, 0, 0));
  EXPECT_EQ(doc.PointCount, 0);
  const double scale = doc.ScaleDenominator;
  EXPECT_TRUE(ed.AddNewPoint(1500, 2000, 3));
  EXPECT_EQ(host.Count("ViewChanged"), 1);
  EXPECT_GT(doc.ScaleDenominator, scale);
  EXPECT_TRUE(view.InScreen(1500, 2000));
  EXPECT_EQ(doc.ScreenPointCount, 1);
  EXPECT_TRUE(ed.AddNewPoint(1000, 2000, 3));  // on the screen: the view stays
  EXPECT_EQ(host.Count("ViewChanged"), 1);
}

TEST_F(Constructions, DistanceAndAreaInquiries) {
  Pt(1000, 2000);
  Pt(1010, 2000);
  Pt(1010, 2010);
  ed.StartCommand(mode::QDIS);
  Click(1000, 2000);
  Click(1010, 2000);
  EXPECT_EQ(Messages(), (std::vector<std::string>{"距離: 10.000m\r\n方位角: 90-00-00.00"}));
  EXPECT_EQ(ed.Ptr.ActionMode, mode::QDIS);  // stays for another pair

  ed.StartCommand(mode::QAREA);
  Click(1000, 2000);
  Click(1010, 2000);
  Click(1010, 2010);
  RightClick(1050, 2050);
  ASSERT_EQ(Messages().size(), 2u);
  EXPECT_EQ(Messages()[1], "面積: 50.0000㎡");
  EXPECT_EQ(ed.Ptr.ActionMode, "");
  EXPECT_EQ(doc.EntityCount, 0);  // an inquiry changes nothing
}

}  // namespace
}  // namespace tavik::edit
