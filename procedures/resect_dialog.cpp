#include "procedures/resect_dialog.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "geo/angles.h"
#include "geo/constants.h"
#include "geo/pick.h"
#include "procedures/control_points.h"
#include "procedures/dialog_port.h"
#include "procedures/observation_log.h"
#include "procedures/observation_pipeline.h"

namespace tavik {
namespace {

std::string F3(double v) { return num::Format(v, "0.000"); }

// A reading as the quoted book writes it: degrees, minutes "00", seconds "00.0" run
// together.
std::string ReadingText(double radians) {
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(radians, d, m, s);
  return std::to_string(d) + num::Format(m, "00") + num::Format(s, "00.0");
}

std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

}  // namespace

ResectDlgLogic::ResectDlgLogic(SurveyContext& ctx, ui::SerialPort* port)
    : ctx_(ctx), port_(port), family_(FamilyOf(ctx.inst.InstrumentKind)), conversation_(family_) {
  Combo1 = ControlPointNames(ctx.doc);
  Combo2 = Combo1;
  StationNameText = ctx.doc.StationName;
  InstrumentHeightText = num::Plain(ctx.doc.InstrumentHeight);
  const std::string th = ctx.doc.TargetHeight == NoTargetHeight ? "0" : num::Plain(ctx.doc.TargetHeight);
  TargetText[0] = TargetText[1] = th;
  if (port_) port_->OnByte = [this](char c) { OnByte(c); };
}

ResectDlgLogic::~ResectDlgLogic() {
  if (port_) {
    port_->OnByte = nullptr;
    CloseDialogPort(port_);
  }
}

bool ResectDlgLogic::Choose(int index, const std::string& name) {
  const Document& doc = ctx_.doc;
  const std::optional<NamedPoint> p = FindNamedPoint(doc, name);
  if (!p) return false;
  const int other = 1 - index;
  if (!slot[other].Name.empty() && slot[other].Name == p->Name) {
    ctx_.dialogs.MsgBox(index == 0 ? "請重選,不可與第2點重覆" : "請重選,不可與第1點重覆", "錯誤");
    return false;
  }
  slot[index].Name = p->Name;
  slot[index].E = p->E;
  slot[index].N = p->N;
  slot[index].H = doc.MapType == 1 ? p->H : 0;
  HeightNote[index].clear();
  if (doc.MapType == 1 && p->H == 0) {
    ctx_.dialogs.MsgBox("提示:" + p->Name + "沒有高程值");
    HeightNote[index] = "的高程為0";
  }
  if (!slot[0].Name.empty() && !slot[1].Name.empty()) {
    const double dE = slot[1].E - slot[0].E, dN = slot[1].N - slot[0].N;
    const double d = std::sqrt(dE * dE + dN * dN);
    DistanceLabel = F3(d);
    if (d < 0.1) ctx_.dialogs.MsgBox("兩點距離有問題!", "警告");
  }
  return true;
}

bool ResectDlgLogic::Pick(int index, double X, double Y) {
  for (const Entity& e : ctx_.doc.ScreenEntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint || text::Trim(e.Name).empty()) continue;
    if (PickBoxTest(ctx_.view, ctx_.doc.ScaleDenominator, X, Y, 20, e.X[0], e.Y[0])) return Choose(index, e.Name);
  }
  return false;
}

void ResectDlgLogic::Write(const std::string& bytes) { WriteDialogPort(port_, ctx_.inst, bytes); }

void ResectDlgLogic::Measure(int index) {
  if (family_ == Family::Keyin) {
    ctx_.dialogs.MsgBox("本功能不接受手輸入觀測值", "限使用儀器");
    return;
  }
  measuring_ = index;
  conversation_.Clear();
  topconAsked_ = false;
  switch (family_) {
    case Family::Leica: Write("GET/M/WI31/WI21/WI22\r\n"); break;
    case Family::Topcon:
      // A Topcon port is set up afresh for each request.
      CloseDialogPort(port_);
      topconAsked_ = true;
      Write(std::string("Z32091\x03\r\n", 9));
      break;
    case Family::Trimble: Write("TG\r\n"); break;
    case Family::Trimble3600: Write(""); break;
    case Family::Pentax: Write("a\r\n"); break;
    default: Write("Xc\r\n"); Write(std::string("\x11\r\n", 3)); break;
  }
}

