// tavik-tool profile and sections on a saved document whose ground is a plane: the
// drawing read by ezdxf (every level label equals the plane's height at its chainage,
// every stretch of the ground line has the plane's slope times the exaggeration) and
// the section file read back (each offset put back on the map lies on the plane), and
// the refusals, which write nothing.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/temp_home.h"
#include "core/text.h"
#include "export/peer.h"
#include "platform/scripted/scripted.h"
#include "tools/tool_run.h"

using namespace tavik;
using tavik::testing::Quoted;
using tavik::testing::RunTool;

namespace {

constexpr double E0 = 280000, N0 = 2750000;
double Plane(double E, double N) { return 50 + 0.02 * (E - E0) - 0.01 * (N - N0); }

class ProfileToolTest : public ::testing::Test {
 protected:
  tavik::testing::TempHome home;

  // A grid of points 10 m apart on the plane over 100 x 100 m, a point without height,
  // and the given lines.
  std::string Save(const std::string& name, std::vector<Entity> lines, double gridEnd = 100, int16_t mapType = 1) {
    Document d;
    SetDocumentName(d, (home.path / name).string());
    d.MapType = mapType;
    auto point = [&](double E, double N, double H) {
      d.PointTable.push_back({++d.PointCount, E, N, H, kFalse});
      d.MinE = std::min(d.MinE, E), d.MaxE = std::max(d.MaxE, E), d.MinN = std::min(d.MinN, N), d.MaxN = std::max(d.MaxN, N);
    };
    for (double e = 0; e <= gridEnd; e += 10)
      for (double n = 0; n <= gridEnd; n += 10) point(E0 + e, N0 + n, mapType == 1 ? Plane(E0 + e, N0 + n) : 0);
    point(E0 + 55, N0 + 55, NoHeight);
    for (Entity& e : lines) e.Number = ++d.EntityCount, d.EntityTable.push_back(e);
    ui::ScriptedDialogs dialogs;
    EXPECT_TRUE(WriteDocumentFile(d, dialogs));
    return d.SpcPath;
  }
  static Entity Line(int16_t code, double e1, double n1, double e2, double n2, const char* name = "") {
    Entity e;
    e.Code = code, e.Kind = KindLine, e.Name = name;
    e.X[0] = E0 + e1, e.Y[0] = N0 + n1, e.X[1] = E0 + e2, e.Y[1] = N0 + n2;
    return e;
  }
  std::string Path(const char* f) const { return (home.path / f).string(); }
};

TEST_F(ProfileToolTest, ProfileLevelsAndSlopeReadByEzdxf) {
  // A route with a bend: east along N 20, then north-east.
  const std::string spc = Save("plane", {Line(520, 5, 20, 85, 20, "中線"), Line(520, 85, 20, 95, 90)});
  const auto r = RunTool(home.path, "profile " + Quoted(spc) + " " + Quoted(Path("p.DXF")));
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_NE(r.out.find("縱斷面圖輸出完成"), std::string::npos) << r.out;
  // ezdxf: the scales of the title, each chainage label with the level label beside
  // it, and the slope of each ground stretch.
  const std::string out = tavik::testing::RunPeer(
      "/usr/bin/python3 -c '"
      "import sys, re, ezdxf\n"
      "d = ezdxf.readfile(sys.argv[1], encoding=\"cp950\")\n"
      "m = d.modelspace()\n"
      "t = [e.dxf.text for e in m.query(\"TEXT\") if \"比例尺\" in e.dxf.text][0]\n"
      "h, v = map(int, re.findall(r\"1:(\\d+)\", t))\n"
      "print(\"ex\", h / v)\n"
      "lv = {round(e.dxf.insert.x, 6): e.dxf.text for e in m.query(\"TEXT[layer==\\\"高程\\\"]\") if e.dxf.rotation == 90}\n"
      "for e in m.query(\"TEXT[layer==\\\"樁號\\\"]\"): print(\"station\", e.dxf.text, lv.get(round(e.dxf.insert.x, 6)))\n"
      "for e in m.query(\"LINE[layer==\\\"地面線\\\"]\"): print(\"ground\", e.dxf.start.x, e.dxf.start.y, e.dxf.end.x, e.dxf.end.y)\n"
      "' " + Quoted(Path("p.DXF")) + " 2>&1");
  std::istringstream in(out);
  double ex = 0;
  int stations = 0, ground = 0;
  const double L1 = 80, L2 = std::hypot(10, 70);
  auto planeAt = [&](double s) {  // the route's point at chainage s on the plane
    if (s <= L1) return Plane(E0 + 5 + s, N0 + 20);
    const double f = (s - L1) / L2;
    return Plane(E0 + 85 + 10 * f, N0 + 20 + 70 * f);
  };
  for (std::string tag; in >> tag;) {
    if (tag == "ex") {
      in >> ex;
    } else if (tag == "station") {
      std::string chain, level;
      in >> chain >> level;
      const double s = std::stod(chain.substr(0, chain.find('+'))) * 1000 + std::stod(chain.substr(chain.find('+') + 1));
      EXPECT_NEAR(std::stod(level), planeAt(s), 0.0051) << chain;
      ++stations;
    } else if (tag == "ground") {
      double x1, y1, x2, y2;
      in >> x1 >> y1 >> x2 >> y2;
      // Drawing x is chainage and y the height times ex: each stretch has the
      // plane's gradient along its leg of the route.
      ASSERT_GT(x2 - x1, 0);
      const double g = (y2 - y1) / (x2 - x1) / ex, g1 = 0.02, g2 = (0.02 * 10 - 0.01 * 70) / L2;
      EXPECT_LT(std::min(std::abs(g - g1), std::abs(g - g2)), 1e-9) << g;
      ++ground;
    } else {
      ADD_FAILURE() << tag << in.rdbuf();
    }
  }
  EXPECT_GT(ex, 1);
  EXPECT_GE(stations, 6);  // every 20 m at this scale, the bend and the end
  EXPECT_GE(ground, 2);
  ASSERT_NE(out.find("0+000.00"), std::string::npos);
  EXPECT_NE(out.find(num::Format(L1 + L2, "0.00")), std::string::npos) << "the end's chainage";
}

TEST_F(ProfileToolTest, SectionFileLiesOnTheGround) {
  const std::string spc = Save("sec", {Line(520, 10, 50, 90, 50, "R"), Line(521, 40, 10, 40, 80, "S1"),
                                       Line(521, 70, 90, 70, 30, "")});
  for (const char* args : {"", " --interval 25"}) {
    SCOPED_TRACE(args);
    const auto r = RunTool(home.path, "sections " + Quoted(spc) + " " + Quoted(Path("s.DXF")) + args);
    ASSERT_EQ(r.exit, 0) << r.err;
    const std::string sec = text::FromCp950(tavik::testing::ReadBytes(home.path / "s.SEC"));
    std::istringstream in(sec);
    std::string line;
    std::getline(in, line);
    const int want = std::string(args).empty() ? 2 : 5;  // the 521 lines, or 0 25 50 75 80
    EXPECT_EQ(line, "SEC,1," + std::to_string(want) + "\r");
    int sections = 0;
    while (std::getline(in, line)) {
      ASSERT_EQ(line.rfind("S,", 0), 0u) << line;
      std::vector<std::string> f;
      std::stringstream ss(line.substr(0, line.size() - 1));
      for (std::string x; std::getline(ss, x, ',');) f.push_back(x);
      ASSERT_EQ(f.size(), 8u) << line;
      const double E = std::stod(f[4]), N = std::stod(f[5]);
      EXPECT_NEAR(N, N0 + 50, 1e-3);
      // Azimuth d-mm-ss of the line from left to right: the route runs east, so south.
      EXPECT_EQ(f[6], "180-00-00.00");
      for (int k = std::stoi(f[7]); k > 0; --k) {
        ASSERT_TRUE(std::getline(in, line));
        const double off = std::stod(line), H = std::stod(line.substr(line.find(',') + 1));
        EXPECT_NEAR(H, Plane(E, N - off), 0.0011) << line;  // left (north) is negative
      }
      ++sections;
    }
    EXPECT_EQ(sections, want);
    // ezdxf reads one title per section.
    const std::string titles = tavik::testing::RunPeer(
        "/usr/bin/python3 -c 'import sys, ezdxf\n"
        "print(sum(1 for e in ezdxf.readfile(sys.argv[1], encoding=\"cp950\").modelspace().query(\"TEXT\") "
        "if e.dxf.text.startswith(\"橫斷面\")))' " + Quoted(Path("s.DXF")));
    EXPECT_EQ(std::stoi(titles), want);
    if (want == 2) {
      EXPECT_NE(sec.find("S,S1,R,30.000,"), std::string::npos);
    }
  }
}

TEST_F(ProfileToolTest, RefusalsWriteNothing) {
  struct Case {
    const char* legend;
    std::vector<Entity> lines;
    int16_t mapType;
    const char* command;
    const char* message;
  } cases[] = {
      {"no route", {Line(301, 0, 0, 50, 50)}, 1, "profile", "沒有縱斷面線"},
      {"route far from the points", {Line(520, 500, 500, 900, 500)}, 1, "profile", "附近沒有測點"},
      {"plan map", {Line(520, 0, 50, 100, 50)}, 2, "profile", "平面圖"},
      {"no section lines and no interval", {Line(520, 0, 50, 100, 50)}, 1, "sections", "請指定橫斷面間距"},
      {"sections far from the points", {Line(520, 500, 500, 900, 500)}, 1, "sections --interval 50", "附近沒有測點"},
  };
  int i = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.legend);
    const std::string spc = Save("r" + std::to_string(++i), c.lines, 100, c.mapType);
    const auto r = RunTool(home.path, std::string(c.command) + " " + Quoted(spc) + " " + Quoted(Path("x.DXF")));
    EXPECT_EQ(r.exit, 1);
    EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
    EXPECT_FALSE(std::filesystem::exists(home.path / "x.DXF"));
    EXPECT_FALSE(std::filesystem::exists(home.path / "x.SEC"));
  }
  // A target that cannot be made: the export's own message, exit 1.
  const std::string spc = Save("ro", {Line(520, 0, 50, 100, 50)});
  const auto r = RunTool(home.path, "profile " + Quoted(spc) + " " + Quoted(Path("no/such/p.DXF")));
  EXPECT_EQ(r.exit, 1);
  EXPECT_NE(r.err.find("無法建立"), std::string::npos) << r.err;
  EXPECT_EQ(RunTool(home.path, "sections " + Quoted(spc) + " a.DXF --interval -3").exit, 2);
}

}  // namespace
