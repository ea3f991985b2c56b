#include "procedures/gps_recording.h"

#include <algorithm>
#include <cmath>
#include <ctime>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "geo/azimuth.h"
#include "procedures/observation_log.h"
#include "procedures/observation_pipeline.h"
#include "view/transform.h"

namespace tavik {
namespace {

constexpr double kPi = 3.14159265358979;

std::string F3(double v) { return num::Format(v, "0.000"); }

std::string Last(const std::string& s, std::size_t n) {
  // Dates and times are ASCII; the tail is taken by bytes.
  return s.size() <= n ? s : s.substr(s.size() - n);
}

double Distance(double E1, double N1, double E2, double N2) {
  const double dE = E2 - E1, dN = N2 - N1;
  return std::sqrt(dE * dE + dN * dN);
}

bool ListenOnly(const GnssSetup& setup) { return ListenOnlyKind(setup.GpsReceiverKind); }

}  // namespace

std::string ContinuousCaption(const std::string& mode, double interval) {
  return std::string("連續記錄") + ",每" + num::Plain(interval) + (mode == "Dist" ? "公尺" : "秒");
}

std::string WayLine(const GpsState& gps, const Document& doc, const std::string& label21_0,
                    const std::string& combo3, double E, double N, const WayClock& clock) {
  std::string reference = text::Trim(combo3);
  if (combo3 == "距某點") reference.clear();
  std::string s;
  s.reserve(200);
  auto add = [&](const std::string& field) {
    s += field;
    s += ',';
  };
  add(Last(clock.Date, 10));
  add(Last(clock.Time, 8));
  add(std::to_string(gps.GpsWeek));
  add(num::Plain(gps.GpsSeconds));
  add(F3(E));
  add(F3(N));
  add(F3(gps.GpsHeight));
  add(F3(gps.GpsSigmaE));
  add(F3(gps.GpsSigmaN));
  add(F3(gps.GpsSigmaH));
  add(F3(gps.GpsGround));
  add(num::Plain(doc.InstrumentHeight));
  add(num::Plain(doc.TargetHeight));
  add(num::Plain(gps.SounderDepth));
  add(num::Plain(gps.SounderDepth2));
  add(num::Plain(gps.Heave));
  add(num::Plain(gps.Roll));
  add(num::Plain(gps.Pitch));
  add(label21_0);
  // With no reference the line ends with the comma before the empty field 20.
  if (!reference.empty()) {
    s += reference;
    s += ',';
    s += F3(Distance(doc.StationE, doc.StationN, E, N));
  }
  return s;
}

std::string GstkLine(const GpsState& gps, const std::string& stakeName, double stakeX, double stakeY,
                     const WayClock& clock) {
  return stakeName + "," + F3(gps.GpsX) + "," + F3(gps.GpsY) + "," + F3(gps.GpsGround) + "," +
         num::Plain(gps.GpsSigmaE) + "," + num::Plain(gps.GpsSigmaN) + "," + num::Plain(gps.GpsSigmaH) + "," +
         Last(clock.Date, 10) + "," + Last(clock.Time, 8) + "," + F3(gps.GpsX - stakeX) + "," +
         F3(gps.GpsY - stakeY);
}

const std::vector<double>& GpsRecorder::TimeChoices() {
  static const std::vector<double> v{1, 2, 3, 5, 10, 15};
  return v;
}
const std::vector<double>& GpsRecorder::DistanceChoices() {
  static const std::vector<double> v{1, 2, 3, 5, 10, 20};
  return v;
}

WayClock GpsRecorder::Now() const {
  if (hooks.Clock) return hooks.Clock();
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char d[32], h[32];
  std::strftime(d, sizeof d, "%Y/%m/%d", &tm);
  std::strftime(h, sizeof h, "%H:%M:%S", &tm);
  return {d, h};
}

void GpsRecorder::ShowCaption() {
  if (hooks.ShowLogButton) hooks.ShowLogButton(state.LogButtonCaption, Running());
}

// ---------------------------------------------------------------------------------------
// The position update after the grid position

void GpsRecorder::ContinuePositionUpdate() {
  Document& doc = ctx_.doc;
  View& view = ctx_.view;
  const double E = gps_.GpsX, N = gps_.GpsY;
  state.MarkerDrawn = true;

  if (doc.IsOpen()) {
    auto redraw = [&] {
      if (hooks.ViewChanged) hooks.ViewChanged();
      if (!gps_.StakeName.empty() && hooks.DrawStakeMarks) hooks.DrawStakeMarks();
    };
    // Keep the rover on the map: widen the view to take it in, or shift the view onto
    // it at the same scale; or, when the map moves under a fixed vehicle, leave it.
    const bool off = !view.InScreen(E, N);
    if (off && gps_.OffScreenShift == kFalse && gps_.MoveMap == kFalse) {
      const double minE = std::min(view.ScreenMinE, E), maxE = std::max(view.ScreenMaxE, E);
      const double minN = std::min(view.ScreenMinN, N), maxN = std::max(view.ScreenMaxN, N);
      view::FitScale(doc, view, minE, minN, maxE, maxN);
      doc.ScaleDenominator *= 1.05;
      doc.ViewCentreE = (minE + maxE) / 2;
      doc.ViewCentreN = (minN + maxN) / 2;
      redraw();
    }
    if (off && gps_.OffScreenShift != kFalse) {
      doc.ViewCentreE = E;
      doc.ViewCentreN = N;
      redraw();
    }
    // During a GPS stake-out both the rover and the target stay in sight as they approach.
    // Before a target is chosen its position is 0, 0, which is no place to zoom out to.
    if (gps_.StakeActive != kFalse && !gps_.StakeName.empty()) {
      const double d = Distance(gps_.StakeX, gps_.StakeY, E, N);
      const double w = view.ScreenMaxE - view.ScreenMinE, h = view.ScreenMaxN - view.ScreenMinN;
      if (!view.InScreen(gps_.StakeX, gps_.StakeY) || !(d < 0.75 * w && d < 0.75 * h)) {
        const double minE = std::min(gps_.StakeX, E), maxE = std::max(gps_.StakeX, E);
        const double minN = std::min(gps_.StakeY, N), maxN = std::max(gps_.StakeY, N);
        view::FitScale(doc, view, minE, minN, maxE, maxN);
        doc.ScaleDenominator = std::max(1.0, doc.ScaleDenominator * 1.05);
        doc.ViewCentreE = (minE + maxE) / 2;
        doc.ViewCentreN = (minN + maxN) / 2;
        redraw();
      }
    }
    // Without a heading from the receiver the marker points along the course made good.
    double heading = gps_.GpsHeading;
    if (heading == 0) {
      double dist = 0;
      AzimuthDistance(gps_.GpsPrevX, gps_.GpsPrevY, E, N, dist, heading);
      panels_.Label25[15] = num::Format(heading * 180 / kPi, "0.00") + "度";
      if (hooks.PanelsChanged) hooks.PanelsChanged();
    }
    if (hooks.DrawMarker) hooks.DrawMarker(E, N, state.PlainMarker != kFalse, heading);
    if (!gps_.StakeName.empty() && hooks.StakeRefresh) hooks.StakeRefresh();
  }

  // The distance trigger, measured from the last record so that slow drift adds up.
  if (state.RecordMode == "Dist" && Running()) {
    if (state.DistPrevX == 0 && state.DistPrevY == 0) {
      RecordObservation(1, -1, E, N, gps_.GpsGround);
      if (state.LinkPoints != kFalse) LinkRecord(E, N, gps_.GpsGround, false);
    } else if (Distance(gps_.LastRecordedX, gps_.LastRecordedY, E, N) > state.RecordInterval) {
      RecordObservation(1, -1, E, N, gps_.GpsGround);
      if (state.LinkPoints != kFalse) LinkRecord(E, N, gps_.GpsGround, false);
      gps_.LastRecordedX = E;
      gps_.LastRecordedY = N;
    }
    state.DistPrevX = E;
    state.DistPrevY = N;
  } else if (state.DistPrevX != 0 || state.DistPrevY != 0) {
    gps_.LastRecordedX = gps_.LastRecordedY = 0;
    state.DistPrevX = state.DistPrevY = 0;
  }
}

void GpsRecorder::Timer4Tick() {
  if (gps_.GpsX == 0 || gps_.GpsY == 0 || gps_.GpsHeight == 0) return;
  // The time trigger stores the receiver's height, the distance trigger the ground.
  RecordObservation(1, -1, gps_.GpsX, gps_.GpsY, gps_.GpsHeight);
  if (state.LinkPoints != kFalse) LinkRecord(gps_.GpsX, gps_.GpsY, gps_.GpsHeight, false);
  gps_.LastRecordedX = gps_.GpsX;
  gps_.LastRecordedY = gps_.GpsY;
}

// ---------------------------------------------------------------------------------------
// Records

bool GpsRecorder::RecordObservation(int kind, int flag, double E, double N, double H) {
  SurveyState& s = ctx_.survey;
  if (flag == -1) s.PointAdded = kFalse;
  if (s.PointAdded != kFalse) {
    AddSurveyPoint(ctx_, kind, true, E, N, H);  // adds nothing; shows the counts
    return false;
  }
  AddSurveyPoint(ctx_, kind, true, E, N, H);
  const WayClock clock = Now();
  if (kind == 1) {
    obslog::AppendLine(ctx_.doc.WayPath,
                       WayLine(gps_, ctx_.doc, panels_.Label21[0], state.Combo3, E, N, clock));
    // A depth is written once: the next record has 0 unless the sounder spoke again.
    gps_.SounderDepth = 0;
    gps_.SounderDepth2 = 0;
  } else if (kind == 3) {
    obslog::AppendLine(ctx_.doc.GstkPath, GstkLine(gps_, gps_.StakeName, gps_.StakeX, gps_.StakeY, clock));
  }
  gps_.LastRecordedX = E;
  gps_.LastRecordedY = N;
  return true;
}

void GpsRecorder::LinkRecord(double E, double N, double H, bool flag) {
  Document& doc = ctx_.doc;
  auto addEntity = [&](int16_t kind, double X1, double Y1, double Z1, double X2, double Y2, double Z2,
                       const std::string& name) {
    AddEntity(doc, ctx_.view, ctx_.work, CodeRoute, kind, X1, Y1, Z1, X2, Y2, Z2, 0, 0, 0, name);
    doc.MapChanged = kTrue;
    if (hooks.DrawEntity) hooks.DrawEntity(doc.EntityTable.size() - 1);
  };
  auto& route = state.Route;
  if (route.empty()) {
    addEntity(KindPoint, E, N, H, 0, 0, 0, state.RouteName + "BP");
  } else {
    const auto& p = route.back();
    // A record at the previous point (the last record repeated at the end of a run)
    // makes no segment of zero length.
    if (p.E != E || p.N != N) {
      addEntity(KindLine, p.E, p.N, p.H, E, N, H, state.RouteName + "MP");
      state.RouteLength += Distance(p.E, p.N, E, N);
    }
  }
  route.push_back({E, N, H});
  if (!flag) return;
  addEntity(KindPoint, E, N, H, 0, 0, 0, state.RouteName + "EP");
  if (state.LabelDistance != kFalse) {
    const std::string label = "DI" + F3(state.RouteLength);
    addEntity(KindPoint, E, N, H, 0, 0, 0, label);
    if (hooks.DrawLabel) hooks.DrawLabel(E, N, F3(state.RouteLength));
  }
  route.clear();
  state.RouteLength = 0;
  state.RouteName.clear();
}

void GpsRecorder::Shift() {
  SurveyState& s = ctx_.survey;
  for (int i = 2; i > 0; --i) {
    s.PointHistoryE[i] = s.PointHistoryE[i - 1];
    s.PointHistoryN[i] = s.PointHistoryN[i - 1];
    s.PointHistoryH[i] = s.PointHistoryH[i - 1];
  }
  s.PointHistoryE[0] = gps_.GpsX;
  s.PointHistoryN[0] = gps_.GpsY;
  s.PointHistoryH[0] = gps_.GpsGround;
  std::fill(std::begin(s.PointHistoryFlags), std::end(s.PointHistoryFlags), int16_t{0});
}

// ---------------------------------------------------------------------------------------
// The button and its settings

bool GpsRecorder::CmdIh() {
  const std::optional<std::string> a =
      ctx_.dialogs.InputBox("請輸入天線高", "天線高", num::Plain(ctx_.doc.InstrumentHeight));
  if (!a || a->empty()) return false;
  const std::optional<double> v = num::ParseStrict(*a);
  if (!v) return false;
  if (*v < 0) {
    ctx_.dialogs.MsgBox("天線高不得為負值");
    return false;
  }
  ctx_.doc.InstrumentHeight = *v;
  ctx_.doc.MapChanged = kTrue;
  ctx_.window.SetText("LabelIH", F3(*v));
  return true;
}

bool GpsRecorder::CmdRod() {
  const std::optional<std::string> a =
      ctx_.dialogs.InputBox("請輸入吃水深", "吃水深", num::Plain(ctx_.doc.TargetHeight));
  if (!a || a->empty()) return false;
  const std::optional<double> v = num::ParseStrict(*a);
  if (!v) return false;
  ctx_.doc.TargetHeight = *v;
  ctx_.doc.MapChanged = kTrue;
  ctx_.window.SetText("LabelTZ", F3(*v));
  return true;
}

bool GpsRecorder::RecTypeOk(const std::string& mode, const std::string& intervalText) {
  const std::optional<double> v = num::ParseStrict(intervalText);
  if (!v || !(*v > 0) || !std::isfinite(*v)) {
    ctx_.dialogs.MsgBox("請輸入大於0的數值");
    return false;
  }
  state.RecordMode = mode == "Dist" ? "Dist" : "Time";
  state.RecordInterval = *v;
  state.LogButtonCaption = ContinuousCaption(state.RecordMode, state.RecordInterval);
  ShowCaption();
  return true;
}

void GpsRecorder::SetManual() {
  if (Running()) LogButton_Click();
  state.RecordMode.clear();
  state.LogButtonCaption = kLogManual;
  ShowCaption();
}

void GpsRecorder::StopReception() {
  if (Running()) LogButton_Click();
}

void GpsRecorder::StartRun() {
  const std::string& kind = setup_.GpsReceiverKind;
  if (state.RecordMode == "Time") {
    if (state.RecordInterval < 1 && ctx_.inst.MeasureMode == "GPS" && hooks.SendToReceiver) {
      const std::string t = num::Plain(state.RecordInterval);
      if (kind == "DL-RT2") hooks.SendToReceiver("log com1,prtka,ondatetime.time," + t);
      if (kind == "DL-4" || kind == "Flexpak" || kind == "PP7") hooks.SendToReceiver("log com1 bestposa ontime " + t);
    }
    if (hooks.SetTimer4) hooks.SetTimer4(static_cast<int>(std::lround(state.RecordInterval * 1000)));
    state.Timer4Running = true;
  }
  state.LogButtonCaption = kLogRunning;
  ShowCaption();
}

void GpsRecorder::EndRun() {
  const std::string& kind = setup_.GpsReceiverKind;
  if (state.RecordMode == "Time") {
    if (hooks.SetTimer4) hooks.SetTimer4(0);
    state.Timer4Running = false;
    if (hooks.SendToReceiver) {
      if (kind == "DL-RT2") hooks.SendToReceiver("log com1,PRTKA,ondatetime.time,1");
      if (kind == "DL-4" || kind == "Flexpak" || kind == "PP7") hooks.SendToReceiver("log com1,BESTPOSA,ontime 1");
    }
  }
  state.LogButtonCaption = ContinuousCaption(state.RecordMode, state.RecordInterval);
  ShowCaption();
  if (state.LinkPoints != kFalse && gps_.GpsX != 0 && gps_.GpsY != 0 && gps_.GpsGround != 0) {
    if (gps_.LastRecordedX == gps_.GpsX && gps_.LastRecordedY == gps_.GpsY)
      RecordObservation(1, -1, gps_.GpsX, gps_.GpsY, gps_.GpsGround);
    LinkRecord(gps_.GpsX, gps_.GpsY, gps_.GpsGround, true);
  }
  ctx_.survey.PointAdded = kTrue;
}

void GpsRecorder::LogButton_Click() {
  Document& doc = ctx_.doc;
  if (!doc.IsOpen()) {
    ctx_.dialogs.MsgBox("請先開圖!");
    return;
  }
  if (setup_.SounderKind != "CEEECHO" && !(hooks.PortOpen && hooks.PortOpen())) {
    ctx_.dialogs.MsgBox("請先按[連接GPS]鈕");
    return;
  }
  if (setup_.GpsStopped != 0) return;
  // Stopping a run asks nothing.
  if (Running()) {
    EndRun();
    return;
  }
  if (!ListenOnly(setup_) && doc.InstrumentHeight == 0) CmdIh();
  if (!setup_.SounderKind.empty() && doc.TargetHeight == 0) {
    CmdRod();
    if (doc.TargetHeight == 0) return;
  }
  if (state.RecordMode.empty()) {
    // A record needs a position: with none yet the press records nothing.
    if (gps_.GpsX == 0 && gps_.GpsY == 0) return;
    RecordObservation(1, -1, gps_.GpsX, gps_.GpsY, gps_.GpsGround);
    Shift();
    return;
  }
  if (state.LabelRoute != kFalse) {
    const std::optional<std::string> a = ctx_.dialogs.InputBox("輸入路線名稱:", "路線名稱", "");
    state.RouteName = a ? text::UpperAscii(*a) : std::string();
    if (state.RouteName.empty()) {
      state.LabelRoute = kFalse;
    } else if (hooks.DrawLabel) {
      hooks.DrawLabel(gps_.GpsX, gps_.GpsY, state.RouteName);
    }
  }
  state.Route.clear();
  state.RouteLength = 0;
  StartRun();
}

}  // namespace tavik