void ResectDlgLogic::OnByte(char c) {
  const DialogAnswer a = conversation_.Feed(c);
  if (!a.Reply.empty()) Write(a.Reply);
  switch (a.kind) {
    case DialogAnswer::Acknowledge:
      if (topconAsked_) {
        topconAsked_ = false;
        Write(std::string("C067\x03\r\n", 7));
      }
      break;
    case DialogAnswer::Shot:
      Take(a.shot);
      break;
    case DialogAnswer::Error:
      ShowAnswerError(ctx_, a);
      break;
    default:
      break;
  }
}

bool ResectDlgLogic::PassesLinkTests(const DialogShot& shot) {
  if (shot.V > Pi && ctx_.inst.FaceWarning) ctx_.dialogs.MsgBox("提醒您: 儀器目前是倒鏡狀態", "倒鏡提示");
  // The horizontal distance as the link computes it: negative in face two, so that a
  // reading in face two never reaches a slot. The solver turns no circle reading by
  // half a turn, and such a reading would give the station a wrong orientation.
  const double hd = shot.Slope * std::cos(Pi / 2 - shot.V);
  if (hd < 0.01) {
    DialogAnswer refused;
    refused.Title = family_ == Family::Set ? "HD資料錯誤" : "資料錯誤";
    refused.Text = "平距值錯誤.";
    refused.Appended = " 距離值錯誤.";
    ShowAnswerError(ctx_, refused);
    return false;
  }
  return true;
}

void ResectDlgLogic::Take(const DialogShot& shot) {
  if (measuring_ < 0) return;
  if (family_ == Family::Set) Write(std::string("\x12\r\n", 3));
  ctx_.inst.ObsHzRaw = shot.HzRaw;
  ctx_.inst.ObsVRaw = shot.VRaw;
  ctx_.inst.ObsSlope = shot.Slope;
  ctx_.inst.ObsHz = shot.Hz;
  ctx_.inst.ObsV = shot.V;
  // A refused answer leaves the slot waiting for the next one.
  if (!PassesLinkTests(shot)) return;
  ResectSlot& s = slot[measuring_];
  s.Hz = shot.Hz;
  s.V = shot.V;
  s.Slope = shot.Slope;
  HzLabel[measuring_] = shot.HzText;
  VLabel[measuring_] = shot.VText;
  StatusLabel[measuring_] = "OK";
  measuring_ = -1;
  Command2Enabled = true;
  Command2Caption = "解算測站座標";
}

void ResectDlgLogic::Solve() {
  static const char* kMissing[2] = {"缺第一點資料", "缺第二點資料"};
  static const char* kNoShot[2] = {"缺第一點觀測資料", "缺第二點觀測資料"};
  static const char* kNoTarget[2] = {"缺第一點覘標高", "缺第二點覘標高"};
  const Document& doc = ctx_.doc;
  const double ih = num::ParseLenient(InstrumentHeightText);
  for (int i = 0; i < 2; ++i) {
    slot[i].Target = num::ParseLenient(TargetText[i]);
    if (slot[i].Name.empty()) return (void)ctx_.dialogs.MsgBox(kMissing[i]);
  }
  for (int i = 0; i < 2; ++i)
    if (slot[i].Slope == 0 || (slot[i].Hz == 0 && slot[i].V == 0)) return (void)ctx_.dialogs.MsgBox(kNoShot[i]);
  if (doc.MapType == 1) {
    if (ih == 0) return (void)ctx_.dialogs.MsgBox("缺儀器高");
    for (int i = 0; i < 2; ++i)
      if (slot[i].Target == 0) return (void)ctx_.dialogs.MsgBox(kNoTarget[i]);
  }
  Command2Enabled = false;
  solved_ = false;
  OKEnabled = false;
  solvedSlot_[0] = slot[0];
  solvedSlot_[1] = slot[1];
  result_ = SolveResection(solvedSlot_[0], solvedSlot_[1], doc.MapType, ih);
  const ResectResult& r = result_;
  if (doc.MapType == 1) {
    if (r.BothHeightsZero)
      ctx_.dialogs.MsgBox("注意:兩個後視點都沒高程(都是0), 因此測站高程也是0.", "高程有問題");
    Option1 = F3(r.H1);
    Option2 = F3(r.H2);
    LabelBsz = F3(r.StationH);
  }
  switch (r.outcome) {
    case ResectResult::Outcome::SameSpot:
      return;
    case ResectResult::Outcome::SlopeSumShort:
      ctx_.dialogs.MsgBox("兩個觀測距離的和,比己知邊短,嚴重取樣錯誤!", "嚴重取樣錯誤", ui::Buttons::Ok,
                          ui::Icon::Critical);
      Command2Caption = "嚴重取樣錯誤";
      return;
    case ResectResult::Outcome::ZeroDistance:
      ctx_.dialogs.MsgBox("觀測的水平距離為0,無法解算測站,請重新觀測.", "無法解算", ui::Buttons::Ok,
                          ui::Icon::Critical);
      return;
    case ResectResult::Outcome::NoTriangle:
      ctx_.dialogs.MsgBox("兩個觀測距離與已知邊長無法構成三角形,無法解算測站,請重新觀測.", "無法解算",
                          ui::Buttons::Ok, ui::Icon::Critical);
      return;
    case ResectResult::Outcome::Solved:
      break;
  }
  Label6 = ClosureText(r.Closure);
  Label18Visible = true;
  Label17 = "座標閉合差" + num::Format(r.CoordinateClosure, "0.000m");
  LabelBsx = F3(r.StationE);
  LabelBsy = F3(r.StationN);
  solved_ = true;
  OKEnabled = true;
}

