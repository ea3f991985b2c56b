#include "procedures/stakeout.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "geo/angles.h"
#include "geo/constants.h"
#include "geo/pick.h"
#include "instruments/decoders.h"
#include "procedures/dialog_port.h"
#include "procedures/observation_pipeline.h"
#include "procedures/stakeout_guide.h"

namespace tavik {
namespace {

std::string F3(double v) { return num::Format(v, "0.000"); }

bool StartsWith(const std::string& s, const char* p) { return s.rfind(p, 0) == 0; }

bool RoboticSet(const std::string& kind) {
  return kind == "SET3110M" || kind == "SET3110MV" || StartsWith(kind, "iX") || StartsWith(kind, "SX") ||
         StartsWith(kind, "DX") || StartsWith(kind, "NET") || StartsWith(kind, "SRX");
}
bool RoboticLeica(const std::string& kind) {
  return kind == "TCRA1103plus" || kind == "TCA1100" || kind == "TCA1100L";
}

const std::string kTopconStop("Z32091\x03\r\n", 9);

}  // namespace

StackOutLogic::StackOutLogic(SurveyContext& ctx, ui::SerialPort* port)
    : ctx_(ctx), port_(port), family_(FamilyOf(ctx.inst.InstrumentKind)), conversation_(family_) {
  if (port_) port_->OnByte = [this](char c) { OnByte(c); };
}

StackOutLogic::~StackOutLogic() {
  if (port_) {
    port_->OnByte = nullptr;
    CloseDialogPort(port_);
  }
  ctx_.inst.StakeOutActive = kFalse;
}

bool StackOutLogic::CanOpen(SurveyContext& ctx) {
  if (ctx.doc.StationSet == kFalse) {
    ctx.dialogs.MsgBox("請先設定測站");
    return false;
  }
  if (ctx.link.Close) ctx.link.Close(Channel::Top);
  ctx.inst.StakeOutActive = kTrue;
  return true;
}

void StackOutLogic::Write(const std::string& bytes) { WriteDialogPort(port_, ctx_.inst, bytes); }
void StackOutLogic::WriteSet(const std::string& bytes) {
  if (ctx_.link.Write) ctx_.link.Write(Channel::Set, bytes);
}

void StackOutLogic::Load() {
  ctx_.inst.StakeOutActive = kTrue;
  const std::string& kind = ctx_.inst.InstrumentKind;
  switch (family_) {
    case Family::Keyin:
      ReadTSEnabled = false;
      Command18Enabled = false;
      Command2Enabled = false;
      return;
    case Family::Pentax:
      ReadTSCaption = "測距";
      Command18Enabled = false;
      return;
    case Family::Topcon:
      CloseDialogPort(port_);
      Write(std::string("Z33090\x03\r\n", 9));
      return;
    case Family::Leica:
      if (RoboticLeica(kind)) {
        Write("TURNWORD\r\n");
        CloseDialogPort(port_);
      }
      return;
    case Family::Trimble:
      Write("TG\r\n");
      if (ctx_.link.EnableTimer5) ctx_.link.EnableTimer5(false);
      return;
    case Family::Trimble3600:
      OpenDialogPort(port_, ctx_.inst);
      return;
    case Family::Set:
      WriteSet("Xe\r\n");
      WriteSet("Ee\r\n");
      WriteSet("*/PF,1,2\r\n");
      WriteSet("*GLON\r\n");
      ctx_.inst.LaserSW = "導光";
      ctx_.inst.LaserOnOff = "ON";
      return;
  }
}

bool StackOutLogic::SetTarget(double E, double N, double H, int16_t code, const std::string& name) {
  const Document& doc = ctx_.doc;
  if (E == doc.StationE && N == doc.StationN) {
    ctx_.dialogs.MsgBox("這是測站", "選錯點");
    return false;
  }
  StakeTargetE = E;
  StakeTargetN = N;
  StakeTargetH = H;
  StakeTargetCode = code;
  ctx_.survey.StakeTargetName = name.empty() ? "NoName" : name;
  TargetChosen = true;
  ctx_.window.DrawTargetMark(E, N, code, ctx_.survey.StakeTargetName);
  const TargetAim aim = AimAtTarget(doc.StationE, doc.StationN, E, N, doc.OrientationConstant);
  TargetCircle = aim.Circle;
  Label4 = ctx_.survey.StakeTargetName;
  Label5 = F3(aim.Distance);
  Label6 = DmsLabel(TargetCircle);
  Turn();
  ReadTSEnabled = family_ != Family::Keyin;
  if (ReadTSEnabled) Focus = "ReadTS";
  Label8.clear();
  Label9.clear();
  return true;
}

bool StackOutLogic::ChooseTarget(double X, double Y) {
  const Document& doc = ctx_.doc;
  const View& view = ctx_.view;
  if (TargetChosen) {
    ctx_.window.EraseTargetMark();
    TargetChosen = false;
  }
  for (const Entity& e : doc.ScreenEntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint || text::Trim(e.Name).empty()) continue;
    if (PickBoxTest(view, doc.ScaleDenominator, X, Y, 20, e.X[0], e.Y[0]))
      return SetTarget(e.X[0], e.Y[0], e.Z[0], e.Code, text::Trim(e.Name));
  }
  for (const Point& p : doc.ScreenPointTable) {
    if (p.Deleted != kFalse) continue;
    if (PickBoxTest(view, doc.ScaleDenominator, X, Y, 20, p.E, p.N))
      return SetTarget(p.E, p.N, p.H, CodeNamedPoint, std::to_string(p.Number));
  }
  if (!doc.BaseMapTable.empty()) {
    for (const BaseMapLine& b : doc.BaseMapTable) {
      if (b.Kind != KindPoint) continue;
      if (PickBoxTest(view, doc.ScaleDenominator, X, Y, 20, b.X[0], b.Y[0]))
        return SetTarget(b.X[0], b.Y[0], b.Z[0], 131, text::Trim(b.Name));
    }
    // The point observed last, when the display settings offer it as a target.
    const SurveyState& s = ctx_.survey;
    if (s.StakeLastObserved != kFalse && PickBoxTest(view, doc.ScaleDenominator, X, Y, 20, s.LastE, s.LastN))
      return SetTarget(s.LastE, s.LastN, s.LastH, 131, "");
    double minE = 0, minN = 0, maxE = 0, maxN = 0, clickE = 0, clickN = 0;
    PaperToWorld(view, doc.ScaleDenominator, X - 4, Y + 4, minE, minN);
    PaperToWorld(view, doc.ScaleDenominator, X + 4, Y - 4, maxE, maxN);
    PaperToWorld(view, doc.ScaleDenominator, X, Y, clickE, clickN);
    for (const BaseMapLine& b : doc.BaseMapTable) {
      if (b.Kind != KindLine) continue;
      FoundPosition found;
      if (!BoxHitsChain(2, b.X, b.Y, b.Z, minE, minN, maxE, maxN, found)) continue;
      const double d1 = std::hypot(b.X[0] - clickE, b.Y[0] - clickN);
      const double d2 = std::hypot(b.X[1] - clickE, b.Y[1] - clickN);
      const int end = d2 < d1 ? 1 : 0;
      return SetTarget(b.X[end], b.Y[end], b.Z[end], 131, std::to_string(doc.PointCount + 1));
    }
  }
  ctx_.dialogs.MsgBox("放樣的點必需要有點名", "沒有資料");
  return false;
}

