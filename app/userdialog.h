// UserDialog, "空圖 -現地任意兩點開圖": the Qt face of UserDialogLogic. The fields are
// copied into the logic before each command and back after it.
#pragma once

#include <QDialog>
#include <functional>

#include "procedures/user_dialog.h"

class QCheckBox;
class QLineEdit;
class QPushButton;

class UserDialog : public QDialog {
  Q_OBJECT
 public:
  UserDialog(tavik::SurveyContext& ctx, QWidget* parent = nullptr);
  tavik::UserDialogLogic& Logic() { return logic_; }
  // The instrument's answer arrived (AwaitStationShot).
  void Received();
  // 螢幕 點一下: the next click on the map gives the station's coordinates.
  std::function<void(const std::string& mode)> StartPick;
  void PickCoord(double E, double N);

 private:
  void Pull();
  void Push();
  QLineEdit* Edit(const char* name);

  tavik::UserDialogLogic logic_;
  QLineEdit *text5_, *xbox_, *ybox_, *zbox_, *text6_, *bsx_, *bsy_, *bsz_, *text4_, *text7_, *text8_;
  QCheckBox* check2_;
  QPushButton *measure_, *stop_, *clear_;
};
