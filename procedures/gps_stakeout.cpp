#include "procedures/gps_stakeout.h"

#include <algorithm>
#include <set>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/azimuth.h"
#include "geo/constants.h"
#include "geo/pick.h"
#include "procedures/stakeout_guide.h"

namespace tavik {

double ArrowThreshold(const std::string& fixText) {
  if (fixText == "最佳解") return 0.04;
  if (fixText == "WAAS") return 0.7;
  if (fixText == "單點定位") return 1.2;
  return 0;
}

StakeGuidance StakeGuide(double prevE, double prevN, double E, double N, double targetE, double targetN,
                         double radius, const std::string& fixText) {
  StakeGuidance g;
  double A = 0;
  AzimuthDistance(prevE, prevN, E, N, g.Course, A);
  AzimuthDistance(E, N, targetE, targetN, g.Distance, g.Azimuth);
  g.Beep = g.Distance < radius;
  g.Relative = g.Azimuth - A;
  if (g.Relative < 0) g.Relative += TwoPi;
  // A standing rover's noise would spin the arrow: it turns only after a movement that
  // the fix can tell from noise. A fix of no listed kind turns it with every position.
  g.TurnArrow = !(g.Course < ArrowThreshold(fixText));
  g.Label9 = num::Format(g.Distance, "0.000");
  g.Label8 = DmsLabel(g.Azimuth);
  return g;
}

GpsStakeOutLogic::GpsStakeOutLogic(Document& doc, const View& view, GpsState& gps, ui::Dialogs& dialogs)
    : doc_(doc), view_(view), gps_(gps), dialogs_(dialogs) {}

GpsStakeOutLogic::~GpsStakeOutLogic() { Unload(); }

void GpsStakeOutLogic::Load() {
  gps_.StakeActive = kTrue;
  keptE_ = doc_.ViewCentreE;
  keptN_ = doc_.ViewCentreN;
  keptScale_ = doc_.ScaleDenominator;
  loaded_ = true;
}

void GpsStakeOutLogic::Unload() {
  if (!loaded_) return;
  loaded_ = false;
  gps_.StakeActive = kFalse;
  doc_.ViewCentreE = keptE_;
  doc_.ViewCentreN = keptN_;
  doc_.ScaleDenominator = keptScale_;
  if (hooks.EraseTargetMark) hooks.EraseTargetMark();
  if (hooks.ViewChanged) hooks.ViewChanged();
}

std::vector<std::string> GpsStakeOutLogic::TargetNames() const {
  std::vector<std::string> names;
  std::set<std::string> seen;
  for (const Entity& e : doc_.EntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint) continue;
    std::string name = text::Trim(e.Name);
    if (name.empty() || !seen.insert(name).second) continue;
    names.push_back(std::move(name));
  }
  return names;
}

bool GpsStakeOutLogic::Setup(const std::string& combo1, const std::string& text2, bool askNewName) {
  const std::optional<double> radius = num::ParseStrict(text2);
  if (!radius || !(*radius > 0) || *radius > 1e6) {
    dialogs_.MsgBox("提示圈半徑需為正數", "選放樣點");
    return false;
  }
  gps_.StakeRadius = *radius;
  AskNewName = askNewName;
  const std::string wanted = text::Trim(combo1);
  if (wanted.empty() || wanted == gps_.StakeName) return true;
  for (const Entity& e : doc_.EntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint || text::Trim(e.Name) != wanted) continue;
    TakeTarget(e.X[0], e.Y[0], e.Z[0], e.Code, wanted);
    return true;
  }
  dialogs_.MsgBox("沒選到放樣資料", "沒有資料");
  return false;
}

void GpsStakeOutLogic::TakeTarget(double E, double N, double H, int16_t code, const std::string& name) {
  gps_.StakeX = E;
  gps_.StakeY = N;
  gps_.StakeH = H;
  gps_.StakeCode = code;
  gps_.StakeName = name;
  ArrowShown = false;
  Label8.clear();
  Label9.clear();
  if (hooks.DrawTargetMark) hooks.DrawTargetMark(E, N, code, name);
}

