// Repainting Paper1 from the tables. Nothing on screen is kept but the picture: a view
// change, a toggle or a whole-map edit repaints everything, and a new point or entity
// is drawn straight onto the picture.
#pragma once

#include <string>

#include "view/canvas.h"

namespace tavik::view {

// How a repaint finds its rows: through the document's spatial index, only those that
// may reach the paper (the program's way, in proportion to what is on the paper), or
// every row of each table. Both draw the same picture.
enum class RowWalk { Indexed, Every };

// The whole repaint, in its fixed order: the underlay (images), entities, base map,
// point marks, heights, station, grid, running numbers, counts, scale bar, matching
// overlay. A rubber band is never part of the picture: the window draws it over the
// picture, so that it stays through every repaint.
void RedrawAll(MapCanvas& c, RowWalk walk = RowWalk::Indexed);

// Every row of EntityTable, deleted and hidden ones skipped.
void DrawEntities(MapCanvas& c);
// One row of EntityTable (counted from 0) with its own pen, as a new entity is drawn.
void DrawEntity(MapCanvas& c, std::size_t row);
void DrawBaseMap(MapCanvas& c);
// The cross of a survey point; `erase` draws it in the background colour.
void DrawPointMark(MapCanvas& c, std::size_t row, double E, double N, bool highlight, bool erase = false);
void DrawStationMark(MapCanvas& c, double E, double N, bool highlight, bool erase = false);
void DrawGrid(MapCanvas& c);
void DrawScaleBar(MapCanvas& c);
// A text of an entity row at a pixel, in the text colour, blue when highlighted.
void DrawText(MapCanvas& c, std::size_t row, double x, double y, const std::string& text, bool highlight);
// A spot height: a dot and the height with two decimals.
void DrawElevation(MapCanvas& c, double E, double N, double H, bool highlight);
// With a topographic map (MapType 1): the height of every live survey point beside its
// mark when SwitchEle is on, as the shot draws it, and with 垂距 on and a station set
// its height above (+) or below (-) the station, under the mark.
void DrawPointHeights(MapCanvas& c);
// SwitchSN: the running number of every live survey point, left of its mark.
void DrawRunningNumbers(MapCanvas& c);
// The symbol of a point feature, or its name for the codes that print one.
void DrawLegendSymbol(MapCanvas& c, std::size_t row, int code, double x, double y, const std::string& name);

// The colour of the scale bar and of the grid.
constexpr ui::Rgb ScaleBarColour = ui::MakeRgb(10, 18, 90);
// Heights beside the marks: green as a new shot draws its height, the difference from
// the station in purple, running numbers in dark blue.
constexpr ui::Rgb HeightColour = ui::MakeRgb(0, 160, 0);
constexpr ui::Rgb VerticalColour = ui::MakeRgb(160, 0, 160);
constexpr ui::Rgb RunningNumberColour = ui::MakeRgb(0, 0, 160);
constexpr int HeightTextSize = 12;
// Grid spacing in metres, and the scale from which the grid is not drawn.
constexpr double GridSpacing = 100;
constexpr double GridScaleLimit = 15000;

// The scale bar's length in metres and its label, for a scale above 1 : 50; at 1 : 50
// and below the bar is one centimetre of paper.
double ScaleBarMetres(double scale);
std::string ScaleBarLabel(double scale);

}  // namespace tavik::view
