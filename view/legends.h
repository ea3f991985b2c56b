// The legend catalogue: every drawn thing carries a code from 1 to 999 whose hundreds
// digit is its class. Two vocabularies live here side by side and must not be merged:
// the menu texts of the picker (the program's string table) and LegendName, the
// report texts, which differ in spelling and in the codes they know.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/document.h"
#include "platform/dialogs.h"
#include "platform/surface.h"

namespace tavik::view {

// The picker's caption of a legend; "" for a code the picker doesn't offer.
std::string LegendMenuText(int code);
// Any key of the string table: the legends and the LogButton captions 932 to 935.
std::string StringTableText(int key);
// The report text, padded with blanks to 14 characters; "" for a code it doesn't know.
std::string LegendName(int code);

// Pen colour and width of a code.
ui::Rgb LegendColour(int code);
int LegendWidth(int code);
// Line style of a code's plain line (break lines, section lines and planned roads dashed).
ui::LineStyle LegendStyle(int code);

// True for the codes that DrawSymbol has a glyph of its own for (115 of them).
bool HasSymbolGlyph(int code);
// Every code with a glyph, ascending.
const std::vector<int>& SymbolGlyphCodes();
// Every code of the picker, ascending.
const std::vector<int>& MenuCodes();

// The Toolbar2 drawing commands that test the current legend before they start.
enum class DrawCommand { Line, Rect, Arc, Circle2, Circle3, BlockNote, SymbolNote };
// True when the code may start the command.
bool LegendAllows(DrawCommand command, int code);
// Tests CurrentLegend for the command; a refused code shows its message under the
// title "屬性限制" and gives false.
bool CheckCurrentLegend(DrawCommand command, const Document& doc, ui::Dialogs& dialogs);

// LegendButton_Click: the picker may open only while no command runs.
bool LegendButton_Click(const std::string& actionMode, ui::Dialogs& dialogs);

// The picker LegMenu: nine tabs of button arrays Btn100 .. Btn900.
struct LegendTab {
  int classDigit;         // 1 .. 9
  std::string title;      // tab caption
  std::vector<int> codes; // the buttons, in order; each caption is LegendMenuText(code)
};
const std::vector<LegendTab>& LegMenuTabs();
constexpr const char* LegMenuCaption = "九大地類--圖例選單";
// A button press: the code of the button's caption becomes CurrentLegend.
void LegMenuPick(Document& doc, int code);
// EduLegends, the short picker: only Btn200 sets a code, and only 235 or 201.
bool EduLegendsPick(Document& doc, int code);

}  // namespace tavik::view
