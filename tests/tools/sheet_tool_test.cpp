// tavik-tool sheet: the field books of a document whose logs were written by the
// program's own log writers, read back by openpyxl. The reduced coordinates are
// checked against the trigonometry worked out here, the names of the cadastral book
// against its shots, the layout of the symbol folder against the columns found, and a
// read-only target is refused and left as it was.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "core/docfile.h"
#include "core/temp_home.h"
#include "core/text.h"
#include "export/peer.h"
#include "platform/scripted/scripted.h"
#include "procedures/observation_log.h"
#include "tools/tool_run.h"

using namespace tavik;
using tavik::testing::Quoted;
using tavik::testing::RunTool;

namespace {

constexpr double Deg = 3.14159265358979 / 180;

class SheetToolTest : public ::testing::Test {
 protected:
  tavik::testing::TempHome home;
  Document d;

  void SetUp() override {
    ::setenv("TAVIK_HOME", (home.path / "data").c_str(), 1);
    SetDocumentName(d, (home.path / "field").string());
    Entity target;  // a stake-out target, and the stake recorded where it was reached
    target.Number = ++d.EntityCount, target.Code = 131, target.Kind = KindPoint, target.Name = "T1";
    target.X[0] = 1050, target.Y[0] = 2050;
    d.EntityTable.push_back(target);
    target.Number = ++d.EntityCount, target.X[0] = 1050.012, target.Y[0] = 2049.995;
    d.EntityTable.push_back(target);
    d.PointTable.push_back({++d.PointCount, 1000, 2000, 50, kFalse});
    ui::ScriptedDialogs dialogs;
    ASSERT_TRUE(WriteDocumentFile(d, dialogs));
  }
  void Log(const std::string& path, const std::vector<std::string>& lines) {
    for (const auto& l : lines) ASSERT_TRUE(obslog::AppendLine(path, l));
  }
  // openpyxl's view of the first sheet: its name, the frozen cell, then each row as
  // tab-separated values, with the number format of each number after a '|'.
  std::string Read(const std::string& file) {
    return tavik::testing::RunPeer(
        "/usr/bin/python3 -c 'import sys, openpyxl\n"
        "ws = openpyxl.load_workbook(sys.argv[1]).worksheets[0]\n"
        "print(ws.title, ws.freeze_panes)\n"
        "for row in ws.iter_rows(min_row=3):\n"
        "  print(\"\\t\".join(\"\" if c.value is None else (repr(c.value) + \"|\" + c.number_format) "
        "if isinstance(c.value, (int, float)) else str(c.value) for c in row))\n"
        "' " + Quoted(file) + " 2>&1");
  }
  static std::vector<std::vector<std::string>> Rows(const std::string& text) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
      std::vector<std::string> f(1);
      for (char c : line) {
        if (c == '\t') f.emplace_back();
        else f.back().push_back(c);
      }
      rows.push_back(f);
    }
    return rows;
  }
  static double Value(const std::string& cell) { return std::stod(cell.substr(0, cell.find('|'))); }
};

TEST_F(SheetToolTest, ObservationBookReducedAndNamed) {
  const std::string t = "2026/11/23 09:00:00";
  // Station A1, backsight A2 due north read at 0; then A2 back on A1 read at 180.
  Log(d.ObsPath, {obslog::SetupMarkLine(t), obslog::StationLine("A1", 1000, 2000, 50, 1.5),
                  obslog::BacksightLine("A2", 1000, 2100, 51, 0, 900000, 100),
                  obslog::ObservationLine(900000, 900000, 100, 1.5, t),      // due east, level
                  obslog::ObservationLine(450000, 850000, 50, -99, t),       // no height wanted
                  obslog::SetupMarkLine(t), obslog::StationLine("A2", 1000, 2100, 51, 1.4),
                  obslog::BacksightLine("A1", 1000, 2000, 50, 1800000, 900000, 100),
                  obslog::ObservationLine(2700000, 2700000, 10, 1.4, t),     // face two: east of A2
                  "123,45"});                                                 // a record cut short
  Log(d.MacPath, {obslog::MacStationLine("A1", "A2"), obslog::MacShotLine("界樁1", 900000, 900000, 100),
                  obslog::MacStationLine("A2", "A1")});
  const std::string out = (home.path / "obs.xlsx").string();
  const auto r = RunTool(home.path, "sheet " + Quoted(d.SpcPath) + " " + Quoted(out));
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_NE(r.out.find("共 5 筆"), std::string::npos) << r.out;
  EXPECT_NE(r.err.find("1 行不是完整的紀錄"), std::string::npos) << r.err;

  const std::string text = Read(out);
  ASSERT_EQ(text.rfind("觀測手簿 A4\n", 0), 0u) << text;
  const auto rows = Rows(text.substr(text.find('\n') + 1));
  ASSERT_EQ(rows.size(), 6u) << text;
  const std::vector<std::string> head = {"站次", "測站", "後視", "點名", "水平度盤讀數", "水平角", "天頂角", "斜距(m)",
                                         "平距(m)", "儀器高(m)", "覘標高(m)", "橫座標E(m)", "縱座標N(m)", "高程H(m)",
                                         "方位角", "觀測時間"};
  EXPECT_EQ(rows[0], head);
  struct Want {
    std::string point, turned;
    double E, N;
    std::string H;  // "" when the book leaves it empty
  } want[] = {
      {"A2(後視)", "0-00-00.00", 1000, 2100, "51"},
      {"界樁1", "90-00-00.00", 1100, 2000, "50"},
      {"", "45-00-00.00", 1000 + 50 * std::cos(5 * Deg) * std::sin(45 * Deg), 2000 + 50 * std::cos(5 * Deg) * std::cos(45 * Deg), ""},
      {"A1(後視)", "0-00-00.00", 1000, 2000, "50"},
      {"", "270-00-00.00", 1010, 2100.0001, "51"},  // N equal to the station's is nudged, as stored
  };
  for (std::size_t i = 0; i < 5; ++i) {
    SCOPED_TRACE(i);
    const auto& row = rows[i + 1];
    ASSERT_EQ(row.size(), head.size());
    EXPECT_EQ(row[3], want[i].point);
    EXPECT_EQ(row[5], want[i].turned);
    EXPECT_NEAR(Value(row[11]), want[i].E, 1e-6);
    EXPECT_NEAR(Value(row[12]), want[i].N, 1e-6);
    EXPECT_EQ(row[11].substr(row[11].find('|')), "|0.000");
    if (want[i].H.empty()) EXPECT_EQ(row[13], "");
    else EXPECT_NEAR(Value(row[13]), std::stod(want[i].H), 1e-9);
  }
  EXPECT_EQ(rows[2][10], "1.5|0.00");
}

