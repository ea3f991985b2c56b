#include "procedures/replay.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "core/temp_home.h"
#include "core/workfiles.h"
#include "platform/scripted/scripted.h"
#include "procedures/gps_recording.h"
#include "survey_fixture.h"

namespace tavik {
namespace {
namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::WriteBytes;

// A WAY record as the recorder writes it: 19 fields and a comma when no reference is
// chosen, the reference name and its distance otherwise.
std::string WayLine(double E, double N, double H, const std::string& tail = ",") {
  return "2026/11/23,14:05:00,2380,123456.5," + num::Format(E, "0.000") + "," + num::Format(N, "0.000") + "," +
         num::Format(H, "0.000") + ",0.010,0.012,0.020," + num::Format(H - 1.8, "0.000") +
         ",1.8,0.5,3.25,3.5,0.1,0.2,0.3,3.25" + tail + "\r\n";
}

TEST(ReplayRules, IntervalsStepAsTheButtonsSay) {
  std::vector<int> faster, slower;
  for (int ms = 1000, i = 0; i < 7; ++i) faster.push_back(ms = FasterInterval(ms));
  for (int ms = 50, i = 0; i < 6; ++i) slower.push_back(ms = SlowerInterval(ms));
  EXPECT_EQ(faster, (std::vector<int>{500, 250, 125, 100, 50, 50, 50}));
  EXPECT_EQ(slower, (std::vector<int>{100, 200, 400, 800, 1000, 1000}));
}

TEST(ReplayRules, RecordFieldsAndBadLines) {
  const auto plain = ReadWayRecord("d,t,1,2,100.5,200.25,30,0.1,0.2,0.3,28.2,1.8,0.5,3.2,3.4,0.1,0.2,0.3,3.2,");
  ASSERT_TRUE(plain);
  EXPECT_EQ(plain->E, 100.5);
  EXPECT_EQ(plain->Ground, 28.2);
  EXPECT_EQ(plain->Pitch, 0.3);
  EXPECT_EQ(plain->FieldCount, 20);
  EXPECT_EQ(plain->Reference, "");

  const auto ref = ReadWayRecord("d,t,1,2,1,2,3,0,0,0,0,0,0,0,0,0,0,0,x, \xb0\xd1\xa6\xd2 ,12.345");
  ASSERT_TRUE(ref);
  EXPECT_EQ(ref->Reference, "參考");  // code page 950 in the file
  EXPECT_EQ(ref->Distance, "12.345");
  EXPECT_EQ(ReadWayRecord("d,t,1,2,1,2,3,0,0,0,0,0,0,0,0,0,0,0,x")->FieldCount, 19);

  for (const char* bad : {"", "d,t,1,2,1,2,3,0,0,0,0,0,0,0,0,0,0", "d,t,1,2,1,2,abc,0,0,0,0,0,0,0,0,0,0,0,x,",
                          "d,t,1,2,1,,3,0,0,0,0,0,0,0,0,0,0,0,x,", "\xff\xfe,,,,,,,,,,,,,,,,,,,"}) {
    EXPECT_FALSE(ReadWayRecord(bad)) << bad;
  }
}

// The surveyor's document, with unsaved changes, journalled in its work files.
struct ReplayFixture : ::testing::Test {
  testing::TempHome home;
  App app{AppPaths(home.path)};
  GpsState gps;
  GpsPanels panels;
  ui::ScriptedDialogs dialogs;
  ui::ManualTimerFactory timers;
  std::unique_ptr<RePlayLogic> replay;
  std::vector<std::pair<double, double>> marker;
  std::map<std::string, std::string> texts;
  std::vector<std::string> events;
  std::string wayPath;

