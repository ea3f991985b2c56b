#include "view/render.h"

#include <cmath>
#include <vector>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/circle.h"
#include "view/arc_geometry.h"
#include "view/decorations.h"
#include "view/legends.h"
#include "view/screen_tables.h"
#include "view/symbols.h"
#include "view/transform.h"

namespace tavik::view {
namespace {

constexpr ui::Rgb kHighlight = ui::MakeRgb(0, 0, 255);
constexpr ui::Rgb kStation = ui::MakeRgb(255, 0, 0);
// Room left around the paper for symbols and names that reach beyond their point. The
// repaint asks the spatial index for the rows within the widest of these (see
// DrawnAreaReach).
constexpr double kSymbolReach = 24, kNameReach = 300;
static_assert(kNameReach >= kSymbolReach);

bool IsBreakLine(int code) { return code == 513 || code == 514 || code == 515 || code == 520 || code == 521; }

ui::Rgb TextColourOf(const MapCanvas& c) {
  return c.display.ReferenceTextColourOn ? c.display.ReferenceTextColour : c.display.TextColour;
}

// True when the world box, widened by `reachPixels`, meets the paper. NaN fails.
bool MeetsPaper(const MapCanvas& c, double minE, double maxE, double minN, double maxN, double reachPixels) {
  const double m = reachPixels / c.PixelsPerMetre();
  return maxE >= c.view.PaperMinE - m && minE <= c.view.PaperMaxE + m && maxN >= c.view.PaperMinN - m &&
         minN <= c.view.PaperMaxN + m;
}

bool MeetsPaper(const MapCanvas& c, double E, double N, double reachPixels) {
  return MeetsPaper(c, E, E, N, N, reachPixels);
}

bool MeetsPaperCircle(const MapCanvas& c, double Ec, double Nc, double r) {
  return MeetsPaper(c, Ec - r, Ec + r, Nc - r, Nc + r, kSymbolReach);
}

// An arc through three vertices. Small arcs go to the geometry library's arc routine;
// one whose radius runs to millions of pixels is drawn as its visible chords.
// False when nothing of the arc is on the paper (or it has no arc), so that its
// decoration is skipped too.
bool DrawArcRow(MapCanvas& c, int32_t number, const double* X, const double* Y, bool report) {
  ArcGeometry a;
  if (!ArcThrough(X[0], Y[0], X[1], Y[1], X[2], Y[2], a)) {
    if (Cross3(X[0], Y[0], X[1], Y[1], X[2], Y[2]) != 0) return false;  // not finite: nothing to say
    if (!report) return false;
    double length = 0;
    DrawArc3(c.surface, c.dialogs, c.view, c.doc.ScaleDenominator, X[0], Y[0], X[1], Y[1], X[2], Y[2], length);
    c.dialogs.MsgBox("第" + std::to_string(number) + "筆圖元三點共線");
    return false;
  }
  if (!MeetsPaperCircle(c, a.Ec, a.Nc, a.radius)) return false;
  const double r = a.radius * c.PixelsPerMetre();
  if (r > 20000) {
    double cx, cy;
    c.ToPixel(a.Ec, a.Nc, cx, cy);
    c.Arc(cx, cy, r, a.a1, a.a1 + a.Sweep());
    return true;
  }
  double length = 0;
  DrawArc3(c.surface, c.dialogs, c.view, c.doc.ScaleDenominator, X[0], Y[0], X[1], Y[1], X[2], Y[2], length);
  return true;
}

// The pen of an entity row: grey in the reference part, else the legend's own.
void SetRowPen(MapCanvas& c, std::size_t row, const Entity& e) {
  const bool reference = static_cast<int64_t>(row) < c.doc.ReferenceEntityCount;
  c.SetPen(reference ? c.display.ReferenceLineColour : LegendColour(e.Code), LegendWidth(e.Code), LegendStyle(e.Code));
}

template <class Row>
bool Finite3(const Row& r, int used) {
  for (int i = 0; i < used; ++i)
    if (!std::isfinite(r.X[i]) || !std::isfinite(r.Y[i])) return false;
  return true;
}

void DrawPointFeature(MapCanvas& c, std::size_t row, const Entity& e) {
  if (!MeetsPaper(c, e.X[0], e.Y[0], kNameReach)) return;
  SetRowPen(c, row, e);
  double x, y;
  c.ToPixel(e.X[0], e.Y[0], x, y);
  switch (e.Code) {
    case 13:
      c.SetPen(TextColourOf(c), c.penWidth, c.penStyle);
      DrawElevation(c, e.X[0], e.Y[0], e.Z[0], false);
      return;
    case 168:
      DrawElevation(c, e.X[0], e.Y[0], num::ParseLenient(e.Name), false);
      return;
    case 99: case 110: case 112: case 113: case 114: case 130: case 131: case 141: case 199: case 201:
      DrawLegendSymbol(c, row, e.Code, x, y, e.Name);
      if (c.display.ShowPointNames) DrawText(c, row, x + 6, y - 6, text::Trim(e.Name), false);
      return;
    case 266: case 267:
      if (e.Name.size() < 2 || e.Name.compare(0, 2, "EP") != 0) return;
      DrawText(c, row, x + 3, y - 6, text::Trim(e.Name.substr(2)), false);
      return;
    default:
      DrawLegendSymbol(c, row, e.Code, x, y, e.Name);
      return;
  }
}

void DrawLineRow(MapCanvas& c, std::size_t row, const Entity& e) {
  if (!MeetsPaper(c, std::min(e.X[0], e.X[1]), std::max(e.X[0], e.X[1]), std::min(e.Y[0], e.Y[1]),
                  std::max(e.Y[0], e.Y[1]), kSymbolReach))
    return;
  SetRowPen(c, row, e);
  double x1, y1, x2, y2;
  c.ToPixel(e.X[0], e.Y[0], x1, y1);
  c.ToPixel(e.X[1], e.Y[1], x2, y2);
  const int row32 = static_cast<int>(row);
  switch (e.Code) {
    case 266:
      c.SetPen(c.penColour, 3, c.penStyle);
      c.Line(x1, y1, x2, y2);
      c.SetPen(c.penColour, 1, c.penStyle);
      DrawLegendLineWorld(c, row32, KindLine, e.Code, e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2]);
      break;
    case 813: case 407:
      DrawLegendLineWorld(c, row32, KindLine, e.Code, e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2]);
      break;
    case 905: case 921:
      if (c.display.ReferenceEntityColourOn) c.SetPen(c.display.ReferenceLineColour, c.penWidth, c.penStyle);
      c.Line(x1, y1, x2, y2);
      break;
    default:
      c.Line(x1, y1, x2, y2);
      DrawLegendLine(c, KindLine, e.Code, x1, y1, x2, y2, 0, 0);
      break;
  }
  if (e.Name.empty()) return;
  if (e.Code == 201)
    DrawText(c, row, x1 + 3, y1 - 6, e.Name, false);
  else if (e.Code == 520 || e.Code == 521)
    DrawText(c, row, (x1 + x2) / 2 + 3, (y1 + y2) / 2 - 6, e.Name, false);
}

