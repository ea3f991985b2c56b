// Editing lines in place: pairwise trimming and extending, the line-edit popup, and the
// one-step undo of both.
//
// An edit in place keeps the row and its Number, so the undelete stack stays true. What
// the row held before goes on the edit history, which Undo puts back; the history ends
// with the document's numbering (New, Open, Save, Close). The entity journal is
// rewritten whole after each edit, like any change to rows already written.
#include "edit/line_edit.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "core/workfiles.h"
#include "edit/editor.h"
#include "edit/modes.h"
#include "geo/angles.h"
#include "geo/azimuth.h"
#include "geo/constants.h"
#include "geo/formats.h"
#include "geo/intersect.h"
#include "view/legends.h"
#include "view/screen_tables.h"

namespace tavik::edit {

int TrimEnd(double E1, double N1, double E2, double N2, double E, double N, double pickE, double pickN, double& t) {
  const double dE = E2 - E1, dN = N2 - N1;
  const double len2 = dE * dE + dN * dN;
  t = ((E - E1) * dE + (N - N1) * dN) / len2;
  if (std::hypot(E - E1, N - N1) <= CrossingOnEnd) return 0;
  if (std::hypot(E - E2, N - N2) <= CrossingOnEnd) return 1;
  if (t < 0) return 0;
  if (t > 1) return 1;
  const double pick = ((pickE - E1) * dE + (pickN - N1) * dN) / len2;
  return pick < t ? 1 : 0;  // the end on the far side of the crossing goes
}

std::optional<Crossing> CrossingOfLines(double E1, double N1, double E2, double N2, double E3, double N3, double E4,
                                        double N4) {
  const double cross = (E2 - E1) * (N4 - N3) - (N2 - N1) * (E4 - E3);
  if (cross == 0 || !std::isfinite(cross)) return std::nullopt;
  double X1 = E1;
  Crossing c;
  bool ok = false;
  IntersectLines(X1, N1, E2, N2, E3, N3, E4, N4, c.E, c.N, ok);
  if (!ok) return std::nullopt;
  return c;
}

void HeightAlong(double H1, double H2, double t, double& H) {
  if (H1 == NoHeight || H2 == NoHeight) return;
  H = H1 + t * (H2 - H1);
}

std::string AzimuthText(double azimuth) {
  int16_t d, m;
  double s;
  DegreesToDms(azimuth * RadToDeg, d, m, s);
  return fmt::FormatDmsList(d, m, s);
}

std::optional<double> ReadAzimuthText(const std::string& typed) {
  const std::string t = text::Trim(typed);
  if (t.find('-') == std::string::npos) {
    const auto packed = ReadPackedAngle(t);
    if (!packed) return std::nullopt;
    return PackedToRadians(*packed);
  }
  std::optional<double> v[3];
  std::size_t from = 0;
  for (int i = 0; i < 3; ++i) {
    const std::size_t dash = i < 2 ? t.find('-', from) : std::string::npos;
    if (i < 2 && dash == std::string::npos) return std::nullopt;
    v[i] = num::ParseStrict(text::Trim(t.substr(from, dash == std::string::npos ? std::string::npos : dash - from)));
    if (!v[i] || *v[i] < 0) return std::nullopt;
    from = dash + 1;
  }
  const double d = *v[0], m = *v[1], s = *v[2];
  if (d != std::floor(d) || m != std::floor(m) || m >= 60 || s >= 60) return std::nullopt;
  if (d > 360 || (d == 360 && (m > 0 || s > 0))) return std::nullopt;
  return DmsToRadians(static_cast<int16_t>(d), static_cast<int16_t>(m), s);
}

void EndOf(double E1, double N1, double length, double azimuth, double& E2, double& N2) {
  E2 = E1 + length * std::sin(azimuth);
  N2 = N1 + length * std::cos(azimuth);
}

// --- the editor's side ------------------------------------------------------------

bool Editor::EditableLine(int32_t row) const {
  return row >= 0 && row < static_cast<int32_t>(doc.EntityTable.size()) && row < doc.EntityCount &&
         doc.EntityTable[row].Kind == KindLine && !doc.EntityTable[row].Deleted;
}

void Editor::RowsEdited(const std::vector<Entity>& before) {
  EditHistory.push_back(before);
  RebuildScreenEntities(doc, view);  // an edited line may reach into or out of the screen
  RewriteEntities();
  Repaint();
}

bool Editor::TrimLines(int32_t rowA, double pickAE, double pickAN, int32_t rowB, double pickBE, double pickBN) {
  if (!EditableLine(rowA) || !EditableLine(rowB) || rowA == rowB) return false;
  if (rowA < doc.ReferenceEntityCount || rowB < doc.ReferenceEntityCount) {
    dialogs.MsgBox(TrimReferenceMessage, TrimTitle);
    return false;
  }
  Entity& a = doc.EntityTable[rowA];
  Entity& b = doc.EntityTable[rowB];
  const auto c = CrossingOfLines(a.X[0], a.Y[0], a.X[1], a.Y[1], b.X[0], b.Y[0], b.X[1], b.Y[1]);
  if (!c) {
    dialogs.MsgBox(TrimParallelMessage, TrimTitle);
    return false;
  }
  const std::vector<Entity> before{a, b};
  bool moved = false;
  auto trim = [&](Entity& e, double pickE, double pickN) {
    double t;
    const int end = TrimEnd(e.X[0], e.Y[0], e.X[1], e.Y[1], c->E, c->N, pickE, pickN, t);
    if (e.X[end] == c->E && e.Y[end] == c->N) return;
    HeightAlong(e.Z[0], e.Z[1], t, e.Z[end]);
    e.X[end] = c->E;
    e.Y[end] = c->N;
    moved = true;
  };
  trim(a, pickAE, pickAN);
  trim(b, pickBE, pickBN);
  if (!moved) return false;
  RowsEdited(before);
  return true;
}

Editor::LineEditValues Editor::LineEditText(int32_t row) const {
  LineEditValues v;
  if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) return v;
  const Entity& e = doc.EntityTable[row];
  double length, azimuth;
  AzimuthDistance(e.X[0], e.Y[0], e.X[1], e.Y[1], length, azimuth);
  v.Length = num::Format(length, fmt::Coordinate);
  v.Azimuth = AzimuthText(azimuth);
  v.Name = text::Trim(e.Name);
  v.Code = std::to_string(e.Code);
  return v;
}

