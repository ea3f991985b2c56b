// The pen on the base map: lines drawn by hand into BaseMapTable, and new points made
// at the ends and crossings of base-map lines, so that the survey's drawing commands,
// which join points, can be drawn onto the base map exactly.
//
// A hand-drawn line (BaseLine) is a chain, as the survey's line command is, ended by a
// right press or closed with c. Each click takes the point, entity vertex or base-map
// vertex under the pen when there is one (20 pixels), else the pen's own position. Each
// line is appended to TEMPBM as it is drawn.
#include <cmath>

#include "core/numbers.h"
#include "core/workfiles.h"
#include "edit/editor.h"
#include "edit/line_edit.h"
#include "edit/modes.h"

namespace tavik::edit {

namespace {
// The legend of a base-map line drawn by hand ("底圖").
constexpr int16_t CodeBaseMap = 299;
}  // namespace

void Editor::AddBaseMapLine(double E1, double N1, double E2, double N2) {
  if (E1 == E2 && N1 == N2) return;
  BaseMapLine b;
  b.Code = CodeBaseMap;
  b.Kind = KindLine;
  b.X[0] = E1, b.Y[0] = N1, b.X[1] = E2, b.Y[1] = N2;
  doc.BaseMapTable.resize(static_cast<std::size_t>(doc.BaseMapCount));
  b.Number = doc.BaseMapCount + 1;
  doc.BaseMapTable.push_back(b);
  ++doc.BaseMapCount;
  JournalWarning(work.AppendBaseMapWorkFile(b));
  work.WriteRecoveryHeader(doc);
  doc.MapChanged = kTrue;
  host.BaseMapChanged();
  Repaint();
}

void Editor::BaseMapPick(const std::string& m, float x, float y, double E, double N) {
  if (m == mode::BaseLine) {
    PickHit p = PickPoint(x, y, 20);
    if (!p.Found) p = PickBaseMapVertex(x, y, 20);
    if (!p.Found) p = {true, E, N, 0};
    ChainPick(p);
    return;
  }

  if (m == mode::BM_MakeP) {
    // The end of the picked base-map line nearer the pen becomes a point.
    const int32_t row = PickBaseMapRow(x, y, 8, {KindLine, KindArc3});
    if (row < 0) return;
    const BaseMapLine& b = doc.BaseMapTable[row];
    const int last = b.Kind == KindLine ? 1 : 2;
    const int end = std::hypot(E - b.X[0], N - b.Y[0]) <= std::hypot(E - b.X[last], N - b.Y[last]) ? 0 : last;
    SetMode("");
    AddNewPoint(b.X[end], b.Y[end], b.Z[end]);
    return;
  }

  if (m == mode::BM_XLineMakeP) {
    // The crossing of the first two base-map lines under the pen becomes a point.
    double E1, N1, E2, N2;
    PaperToWorld(view, doc.ScaleDenominator, x - 10, y + 10, E1, N1);
    PaperToWorld(view, doc.ScaleDenominator, x + 10, y - 10, E2, N2);
    std::vector<PickedLine> lines;
    for (const PickedLine& l : LinesInWindow(E1, N1, E2, N2))
      if (l.OnBaseMap) lines.push_back(l);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      for (std::size_t j = i + 1; j < lines.size(); ++j) {
        const PickedLine &a = lines[i], &b = lines[j];
        const auto c = CrossingOfLines(a.X[0], a.Y[0], a.X[1], a.Y[1], b.X[0], b.Y[0], b.X[1], b.Y[1]);
        if (!c) continue;
        double H = 0, t;
        TrimEnd(a.X[0], a.Y[0], a.X[1], a.Y[1], c->E, c->N, c->E, c->N, t);
        HeightAlong(a.Z[0], a.Z[1], t, H);
        SetMode("");
        AddNewPoint(c->E, c->N, H);
        return;
      }
    }
  }
}

}  // namespace tavik::edit