void DrawCircleAbout(MapCanvas& c, std::size_t row, const Entity& e, double Ec, double Nc, double Ep, double Np) {
  SetRowPen(c, row, e);
  double cx, cy, px, py;
  c.ToPixel(Ec, Nc, cx, cy);
  c.ToPixel(Ep, Np, px, py);
  c.Circle(cx, cy, std::hypot(px - cx, py - cy));
  if (e.Code == 407 || e.Code == 813)
    DrawLegendLineWorld(c, static_cast<int>(row), KindCircle2, e.Code, Ec, Nc, Ep, Np, 0, 0);
}

void DrawArcEntity(MapCanvas& c, std::size_t row, const Entity& e) {
  SetRowPen(c, row, e);
  if (!DrawArcRow(c, e.Number, e.X, e.Y, true)) return;
  switch (e.Code) {
    case 510: case 921: case 905: {
      double x[3], y[3];
      for (int i = 0; i < 3; ++i) c.ToPixel(e.X[i], e.Y[i], x[i], y[i]);
      if (c.Visible(std::min({x[0], x[1], x[2]}), std::min({y[0], y[1], y[2]}), std::max({x[0], x[1], x[2]}),
                    std::max({y[0], y[1], y[2]})))
        DrawLegendLine(c, KindArc3, e.Code, x[0], y[0], x[1], y[1], x[2], y[2]);
      break;
    }
    case 407: case 813:
      DrawLegendLineWorld(c, static_cast<int>(row), KindArc3, e.Code, e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2],
                          e.Y[2]);
      break;
    default:
      break;
  }
}

