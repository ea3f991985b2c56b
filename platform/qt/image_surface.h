// Paper1's pixels: a QImage painted with QPainter. The widget shows the image; the
// renderer draws into it through ui::Surface. Lines are drawn without antialiasing so
// that the inverting mode is exact: a rubber band drawn twice leaves no trace.
//
// One painter stays open on the image from the first figure drawn until the picture is
// looked at (Image()), so a repaint of many thousand figures opens one painter, not one
// per figure; the pen, brush, mode and font are handed to it only when they change.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <cmath>
#include <memory>

#include "platform/surface.h"

namespace tavik::ui {

class ImageSurface : public Surface {
 public:
  explicit ImageSurface(int width = 800, int height = 600);
  ~ImageSurface() override { End(); }
  ImageSurface(const ImageSurface&) = delete;
  ImageSurface& operator=(const ImageSurface&) = delete;

  // Resizes the image; its content is lost and it is cleared to white.
  void Resize(int width, int height);
  // The picture as drawn so far (the open painter is closed first, so that what it drew
  // is all there and a copy taken now stays as it is).
  const QImage& Image() const {
    End();
    return image_;
  }
  // The picture's pixels, for a layer written straight into them (the images under the
  // map); the open painter is closed first, so the pixels are the picture's own.
  QImage& Pixels() {
    End();
    return image_;
  }

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
  // The pen's colour, width (at least 1) and dash pattern, as every Qt surface sets them.
  static void SetQPen(QPen& pen, Rgb colour, qreal width, LineStyle style);
  // A coordinate the raster and print engines take safely: finite, and not so far off
  // that their fixed-point arithmetic misbehaves (such figures are far off the sheet).
  static bool Drawable(float v) { return std::isfinite(v) && std::fabs(v) < 1.0e6f; }

 private:
  // The open painter, opened if need be, with the current mode; withPen hands it the
  // current pen, withBrush the current fill (only an ellipse uses a brush).
  QPainter& Painter(bool withPen, bool withBrush = false);
  void End() const;

  QImage image_;
  QPen pen_;
  DrawMode mode_ = DrawMode::Copy;
  bool filled_ = false;
  QColor fill_;
  QFont font_;
  // What the open painter holds, so that only changes are handed to it.
  mutable std::unique_ptr<QPainter> painter_;
  bool painterPen_ = false, painterBrush_ = false;
  bool painterFilled_ = false;
  QColor painterFill_;
  int painterFontSize_ = 0;
};

}  // namespace tavik::ui
