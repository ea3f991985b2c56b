// The DXF export: the fixed texts line by line, the refusals, and the drawing of a
// crafted document read back by two independent readers (ezdxf and GDAL), whose
// counts per layer and entity type must equal what the document asks for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "core/tables.h"
#include "core/temp_home.h"
#include "core/text.h"
#include "export/dxf_export.h"
#include "view/legends.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

// (layer, entity type) -> count, layer names in UTF-8.
using Counts = std::map<std::pair<std::string, std::string>, int>;

std::string Layer(int code) { return text::Trim(view::LegendName(code)); }

std::string Capture(const std::string& command) {
  std::string out;
  if (FILE* p = ::popen(command.c_str(), "r")) {
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    ::pclose(p);
  }
  return out;
}

class DxfExportTest : public ::testing::Test {
 protected:
  TempHome home;
  AppPaths paths{home.path};
  WorkFiles wf{paths};
  View view;
  Document doc;
  dxf::DxfExportOptions options;
  std::filesystem::path out = home.path / "out.DXF";
  Counts expected;

  void SetUp() override {
    std::filesystem::create_directories(home.path / "symb");
    options.symbolDir = (home.path / "symb").string();
    WriteBytes(home.path / "symb" / "999.dxf",
               "  0\r\nBLOCK\r\n  8\r\n0\r\n  2\r\n999\r\n 70\r\n0\r\n 10\r\n0.0\r\n 20\r\n0.0\r\n 30\r\n0.0\r\n"
               "  0\r\nPOINT\r\n  8\r\n0\r\n 10\r\n0.0\r\n 20\r\n0.0\r\n  0\r\nENDBLK\r\n  8\r\n0\r\n");
  }
  // A library file in the fragment form: six lines the export drops, then a block body.
  void Symbol(int code) {
    WriteBytes(home.path / "symb" / (std::to_string(code) + ".dxf"),
               "  0\nBLOCK\n  8\n0\n  2\nX\n 70\n0\n 10\n0.0\n 20\n0.0\n 30\n0.0\n"
               "  0\nCIRCLE\n  8\n0\n 10\n0.0\n 20\n0.0\n 40\n0.1\n  0\nENDBLK\n  8\n0\n");
  }
  dxf::DxfExportResult Export() { return dxf::WriteDxf(doc, options, out); }

