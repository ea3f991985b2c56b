#include "procedures/fit_dialog.h"

#include <cmath>

#include "core/text.h"
#include "geo/angles.h"
#include "geo/constants.h"
#include "geo/pick.h"
#include "instruments/decoders.h"
#include "procedures/keyed_observation.h"
#include "procedures/observation_pipeline.h"
#include "procedures/reduction.h"

namespace tavik {
namespace {
std::string F3(double v) { return num::Format(v, "0.000"); }
bool IsGts(const std::string& kind) { return kind == "GTS22X" || kind == "GTS211D"; }
}  // namespace

FitDialogLogic::FitDialogLogic(SurveyContext& ctx) : ctx_(ctx) {
  const Document& doc = ctx.doc;
  Combo1 = ControlPointNames(doc);
  Combo2 = Combo1;
  Text4 = num::Plain(doc.InstrumentHeight);
  Text3 = num::Plain(doc.TargetHeight);
  saved_.set = doc.StationSet != kFalse;
  saved_.StationSet = doc.StationSet;
  saved_.StationName = doc.StationName;
  saved_.StationE = doc.StationE;
  saved_.StationN = doc.StationN;
  saved_.StationH = doc.StationH;
  saved_.BacksightName = doc.BacksightName;
  saved_.BacksightE = doc.BacksightE;
  saved_.BacksightN = doc.BacksightN;
  saved_.BacksightH = ctx.survey.BacksightH;
  saved_.BacksightAzimuth = doc.BacksightAzimuth;
  saved_.OrientationConstant = doc.OrientationConstant;
  saved_.InstrumentHeight = doc.InstrumentHeight;
  saved_.TargetHeight = doc.TargetHeight;
}

bool FitDialogLogic::HeightsShown() const { return ctx_.doc.MapType != 2; }
bool FitDialogLogic::MeasureButtonsEnabled() const { return ctx_.inst.InstrumentKind != "Keyin"; }
bool FitDialogLogic::Command5Visible() const { return IsGts(ctx_.inst.InstrumentKind); }

bool FitDialogLogic::ChooseStation(const std::string& name) {
  Document& doc = ctx_.doc;
  const std::optional<NamedPoint> p = FindNamedPoint(doc, name);
  if (!p) return false;
  if (backsightChosen_ && p->Name == text::Trim(doc.BacksightName)) {
    ctx_.dialogs.MsgBox("測站和後視同一點", "錯誤!");
    return false;
  }
  doc.StationName = p->Name;
  doc.StationE = p->E;
  doc.StationN = p->N;
  if (doc.MapType == 1) doc.StationH = p->H;
  stationChosen_ = true;
  Text5Red = false;
  Text5.clear();
  if (doc.MapType == 1 && p->H == 0) {
    Text5 = "測站" + p->Name + "的高程為0";
    Text5Red = true;
  }
  ctx_.window.DrawStationMark(doc.StationE, doc.StationN);
  AfterChoice();
  return true;
}

bool FitDialogLogic::ChooseBacksight(const std::string& name) {
  Document& doc = ctx_.doc;
  const std::optional<NamedPoint> p = FindNamedPoint(doc, name);
  if (!p) return false;
  if (stationChosen_ && p->Name == text::Trim(doc.StationName)) {
    ctx_.dialogs.MsgBox("測站和後視同一點", "錯誤!");
    return false;
  }
  doc.BacksightName = p->Name;
  doc.BacksightE = p->E;
  doc.BacksightN = p->N;
  ctx_.survey.BacksightH = doc.MapType == 1 ? p->H : 0;
  backsightChosen_ = true;
  AfterChoice();
  return true;
}

void FitDialogLogic::AfterChoice() {
  if (!stationChosen_ || !backsightChosen_) return;
  const Document& doc = ctx_.doc;
  const double dE = doc.BacksightE - doc.StationE, dN = doc.BacksightN - doc.StationN;
  const double d = std::sqrt(dE * dE + dN * dN);
  Label9 = F3(d);
  if (d < 0.1) ctx_.dialogs.MsgBox("兩點距離有問題!", "警告");
}

bool FitDialogLogic::PickFit(double X, double Y, bool backsight) {
  const Document& doc = ctx_.doc;
  for (const Entity& e : doc.ScreenEntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint) continue;
    if (!PickBoxTest(ctx_.view, doc.ScaleDenominator, X, Y, 20, e.X[0], e.Y[0])) continue;
    const std::string name = text::Trim(e.Name);
    if (name.empty()) {
      ctx_.dialogs.MsgBox(backsight ? "後視點要有點名,請先把該點註記為控制點" : "測站要有點名");
      return false;
    }
    const std::string other = backsight ? (stationChosen_ ? text::Trim(doc.StationName) : "")
                                        : (backsightChosen_ ? text::Trim(doc.BacksightName) : "");
    if (name == other) {
      ctx_.dialogs.MsgBox("兩點不可以是同一點", "錯誤");
      return false;
    }
    return backsight ? ChooseBacksight(name) : ChooseStation(name);
  }
  return false;
}

