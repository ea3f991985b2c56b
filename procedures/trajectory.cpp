#include "procedures/trajectory.h"

#include <cmath>

#include "procedures/observation_pipeline.h"
#include "procedures/reduction.h"

namespace tavik {

bool Trajectory::Start() {
  if (!ctx_.doc.IsOpen()) return false;
  if (ctx_.doc.StationSet == kFalse) {
    ctx_.dialogs.MsgBox("請先設定測站位置");
    return false;
  }
  running_ = true;
  haveLast_ = false;
  vertices_ = 0;
  return true;
}

bool Trajectory::Take() {
  if (!running_) return false;
  const Document& doc = ctx_.doc;
  const InstrumentState& inst = ctx_.inst;
  if (inst.ObsSlope <= 0) return false;
  double hz = inst.ObsHz, v = inst.ObsV, E = 0, N = 0;
  FaceAndOrient(hz, v, doc.OrientationConstant);
  PolarPoint(doc.StationE, doc.StationN, inst.ObsSlope, hz, v, E, N);
  double H = 0;
  if (doc.MapType == 1)
    H = doc.TargetHeight == NoTargetHeight
            ? NoHeight
            : doc.InstrumentHeight + doc.StationH + inst.ObsSlope * std::sin(v) - doc.TargetHeight;
  if (haveLast_ && std::hypot(E - lastE_, N - lastN_) * 100 < SpacingCm) return false;
  SurveyState& s = ctx_.survey;
  s.PointAdded = kFalse;
  s.CadastralChoice = 2;
  s.CadastralPointName.clear();
  AddSurveyPoint(ctx_, 1, true, E, N, H);
  if (haveLast_) ctx_.window.LinkPoints(lastE_, lastN_, lastH_, E, N, H);
  s.LastE = lastE_ = E;
  s.LastN = lastN_ = N;
  s.LastH = lastH_ = H;
  haveLast_ = true;
  ++vertices_;
  FollowPoint(ctx_, E, N, 1.05);
  ctx_.window.Refresh();
  return true;
}

}  // namespace tavik