void StackOutLogic::Turn() {
  if (!TargetChosen) return;
  const std::string& kind = ctx_.inst.InstrumentKind;
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(TargetCircle, d, m, s);
  if (RoboticSet(kind)) {
    std::string v = std::to_string(ctx_.inst.ObsVRaw < 0 ? 0 : ctx_.inst.ObsVRaw);
    if (v.size() < 7) v.insert(0, 7 - v.size(), '0');
    WriteSet("*DHA" + num::Format(d, "000") + num::Format(m, "00") + num::Format(s, "00") + "VA" + v + "\r\n");
    if (ctx_.link.StartTimer10) ctx_.link.StartTimer10(7000);
  } else if (RoboticLeica(kind)) {
    Write("POSIT/A/" + std::to_string(d) + "." + num::Format(m, "00") + num::Format(s, "00") + "/90.0000\r\n");
  }
}

void StackOutLogic::ReadTS() {
  if (!TargetChosen || family_ == Family::Keyin) return;
  Command18Enabled = true;
  conversation_.Clear();
  switch (family_) {
    case Family::Pentax: Write("a\r\n"); break;
    case Family::Topcon: Write(std::string("C067\x03\r\n", 7)); break;
    case Family::Trimble: Write("PG,3=1\r\n"); break;
    case Family::Trimble3600: OpenDialogPort(port_, ctx_.inst); break;
    case Family::Leica: Write("GET/M/WI31/WI21/WI22\r\n"); break;
    default:
      WriteSet("Xe\r\n");
      WriteSet(std::string("\x11\r\n", 3));
      break;
  }
}

void StackOutLogic::StopFamily() {
  switch (family_) {
    case Family::Leica: Write("c\r\n"); break;
    case Family::Topcon: Write(kTopconStop); Write(kTopconStop); break;
    case Family::Trimble: Write("PG,3=0\r\n"); break;
    case Family::Keyin: break;
    default: WriteSet(std::string("\x12\r\n", 3)); break;
  }
}

void StackOutLogic::Command18() {
  StopFamily();
  Command5Enabled = true;
  Command18Enabled = false;
  Focus = "Command2";
  if (ctx_.survey.StakeTargetName == "NoName") {
    StakeTargetCode = 0;
    StakeTargetE = 0;
    StakeTargetN = 0;
    TargetChosen = false;
    ctx_.window.EraseTargetMark();
    ctx_.window.RedrawAll();
    ctx_.survey.PointAdded = kFalse;
  }
}

