// The keys of the main window, the toolbar buttons by their key text, and the legend
// hot keys. A toolbar button compares its key; a drawing button first checks that the
// legend in force may be drawn as that geometry.
#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

#include "core/numbers.h"
#include "edit/editor.h"
#include "edit/modes.h"
#include "view/legends.h"

namespace tavik::edit {

namespace {

struct HotKey {
  char letter;
  int16_t code;
  const char* name;
};

// R and U are not legends: they repaint and undelete.
constexpr std::array<HotKey, 24> kHotKeys{{
    {'A', 517, "獨立高程點"},      {'B', 515, "斷線"},        {'C', 602, "人孔"},
    {'D', 114, "圖根點"},          {'E', 601, "電信桿"},      {'F', 612, "消防栓"},
    {'G', 723, "地類界"},          {'H', 301, "建物/房屋"},   {'I', 802, "硬路面道路"},
    {'J', 407, "圍牆"},            {'K', 846, "水泥坎/擋土牆"}, {'L', 863, "路燈"},
    {'M', 510, "土坎"},            {'N', 847, "礨石坎"},      {'O', 605, "電力桿"},
    {'P', 434, "水泥地"},          {'Q', 433, "柏油地"},      {'S', 814, "小徑"},
    {'T', 304, "臨時屋"},          {'V', 131, "界樁"},        {'W', 705, "雜草地"},
    {'X', 813, "碎石路 / 土路"},   {'Y', 709, "花圃 / 花園"}, {'Z', 715, "細草地"},
}};

bool IsZoomKey(const std::string& k) {
  return k == "ZE" || k == "ZP" || k == "ZS" || k == "ZC" || k == "ZT" || k == "ZoomOut" || k == "ZoomIn";
}
// The legend check of a drawing mode; none for the modes that take any legend.
std::optional<view::DrawCommand> DrawCommandOf(const std::string& m) {
  using view::DrawCommand;
  if (m == mode::Line) return DrawCommand::Line;
  if (m == mode::RECT) return DrawCommand::Rect;
  if (m == mode::ARC) return DrawCommand::Arc;
  if (m == mode::P2C) return DrawCommand::Circle2;
  if (m == mode::P3C) return DrawCommand::Circle3;
  if (m == mode::Label) return DrawCommand::BlockNote;
  if (m == mode::Symbol) return DrawCommand::SymbolNote;
  return std::nullopt;
}

bool IsToggleKey(const std::string& k) {
  return k == "SwitchPtName" || k == "SwitchBM" || k == "DispGrid" || k == "SwitchEle" || k == "垂距開關" ||
         k == "SwitchBreak" || k == "SwitchSN";
}

}  // namespace

void Editor::ViewKey(const std::string& key) {
  host.ViewCommand(key);
  Ptr.BandShown = false;  // the view repainted
}

int16_t Editor::HotKeyLegend(char letter) {
  const char up = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  for (const auto& h : kHotKeys)
    if (h.letter == up) return h.code;
  return 0;
}

std::vector<std::array<std::string, 3>> Editor::HotKeyTable() {
  std::vector<std::array<std::string, 3>> rows;
  for (const auto& h : kHotKeys) rows.push_back({std::string(1, h.letter), std::to_string(h.code), h.name});
  static const char* const others[][2] = {
      {"R", "重繪圖面"},       {"U", "救回刪除的資料"},   {"Ctrl+Z", "復原圖元編輯"}, {"Delete", "刪除最後一點"}, {"F2", "存檔"},
      {"F3", "測點註記"},       {"F4", "兩點連線"},         {"F5", "兩點畫圓"},         {"F6", "三點畫圓"},
      {"F7", "三點畫弧"},       {"F8", "三點矩形"},         {"F9", "自動連線開啟"},     {"F10", "自動連線關閉"},
      {"F11", "縮小"},          {"F12", "放大"},            {"c", "畫線中閉合"},        {"右鍵", "結束畫線"},
      {"Esc", "結束目前的指令"}, {"空白鍵", "觀測"},
  };
  for (const auto& o : others) rows.push_back({o[0], "", o[1]});
  return rows;
}

bool Editor::KeyDown(int key, bool shift) {
  switch (key) {
    case KeyDelete:
      DeleteLastPoint();
      return true;
    case KeyF1:
      if (shift) host.ShowManual();
      return shift;
    case KeyF2:
      host.FrameCommand("快速存檔");
      return true;
    case KeyF3: {
      // A note at the last surveyed point.
      int32_t row = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size())) - 1;
      while (row >= 0 && doc.PointTable[row].Deleted) --row;
      if (row >= 0) TextNote(doc.PointTable[row].E, doc.PointTable[row].N);
      return true;
    }
    case KeyF4:
      Flag = MeasuredShape::Line;
      return true;
    case KeyF5:
      Flag = MeasuredShape::Circle2;
      return true;
    case KeyF6:
      Flag = MeasuredShape::Circle3;
      return true;
    case KeyF7:
      Flag = MeasuredShape::Arc;
      return true;
    case KeyF8:
      Flag = MeasuredShape::Rectangle;
      return true;
    case KeyF9:
      AutoJoin = true;
      host.ShowStatus("全自動  開啟中");
      dialogs.MsgBox("注意：你已開啟自動連線功能,取消請按F10", "全自動  開啟中");
      return true;
    case KeyF10:
      AutoJoin = false;
      host.ShowStatus("全自動  已關閉");
      dialogs.MsgBox("自動連線功能已關閉", "全自動  已關閉");
      return true;
    case KeyF11:
      if (doc.IsOpen()) ViewKey("ZoomOut");
      return true;
    case KeyF12:
      if (doc.IsOpen()) ViewKey("ZoomIn");
      return true;
    case KeySpace:
      host.Measure();
      return true;
    case KeyEscape:
      return EndCommand();
    default:
      break;
  }
  if (key == 'R') {
    Repaint();
    return true;
  }
  if (key == 'U') {
    Undelete();
    return true;
  }
  if (key >= 'A' && key <= 'Z') {
    // During a chain the letter c closes it (KeyPress); no legend changes under a chain.
    if (Ptr.LineInProgress) return false;
    const int16_t code = HotKeyLegend(static_cast<char>(key));
    if (code == 0) return false;
    // A running drawing command keeps to the legends it may draw, as its button did
    // when it started: a refused letter says why and leaves the legend as it was.
    const int16_t before = doc.CurrentLegend;
    doc.CurrentLegend = code;
    if (const auto command = DrawCommandOf(Ptr.ActionMode);
        command && !view::CheckCurrentLegend(*command, doc, dialogs)) {
      doc.CurrentLegend = before;
      return true;
    }
    host.LegendChanged(code);
    return true;
  }
  return false;
}

