// tavik-tool gnss as a separate process on captures written here: the rows it prints,
// the GOBS log it writes, files with LF alone, the listen-only port, and refusals. The
// grid positions are checked against PROJ's own transverse Mercator (the proj program).
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "core/temp_home.h"
#include "geo/datum.h"
#include "tests/tools/tool_run.h"

using tavik::testing::ReadBytes;
using tavik::testing::RunTool;
using tavik::testing::ToolRun;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

const std::string kGga = "$GNGGA,023045.00,2407.4073,N,12059.2593,E,4,12,0.9,100.123,M,17.0,M,1.0,0000*5C";
const std::string kBest =
    "#BESTPOSA,COM1,0,72.5,FINESTEERING,2209,502834.000,02000020,cdba,16248;SOL_COMPUTED,NARROW_FLOAT,"
    "23.5,119.55,30.25,17.0,WGS84,0.0123,0.0234,0.0346,\"0\",1.0,0.0,14,12,12,11,0,06,00,03*6e";
const std::string kPrtka = "$PRTKA,1419,336208.5,x,14,x,11,24.5,121.25,88.5,x,x,0.012,0.034,0.056,x,0,4,x,x*1F";
const std::string kGsv = "$GPGSV,1,1,01,01,90,000,45*70";

class GnssToolTest : public ::testing::Test {
 protected:
  TempHome home;

  ToolRun Tool(const std::string& args) { return RunTool(home.path, "gnss " + args); }
  std::string File(const std::string& name, const std::string& bytes) {
    WriteBytes(home.path / name, bytes);
    return "'" + (home.path / name).string() + "'";
  }
};

std::vector<std::vector<std::string>> Rows(const std::string& csv) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream in(csv);
  for (std::string line; std::getline(in, line);) {
    rows.emplace_back();
    std::istringstream f(line);
    for (std::string field; std::getline(f, field, ',');) rows.back().push_back(field);
  }
  return rows;
}

// E and N by the proj program, on the datum's ellipsoid and the given central meridian.
void Proj(const char* datumName, int meridian, double lon, double lat, double& e, double& n) {
  tavik::GpsDatumSettings datum;
  ASSERT_TRUE(tavik::SetDatumByName(datum, datumName));
  char cmd[300];
  std::snprintf(cmd, sizeof cmd,
                "echo '%.12f %.12f' | proj +proj=tmerc +lat_0=0 +lon_0=%d +k=0.9999 +x_0=250000 +y_0=0 +a=%.17g "
                "+b=%.17g -f %%.6f",
                lon, lat, meridian, datum.EllipsoidA, datum.EllipsoidB);
  FILE* p = popen(cmd, "r");
  ASSERT_NE(p, nullptr);
  ASSERT_EQ(std::fscanf(p, "%lf %lf", &e, &n), 2);
  pclose(p);
}

