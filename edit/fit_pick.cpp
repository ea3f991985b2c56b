// Pairs for fitting the map onto a base map, picked on the map: MapMoveBmByP takes a
// point of the survey and then the point it should go to, pair after pair, until the
// right button ends it; MapMoveByLine2 takes the two ends of a survey line and then
// the two ends of the target line. Each pick goes to the fitting dialog through
// OnFitPick.
//
// A survey pick must land on a survey point or an entity vertex. A target snaps to the
// nearest base-map vertex or survey point within the pick square, and is otherwise
// taken where the pen touched: a corner on a photo has no vertex to snap to. Snapping
// takes the nearest candidate, not the first, so that close vertices are told apart.
#include <cmath>
#include <limits>

#include "core/tables.h"
#include "edit/editor.h"
#include "edit/modes.h"

namespace tavik::edit {

namespace {

constexpr float PickHalf = 10;  // half the side of the pick square, in pixels

int Vertices(int16_t kind) {
  switch (kind) {
    case KindPoint: return 1;
    case KindLine: case KindCircle2: return 2;
    case KindCircle3: case KindArc3: return 3;
    default: return 0;
  }
}

}  // namespace

Editor::FitPick Editor::NearestVertex(float x, float y, bool entityVertices, bool baseMap) const {
  double E0, N0;
  PixelToWorld(x - 1, y - 1, E0, N0);  // the pointer's hot spot, as PickPoint has it
  double half, unusedN;
  PixelToWorld(x - 1 + PickHalf, y - 1, half, unusedN);
  half -= E0;
  FitPick best;
  double bestD = std::numeric_limits<double>::infinity();
  auto consider = [&](double E, double N, const std::string& label) {
    if (!std::isfinite(E) || !std::isfinite(N) || std::fabs(E - E0) > half || std::fabs(N - N0) > half) return;
    const double d = std::hypot(E - E0, N - N0);
    if (d >= bestD) return;
    bestD = d;
    best.E = E, best.N = N, best.Label = label, best.Snapped = true;
  };
  {
    const int32_t points = std::min<int32_t>(doc.ScreenPointCount, static_cast<int32_t>(doc.ScreenPointTable.size()));
    for (int32_t i = 0; i < points; ++i) {
      const Point& p = doc.ScreenPointTable[i];
      if (!p.Deleted) consider(p.E, p.N, std::to_string(p.Number));
    }
    const int32_t rows = std::min<int32_t>(doc.ScreenEntityCount, static_cast<int32_t>(doc.ScreenEntityTable.size()));
    for (int32_t i = 0; i < rows && entityVertices; ++i) {
      const Entity& e = doc.ScreenEntityTable[i];
      if (e.Deleted) continue;
      for (int v = 0; v < Vertices(e.Kind); ++v) consider(e.X[v], e.Y[v], e.Kind == KindPoint ? e.Name : "");
    }
    // A point's name is the name of the point feature standing on it.
    if (best.Snapped && !best.Label.empty())
      for (int32_t i = 0; i < rows; ++i) {
        const Entity& e = doc.ScreenEntityTable[i];
        if (!e.Deleted && e.Kind == KindPoint && !e.Name.empty() && e.X[0] == best.E && e.Y[0] == best.N) {
          best.Label = e.Name;
          break;
        }
      }
  }
  if (baseMap) {
    const int32_t rows = std::min<int32_t>(doc.BaseMapCount, static_cast<int32_t>(doc.BaseMapTable.size()));
    for (int32_t i = 0; i < rows; ++i) {
      const BaseMapLine& b = doc.BaseMapTable[i];
      for (int v = 0; v < Vertices(b.Kind); ++v) consider(b.X[v], b.Y[v], b.Kind == KindPoint ? b.Name : "");
    }
  }
  return best;
}

void Editor::FitPairPick(float x, float y, double E, double N) {
  const bool lines = Ptr.ActionMode == mode::MapMoveByLine2;
  // The pair mode alternates survey point and target; the line mode takes two of each.
  const bool target = lines ? PickStep >= 2 : PickStep % 2 == 1;
  FitPick p = NearestVertex(x, y, !target, target);
  if (!target && !p.Snapped) {
    host.ShowStatus("請點選工作圖上的點");
    return;
  }
  if (!p.Snapped) p.E = E, p.N = N;
  p.Step = PickStep;
  if (OnFitPick) OnFitPick(p);
  ++PickStep;
  if (lines && PickStep == 4) {
    SetMode("");
    return;
  }
  if (lines)
    host.SetPrompt(PickStep < 2 ? "請點選工作圖線尾" : PickStep == 2 ? "請點選底圖上對應的線頭" : "請點選底圖上對應的線尾");
  else
    host.SetPrompt(target ? PromptOf(mode::MapMoveBmByP) : "請點選底圖上對應的點(目標點)");
}

}  // namespace tavik::edit
