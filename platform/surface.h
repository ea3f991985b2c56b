// The drawing surface Paper1 as the renderer sees it: pixels with y growing downward,
// a pen, and an inverting mode for rubber bands that are drawn twice to vanish.
#pragma once

#include <cstdint>
#include <string>

namespace tavik::ui {

// Colour as 0x00BBGGRR, the classic RGB() value, so stored colours keep their meaning.
using Rgb = uint32_t;
constexpr Rgb MakeRgb(int r, int g, int b) {
  return static_cast<Rgb>(r & 255) | (static_cast<Rgb>(g & 255) << 8) | (static_cast<Rgb>(b & 255) << 16);
}
constexpr int RedOf(Rgb c) { return static_cast<int>(c & 255); }
constexpr int GreenOf(Rgb c) { return static_cast<int>((c >> 8) & 255); }
constexpr int BlueOf(Rgb c) { return static_cast<int>((c >> 16) & 255); }

// The 16 colours of the classic QBColor table.
Rgb QBColor(int index);

enum class DrawMode { Copy, Invert };
enum class LineStyle { Solid = 0, Dash = 1, Dot = 2, DashDot = 3, DashDotDot = 4 };

class Surface {
 public:
  virtual ~Surface() = default;
  virtual void Clear(Rgb background) = 0;
  virtual void SetPen(Rgb colour, int width = 1, LineStyle style = LineStyle::Solid) = 0;
  virtual void SetDrawMode(DrawMode mode) = 0;
  virtual void SetFill(bool filled, Rgb colour = 0) = 0;
  virtual void Line(float x1, float y1, float x2, float y2) = 0;
  virtual void Circle(float cx, float cy, float r) = 0;
  // Arc counterclockwise from angle a1 to a2, radians, 0 along +x, as the classic surface.
  virtual void Arc(float cx, float cy, float r, double a1, double a2) = 0;
  virtual void SetPixel(float x, float y, Rgb colour) = 0;
  // Text with its top-left corner at (x, y), in the given colour and pixel size.
  virtual void Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize = 12) = 0;
  virtual float Width() const = 0;
  virtual float Height() const = 0;
};

}  // namespace tavik::ui
