// UserDialog, "空圖 -現地任意兩點開圖": an empty map started from any two spots on
// site. The station gets assumed coordinates, one shot on the backsight gives its
// coordinates, and the backsight azimuth typed in decimal degrees turns the map
// roughly north. The dialog's fields are held as the texts the controls show; the Qt
// dialog copies them in and out. Nothing reaches the document before OKButton.
#pragma once

#include <string>

#include "procedures/survey_context.h"

namespace tavik {

class UserDialogLogic {
 public:
  explicit UserDialogLogic(SurveyContext& ctx);

  // Controls, with their defaults at opening.
  std::string Text5 = "A1";            // station name
  std::string Xbox = "280850.000", Ybox = "2752650.000", Zbox = "100.000";
  std::string Text6 = "A2";            // backsight name
  std::string LabelBsx, LabelBsy;      // computed backsight E, N
  std::string LabelBsz;                // backsight H, an input only with Check2 on
  std::string Text4 = "0";             // backsight azimuth, decimal degrees
  std::string Text7, Text8;            // instrument height, target height
  bool Check2 = false;                 // ForceBacksightHeight: "強制符合後視高程"
  bool Text4Enabled = true, ZboxEnabled = true, LabelBszEnabled = false;
  bool Command2Visible = false;
  std::string Focus;                   // control that takes the focus next

  bool HeightsShown() const;           // false for a plan map (MapType 2)
  bool CommandStopVisible() const;     // hidden for Keyin
  std::string MeasureCaption() const;  // "手輸入" for Keyin

  void SetCheck2(bool on);
  // Measure: checks the heights, then asks the instrument (or the keyed dialog).
  void Measure();
  // The answer of the instrument (or of the keyed dialog).
  void MeasurementReceiver();
  // Enter in Text4: the same computation again from the kept reading, with the azimuth
  // as now typed.
  void AzimuthEntered();
  // CommandStop: the instrument told to stop, MSComm_SET closed.
  void CommandStop();
  // Command2: clears the backsight fields and lets the azimuth be typed again.
  void Command2();
  // Command3 then a click on Paper1: the station takes the clicked coordinates.
  void PickCoord(double E, double N);
  // True when the set-up was stored and the dialog is to close.
  bool OKButton();

  static constexpr const char* Caption = "空圖 -現地任意兩點開圖";
  static constexpr const char* HelpMapType =
      "地形圖(3D測量),測站需要輸入儀器高,測點需要輸入覘標高.\r\n平面圖(2D測量,沒有Z值),不需儀器高及覘標高.";
  static constexpr const char* HelpAzimuth = "輸入後視點方位角,可讓圖紙方向概略朝北.";
  static constexpr const char* HelpAzimuthWhen = "(後視觀測前或觀測後均可修改)";
  static constexpr const char* HelpForceHeight =
      "勾選後,輸入後視點的已知高程,由後視觀測反算測站高程.";

 private:
  bool Refuse(const std::string& text, const std::string& focus);

  SurveyContext& ctx_;
  bool haveShot_ = false;
  // The reading as it arrived, kept so that a changed azimuth recomputes from it.
  double hz_ = 0, v_ = 0, slope_ = 0;
  double stationE_ = 0, stationN_ = 0, stationH_ = 0;
  double backsightE_ = 0, backsightN_ = 0, backsightH_ = 0;
  double instrumentHeight_ = 0, targetHeight_ = 0;
  double azimuth_ = 0, orientation_ = 0;
};

}  // namespace tavik
