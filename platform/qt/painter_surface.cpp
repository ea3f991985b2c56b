#include "platform/qt/painter_surface.h"

#include <QPainter>
#include <cmath>

#include "platform/qt/image_surface.h"

namespace tavik::ui {

namespace {
constexpr double kPi = 3.14159265358979;
bool Sane(float v) { return ImageSurface::Drawable(v); }
QColor ToQ(Rgb c) { return ImageSurface::ToQColor(c); }
}  // namespace

PainterSurface::PainterSurface(QPainter& painter, float width, float height)
    : p_(painter), width_(width), height_(height) {
  font_.setFamily("WenQuanYi Zen Hei");
  pen_.setCapStyle(Qt::RoundCap);
  pen_.setJoinStyle(Qt::RoundJoin);
  p_.setRenderHint(QPainter::Antialiasing, true);
  p_.setRenderHint(QPainter::TextAntialiasing, true);
}

void PainterSurface::Clear(Rgb background) { p_.fillRect(QRectF(0, 0, width_, height_), ToQ(background)); }

void PainterSurface::SetPen(Rgb colour, int width, LineStyle style) {
  ImageSurface::SetQPen(pen_, colour, width, style);
}

void PainterSurface::SetFill(bool filled, Rgb colour) {
  filled_ = filled;
  fill_ = ToQ(colour);
}

void PainterSurface::Line(float x1, float y1, float x2, float y2) {
  if (inverting_ || !Sane(x1) || !Sane(y1) || !Sane(x2) || !Sane(y2)) return;
  p_.setPen(pen_);
  if (x1 == x2 && y1 == y2)
    p_.drawPoint(QPointF(x1, y1));
  else
    p_.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void PainterSurface::Circle(float cx, float cy, float r) {
  if (inverting_ || !Sane(cx) || !Sane(cy) || !Sane(r) || r < 0) return;
  p_.setPen(pen_);
  p_.setBrush(filled_ ? QBrush(fill_) : Qt::NoBrush);
  p_.drawEllipse(QPointF(cx, cy), r, r);
  p_.setBrush(Qt::NoBrush);
}

void PainterSurface::Arc(float cx, float cy, float r, double a1, double a2) {
  if (inverting_ || !Sane(cx) || !Sane(cy) || !Sane(r) || r <= 0 || !std::isfinite(a1) || !std::isfinite(a2)) return;
  double span = a2 - a1;
  while (span < 0) span += 2 * kPi;
  while (span > 2 * kPi) span -= 2 * kPi;
  p_.setPen(pen_);
  p_.setBrush(Qt::NoBrush);
  // Sixteenths of a degree, counterclockwise, as on the screen.
  const int start = static_cast<int>(std::lround(a1 * 180 / kPi * 16));
  const int len = static_cast<int>(std::lround(span * 180 / kPi * 16));
  p_.drawArc(QRectF(cx - r, cy - r, 2 * r, 2 * r), start, len);
}

void PainterSurface::SetPixel(float x, float y, Rgb colour) {
  if (inverting_ || !Sane(x) || !Sane(y)) return;
  // A pixel of the screen is a small dot on paper.
  p_.fillRect(QRectF(x - 0.5, y - 0.5, 1, 1), ToQ(colour));
}

void PainterSurface::Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize) {
  if (inverting_ || !Sane(x) || !Sane(y) || utf8.empty()) return;
  p_.setPen(ToQ(colour));
  QFont f = font_;
  f.setPixelSize(std::clamp(pixelSize, 1, 2000));
  p_.setFont(f);
  p_.drawText(QRectF(x, y, 1e5, 1e5), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, QString::fromStdString(utf8));
}

}  // namespace tavik::ui
