// The sample document of the rendering reference: every symbol code in a grid with
// its code beside it, every other code of the picker as a segment, the special point
// codes, circles and arcs with their decorations, two reference rows, survey points
// and a station. Laid out so that the whole extent fills a 1600 x 1200 view legibly.
#pragma once

#include <string>

#include "core/docfile.h"
#include "core/tables.h"
#include "view/legends.h"

namespace tavik::view {

inline void FillSampleDocument(Document& d, const View& view, WorkFiles& wf) {
  const double E0 = 280000, N0 = 2750000;
  auto note = [&](double E, double N, const std::string& text) { AddEntity(d, view, wf, 12, E0 + E, N0 + N, 0, text); };
  // Two reference rows first: grey whatever their code.
  AddEntity(d, view, wf, 817, KindLine, E0 - 10, N0 + 6, 0, E0 + 90, N0 + 6, 0, 0, 0, 0, "");
  AddEntity(d, view, wf, 301, KindLine, E0 - 10, N0 + 8, 0, E0 + 90, N0 + 8, 0, 0, 0, 0, "");
  d.ReferenceEntityCount = 2;
  const auto& glyphs = SymbolGlyphCodes();
  for (std::size_t i = 0; i < glyphs.size(); ++i) {
    const double E = static_cast<double>(i % 12) * 8, N = -static_cast<double>(i / 12) * 8;
    AddEntity(d, view, wf, static_cast<int16_t>(glyphs[i]), E0 + E, N0 + N, 0, "");
    note(E + 1.5, N + 3, std::to_string(glyphs[i]));
  }
  int n = 0;
  for (int code : MenuCodes()) {
    if (HasSymbolGlyph(code)) continue;
    const double E = 100 + (n / 19) * 38, N = -(n % 19) * 4;
    AddEntity(d, view, wf, static_cast<int16_t>(code), KindLine, E0 + E + 6, N0 + N, 0, E0 + E + 30, N0 + N, 0, 0, 0,
              0, code == 201 || code == 520 || code == 521 ? "名" + std::to_string(code) : "");
    note(E, N + 1.5, std::to_string(code));
    ++n;
  }
  // Curves along the bottom.
  const int arcCodes[] = {510, 905, 921, 407, 813, 301};
  for (int i = 0; i < 6; ++i) {
    const double E = i * 16, N = -92;
    AddEntity(d, view, wf, static_cast<int16_t>(arcCodes[i]), KindArc3, E0 + E, N0 + N, 0, E0 + E + 6, N0 + N + 6, 0,
              E0 + E + 12, N0 + N, 0, "");
    note(E, N + 8, std::to_string(arcCodes[i]));
  }
  AddEntity(d, view, wf, 407, KindCircle2, E0 + 104, N0 - 92, 0, E0 + 109, N0 - 92, 0, 0, 0, 0, "");
  AddEntity(d, view, wf, 813, KindCircle2, E0 + 122, N0 - 92, 0, E0 + 127, N0 - 92, 0, 0, 0, 0, "");
  AddEntity(d, view, wf, 930, KindCircle3, E0 + 135, N0 - 92, 0, E0 + 140, N0 - 87, 0, E0 + 145, N0 - 92, 0, "");
  // Special point codes.
  AddEntity(d, view, wf, 13, KindPoint, E0 + 160, N0 - 90, 23.456, 0, 0, 0, 0, 0, 0, "");
  AddEntity(d, view, wf, 168, E0 + 175, N0 - 90, 0, "18.5");
  AddEntity(d, view, wf, 99, E0 + 190, N0 - 90, 0, "P17");
  AddEntity(d, view, wf, 267, E0 + 205, N0 - 90, 0, "EP 0.1234ha");
  AddEntity(d, view, wf, 266, E0 + 220, N0 - 96, 0, "NOTEP");
  AddEntity(d, view, wf, 266, KindLine, E0 + 160, N0 - 96, 0, E0 + 215, N0 - 96, 0, 0, 0, 0, "");
  AddEntity(d, view, wf, 235, E0 + 190, N0 - 80, 0, "123-4");
  AddEntity(d, view, wf, 301, E0 + 205, N0 - 80, 0, "RC2");
  for (int i = 0; i < 5; ++i) AddPoint(d, view, wf, E0 + 160 + i * 4, N0 - 100, 10 + i);
  d.StationName = "S1";
  d.StationSet = kTrue;
  d.StationE = E0 + 200, d.StationN = N0 - 97;
}

}  // namespace tavik::view
