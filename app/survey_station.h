// The survey commands of the main window: the panel with the record button, the
// measure menu's set-up, resection and stake-out dialogs, and the receivers that the
// total-station link calls when an answer arrives. It holds the pipeline's state and
// the context the commands work on; the document, the view and the instrument link are
// the program's.
#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "procedures/survey_context.h"
#include "procedures/survey_state.h"

class MainFrm;
class SurveyPanel;
class UserDialog;
class FitDialog;
class ResectDlg;
class StackOut;
class QDialog;

namespace tavik {
namespace edit {
class Editor;
class EditHost;
}  // namespace edit
struct App;
class TotalStationLink;
namespace ui {
class SerialPort;
}
}  // namespace tavik

class SurveyStation : public QObject {
  Q_OBJECT
 public:
  SurveyStation(MainFrm& frm, tavik::App& app, tavik::ui::Dialogs& dialogs, tavik::InstrumentState& inst,
                tavik::TotalStationLink& link);
  ~SurveyStation() override;

  // Makes the serial ports of the dialogs (the Qt port in the program, a fake in tests).
  std::function<std::unique_ptr<tavik::ui::SerialPort>()> MakePort;
  // Timer10 of the main window: a one-shot that ends a robotic turn with "*R".
  std::function<void(int milliseconds)> StartTimer10;

  // The panel is made first: the context refers to it as the window.
 private:
  SurveyPanel* panel_;

 public:
  tavik::SurveyState survey;
  tavik::SurveyContext ctx;
  SurveyPanel* panel() const { return panel_; }

  // The pointer machine: picks on Paper1 for the dialogs (FIT, FIT2, RESECT_BS,
  // PickCoord, STKOUT), the automatic link and the shape keys from measured points.
  void ConnectEditor(tavik::edit::Editor& editor, tavik::edit::EditHost& host);

  void OpenUserDialog();
  void OpenFitDialog();
  void OpenResectDlg();
  void OpenStackOut();
  UserDialog* userDialog() const { return userDialog_; }
  FitDialog* fitDialog() const { return fitDialog_; }
  StackOut* stackOut() const { return stackOut_; }

 private:
  void Wire(tavik::TotalStationLink& link);
  void AddMenus();
  // Hides the dialog and lets the next click on Paper1 answer it.
  void StartPick(QDialog* dialog, const std::string& mode);
  bool Picked(QDialog* dialog);

  MainFrm& frm_;
  tavik::App& app_;
  UserDialog* userDialog_ = nullptr;
  FitDialog* fitDialog_ = nullptr;
  ResectDlg* resectDlg_ = nullptr;
  StackOut* stackOut_ = nullptr;
  tavik::edit::Editor* editor_ = nullptr;
  int resectSlot_ = 0;
};