void DrawEntityRow(MapCanvas& c, std::size_t row) {
  const Entity& e = c.doc.EntityTable[row];
  if (e.Deleted) return;
  if (!c.display.ShowBreakLines && IsBreakLine(e.Code)) return;
  switch (e.Kind) {
    case KindPoint:
      if (Finite3(e, 1)) DrawPointFeature(c, row, e);
      break;
    case KindLine:
      if (Finite3(e, 2)) DrawLineRow(c, row, e);
      break;
    case KindCircle2: {
      if (!Finite3(e, 2)) break;
      const double r = std::hypot(e.X[1] - e.X[0], e.Y[1] - e.Y[0]);
      if (MeetsPaperCircle(c, e.X[0], e.Y[0], r)) DrawCircleAbout(c, row, e, e.X[0], e.Y[0], e.X[1], e.Y[1]);
      break;
    }
    case KindCircle3: {
      if (!Finite3(e, 3)) break;
      double Ec, Nc, r;
      if (CircleThrough(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], Ec, Nc, r) && MeetsPaperCircle(c, Ec, Nc, r))
        DrawCircleAbout(c, row, e, Ec, Nc, e.X[0], e.Y[0]);
      break;
    }
    case KindArc3:
      if (Finite3(e, 3)) DrawArcEntity(c, row, e);
      break;
    default:
      break;
  }
}

}  // namespace

void DrawEntities(MapCanvas& c) {
  for (std::size_t row = 0; row < c.doc.EntityTable.size(); ++row) DrawEntityRow(c, row);
}

void DrawEntity(MapCanvas& c, std::size_t row) {
  c.penKnown = false;
  if (row < c.doc.EntityTable.size()) DrawEntityRow(c, row);
}

void DrawLegendSymbol(MapCanvas& c, std::size_t row, int code, double x, double y, const std::string& name) {
  DrawSymbol(c, static_cast<int>(row), code, x, y, name);
}

void DrawText(MapCanvas& c, std::size_t row, double x, double y, const std::string& text, bool highlight) {
  (void)row;
  c.Text(x, y, text, highlight ? kHighlight : TextColourOf(c));
}

void DrawElevation(MapCanvas& c, double E, double N, double H, bool highlight) {
  if (!std::isfinite(H)) return;
  double x, y;
  c.ToPixel(E, N, x, y);
  const ui::Rgb colour = highlight ? kHighlight : TextColourOf(c);
  c.surface.SetPixel(static_cast<float>(x), static_cast<float>(y), colour);
  c.Text(x + 3, y - 6, num::Format(H, "0.00"), colour, 10);
}

