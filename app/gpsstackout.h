// GPSstackOut, "GPS-放樣": the Qt face of GpsStakeOutLogic. The picture Picture1 holds
// the arrow: straight up is the direction of travel, and the arrow points where the
// target lies relative to it. Label9 shows the distance to the target, Label8 its
// azimuth. DlgStackSetup, "選放樣點", chooses the target (from the list of named points or
// by a pick on the map), the radius of the alarm circle and how a stored point is named.
#pragma once

#include <QDialog>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>

#include "procedures/gps_stakeout.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// Picture1: the circle Shape1 and the arrow (shaft Line1, head Line2 and Line5, the tail
// bar Line6), turned by Angle clockwise from the top. No arrow until the first turn.
class StakeArrow : public QWidget {
  Q_OBJECT
 public:
  explicit StakeArrow(QWidget* parent = nullptr);
  void SetAngle(double radians, bool shown);
  double Angle() const { return angle_; }
  bool Shown() const { return shown_; }
  // The arrow's tip in the widget's pixels.
  QPointF Tip() const;
  QSize sizeHint() const override { return {180, 180}; }

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  double angle_ = 0;
  bool shown_ = false;
};

class DlgStackSetup : public QDialog {
  Q_OBJECT
 public:
  DlgStackSetup(tavik::GpsStakeOutLogic& logic, const tavik::GpsState& gps, QWidget* parent = nullptr);
  // Command1, 點選位置: the set-up closes and the next click on the map picks the target.
  std::function<void()> StartPick;

  QComboBox* Combo1() const { return combo1_; }
  QLineEdit* Text2() const { return text2_; }
  QRadioButton* Option2() const { return option2_; }
  // OKButton; false (and the dialog stays) when the logic refused the values.
  bool Ok();

 private:
  tavik::GpsStakeOutLogic& logic_;
  QComboBox* combo1_;
  QLineEdit* text2_;
  QRadioButton *option1_, *option2_;
};

class GPSstackOut : public QDialog {
  Q_OBJECT
 public:
  GPSstackOut(tavik::Document& doc, const tavik::View& view, tavik::GpsState& gps, tavik::ui::Dialogs& dialogs,
              QWidget* parent = nullptr);
  ~GPSstackOut() override;

  tavik::GpsStakeOutLogic& Logic() { return logic_; }
  // The hooks of the logic, to be set by the owner before the window is shown.
  tavik::GpsStakeHooks& Hooks() { return logic_.hooks; }
  // 點選位置: the owner hides the windows and lets the next click pick ("GPSSTKOUT").
  std::function<void()> StartPick;

  // A position arrived: the guidance is refreshed.
  void StakeRefresh();
  // The pointer event of "GPSSTKOUT" at pixel (x, y) of Paper1.
  void PickTarget(double x, double y);
  // The set-up dialog, modal.
  void OpenSetup();

  StakeArrow* Picture1() const { return picture1_; }
  QString Label8() const;
  QString Label9() const;

 protected:
  void done(int r) override;

 private:
  void Push();

  tavik::GpsState& gps_;
  tavik::GpsStakeOutLogic logic_;
  StakeArrow* picture1_;
  QLabel *label8_, *label9_;
  QPushButton *command2_, *command5_;
};
