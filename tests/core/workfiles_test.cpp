#include "core/workfiles.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/tables.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "temp_home.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

class JournalTest : public ::testing::Test {
 protected:
  TempHome home;
  AppPaths paths{home.path};
  WorkFiles wf{paths};
  ui::ScriptedDialogs dialogs;
  View view;
  Document doc;

  void SetUp() override {
    paths.EnsureFolders();
    view.ScreenMinE = 0, view.ScreenMaxE = 100, view.ScreenMinN = 0, view.ScreenMaxN = 100;
    SetDocumentName(doc, (home.path / "工作" / "map").string());
    ASSERT_TRUE(wf.CreateEmpty());
  }
  // A document measured from new, with its recovery header written after each command.
  void Measure() {
    AddPoint(doc, view, wf, 10.1, 20.2, 30.3);
    AddPoint(doc, view, wf, 281234.5678901234, 2751234.1, -9999);
    AddEntity(doc, view, wf, 99, 10.1, 20.2, 30.3, "樁一");
    AddEntity(doc, view, wf, 301, KindArc3, 1, 2, 3, 4, 5, 6, 7, 8, 9, "arc \"7\"");
    doc.SerialCounter = 12;
    wf.WriteRecoveryHeader(doc);
  }
};

}  // namespace

TEST_F(JournalTest, LinesHaveTheDocumentedForm) {
  Measure();
  EXPECT_EQ(ReadBytes(paths.TempP0()),
            "1,10.1,20.2,30.3,#FALSE#\r\n2,281234.5678901234,2751234.1,-9999,#FALSE#\r\n");
  EXPECT_EQ(ReadBytes(paths.TempS0()),
            text::ToCp950("1,99,11,10.1,20.2,30.3,0,0,0,0,0,0,\"樁一\",#FALSE#\r\n"
                          "2,301,76,1,2,3,4,5,6,7,8,9,\"arc '7'\",#FALSE#\r\n"));
  BaseMapLine b;
  b.Number = 1, b.Code = 5, b.Kind = 21, b.X[0] = 1, b.Y[0] = 2, b.Z[0] = 99, b.X[1] = 3, b.Y[1] = 4;
  EXPECT_EQ(BaseMapWorkLine(b), "1,5,21,1,2,3,4,0,0,\"\"");
  Entity broken;
  broken.Name = "a\nb\rc";
  EXPECT_EQ(EntityWorkLine(broken), "0,0,0,0,0,0,0,0,0,0,0,0,\"a b c\",#FALSE#");
}

TEST_F(JournalTest, AddingFillsScreenCopiesAndAStrictExtent) {
  EXPECT_TRUE(AddPoint(doc, view, wf, 50, 50, 1));
  EXPECT_TRUE(AddPoint(doc, view, wf, 500, 50, 1));  // off screen
  EXPECT_EQ(doc.ScreenPointCount, 1);
  EXPECT_EQ(doc.MaxE, 500);
  EXPECT_TRUE(AddEntity(doc, view, wf, 301, KindLine, 900, 900, 0, 901, 901, 0, 0, 0, 0, "far"));
  EXPECT_EQ(doc.ScreenEntityCount, 1);  // every new entity goes to the screen table
  // The extent reports a change only when a side moves.
  Document d;
  EXPECT_TRUE(UpdateExtent(d, 5, 6));
  EXPECT_FALSE(UpdateExtent(d, 5, 6));
  EXPECT_TRUE(UpdateExtent(d, 4, 6));
  EXPECT_FALSE(UpdateExtent(d, 4.5, 6));
  EXPECT_EQ(d.MinE, 4);
  EXPECT_EQ(d.MaxE, 5);
  EXPECT_EQ(d.MinN, 6);
  EXPECT_EQ(d.MaxN, 6);
}

TEST_F(JournalTest, BacksightAzimuthNeverUndefined) {
  const double pi = 3.14159265358979;
  struct Case {
    double dE, dN, want;
  } cases[] = {
      {0, 0, pi / 4},  {1, 1, pi / 4},        {-1, -1, 5 * pi / 4},
      {1, -1, 3 * pi / 4}, {-1, 1, 7 * pi / 4}, {0, 5, pi / 2 - std::atan(5 / 0.0001)},
      {-3, 0, 3 * pi / 2 - std::atan(0.0001 / -3)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.dE << "," << c.dN);
    EXPECT_NEAR(BacksightAzimuthOf(100, 200, 100 + c.dE, 200 + c.dN), c.want, 1e-12);
  }
}

