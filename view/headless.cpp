#include "view/headless.h"

#include <cmath>

#include "core/numbers.h"
#include "view/canvas.h"
#include "view/extent.h"
#include "view/offset_surface.h"
#include "view/render.h"
#include "view/transform.h"

namespace tavik::view {

bool RenderHeadless(Document& doc, const HeadlessView& o, ui::Surface& surface, ui::Dialogs& dialogs) {
  if (o.width < 1 || o.height < 1 || o.width > 20000 || o.height > 20000) return false;
  View view;
  SetViewportSize(view, static_cast<float>(o.width), static_cast<float>(o.height));
  if (!FitWholeExtent(doc, view)) {
    // Nothing to fit: the document's own view, as the program opens it.
  }
  if (o.scale) {
    if (!(*o.scale >= 1) || !std::isfinite(*o.scale)) return false;
    doc.ScaleDenominator = *o.scale;
  }
  if (o.centreE && o.centreN) {
    if (!std::isfinite(*o.centreE) || !std::isfinite(*o.centreN)) return false;
    doc.ViewCentreE = *o.centreE;
    doc.ViewCentreN = *o.centreN;
  }
  ComputeView(doc, view);
  Display display;
  display.ShowBaseMap = doc.BaseMapCount > 0 ? kTrue : kFalse;
  // Only the viewport is kept: Paper1's pixel (1.5 w, 1.5 h) is the image's corner.
  OffsetSurface window(surface, -1.5f * o.width, -1.5f * o.height);
  MapCanvas canvas(doc, view, display, window, SilentUi(), dialogs);
  canvas.clipLeft = 1.5 * o.width;
  canvas.clipTop = 1.5 * o.height;
  canvas.clipRight = 2.5 * o.width;
  canvas.clipBottom = 2.5 * o.height;
  RedrawAll(canvas);
  return true;
}

bool ParseSize(const std::string& text, int& width, int& height) {
  const auto x = text.find_first_of("xX");
  if (x == std::string::npos) return false;
  const auto w = num::ParseStrict(text.substr(0, x));
  const auto h = num::ParseStrict(text.substr(x + 1));
  if (!w || !h || *w != std::floor(*w) || *h != std::floor(*h) || *w < 1 || *h < 1 || *w > 20000 || *h > 20000)
    return false;
  width = static_cast<int>(*w);
  height = static_cast<int>(*h);
  return true;
}

bool ParseCentre(const std::string& text, double& E, double& N) {
  const auto comma = text.find(',');
  if (comma == std::string::npos) return false;
  const auto e = num::ParseStrict(text.substr(0, comma));
  const auto n = num::ParseStrict(text.substr(comma + 1));
  if (!e || !n || !std::isfinite(*e) || !std::isfinite(*n)) return false;
  E = *e;
  N = *n;
  return true;
}

}  // namespace tavik::view
