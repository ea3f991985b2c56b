// The RTK base station: the receiver on MSComm1 is fixed on a known position and sends
// differential corrections from its second port to a radio modem, optionally logging
// raw observations. RTBASE ("啟動 RTK 基地站") gathers the position (typed, taken from
// the running receiver, or picked on the map), the antenna height, the correction
// format and the raw logging, and writes one burst of commands. As with the rover,
// every command is fixed text followed by CR LF, with no wait for an answer.
//
// The base keeps running in the receiver after the dialog and the program are gone;
// only Command4 ("取消並離開") puts the receiver back to rover logging.
//
// Beside the receiver's last position, the position may be averaged over a chosen time
// or number of positions (PositionAverager): the mean fills the three boxes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/view_state.h"
#include "geo/datum.h"
#include "instruments/gnss_commands.h"
#include "instruments/gps_panels.h"
#include "instruments/gps_state.h"
#include "platform/dialogs.h"
#include "platform/serial.h"

namespace tavik {

// A correction format of the dialog: its option control, its caption and the format
// word that BaseFormat takes.
struct BaseFormatOption {
  const char* control;
  const char* caption;
  const char* word;
};
// The eight formats in the order the dialog lists them (Option11 down to Option4).
const std::vector<BaseFormatOption>& BaseFormatOptions();

// The kinds that have a base sequence: PP7, DL-RT2 and DL-4.
bool BaseKind(const std::string& kind);
// Whether the kind's sequence has correction logs for the format. A format the kind
// does not list sends only the common lines (and, on a DL-4, no FIX POSITION).
bool BaseFormatSupported(const std::string& kind, const std::string& format);

// The raw periods offered by Combo2 and Combo3, in seconds.
const std::vector<double>& RawPeriods();

// What one start sends.
struct BaseStart {
  std::string kind;            // GpsReceiverKind
  int32_t baud = 9600;         // CommBaud (a DL-RT2 sets its port to 9600 whatever it is)
  std::string datum = "TWD97";
  std::string format;          // BaseFormat
  double lat = 0, lon = 0;     // degrees
  double height = 0;           // of the mark, metres
  double antennaHeight = 0;    // added in FIX POSITION: the phase centre is fixed
  bool rawToFile = false;      // DL-4: raw ranges to the computer's file
  bool rawInReceiver = false;  // PP7: raw ranges kept inside the receiver
  double rawPeriod = 1;        // seconds
};

// "FIX POSITION lat lon h", the numbers as plain decimal text.
std::string FixPositionLine(double lat, double lon, double height);
// The commands of a base start; none for a kind without a base sequence.
std::vector<std::string> BaseSequence(const BaseStart& s);
// Command4: the base is undone and the receiver logs rover positions again.
std::vector<std::string> BaseUndoSequence(int32_t baud);

// Degrees as "121-45-10.1234": the formats "0-", "00-", "00.0000" joined.
std::string DegreesDmsText(double degrees);

// Averages positions over a chosen time or count, with the spread of each axis. The
// sums run as a running mean and sum of squared deviations, so that grid values of
// millions of metres keep their millimetres.
class PositionAverager {
 public:
  enum class Until { Seconds, Count };

  void Start(Until until, double target, double nowSeconds);
  // A position. True when this one reached the count (the averaging has then stopped).
  bool Add(double E, double N, double H, double nowSeconds);
  // The clock moved on; true when the time is up (the averaging has then stopped).
  bool Tick(double nowSeconds);
  void Stop() { running_ = false; }

  bool Running() const { return running_; }
  int32_t Count() const { return count_; }
  double MeanE() const { return mean_[0]; }
  double MeanN() const { return mean_[1]; }
  double MeanH() const { return mean_[2]; }
  // Sample standard deviations, metres; 0 below two positions.
  double SigmaE() const { return Sigma(0); }
  double SigmaN() const { return Sigma(1); }
  double SigmaH() const { return Sigma(2); }
  double Elapsed(double nowSeconds) const { return nowSeconds - start_; }
  // "平均中 12 筆 σE 0.004 σN 0.003 σH 0.009 m", or the final line once stopped.
  std::string StatusText(double nowSeconds) const;

