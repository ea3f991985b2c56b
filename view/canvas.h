// The drawing context of the map view: the document, the view, the display switches,
// the surface and the window side, bundled so each drawing routine takes one argument.
//
// Every primitive here is safe against bad input: a non-finite coordinate draws
// nothing, lines are clipped to Paper1 in double precision before they reach the
// single-precision surface, and circles far larger than the paper are drawn as the
// short polyline that is actually visible. So a damaged document can't make the
// surface hang or overflow.
#pragma once

#include <functional>
#include <string>

#include "core/document.h"
#include "core/view_state.h"
#include "platform/dialogs.h"
#include "platform/surface.h"
#include "view/display.h"
#include "view/view_ui.h"

namespace tavik::view {

struct MapCanvas {
  MapCanvas(Document& d, View& v, Display& disp, ui::Surface& s, ViewUi& u, ui::Dialogs& dlg)
      : doc(d), view(v), display(disp), surface(s), ui(u), dialogs(dlg) {
    ResetClip();
  }

  Document& doc;
  View& view;
  Display& display;
  ui::Surface& surface;
  ViewUi& ui;
  ui::Dialogs& dialogs;

  // The rest of the tail after a view change, supplied by the document side: both
  // screen-table rebuilds, and the recovery header.
  std::function<void()> RebuildScreenTables;
  std::function<void()> WriteRecoveryHeader;

  // The pixel rectangle of Paper1 worth drawing into. By default the whole paper, four
  // viewports each way; a renderer that only keeps the viewport narrows it.
  double clipLeft = 0, clipTop = 0, clipRight = 0, clipBottom = 0;
  // The surface keeps only the visible area (Board) of Paper1: ResetClip narrows the clip
  // to it, so nothing is drawn that no one would see.
  bool visibleOnly = false;
  void ResetClip();

  // The pen as last set, so that decorations can draw in the colour of their line.
  ui::Rgb penColour = 0;
  int penWidth = 1;
  ui::LineStyle penStyle = ui::LineStyle::Solid;
  bool penKnown = false;  // false: the surface's pen may differ from the one above
  // Sets the surface's pen unless it already is this one.
  void SetPen(ui::Rgb colour, int width = 1, ui::LineStyle style = ui::LineStyle::Solid);

  // World metres to Paper1 pixels, in double precision.
  void ToPixel(double E, double N, double& x, double& y) const;
  // Pixels per metre at the present scale.
  double PixelsPerMetre() const;

  // Safe primitives in Paper1 pixels.
  void Line(double x1, double y1, double x2, double y2);
  void Circle(double cx, double cy, double r);
  void Arc(double cx, double cy, double r, double a1, double a2);
  void Text(double x, double y, const std::string& utf8, ui::Rgb colour, int pixelSize = 12);
  // True when a box of pixels meets the clip rectangle.
  bool Visible(double x1, double y1, double x2, double y2) const;
};

}  // namespace tavik::view
