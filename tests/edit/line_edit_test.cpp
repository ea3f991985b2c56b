// Trimming and extending two lines, the line-edit popup's values, the undo of both, and
// the pen on the base map, each driven through the pointer machine and checked on the
// tables and the journals.
#include <array>
#include <cmath>

#include "edit/line_edit.h"
#include "edit_fixture.h"

namespace tavik::edit {
namespace {

using Seg = std::array<double, 4>;  // E1, N1, E2, N2

Seg Ends(const Entity& e) { return {e.X[0], e.Y[0], e.X[1], e.Y[1]}; }

class LineEditing : public EditFixture {
 protected:
  void Trim(double aE, double aN, double bE, double bN) {
    ed.StartCommand(mode::LineTrim);
    Click(aE, aN);
    Click(bE, bN);
  }
};

TEST_F(LineEditing, TrimAndExtendCases) {
  struct Case {
    const char* what;
    Seg a, b;
    double pickA[2], pickB[2];
    Seg wantA, wantB;
  };
  const Case cases[] = {
      {"crossing, left and upper parts kept",
       {1000, 2000, 1010, 2000}, {1005, 1995, 1005, 2005}, {1002, 2000}, {1005, 2003},
       {1000, 2000, 1005, 2000}, {1005, 2000, 1005, 2005}},
      {"crossing, right and lower parts kept",
       {1000, 2000, 1010, 2000}, {1005, 1995, 1005, 2005}, {1008, 2000}, {1005, 1997},
       {1005, 2000, 1010, 2000}, {1005, 1995, 1005, 2000}},
      {"a corner short of meeting: both extended",
       {1000, 2000, 1004, 2000}, {1006, 2002, 1006, 2010}, {1002, 2000}, {1006, 2006},
       {1000, 2000, 1006, 2000}, {1006, 2000, 1006, 2010}},
      {"a T: the stem extended, the bar cut on the picked side",
       {1000, 2000, 1010, 2000}, {1005, 2002, 1005, 2008}, {1003, 2000}, {1005, 2006},
       {1000, 2000, 1005, 2000}, {1005, 2000, 1005, 2008}},
      {"sloped lines, the second reversed",
       {1000, 2000, 1008, 2008}, {1010, 2000, 1006, 2004}, {1002, 2002}, {1008, 2002},
       {1000, 2000, 1005, 2005}, {1010, 2000, 1005, 2005}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ClearTables();
    Line(c.a[0], c.a[1], 0, c.a[2], c.a[3], 0);
    Line(c.b[0], c.b[1], 0, c.b[2], c.b[3], 0);
    Trim(c.pickA[0], c.pickA[1], c.pickB[0], c.pickB[1]);
    for (int i = 0; i < 4; ++i) {
      EXPECT_NEAR(Ends(doc.EntityTable[0])[i], c.wantA[i], 1e-9) << i;
      EXPECT_NEAR(Ends(doc.EntityTable[1])[i], c.wantB[i], 1e-9) << i;
    }
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(ed.Ptr.ActionMode, mode::LineTrim);  // ready for the next pair
  }
}

TEST_F(LineEditing, TrimJournalsUndoesAndRefuses) {
  Line(1000, 2000, 10, 1004, 2000, 12);
  Line(1006, 1998, 0, 1006, 2010, 0);
  Trim(1002, 2000, 1006, 2005);
  // The extension carries the slope of the heights on; the journal holds the new end.
  EXPECT_DOUBLE_EQ(doc.EntityTable[0].X[1], 1006);
  EXPECT_DOUBLE_EQ(doc.EntityTable[0].Z[1], 13);
  EXPECT_DOUBLE_EQ(doc.EntityTable[1].Y[0], 2000);
  const auto journal = JournalLines(work.Paths().TempS0());
  ASSERT_EQ(journal.size(), 2u);
  EXPECT_NE(journal[0].find("1006"), std::string::npos);
  EXPECT_EQ(doc.MapChanged, kTrue);

  // Already meeting at their ends: nothing to do, nothing to undo.
  Trim(1002, 2000, 1006, 2005);
  EXPECT_EQ(ed.EditHistory.size(), 1u);

  ASSERT_TRUE(ed.UndoEdit());
  EXPECT_EQ(Ends(doc.EntityTable[0]), (Seg{1000, 2000, 1004, 2000}));
  EXPECT_EQ(doc.EntityTable[0].Z[1], 12);
  EXPECT_EQ(Ends(doc.EntityTable[1]), (Seg{1006, 1998, 1006, 2010}));
  EXPECT_FALSE(ed.UndoEdit());
  EXPECT_EQ(Messages().back(), EditUndoNoneMessage);

  // Parallel lines and lines of the reference map are refused with their messages.
  dialogs.shown.clear();
  Line(1000, 2010, 0, 1010, 2010, 0);
  Trim(1002, 2000, 1003, 2010);
  doc.ReferenceEntityCount = 1;
  Trim(1002, 2000, 1006, 2005);
  EXPECT_EQ(Messages(), (std::vector<std::string>{TrimParallelMessage, TrimReferenceMessage}));
  EXPECT_EQ(Ends(doc.EntityTable[0]), (Seg{1000, 2000, 1004, 2000}));
}

TEST_F(LineEditing, PopupValuesEditTheLineAboutItsStart) {
  Line(1000, 2000, 0, 1003, 2004, 0, 301);
  const Editor::LineEditValues shown = ed.LineEditText(0);
  EXPECT_EQ(shown.Length, "5.000");
  EXPECT_EQ(shown.Azimuth, "36-52-11.63");
  EXPECT_EQ(shown.Code, "301");

  struct Case {
    Editor::LineEditValues typed;
    std::string refusal;
    Seg want;
  };
  const std::string az = shown.Azimuth;
  const Case cases[] = {
      {{"10", az, "", "301"}, "", {1000, 2000, 1006, 2008}},
      {{"5.000", "90-00-00", "", "301"}, "", {1000, 2000, 1005, 2000}},
      {{"2", "1800000", "", "301"}, "", {1000, 2000, 1000, 1998}},  // packed DDDMMSS
      {{"0", az, "", "301"}, LineLengthMessage, {}},
      {{"x", az, "", "301"}, LineLengthMessage, {}},
      {{"5.000", "12-60-00", "", "301"}, LineAzimuthMessage, {}},
      {{"5.000", "360-00-01", "", "301"}, LineAzimuthMessage, {}},
      {{"5.000", az, "", "131"}, LineCodeMessage, {}},  // a point legend
      {{"5.000", az, "", "1000"}, LineCodeMessage, {}},
      {{"5.000", az, "一二三四五六七八九十一", "301"}, LineNameMessage, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed.Length + " " + c.typed.Azimuth + " " + c.typed.Code);
    ClearTables();
    Line(1000, 2000, 0, 1003, 2004, 0, 301);
    EXPECT_EQ(ed.EditLine(0, c.typed), c.refusal);
    const Seg want = c.refusal.empty() ? c.want : Seg{1000, 2000, 1003, 2004};
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(Ends(doc.EntityTable[0])[i], want[i], 1e-9) << i;
  }

  // Values left as shown keep the exact line; name and legend change, and undo brings
  // them back.
  ClearTables();
  ed.EditHistory.clear();
  Line(1000.0001, 2000.0002, 0, 1003.00047, 2004.00031, 0, 301);
  const Entity before = doc.EntityTable[0];
  Editor::LineEditValues typed = ed.LineEditText(0);
  typed.Name = " 道路中心 ";
  typed.Code = "814";
  EXPECT_EQ(ed.EditLine(0, typed), "");
  EXPECT_EQ(Ends(doc.EntityTable[0]), Ends(before));
  EXPECT_EQ(doc.EntityTable[0].Name, "道路中心");
  EXPECT_EQ(doc.EntityTable[0].Code, 814);
  ASSERT_TRUE(ed.UndoEdit());
  EXPECT_EQ(doc.EntityTable[0].Code, 301);
  EXPECT_EQ(doc.EntityTable[0].Name, "");
}

TEST_F(LineEditing, AzimuthTextReadsBothForms) {
  struct Case {
    const char* text;
    double degrees;  // < 0: refused
  };
  const Case cases[] = {{"123-45-30.5", 123 + 45 / 60.0 + 30.5 / 3600}, {" 0-0-0 ", 0}, {"1234530.5", 123 + 45 / 60.0 + 30.5 / 3600},
                        {"45", 45 / 3600.0}, {"12-5", -1}, {"a-b-c", -1}, {"10-30-60", -1}, {"", -1}};
  for (const Case& c : cases) {
    const auto r = ReadAzimuthText(c.text);
    if (c.degrees < 0) {
      EXPECT_FALSE(r) << c.text;
    } else {
      ASSERT_TRUE(r) << c.text;
      EXPECT_NEAR(*r * 180 / 3.14159265358979, c.degrees, 1e-9) << c.text;
    }
  }
}

TEST_F(LineEditing, HandDrawnBaseMapAndPointsOnItsLines) {
  Pt(1010, 2010, 5);
  ed.StartCommand(mode::BaseLine);
  EXPECT_EQ(host.prompts.back(), "按右鍵結束畫線");
  Click(1000, 2000);         // the pen's own place
  Click(1010.05, 2010.05);   // snaps to the point
  Click(1000, 2010);
  ed.KeyPress('c');          // closes the chain back to the first vertex
  ASSERT_EQ(doc.BaseMapCount, 3);
  EXPECT_EQ(doc.EntityCount, 0);
  EXPECT_EQ(doc.BaseMapTable[0].Code, 299);
  EXPECT_EQ(doc.BaseMapTable[2].Number, 3);
  EXPECT_DOUBLE_EQ(doc.BaseMapTable[0].X[1], 1010);
  EXPECT_DOUBLE_EQ(doc.BaseMapTable[2].X[1], doc.BaseMapTable[0].X[0]);
  EXPECT_EQ(JournalLines(work.Paths().TempBM()).size(), 3u);
  EXPECT_FALSE(ed.Ptr.LineInProgress);

  // A second chain starts on a base-map vertex and ends with a right press.
  Click(1000.1, 2010.1);
  Click(1020, 2010);
  RightClick(1020, 2010);
  ASSERT_EQ(doc.BaseMapCount, 4);
  EXPECT_DOUBLE_EQ(doc.BaseMapTable[3].X[0], doc.BaseMapTable[1].X[1]);
  EXPECT_DOUBLE_EQ(doc.BaseMapTable[3].Y[0], doc.BaseMapTable[1].Y[1]);
  ed.EndCommand();

  // The nearer end of a base-map line, and the crossing of two, become points.
  ed.StartCommand(mode::BM_MakeP);
  EXPECT_EQ(host.prompts.back(), "請點選底圖上的線");
  Click(1016, 2010);
  ASSERT_EQ(doc.PointCount, 2);
  ExpectAt(doc.PointTable[1], 1020, 2010);
  EXPECT_EQ(ed.Ptr.ActionMode, "");
  ed.AddBaseMapLine(1015, 2005, 1015, 2015);
  ed.StartCommand(mode::BM_XLineMakeP);
  Click(1015.1, 2010.1);
  ASSERT_EQ(doc.PointCount, 3);
  ExpectAt(doc.PointTable[2], 1015, 2010);
}

}  // namespace
}  // namespace tavik::edit
