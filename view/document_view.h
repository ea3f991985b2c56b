// The document routines that end in a change of view: opening an older .SP document
// (fitted to its whole extent) and merging another .SPC (zoomed to the whole extent,
// screen tables rebuilt). Their file parts are in core/docfile.h.
#pragma once

#include <string>

#include "core/document.h"
#include "core/progress.h"
#include "core/view_state.h"
#include "core/workfiles.h"
#include "platform/dialogs.h"

namespace tavik {

// Reads doc.SpPath, then centres the view on the whole extent and fits the scale to it
// (a single spot: scale 1 and the extent becomes the paper rectangle).
bool LoadOldDocument(Document& doc, View& view, ui::Dialogs& dialogs, const ProgressSink& progress = {});

// Appends the points and entities of another .SPC past the reference-map rows (its base
// map is not read), zooms to the whole extent as ZE does (the present view pushed
// first), rebuilds both screen tables, rewrites the three work files and the recovery
// header. A file with no entities: doc.SpcPath + "檔案沒有內容" under "合併動作取消".
bool MergeDocument(Document& doc, View& view, WorkFiles& wf, const std::string& path, ui::Dialogs& dialogs,
                   const ProgressSink& progress = {});

}  // namespace tavik
