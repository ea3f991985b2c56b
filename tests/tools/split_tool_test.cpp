// tavik-tool split, run as a separate process on documents saved by the program's own
// save: the printed cut checked against an area computed here from its stake
// coordinates, the refusals, and the files it writes.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cmath>
#include <cstdlib>
#include <sstream>
#include <string>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "tests/tools/tool_run.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::RunTool;
using tavik::testing::ToolRun;
using tavik::testing::TempHome;

namespace {

// The area of the 100 m square west of the line through the two points (the square's
// west edge at E 1000), from the line's crossings with the north and south sides.
double WestArea(double E1, double N1, double E2, double N2) {
  auto atN = [&](double N) { return E1 + (E2 - E1) * (N - N1) / (N2 - N1); };
  return (atN(2000) - 1000 + atN(2100) - 1000) / 2 * 100;
}

class SplitToolTest : public ::testing::Test {
 protected:
  TempHome home;

  ToolRun Tool(const std::string& args) { return RunTool(home.path, "split " + args); }
  // A reference map of one line and two points, then the square traced as the parcel,
  // with a point inside it for mode 7. Mode 7 starts its turn along the reference line
  // (the entity numbered before the edge found), north, so only a piece larger than
  // the 4000 m² west of that start is found.
  std::string Parcel(bool reference = true) {
    const std::string name = reference ? "地籍" : "無參考圖";
    WorkFiles wf(AppPaths{home.path});
    View view;
    Document d;
    SetDocumentName(d, (home.path / name).string());
    AddPoint(d, view, wf, 990, 1950, 0);    // 1
    AddPoint(d, view, wf, 1030, 2150, 0);   // 2
    AddEntity(d, view, wf, 1, KindLine, 900, 2000, 0, 900, 2100, 0, 0, 0, 0, "");  // 1: north-south
    d.ReferenceMapLoaded = reference ? kTrue : kFalse;
    d.ReferencePointCount = 2, d.ReferenceEntityCount = 1;
    const double c[5][2] = {{1000, 2000}, {1100, 2000}, {1100, 2100}, {1000, 2100}, {1000, 2000}};
    for (int i = 0; i < 4; ++i)
      AddEntity(d, view, wf, 266, KindLine, c[i][0], c[i][1], 0, c[i + 1][0], c[i + 1][1], 0, 0, 0, 0, "");
    AddPoint(d, view, wf, 1040, 2010, 0);  // 3, above the south edge
    d.SplitStakeCount = 4;
    ui::ScriptedDialogs dialogs;
    EXPECT_TRUE(SaveDocument(d, wf, dialogs));
    return "'" + d.SpcPath + "'";
  }
  static std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string l; std::getline(in, l);) lines.push_back(l);
    return lines;
  }
  // The four values of a line "A1 E N" and so on, read back.
  static std::vector<double> Values(const std::string& out) {
    std::vector<double> v;
    for (const auto& l : Lines(out)) {
      std::istringstream in(l.substr(l.find(' ') + 1));
      for (std::string w; in >> w;) v.push_back(*num::ParseStrict(w));
    }
    return v;
  }
};

TEST_F(SplitToolTest, EveryModeGivesACutWhoseStakesEncloseTheArea) {
  const std::string doc = Parcel();
  struct Case {
    const char* args;
    double target;  // 0: the area is the result (mode 8)
  };
  const Case cases[] = {{"--mode 3 --area 2500", 2500},   {"--mode 4 --half", 5000},
                        {"--mode 5 --area 3000 --azimuth 10", 3000}, {"--mode 6 --area 1234.5 --line 1", 1234.5},
                        {"--mode 7 --area 5500 --point 3", 5500},  {"--mode 8 --points 1,2", 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    const ToolRun r = Tool(doc + " " + c.args);
    ASSERT_EQ(r.exit, 0) << r.err;
    const auto lines = Lines(r.out);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].substr(0, 3), "A1 ");
    EXPECT_EQ(lines[3].substr(0, 8), "azimuth ");
    const auto v = Values(r.out);  // E1 N1 E2 N2 area azimuth
    EXPECT_EQ(num::RoundTrip(v[4]), lines[2].substr(5));
    const double west = WestArea(v[0], v[1], v[2], v[3]);
    const double piece = std::string(c.args).find("--mode 4") != std::string::npos ? 10000 - west : west;
    EXPECT_NEAR(piece, v[4], c.target ? 0.05 : 1e-6);
    if (c.target) {
      EXPECT_GT(v[4], c.target);
      EXPECT_LT(v[4] - c.target, 0.05);
    }
  }
}

TEST_F(SplitToolTest, RefusalsAreTheDialogsOwnMessages) {
  const std::string doc = Parcel();
  struct Case {
    std::string args;
    int exit;
    std::string err;  // the whole of standard error, or its start for usage errors
  };
  const Case cases[] = {
      {Parcel(false) + " --mode 3 --area 10", 1, "請先將地籍圖讀入成參考圖\n"},
      {doc + " --mode 3 --area 十坪", 1, "分割面積不可大於總面積,也不可為0\n"},
      {doc + " --mode 5 --area 10", 1, "請輸入方位角\n"},
      {doc + " --mode 6 --area 10 --line 77", 1, "沒有編號 77 的線\n"},
      {doc + " --mode 8 --points 1,9", 1, "沒有編號 9 的點\n"},
      {doc + " --area 10", 2, "tavik-tool split: --mode is required"},
      {doc + " --mode 2 --area 1 --half", 2, "tavik-tool split:"},
      {doc + " --mode 3 --area 1 --apply " + doc, 2, "tavik-tool split:"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    const ToolRun r = Tool(c.args);
    EXPECT_EQ(r.exit, c.exit);
    EXPECT_EQ(c.exit == 1 ? r.err : r.err.substr(0, c.err.size()), c.err);
    EXPECT_EQ(r.out, "");
  }
}

TEST_F(SplitToolTest, StakesAndApplyLeaveTheInputAsItWas) {
  const std::string doc = Parcel();
  const std::string before = ReadBytes(home.path / "地籍.SPC");
  const auto stakes = home.path / "樁位.TXT";
  const auto out = home.path / "分割後.SPC";
  const ToolRun r = Tool(doc + " --mode 3 --area 2500 --stakes '" + stakes.string() + "' --apply '" + out.string() + "'");
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_EQ(ReadBytes(home.path / "地籍.SPC"), before);
  const auto v = Values(r.out);
  const std::string text = ReadBytes(stakes);
  EXPECT_EQ(text.substr(0, text.find('\n') + 1),
            "A1," + num::Format(v[0], " ########.000") + "," + num::Format(v[1], " ########.000") + "\r\n");
  EXPECT_NE(text.find("B4, 1000.000, 2100.000\r\n"), std::string::npos);

  Document d;
  d.SpcPath = out.string();
  ui::ScriptedDialogs dialogs;
  ASSERT_TRUE(LoadDocument(d, dialogs));
  EXPECT_EQ(d.PointCount, 3 + 2);
  EXPECT_EQ(d.EntityCount, 1 + 4 + 4 + 2);
  EXPECT_EQ(d.PointTable[3].E, v[0]);
  EXPECT_EQ(d.SplitLine[0], v[0]);  // the committed cut is found again ...
  EXPECT_EQ(d.SplitAreaValue, 0);   // ... but not its area label
}

}  // namespace