void DrawBaseMap(MapCanvas& c) {
  const std::size_t n = std::min<std::size_t>(c.doc.BaseMapTable.size(), static_cast<std::size_t>(std::max(0, c.doc.BaseMapCount)));
  c.SetPen(c.display.BaseMapLineColour);
  for (std::size_t i = 0; i < n; ++i) {
    const BaseMapLine& b = c.doc.BaseMapTable[i];
    switch (b.Kind) {
      case KindPoint: {
        if (b.Code != 12 && !b.Name.empty() && Finite3(b, 1) && MeetsPaper(c, b.X[0], b.Y[0], kNameReach)) {
          // A note of the drawing the base map came from (a parcel number, a street name).
          double x, y;
          c.ToPixel(b.X[0], b.Y[0], x, y);
          c.Text(x, y - 6, text::Trim(b.Name), c.display.BaseMapTextColour);
          break;
        }
        if (b.Code != 12 || !c.display.BaseMapCode12Marks || !Finite3(b, 1)) break;
        if (!MeetsPaper(c, b.X[0], b.Y[0], kNameReach)) break;
        double x, y;
        c.ToPixel(b.X[0], b.Y[0], x, y);
        c.Circle(x, y, 2);
        c.Text(x + 4, y - 6, text::Trim(b.Name), c.display.BaseMapTextColour);
        break;
      }
      case KindLine: {
        if (!Finite3(b, 2)) break;
        double x1, y1, x2, y2;
        c.ToPixel(b.X[0], b.Y[0], x1, y1);
        c.ToPixel(b.X[1], b.Y[1], x2, y2);
        c.Line(x1, y1, x2, y2);
        break;
      }
      case KindCircle2:
      case KindCircle3: {
        if (!Finite3(b, b.Kind == KindCircle2 ? 2 : 3)) break;
        double Ec = b.X[0], Nc = b.Y[0], r = std::hypot(b.X[1] - b.X[0], b.Y[1] - b.Y[0]);
        if (b.Kind == KindCircle3 && !CircleThrough(b.X[0], b.Y[0], b.X[1], b.Y[1], b.X[2], b.Y[2], Ec, Nc, r)) break;
        if (!MeetsPaperCircle(c, Ec, Nc, r)) break;
        double cx, cy;
        c.ToPixel(Ec, Nc, cx, cy);
        c.Circle(cx, cy, r * c.PixelsPerMetre());
        break;
      }
      case KindArc3:
        if (Finite3(b, 3)) DrawArcRow(c, b.Number, b.X, b.Y, false);
        break;
      default:
        break;
    }
  }
}

void DrawPointMark(MapCanvas& c, std::size_t row, double E, double N, bool highlight, bool erase) {
  (void)row;
  // With the marks switched off a plain mark is not drawn; a highlighted one still is,
  // so that a pick shows what it took.
  if (!InPaper(c.view, E, N) || (!c.display.ShowPointMarks && !highlight && !erase)) return;
  double x, y;
  c.ToPixel(E, N, x, y);
  const ui::Rgb colour = erase ? c.display.Background
                         : c.display.ShowReferenceMarks ? c.display.ReferencePointColour
                                                        : c.display.PointColour;
  c.SetPen(colour);
  c.Line(x - 4, y, x + 4, y);
  c.Line(x, y - 4, x, y + 4);
  if (!highlight) return;
  c.SetPen(erase ? c.display.Background : kHighlight);
  c.Circle(x, y, 0.6);
  c.SetPen(erase ? c.display.Background : ui::MakeRgb(0, 0, 0));
  c.Circle(x, y, 1.1);
}

void DrawStationMark(MapCanvas& c, double E, double N, bool highlight, bool erase) {
  double x, y;
  c.ToPixel(E, N, x, y);
  c.SetPen(erase ? c.display.Background : highlight ? kHighlight : kStation);
  c.Line(x, y, x - 7, y + 17);
  c.Line(x, y, x, y + 22);
  c.Line(x, y, x + 7, y + 17);
}

void DrawGrid(MapCanvas& c) {
  if (c.doc.ScaleDenominator >= GridScaleLimit) {
    c.display.GridOn = false;
    c.ui.SetToolbarPressed(ButtonGrid, false);
    return;
  }
  c.SetPen(ui::QBColor(8));
  const View& v = c.view;
  double top, bottom, left, right, unused;
  c.ToPixel(v.PaperMinE, v.PaperMaxN, left, top);
  c.ToPixel(v.PaperMaxE, v.PaperMinN, right, bottom);
  (void)unused;
  for (double E = std::ceil(v.PaperMinE / GridSpacing) * GridSpacing; E <= v.PaperMaxE; E += GridSpacing) {
    double x, y;
    c.ToPixel(E, v.PaperMaxN, x, y);
    c.Line(x, top, x, bottom);
  }
  for (double N = std::ceil(v.PaperMinN / GridSpacing) * GridSpacing; N <= v.PaperMaxN; N += GridSpacing) {
    double x, y;
    c.ToPixel(v.PaperMinE, N, x, y);
    c.Line(left, y, right, y);
  }
}