void StackOutLogic::Command5() {
  StopFamily();
  if (family_ == Family::Pentax || family_ == Family::Trimble3600) CloseDialogPort(port_);
  if (family_ == Family::Leica) Write("SET/161/7\r\n");
  CloseDialogPort(port_);
  ctx_.inst.StakeOutActive = kFalse;
  ctx_.window.EraseTargetMark();
  ctx_.window.StopBlink();
}

void StackOutLogic::Command2() {
  if (family_ == Family::Keyin) return;
  Document& doc = ctx_.doc;
  SurveyState& s = ctx_.survey;
  AddSurveyPoint(ctx_, 2, true, s.LastE, s.LastN, s.LastH);
  // The named entity is added even when the point itself was already stored: a second
  // press records the target's name again at the same place.
  AddEntity(doc, ctx_.view, ctx_.work, StakeTargetCode, KindPoint, s.LastE, s.LastN, s.LastH, 0, 0, 0, 0, 0, 0,
            s.StakeTargetName);
  ctx_.window.DrawSymbol(StakeTargetCode, s.LastE, s.LastN, s.LastH, s.StakeTargetName);
  doc.MapChanged = kTrue;
  ctx_.window.SafetySave();
}

void StackOutLogic::OnByte(char c) {
  const DialogAnswer a = conversation_.Feed(c);
  if (a.kind == DialogAnswer::Error) ShowAnswerError(ctx_, a);
  if (a.kind != DialogAnswer::Shot) return;
  if (!a.Reply.empty()) Write(a.Reply);
  TakeShot(a.shot);
  // The loop goes on: Leica and Topcon are asked again, Trimble streams by itself.
  if (!Command18Enabled) return;
  if (family_ == Family::Leica) Write("GET/M/WI31/WI21/WI22\r\n");
  if (family_ == Family::Topcon) Write(std::string("C067\x03\r\n", 7));
}

void StackOutLogic::TakeShot(const DialogShot& shot) {
  InstrumentState& inst = ctx_.inst;
  inst.ObsSlope = shot.Slope;
  inst.ObsHzRaw = shot.HzRaw;
  inst.ObsVRaw = shot.VRaw;
  inst.ObsHz = shot.Hz;
  inst.ObsV = shot.V;
  StakeSlope = shot.Slope;
  StakeHz = shot.Hz;
  StakeV = shot.V;
  LabelS = F3(shot.Slope);
  Label45 = F3(shot.Slope * std::cos(Pi / 2 - shot.V));
  Label29 = shot.HzText;
  LabelZA = shot.VText;
  RunGuide(shot.Hz, shot.V, shot.Slope);
}

void StackOutLogic::SetLine(const std::string& line) {
  if (text::CharCount(line) < 20) return;
  const std::string t = text::Trim(line);
  std::vector<std::string> f;
  for (std::size_t i = 0; i <= t.size();) {
    const std::size_t j = std::min(t.find(' ', i), t.size());
    f.push_back(t.substr(i, j - i));
    i = j + 1;
  }
  InstrumentState& inst = ctx_.inst;
  if (t.find("Ee") != std::string::npos) {
    std::vector<std::string> c;
    for (std::size_t i = 0; i <= f[0].size();) {
      const std::size_t j = std::min(f[0].find(',', i), f[0].size());
      c.push_back(f[0].substr(i, j - i));
      i = j + 1;
    }
    if (c.size() > 4) inst.ObsVRaw = num::CLng(num::ParseLenient(c[4]) * 10000);
    return;
  }
  if (!(num::ParseLenient(f[0]) > 0) || f.size() < 3) return;
  const std::optional<double> mm = num::ParseStrict(f[0]);
  const std::optional<double> v = num::ParseStrict(f[1]);
  const std::optional<double> hz = num::ParseStrict(f[2]);
  if (!mm || !v || !hz || std::fabs(*v) > 2e9 || std::fabs(*hz) > 2e9) return;
  DialogShot shot;
  shot.Slope = *mm / 1000;
  shot.VRaw = num::CLng(*v);
  shot.HzRaw = num::CLng(*hz);
  shot.Hz = PackedToRadians(shot.HzRaw);
  shot.V = PackedToRadians(shot.VRaw);
  shot.HzText = RawAngleText(shot.HzRaw);
  shot.VText = RawAngleText(shot.VRaw);
  TakeShot(shot);
}

void StackOutLogic::RunGuide(double hz, double v, double slope) {
  if (!TargetChosen) return;
  const Document& doc = ctx_.doc;
  const GuideAdvice g = Guide(hz, v, slope, doc.StationE, doc.StationN, doc.OrientationConstant, StakeTargetE,
                              StakeTargetN, TargetCircle);
  SurveyState& s = ctx_.survey;
  s.LastE = g.E;
  s.LastN = g.N;
  FollowPoint(ctx_, g.E, g.N, 1.05);
  ctx_.window.StopBlink();
  ctx_.window.StartBlink(g.E, g.N);
  Label8 = g.DistanceText;
  Label9 = g.TurnText;
  s.PointAdded = kFalse;
}

}  // namespace tavik