TEST_F(JournalTest, DeleteFlagsAndUndeleteRestoresNewestFirst) {
  Measure();
  EXPECT_TRUE(DeletePoint(doc, wf, 1));
  EXPECT_FALSE(DeletePoint(doc, wf, 1));  // already deleted
  EXPECT_TRUE(DeleteEntity(doc, wf, 1));
  EXPECT_EQ(doc.PointCount, 2);
  EXPECT_EQ(doc.DeletedPointCount, 1);
  EXPECT_EQ(doc.ScreenPointTable[0].Deleted, kTrue);
  EXPECT_EQ(doc.ScreenEntityTable[0].Deleted, kTrue);
  ASSERT_EQ(doc.UndeleteStack.size(), 2u);
  EXPECT_NE(ReadBytes(paths.TempP0()).find("1,10.1,20.2,30.3,#TRUE#"), std::string::npos);

  EXPECT_TRUE(Undelete(doc, wf, dialogs));
  EXPECT_EQ(doc.EntityTable[0].Deleted, kFalse);
  EXPECT_EQ(doc.ScreenEntityTable[0].Deleted, kFalse);
  EXPECT_EQ(doc.DeletedEntityCount, 0);
  EXPECT_EQ(doc.PointTable[0].Deleted, kTrue);
  EXPECT_TRUE(Undelete(doc, wf, dialogs));
  EXPECT_EQ(doc.PointTable[0].Deleted, kFalse);
  EXPECT_EQ(ReadBytes(paths.TempP0()).find("#TRUE#"), std::string::npos);
  EXPECT_FALSE(Undelete(doc, wf, dialogs));
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].text, "無刪除資料");
  EXPECT_EQ(dialogs.shown[0].title, "救回刪除的資料");
}

TEST_F(JournalTest, RecoveryHeaderHasTwentyOneValuesAndReadsBack) {
  Measure();
  doc.StationSet = kTrue;
  doc.StationName = "站";
  doc.ScaleDenominator = 123.25;
  wf.WriteRecoveryHeader(doc);
  std::string h = ReadBytes(paths.InsuranceTV());
  auto lines = 0;
  for (std::size_t i = 0; (i = h.find("\r\n", i)) != std::string::npos; i += 2) ++lines;
  EXPECT_EQ(lines, 21);
  EXPECT_EQ(h.substr(0, h.find("\r\n")), "\"" + text::ToCp950(doc.DocumentName) + "\"");

  Document r;
  ASSERT_TRUE(wf.ReadRecoveryHeader(r));
  EXPECT_EQ(r.DocumentName, doc.DocumentName);
  EXPECT_EQ(r.StationSet, kTrue);
  EXPECT_EQ(r.StationName, "站");
  EXPECT_EQ(r.ScaleDenominator, 123.25);
  EXPECT_EQ(r.MaxE, 281234.5678901234);
  EXPECT_EQ(r.PointCount, 2);
  EXPECT_EQ(r.EntityCount, 2);
  EXPECT_EQ(r.SerialCounter, 12);

  // A header cut short is refused and leaves the document alone.
  WriteBytes(paths.InsuranceTV(), h.substr(0, h.size() / 2));
  Document untouched;
  EXPECT_FALSE(wf.ReadRecoveryHeader(untouched));
  EXPECT_EQ(untouched.DocumentName, "");
}

TEST_F(JournalTest, CheckTellsAbsentEmptyAndRecoverable) {
  EXPECT_EQ(wf.Check(), WorkFiles::CrashState::BothEmpty);
  EXPECT_FALSE(RecoverFromWorkFiles(doc, wf, dialogs));
  EXPECT_FALSE(std::filesystem::exists(paths.TempP0()));
  EXPECT_FALSE(std::filesystem::exists(paths.TempBM()));
  EXPECT_EQ(wf.Check(), WorkFiles::CrashState::None);
  // After a save the journal starts afresh; one point is enough to make it recoverable.
  AddPoint(doc, view, wf, 1, 1, 1);
  EXPECT_EQ(wf.Check(), WorkFiles::CrashState::Recoverable);
  EXPECT_EQ(ReadBytes(paths.TempS0()), "");
  // Names of another case are the same files.
  std::filesystem::rename(paths.TempS0(), home.path / "TempS0");
  EXPECT_EQ(wf.Check(), WorkFiles::CrashState::Recoverable);
}

TEST_F(JournalTest, RecoveryBringsBackEverythingMeasuredSinceNew) {
  Measure();
  DeletePoint(doc, wf, 2);
  wf.WriteRecoveryHeader(doc);
  const std::string header = ReadBytes(paths.InsuranceTV()), points = ReadBytes(paths.TempP0());
  Document r;
  ASSERT_TRUE(RecoverFromWorkFiles(r, wf, dialogs));
  EXPECT_TRUE(dialogs.shown.empty());
  // Whole journals and the header are read, not rewritten.
  EXPECT_EQ(ReadBytes(paths.InsuranceTV()), header);
  EXPECT_EQ(ReadBytes(paths.TempP0()), points);
  EXPECT_EQ(r.DocumentName, doc.DocumentName);
  ASSERT_EQ(r.PointCount, 2);
  EXPECT_EQ(r.PointTable[1].E, 281234.5678901234);
  EXPECT_EQ(r.PointTable[1].Deleted, kTrue);
  EXPECT_EQ(r.DeletedPointCount, 1);
  ASSERT_EQ(r.EntityCount, 2);
  EXPECT_EQ(r.EntityTable[0].Name, "樁一");
  EXPECT_EQ(r.EntityTable[1].Kind, KindArc3);
  EXPECT_EQ(r.EntityTable[1].Z[2], 9);
  EXPECT_EQ(r.MapChanged, kTrue);
}

