// The printed sheet: the map at a chosen scale on A4 or A3, upright or across, inside a
// frame with a title block in its lower right corner. The sheet is laid out here in
// millimetres; the map inside the frame is painted by the map view's own repaint, so
// the print shows what the screen shows, at the scale asked for and centred where the
// screen is.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/document.h"
#include "platform/dialogs.h"
#include "platform/surface.h"
#include "view/display.h"

namespace tavik::view {

enum class Sheet { A4, A3 };

struct PrintOptions {
  Sheet sheet = Sheet::A4;
  bool landscape = false;
  double scale = 500;  // 1 : scale
  std::string title;   // the document's name
  std::string date;    // as it is to be printed
  std::string surveyor, company;  // printed when not empty
};

struct MmRect {
  double x = 0, y = 0, w = 0, h = 0;  // from the sheet's top-left corner, y down
};

struct PrintLayout {
  double sheetWidth = 0, sheetHeight = 0;  // millimetres
  MmRect map;          // the frame the map fills
  MmRect titleBlock;   // inside the frame, lower right
  double minE = 0, maxE = 0, minN = 0, maxN = 0;  // the ground the frame shows
};

// Room kept free at each edge of the sheet, where most printers cannot print.
constexpr double PrintMarginMm = 10;
// The scales a print may have.
constexpr double MinPrintScale = 1, MaxPrintScale = 1000000;

// The layout for a sheet with the frame's centre at (centreE, centreN).
PrintLayout LayOutSheet(const PrintOptions& options, double centreE, double centreN);

// The rows of the title block, caption and value, empty values left out.
std::vector<std::pair<std::string, std::string>> TitleRows(const PrintOptions& options);

// The scale as the title block and the dialog show it: "1 : 500".
std::string PrintScaleText(double scale);

// Paints the map of `layout` through the map view's repaint onto `surface`, whose
// coordinates are the map view's pixels (32.5 to the centimetre of paper) from the
// frame's top-left corner. The document's own scale and view are left as they were;
// the display is used as it is but for the paper, which is white. False, with nothing
// drawn, when the scale makes no view.
bool PaintPrintMap(Document& doc, const Display& display, const PrintOptions& options, const PrintLayout& layout,
                   ui::Surface& surface, ui::Dialogs& dialogs);

}  // namespace tavik::view
