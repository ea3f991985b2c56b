// tavik-tool import as a separate process: a drawing made the reference map of a new
// survey, then laid under that document as its base map, read back by the program's
// own loader; the refusals and usage errors.
#include <gtest/gtest.h>

#include "basemap/vector_import.h"
#include "core/docfile.h"
#include "core/reference_map.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/tools/tool_run.h"

using namespace tavik;
using tavik::testing::Quoted;
using tavik::testing::RunTool;
using tavik::testing::TempHome;
using tavik::testing::ToolRun;
using tavik::testing::WriteBytes;

namespace {

Document Load(const std::string& path) {
  Document d;
  SetDocumentName(d, path.substr(0, path.size() - 4));
  d.SpcPath = path;
  ui::ScriptedDialogs dialogs;
  EXPECT_TRUE(LoadDocument(d, dialogs));
  return d;
}

TEST(ImportTool, ReferenceThenBaseMapAndRefusals) {
  TempHome home;
  const auto p = [&](const char* f) { return (home.path / f).string(); };
  // Two lines on layer 地籍 and one on 7, in Big5 under the Western code page.
  std::string dxf = "0\nSECTION\n2\nENTITIES\n";
  for (const char* layer : {"\xA6\x61\xC4\x79", "\xA6\x61\xC4\x79", "7"})
    dxf += std::string("0\nLINE\n8\n") + layer + "\n10\n250000\n20\n2700000\n11\n250010\n21\n2700005\n";
  WriteBytes(p("in.dxf"), dxf + "0\nENDSEC\n0\nEOF\n");

  ToolRun r = RunTool(home.path, "import --new " + Quoted(p("in.dxf")) + " " + Quoted(p("ref.SPC")) +
                                     " --layer-code 地籍=207");
  ASSERT_EQ(r.exit, 0) << r.err;
  EXPECT_NE(r.out.find("layer 地籍: 2 rows, code 207"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("layer 7: 1 rows, code 7"), std::string::npos) << r.out;
  Document ref = Load(p("ref.SPC"));
  EXPECT_EQ(ref.ReferenceMapLoaded, kTrue);
  ASSERT_EQ(ref.ReferenceEntityCount, 3);
  EXPECT_EQ(ref.EntityTable[0].Code, 207);
  EXPECT_EQ(ref.EntityTable[2].Code, 7);
  EXPECT_EQ(ref.EntityTable[1].X[1], 250010);

  r = RunTool(home.path, "import " + Quoted(p("ref.SPC")) + " " + Quoted(p("in.dxf")) + " " + Quoted(p("bm.SPC")));
  ASSERT_EQ(r.exit, 0) << r.err;
  Document bm = Load(p("bm.SPC"));
  EXPECT_EQ(bm.ReferenceEntityCount, 3);
  ASSERT_EQ(bm.BaseMapCount, 3);
  EXPECT_EQ(bm.BaseMapTable[2].Y[1], 2700005);

  // Another document laid under a new one: its entities become the base map.
  r = RunTool(home.path, "import --new " + Quoted(p("ref.SPC")) + " " + Quoted(p("under.SPC")) + " --as basemap");
  ASSERT_EQ(r.exit, 0) << r.err;
  Document under = Load(p("under.SPC"));
  EXPECT_EQ(under.EntityCount, 0);
  ASSERT_EQ(under.BaseMapCount, 3);
  EXPECT_EQ(under.BaseMapTable[0].Code, 207);

  struct Refusal {
    std::string args;
    int exit;
    std::string err;
  } refusals[] = {
      {"import " + Quoted(p("ref.SPC")) + " " + Quoted(p("in.dxf")) + " " + Quoted(p("x.SPC")) + " --as reference", 1,
       std::string(ReferenceMapTwiceMessage) + "\n"},
      {"import --new " + Quoted(p("nothing.dxf")) + " " + Quoted(p("x.SPC")), 1, ""},
      {"import --new " + Quoted(p("in.dxf")) + " " + Quoted(p("x.SPC")) + " --layer-code 7=1000", 2, ""},
      {"import --new " + Quoted(p("in.dxf")) + " " + Quoted(p("x.DXF")), 2, ""},
  };
  for (const auto& k : refusals) {
    SCOPED_TRACE(k.args);
    r = RunTool(home.path, k.args);
    EXPECT_EQ(r.exit, k.exit) << r.err;
    if (!k.err.empty()) {
      EXPECT_EQ(r.err, k.err);
    } else if (k.exit == 1) {
      EXPECT_EQ(r.err.rfind(basemap::UnreadableMessage, 0), 0u) << r.err;
    }
  }
  EXPECT_FALSE(std::filesystem::exists(p("x.SPC")));
}

}  // namespace
