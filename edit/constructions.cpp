// New points computed from what is on the map: the midpoint of a line or an arc, the
// equal division of a line, the foot of a perpendicular, the crossing of two lines, the
// extension of a line to another, the projection of a picked position onto a line; and
// the distance and area inquiries.
//
// A line is picked from the entities on the screen, newest first, then from the base
// map; a construction on a base-map line makes an ordinary survey point. A new point
// never lands at E or N exactly 0, and the view follows it when it falls off the screen.
#include <algorithm>
#include <cmath>
#include <optional>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "edit/editor.h"
#include "edit/modes.h"
#include "geo/angles.h"
#include "geo/area.h"
#include "geo/azimuth.h"
#include "geo/circle.h"
#include "geo/intersect.h"
#include "view/transform.h"

namespace tavik::edit {

namespace {

// The rule of heights: the mean of two heights above 0, else the one above 0, else the
// height stays as it was.
void RuleOfHeights(double H1, double H2, double& H) {
  if (H1 > 0 && H2 > 0)
    H = (H1 + H2) / 2;
  else if (H1 > 0)
    H = H1;
  else if (H2 > 0)
    H = H2;
}

}  // namespace

Editor::PickedLine Editor::PickLine(float x, float y, float half, std::initializer_list<int16_t> kinds,
                                    const PickedLine* skip) const {
  PickedLine l;
  bool base = false;
  const int32_t row = skip ? PickEntityRow(x, y, half, kinds, true, &base, skip->Row, skip->OnBaseMap)
                           : PickEntityRow(x, y, half, kinds, true, &base);
  if (row < 0) return l;
  l.Found = true;
  l.OnBaseMap = base;
  l.Row = row;
  auto copy = [&](const auto& r) {
    l.Code = r.Code;
    l.Kind = r.Kind;
    for (int i = 0; i < 3; ++i) {
      l.X[i] = r.X[i];
      l.Y[i] = r.Y[i];
      l.Z[i] = r.Z[i];
    }
  };
  if (base)
    copy(doc.BaseMapTable[row]);
  else
    copy(doc.EntityTable[row]);
  return l;
}

bool Editor::AddNewPoint(double E, double N, double H) {
  if (E == 0 || N == 0) return false;
  NewPointE = E;
  NewPointN = N;
  NewPointH = H;
  host.ShowStatus(num::Format(E, "0.000") + " , " + num::Format(N, "0.000") + " , " + num::Format(H, "0.000"));
  if (!view.InScreen(E, N)) {
    // Grow the screen rectangle to take the point, step back a little and recentre.
    const double minE = std::min(view.ScreenMinE, E), maxE = std::max(view.ScreenMaxE, E);
    const double minN = std::min(view.ScreenMinN, N), maxN = std::max(view.ScreenMaxN, N);
    view::FitScale(doc, view, minE, minN, maxE, maxN);
    doc.ScaleDenominator *= 1.05;
    doc.ViewCentreE = (minE + maxE) / 2;
    doc.ViewCentreN = (minN + maxN) / 2;
    host.ViewChanged();
    Ptr.BandShown = false;
  }
  JournalWarning(AddPoint(doc, view, work, E, N, H));
  doc.MapChanged = kTrue;
  host.DrawPointRow(doc.PointCount - 1, true);
  return true;
}

void Editor::ConstructionPick(const std::string& m, float x, float y, double E, double N) {
  if (m == mode::NP_MidOf) {
    const PickedLine l = PickLine(x, y, 8, {KindLine, KindArc3});
    if (!l.Found) return;
    double nE, nN, nH = NewPointH;
    if (l.Kind == KindLine) {
      nE = (l.X[0] + l.X[1]) / 2;
      nN = (l.Y[0] + l.Y[1]) / 2;
      if (doc.MapType == 1) RuleOfHeights(l.Z[0], l.Z[1], nH);
    } else if (!ArcMidPoint(dialogs, doc.MapType, l.X[0], l.Y[0], l.Z[0], l.X[1], l.Y[1], l.X[2], l.Y[2], l.Z[2],
                            nE, nN, nH)) {
      return;
    }
    SetMode("");
    AddNewPoint(nE, nN, nH);
    return;
  }

  if (m == mode::NP_DevideTo) {
    const PickedLine l = PickLine(x, y, 8, {KindLine});
    if (!l.Found) return;
    SetMode("");
    auto answer = dialogs.InputBox("要分成幾段?", "均分一條線(最多分成10段)");
    if (!answer || answer->empty()) return;
    int n = static_cast<int>(num::Fix(num::ParseLenient(*answer)));
    if (n > 10) n = 10;
    if (n < 2) return;
    const double dE = (l.X[1] - l.X[0]) / n, dN = (l.Y[1] - l.Y[0]) / n;
    // Heights climb evenly where they are kept and both ends have one; otherwise every
    // point takes the height of the end that has one (end 1 first), never a mean.
    const double H1 = l.Z[0], H2 = l.Z[1];
    const bool slope = doc.MapType == 1 && H1 > 0 && H2 > 0;
    const double dH = slope ? (H2 - H1) / n : 0;
    double H = NewPointH;
    if (!slope) H = H1 > 0 ? H1 : H2 > 0 ? H2 : H;
    for (int i = 1; i < n; ++i) AddNewPoint(l.X[0] + i * dE, l.Y[0] + i * dN, slope ? H1 + i * dH : H);
    return;
  }

  if (m == mode::NP_PerOf) {
    if (PickStep == 0) {
      FirstPick = PickPoint(x, y, 20);
      if (!FirstPick.Found) return;
      MarkPick(FirstPick.E, FirstPick.N);
      PickStep = 1;
      host.SetPrompt("請點選一條線");
      return;
    }
    const PickedLine l = PickLine(x, y, 16, {KindLine});
    if (!l.Found) return;
    double E1 = l.X[0], N1 = l.Y[0], E2 = l.X[1], N2 = l.Y[1];
    FootOnSegment3(FirstPick.E, FirstPick.N, E1, N1, l.Z[0], E2, N2, l.Z[1], doc.MapType, LastFoot);
    SetMode("");
    AddNewPoint(LastFoot.FootE, LastFoot.FootN, LastFoot.FootH);
    return;
  }

  if (m == mode::PointProject) {
    // The pointer's position carried square onto the picked line.
    const PickedLine l = PickLine(x, y, 8, {KindLine});
    if (!l.Found) return;
    double E1 = l.X[0], N1 = l.Y[0], E2 = l.X[1], N2 = l.Y[1];
    FootOnSegment3(E, N, E1, N1, l.Z[0], E2, N2, l.Z[1], doc.MapType, LastFoot);
    SetMode("");
    AddNewPoint(LastFoot.FootE, LastFoot.FootN, LastFoot.FootH);
    return;
  }

  if (m == mode::NP_IntOf) {
    // The two lines nearest the crossing: the first hit, then the first other hit.
    const PickedLine a = PickLine(x, y, 8, {KindLine});
    if (!a.Found) return;
    const PickedLine b = PickLine(x, y, 12, {KindLine}, &a);
    if (!b.Found) return;
    SetMode("");
    double X1 = a.X[0], iE = 0, iN = 0;
    bool ok = false;
    IntersectLines(X1, a.Y[0], a.X[1], a.Y[1], b.X[0], b.Y[0], b.X[1], b.Y[1], iE, iN, ok);
    if (!ok) return;
    double E1 = a.X[0], N1 = a.Y[0], E2 = a.X[1], N2 = a.Y[1];
    FootOnSegment3(iE, iN, E1, N1, a.Z[0], E2, N2, a.Z[1], doc.MapType, LastFoot);
    AddNewPoint(iE, iN, LastFoot.FootH);
    return;
  }

  if (m == mode::NP_Extend) {
    if (PickStep == 0) {
      FirstLine = PickLine(x, y, 8, {KindLine});
      if (!FirstLine.Found) return;
      PickStep = 1;
      host.SetPrompt("找到延伸線, 請選被投射線");
      return;
    }
    const PickedLine t = PickLine(x, y, 8, {KindLine});
    if (!t.Found) return;
    if (t.OnBaseMap == FirstLine.OnBaseMap && t.Row == FirstLine.Row) return;
    host.SetPrompt("找到被投射線");
    const PickedLine a = FirstLine;
    SetMode("");
    double X1 = a.X[0], iE = 0, iN = 0;
    bool ok = false;
    IntersectLines(X1, a.Y[0], a.X[1], a.Y[1], t.X[0], t.Y[0], t.X[1], t.Y[1], iE, iN, ok);
    if (!ok) return;
    // The extension runs from the nearer end of the extended line to the crossing.
    const double d0 = std::hypot(iE - a.X[0], iN - a.Y[0]);
    const double d1 = std::hypot(iE - a.X[1], iN - a.Y[1]);
    const int end = d0 <= d1 ? 0 : 1;
    double E1 = a.X[0], N1 = a.Y[0], E2 = a.X[1], N2 = a.Y[1];
    FootOnSegment3(iE, iN, E1, N1, a.Z[0], E2, N2, a.Z[1], doc.MapType, LastFoot);
    if (!AddNewPoint(iE, iN, LastFoot.FootH)) return;
    if (!a.OnBaseMap && (iE != a.X[end] || iN != a.Y[end]))
      NewEntity(a.Code, KindLine, a.X[end], a.Y[end], a.Z[end], iE, iN, LastFoot.FootH, 0, 0, 0, "");
    return;
  }
}

void Editor::CrossingInWindow(const std::string& m, double E1, double N1, double E2, double N2) {
  // The first two lines through the window whose crossing lies inside it; a window with
  // no such pair does nothing, and the command waits for another.
  const std::vector<PickedLine> lines = LinesInWindow(E1, N1, E2, N2);
  const double minE = std::min(E1, E2), maxE = std::max(E1, E2), minN = std::min(N1, N2), maxN = std::max(N1, N2);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (std::size_t j = i + 1; j < lines.size(); ++j) {
      const PickedLine& a = lines[i];
      const PickedLine& b = lines[j];
      double X1 = a.X[0], iE = 0, iN = 0;
      bool ok = false;
      IntersectLines(X1, a.Y[0], a.X[1], a.Y[1], b.X[0], b.Y[0], b.X[1], b.Y[1], iE, iN, ok);
      if (!ok || iE < minE || iE > maxE || iN < minN || iN > maxN) continue;
      double aE1 = a.X[0], aN1 = a.Y[0], aE2 = a.X[1], aN2 = a.Y[1];
      FootOnSegment3(iE, iN, aE1, aN1, a.Z[0], aE2, aN2, a.Z[1], doc.MapType, LastFoot);
      SetMode("");
      if (m == mode::QX2LineMark) {
        AddNewPoint(iE, iN, LastFoot.FootH);
        return;
      }
      MarkPick(iE, iN);
      const std::string text = "E: " + num::Format(iE, "0.000") + "\r\nN: " + num::Format(iN, "0.000");
      host.ShowStatus(text);
      dialogs.MsgBox(text, "兩線交點");
      return;
    }
  }
}

