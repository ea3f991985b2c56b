// The document routines that end in a change of view: opening an older .SP document
// (fitted to its whole extent) and merging another .SPC (zoomed to the whole extent,
// screen tables rebuilt). Their file parts are in core/docfile.h.
#pragma once

#include <string>

#include "core/document.h"
#include "core/view_state.h"
#include "core/workfiles.h"
#include "platform/dialogs.h"

namespace tavik {

// Reads doc.SpPath, then centres the view on the whole extent and fits the scale to it
// (a single spot: scale 1 and the extent becomes the paper rectangle).
bool LoadOldDocument(Document& doc, View& view, ui::Dialogs& dialogs);

}  // namespace tavik
