// Paper1's pixels: a QImage painted with QPainter. The widget shows the image; the
// renderer draws into it through ui::Surface. Lines are drawn without antialiasing so
// that the inverting mode is exact: a rubber band drawn twice leaves no trace.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPen>

#include "platform/surface.h"

namespace tavik::ui {

class ImageSurface : public Surface {
 public:
  explicit ImageSurface(int width = 800, int height = 600);

  // Resizes the image; its content is lost and it is cleared to white.
  void Resize(int width, int height);
  const QImage& Image() const { return image_; }

  void Clear(Rgb background) override;
  void SetPen(Rgb colour, int width, LineStyle style) override;
  void SetDrawMode(DrawMode mode) override;
  void SetFill(bool filled, Rgb colour) override;
  void Line(float x1, float y1, float x2, float y2) override;
  void Circle(float cx, float cy, float r) override;
  void Arc(float cx, float cy, float r, double a1, double a2) override;
  void SetPixel(float x, float y, Rgb colour) override;
  void Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize) override;
  float Width() const override { return static_cast<float>(image_.width()); }
  float Height() const override { return static_cast<float>(image_.height()); }

  static QColor ToQColor(Rgb c) { return QColor(RedOf(c), GreenOf(c), BlueOf(c)); }

 private:
  // Prepares a painter with the current pen, brush and mode.
  void Begin(class QPainter& p, bool withBrush) const;

  QImage image_;
  QPen pen_;
  DrawMode mode_ = DrawMode::Copy;
  bool filled_ = false;
  QColor fill_;
  QFont font_;
};

}  // namespace tavik::ui
