// A document drawn without a window: the view of a given size, at the whole extent as
// ZE shows it or at a given scale and centre, painted through the map view's own
// repaint onto any surface the size of the viewport.
#pragma once

#include <optional>
#include <string>

#include "core/document.h"
#include "platform/dialogs.h"
#include "platform/surface.h"

namespace tavik::view {

struct HeadlessView {
  int width = 1600, height = 1200;
  std::optional<double> scale;
  std::optional<double> centreE, centreN;
};

// Sets the view and repaints `surface` (width x height pixels). Messages of the repaint
// go to `dialogs`. False, with nothing drawn, when the options make no view.
bool RenderHeadless(Document& doc, const HeadlessView& options, ui::Surface& surface, ui::Dialogs& dialogs);

// Reads "WxH", "N" and "E,N" as given on a command line.
bool ParseSize(const std::string& text, int& width, int& height);
bool ParseCentre(const std::string& text, double& E, double& N);

}  // namespace tavik::view
