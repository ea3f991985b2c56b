// The DXFOutput dialog's logic with scripted message boxes and file dialogs: the target
// file's choice, the questions before anything is written, and the drawing with its
// report beside it.
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

TEST(DXFOutput, TargetAndScaleAreCheckedBeforeAnythingIsWritten) {
  Opened o;
  auto d = o.Open();
  EXPECT_EQ(d.TxtScale, "1000");
  EXPECT_EQ(d.Label6, o.doc.DxfPath);
  // Browse takes only a name ending in upper-case DXF; a cancel keeps the choice.
  o.dialogs.files = {(o.home.path / "a.dxf").string(), (o.home.path / "B.DXF").string(), ""};
  d.Command2(o.home.path);
  EXPECT_EQ(d.Label6, o.doc.DxfPath);
  EXPECT_EQ(o.dialogs.shown.back().text + o.dialogs.shown.back().title, "檔案格式或檔案型別不符檔名錯誤");
  d.Command2(o.home.path);
  d.Command2(o.home.path);
  EXPECT_EQ(d.Label6, (o.home.path / "B.DXF").string());

  // A refused scale keeps the dialog open and the remembered scale as it was.
  for (const char* bad : {"0", "-500", "abc"}) {
    d.TxtScale = bad;
    EXPECT_FALSE(d.OKButton(o.home.path));
  }
  EXPECT_EQ(o.memory.DxfScale, 1000);

  // An existing drawing stays unless the surveyor says Yes, and after a Yes it stays
  // too when the export refuses the (empty) document.
  d.TxtScale = "500";
  WriteBytes(d.Label6, "old drawing");
  o.dialogs.answers = {ui::Answer::No, ui::Answer::Yes};
  EXPECT_FALSE(d.OKButton(o.home.path));
  EXPECT_EQ(o.dialogs.shown.back().text + o.dialogs.shown.back().title, "檔案己經存在,是否覆蓋?檔名重覆");
  EXPECT_FALSE(d.OKButton(o.home.path));
  EXPECT_EQ(o.dialogs.shown.back().text, "這是一個空檔案,沒有內容可以輸出");
  EXPECT_EQ(ReadBytes(d.Label6), "old drawing");
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
  ASSERT_TRUE(d.OKButton(dxf::ShippedSymbolLibrary())) << o.dialogs.shown.back().text;
  EXPECT_EQ(d.Label4, "1/500 DXF檔輸出完成");
  EXPECT_EQ(o.dialogs.shown.size(), 1u);  // only the overwrite question
  EXPECT_NE(ReadBytes(o.doc.DxfPath), "old drawing");
  EXPECT_NE(ReadBytes(o.home.path / "東區.TXT").find("TAVIK"), std::string::npos);
  // The scale is remembered for the next opening.
  EXPECT_EQ(o.Open().TxtScale, "500");
}
