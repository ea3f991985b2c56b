#include "platform/qt/qt_timer.h"

namespace tavik::ui {

QtTimer::QtTimer() {
  timer_.setTimerType(Qt::CoarseTimer);
  QObject::connect(&timer_, &QTimer::timeout, [this] {
    if (OnTick) OnTick();
  });
}

void QtTimer::SetInterval(int milliseconds) { timer_.setInterval(std::max(0, milliseconds)); }

void QtTimer::SetEnabled(bool enabled) {
  // Enabling a running timer leaves it running on its current period, as the classic
  // timer does; disabling stops it at once.
  if (enabled && !timer_.isActive())
    timer_.start();
  else if (!enabled)
    timer_.stop();
}

}  // namespace tavik::ui
