// The survey extent over all live data, and the whole-extent fit of ZE. The document
// load and the merge use the fit as well, so it is kept apart from the command.
#pragma once

#include "core/document.h"
#include "core/view_state.h"
#include "view/view_ui.h"

namespace tavik::view {

// Sets MinE, MaxE, MinN, MaxN over live points, live entities and base-map lines.
// Returns false, leaving the starting values in place, when there is nothing.
// Non-finite coordinates are left out.
bool ExtentOfLiveData(Document& doc);

// The whole extent: centre on its middle and fit the scale to it, keeping a margin of
// WholeExtentMargin pixels free at each side so that the outermost marks and the names
// and heights beside them are not cut by the edge. A single spot gives scale 1, and the
// extent becomes the paper rectangle of that view. Calls ComputeView. Returns false
// (nothing changed) when the document holds nothing to show.
// The margin for a side of the view `pixels` long: a tenth of it, at least 40 pixels, and
// never more than a quarter.
double WholeExtentMargin(double pixels);
bool FitWholeExtent(Document& doc, View& view, ViewUi& ui = SilentUi());

}  // namespace tavik::view