std::string Editor::EditLine(int32_t row, const LineEditValues& typed) {
  if (!EditableLine(row)) return "";
  if (row < doc.ReferenceEntityCount) return TrimReferenceMessage;
  const LineEditValues shown = LineEditText(row);
  Entity& e = doc.EntityTable[row];
  double length, azimuth;
  AzimuthDistance(e.X[0], e.Y[0], e.X[1], e.Y[1], length, azimuth);
  // A value left as it was shown keeps the exact value behind it, not its rounding.
  if (text::Trim(typed.Length) != shown.Length) {
    const auto l = num::ParseStrict(text::Trim(typed.Length));
    if (!l || !(*l > 0) || !std::isfinite(*l)) return LineLengthMessage;
    length = *l;
  }
  if (text::Trim(typed.Azimuth) != shown.Azimuth) {
    const auto az = ReadAzimuthText(typed.Azimuth);
    if (!az) return LineAzimuthMessage;
    azimuth = *az;
  }
  int16_t code = e.Code;
  if (text::Trim(typed.Code) != shown.Code) {
    const auto c = num::ParseStrict(text::Trim(typed.Code));
    if (!c || *c != std::floor(*c) || *c < 1 || *c > 999 || !view::LegendAllows(view::DrawCommand::Line, static_cast<int>(*c)))
      return LineCodeMessage;
    code = static_cast<int16_t>(*c);
  }
  const std::string name = text::Trim(typed.Name);
  if (text::Cp950Length(name) > NameBytes) return LineNameMessage;

  double E2 = e.X[1], N2 = e.Y[1];
  if (text::Trim(typed.Length) != shown.Length || text::Trim(typed.Azimuth) != shown.Azimuth)
    EndOf(e.X[0], e.Y[0], length, azimuth, E2, N2);
  if (E2 == e.X[1] && N2 == e.Y[1] && code == e.Code && name == text::Trim(e.Name)) return "";
  const std::vector<Entity> before{e};
  e.X[1] = E2;
  e.Y[1] = N2;
  e.Code = code;
  e.Name = name;
  RowsEdited(before);
  return "";
}

bool Editor::UndoEdit() {
  if (EditHistory.empty()) {
    dialogs.MsgBox(EditUndoNoneMessage, LineEditTitle);
    return false;
  }
  const std::vector<Entity> before = EditHistory.back();
  EditHistory.pop_back();
  for (const Entity& old : before) {
    const int32_t row = EntityRow(doc, old.Number);
    if (row < 0) continue;
    Entity& e = doc.EntityTable[row];
    const int16_t deleted = e.Deleted;  // a delete since then stays for the undelete
    e = old;
    e.Deleted = deleted;
  }
  RebuildScreenEntities(doc, view);
  RewriteEntities();
  Repaint();
  return true;
}

// The trimming mode: the first pick takes a line, the second the other and trims both.
// The mode stays for the next pair.
void Editor::TrimPick(float x, float y, double E, double N) {
  const int32_t row = PickEntityRow(x, y, 8, {KindLine}, false, nullptr, PickStep == 1 ? PendingRow : -1);
  if (row < 0) return;
  if (PickStep == 0) {
    PendingRow = row;
    FirstPick = {true, E, N, 0};
    PickStep = 1;
    MarkPick(E, N);
    host.SetPrompt(TrimSecondPrompt);
    return;
  }
  const int32_t first = PendingRow;
  PickStep = 0;
  PendingRow = -1;
  host.SetPrompt(PromptOf(mode::LineTrim));
  if (!TrimLines(first, FirstPick.E, FirstPick.N, row, E, N)) Repaint();  // the mark of the first pick goes
}

}  // namespace tavik::edit
