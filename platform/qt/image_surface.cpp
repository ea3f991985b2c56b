#include "platform/qt/image_surface.h"

#include <QPainterPath>
#include <QString>
#include <cmath>

namespace tavik::ui {

namespace {
constexpr double kPi = 3.14159265358979;
bool Sane(float v) { return ImageSurface::Drawable(v); }
}  // namespace

ImageSurface::ImageSurface(int width, int height) {
  font_.setFamily("WenQuanYi Zen Hei");
  font_.setStyleStrategy(QFont::NoAntialias);
  pen_.setCosmetic(true);
  Resize(width, height);
}

void ImageSurface::Resize(int width, int height) {
  End();
  image_ = QImage(std::max(1, width), std::max(1, height), QImage::Format_RGB32);
  image_.fill(Qt::white);
}

// The open painter draws straight into the image's memory, so filling the image or
// setting a pixel under it is seen by both.
void ImageSurface::Clear(Rgb background) { image_.fill(ToQColor(background)); }

void ImageSurface::SetPen(Rgb colour, int width, LineStyle style) {
  SetQPen(pen_, colour, width, style);
  painterPen_ = false;
}

void ImageSurface::SetQPen(QPen& pen, Rgb colour, qreal width, LineStyle style) {
  pen.setColor(ToQColor(colour));
  pen.setWidthF(std::max<qreal>(1, width));
  switch (style) {
    case LineStyle::Solid: pen.setStyle(Qt::SolidLine); break;
    case LineStyle::Dash: pen.setStyle(Qt::DashLine); break;
    case LineStyle::Dot: pen.setStyle(Qt::DotLine); break;
    case LineStyle::DashDot: pen.setStyle(Qt::DashDotLine); break;
    case LineStyle::DashDotDot: pen.setStyle(Qt::DashDotDotLine); break;
  }
}

void ImageSurface::SetDrawMode(DrawMode mode) {
  if (mode == mode_) return;
  mode_ = mode;
  // Inverting flips every pixel drawn whatever the pen colour, so a second drawing of
  // the same figure restores the picture under it.
  if (painter_)
    painter_->setCompositionMode(mode_ == DrawMode::Invert ? QPainter::RasterOp_NotDestination
                                                           : QPainter::CompositionMode_SourceOver);
}

void ImageSurface::SetFill(bool filled, Rgb colour) {
  filled_ = filled;
  fill_ = ToQColor(colour);
}

QPainter& ImageSurface::Painter(bool withPen, bool withBrush) {
  if (!painter_) {
    painter_ = std::make_unique<QPainter>(&image_);
    painter_->setRenderHint(QPainter::Antialiasing, false);
    painter_->setBrush(Qt::NoBrush);
    if (mode_ == DrawMode::Invert) painter_->setCompositionMode(QPainter::RasterOp_NotDestination);
    painterPen_ = painterBrush_ = false;
    painterFontSize_ = 0;
  }
  if (withPen && !painterPen_) {
    painter_->setPen(pen_);
    painterPen_ = true;
  }
  if (withBrush && (!painterBrush_ || painterFilled_ != filled_ || (filled_ && painterFill_ != fill_))) {
    painter_->setBrush(filled_ ? QBrush(fill_) : QBrush(Qt::NoBrush));
    painterBrush_ = true;
    painterFilled_ = filled_;
    painterFill_ = fill_;
  }
  return *painter_;
}

void ImageSurface::End() const { painter_.reset(); }

void ImageSurface::Line(float x1, float y1, float x2, float y2) {
  if (!Sane(x1) || !Sane(y1) || !Sane(x2) || !Sane(y2)) return;
  QPainter& p = Painter(true);
  if (x1 == x2 && y1 == y2)
    p.drawPoint(QPointF(x1, y1));
  else
    p.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void ImageSurface::Circle(float cx, float cy, float r) {
  if (!Sane(cx) || !Sane(cy) || !Sane(r) || r < 0) return;
  Painter(true, true).drawEllipse(QPointF(cx, cy), r, r);
}

void ImageSurface::Arc(float cx, float cy, float r, double a1, double a2) {
  if (!Sane(cx) || !Sane(cy) || !Sane(r) || r <= 0 || !std::isfinite(a1) || !std::isfinite(a2)) return;
  double span = a2 - a1;
  while (span < 0) span += 2 * kPi;
  while (span > 2 * kPi) span -= 2 * kPi;
  // Qt counts sixteenths of a degree, counterclockwise on the screen, as the classic surface.
  const int start = static_cast<int>(std::lround(a1 * 180 / kPi * 16));
  const int len = static_cast<int>(std::lround(span * 180 / kPi * 16));
  Painter(true).drawArc(QRectF(cx - r, cy - r, 2 * r, 2 * r), start, len);
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
  QPainter& p = Painter(false);
  p.setPen(ToQColor(colour));
  painterPen_ = false;
  const int size = std::clamp(pixelSize, 1, 2000);
  if (size != painterFontSize_) {
    QFont f = font_;
    f.setPixelSize(size);
    p.setFont(f);
    painterFontSize_ = size;
  }
  p.drawText(QRectF(x, y, 1e5, 1e5), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, QString::fromStdString(utf8));
}

}  // namespace tavik::ui
