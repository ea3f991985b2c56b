// MainFrm: the one main window. Menus, the drawing surface Paper1, the instrument
// frame with its labels, and the ten status panels. It holds no document logic: the
// document cycle drives it through FrameWindow, and its menu commands call back into
// the cycle through the handlers set by main().
#pragma once

#include <QMainWindow>
#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/paper.h"
#include "core/frame_window.h"
#include "core/progress.h"
#include "view/view_ui.h"

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QFrame;

class QProgressBar;

class MainFrm : public QMainWindow, public tavik::FrameWindow, public tavik::view::ViewUi {
  Q_OBJECT
 public:
  explicit MainFrm(QWidget* parent = nullptr);

  // FrameWindow.
  void SetCaption(const std::string& caption) override;
  void EnableDocumentCommands(bool enabled) override;
  void EnableBaseMapCommands(bool enabled) override;
  void SetPanel(int index, const std::string& text) override;
  void SetLabel41(const std::string& text) override;
  void SetLabel42(const std::string& text) override;
  void SetOBSBox(const std::string& text) override;
  void SetMAPtype(const std::string& text) override;
  void SetRecentItems(const std::vector<std::string>& items) override;
  void SetMeasureModeMenus(const std::string& mode) override;
  void ClearPaper() override;
  void SetPaperEnabled(bool enabled) override;
  void RedrawPaper() override;
  void ShowInstrumentFrame() override;

  // ViewUi: what the map view shows outside the picture. The toolbar, scroll bars and
  // live marker come with the parts of the window that own them.
  void SetStatusPanel(int panel, const std::string& text) override { SetPanel(panel, text); }
  void SetLabel(const std::string& name, const std::string& text) override;
  void SetToolbarButton(int index, bool enabled) override;
  void SetToolbarPressed(int index, bool pressed) override;
  void SetToolbarToolTip(int index, const std::string& text) override;
  void PlacePaper(float left, float top) override;
  void SetScrollBars(int h, int v) override;
  void StopLiveMarker() override {
    if (handlers.StopLiveMarker) handlers.StopLiveMarker();
  }

  // Combo1 and Combo2 of the fine-move toolbar: the shift and rotation steps that the
  // whole-map transforms use, remembered in Software.ini by their text.
  QComboBox* Combo1() const { return combo1_; }
  QComboBox* Combo2() const { return combo2_; }
  void SelectFineSteps(const std::string& shift, const std::string& rotation);

  PaperWidget* Paper1() const { return paper_; }
  // The pointer machine's prompt at the left of the status bar, and the pointer's E and
  // N in panels 2 and 3, so that neither hides the scale and the counts.
  void SetPrompt(const std::string& text);
  void SetReadout(const std::string& e, const std::string& n);
  // The manual "TAVIK操作手冊" in a window of its own (Shift+F1).
  void ShowManual();
  // Where the manual is: beside the program, in its share folder, or in the source tree
  // of a build; empty when none is found.
  static QString ManualPath();
  // An angle reading as the instruments' answers give it ("15-0-00", "15-00-00.0") in the
  // one form the window shows angles in ("15-00-00.00"); a text that is no such
  // reading comes back as it was.
  static std::string AngleText(const std::string& reading);
  // A menu or command by its control name ("MainMnuEdit", "MainMnuSave", "mnuFileItem(2)").
  QMenu* Menu(const std::string& name) const;
  QAction* Command(const std::string& name) const;
  // A command of another part of the program that needs an open document: enabled and
  // disabled with Save and Close.
  void AddDocumentCommand(QAction* a);
  QString PanelText(int index) const;
  // The progress bar of the status bar for a load, merge, save or import: it shows
  // records done out of the total once the work has taken half a second, is painted at
  // once at each step (no event is let in meanwhile, so nothing can cut into a save or
  // change the tables under it), and goes when the work is done.
  tavik::ProgressSink Progress();
  QProgressBar* ProgressBar() const { return progress_; }
  QString LabelText(const std::string& name) const;

  // What the commands do; set by the program (and by tests).
  struct Handlers {
    std::function<void()> New, Open, Save, SaveAs, Close, ClearRecent;
    std::function<void(int)> OpenRecent;  // 1..5
    std::function<bool()> Exit;           // false keeps the program running
    std::function<void(tavik::ui::Surface&)> Redraw;  // paints the map onto Paper1's surface
    std::function<void()> Resized;                    // Paper1 took a new size
    std::function<void(int)> HScroll, VScroll;        // the user moved HScroll1 or VScroll1
    std::function<void()> ScrollDone;                 // ... and let go of it
    std::function<void()> ShowCounts;                 // the scale and the live counts
    std::function<void()> StopLiveMarker;             // the blinking mark of the last point

  } handlers;

 signals:
  // Paper1 was wiped for another document or none: marks drawn over the map for the
  // old one (station, blinking last point, stake-out target) must go with it.
  void paperCleared();

 protected:
  void closeEvent(QCloseEvent* e) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* e) override;

 private:
  QMenu* AddMenu(const char* name, const QString& caption);
  QAction* AddCommand(QMenu* menu, const char* name, const QString& caption, std::function<void()> run);
  void BuildMenus();
  void BuildInstrumentFrame();
  void BuildStatusBar();
  void BuildFineMoveToolbar();
  // A main menu is shown only while it offers something; an item of the other measure
  // mode is hidden.
  void FitMenu(QMenu* menu);
  void ApplyMeasureMode(QObject* item) const;

  PaperWidget* paper_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QAction* ToolbarButton(int index) const;
  class QScrollBar* hScroll_ = nullptr;
  class QScrollBar* vScroll_ = nullptr;
  bool settingBars_ = false;
  QComboBox* combo1_ = nullptr;
  QComboBox* combo2_ = nullptr;
  QFrame* instFrame_ = nullptr;
  std::map<std::string, QMenu*> menus_;
  std::map<std::string, QAction*> commands_;
  std::vector<QMenu*> documentMenus_;
  std::vector<QAction*> documentCommands_;
  std::vector<QAction*> baseMapCommands_;
  std::array<QAction*, 5> recentItems_{};
  std::array<QLabel*, 11> panels_{};  // 1..10
  std::map<std::string, QLabel*> labels_;
  std::string measureMode_ = "TS";
  QString prompt_;
  bool fitting_ = false;
};