bool GpsStakeOutLogic::PickTarget(double X, double Y) {
  constexpr double box = 20;
  for (const Entity& e : doc_.ScreenEntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint || text::Trim(e.Name).empty()) continue;
    if (PickBoxTest(view_, doc_.ScaleDenominator, X, Y, box, e.X[0], e.Y[0])) {
      TakeTarget(e.X[0], e.Y[0], e.Z[0], e.Code, text::Trim(e.Name));
      return true;
    }
  }
  for (const Point& p : doc_.ScreenPointTable) {
    if (p.Deleted != kFalse) continue;
    if (PickBoxTest(view_, doc_.ScaleDenominator, X, Y, box, p.E, p.N)) {
      TakeTarget(p.E, p.N, p.H, CodeNoEntity, "NoName");
      return true;
    }
  }
  // A line through the same square: the target is where the line meets it.
  double minE = 0, minN = 0, maxE = 0, maxN = 0;
  PaperToWorld(view_, doc_.ScaleDenominator, X - 1 - box / 2, Y - 1 + box / 2, minE, minN);
  PaperToWorld(view_, doc_.ScaleDenominator, X - 1 + box / 2, Y - 1 - box / 2, maxE, maxN);
  for (const Entity& e : doc_.ScreenEntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindLine) continue;
    FoundPosition found;
    if (BoxHitsChain(2, e.X, e.Y, e.Z, minE, minN, maxE, maxN, found)) {
      TakeTarget(found.E, found.N, found.H, CodeNoEntity, "NoName");
      return true;
    }
  }
  dialogs_.MsgBox("沒選到放樣資料", "沒有資料");
  return false;
}

std::string GpsStakeOutLogic::WindowTitle() const {
  return gps_.StakeName.empty() ? Caption : "GPS放樣-" + gps_.StakeName;
}

void GpsStakeOutLogic::StakeRefresh() {
  if (gps_.StakeName.empty()) return;
  const StakeGuidance g = StakeGuide(gps_.GpsPrevX, gps_.GpsPrevY, gps_.GpsX, gps_.GpsY, gps_.StakeX, gps_.StakeY,
                                     gps_.StakeRadius, gps_.GpsFixText);
  if (g.Beep && hooks.Beep) hooks.Beep();
  if (g.TurnArrow) {
    ArrowAngle = g.Relative;
    ArrowShown = true;
  }
  Label9 = g.Label9;
  Label8 = g.Label8;
}

void GpsStakeOutLogic::Command2() {
  if (gps_.StakeName.empty()) return;
  // No position has come yet: there is nothing to store.
  if (gps_.GpsX == 0 && gps_.GpsY == 0) return;
  if (AskNewName) {
    const std::optional<std::string> answer =
        dialogs_.InputBox("請輸入點名(樁號):\n不輸入可取消記錄", "輸入點名(樁號)", gps_.StakeName);
    if (!answer || text::Trim(*answer).empty()) return;
    gps_.StakeName = text::Trim(*answer);
  }
  const double E = gps_.GpsX, N = gps_.GpsY, H = gps_.GpsGround;
  if (hooks.RecordObservation && !hooks.RecordObservation(E, N, H)) return;
  if (hooks.AddNamedEntity) hooks.AddNamedEntity(gps_.StakeCode, E, N, H, gps_.StakeName);
  dialogs_.MsgBox(gps_.StakeName + "的觀測資料,己存入" + doc_.GstkPath + "檔中");
}

void GpsStakeOutLogic::Command5() {
  gps_.StakeName.clear();
  gps_.StakeX = gps_.StakeY = gps_.StakeH = 0;
  gps_.StakeCode = CodeNoEntity;
  ArrowShown = false;
  Label8.clear();
  Label9.clear();
  if (hooks.EraseTargetMark) hooks.EraseTargetMark();
}

}  // namespace tavik