  // An entity and what the drawing must hold for it, beside its copy on STR.
  void Add(int code, int16_t kind, std::vector<double> v, const std::string& name, Counts own,
           const char* str = nullptr) {
    v.resize(9, 0);
    AddEntity(doc, view, wf, static_cast<int16_t>(code), kind, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8],
              name);
    for (auto& [key, n] : own) expected[key] += n;
    if (str) expected[{"STR", str}] += 1;
  }

  Counts ReadWithEzdxf() {
    Counts c;
    std::istringstream in(Capture("/usr/bin/python3 -c '"
                              "import sys, collections, ezdxf\n"
                              "d = ezdxf.readfile(sys.argv[1], encoding=\"cp950\")\n"
                              "c = collections.Counter((e.dxf.layer, e.dxftype()) for e in d.modelspace())\n"
                              "for (l, t), n in c.items(): print(l, t, n, sep=\"\\t\")\n"
                              "' '" + out.string() + "' 2>&1"));
    for (std::string line; std::getline(in, line);) {
      std::istringstream f(line);
      std::string layer, type;
      int n = 0;
      if (std::getline(f, layer, '\t') && std::getline(f, type, '\t') && (f >> n)) c[{layer, type}] = n;
      else ADD_FAILURE() << line;
    }
    return c;
  }

  // GDAL gives one feature per entity with its layer, text and block name; an INSERT
  // stays a point with its block name, a TEXT a point with its text. Lines, circles and
  // arcs are told apart by their vertices: two, a closed ring, an open chain.
  Counts ReadWithGdal() {
    Counts c;
    std::istringstream in(Capture("ogr2ogr --config DXF_ENCODING CP950 --config DXF_INLINE_BLOCKS FALSE -f CSV "
                              "/vsistdout/ '" + out.string() + "' entities -lco GEOMETRY=AS_WKT "
                              "-select Layer,Text,BlockName -lco SEPARATOR=TAB 2>&1"));
    std::string line;
    std::getline(in, line);  // the field names
    while (std::getline(in, line)) {
      std::istringstream f(line);
      std::string wkt, layer, textValue, block;
      std::getline(f, wkt, '\t'), std::getline(f, layer, '\t'), std::getline(f, textValue, '\t');
      std::getline(f, block, '\t');
      auto unquote = [](std::string s) { return s.size() >= 2 && s.front() == '"' ? s.substr(1, s.size() - 2) : s; };
      wkt = unquote(wkt), layer = unquote(layer);
      std::string type;
      if (wkt.rfind("POINT", 0) == 0) {
        type = !unquote(block).empty() ? "INSERT" : !unquote(textValue).empty() ? "TEXT" : "POINT";
      } else if (wkt.rfind("LINESTRING", 0) == 0) {
        const std::size_t commas = std::count(wkt.begin(), wkt.end(), ',');
        std::string first = wkt.substr(wkt.find('(') + 1, wkt.find(',') - wkt.find('(') - 1);
        std::string last = wkt.substr(wkt.rfind(',') + 1, wkt.rfind(')') - wkt.rfind(',') - 1);
        type = commas == 1 ? "LINE" : first == last ? "CIRCLE" : "ARC";
      } else {
        type = wkt;
      }
      c[{layer, type}] += 1;
    }
    return c;
  }
};

