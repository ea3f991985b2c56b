// Point features by pick: named control points and stakes, numbered utility and road
// symbols, plain symbols, and text notes.
#include <cstdio>

#include "core/tables.h"
#include "core/text.h"
#include "edit/editor.h"
#include "geo/point_name.h"

namespace tavik::edit {

namespace {

bool IsNamedPointLegend(int16_t c) {
  return (c >= 110 && c <= 121) || c == 130 || c == 131 || c == 141 || c == 199;
}
bool IsNumberedLegend(int16_t c) {
  return c == 601 || c == 604 || c == 605 || (c >= 608 && c <= 632) || c == 634 || (c >= 636 && c <= 874);
}
// Road signs carry the number of their road.
bool IsRoadLegend(int16_t c) { return c >= 872 && c <= 874; }
// Legends whose symbol is the text itself.
bool IsTextLegend(int16_t c) { return c == 12 || c == 235 || c == 301; }

// UTF-8 text cut so that it fits the 20 bytes of a Name in the document file.
std::string FitName(const std::string& s) {
  if (text::Cp950Length(s) <= NameBytes) return s;
  return text::FromCp950(text::CutCp950(text::ToCp950(s), NameBytes));
}

}  // namespace

std::string Naming::NextName() const {
  std::string digits = std::to_string(Number + 1);
  while (static_cast<int>(digits.size()) < Width) digits.insert(digits.begin(), '0');
  return text::UpperAscii(Prefix + digits);
}

void Editor::NewSymbolAtPick(double E, double N, double H) {
  const int16_t code = doc.CurrentLegend;
  if (IsTextLegend(code)) {
    TextNote(E, N);
    return;
  }
  std::string name;
  if (IsNamedPointLegend(code)) {
    bool automatic = Names.AutoNaming;
    for (;;) {
      if (automatic) {
        name = Names.NextName();
      } else {
        auto answer = dialogs.InputBox("請輸入點名或樁號", "輸入點名或樁號", name);
        if (!answer) return;
        name = text::UpperAscii(text::Trim(*answer));
        if (name.empty()) return;
        if (text::Cp950Length(name) > NameBytes) {
          dialogs.MsgBox("點名不可超過20個字元,請重新輸入", "輸入點名或樁號");
          continue;
        }
      }
      if (!NameInUse(name, {})) break;
      dialogs.MsgBox("點名重覆,請重新輸入", "輸入點名或樁號");
      automatic = false;  // the next try is typed, starting from the refused name
    }
    std::string prefix;
    int16_t number = 0, width = 1;
    SplitPointName(name, prefix, number, width);
    Names.Prefix = prefix;
    Names.Number = number;
    Names.Width = width;
  } else if (IsNumberedLegend(code)) {
    const bool road = IsRoadLegend(code);
    auto answer = road ? dialogs.InputBox("道路編號:", "輸入道路編號") : dialogs.InputBox("請輸入編號:", "輸入編號");
    if (!answer) return;
    name = FitName(text::Trim(*answer));
  }
  NewEntity(code, KindPoint, E, N, H, 0, 0, 0, 0, 0, 0, name);
}

void Editor::TextNote(double E, double N) {
  auto answer = dialogs.InputBox("(可輸入20個英文字母,或10個中文字)", "輸入註記");
  if (!answer) return;
  std::string note = text::Trim(*answer);
  if (note.empty()) return;
  if (text::CharCount(note) > 20) note = text::LeftChars(note, 20);
  note = FitName(note);
  const int16_t code = IsTextLegend(doc.CurrentLegend) ? doc.CurrentLegend : 12;
  NewEntity(code, KindPoint, E, N, 0, 0, 0, 0, 0, 0, 0, note);
}

}  // namespace tavik::edit