bool FitDialogLogic::NamesChosen() {
  if (!stationChosen_) {
    ctx_.dialogs.MsgBox("請指定測站");
    return false;
  }
  if (!backsightChosen_) {
    ctx_.dialogs.MsgBox("請指定後視點");
    return false;
  }
  return true;
}

bool FitDialogLogic::ReadyToMeasure() {
  if (!NamesChosen()) return false;
  Document& doc = ctx_.doc;
  if (doc.MapType == 1) {
    const std::optional<double> ih = num::ParseStrict(Text4);
    if (!ih) {
      ctx_.dialogs.MsgBox("請輸入儀器高");
      Focus = "Text4";
      return false;
    }
    const std::optional<double> th = num::ParseStrict(Text3);
    if (!th) {
      ctx_.dialogs.MsgBox("請輸入覘標高");
      Focus = "Text3";
      return false;
    }
    doc.InstrumentHeight = *ih;
    doc.TargetHeight = *th;
  }
  return true;
}

double FitDialogLogic::PairAzimuthNow() const {
  const Document& doc = ctx_.doc;
  return PairAzimuth(doc.BacksightE - doc.StationE, doc.BacksightN - doc.StationN);
}

void FitDialogLogic::Command3() {
  if (!MeasureButtonsEnabled() || !ReadyToMeasure()) return;
  if (ctx_.link.StartShot) ctx_.link.StartShot();
  ctx_.inst.AwaitFitShot = kTrue;
}

void FitDialogLogic::Command4() {
  if (!MeasureButtonsEnabled() || !ReadyToMeasure()) return;
  if (ctx_.link.Send) ctx_.link.Send(Request::AngleOnly);
  if (FamilyOf(ctx_.inst.InstrumentKind) == Family::Topcon) Command5Enabled = true;
  ctx_.inst.AwaitFitAngle = kTrue;
}

void FitDialogLogic::Command5() {
  if (!Command5Enabled || !ctx_.link.Write) return;
  ctx_.link.Write(Channel::Top, std::string("C067\x03\r\n", 7));
}

void FitDialogLogic::DistanceReceiver() {
  Document& doc = ctx_.doc;
  const InstrumentState& inst = ctx_.inst;
  double oc = PairAzimuthNow() - inst.ObsHz;
  if (oc < 0) oc += TwoPi;
  doc.OrientationConstant = oc;
  const double elevation = ElevationOf(inst.ObsV);
  DistanceRed = std::fabs(inst.ObsSlope - referenceDistance_) > 0.06;
  Label8Visible = true;
  Label10 = num::Format(inst.ObsSlope * std::cos(elevation), "0.000平");
  Label13 = num::Format(inst.ObsSlope, "0.000斜");
  haveObservation_ = true;
  Focus = "OKButton";
}

