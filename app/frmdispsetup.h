// FrmDispSetup ("顯示設定"): what the map shows and how large. Point marks and names
// shown or hidden, the size of the map's texts and the width of its lines as factors,
// the paper's colour and the grid. OK applies the choice to Paper1 at once; the values
// are remembered with the other settings (the colour in the settings store, the rest in
// Software.ini).
#pragma once

#include <QDialog>
#include <string>

#include "view/display.h"

class QCheckBox;
class QDoubleSpinBox;
class QPushButton;
class Program;

namespace tavik {
class SettingsLinks;
namespace ui {
class SettingsStore;
}
}  // namespace tavik

class FrmDispSetup : public QDialog {
  Q_OBJECT
 public:
  // Shows `display` and edits a copy; accept() writes the copy back.
  FrmDispSetup(tavik::view::Display& display, QWidget* parent = nullptr);

  void accept() override;
  // The paper colour the dialog holds (its button opens the colour chooser).
  void SetBackground(tavik::ui::Rgb colour);
  // Adds the stake-out's choice: a click on the point observed last may take it as
  // the target. accept() writes the box into `flag`.
  void OfferStakeLastObserved(int16_t& flag);

 private:
  void ShowBackground();

  tavik::view::Display& display_;
  tavik::ui::Rgb background_;
  QCheckBox* marks_;
  QCheckBox* names_;
  QCheckBox* grid_;
  QDoubleSpinBox* textScale_;
  QDoubleSpinBox* lineScale_;
  QPushButton* colour_;
  QCheckBox* stakeLast_ = nullptr;
  int16_t* stakeLastFlag_ = nullptr;
};

// Links the display settings to Software.ini and the store: slot 20 the names, 25 the
// marks, 40 the text size, 61 the line width, 62 the grid; the paper colour under
// "Display" in the store.
void LinkDisplaySettings(tavik::SettingsLinks& links, tavik::view::Display& display, tavik::ui::SettingsStore& store);

// 設定 → 顯示設定...: opens the dialog and repaints Paper1 with the new settings.
void AddDisplaySetupCommand(Program& program);
