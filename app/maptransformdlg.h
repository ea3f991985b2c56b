// The whole-map transforms in the window: "整圖轉換" shifts, turns or raises the survey,
// or fits it onto pairs of points or onto a line, typed or picked on the map, showing the parameters and the
// residuals before anything changes; "復原整圖轉換" puts the last one back.
#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>
#include <functional>
#include <optional>

#include "edit/editor.h"
#include "edit/map_transform.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTabWidget;
class QTableWidget;
class Program;
class EditWiring;

namespace tavik::ui {
class Dialogs;
}

class MapTransformDlg : public QDialog {
  Q_OBJECT
 public:
  MapTransformDlg(tavik::ui::Dialogs& dialogs, QWidget* parent = nullptr);

  // The transform chosen, once the dialog was accepted.
  const tavik::edit::PlaneTransform& Transform() const { return transform_; }
  bool WithBaseMap() const;

  // Fills the pair table (tests, and the pairs of a previous fit).
  void SetPair(int row, const std::string& name, double E, double N, double TE, double TN);
  // 計算: solves the fit of the tab in view and shows it. False when refused.
  bool Compute();
  QString ResultText() const;

  // The pick buttons start a pick mode on the map (MapMoveBmByP for pairs,
  // MapMoveByLine2 for the two lines); the dialog stays open and takes each pick.
  std::function<void(const std::string& mode)> StartPick;
  void TakePick(const tavik::edit::Editor::FitPick& p);

 protected:
  void accept() override;

 private:
  void Invalidate();
  std::vector<tavik::edit::FitPair> Pairs(std::string& bad) const;

  tavik::ui::Dialogs& dialogs_;
  QTabWidget* tabs_;
  QLineEdit *dE_, *dN_, *dH_, *angle_, *aboutE_, *aboutN_;
  QTableWidget* pairs_;
  QComboBox* model_;
  QLineEdit* line_[8];
  QCheckBox *lineScale_, *baseMap_;
  QPlainTextEdit* result_;
  QPushButton* ok_;
  int pickRow_ = -1;  // the pair row whose target the next pick gives
  std::optional<tavik::edit::FitResult> fit_;
  tavik::edit::PlaneTransform transform_;
};

// The menu items under 工具 and the undo they share.
class MapTransformStation : public QObject {
  Q_OBJECT
 public:
  MapTransformStation(Program& program, EditWiring& edit);
  // Opens the dialog, or brings the open one forward. It stays open beside the map, so
  // that pairs can be picked on it; 確定 applies.
  void Open();
  MapTransformDlg* Dialog() const { return dlg_; }
  // Applies an accepted transform to the open document and redraws.
  bool Apply(const tavik::edit::PlaneTransform& t, bool withBaseMap);
  void Undo();

 private:
  void Redraw();
  Program& program_;
  EditWiring& edit_;
  tavik::edit::MapTransformUndo undo_;
  QPointer<MapTransformDlg> dlg_;
};
