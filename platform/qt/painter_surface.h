// The drawing surface on any QPainter: a printer's page, a PDF, a preview. The map view
// paints through it exactly as it paints Paper1; the painter's own transform sets how
// large a pixel of the map view comes out. Lines and texts are smooth, as paper wants
// them; there is no inverting mode, which only rubber bands on the screen use.
#pragma once

#include <QFont>
#include <QPen>

#include "platform/surface.h"

class QPainter;

namespace tavik::ui {

class PainterSurface : public Surface {
 public:
  // `width` and `height` are the surface's size in the painter's coordinates.
  PainterSurface(QPainter& painter, float width, float height);

  void Clear(Rgb background) override;
  void SetPen(Rgb colour, int width, LineStyle style) override;
  void SetDrawMode(DrawMode mode) override { inverting_ = mode == DrawMode::Invert; }
  void SetFill(bool filled, Rgb colour) override;
  void Line(float x1, float y1, float x2, float y2) override;
  void Circle(float cx, float cy, float r) override;
  void Arc(float cx, float cy, float r, double a1, double a2) override;
  void SetPixel(float x, float y, Rgb colour) override;
  void Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize) override;
  float Width() const override { return width_; }
  float Height() const override { return height_; }

 private:
  QPainter& p_;
  float width_, height_;
  QPen pen_;
  bool filled_ = false;
  QColor fill_;
  bool inverting_ = false;
  QFont font_;
};

}  // namespace tavik::ui
