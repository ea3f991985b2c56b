// The view commands: whole extent, previous view, window, set scale, centre on the
// station or the last point, zoom in and out, drag-pan and the scroll bars. Each but
// the previous view first pushes the present view; each ends in the fixed tail.
#pragma once

#include <string>

#include "view/canvas.h"

namespace tavik::view {

// The fixed tail after any view change: ComputeView, RedrawAll, the screen tables, the
// recovery header, the scale in status panel 1 and the scroll bars.
void AfterViewChange(MapCanvas& c);

// Each returns true when the view changed.
bool ZE(MapCanvas& c);
bool ZP(MapCanvas& c);
// ZW: enters the window mode; the pointer machine later calls ZoomWindowFit.
void ZW(std::string& actionMode, ViewUi& ui);
bool ZoomWindowFit(MapCanvas& c, double E1, double N1, double E2, double N2);
bool ZS(MapCanvas& c);
bool ZC(MapCanvas& c);
bool ZT(MapCanvas& c);
bool ZoomIn(MapCanvas& c);   // F12
bool ZoomOut(MapCanvas& c);  // F11
// The mouse wheel: one step of ZoomIn or ZoomOut about the pixel (x, y) of Paper1, whose
// ground stays under the pointer. The view is pushed and the tail runs, as for the keys.
bool ZoomAbout(MapCanvas& c, bool in, float x, float y);

// Largest scale denominator the view accepts; zooming out stops there.
constexpr double MaxScaleDenominator = 1e8;

// Drag-pan. Pixels are those of Board (the visible window), which stays put while Paper1
// moves under it.
struct PanDrag {
  bool active = false;
  float anchorX = 0, anchorY = 0;
  double startE = 0, startN = 0;
};
void PanStart(MapCanvas& c, PanDrag& pan, float x, float y);
// Shifts the centre and moves Paper1 by the fast path; nothing is drawn.
void PanMove(MapCanvas& c, PanDrag& pan, float x, float y);
// The full tail.
void PanEnd(MapCanvas& c, PanDrag& pan);

// Moving a scroll bar (0..100): a new centre by the fast path, the screen tables and
// the recovery header, without a repaint.
void HScrollTo(MapCanvas& c, int value);
void VScrollTo(MapCanvas& c, int value);
// ShowScrollBars: both bars from the present view.
void ShowScrollBars(MapCanvas& c);

// Display toggles of Toolbar1; each flips its flag and repaints, and returns the new
// state. SwitchBM shows the base map only in a document that has one, once it is set
// up; otherwise it says why and changes nothing.
bool SwitchPtName(MapCanvas& c);
bool SwitchBM(MapCanvas& c, bool baseMapSetUp);
bool SwitchBreak(MapCanvas& c);
bool DispGrid(MapCanvas& c);
bool SwitchEle(MapCanvas& c);
bool SwitchVertical(MapCanvas& c);  // 垂距開關
bool SwitchSN(MapCanvas& c);
// The state of the toggle with that Toolbar1 key, for its button; false for another key.
bool ToggleState(const Display& display, const std::string& key, bool& on);

// A new point or entity is drawn straight onto the picture.
void DrawNewPoint(MapCanvas& c, std::size_t row);
void DrawNewEntity(MapCanvas& c, std::size_t row);

}  // namespace tavik::view
