#include "view/legends.h"

#include <gtest/gtest.h>

#include "core/text.h"
#include "platform/scripted/scripted.h"

namespace tavik::view {
namespace {

std::string Padded(const std::string& s) {
  std::string out = s;
  for (std::size_t n = text::CharCount(s); n < 14; ++n) out += ' ';
  return out;
}

TEST(Vocabularies, MenuTextsAndReportNamesDifferWhereTheyShould) {
  struct Case {
    int code;
    const char* menu;
    const char* name;  // nullptr: no report text
  } cases[] = {
      {101, "GPS衛星點", nullptr}, {110, "三角點", "三角點"}, {211, "1籬笆", "籬笆"},
      {227, "17詳如備註", "17詳如附件"}, {301, "建物,房屋", "建物_房屋_牆壁"}, {408, "礨石牆", "疊石牆"},
      {846, "水泥坎,擋土牆", "水泥坎,擋土牆"}, {931, "湖泊", "湖泊"},
      // Known only to the report list; known to neither.
      {12, "", "文字註記"}, {251, "", "經界線"}, {999, "", "999未知圖例"},
      {0, "", nullptr}, {500, "", nullptr}, {932, "", nullptr}, {-5, "", nullptr}, {1000, "", nullptr},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LegendMenuText(c.code), c.menu) << c.code;
    EXPECT_EQ(LegendName(c.code), c.name ? Padded(c.name) : std::string()) << c.code;
  }
  EXPECT_EQ(text::CharCount(LegendName(846)), 14u);
  // The string table also holds the log buttons' captions, which are not legends.
  EXPECT_EQ(StringTableText(933), "暫停連續記錄");
  EXPECT_EQ(StringTableText(301), "建物,房屋");
  EXPECT_EQ(LegendMenuText(935), "");
}

TEST(Vocabularies, EveryMenuCodeButThreeHasAReportName) {
  int without = 0;
  for (int code : MenuCodes())
    if (LegendName(code).empty()) ++without;
  EXPECT_EQ(without, 3);
  EXPECT_EQ(MenuCodes().size(), 176u);
  EXPECT_EQ(SymbolGlyphCodes().size(), 119u);  // 115 routines, the five bridges sharing one
  for (int code : SymbolGlyphCodes()) EXPECT_FALSE(LegendMenuText(code).empty()) << code;
}

TEST(RefusalSets, EachCommandRefusesItsOwnCodes) {
  using C = DrawCommand;
  struct Case {
    int code;
    bool line, rect, arc, circle, block, symbol;
  } cases[] = {
      {110, 0, 0, 0, 0, 0, 1}, {301, 1, 1, 1, 1, 0, 0}, {638, 0, 1, 0, 1, 1, 1}, {513, 1, 0, 1, 0, 0, 0},
      {521, 1, 0, 0, 0, 0, 0}, {235, 0, 0, 0, 0, 0, 0}, {604, 1, 1, 1, 1, 1, 0}, {833, 1, 1, 1, 1, 1, 0},
      {832, 1, 1, 1, 1, 0, 0}, {919, 0, 0, 0, 0, 1, 1}, {12, 1, 1, 1, 1, 1, 1}, {999, 1, 1, 1, 1, 1, 1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LegendAllows(C::Line, c.code), c.line) << c.code;
    EXPECT_EQ(LegendAllows(C::Rect, c.code), c.rect) << c.code;
    EXPECT_EQ(LegendAllows(C::Arc, c.code), c.arc) << c.code;
    EXPECT_EQ(LegendAllows(C::Circle2, c.code), c.circle) << c.code;
    EXPECT_EQ(LegendAllows(C::Circle3, c.code), c.circle) << c.code;
    EXPECT_EQ(LegendAllows(C::BlockNote, c.code), c.block) << c.code;
    EXPECT_EQ(LegendAllows(C::SymbolNote, c.code), c.symbol) << c.code;
  }
}

TEST(RefusalSets, RefusalShowsItsMessageUnderTheTitle) {
  // 235 is refused by every command, each with its own text.
  const std::pair<DrawCommand, const char*> cases[] = {
      {DrawCommand::Line, "目前圖例不能畫線"},    {DrawCommand::Rect, "目前圖例不能畫矩形"},
      {DrawCommand::Arc, "目前圖例不能畫弧"},     {DrawCommand::Circle2, "目前圖例不能畫圓"},
      {DrawCommand::Circle3, "目前圖例不能畫圓"}, {DrawCommand::BlockNote, "目前圖例不能做[區塊註記]"},
      {DrawCommand::SymbolNote, "目前圖例不能做[實物註記]"},
  };
  Document doc;
  ui::ScriptedDialogs dialogs;
  EXPECT_TRUE(CheckCurrentLegend(DrawCommand::Rect, doc, dialogs));  // 301, the legend at start
  doc.CurrentLegend = 235;
  for (const auto& [command, text] : cases) {
    dialogs.shown.clear();
    EXPECT_FALSE(CheckCurrentLegend(command, doc, dialogs));
    ASSERT_EQ(dialogs.shown.size(), 1u);
    EXPECT_EQ(dialogs.shown[0].text + "|" + dialogs.shown[0].title, std::string(text) + "|屬性限制");
  }
}

TEST(Picker, NineTabsByClassOpenOnlyWithoutACommand) {
  const auto& tabs = LegMenuTabs();
  ASSERT_EQ(tabs.size(), 9u);
  std::size_t total = 0;
  for (const LegendTab& tab : tabs) {
    for (int code : tab.codes) EXPECT_EQ(code / 100, tab.classDigit);
    total += tab.codes.size();
  }
  EXPECT_EQ(total, MenuCodes().size());

  Document doc;
  LegMenuPick(doc, 707);
  EXPECT_EQ(doc.CurrentLegend, 707);
  LegMenuPick(doc, 12);  // not a button of the picker
  EXPECT_EQ(doc.CurrentLegend, 707);
  EXPECT_FALSE(EduLegendsPick(doc, 301));
  EXPECT_EQ(doc.CurrentLegend, 707);
  EXPECT_TRUE(EduLegendsPick(doc, 235));
  EXPECT_EQ(doc.CurrentLegend, 235);

  // The picker opens only while no command runs.
  ui::ScriptedDialogs dialogs;
  EXPECT_TRUE(LegendButton_Click("", dialogs));
  EXPECT_TRUE(dialogs.shown.empty());
  EXPECT_FALSE(LegendButton_Click("ZoomW", dialogs));
  ASSERT_EQ(dialogs.Messages().size(), 1u);
  EXPECT_EQ(dialogs.Messages()[0], "有動作在進行時,不能改圖例.");
}

}  // namespace
}  // namespace tavik::view
