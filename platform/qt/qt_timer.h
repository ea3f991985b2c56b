// ui::Timer over QTimer. QTimer fires from the event loop of the thread that owns it,
// which is the user-interface thread, so a tick never interrupts a command.
#pragma once

#include <QObject>
#include <QTimer>
#include <memory>

#include "platform/timer.h"

namespace tavik::ui {

class QtTimer : public Timer {
 public:
  QtTimer();
  void SetInterval(int milliseconds) override;
  int Interval() const override { return timer_.interval(); }
  void SetEnabled(bool enabled) override;
  bool Enabled() const override { return timer_.isActive(); }

 private:
  QTimer timer_;
};

class QtTimerFactory : public TimerFactory {
 public:
  std::unique_ptr<Timer> CreateTimer() override { return std::make_unique<QtTimer>(); }
};

}  // namespace tavik::ui
