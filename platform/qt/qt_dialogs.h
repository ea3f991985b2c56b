// Message boxes, input boxes and file dialogs on Qt widgets, for the program itself.
#pragma once

#include <QString>

#include "platform/dialogs.h"

class QWidget;

namespace tavik::ui {

class QtDialogs : public Dialogs {
 public:
  explicit QtDialogs(QWidget* parent = nullptr) : parent_(parent) {}
  void SetParent(QWidget* parent) { parent_ = parent; }

  Answer MsgBox(const std::string& text, const std::string& title, Buttons buttons, Icon icon,
                std::optional<Answer> defaultButton) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& defaultText) override;
  std::string OpenFileName(const std::string& title, const std::string& filter,
                           const std::string& startFolder) override;
  std::string SaveFileName(const std::string& title, const std::string& filter,
                           const std::string& startPath) override;

 private:
  QWidget* parent_;
};

// The classic filter "Map 7.22(*.SPC)|*.SPC|所有檔案(*.*)|*.*" as Qt's
// "Map 7.22(*.SPC) (*.[sS][pP][cC]);;所有檔案(*.*) (*)": pairs of caption and pattern,
// the patterns matching names whatever their case, "*.*" matching every name.
QString QtFilterFromClassic(const std::string& classic);

// What the file dialogs call a file, by its extension in any case: "TAVIK 圖檔" for .SPC,
// and so on; a folder is "資料夾", any other file "<EXT> 檔".
QString FileTypeText(const QString& fileName, bool folder);

// Loads Qt's own Traditional Chinese texts (qtbase_zh_TW) when the system has them, for
// the parts of the standard dialogs the program does not label itself. Without them the
// program runs as well. Returns whether they were found.
bool InstallQtTranslation();

}  // namespace tavik::ui