TEST_F(JournalTest, DamagedJournalsStopAtTheBadLineAndPrompt) {
  struct Case {
    const char* what;
    std::string points;  // replaces TEMPP0
    int pointsRead;
    std::string title;
  } cases[] = {
      {"torn last line", "1,1,1,1,#FALSE#\r\n2,2,2,2,#FALSE#\r\n3,3,3.5", 2, "有1個點資料毀損"},
      {"garbled middle", "1,1,1,1,#FALSE#\r\n2,2,x,2,#FALSE#\r\n3,3,3,3,#FALSE#\r\n", 1, "有2個點資料毀損"},
      {"all whole", "1,1,1,1,#FALSE#\r\n2,2,2,2,#FALSE#\r\n3,3,3,3,#FALSE#", 3, ""},
      {"nothing readable", "#FALSE#\r\n", 0, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    dialogs.shown.clear();
    Document d;
    SetDocumentName(d, doc.DocumentName);
    d.PointCount = 3;
    d.EntityCount = 2;
    wf.WriteRecoveryHeader(d);
    WriteBytes(paths.TempP0(), c.points);
    WriteBytes(paths.TempS0(), "1,99,11,1,1,1,0,0,0,0,0,0,\"a\",#FALSE#\r\n2,99,11,1,1,1,0,0,0,0,0,0,\"b");
    Document r;
    ASSERT_TRUE(RecoverFromWorkFiles(r, wf, dialogs));
    EXPECT_EQ(r.PointCount, c.pointsRead);
    EXPECT_EQ(r.EntityCount, 1);
    std::vector<std::string> want, titles;
    if (!c.title.empty()) want.push_back(c.title);
    want.push_back("有1個圖元資料毀損");
    for (const auto& m : dialogs.shown) titles.push_back(m.title);
    EXPECT_EQ(titles, want);
    EXPECT_EQ(dialogs.shown.back().text, "建議放棄這個檔案!");
    // The journals were rewritten clean: what is added next follows a whole line.
    AddPoint(r, view, wf, 7, 7, 7);
    Document again;
    ui::ScriptedDialogs quiet;
    wf.WriteRecoveryHeader(r);
    ASSERT_TRUE(RecoverFromWorkFiles(again, wf, quiet));
    EXPECT_EQ(again.PointCount, c.pointsRead + 1);
    EXPECT_TRUE(quiet.shown.empty());
  }
}

TEST_F(JournalTest, FailedAppendKeepsThePointAndTheNextAdditionCatchesUp) {
  // TEMPP0 on a full disk.
  std::filesystem::remove(paths.TempP0());
  std::filesystem::create_symlink("/dev/full", paths.TempP0());
  EXPECT_FALSE(AddPoint(doc, view, wf, 1, 2, 3));
  EXPECT_EQ(doc.PointCount, 1);
  EXPECT_TRUE(wf.PointJournalBehind());
  // Space comes back (the link is replaced by a real file): the whole table is written.
  std::filesystem::remove(paths.TempP0());
  EXPECT_TRUE(AddPoint(doc, view, wf, 4, 5, 6));
  EXPECT_FALSE(wf.PointJournalBehind());
  EXPECT_EQ(ReadBytes(paths.TempP0()), "1,1,2,3,#FALSE#\r\n2,4,5,6,#FALSE#\r\n");
}

TEST_F(JournalTest, ANonFiniteCoordinateDoesNotEndTheRecovery) {
  // A computation gone wrong upstream must not cost the records measured after it.
  AddPoint(doc, view, wf, 1, 2, 3);
  AddPoint(doc, view, wf, std::nan(""), 2, 3);
  AddPoint(doc, view, wf, 4, -HUGE_VAL, 6);
  AddPoint(doc, view, wf, 7, 8, 9);
  wf.WriteRecoveryHeader(doc);
  Document r;
  ASSERT_TRUE(RecoverFromWorkFiles(r, wf, dialogs));
  ASSERT_EQ(r.PointCount, 4);
  EXPECT_TRUE(std::isnan(r.PointTable[1].E));
  EXPECT_EQ(r.PointTable[2].N, -HUGE_VAL);
  EXPECT_EQ(r.PointTable[3].H, 9);
  EXPECT_TRUE(dialogs.shown.empty());
}