double ScaleBarMetres(double scale) {
  const double perCm = scale / 100;  // metres of ground in one centimetre of paper
  if (!(perCm >= 1)) return 1;
  const double magnitude = std::pow(10.0, std::floor(std::log10(perCm)));
  return std::floor(perCm / magnitude) * magnitude;
}

std::string ScaleBarLabel(double scale) {
  if (scale <= 50) return num::Format(scale, "0.##") + "cm";
  return num::Plain(ScaleBarMetres(scale)) + "m";
}

void DrawScaleBar(MapCanvas& c) {
  const double scale = c.doc.ScaleDenominator;
  if (!(scale > 0) || !std::isfinite(scale)) return;
  const double length = scale <= 50 ? PixelsPerCm : ScaleBarMetres(scale) * c.PixelsPerMetre();
  // The viewport's lower-left corner inside Paper1, wherever the paper was placed.
  double x0, y0;
  c.ToPixel(c.view.ScreenMinE, c.view.ScreenMinN, x0, y0);
  x0 += 65;
  y0 -= PixelsPerCm;
  c.SetPen(ScaleBarColour, 2);
  c.Line(x0, y0, x0 + length, y0);
  c.SetPen(ScaleBarColour, 1);
  c.Line(x0, y0 - 4, x0, y0 + 1);
  c.Line(x0 + length, y0 - 4, x0 + length, y0 + 1);
  c.Text(x0 + length + 5, y0 - 7, ScaleBarLabel(scale), ScaleBarColour, 12);
}

namespace {

// Calls f(row) for the given rows, or for every row of a table of n when there is no
// list; a row the table no longer holds is passed over.
template <class F>
void ForRows(const std::vector<int32_t>* rows, std::size_t n, F f) {
  if (rows == nullptr) {
    for (std::size_t i = 0; i < n; ++i) f(i);
    return;
  }
  for (int32_t i : *rows)
    if (static_cast<std::size_t>(i) < n) f(static_cast<std::size_t>(i));
}

// The point features whose height is a surveyed one: named points and spot heights.
bool FeatureHeightShown(int16_t code) {
  return code == 99 || (code >= 110 && code <= 121) || code == 130 || code == 131 || code == 141 || code == 199 ||
         code == 517;
}

void PointHeights(MapCanvas& c, const std::vector<int32_t>* points, const std::vector<int32_t>* entities) {
  const Document& d = c.doc;
  const bool vertical = c.display.VerticalOn && d.StationSet && std::isfinite(d.StationH);
  auto label = [&](double E, double N, double H) {
    if (H == NoHeight || !std::isfinite(H) || !InPaper(c.view, E, N)) return;
    double x, y;
    c.ToPixel(E, N, x, y);
    if (c.display.ElevationsOn) c.Text(x + 6, y - 5 - HeightTextSize, num::Format(H, "0.000"), HeightColour, HeightTextSize);
    if (vertical) {
      const double dh = H - d.StationH;
      c.Text(x + 6, y + 8, (dh >= 0 ? "+" : "") + num::Format(dh, "0.000"), VerticalColour, HeightTextSize);
    }
  };
  ForRows(points, d.PointTable.size(), [&](std::size_t i) {
    const Point& p = d.PointTable[i];
    if (!p.Deleted) label(p.E, p.N, p.H);
  });
  // A point given by name (a control point keyed in, a cadastral shot) has its height on
  // the feature; where a survey point lies under it the same text falls on the same place.
  // A feature placed without a height holds 0 there, which is no height to show.
  ForRows(entities, d.EntityTable.size(), [&](std::size_t i) {
    const Entity& e = d.EntityTable[i];
    if (!e.Deleted && e.Kind == KindPoint && e.Z[0] != 0 && FeatureHeightShown(e.Code)) label(e.X[0], e.Y[0], e.Z[0]);
  });
}

void RunningNumbers(MapCanvas& c, const std::vector<int32_t>* rows) {
  ForRows(rows, c.doc.PointTable.size(), [&](std::size_t i) {
    const Point& p = c.doc.PointTable[i];
    if (p.Deleted || !InPaper(c.view, p.E, p.N)) return;
    double x, y;
    c.ToPixel(p.E, p.N, x, y);
    const std::string number = std::to_string(p.Number);
    // To the left of the cross, clear of the name and the height on its right.
    c.Text(x - 6 - 6.0 * static_cast<double>(number.size()), y - 5 - 10, number, RunningNumberColour, 10);
  });
}

// The world box a repaint takes its rows from: whatever a row left out could draw lies
// off the area drawn into (the canvas's clip). Each routine's own test lets a row through
// within its reach of the paper, and what it then draws stays near the box that test
// looks at: within kNameReach pixels (symbols, ticks, and the start of any text: the
// canvas drops a text that starts further left than 20 sizes, and a text runs only to
// the right and down from its start) and a metre and a half (the styles drawn in world
// units: a wall's other face, the dashes a metre outside a dirt road's circle). Not a
// box when the view is not a number.
constexpr double kWorldReach = 1.5;

Box DrawnAreaReach(const MapCanvas& c) {
  const double ppm = c.PixelsPerMetre();
  const double m = (kNameReach + 1) / ppm + kWorldReach;
  const View& v = c.view;
  return {v.PaperMinE + c.clipLeft / ppm - m, v.PaperMaxN - c.clipBottom / ppm - m, v.PaperMinE + c.clipRight / ppm + m,
          v.PaperMaxN - c.clipTop / ppm + m};
}

}  // namespace

