// The further field tools of the measure menu: the download of a total station's
// memory (frmTSDownLoad) and trajectory measurement (FrmLocus), with their menu items.
#pragma once

#include <QObject>

class FrmLocus;
class FrmTSDownLoad;
class MainFrm;
class QAction;
class SurveyStation;

namespace tavik {
struct App;
class TotalStationLink;
}  // namespace tavik

class FieldTools : public QObject {
  Q_OBJECT
 public:
  FieldTools(MainFrm& frm, tavik::App& app, SurveyStation& survey, tavik::TotalStationLink& link);

  void OpenDownload();
  void StartTrajectory();
  void StopTrajectory();
  FrmTSDownLoad* download() const { return download_; }
  FrmLocus* locus() const { return locus_; }

  double TrajectorySpacingCm = 100;  // Software.ini value 18

 private:
  MainFrm& frm_;
  tavik::App& app_;
  SurveyStation& survey_;
  tavik::TotalStationLink& link_;
  FrmTSDownLoad* download_ = nullptr;
  FrmLocus* locus_ = nullptr;
  QAction *start_ = nullptr, *stop_ = nullptr;
};
