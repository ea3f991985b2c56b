#include "core/frame.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "core/docfile.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"

namespace tavik {

namespace fs = std::filesystem;

namespace {

constexpr const char* MsgFinishFirst = "請先將目前工作結束,才能另外開圖";
constexpr const char* MsgNoFile = "檔案不存在!";
constexpr const char* MsgOverwrite = "此檔已經存在,是否覆蓋?";
constexpr const char* MsgSavedNow = "幾秒前已經存檔";

bool Exists(const fs::path& p) {
  std::error_code ec;
  return fs::is_regular_file(p, ec);
}

// An existing file of this name whatever the case of its last part, or the name itself.
fs::path FindNoCase(const fs::path& p) {
  if (Exists(p)) return p;
  const fs::path dir = p.has_parent_path() ? p.parent_path() : fs::path(".");
  return AppPaths::Find(dir, p.filename().string());
}

std::string Count(int64_t n) { return std::to_string(n); }

// "1 :" + Int(scale). A scale from a damaged file may be no number at all or beyond
// any integer; it is then shown as it stands rather than converted.
std::string ScaleText(double scale) {
  if (std::isfinite(scale) && std::fabs(scale) < 1e15) return "1 :" + Count(static_cast<int64_t>(num::Int(scale)));
  return "1 :" + num::Plain(scale);
}

// Values of the old document that a new one carries on: the station and heights the
// surveyor set up, the legend in use, the map type chosen in the instrument options.
Document CarryOver(const Document& old) {
  Document d;
  d.MapType = old.MapType;
  d.CurrentLegend = old.CurrentLegend;
  d.StationName = old.StationName;
  d.StationE = old.StationE;
  d.StationN = old.StationN;
  d.StationH = old.StationH;
  d.BacksightName = old.BacksightName;
  d.BacksightE = old.BacksightE;
  d.BacksightN = old.BacksightN;
  d.BacksightAzimuth = old.BacksightAzimuth;
  d.OrientationConstant = old.OrientationConstant;
  d.InstrumentHeight = old.InstrumentHeight;
  d.TargetHeight = old.TargetHeight;
  d.SplitStakeCount = old.SplitStakeCount;
  return d;
}

}  // namespace

std::string NameUpToFirstDot(const std::string& path) {
  const auto dot = path.find('.');
  return dot == std::string::npos ? path : path.substr(0, dot);
}

std::string PathLessExtension(const std::string& path) {
  const auto slash = path.find_last_of('/');
  const auto dot = path.rfind('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return path;
  return path.substr(0, dot);
}

DocumentCycle::DotAnswer DocumentCycle::AskAboutDot(const std::string& chosen) {
  const std::string cut = NameUpToFirstDot(chosen);
  if (cut == PathLessExtension(chosen) && !cut.empty() && cut.back() != '/') return DotAnswer::Use;
  // A dot in a folder's name, a second one in the file name, or a name that is only an
  // extension: the document would be written under a shorter name than the one chosen,
  // or as a hidden file with no name of its own. Said
  // before anything is written, with the way back to the file dialog.
  const ui::Answer a = dialogs_.MsgBox(
      "選的路徑中,檔名之前有句點:\n" + chosen + "\n\n圖名取到路徑的第一個句點為止,圖檔和記錄檔會存成:\n" + cut +
          ".SPC\n\n要另選一個路徑中沒有句點的資料夾嗎?\n(是: 另選  否: 仍用這個名稱  取消: 不做)",
      "路徑中有句點", ui::Buttons::YesNoCancel, ui::Icon::Exclamation, ui::Answer::Yes);
  if (a == ui::Answer::No) return DotAnswer::Use;
  return a == ui::Answer::Cancel ? DotAnswer::Stop : DotAnswer::ChooseAgain;
}

DocumentCycle::DocumentCycle(App& app, ui::Dialogs& dialogs, ui::SettingsStore& store, FrameWindow& window,
                             ui::TimerFactory& timers)
    : app_(app), dialogs_(dialogs), store_(store), window_(window), timer5_(timers.CreateTimer()) {
  // The settings the document carries: a new document starts with the legend and the
  // heights in use, and the last ones are remembered at exit.
  app_.settings.Link(&SoftwareIni::CurrentLegend, app_.doc.CurrentLegend);
  app_.settings.Link(&SoftwareIni::InstrumentHeight, app_.doc.InstrumentHeight);
  app_.settings.Link(&SoftwareIni::TargetHeight, app_.doc.TargetHeight);
  timer5_->SetInterval(Timer5Interval);
  timer5_->SetEnabled(false);
  timer5_->OnTick = [this] { Timer5Tick(); };
}

std::string DocumentCycle::PathCase(const std::string& path) const { return FindNoCase(path).string(); }

void DocumentCycle::Startup() {
  Document& doc = app_.doc;
  app_.ini = SoftwareIni{};
  ClearTables(doc);
  ReadSoftwareIni(app_.paths.SoftwareIni(), app_.ini);
  app_.settings.Apply(app_.ini);
  doc.ScaleDenominator = app_.ini.MeasureMode == "TS" ? 200 : 1000;
  timer5_->SetInterval(Timer5Interval);
  timer5_->SetEnabled(false);
  window_.SetCaption("TAVIK");
  window_.EnableDocumentCommands(false);
  window_.EnableBaseMapCommands(false);
  window_.SetPaperEnabled(false);
  window_.SetMeasureModeMenus(app_.ini.MeasureMode);

  // The crash check comes first, then the stored recent list. A recovered document is
  // taken up before the list is known, so it is put at the head of the list once the
  // list has been read, and only then is the list written back.
  bool recovered = false;
  switch (app_.work.Check()) {
    case WorkFiles::CrashState::Recoverable:
      if (RecoverFromWorkFiles(doc, app_.work, dialogs_)) {
        app_.DocumentFormat = 1;
        app_.BaseMapOn = doc.BaseMapCount > 0;
        window_.EnableBaseMapCommands(app_.BaseMapOn);
        RefreshView();
        // What came back from the journal is in no saved file yet: the document counts
        // as changed, so that closing or leaving offers to save it.
        doc.MapChanged = kTrue;
        TakeUp(true, false);
        app_.work.WriteRecoveryHeader(doc);
        recovered = true;
      }
      break;
    case WorkFiles::CrashState::BothEmpty:
      app_.work.RemoveAll();
      break;
    case WorkFiles::CrashState::None:
      break;
  }

  ReadRecentList(store_, app_.recent);
  if (recovered) {
    AddRecent(app_.recent, doc.DocumentName);
    WriteRecentList(store_, app_.recent);
  }
  window_.SetRecentItems(app_.recent.Items);
  ShowCounts();
}

void DocumentCycle::ShowCounts() {
  const Document& doc = app_.doc;
  const int64_t points = static_cast<int64_t>(doc.PointCount) - doc.DeletedPointCount;
  const int64_t entities = static_cast<int64_t>(doc.EntityCount) - doc.DeletedEntityCount;
  window_.SetPanel(1, ScaleText(doc.ScaleDenominator));
  window_.SetLabel41(Count(points));
  window_.SetLabel42(Count(entities));
  window_.SetPanel(4, "測點 " + Count(points));
  window_.SetPanel(5, "圖元 " + Count(entities));
  // An erase only flags the screen copy until the next rebuild: the screen counts are
  // of the rows still live, so that they drop with the erase.
  auto live = [](const auto& table, int32_t count) {
    int64_t n = 0;
    for (std::size_t i = 0; i < table.size() && static_cast<int64_t>(i) < count; ++i) n += table[i].Deleted == 0;
    return n;
  };
  window_.SetPanel(6, "螢幕點 " + Count(live(doc.ScreenPointTable, doc.ScreenPointCount)));
  window_.SetPanel(7, "螢幕圖 " + Count(live(doc.ScreenEntityTable, doc.ScreenEntityCount)));
  window_.SetPanel(10, "底圖數目: " + Count(doc.BaseMapCount));
}

void DocumentCycle::RefreshView() {
  if (hooks.ComputeView) hooks.ComputeView(app_.doc, app_.view);
  window_.RedrawPaper();
  if (hooks.RebuildScreenTables) hooks.RebuildScreenTables(app_.doc, app_.view);
}

void DocumentCycle::TakeUp(bool keepMapChanged, bool keepRecent) {
  Document& doc = app_.doc;
  // The settings follow the running program, so that the measure mode chosen in the
  // instrument options since the start is the one the menus are set for.
  app_.settings.Collect(app_.ini);
  if (!keepMapChanged) doc.MapChanged = kFalse;
  window_.EnableDocumentCommands(true);
  window_.SetPaperEnabled(true);
  window_.SetCaption("TAVIK - " + doc.SpcPath);
  window_.SetMeasureModeMenus(app_.ini.MeasureMode);
  window_.SetMAPtype(doc.MapType == 1 ? "地形圖" : "平面圖");
  if (app_.ini.AutoSaveMinutes > 0) timer5_->SetEnabled(true);
  ShowCounts();
  window_.SetRecentItems(app_.recent.Items);
  // Kept at once, so that a crash before a clean exit does not lose the entry.
  if (keepRecent) WriteRecentList(store_, app_.recent);
  if (hooks.TakenUp) hooks.TakenUp();
}

bool DocumentCycle::RefuseWhileChanged() {
  if (app_.doc.IsOpen() && app_.doc.MapChanged) {
    dialogs_.MsgBox(MsgFinishFirst);
    return true;
  }
  return false;
}

void DocumentCycle::New() {
  if (RefuseWhileChanged()) return;
  std::string chosen;
  for (;;) {
    chosen = dialogs_.SaveFileName("開新圖檔", NewFilter, app_.paths.WorkFolder().string());
    if (chosen.empty()) return;
    const DotAnswer dot = AskAboutDot(chosen);
    if (dot == DotAnswer::Stop) return;
    if (dot == DotAnswer::ChooseAgain) continue;
    // The document will be written as the name up to its first dot plus ".SPC", so an
    // existing file under that name is as much in the way as the name typed.
    const bool taken = Exists(chosen) || Exists(FindNoCase(NameUpToFirstDot(chosen) + ".SPC"));
    if (!taken) break;
    const ui::Answer a = dialogs_.MsgBox(MsgOverwrite, "發現同名檔", ui::Buttons::YesNoCancel, ui::Icon::Question);
    if (a == ui::Answer::Yes) break;
    if (a == ui::Answer::Cancel) return;
  }

  Document& doc = app_.doc;
  if (doc.IsOpen()) {
    app_.LastE = doc.ViewCentreE;
    app_.LastN = doc.ViewCentreN;
  }
  Document fresh = CarryOver(doc);
  fresh.StationSet = kFalse;
  SetDocumentName(fresh, NameUpToFirstDot(chosen));
  if (app_.LastE != 0 && app_.LastN != 0) {
    fresh.ViewCentreE = app_.LastE;
    fresh.ViewCentreN = app_.LastN;
  } else {
    fresh.ViewCentreE = DefaultCentreE;
    fresh.ViewCentreN = DefaultCentreN;
  }
  fresh.ScaleDenominator = 100;
  doc = std::move(fresh);
  ClearTables(doc);
  ResetExtent(doc);
  app_.DocumentFormat = 1;
  app_.BaseMapOn = false;
  app_.MinutesSinceSave = 0;
  if (hooks.ResetPointer) hooks.ResetPointer();
  if (hooks.ComputeView) hooks.ComputeView(doc, app_.view);
  window_.ClearPaper();

  if (!app_.work.CreateEmpty())
    dialogs_.MsgBox("無法建立工作檔 " + app_.paths.Home.string() + ",當機時將無法救回測量資料", "TAVIK",
                    ui::Buttons::Ok, ui::Icon::Exclamation);
  {
    std::ofstream mac(doc.MacPath, std::ios::binary | std::ios::trunc);
    mac << "LS\r\n";
  }
  if (hooks.RebuildScreenTables) hooks.RebuildScreenTables(doc, app_.view);
  window_.EnableBaseMapCommands(false);
  AddRecent(app_.recent, doc.DocumentName);
  TakeUp(false);
  app_.work.WriteRecoveryHeader(doc);
}

void DocumentCycle::Open() {
  if (RefuseWhileChanged()) return;
  const std::string chosen = dialogs_.OpenFileName("開啟舊圖檔", OpenFilter, app_.paths.WorkFolder().string());
  if (chosen.empty()) return;
  OpenFile(chosen);
}

void DocumentCycle::OpenFile(const std::string& chosen) {
  if (RefuseWhileChanged()) return;
  const fs::path path = FindNoCase(chosen);
  if (!Exists(path)) {
    dialogs_.MsgBox(MsgNoFile);
    return;
  }
  // The extension is what follows the file name's last dot, also for a name that is
  // only a dot and an extension (".SPC" of a document named after its folder).
  const std::string stem = PathLessExtension(path.string());
  std::string ext = text::UpperAscii(path.string().substr(std::min(stem.size() + 1, path.string().size())));
  int16_t format = 0;
  if (ext == "SPC") format = 1;
  else if (ext == "SP") format = 2;
  else {
    dialogs_.MsgBox("檔案格式或檔案型別不符", "檔名有問題");
    return;
  }

  // An open document is unchanged here: it is closed without a question.
  if (app_.doc.IsOpen()) CloseQuietly();

  Document fresh = CarryOver(app_.doc);
  SetDocumentName(fresh, stem);
  // The file keeps the case of its name: x.spc is read and later saved as x.spc.
  if (format == 1) fresh.SpcPath = path.string();
  else fresh.SpPath = path.string();

  bool loaded;
  if (format == 1) loaded = LoadDocument(fresh, dialogs_, hooks.Progress);
  else if (hooks.LoadOldDocument) loaded = hooks.LoadOldDocument(fresh, app_.view, dialogs_);
  else loaded = ReadOldDocument(fresh, dialogs_);
  if (!loaded) {
    SetDocumentName(app_.doc, "");
    return;
  }
  app_.doc = std::move(fresh);
  Document& doc = app_.doc;
  doc.UndeleteStack.clear();
  app_.DocumentFormat = format;
  app_.MinutesSinceSave = 0;
  if (hooks.ResetPointer) hooks.ResetPointer();
  app_.BaseMapOn = doc.BaseMapCount > 0;
  window_.EnableBaseMapCommands(app_.BaseMapOn);
  RefreshView();
  if (hooks.PlaceScrollBars) hooks.PlaceScrollBars(doc, app_.view);
  AddRecent(app_.recent, doc.DocumentName);
  TakeUp(true);
  app_.work.WriteRecoveryHeader(doc);
}

void DocumentCycle::ReloadAfterSave() {
  Document& doc = app_.doc;
  Document fresh = CarryOver(doc);
  SetDocumentName(fresh, doc.DocumentName);
  fresh.SpcPath = doc.SpcPath;
  fresh.SpPath = doc.SpPath;
  // The file was written a moment ago; should it not read back, the tables as they
  // are stay in use rather than an empty map.
  if (LoadDocument(fresh, dialogs_, hooks.Progress)) {
    fresh.MapChanged = kFalse;
    doc = std::move(fresh);
    return;
  }
  // A file with nothing in it has been reported as such by the reading. The rows still
  // in memory are then all deleted ones, which the reload would have dropped; they go,
  // so that the tables agree with counts of 0.
  if (doc.PointCount == 0 && doc.EntityCount == 0 && doc.BaseMapCount == 0) ClearTables(doc);
}

bool DocumentCycle::SaveAndReload() {
  Document& doc = app_.doc;
  if (hooks.StopLiveMarker) hooks.StopLiveMarker();
  if (!SaveDocument(doc, app_.work, dialogs_, hooks.Progress)) return false;
  doc.DeletedPointCount = 0;
  doc.DeletedEntityCount = 0;
  doc.MapChanged = kFalse;
  ReloadAfterSave();
  doc.UndeleteStack.clear();
  if (hooks.ResetPointer) hooks.ResetPointer();
  app_.DocumentFormat = 1;
  RefreshView();
  AfterSave();
  return true;
}

void DocumentCycle::AfterSave() {
  window_.SetOBSBox(MsgSavedNow);
  app_.MinutesSinceSave = 0;
  ShowCounts();
}

void DocumentCycle::Save() {
  if (!app_.doc.IsOpen()) return;
  PurgeZeroEntities(app_.doc);
  SaveAndReload();
}

void DocumentCycle::SaveAs() {
  Document& doc = app_.doc;
  if (!doc.IsOpen()) return;
  std::string chosen;
  for (;;) {
    chosen = dialogs_.SaveFileName("另存新檔", SaveAsFilter, doc.DocumentName);
    if (chosen.empty()) return;
    const DotAnswer dot = AskAboutDot(chosen);
    if (dot == DotAnswer::Stop) return;
    if (dot == DotAnswer::ChooseAgain) continue;
    const bool taken = Exists(chosen) || Exists(FindNoCase(NameUpToFirstDot(chosen) + ".SPC"));
    if (!taken) break;
    const ui::Answer a = dialogs_.MsgBox(MsgOverwrite, "檔名重覆", ui::Buttons::YesNoCancel, ui::Icon::Question);
    if (a == ui::Answer::Yes) break;
    if (a == ui::Answer::Cancel) return;
  }
  const std::string oldName = doc.DocumentName, oldSpc = doc.SpcPath, oldSp = doc.SpPath;
  SetDocumentName(doc, NameUpToFirstDot(chosen));
  doc.SpcPath = PathCase(doc.SpcPath);
  if (!SaveAndReload()) {
    // Nothing was written under the new name: the document keeps its old one.
    SetDocumentName(doc, oldName);
    doc.SpcPath = oldSpc;
    doc.SpPath = oldSp;
    return;
  }
  AddRecent(app_.recent, doc.DocumentName);
  TakeUp(true);
}

void DocumentCycle::CloseQuietly() {
  Document& doc = app_.doc;
  app_.LastE = doc.ViewCentreE;
  app_.LastN = doc.ViewCentreN;
  doc.MapChanged = kFalse;
  doc.StationSet = kFalse;
  window_.ClearPaper();
  window_.SetPaperEnabled(false);
  ClearTables(doc);
  SetDocumentName(doc, "");
  app_.work.RemoveAll();
  app_.BaseMapOn = false;
  app_.MinutesSinceSave = 0;
  timer5_->SetEnabled(false);
  if (hooks.ResetPointer) hooks.ResetPointer();
  window_.EnableDocumentCommands(false);
  window_.EnableBaseMapCommands(false);
  window_.SetCaption("TAVIK");
  window_.SetOBSBox("");
  ShowCounts();
  window_.ShowInstrumentFrame();
}

bool DocumentCycle::Close() {
  Document& doc = app_.doc;
  if (!doc.IsOpen()) return true;
  if (hooks.StopLiveMarker) hooks.StopLiveMarker();
  if (hooks.CloseSensorPorts) hooks.CloseSensorPorts();
  if (doc.MapChanged) {
    const ui::Answer a =
        dialogs_.MsgBox("是否存檔?", "螢幕的圖尚未存檔", ui::Buttons::YesNoCancel, ui::Icon::Question);
    if (a == ui::Answer::Cancel) return false;
    // A failed save has shown its message; the document stays open with its journal.
    if (a == ui::Answer::Yes && !SaveDocument(doc, app_.work, dialogs_, hooks.Progress)) return false;
  }
  CloseQuietly();
  return true;
}

bool DocumentCycle::Exit() {
  if (hooks.StopBaseLogging) hooks.StopBaseLogging();
  app_.settings.Collect(app_.ini);
  WriteSoftwareIni(app_.paths.SoftwareIni(), app_.ini);
  Document& doc = app_.doc;
  if (doc.IsOpen()) {
    WriteRecentList(store_, app_.recent);
    if (doc.MapChanged) {
      const ui::Answer a =
          dialogs_.MsgBox("圖面有更動,是否存檔?", "提示", ui::Buttons::YesNoCancel, ui::Icon::Question);
      if (a == ui::Answer::Cancel) return false;
      if (a == ui::Answer::Yes) {
        Save();
        // The save failed and said so: the program stays, and so does the journal.
        if (doc.MapChanged) return false;
      }
    }
    app_.work.RemoveAll();
    std::error_code ec;
    fs::remove(doc.MacPath, ec);
  }
  if (hooks.StopLiveMarker) hooks.StopLiveMarker();
  if (hooks.CloseSensorPorts) hooks.CloseSensorPorts();
  timer5_->SetEnabled(false);
  return true;
}

void DocumentCycle::OpenRecent(int item) {
  if (item < 1 || item > app_.recent.RecentCount()) return;
  if (RefuseWhileChanged()) return;
  const fs::path path = FindNoCase(app_.recent.Items[item - 1] + ".spc");
  if (!Exists(path)) {
    dialogs_.MsgBox(MsgNoFile);
    return;
  }
  OpenFile(path.string());
}

void DocumentCycle::ClearRecent() {
  ClearRecentList(store_, app_.recent);
  window_.SetRecentItems(app_.recent.Items);
}

void DocumentCycle::Timer5Tick() {
  Document& doc = app_.doc;
  if (app_.ini.AutoSaveMinutes == 0 || !doc.IsOpen() || !doc.MapChanged) return;
  // The minute is not counted while a command is waiting for the user; the next tick
  // comes soon enough, and a save never cuts into a command.
  if (hooks.CommandRunning && hooks.CommandRunning()) return;
  ++app_.MinutesSinceSave;
  window_.SetOBSBox(std::to_string(app_.MinutesSinceSave) + "分鐘前已存檔");
  if (app_.MinutesSinceSave >= app_.ini.AutoSaveMinutes) {
    Save();
    // Save shows "幾秒前已經存檔" and starts the count again; a failed save has said why
    // and the next minute tries again.
  }
}

void DocumentCycle::AutoSaveOff() {
  app_.ini.AutoSaveMinutes = 0;
  timer5_->SetEnabled(false);
  window_.SetOBSBox("自動存檔: 己關閉");
  dialogs_.MsgBox("這個指令會改動整張圖,自動存檔已經關閉。\n請檢查結果,確定無誤後再自行存檔。", "自動存檔",
                  ui::Buttons::Ok, ui::Icon::Exclamation);
}

}  // namespace tavik
