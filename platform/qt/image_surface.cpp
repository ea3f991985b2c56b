#include "platform/qt/image_surface.h"

#include <QPainter>
#include <QPainterPath>
#include <QString>
#include <cmath>

namespace tavik::ui {

namespace {
constexpr double kPi = 3.14159265358979;
// Coordinates beyond this are clipped away long before they reach the raster engine,
// whose fixed-point arithmetic misbehaves on huge values.
constexpr float kFar = 1.0e6f;

bool Sane(float v) { return std::isfinite(v) && std::fabs(v) < kFar; }
}  // namespace

ImageSurface::ImageSurface(int width, int height) {
  font_.setFamily("WenQuanYi Zen Hei");
  font_.setStyleStrategy(QFont::NoAntialias);
  pen_.setCosmetic(true);
  Resize(width, height);
}

void ImageSurface::Resize(int width, int height) {
  image_ = QImage(std::max(1, width), std::max(1, height), QImage::Format_RGB32);
  image_.fill(Qt::white);
}

void ImageSurface::Clear(Rgb background) { image_.fill(ToQColor(background)); }

void ImageSurface::SetPen(Rgb colour, int width, LineStyle style) {
  pen_.setColor(ToQColor(colour));
  pen_.setWidth(std::max(1, width));
  switch (style) {
    case LineStyle::Solid: pen_.setStyle(Qt::SolidLine); break;
    case LineStyle::Dash: pen_.setStyle(Qt::DashLine); break;
    case LineStyle::Dot: pen_.setStyle(Qt::DotLine); break;
    case LineStyle::DashDot: pen_.setStyle(Qt::DashDotLine); break;
    case LineStyle::DashDotDot: pen_.setStyle(Qt::DashDotDotLine); break;
  }
}

void ImageSurface::SetDrawMode(DrawMode mode) { mode_ = mode; }

void ImageSurface::SetFill(bool filled, Rgb colour) {
  filled_ = filled;
  fill_ = ToQColor(colour);
}

void ImageSurface::Begin(QPainter& p, bool withBrush) const {
  p.setRenderHint(QPainter::Antialiasing, false);
  p.setPen(pen_);
  p.setBrush(withBrush && filled_ ? QBrush(fill_) : Qt::NoBrush);
  // Inverting flips every pixel drawn whatever the pen colour, so a second drawing of
  // the same figure restores the picture under it.
  if (mode_ == DrawMode::Invert) p.setCompositionMode(QPainter::RasterOp_NotDestination);
}

void ImageSurface::Line(float x1, float y1, float x2, float y2) {
  if (!Sane(x1) || !Sane(y1) || !Sane(x2) || !Sane(y2)) return;
  QPainter p(&image_);
  Begin(p, false);
  if (x1 == x2 && y1 == y2)
    p.drawPoint(QPointF(x1, y1));
  else
    p.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void ImageSurface::Circle(float cx, float cy, float r) {
  if (!Sane(cx) || !Sane(cy) || !Sane(r) || r < 0) return;
  QPainter p(&image_);
  Begin(p, true);
  p.drawEllipse(QPointF(cx, cy), r, r);
}

void ImageSurface::Arc(float cx, float cy, float r, double a1, double a2) {
  if (!Sane(cx) || !Sane(cy) || !Sane(r) || r <= 0 || !std::isfinite(a1) || !std::isfinite(a2)) return;
  double span = a2 - a1;
  while (span < 0) span += 2 * kPi;
  while (span > 2 * kPi) span -= 2 * kPi;
  QPainter p(&image_);
  Begin(p, false);
  // Qt counts sixteenths of a degree, counterclockwise on the screen, as the classic surface.
  const int start = static_cast<int>(std::lround(a1 * 180 / kPi * 16));
  const int len = static_cast<int>(std::lround(span * 180 / kPi * 16));
  p.drawArc(QRectF(cx - r, cy - r, 2 * r, 2 * r), start, len);
}

void ImageSurface::SetPixel(float x, float y, Rgb colour) {
  if (!Sane(x) || !Sane(y)) return;
  const int ix = static_cast<int>(std::floor(x)), iy = static_cast<int>(std::floor(y));
  if (ix < 0 || iy < 0 || ix >= image_.width() || iy >= image_.height()) return;
  if (mode_ == DrawMode::Invert)
    image_.setPixel(ix, iy, ~image_.pixel(ix, iy) | 0xFF000000u);
  else
    image_.setPixel(ix, iy, ToQColor(colour).rgb());
}

void ImageSurface::Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize) {
  if (!Sane(x) || !Sane(y) || utf8.empty()) return;
  QPainter p(&image_);
  Begin(p, false);
  p.setPen(ToQColor(colour));
  QFont f = font_;
  f.setPixelSize(std::clamp(pixelSize, 1, 2000));
  p.setFont(f);
  p.drawText(QRectF(x, y, 1e5, 1e5), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, QString::fromStdString(utf8));
}

}  // namespace tavik::ui
