// FrmRePlay, "重播": plays a recorded WAY file back on the map at a chosen speed, one
// record per tick of Timer1, as if the rover were moving again. It refills the GPS
// panels from each record and moves the position marker.
//
// A replay is a display: nothing it shows is kept. It never runs on the surveyor's
// document. Play puts the open document aside (tables, header and work files alike) and
// gives the program an empty scratch document with its own work files in a folder of
// their own; End, or closing the dialog, puts the surveyor's document back as it was.
// The surveyor's work files are not touched while the replay runs, so a crash in the
// middle of it leaves on disk exactly what a crash just before Play would have left, and
// the next start recovers that. A document with unsaved changes is offered for saving
// first. Autosave is off for the length of the replay.
//
// The file is read a line at a time and never held whole. A line that cannot be read
// as a record (too few fields, text where a number belongs) is passed over.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/app_state.h"
#include "instruments/gps_panels.h"
#include "instruments/gps_state.h"
#include "platform/dialogs.h"
#include "platform/timer.h"

namespace tavik {

// One WAY record as the replay takes it. Fields count from 1 as the record writes them:
// 5 to 7 E, N, height; 8 to 10 the sigmas; 11 ground; 12 antenna height; 13 draft;
// 14 to 18 the two depths, heave, roll, pitch; 20 the reference name; 21 its distance.
struct WayRecord {
  double E = 0, N = 0, H = 0;
  double SigmaE = 0, SigmaN = 0, SigmaH = 0;
  double Ground = 0, InstrumentHeight = 0, TargetHeight = 0;
  double Depth = 0, Depth2 = 0, Heave = 0, Roll = 0, Pitch = 0;
  int FieldCount = 0;
  // Fields 20 and 21, trimmed, in UTF-8; read only when the line has more than 19 fields
  // (a record written without a reference ends in a comma, and has an empty field 20).
  std::string Reference, Distance;
};

// A line of the WAY file (code page 950, without its line end). nullopt when it has
// fewer than 18 fields or a number field 5 to 18 that is not a number.
std::optional<WayRecord> ReadWayRecord(std::string_view line);

// The timer's interval after Faster and Slower. From 1000 ms Faster runs 500, 250, 125,
// then 62, which is raised to 100, then 50, where it stays; Slower doubles up to 1000.
int FasterInterval(int milliseconds);
int SlowerInterval(int milliseconds);

// Reads a text file one line at a time through a fixed buffer, whatever the file's
// size. A line longer than kMaxLine is passed over whole and reads as an empty line.
class WayLineReader {
 public:
  static constexpr std::size_t kMaxLine = 64 * 1024;
  ~WayLineReader() { Close(); }
  bool Open(const std::string& path);
  void Close();
  bool IsOpen() const { return file_ != nullptr; }
  // True when no byte is left to read.
  bool AtEnd();
  // The next line without CR or LF; false at the end of the file.
  bool Next(std::string& line);

 private:
  bool Fill();
  std::FILE* file_ = nullptr;
  std::unique_ptr<char[]> buf_;
  std::size_t pos_ = 0, len_ = 0;
};

// What the replay asks of the program around it.
struct ReplayHooks {
  // Save of the open document (the 存檔 command). Afterwards doc.MapChanged says
  // whether it succeeded.
  std::function<void()> SaveDocument;
  // The autosave timer Timer5 of the main window.
  std::function<void(bool enabled)> EnableAutosave;
  // The map was emptied or given back: the picture, the screen tables and the counts
  // are made again from the document.
  std::function<void()> MapReplaced;
  // The panels of the GPS frame were refilled; the captions of CmdIh, CmdRod and the
  // text of Combo3 are named by control.
  std::function<void()> ShowPanels;
  std::function<void(const std::string& control, const std::string& text)> SetText;
  // The view after an off-screen position: the rectangle fitted and scaled by `factor`
  // with the centre in its middle, or the centre moved at the same scale. Both rebuild
  // the picture and the screen tables and write the recovery header.
  std::function<void(double minE, double minN, double maxE, double maxN, double factor)> FitViewTo;
  std::function<void(double E, double N)> CentreViewOn;
  // The position marker at the position (after the view has followed it).
  std::function<void(double E, double N)> DrawMarker;
  // Something the dialog shows changed (after a tick).
  std::function<void()> Changed;
};

class RePlayLogic {
 public:
  static constexpr const char* Caption = "重播";
  static constexpr const char* Filter = "WAY檔(*.WAY)|*.WAY";

  // `app` holds the document and its work files, which the replay puts aside while it
  // runs; `scratchHome` is a folder of the replay's own for its work files.
  RePlayLogic(App& app, GpsState& gps, GpsPanels& panels, ui::Dialogs& dialogs, ui::TimerFactory& timers,
              std::string scratchHome);
  ~RePlayLogic();

  ReplayHooks hooks;

  // The main window's RePlay entry: GPS mode only, and not while a receiver is
  // connected. False after the refusal's message.
  static bool CanOpen(const std::string& measureMode, bool connected, ui::Dialogs& dialogs);

  // Controls.
  std::string Text1;                 // WayPath
  int16_t Check1 = 0;                // ReplayRepeat, 重覆播放
  std::string Label3 = "1";          // records per second
  std::string Command1_1Caption = "暫停";
  bool Command1Enabled[5] = {true, true, true, false, false};

  // Command2, 瀏覽: the file dialog in the work folder.
  void Browse(const std::string& workFolder);
  // A name typed or chosen: the same checks as Browse.
  bool ChooseFile(const std::string& path);
  void Play();      // Command1(0)
  void Pause();     // Command1(1)
  void End();       // Command1(2); the dialog then closes
  void Faster();    // Command1(3)
  void Slower();    // Command1(4)
  // The dialog closes by any means: the surveyor's document comes back.
  void Unload();
  void Tick();      // Timer1
  void ReplayPosition(double E, double N, double H);

  bool Running() const { return timer_->Enabled(); }
  int Interval() const { return timer_->Interval(); }
  bool Replaying() const { return aside_ != nullptr; }
  int64_t RecordsPlayed() const { return played_; }

 private:
  bool PutDocumentAside();
  void GiveDocumentBack();
  void EmptyScratch();
  void ShowRecord(const WayRecord& r);
  void ShowRate();

  App& app_;
  GpsState& gps_;
  GpsPanels& panels_;
  ui::Dialogs& dialogs_;
  std::unique_ptr<ui::Timer> timer_;
  std::string scratchHome_;
  WayLineReader file_;
  std::string line_;
  int64_t played_ = 0;

  // The surveyor's document, work files, GPS state and panels while the replay runs.
  struct Aside;
  std::unique_ptr<Aside> aside_;
};

}  // namespace tavik
