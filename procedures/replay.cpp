#include "procedures/replay.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "core/workfiles.h"

namespace tavik {
namespace fs = std::filesystem;

namespace {

std::string F3(double v) { return num::Format(v, "0.000"); }
std::string F2(double v) { return num::Format(v, "0.00"); }

constexpr std::size_t kBufferSize = 256 * 1024;

}  // namespace

std::optional<WayRecord> ReadWayRecord(std::string_view line) {
  // Split at every comma; fields are counted from 1 as the writer numbers them.
  std::string_view f[23];
  int n = 0;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = line.find(',', start);
    const std::string_view field = line.substr(start, comma == std::string_view::npos ? line.npos : comma - start);
    if (n < 23) f[n] = field;
    ++n;
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  if (n < 18) return std::nullopt;
  double v[14];
  for (int i = 0; i < 14; ++i) {
    const std::optional<double> x = num::ParseStrict(f[4 + i]);
    if (!x || !std::isfinite(*x)) return std::nullopt;
    v[i] = *x;
  }
  WayRecord r;
  r.E = v[0];
  r.N = v[1];
  r.H = v[2];
  r.SigmaE = v[3];
  r.SigmaN = v[4];
  r.SigmaH = v[5];
  r.Ground = v[6];
  r.InstrumentHeight = v[7];
  r.TargetHeight = v[8];
  r.Depth = v[9];
  r.Depth2 = v[10];
  r.Heave = v[11];
  r.Roll = v[12];
  r.Pitch = v[13];
  r.FieldCount = n;
  if (n > 19) {
    r.Reference = text::Trim(text::FromCp950(f[19]));
    if (n > 20) r.Distance = text::Trim(text::FromCp950(f[20]));
  }
  return r;
}

int FasterInterval(int ms) {
  ms /= 2;
  if (ms < 50) ms = 50;
  if (ms > 51 && ms < 100) ms = 100;
  return ms;
}

int SlowerInterval(int ms) {
  ms *= 2;
  if (ms > 1000) ms = 1000;
  return ms;
}

// --- the line reader ---------------------------------------------------------------

bool WayLineReader::Open(const std::string& path) {
  Close();
  file_ = std::fopen(path.c_str(), "rb");
  if (file_ == nullptr) return false;
  if (!buf_) buf_ = std::make_unique<char[]>(kBufferSize);
  pos_ = len_ = 0;
  return true;
}

void WayLineReader::Close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
  pos_ = len_ = 0;
}

bool WayLineReader::Fill() {
  if (file_ == nullptr) return false;
  len_ = std::fread(buf_.get(), 1, kBufferSize, file_);
  pos_ = 0;
  return len_ > 0;
}

bool WayLineReader::AtEnd() { return pos_ >= len_ && !Fill(); }

