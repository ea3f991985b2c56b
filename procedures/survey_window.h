// What the survey commands ask of the main window: its labels and buttons, named as
// the window names them, and the map drawing that goes with a shot or a set-up. The Qt
// window implements it with the map view's routines; tests record the calls.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tavik {

class SurveyWindow {
 public:
  virtual ~SurveyWindow() = default;

  // Labels and text boxes by control name: "Label1XY(0)", "Label1XY(1)", "LabelHZ",
  // "LabelTZ", "Label41", "OBSBox", "LabelStaName", "LabelIH", "LabelSZ"; status bar
  // panels as "StatusBar1(n)".
  virtual void SetText(const std::string& control, const std::string& text) = 0;
  // Buttons: "RecButton", "CmdSTOP".
  virtual void SetEnabled(const std::string& control, bool enabled) = 0;

  // The map. Marks are drawn at once, without a full repaint.
  virtual void DrawPointMark(int32_t number, double E, double N) = 0;
  // Height text in green six pixels right of the point and five up.
  virtual void DrawHeightText(double E, double N, const std::string& text) = 0;
  virtual void DrawSymbol(int16_t code, double E, double N, double H, const std::string& name) = 0;
  // The station mark; the former one is erased.
  virtual void DrawStationMark(double E, double N) = 0;
  // The stake-out target mark (three red circles, the symbol and the name); erased by
  // the next call or by EraseTargetMark.
  virtual void DrawTargetMark(double E, double N, int16_t code, const std::string& name) = 0;
  virtual void EraseTargetMark() = 0;
  // Fits the view to the world rectangle, scales by `factor`, centres it on the middle
  // and redraws everything (the fixed tail after a view change included).
  virtual void FitViewTo(double minE, double minN, double maxE, double maxN, double factor) = 0;
  // Centres the view on the survey extent and fits the scale to it (a scale of 1 or
  // less becomes 1), then sets the survey extent to the view's rectangle and redraws.
  virtual void FitViewToExtent() = 0;
  virtual void RedrawAll() = 0;
  virtual void Refresh() = 0;
  // The blinking mark of the last point, on Timer3 (500 ms).
  virtual void StartBlink(double E, double N) = 0;
  virtual void StopBlink() = 0;
  // Joins two measured points with the current legend, through the drawing routine of
  // the entity commands (stored and drawn).
  virtual void LinkPoints(double E1, double N1, double H1, double E2, double N2, double H2) = 0;
  // The recovery header and other bookkeeping of a changed map.
  virtual void SafetySave() = 0;

  // The cadastral dialog DlgCadaMete, modal: returns the choice (0 cancelled, 1 a MAC
  // attribute, 2 only a legend symbol) and the point name for choice 1.
  virtual int16_t ShowCadastralDialog(std::string& pointName) = 0;
  virtual void UnloadCadastralDialog() = 0;
  // The keyed-observation dialog InputHVSDlg, modal. True when the surveyor entered a
  // reading and it was stored in the link state as an instrument's answer would be.
  virtual bool ShowKeyedObservation() = 0;
  // A survey point was stored: the shape keys (F4 to F8) complete their shapes from it.
  virtual void PointStored() {}
};

}  // namespace tavik
