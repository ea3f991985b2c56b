// Shapes drawn by pen: rectangles, circles, arcs and chains, with their refusals.
#include <cmath>

#include "edit_fixture.h"

namespace tavik::edit {
namespace {

constexpr double kPi = 3.14159265358979;

class Shapes : public EditFixture {
 protected:
  // Three points at distance 10 from B = (1000, 2000) at azimuths a and a + angle.
  void Corner(double angleDeg) {
    const double a1 = 30 / 180.0 * kPi, a2 = (30 + angleDeg) / 180.0 * kPi;
    Pt(1000 + 10 * std::sin(a1), 2000 + 10 * std::cos(a1));
    Pt(1000, 2000);
    Pt(1000 + 10 * std::sin(a2), 2000 + 10 * std::cos(a2));
  }
  void PickAll() {
    for (const auto& p : std::vector<Point>(doc.PointTable)) Click(p.E, p.N);
  }
};

TEST_F(Shapes, RectangleCornerMustBeStrictlyBetween85And95Degrees) {
  struct Case {
    double angle;
    bool made;
  } cases[] = {{84.9, false}, {85.1, true}, {90, true}, {94.9, true}, {95.1, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.angle);
    doc.EntityTable.clear(), doc.EntityCount = 0, doc.ScreenEntityTable.clear(), doc.ScreenEntityCount = 0;
    doc.PointTable.clear(), doc.PointCount = 0, doc.ScreenPointTable.clear(), doc.ScreenPointCount = 0;
    dialogs.shown.clear();
    ed.Toolbar2Click(mode::RECT);
    Corner(c.angle);
    PickAll();
    EXPECT_EQ(Live(KindLine).size(), c.made ? 4u : 0u);
    if (!c.made) {
      ASSERT_EQ(Messages().size(), 1u);
      EXPECT_EQ(Messages()[0], "角度不成矩形");
      EXPECT_EQ(dialogs.shown[0].title, "錯誤");
    }
    EXPECT_EQ(ed.Buffers[static_cast<int>(Shape::Rectangle)].Count, 0);
  }
}

TEST_F(Shapes, RectangleClosesTheParallelogramAndRotatesRoles) {
  doc.CurrentLegend = 407;
  ed.Toolbar2Click(mode::RECT);
  // The right angle lies at the third pick; the roles rotate until it is the corner.
  Pt(1000, 2000, 10);
  Pt(1010, 2010, 12);
  Pt(1010, 2000, 11);
  PickAll();
  const auto lines = Live(KindLine);
  ASSERT_EQ(lines.size(), 4u);
  for (const auto& l : lines) {
    EXPECT_EQ(l.Code, 407);
    EXPECT_EQ(l.Name, "");
  }
  // A = (1010, 2010), B = (1010, 2000) corner, C = (1000, 2000): D = (1000, 2010), with
  // the lower of A's and C's heights.
  EXPECT_NEAR(lines[2].X[1], 1000, 0.001);
  EXPECT_NEAR(lines[2].Y[1], 2010, 0.001);
  EXPECT_EQ(lines[2].Z[1], 10);
  EXPECT_EQ(lines[3].X[1], lines[0].X[0]);
  EXPECT_EQ(doc.MapChanged, kTrue);
  // Journalled line by line.
  EXPECT_EQ(JournalLines(work.Paths().TempS0()).size(), 4u);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::RECT);  // the mode stays for the next rectangle
}

TEST_F(Shapes, RepeatedPointsAreRefusedAndMayBePickedAgain) {
  Pt(1000, 2000);
  Pt(1010, 2000);
  Pt(1010, 2010);
  ed.Toolbar2Click(mode::RECT);
  Click(1000, 2000);
  Click(1000, 2000);  // second equals first
  Click(1010, 2000);
  Click(1000, 2000);  // third equals first
  Click(1010, 2000);  // third equals second
  ASSERT_EQ(Messages(), (std::vector<std::string>{"一二兩點同點", "一三兩點同點", "二三兩點同點"}));
  for (const auto& s : dialogs.shown) EXPECT_EQ(s.title, "錯誤");
  EXPECT_EQ(ed.Buffers[static_cast<int>(Shape::Rectangle)].Count, 2);
  Click(1010, 2010);
  EXPECT_EQ(Live(KindLine).size(), 4u);
}

TEST_F(Shapes, PointCloserThanTenCentimetresIsDroppedSilently) {
  doc.ScaleDenominator = 1;  // 3250 pixels to the metre, so the two picks are apart
  view::ComputeView(doc, view);
  Pt(1000, 2000);
  Pt(1000.05, 2000);
  ed.Toolbar2Click(mode::P2C);
  Click(1000, 2000);
  Click(1000.05, 2000);
  EXPECT_TRUE(Messages().empty());
  EXPECT_TRUE(Live().empty());
  EXPECT_EQ(ed.Buffers[static_cast<int>(Shape::Circle2)].Count, 1);
}

TEST_F(Shapes, CircleByCentreAndRimCarriesItsAreaLabel) {
  Pt(1000, 2000, 5);
  Pt(1003, 2004, 6);
  ed.Toolbar2Click(mode::P2C);
  PickAll();
  ASSERT_EQ(Live().size(), 2u);
  const Entity circle = Live(KindCircle2).at(0);
  EXPECT_EQ(circle.Code, 301);
  EXPECT_EQ(circle.X[0], 1000);
  EXPECT_EQ(circle.Y[1], 2004);
  const Entity label = Live(KindPoint).at(0);
  EXPECT_EQ(label.Code, 13);
  EXPECT_EQ(label.X[0], 1000);
  EXPECT_EQ(label.Y[0], 2000);
  EXPECT_DOUBLE_EQ(label.Z[0], 25 * kPi);
  EXPECT_EQ(label.X[1], 0);
  EXPECT_EQ(label.Name, "");
  bool labelDrawn = false;
  for (const auto& op : surface.ops) labelDrawn |= op.op == "text" && op.text == "78.5398㎡";
  EXPECT_TRUE(labelDrawn);
}

TEST_F(Shapes, CircleAndArcThroughThreePoints) {
  Pt(1000, 2000, 1);
  Pt(1005, 2005, 2);
  Pt(1010, 2000, 3);
  ed.Toolbar2Click(mode::P3C);
  PickAll();
  const Entity label = Live(KindPoint).at(0);
  EXPECT_NEAR(label.X[0], 1005, 1e-3);
  EXPECT_NEAR(label.Y[0], 2000, 1e-3);
  EXPECT_NEAR(label.Z[0], 25 * kPi, 1e-2);
  EXPECT_EQ(Live(KindCircle3).size(), 1u);

  ed.Toolbar2Click(mode::ARC);
  PickAll();
  ASSERT_EQ(Live(KindArc3).size(), 1u);
  EXPECT_EQ(Live(KindArc3)[0].Z[2], 3);
  EXPECT_EQ(Live(KindPoint).size(), 1u);  // an arc has no label
}

TEST_F(Shapes, CollinearCircleAndArcAreRefused) {
  Pt(1000, 2000);
  Pt(1005, 2000);
  Pt(1010, 2000);
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
  Pt(1000, 2000);
  Pt(1005, 2005);
  Pt(1010, 2000);
  dialogs.inputs = {"S1", " S2 "};
  ed.Toolbar2Click(mode::ARC);
  PickAll();
  EXPECT_EQ(Messages(), (std::vector<std::string>{"斷線名稱重覆,請重新輸入"}));
  EXPECT_EQ(dialogs.shown[1].title, "發現重覆名稱");
  ASSERT_EQ(Live(KindArc3).size(), 1u);
  EXPECT_EQ(Live(KindArc3)[0].Name, "S2");

  // A cancelled name gives the arc up.
  ed.Toolbar2Click(mode::ARC);
  PickAll();
  EXPECT_EQ(Live(KindArc3).size(), 1u);
}

TEST_F(Shapes, PicksOnNothingDoNothing) {
  Pt(1000, 2000);
  for (const std::string& m : {mode::RECT, mode::P2C, mode::P3C, mode::ARC, mode::Line}) {
    ed.Toolbar2Click(m);
    Click(1003, 2003);
    Click(1006, 2006);
    Click(1009, 2009);
    EXPECT_EQ(ed.Ptr.ActionMode, m);
  }
  EXPECT_TRUE(Messages().empty());
  EXPECT_TRUE(Live().empty());
  EXPECT_EQ(ed.Ptr.LineInProgress, kFalse);
}

class Chains : public EditFixture {
 protected:
  void Square() {
    Pt(1000, 2000);
    Pt(1010, 2000);
    Pt(1010, 2010);
    ed.Toolbar2Click(mode::Line);
    Click(1000, 2000);
    Click(1010, 2000);
    Click(1010, 2010);
  }
};

TEST_F(Chains, LowerCaseCClosesTheChain) {
  Square();
  EXPECT_EQ(ed.Ptr.LineInProgress, kTrue);
  EXPECT_EQ(ed.Ptr.ChainCount, 3);
  EXPECT_TRUE(ed.KeyPress('c'));
  const auto lines = Live(KindLine);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[2].X[0], 1010);
  EXPECT_EQ(lines[2].Y[0], 2010);
  EXPECT_EQ(lines[2].X[1], 1000);
  EXPECT_EQ(lines[2].Y[1], 2000);
  EXPECT_EQ(ed.Ptr.LineInProgress, kFalse);
  EXPECT_EQ(ed.Ptr.ChainCount, 0);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::Line);
  EXPECT_FALSE(ed.KeyPress('c'));  // no chain: nothing more
  EXPECT_EQ(Live(KindLine).size(), 3u);
}

