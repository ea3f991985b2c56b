// tavik-tool shoot and identify against tavik-sim on a pseudo-terminal, one family at a
// time: the decoded reading of a shot, the instrument's complaint as a refusal, and the
// family that answers the identification requests.
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>

#include "tool_run.h"

namespace tavik::testing {
namespace {

// tavik-sim as a child process; its first line is the device to open.
class SimChild {
 public:
  SimChild(const std::filesystem::path& folder, const std::vector<std::string>& args) {
    const std::string scene = (folder / "scene.txt").string();
    // One prism 100 m due east, level with the instrument.
    std::ofstream(scene) << "station 0 0 0 1.5\ntarget P 100 0 0 1.5\n";
    int out[2], in[2];
    if (pipe(out) != 0 || pipe(in) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      dup2(in[0], 0);
      dup2(out[1], 1);
      close(in[1]);
      close(out[0]);
      std::vector<std::string> all = {std::string(TAVIK_BIN_DIR) + "/tools/sim/tavik-sim", "--scene", scene, "--hold"};
      all.insert(all.end(), args.begin(), args.end());
      std::vector<char*> argv;
      for (std::string& a : all) argv.push_back(a.data());
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
    close(in[0]);
    close(out[1]);
    stdin_ = in[1];
    FILE* f = fdopen(out[0], "r");
    char line[256] = {};
    if (f && std::fgets(line, sizeof line, f)) path = std::string(line, std::strcspn(line, "\n"));
    if (f) std::fclose(f);
  }
  ~SimChild() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      waitpid(pid_, nullptr, 0);
    }
    if (stdin_ >= 0) close(stdin_);
  }
  std::string path;

 private:
  pid_t pid_ = -1;
  int stdin_ = -1;
};

TEST(FieldTool, ShootPrintsTheReadingOrTheInstrumentsMessage) {
  struct Case {
    const char* family;       // the simulator's
    std::string args;         // the tool's, after --port
    std::vector<std::string> simArgs;
    int exit;
    std::string out, err;
  } cases[] = {
      {"SET", "--family SET", {}, 0, "水平角 90-00-00\n天頂角 90-00-00\n斜距 100.000\n平距 100.000\n", ""},
      {"GTS211D", "--family GTS211D", {}, 0, "水平角 90-00-00\n天頂角 90-00-00\n斜距 100.000\n平距 100.000\n", ""},
      {"Leica", "--family Leica --settings 19200,n,8,1", {}, 0,
       "水平角 90-0-00\n天頂角 90-0-00\n斜距 100.000\n平距 100.000\n", ""},
      {"PENTAX", "--family PENTAX", {}, 0, "水平角 90-0-00\n天頂角 90-0-00\n斜距 100.000\n平距 100.000\n", ""},
      {"SET", "--family SET", {"--fault", "e200"}, 1, "", "被測物反射不良或找不到稜鏡.\n"},
      {"SET", "--family SET", {"--fault", "silence"}, 1, "", "儀器沒有回應\n"},
      // The face reminder comes first; the horizontal distance of a face-two zenith then fails.
      {"SET", "--family SET", {"--fault", "face2"}, 1, "", "平距值錯誤.\n"},
  };
  TempHome home;
  for (const Case& c : cases) {
    std::vector<std::string> simArgs = {"--family", c.family};
    simArgs.insert(simArgs.end(), c.simArgs.begin(), c.simArgs.end());
    SimChild sim(home.path, simArgs);
    ASSERT_FALSE(sim.path.empty()) << c.family;
    const ToolRun r = RunTool(home.path, "shoot --port " + Quoted(sim.path) + " " + c.args);
    EXPECT_EQ(r.exit, c.exit) << c.args << " " << r.err;
    EXPECT_EQ(r.out, c.out) << c.args;
    EXPECT_EQ(r.err, c.err) << c.args;
  }
  // Usage errors.
  for (const char* bad : {"shoot --port /dev/null", "shoot --family NIKON --port /dev/null",
                          "shoot --family SET --port /dev/null --settings fast"}) {
    EXPECT_EQ(RunTool(home.path, bad).exit, 2) << bad;
  }
  const ToolRun missing = RunTool(home.path, "shoot --family SET --port /nonexistent/tty");
  EXPECT_EQ(missing.exit, 1);
  EXPECT_EQ(missing.err.rfind("無法開啟 /nonexistent/tty: ", 0), 0u) << missing.err;
}

TEST(FieldTool, IdentifySaysWhichFamilyAnswers) {
  struct Case {
    std::vector<std::string> simArgs;
    std::string out;
  } cases[] = {
      {{"--family", "SET", "--model", "SRX5", "--serial", "42"}, "SET 儀器型號:SOKKIA SRX5  序號:42  軔體版本:1.10  測距版本:2.20\n"},
      {{"--family", "GTS22X"}, "GTS22X TOPCON\n"},
      {{"--family", "Leica"}, "Leica TCRA1103plus 10\n"},
      {{"--family", "PENTAX"}, "PENTAX\n"},
  };
  TempHome home;
  for (const Case& c : cases) {
    SimChild sim(home.path, c.simArgs);
    const ToolRun r = RunTool(home.path, "identify --port " + Quoted(sim.path));
    EXPECT_EQ(r.exit, 0) << c.simArgs[1] << r.err;
    EXPECT_EQ(r.out, c.out) << c.simArgs[1];
  }
  SimChild silent(home.path, {"--family", "Trimble3600"});
  const ToolRun none = RunTool(home.path, "identify --port " + Quoted(silent.path));
  EXPECT_EQ(none.exit, 1);
  EXPECT_EQ(none.err, "沒有儀器回應\n");
}

}  // namespace
}  // namespace tavik::testing