TEST_F(GnssToolTest, RowsPerPositionWithThePanelsOfThatMoment) {
  // Garbage, a sentence without a position, a GSV and a line cut off at the end.
  std::string crlf = "garbage\r\n" + kGga + "\r\n" + kGsv + "\r\n" + kBest + "\r\n" + kPrtka + "\r\n" +
                     "$GPGGA,023046.00,,,,,0,00,99.99,,,,,,*48\r\n" + kGga.substr(0, 30);
  std::string lfOnly = crlf;
  for (std::size_t i; (i = lfOnly.find("\r\n")) != std::string::npos;) lfOnly.replace(i, 2, "\n");

  ToolRun r = Tool("--gobs '" + (home.path / "out.GOBS").string() + "' " + File("cap.log", crlf));
  ASSERT_EQ(r.exit, 0) << r.err;
  auto rows = Rows(r.out);
  ASSERT_EQ(rows.size(), 4u) << r.out;
  EXPECT_EQ(rows[0], (std::vector<std::string>{"seconds", "lat", "lon", "height", "E", "N", "fix", "solution",
                                                "satellites", "label11", "sigmaE", "sigmaN", "sigmaH"}));
  // GGA: the degrees it gave, its own fix text, HDOP in the second counter.
  EXPECT_EQ(std::strtod(rows[1][0].c_str(), nullptr), 23045);
  EXPECT_EQ(std::strtod(rows[1][1].c_str(), nullptr), 24 + 7.4073 / 60);
  EXPECT_EQ(std::strtod(rows[1][2].c_str(), nullptr), 120 + 59.2593 / 60);
  EXPECT_EQ((std::vector<std::string>(rows[1].begin() + 6, rows[1].begin() + 10)),
            (std::vector<std::string>{"RTK-fix", "", "12", "0.9"}));
  // BESTPOSA in Penghu, then PRTKA: every number reads back exactly.
  EXPECT_EQ(rows[2][0], "502834");
  EXPECT_EQ((std::vector<std::string>(rows[2].begin() + 6, rows[2].end())),
            (std::vector<std::string>{"佳浮點解", "解算完成", "14", "11", "0.0234", "0.0123", "0.0346"}));
  EXPECT_EQ((std::vector<std::string>{rows[3][0], rows[3][1], rows[3][2], rows[3][3], rows[3][6], rows[3][7],
                                      rows[3][10], rows[3][11], rows[3][12]}),
            (std::vector<std::string>{"336208.5", "24.5", "121.25", "88.5", "RT2", "最佳解", "0.034", "0.012", "0.056"}));
  double e = 0, n = 0;
  Proj("TWD97", 121, 121.25, 24.5, e, n);
  EXPECT_NEAR(std::strtod(rows[3][4].c_str(), nullptr), e, 0.002);
  EXPECT_NEAR(std::strtod(rows[3][5].c_str(), nullptr), n, 0.002);

  // The GOBS log: accepted sentences whole, CR LF, the GN head rewritten.
  EXPECT_EQ(ReadBytes(home.path / "out.GOBS"),
            "$GP" + kGga.substr(3) + "\r\n" + kGsv + "\r\n" + kBest + "\r\n" + kPrtka + "\r\n");

  // LF alone ends lines in a file (here read from standard input).
  EXPECT_EQ(Tool("- <" + File("lf.log", lfOnly)).out, r.out);

  // Another datum and meridian move the grid as PROJ does.
  ToolRun other = Tool("--datum TWD67 --meridian 119 " + File("cap2.log", crlf));
  Proj("TWD67", 119, 119.55, 23.5, e, n);
  auto rows2 = Rows(other.out);
  ASSERT_EQ(rows2.size(), 4u);
  EXPECT_NEAR(std::strtod(rows2[2][4].c_str(), nullptr), e, 0.002);
  EXPECT_NEAR(std::strtod(rows2[2][5].c_str(), nullptr), n, 0.002);
}

TEST_F(GnssToolTest, ListenOnlyKindsAndRefusals) {
  // 單型GPS listens on MSComm_Axis3, where only $GPGGA gives positions.
  std::string cap = "DT 01234\r\n$GP" + kGga.substr(3) + "\r\n" + kBest + "\r\n" + kGga + "\r\n";
  ToolRun axis3 = Tool("--kind 單型GPS " + File("axis3.log", cap));
  EXPECT_EQ(Rows(axis3.out).size(), 2u) << axis3.out;

  for (const std::string& unreadable : {(home.path / "none.log").string(), home.path.string()}) {
    ToolRun r = Tool("'" + unreadable + "'");
    EXPECT_EQ(r.exit, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  }
  EXPECT_EQ(Tool("--gobs '" + (home.path / "no" / "such.GOBS").string() + "' " + File("c.log", kGga)).exit, 1);
  for (const char* args : {"", "--kind DL-5 x", "--datum X x", "--meridian 120 x", "a b", "--gobs"})
    EXPECT_EQ(Tool(args).exit, 2) << args;
}

}  // namespace
