// GPS recording: everything that follows from a position once the receiver has put it
// on the grid (the marker, keeping the rover on the map, the stake-out zoom, the
// distance trigger), the time trigger, the recording button and its settings, and the
// WAY and GSTK records.
//
// A record is a new point in the point table, journalled at once like any observation,
// and a line appended to the WAY file (or, for a stake-out point, the GSTK file) with
// the file opened and closed around it, so that a crash in the middle of a continuous
// run loses no recorded point.
//
// The state of the recording is what LogButton says: "手動記錄", "連續記錄,每5秒" /
// "連續記錄,每5公尺" (set up, idle) or "暫停連續記錄" (running). The code reads the
// caption back as its state.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "instruments/gnss_commands.h"
#include "instruments/gps_panels.h"
#include "instruments/gps_state.h"
#include "procedures/survey_context.h"

namespace tavik {

inline constexpr const char* kLogManual = "手動記錄";
inline constexpr const char* kLogRunning = "暫停連續記錄";
inline constexpr int16_t CodeRoute = 168;  // the lines and labels of a recorded route

struct GpsRecordState {
  std::string RecordMode;      // "" manual, "Time" or "Dist"
  double RecordInterval = 1;   // seconds or metres
  int16_t LinkPoints = kFalse;     // Check1 點-點間連線
  int16_t LabelRoute = kFalse;     // Check3 起點標註路線名稱
  int16_t LabelDistance = kFalse;  // Check2 終點標註距離長度
  std::string RouteName;
  int16_t PlainMarker = kFalse;     // the marker without heading
  double DistPrevX = 0, DistPrevY = 0;  // the distance trigger's; 0 when idle
  // The reference stake of the WAY record (Combo3 參考樁); "距某點" means none.
  std::string Combo3 = "距某點";
  std::string LogButtonCaption = kLogManual;
  // The position marker has been drawn since the last full redraw.
  bool MarkerDrawn = false;
  // The route being recorded: its points in order, for the connecting lines.
  struct RoutePoint {
    double E = 0, N = 0, H = 0;
  };
  std::vector<RoutePoint> Route;
  double RouteLength = 0;
  bool Timer4Running = false;
};

// "連續記錄,每5秒" / "連續記錄,每5公尺" for the mode and interval.
std::string ContinuousCaption(const std::string& mode, double interval);

// The WAY line of a record at E, N, without its line end: 20 fields, with the reference
// name and the distance to the station as field 21 when a reference is chosen (else
// the line ends with the comma before the empty field 20).
struct WayClock {
  std::string Date;  // the last 10 characters are written
  std::string Time;  // the last 8
};
std::string WayLine(const GpsState& gps, const Document& doc, const std::string& label21_0,
                    const std::string& combo3, double E, double N, const WayClock& clock);
// The GSTK line of a stake-out record at the present position.
std::string GstkLine(const GpsState& gps, const std::string& stakeName, double stakeX, double stakeY,
                     const WayClock& clock);

// What the recording asks of the main window and the receiver link. Any may be empty.
struct GpsRecordHooks {
  // After the view values (scale, centre) changed: ComputeView, the screen tables, the
  // recovery header and a full redraw.
  std::function<void()> ViewChanged;
  // The stake-out target marks, redrawn after a full redraw.
  std::function<void()> DrawStakeMarks;
  // The position marker: plain at E, N, or turned by heading (radians from north).
  std::function<void(double E, double N, bool plain, double heading)> DrawMarker;
  // The guidance of the GPS stake-out window for the new position.
  std::function<void()> StakeRefresh;
  // Text drawn 3 pixels right of the world point (route name, route length).
  std::function<void(double E, double N, const std::string& text)> DrawLabel;
  // A stored entity drawn at once.
  std::function<void(std::size_t row)> DrawEntity;
  // LogButton: its caption and whether it shows the running picture.
  std::function<void(const std::string& caption, bool running)> ShowLogButton;
  // Timer4 at the given period; stopped with 0.
  std::function<void(int milliseconds)> SetTimer4;
  // A command to the receiver on MSComm1 (the link adds CR LF).
  std::function<void(const std::string& command)> SendToReceiver;
  // Whether the receiver's port is open: MSComm_Axis3 for the listen-only kinds, else MSComm1.
  std::function<bool()> PortOpen;
  // The panels changed (Label3, Label25(15), Label21).
  std::function<void()> PanelsChanged;
  // Present date and time for the records; tests fix it.
  std::function<WayClock()> Clock;
};

class GpsRecorder {
 public:
  GpsRecorder(SurveyContext& ctx, GpsState& gps, GnssSetup& setup, GpsPanels& panels)
      : ctx_(ctx), gps_(gps), setup_(setup), panels_(panels) {}

  GpsRecordState state;
  GpsRecordHooks hooks;

  // The rest of a position update after the grid position and its panels: marker,
  // view, stake-out guidance, distance trigger. The receiver's ContinuePositionUpdate.
  void ContinuePositionUpdate();
  // Timer4's tick: the time trigger.
  void Timer4Tick();
  // The recording button.
  void LogButton_Click();

  // Stores a record. Kind 1 a GPS record (point and WAY line), 3 a stake-out record
  // (point and GSTK line; the caller shows its message). Flag -1 asks for the point to
  // be added even when one was just added. False when no point was added.
  bool RecordObservation(int kind, int flag, double E, double N, double H);
  // The connecting line from the previous record of the route to E, N, H; and, when
  // the run has ended (`flag` true), the route's end and length label.
  void LinkRecord(double E, double N, double H, bool flag);

  // RecType (連續記錄設定): OK with the mode ("Time" or "Dist") and the interval text
  // as chosen or typed. False with the words shown when the text is not a positive number.
  bool RecTypeOk(const std::string& mode, const std::string& intervalText);
  // MainMnuRecord: back to manual recording.
  void SetManual();
  // Stopping reception presses the button first while a run is going.
  void StopReception();

  // CmdIh (天線高) and CmdRod (吃水深): ask and set. False when cancelled or refused.
  bool CmdIh();
  bool CmdRod();

  bool Running() const { return state.LogButtonCaption == kLogRunning; }

  // Combo choices of RecType.
  static const std::vector<double>& TimeChoices();
  static const std::vector<double>& DistanceChoices();

 private:
  void ShowCaption();
  void Shift();  // the three last points along
  WayClock Now() const;
  void StartRun();
  void EndRun();

  SurveyContext& ctx_;
  GpsState& gps_;
  GnssSetup& setup_;
  GpsPanels& panels_;
};

}  // namespace tavik
