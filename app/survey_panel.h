// The survey panel beside the map: the record and stop buttons, the coordinates of the
// point just measured, the station, instrument and target heights. It is also the
// main window as the survey commands see it (SurveyWindow): labels by name, the marks
// drawn on Paper1, the view that follows a point, the blinking mark of the last point,
// and the two modal dialogs of a shot.
#pragma once

#include <QDockWidget>
#include <QTimer>
#include <functional>
#include <map>
#include <string>

#include "procedures/survey_window.h"

class MainFrm;
class QLabel;
class QPushButton;

namespace tavik {
struct App;
struct InstrumentState;
namespace ui {
class Dialogs;
}
}  // namespace tavik

class SurveyPanel : public QDockWidget, public tavik::SurveyWindow {
  Q_OBJECT
 public:
  SurveyPanel(MainFrm& frm, tavik::App& app, tavik::InstrumentState& inst, tavik::ui::Dialogs& dialogs);

  std::function<void()> OnRecord, OnStop;
  // Joins two measured points with the current legend (the entity commands' routine).
  std::function<void(double, double, double, double, double, double)> OnLink;
  std::function<void()> OnPointStored;

  void SetText(const std::string& control, const std::string& text) override;
  void SetEnabled(const std::string& control, bool enabled) override;
  void DrawPointMark(int32_t number, double E, double N) override;
  void DrawHeightText(double E, double N, const std::string& text) override;
  void DrawSymbol(int16_t code, double E, double N, double H, const std::string& name) override;
  void DrawStationMark(double E, double N) override;
  void DrawTargetMark(double E, double N, int16_t code, const std::string& name) override;
  void EraseTargetMark() override;
  void FitViewTo(double minE, double minN, double maxE, double maxN, double factor) override;
  void FitViewToExtent() override;
  void RedrawAll() override;
  void Refresh() override;
  void StartBlink(double E, double N) override;
  void StopBlink() override;
  void LinkPoints(double E1, double N1, double H1, double E2, double N2, double H2) override;
  void SafetySave() override;
  int16_t ShowCadastralDialog(std::string& pointName) override;
  void UnloadCadastralDialog() override {}
  bool ShowKeyedObservation() override;
  void PointStored() override {
    if (OnPointStored) OnPointStored();
  }

  QString Text(const std::string& control) const;
  bool Blinking() const { return timer3_.isActive(); }
  // Another document or none: no station, no target, no last point.
  void Forget();
  // The station the document holds, with its heights, as the set-up showed them.
  void ShowStation();
  // The GPS stake-out's alarm circle round the target mark, in metres; 0 draws none.
  void SetTargetCircle(double metres) { targetRadius_ = metres; }

 private:
  QLabel* AddLabel(class QFormLayout* form, const char* name, const QString& caption);
  bool ToPixel(double E, double N, float& x, float& y) const;
  void BlinkTick();
  void Overlays();
  void RepaintKeepingBlink();

  MainFrm& frm_;
  tavik::App& app_;
  tavik::InstrumentState& inst_;
  tavik::ui::Dialogs& dialogs_;
  std::map<std::string, QLabel*> labels_;
  QPushButton *rec_, *stop_;
  QTimer timer3_;  // the blink of the last point
  bool blinkShown_ = false;
  double blinkE_ = 0, blinkN_ = 0;
  bool stationShown_ = false;
  double stationE_ = 0, stationN_ = 0;
  bool targetShown_ = false;
  double targetE_ = 0, targetN_ = 0;
  double targetRadius_ = 0;
  std::string targetName_;
  std::string lastCadastralName_;
};
