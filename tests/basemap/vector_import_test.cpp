// Vector backgrounds written by independent writers (ezdxf, ogr2ogr) read back into
// base-map rows and checked against what the writer was told to put in; a cadastral
// drawing made the reference map and a parcel on it split; a cancelled or refused
// reading leaving nothing.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>

#include "basemap/vector_import.h"
#include "cadastre/split_fixture.h"
#include "core/temp_home.h"

namespace tavik::basemap {
namespace {

using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

int Shell(const std::string& cmd) { return std::system(cmd.c_str()); }

// Runs a Python script with Debian's own interpreter (where ezdxf is installed).
void Python(const std::filesystem::path& folder, const std::string& script) {
  WriteBytes(folder / "make.py", script);
  ASSERT_EQ(Shell("/usr/bin/python3 '" + (folder / "make.py").string() + "'"), 0);
}

VectorDrawing Read(const std::string& path, VectorImportOptions opts = {}) {
  VectorDrawing d;
  std::string message;
  EXPECT_EQ(ReadVectorFile(path, opts, d, message), ReadResult::Read) << message;
  return d;
}

struct DxfCase {
  const char* name;
  const char* setup;  // how the file states (or misstates) its text encoding
};

class DxfFromEzdxf : public ::testing::TestWithParam<DxfCase> {
 protected:
  TempHome home;
};

TEST_P(DxfFromEzdxf, EntitiesBecomeRowsOfTheirKind) {
  const std::string path = (home.path / "drawing.dxf").string();
  Python(home.path, "import ezdxf\nPATH = r'" + path + "'\n" + GetParam().setup + R"(
msp = doc.modelspace()
msp.add_line((1, 2), (3, 4), dxfattribs={"layer": "地籍線"})
msp.add_lwpolyline([(0, 0), (10, 0), (10, 10)], dxfattribs={"layer": "L2"})
msp.add_arc((100, 100), 5, 10, 80, dxfattribs={"layer": "A"})
msp.add_circle((200, 200), 3, dxfattribs={"layer": "C"})
msp.add_text("地號123", dxfattribs={"layer": "T", "insert": (5, 6)})
b = doc.blocks.new("BLK")
b.add_line((0, 0), (1, 0))
b.add_circle((0, 0), 1)
msp.add_blockref("BLK", (50, 50), dxfattribs={"xscale": 2, "yscale": 2, "rotation": 90})
msp.add_point((7, 8))
doc.saveas(PATH, **SAVE)
)");
  VectorDrawing d = Read(path);
  ASSERT_EQ(d.Rows.size(), 9u);
  EXPECT_EQ(d.Layers[0], "地籍線");
  EXPECT_TRUE(d.Converted.empty());  // a DXF declares no coordinate system

  // Kind and the vertices the writer was given (arcs separately below).
  struct Want {
    int16_t kind;
    double x[2], y[2];
    const char* name;
  };
  const Want want[] = {{21, {1, 3}, {2, 4}, ""},      {21, {0, 10}, {0, 0}, ""},      {21, {10, 10}, {0, 10}, ""},
                       {76, {}, {}, ""},              {71, {200, 203}, {200, 200}, ""}, {11, {5, 0}, {6, 0}, "地號123"},
                       {21, {50, 50}, {50, 52}, ""}, {71, {50, 50}, {50, 52}, ""},     {11, {7, 0}, {8, 0}, ""}};
  for (std::size_t i = 0; i < d.Rows.size(); ++i) {
    const BaseMapLine& b = d.Rows[i];
    SCOPED_TRACE(i);
    EXPECT_EQ(b.Kind, want[i].kind);
    EXPECT_EQ(b.Name, want[i].name);
    if (b.Kind == KindArc3) continue;
    const int used = b.Kind == KindPoint ? 1 : 2;
    for (int k = 0; k < used; ++k) {
      EXPECT_NEAR(b.X[k], want[i].x[k], 1e-9);
      EXPECT_NEAR(b.Y[k], want[i].y[k], 1e-9);
    }
  }
  // The arc: three points on the circle, its ends at 10 and 80 degrees (either way
  // round: an arc by three points has no direction) and the middle at 45.
  const BaseMapLine& arc = d.Rows[3];
  const bool fromStart = std::fabs(arc.X[0] - (100 + 5 * std::cos(10 * std::numbers::pi / 180))) < 1e-9;
  const double deg[3] = {fromStart ? 10.0 : 80.0, 45, fromStart ? 80.0 : 10.0};
  for (int k = 0; k < 3; ++k) {
    const double a = deg[k] * std::numbers::pi / 180;
    EXPECT_NEAR(arc.X[k], 100 + 5 * std::cos(a), 1e-9);
    EXPECT_NEAR(arc.Y[k], 100 + 5 * std::sin(a), 1e-9);
  }
  // Points keep 12; the text and the lines take their layer's code.
  ApplyLayerCodes(d, {{"地籍線", {207, 207}}, {"T", {235, 235}}}, false);
  EXPECT_EQ(d.Rows[0].Code, 207);
  EXPECT_EQ(d.Rows[1].Code, 0);
  EXPECT_EQ(d.Rows[5].Code, 235);
  EXPECT_EQ(d.Rows[8].Code, 12);
}

INSTANTIATE_TEST_SUITE_P(
    Encodings, DxfFromEzdxf,
    ::testing::Values(
        DxfCase{"Big5DeclaredAnsi950", "doc = ezdxf.new('R2000')\ndoc.encoding = 'cp950'\nSAVE = {}\n"},
        // Written in Big5 while the header still says the Western code page, as many
        // drawings made in Taiwan are.
        DxfCase{"Big5UnderAnsi1252", "doc = ezdxf.new('R2000')\nSAVE = {'encoding': 'cp950'}\n"},
        DxfCase{"Utf8R2018", "doc = ezdxf.new('R2018')\nSAVE = {}\n"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(GisFromOgr2ogr, GeoPackageCurvesAndShapefileConvertedFromWgs84) {
  TempHome home;
  const auto p = [&](const char* f) { return (home.path / f).string(); };
  WriteBytes(p("shapes.csv"),
             "wkt,name\n"
             "\"LINESTRING (250000 2700000,250010 2700000,250010 2700020)\",\n"
             "\"POLYGON ((250100 2700100,250110 2700100,250110 2700110,250100 2700100))\",\n"
             "\"CIRCULARSTRING (250200 2700200,250205 2700205,250210 2700200)\",\n"
             "\"POINT (250300 2700300)\",界址點A\n");
  ASSERT_EQ(Shell("ogr2ogr -q -f GPKG '" + p("shapes.gpkg") + "' '" + p("shapes.csv") +
                "' -oo GEOM_POSSIBLE_NAMES=wkt -oo KEEP_GEOM_COLUMNS=NO -a_srs EPSG:3826 -nlt GEOMETRY -nln 地籍"),
            0);
  VectorDrawing g = Read(p("shapes.gpkg"));
  EXPECT_TRUE(g.Converted.empty());
  ASSERT_EQ(g.Rows.size(), 2u + 3u + 1u + 1u);
  EXPECT_EQ(g.Layers, std::vector<std::string>{"地籍"});
  EXPECT_EQ(g.Rows[1].X[1], 250010);
  EXPECT_EQ(g.Rows[1].Y[1], 2700020);
  EXPECT_EQ(g.Rows[4].Y[1], 2700100);  // the ring closes
  const BaseMapLine& arc = g.Rows[5];
  EXPECT_EQ(arc.Kind, KindArc3);
  EXPECT_EQ(arc.X[1], 250205);
  EXPECT_EQ(arc.Y[2], 2700200);
  EXPECT_EQ(g.Rows[6].Kind, KindPoint);
  EXPECT_EQ(g.Rows[6].Name, "界址點A");

  // A line in longitude and latitude, kept as a Shapefile with its .prj: converted to
  // the grid, each vertex where PROJ's own command puts it.
  WriteBytes(p("wgs.geojson"),
             R"({"type":"FeatureCollection","features":[{"type":"Feature","properties":{},)"
             R"("geometry":{"type":"LineString","coordinates":[[121.5,25.0],[121.51,25.02]]}}]})");
  ASSERT_EQ(Shell("ogr2ogr -q -f 'ESRI Shapefile' '" + p("wgs.shp") + "' '" + p("wgs.geojson") + "'"), 0);
  ASSERT_EQ(Shell("printf '121.5 25.0\\n121.51 25.02\\n' | cs2cs -f %.6f +proj=longlat +datum=WGS84 +to +proj=tmerc +lon_0=121 +k=0.9999 +x_0=250000 +ellps=GRS80 +towgs84=0,0,0 > '" +
                p("expected.txt") + "'"),
            0);
  std::ifstream expected(p("expected.txt"));
  double e[2][3];
  for (auto& row : e) expected >> row[0] >> row[1] >> row[2];
  VectorDrawing s = Read(p("wgs.shp"));
  ASSERT_EQ(s.Rows.size(), 1u);
  EXPECT_NE(s.Converted.find("TWD97 二度分帶 (121)"), std::string::npos) << s.Converted;
  for (int k = 0; k < 2; ++k) {
    EXPECT_NEAR(s.Rows[0].X[k], e[k][0], 1e-5);
    EXPECT_NEAR(s.Rows[0].Y[k], e[k][1], 1e-5);
  }
}

TEST(VectorImport, CancelAndRefusalLeaveNothing) {
  TempHome home;
  const std::string path = (home.path / "many.dxf").string();
  std::string dxf = "0\nSECTION\n2\nENTITIES\n";
  for (int i = 0; i < 10000; ++i)
    dxf += "0\nLINE\n8\n0\n10\n" + std::to_string(i) + "\n20\n0\n11\n" + std::to_string(i) + "\n21\n1\n";
  WriteBytes(path, dxf + "0\nENDSEC\n0\nEOF\n");

  int asked = 0;
  int64_t lastDone = -1, lastTotal = 0;
  VectorImportOptions opts;
  opts.Progress = [&](int64_t done, int64_t total) { lastDone = done, lastTotal = total; };
  opts.Cancelled = [&] { return ++asked == 2; };
  VectorDrawing d;
  std::string message;
  EXPECT_EQ(ReadVectorFile(path, opts, d, message), ReadResult::Cancelled);
  EXPECT_EQ(asked, 2);
  EXPECT_TRUE(d.Rows.empty());
  EXPECT_EQ(lastDone, lastTotal);  // the bar is closed

  opts.Cancelled = nullptr;
  EXPECT_EQ(ReadVectorFile(path, opts, d, message), ReadResult::Read);
  EXPECT_EQ(d.Rows.size(), 10000u);

  WriteBytes(path, "this is not a drawing\n");
  EXPECT_EQ(ReadVectorFile(path, opts, d, message), ReadResult::Failed);
  EXPECT_EQ(message.rfind(UnreadableMessage, 0), 0u) << message;
  EXPECT_TRUE(d.Rows.empty());
}

// The base map in the document and its journal: added rows numbered on after the old
// ones, a window delete taking only what lies wholly inside, and removal.
TEST(VectorImport, BaseMapRowsJournalledAndErasedByWindow) {
  TempHome home;
  WorkFiles wf{AppPaths{home.path}};
  wf.CreateEmpty();
  Document doc;
  doc.BaseMapTable.resize(1), doc.BaseMapCount = 1;
  doc.BaseMapTable[0].Number = 1, doc.BaseMapTable[0].Kind = KindLine;
  VectorDrawing d;
  auto add = [&](int16_t kind, double x0, double y0, double x1, double y1) {
    BaseMapLine b;
    b.Kind = kind, b.X[0] = x0, b.Y[0] = y0, b.X[1] = x1, b.Y[1] = y1;
    d.Rows.push_back(b), d.LayerOfRow.push_back(0);
  };
  add(KindLine, 10, 10, 20, 20);     // inside
  add(KindLine, 10, 10, 200, 20);    // reaches out
  add(KindCircle2, 50, 50, 55, 50);  // inside, rim included
  add(KindCircle2, 50, 50, 95, 50);  // the rim leaves the window
  add(KindArc3, 20, 80, 30, 70);     // a half circle through (30, 70) to (40, 80): inside
  d.Rows.back().X[2] = 40, d.Rows.back().Y[2] = 80;
  // Clockwise from (20, 80) over the top (30, 90) through 45 degrees to (30, 70): its
  // three points lie below 88, the arc does not.
  add(KindArc3, 20, 80, 30 + 10 * std::sqrt(0.5), 80 + 10 * std::sqrt(0.5));
  d.Rows.back().X[2] = 30, d.Rows.back().Y[2] = 70;
  AddToBaseMap(doc, wf, d);
  ASSERT_EQ(doc.BaseMapCount, 7);
  EXPECT_EQ(doc.BaseMapTable[4].Number, 5);
  auto journalLines = [&] {
    const std::string t = ReadBytes(home.path / "TEMPBM");
    return std::count(t.begin(), t.end(), '\n');
  };
  EXPECT_EQ(journalLines(), 7);
  EXPECT_EQ(EraseBaseMapWindow(doc, wf, 95, 88, 5, 5), 3);
  ASSERT_EQ(doc.BaseMapCount, 4);
  EXPECT_EQ(doc.BaseMapTable[1].X[1], 200);
  EXPECT_EQ(doc.BaseMapTable[3].Number, 4);
  EXPECT_EQ(doc.BaseMapTable[3].Y[2], 70);
  EXPECT_EQ(journalLines(), 4);
  RemoveBaseMap(doc, wf);
  EXPECT_EQ(doc.BaseMapCount, 0);
  EXPECT_EQ(journalLines(), 0);
}

// A cadastral drawing from ezdxf made the reference map of an empty survey, its parcel
// traced corner by corner and split to a wanted area.
using cadastre::SplitFixture;
using cadastre::Square;

TEST_F(SplitFixture, ReferenceMapFromDxfTracedAndSplit) {
  TempHome files;
  const std::string path = (files.path / "cadastre.dxf").string();
  Python(files.path, "import ezdxf\ndoc = ezdxf.new('R2000')\ndoc.encoding = 'cp950'\nmsp = doc.modelspace()\n"
                     "msp.add_lwpolyline([(1000, 2000), (1100, 2000), (1100, 2100), (1000, 2100)], close=True,"
                     " dxfattribs={'layer': '地籍線'})\n"
                     "msp.add_text('123-4', dxfattribs={'layer': '地號', 'insert': (1050, 2050)})\n"
                     "doc.saveas(r'" + path + "')\n");
  VectorDrawing d = Read(path);
  ApplyLayerCodes(d, {{"地籍線", {201, 201}}}, true);
  std::string refusal;
  ASSERT_TRUE(ImportReferenceMap(doc, view, work, d, refusal)) << refusal;
  EXPECT_EQ(doc.ReferenceEntityCount, 5);
  EXPECT_EQ(doc.EntityTable[0].Code, 201);
  EXPECT_EQ(doc.EntityTable[4].Code, 235);  // the parcel number by default
  EXPECT_EQ(doc.EntityTable[4].Name, "123-4");
  EXPECT_FALSE(ImportReferenceMap(doc, view, work, d, refusal));  // not twice

  split.Open();
  split.Command1();
  for (const auto& c : Square) {
    const auto [x, y] = Pixel(c.first + 1, c.second - 1);
    EXPECT_TRUE(split.TracePick(x, y));
  }
  const auto [x, y] = Pixel(Square[0].first, Square[0].second);
  split.TracePick(x, y);
  EXPECT_EQ(split.SplitTotalArea, 10000);
  Target(2500);
  split.ChooseOption(3);
  ASSERT_TRUE(dialogs.shown.empty()) << dialogs.shown.front().text;
  EXPECT_GT(split.SplitCutArea, 2500);
  EXPECT_LT(split.SplitCutArea - 2500, 1e-3);
}

}  // namespace
}  // namespace tavik::basemap
