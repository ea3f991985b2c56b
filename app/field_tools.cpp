#include "app/field_tools.h"

#include <QAction>
#include <QMenu>
#include <filesystem>

#include "app/frmlocus.h"
#include "app/frmtsdownload.h"
#include "app/mainfrm.h"
#include "app/survey_station.h"
#include "core/app_state.h"

FieldTools::FieldTools(MainFrm& frm, tavik::App& app, SurveyStation& survey, tavik::TotalStationLink& link)
    : QObject(&frm), frm_(frm), app_(app), survey_(survey), link_(link) {
  app.settings.Link(&tavik::SoftwareIni::TrajectoryIntervalCm, TrajectorySpacingCm);
  QMenu* mete = frm.Menu("MainMnuMete");
  if (mete == nullptr) return;
  mete->addSeparator();
  auto add = [&](const char* name, const char* caption, void (FieldTools::*run)()) {
    QAction* a = mete->addAction(QString::fromUtf8(caption));
    a->setObjectName(name);
    a->setProperty("measureMode", "TS");
    connect(a, &QAction::triggered, this, run);
    return a;
  };
  add("MainMnuTSDownLoad", "儀器記憶體下載...", &FieldTools::OpenDownload);
  start_ = add("MainMnuLocusStart", "軌跡測量開始", &FieldTools::StartTrajectory);
  stop_ = add("MainMnuLocusStop", "軌跡測量停止", &FieldTools::StopTrajectory);
  stop_->setEnabled(false);
}

void FieldTools::OpenDownload() {
  if (!app_.doc.IsOpen()) return;
  if (download_) {
    download_->raise();
    return;
  }
  // The raw text goes beside the document.
  std::string folder = std::filesystem::path(app_.doc.DocumentName).parent_path().string();
  if (folder.empty()) folder = app_.paths.WorkFolder().string();
  download_ = new FrmTSDownLoad(survey_.ctx, link_, folder, &frm_);
  download_->setAttribute(Qt::WA_DeleteOnClose);
  connect(download_, &QObject::destroyed, this, [this] { download_ = nullptr; });
  download_->show();
}

void FieldTools::StartTrajectory() {
  if (!app_.doc.IsOpen()) return;
  if (locus_ == nullptr) {
    locus_ = new FrmLocus(survey_.ctx, link_, TrajectorySpacingCm, &frm_);
    locus_->setAttribute(Qt::WA_DeleteOnClose);
    connect(locus_, &QObject::destroyed, this, [this] {
      locus_ = nullptr;
      start_->setEnabled(true);
      stop_->setEnabled(false);
    });
    connect(locus_, &FrmLocus::runningChanged, this, [this](bool on) {
      start_->setEnabled(!on);
      stop_->setEnabled(on);
    });
  }
  locus_->show();
  locus_->raise();
  locus_->Start();
}

void FieldTools::StopTrajectory() {
  if (locus_) locus_->Stop();
}