TEST_F(DxfExportTest, HeaderTablesAndStyleAreTheFixedTexts) {
  AddPoint(doc, view, wf, 1000.5, 2000, 12.5);
  AddPoint(doc, view, wf, 1100, 2050.25, 14);
  Add(513, KindLine, {1000, 2000, 0, 1010, 2000}, "", {});
  Add(301, KindLine, {1000, 2010, 0, 1010, 2010}, "", {});
  Add(110, KindPoint, {1000, 2000, 1}, "", {});  // a symbol whose library file is missing
  auto r = Export();
  ASSERT_TRUE(r.ok) << r.message;
  EXPECT_EQ(r.label4, "1/1000 DXF檔輸出完成");
  EXPECT_EQ(r.missingSymbols, std::vector<std::string>{(home.path / "symb" / "110.dxf").string() + "支援檔遺失或遭破壞!!"});
  std::string bytes = ReadBytes(out);
  // Cells of 100 m: the sheet runs from 1000 to 1200 and 2000 to 2100.
  const std::string head =
      "  0\r\nSECTION\r\n  2\r\nHEADER\r\n"
      "  9\r\n$ACADVER\r\n  1\r\nAC1009\r\n"
      "  9\r\n$EXTMIN\r\n 10\r\n 1000 \r\n 20\r\n 2000 \r\n"
      "  9\r\n$EXTMAX\r\n 10\r\n 1200 \r\n 20\r\n 2100 \r\n"
      "  9\r\n$LIMMIN\r\n 10\r\n 1000.5 \r\n 20\r\n 2000 \r\n"
      "  9\r\n$LIMMAX\r\n 10\r\n 1100 \r\n 20\r\n 2050.25 \r\n"
      "  9\r\n$LTSCALE\r\n 40\r\n 10 \r\n"
      "  9\r\n$INSBASE\r\n 10\r\n0\r\n 20\r\n0\r\n"
      "  9\r\n$OSMODE\r\n 70\r\n   8\r\n"
      "  9\r\n$TEXTSIZE\r\n 40\r\n 2 \r\n"
      "  9\r\n$TEXTSTYLE\r\n  7\r\nSTANDARD\r\n"
      "  9\r\n$ANGBASE\r\n 50\r\n 0.0\r\n"
      "  9\r\n$ANGDIR\r\n 70\r\n   0\r\n"
      "  9\r\n$MENU\r\n  1\r\nacad\r\n"
      "  9\r\n$DWGCODEPAGE\r\n  3\r\nANSI_950\r\n"
      "  0\r\nENDSEC\r\n"
      "  0\r\nSECTION\r\n  2\r\nTABLES\r\n  0\r\nTABLE\r\n  2\r\nLTYPE\r\n 70\r\n  9\r\n"
      "  0\r\nLTYPE\r\n  2\r\nCONTINUOUS\r\n 70\r\n  64\r\n  3\r\nsolid line\r\n 72\r\n  65\r\n 73\r\n  0\r\n 40\r\n0.0\r\n"
      "  0\r\nLTYPE\r\n  2\r\nL1X1\r\n 70\r\n  64\r\n  3\r\n- - - - - - - - - - - - - - - - - - - - - - - -\r\n"
      " 72\r\n  65\r\n 73\r\n  2\r\n 40\r\n 0.2 \r\n 49\r\n 0.1 \r\n 49\r\n-0.1 \r\n";
  EXPECT_EQ(bytes.substr(0, head.size()), head);
  const std::string layers =
      "  0\r\nTABLE\r\n  2\r\nLAYER\r\n 70\r\n1000\r\n"
      "  0\r\nLAYER\r\n  2\r\n" + text::ToCp950("圖框") + "\r\n 70\r\n  64\r\n 62\r\n  7\r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nLAYER\r\n  2\r\nPTS\r\n 70\r\n  64\r\n 62\r\n 2\r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nLAYER\r\n  2\r\nSTR\r\n 70\r\n  64\r\n 62\r\n -2\r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nLAYER\r\n  2\r\n" + text::ToCp950("所有高程") + "\r\n 70\r\n  64\r\n 62\r\n -6\r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nLAYER\r\n  2\r\n" + text::ToCp950(Layer(110)) + "\r\n 70\r\n  64\r\n 62\r\n 7 \r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nLAYER\r\n  2\r\n" + text::ToCp950(Layer(301)) + "\r\n 70\r\n  64\r\n 62\r\n 2 \r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nLAYER\r\n  2\r\n" + text::ToCp950(Layer(513)) + "\r\n 70\r\n  64\r\n 62\r\n-1 \r\n  6\r\nCONTINUOUS\r\n"
      "  0\r\nENDTAB\r\n"
      "  0\r\nTABLE\r\n  2\r\nSTYLE\r\n 70\r\n     1\r\n  0\r\nSTYLE\r\n  2\r\nSTANDARD\r\n 70\r\n     0\r\n"
      " 40\r\n0.0\r\n 41\r\n 1\r\n 50\r\n0.0\r\n 71\r\n     0\r\n 42\r\n 2 \r\n  3\r\nTXT.SHX\r\n  4 \r\nchineset.shx\r\n"
      "  0\r\nENDTAB\r\n  0\r\nENDSEC\r\n"
      // 301 and 513 are no symbols and the file of 110 is missing: the default block alone.
      "  0\r\nSECTION\r\n  2\r\nBLOCKS\r\n  0\r\nBLOCK\r\n  8\r\n0\r\n  2\r\n999\r\n";
  EXPECT_NE(bytes.find(layers), std::string::npos);
  EXPECT_NE(bytes.find("INSERT\r\n  8\r\n" + text::ToCp950(Layer(110)) + "\r\n  2\r\n" + text::ToCp950(Layer(110))),
            std::string::npos);
  const std::string tail = "  0\r\nENDSEC\r\n  0\r\nEOF\r\n";
  EXPECT_EQ(bytes.substr(bytes.size() - tail.size()), tail);
}

