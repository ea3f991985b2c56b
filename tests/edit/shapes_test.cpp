// Shapes drawn by pen: rectangles, circles, arcs and chains, with their refusals.
#include <array>
#include <cmath>

#include "edit_fixture.h"

namespace tavik::edit {
namespace {

constexpr double kPi = 3.14159265358979;

class Shapes : public EditFixture {
 protected:
  void PickAll() {
    for (const auto& p : std::vector<Point>(doc.PointTable)) Click(p.E, p.N);
  }
  void Pts(std::initializer_list<std::array<double, 3>> pts) {
    for (const auto& p : pts) Pt(p[0], p[1], p[2]);
  }
};

TEST_F(Shapes, RectangleCornerMustBeStrictlyBetween85And95Degrees) {
  for (const double angle : {84.9, 85.1, 90.0, 94.9, 95.1}) {
    SCOPED_TRACE(angle);
    const bool made = angle > 85 && angle < 95;
    ClearTables();
    ed.Reset();
    ed.Toolbar2Click(mode::RECT);
    // Three points at distance 10 from the corner (1000, 2000), at azimuths 30 and 30 + angle.
    const double a1 = 30 / 180.0 * kPi, a2 = (30 + angle) / 180.0 * kPi;
    Pts({{1000 + 10 * std::sin(a1), 2000 + 10 * std::cos(a1), 0},
         {1000, 2000, 0},
         {1000 + 10 * std::sin(a2), 2000 + 10 * std::cos(a2), 0}});
    PickAll();
    EXPECT_EQ(Live(KindLine).size(), made ? 4u : 0u);
    EXPECT_EQ(Messages(), made ? std::vector<std::string>{} : std::vector<std::string>{"角度不成矩形"});
    for (const auto& s : dialogs.shown) EXPECT_EQ(s.title, "錯誤");
    EXPECT_EQ(ed.Buffers[static_cast<int>(Shape::Rectangle)].Count, 0);
  }
}

TEST_F(Shapes, RectangleClosesTheParallelogramAndRotatesRoles) {
  doc.CurrentLegend = 407;
  ed.Toolbar2Click(mode::RECT);
  // The right angle lies at the third pick; the roles rotate until it is the corner.
  Pts({{1000, 2000, 10}, {1010, 2010, 12}, {1010, 2000, 11}});
  PickAll();
  const auto lines = Live(KindLine);
  ASSERT_EQ(lines.size(), 4u);
  for (const auto& l : lines) EXPECT_EQ(l.Code, 407);
  // A = (1010, 2010), B = (1010, 2000) corner, C = (1000, 2000): D = (1000, 2010), with
  // the lower of A's and C's heights.
  EXPECT_NEAR(lines[2].X[1], 1000, 0.001);
  EXPECT_NEAR(lines[2].Y[1], 2010, 0.001);
  EXPECT_EQ(lines[2].Z[1], 10);
  EXPECT_EQ(lines[3].X[1], lines[0].X[0]);
  EXPECT_EQ(doc.MapChanged, kTrue);
  EXPECT_EQ(JournalLines(work.Paths().TempS0()).size(), 4u);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::RECT);  // the mode stays for the next rectangle
}

TEST_F(Shapes, RepeatedPointsAreRefusedAndMayBePickedAgain) {
  Pts({{1000, 2000, 0}, {1010, 2000, 0}, {1010, 2010, 0}});
  ed.Toolbar2Click(mode::RECT);
  // The second equals the first, then the third the first and the second.
  for (const auto& [E, N] : {std::pair{1000, 2000}, {1000, 2000}, {1010, 2000}, {1000, 2000}, {1010, 2000}})
    Click(E, N);
  ASSERT_EQ(Messages(), (std::vector<std::string>{"一二兩點同點", "一三兩點同點", "二三兩點同點"}));
  for (const auto& s : dialogs.shown) EXPECT_EQ(s.title, "錯誤");
  EXPECT_EQ(ed.Buffers[static_cast<int>(Shape::Rectangle)].Count, 2);
  Click(1010, 2010);
  EXPECT_EQ(Live(KindLine).size(), 4u);
}

TEST_F(Shapes, PointCloserThanTenCentimetresIsDroppedSilently) {
  doc.ScaleDenominator = 1;  // 3250 pixels to the metre, so the two picks are apart
  view::ComputeView(doc, view);
  Pts({{1000, 2000, 0}, {1000.05, 2000, 0}});
  ed.Toolbar2Click(mode::P2C);
  PickAll();
  EXPECT_TRUE(Messages().empty());
  EXPECT_TRUE(Live().empty());
  EXPECT_EQ(ed.Buffers[static_cast<int>(Shape::Circle2)].Count, 1);
}

TEST_F(Shapes, CirclesCarryTheirAreaLabelAndArcsNone) {
  Pts({{1000, 2000, 5}, {1003, 2004, 6}});
  ed.Toolbar2Click(mode::P2C);
  PickAll();
  ASSERT_EQ(Live().size(), 2u);
  const Entity circle = Live(KindCircle2).at(0), label = Live(KindPoint).at(0);
  EXPECT_EQ((std::array{circle.X[0], circle.Y[0], circle.X[1], circle.Y[1]}),
            (std::array{1000.0, 2000.0, 1003.0, 2004.0}));
  EXPECT_EQ(label.Code, 13);
  EXPECT_EQ((std::array{label.X[0], label.Y[0]}), (std::array{1000.0, 2000.0}));
  EXPECT_DOUBLE_EQ(label.Z[0], 25 * kPi);
  bool labelDrawn = false;
  for (const auto& op : surface.ops) labelDrawn |= op.op == "text" && op.text == "78.5398㎡";
  EXPECT_TRUE(labelDrawn);

  // Through three points: centre (1005, 2000), radius 5.
  ClearTables();
  Pts({{1000, 2000, 1}, {1005, 2005, 2}, {1010, 2000, 3}});
  ed.Toolbar2Click(mode::P3C);
  PickAll();
  const Entity label3 = Live(KindPoint).at(0);
  EXPECT_NEAR(label3.X[0], 1005, 1e-3);
  EXPECT_NEAR(label3.Y[0], 2000, 1e-3);
  EXPECT_NEAR(label3.Z[0], 25 * kPi, 1e-2);
  EXPECT_EQ(Live(KindCircle3).size(), 1u);
  ed.Toolbar2Click(mode::ARC);
  PickAll();
  ASSERT_EQ(Live(KindArc3).size(), 1u);
  EXPECT_EQ(Live(KindArc3)[0].Z[2], 3);
  EXPECT_EQ(Live(KindPoint).size(), 1u);  // an arc has no label
}

TEST_F(Shapes, CollinearCircleAndArcAreRefused) {
  Pts({{1000, 2000, 0}, {1005, 2000, 0}, {1010, 2000, 0}});
  for (const std::string& m : {mode::P3C, mode::ARC}) {
    SCOPED_TRACE(m);
    dialogs.shown.clear();
    ed.Toolbar2Click(m);
    PickAll();
    EXPECT_EQ(Messages(), (std::vector<std::string>{"錯誤:三點共線."}));
    EXPECT_TRUE(Live().empty());
  }
}

TEST_F(Shapes, SectionArcAsksForANewName) {
  doc.CurrentLegend = 520;
  ASSERT_TRUE(AddEntity(doc, view, work, 520, KindLine, 900, 1900, 0, 901, 1900, 0, 0, 0, 0, "S1"));
  Pts({{1000, 2000, 0}, {1005, 2005, 0}, {1010, 2000, 0}});
  dialogs.inputs = {"S1", " S2 "};
  ed.Toolbar2Click(mode::ARC);
  PickAll();
  EXPECT_EQ(Messages(), (std::vector<std::string>{"斷線名稱重覆,請重新輸入"}));
  EXPECT_EQ(dialogs.shown[1].title, "發現重覆名稱");
  ASSERT_EQ(Live(KindArc3).size(), 1u);
  EXPECT_EQ(Live(KindArc3)[0].Name, "S2");
  PickAll();  // the mode stays; a cancelled name gives the arc up
  EXPECT_EQ(Live(KindArc3).size(), 1u);
}

TEST_F(Shapes, PicksOnNothingDoNothing) {
  Pt(1000, 2000);
  for (const std::string& m : {mode::RECT, mode::P2C, mode::P3C, mode::ARC, mode::Line}) {
    ed.Toolbar2Click(m);
    for (const double d : {3, 6, 9}) Click(1000 + d, 2000 + d);
    EXPECT_EQ(ed.Ptr.ActionMode, m);
  }
  EXPECT_TRUE(Messages().empty());
  EXPECT_TRUE(Live().empty());
  EXPECT_EQ(ed.Ptr.LineInProgress, kFalse);
}

class Chains : public Shapes {
 protected:
  void Square() {
    Pts({{1000, 2000, 0}, {1010, 2000, 0}, {1010, 2010, 0}});
    ed.Toolbar2Click(mode::Line);
    PickAll();
  }
};

TEST_F(Chains, PanKeepsTheChainLowerCaseCClosesItAndARightPressEndsIt) {
  Square();
  // The middle button pans in the middle of a chain and leaves it as it was.
  host.calls.clear();
  ed.MouseDownAt(MiddleButton, 1005, 2005);
  ed.MouseMoveAt(MiddleButton, 1006, 2006);
  ed.MouseUpAt(MiddleButton, 1006, 2006);
  EXPECT_EQ(host.calls, (std::vector<std::string>{"BeginPan", "MovePan", "EndPan"}));
  EXPECT_EQ(ed.Ptr.LineInProgress, kTrue);
  EXPECT_EQ(ed.Ptr.ChainCount, 3);
  EXPECT_TRUE(ed.KeyPress('c'));
  const auto lines = Live(KindLine);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ((std::array{lines[2].X[0], lines[2].Y[0], lines[2].X[1], lines[2].Y[1]}),
            (std::array{1010.0, 2010.0, 1000.0, 2000.0}));
  EXPECT_EQ(ed.Ptr.LineInProgress, kFalse);
  EXPECT_EQ(ed.Ptr.ChainCount, 0);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::Line);
  EXPECT_FALSE(ed.KeyPress('c'));  // no chain: nothing more
  EXPECT_EQ(Live(KindLine).size(), 3u);

