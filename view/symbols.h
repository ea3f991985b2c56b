// Point symbols of the legend catalogue. Each symbol is a small drawing in screen
// pixels about the point's pixel, the same size at every scale.
#pragma once

#include <string>

#include "view/canvas.h"

namespace tavik::view {

// Draws the glyph of the code about the pixel (x, y) with the present pen. Codes 12,
// 235 and 301 print the name at the point instead, in the reference text colour for a
// row of the reference map (row counted from 0 in EntityTable, -1 for none). Any other
// code without a glyph draws nothing. Returns true when something was drawn.
bool DrawSymbol(MapCanvas& c, int row, int code, double x, double y, const std::string& name);

// The glyph a code shares with others: the five bridges have one.
int GlyphOf(int code);

}  // namespace tavik::view
