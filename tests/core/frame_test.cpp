// The document cycle with scripted answers and a window made of plain fields.
#include "core/frame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "temp_home.h"

namespace fs = std::filesystem;
using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;
using ui::Answer;

namespace {

struct FieldWindow : FrameWindow {
  std::string caption;
  bool documentCommands = false, baseMapCommands = false, paperEnabled = false;
  std::map<int, std::string> panels;
  std::string label41, label42, obsBox, mapType, mode;
  std::vector<std::string> recent;
  int clears = 0, redraws = 0;
  void SetCaption(const std::string& c) override { caption = c; }
  void EnableDocumentCommands(bool e) override { documentCommands = e; }
  void EnableBaseMapCommands(bool e) override { baseMapCommands = e; }
  void SetPanel(int i, const std::string& t) override { panels[i] = t; }
  void SetLabel41(const std::string& t) override { label41 = t; }
  void SetLabel42(const std::string& t) override { label42 = t; }
  void SetOBSBox(const std::string& t) override { obsBox = t; }
  void SetMAPtype(const std::string& t) override { mapType = t; }
  void SetRecentItems(const std::vector<std::string>& items) override { recent = items; }
  void SetMeasureModeMenus(const std::string& m) override { mode = m; }
  void ClearPaper() override { ++clears; }
  void SetPaperEnabled(bool e) override { paperEnabled = e; }
  void RedrawPaper() override { ++redraws; }
  void ShowInstrumentFrame() override {}
};

// One run of the program over a data folder: state, scripted platform, window, cycle.
struct Session {
  explicit Session(const fs::path& home) : Session(AppPaths{home}) {}
  explicit Session(AppPaths paths) : app(std::move(paths)), cycle(app, dialogs, store, window, timers) {
    app.paths.EnsureFolders();
    // A view wide enough that everything added lands in the screen tables.
    app.view.ScreenMinE = app.view.ScreenMinN = -1e9;
    app.view.ScreenMaxE = app.view.ScreenMaxN = 1e9;
  }
  App app;
  ui::ScriptedDialogs dialogs;
  ui::MemorySettingsStore store;
  ui::ManualTimerFactory timers;
  FieldWindow window;
  DocumentCycle cycle;

  ui::ManualTimer& Timer5() { return static_cast<ui::ManualTimer&>(cycle.Timer5()); }
  std::string Work(const std::string& f) const { return (app.paths.WorkFolder() / f).string(); }
  void NewAt(const std::string& path) {
    dialogs.files.push_back(path);
    cycle.New();
  }
  void Measure(int points) {
    for (int i = 1; i <= points; ++i) {
      ASSERT_TRUE(AddPoint(app.doc, app.view, app.work, 281000 + i, 2752000 + i, 10 + i));
    }
    ASSERT_TRUE(AddEntity(app.doc, app.view, app.work, 99, 281001, 2752001, 11, "P1"));
    // What a measuring command does after adding: mark the change, keep the counts.
    app.doc.MapChanged = kTrue;
    app.work.WriteRecoveryHeader(app.doc);
  }
  // Closes the document, then takes it up again from the first recent item and from the
  // file dialog.
  void ReopenBothWays(const std::string& spc, int points) {
    ASSERT_TRUE(cycle.Close());
    cycle.OpenRecent(1);
    ASSERT_EQ(app.doc.SpcPath, spc);
    EXPECT_EQ(app.doc.PointCount, points);
    ASSERT_TRUE(cycle.Close());
    dialogs.files = {spc};
    cycle.Open();
    EXPECT_EQ(app.doc.PointCount, points);
  }
};

bool WorkFilesPresent(const AppPaths& p) {
  return fs::exists(p.TempP0()) && fs::exists(p.TempS0()) && fs::exists(p.TempBM());
}

// A fresh data folder (made before the session over it) with the program started.
struct HomeFolder {
  TempHome home;
};
struct StartedSession : HomeFolder, Session {
  StartedSession() : Session(home.path) { cycle.Startup(); }
};
class StartedCycle : public ::testing::Test {
 protected:
  StartedSession s;
  TempHome& home = s.home;
};

}  // namespace