void DrawPointHeights(MapCanvas& c) { PointHeights(c, nullptr, nullptr); }

void DrawRunningNumbers(MapCanvas& c) { RunningNumbers(c, nullptr); }

void RedrawAll(MapCanvas& c, RowWalk walk) {
  Document& d = c.doc;
  c.ui.StopLiveMarker();
  c.surface.SetDrawMode(ui::DrawMode::Copy);
  c.surface.SetFill(false, 0);
  c.surface.Clear(c.display.Background);
  if (c.display.Underlay) c.display.Underlay();
  c.penKnown = false;
  // On a large map most rows lie far off the area drawn: the spatial index gives the
  // rows that may reach it, in row order, and each is drawn with its own tests as the
  // walk of every row would draw it, so the picture is the same.
  std::vector<int32_t> entityRows, pointRows;
  const std::vector<int32_t>*entities = nullptr, *points = nullptr;
  const Box near = DrawnAreaReach(c);
  if (walk == RowWalk::Indexed && near.MinE <= near.MaxE && near.MinN <= near.MaxN) {
    if (EntityRowsNear(d, near, entityRows)) entities = &entityRows;
    if (PointRowsNear(d, near, pointRows)) points = &pointRows;
  }
  // The size is read again for every row: a message shown on the way may let the
  // tables change.
  if (entities == nullptr)
    DrawEntities(c);
  else
    for (int32_t row : *entities)
      if (static_cast<std::size_t>(row) < d.EntityTable.size()) DrawEntityRow(c, static_cast<std::size_t>(row));
  if (d.BaseMapCount != 0 && c.display.ShowBaseMap) DrawBaseMap(c);
  ForRows(points, d.PointTable.size(), [&](std::size_t i) {
    const Point& p = d.PointTable[i];
    if (!p.Deleted) DrawPointMark(c, i, p.E, p.N, false);
  });
  if (d.MapType == 1 && (c.display.ElevationsOn || c.display.VerticalOn)) PointHeights(c, points, entities);
  if (!d.StationName.empty() && d.StationSet) DrawStationMark(c, d.StationE, d.StationN, false);
  if (c.display.GridOn) DrawGrid(c);
  if (c.display.CodesOn) RunningNumbers(c, points);
  c.ui.SetLabel("Label41", std::to_string(d.PointCount));
  c.ui.SetStatusPanel(4, "測點 " + std::to_string(d.PointCount - d.DeletedPointCount));
  c.ui.SetStatusPanel(5, "圖元 " + std::to_string(d.EntityCount - d.DeletedEntityCount));
  DrawScaleBar(c);
  if (c.display.MatchingOverlay) c.display.MatchingOverlay();
}

}  // namespace tavik::view