void FitDialogLogic::AngleReceiver() {
  Document& doc = ctx_.doc;
  doc.BacksightAzimuth = PairAzimuthNow();
  double oc = doc.BacksightAzimuth - ctx_.inst.ObsHz;
  if (oc < 0) oc += TwoPi;
  doc.OrientationConstant = oc;
  Text5 = ctx_.link.Label29 ? ctx_.link.Label29() : RawAngleText(ctx_.inst.ObsHzRaw);
  Text5Red = false;
  haveObservation_ = true;
}

void FitDialogLogic::Command6() {
  if (!NamesChosen()) return;
  const std::optional<std::string> answer =
      ctx_.dialogs.InputBox("10度20分30秒,請輸入102030", "手輸入角度", "000000");
  if (!answer || text::Trim(*answer).empty()) return;
  const std::optional<double> packed = ReadPackedAngle(*answer);
  if (!packed) {
    ctx_.dialogs.MsgBox("10度20分30秒,請輸入102030", "手輸入角度");
    return;
  }
  // The typed reading stands in ObsHz only: the raw values stay those of the last
  // answer, and the Backsight record carries them.
  InstrumentState& inst = ctx_.inst;
  inst.ObsHz = PackedToRadians(*packed);
  inst.ObsV = 0;
  AngleReceiver();
  Text5 = text::Trim(*answer);
}

bool FitDialogLogic::OKButton() {
  Document& doc = ctx_.doc;
  if (!stationChosen_) {
    Text5 = "尚未指定測站";
    Text5Red = true;
    return false;
  }
  if (!backsightChosen_) {
    Text5 = "沒有指定後視";
    Text5Red = true;
    return false;
  }
  if (!haveObservation_) {
    Text5 = "角度或距離至少要有一個";
    Text5Red = true;
    return false;
  }
  if (doc.MapType == 1) {
    // Heights typed after the shot still count.
    if (const auto ih = num::ParseStrict(Text4)) doc.InstrumentHeight = *ih;
    if (const auto th = num::ParseStrict(Text3)) doc.TargetHeight = *th;
  }
  WriteSetupRecords(ctx_, doc.BacksightName, doc.BacksightE, doc.BacksightN, ctx_.survey.BacksightH,
                    MacStation::Always);
  doc.StationSet = kTrue;
  doc.MapChanged = kTrue;
  ctx_.window.SafetySave();
  ctx_.window.SetText("LabelStaName", doc.StationName);
  if (IsGts(ctx_.inst.InstrumentKind) && ctx_.link.Write)
    ctx_.link.Write(Channel::Top, std::string("Z32091\x03\r\n", 9));
  ctx_.window.Refresh();
  return true;
}

void FitDialogLogic::CancelButton() {
  Document& doc = ctx_.doc;
  doc.StationSet = saved_.StationSet;
  doc.StationName = saved_.StationName;
  doc.StationE = saved_.StationE;
  doc.StationN = saved_.StationN;
  doc.StationH = saved_.StationH;
  doc.BacksightName = saved_.BacksightName;
  doc.BacksightE = saved_.BacksightE;
  doc.BacksightN = saved_.BacksightN;
  ctx_.survey.BacksightH = saved_.BacksightH;
  doc.BacksightAzimuth = saved_.BacksightAzimuth;
  doc.OrientationConstant = saved_.OrientationConstant;
  doc.InstrumentHeight = saved_.InstrumentHeight;
  doc.TargetHeight = saved_.TargetHeight;
  ctx_.inst.AwaitFitShot = kFalse;
  ctx_.inst.AwaitFitAngle = kFalse;
  if (saved_.set) {
    ctx_.window.DrawStationMark(doc.StationE, doc.StationN);
  } else {
    ctx_.window.RedrawAll();
  }
}

}  // namespace tavik
