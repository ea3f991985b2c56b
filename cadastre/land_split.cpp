#include "cadastre/land_split.h"

#include <cmath>
#include <filesystem>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "geo/area.h"
#include "geo/azimuth.h"
#include "geo/constants.h"
#include "geo/formats.h"
#include "geo/pick.h"

namespace tavik::cadastre {

namespace {

constexpr double TraceSnapPixels = 30;
constexpr double PointPickPixels = 20;
constexpr double LinePickHalf = 8;

double AzimuthOf(double E1, double N1, double E2, double N2) {
  double d = 0, a = 0;
  AzimuthDistance(E1, N1, E2, N2, d, a);
  return a;
}

}  // namespace

LandSplit::LandSplit(Document& d, const View& v, WorkFiles& w, ui::Dialogs& dl)
    : doc(d), view(v), wf(w), dialogs(dl) {}

bool LandSplit::CanOpen(const Document& doc, ui::Dialogs& dialogs) {
  if (doc.ReferenceMapLoaded != kFalse) return true;
  dialogs.MsgBox(NoReferenceMapMessage);
  return false;
}

int32_t LandSplit::EdgeCount() const { return EdgesOf(doc, doc.SplitStakeCount).Count(); }

void LandSplit::Message(const std::string& text, const std::string& title) { dialogs.MsgBox(text, title); }

void LandSplit::Mode(const std::string& m) {
  if (SetActionMode) SetActionMode(m);
}

void LandSplit::SetLabel1(const char* picture) {
  form.Label1 = "界樁" + std::to_string(doc.SplitStakeCount) + "支,\n面積" + num::Format(SplitTotalArea, picture);
}

void LandSplit::Open() {
  SplitStep = 100;
  form.Combo1 = "100";
  if (doc.SplitStakeCount > 2) {
    SplitTotalArea = ParcelArea();
    SetLabel1(fmt::SplitAreaUnit);
  }
}

double LandSplit::ParcelArea() const {
  const auto& v = doc.SplitBoundaryVertices;
  const auto n = std::min<std::size_t>({static_cast<std::size_t>(std::max<int16_t>(doc.SplitStakeCount, 0)),
                                        v[0].size(), v[1].size()});
  return ShoelaceArea(v[0].data(), v[1].data(), static_cast<int32_t>(n));
}

// ---- Tracing -------------------------------------------------------------------------

void LandSplit::Command1() {
  doc.CurrentLegend = CodeSplitBoundary;
  Mode(ModeTrace);
}

bool LandSplit::TracePick(double x, double y) {
  bool found = false;
  double E = 0, N = 0, H = 0;
  for (int32_t i = 0; i < doc.ScreenEntityCount && !found; ++i) {
    const Entity& e = doc.ScreenEntityTable[static_cast<std::size_t>(i)];
    if (e.Deleted != kFalse || (e.Kind != KindLine && e.Kind != KindArc3)) continue;
    for (int k = 0; k < 3 && !found; ++k) {
      if (PickBoxTest(view, doc.ScaleDenominator, x, y, TraceSnapPixels, e.X[k], e.Y[k])) {
        found = true;
        E = e.X[k], N = e.Y[k], H = e.Z[k];
      }
    }
  }
  if (!found) return false;
  (void)H;  // the boundary is flat: its edges are stored at height 0
  auto& v = doc.SplitBoundaryVertices;
  const auto count = static_cast<std::size_t>(std::max<int16_t>(doc.SplitStakeCount, 0));
  if (v[0].size() < count + 1) v[0].resize(count + 1), v[1].resize(count + 1);
  if (count > 0 && E == v[0][count - 1] && N == v[1][count - 1]) return false;  // the same corner again
  if (count == 0) {
    v[0][0] = E, v[1][0] = N;
    doc.SplitStakeCount = 1;
    return true;
  }
  const double lastE = v[0][count - 1], lastN = v[1][count - 1];
  AddEntity(doc, view, wf, CodeSplitBoundary, KindLine, lastE, lastN, 0, E, N, 0, 0, 0, 0, "");
  auto& edges = doc.SplitBoundaryEdges;
  for (auto& c : edges)
    if (c.size() < count) c.resize(count);
  edges[0][count - 1] = lastE, edges[1][count - 1] = lastN, edges[2][count - 1] = E, edges[3][count - 1] = N;
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
  if (ShowCounts) ShowCounts();
  DrawSegment(lastE, lastN, E, N, ui::QBColor(2), ui::LineStyle::Dash);
  if (E == v[0][0] && N == v[1][0]) {
    // The ring is closed by the first corner itself, which is not listed twice.
    Mode("");
    if (ShowDialog) ShowDialog();
    SplitTotalArea = ParcelArea();
    SetLabel1(fmt::SplitAreaUnit);
    return true;
  }
  v[0][count] = E, v[1][count] = N;
  ++doc.SplitStakeCount;
  return true;
}

// ---- The area boxes ------------------------------------------------------------------

void LandSplit::ShowAreas(const char* picture) {
  form.Text1 = num::Format(SplitTargetArea, picture);
  form.Text3 = num::Format(SplitRemainArea, picture);
}

void LandSplit::AreaDone(bool first) {
  std::string& box = first ? form.Text1 : form.Text3;
  if (box.empty()) return;
  if (SplitTotalArea == 0) {
    Message("請先圈出要分割的土地", "操作錯誤");
    box.clear();
    return;
  }
  const double value = num::ParseLenient(box);
  if (value > SplitTotalArea || value == 0) {
    Message(AreaRangeMessage, "數值錯誤");
    box.clear();
    SplitTargetArea = SplitRemainArea = 0;
    return;
  }
  SplitTargetArea = first ? value : SplitTotalArea - value;
  SplitRemainArea = first ? SplitTotalArea - value : value;
  ShowAreas(fmt::SplitArea);
}

void LandSplit::Text1Done() { AreaDone(true); }
void LandSplit::Text3Done() { AreaDone(false); }
void LandSplit::AreaTyped() { form.Option = 0; }
void LandSplit::AzimuthTyped() {
  if (form.Option == 5) form.Option = 0;
}

void LandSplit::Check1Click(bool ticked) {
  if (SplitTotalArea == 0) {
    Message("請圈選分割土地範圍", "尚未指定土地");
    form.Check1 = false;
    return;
  }
  form.Check1 = ticked;
  if (ticked) {
    EraseSplitMark();
    SplitTargetArea = SplitRemainArea = SplitTotalArea / 2;
    ShowAreas(fmt::SplitArea);
    form.AreaBoxesEnabled = false;
  } else {
    form.AreaBoxesEnabled = true;
  }
  form.Option = 0;
}

void LandSplit::Step(bool up) {
  if (form.Text1.empty() || form.Text3.empty()) return;
  // Tested with the step in force before the box is read again.
  if (up ? !(SplitTargetArea + SplitStep < SplitTotalArea) : !(SplitTargetArea - SplitStep > 0)) return;
  SplitStep = num::ParseLenient(form.Combo1);
  SplitTargetArea += up ? SplitStep : -SplitStep;
  SplitRemainArea = SplitTotalArea - SplitTargetArea;
  if (!up || doc.SplitAreaAt[0] != 0) EraseSplitMark();
  ShowAreas(fmt::SplitArea);
  RunAgain();
}

void LandSplit::Command3() { Step(true); }
void LandSplit::Command4() { Step(false); }

// The mode in force runs again. Mode 8 runs as mode 5, with the azimuth its cut left
// in Text2: a new area along the same direction.
void LandSplit::RunAgain() {
  switch (form.Option) {
    case 1:
    case 2:
    case 3:
    case 4:
    case 5:
      SplitByDirection(form.Option);
      break;
    case 6:
      SplitParallel(SplitParallelEntity);
      break;
    case 7:
      SplitThroughPoint(SplitPointRow);
      break;
    case 8:
      if (Guards(5)) SplitByDirection(5);
      break;
    default:
      break;
  }
}

// ---- The modes -----------------------------------------------------------------------

bool LandSplit::Guards(int option) {
  if (option == 8) return true;
  if (SplitTotalArea == 0) {
    Message("請圈選分割土地範圍", "尚未指定地點");
    form.Option = 0;
    return false;
  }
  if (SplitTargetArea == 0) {
    Message("請輸入分割面積", "沒有指定面積");
    form.Option = 0;
    return false;
  }
  if (option == 5 && form.Text2.empty()) {
    Message("請輸入方位角", "沒有方位角資料");
    form.Option = 0;
    return false;
  }
  return true;
}

void LandSplit::ChooseOption(int option) {
  if (option < 1 || option > 8) return;
  form.Option = option;
  if (!Guards(option)) return;
  switch (option) {
    case 6:
      Mode(ModeParallel);
      break;
    case 7:
      Mode(ModeThroughPoint);
      break;
    case 8:
      EraseSplitMark();
      SplitSecondPoint = kFalse;
      Mode(ModeTwoPoints);
      break;
    default:
      SplitByDirection(option);
      break;
  }
}

void LandSplit::SplitByDirection(int option) {
  const Edges edges = EdgesOf(doc, doc.SplitStakeCount);
  const bool turn = option != 3 && option != 4;
  double theta = 0;
  if (option == 1) theta = Pi / 2;
  if (option == 2) theta = -Pi / 2;
  if (option == 5) theta = num::ParseLenient(form.Text2) / 180 * Pi;
  if (!turn) {
    SplitCutArea = ScanSplit(cut, edges, SplitTargetArea, option == 4);
    FinishCut(true, "###0.0000");
    return;
  }
  const Box b = MinMaxEdges(edges);
  const double CE = (b.MinE + b.MaxE) / 2, CN = (b.MinN + b.MaxN) / 2;
  Edges turned;
  TurnEdges(edges, CE, CN, -theta, turned);
  SplitCutArea = ScanSplit(cut, turned, SplitTargetArea, false, option == 5);
  TurnCut(cut, CE, CN, theta);
  FinishCut(option != 5, fmt::SplitAzimuth);
}

bool LandSplit::PickParallelLine(double x, double y) {
  double E1 = 0, N1 = 0, E2 = 0, N2 = 0;
  PaperToWorld(view, doc.ScaleDenominator, x - LinePickHalf, y + LinePickHalf, E1, N1);
  PaperToWorld(view, doc.ScaleDenominator, x + LinePickHalf, y - LinePickHalf, E2, N2);
  const double minE = std::min(E1, E2), maxE = std::max(E1, E2), minN = std::min(N1, N2), maxN = std::max(N1, N2);
  for (int32_t i = doc.ScreenEntityCount - 1; i >= 0; --i) {
    const Entity& e = doc.ScreenEntityTable[static_cast<std::size_t>(i)];
    if (e.Deleted != kFalse || e.Kind != KindLine) continue;
    auto inside = [&](int k) { return e.X[k] >= minE && e.X[k] <= maxE && e.Y[k] >= minN && e.Y[k] <= maxN; };
    FoundPosition where;
    if (inside(0) || inside(1) || BoxHitsChain(2, e.X, e.Y, nullptr, minE, minN, maxE, maxN, where)) {
      Mode("");
      SplitParallel(e.Number);
      return true;
    }
  }
  form.Option = 0;
  return false;
}

bool LandSplit::SplitParallel(int32_t number) {
  const int32_t row = EntityRow(doc, number);
  if (row < 0 || doc.EntityTable[static_cast<std::size_t>(row)].Kind != KindLine) return false;
  const Entity line = doc.EntityTable[static_cast<std::size_t>(row)];
  DrawSegment(line.X[0], line.Y[0], line.X[1], line.Y[1], ui::QBColor(5), ui::LineStyle::DashDot);
  SplitParallelEntity = number;
  const double theta = AzimuthOf(line.X[0], line.Y[0], line.X[1], line.Y[1]);
  const Edges edges = EdgesOf(doc, doc.SplitStakeCount);
  const Box b = MinMaxEdges(edges);
  const double CE = (b.MinE + b.MaxE) / 2, CN = (b.MinN + b.MaxN) / 2;
  Edges turned;
  TurnEdges(edges, CE, CN, -theta, turned);
  double E = line.X[0], N = line.Y[0];
  TurnPoint(CE, CN, -theta, E, N);
  // The piece lies against the chosen line: scanned from its side of the parcel.
  SplitCutArea = ScanSplit(cut, turned, SplitTargetArea, !(E < CE));
  TurnCut(cut, CE, CN, theta);
  FinishCut(true, fmt::SplitAzimuth);
  return true;
}

bool LandSplit::PickPivotPoint(double x, double y) {
  for (int32_t i = 0; i < doc.ScreenPointCount; ++i) {
    const Point& p = doc.ScreenPointTable[static_cast<std::size_t>(i)];
    if (p.Deleted != kFalse || !PickBoxTest(view, doc.ScaleDenominator, x, y, PointPickPixels, p.E, p.N)) continue;
    SplitPointRow = i;
    Mode("");
    SplitThroughPoint(i);
    return true;
  }
  return false;
}

bool LandSplit::NearestEdgeFoot(double E, double N, int32_t& edgeNumber) {
  Edges e = EdgesOf(doc, doc.SplitStakeCount);
  double best = 99999;
  bool found = false;
  for (int32_t i = 0; i < e.Count(); ++i) {
    const auto r = static_cast<std::size_t>(i);
    Foot foot;
    if (!FootOnSegment(E, N, e.v[0][r], e.v[1][r], e.v[2][r], e.v[3][r], foot)) continue;
    const double d = std::hypot(foot.FootE - E, foot.FootN - N);
    if (d < best) {
      best = d;
      doc.SplitLine[0] = foot.FootE, doc.SplitLine[1] = foot.FootN;
      edgeNumber = i + 1;
      found = true;
    }
  }
  return found;
}

bool LandSplit::SplitThroughPoint(int32_t row) {
  if (row < 0 || row >= doc.ScreenPointCount || static_cast<std::size_t>(row) >= doc.ScreenPointTable.size())
    return false;
  const Point& p = doc.ScreenPointTable[static_cast<std::size_t>(row)];
  return SplitThroughPointAt(p.E, p.N);
}

bool LandSplit::SplitThroughPointAt(double E, double N) {
  int32_t edge = 0;
  if (!NearestEdgeFoot(E, N, edge)) return false;
  const double QE = doc.SplitLine[0], QN = doc.SplitLine[1];
  const Edges edges = EdgesOf(doc, doc.SplitStakeCount);
  // The start of the turn: the line entity numbered from the reference map's end, which
  // is the edge traced before the one found when the parcel follows the reference map
  // directly. Only where the scan starts depends on it. With no such line (the first
  // edge of a parcel traced on an empty reference) the edge found itself gives it.
  const auto r = static_cast<std::size_t>(edge - 1);
  double A = AzimuthOf(edges.v[0][r], edges.v[1][r], edges.v[2][r], edges.v[3][r]);
  const int32_t row = EntityRow(doc, doc.ReferenceEntityCount + edge - 1);
  if (row >= 0 && doc.EntityTable[static_cast<std::size_t>(row)].Kind == KindLine) {
    const Entity& e = doc.EntityTable[static_cast<std::size_t>(row)];
    A = AzimuthOf(e.X[0], e.Y[0], e.X[1], e.Y[1]);
  }
  const Box b = MinMaxEdges(edges);
  double CE = (b.MinE + b.MaxE) / 2, CN = (b.MinN + b.MaxN) / 2;
  TurnPoint(QE, QN, -A, CE, CN);
  SplitCutArea = PivotSplit(cut, edges, QE, QN, A, QE < CE, SplitTargetArea);
  FinishCut(true, fmt::SplitAzimuth);
  return true;
}

bool LandSplit::PickTwoPoints(double x, double y) {
  for (int32_t i = 0; i < doc.ScreenPointCount; ++i) {
    const Point& p = doc.ScreenPointTable[static_cast<std::size_t>(i)];
    if (p.Deleted != kFalse || !PickBoxTest(view, doc.ScaleDenominator, x, y, PointPickPixels, p.E, p.N)) continue;
    if (SplitSecondPoint == kFalse) {
      doc.SplitLine[0] = p.E, doc.SplitLine[1] = p.N;
      SplitSecondPoint = kTrue;
      dialogs.MsgBox("P1 OK");
    } else {
      doc.SplitLine[2] = p.E, doc.SplitLine[3] = p.N;
      SplitSecondPoint = kFalse;
      Mode("");
      SplitTwoPoints();
    }
    return true;
  }
  return false;
}

void LandSplit::SplitTwoPointsAt(double E1, double N1, double E2, double N2) {
  doc.SplitLine[0] = E1, doc.SplitLine[1] = N1, doc.SplitLine[2] = E2, doc.SplitLine[3] = N2;
  SplitTwoPoints();
}

void LandSplit::SplitTwoPoints() {
  const double theta = AzimuthOf(doc.SplitLine[0], doc.SplitLine[1], doc.SplitLine[2], doc.SplitLine[3]);
  form.Text2 = num::Format(theta * RadToDeg, fmt::SplitAzimuth);
  const Edges edges = EdgesOf(doc, doc.SplitStakeCount);
  const Box b = MinMaxEdges(edges);
  const double CE = (b.MinE + b.MaxE) / 2, CN = (b.MinN + b.MaxN) / 2;
  Edges turned;
  TurnEdges(edges, CE, CN, -theta, turned);
  cut.A1E = doc.SplitLine[0], cut.A1N = doc.SplitLine[1], cut.A2E = doc.SplitLine[2], cut.A2N = doc.SplitLine[3];
  TurnPoint(CE, CN, -theta, cut.A1E, cut.A1N);
  TurnPoint(CE, CN, -theta, cut.A2E, cut.A2N);
  const Box tb = MinMaxEdges(turned);
  const double x = cut.A1E;
  // The picked points only give the line: the crossings become A1 and A2.
  SplitCutArea = SplitTargetArea = AreaLeftOf(cut, turned, x, tb.MinN, x, tb.MaxN);
  SplitRemainArea = SplitTotalArea - SplitTargetArea;
  ShowAreas("######.0000");
  TurnCut(cut, CE, CN, theta);
  FinishCut(true, fmt::SplitAzimuth);
}

void LandSplit::FinishCut(bool showAzimuth, const char* azimuthPicture) {
  doc.SplitLine[0] = cut.A1E, doc.SplitLine[1] = cut.A1N, doc.SplitLine[2] = cut.A2E, doc.SplitLine[3] = cut.A2N;
  if (showAzimuth) form.Text2 = num::Format(AzimuthOf(cut.A1E, cut.A1N, cut.A2E, cut.A2N) * RadToDeg, azimuthPicture);
  EraseSplitMark();
  DrawSegment(cut.A1E, cut.A1N, cut.A2E, cut.A2N, ui::QBColor(5), ui::LineStyle::Dot);
  // The label stands at the plain average of the piece's corners; a cut that kept no
  // piece labels the middle of the cut instead.
  double E = (cut.A1E + cut.A2E) / 2, N = (cut.A1N + cut.A2N) / 2;
  const int32_t m = std::min(cut.SplitPieceCount, cut.SplitPiece.Count());
  if (m > 0) {
    E = N = 0;
    for (int32_t i = 0; i < m; ++i) E += cut.SplitPiece.v[0][i], N += cut.SplitPiece.v[1][i];
    E /= m, N /= m;
  }
  if (Paper) FormatAreaLabel(*Paper, view, doc.ScaleDenominator, AreaUnit, E, N, SplitCutArea, -1);
  for (int k = 0; k < 4; ++k) doc.SplitLineLabelled[k] = doc.SplitLine[k];
  doc.SplitAreaValue = SplitCutArea;
  doc.SplitAreaAt[0] = E, doc.SplitAreaAt[1] = N;
}

void LandSplit::DrawSegment(double E1, double N1, double E2, double N2, ui::Rgb colour, ui::LineStyle style) {
  if (!Paper) return;
  float x1 = 0, y1 = 0, x2 = 0, y2 = 0;
  WorldToPaper(view, doc.ScaleDenominator, E1, N1, x1, y1);
  WorldToPaper(view, doc.ScaleDenominator, E2, N2, x2, y2);
  Paper->SetDrawMode(ui::DrawMode::Copy);
  Paper->SetPen(colour, 1, style);
  Paper->Line(x1, y1, x2, y2);
}

void LandSplit::EraseSplitMark() {
  const double* l = doc.SplitLineLabelled;
  DrawSegment(l[0], l[1], l[2], l[3], ui::MakeRgb(255, 255, 255), ui::LineStyle::Dot);
  if (Paper)
    FormatAreaLabel(*Paper, view, doc.ScaleDenominator, AreaUnit, doc.SplitAreaAt[0], doc.SplitAreaAt[1],
                    doc.SplitAreaValue, 0);
}

// ---- Commit, clear, abandon, output --------------------------------------------------

void LandSplit::cmdApply() {
  Mode("");
  // The boundary goes in a second time, on top of the traced edges, so that the
  // committed parcel stands whole after the cut whatever happens to the trace.
  const auto& edges = doc.SplitBoundaryEdges;
  const std::size_t rows = std::min({edges[0].size(), edges[1].size(), edges[2].size(), edges[3].size()});
  for (std::size_t i = 0; i < rows; ++i)
    AddEntity(doc, view, wf, CodeSplitBoundary, KindLine, edges[0][i], edges[1][i], 0, edges[2][i], edges[3][i], 0,
              0, 0, 0, "");
  const double A1E = doc.SplitLine[0], A1N = doc.SplitLine[1], A2E = doc.SplitLine[2], A2N = doc.SplitLine[3];
  AddPoint(doc, view, wf, A1E, A1N, 0);
  AddPoint(doc, view, wf, A2E, A2N, 0);
  AddEntity(doc, view, wf, CodeSplitLine, KindLine, A1E, A1N, 0, A2E, A2N, 0, 0, 0, 0, "");
  // The area label goes under the boundary code; the loader looks for it under the cut's
  // code, so a reloaded document does not find its area again.
  AddEntity(doc, view, wf, CodeSplitBoundary, doc.SplitAreaAt[0], doc.SplitAreaAt[1], 0, num::Plain(doc.SplitAreaValue));
  doc.MapChanged = kTrue;
  wf.WriteRecoveryHeader(doc);
  if (ShowCounts) ShowCounts();
  if (Close) Close();
}

void LandSplit::cmdCancel() {
  EraseSplitMark();
  form.Option = 0;
}

void LandSplit::Command2() {
  // Everything after the reference map goes, and with it (by one too many) the
  // reference map's last point and line. The boundary count stays, so a new trace goes
  // on from there.
  doc.PointCount = std::max(0, doc.ReferencePointCount - 1);
  doc.EntityCount = std::max(0, doc.ReferenceEntityCount - 1);
  if (doc.PointTable.size() > static_cast<std::size_t>(doc.PointCount)) doc.PointTable.resize(static_cast<std::size_t>(doc.PointCount));
  if (doc.EntityTable.size() > static_cast<std::size_t>(doc.EntityCount)) doc.EntityTable.resize(static_cast<std::size_t>(doc.EntityCount));
  std::erase_if(doc.ScreenPointTable, [&](const Point& p) { return p.Number > doc.PointCount; });
  std::erase_if(doc.ScreenEntityTable, [&](const Entity& e) { return e.Number > doc.EntityCount; });
  RowsChanged(doc);
  doc.ScreenPointCount = static_cast<int32_t>(doc.ScreenPointTable.size());
  doc.ScreenEntityCount = static_cast<int32_t>(doc.ScreenEntityTable.size());
  doc.DeletedPointCount = doc.DeletedEntityCount = 0;
  for (const Point& p : doc.PointTable) doc.DeletedPointCount += p.Deleted != kFalse;
  for (const Entity& e : doc.EntityTable) doc.DeletedEntityCount += e.Deleted != kFalse;
  doc.MapChanged = kTrue;
  wf.WritePointWorkFile(doc);
  wf.WriteEntityWorkFile(doc);
  wf.WriteRecoveryHeader(doc);
  SplitTotalArea = 0;
  if (Redraw) Redraw();
  if (ShowCounts) ShowCounts();
  if (Close) Close();
}

void LandSplit::cmdOutput() {
  const std::string path = dialogs.SaveFileName(
      "分割點輸出", "TXT文字檔(*.TXT)|*.TXT|csv逗號分隔文字檔(*.csv)|*.csv|所有檔案(*.*)|*.*", WorkFolder);
  if (path.empty()) return;
  if (!WriteStakeFile(path)) {
    Message(path + " 無法寫入", "分割點輸出");
    return;
  }
  dialogs.MsgBox(path + "輸出完畢.");
}

bool LandSplit::WriteStakeFile(const std::string& path) const {
  auto line = [](const std::string& name, double E, double N) {
    return name + "," + num::Format(E, fmt::SplitCoordinate) + "," + num::Format(N, fmt::SplitCoordinate) + "\r\n";
  };
  std::string text = line("A1", doc.SplitLine[0], doc.SplitLine[1]) + line("A2", doc.SplitLine[2], doc.SplitLine[3]);
  const auto& edges = doc.SplitBoundaryEdges;
  const int32_t n = std::min<int32_t>(doc.SplitStakeCount, static_cast<int32_t>(std::min(edges[0].size(), edges[1].size())));
  for (int32_t i = 1; i <= n; ++i)
    text += line("B" + std::to_string(i), edges[0][static_cast<std::size_t>(i - 1)], edges[1][static_cast<std::size_t>(i - 1)]);
  std::error_code ec;
  std::filesystem::remove(path, ec);
  return io::WriteNewFile(path, text::ToCp950(text));
}

}  // namespace tavik::cadastre
