// FitDialog, "擺站": set-up on two points the map already has. The station and the
// backsight are chosen by name or by a rectangle on the map; one shot (distance or
// angle), or a typed circle reading, on the backsight fixes the orientation constant.
// The former set-up is copied at opening and put back by CancelButton.
#pragma once

#include <string>
#include <vector>

#include "core/numbers.h"
#include "procedures/control_points.h"
#include "procedures/survey_context.h"

namespace tavik {

class FitDialogLogic {
 public:
  explicit FitDialogLogic(SurveyContext& ctx);

  static constexpr const char* Caption = "擺站";

  std::vector<std::string> Combo1, Combo2;  // control-point names
  std::string Text4, Text3;                 // instrument height, target height
  std::string Text5;                        // reading, status and error text
  bool Text5Red = false;
  std::string Label9;                       // distance between station and backsight
  std::string Label10, Label13;             // horizontal and slope distance of the shot
  bool Label8Visible = false, DistanceRed = false;
  bool Command5Enabled = false;
  std::string Focus;

  bool HeightsShown() const;
  bool MeasureButtonsEnabled() const;  // Command3, Command4, Command5: not for Keyin
  bool Command5Visible() const;        // GTS22X and GTS211D

  // Combo1 / Combo2 and the FIT / FIT2 rectangle picks. False when refused.
  bool ChooseStation(const std::string& name);
  bool ChooseBacksight(const std::string& name);
  // A click at pixel (X, Y) on Paper1 in mode "FIT" (station) or "FIT2" (backsight).
  bool PickFit(double X, double Y, bool backsight);
  std::string StationChosenName() const { return stationChosen_ ? ctx_.doc.StationName : ""; }
  std::string BacksightChosenName() const { return backsightChosen_ ? ctx_.doc.BacksightName : ""; }

  void Command3();  // distance shot
  void Command4();  // angle only
  void Command5();  // Topcon: read the angle after Command4
  void Command6();  // typed reading
  // Receivers of AwaitFitShot and AwaitFitAngle.
  void DistanceReceiver();
  void AngleReceiver();
  // True when the set-up was stored and the dialog is to close.
  bool OKButton();
  void CancelButton();

 private:
  bool NamesChosen();
  bool ReadyToMeasure();
  void AfterChoice();
  double PairAzimuthNow() const;

  SurveyContext& ctx_;
  bool haveObservation_ = false;
  bool stationChosen_ = false, backsightChosen_ = false;
  double referenceDistance_ = 0;  // assigned nowhere: the distance check is a colour only
  // The former set-up.
  struct Saved {
    bool set = false;
    std::string StationName, BacksightName;
    double StationE = 0, StationN = 0, StationH = 0;
    double BacksightE = 0, BacksightN = 0, BacksightH = 0, BacksightAzimuth = 0;
    double OrientationConstant = 0, InstrumentHeight = 0, TargetHeight = 0;
    int16_t StationSet = 0;
  } saved_;
};

}  // namespace tavik
