// Message boxes, input boxes and file dialogs, as the core asks for them. The Qt
// program shows real dialogs; tests and the command-line tools answer from a script.
#pragma once

#include <optional>
#include <string>

namespace tavik::ui {

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class Icon { None, Information, Question, Exclamation, Critical };
enum class Answer { Ok, Cancel, Yes, No, Retry };

class Dialogs {
 public:
  virtual ~Dialogs() = default;

  // A modal message; `defaultButton` is the one Enter presses (nullopt: the first).
  virtual Answer MsgBox(const std::string& text, const std::string& title = "TAVIK",
                        Buttons buttons = Buttons::Ok, Icon icon = Icon::None,
                        std::optional<Answer> defaultButton = std::nullopt) = 0;

  // A one-line prompt. nullopt when the user cancels; an accepted empty field gives "".
  virtual std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                              const std::string& defaultText = "") = 0;

  // File dialogs. `filter` is in the classic form "Map 7.22(*.SPC)|*.SPC|所有檔案(*.*)|*.*".
  // The result is the chosen path, or "" when the user cancels.
  virtual std::string OpenFileName(const std::string& title, const std::string& filter,
                                   const std::string& startFolder) = 0;
  virtual std::string SaveFileName(const std::string& title, const std::string& filter,
                                   const std::string& startPath) = 0;
};

}  // namespace tavik::ui
