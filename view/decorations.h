// Line decorations of the legend catalogue: the ticks, crosses and rings that tell a
// fence from a railway, drawn over the plain line in the colour of its pen.
#pragma once

#include "view/canvas.h"

namespace tavik::view {

// Decorations measured in pixels, on Paper1 coordinates: a segment (Kind 21) from
// vertex 1 to 2, or an arc (Kind 76) from 1 over 2 to 3. Codes without one draw nothing.
void DrawLegendLine(MapCanvas& c, int kind, int code, double x1, double y1, double x2, double y2, double x3,
                    double y3);

// Styles measured in metres, on world coordinates: 407 walls with their thickness, 813
// dirt roads dashed, 266 boundary edges with their length. Kinds 21, 71, 76.
void DrawLegendLineWorld(MapCanvas& c, int row, int kind, int code, double E1, double N1, double E2, double N2,
                         double E3, double N3);

// What a decorated line repeats along itself, in pixels: the mark, its spacing and size
// (and the letter a pipe carries once at its middle). Ticks and rings on the left go to
// the left of the direction of travel.
enum class LineMark { None, TicksLeft, TicksBoth, Crosses, Rings, RingsLeft, Letter };
struct LineDecoration {
  LineMark mark = LineMark::None;
  double spacing = 10, size = 4;
  const char* letter = "";
};
LineDecoration LineDecorationOf(int code);

// Wall thickness and dash lengths of the world styles, metres.
constexpr double WallThickness = 0.25;
constexpr double DirtRoadDash = 2, DirtRoadGap = 1;

}  // namespace tavik::view
