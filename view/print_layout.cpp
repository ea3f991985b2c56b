#include "view/print_layout.h"

#include <cmath>

#include "core/numbers.h"
#include "view/canvas.h"
#include "view/offset_surface.h"
#include "view/render.h"
#include "view/transform.h"

namespace tavik::view {
namespace {

constexpr double kTitleWidthMm = 100;
constexpr double kTitleRowMm = 7;

// Puts the document's scale and centre back however the paint ends.
struct KeepView {
  Document& doc;
  double scale = doc.ScaleDenominator, E = doc.ViewCentreE, N = doc.ViewCentreN;
  ~KeepView() {
    doc.ScaleDenominator = scale;
    doc.ViewCentreE = E;
    doc.ViewCentreN = N;
  }
};

}  // namespace

PrintLayout LayOutSheet(const PrintOptions& o, double centreE, double centreN) {
  PrintLayout l;
  const double shortSide = o.sheet == Sheet::A3 ? 297 : 210;
  const double longSide = o.sheet == Sheet::A3 ? 420 : 297;
  l.sheetWidth = o.landscape ? longSide : shortSide;
  l.sheetHeight = o.landscape ? shortSide : longSide;
  l.map = {PrintMarginMm, PrintMarginMm, l.sheetWidth - 2 * PrintMarginMm, l.sheetHeight - 2 * PrintMarginMm};
  const double rows = static_cast<double>(TitleRows(o).size());
  const double th = rows * kTitleRowMm + 4;
  l.titleBlock = {l.map.x + l.map.w - kTitleWidthMm, l.map.y + l.map.h - th, kTitleWidthMm, th};
  // One millimetre of paper is scale / 1000 metres of ground.
  const double metresPerMm = o.scale / 1000;
  l.minE = centreE - l.map.w / 2 * metresPerMm;
  l.maxE = centreE + l.map.w / 2 * metresPerMm;
  l.minN = centreN - l.map.h / 2 * metresPerMm;
  l.maxN = centreN + l.map.h / 2 * metresPerMm;
  return l;
}

std::vector<std::pair<std::string, std::string>> TitleRows(const PrintOptions& o) {
  std::vector<std::pair<std::string, std::string>> rows = {{"圖名", o.title}, {"比例尺", PrintScaleText(o.scale)}};
  if (!o.date.empty()) rows.push_back({"日期", o.date});
  if (!o.surveyor.empty()) rows.push_back({"測量員", o.surveyor});
  if (!o.company.empty()) rows.push_back({"公司", o.company});
  return rows;
}

std::string PrintScaleText(double scale) { return "1 : " + num::Plain(std::round(scale)); }

bool PaintPrintMap(Document& doc, const Display& display, const PrintOptions& o, const PrintLayout& l,
                   ui::Surface& surface, ui::Dialogs& dialogs) {
  if (!(o.scale >= MinPrintScale && o.scale <= MaxPrintScale) || !(l.map.w > 0 && l.map.h > 0)) return false;
  KeepView keep{doc};
  doc.ScaleDenominator = o.scale;
  doc.ViewCentreE = (l.minE + l.maxE) / 2;
  doc.ViewCentreN = (l.minN + l.maxN) / 2;
  // The frame is a viewport of the map view: its pixels at 32.5 to the centimetre.
  const double w = l.map.w / 10 * PixelsPerCm, h = l.map.h / 10 * PixelsPerCm;
  View view;
  SetViewportSize(view, static_cast<float>(w), static_cast<float>(h));
  ComputeView(doc, view);
  Display paper = display;
  paper.Background = ui::MakeRgb(255, 255, 255);
  paper.MatchingOverlay = nullptr;
  // The repaint counts from Paper1's corner, 1.5 viewports up and left of the frame.
  OffsetSurface frame(surface, static_cast<float>(-1.5 * w), static_cast<float>(-1.5 * h));
  MapCanvas canvas(doc, view, paper, frame, SilentUi(), dialogs);
  canvas.visibleOnly = true;
  canvas.ResetClip();
  RedrawAll(canvas);
  return true;
}

}  // namespace tavik::view
