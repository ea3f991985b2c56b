// ResectDlg, "後方交會": the Qt face of ResectDlgLogic, with its own serial port.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "platform/serial.h"
#include "procedures/resect_dialog.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

class ResectDlg : public QDialog {
  Q_OBJECT
 public:
  ResectDlg(tavik::SurveyContext& ctx, std::unique_ptr<tavik::ui::SerialPort> port, QWidget* parent = nullptr);
  ~ResectDlg() override;
  tavik::ResectDlgLogic& Logic() { return *logic_; }
  // 框選: the next click on the map chooses point `slot`.
  std::function<void(int slot)> StartPick;
  void Pick(int slot, double x, double y);

 private:
  void Pull();
  void Push();

  std::unique_ptr<tavik::ui::SerialPort> port_;
  std::unique_ptr<tavik::ResectDlgLogic> logic_;
  QComboBox* combo_[2];
  QLineEdit *name_, *ih_, *target_[2];
  QLabel *status_[2], *hz_[2], *v_[2], *note_[2], *distance_;
  QLabel *option1_, *option2_, *bsz_, *bsx_, *bsy_, *label6_, *label17_, *label18_;
  QPushButton *solve_, *ok_;
};
