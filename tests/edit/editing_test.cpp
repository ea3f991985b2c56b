// Erasing, window deletes, undelete order, legend changes, renaming, offsets, notes,
// symbols and the inquiry, each checked on the tables and on the journal.
#include <array>
#include <cmath>

#include "edit_fixture.h"

namespace tavik::edit {
namespace {

class Editing : public EditFixture {
 protected:
  void Named(double E, double N, const std::string& name, int16_t code = 131) {
    ASSERT_TRUE(AddEntity(doc, view, work, code, E, N, 0, name));
  }
  // Whether the journal line of a row carries the deleted flag.
  bool JournalDeleted(const std::filesystem::path& file, std::size_t row) const {
    const auto lines = JournalLines(file);
    return row < lines.size() && lines[row].find("#TRUE#") != std::string::npos;
  }
};

TEST_F(Editing, ErasePointAndEntityThenUndeleteNewestFirst) {
  Pt(1000, 2000);
  Pt(1005, 2000);
  Line(1000, 2005, 0, 1010, 2005, 0);
  ed.Toolbar2Click(mode::EraseP);
  Click(1003, 2003);  // nothing there: the mode stays
  EXPECT_EQ(ed.Ptr.ActionMode, mode::EraseP);
  Click(1005, 2000);
  EXPECT_EQ(doc.PointTable[1].Deleted, kTrue);
  EXPECT_EQ(doc.DeletedPointCount, 1);
  EXPECT_TRUE(JournalDeleted(work.Paths().TempP0(), 1));

  ed.Toolbar2Click(mode::EraseEntity);
  Click(1007, 2005);
  EXPECT_EQ(doc.EntityTable[0].Deleted, kTrue);
  EXPECT_TRUE(JournalDeleted(work.Paths().TempS0(), 0));
  EXPECT_EQ(doc.MapChanged, kTrue);

  EXPECT_TRUE(ed.KeyDown('U', false));
  EXPECT_EQ(doc.EntityTable[0].Deleted, kFalse);
  EXPECT_EQ(doc.PointTable[1].Deleted, kTrue);
  EXPECT_FALSE(JournalDeleted(work.Paths().TempS0(), 0));
  ed.KeyDown('U', false);
  EXPECT_EQ(doc.PointTable[1].Deleted, kFalse);
  EXPECT_TRUE(Messages().empty());
  ed.KeyDown('U', false);
  EXPECT_EQ(Messages(), (std::vector<std::string>{"無刪除資料"}));
  EXPECT_EQ(dialogs.shown.back().title, "救回刪除的資料");
}

TEST_F(Editing, WindowDeletesInsideOrOutsideOrNothing) {
  Pt(1002, 2002);                      // inside
  Pt(1008, 2008);                      // outside
  Line(1001, 2001, 0, 1003, 2003, 0);  // inside
  Line(1007, 2007, 0, 1009, 2009, 0);  // outside
  Line(1003, 2003, 0, 1007, 2007, 0);  // across the edge: neither
  struct Case {
    ui::Answer answer;
    std::vector<int16_t> pointsDeleted, entitiesDeleted;
  } cases[] = {
      {ui::Answer::Yes, {kTrue, kFalse}, {kTrue, kFalse, kFalse}},
      {ui::Answer::No, {kFalse, kTrue}, {kFalse, kTrue, kFalse}},
      {ui::Answer::Cancel, {kFalse, kFalse}, {kFalse, kFalse, kFalse}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.answer));
    for (auto& p : doc.PointTable) p.Deleted = kFalse;
    for (auto& e : doc.EntityTable) e.Deleted = kFalse;
    dialogs.answers = {c.answer};
    ed.Toolbar2Click(mode::EraseWindow);
    ed.MouseDownAt(LeftButton, 1000, 2000);
    ed.MouseMoveAt(LeftButton, 1004, 2004);
    EXPECT_EQ(surface.Count("line") % 4, 0u);  // the band is a rectangle
    ed.MouseUpAt(LeftButton, 1005, 2005);
    EXPECT_EQ(dialogs.shown.back().title, "刪除窗選資料");
    EXPECT_EQ(dialogs.shown.back().text, "刪除窗框內資料按'是' \r\n刪除窗框外資料,按'否'\r\n放棄動作,按'取消'");
    EXPECT_EQ(dialogs.shown.back().buttons, ui::Buttons::YesNoCancel);
    for (std::size_t i = 0; i < c.pointsDeleted.size(); ++i) EXPECT_EQ(doc.PointTable[i].Deleted, c.pointsDeleted[i]);
    for (std::size_t i = 0; i < c.entitiesDeleted.size(); ++i)
      EXPECT_EQ(doc.EntityTable[i].Deleted, c.entitiesDeleted[i]);
    EXPECT_EQ(ed.Ptr.ActionMode, "");
  }
  // The journal follows the last delete (outside): point 2 and line 2 flagged.
  EXPECT_TRUE(JournalDeleted(work.Paths().TempP0(), 1));
  EXPECT_TRUE(JournalDeleted(work.Paths().TempS0(), 1));
}

TEST_F(Editing, DeleteKeyAsksAndDefaultsToNo) {
  Pt(1000, 2000);
  Pt(1001, 2000);
  dialogs.answers = {ui::Answer::No, ui::Answer::Yes};
  ed.KeyDown(Editor::KeyDelete, false);
  EXPECT_EQ(doc.DeletedPointCount, 0);
  EXPECT_EQ(dialogs.shown.back().text, "確定要刪掉這個點?(內定NO)");
  EXPECT_EQ(dialogs.shown.back().title, "刪除實測點");
  ed.KeyDown(Editor::KeyDelete, false);
  EXPECT_EQ((std::array{doc.PointTable[0].Deleted, doc.PointTable[1].Deleted}),
            (std::array<int16_t, 2>{kFalse, kTrue}));
}

TEST_F(Editing, ChangeAttFollowsTheRefusalSets) {
  Line(1000, 2000, 0, 1010, 2000, 0);
  doc.CurrentLegend = 110;  // a control point may not be a line
  ed.StartCommand(mode::ChangeAtt);
  Click(1005, 2000);
  EXPECT_EQ(Messages(), (std::vector<std::string>{"目前圖例不能畫線"}));
  EXPECT_EQ(doc.EntityTable[0].Code, 301);
  doc.CurrentLegend = 407;
  ed.StartCommand(mode::ChangeAtt);
  Click(1005, 2000);
  EXPECT_EQ(doc.EntityTable[0].Code, 407);
  EXPECT_EQ(doc.ScreenEntityTable[0].Code, 407);
  EXPECT_NE(JournalLines(work.Paths().TempS0()).at(0).find(",407,"), std::string::npos);
}

TEST_F(Editing, RenameRefusesDuplicatesAndBadNames) {
  Named(1000, 2000, "P1");
  Named(1010, 2000, "P2");
  dialogs.inputs = {"p2", std::string(25, 'X'), " p3 "};
  ed.StartCommand(mode::PtRename);
  Click(1000, 2000);
  EXPECT_EQ(Messages(), (std::vector<std::string>{"點名重覆,請重新輸入", "點名不可超過20個字元,請重新輸入"}));
  EXPECT_EQ(doc.EntityTable[0].Name, "P3");
  EXPECT_EQ(ed.Ptr.ActionMode, "");
  // Cancel leaves the name.
  ed.StartCommand(mode::PtRename);
  Click(1000, 2000);
  EXPECT_EQ(doc.EntityTable[0].Name, "P3");
}

TEST_F(Editing, OffsetCopiesALineToThePickedSide) {
  Line(1000, 2000, 0, 1010, 2000, 0, 407);
  dialogs.inputs = {"x", "2.5"};
  ed.StartOffset(0);  // not a number: nothing
  EXPECT_EQ(ed.Ptr.ActionMode, "");
  ed.StartOffset(0);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::OFFSET);
  EXPECT_EQ(host.prompts.back(), "(輸入距離後,在圖面上點選複製方向)");
  Click(1004, 1997);
  ASSERT_EQ(doc.EntityCount, 2);
  const Entity& copy = doc.EntityTable[1];
  EXPECT_EQ(copy.Code, 407);
  EXPECT_EQ((std::array{copy.X[0], copy.Y[0], copy.X[1], copy.Y[1]}), (std::array{1000.0, 1997.5, 1010.0, 1997.5}));
}