TEST_F(StartedCycle, StartupShowsNoDocumentThenNewTakesUpAnEmptyOne) {
  EXPECT_EQ(s.window.caption, "TAVIK");
  EXPECT_FALSE(s.window.documentCommands);
  EXPECT_EQ(s.window.panels[1], "1 :200");  // "TS" mode
  EXPECT_EQ(s.Timer5().interval, 60000);
  EXPECT_FALSE(s.Timer5().enabled);

  s.NewAt(s.Work("site1.SPC"));
  const std::string name = s.Work("site1");
  EXPECT_EQ(s.app.doc.DocumentName, name);
  EXPECT_EQ(s.window.caption, "TAVIK - " + name + ".SPC");
  EXPECT_TRUE(s.window.documentCommands);
  EXPECT_FALSE(s.window.baseMapCommands);
  EXPECT_EQ(s.window.mapType, "地形圖");
  EXPECT_EQ(s.window.panels[1], "1 :100");
  EXPECT_EQ(s.window.panels[5], "圖元 0");
  EXPECT_EQ(s.window.panels[10], "底圖數目: 0");
  EXPECT_EQ(s.app.doc.ViewCentreE, 280850);
  EXPECT_EQ(s.app.doc.ViewCentreN, 2752650);
  EXPECT_TRUE(WorkFilesPresent(s.app.paths));
  EXPECT_EQ(fs::file_size(s.app.paths.TempP0()), 0u);
  EXPECT_EQ(ReadBytes(name + ".MAC"), "LS\r\n");
  EXPECT_TRUE(s.Timer5().enabled);
  EXPECT_EQ(s.window.recent, std::vector<std::string>{name});
  EXPECT_EQ(s.store.GetSetting("TAVIK", "Used Files", "1", ""), name);
}

TEST(DocumentCycle, NewOverAnExistingFileAsksYesNoCancel) {
  struct Case {
    const char* legend;
    Answer answer;
    std::string expectName;  // "" : nothing opened
    std::size_t dialogsShown;
  } cases[] = {
      {"Yes goes on", Answer::Yes, "old", 2},
      {"No goes back to the dialog", Answer::No, "other", 3},
      {"Cancel stops", Answer::Cancel, "", 2},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.legend);
    StartedSession s;
    WriteBytes(s.Work("old.SPC"), "keep");
    s.dialogs.files = {s.Work("old.SPC"), s.Work("other.SPC")};
    s.dialogs.answers = {c.answer};
    s.cycle.New();
    ASSERT_GE(s.dialogs.shown.size(), 2u);
    EXPECT_EQ(s.dialogs.shown[1].text, "此檔已經存在,是否覆蓋?");
    EXPECT_EQ(s.dialogs.shown[1].title, "發現同名檔");
    EXPECT_EQ(s.dialogs.shown[1].buttons, ui::Buttons::YesNoCancel);
    EXPECT_EQ(s.dialogs.shown.size(), c.dialogsShown);
    EXPECT_EQ(s.app.doc.DocumentName, c.expectName.empty() ? "" : s.Work(c.expectName));
    // Taking up a new document writes nothing over the old file.
    EXPECT_EQ(ReadBytes(s.Work("old.SPC")), "keep");
  }
}

// The folders of a user who never set anything: HOME alone.
AppPaths FreshUserPaths(const fs::path& home) {
  const char* vars[] = {"HOME", "TAVIK_HOME", "XDG_DATA_HOME"};
  std::map<std::string, std::string> saved;
  for (const char* v : vars) {
    if (const char* old = std::getenv(v)) saved[v] = old;
    ::unsetenv(v);
  }
  ::setenv("HOME", home.c_str(), 1);
  AppPaths paths = AppPaths::FromEnvironment();
  for (const char* v : vars) saved.count(v) ? ::setenv(v, saved[v].c_str(), 1) : ::unsetenv(v);
  return paths;
}

// The first morning with the default folders: new, a shot, save, close, and the
// document comes back both from the recent item and from the file dialog.
TEST(DocumentCycle, FreshUserSavesInTheDefaultWorkFolderAndOpensItAgain) {
  TempHome user;
  const AppPaths paths = FreshUserPaths(user.path);
  // The documents stay out of the hidden data folder, on a path without a dot.
  EXPECT_EQ(paths.WorkFolder(), user.path / "TAVIK" / "工作目錄");
  EXPECT_EQ(paths.Home, user.path / ".local" / "share" / "tavik");
  Session s(paths);
  s.cycle.Startup();
  const std::string spc = s.Work("site.SPC");
  s.NewAt(spc);
  EXPECT_TRUE(s.dialogs.Messages().empty()) << s.dialogs.Messages().front();
  ASSERT_EQ(s.app.doc.SpcPath, spc);
  EXPECT_TRUE(fs::exists(paths.TempP0()));
  s.Measure(1);
  s.cycle.Save();
  EXPECT_TRUE(fs::exists(s.Work("site.MAC")));
  s.ReopenBothWays(spc, 1);
  EXPECT_EQ(s.app.doc.EntityTable.at(0).Name, "P1");
  EXPECT_TRUE(s.dialogs.Messages().empty()) << s.dialogs.Messages().front();
}