bool WayLineReader::Next(std::string& line) {
  line.clear();
  if (AtEnd()) return false;
  bool overlong = false;
  for (;;) {
    if (pos_ >= len_ && !Fill()) break;
    const char* begin = buf_.get() + pos_;
    const char* lf = static_cast<const char*>(std::memchr(begin, '\n', len_ - pos_));
    const std::size_t take = lf ? static_cast<std::size_t>(lf - begin) : len_ - pos_;
    if (!overlong) {
      if (line.size() + take > kMaxLine) {
        overlong = true;
        line.clear();
      } else {
        line.append(begin, take);
      }
    }
    pos_ += take;
    if (lf) {
      ++pos_;
      break;
    }
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

// --- the dialog ----------------------------------------------------------------------

struct RePlayLogic::Aside {
  Document doc;
  WorkFiles work;
  View view;
  GpsState gps;
  GpsPanels panels;
  int16_t MinutesSinceSave = 0;
  bool BaseMapOn = false;
};

RePlayLogic::RePlayLogic(App& app, GpsState& gps, GpsPanels& panels, ui::Dialogs& dialogs,
                         ui::TimerFactory& timers, std::string scratchHome)
    : app_(app), gps_(gps), panels_(panels), dialogs_(dialogs), timer_(timers.CreateTimer()),
      scratchHome_(std::move(scratchHome)) {
  timer_->SetInterval(1000);
  timer_->SetEnabled(false);
  timer_->OnTick = [this] { Tick(); };
  ShowRate();
}

RePlayLogic::~RePlayLogic() {
  timer_->OnTick = nullptr;
  Unload();
}

bool RePlayLogic::CanOpen(const std::string& measureMode, bool connected, ui::Dialogs& dialogs) {
  if (measureMode != "GPS") {
    dialogs.MsgBox("重播為GPS專用功能,儀器需改為GPS才能重播");
    return false;
  }
  if (connected) {
    dialogs.MsgBox("連線中不能重播", "錯誤動作");
    return false;
  }
  return true;
}

void RePlayLogic::Browse(const std::string& workFolder) {
  const std::string chosen = dialogs_.OpenFileName("開啟WAY檔", Filter, workFolder);
  if (!chosen.empty()) ChooseFile(chosen);
}

bool RePlayLogic::ChooseFile(const std::string& path) {
  std::error_code ec;
  if (!fs::is_regular_file(fs::path(path), ec)) {
    dialogs_.MsgBox("檔案不存在!");
    return false;
  }
  const std::size_t dot = path.find_last_of('.');
  const std::size_t slash = path.find_last_of('/');
  const bool wayName = dot != std::string::npos && (slash == std::string::npos || dot > slash) &&
                       text::UpperAscii(path.substr(dot + 1)) == "WAY";
  if (!wayName) {
    dialogs_.MsgBox("檔案格式或檔案型別不符", "檔名錯誤");
    return false;
  }
  Text1 = path;
  return true;
}

void RePlayLogic::Play() {
  if (Text1.empty()) return;
  std::error_code ec;
  if (!fs::is_regular_file(fs::path(Text1), ec)) {
    dialogs_.MsgBox("檔案不存在!");
    return;
  }
  if (!aside_ && !PutDocumentAside()) return;
  EmptyScratch();
  if (!file_.Open(Text1)) {
    dialogs_.MsgBox("檔案不存在!");
    return;
  }
  timer_->SetEnabled(true);
  Command1_1Caption = "暫停";
  Command1Enabled[0] = false;
  Command1Enabled[3] = true;
  Command1Enabled[4] = true;
}

// Before the first Play: an unsaved document is offered for saving, then it goes aside
// with everything the replay would change, and an empty scratch document stands in for
// it, in a work folder of its own.
bool RePlayLogic::PutDocumentAside() {
  Document& doc = app_.doc;
  if (doc.IsOpen() && doc.MapChanged != kFalse) {
    const ui::Answer a = dialogs_.MsgBox("圖檔已修改,重播前是否先存檔?\n(重播結束後圖檔會恢復原狀)", Caption,
                                         ui::Buttons::YesNoCancel, ui::Icon::Question);
    if (a == ui::Answer::Cancel) return false;
    if (a == ui::Answer::Yes) {
      if (hooks.SaveDocument) hooks.SaveDocument();
      if (doc.MapChanged != kFalse) return false;  // the save failed and said why
    }
  }
  auto aside = std::make_unique<Aside>(Aside{Document{}, WorkFiles(AppPaths(fs::path(scratchHome_))), app_.view,
                                             gps_, panels_, app_.MinutesSinceSave, app_.BaseMapOn});
  std::error_code ec;
  fs::create_directories(fs::path(scratchHome_), ec);

  Document scratch;
  scratch.MapType = doc.MapType;
  scratch.CurrentLegend = doc.CurrentLegend;
  scratch.ScaleDenominator = doc.ScaleDenominator;
  scratch.ViewCentreE = doc.ViewCentreE;
  scratch.ViewCentreN = doc.ViewCentreN;
  scratch.InstrumentHeight = doc.InstrumentHeight;
  scratch.TargetHeight = doc.TargetHeight;
  // The scratch document is "open" when the surveyor's is, so that the view follows the
  // rover; its paths lie in the scratch folder, where nothing of the survey is.
  if (doc.IsOpen()) SetDocumentName(scratch, (fs::path(scratchHome_) / "REPLAY").string());
  aside->doc = std::move(doc);
  doc = std::move(scratch);
  std::swap(aside->work, app_.work);
  if (hooks.EnableAutosave) hooks.EnableAutosave(false);
  app_.BaseMapOn = false;
  aside_ = std::move(aside);
  return true;
}

// Play's emptying of the map, on the scratch document only.
void RePlayLogic::EmptyScratch() {
  Document& doc = app_.doc;
  doc.PointCount = doc.EntityCount = doc.DeletedPointCount = doc.DeletedEntityCount = 0;
  ClearTables(doc);
  std::error_code ec;
  fs::remove(app_.work.Paths().TempP0(), ec);
  fs::remove(app_.work.Paths().TempS0(), ec);
  if (hooks.MapReplaced) hooks.MapReplaced();
}

void RePlayLogic::GiveDocumentBack() {
  if (!aside_) return;
  std::unique_ptr<Aside> aside = std::move(aside_);
  app_.work.RemoveAll();
  std::swap(aside->work, app_.work);
  app_.doc = std::move(aside->doc);
  app_.view = aside->view;
  app_.MinutesSinceSave = aside->MinutesSinceSave;
  app_.BaseMapOn = aside->BaseMapOn;
  gps_ = aside->gps;
  panels_ = aside->panels;
  std::error_code ec;
  fs::remove_all(fs::path(scratchHome_), ec);
  if (hooks.MapReplaced) hooks.MapReplaced();
  if (hooks.ShowPanels) hooks.ShowPanels();
  if (hooks.SetText) {
    hooks.SetText("CmdIh", "天線高: " + F2(app_.doc.InstrumentHeight));
    hooks.SetText("CmdRod", "吃水深: " + F2(app_.doc.TargetHeight));
  }
  if (hooks.EnableAutosave) hooks.EnableAutosave(true);
}

void RePlayLogic::Pause() {
  timer_->SetEnabled(!timer_->Enabled());
  Command1_1Caption = timer_->Enabled() ? "暫停" : "繼續";
}

void RePlayLogic::End() {
  file_.Close();
  timer_->SetEnabled(false);
  if (aside_) EmptyScratch();
  Command1Enabled[0] = true;
  GiveDocumentBack();
}

void RePlayLogic::Unload() {
  file_.Close();
  timer_->SetEnabled(false);
  GiveDocumentBack();
}

void RePlayLogic::Faster() {
  if (!timer_->Enabled()) return;
  timer_->SetInterval(FasterInterval(timer_->Interval()));
  ShowRate();
}

void RePlayLogic::Slower() {
  if (!timer_->Enabled()) return;
  timer_->SetInterval(SlowerInterval(timer_->Interval()));
  ShowRate();
}

void RePlayLogic::ShowRate() { Label3 = num::Plain(1000.0 / timer_->Interval()); }

void RePlayLogic::Tick() {
  if (file_.AtEnd()) {
    timer_->SetEnabled(false);
    file_.Close();
    Command1Enabled[0] = true;
    if (Check1 != kFalse) Play();
    if (hooks.Changed) hooks.Changed();
    return;
  }
  file_.Next(line_);
  const std::optional<WayRecord> r = ReadWayRecord(line_);
  if (!r) return;
  ++played_;
  ShowRecord(*r);
  if (r->E != 0 && r->N != 0) ReplayPosition(r->E, r->N, r->H);
  if (hooks.Changed) hooks.Changed();
}

void RePlayLogic::ShowRecord(const WayRecord& r) {
  gps_.GpsSigmaE = r.SigmaE;
  gps_.GpsSigmaN = r.SigmaN;
  gps_.GpsSigmaH = r.SigmaH;
  gps_.GpsGround = r.Ground;
  app_.doc.InstrumentHeight = r.InstrumentHeight;
  app_.doc.TargetHeight = r.TargetHeight;
  gps_.SounderDepth = r.Depth;
  gps_.SounderDepth2 = r.Depth2;
  gps_.Heave = r.Heave;
  gps_.Roll = r.Roll;
  gps_.Pitch = r.Pitch;
  panels_.Label25[7] = F3(r.E);
  panels_.Label25[8] = F3(r.N);
  panels_.Label18 = F3(r.H);
  panels_.Label25[9] = F3(r.SigmaE);
  panels_.Label25[3] = F3(r.SigmaN);
  panels_.Label25[10] = F3(r.SigmaH);
  panels_.Label22 = F3(r.Ground);
  panels_.Label21[0] = F2(r.Depth);
  panels_.Label21[1] = F2(r.Depth2);
  if (r.FieldCount > 19) panels_.Label10 = r.Distance;
  if (hooks.SetText) {
    hooks.SetText("CmdIh", "天線高: " + F2(r.InstrumentHeight));
    hooks.SetText("CmdRod", "吃水深: " + F2(r.TargetHeight));
    if (r.FieldCount > 19) hooks.SetText("Combo3", r.Reference);
  }
  if (hooks.ShowPanels) hooks.ShowPanels();
}

void RePlayLogic::ReplayPosition(double E, double N, double H) {
  gps_.GpsPrevX = gps_.GpsX;
  gps_.GpsPrevY = gps_.GpsY;
  gps_.GpsX = E;
  gps_.GpsY = N;
  gps_.GpsGround = H;
  if (gps_.LastRecordedX != 0)
    panels_.Label3 = F3(std::hypot(E - gps_.LastRecordedX, N - gps_.LastRecordedY));
  const View& v = app_.view;
  if (app_.doc.IsOpen() && !v.InScreen(E, N)) {
    if (gps_.OffScreenShift == kFalse && gps_.MoveMap == kFalse) {
      if (hooks.FitViewTo)
        hooks.FitViewTo(std::min(v.ScreenMinE, E), std::min(v.ScreenMinN, N), std::max(v.ScreenMaxE, E),
                        std::max(v.ScreenMaxN, N), 1.05);
    } else if (gps_.OffScreenShift != kFalse) {
      if (hooks.CentreViewOn) hooks.CentreViewOn(E, N);
    }
  }
  if (hooks.DrawMarker) hooks.DrawMarker(E, N);
}

}  // namespace tavik