TEST_F(Editing, NamedSymbolsNumbersAndNotes) {
  Pt(1000, 2000, 7);
  Pt(1010, 2000, 8);
  doc.CurrentLegend = 131;
  ed.Toolbar2Click(mode::Symbol);
  dialogs.inputs = {" p07 "};
  Click(1000, 2000);
  ASSERT_EQ(doc.EntityCount, 1);
  EXPECT_EQ(doc.EntityTable[0].Name, "P07");
  EXPECT_EQ(doc.EntityTable[0].Z[0], 7);
  EXPECT_EQ(dialogs.shown.back().title, "輸入點名或樁號");

  ed.Names.AutoNaming = true;
  Click(1010, 2000);
  EXPECT_EQ(doc.EntityTable[1].Name, "P08");

  // Automatic name already taken: refused, then typed.
  ed.Names.Number = 6;
  dialogs.inputs = {"Q1"};
  Click(1010, 2000);
  EXPECT_EQ(Messages().back(), "點名重覆,請重新輸入");
  EXPECT_EQ(doc.EntityTable[2].Name, "Q1");

  // Cancel and empty end the command without a record.
  ed.Names.AutoNaming = false;
  dialogs.inputs = {std::nullopt, "  "};
  Click(1000, 2000);
  Click(1000, 2000);
  EXPECT_EQ(doc.EntityCount, 3);

  struct Case {
    int16_t code;
    const char *prompt, *title;
  } numbered[] = {{605, "請輸入編號:", "輸入編號"}, {873, "道路編號:", "輸入道路編號"}};
  for (const auto& c : numbered) {
    doc.CurrentLegend = c.code;
    dialogs.inputs = {"12"};
    Click(1000, 2000);
    EXPECT_EQ(dialogs.shown.back().text, c.prompt);
    EXPECT_EQ(dialogs.shown.back().title, c.title);
    EXPECT_EQ(doc.EntityTable.back().Name, "12");
  }

  ed.Toolbar2Click(mode::Text);
  dialogs.inputs = {"  ABCDEFGHIJKLMNOPQRSTUVWXYZ  ", ""};
  Click(1003, 2003);
  EXPECT_EQ(doc.EntityTable.back().Name, "ABCDEFGHIJKLMNOPQRST");
  EXPECT_EQ(doc.EntityTable.back().Code, 12);
  EXPECT_EQ(dialogs.shown.back().title, "輸入註記");
  const auto before = doc.EntityCount;
  Click(1003, 2003);
  EXPECT_EQ(doc.EntityCount, before);
}

