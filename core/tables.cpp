#include "core/tables.h"

#include <cmath>

namespace tavik {

namespace {
constexpr double Pi = 3.14159265358979;
}

bool UpdateExtent(Document& doc, double E, double N) {
  bool moved = false;
  if (E < doc.MinE) doc.MinE = E, moved = true;
  if (E > doc.MaxE) doc.MaxE = E, moved = true;
  if (N < doc.MinN) doc.MinN = N, moved = true;
  if (N > doc.MaxN) doc.MaxN = N, moved = true;
  return moved;
}

void ResetExtent(Document& doc) {
  doc.MinE = StartMinE;
  doc.MaxE = StartMaxE;
  doc.MinN = StartMinN;
  doc.MaxN = StartMaxN;
}

bool AddPoint(Document& doc, const View& view, WorkFiles& wf, double E, double N, double H) {
  UpdateExtent(doc, E, N);
  ++doc.PointCount;
  Point p;
  p.Number = doc.PointCount;
  p.E = E;
  p.N = N;
  p.H = H;
  p.Deleted = kFalse;
  doc.PointTable.resize(static_cast<std::size_t>(doc.PointCount) - 1);
  doc.PointTable.push_back(p);
  doc.Index.Points.RowWritten(doc.PointCount - 1);
  if (view.InScreen(E, N)) {
    doc.ScreenPointTable.resize(static_cast<std::size_t>(doc.ScreenPointCount));
    doc.ScreenPointTable.push_back(p);
    ++doc.ScreenPointCount;
  }
  doc.MapChanged = kTrue;
  // A journal that missed a record is rewritten whole rather than appended to.
  if (wf.PointJournalBehind()) return wf.WritePointWorkFile(doc);
  return wf.AppendPointWorkFile(p);
}

bool AddEntity(Document& doc, const View& view, WorkFiles& wf, int16_t Code, int16_t Kind, double X1,
               double Y1, double Z1, double X2, double Y2, double Z2, double X3, double Y3, double Z3,
               const std::string& Name) {
  (void)view;  // every new entity goes to the screen table, on screen or not
  ++doc.EntityCount;
  Entity e;
  e.Number = doc.EntityCount;
  e.Code = Code;
  e.Kind = Kind;
  e.X[0] = X1, e.Y[0] = Y1, e.Z[0] = Z1;
  e.X[1] = X2, e.Y[1] = Y2, e.Z[1] = Z2;
  e.X[2] = X3, e.Y[2] = Y3, e.Z[2] = Z3;
  e.Name = Name;
  e.Deleted = kFalse;
  doc.EntityTable.resize(static_cast<std::size_t>(doc.EntityCount) - 1);
  doc.EntityTable.push_back(e);
  doc.Index.Entities.RowWritten(doc.EntityCount - 1);
  doc.ScreenEntityTable.resize(static_cast<std::size_t>(doc.ScreenEntityCount));
  doc.ScreenEntityTable.push_back(e);
  ++doc.ScreenEntityCount;
  doc.MapChanged = kTrue;
  if (wf.EntityJournalBehind()) return wf.WriteEntityWorkFile(doc);
  return wf.AppendEntityWorkFile(e);
}

bool AddEntity(Document& doc, const View& view, WorkFiles& wf, int16_t Code, double X, double Y,
               double Z, const std::string& Name) {
  return AddEntity(doc, view, wf, Code, KindPoint, X, Y, Z, 0, 0, 0, 0, 0, 0, Name);
}

namespace {

template <typename Row>
int32_t RowOf(const std::vector<Row>& table, int32_t count, int32_t number) {
  int32_t n = std::min<int32_t>(count, static_cast<int32_t>(table.size()));
  if (number >= 1 && number <= n && table[number - 1].Number == number) return number - 1;
  for (int32_t i = 0; i < n; ++i)
    if (table[i].Number == number) return i;
  return -1;
}

template <typename Row>
void FlagScreenCopy(std::vector<Row>& screen, int32_t count, int32_t number, int16_t flag) {
  int32_t n = std::min<int32_t>(count, static_cast<int32_t>(screen.size()));
  for (int32_t i = 0; i < n; ++i)
    if (screen[i].Number == number) screen[i].Deleted = flag;
}

}  // namespace

int32_t PointRow(const Document& doc, int32_t number) {
  return RowOf(doc.PointTable, doc.PointCount, number);
}

int32_t EntityRow(const Document& doc, int32_t number) {
  return RowOf(doc.EntityTable, doc.EntityCount, number);
}

bool DeletePoint(Document& doc, WorkFiles& wf, int32_t number) {
  int32_t row = PointRow(doc, number);
  if (row < 0 || doc.PointTable[row].Deleted) return false;
  doc.PointTable[row].Deleted = kTrue;
  FlagScreenCopy(doc.ScreenPointTable, doc.ScreenPointCount, number, kTrue);
  ++doc.DeletedPointCount;
  doc.UndeleteStack.push_back({'P', number});
  doc.MapChanged = kTrue;
  wf.WritePointWorkFile(doc);
  return true;
}

bool DeleteEntity(Document& doc, WorkFiles& wf, int32_t number) {
  int32_t row = EntityRow(doc, number);
  if (row < 0 || doc.EntityTable[row].Deleted) return false;
  doc.EntityTable[row].Deleted = kTrue;
  FlagScreenCopy(doc.ScreenEntityTable, doc.ScreenEntityCount, number, kTrue);
  ++doc.DeletedEntityCount;
  doc.UndeleteStack.push_back({'S', number});
  doc.MapChanged = kTrue;
  wf.WriteEntityWorkFile(doc);
  return true;
}

bool Undelete(Document& doc, WorkFiles& wf, ui::Dialogs& dialogs) {
  if (doc.UndeleteStack.empty()) {
    dialogs.MsgBox("無刪除資料", "救回刪除的資料");
    return false;
  }
  UndeleteEntry u = doc.UndeleteStack.back();
  doc.UndeleteStack.pop_back();
  if (u.Type == 'P') {
    int32_t row = PointRow(doc, u.Number);
    if (row < 0 || !doc.PointTable[row].Deleted) return false;
    doc.PointTable[row].Deleted = kFalse;
    FlagScreenCopy(doc.ScreenPointTable, doc.ScreenPointCount, u.Number, kFalse);
    --doc.DeletedPointCount;
    doc.MapChanged = kTrue;
    wf.WritePointWorkFile(doc);
  } else {
    int32_t row = EntityRow(doc, u.Number);
    if (row < 0 || !doc.EntityTable[row].Deleted) return false;
    doc.EntityTable[row].Deleted = kFalse;
    FlagScreenCopy(doc.ScreenEntityTable, doc.ScreenEntityCount, u.Number, kFalse);
    --doc.DeletedEntityCount;
    doc.MapChanged = kTrue;
    wf.WriteEntityWorkFile(doc);
  }
  return true;
}

void ClearTables(Document& doc) {
  RowsChanged(doc);
  doc.PointTable.clear();
  doc.PointCount = doc.DeletedPointCount = 0;
  doc.EntityTable.clear();
  doc.EntityCount = doc.DeletedEntityCount = 0;
  doc.ScreenPointTable.clear();
  doc.ScreenPointCount = 0;
  doc.ScreenEntityTable.clear();
  doc.ScreenEntityCount = 0;
  doc.BaseMapTable.clear();
  doc.BaseMapCount = 0;
  doc.UndeleteStack.clear();
  doc.ReferenceMapLoaded = kFalse;
  doc.ReferencePointCount = doc.ReferenceEntityCount = 0;
  for (auto& c : doc.SplitBoundaryEdges) c.clear();
  for (auto& c : doc.SplitBoundaryVertices) c.clear();
  for (double& v : doc.SplitLine) v = 0;
  for (double& v : doc.SplitLineLabelled) v = 0;
  doc.SplitAreaValue = 0;
  doc.SplitAreaAt[0] = doc.SplitAreaAt[1] = 0;
}

double BacksightAzimuthOf(double sE, double sN, double bE, double bN) {
  double dE = bE - sE;
  double dN = bN - sN;
  if (dE == 0) dE = 0.0001;
  if (dN == 0) dN = 0.0001;
  double a = std::atan(dN / dE);
  return dE > 0 ? Pi / 2 - a : 3 * Pi / 2 - a;
}

void ComputeBacksightAzimuth(Document& doc) {
  doc.BacksightAzimuth = BacksightAzimuthOf(doc.StationE, doc.StationN, doc.BacksightE, doc.BacksightN);
}

}  // namespace tavik