 private:
  double Sigma(int axis) const;

  Until until_ = Until::Count;
  double target_ = 0, start_ = 0;
  bool running_ = false;
  int32_t count_ = 0;
  double mean_[3] = {0, 0, 0};
  double m2_[3] = {0, 0, 0};
};

// Where the base position comes from: Option1, Option2, Option3.
enum class BaseSource { Typed, Received, Picked };

// What the dialog needs of the program around it.
struct RtBaseHooks {
  // CheckMkPt: the base is marked on the map at E, N.
  std::function<void(double E, double N)> MarkBase;
};

// The logic of RTBASE. The dialog's texts live here as plain values; the Qt dialog
// copies them to and from its controls.
class RtBaseLogic {
 public:
  static constexpr const char* Caption = "啟動 RTK 基地站";
  static constexpr const char* RawFilter = "Raw data(*.GPS)|*.GPS|所有檔案(*.*)|*.*";

  RtBaseLogic(Document& doc, const View& view, GpsState& gps, GnssSetup& setup, GpsPanels& panels,
              const GpsDatumSettings& datum, ui::Dialogs& dialogs);

  ui::SerialPort* MSComm1 = nullptr;
  RtBaseHooks hooks;
  std::string WorkFolder;  // where the raw file's dialog starts

  // The controls.
  std::string XEbox, YNbox, ZHbox;
  BaseSource Source = BaseSource::Typed;
  std::string Text1;    // 基地站點名
  std::string Label13;  // antenna height
  int16_t CheckMkPt = 0;
  std::string BaseFormat;  // empty until a format is chosen
  int16_t RawDataCheckFlag = 0;
  int16_t Check1 = 0;

  // The result panels after a start.
  std::string Label15, Label45, Label10, Label11;
  bool Started = false;

  // Command2, 自動接收: the boxes take the receiver's last grid position and ground height.
  void Command2();
  // BasePt: the pointer at pixel (X, Y) of Paper1. A named point entity within the pick
  // box, else a survey point ("NoName"); false after "沒有找到資料".
  bool PickBase(double X, double Y);
  // Command3, 修改天線高: asks for the antenna height; false when it stays as it was.
  bool Command3();
  // Command1: the raw file. False when none was chosen (cancelled, or not to overwrite).
  bool Command1();
  const std::string& RawPath() const { return gps_.RawPath; }
  // The raw period of Combo2 / Combo3, kept in the receiver set-up.
  void SetRawPeriod(double seconds) { setup_.RawPeriodSeconds = seconds; }

  // cmd_start, 啟動基地站: the checks in order, the port, the sequence, the panels.
  bool CmdStart();
  // Command4, 取消並離開: the base is undone. False after a port error.
  bool Command4();
  // The program ends while the base logs raw data: "unlogall" and the port is closed.
  static void StopBaseLogging(GpsState& gps, ui::SerialPort* port);

  // The averaging beside 自動接收. The mean goes to the boxes when it stops; the source
  // is then the typed boxes, so that a hand edit afterwards counts as before.
  PositionAverager Averager;
  void StartAveraging(PositionAverager::Until until, double target, double nowSeconds);
  // A position from the receiver; true when the averaging ended with it.
  bool PositionArrived(double nowSeconds);
  // The clock; true when the time ran out.
  bool AveragingTick(double nowSeconds);
  // The stop button, or the end of the time or count: the boxes take the mean.
  void StopAveraging();

 private:
  bool OpenPort();
  bool Send(const std::vector<std::string>& commands);
  void FillBoxes(double E, double N, double H);

  Document& doc_;
  const View& view_;
  GpsState& gps_;
  GnssSetup& setup_;
  GpsPanels& panels_;
  const GpsDatumSettings& datum_;
  ui::Dialogs& dialogs_;
};

}  // namespace tavik
