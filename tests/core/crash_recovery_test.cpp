// A real process adding points and entities is killed with SIGKILL part-way; recovery
// must bring back every record it had reported as added.
#include <gtest/gtest.h>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <string>

#include "core/workfiles.h"
#include "journal_values.h"
#include "platform/scripted/scripted.h"
#include "temp_home.h"

extern char** environ;

using namespace tavik;
using namespace tavik::testing;

namespace {

struct Reported {
  int points = 0, entities = 0;
};

// Starts the writer, lets it report `killAfter` lines, kills it, and collects every line
// it managed to write before it died.
Reported RunAndKill(const std::string& home, int killAfter) {
  int fds[2];
  EXPECT_EQ(::pipe(fds), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, fds[0]);
  std::string exe = std::string(TAVIK_BIN_DIR) + "/tests/core/journal_writer";
  std::string count = "1000000";
  char* argv[] = {exe.data(), const_cast<char*>(home.c_str()), count.data(), nullptr};
  pid_t pid = -1;
  EXPECT_EQ(posix_spawn(&pid, exe.c_str(), &actions, nullptr, argv, environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  ::close(fds[1]);

  Reported r;
  std::string pending;
  int lines = 0;
  bool killed = false;
  char buf[4096];
  for (;;) {
    ssize_t n = ::read(fds[0], buf, sizeof buf);
    if (n <= 0) break;
    pending.append(buf, static_cast<std::size_t>(n));
    std::size_t nl;
    while ((nl = pending.find('\n')) != std::string::npos) {
      std::string line = pending.substr(0, nl);
      pending.erase(0, nl + 1);
      if (line[0] == 'P') r.points = std::stoi(line.substr(2));
      if (line[0] == 'S') r.entities = std::stoi(line.substr(2));
      if (++lines == killAfter && !killed) {
        ::kill(pid, SIGKILL);
        killed = true;
      }
    }
  }
  ::close(fds[0]);
  int status = 0;
  ::waitpid(pid, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the writer ended by itself";
  return r;
}

}  // namespace

TEST(CrashRecovery, EveryRecordReportedBeforeSigkillComesBack) {
  std::mt19937 rng(7);
  for (int round = 0; round < 3; ++round) {
    TempHome home;
    const int killAfter = 40 + static_cast<int>(rng() % 120);
    SCOPED_TRACE(killAfter);
    Reported rep = RunAndKill(home.path.string(), killAfter);
    ASSERT_GT(rep.points, 0);

    WorkFiles wf{AppPaths{home.path}};
    ASSERT_EQ(wf.Check(), WorkFiles::CrashState::Recoverable);
    ui::ScriptedDialogs dialogs;
    Document doc;
    ASSERT_TRUE(RecoverFromWorkFiles(doc, wf, dialogs));
    // The kill may fall between a record and its header: one record more than reported,
    // and then the count in the header is one behind.
    ASSERT_GE(doc.PointCount, rep.points);
    ASSERT_LE(doc.PointCount, rep.points + 1);
    ASSERT_GE(doc.EntityCount, rep.entities);
    ASSERT_LE(doc.EntityCount, rep.entities + 1);
    for (int i = 1; i <= rep.points; ++i) {
      const Point& p = doc.PointTable[i - 1];
      ASSERT_EQ(p.Number, i);
      ASSERT_EQ(p.E, PointE(i));
      ASSERT_EQ(p.N, PointN(i));
      ASSERT_EQ(p.H, PointH(i));
    }
    for (int n = 1; n <= rep.entities; ++n) {
      const Entity& e = doc.EntityTable[n - 1];
      ASSERT_EQ(e.Number, n);
      ASSERT_EQ(e.X[0], PointE(2 * n));
      ASSERT_EQ(e.Name, "點" + std::to_string(n));
    }
    EXPECT_EQ(doc.DocumentName, (home.path / "工作目錄" / "field").string());
    EXPECT_EQ(doc.MapChanged, kTrue);
    for (const auto& s : dialogs.shown) EXPECT_EQ(s.text, "建議放棄這個檔案!");
  }
}
