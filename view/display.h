// Display switches and colours of the map view.
#pragma once

#include <cstdint>
#include <functional>

#include "core/document.h"
#include "platform/surface.h"

namespace tavik::view {

struct Display {
  int16_t ShowBaseMap = kFalse;      // SwitchBM
  int16_t ShowPointNames = kTrue;    // SwitchPtName
  int16_t ShowBreakLines = kTrue;    // SwitchBreak: legends 513, 514, 515, 520, 521
  int16_t ShowReferenceMarks = kTrue;
  ui::Rgb ReferenceLineColour = ui::MakeRgb(124, 124, 124);
  ui::Rgb ReferencePointColour = ui::MakeRgb(124, 124, 124);
  ui::Rgb ReferenceTextColour = ui::MakeRgb(124, 124, 124);
  int16_t ReferenceEntityColourOn = kTrue;
  int16_t ReferenceTextColourOn = kTrue;

  // Toolbar1 toggles read by the repaint; each button shows its flag pressed.
  bool GridOn = false;        // DispGrid
  // SwitchEle: the height of every survey point. On from the start, so that the height
  // a shot draws beside its point in a topographic map stays through the repaints.
  bool ElevationsOn = true;
  bool VerticalOn = false;    // 垂距開關: every point's height above or below the station
  bool CodesOn = false;       // SwitchSN: the running number of every survey point

  // The display settings (顯示設定): the cross of every survey point, the size of every
  // map text and the width of every pen as factors of their own, and the paper colour.
  bool ShowPointMarks = true;
  double TextScale = 1;
  double LineWidthScale = 1;
  ui::Rgb Background = ui::MakeRgb(255, 255, 255);
  ui::Rgb PointColour = ui::MakeRgb(255, 0, 0);
  ui::Rgb TextColour = ui::MakeRgb(0, 0, 0);
  ui::Rgb BaseMapLineColour = ui::MakeRgb(0, 160, 160);
  ui::Rgb BaseMapTextColour = ui::MakeRgb(0, 120, 120);
  bool BaseMapCode12Marks = true;  // mark the Code 12 points of a base map

  // The matching overlay of the map-matching tools, when on.
  std::function<void()> MatchingOverlay;
  // Drawn first, on the bare background under everything else: the images under the map.
  std::function<void()> Underlay;
};

// The ranges the display settings offer for the two factors.
constexpr double MinTextScale = 0.5, MaxTextScale = 4;
constexpr double MinLineWidthScale = 0.5, MaxLineWidthScale = 5;

// A factor read from a settings file: within its range as it is, anything else 1.
inline double ScaleOrOne(double v, double lo, double hi) { return v >= lo && v <= hi ? v : 1; }

}  // namespace tavik::view
