// The moving position marker of a GNSS rover on Paper1: a plain cross, or an arrow
// head turned by the heading (clockwise from north, radians). It is drawn in the
// inverting mode, so that drawing it a second time at the same place takes it away
// and the map under it needs no repaint.
#pragma once

#include "platform/surface.h"

namespace tavik::view {

struct GpsMarker {
  bool shown = false;
  float x = 0, y = 0;
  bool plain = false;
  double heading = 0;
};

// Draws the marker at the pixel (x, y) of Paper1.
void DrawGpsMarkerShape(ui::Surface& s, float x, float y, bool plain, double heading);
// Takes the marker away from its old place (when shown) and draws it at the new one.
void MoveGpsMarker(ui::Surface& s, GpsMarker& m, float x, float y, bool plain, double heading);
// After a full repaint the old marker is gone with the old picture.
inline void ForgetGpsMarker(GpsMarker& m) { m.shown = false; }

}  // namespace tavik::view
