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
#include "view/view_ui.h"

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QFrame;

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

  // Combo1 and Combo2 of the fine-move toolbar: the shift and rotation steps that the
  // whole-map transforms use, remembered in Software.ini by their text.
  QComboBox* Combo1() const { return combo1_; }
  QComboBox* Combo2() const { return combo2_; }
  void SelectFineSteps(const std::string& shift, const std::string& rotation);

  PaperWidget* Paper1() const { return paper_; }
  // A menu or command by its control name ("MainMnuEdit", "MainMnuSave", "mnuFileItem(2)").
  QMenu* Menu(const std::string& name) const;
  QAction* Command(const std::string& name) const;
  QString PanelText(int index) const;
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

  } handlers;

 protected:
  void closeEvent(QCloseEvent* e) override;

 private:
  QMenu* AddMenu(const char* name, const QString& caption);
  QAction* AddCommand(QMenu* menu, const char* name, const QString& caption, std::function<void()> run);
  void BuildMenus();
  void BuildInstrumentFrame();
  void BuildStatusBar();
  void BuildFineMoveToolbar();

  PaperWidget* paper_ = nullptr;
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
};
