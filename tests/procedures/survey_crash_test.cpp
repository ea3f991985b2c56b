// A SIGKILL in the middle of a survey loses none of the shots already stored: the
// child process shoots, says so after each shot, and is killed after the sixth; the
// journal and the observation book then hold all six.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/workfiles.h"
#include "procedures/observation_pipeline.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

// The window's safety save writes the recovery header, as the program's does.
class SavingWindow : public testing::RecordingWindow {
 public:
  Document* doc = nullptr;
  WorkFiles* work = nullptr;
  void SafetySave() override { work->WriteRecoveryHeader(*doc); }
};

struct SurveyCrash : testing::SurveyFixture {
  SavingWindow saving;
  SurveyContext crashCtx{doc, view, work, inst, survey, dialogs, saving,
                         [] { return std::string("2026/11/21 08:00:00"); }, {}};
};

TEST_F(SurveyCrash, SigkillAfterTheSixthShotLosesNone) {
  saving.doc = &doc;
  saving.work = &work;
  saving.inst = &inst;
  SetStation(1000, 2000, 50, 0);
  doc.MapType = 2;
  ASSERT_TRUE(work.WriteRecoveryHeader(doc));
  int fds[2];
  ASSERT_EQ(::pipe(fds), 0);
  const pid_t pid = ::fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    ::close(fds[0]);
    for (int i = 1;; ++i) {
      inst.ObsHz = 0.1 * i;
      inst.ObsV = Pi / 2;
      inst.ObsSlope = 10 + i;
      inst.ObsHzRaw = 1000 * i;
      inst.ObsVRaw = 900000;
      ReducePoint(crashCtx);
      const char c = 'x';
      if (::write(fds[1], &c, 1) != 1) ::_exit(1);
      if (i >= 6) ::pause();
    }
  }
  ::close(fds[1]);
  int shots = 0;
  char c = 0;
  while (shots < 6 && ::read(fds[0], &c, 1) == 1) ++shots;
  ASSERT_EQ(shots, 6);
  ::kill(pid, SIGKILL);
  int status = 0;
  ::waitpid(pid, &status, 0);
  ::close(fds[0]);
  ASSERT_TRUE(WIFSIGNALED(status));

  Document back;
  WorkFiles again(AppPaths{home.path});
  ui::ScriptedDialogs d;
  ASSERT_TRUE(RecoverFromWorkFiles(back, again, d));
  EXPECT_TRUE(d.Messages().empty());  // no damage reported
  ASSERT_EQ(back.PointCount, 6);
  for (int i = 1; i <= 6; ++i) {
    EXPECT_NEAR(back.PointTable[i - 1].E, 1000 + (10 + i) * std::sin(0.1 * i), 1e-9) << i;
    EXPECT_NEAR(back.PointTable[i - 1].N, 2000 + (10 + i) * std::cos(0.1 * i), 1e-9) << i;
  }
  EXPECT_EQ(Lines(".OBS").size(), 6u);
}

}  // namespace
}  // namespace tavik
