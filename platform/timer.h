// Timers fire on the user-interface thread, between events, never during a command.
#pragma once

#include <functional>
#include <memory>

namespace tavik::ui {

class Timer {
 public:
  virtual ~Timer() = default;
  virtual void SetInterval(int milliseconds) = 0;
  virtual int Interval() const = 0;
  virtual void SetEnabled(bool enabled) = 0;
  virtual bool Enabled() const = 0;
  std::function<void()> OnTick;
};

class TimerFactory {
 public:
  virtual ~TimerFactory() = default;
  virtual std::unique_ptr<Timer> CreateTimer() = 0;
};

}  // namespace tavik::ui
