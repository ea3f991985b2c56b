#include "procedures/user_dialog.h"

#include <cmath>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "geo/constants.h"
#include "procedures/observation_pipeline.h"
#include "procedures/reduction.h"

namespace tavik {
namespace {
std::string F3(double v) { return num::Format(v, "0.000"); }
bool Blank(const std::string& s) { return text::Trim(s).empty(); }
}  // namespace

UserDialogLogic::UserDialogLogic(SurveyContext& ctx) : ctx_(ctx) {}

bool UserDialogLogic::HeightsShown() const { return ctx_.doc.MapType != 2; }
bool UserDialogLogic::CommandStopVisible() const { return ctx_.inst.InstrumentKind != "Keyin"; }
std::string UserDialogLogic::MeasureCaption() const {
  return ctx_.inst.InstrumentKind == "Keyin" ? "手輸入" : "測量";
}

void UserDialogLogic::SetCheck2(bool on) {
  Check2 = on;
  if (on) {
    LabelBszEnabled = true;
    if (Blank(LabelBsz)) LabelBsz = F3(ctx_.doc.StationH);
    ZboxEnabled = false;
    Zbox.clear();
  } else {
    LabelBsz.clear();
    LabelBszEnabled = false;
    ZboxEnabled = true;
    Zbox = "100.000";
  }
}

bool UserDialogLogic::Refuse(const std::string& text, const std::string& focus) {
  ctx_.dialogs.MsgBox(text);
  Focus = focus;
  return false;
}

void UserDialogLogic::Measure() {
  if (ctx_.doc.MapType == 1) {
    if (Blank(Text7) || !num::ParseStrict(Text7)) return (void)Refuse("請輸入儀器高", "Text7");
    if (Blank(Text8) || !num::ParseStrict(Text8)) return (void)Refuse("請輸入覘標高", "Text8");
    if (Check2 && (Blank(LabelBsz) || !num::ParseStrict(LabelBsz)))
      return (void)Refuse("請輸入後視高程", "LabelBsz");
  }
  if (!num::ParseStrict(Xbox) || !num::ParseStrict(Ybox)) return (void)Refuse("請輸入測站座標", "Xbox");
  if (ctx_.inst.InstrumentKind == "Keyin") {
    ctx_.inst.AwaitStationShot = kTrue;
    if (ctx_.window.ShowKeyedObservation()) {
      ctx_.inst.AwaitStationShot = kFalse;
      MeasurementReceiver();
    }
    return;
  }
  if (ctx_.link.StartShot) ctx_.link.StartShot();
  ctx_.inst.AwaitStationShot = kTrue;
}

void UserDialogLogic::MeasurementReceiver() {
  hz_ = ctx_.inst.ObsHz;
  v_ = ctx_.inst.ObsV;
  slope_ = ctx_.inst.ObsSlope;
  haveShot_ = true;
  AzimuthEntered();
}

void UserDialogLogic::AzimuthEntered() {
  if (!haveShot_) return;
  stationE_ = num::ParseLenient(Xbox);
  stationN_ = num::ParseLenient(Ybox);
  instrumentHeight_ = num::ParseLenient(Text7);
  targetHeight_ = num::ParseLenient(Text8);
  azimuth_ = num::ParseLenient(Text4) / RadToDeg;

  // The computation starts from the reading kept when the answer arrived, not from
  // ObsHz: a first pass has already turned ObsHz into an azimuth, and starting again
  // from it would count the orientation twice. So an azimuth changed after the shot
  // gives the constant the surveyor means: the new azimuth minus the circle reading.
  orientation_ = azimuth_ - hz_;
  if (orientation_ < 0) orientation_ += TwoPi;
  double hz = orientation_ + hz_;
  if (TwoPi < hz) hz -= TwoPi;
  ctx_.inst.ObsHz = hz;
  const double elevation = ElevationOf(v_);
  PolarPoint(stationE_, stationN_, slope_, hz, elevation, backsightE_, backsightN_);
  if (ctx_.doc.MapType == 1) {
    if (Check2) {
      backsightH_ = num::ParseLenient(LabelBsz);
      stationH_ = targetHeight_ + backsightH_ - slope_ * std::sin(elevation) - instrumentHeight_;
      Zbox = F3(stationH_);
    } else {
      stationH_ = num::ParseLenient(Zbox);
      backsightH_ = stationH_ + instrumentHeight_ + slope_ * std::sin(elevation) - targetHeight_;
      LabelBsz = F3(backsightH_);
    }
    ctx_.window.DrawHeightText(backsightE_, backsightN_, F3(backsightH_));
  } else {
    backsightH_ = 0;
    stationH_ = 0;
  }
  LabelBsx = F3(backsightE_);
  LabelBsy = F3(backsightN_);
  Text4Enabled = false;
  Command2Visible = true;
  Focus = "OKButton";
}

void UserDialogLogic::CommandStop() {
  if (ctx_.link.Write) ctx_.link.Write(Channel::Set, std::string("\x12\r\n", 3));
  if (ctx_.link.Close) ctx_.link.Close(Channel::Set);
}

void UserDialogLogic::Command2() {
  LabelBsx.clear();
  LabelBsy.clear();
  if (!Check2) LabelBsz.clear();
  Text4Enabled = true;
  Command2Visible = false;
}

void UserDialogLogic::PickCoord(double E, double N) {
  Xbox = F3(E);
  Ybox = F3(N);
}

bool UserDialogLogic::OKButton() {
  Document& doc = ctx_.doc;
  const std::string stationName = text::UpperAscii(text::Trim(Text5));
  const std::string backsightName = text::UpperAscii(text::Trim(Text6));
  if (stationName.empty()) return Refuse("請輸入測站名", "Text5");
  if (backsightName.empty()) return Refuse("請輸入後視點名", "Text6");
  if (Blank(LabelBsx) || Blank(LabelBsy) || !haveShot_) return Refuse("需要後視座標", "Measure");
  if (doc.MapType == 1 && (Blank(Zbox) || Blank(LabelBsz))) return Refuse("高程值不完整", "Zbox");

  doc.StationName = stationName;
  doc.StationE = stationE_;
  doc.StationN = stationN_;
  doc.StationH = stationH_;
  doc.InstrumentHeight = doc.MapType == 1 ? instrumentHeight_ : 0;
  doc.TargetHeight = doc.MapType == 1 ? targetHeight_ : 0;
  doc.BacksightName = backsightName;
  doc.BacksightE = backsightE_;
  doc.BacksightN = backsightN_;
  doc.BacksightAzimuth = azimuth_;
  doc.OrientationConstant = orientation_;
  ctx_.survey.BacksightH = backsightH_;

  AddPoint(doc, ctx_.view, ctx_.work, stationE_, stationN_, stationH_);
  AddPoint(doc, ctx_.view, ctx_.work, backsightE_, backsightN_, backsightH_);
  AddEntity(doc, ctx_.view, ctx_.work, 113, KindPoint, stationE_, stationN_, stationH_, 0, 0, 0, 0, 0, 0,
            stationName);
  AddEntity(doc, ctx_.view, ctx_.work, 113, KindPoint, backsightE_, backsightN_, backsightH_, 0, 0, 0, 0, 0, 0,
            backsightName);
  WriteSetupRecords(ctx_, backsightName, backsightE_, backsightN_, backsightH_);
  ctx_.window.FitViewToExtent();
  doc.MapChanged = kTrue;
  ctx_.window.SafetySave();
  doc.StationSet = kTrue;
  ctx_.window.DrawStationMark(doc.StationE, doc.StationN);

  ctx_.window.SetText("Label41", std::to_string(doc.PointCount - doc.DeletedPointCount));
  ctx_.window.SetText("Label42", std::to_string(doc.EntityCount - doc.DeletedEntityCount));
  ctx_.window.SetText("StatusBar1(5)", "圖元 " + std::to_string(doc.EntityCount - doc.DeletedEntityCount));
  ctx_.window.SetText("StatusBar1(7)", "螢幕圖 " + std::to_string(doc.ScreenEntityCount - doc.DeletedEntityCount));
  ctx_.window.SetText("LabelStaName", stationName);
  ctx_.window.SetText("LabelTZ", F3(doc.TargetHeight));
  ctx_.window.SetText("LabelIH", F3(doc.InstrumentHeight));
  ctx_.window.SetText("LabelSZ", F3(doc.StationH));
  return true;
}

}  // namespace tavik