  PickAll();  // a new chain of two lines, ended by a right press without closing
  ed.MouseDownAt(RightButton, 1020, 2020);
  EXPECT_EQ(ed.Ptr.LineInProgress, kFalse);
  EXPECT_EQ(Live(KindLine).size(), 5u);
  EXPECT_TRUE(host.inquiry.empty());  // a right press in a mode is no inquiry
}

TEST_F(Chains, RubberBandIsInvertedAndErasedByTheNextMove) {
  Pt(1000, 2000);
  ed.Toolbar2Click(mode::Line);
  Click(1000, 2000);
  surface.ops.clear();
  ed.MouseMoveAt(0, 1005, 2005);
  EXPECT_EQ(surface.Count("line"), 1u);
  ASSERT_EQ(surface.ops.front().op, "mode");
  EXPECT_EQ(surface.ops.front().v[0], 1.0);  // inverting
  ed.MouseMoveAt(0, 1006, 2006);
  EXPECT_EQ(surface.Count("line"), 3u);  // the old band again, then the new one
  EXPECT_EQ(surface.ops.back().op, "mode");
  EXPECT_EQ(surface.ops.back().v[0], 0.0);
}

TEST_F(Chains, SectionChainIsNamedOnceAtTheEnd) {
  doc.CurrentLegend = 521;
  dialogs.inputs = {"X1"};
  Square();
  RightClick(1020, 2020);
  const auto lines = Live(KindLine);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ((std::array{lines[0].Name, lines[1].Name}), (std::array<std::string, 2>{"X1", "X1"}));
  EXPECT_EQ(dialogs.shown.at(0).text, "請輸入斷面名稱:");
  const auto journal = JournalLines(work.Paths().TempS0());  // rewritten with the names
  ASSERT_EQ(journal.size(), 2u);
  EXPECT_NE(journal[1].find("\"X1"), std::string::npos);
}

TEST_F(Chains, MeasuredPointsCompleteTheFlaggedShape) {
  EXPECT_TRUE(ed.KeyDown(Editor::KeyF4, false));
  Pt(1000, 2000);
  ed.MeasuredPointAdded();  // one point is not enough; the flag waits
  EXPECT_EQ(ed.Flag, MeasuredShape::Line);
  Pt(1010, 2000);
  ed.MeasuredPointAdded();
  EXPECT_EQ(Live(KindLine).size(), 1u);
  EXPECT_EQ(ed.Flag, MeasuredShape::None);
  ed.KeyDown(Editor::KeyF8, false);
  Pt(1010, 2010);
  ed.MeasuredPointAdded();
  EXPECT_EQ(Live(KindLine).size(), 5u);
  ed.KeyDown(Editor::KeyF5, false);
  Pt(1010, 2010);  // the same place again: refused, nothing made
  ed.MeasuredPointAdded();
  EXPECT_EQ(Messages().back(), "一二兩點同點");
  EXPECT_EQ(Live(KindCircle2).size(), 0u);
}

}  // namespace
}  // namespace tavik::edit