TEST_F(Chains, RightPressEndsTheChainWithoutClosing) {
  Square();
  ed.MouseDownAt(RightButton, 1020, 2020);
  EXPECT_EQ(ed.Ptr.LineInProgress, kFalse);
  EXPECT_EQ(Live(KindLine).size(), 2u);
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

TEST_F(Chains, MiddleButtonPansInTheMiddleOfAChain) {
  Square();
  ed.MouseDownAt(MiddleButton, 1005, 2005);
  ed.MouseMoveAt(MiddleButton, 1006, 2006);
  ed.MouseUpAt(MiddleButton, 1006, 2006);
  EXPECT_EQ(host.calls.back(), "EndPan");
  EXPECT_EQ(host.Count("BeginPan"), 1);
  EXPECT_EQ(ed.Ptr.LineInProgress, kTrue);
  EXPECT_EQ(ed.Ptr.ChainCount, 3);
}

TEST_F(Chains, SectionChainIsNamedOnceAtTheEnd) {
  doc.CurrentLegend = 521;
  dialogs.inputs = {"X1"};
  Square();
  RightClick(1020, 2020);
  const auto lines = Live(KindLine);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].Name, "X1");
  EXPECT_EQ(lines[1].Name, "X1");
  EXPECT_EQ(dialogs.shown.at(0).text, "請輸入斷面名稱:");
  // The journal was rewritten with the names.
  const auto journal = JournalLines(work.Paths().TempS0());
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