void Editor::KeyinCoordinate() {
  const auto answer = dialogs.InputBox("請輸入E,N或E,N,H座標(逗點分隔)", "輸入座標", "");
  if (!answer || text::Trim(*answer).empty()) return;
  std::vector<double> v;
  std::size_t from = 0;
  bool good = true;
  while (good && from <= answer->size()) {
    const std::size_t comma = std::min(answer->find(',', from), answer->size());
    const auto value = num::ParseStrict(text::Trim(std::string_view(*answer).substr(from, comma - from)));
    good = value && std::isfinite(*value);
    if (good) v.push_back(*value);
    from = comma + 1;
  }
  if (!good || v.size() < 2 || v.size() > 3) {
    dialogs.MsgBox("座標格式不正確: " + *answer, "輸入座標");
    return;
  }
  AddNewPoint(v[0], v[1], doc.MapType == 1 && v.size() == 3 ? v[2] : 0);
}

void Editor::LeadPointPick(const PickHit& p) {
  if (!p.Found) return;
  MarkPick(p.E, p.N);
  const auto answer = dialogs.InputBox("方位角(度分秒,例 1234512),平距(m)", "手動引點", "");
  if (!answer || text::Trim(*answer).empty()) {
    SetMode("");
    return;
  }
  const std::size_t comma = answer->find(',');
  const auto azimuth = ReadPackedAngle(answer->substr(0, comma));
  // A plain double rather than an optional: GCC 12's optimiser takes the optional's
  // value for uninitialised after the checks below and fails the release build.
  double distance = 0;
  if (comma != std::string::npos) {
    if (const auto d = num::ParseStrict(text::Trim(answer->substr(comma + 1)))) distance = *d;
  }
  if (!azimuth || !std::isfinite(distance) || distance <= 0) {
    dialogs.MsgBox("方位角請以度分秒輸入,平距為正數,以逗點分隔,例如 1234512,15.3", "手動引點");
    return;  // the mode stays: the next pick tries again
  }
  const double a = PackedToRadians(*azimuth);
  SetMode("");
  // The led point keeps the height of the point it was led from.
  AddNewPoint(p.E + distance * std::sin(a), p.N + distance * std::cos(a), doc.MapType == 1 ? p.H : 0);
}

