// tavik-tool g2xy and xy2g, run as a user runs them: arguments, standard input,
// standard output, standard error and the exit code.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "geo/grid.h"

namespace tavik {
namespace {

struct Result {
  int code = -1;
  std::string out, err;
};

std::string ReadAll(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

Result Tool(const std::string& args, const std::string& input = "") {
  // Named by process, as ctest runs the cases of this file side by side.
  const std::string dir = ::testing::TempDir() + "geo_tool_" + std::to_string(::getpid()) + "_";
  const std::string in = dir + "in.txt", out = dir + "out.txt", err = dir + "err.txt";
  std::ofstream(in, std::ios::binary) << input;
  const std::string cmd =
      std::string(TAVIK_BIN_DIR) + "/tools/tavik-tool " + args + " <" + in + " >" + out + " 2>" + err;
  Result r;
  const int status = std::system(cmd.c_str());
  r.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  r.out = ReadAll(out);
  r.err = ReadAll(err);
  for (const std::string* f : {&in, &out, &err}) std::remove(f->c_str());
  return r;
}

std::string Grid(const GpsDatumSettings& s, double lon, double lat) {
  double e = 0, n = 0;
  g2xy(s, lon, lat, e, n);
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.4f %.4f", e, n);
  return buf;
}

TEST(ToolG2xy, OnePairWithOptions) {
  GpsDatumSettings twd97, twd67, penghu;
  SetDatumTWD67(twd67);
  penghu.CentralMeridian = 119;
  struct Case {
    const char* args;
    const GpsDatumSettings* datum;
    double lon, lat;
  } cases[] = {
      {"g2xy 121.5 23.5", &twd97, 121.5, 23.5},
      {"g2xy --datum TWD67 121.5 23.5", &twd67, 121.5, 23.5},
      {"g2xy 119.6 23.6 --meridian 119", &penghu, 119.6, 23.6},
      {"g2xy --datum WGS84 120.2 22.6", &twd97, 120.2, 22.6},
  };
  for (const auto& c : cases) {
    const Result r = Tool(c.args);
    EXPECT_EQ(0, r.code) << c.args;
    EXPECT_EQ(Grid(*c.datum, c.lon, c.lat) + "\n", r.out) << c.args;
    EXPECT_EQ("", r.err);
  }
}

TEST(ToolXy2g, RoundTripAndNineDecimals) {
  GpsDatumSettings s;
  double e = 0, n = 0;
  g2xy(s, 121.25, 24.75, e, n);
  char arg[96];
  std::snprintf(arg, sizeof arg, "xy2g %.6f %.6f", e, n);
  const Result r = Tool(arg);
  ASSERT_EQ(0, r.code) << r.err;
  double lon = 0, lat = 0;
  ASSERT_EQ(2, std::sscanf(r.out.c_str(), "%lf %lf", &lon, &lat));
  EXPECT_NEAR(121.25, lon, 1e-8);
  EXPECT_NEAR(24.75, lat, 1e-8);
  // Nine decimals on each.
  EXPECT_EQ(r.out.find('.') + 10, r.out.find(' '));
}

TEST(ToolG2xy, PairsFromStandardInputLineForLine) {
  GpsDatumSettings s;
  const Result r = Tool("g2xy", "121 24\n\n120.5,23\nnot a pair\n121.2\t25.1\r\n");
  EXPECT_EQ(1, r.code);  // one line could not be used
  EXPECT_EQ(Grid(s, 121, 24) + "\n\n" + Grid(s, 120.5, 23) + "\n\n" + Grid(s, 121.2, 25.1) + "\n", r.out);
  EXPECT_NE(std::string::npos, r.err.find("line 4")) << r.err;

  const Result clean = Tool("g2xy --datum TWD97", "121 24\n121.5 24.5\n");
  EXPECT_EQ(0, clean.code);
  EXPECT_EQ(Grid(s, 121, 24) + "\n" + Grid(s, 121.5, 24.5) + "\n", clean.out);
}

TEST(ToolXy2g, UnconvertiblePositions) {
  const Result one = Tool("xy2g 0 0");
  EXPECT_EQ(1, one.code);
  EXPECT_EQ("", one.out);
  EXPECT_NE(std::string::npos, one.err.find("無法轉成經緯度")) << one.err;

  const Result many = Tool("xy2g", "250000 2650000\n5 5\n");
  EXPECT_EQ(1, many.code);
  ASSERT_EQ(2, std::count(many.out.begin(), many.out.end(), '\n'));
  EXPECT_EQ('\n', many.out.back());
  EXPECT_EQ('\n', many.out[many.out.size() - 2]);  // the failed second line answers empty
  EXPECT_NE(std::string::npos, many.err.find("line 2"));
}

TEST(ToolG2xy, UsageErrors) {
  for (const char* args : {"g2xy --datum NAD27 121 24", "g2xy --meridian 120 121 24", "g2xy 121", "xy2g --datum"}) {
    const Result r = Tool(args);
    EXPECT_EQ(2, r.code) << args;
    EXPECT_FALSE(r.err.empty()) << args;
    EXPECT_EQ("", r.out);
  }
}

}  // namespace
}  // namespace tavik