// A plan map (MapType 2): no heights anywhere the writers go, no height labels and no
// layer for them; the entity writers' groups in their order.
TEST_F(DxfExportTest, PlanMapWritesNoHeights) {
  doc.MapType = 2;
  options.DxfScale = 100;
  AddPoint(doc, view, wf, 1000, 2000, 5);
  Add(301, KindLine, {1000, 2000, 5, 1010, 2000, 5}, "A", {});
  Add(301, KindCircle2, {1005, 2005, 5, 1007, 2005, 5}, "", {});
  Add(301, KindArc3, {1000, 2010, 5, 1002, 2012, 5, 1004, 2010, 5}, "", {});
  Add(99, KindPoint, {1001, 2001, 5}, "P1", {});
  auto r = Export();
  ASSERT_TRUE(r.ok) << r.message;
  const std::string bytes = ReadBytes(out);
  const std::string entities = bytes.substr(bytes.find("ENTITIES"));
  EXPECT_EQ(entities.find("\r\n 30\r\n"), std::string::npos);
  EXPECT_EQ(entities.find("\r\n 31\r\n"), std::string::npos);
  EXPECT_EQ(bytes.find(text::ToCp950("所有高程")), std::string::npos);
  const std::string L = text::ToCp950(Layer(301));
  for (const std::string& form : std::vector<std::string>{
           "  0\r\nPOINT\r\n  8\r\nPTS\r\n 10\r\n 1000 \r\n 20\r\n 2000 \r\n  0\r\n",
           "  0\r\nLINE\r\n  8\r\n" + L + "\r\n  6\r\nCONTINUOUS\r\n 10\r\n 1000 \r\n 20\r\n 2000 \r\n 11\r\n 1010 \r\n"
           " 21\r\n 2000 \r\n  0\r\nTEXT\r\n  8\r\n" + L + "\r\n 62\r\n256\r\n 10\r\n 1004.8 \r\n 20\r\n 1999.9 \r\n"
           " 40\r\n 0.2 \r\n 50\r\n  0\r\n1\r\nA                   \r\n",
           "  0\r\nCIRCLE\r\n  8\r\n" + L + "\r\n  6\r\nCONTINUOUS\r\n 10\r\n 1005 \r\n 20\r\n 2005 \r\n 40\r\n 2 \r\n"})
    EXPECT_NE(bytes.find(form), std::string::npos) << form;
  // The arc's centre moves by the nudge of its equal N values; its groups in order.
  EXPECT_TRUE(std::regex_search(bytes, std::regex("ARC\r\n  8\r\n[^\r]+\r\n  6\r\nCONTINUOUS\r\n 10\r\n 1002.0000000"
                                                  "\\d* \r\n 20\r\n 2009.99999999\\d* \r\n 40\r\n[^\r]+\r\n 50\r\n"
                                                  "[^\r]+\r\n 51\r\n 179.99999\\d* \r\n")));
}

// Refusals leave the old file exactly as it was and nothing beside it.
TEST_F(DxfExportTest, RefusalsKeepTheOldFile) {
  WriteBytes(out, "old drawing");
  const std::string empty = "這是一個空檔案,沒有內容可以輸出";
  EXPECT_EQ(Export().message, empty);
  AddPoint(doc, view, wf, 1000, 2000, 1);
  AddPoint(doc, view, wf, 1500, 2400, 1);
  AddEntity(doc, view, wf, 301, 1000, 2000, 1, "");
  doc.ReferencePointCount = 2, doc.ReferenceEntityCount = 1;
  EXPECT_EQ(Export().message, empty);  // nothing but the reference map
  doc.ReferencePointCount = doc.ReferenceEntityCount = 0;
  options.DxfScale = 0.01;  // cells of 1 mm over 500 m
  auto r = Export();
  EXPECT_EQ(r.title, "比例尺太大...");
  EXPECT_EQ(r.message, "比例尺太大,以致方格數超過32767,\n 請改變比例尺後再試.");
  options.DxfScale = 1000;
  // The file beside the target cannot be made (a folder stands in its way, which stops
  // root as well as a read-only folder would): the old file stays as it was.
  std::filesystem::create_directory(out.string() + "~new");
  WriteBytes(out.string() + "~new/keep", "");
  r = Export();
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.message, "有一個同名檔案存在,且被其它程式開啟中...\n請先關閉 [" + out.string() + "] 後再試.");
  EXPECT_EQ(ReadBytes(out), "old drawing");
  r = dxf::WriteDxf(doc, options, home.path / "no such folder" / "x.DXF");
  EXPECT_FALSE(r.ok);
  EXPECT_NE(r.message.find("無法建立"), std::string::npos);
}

