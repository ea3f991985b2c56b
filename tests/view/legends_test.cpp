#include "view/legends.h"

#include <gtest/gtest.h>

#include <set>

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
      {101, "GPS衛星點", nullptr}, {103, "重力點", nullptr}, {104, "天文點", nullptr},
      {110, "三角點", "三角點"}, {205, "16延長線", "16延長線"}, {211, "1籬笆", "籬笆"},
      {215, "5屋簷", "屋簷"}, {217, "7巷子", "巷子"}, {220, "10騎樓", "騎樓"},
      {227, "17詳如備註", "17詳如附件"}, {301, "建物,房屋", "建物_房屋_牆壁"}, {308, "衛生所(局)", "衛生所"},
      {316, "警察局,派出所", "警局"}, {320, "教堂,教會", "教會_教堂"}, {324, "紀念塔,華表", "紀念塔_紀念柱"},
      {330, "古蹟,紀念祠", "古蹟_紀念詞"}, {346, "工廠,工作場", "工廠_工場"}, {351, "站牌,候車亭", "站牌"},
      {408, "礨石牆", "疊石牆"}, {410, "鐵欄杆", "鐵欄桿"}, {411, "水泥柵", "水泥柵欄"},
      {417, "階梯", "樓梯_階梯"}, {419, "煙囟", "煙囟"}, {846, "水泥坎,擋土牆", "水泥坎,擋土牆"},
      {931, "湖泊", "湖泊"},
      // Known only to the report list.
      {12, "", "文字註記"}, {13, "", "面積註記"}, {99, "", "流水號"}, {168, "", "軌跡"}, {251, "", "經界線"},
      {299, "", "底圖"}, {812, "", "高架道路"}, {818, "", "建築中鐵路"}, {820, "", "高架鐵路"},
      {999, "", "999未知圖例"},
      // Known to neither.
      {0, "", nullptr}, {100, "", nullptr}, {500, "", nullptr}, {932, "", nullptr}, {-5, "", nullptr},
      {1000, "", nullptr},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LegendMenuText(c.code), c.menu) << c.code;
    EXPECT_EQ(LegendName(c.code), c.name ? Padded(c.name) : std::string()) << c.code;
  }
  EXPECT_EQ(text::CharCount(LegendName(846)), 14u);
}

TEST(Vocabularies, StringTableHoldsTheLogButtonCaptions) {
  EXPECT_EQ(StringTableText(932), "連續記錄");
  EXPECT_EQ(StringTableText(933), "暫停連續記錄");
  EXPECT_EQ(StringTableText(934), "手動記錄");
  EXPECT_EQ(StringTableText(935), "全站儀觀測");
  EXPECT_EQ(StringTableText(301), "建物,房屋");
  EXPECT_EQ(LegendMenuText(935), "");  // not a legend
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
      {110, false, false, false, false, false, true},
      {301, true, true, true, true, false, false},
      {638, false, true, false, true, true, true},
      {707, false, true, false, true, true, true},
      {513, true, false, true, false, false, false},
      {520, true, false, true, false, false, false},
      {521, true, false, false, false, false, false},
      {235, false, false, false, false, false, false},
      {604, true, true, true, true, true, false},
      {603, true, true, true, true, false, false},
      {201, true, true, true, true, false, false},
      {819, true, true, true, true, false, false},
      {833, true, true, true, true, true, false},
      {832, true, true, true, true, false, false},
      {919, false, false, false, false, true, true},
      {12, true, true, true, true, true, true},
      {999, true, true, true, true, true, true},
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
  struct Case {
    DrawCommand command;
    int code;
    const char* text;
  } cases[] = {
      {DrawCommand::Line, 110, "目前圖例不能畫線"},
      {DrawCommand::Rect, 513, "目前圖例不能畫矩形"},
      {DrawCommand::Arc, 521, "目前圖例不能畫弧"},
      {DrawCommand::Circle2, 520, "目前圖例不能畫圓"},
      {DrawCommand::Circle3, 863, "目前圖例不能畫圓"},
      {DrawCommand::BlockNote, 301, "目前圖例不能做[區塊註記]"},
      {DrawCommand::SymbolNote, 930, "目前圖例不能做[實物註記]"},
  };
  for (const Case& c : cases) {
    Document doc;
    doc.CurrentLegend = static_cast<int16_t>(c.code);
    ui::ScriptedDialogs dialogs;
    EXPECT_FALSE(CheckCurrentLegend(c.command, doc, dialogs));
    ASSERT_EQ(dialogs.shown.size(), 1u);
    EXPECT_EQ(dialogs.shown[0].text, c.text);
    EXPECT_EQ(dialogs.shown[0].title, "屬性限制");
  }
  Document doc;
  EXPECT_EQ(doc.CurrentLegend, 301);
  ui::ScriptedDialogs dialogs;
  EXPECT_TRUE(CheckCurrentLegend(DrawCommand::Rect, doc, dialogs));
  EXPECT_TRUE(dialogs.shown.empty());
}

TEST(Picker, NineTabsHoldEveryMenuCodeByClass) {
  const auto& tabs = LegMenuTabs();
  ASSERT_EQ(tabs.size(), 9u);
  std::size_t total = 0;
  for (const LegendTab& tab : tabs) {
    for (int code : tab.codes) EXPECT_EQ(code / 100, tab.classDigit);
    total += tab.codes.size();
  }
  EXPECT_EQ(total, MenuCodes().size());
  EXPECT_EQ(std::string(LegMenuCaption), "九大地類--圖例選單");

  Document doc;
  LegMenuPick(doc, 707);
  EXPECT_EQ(doc.CurrentLegend, 707);
  LegMenuPick(doc, 12);  // not a button of the picker
  EXPECT_EQ(doc.CurrentLegend, 707);
  EXPECT_FALSE(EduLegendsPick(doc, 301));
  EXPECT_EQ(doc.CurrentLegend, 707);
  EXPECT_TRUE(EduLegendsPick(doc, 235));
  EXPECT_EQ(doc.CurrentLegend, 235);
  EXPECT_TRUE(EduLegendsPick(doc, 201));
  EXPECT_EQ(doc.CurrentLegend, 201);
}

TEST(Picker, LegendButtonRefusesWhileACommandRuns) {
  ui::ScriptedDialogs dialogs;
  EXPECT_TRUE(LegendButton_Click("", dialogs));
  EXPECT_TRUE(dialogs.shown.empty());
  EXPECT_FALSE(LegendButton_Click("ZoomW", dialogs));
  ASSERT_EQ(dialogs.Messages().size(), 1u);
  EXPECT_EQ(dialogs.Messages()[0], "有動作在進行時,不能改圖例.");
}

}  // namespace
}  // namespace tavik::view
