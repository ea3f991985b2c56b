// The DXFOutput dialog's logic with scripted message boxes and file dialogs: the target
// file's choice and the questions before anything is written.
#include <gtest/gtest.h>

#include "core/temp_home.h"
#include "export/dxf_output.h"
#include "export/symbol_library.h"
#include "platform/scripted/scripted.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

struct Opened {
  TempHome home;
  Document doc;
  dxf::DxfOutputMemory memory;
  int16_t areaUnit = 2;
  ui::ScriptedDialogs dialogs;
  Opened() { SetDocumentName(doc, (home.path / "東區").string()); }
  dxf::DXFOutputLogic Open() { return dxf::DXFOutputLogic(doc, memory, areaUnit, dialogs); }
};

}  // namespace

TEST(DXFOutput, OpensWithTheRememberedScaleAndTheDocumentsDrawing) {
  Opened o;
  auto first = o.Open();
  EXPECT_EQ(first.TxtScale, "1000");
  EXPECT_EQ(first.Label6, o.doc.DxfPath);
  EXPECT_EQ(first.AreaUnit(), 2);
  EXPECT_TRUE(first.Frame2Visible());
  // A refused scale keeps the dialog open and the remembered scale as it was.
  for (const char* bad : {"0", "-500", "abc", ""}) {
    first.TxtScale = bad;
    EXPECT_FALSE(first.OKButton(o.home.path));
  }
  EXPECT_EQ(o.dialogs.shown.size(), 4u);
  EXPECT_EQ(o.memory.DxfScale, 1000);
  o.memory.DxfScale = 250;
  o.doc.MapType = 2;
  auto again = o.Open();
  EXPECT_EQ(again.TxtScale, "250");
  EXPECT_FALSE(again.Frame2Visible());
}

TEST(DXFOutput, GridButtonsSetTheirFlagsAndTheLabelOptions) {
  Opened o;
  auto d = o.Open();
  d.Option5();
  EXPECT_FALSE(d.options.GridFull || d.options.GridTicks || d.options.GridLabels || d.LabelOptionsEnabled());
  d.Option6();
  EXPECT_TRUE(d.options.GridTicks && !d.options.GridFull && d.LabelOptionsEnabled());
  d.Option7();
  EXPECT_TRUE(d.options.GridFull && d.options.GridLabels && d.LabelOptionsEnabled());
}

TEST(DXFOutput, BrowseTakesOnlyANameEndingInUpperCaseDxf) {
  Opened o;
  auto d = o.Open();
  o.dialogs.files = {(o.home.path / "a.dxf").string(), (o.home.path / "B.DXF").string(), ""};
  d.Command2(o.home.path);
  EXPECT_EQ(d.Label6, o.doc.DxfPath);
  EXPECT_EQ(o.dialogs.Messages(), std::vector<std::string>{"檔案格式或檔案型別不符"});
  EXPECT_EQ(o.dialogs.shown.back().title, "檔名錯誤");
  d.Command2(o.home.path);
  EXPECT_EQ(d.Label6, (o.home.path / "B.DXF").string());
  d.Command2(o.home.path);  // cancelled: the choice stays
  EXPECT_EQ(d.Label6, (o.home.path / "B.DXF").string());
}

TEST(DXFOutput, AnExistingDrawingIsKeptUnlessTheSurveyorSaysYes) {
  Opened o;
  auto d = o.Open();
  WriteBytes(o.doc.DxfPath, "old drawing");
  o.dialogs.answers = {ui::Answer::No};
  EXPECT_FALSE(d.OKButton(o.home.path));
  EXPECT_EQ(o.dialogs.shown.back().text, "檔案己經存在,是否覆蓋?");
  EXPECT_EQ(o.dialogs.shown.back().title, "檔名重覆");
  EXPECT_EQ(ReadBytes(o.doc.DxfPath), "old drawing");
  // An empty document is refused by the export after the Yes, and the old file stays.
  o.dialogs.answers = {ui::Answer::Yes};
  EXPECT_FALSE(d.OKButton(o.home.path));
  EXPECT_EQ(ReadBytes(o.doc.DxfPath), "old drawing");
  EXPECT_EQ(dxf::DXFOutputLogic::ReportPathFor("/a/東區.DXF"), "/a/東區.TXT");
}

TEST(DXFOutput, WritesTheDrawingAndTheReportBesideIt) {
  Opened o;
  o.doc.EntityTable = {Entity{1, 351, KindPoint, {1000, 0, 0}, {2000, 0, 0}, {5, 0, 0}, "站牌", kFalse}};
  o.doc.EntityCount = 1;
  o.doc.MinE = o.doc.MaxE = 1000;
  o.doc.MinN = o.doc.MaxN = 2000;
  WriteBytes(o.doc.DxfPath, "old drawing");
  auto d = o.Open();
  d.TxtScale = "500";
  d.options.WriteReport = kTrue;
  o.dialogs.answers = {ui::Answer::Yes};
  ASSERT_TRUE(d.OKButton(dxf::ShippedSymbolLibrary())) << (o.dialogs.shown.empty() ? "" : o.dialogs.shown.back().text);
  EXPECT_EQ(d.Label4, "1/500 DXF檔輸出完成");
  EXPECT_EQ(o.memory.DxfScale, 500);
  EXPECT_NE(ReadBytes(o.doc.DxfPath), "old drawing");
  EXPECT_NE(ReadBytes(o.home.path / "東區.TXT").find("TAVIK"), std::string::npos);
  EXPECT_EQ(o.dialogs.shown.size(), 1u);  // only the overwrite question
}