// A dot before the file name would cut the name: New and Save As say what it would
// become before writing anything. Yes goes back to the dialog, No keeps the cut name,
// Cancel ends the command.
TEST(DocumentCycle, DotBeforeTheFileNameIsShownBeforeAnythingIsWritten) {
  struct Case {
    const char* legend;
    bool saveAs;
    const char* chosen;  // under the data folder
    Answer answer;
    const char* expectName;  // "" : nothing taken up
  } cases[] = {
      {"new, choose again", false, "v1.2/maps/site.SPC", Answer::Yes, "plain"},
      {"new, keep the cut name", false, "v1.2/maps/site.SPC", Answer::No, "v1"},
      {"new, cancel", false, "v1.2/maps/site.SPC", Answer::Cancel, ""},
      {"new, second dot in the file name", false, "a.b.SPC", Answer::No, "a"},
      {"save as, choose again", true, ".hidden/x.SPC", Answer::Yes, "plain"},
      {"save as, cancel keeps the old name", true, ".hidden/x.SPC", Answer::Cancel, "first"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.legend);
    StartedSession s;
    const TempHome& home = s.home;
    fs::create_directories(home.path / "v1.2" / "maps");
    fs::create_directories(home.path / ".hidden");
    if (c.saveAs) {
      s.NewAt((home.path / "first.SPC").string());
      s.Measure(1);
    }
    const std::string chosen = (home.path / c.chosen).string();
    s.dialogs.files = {chosen, (home.path / "plain.SPC").string()};
    s.dialogs.answers = {c.answer};
    const std::size_t before = s.dialogs.shown.size();
    c.saveAs ? s.cycle.SaveAs() : s.cycle.New();
    ASSERT_GE(s.dialogs.shown.size(), before + 2);
    const auto& warning = s.dialogs.shown[before + 1];
    EXPECT_EQ(warning.title, "路徑中有句點");
    EXPECT_NE(warning.text.find(NameUpToFirstDot(chosen) + ".SPC"), std::string::npos) << warning.text;
    EXPECT_EQ(s.app.doc.DocumentName, *c.expectName ? (home.path / c.expectName).string() : "");
    // Nothing is written under the cut name unless the user kept it.
    if (c.answer != Answer::No) {
      EXPECT_FALSE(fs::exists(NameUpToFirstDot(chosen) + ".SPC"));
      EXPECT_FALSE(fs::exists(NameUpToFirstDot(chosen) + ".MAC"));
    }
  }
}

// A name that is only an extension is warned about too; kept, it makes a hidden
// ".SPC" named after its folder, which then opens from the recent item and the dialog.
TEST_F(StartedCycle, DocumentNamedAfterItsFolderOpensAgain) {
  fs::create_directories(home.path / "old");
  const std::string spc = (home.path / "old" / ".SPC").string();
  s.dialogs.answers = {Answer::No};
  s.NewAt(spc);
  ASSERT_EQ(s.dialogs.Messages().size(), 1u);
  ASSERT_EQ(s.app.doc.SpcPath, spc);
  s.Measure(1);
  s.cycle.Save();
  s.ReopenBothWays(spc, 1);
  EXPECT_EQ(s.dialogs.Messages().size(), 1u);
}

TEST_F(StartedCycle, GuardRefusesNewOpenAndRecentWhileChanged) {
  s.NewAt(s.Work("a.SPC"));
  s.Measure(1);
  const std::size_t before = s.dialogs.shown.size();
  s.cycle.New();
  s.cycle.Open();
  s.cycle.OpenRecent(1);
  ASSERT_EQ(s.dialogs.shown.size(), before + 3);
  for (std::size_t k = before; k < before + 3; ++k) {
    EXPECT_EQ(s.dialogs.shown[k].kind, "msg");
    EXPECT_EQ(s.dialogs.shown[k].text, "請先將目前工作結束,才能另外開圖");
  }
  EXPECT_EQ(s.app.doc.DocumentName, s.Work("a"));
}

