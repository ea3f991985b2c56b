// Lines, chains, rectangles, circles and arcs from picked or measured points.
//
// A shape gathers its points in a ShapeBuffer over several picks. Each new point is
// checked against the earlier ones by exact comparison (a point picked twice is refused
// with a message and may be picked again) and dropped silently when it lies within
// 0.1 m of the one before. The measured path (F4 to F8) hands the last recorded points
// to the same Make routines.
#include <cmath>

#include "core/tables.h"
#include "core/text.h"
#include "edit/editor.h"
#include "edit/modes.h"
#include "geo/area.h"
#include "geo/azimuth.h"
#include "geo/circle.h"
#include "geo/constants.h"

namespace tavik::edit {

namespace {

constexpr int16_t CodeAreaLabel = 13;
constexpr double MinSeparation = 0.1;

bool IsSectionLegend(int16_t code) { return code == 520 || code == 521; }

int Needed(Shape s) { return s == Shape::Circle2 ? 2 : 3; }

}  // namespace

void Editor::JournalWarning(bool ok) {
  if (ok) return;
  host.ShowStatus("工作檔寫入失敗,請儘快存檔");
}

int32_t Editor::NewEntity(int16_t code, int16_t kind, double X1, double Y1, double Z1, double X2, double Y2,
                          double Z2, double X3, double Y3, double Z3, const std::string& name) {
  const bool ok = AddEntity(doc, view, work, code, kind, X1, Y1, Z1, X2, Y2, Z2, X3, Y3, Z3, name);
  JournalWarning(ok);
  doc.MapChanged = kTrue;
  const int32_t row = doc.EntityCount - 1;
  host.DrawEntityRow(row);
  return row;
}

void Editor::MarkPick(double E, double N) {
  float x, y;
  WorldToPixel(E, N, x, y);
  surface.SetPen(ui::MakeRgb(255, 0, 0), 1, ui::LineStyle::Solid);
  surface.Circle(x, y, 3);
}

// The common checks on the newest point of a buffer. False when the point was refused
// or dropped; the count has then fallen back by one.
bool Editor::ShapeChecks(ShapeBuffer& b) {
  const int k = b.Count - 1;
  if (k == 1 && b.E[1] == b.E[0] && b.N[1] == b.N[0]) {
    dialogs.MsgBox("一二兩點同點", "錯誤");
    --b.Count;
    return false;
  }
  if (k == 2 && b.E[2] == b.E[0] && b.N[2] == b.N[0]) {
    dialogs.MsgBox("一三兩點同點", "錯誤");
    --b.Count;
    return false;
  }
  if (k == 2 && b.E[2] == b.E[1] && b.N[2] == b.N[1]) {
    dialogs.MsgBox("二三兩點同點", "錯誤");
    --b.Count;
    return false;
  }
  if (k >= 1 && std::hypot(b.E[k] - b.E[k - 1], b.N[k] - b.N[k - 1]) < MinSeparation) {
    --b.Count;
    return false;
  }
  return true;
}

void Editor::ShapePick(Shape shape, const PickHit& p) {
  if (!p.Found) return;
  ShapeBuffer& b = Buffers[static_cast<int>(shape)];
  if (b.Count >= 3) b.Count = 0;
  b.E[b.Count] = p.E;
  b.N[b.Count] = p.N;
  b.H[b.Count] = p.H;
  ++b.Count;
  if (!ShapeChecks(b)) return;
  MarkPick(p.E, p.N);
  if (b.Count < Needed(shape)) return;
  b.Count = 0;
  switch (shape) {
    case Shape::Rectangle:
      MakeRectangle(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1], b.E[2], b.N[2], b.H[2]);
      break;
    case Shape::Circle2:
      MakeCircle2(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1]);
      break;
    case Shape::Circle3:
      MakeCircle3(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1], b.E[2], b.N[2], b.H[2]);
      break;
    case Shape::Arc:
      MakeArc(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1], b.E[2], b.N[2], b.H[2]);
      break;
  }
}

bool Editor::AddLine(double E1, double N1, double H1, double E2, double N2, double H2) {
  if (E1 == E2 && N1 == N2) return false;
  NewEntity(doc.CurrentLegend, KindLine, E1, N1, H1, E2, N2, H2, 0, 0, 0, "");
  return true;
}

