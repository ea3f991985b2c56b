// FrmLocus, "軌跡測量": the trajectory tool's window. While it runs the total station
// tracks the prism: a SOKKIA instrument is put into its tracking shot mode and keeps
// answering without a stop, other families are asked again after each answer. Every
// answer goes to the Trajectory, which makes vertices of the line.
#pragma once

#include <QDialog>

#include "procedures/trajectory.h"

class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QTimer;

namespace tavik {
class TotalStationLink;
}

class FrmLocus : public QDialog {
  Q_OBJECT
 public:
  FrmLocus(tavik::SurveyContext& ctx, tavik::TotalStationLink& link, double& spacingCm, QWidget* parent = nullptr);
  ~FrmLocus() override;

  void Start();
  void Stop();
  bool Running() const { return track_.Running(); }
  tavik::Trajectory& Track() { return track_; }

 signals:
  void runningChanged(bool running);

 protected:
  void done(int r) override;

 private:
  void Tracked();
  void Show();

  tavik::SurveyContext& ctx_;
  tavik::TotalStationLink& link_;
  double& spacingCm_;
  tavik::Trajectory track_;
  std::string keptShotMode_;
  QDoubleSpinBox* spacing_;
  QLabel* count_;
  QPushButton *start_, *stop_;
  QTimer* again_;  // the next request of a family that answers once per request
};
