// LegMenu, the legend picker "九大地類--圖例選單": nine tabs, one per class of legend,
// each a button array (Btn100 .. Btn900) captioned with the menu texts; a press makes
// that code the CurrentLegend. EduLegends is the same picker in its short form, where
// only the Btn200 buttons 235 and 201 set a code. OKButton and Command1 close it.
#pragma once

#include <QDialog>
#include <functional>
#include <string>

#include "core/document.h"
#include "platform/dialogs.h"

class QLabel;
class QToolBar;

class LegMenu : public QDialog {
  Q_OBJECT
 public:
  LegMenu(QWidget* parent, tavik::Document& doc, bool edu = false);
  // Called after each press that changed CurrentLegend.
  std::function<void(int16_t)> OnPicked;

 private:
  void Pick(int code);
  tavik::Document& doc_;
  bool edu_;
  QLabel* current_ = nullptr;
};

// LegendButton on a toolbar: opens the picker unless a command is running, in which
// case it refuses with its message.
void AddLegendButton(QToolBar* toolbar, tavik::Document& doc, std::function<std::string()> actionMode,
                     tavik::ui::Dialogs& dialogs, std::function<void(int16_t)> picked);