bool Editor::MakeRectangle(double AE, double AN, double AH, double BE, double BN, double BH, double CE,
                           double CN, double CH) {
  // Keep the corners apart so that no azimuth runs along a grid axis by accident.
  for (int i = 0; i < 3; ++i) {
    if (AE == BE) BE += 0.0001;
    if (AE == CE || BE == CE) CE += 0.0001;
    if (AN == BN) BN += 0.0001;
    if (AN == CN || BN == CN) CN += 0.0001;
  }
  // B must be the corner: an angle strictly between 85 and 95 degrees. Otherwise the
  // roles rotate (A takes B's place, B takes C's, C takes A's) and the test runs again.
  bool square = false;
  for (int attempt = 0; attempt < 3; ++attempt) {
    double d, azBA, azBC;
    AzimuthDistance(BE, BN, AE, AN, d, azBA);
    AzimuthDistance(BE, BN, CE, CN, d, azBC);
    double angle = std::fabs(azBA - azBC);
    if (angle > Pi) angle = TwoPi - angle;
    const double degrees = angle * RadToDeg;
    if (degrees > 85 && degrees < 95) {
      square = true;
      break;
    }
    const double tE = AE, tN = AN, tH = AH;
    AE = BE, AN = BN, AH = BH;
    BE = CE, BN = CN, BH = CH;
    CE = tE, CN = tN, CH = tH;
  }
  if (!square) {
    dialogs.MsgBox("角度不成矩形", "錯誤");
    return false;
  }
  const double DE = (CE - BE) + AE;
  const double DN = (AN - BN) + CN;
  double DH = 0;
  if (doc.MapType == 1) {
    if (AH > 0 && CH > 0)
      DH = std::min(AH, CH);
    else if (AH > 0)
      DH = AH;
    else if (CH > 0)
      DH = CH;
  }
  const int16_t code = doc.CurrentLegend;
  NewEntity(code, KindLine, AE, AN, AH, BE, BN, BH, 0, 0, 0, "");
  NewEntity(code, KindLine, BE, BN, BH, CE, CN, CH, 0, 0, 0, "");
  NewEntity(code, KindLine, CE, CN, CH, DE, DN, DH, 0, 0, 0, "");
  NewEntity(code, KindLine, DE, DN, DH, AE, AN, AH, 0, 0, 0, "");
  return true;
}

void Editor::AreaLabel(double E, double N, double area) {
  FormatAreaLabel(surface, view, doc.ScaleDenominator, Area.AreaUnit, E, N, area, -1);
  NewEntity(CodeAreaLabel, KindPoint, E, N, area, 0, 0, 0, 0, 0, 0, "");
}

bool Editor::MakeCircle2(double AE, double AN, double AH, double BE, double BN, double BH) {
  if (AE == BE && AN == BN) {
    dialogs.MsgBox("一二兩點同點", "錯誤");
    return false;
  }
  if (AE == BE) BE += 0.0001;
  if (AN == BN) BN += 0.0001;
  const double r = std::hypot(BE - AE, BN - AN);
  NewEntity(doc.CurrentLegend, KindCircle2, AE, AN, AH, BE, BN, BH, 0, 0, 0, "");
  AreaLabel(AE, AN, r * r * Pi);
  return true;
}

bool Editor::MakeCircle3(double AE, double AN, double AH, double BE, double BN, double BH, double CE,
                         double CN, double CH) {
  if (Cross3(AE, AN, BE, BN, CE, CN) == 0) {
    dialogs.MsgBox("錯誤:三點共線.", "錯誤");
    return false;
  }
  double e1 = AE, n1 = AN, e2 = BE, n2 = BN, e3 = CE, n3 = CN;
  SeparationNudge(e1, n1, e2, n2, e3, n3);
  double ec, nc;
  CircleCentre3(e1, n1, e2, n2, e3, n3, ec, nc);
  const double r = std::hypot(AE - ec, AN - nc);
  NewEntity(doc.CurrentLegend, KindCircle3, AE, AN, AH, BE, BN, BH, CE, CN, CH, "");
  AreaLabel(ec, nc, r * r * Pi);
  return true;
}

bool Editor::NameInUse(const std::string& name, const std::vector<int32_t>& ownRows) const {
  for (int32_t i = 0; i < doc.EntityCount && i < static_cast<int32_t>(doc.EntityTable.size()); ++i) {
    const Entity& e = doc.EntityTable[i];
    if (e.Deleted) continue;
    bool own = false;
    for (int32_t r : ownRows) own = own || r == i;
    if (!own && text::Trim(e.Name) == name) return true;
  }
  return false;
}

// The section name of a cross-section arc or chain: asked until it is new. False on
// cancel or an empty answer.
bool Editor::AskSectionName(std::string& name, const std::vector<int32_t>& ownRows) {
  for (;;) {
    auto answer = dialogs.InputBox("請輸入斷面名稱:", "斷面名稱");
    if (!answer) return false;
    name = text::Trim(*answer);
    if (name.empty()) return false;
    if (text::Cp950Length(name) > NameBytes)
      name = text::FromCp950(text::CutCp950(text::ToCp950(name), NameBytes));
    if (!NameInUse(name, ownRows)) return true;
    dialogs.MsgBox("斷線名稱重覆,請重新輸入", "發現重覆名稱");
  }
}

bool Editor::MakeArc(double AE, double AN, double AH, double BE, double BN, double BH, double CE, double CN,
                     double CH) {
  if (Cross3(AE, AN, BE, BN, CE, CN) == 0) {
    dialogs.MsgBox("錯誤:三點共線.", "錯誤");
    return false;
  }
  std::string name;
  if (IsSectionLegend(doc.CurrentLegend) && !AskSectionName(name, {})) return false;
  NewEntity(doc.CurrentLegend, KindArc3, AE, AN, AH, BE, BN, BH, CE, CN, CH, name);
  return true;
}

