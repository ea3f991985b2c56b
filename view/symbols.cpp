// The symbol glyphs, written as short scripts of pixel offsets from the point (y grows
// downward) so that the whole family reads at a glance and stays small:
//   L x1 y1 x2 y2            a line
//   P x1 y1 x2 y2 ...        a polyline
//   R x1 y1 x2 y2            a rectangle by two corners
//   C r | C dx dy r          a circle about the point or about an offset
//   D dx dy r                a filled dot
//   A dx dy r deg1 deg2      an arc, counterclockwise in degrees from +x
//   T dx dy size text        a printed character, top-left corner at the offset
// Shapes follow the signs surveyors know from the Taiwanese topographic map: 文 for a
// school, 卍 for a temple, ⊥ for a cemetery, ‖ for paddy, a post with a lamp, a
// manhole lid with the letter of its utility.
#include "view/symbols.h"

#include <cmath>
#include <map>
#include <sstream>
#include <vector>

#include "core/text.h"
#include "view/legends.h"

namespace tavik::view {
namespace {

using Op = GlyphOp;
using Glyph = std::vector<Op>;

const std::map<int, const char*>& Scripts() {
  static const std::map<int, const char*> s = {
      // Control points.
      {110, "P -6 4 0 -7 6 4 -6 4; D 0 0 1.5"},
      {112, "R -4 -4 4 4; C 7; D 0 0 1.2"},
      {113, "R -4 -4 4 4; D 0 0 1.2"},
      {114, "C 4; D 0 0 1.2"},
      {120, "P 0 -6 6 0 0 6 -6 0 0 -6; D 0 0 1.5"},
      {121, "P 0 -6 6 0 0 6 -6 0 0 -6; L -3 0 3 0"},
      {130, "C 4; L -6 0 6 0; L 0 -6 0 6"},
      {131, "R -3 -3 3 3; L -3 -3 3 3; L -3 3 3 -3"},
      {141, "L -8 0 8 0; L 0 -8 0 8; C 3"},
      {199, "L -3 -3 3 3; L -3 3 3 -3; C 1"},
      // Buildings.
      {302, "L -6 -6 -2 -6; L 2 -6 6 -6; L 6 -6 6 -2; L 6 2 6 6; L 6 6 2 6; L -2 6 -6 6; L -6 6 -6 2; L -6 -2 -6 -6"},
      {304, "P -6 0 0 -6 6 0; R -4 0 4 6"},
      {307, "C 7; L -4 0 4 0; L 0 -4 0 4; L -4 1 4 1; L 1 -4 1 4"},
      {308, "R -6 -6 6 6; L -3 0 3 0; L 0 -3 0 3"},
      {310, "C 7; T -5 -5 10 文"},
      {315, "A 0 3 6 0 180; L -7 3 7 3; L -2 3 -2 0; L 2 3 2 0"},
      {316, "C 6; L -4 -4 4 4; L -4 4 4 -4"},
      {320, "L 0 -7 0 7; L -4 -3 4 -3"},
      {321, "T -5 -6 11 卍"},
      {322, "R -7 -7 7 7; T -4 -5 9 卍"},
      {324, "P -2 6 -1 -7 1 -7 2 6; L -5 6 5 6"},
      {327, "R -8 -5 8 5; A -3 0 3 90 270; A 3 0 3 270 450; L -3 -3 3 -3; L -3 3 3 3"},
      {330, "P -7 -3 0 -8 7 -3; R -6 -3 6 6; T -4 -2 8 古"},
      {340, "R -6 0 6 6; A 0 0 6 0 180"},
      {342, "C 7; T -3 -5 10 P"},
      {345, "L -5 -5 5 5; L -5 5 5 -5; L -7 -3 -3 -7; L 3 -7 7 -3"},
      {346, "C 4; L 0 -7 0 -4; L 0 4 0 7; L -7 0 -4 0; L 4 0 7 0; L -5 -5 -3 -3; L 3 3 5 5; L -5 5 -3 3; L 3 -3 5 -5"},
      {349, "P -7 5 0 -4 7 5 -7 5; D -2 3 1; D 2 2 1"},
      {351, "C 7; T -3 -5 10 B"},
      {352, "R -7 -3 7 3; L -3 -3 -3 3; L 3 -3 3 3; L -7 0 -3 0; L 3 0 7 0"},
      {356, "P -6 -1 0 -6 6 -1; R -6 -1 6 6; L -6 -1 6 6; L -6 6 6 -1"},
      {363, "C 7; L -4 -3 4 -3; L -4 0 4 0; L 0 0 0 5"},
      {368, "R -7 -6 7 6; T -5 -5 10 油"},
      {369, "R -4 -5 2 6; R -3 -4 1 -1; L 2 -2 5 -2; L 5 -2 5 3"},
      // Structures.
      {416, "L -6 -4 -6 4; L 6 -4 6 4; L -6 -4 6 -4; L -6 0 6 0"},
      {417, "P -6 6 -6 2 -2 2 -2 -2 2 -2 2 -6 6 -6"},
      {419, "R -2 -6 2 6; L 2 -6 6 -9; L -5 6 5 6"},
      {420, "P -7 -1 0 -6 7 -1 -7 -1; L -5 -1 -5 6; L 5 -1 5 6"},
      {422, "L 0 6 0 -7; P 0 -7 6 -5 0 -3; R -5 3 5 6"},
      {423, "R -6 -6 6 6; T -3 -5 10 P"},
      {430, "P -5 -4 -4 6 4 6 5 -4; L -6 -4 6 -4; L -2 -6 2 -6; L -2 -2 -2 4; L 2 -2 2 4"},
      {431, "R -5 0 5 6; L -1 0 -1 -7; L 1 0 1 -7; A 0 -8 2 0 180"},
      {433, "T -5 -5 10 柏"},
      {434, "T -5 -5 10 泥"},
      {443, "L -4 -5 4 -5; L -4 5 4 5; A -4 0 5 90 270; A 4 0 5 270 450; L -4 0 4 0"},
      {445, "R -7 -5 7 5; P -5 0 -3 -2 -1 0 1 -2 3 0 5 -2"},
      {447, "A 0 1 5 180 360; P -3 -1 -4 -4 -3 -7; P 0 -1 -1 -4 0 -7; P 3 -1 2 -4 3 -7"},
      {448, "R -2 -6 2 4; L -5 4 5 4; L -5 6 5 6"},
      {450, "C 0 -5 2; L 0 -3 0 3; L -3 -1 3 -1; L 0 3 -3 6; L 0 3 3 6; L -5 7 5 7"},
      {451, "L -6 6 -6 -4; L 6 6 6 -4; L -8 -4 8 -4; L -7 -7 7 -7; L 0 -7 0 -4"},
      {464, "C 0 -3 4; L -3 0 -5 6; L 3 0 5 6; L -4 3 4 3"},
      {469, "C 7; L -4 -2 4 -2; L -4 2 4 2; L -2 -4 -2 4; L 2 -4 2 4"},
      {470, "A 0 3 6 0 180; L -6 3 6 3; R -1 -6 1 -3; L -2 3 -2 6; L 2 3 2 6"},
      {476, "L 0 -2 0 7; L -3 7 3 7; A 0 -2 3 30 150; A 0 -2 6 30 150; D 0 -2 1"},
      {480, "P -5 -2 0 -6 5 -2; R -4 -2 4 5; L 0 -6 0 -9"},
      {481, "P -7 5 -7 -1 0 -6 7 -1 7 5 -7 5; L -4 1 4 1"},
      {517, "D 0 0 1.5"},
      // Utilities.
      {601, "C 3; L -7 0 -3 0; L 3 0 7 0"},
      {602, "C 6; C 3"},
      {604, "R -5 -5 5 5; L -5 -5 5 5; L -5 5 5 -5; L 0 -5 0 -8"},
      {605, "D 0 0 3; C 5"},
      {608, "R -4 -4 4 4; L -4 -4 4 4"},
      {609, "R -6 -4 6 4; P 1 -3 -2 0 2 0 -1 3"},
      {612, "C 4; L -7 0 -4 0; L 4 0 7 0; L 0 -4 0 -7; L -2 -7 2 -7"},
      {620, "C 6; L -6 0 6 0"},
      {621, "C 8; L -8 6 8 6; T -5 -6 10 油"},
      {630, "C 8; T -5 -5 10 電"},
      {632, "C 8; T -5 -5 10 瓦"},
      {634, "C 8; T -5 -5 10 水"},
      {636, "C 8; T -5 -5 10 信"},
      {638, "C 8; T -5 -5 10 油"},
      // Land cover.
      {701, "P -4 3 0 -5 4 3 -4 3; L 0 3 0 6"},
      {702, "C 0 -2 4; L 0 2 0 6"},
      {703, "L -3 6 -3 -4; L 3 6 3 -4; L -6 -2 -3 -4; L 6 -2 3 -4; L -3 0 -6 2; L 3 0 6 2"},
      {704, "C -3 -1 3; P 1 4 4 -4 7 4 1 4; L -3 2 -3 5"},
      {705, "L 0 4 0 -4; L 0 4 -4 -1; L 0 4 4 -1"},
      {706, "L 0 -5 0 5; L -5 5 5 5"},
      {707, "C 0 -3 4; L 0 1 0 7; L -3 7 3 7"},
      {708, "C -3 -1 2; C 3 -1 2; L -3 1 -3 4; L 3 1 3 4; L -6 4 6 4"},
      {709, "D 0 0 1.5; C 0 -4 2; C 0 4 2; C -4 0 2; C 4 0 2"},
      {710, "L -2 -5 -2 5; L 2 -5 2 5"},
      {711, "P -4 -4 0 4 4 -4"},
      {712, "L 0 -6 0 6; L 0 -3 -3 -5; L 0 0 3 -2; L 0 3 -3 1"},
      {713, "D -4 3 1.3; D 4 3 1.3; D 0 -3 1.3"},
      {714, "C 0 1 3; L 0 -2 2 -6"},
      {715, "L -4 3 -5 -2; L -1 3 -1 -3; L 2 3 3 -2"},
      {716, "P -6 0 -2 -3 3 0 -2 3 -6 0; L 3 0 7 -3; L 3 0 7 3; D -3 -1 0.8"},
      {718, "L 0 5 0 -1; C -2 -3 2; C 2 -3 2"},
      {719, "R -5 -5 5 5; L 0 -5 0 5; L -5 0 5 0"},
      {721, "T -5 -5 10 空"},
      {731, "P -8 3 -5 -4 -2 3 -8 3; P 2 3 5 -4 8 3 2 3"},
      // Traffic.
      {832, "L -4 -6 -4 6; L 4 -6 4 6; L -4 -6 -7 -9; L -4 6 -7 9; L 4 -6 7 -9; L 4 6 7 9"},
      {840, "L -7 -2 7 -2; L -7 2 7 2; L -4 -2 -4 2; L 0 -2 0 2; L 4 -2 4 2"},
      {841, "L -6 -3 6 -3; L -6 3 6 3; L -6 -3 -9 -6; L -6 3 -9 6; L 6 -3 9 -6; L 6 3 9 6; D 0 0 1"},
      {843, "A 0 2 6 0 180; L -6 2 -6 6; L 6 2 6 6; L 0 -3 0 5; L -2 3 0 5; L 2 3 0 5"},
      {849, "R -6 -4 6 4; R -3 -2 3 2"},
      {850, "C -5 0 3; C 5 0 3; L -5 -3 5 -3; L -5 3 5 3"},
      {851, "L -5 -2 5 -2; L -5 2 5 2; A -5 0 2 90 270; A 5 0 2 270 450"},
      {852, "D -7 0 1.5; L -7 0 7 0; L -7 -2 7 -2; L -3 -2 -3 0; L 1 -2 1 0; L 5 -2 5 0"},
      {853, "L -7 0 0 0; L 0 0 7 -4; L 0 0 7 4"},
      {861, "P -4 6 0 -6 4 6; L -3 2 3 2; L -1 -2 1 -2; L -3 -6 3 -6"},
      {863, "L 0 0 0 7; L -3 7 3 7; C 0 -3 3; L -7 -3 -4 -3; L 4 -3 7 -3; L 0 -9 0 -7"},
      {870, "P -5 -1 0 -8 5 -1 -5 -1; L 0 -1 0 7"},
      {871, "R -3 -8 3 8; C 0 -5 1.5; C 0 0 1.5; C 0 5 1.5"},
      {872, "P -6 -6 6 -6 6 1 0 7 -6 1 -6 -6; L -6 -3 6 -3"},
      {873, "C 0 -4 2.5; C 4 -1 2.5; C 2.5 4 2.5; C -2.5 4 2.5; C -4 -1 2.5"},
      {874, "R -6 -4 6 4; L -4 -2 4 -2; L 0 -2 0 3"},
      // Water.
      {916, "D -4 -2 0.9; D 0 2 0.9; D 4 -2 0.9; D -2 -5 0.9; D 3 4 0.9; D -4 4 0.9"},
      {919, "L -7 0 7 0; L 7 0 3 -3; L 7 0 3 3"},
      {920, "P -8 0 -4 -3 0 0 -4 3 -8 0; P 0 0 4 -3 8 0 4 3 0 0"},
      {922, "L -7 -2 7 -2; L -7 2 7 2; L -5 2 -6 5; L 0 2 -1 5; L 5 2 4 5"},
      {924, "L -6 -5 -6 5; L 6 -5 6 5; R -4 -2 4 2; L 0 -6 0 -2"},
      {925, "L 0 0 0 -6; L 0 0 -5 4; L 0 0 5 4; D 0 0 1.5"},
      {930, "C 6; P -4 0 -2 -2 0 0 2 -2 4 0"},
      {931, "C 8; P -5 -2 -3 -4 -1 -2 1 -4 3 -2 5 -4; P -5 2 -3 0 -1 2 1 0 3 2 5 0"},
  };
  return s;
}

Glyph Parse(const char* script) {
  Glyph g;
  std::string part;
  std::istringstream all(script);
  while (std::getline(all, part, ';')) {
    std::istringstream in(part);
    Op op{};
    in >> op.kind;
    if (op.kind == 'T') {
      double dx, dy, size;
      in >> dx >> dy >> size >> op.text;
      op.v = {dx, dy, size};
    } else {
      for (double d; in >> d;) op.v.push_back(d);
    }
    g.push_back(op);
  }
  return g;
}

const std::map<int, Glyph>& Glyphs() {
  static const std::map<int, Glyph> g = [] {
    std::map<int, Glyph> m;
    for (const auto& [code, script] : Scripts()) m[code] = Parse(script);
    return m;
  }();
  return g;
}

void Play(MapCanvas& c, const Glyph& g, double x, double y) {
  constexpr double kDeg = 3.14159265358979 / 180;
  for (const Op& op : g) {
    const auto& v = op.v;
    switch (op.kind) {
      case 'L':
        c.Line(x + v[0], y + v[1], x + v[2], y + v[3]);
        break;
      case 'P':
        for (std::size_t i = 2; i + 1 < v.size(); i += 2) c.Line(x + v[i - 2], y + v[i - 1], x + v[i], y + v[i + 1]);
        break;
      case 'R':
        c.Line(x + v[0], y + v[1], x + v[2], y + v[1]);
        c.Line(x + v[2], y + v[1], x + v[2], y + v[3]);
        c.Line(x + v[2], y + v[3], x + v[0], y + v[3]);
        c.Line(x + v[0], y + v[3], x + v[0], y + v[1]);
        break;
      case 'C':
        if (v.size() == 1)
          c.Circle(x, y, v[0]);
        else
          c.Circle(x + v[0], y + v[1], v[2]);
        break;
      case 'D':
        c.surface.SetFill(true, c.penColour);
        c.Circle(x + v[0], y + v[1], v[2]);
        c.surface.SetFill(false, c.penColour);
        break;
      case 'A':
        c.Arc(x + v[0], y + v[1], v[2], v[3] * kDeg, v[4] * kDeg);
        break;
      case 'T':
        c.Text(x + v[0], y + v[1], op.text, c.penColour, static_cast<int>(v[2]));
        break;
      default:
        break;
    }
  }
}

}  // namespace

const std::vector<GlyphOp>* GlyphOps(int code) {
  if (!HasSymbolGlyph(code)) return nullptr;
  auto it = Glyphs().find(GlyphOf(code));
  return it == Glyphs().end() ? nullptr : &it->second;
}

int GlyphOf(int code) {
  switch (code) {
    case 833: case 834: case 835: case 838: return 832;
    default: return code;
  }
}

bool DrawSymbol(MapCanvas& c, int row, int code, double x, double y, const std::string& name) {
  if (!std::isfinite(x) || !std::isfinite(y)) return false;
  if (code == 12 || code == 235 || code == 301) {
    const std::string text = tavik::text::Trim(name);
    if (text.empty()) return false;
    const bool reference = row >= 0 && row < c.doc.ReferenceEntityCount;
    c.Text(x, y - 6, text, reference ? c.display.ReferenceTextColour : c.penColour);
    return true;
  }
  if (!HasSymbolGlyph(code)) return false;
  auto it = Glyphs().find(GlyphOf(code));
  if (it == Glyphs().end()) return false;
  Play(c, it->second, x, y);
  return true;
}

}  // namespace tavik::view
