// Erasing, undeleting, changing a legend, renaming, offset copies and the inquiry text.
//
// Deletion only sets a flag and pushes an undelete entry; the table routines rewrite
// the work file at once, so a crash after any edit loses nothing. A change to a row
// already journalled (legend, name) rewrites the entity work file whole.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "core/workfiles.h"
#include "edit/editor.h"
#include "edit/modes.h"
#include "view/legends.h"

namespace tavik::edit {

namespace {

bool IsPointNameLegend(int16_t c) {
  return c == CodeNamedPoint || (c >= 110 && c <= 121) || c == 130 || c == 131 || c == 141 || c == 199;
}

const char* KindText(int16_t kind) {
  switch (kind) {
    case KindPoint:
      return "點 (11)";
    case KindLine:
      return "線 (21)";
    case KindCircle2:
      return "兩點圓 (71)";
    case KindCircle3:
      return "三點圓 (73)";
    case KindArc3:
      return "三點弧 (76)";
    default:
      return "未知";
  }
}

int VertexCount(int16_t kind) {
  return kind == KindPoint ? 1 : (kind == KindLine || kind == KindCircle2) ? 2 : 3;
}

template <class Rec>
bool AllVertices(const Rec& e, double minE, double minN, double maxE, double maxN, bool inside) {
  const int n = VertexCount(e.Kind);
  for (int v = 0; v < n; ++v) {
    const bool in = e.X[v] >= minE && e.X[v] <= maxE && e.Y[v] >= minN && e.Y[v] <= maxN;
    if (in != inside) return false;
  }
  return true;
}

}  // namespace

void Editor::Changed() { doc.MapChanged = kTrue; }

void Editor::RewriteEntities() {
  JournalWarning(work.WriteEntityWorkFile(doc));
  Changed();
}

void Editor::RewritePoints() {
  JournalWarning(work.WritePointWorkFile(doc));
  Changed();
}

bool Editor::EraseP(double E, double N, float x, float y) {
  (void)E;
  (void)N;
  // Only surveyed points: the first live one in the pick square.
  const double cx = x - 1.0, cy = y - 1.0, half = 10;
  double E1, N1, E2, N2;
  PaperToWorld(view, doc.ScaleDenominator, cx - half, cy + half, E1, N1);
  PaperToWorld(view, doc.ScaleDenominator, cx + half, cy - half, E2, N2);
  for (int32_t i = 0; i < doc.ScreenPointCount && i < static_cast<int32_t>(doc.ScreenPointTable.size()); ++i) {
    const Point& p = doc.ScreenPointTable[i];
    if (p.Deleted || p.E < E1 || p.E > E2 || p.N < N1 || p.N > N2) continue;
    const int32_t row = PointRow(doc, p.Number);
    if (row < 0 || doc.PointTable[row].Deleted) continue;
    DeletePoint(doc, work, p.Number);
    Changed();
    Repaint();
    return true;
  }
  return false;
}

bool Editor::EraseEntity(float x, float y) { return EraseEntityRow(PickEntityRow(x, y, 8, {}, false, nullptr)); }

bool Editor::EraseEntityRow(int32_t row) {
  if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size()) || doc.EntityTable[row].Deleted) return false;
  DeleteEntity(doc, work, doc.EntityTable[row].Number);
  Changed();
  Repaint();
  return true;
}

int Editor::EraseWindowArea(double E1, double N1, double E2, double N2, bool inside) {
  const double minE = std::min(E1, E2), maxE = std::max(E1, E2);
  const double minN = std::min(N1, N2), maxN = std::max(N1, N2);
  int count = 0;
  // The flags are set here and the work files rewritten once at the end: a window over
  // a large survey would otherwise rewrite them once per record.
  for (int32_t i = 0; i < doc.PointCount && i < static_cast<int32_t>(doc.PointTable.size()); ++i) {
    Point& p = doc.PointTable[i];
    if (p.Deleted) continue;
    const bool in = p.E >= minE && p.E <= maxE && p.N >= minN && p.N <= maxN;
    if (in != inside) continue;
    p.Deleted = kTrue;
    ++doc.DeletedPointCount;
    doc.UndeleteStack.push_back({'P', p.Number});
    ++count;
  }
  for (auto& p : doc.ScreenPointTable) {
    const int32_t row = PointRow(doc, p.Number);
    if (row >= 0) p.Deleted = doc.PointTable[row].Deleted;
  }
  int entities = 0;
  for (int32_t i = 0; i < doc.EntityCount && i < static_cast<int32_t>(doc.EntityTable.size()); ++i) {
    Entity& e = doc.EntityTable[i];
    if (e.Deleted || !AllVertices(e, minE, minN, maxE, maxN, inside)) continue;
    e.Deleted = kTrue;
    ++doc.DeletedEntityCount;
    doc.UndeleteStack.push_back({'S', e.Number});
    ++entities;
  }
  for (auto& e : doc.ScreenEntityTable) {
    const int32_t row = EntityRow(doc, e.Number);
    if (row >= 0) e.Deleted = doc.EntityTable[row].Deleted;
  }
  if (count > 0) RewritePoints();
  if (entities > 0) RewriteEntities();
  if (count + entities > 0) Repaint();
  return count + entities;
}

bool Editor::Undelete() {
  if (!tavik::Undelete(doc, work, dialogs)) return false;
  Changed();
  Repaint();
  return true;
}

