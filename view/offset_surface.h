// A window onto a larger drawing: passes every call to another surface with the
// coordinates shifted. A renderer that keeps only the visible area (Board) of the
// four-by-four Paper1 draws through it, so the map code keeps its paper coordinates.
#pragma once

#include <string>

#include "platform/surface.h"

namespace tavik::view {

class OffsetSurface : public ui::Surface {
 public:
  OffsetSurface(ui::Surface& inner, float dx, float dy) : inner_(inner), dx_(dx), dy_(dy) {}
  void Clear(ui::Rgb background) override { inner_.Clear(background); }
  void SetPen(ui::Rgb colour, int width, ui::LineStyle style) override { inner_.SetPen(colour, width, style); }
  void SetDrawMode(ui::DrawMode mode) override { inner_.SetDrawMode(mode); }
  void SetFill(bool filled, ui::Rgb colour) override { inner_.SetFill(filled, colour); }
  void Line(float x1, float y1, float x2, float y2) override { inner_.Line(x1 + dx_, y1 + dy_, x2 + dx_, y2 + dy_); }
  void Circle(float cx, float cy, float r) override { inner_.Circle(cx + dx_, cy + dy_, r); }
  void Arc(float cx, float cy, float r, double a1, double a2) override { inner_.Arc(cx + dx_, cy + dy_, r, a1, a2); }
  void SetPixel(float x, float y, ui::Rgb colour) override { inner_.SetPixel(x + dx_, y + dy_, colour); }
  void Text(float x, float y, const std::string& utf8, ui::Rgb colour, int pixelSize) override {
    inner_.Text(x + dx_, y + dy_, utf8, colour, pixelSize);
  }
  float Width() const override { return inner_.Width(); }
  float Height() const override { return inner_.Height(); }

 private:
  ui::Surface& inner_;
  float dx_, dy_;
};

}  // namespace tavik::view