// The crafted document: every form of output, read back by ezdxf and by GDAL.
TEST_F(DxfExportTest, IndependentReadersFindWhatTheDocumentAsksFor) {
  options.DxfScale = 100;  // U = 1 m
  const double U = 1;
  for (int code : {408, 211, 517, 110, 921, 813, 930}) Symbol(code);
  // A reference row: drawn only in the plain copy on STR. A reference point: not at all.
  AddPoint(doc, view, wf, 1010, 2005, 5);
  Add(301, KindLine, {1000, 2001, 0, 1010, 2001, 0}, "", {}, "LINE");
  doc.ReferencePointCount = 1, doc.ReferenceEntityCount = 1;
  // Survey points; the lowest height is the floor, and a point without height is below it.
  for (auto [E, N, H] : {std::tuple{1000.0, 2000.0, 12.5}, {1045.0, 2025.0, 15.0}, {1030.0, 2020.0, 13.25},
                         {1020.0, 2010.0, -9999.0}}) {
    AddPoint(doc, view, wf, E, N, H);
    if (H >= 12.5) expected[{"PTS", "POINT"}] += 1, expected[{"所有高程", "TEXT"}] += 1;
  }
  // Ticks from 0.1 U along the line up to its length less half a spacing; symbols from
  // 0 up to the length less two thirds of their spacing.
  auto ticks = [&](double length, double spacing) { return int(std::floor((length - spacing / 2 - 0.1 * U) / spacing)) + 1; };
  auto symbols = [&](double length, double S) { return int(std::floor((length - 2 * S / 3) / S)) + 1; };
  const double len = 10.05;
  // A name longer than its 20 bytes in code page 950, cut where a character ends.
  Add(301, KindLine, {1001, 2002, 13, 1011, 2002, 13}, "甲乙丙丁戊己庚辛壬癸子", {{{Layer(301), "LINE"}, 1}, {{Layer(301), "TEXT"}, 1}}, "LINE");
  Add(510, KindLine, {1000, 2010, 13, 1000 + len, 2010, 13}, "", {{{Layer(510), "LINE"}, 1 + ticks(len, 0.2 * U)}}, "LINE");
  Add(921, KindLine, {1000, 2012, 13, 1000 + len, 2012, 13}, "", {{{Layer(921), "LINE"}, 1 + ticks(len, 0.2 * U)}}, "LINE");
  Add(905, KindLine, {1000, 2014, 13, 1000 + len, 2014, 13}, "", {{{Layer(905), "LINE"}, 1 + ticks(len, 0.5 * U)}}, "LINE");
  Add(408, KindLine, {1000, 2016, 13, 1000 + len, 2016, 13}, "", {{{Layer(408), "INSERT"}, symbols(len, 0.15 * U)}}, "LINE");
  Add(211, KindLine, {1000, 2018, 13, 1000, 2018 + len, 13}, "籬",
      {{{Layer(211), "INSERT"}, symbols(len, 0.45 * U)}, {{Layer(211), "TEXT"}, 1}}, "LINE");
  Add(407, KindLine, {1020, 2002, 13, 1030, 2002, 13}, "", {{{Layer(407), "LINE"}, 2}, {{Layer(407), "TEXT"}, 1}}, "LINE");
  Add(813, KindCircle2, {1030, 2015, 13, 1032, 2015, 13}, "", {{{Layer(813), "CIRCLE"}, 2}}, "CIRCLE");
  Add(301, KindArc3, {1020, 2020, 13, 1022, 2022, 13, 1024, 2020, 13}, "", {{{Layer(301), "ARC"}, 1}}, "ARC");
  Add(930, KindCircle3, {1035, 2020, 13, 1037, 2022, 13, 1039, 2020, 13}, "", {{{Layer(930), "CIRCLE"}, 1}}, "CIRCLE");
  Add(301, KindArc3, {1020, 2020, 13, 1022, 2020, 13, 1024, 2020, 13}, "", {});  // collinear: left out
  Add(205, KindLine, {1000, 2024, 13, 1010, 2024, 13}, "", {{{Layer(205), "LINE"}, 1}, {{Layer(205), "TEXT"}, 1}});
  Add(517, KindPoint, {1040, 2020, 14}, "", {{{Layer(517), "INSERT"}, 1}, {{Layer(517), "TEXT"}, 1}});
  Add(99, KindPoint, {1041, 2021, 14}, "P1", {{{Layer(99), "TEXT"}, 1}});
  Add(13, KindPoint, {1042, 2022, 1234.5}, "", {{{Layer(13), "TEXT"}, 1}});
  Add(168, KindPoint, {1043, 2023, 14}, "EP1", {});
  Add(168, KindPoint, {1044, 2023, 14}, "X 12.5", {{{Layer(168), "TEXT"}, 1}});
  Add(110, KindPoint, {1040, 2005, 14}, "CP1",
      {{{Layer(110), "INSERT"}, 1}, {{Layer(110), "TEXT"}, 1}, {{Layer(110) + "_高程", "TEXT"}, 1}});
  Add(201, KindPoint, {1041, 2006, 14}, "", {{{Layer(201), "INSERT"}, 1}});
  Add(12, KindPoint, {1042, 2007, 14}, "註\xe8\xa8", {{{Layer(12), "TEXT"}, 1}});  // half a character
  Add(301, KindLine, {1000, 2003, 13, 1010, 2003, 13}, "", {});
  doc.EntityTable.back().Deleted = kTrue;
  // Base map: a line, an arc and a text.
  for (auto [kind, name] : {std::pair{KindLine, ""}, {KindArc3, ""}, {KindPoint, "底圖字"}}) {
    BaseMapLine b;
    b.Kind = kind, b.Name = name;
    b.X[0] = 1001, b.Y[0] = 2001, b.X[1] = 1003, b.Y[1] = 2003, b.X[2] = 1005, b.Y[2] = 2001;
    doc.BaseMapTable.push_back(b);
    expected[{kind == KindPoint ? "底圖文字" : "底圖", kind == KindLine ? "LINE" : kind == KindArc3 ? "ARC" : "TEXT"}] += 1;
  }
  doc.BaseMapCount = 3;
  // The sheet: E 1000 to 1050 (5 cells of 10 m), N 2000 to 2030 (3 cells): the frame's
  // four sides and its ticks on both sides, every grid line, a label per grid line.
  const int cols = 5, rows = 3;
  expected[{"圖框", "LINE"}] = 4 + 2 * (cols + 1) + 2 * (rows + 1) + (cols + 1) + (rows + 1);
  expected[{"圖框", "TEXT"}] = (cols + 1) + (rows + 1);

  auto r = Export();
  ASSERT_TRUE(r.ok) << r.message;
  EXPECT_TRUE(r.missingSymbols.empty());
  EXPECT_EQ(r.warnings, std::vector<std::string>{"錯誤:三點共線.\n1 個圓或弧未輸出"});
  EXPECT_EQ(ReadWithEzdxf(), expected);
  EXPECT_EQ(ReadWithGdal(), expected);
}

}  // namespace