TEST_F(Editing, AVertexPickTakesItsHeightButAnAreaLabelHasNone) {
  ASSERT_TRUE(AddEntity(doc, view, work, 13, 1003, 2003, 78.5, ""));
  Line(1006, 2006, 4.5, 1010, 2006, 6);
  doc.CurrentLegend = 605;
  ed.Toolbar2Click(mode::Symbol);
  dialogs.inputs = {"1", "2"};
  Click(1003, 2003);
  Click(1006, 2006);
  ASSERT_EQ(doc.EntityCount, 4);
  EXPECT_EQ(doc.EntityTable[2].Z[0], 0);
  EXPECT_EQ(doc.EntityTable[3].Z[0], 4.5);
  EXPECT_EQ(doc.EntityTable[3].X[0], 1006);
}

TEST_F(Editing, RightClickInquiryNamesTheNearestEntity) {
  Line(1000, 2000, 0, 1010, 2000, 0, 407);
  Named(1020, 2000, "K5");
  RightClick(1003, 2001);
  EXPECT_EQ(host.inquiryRow, 0);
  EXPECT_NE(host.inquiry.find("圖元編號: 1"), std::string::npos);
  EXPECT_NE(host.inquiry.find("圍牆"), std::string::npos);
  EXPECT_NE(host.inquiry.find("線 (21)"), std::string::npos);
  RightClick(1019, 2001);
  EXPECT_EQ(host.inquiryRow, 1);
  EXPECT_NE(host.inquiry.find("名稱: K5"), std::string::npos);
}

TEST_F(Editing, DamagedRecordsNeitherHangNorCrashAPick) {
  const double nan = std::nan("");
  ASSERT_TRUE(AddEntity(doc, view, work, 301, KindCircle2, 1000, 2000, 0, 1e12, 2000, 0, 0, 0, 0, ""));
  ASSERT_TRUE(AddEntity(doc, view, work, 301, KindArc3, 1000, 2000, 0, 1e6, 2000 + 1e-9, 0, 2e6, 2000, 0, ""));
  Line(nan, 2000, 0, 1005, nan, 0);
  ASSERT_TRUE(AddEntity(doc, view, work, 301, KindCircle3, 1000, 2000, 0, 1000, 2000, 0, 1000, 2000, 0, ""));
  Line(1000, 2003, 0, 1010, 2003, 0);
  RightClick(1005, 2003);
  EXPECT_EQ(host.inquiryRow, 4);
  for (const std::string& m : {mode::NP_MidOf, mode::NP_IntOf, mode::PointProject}) {
    ed.StartCommand(m);
    Click(1002, 1998);
  }
  EXPECT_EQ(doc.PointCount, 0);
  ed.Toolbar2Click(mode::EraseEntity);
  Click(1005, 2003);
  EXPECT_EQ(doc.EntityTable[4].Deleted, kTrue);
}

}  // namespace
}  // namespace tavik::edit
