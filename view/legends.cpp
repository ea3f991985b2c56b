#include "view/legends.h"

#include <algorithm>
#include <map>
#include <utility>

#include "core/text.h"

namespace tavik::view {
namespace {

using Table = std::map<int, std::string>;

const Table& MenuTable() {
  static const Table t = {
      {101, "GPS衛星點"}, {103, "重力點"}, {104, "天文點"}, {110, "三角點"}, {112, "精密導線點"},
      {113, "導線點"}, {114, "圖根點"}, {120, "一等水準點"}, {121, "普通水準點"}, {130, "都計樁"},
      {131, "界樁"}, {141, "航測佈標點"}, {199, "臨時樁"},
      {201, "連接線"}, {205, "16延長線"}, {206, "14待協助指界"}, {207, "15區界線"}, {211, "1籬笆"},
      {215, "5屋簷"}, {217, "7巷子"}, {220, "10騎樓"}, {227, "17詳如備註"}, {228, "18自行定義1"},
      {229, "19自行定義2"}, {230, "20自行定義3"}, {231, "13參照舊地籍圖"}, {235, "地號"},
      {237, "11計畫道路"}, {266, "範圍線"}, {267, "分割線"},
      {301, "建物,房屋"}, {302, "建築中房屋"}, {304, "臨時屋"}, {307, "醫院"}, {308, "衛生所(局)"},
      {310, "學校"}, {315, "防空洞"}, {316, "警察局,派出所"}, {320, "教堂,教會"}, {321, "寺廟"},
      {322, "土地廟"}, {324, "紀念塔,華表"}, {327, "體育館"}, {330, "古蹟,紀念祠"}, {340, "溫室"},
      {342, "抽水站"}, {345, "礦場"}, {346, "工廠,工作場"}, {349, "堆積場"}, {351, "站牌,候車亭"},
      {352, "火車站"}, {356, "倉庫"}, {363, "電信局"}, {368, "油庫"}, {369, "加油站"},
      {407, "圍牆"}, {408, "礨石牆"}, {409, "板牆"}, {410, "鐵欄杆"}, {411, "水泥柵"}, {412, "鐵絲網"},
      {413, "生籬"}, {414, "竹籬"}, {415, "木柵"}, {416, "門"}, {417, "階梯"}, {419, "煙囟"},
      {420, "涼亭,棚架"}, {422, "司令台,升旗台"}, {423, "停車場"}, {430, "垃圾場"}, {431, "焚化爐"},
      {433, "柏油地"}, {434, "水泥地"}, {443, "運動場,球場"}, {445, "游泳池"}, {447, "溫泉"},
      {448, "紀念碑,紀念柱"}, {450, "銅像,藝像"}, {451, "牌樓"}, {464, "水塔,儲水池"}, {469, "井"},
      {470, "窯,金爐"}, {476, "天線,基地台"}, {480, "崗哨"}, {481, "碉堡"},
      {510, "土坎"}, {513, "結構線一"}, {514, "結構線二"}, {515, "斷線"}, {517, "獨立高程點"},
      {520, "縱斷面線"}, {521, "橫斷面線"},
      {601, "電信桿"}, {602, "人孔"}, {603, "電線"}, {604, "高壓電塔"}, {605, "電力桿"}, {606, "電話線"},
      {607, "第四台纜線"}, {608, "手孔"}, {609, "電氣箱,變電所"}, {612, "消防栓"}, {613, "自來水管"},
      {620, "貯存槽"}, {621, "油槽"}, {622, "輸油管"}, {623, "瓦斯管"}, {630, "電力人孔"},
      {632, "瓦斯人孔"}, {634, "自來水人孔"}, {636, "電信人孔"}, {638, "油管人孔"},
      {701, "針葉林"}, {702, "闊葉林"}, {703, "竹林"}, {704, "雜樹林"}, {705, "雜草地"}, {706, "墓地"},
      {707, "獨立樹"}, {708, "苗圃"}, {709, "花圃"}, {710, "水田"}, {711, "旱田"}, {712, "蔗田"},
      {713, "茶園"}, {714, "果園"}, {715, "細草地"}, {716, "魚池,魚塭"}, {718, "菜圃,菜田"},
      {719, "鹽田"}, {721, "空地,荒地"}, {723, "地類界"}, {725, "田埂"}, {731, "防風林"},
      {801, "國道"}, {802, "硬路面道路"}, {811, "建築中道路"}, {813, "土路,碎石路"}, {814, "小徑"},
      {817, "鐵路"}, {819, "小鐵路"}, {832, "鐵橋"}, {833, "混凝土橋"}, {834, "磚石橋"}, {835, "木橋"},
      {838, "吊橋"}, {839, "隧道"}, {840, "人行道"}, {841, "行人路橋"}, {843, "地下道出入口"},
      {846, "水泥坎,擋土牆"}, {847, "礨石坎"}, {849, "涵箱"}, {850, "涵管"}, {851, "分隔島"},
      {852, "平交道柵欄"}, {853, "鐵路轉轍器"}, {861, "瞭望台"}, {863, "路燈"}, {870, "交通標誌"},
      {871, "交通燈號"}, {872, "國道標誌"}, {873, "省道標誌"}, {874, "縣市道標誌"},
      {901, "水涯線"}, {905, "水溝"}, {916, "沙地,石礫地"}, {919, "水流方向"}, {920, "蛇籠"},
      {921, "堤坊"}, {922, "水壩"}, {924, "水閘"}, {925, "消波塊"}, {930, "水池"}, {931, "湖泊"},
  };
  return t;
}

// The report vocabulary before padding: the menu's codes less 101, 103, 104, some spelled
// otherwise, and codes the picker never offers.
const Table& NameTable() {
  static const Table t = [] {
    Table n = MenuTable();
    n.erase(101);
    n.erase(103);
    n.erase(104);
    const std::pair<int, const char*> otherwise[] = {
        {211, "籬笆"}, {215, "屋簷"}, {217, "巷子"}, {220, "騎樓"}, {227, "17詳如附件"},
        {301, "建物_房屋_牆壁"}, {308, "衛生所"}, {316, "警局"}, {320, "教會_教堂"},
        {324, "紀念塔_紀念柱"}, {330, "古蹟_紀念詞"}, {346, "工廠_工場"}, {351, "站牌"},
        {408, "疊石牆"}, {410, "鐵欄桿"}, {411, "水泥柵欄"}, {417, "樓梯_階梯"},
        {12, "文字註記"}, {13, "面積註記"}, {99, "流水號"}, {168, "軌跡"}, {251, "經界線"},
        {299, "底圖"}, {812, "高架道路"}, {818, "建築中鐵路"}, {820, "高架鐵路"}, {999, "999未知圖例"}};
    for (const auto& [code, text] : otherwise) n[code] = text;
    return n;
  }();
  return t;
}

struct Range {
  int lo, hi;
};
using RangeSet = std::vector<Range>;

bool InSet(const RangeSet& set, int code) {
  return std::any_of(set.begin(), set.end(), [code](const Range& r) { return code >= r.lo && code <= r.hi; });
}

const RangeSet kLineRefused = {{110, 110}, {112, 114}, {120, 121}, {130, 131}, {141, 141}, {199, 199},
                               {235, 235}, {517, 517}, {601, 602}, {605, 605}, {608, 608}, {612, 612},
                               {630, 630}, {632, 632}, {634, 634}, {636, 636}, {638, 638}, {707, 707},
                               {863, 863}, {870, 874}, {919, 919}};
const RangeSet kRectRefused = {{110, 110}, {112, 114}, {120, 121}, {130, 131}, {141, 141}, {199, 199},
                               {235, 235}, {513, 515}, {517, 517}, {520, 521}, {601, 602}, {605, 605},
                               {608, 608}, {612, 612}, {630, 630}, {632, 632}, {634, 634}, {636, 636},
                               {863, 863}, {870, 874}, {919, 919}};
const RangeSet kArcRefused = {{110, 110}, {112, 114}, {120, 121}, {130, 131}, {141, 141}, {199, 199},
                              {235, 235}, {517, 517}, {521, 521}, {601, 602}, {605, 605}, {608, 608},
                              {612, 612}, {630, 630}, {632, 632}, {634, 634}, {636, 636}, {638, 638},
                              {707, 707}, {863, 863}, {870, 874}, {919, 919}};
const RangeSet kBlockNoteRefused = {
    {110, 110}, {112, 114}, {120, 121}, {130, 131}, {141, 141}, {199, 199}, {201, 201}, {205, 207},
    {231, 231}, {235, 235}, {237, 237}, {251, 251}, {301, 301}, {407, 415}, {510, 510}, {513, 515},
    {517, 517}, {520, 521}, {601, 601}, {603, 603}, {606, 608}, {613, 613}, {622, 623}, {723, 723},
    {725, 725}, {801, 802}, {811, 814}, {817, 820}, {832, 832}, {834, 835}, {838, 839}, {846, 847},
    {901, 901}, {905, 905}};
const RangeSet kSymbolNoteRefused = {
    {201, 201}, {205, 207}, {231, 231}, {235, 235}, {237, 237}, {251, 251}, {301, 301}, {407, 415},
    {510, 510}, {513, 515}, {520, 521}, {603, 604}, {606, 607}, {609, 609}, {613, 613}, {620, 622},
    {723, 723}, {725, 725}, {801, 802}, {811, 814}, {817, 820}, {832, 835}, {838, 839}, {846, 847},
    {901, 901}, {905, 905}, {916, 916}, {920, 922}, {925, 925}, {930, 931}};

const RangeSet& RefusedSet(DrawCommand c) {
  switch (c) {
    case DrawCommand::Line: return kLineRefused;
    case DrawCommand::Rect:
    case DrawCommand::Circle2:
    case DrawCommand::Circle3: return kRectRefused;
    case DrawCommand::Arc: return kArcRefused;
    case DrawCommand::BlockNote: return kBlockNoteRefused;
    case DrawCommand::SymbolNote: return kSymbolNoteRefused;
  }
  return kLineRefused;
}

const char* RefusalText(DrawCommand c) {
  switch (c) {
    case DrawCommand::Line: return "目前圖例不能畫線";
    case DrawCommand::Rect: return "目前圖例不能畫矩形";
    case DrawCommand::Arc: return "目前圖例不能畫弧";
    case DrawCommand::Circle2:
    case DrawCommand::Circle3: return "目前圖例不能畫圓";
    case DrawCommand::BlockNote: return "目前圖例不能做[區塊註記]";
    case DrawCommand::SymbolNote: return "目前圖例不能做[實物註記]";
  }
  return "";
}

}  // namespace

std::string LegendMenuText(int code) {
  auto it = MenuTable().find(code);
  return it == MenuTable().end() ? std::string() : it->second;
}

std::string StringTableText(int key) {
  switch (key) {
    case 932: return "連續記錄";
    case 933: return "暫停連續記錄";
    case 934: return "手動記錄";
    case 935: return "全站儀觀測";
    default: return LegendMenuText(key);
  }
}

std::string LegendName(int code) {
  auto it = NameTable().find(code);
  if (it == NameTable().end()) return {};
  std::string out = it->second;
  for (std::size_t n = text::CharCount(out); n < 14; ++n) out.push_back(' ');
  return out;
}

ui::Rgb LegendColour(int code) {
  using ui::MakeRgb;
  switch (code) {
    case 12: case 235: return MakeRgb(0, 0, 0);
    case 13: case 168: case 517: return MakeRgb(150, 75, 0);
    case 266: return MakeRgb(200, 0, 0);
    case 267: return MakeRgb(0, 0, 220);
    case 302: case 304: return MakeRgb(90, 90, 90);
    case 513: case 514: case 515: return MakeRgb(255, 128, 0);
    case 520: case 521: return MakeRgb(0, 140, 140);
    case 707: case 731: return MakeRgb(0, 130, 0);
    case 916: return MakeRgb(170, 130, 0);
    case 817: case 819: return MakeRgb(0, 0, 0);
    default: break;
  }
  switch (code / 100) {
    case 1: return MakeRgb(255, 0, 0);      // control points
    case 2: return MakeRgb(220, 0, 220);    // cadastral lines
    case 3: return MakeRgb(0, 0, 0);        // buildings
    case 4: return MakeRgb(70, 70, 70);     // structures
    case 5: return MakeRgb(150, 75, 0);     // relief
    case 6: return MakeRgb(200, 60, 0);     // utilities
    case 7: return MakeRgb(0, 150, 0);      // land cover
    case 8: return MakeRgb(128, 40, 40);    // traffic
    case 9: return MakeRgb(0, 90, 255);     // water
    default: return MakeRgb(0, 0, 0);
  }
}

int LegendWidth(int code) {
  switch (code) {
    case 301: case 801: case 802: case 817: case 922: return 2;
    default: return 1;
  }
}

ui::LineStyle LegendStyle(int code) {
  using ui::LineStyle;
  switch (code) {
    case 206: case 237: case 513: case 811: case 839: return LineStyle::Dash;
    case 207: case 514: return LineStyle::DashDot;
    case 515: case 723: case 725: return LineStyle::Dot;
    case 520: case 521: return LineStyle::DashDotDot;
    default: return LineStyle::Solid;
  }
}

const std::vector<int>& SymbolGlyphCodes() {
  static const std::vector<int> codes = {
      110, 112, 113, 114, 120, 121, 130, 131, 141, 199, 302, 304, 307, 308, 310, 315, 316, 320, 321,
      322, 324, 327, 330, 340, 342, 345, 346, 349, 351, 352, 356, 363, 368, 369, 416, 417, 419, 420,
      422, 423, 430, 431, 433, 434, 443, 445, 447, 448, 450, 451, 464, 469, 470, 476, 480, 481, 517,
      601, 602, 604, 605, 608, 609, 612, 620, 621, 630, 632, 634, 636, 638, 701, 702, 703, 704, 705,
      706, 707, 708, 709, 710, 711, 712, 713, 714, 715, 716, 718, 719, 721, 731, 832, 833, 834, 835,
      838, 840, 841, 843, 849, 850, 851, 852, 853, 861, 863, 870, 871, 872, 873, 874, 916, 919, 920,
      922, 924, 925, 930, 931};
  return codes;
}

bool HasSymbolGlyph(int code) {
  const auto& c = SymbolGlyphCodes();
  return std::binary_search(c.begin(), c.end(), code);
}

const std::vector<int>& MenuCodes() {
  static const std::vector<int> codes = [] {
    std::vector<int> v;
    for (const auto& [code, text] : MenuTable()) v.push_back(code);
    return v;
  }();
  return codes;
}

bool LegendAllows(DrawCommand command, int code) { return !InSet(RefusedSet(command), code); }

bool CheckCurrentLegend(DrawCommand command, const Document& doc, ui::Dialogs& dialogs) {
  if (LegendAllows(command, doc.CurrentLegend)) return true;
  dialogs.MsgBox(RefusalText(command), "屬性限制");
  return false;
}

bool LegendButton_Click(const std::string& actionMode, ui::Dialogs& dialogs) {
  if (actionMode.empty()) return true;
  dialogs.MsgBox("有動作在進行時,不能改圖例.");
  return false;
}

const std::vector<LegendTab>& LegMenuTabs() {
  static const std::vector<LegendTab> tabs = [] {
    const char* titles[9] = {"控制點", "地籍線", "建物", "構造物", "地貌", "管線", "地類", "交通", "水系"};
    std::vector<LegendTab> t;
    for (int d = 1; d <= 9; ++d) t.push_back({d, titles[d - 1], {}});
    for (int code : MenuCodes()) t[static_cast<std::size_t>(code / 100 - 1)].codes.push_back(code);
    return t;
  }();
  return tabs;
}

void LegMenuPick(Document& doc, int code) {
  if (!LegendMenuText(code).empty()) doc.CurrentLegend = static_cast<int16_t>(code);
}

bool EduLegendsPick(Document& doc, int code) {
  if (code != 235 && code != 201) return false;
  doc.CurrentLegend = static_cast<int16_t>(code);
  return true;
}

}  // namespace tavik::view
