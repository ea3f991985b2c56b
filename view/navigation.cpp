#include "view/navigation.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/text.h"
#include "view/extent.h"
#include "view/render.h"
#include "view/transform.h"

namespace tavik::view {
namespace {

void PushPresent(MapCanvas& c) { PushView(c.view, c.doc.ScaleDenominator, c.doc.ViewCentreE, c.doc.ViewCentreN, c.ui); }

void FastPath(MapCanvas& c) {
  float left, top;
  PaperOffsetForCentre(c.doc, c.view, left, top);
  c.ui.PlacePaper(left, top);
}

}  // namespace

void ShowScrollBars(MapCanvas& c) {
  int h, v;
  ScrollValues(c.doc, c.view, h, v);
  c.ui.SetScrollBars(h, v);
}

void AfterViewChange(MapCanvas& c) {
  ComputeView(c.doc, c.view, c.ui);
  c.ResetClip();
  RedrawAll(c);
  if (c.RebuildScreenTables) c.RebuildScreenTables();
  if (c.WriteRecoveryHeader) c.WriteRecoveryHeader();
  c.ui.SetStatusPanel(1, ScaleText(c.doc.ScaleDenominator));
  ShowScrollBars(c);
}

bool ZE(MapCanvas& c) {
  if (!c.doc.IsOpen()) return false;
  const double scale = c.doc.ScaleDenominator, E = c.doc.ViewCentreE, N = c.doc.ViewCentreN;
  if (!ExtentOfLiveData(c.doc)) return false;
  PushView(c.view, scale, E, N, c.ui);
  FitWholeExtent(c.doc, c.view, c.ui);
  AfterViewChange(c);
  return true;
}

bool ZP(MapCanvas& c) {
  if (!c.doc.IsOpen()) return false;
  if (!PopView(c.doc, c.view, c.ui)) return false;
  AfterViewChange(c);
  return true;
}

void ZW(std::string& actionMode, ViewUi& ui) {
  actionMode = "ZoomW";
  ui.SetToolbarPressed(ButtonZoomWindow, true);
}

bool ZoomWindowFit(MapCanvas& c, double E1, double N1, double E2, double N2) {
  if (!c.doc.IsOpen()) return false;
  if (!std::isfinite(E1) || !std::isfinite(N1) || !std::isfinite(E2) || !std::isfinite(N2)) return false;
  PushPresent(c);
  FitScale(c.doc, c.view, E1, N1, E2, N2, c.ui);
  c.doc.ViewCentreE = (E1 + E2) / 2;
  c.doc.ViewCentreN = (N1 + N2) / 2;
  c.ui.SetToolbarPressed(ButtonZoomWindow, false);
  AfterViewChange(c);
  return true;
}

bool ZS(MapCanvas& c) {
  if (!c.doc.IsOpen()) return false;
  const auto answer = c.dialogs.InputBox("新的螢幕圖比例尺:", "目前圖面比例尺 1:" + num::Plain(num::Int(c.doc.ScaleDenominator)),
                                         num::Plain(num::Int(c.doc.ScaleDenominator)));
  if (!answer || text::Trim(*answer).empty()) return false;
  const auto value = num::ParseStrict(*answer);
  if (!value || !(*value > 0) || *value > MaxScaleDenominator) {
    c.dialogs.MsgBox("比例尺不正確: " + *answer, "目前圖面比例尺 1:" + num::Plain(num::Int(c.doc.ScaleDenominator)));
    return false;
  }
  PushPresent(c);
  c.doc.ScaleDenominator = *value < 1 ? 1 : *value;
  AfterViewChange(c);
  return true;
}

bool ZC(MapCanvas& c) {
  if (!c.doc.IsOpen() || !c.doc.StationSet) return false;
  if (!std::isfinite(c.doc.StationE) || !std::isfinite(c.doc.StationN)) return false;
  PushPresent(c);
  c.doc.ViewCentreE = c.doc.StationE;
  c.doc.ViewCentreN = c.doc.StationN;
  AfterViewChange(c);
  return true;
}

bool ZT(MapCanvas& c) {
  if (!c.doc.IsOpen() || c.doc.PointTable.empty()) return false;
  const Point& last = c.doc.PointTable.back();
  if (!std::isfinite(last.E) || !std::isfinite(last.N)) return false;
  PushPresent(c);
  c.doc.ViewCentreE = last.E;
  c.doc.ViewCentreN = last.N;
  AfterViewChange(c);
  return true;
}

namespace {

// The scale one zoom step gives, or 0 when the step changes nothing: in by a quarter,
// not below 1; out by the inverse, not beyond MaxScaleDenominator.
double ZoomedScale(double scale, bool in) {
  if (in) return scale == 1 ? 0 : std::max(1.0, scale * 0.75);
  return scale / 0.75 <= MaxScaleDenominator ? scale / 0.75 : 0;
}

}  // namespace

bool ZoomIn(MapCanvas& c) {
  if (!c.doc.IsOpen()) return false;
  const double scale = ZoomedScale(c.doc.ScaleDenominator, true);
  if (scale == 0) return false;
  PushPresent(c);
  c.doc.ScaleDenominator = scale;
  AfterViewChange(c);
  return true;
}

bool ZoomOut(MapCanvas& c) {
  if (!c.doc.IsOpen()) return false;
  const double scale = ZoomedScale(c.doc.ScaleDenominator, false);
  if (scale == 0) return false;
  PushPresent(c);
  c.doc.ScaleDenominator = scale;
  AfterViewChange(c);
  return true;
}

bool ZoomAbout(MapCanvas& c, bool in, float x, float y) {
  if (!c.doc.IsOpen() || !std::isfinite(x) || !std::isfinite(y)) return false;
  const double scale = ZoomedScale(c.doc.ScaleDenominator, in);
  if (scale == 0) return false;
  double E, N;
  PaperToWorld(c.doc, c.view, x, y, E, N);
  PushPresent(c);
  c.doc.ScaleDenominator = scale;
  // The centre moves so that the same ground stays under the pointer: seen from the
  // centre of the paper, the pointer's pixel offset now stands for fewer or more metres.
  const double metresPerPixel = scale / 100 / PixelsPerCm;
  c.doc.ViewCentreE = E - (x - 2.0 * c.view.ViewWidthPixels) * metresPerPixel;
  c.doc.ViewCentreN = N + (y - 2.0 * c.view.ViewHeightPixels) * metresPerPixel;
  AfterViewChange(c);
  return true;
}

void PanStart(MapCanvas& c, PanDrag& pan, float x, float y) {
  PushPresent(c);
  pan.active = true;
  pan.anchorX = x;
  pan.anchorY = y;
  pan.startE = c.doc.ViewCentreE;
  pan.startN = c.doc.ViewCentreN;
}

void PanMove(MapCanvas& c, PanDrag& pan, float x, float y) {
  if (!pan.active) return;
  const double metresPerPixel = 1 / c.PixelsPerMetre();
  c.doc.ViewCentreE = pan.startE - (x - pan.anchorX) * metresPerPixel;
  c.doc.ViewCentreN = pan.startN + (y - pan.anchorY) * metresPerPixel;
  FastPath(c);
}

void PanEnd(MapCanvas& c, PanDrag& pan) {
  if (!pan.active) return;
  pan = PanDrag{};
  AfterViewChange(c);
}

static void AfterScroll(MapCanvas& c) {
  ComputeScreen(c.doc, c.view);
  FastPath(c);
  if (c.RebuildScreenTables) c.RebuildScreenTables();
  if (c.WriteRecoveryHeader) c.WriteRecoveryHeader();
}

void HScrollTo(MapCanvas& c, int value) {
  if (value < 0 || value > 100) return;
  c.doc.ViewCentreE = CentreFromHScroll(c.view, value);
  AfterScroll(c);
}

void VScrollTo(MapCanvas& c, int value) {
  if (value < 0 || value > 100) return;
  c.doc.ViewCentreN = CentreFromVScroll(c.view, value);
  AfterScroll(c);
}

bool SwitchPtName(MapCanvas& c) {
  c.display.ShowPointNames = c.display.ShowPointNames ? kFalse : kTrue;
  RedrawAll(c);
  return c.display.ShowPointNames != 0;
}

bool SwitchBM(MapCanvas& c, bool baseMapSetUp) {
  if (c.doc.BaseMapCount == 0) {
    c.dialogs.MsgBox("這張圖中沒有底圖");
    return c.display.ShowBaseMap != 0;
  }
  if (!baseMapSetUp) {
    c.dialogs.MsgBox("底圖要顯示前,請先設定底圖");
    return c.display.ShowBaseMap != 0;
  }
  c.display.ShowBaseMap = c.display.ShowBaseMap ? kFalse : kTrue;
  RedrawAll(c);
  return c.display.ShowBaseMap != 0;
}

bool SwitchBreak(MapCanvas& c) {
  c.display.ShowBreakLines = c.display.ShowBreakLines ? kFalse : kTrue;
  RedrawAll(c);
  return c.display.ShowBreakLines != 0;
}

bool DispGrid(MapCanvas& c) {
  c.display.GridOn = !c.display.GridOn;
  c.ui.SetToolbarPressed(ButtonGrid, c.display.GridOn);
  RedrawAll(c);  // at 1 : 15000 and beyond the repaint releases the button again
  return c.display.GridOn;
}

bool SwitchEle(MapCanvas& c) {
  c.display.ElevationsOn = !c.display.ElevationsOn;
  c.ui.SetToolbarPressed(ButtonElevations, c.display.ElevationsOn);
  RedrawAll(c);
  return c.display.ElevationsOn;
}

bool SwitchVertical(MapCanvas& c) {
  c.display.VerticalOn = !c.display.VerticalOn;
  RedrawAll(c);
  return c.display.VerticalOn;
}

bool SwitchSN(MapCanvas& c) {
  c.display.CodesOn = !c.display.CodesOn;
  RedrawAll(c);
  return c.display.CodesOn;
}

bool ToggleState(const Display& d, const std::string& key, bool& on) {
  if (key == "SwitchPtName") on = d.ShowPointNames != 0;
  else if (key == "SwitchBM") on = d.ShowBaseMap != 0;
  else if (key == "DispGrid") on = d.GridOn;
  else if (key == "SwitchEle") on = d.ElevationsOn;
  else if (key == "垂距開關") on = d.VerticalOn;
  else if (key == "SwitchBreak") on = d.ShowBreakLines != 0;
  else if (key == "SwitchSN") on = d.CodesOn;
  else return false;
  return true;
}

void DrawNewPoint(MapCanvas& c, std::size_t row) {
  if (row >= c.doc.PointTable.size() || c.doc.PointTable[row].Deleted) return;
  c.penKnown = false;
  DrawPointMark(c, row, c.doc.PointTable[row].E, c.doc.PointTable[row].N, false);
}

void DrawNewEntity(MapCanvas& c, std::size_t row) { DrawEntity(c, row); }

}  // namespace tavik::view
