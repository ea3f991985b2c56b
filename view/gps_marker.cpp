#include "view/gps_marker.h"

#include <cmath>

namespace tavik::view {

void DrawGpsMarkerShape(ui::Surface& s, float x, float y, bool plain, double heading) {
  s.SetDrawMode(ui::DrawMode::Invert);
  s.SetPen(ui::MakeRgb(255, 0, 0), 2, ui::LineStyle::Solid);
  if (plain) {
    s.Line(x - 8, y, x + 8, y);
    s.Line(x, y - 8, x, y + 8);
  } else {
    // An arrow head 20 pixels long pointing along the heading; y grows downwards.
    const double c = std::cos(heading), n = std::sin(heading);
    auto at = [&](double along, double across, float& px, float& py) {
      px = static_cast<float>(x + along * n + across * c);
      py = static_cast<float>(y - along * c + across * n);
    };
    float tx, ty, lx, ly, rx, ry, bx, by;
    at(12, 0, tx, ty);
    at(-8, -7, lx, ly);
    at(-8, 7, rx, ry);
    at(-3, 0, bx, by);
    s.Line(tx, ty, lx, ly);
    s.Line(lx, ly, bx, by);
    s.Line(bx, by, rx, ry);
    s.Line(rx, ry, tx, ty);
  }
  s.SetDrawMode(ui::DrawMode::Copy);
}

void MoveGpsMarker(ui::Surface& s, GpsMarker& m, float x, float y, bool plain, double heading) {
  if (m.shown) DrawGpsMarkerShape(s, m.x, m.y, m.plain, m.heading);
  DrawGpsMarkerShape(s, x, y, plain, heading);
  m = {true, x, y, plain, heading};
}

}  // namespace tavik::view
