// FrmRePlay, "重播": the Qt face of RePlayLogic. It is application-modal while shown, so
// that no command of the main window can reach the scratch document a replay runs on;
// the map, the GPS panels and the marker still repaint under it.
#pragma once

#include <QDialog>
#include <memory>

#include "procedures/replay.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

class FrmRePlay : public QDialog {
  Q_OBJECT
 public:
  FrmRePlay(tavik::App& app, tavik::GpsState& gps, tavik::GpsPanels& panels, tavik::ui::Dialogs& dialogs,
            tavik::ui::TimerFactory& timers, QWidget* parent = nullptr);
  ~FrmRePlay() override;

  tavik::RePlayLogic& Logic() { return *logic_; }
  // Set by the owner before Play is pressed.
  tavik::ReplayHooks& Hooks() { return logic_->hooks; }
  QPushButton* Command1(int index) const { return command1_[index]; }
  QLineEdit* Text1() const { return text1_; }

 protected:
  void done(int r) override;

 private:
  void Push();

  tavik::App& app_;
  tavik::GpsState& gps_;
  std::unique_ptr<tavik::RePlayLogic> logic_;
  QLineEdit* text1_;
  QCheckBox* check1_;
  QRadioButton *option1_, *option2_;
  QLabel* label3_;
  QPushButton* command1_[5];
};
