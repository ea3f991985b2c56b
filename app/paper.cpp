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
  p.drawImage(0, 0, surface_.Image());
}

void PaperWidget::resizeEvent(QResizeEvent* e) {
  surface_.Resize(e->size().width(), e->size().height());
  if (OnResized) OnResized();
}
