// The pointer machine's orders and endings, the toolbars and the keys.
#include <functional>

#include "edit_fixture.h"
#include "view/legends.h"

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

  // A running drawing command refuses the letters of legends it may not draw, with its
  // button's message; others change the legend.
  ed.Reset();
  dialogs.shown.clear();
  ed.Toolbar2Click(mode::RECT);
  EXPECT_TRUE(ed.KeyDown('D', false));
  EXPECT_EQ(doc.CurrentLegend, 301);
  ASSERT_EQ(Messages(), std::vector<std::string>{"目前圖例不能畫矩形"});
  ed.KeyDown('T', false);
  EXPECT_EQ(doc.CurrentLegend, 304);
  Click(1000, 2000), Click(1010, 2000), Click(1010, 2010);  // no point there: the buffer waits
  ed.StartCommand(mode::QDIS);
  ed.KeyDown('D', false);  // an inquiry draws nothing: any legend
  EXPECT_EQ(doc.CurrentLegend, 114);
}

TEST_F(Machine, EscOrASecondPressEndsTheCommand) {
  Pt(1000, 2000);
  Pt(1010, 2000);
  Pt(1010, 2010);
  doc.CurrentLegend = 301;
  struct Case {
    const char* what;
    std::function<void()> start;
    std::function<void()> end;
  };
  const auto esc = [&] { EXPECT_TRUE(ed.KeyDown(Editor::KeyEscape, false)); };
  const Case cases[] = {
      {"a chain, by Esc", [&] { ed.Toolbar2Click(mode::Line), Click(1000, 2000), Click(1010, 2000); }, esc},
      {"a chain, by its button", [&] { ed.Toolbar2Click(mode::Line), Click(1000, 2000); },
       [&] { ed.Toolbar2Click(mode::Line); }},
      {"a rectangle half picked", [&] { ed.Toolbar2Click(mode::RECT), Click(1000, 2000); }, esc},
      {"an area ring", [&] { ed.StartCommand(mode::QAREA), Click(1000, 2000), Click(1010, 2000); }, esc},
      {"a window being drawn",
       [&] { ed.Toolbar1Click("ZW"), ed.MouseDownAt(LeftButton, 1000, 2000), ed.MouseMoveAt(LeftButton, 1005, 2005); },
       esc},
      {"the window command, by its button", [&] { ed.Toolbar1Click("ZW"); }, [&] { ed.Toolbar1Click("ZW"); }},
      {"a perpendicular after its point", [&] { ed.StartCommand(mode::NP_PerOf), Click(1000, 2000); }, esc},
      {"the pan of the menu, after a drag",
       [&] {
         ed.StartCommand(mode::PAN);
         ed.MouseDownAt(LeftButton, 1000, 2000), ed.MouseUpAt(LeftButton, 1000, 2000);
         EXPECT_EQ(host.Count("EndPan"), 1);  // a plain drag pans, and the mode stays
       },
       esc},
      {"a lead point, by its button", [&] { ed.Toolbar1Click("手動引點"); }, [&] { ed.Toolbar1Click("手動引點"); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    c.start();
    ASSERT_NE(ed.Ptr.ActionMode, "");
    const auto entities = doc.EntityCount;
    dialogs.shown.clear();
    c.end();
    EXPECT_EQ(ed.Ptr.ActionMode, "");
    EXPECT_FALSE(ed.Ptr.LineInProgress || ed.Ptr.Windowing || ed.Ptr.BandShown);
    EXPECT_EQ(ed.Buffers[0].Count + ed.Area.AreaRingCount, 0);
    EXPECT_EQ(doc.EntityCount, entities);  // ending adds nothing
    EXPECT_TRUE(view::LegendButton_Click(ed.Ptr.ActionMode, dialogs));
    ed.MouseUpAt(LeftButton, 1005, 2005);
    EXPECT_EQ(host.Count("ZoomWindow"), 0);
  }
  EXPECT_FALSE(ed.KeyDown(Editor::KeyEscape, false));  // nothing runs
  // A dialog's pick mode is the dialog's to end.
  ed.StartCommand("STKOUT");
  ed.KeyDown(Editor::KeyEscape, false);
  EXPECT_EQ(ed.Ptr.ActionMode, "STKOUT");
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
