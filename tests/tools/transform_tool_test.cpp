// tavik-tool transform, run as a separate process on a document saved by the program's
// own save: the written document checked against coordinates worked out here, the
// printed residuals, the refusals, and the input left as it was.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "core/text.h"
#include "tests/tools/tool_run.h"
#include "platform/scripted/scripted.h"

using namespace tavik;
using tavik::testing::Quoted;
using tavik::testing::ReadBytes;
using tavik::testing::RunTool;
using tavik::testing::ToolRun;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

class TransformToolTest : public ::testing::Test {
 protected:
  TempHome home;

  ToolRun Tool(const std::string& args) { return RunTool(home.path, "transform " + args); }
  // A reference point, then three surveyed points and a line on the TWD97 grid.
  std::string Survey() {
    WorkFiles wf(AppPaths{home.path});
    View view;
    Document d;
    SetDocumentName(d, (home.path / "現況").string());
    AddPoint(d, view, wf, 250000, 2650000, 5);
    d.ReferenceMapLoaded = kTrue, d.ReferencePointCount = 1;
    AddPoint(d, view, wf, 250100, 2650000, 10);
    AddPoint(d, view, wf, 250100, 2650200, 11);
    AddPoint(d, view, wf, 249950, 2650150, NoHeight);
    AddEntity(d, view, wf, 301, KindLine, 250100, 2650000, 10, 250100, 2650200, 11, 0, 0, 0, "");
    ui::ScriptedDialogs dialogs;
    EXPECT_TRUE(SaveDocument(d, wf, dialogs));
    return d.SpcPath;
  }
  Document Load(const std::string& path) {
    Document d;
    SetDocumentName(d, path.substr(0, path.size() - 4));
    d.SpcPath = path;
    ui::ScriptedDialogs dialogs;
    EXPECT_TRUE(LoadDocument(d, dialogs));
    return d;
  }
};

TEST_F(TransformToolTest, ShiftRotateAndFitWriteTheMovedSurvey) {
  const std::string in = Survey(), out = (home.path / "out.SPC").string();
  const std::string before = ReadBytes(in);
  const double c = std::cos(30 * 3.14159265358979 / 180), s = std::sin(30 * 3.14159265358979 / 180);
  struct Case {
    std::string args;
    double A, B, C, D, F, G, DH;
  } cases[] = {
      {"--shift 12.5,-3.25,1.5", 1, 0, 12.5, 0, 1, -3.25, 1.5},
      // Clockwise about (250000, 2650000): E' = E0 + dE c + dN s, N' = N0 - dE s + dN c.
      {"--rotate 30 --about 250000,2650000", c, s, 250000 - 250000 * c - 2650000 * s, -s, c,
       2650000 + 250000 * s - 2650000 * c, 0},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.args);
    const ToolRun r = Tool(Quoted(in) + " " + Quoted(out) + " " + k.args);
    ASSERT_EQ(r.exit, 0) << r.err;
    EXPECT_NE(r.out.find("\nA "), std::string::npos) << r.out;
    const Document d = Load(out);
    ASSERT_EQ(d.PointCount, 4);
    EXPECT_EQ(d.PointTable[0].E, 250000);  // the reference point stays
    EXPECT_EQ(d.PointTable[0].H, 5);
    const double E = 250100, N = 2650200;
    EXPECT_NEAR(d.PointTable[2].E, k.A * E + k.B * N + k.C, 1e-6);
    EXPECT_NEAR(d.PointTable[2].N, k.D * E + k.F * N + k.G, 1e-6);
    EXPECT_NEAR(d.EntityTable[0].Y[1], d.PointTable[2].N, 1e-9);
    EXPECT_EQ(d.PointTable[2].H, 11 + k.DH);
    EXPECT_EQ(d.PointTable[3].H, NoHeight);
  }

  // A fit by point Numbers and by coordinates: a shift of 1, 2 with 3 cm on one target.
  WriteBytes(home.path / "pairs.csv",
             text::ToCp950("點號,E,N\n2,250101,2650002\n3,250101,2650202\n250000,2650000,250001.03,2650002,控1\n"));
  const ToolRun r = Tool(Quoted(in) + " " + Quoted(out) + " --fit " + Quoted((home.path / "pairs.csv").string()));
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_NE(r.out.find("相似轉換"), std::string::npos);
  EXPECT_NE(r.out.find("控1"), std::string::npos);
  EXPECT_NE(r.out.find("*最大"), std::string::npos);
  EXPECT_NE(r.out.find("RMS 0.01"), std::string::npos) << r.out;
  EXPECT_EQ(ReadBytes(in), before);
}

TEST_F(TransformToolTest, RefusalsAndUsage) {
  const std::string in = Survey(), out = (home.path / "out.SPC").string();
  WriteBytes(home.path / "line.csv", "0,0,10,10\n100,0,110,10\n200,0,210,10\n");
  WriteBytes(home.path / "one.csv", "0,0,10,10\n");
  WriteBytes(home.path / "nine.csv", "9,1,1\n2,5,5\n");
  struct Case {
    std::string args;
    int exit;
    std::string err;
  } cases[] = {
      {"--fit " + Quoted((home.path / "line.csv").string()) + " --model affine", 1, "點位都在一直線上,無法以仿射轉換計算\n"},
      {"--fit " + Quoted((home.path / "one.csv").string()), 1, "至少需要兩對點位才能計算\n"},
      {"--fit " + Quoted((home.path / "nine.csv").string()), 1, ""},
      {"--shift 1", 2, ""},
      {"--rotate 10", 2, ""},
      {"--shift 1,1 --rotate 2 --about 0,0", 2, ""},
      {"--fit x.csv --model helmert", 2, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args);
    std::filesystem::remove(out);
    const ToolRun r = Tool(Quoted(in) + " " + Quoted(out) + " " + c.args);
    EXPECT_EQ(r.exit, c.exit) << r.err;
    if (!c.err.empty()) {
      EXPECT_EQ(r.err, c.err);
    }
    EXPECT_FALSE(std::filesystem::exists(out));
  }
  EXPECT_EQ(Tool(Quoted(in) + " " + Quoted(in) + " --shift 1,1").exit, 2);
}

}  // namespace