  void SetUp() override {
    fs::create_directories(app.paths.WorkFolder());
    Document& doc = app.doc;
    SetDocumentName(doc, (app.paths.WorkFolder() / "SITE").string());
    doc.ScaleDenominator = 500;
    doc.InstrumentHeight = 1.5;
    app.view.ScreenMinE = 0;
    app.view.ScreenMaxE = 1000;
    app.view.ScreenMinN = 0;
    app.view.ScreenMaxN = 1000;
    app.work.CreateEmpty();
    for (int i = 1; i <= 5; ++i) AddPoint(doc, app.view, app.work, i * 10, i * 20, i);
    AddEntity(doc, app.view, app.work, 99, 10, 20, 1, "P1");
    app.work.WriteRecoveryHeader(doc);
    doc.MapChanged = kTrue;
    gps.GpsX = 77;
    gps.GpsFixText = "最佳解";
    panels.Label22 = "before";
    wayPath = (app.paths.WorkFolder() / "RUN.WAY").string();
    Make();
  }
  void TearDown() override { replay.reset(); }
  void Make() {
    replay = std::make_unique<RePlayLogic>(app, gps, panels, dialogs, timers, (home.path / "replay").string());
    ReplayHooks& h = replay->hooks;
    h.DrawMarker = [this](double E, double N) { marker.emplace_back(E, N); };
    h.SetText = [this](const std::string& c, const std::string& t) { texts[c] = t; };
    h.EnableAutosave = [this](bool on) { events.push_back(on ? "autosave on" : "autosave off"); };
    h.SaveDocument = [this] { events.push_back("save"); };
    h.FitViewTo = [this](double, double, double, double, double) { events.push_back("fit"); };
    h.CentreViewOn = [this](double, double) { events.push_back("centre"); };
  }
  std::string Journals() const {
    return ReadBytes(app.paths.TempP0()) + "|" + ReadBytes(app.paths.TempS0()) + "|" +
           ReadBytes(app.paths.InsuranceTV());
  }
  void RunToEnd() {
    for (int i = 0; i < 1000 && replay->Running(); ++i) replay->Tick();
  }
};

// The recorded run comes back as the marker's path; a record with E or N of 0 refreshes
// the panels and leaves the marker; a bad line is passed over; End gives the surveyor's
// document back as it was, tables, header and work files alike.
TEST_F(ReplayFixture, MarkerFollowsTheRecordsAndEndGivesTheDocumentBack) {
  std::string way;
  std::vector<std::pair<double, double>> recorded;
  for (int i = 0; i < 8; ++i) {
    const double E = 100 + i * 1.5, N = 200 + i * 0.75;
    way += WayLine(E, N, 30 + i);
    recorded.emplace_back(E, N);
  }
  way += WayLine(0, 250, 31);         // no position: panels only
  way += "2026/11/23,14:05:00,2380\r\n";  // short line
  way += WayLine(2000, 300, 32, ",參考1,12.5");  // off the screen, with a reference
  recorded.emplace_back(2000, 300);
  WriteBytes(wayPath, text::ToCp950(way));
  const Document before = app.doc;
  const std::string journals = Journals();

  dialogs.answers = {ui::Answer::No};
  ASSERT_TRUE(replay->ChooseFile(wayPath));
  replay->Play();
  EXPECT_EQ(app.doc.PointCount, 0);
  EXPECT_TRUE(app.doc.PointTable.empty());
  EXPECT_NE(app.work.Paths().Home, app.paths.Home);
  EXPECT_EQ(events, (std::vector<std::string>{"autosave off"}));
  EXPECT_FALSE(replay->Command1Enabled[0]);

  replay->Tick();
  replay->Tick();
  replay->Pause();
  EXPECT_EQ(replay->Command1_1Caption, "繼續");
  replay->Faster();  // nothing while paused
  EXPECT_EQ(replay->Interval(), 1000);
  replay->Pause();
  replay->Faster();
  replay->Faster();
  EXPECT_EQ(replay->Label3, "4");
  RunToEnd();
  EXPECT_EQ(marker, recorded);
  EXPECT_EQ(replay->RecordsPlayed(), 10);
  EXPECT_EQ(texts["Combo3"], "參考1");
  EXPECT_EQ(panels.Label10, "12.5");
  EXPECT_EQ(panels.Label22, "30.200");
  EXPECT_EQ(texts["CmdIh"], "天線高: 1.80");
  EXPECT_EQ(std::count(events.begin(), events.end(), "fit"), 1);
  EXPECT_TRUE(replay->Command1Enabled[0]);
  EXPECT_EQ(Journals(), journals);  // the surveyor's work files untouched all along

  replay->End();
  const Document& doc = app.doc;
  EXPECT_EQ(doc.DocumentName, before.DocumentName);
  EXPECT_EQ(doc.PointCount, 5);
  ASSERT_EQ(doc.PointTable.size(), before.PointTable.size());
  for (std::size_t i = 0; i < doc.PointTable.size(); ++i) EXPECT_EQ(doc.PointTable[i].E, before.PointTable[i].E);
  EXPECT_EQ(doc.EntityTable.at(0).Name, "P1");
  EXPECT_EQ(doc.MapChanged, kTrue);
  EXPECT_EQ(doc.ScaleDenominator, 500);
  EXPECT_EQ(doc.InstrumentHeight, 1.5);
  EXPECT_EQ(app.work.Paths().Home, app.paths.Home);
  EXPECT_EQ(Journals(), journals);
  EXPECT_EQ(gps.GpsX, 77);
  EXPECT_EQ(panels.Label22, "before");
  EXPECT_EQ(events.back(), "autosave on");
  EXPECT_FALSE(fs::exists(home.path / "replay"));
}

TEST_F(ReplayFixture, SavingIsOfferedFirstAndCancelStopsThePlay) {
  WriteBytes(wayPath, WayLine(10, 20, 30));
  ASSERT_TRUE(replay->ChooseFile(wayPath));
  dialogs.answers = {ui::Answer::Cancel};
  replay->Play();
  EXPECT_FALSE(replay->Replaying());
  EXPECT_FALSE(replay->Running());
  EXPECT_EQ(app.doc.PointCount, 5);

  // A save that fails (the document stays changed) stops it too; one that works goes on.
  dialogs.answers = {ui::Answer::Yes};
  replay->Play();
  EXPECT_FALSE(replay->Replaying());
  replay->hooks.SaveDocument = [this] { app.doc.MapChanged = kFalse; };
  dialogs.answers = {ui::Answer::Yes};
  replay->Play();
  EXPECT_TRUE(replay->Running());

  // Repeat: the end of the file starts the play again.
  replay->Check1 = kTrue;
  for (int i = 0; i < 5; ++i) replay->Tick();
  EXPECT_TRUE(replay->Running());
  EXPECT_EQ(marker.size(), 3u);
  replay.reset();  // the dialog closed: the document is back
  EXPECT_EQ(app.doc.PointCount, 5);
}

TEST_F(ReplayFixture, RefusalsAndFileChoice) {
  EXPECT_FALSE(RePlayLogic::CanOpen("TS", false, dialogs));
  EXPECT_FALSE(RePlayLogic::CanOpen("GPS", true, dialogs));
  EXPECT_TRUE(RePlayLogic::CanOpen("GPS", false, dialogs));
  EXPECT_EQ(dialogs.Messages(), (std::vector<std::string>{"重播為GPS專用功能,儀器需改為GPS才能重播", "連線中不能重播"}));
  EXPECT_EQ(dialogs.shown[1].title, "錯誤動作");

  WriteBytes(app.paths.WorkFolder() / "RUN.TXT", "x");
  EXPECT_FALSE(replay->ChooseFile((app.paths.WorkFolder() / "RUN.TXT").string()));
  EXPECT_FALSE(replay->ChooseFile((app.paths.WorkFolder() / "NONE.WAY").string()));
  EXPECT_EQ(dialogs.Messages().at(2), "檔案格式或檔案型別不符");
  EXPECT_EQ(dialogs.Messages().at(3), "檔案不存在!");
  replay->Play();  // no file chosen: nothing
  EXPECT_FALSE(replay->Replaying());

  // An empty file plays to its end at once.
  WriteBytes(wayPath, "");
  ASSERT_TRUE(replay->ChooseFile(wayPath));
  dialogs.answers = {ui::Answer::No};
  replay->Play();
  replay->Tick();
  EXPECT_FALSE(replay->Running());
  EXPECT_TRUE(marker.empty());
}

// A file of 2 GB plays its first records at once: it is read through a fixed buffer,
// never whole. A line longer than the reader takes is passed over to its end.
TEST_F(ReplayFixture, HugeFileAndOverlongLineAreStreamed) {
  WriteBytes(wayPath, WayLine(10, 20, 30) + WayLine(11, 21, 30));
  fs::resize_file(wayPath, (std::uintmax_t{2} << 30) + 7);  // sparse: zeros, no line end
  dialogs.answers = {ui::Answer::No};
  ASSERT_TRUE(replay->ChooseFile(wayPath));
  replay->Play();
  for (int i = 0; i < 2; ++i) replay->Tick();
  EXPECT_EQ(marker.size(), 2u);
  replay->End();
  EXPECT_EQ(app.doc.PointCount, 5);

  WriteBytes(wayPath, std::string(WayLineReader::kMaxLine + 10, '7') + "\n" + WayLine(12, 22, 30));
  dialogs.answers = {ui::Answer::No};
  replay->Play();
  RunToEnd();
  EXPECT_EQ(marker.size(), 3u);
  EXPECT_EQ(marker.back(), std::make_pair(12.0, 22.0));
}

// The program killed in the middle of a replay: what the next start finds on disk is
// the surveyor's journal as before Play, and the recovery brings the document back.
TEST_F(ReplayFixture, CrashDuringReplayLeavesTheSurveyorsJournal) {
  std::string way;
  for (int i = 0; i < 50; ++i) way += WayLine(5000 + i, 6000 + i, 30);
  WriteBytes(wayPath, way);
  const std::string journals = Journals();
  Document expected;
  {
    WorkFiles wf(app.paths);
    ASSERT_TRUE(RecoverFromWorkFiles(expected, wf, dialogs));
  }
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    dialogs.answers = {ui::Answer::No};
    replay->ChooseFile(wayPath);
    replay->Play();
    for (int i = 0; i < 20; ++i) replay->Tick();
    ::kill(::getpid(), SIGKILL);
    ::_exit(3);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_TRUE(fs::exists(home.path / "replay"));  // the child did replay
  EXPECT_EQ(Journals(), journals);

  App after{AppPaths(home.path)};
  ASSERT_EQ(after.work.Check(), WorkFiles::CrashState::Recoverable);
  ASSERT_TRUE(RecoverFromWorkFiles(after.doc, after.work, dialogs));
  EXPECT_EQ(after.doc.DocumentName, expected.DocumentName);
  EXPECT_EQ(after.doc.PointCount, 5);
  EXPECT_EQ(after.doc.ScaleDenominator, 500);
  EXPECT_EQ(after.doc.EntityTable.at(0).Name, "P1");
}

// A run recorded by distance through the recorder's own WAY writer, then replayed: the
// marker walks exactly the recorded points, in order.
TEST_F(ReplayFixture, RecordedRunReplaysAlongItsPoints) {
  InstrumentState inst;
  inst.MeasureMode = "GPS";
  SurveyState survey;
  testing::RecordingWindow window;
  SurveyContext ctx{app.doc, app.view, app.work, inst, survey, dialogs, window, [] { return std::string("x"); }, {}};
  GnssSetup setup;
  GpsRecorder rec{ctx, gps, setup, panels};
  rec.hooks.PortOpen = [] { return true; };
  ASSERT_TRUE(rec.RecTypeOk("Dist", "2"));
  gps.GpsX = gps.GpsY = 0;
  rec.LogButton_Click();
  ASSERT_TRUE(rec.Running());
  for (int i = 0; i <= 120; ++i) {  // a quarter circle of 40 m radius, a position every 0.33 m
    const double a = i * 0.00825;
    gps.GpsPrevX = gps.GpsX;
    gps.GpsPrevY = gps.GpsY;
    gps.GpsX = 300 + 40 * std::sin(a);
    gps.GpsY = 400 + 40 * std::cos(a);
    gps.GpsHeight = 31;
    gps.GpsGround = 29.5;
    rec.ContinuePositionUpdate();
  }
  rec.LogButton_Click();
  ASSERT_GT(app.doc.PointCount, 15);
  std::vector<std::pair<double, double>> recorded;
  for (std::size_t i = 5; i < app.doc.PointTable.size(); ++i)
    recorded.emplace_back(app.doc.PointTable[i].E, app.doc.PointTable[i].N);
  const std::string way = app.doc.WayPath;

  dialogs.answers = {ui::Answer::No};
  ASSERT_TRUE(replay->ChooseFile(way));
  replay->Play();
  RunToEnd();
  ASSERT_EQ(marker.size(), recorded.size());
  for (std::size_t i = 0; i < marker.size(); ++i) {
    EXPECT_NEAR(marker[i].first, recorded[i].first, 0.0005);
    EXPECT_NEAR(marker[i].second, recorded[i].second, 0.0005);
  }
  replay->End();
  EXPECT_EQ(app.doc.PointCount, static_cast<int32_t>(recorded.size()) + 5);
}

}  // namespace
}  // namespace tavik
