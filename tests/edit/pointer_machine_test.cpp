// The pointer machine's orders and endings, the toolbars and the keys.
#include "edit_fixture.h"

namespace tavik::edit {
namespace {

using Machine = EditFixture;

TEST_F(Machine, ModesOfOtherSubsystemsAreHandedOnUntouched) {
  Pt(1000, 2000);
  ed.StartCommand(mode::MapMoveP);
  EXPECT_EQ(host.prompts.back(), "先抓圖面基準點,移到另一個實點位置");
  ed.MouseDownAt(LeftButton, 1000, 2000);
  ed.MouseMoveAt(LeftButton, 1004, 2004);
  ed.MouseUpAt(LeftButton, 1005, 2005);
  EXPECT_EQ(host.plugged, (std::vector<std::pair<std::string, PlugEvent>>{{mode::MapMoveP, PlugEvent::Press},
                                                                          {mode::MapMoveP, PlugEvent::Move},
                                                                          {mode::MapMoveP, PlugEvent::Release}}));
  EXPECT_EQ(doc.EntityCount, 0);
  EXPECT_EQ(host.Count("BeginPan"), 0);
  // A later command replaces it; New/Open/Close clear everything.
  ed.StartCommand(mode::QDIS);
  EXPECT_EQ(ed.Ptr.ActionMode, mode::QDIS);
  ed.Reset();
  EXPECT_EQ(ed.Ptr.ActionMode, "");
}

TEST_F(Machine, DrawingModesCheckTheLegendFirst) {
  struct Case {
    int16_t legend;
    std::string key, refusal;  // "" accepted
  } cases[] = {{110, mode::Line, "目前圖例不能畫線"}, {513, mode::RECT, "目前圖例不能畫矩形"},
               {521, mode::ARC, "目前圖例不能畫弧"}, {513, mode::P2C, "目前圖例不能畫圓"},
               {517, mode::P3C, "目前圖例不能畫圓"}, {301, mode::Label, "目前圖例不能做[區塊註記]"},
               {407, mode::Symbol, "目前圖例不能做[實物註記]"}, {638, mode::RECT, ""},
               {638, mode::Line, "目前圖例不能畫線"}, {515, mode::Line, ""},
               {110, mode::Text, ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.key + " " + std::to_string(c.legend));
    ed.Reset();
    dialogs.shown.clear();
    doc.CurrentLegend = c.legend;
    ed.Toolbar2Click(c.key);
    if (c.refusal.empty()) {
      EXPECT_TRUE(dialogs.shown.empty());
      EXPECT_EQ(ed.Ptr.ActionMode, c.key);
    } else {
      ASSERT_EQ(Messages().size(), 1u);
      EXPECT_EQ(Messages()[0], c.refusal);
      EXPECT_EQ(dialogs.shown[0].title, "屬性限制");
      EXPECT_EQ(ed.Ptr.ActionMode, "");
    }
  }
}

TEST_F(Machine, LegendHotKeysAndTheKeysOfTheWindow) {
  const std::pair<int, int16_t> legends[] = {{'A', 517}, {'B', 515}, {'H', 301}, {'K', 846}, {'Z', 715}, {'V', 131}};
  for (const auto& [key, legend] : legends) {
    EXPECT_TRUE(ed.KeyDown(key, false));
    EXPECT_EQ(doc.CurrentLegend, legend);
  }
  EXPECT_EQ(Editor::HotKeyLegend('r'), 0);
  EXPECT_EQ(Editor::HotKeyLegend('u'), 0);
  EXPECT_NE(Editor::HotKeySummary().find("X     813   碎石路 / 土路"), std::string::npos);

  const std::pair<int, std::string> windowKeys[] = {{'R', "Redraw"}, {Editor::KeyF11, "View:ZoomOut"},
                                                    {Editor::KeyF12, "View:ZoomIn"}, {Editor::KeyF2, "Frame:快速存檔"},
                                                    {Editor::KeySpace, "Measure"}};
  for (const auto& [key, call] : windowKeys) {
    ed.KeyDown(key, false);
    EXPECT_EQ(host.calls.back(), call);
  }

  ed.KeyDown(Editor::KeyF9, false);
  EXPECT_TRUE(ed.AutoJoin);
  EXPECT_EQ(dialogs.shown.back().text, "注意：你已開啟自動連線功能,取消請按F10");
  ed.KeyDown(Editor::KeyF10, false);
  EXPECT_FALSE(ed.AutoJoin);
  EXPECT_EQ(dialogs.shown.back().text, "自動連線功能已關閉");

  // During a chain the letters change no legend: c closes the chain instead.
  Pt(1000, 2000);
  Pt(1010, 2000);
  doc.CurrentLegend = 301;
  ed.Toolbar2Click(mode::Line);
  Click(1000, 2000);
  EXPECT_FALSE(ed.KeyDown('C', false));
  EXPECT_EQ(doc.CurrentLegend, 301);
}

TEST_F(Machine, InputAngleNeedsAStationOrAFix) {
  ed.Toolbar1Click("輸入角度");
  EXPECT_EQ(Messages().back(), "請先擺站");
  EXPECT_EQ(dialogs.shown.back().title, "要有原始方向");
  doc.StationSet = kTrue;
  ed.Toolbar1Click("輸入角度");
  EXPECT_EQ(host.calls.back(), "Frame:輸入角度");
  // Zoom keys need a document.
  doc.DocumentName.clear();
  ed.Toolbar1Click("ZE");
  EXPECT_EQ(host.calls.back(), "Frame:輸入角度");
}

}  // namespace
}  // namespace tavik::edit
