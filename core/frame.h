// The document cycle of the main window: start-up after the single-instance check,
// taking up a document, New, Open, Save, Save As, Close, Exit, the recent items and
// the one-minute autosave tick. Every question and message goes through ui::Dialogs
// and every change of the window through FrameWindow, so the whole cycle runs in tests
// with scripted answers and no window.
//
// The map view lives in a later library than this one; what the cycle needs of it
// (computing the view, rebuilding the screen tables, reading an older .SP document with
// its fit) comes in through FrameHooks, which the program sets to the view's routines.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/app_state.h"
#include "core/frame_window.h"
#include "core/progress.h"
#include "platform/dialogs.h"
#include "platform/settings_store.h"
#include "platform/timer.h"

namespace tavik {

struct FrameHooks {
  // ComputeView of the map view: paper and screen rectangles from the scale and centre.
  std::function<void(Document&, View&)> ComputeView;
  // RebuildScreenPoints and RebuildScreenEntities.
  std::function<void(Document&, View&)> RebuildScreenTables;
  // Sets HScroll1 and VScroll1 from the view centre (after Open).
  std::function<void(Document&, View&)> PlaceScrollBars;
  // Reads doc.SpPath with the whole-extent fit. Unset: the file part alone.
  std::function<bool(Document&, View&, ui::Dialogs&)> LoadOldDocument;
  // Empties the rubber-band point lists and ends any pointer command.
  std::function<void()> ResetPointer;
  // Save, Close and Exit: stops the blinking live marker.
  std::function<void()> StopLiveMarker;
  // Close and Exit: the instrument's ports are let go of.
  std::function<void()> CloseSensorPorts;
  // Exit: a base station logging raw data gets "unlogall" and its port is closed.
  std::function<void()> StopBaseLogging;
  // True while a command holds the user (a message box or dialog is up). A toolkit that
  // runs timers inside modal dialogs would otherwise let the autosave in mid-command.
  std::function<bool()> CommandRunning;
  // Told of the records done by a load or a save of the document (a progress bar).
  ProgressSink Progress;
  // A document was taken up (New, Open, recovery): the window shows what it carries
  // beyond the map, such as the station it was left with.
  std::function<void()> TakenUp;
};

// The filters and texts of the file commands.
inline constexpr const char* NewFilter = "Map 7.22(*.SPC)|*.SPC|所有檔案(*.*)|*.*";
inline constexpr const char* OpenFilter = "Map 7.22(*.SPC)|*.SPC|MAP (*.SP)|*.sp|所有檔案(*.*)|*.*";
inline constexpr const char* SaveAsFilter = "Map 7.22(*.SPC)|*.SPC";
inline constexpr int Timer5Interval = 60000;

class DocumentCycle {
 public:
  DocumentCycle(App& app, ui::Dialogs& dialogs, ui::SettingsStore& store, FrameWindow& window,
                ui::TimerFactory& timers);

  FrameHooks hooks;

  // Start-up after the single-instance check: defaults, Software.ini, Timer5, the crash
  // check with recovery, the recent list.
  void Startup();

  void New();                               // MainMnuNew
  void Open();                              // MainMnuOpen
  void OpenFile(const std::string& path);   // Open from the chosen name on
  void Save();                              // MainMnuSave
  void SaveAs();                            // MainMnuSaveAs
  bool Close();                             // MainMnuClose; false when cancelled
  bool Exit();                              // the window's unload; false keeps it running
  void OpenRecent(int item);                // mnuFileItem(1..5)
  void ClearRecent();                       // the clear-list command

  // Timer5: one minute passed.
  void Timer5Tick();
  // A command that rewrites the whole map turns autosave off and says so.
  void AutoSaveOff();

  ui::Timer& Timer5() { return *timer5_; }
  // Status panels 1, 4, 5, 6, 7, 10 and the labels from the present counts.
  void ShowCounts();

 private:
  enum class DotAnswer { Use, ChooseAgain, Stop };
  // New and Save As: a chosen path whose name would be cut at an earlier dot is shown
  // with the name it would get, and the user may choose again.
  DotAnswer AskAboutDot(const std::string& chosen);
  bool RefuseWhileChanged();
  // keepRecent: write the recent list to the store at once (not before it is read).
  void TakeUp(bool keepMapChanged, bool keepRecent = true);
  void RefreshView();
  void CloseQuietly();
  bool SaveAndReload();
  void ReloadAfterSave();
  void AfterSave();
  std::string PathCase(const std::string& path) const;

  App& app_;
  ui::Dialogs& dialogs_;
  ui::SettingsStore& store_;
  FrameWindow& window_;
  std::unique_ptr<ui::Timer> timer5_;
};

// The name of a new document: the path up to its first ".", wherever that dot is (a
// folder with a dot in its name cuts the name there, as the classic program did).
std::string NameUpToFirstDot(const std::string& path);
// The path without the extension of its file name (the text after its last dot).
std::string PathLessExtension(const std::string& path);

}  // namespace tavik
