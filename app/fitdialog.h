// FitDialog, "擺站": the Qt face of FitDialogLogic.
#pragma once

#include <QDialog>
#include <functional>

#include "procedures/fit_dialog.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

class FitDialog : public QDialog {
  Q_OBJECT
 public:
  FitDialog(tavik::SurveyContext& ctx, QWidget* parent = nullptr);
  tavik::FitDialogLogic& Logic() { return logic_; }
  void DistanceReceived();
  void AngleReceived();
  // 框選: the next click on the map chooses the station ("FIT") or backsight ("FIT2").
  std::function<void(const std::string& mode)> StartPick;
  void Pick(double x, double y, bool backsight);

 protected:
  void reject() override;

 private:
  void Pull();
  void Push();

  tavik::FitDialogLogic logic_;
  QComboBox *combo1_, *combo2_;
  QLineEdit *text4_, *text3_;
  QLabel *text5_, *label9_, *label10_, *label13_;
  QPushButton *command3_, *command4_, *command5_, *command6_;
};