void Editor::QueryDistancePick(const PickHit& p) {
  if (!p.Found) return;
  if (PickStep == 0) {
    FirstPick = p;
    PickStep = 1;
    MarkPick(p.E, p.N);
    return;
  }
  PickStep = 0;
  double d, az;
  AzimuthDistance(FirstPick.E, FirstPick.N, p.E, p.N, d, az);
  int16_t deg, min;
  double sec;
  RadiansToDms(az, deg, min, sec);
  const std::string text = "距離: " + num::Format(d, "0.000m") + "\r\n方位角: " + num::Format(deg, "0-") +
                           num::Format(min, "00-") + num::Format(sec, "00.00");
  host.ShowStatus(text);
  dialogs.MsgBox(text, "查詢距離");
}

void Editor::QueryAreaEnd() {
  EraseBand();
  double lE = 0, lN = 0;
  const bool enough = Area.AreaRingCount >= 3;
  const double area = AreaRingClose(Area, lE, lN);
  AreaRingReset(Area);
  SetMode("");
  Repaint();
  if (!enough) return;
  FormatAreaLabel(surface, view, doc.ScaleDenominator, Area.AreaUnit, lE, lN, area, 0);
  dialogs.MsgBox("面積: " + AreaLabelText(area, Area.AreaUnit), "查詢面積");
}

}  // namespace tavik::edit
