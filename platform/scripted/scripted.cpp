#include "platform/scripted/scripted.h"

namespace tavik::ui {

Answer ScriptedDialogs::MsgBox(const std::string& text, const std::string& title, Buttons buttons, Icon,
                               std::optional<Answer>) {
  shown.push_back({"msg", text, title, buttons});
  if (!answers.empty()) {
    Answer a = answers.front();
    answers.pop_front();
    return a;
  }
  return (buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel) ? Answer::Yes : Answer::Ok;
}

std::optional<std::string> ScriptedDialogs::InputBox(const std::string& prompt, const std::string& title,
                                                     const std::string& defaultText) {
  shown.push_back({"input", prompt, title, Buttons::OkCancel});
  inputDefaults.push_back(defaultText);
  if (inputs.empty()) return std::nullopt;
  auto a = inputs.front();
  inputs.pop_front();
  return a;
}

std::string ScriptedDialogs::OpenFileName(const std::string& title, const std::string& filter,
                                          const std::string&) {
  shown.push_back({"open", filter, title, Buttons::OkCancel});
  if (files.empty()) return "";
  std::string f = files.front();
  files.pop_front();
  return f;
}

std::string ScriptedDialogs::SaveFileName(const std::string& title, const std::string& filter,
                                          const std::string&) {
  shown.push_back({"save", filter, title, Buttons::OkCancel});
  if (files.empty()) return "";
  std::string f = files.front();
  files.pop_front();
  return f;
}

std::vector<std::string> ScriptedDialogs::Messages() const {
  std::vector<std::string> out;
  for (const auto& s : shown)
    if (s.kind == "msg") out.push_back(s.text);
  return out;
}

void RecordingSurface::Clear(Rgb background) { ops.push_back({"clear", {}, "", background}); }
void RecordingSurface::SetPen(Rgb colour, int w, LineStyle style) {
  pen = colour;
  penWidth = w;
  ops.push_back({"pen", {double(w), double(int(style))}, "", colour});
}
void RecordingSurface::SetDrawMode(DrawMode m) {
  mode = m;
  ops.push_back({"mode", {m == DrawMode::Invert ? 1.0 : 0.0}, "", pen});
}
void RecordingSurface::SetFill(bool filled, Rgb colour) { ops.push_back({"fill", {filled ? 1.0 : 0.0}, "", colour}); }
void RecordingSurface::Line(float x1, float y1, float x2, float y2) { ops.push_back({"line", {x1, y1, x2, y2}, "", pen}); }
void RecordingSurface::Circle(float cx, float cy, float r) { ops.push_back({"circle", {cx, cy, r}, "", pen}); }
void RecordingSurface::Arc(float cx, float cy, float r, double a1, double a2) {
  ops.push_back({"arc", {cx, cy, r, a1, a2}, "", pen});
}
void RecordingSurface::SetPixel(float x, float y, Rgb colour) { ops.push_back({"pixel", {x, y}, "", colour}); }
void RecordingSurface::Text(float x, float y, const std::string& utf8, Rgb colour, int pixelSize) {
  ops.push_back({"text", {x, y, double(pixelSize)}, utf8, colour});
}
std::size_t RecordingSurface::Count(const std::string& op) const {
  std::size_t n = 0;
  for (const auto& o : ops)
    if (o.op == op) ++n;
  return n;
}

std::unique_ptr<Timer> ManualTimerFactory::CreateTimer() {
  auto t = std::make_unique<ManualTimer>();
  created.push_back(t.get());
  return t;
}

std::string MemorySettingsStore::GetSetting(const std::string& app, const std::string& section,
                                            const std::string& key, const std::string& defaultValue) {
  auto s = sections.find(app + "/" + section);
  if (s == sections.end()) return defaultValue;
  auto k = s->second.find(key);
  return k == s->second.end() ? defaultValue : k->second;
}
void MemorySettingsStore::SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                                      const std::string& value) {
  sections[app + "/" + section][key] = value;
}
void MemorySettingsStore::DeleteSection(const std::string& app, const std::string& section) {
  sections.erase(app + "/" + section);
}
std::vector<std::pair<std::string, std::string>> MemorySettingsStore::GetAllSettings(const std::string& app,
                                                                                     const std::string& section) {
  std::vector<std::pair<std::string, std::string>> out;
  auto s = sections.find(app + "/" + section);
  if (s != sections.end())
    for (const auto& kv : s->second) out.push_back(kv);
  return out;
}

}  // namespace tavik::ui
