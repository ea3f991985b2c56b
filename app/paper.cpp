#include "app/paper.h"

#include <QPainter>
#include <QResizeEvent>

PaperWidget::PaperWidget(QWidget* parent) : QWidget(parent) {
  setObjectName("Paper1");
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(200, 150);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
}

void PaperWidget::paintEvent(QPaintEvent*) {
  QPainter p(this);
  if (dx_ != 0 || dy_ != 0) p.fillRect(rect(), Qt::white);
  p.drawImage(dx_, dy_, surface_.Image());
  if (Overlay) Overlay(p);
}

void PaperWidget::SetShift(int dx, int dy) {
  if (dx == dx_ && dy == dy_) return;
  dx_ = dx;
  dy_ = dy;
  update();
}

void PaperWidget::resizeEvent(QResizeEvent* e) {
  surface_.Resize(e->size().width(), e->size().height());
  if (OnResized) OnResized();
}
