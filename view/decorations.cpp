#include "view/decorations.h"

#include <cmath>
#include <vector>

#include "core/numbers.h"
#include "view/arc_geometry.h"

namespace tavik::view {

LineDecoration LineDecorationOf(int code) {
  switch (code) {
    case 211: return {LineMark::TicksLeft, 8, 4};           // fence
    case 408: return {LineMark::Rings, 8, 2};               // stone wall
    case 409: return {LineMark::TicksBoth, 8, 3};           // board wall
    case 410: return {LineMark::Rings, 10, 1.5};            // iron railing
    case 411: return {LineMark::TicksLeft, 10, 2};          // cement fence
    case 412: return {LineMark::Crosses, 12, 3};            // barbed wire
    case 413: return {LineMark::RingsLeft, 8, 2};           // hedge
    case 414: return {LineMark::TicksBoth, 6, 2};           // bamboo fence
    case 415: return {LineMark::TicksLeft, 12, 5};          // wooden fence
    case 510: return {LineMark::TicksLeft, 5, 5};           // earth bank, hachures
    case 603: return {LineMark::TicksBoth, 20, 3};          // power line
    case 606: return {LineMark::Rings, 20, 1.5};            // telephone line
    case 607: return {LineMark::TicksLeft, 20, 4};          // cable
    case 613: return {LineMark::Letter, 0, 10, "水"};       // water main
    case 622: return {LineMark::Letter, 0, 10, "油"};       // oil pipe
    case 623: return {LineMark::Letter, 0, 10, "瓦"};       // gas pipe
    case 817: return {LineMark::TicksBoth, 10, 3};          // railway
    case 819: return {LineMark::TicksBoth, 14, 2};          // light railway
    case 846: return {LineMark::TicksLeft, 6, 4};           // retaining wall
    case 847: return {LineMark::RingsLeft, 7, 1.5};         // stone bank
    case 905: return {LineMark::TicksBoth, 10, 3};          // ditch
    case 921: return {LineMark::TicksBoth, 6, 4};           // embankment
    default: return {};
  }
}

namespace {

using Mark = LineMark;
using Decoration = LineDecoration;

struct Pt {
  double x, y;
};

constexpr double kMaxDecoratedLength = 200000;  // pixels; beyond, the line stays plain

// Places marks along the polyline every `spacing` pixels, starting half a spacing in.
void MarkAlong(MapCanvas& c, const std::vector<Pt>& path, const Decoration& d) {
  double length = 0;
  for (std::size_t i = 1; i < path.size(); ++i)
    length += std::hypot(path[i].x - path[i - 1].x, path[i].y - path[i - 1].y);
  if (!(length > 0) || length > kMaxDecoratedLength) return;
  if (d.mark == Mark::Letter) {
    // One letter at the middle of the run.
    double want = length / 2, walked = 0;
    for (std::size_t i = 1; i < path.size(); ++i) {
      const double seg = std::hypot(path[i].x - path[i - 1].x, path[i].y - path[i - 1].y);
      if (walked + seg >= want && seg > 0) {
        const double t = (want - walked) / seg;
        const double x = path[i - 1].x + t * (path[i].x - path[i - 1].x);
        const double y = path[i - 1].y + t * (path[i].y - path[i - 1].y);
        c.Text(x - d.size / 2, y - d.size - 2, d.letter, c.penColour, static_cast<int>(d.size));
        return;
      }
      walked += seg;
    }
    return;
  }
  double next = d.spacing / 2, walked = 0;
  for (std::size_t i = 1; i < path.size(); ++i) {
    const double dx = path[i].x - path[i - 1].x, dy = path[i].y - path[i - 1].y;
    const double seg = std::hypot(dx, dy);
    if (seg == 0) continue;
    const double tx = dx / seg, ty = dy / seg;
    const double nx = ty, ny = -tx;  // to the left of the direction of travel
    while (next <= walked + seg) {
      const double t = (next - walked) / seg;
      const double x = path[i - 1].x + t * dx, y = path[i - 1].y + t * dy;
      next += d.spacing;
      if (!c.Visible(x - d.size, y - d.size, x + d.size, y + d.size)) continue;
      const double s = d.size;
      switch (d.mark) {
        case Mark::TicksLeft: c.Line(x, y, x + nx * s, y + ny * s); break;
        case Mark::TicksBoth: c.Line(x - nx * s, y - ny * s, x + nx * s, y + ny * s); break;
        case Mark::Crosses:
          c.Line(x - (tx + nx) * s * 0.7, y - (ty + ny) * s * 0.7, x + (tx + nx) * s * 0.7, y + (ty + ny) * s * 0.7);
          c.Line(x - (tx - nx) * s * 0.7, y - (ty - ny) * s * 0.7, x + (tx - nx) * s * 0.7, y + (ty - ny) * s * 0.7);
          break;
        case Mark::Rings: c.Circle(x, y, s); break;
        case Mark::RingsLeft: c.Circle(x + nx * (s + 1), y + ny * (s + 1), s); break;
        default: break;
      }
    }
    walked += seg;
  }
}

// The arc from pixel 1 over 2 to 3 as a polyline of short chords, or nothing when it is
// degenerate or too long to decorate.
std::vector<Pt> ArcPath(double x1, double y1, double x2, double y2, double x3, double y3) {
  ArcGeometry a;
  // Pixels have y downward; flip to the world's sense so the arc turns the same way.
  if (!ArcThrough(x1, -y1, x2, -y2, x3, -y3, a)) return {};
  const double sweep = a.Sweep();
  const double length = sweep * a.radius;
  if (!(length > 0) || length > kMaxDecoratedLength) return {};
  const int steps = static_cast<int>(std::min(4096.0, std::max(2.0, std::ceil(length / 3))));
  std::vector<Pt> path;
  path.reserve(static_cast<std::size_t>(steps) + 1);
  for (int i = 0; i <= steps; ++i) {
    const double s = a.a1 + sweep * i / steps;
    path.push_back({a.Ec + a.radius * std::cos(s), -(a.Nc + a.radius * std::sin(s))});
  }
  // Walk the way the entity was drawn, from vertex 1.
  if (std::hypot(path.front().x - x1, path.front().y - y1) > std::hypot(path.back().x - x1, path.back().y - y1))
    std::reverse(path.begin(), path.end());
  return path;
}

// Dashes along a pixel segment, dash and gap in pixels.
void DashedLine(MapCanvas& c, double x1, double y1, double x2, double y2, double dash, double gap) {
  const double len = std::hypot(x2 - x1, y2 - y1);
  if (!(len > 0) || !std::isfinite(len)) return;
  if (dash + gap < 4 || len / (dash + gap) > 20000) {
    c.Line(x1, y1, x2, y2);
    return;
  }
  const double tx = (x2 - x1) / len, ty = (y2 - y1) / len;
  for (double s = 0; s < len; s += dash + gap) {
    const double e = std::min(len, s + dash);
    const double ax = x1 + tx * s, ay = y1 + ty * s;
    if (!c.Visible(ax - dash, ay - dash, ax + dash, ay + dash)) continue;
    c.Line(ax, ay, x1 + tx * e, y1 + ty * e);
  }
}

// Dashes along a pixel arc, counterclockwise from a1 over the sweep.
void DashedArc(MapCanvas& c, double cx, double cy, double r, double a1, double sweep, double dash, double gap) {
  const double len = sweep * r;
  if (!(len > 0) || !std::isfinite(len)) return;
  if (dash + gap < 4 || len / (dash + gap) > 20000) {
    c.Arc(cx, cy, r, a1, a1 + sweep);
    return;
  }
  for (double s = 0; s < len; s += dash + gap) {
    const double e = std::min(len, s + dash);
    c.Arc(cx, cy, r, a1 + s / r, a1 + e / r);
  }
}

}  // namespace

void DrawLegendLine(MapCanvas& c, int kind, int code, double x1, double y1, double x2, double y2, double x3,
                    double y3) {
  const Decoration d = LineDecorationOf(code);
  if (d.mark == Mark::None) return;
  if (kind == KindLine) {
    if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(x2) || !std::isfinite(y2)) return;
    MarkAlong(c, {{x1, y1}, {x2, y2}}, d);
  } else if (kind == KindArc3) {
    MarkAlong(c, ArcPath(x1, y1, x2, y2, x3, y3), d);
  }
}