bool ResectDlgLogic::OKButton() {
  if (!solved_) return false;
  Document& doc = ctx_.doc;
  const std::string name = text::UpperAscii(text::Trim(StationNameText));
  if (name.empty()) {
    ctx_.dialogs.MsgBox("測站尚未命名");
    return false;
  }
  const ResectResult& r = result_;
  // Point 1 as the solver left it: its V an elevation angle.
  const ResectSlot& p1 = solvedSlot_[0];
  doc.StationName = name;
  doc.StationE = r.StationE;
  doc.StationN = r.StationN;
  doc.StationH = doc.MapType == 1 ? r.StationH : 0;
  doc.InstrumentHeight = num::ParseLenient(InstrumentHeightText);
  doc.OrientationConstant = r.OrientationConstant;
  doc.BacksightName = p1.Name;
  doc.BacksightE = p1.E;
  doc.BacksightN = p1.N;
  doc.BacksightAzimuth = r.BacksightAzimuth;
  ctx_.survey.BacksightH = p1.H;
  doc.StationSet = kTrue;

  const std::string now = LogNow(ctx_);
  obslog::AppendLine(doc.ObsPath, "-99," + Quoted(", ") + ",#" + now + "#");
  obslog::AppendLine(doc.ObsPath, Quoted(name) + "," + num::Plain(doc.StationE) + "," + num::Plain(doc.StationN) +
                                      "," + num::Plain(doc.StationH) + "," + num::Plain(doc.InstrumentHeight));
  obslog::AppendLine(doc.ObsPath, Quoted(p1.Name) + "," + num::Plain(p1.E) + "," + num::Plain(p1.N) + "," +
                                      num::Plain(p1.H));
  obslog::AppendLine(doc.ObsPath, Quoted(ReadingText(p1.Hz)) + "," + Quoted(ReadingText(p1.V)) + "," +
                                      num::Plain(ctx_.inst.ObsSlope));
  obslog::AppendLine(doc.MacPath, obslog::MacStationLine(name, p1.Name));

  FollowPoint(ctx_, doc.StationE, doc.StationN, 1);
  ctx_.window.DrawPointMark(doc.PointCount + 1, doc.StationE, doc.StationN);
  ctx_.window.DrawStationMark(doc.StationE, doc.StationN);
  if (doc.MapType == 1) ctx_.window.DrawHeightText(doc.StationE, doc.StationN, F3(doc.StationH));
  AddPoint(doc, ctx_.view, ctx_.work, doc.StationE, doc.StationN, doc.StationH);
  ctx_.window.SetText("StatusBar1(4)", "測點 " + std::to_string(doc.PointCount - doc.DeletedPointCount));
  ctx_.window.DrawSymbol(113, doc.StationE, doc.StationN, doc.StationH, name);
  AddEntity(doc, ctx_.view, ctx_.work, 113, KindPoint, doc.StationE, doc.StationN, doc.StationH, 0, 0, 0, 0, 0, 0,
            name);
  doc.MapChanged = kTrue;
  ctx_.window.SafetySave();
  ctx_.window.SetText("LabelStaName", name);
  return true;
}

}  // namespace tavik
