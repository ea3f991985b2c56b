// Paper1: the widget that shows the drawing surface. The picture lives in an
// ImageSurface that the renderer paints through ui::Surface; the widget only copies it
// to the screen and reports its size changes.
#pragma once

#include <QWidget>
#include <functional>

class QPainter;

#include "platform/qt/image_surface.h"

class PaperWidget : public QWidget {
  Q_OBJECT
 public:
  explicit PaperWidget(QWidget* parent = nullptr);
  tavik::ui::ImageSurface& Surface() { return surface_; }
  // Shows the picture moved by (dx, dy) pixels: the pan's fast path, without a repaint.
  void SetShift(int dx, int dy);
  // Called after the surface took a new size, to paint the map again.
  std::function<void()> OnResized;
  // Drawn over the picture at every paint, in the widget's pixels: what follows the
  // pointer (a rubber band) and must outlive every repaint of the picture.
  std::function<void(QPainter&)> Overlay;

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;

 private:
  tavik::ui::ImageSurface surface_;
  int dx_ = 0, dy_ = 0;
};