TEST_F(SheetToolTest, StakeBookLayoutFromTheSymbolFolder) {
  obslog::StakeRecord s;
  s.TargetName = "T1", s.E = 1050.012, s.N = 2049.995, s.H = 50.2, s.StationName = "A1", s.StationE = 1000,
  s.StationN = 2000, s.StationH = 50, s.InstrumentHeight = 1.5, s.BacksightName = "A2", s.BacksightE = 1000,
  s.BacksightN = 2100, s.HzRaw = 450000, s.VRaw = 900000, s.Slope = 70.72, s.TargetHeight = 1.5;
  Log(d.StkPath, {obslog::StakeLine(s)});
  Log(d.GstkPath, {"G1,1100.000,2100.000,51.000,0.01,0.012,0.02,2026/11/23,10:00:00,0.005,-0.004"});
  // The surveyor's own layout: three columns, one renamed and narrowed, one unknown key.
  const auto symb = home.path / "data" / "symb";
  std::filesystem::create_directories(symb);
  tavik::testing::WriteBytes(symb / "999.dxf", "  0\r\nBLOCK\r\n");
  tavik::testing::WriteBytes(symb / "PoleBook0.tpl", text::ToCp950("標題,今日放樣\r\n工作表,放樣\r\nname,樁\r\n"
                                                                   "colour,顏色\r\ndist,偏差(cm),7\r\nsource,方式\r\n"));
  const std::string out = (home.path / "stake.xlsx").string();
  const auto r = RunTool(home.path, "sheet " + Quoted(d.SpcPath) + " " + Quoted(out) + " --book stake");
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_NE(r.err.find("不認得的欄位 [colour]"), std::string::npos) << r.err;
  const std::string text = Read(out);
  ASSERT_EQ(text.rfind("放樣 A4\n", 0), 0u) << text;
  const auto rows = Rows(text.substr(text.find('\n') + 1));
  ASSERT_EQ(rows.size(), 3u) << text;
  EXPECT_EQ(rows[0], (std::vector<std::string>{"樁", "偏差(cm)", "方式"}));
  EXPECT_EQ(rows[1][0], "T1");
  EXPECT_NEAR(Value(rows[1][1]), std::hypot(0.012, 0.005), 1e-9);  // from the target, not the stake itself
  EXPECT_EQ(rows[1][2], "全站儀");
  EXPECT_NEAR(Value(rows[2][1]), std::hypot(0.005, 0.004), 1e-9);
  EXPECT_EQ(rows[2][2], "GPS");
}

TEST_F(SheetToolTest, RefusalsLeaveTheTargetAsItWas) {
  const std::string out = (home.path / "old.xlsx").string();
  tavik::testing::WriteBytes(out, "old");
  // No observations yet.
  auto r = RunTool(home.path, "sheet " + Quoted(d.SpcPath) + " " + Quoted(out));
  EXPECT_EQ(r.exit, 1);
  EXPECT_NE(r.err.find("沒有全站儀的觀測紀錄"), std::string::npos) << r.err;
  // A read-only workbook.
  Log(d.StkPath, {"T9,1.000,2.000,3.000,A1,0.000,0.000,0.000, 1.5 ,A2,0.000,1.000,0-00-00.00,90-00-00,1.000, 1.5 "});
  ASSERT_EQ(::chmod(out.c_str(), 0444), 0);
  r = RunTool(home.path, "sheet " + Quoted(d.SpcPath) + " " + Quoted(out) + " --book stake");
  EXPECT_EQ(r.exit, 1);
  EXPECT_NE(r.err.find("唯讀"), std::string::npos) << r.err;
  EXPECT_EQ(tavik::testing::ReadBytes(out), "old");
  EXPECT_EQ(RunTool(home.path, "sheet " + Quoted(d.SpcPath) + " x.xlsx --book gps").exit, 2);
}

}  // namespace
