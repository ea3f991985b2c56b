#include "edit/map_host.h"

#include "view/render.h"

namespace tavik::edit {

void MapHost::BeginPan(float x, float y) { view::PanStart(canvas_, pan_, x, y); }

void MapHost::MovePan(float, float, float x, float y) { view::PanMove(canvas_, pan_, x, y); }

void MapHost::EndPan() { view::PanEnd(canvas_, pan_); }

void MapHost::ZoomWindow(double E1, double N1, double E2, double N2) {
  view::ZoomWindowFit(canvas_, E1, N1, E2, N2);
}

void MapHost::ViewChanged() { view::AfterViewChange(canvas_); }

void MapHost::Redraw() { view::RedrawAll(canvas_); }

void MapHost::DrawEntityRow(int32_t row) {
  if (row >= 0) view::DrawNewEntity(canvas_, static_cast<std::size_t>(row));
}

void MapHost::DrawPointRow(int32_t row, bool highlight) {
  if (row < 0 || static_cast<std::size_t>(row) >= canvas_.doc.PointTable.size()) return;
  const Point& p = canvas_.doc.PointTable[static_cast<std::size_t>(row)];
  view::DrawPointMark(canvas_, static_cast<std::size_t>(row), p.E, p.N, highlight);
}

void MapHost::BaseMapChanged() { canvas_.display.ShowBaseMap = kTrue; }

void MapHost::ViewCommand(const std::string& key) {
  if (key == "ZE")
    view::ZE(canvas_);
  else if (key == "ZP")
    view::ZP(canvas_);
  else if (key == "ZS")
    view::ZS(canvas_);
  else if (key == "ZC")
    view::ZC(canvas_);
  else if (key == "ZT")
    view::ZT(canvas_);
  else if (key == "ZoomIn")
    view::ZoomIn(canvas_);
  else if (key == "ZoomOut")
    view::ZoomOut(canvas_);
  else if (key == "SwitchPtName")
    view::SwitchPtName(canvas_);
  else if (key == "SwitchBM")
    view::SwitchBM(canvas_, BaseMapSetUp ? BaseMapSetUp() : true);
  else if (key == "SwitchBreak")
    view::SwitchBreak(canvas_);
  else if (key == "DispGrid")
    view::DispGrid(canvas_);
  else if (key == "SwitchEle")
    view::SwitchEle(canvas_);
  else if (key == "垂距開關")
    view::SwitchVertical(canvas_);
  else if (key == "SwitchSN")
    view::SwitchSN(canvas_);
}

}  // namespace tavik::edit
