// A SIGKILL in the middle of a continuous run: the child records by distance as fast as
// it can and is killed at an arbitrary moment; every record it reported, and every WAY
// line on disk, has its point in the recovered journal.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/numbers.h"
#include "core/workfiles.h"
#include "procedures/gps_recording.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

struct SavingWindow : testing::RecordingWindow {
  Document* doc = nullptr;
  WorkFiles* work = nullptr;
  void SafetySave() override { work->WriteRecoveryHeader(*doc); }
};

struct GpsRunCrash : testing::SurveyFixture {
  SavingWindow saving;
  SurveyContext crashCtx{doc, view, work, inst, survey, dialogs, saving, {}, {}};
};

TEST_F(GpsRunCrash, SigkillDuringADistanceRunLosesNoRecordedPoint) {
  saving.doc = &doc;
  saving.work = &work;
  inst.MeasureMode = "GPS";
  doc.InstrumentHeight = 1.5;
  ASSERT_TRUE(work.WriteRecoveryHeader(doc));
  int fds[2];
  ASSERT_EQ(::pipe(fds), 0);
  const pid_t pid = ::fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    ::close(fds[0]);
    GpsState gps;
    GnssSetup setup;
    GpsPanels panels;
    GpsRecorder rec(crashCtx, gps, setup, panels);
    rec.hooks.PortOpen = [] { return true; };
    rec.state.LinkPoints = kTrue;
    if (!rec.RecTypeOk("Dist", "1")) ::_exit(1);
    rec.LogButton_Click();
    for (int i = 0;; ++i) {
      const int32_t before = doc.PointCount;
      gps.GpsX = 1000 + 1.5 * i;
      gps.GpsY = 2000 + (i % 7) * 0.1;
      gps.GpsHeight = 30;
      gps.GpsGround = 28.5;
      rec.ContinuePositionUpdate();
      const char c = 'x';
      if (doc.PointCount != before && ::write(fds[1], &c, 1) != 1) ::_exit(1);
    }
  }
  ::close(fds[1]);
  int reported = 0;
  char c = 0;
  while (reported < 40 && ::read(fds[0], &c, 1) == 1) ++reported;
  ::kill(pid, SIGKILL);
  int status = 0;
  ::waitpid(pid, &status, 0);
  ::close(fds[0]);
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_EQ(reported, 40);

  Document back;
  WorkFiles again(AppPaths{home.path});
  ui::ScriptedDialogs d;
  ASSERT_TRUE(RecoverFromWorkFiles(back, again, d));
  const std::vector<std::string> way = Lines(".WAY");
  ASSERT_GE(back.PointCount, static_cast<int32_t>(way.size()));
  ASSERT_GE(back.PointCount, reported);
  for (std::size_t i = 0; i < way.size(); ++i) {
    const std::string E = num::Format(back.PointTable[i].E, "0.000");
    EXPECT_NE(way[i].find("," + E + ","), std::string::npos) << i << " " << way[i];
  }
  // The route's segments came back with their points.
  EXPECT_GE(back.EntityCount, back.PointCount - 1);
}

}  // namespace
}  // namespace tavik
