// Point symbols of the legend catalogue. Each symbol is a small drawing in screen
// pixels about the point's pixel, the same size at every scale.
#pragma once

#include <string>
#include <vector>

#include "view/canvas.h"

namespace tavik::view {

// Draws the glyph of the code about the pixel (x, y) with the present pen. Codes 12,
// 235 and 301 print the name at the point instead, in the reference text colour for a
// row of the reference map (row counted from 0 in EntityTable, -1 for none). Any other
// code without a glyph draws nothing. Returns true when something was drawn.
bool DrawSymbol(MapCanvas& c, int row, int code, double x, double y, const std::string& name);

// One drawing step of a glyph, in pixels from the point with y growing downward:
//   'L' line x1 y1 x2 y2, 'P' polyline x1 y1 x2 y2 ..., 'R' rectangle by two corners,
//   'C' circle r (about the point) or dx dy r, 'D' filled dot dx dy r,
//   'A' arc dx dy r deg1 deg2 (counterclockwise as seen on the screen, from +x),
//   'T' text dx dy size with its top-left corner at the offset.
struct GlyphOp {
  char kind = 0;
  std::vector<double> v;
  std::string text;
};
// The steps of the code's glyph, or nullptr for a code without one. The same steps
// DrawSymbol plays, so that other drawings of the symbol (the DXF block library) look
// like the map.
const std::vector<GlyphOp>* GlyphOps(int code);

// The glyph a code shares with others: the five bridges have one.
int GlyphOf(int code);

}  // namespace tavik::view
