#include "procedures/observation_pipeline.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "procedures/observation_log.h"
#include "procedures/reduction.h"

namespace tavik {
namespace {

std::string F3(double v) { return num::Format(v, "0.000"); }

// The target-height prompt. False when the point is to be abandoned: the prompt was
// cancelled or left empty, or the text is not a number.
bool AskTargetHeight(SurveyContext& ctx) {
  const std::string prompt =
      "(若不要高程,請輸入X)\r\n(若放棄本點,請按ESC或 [取消])\r\n輸入覘標高:";
  const std::optional<std::string> answer =
      ctx.dialogs.InputBox(prompt, "輸入覘標高", num::Plain(ctx.doc.TargetHeight));
  if (!answer || answer->empty()) return false;
  // Only "X" or "x" as typed means no height; anything else must be a number.
  if (*answer == "X" || *answer == "x") {
    ctx.doc.TargetHeight = NoTargetHeight;
  } else {
    const std::optional<double> v = num::ParseStrict(*answer);
    if (!v) return false;
    ctx.doc.TargetHeight = *v;
  }
  ctx.window.SetText("LabelTZ", F3(ctx.doc.TargetHeight));
  return true;
}

void ShowPointCounts(SurveyContext& ctx) {
  const std::string n = std::to_string(ctx.doc.PointCount - ctx.doc.DeletedPointCount);
  ctx.window.SetText("StatusBar1(4)", "測點 " + n);
  ctx.window.SetText("StatusBar1(6)",
                     "螢幕點 " + std::to_string(ctx.doc.ScreenPointCount - ctx.doc.DeletedPointCount));
}

}  // namespace

std::string LogNow(const SurveyContext& ctx) { return ctx.now ? ctx.now() : obslog::NowText(); }

void RecButton(SurveyContext& ctx) {
  if (!ctx.doc.IsOpen()) return;
  if (ctx.doc.StationSet == kFalse) {
    ctx.dialogs.MsgBox("請先設定測站位置");
    return;
  }
  ctx.inst.AwaitPointShot = kTrue;
  ctx.window.UnloadCadastralDialog();
  ctx.window.SetEnabled("RecButton", false);
  ctx.window.SetEnabled("CmdSTOP", true);
  if (ctx.inst.InstrumentKind == "Keyin") {
    if (ctx.window.ShowKeyedObservation()) {
      ctx.inst.AwaitPointShot = kFalse;
      ReducePoint(ctx);
    } else {
      // Closing the dialog is the keyed form of the stop command.
      ctx.window.SetText("OBSBox", "");
      ctx.window.SetEnabled("CmdSTOP", false);
      ctx.window.SetEnabled("RecButton", true);
    }
    return;
  }
  if (ctx.link.StartShot) ctx.link.StartShot();
}

bool FollowPoint(SurveyContext& ctx, double E, double N, double factor) {
  const View& v = ctx.view;
  if (v.InScreen(E, N)) return false;
  ctx.window.FitViewTo(std::min(v.ScreenMinE, E), std::min(v.ScreenMinN, N), std::max(v.ScreenMaxE, E),
                       std::max(v.ScreenMaxN, N), factor);
  return true;
}

void ReducePoint(SurveyContext& ctx) {
  Document& doc = ctx.doc;
  InstrumentState& inst = ctx.inst;
  SurveyState& s = ctx.survey;
  ctx.window.SetEnabled("CmdSTOP", false);
  ctx.window.SetEnabled("RecButton", true);
  if (inst.ObsSlope <= 0) {
    ctx.window.SetText("OBSBox", "錯誤!!沒有距離值");
    return;
  }
  if (doc.MapType == 1 && !AskTargetHeight(ctx)) return;

  s.PrevE = s.LastE;
  s.PrevN = s.LastN;
  s.PrevH = s.LastH;
  FaceAndOrient(inst.ObsHz, inst.ObsV, doc.OrientationConstant);
  PolarPoint(doc.StationE, doc.StationN, inst.ObsSlope, inst.ObsHz, inst.ObsV, s.LastE, s.LastN);
  if (doc.MapType == 1) {
    s.LastH = doc.TargetHeight == NoTargetHeight
                  ? NoHeight
                  : doc.InstrumentHeight + doc.StationH + inst.ObsSlope * std::sin(inst.ObsV) - doc.TargetHeight;
    ctx.window.DrawHeightText(s.LastE, s.LastN, F3(s.LastH));
  } else {
    s.LastH = 0;
  }
  ctx.window.SetText("Label1XY(0)", F3(s.LastE));
  ctx.window.SetText("Label1XY(1)", F3(s.LastN));
  ctx.window.SetText("LabelHZ", F3(s.LastH));
  s.PointAdded = kFalse;
  FollowPoint(ctx, s.LastE, s.LastN, 1.05);
  ctx.window.StopBlink();
  ctx.window.StartBlink(s.LastE, s.LastN);

  std::string name;
  s.CadastralChoice = ctx.window.ShowCadastralDialog(name);
  s.CadastralPointName = s.CadastralChoice == 1 ? name : "";
  if (s.CadastralChoice == 0) {
    ctx.window.StopBlink();
    return;
  }
  AddSurveyPoint(ctx, 1, true, s.LastE, s.LastN, s.LastH);

  for (int i = 2; i > 0; --i) {
    s.PointHistoryE[i] = s.PointHistoryE[i - 1];
    s.PointHistoryN[i] = s.PointHistoryN[i - 1];
    s.PointHistoryH[i] = s.PointHistoryH[i - 1];
  }
  s.PointHistoryE[0] = s.LastE;
  s.PointHistoryN[0] = s.LastN;
  s.PointHistoryH[0] = s.LastH;
  std::fill(std::begin(s.PointHistoryFlags), std::end(s.PointHistoryFlags), int16_t{0});

  const std::string n = std::to_string(doc.PointCount - doc.DeletedPointCount);
  ctx.window.SetText("Label41", n);
  ctx.window.SetText("StatusBar1(4)", "測點 " + n);
  ctx.window.Refresh();
  if (s.PointHistoryE[1] != 0 && s.PointHistoryN[1] != 0 && s.AutoLink != kFalse) {
    ctx.window.LinkPoints(s.PointHistoryE[1], s.PointHistoryN[1], s.PointHistoryH[1], s.PointHistoryE[0],
                          s.PointHistoryN[0], s.PointHistoryH[0]);
  }
  ctx.window.PointStored();
}

void AddSurveyPoint(SurveyContext& ctx, int kind, bool drawMark, double E, double N, double H) {
  Document& doc = ctx.doc;
  InstrumentState& inst = ctx.inst;
  SurveyState& s = ctx.survey;
  if (s.PointAdded != kFalse) {
    ShowPointCounts(ctx);
    return;
  }
  if (drawMark) ctx.window.DrawPointMark(doc.PointCount + 1, E, N);
  AddPoint(doc, ctx.view, ctx.work, E, N, H);

  if (inst.MeasureMode == "TS" && kind == 1) {
    obslog::AppendLine(doc.ObsPath, obslog::ObservationLine(inst.ObsHzRaw, inst.ObsVRaw, inst.ObsSlope,
                                                            doc.TargetHeight, LogNow(ctx)));
    const std::string name = text::Trim(s.CadastralPointName);
    if (s.CadastralChoice == 1) {
      ++doc.SerialCounter;
      const int32_t turned = TurnedAnglePacked(inst.ObsHzRaw, doc.OrientationConstant, doc.BacksightAzimuth);
      obslog::AppendLine(doc.MacPath, obslog::MacShotLine(name, turned, inst.ObsVRaw, inst.ObsSlope));
      AddEntity(doc, ctx.view, ctx.work, CodeNamedPoint, KindPoint, E, N, H, 0, 0, 0, 0, 0, 0, name);
    }
    ctx.window.DrawSymbol(CodeNamedPoint, E, N, H, name);
  }
  if (inst.MeasureMode == "TS" && kind == 2) {
    obslog::StakeRecord r;
    r.TargetName = s.StakeTargetName;
    r.E = E;
    r.N = N;
    r.H = H;
    r.StationName = doc.StationName;
    r.StationE = doc.StationE;
    r.StationN = doc.StationN;
    r.StationH = doc.StationH;
    r.InstrumentHeight = doc.InstrumentHeight;
    r.BacksightName = doc.BacksightName;
    r.BacksightE = doc.BacksightE;
    r.BacksightN = doc.BacksightN;
    r.HzRaw = inst.ObsHzRaw;
    r.VRaw = inst.ObsVRaw;
    r.Slope = inst.ObsSlope;
    r.TargetHeight = doc.TargetHeight;
    obslog::AppendLine(doc.StkPath, obslog::StakeLine(r));
    ctx.dialogs.MsgBox(s.StakeTargetName + "的觀測資料,己存入" + doc.StkPath + "檔中");
  }
  s.StoredLastE = E;
  s.StoredLastN = N;
  s.StoredLastH = H;
  doc.MapChanged = kTrue;
  ctx.window.SafetySave();
  s.PointAdded = kTrue;
  s.CurrentLegendActive = kFalse;
  ShowPointCounts(ctx);
}

void WriteSetupRecords(SurveyContext& ctx, const std::string& backsightName, double backsightE,
                       double backsightN, double backsightH, MacStation mac) {
  const Document& doc = ctx.doc;
  const InstrumentState& inst = ctx.inst;
  obslog::AppendLine(doc.ObsPath, obslog::SetupMarkLine(LogNow(ctx)));
  obslog::AppendLine(doc.ObsPath, obslog::StationLine(doc.StationName, doc.StationE, doc.StationN, doc.StationH,
                                                      doc.InstrumentHeight));
  obslog::AppendLine(doc.ObsPath, obslog::BacksightLine(backsightName, backsightE, backsightN, backsightH,
                                                        inst.ObsHzRaw, inst.ObsVRaw, inst.ObsSlope));
  if (mac == MacStation::Always || inst.MeasureMode == "TS")
    obslog::AppendLine(doc.MacPath, obslog::MacStationLine(doc.StationName, backsightName));
}

}  // namespace tavik