// A pick in the line mode: the first pick starts a chain, each further one adds a line
// from the last vertex.
void Editor::ChainPick(const PickHit& p) {
  if (!p.Found) return;
  if (Ptr.LineInProgress && Ptr.ChainCount > 0) {
    const int k = Ptr.ChainCount - 1;
    const double lE = Ptr.ChainPoints[0][k], lN = Ptr.ChainPoints[1][k], lH = Ptr.ChainPoints[2][k];
    if (std::hypot(p.E - lE, p.N - lN) < MinSeparation) return;
    EraseBand();
    ChainLine(lE, lN, lH, p.E, p.N, p.H);
  } else {
    Ptr.LineInProgress = kTrue;
    Ptr.ChainCount = 0;
    Ptr.ChainRows.clear();
    for (auto& c : Ptr.ChainPoints) c.clear();
    MarkPick(p.E, p.N);
  }
  Ptr.ChainPoints[0].push_back(p.E);
  Ptr.ChainPoints[1].push_back(p.N);
  Ptr.ChainPoints[2].push_back(p.H);
  ++Ptr.ChainCount;
}

void Editor::ChainLine(double E1, double N1, double H1, double E2, double N2, double H2) {
  if (Ptr.ActionMode == mode::BaseLine) {
    AddBaseMapLine(E1, N1, E2, N2);
    return;
  }
  AddLine(E1, N1, H1, E2, N2, H2);
  Ptr.ChainRows.push_back(doc.EntityCount - 1);
}

void Editor::EndChain() {
  EraseBand();
  const std::vector<int32_t> rows = Ptr.ChainRows;
  Ptr.LineInProgress = kFalse;
  Ptr.ChainCount = 0;
  Ptr.ChainRows.clear();
  for (auto& c : Ptr.ChainPoints) c.clear();
  if (rows.empty() || !IsSectionLegend(doc.EntityTable[rows.front()].Code)) return;
  std::string name;
  if (!AskSectionName(name, rows)) return;
  for (int32_t r : rows) doc.EntityTable[r].Name = name;
  for (int32_t i = 0; i < doc.ScreenEntityCount && i < static_cast<int32_t>(doc.ScreenEntityTable.size()); ++i)
    for (int32_t r : rows)
      if (doc.ScreenEntityTable[i].Number == doc.EntityTable[r].Number) doc.ScreenEntityTable[i].Name = name;
  JournalWarning(work.WriteEntityWorkFile(doc));
  doc.MapChanged = kTrue;
  Repaint();
}

// The letter c: one more line back to the first vertex, and the chain ends.
void Editor::CloseChain() {
  if (Ptr.ChainCount >= 3) {
    EraseBand();
    const int k = Ptr.ChainCount - 1;
    ChainLine(Ptr.ChainPoints[0][k], Ptr.ChainPoints[1][k], Ptr.ChainPoints[2][k], Ptr.ChainPoints[0][0],
              Ptr.ChainPoints[1][0], Ptr.ChainPoints[2][0]);
  }
  EndChain();
}

void Editor::MeasuredPointAdded() {
  MeasuredShape flag = Flag;
  // Automatic joining (F9) draws a line from the point before to the new one.
  if (flag == MeasuredShape::None && AutoJoin) flag = MeasuredShape::Line;
  if (flag == MeasuredShape::None) return;
  const int need = (flag == MeasuredShape::Line || flag == MeasuredShape::Circle2) ? 2 : 3;
  // The newest live points, oldest first.
  std::vector<const Point*> last;
  for (int32_t i = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size())) - 1;
       i >= 0 && static_cast<int>(last.size()) < need; --i)
    if (!doc.PointTable[i].Deleted) last.insert(last.begin(), &doc.PointTable[i]);
  if (static_cast<int>(last.size()) < need) return;
  Flag = MeasuredShape::None;

  ShapeBuffer b;
  for (const Point* p : last) {
    b.E[b.Count] = p->E;
    b.N[b.Count] = p->N;
    b.H[b.Count] = p->H;
    ++b.Count;
    if (!ShapeChecks(b)) return;
  }
  switch (flag) {
    case MeasuredShape::Line:
      AddLine(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1]);
      break;
    case MeasuredShape::Circle2:
      MakeCircle2(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1]);
      break;
    case MeasuredShape::Circle3:
      MakeCircle3(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1], b.E[2], b.N[2], b.H[2]);
      break;
    case MeasuredShape::Arc:
      MakeArc(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1], b.E[2], b.N[2], b.H[2]);
      break;
    case MeasuredShape::Rectangle:
      MakeRectangle(b.E[0], b.N[0], b.H[0], b.E[1], b.N[1], b.H[1], b.E[2], b.N[2], b.H[2]);
      break;
    case MeasuredShape::None:
      break;
  }
}

}  // namespace tavik::edit