void DrawLegendLineWorld(MapCanvas& c, int /*row*/, int kind, int code, double E1, double N1, double E2, double N2,
                         double E3, double N3) {
  if (code != 407 && code != 813 && code != 266) return;
  const double ppm = c.PixelsPerMetre();
  double x1, y1, x2, y2;
  c.ToPixel(E1, N1, x1, y1);
  c.ToPixel(E2, N2, x2, y2);
  if (kind == KindLine) {
    if (code == 407) {
      // The wall's two faces: the surveyed line and the other face a thickness to its left.
      c.Line(x1, y1, x2, y2);
      const double len = std::hypot(E2 - E1, N2 - N1);
      if (len > 0) {
        const double oE = -(N2 - N1) / len * WallThickness, oN = (E2 - E1) / len * WallThickness;
        double ox1, oy1, ox2, oy2;
        c.ToPixel(E1 + oE, N1 + oN, ox1, oy1);
        c.ToPixel(E2 + oE, N2 + oN, ox2, oy2);
        c.Line(ox1, oy1, ox2, oy2);
      }
    } else if (code == 813) {
      DashedLine(c, x1, y1, x2, y2, DirtRoadDash * ppm, DirtRoadGap * ppm);
    } else {
      // A boundary edge of the land to split carries its length once it has room.
      const double len = std::hypot(E2 - E1, N2 - N1);
      const double pixels = std::hypot(x2 - x1, y2 - y1);
      if (std::isfinite(len) && pixels > 60)
        c.Text((x1 + x2) / 2 + 2, (y1 + y2) / 2 - 12, num::Format(len, "0.00"), c.penColour, 10);
    }
    return;
  }
  if (code == 266) return;
  double cx, cy, r, a1, sweep;
  if (kind == KindCircle2) {
    c.ToPixel(E1, N1, cx, cy);
    r = std::hypot(x2 - cx, y2 - cy);
    a1 = 0;
    sweep = 6.28318530717958;
  } else if (kind == KindArc3) {
    ArcGeometry a;
    if (!ArcThrough(E1, N1, E2, N2, E3, N3, a)) return;
    c.ToPixel(a.Ec, a.Nc, cx, cy);
    r = a.radius * ppm;
    a1 = a.a1;
    sweep = a.Sweep();
  } else {
    return;
  }
  if (code == 407) {
    const double outer = r + WallThickness * ppm;
    if (kind == KindCircle2)
      c.Circle(cx, cy, outer);
    else
      c.Arc(cx, cy, outer, a1, a1 + sweep);
  } else {
    DashedArc(c, cx, cy, r + ppm, a1, sweep, DirtRoadDash * ppm, DirtRoadGap * ppm);
  }
}

}  // namespace tavik::view