bool Editor::DeleteLastPoint() {
  int32_t row = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size())) - 1;
  while (row >= 0 && doc.PointTable[row].Deleted) --row;
  if (row < 0) return false;
  const ui::Answer a = dialogs.MsgBox("確定要刪掉這個點?(內定NO)", "刪除實測點", ui::Buttons::YesNo,
                                      ui::Icon::Question, ui::Answer::No);
  if (a != ui::Answer::Yes) return false;
  DeletePoint(doc, work, doc.PointTable[row].Number);
  Changed();
  Repaint();
  return true;
}

std::string Editor::InquiryText(int32_t row) const {
  if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) return "";
  const Entity& e = doc.EntityTable[row];
  std::string s = "圖元編號: " + std::to_string(e.Number) + "\r\n";
  s += "圖例: " + std::to_string(e.Code) + " " + text::Trim(view::LegendName(e.Code)) + "\r\n";
  s += std::string("種類: ") + KindText(e.Kind) + "\r\n";
  const int n = VertexCount(e.Kind);
  for (int v = 0; v < n; ++v)
    s += "第" + std::to_string(v + 1) + "點: E " + num::Format(e.X[v], "0.000") + "  N " +
         num::Format(e.Y[v], "0.000") + "  H " + num::Format(e.Z[v], "0.000") + "\r\n";
  if (e.Kind == KindLine) {
    s += "長度: " + num::Format(std::hypot(e.X[1] - e.X[0], e.Y[1] - e.Y[0]), "0.000m") + "\r\n";
  }
  s += "名稱: " + text::Trim(e.Name);
  return s;
}

void Editor::StartOffset(int32_t row) {
  if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) return;
  if (doc.EntityTable[row].Kind != KindLine || doc.EntityTable[row].Deleted) return;
  auto answer = dialogs.InputBox("請輸入偏移距離(公尺):", "OFFSET 複製");
  if (!answer) return;
  const auto d = num::ParseStrict(text::Trim(*answer));
  if (!d || *d <= 0) {
    if (!text::Trim(*answer).empty()) dialogs.MsgBox("距離要大於0", "OFFSET 複製");
    return;
  }
  StartCommand(mode::OFFSET);
  OffsetDistance = *d;
  PendingRow = row;
}

void Editor::EditPick(const std::string& m, float x, float y, double E, double N) {
  if (m == mode::OFFSET) {
    if (PendingRow < 0) {
      // Started without a line: this pick takes the line and asks the distance.
      const int32_t row = PickEntityRow(x, y, 8, {KindLine}, false, nullptr);
      if (row >= 0) StartOffset(row);
      return;
    }
    const Entity src = doc.EntityTable[PendingRow];
    const double dE = src.X[1] - src.X[0], dN = src.Y[1] - src.Y[0];
    const double len = std::hypot(dE, dN);
    const double side = dE * (N - src.Y[0]) - dN * (E - src.X[0]);
    if (len == 0 || side == 0) return;
    // Unit normal towards the side of the click.
    double nE = -dN / len, nN = dE / len;
    if (side < 0) nE = -nE, nN = -nN;
    const double oE = nE * OffsetDistance, oN = nN * OffsetDistance;
    NewEntity(src.Code, KindLine, src.X[0] + oE, src.Y[0] + oN, src.Z[0], src.X[1] + oE, src.Y[1] + oN, src.Z[1],
              0, 0, 0, "");
    SetMode("");
    return;
  }

  const int32_t row = PickEntityRow(x, y, 8, {}, false, nullptr);
  if (row < 0) return;
  Entity& e = doc.EntityTable[row];

  if (m == mode::ChangeAtt) {
    using view::DrawCommand;
    const int16_t code = doc.CurrentLegend;
    bool allowed = true;
    switch (e.Kind) {
      case KindLine:
        allowed = view::CheckCurrentLegend(DrawCommand::Line, doc, dialogs);
        break;
      case KindCircle2:
        allowed = view::CheckCurrentLegend(DrawCommand::Circle2, doc, dialogs);
        break;
      case KindCircle3:
        allowed = view::CheckCurrentLegend(DrawCommand::Circle3, doc, dialogs);
        break;
      case KindArc3:
        allowed = view::CheckCurrentLegend(DrawCommand::Arc, doc, dialogs);
        break;
      default:
        allowed = view::CheckCurrentLegend(DrawCommand::SymbolNote, doc, dialogs);
        break;
    }
    SetMode("");
    if (!allowed || e.Code == code) return;
    e.Code = code;
    for (auto& s : doc.ScreenEntityTable)
      if (s.Number == e.Number) s.Code = code;
    RewriteEntities();
    Repaint();
    return;
  }

  if (m == mode::PtRename) {
    if (e.Kind != KindPoint || !IsPointNameLegend(e.Code)) return;
    std::string name = text::Trim(e.Name);
    for (;;) {
      auto answer = dialogs.InputBox("請輸入新的點名", "點名更改", name);
      if (!answer) break;
      name = text::UpperAscii(text::Trim(*answer));
      if (name.empty()) break;
      if (text::Cp950Length(name) > NameBytes) {
        dialogs.MsgBox("點名不可超過20個字元,請重新輸入", "點名更改");
        continue;
      }
      if (name == text::Trim(e.Name)) break;
      if (NameInUse(name, {row})) {
        dialogs.MsgBox("點名重覆,請重新輸入", "發現重覆名稱");
        continue;
      }
      e.Name = name;
      for (auto& s : doc.ScreenEntityTable)
        if (s.Number == e.Number) s.Name = name;
      RewriteEntities();
      Repaint();
      break;
    }
    SetMode("");
  }
}

}  // namespace tavik::edit
