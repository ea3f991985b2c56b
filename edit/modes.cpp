#include "edit/modes.h"

#include <array>

#include "edit/line_edit.h"

namespace tavik::edit {

namespace {
template <std::size_t n>
bool In(std::string_view m, const std::array<std::string_view, n>& set) {
  for (auto s : set)
    if (s == m) return true;
  return false;
}
}  // namespace

bool IsDrawingMode(std::string_view m) {
  static constexpr std::array<std::string_view, 8> set{"Line", "RECT", "P2C", "P3C", "ARC", "Text", "Symbol", "Label"};
  return In(m, set);
}

bool IsConstructionMode(std::string_view m) {
  static constexpr std::array<std::string_view, 8> set{"NP_MidOf", "NP_DevideTo", "NP_Extend",  "NP_PerOf",
                                                       "NP_IntOf", "PointProject", "QX2Line", "QX2LineMark"};
  return In(m, set);
}

bool IsPluggedMode(std::string_view m) {
  static constexpr std::array<std::string_view, 22> set{
      "MapMoveFree",   "MapRotateFree", "MatchRotFixP", "BaseRotFixP",     "MatchRotStep", "MatchSftStep",
      "MapMoveP",      "MapMoveCoordPos", "MapMoveLine", "BaseMoveBmByP",
      "BMEraseWindow", "FIT",           "FIT2",         "PickCoord",       "RESECT_BS",    "STKOUT",
      "GPSSTKOUT",     "BasePt",        "LD",           "LD_Opt6",         "LD_Opt7",      "LD_Opt8"};
  return In(m, set);
}

bool IsWindowMode(std::string_view m) {
  static constexpr std::array<std::string_view, 5> set{"EraseWindow", "ZoomW", "BMEraseWindow", "QX2Line",
                                                       "QX2LineMark"};
  return In(m, set);
}

std::string PromptOf(std::string_view m) {
  struct P {
    std::string_view mode, prompt;
  };
  static constexpr std::array<P, 17> prompts{{
      {"MatchRotFixP", "定點旋轉"},
      {"BaseRotFixP", "定點旋轉"},
      {"MatchRotStep", "微調旋轉"},
      {"MatchSftStep", "微調平移"},
      {"MapMoveP", "先抓圖面基準點,移到另一個實點位置"},
      {"MapMoveLine", "抓線頭對齊另一條線頭,線尾對齊另一條線尾"},
      {"MapMoveByLine2", "選點順序:先點選工作圖的兩點,再點選底圖上對應的兩點."},
      {"MapMoveBmByP", "請點選工作圖上的點,再點選底圖上對應的點(按右鍵結束)"},
      {"BaseLine", "按右鍵結束畫線"},
      {"BM_MakeP", "請點選底圖上的線"},
      {"BM_XLineMakeP", "請點選交點位置"},
      {"OFFSET", "(輸入距離後,在圖面上點選複製方向)"},
      {"NP_MidOf", "請點選一條線"},
      {"NP_DevideTo", "請點選一條線"},
      {"NP_Extend", "先選延伸線,再選被投射線"},
      {"NP_PerOf", "請選一個點"},
      {"NP_IntOf", "請點選交點位置"},
  }};
  for (const auto& p : prompts)
    if (p.mode == m) return std::string(p.prompt);
  if (m == "QX2Line" || m == "QX2LineMark") return "請點選交點位置";
  if (m == "LineTrim") return TrimFirstPrompt;
  if (m == "SS1") return "請點選引點的起點";
  if (m == "LD" || m == "LD_Opt6" || m == "LD_Opt7" || m == "LD_Opt8") return "請圈選分割土地範圍";
  return "";
}

}  // namespace tavik::edit