bool Editor::KeyPress(char c) {
  if (c == 'c' && Ptr.LineInProgress) {
    CloseChain();
    return true;
  }
  if ((c == 'c' || c == 'C') && Ptr.ActionMode == mode::QAREA && !Area.AreaRing[0].empty()) {
    QueryAreaEnd();
    return true;
  }
  return false;
}

void Editor::Toolbar1Click(const std::string& key) {
  if (IsZoomKey(key)) {
    if (doc.IsOpen()) ViewKey(key);
    return;
  }
  if (key == "ZW") {
    if (!doc.IsOpen()) return;
    if (Ptr.ActionMode == mode::ZoomW)
      EndCommand();
    else
      StartCommand(mode::ZoomW);
    return;
  }
  if (IsToggleKey(key)) {
    ViewKey(key);
    return;
  }
  if (key == "輸入座標") {
    if (doc.IsOpen()) KeyinCoordinate();
    return;
  }
  if (key == "手動引點") {
    if (!doc.IsOpen()) return;
    if (Ptr.ActionMode == mode::SS1)
      EndCommand();
    else
      StartCommand(mode::SS1);
    return;
  }
  if (key == "輸入角度") {
    if (!doc.IsOpen()) return;
    if (host.MeasureMode() == "GPS") {
      if (!host.HasGpsFix()) {
        dialogs.MsgBox("請先進入接收資料狀態", "沒有GPS訊號");
        return;
      }
    } else if (!doc.StationSet) {
      dialogs.MsgBox("請先擺站", "要有原始方向");
      return;
    }
  }
  host.FrameCommand(key);
}

void Editor::Toolbar2Click(const std::string& key) {
  if (!doc.IsOpen()) return;
  if (key == Ptr.ActionMode) {  // a second press of the running command's button ends it
    EndCommand();
    return;
  }
  if (key == "Undelete") {
    Undelete();
    return;
  }
  if (key == mode::EraseP || key == mode::EraseEntity || key == mode::EraseWindow) {
    StartCommand(key);
    return;
  }
  if (!IsDrawingMode(key)) return;
  const auto command = DrawCommandOf(key);
  if (!command || view::CheckCurrentLegend(*command, doc, dialogs)) StartCommand(key);
}

bool Editor::EndCommand() {
  // The modes of the dialogs that wait for a pick (set-up, stake-out ...) belong to
  // those dialogs, which end them themselves.
  if (IsPluggedMode(Ptr.ActionMode)) return false;
  const bool running = !Ptr.ActionMode.empty() || Ptr.LineInProgress || Ptr.Windowing;
  if (Ptr.Windowing) {
    EraseBand();
    Ptr.Windowing = false;
    Ptr.DragAnchorX = Ptr.DragAnchorY = 0;
  }
  if (Area.AreaRingCount > 0) Repaint();  // the ring's red sides go with it
  StartCommand("");
  return running;
}

void Editor::StartCommand(const std::string& requested) {
  std::string m = requested;
  if (m == "Labl") m = mode::Label;
  if (m == "Symb") m = mode::Symbol;
  if (Ptr.LineInProgress) EndChain();
  AreaRingReset(Area);
  for (auto& b : Buffers) b = ShapeBuffer{};
  SetMode(m, PromptOf(m));
}

}  // namespace tavik::edit
