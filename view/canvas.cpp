#include "view/canvas.h"

#include <algorithm>
#include <cmath>

namespace tavik::view {
namespace {

constexpr double kMargin = 4;            // pixels drawn beyond the clip, for pen widths
constexpr double kSurfaceRadiusLimit = 20000;  // beyond this a circle is drawn as chords
constexpr double kTwoPi = 6.28318530717958;

bool Finite(double a, double b) { return std::isfinite(a) && std::isfinite(b); }

// Liang-Barsky: clips the segment to the rectangle; false when nothing is left.
bool ClipSegment(double l, double t, double r, double b, double& x1, double& y1, double& x2, double& y2) {
  const double dx = x2 - x1, dy = y2 - y1;
  double u0 = 0, u1 = 1;
  const double p[4] = {-dx, dx, -dy, dy};
  const double q[4] = {x1 - l, r - x1, y1 - t, b - y1};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0) {
      if (q[i] < 0) return false;
      continue;
    }
    const double u = q[i] / p[i];
    if (p[i] < 0) {
      if (u > u1) return false;
      if (u > u0) u0 = u;
    } else {
      if (u < u0) return false;
      if (u < u1) u1 = u;
    }
  }
  const double ox = x1, oy = y1;
  x1 = ox + u0 * dx, y1 = oy + u0 * dy;
  x2 = ox + u1 * dx, y2 = oy + u1 * dy;
  return true;
}

// True when angle a lies on the counterclockwise sweep from a1 to a2.
bool OnSweep(double a, double a1, double a2) {
  const double sweep = std::fmod(std::fmod(a2 - a1, kTwoPi) + kTwoPi, kTwoPi);
  const double at = std::fmod(std::fmod(a - a1, kTwoPi) + kTwoPi, kTwoPi);
  return sweep == 0 ? true : at <= sweep;
}

}  // namespace

void MapCanvas::ResetClip() {
  const double w = view.ViewWidthPixels, h = view.ViewHeightPixels;
  clipLeft = visibleOnly ? 1.5 * w : 0;
  clipTop = visibleOnly ? 1.5 * h : 0;
  clipRight = visibleOnly ? 2.5 * w : 4 * w;
  clipBottom = visibleOnly ? 2.5 * h : 4 * h;
}

void MapCanvas::SetPen(ui::Rgb colour, int width, ui::LineStyle style) {
  if (penKnown && colour == penColour && width == penWidth && style == penStyle) return;
  penKnown = true;
  penColour = colour;
  penWidth = width;
  penStyle = style;
  // The width asked for is kept, so that a decoration that takes up its line's pen is
  // scaled once only.
  if (display.LineWidthScale != 1) {
    const double scaled = std::round(width * display.LineWidthScale);
    width = std::isfinite(scaled) && scaled >= 1 ? static_cast<int>(std::min(scaled, 50.0)) : 1;
  }
  surface.SetPen(colour, width, style);
}

void MapCanvas::ToPixel(double E, double N, double& x, double& y) const {
  const double u = doc.ScaleDenominator / 100;
  x = (E - view.PaperMinE) / u * PixelsPerCm;
  y = (view.PaperMaxN - N) / u * PixelsPerCm;
}

double MapCanvas::PixelsPerMetre() const { return PixelsPerCm * 100 / doc.ScaleDenominator; }

bool MapCanvas::Visible(double x1, double y1, double x2, double y2) const {
  if (x1 > x2) std::swap(x1, x2);
  if (y1 > y2) std::swap(y1, y2);
  return x2 >= clipLeft - kMargin && x1 <= clipRight + kMargin && y2 >= clipTop - kMargin &&
         y1 <= clipBottom + kMargin;
}

void MapCanvas::Line(double x1, double y1, double x2, double y2) {
  if (!Finite(x1, y1) || !Finite(x2, y2)) return;
  if (!ClipSegment(clipLeft - kMargin, clipTop - kMargin, clipRight + kMargin, clipBottom + kMargin, x1, y1, x2, y2))
    return;
  surface.Line(static_cast<float>(x1), static_cast<float>(y1), static_cast<float>(x2), static_cast<float>(y2));
}

void MapCanvas::Circle(double cx, double cy, double r) {
  if (!Finite(cx, cy) || !std::isfinite(r) || r < 0) return;
  if (!Visible(cx - r, cy - r, cx + r, cy + r)) return;
  if (r > kSurfaceRadiusLimit) {
    Arc(cx, cy, r, 0, kTwoPi);
    return;
  }
  surface.Circle(static_cast<float>(cx), static_cast<float>(cy), static_cast<float>(r));
}

void MapCanvas::Arc(double cx, double cy, double r, double a1, double a2) {
  if (!Finite(cx, cy) || !std::isfinite(r) || r < 0 || !Finite(a1, a2)) return;
  if (!Visible(cx - r, cy - r, cx + r, cy + r)) return;
  if (r <= kSurfaceRadiusLimit) {
    surface.Arc(static_cast<float>(cx), static_cast<float>(cy), static_cast<float>(r), a1, a2);
    return;
  }
  // A huge circle: only the few degrees near the paper can show. Find the angular
  // window of the circle within reach of the clip rectangle and draw it as chords.
  const double mx = (clipLeft + clipRight) / 2, my = (clipTop + clipBottom) / 2;
  const double reach = std::hypot(clipRight - clipLeft, clipBottom - clipTop) / 2 + kMargin;
  const double d = std::hypot(mx - cx, my - cy);
  if (d == 0 || d + reach < r || d - reach > r) return;
  double c = (r * r + d * d - reach * reach) / (2 * r * d);
  if (c > 1) c = 1;
  if (c < -1) c = -1;
  const double half = std::acos(c);
  const double towards = std::atan2(cy - my, mx - cx);  // surface angles count upward
  const int steps = 256;
  bool havePrev = false;
  double px = 0, py = 0;
  for (int i = 0; i <= steps; ++i) {
    const double a = towards - half + 2 * half * i / steps;
    if (!OnSweep(a, a1, a2)) {
      havePrev = false;
      continue;
    }
    const double x = cx + r * std::cos(a), y = cy - r * std::sin(a);
    if (havePrev) Line(px, py, x, y);
    px = x, py = y;
    havePrev = true;
  }
}

void MapCanvas::Text(double x, double y, const std::string& utf8, ui::Rgb colour, int pixelSize) {
  if (utf8.empty() || !Finite(x, y)) return;
  if (display.TextScale != 1) {
    const double scaled = std::round(pixelSize * display.TextScale);
    pixelSize = std::isfinite(scaled) && scaled >= 4 ? static_cast<int>(std::min(scaled, 200.0)) : 4;
  }
  if (x > clipRight + kMargin || y > clipBottom + kMargin || y < clipTop - 2 * pixelSize ||
      x < clipLeft - 20.0 * pixelSize)
    return;
  surface.Text(static_cast<float>(x), static_cast<float>(y), utf8, colour, pixelSize);
}

}  // namespace tavik::view