TEST_F(StartedCycle, OpenRefusesMissingFilesAndForeignExtensions) {
  WriteBytes(s.Work("notes.txt"), "x");
  struct Case {
    std::string file, text, title;
  } cases[] = {
      {s.Work("gone.SPC"), "檔案不存在!", "TAVIK"},
      {s.Work("notes.txt"), "檔案格式或檔案型別不符", "檔名有問題"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    s.dialogs.shown.clear();
    s.dialogs.files = {c.file};
    s.cycle.Open();
    ASSERT_EQ(s.dialogs.shown.size(), 2u);
    EXPECT_EQ(s.dialogs.shown[0].text, OpenFilter);
    EXPECT_EQ(s.dialogs.shown[1].text, c.text);
    EXPECT_EQ(s.dialogs.shown[1].title, c.title);
    EXPECT_FALSE(s.app.doc.IsOpen());
  }
}

TEST_F(StartedCycle, SaveThenReopenKeepsEverything) {
  int markerStops = 0, portCloses = 0, scrollBarsPlaced = 0;
  s.cycle.hooks.StopLiveMarker = [&] { ++markerStops; };
  s.cycle.hooks.CloseSensorPorts = [&] { ++portCloses; };
  s.cycle.hooks.PlaceScrollBars = [&](Document&, View&) { ++scrollBarsPlaced; };
  s.NewAt(s.Work("farm.SPC"));
  s.Measure(3);
  ASSERT_TRUE(DeletePoint(s.app.doc, s.app.work, 2));
  s.cycle.Save();
  EXPECT_EQ(markerStops, 1);
  EXPECT_EQ(portCloses, 0);
  const Document& d = s.app.doc;
  EXPECT_FALSE(d.MapChanged);
  EXPECT_EQ(s.window.obsBox, "幾秒前已經存檔");
  EXPECT_FALSE(fs::exists(s.app.paths.TempP0()));  // the journal ends with the save
  // The reload has dropped the deleted point and renumbered.
  ASSERT_EQ(d.PointCount, 2);
  EXPECT_EQ(d.PointTable[1].E, 281003);
  EXPECT_TRUE(d.UndeleteStack.empty());
  EXPECT_EQ(s.window.panels[4], "測點 2");
  EXPECT_EQ(s.window.label42, "1");

  ASSERT_TRUE(s.cycle.Close());
  EXPECT_FALSE(s.app.doc.IsOpen());
  EXPECT_EQ(s.window.caption, "TAVIK");
  EXPECT_FALSE(s.window.documentCommands);
  EXPECT_EQ(markerStops, 2);
  EXPECT_EQ(portCloses, 1);

  s.dialogs.files = {s.Work("farm.SPC")};
  s.cycle.Open();
  ASSERT_TRUE(s.app.doc.IsOpen());
  EXPECT_EQ(scrollBarsPlaced, 1);
  EXPECT_EQ(s.app.doc.PointCount, 2);
  EXPECT_FALSE(s.app.doc.MapChanged);
  EXPECT_EQ(s.window.caption, "TAVIK - " + s.Work("farm") + ".SPC");
  // Open writes no journal.
  EXPECT_FALSE(fs::exists(s.app.paths.TempP0()));
  ASSERT_TRUE(s.cycle.Exit());
  EXPECT_EQ(markerStops, 3);
  EXPECT_EQ(portCloses, 2);
}

TEST_F(StartedCycle, SavingAMapWithEverythingDeletedReportsTheEmptyFile) {
  s.NewAt(s.Work("bare.SPC"));
  s.Measure(1);
  ASSERT_TRUE(DeletePoint(s.app.doc, s.app.work, 1));
  ASSERT_TRUE(DeleteEntity(s.app.doc, s.app.work, 1));
  s.cycle.Save();
  ASSERT_FALSE(s.dialogs.shown.empty());
  EXPECT_EQ(s.dialogs.shown.back().text, s.Work("bare.SPC") + "檔案沒有內容");
  EXPECT_EQ(s.dialogs.shown.back().title, "讀檔動作取消");
  EXPECT_TRUE(s.app.doc.PointTable.empty());
  EXPECT_TRUE(s.app.doc.EntityTable.empty());
}

TEST_F(StartedCycle, DamagedScaleInAFileIsShownNotConverted) {
  struct Case {
    double scale;
    std::string panel;
  } cases[] = {{500.7, "1 :500"}, {1e300, "1 :" + num::Plain(1e300)}, {-2.5, "1 :-3"}};
  for (const auto& c : cases) {
    s.NewAt(s.Work("scale.SPC"));
    s.Measure(1);
    s.app.doc.ScaleDenominator = c.scale;
    s.cycle.Save();
    ASSERT_TRUE(s.cycle.Close());
    s.dialogs.files = {s.Work("scale.SPC")};
    s.cycle.Open();
    EXPECT_EQ(s.window.panels[1], c.panel);
    ASSERT_TRUE(s.cycle.Close());
  }
  s.NewAt(s.Work("nan.SPC"));
  s.app.doc.ScaleDenominator = std::nan("");
  s.cycle.ShowCounts();
  EXPECT_EQ(s.window.panels[1].rfind("1 :", 0), 0u);
}

TEST_F(StartedCycle, LowerCaseSpcOpensAndSavesUnderItsOwnName) {
  s.NewAt(s.Work("low.SPC"));
  s.Measure(2);
  s.cycle.Save();
  ASSERT_TRUE(s.cycle.Close());
  fs::rename(s.Work("low.SPC"), s.Work("low.spc"));

  s.dialogs.files = {s.Work("low.spc")};
  s.cycle.Open();
  ASSERT_TRUE(s.app.doc.IsOpen());
  EXPECT_EQ(s.app.doc.PointCount, 2);
  s.Measure(1);
  s.cycle.Save();
  EXPECT_TRUE(fs::exists(s.Work("low.spc")));
  EXPECT_FALSE(fs::exists(s.Work("low.SPC")));
  EXPECT_EQ(s.app.doc.PointCount, 3);

  // The recent item adds ".spc" to the stored name; any case of the file is found.
  ASSERT_TRUE(s.cycle.Close());
  s.cycle.OpenRecent(1);
  EXPECT_EQ(s.app.doc.PointCount, 3);
}

TEST_F(StartedCycle, OlderSpDocumentOpensAndSavesAsSpc) {
  // An older document: a 148-byte header (map type at 0, counts at 132 and 140), two
  // points, one item record of 108 bytes.
  tavik::testing::ByteWriter w;
  w.Put<int16_t>(2).Zeros(130).Put<int32_t>(2).Zeros(4).Put<int32_t>(1).Zeros(4);
  w.Put(281000.0).Put(2752000.0).Put(1.0).Put(281010.0).Put(2752010.0).Put(2.0);
  w.Text("99", 6).Put<int16_t>(11);
  for (double v : {281000.0, 0.0, 0.0, 2752000.0, 0.0, 0.0, 1.0, 0.0, 0.0}) w.Put(v);
  w.Text("A1", 20).Zeros(8);  // the record's last 8 bytes are not used
  ASSERT_EQ(w.bytes.size(), 148u + 48u + 108u);
  WriteBytes(s.Work("old.sp"), w.bytes);

  s.dialogs.files = {s.Work("old.sp")};
  s.cycle.Open();
  ASSERT_TRUE(s.app.doc.IsOpen()) << (s.dialogs.Messages().empty() ? "" : s.dialogs.Messages().front());
  EXPECT_EQ(s.app.DocumentFormat, 2);
  EXPECT_EQ(s.window.mapType, "平面圖");
  EXPECT_EQ(s.window.caption, "TAVIK - " + s.Work("old") + ".SPC");
  s.cycle.Save();
  EXPECT_TRUE(fs::exists(s.Work("old.SPC")));
  EXPECT_EQ(s.app.doc.PointCount, 2);
  ASSERT_EQ(s.app.doc.EntityCount, 1);
  EXPECT_EQ(s.app.doc.EntityTable[0].Name, "A1");
}

TEST(DocumentCycle, CloseAndExitWithChangesAskAndCancelKeepsEverything) {
  struct Case {
    bool exit;
    Answer answer;
    bool done, saved;
  } cases[] = {
      {false, Answer::Cancel, false, false}, {false, Answer::No, true, false}, {false, Answer::Yes, true, true},
      {true, Answer::Cancel, false, false},  {true, Answer::No, true, false},  {true, Answer::Yes, true, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << (c.exit ? "exit" : "close") << " answer " << static_cast<int>(c.answer));
    StartedSession s;
    s.NewAt(s.Work("c.SPC"));
    s.Measure(2);
    s.dialogs.answers = {c.answer};
    EXPECT_EQ(c.exit ? s.cycle.Exit() : s.cycle.Close(), c.done);
    EXPECT_EQ(s.dialogs.shown.back().text, c.exit ? "圖面有更動,是否存檔?" : "是否存檔?");
    EXPECT_EQ(s.dialogs.shown.back().title, c.exit ? "提示" : "螢幕的圖尚未存檔");
    EXPECT_EQ(WorkFilesPresent(s.app.paths), !c.done);
    EXPECT_EQ(fs::exists(s.Work("c.SPC")), c.saved);
    if (c.exit) {
      EXPECT_EQ(fs::exists(s.Work("c.MAC")), !c.done);
      EXPECT_TRUE(fs::exists(s.app.paths.SoftwareIni()));  // written whatever the answer
    } else {
      EXPECT_EQ(s.app.doc.IsOpen(), !c.done);
    }
    if (!c.done) {
      EXPECT_EQ(s.app.doc.PointCount, 2);
      EXPECT_TRUE(s.app.doc.MapChanged);
      EXPECT_TRUE(s.window.documentCommands);
    }
  }
}

// The settings of Software.ini reach the variables linked to them at the start and come
// back from them at exit; a value nobody links is written back as it was read. A file
// of the wrong count is replaced at the next exit.
TEST(DocumentCycle, SettingsReachTheirOwnersAndSurviveARestart) {
  struct Owners {
    std::string kind = "none";
    int16_t port = 0;
    int16_t autoName = 0;  // an int16 boolean
  };
  auto link = [](Session& s, Owners& o) {
    s.app.settings.Link(&SoftwareIni::InstrumentKind, o.kind);
    s.app.settings.Link(&SoftwareIni::PortNumber, o.port);
    s.app.settings.Link(&SoftwareIni::AutoNameOn, o.autoName);
  };
  TempHome home;
  {
    Session s(home.path);
    Owners o;
    link(s, o);
    WriteBytes(s.app.paths.Symb() / "Software.ini", "\"GPS\"\r\n1\r\n");
    s.cycle.Startup();
    EXPECT_FALSE(fs::exists(s.app.paths.Symb() / "Software.ini"));
    EXPECT_EQ(o.kind, "SET30R");  // the defaults reached the owners
    EXPECT_EQ(o.port, 1);
    EXPECT_EQ(o.autoName, 0);
    o.kind = "GTS-211D", o.port = 4, o.autoName = -1;
    s.app.ini.MeasureMode = "GPS";
    s.app.ini.DxfTextScale = 2.5;  // nobody owns it yet
    s.NewAt(s.Work("legend.SPC"));
    s.app.doc.CurrentLegend = 114, s.app.doc.InstrumentHeight = 1.52, s.app.doc.TargetHeight = 1.3;
    EXPECT_EQ(s.app.ini.InstrumentKind, "GTS-211D");  // taking up a document collects
    EXPECT_TRUE(s.cycle.Exit());
  }
  Session again(home.path);
  Owners o;
  link(again, o);
  again.cycle.Startup();
  EXPECT_EQ(o.kind, "GTS-211D");
  EXPECT_EQ(o.port, 4);
  EXPECT_EQ(o.autoName, -1);
  EXPECT_EQ(again.app.ini.MeasureMode, "GPS");
  EXPECT_EQ(again.app.doc.ScaleDenominator, 1000);
  EXPECT_EQ(again.app.ini.DxfTextScale, 2.5);
  EXPECT_EQ(again.app.doc.CurrentLegend, 114);
  EXPECT_EQ(again.app.doc.InstrumentHeight, 1.52);
  EXPECT_EQ(again.app.doc.TargetHeight, 1.3);
}

// The process dies without Exit; the next start takes up the journal, or removes it
// when the new document had nothing in it.
TEST(DocumentCycle, CrashLeavesAJournalThatTheNextStartTakesUp) {
  for (int measured : {4, 0}) {
    SCOPED_TRACE(measured);
    TempHome home;
    std::string name;
    {
      Session s(home.path);
      s.cycle.Startup();
      s.NewAt(s.Work("field.SPC"));
      if (measured) s.Measure(measured);
      name = s.app.doc.DocumentName;
    }
    Session s(home.path);
    s.store.SaveSetting("TAVIK", "Used Files", "1", s.Work("older"));
    s.cycle.Startup();
    const Document& d = s.app.doc;
    if (!measured) {
      EXPECT_FALSE(d.IsOpen());
      EXPECT_FALSE(fs::exists(s.app.paths.TempP0()));
      EXPECT_FALSE(fs::exists(s.app.paths.TempS0()));
      continue;
    }
    ASSERT_EQ(d.DocumentName, name);
    EXPECT_EQ(d.PointCount, 4);
    EXPECT_EQ(d.EntityCount, 1);
    EXPECT_TRUE(d.MapChanged);  // nothing of it is saved yet
    EXPECT_EQ(s.window.caption, "TAVIK - " + name + ".SPC");
    EXPECT_EQ(s.window.panels[4], "測點 4");
    EXPECT_TRUE(s.dialogs.Messages().empty()) << s.dialogs.Messages().front();
    // The recovered document joins the stored list at its head.
    EXPECT_EQ(s.window.recent, (std::vector<std::string>{name, s.Work("older")}));
    EXPECT_EQ(s.store.GetSetting("TAVIK", "Used Files", "2", ""), s.Work("older"));
  }
}

TEST_F(StartedCycle, AutosaveCountsChangedMinutesThenSaves) {
  s.NewAt(s.Work("auto.SPC"));
  s.Timer5().Fire();  // unchanged: nothing counts
  EXPECT_EQ(s.app.MinutesSinceSave, 0);
  s.Measure(1);
  bool waiting = true;  // a message box of some command is up
  s.cycle.hooks.CommandRunning = [&] { return waiting; };
  s.Timer5().Fire();
  EXPECT_EQ(s.app.MinutesSinceSave, 0);
  waiting = false;
  for (int m = 1; m <= 4; ++m) {
    s.Timer5().Fire();
    EXPECT_EQ(s.window.obsBox, std::to_string(m) + "分鐘前已存檔");
  }
  EXPECT_FALSE(fs::exists(s.Work("auto.SPC")));
  s.Timer5().Fire();
  EXPECT_TRUE(fs::exists(s.Work("auto.SPC")));
  EXPECT_EQ(s.window.obsBox, "幾秒前已經存檔");
  EXPECT_EQ(s.app.MinutesSinceSave, 0);
  EXPECT_FALSE(s.app.doc.MapChanged);

  s.Measure(1);
  s.cycle.AutoSaveOff();
  EXPECT_EQ(s.window.obsBox, "自動存檔: 己關閉");
  EXPECT_FALSE(s.Timer5().enabled);
  s.Timer5().enabled = true;  // even a stray tick saves nothing now
  s.Timer5().Fire();
  EXPECT_EQ(s.app.MinutesSinceSave, 0);
}

TEST_F(StartedCycle, SaveAsWritesUnderTheNewNameAndAsksBeforeOverwriting) {
  s.NewAt(s.Work("first.SPC"));
  s.Measure(2);
  WriteBytes(s.Work("taken.SPC"), "old");
  s.dialogs.files = {s.Work("taken.SPC"), s.Work("second.SPC")};
  s.dialogs.answers = {Answer::No};
  s.cycle.SaveAs();
  EXPECT_EQ(s.dialogs.shown[s.dialogs.shown.size() - 2].title, "檔名重覆");
  EXPECT_EQ(ReadBytes(s.Work("taken.SPC")), "old");
  EXPECT_TRUE(fs::exists(s.Work("second.SPC")));
  EXPECT_EQ(s.app.doc.DocumentName, s.Work("second"));
  EXPECT_EQ(s.window.caption, "TAVIK - " + s.Work("second") + ".SPC");
  EXPECT_EQ(s.app.doc.PointCount, 2);
}

TEST(DocumentCycle, RecentItemOfAMissingFileSaysSo) {
  TempHome home;
  Session s(home.path);
  s.store.SaveSetting("TAVIK", "Used Files", "1", s.Work("vanished"));
  s.cycle.Startup();
  ASSERT_EQ(s.window.recent.size(), 1u);
  s.cycle.OpenRecent(1);
  EXPECT_EQ(s.dialogs.Messages(), std::vector<std::string>{"檔案不存在!"});
  s.cycle.ClearRecent();
  EXPECT_TRUE(s.window.recent.empty());
  EXPECT_TRUE(s.store.GetAllSettings("TAVIK", "Used Files").empty());
}
