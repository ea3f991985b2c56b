// Scripted ends of the platform interfaces, for tests and the command-line tools:
// a message box that answers from a queue, a surface that records what was drawn,
// timers fired by hand, and a settings store in memory.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/settings_store.h"
#include "platform/surface.h"
#include "platform/timer.h"

namespace tavik::ui {

class ScriptedDialogs : public Dialogs {
 public:
  struct Shown {
    std::string kind;  // "msg", "input", "open", "save"
    std::string text, title;
    Buttons buttons = Buttons::Ok;
  };
  std::deque<Answer> answers;                    // MsgBox answers; empty: Ok / Yes
  std::deque<std::optional<std::string>> inputs; // InputBox answers; empty: cancel
  std::deque<std::string> files;                 // file dialog answers; empty: cancel
  std::vector<Shown> shown;                      // everything shown, in order
  std::vector<std::string> inputDefaults;        // the answer each input box offered

  Answer MsgBox(const std::string& text, const std::string& title, Buttons buttons, Icon icon,
                std::optional<Answer> defaultButton) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& defaultText) override;
  std::string OpenFileName(const std::string& title, const std::string& filter,
                           const std::string& startFolder) override;
  std::string SaveFileName(const std::string& title, const std::string& filter,
                           const std::string& startPath) override;

  // The texts of the message boxes shown so far.
  std::vector<std::string> Messages() const;
};

class RecordingSurface : public Surface {
 public:
  struct Op {
    std::string op;  // "clear", "pen", "mode", "fill", "line", "circle", "arc", "pixel", "text"
    std::vector<double> v;
    std::string text;
    Rgb colour = 0;
  };
  std::vector<Op> ops;
  Rgb pen = 0;
  int penWidth = 1;
  DrawMode mode = DrawMode::Copy;
  float width = 800, height = 600;

  void Clear(Rgb background) override;
  void SetPen(Rgb colour, int width, LineStyle style) override;
  void SetDrawMode(DrawMode m) override;
  void SetFill(bool filled, Rgb colour) override;
  void Line(float x1, float y1, float x2, float y2) override;
  void Circle(float cx, float cy, float r) override;
  void Arc(float cx, float cy, float r, double a1, double a2) override;
  void SetPixel(float x, float y, Rgb colour) override;
  void Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize) override;
  float Width() const override { return width; }
  float Height() const override { return height; }

  std::size_t Count(const std::string& op) const;
};

class ManualTimer : public Timer {
 public:
  void SetInterval(int ms) override { interval = ms; }
  int Interval() const override { return interval; }
  void SetEnabled(bool e) override { enabled = e; }
  bool Enabled() const override { return enabled; }
  // Fires once if enabled, as the event loop would.
  void Fire() {
    if (enabled && OnTick) OnTick();
  }
  int interval = 0;
  bool enabled = false;
};

class ManualTimerFactory : public TimerFactory {
 public:
  std::unique_ptr<Timer> CreateTimer() override;
  std::vector<ManualTimer*> created;  // owned by their users
};

class MemorySettingsStore : public SettingsStore {
 public:
  std::string GetSetting(const std::string& app, const std::string& section, const std::string& key,
                         const std::string& defaultValue) override;
  void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                   const std::string& value) override;
  void DeleteSection(const std::string& app, const std::string& section) override;
  std::vector<std::pair<std::string, std::string>> GetAllSettings(const std::string& app,
                                                                  const std::string& section) override;
  std::map<std::string, std::map<std::string, std::string>> sections;  // "app/section" -> key -> value
};

}  // namespace tavik::ui
