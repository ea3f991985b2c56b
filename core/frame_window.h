// What the document cycle asks of the main window, without knowing any toolkit. The Qt
// window MainFrm implements it; tests implement it with plain fields and assert on them.
#pragma once

#include <string>
#include <vector>

namespace tavik {

class FrameWindow {
 public:
  virtual ~FrameWindow() = default;
  // The window's title bar.
  virtual void SetCaption(const std::string& caption) = 0;
  // MainMnuMete, MainMnuEdit, MainMnuView, MainMnuImport, MainMnuExport, MainMnuU,
  // MainMnuBasemap, MainMnuSetup, MainMnuSave, MainMnuSaveAs, MainMnuEnd, MainMnuClose.
  virtual void EnableDocumentCommands(bool enabled) = 0;
  // BMEraseWindow, BMLockLineCPnt, BMLockXLineCPnt, BMRemove, BmDispSetup.
  virtual void EnableBaseMapCommands(bool enabled) = 0;
  // Status bar panels 1..10.
  virtual void SetPanel(int index, const std::string& text) = 0;
  virtual void SetLabel41(const std::string& text) = 0;  // live points
  virtual void SetLabel42(const std::string& text) = 0;  // live entities
  virtual void SetOBSBox(const std::string& text) = 0;
  virtual void SetMAPtype(const std::string& text) = 0;
  // The recent items mnuFileItem(1).. in order; the rest are hidden.
  virtual void SetRecentItems(const std::vector<std::string>& items) = 0;
  // Menus and panels of the measure mode, "TS" or "GPS".
  virtual void SetMeasureModeMenus(const std::string& mode) = 0;
  // Paper1: wipe to white, accept or refuse the pointer, repaint from the tables.
  virtual void ClearPaper() = 0;
  virtual void SetPaperEnabled(bool enabled) = 0;
  virtual void RedrawPaper() = 0;
  // Shown when no document is open.
  virtual void ShowInstrumentFrame() = 0;
};

}  // namespace tavik
