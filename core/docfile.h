// The document file (.SPC), its older relative (.SP) and the merge of one .SPC into the
// open document.
//
// .SPC: a 224-byte header, then 24-byte point records (E, N, H), 96-byte entity records
// and base-map records (96 bytes, or 72 without Z in files of an old version), all
// little-endian, text fixed-width in code page 950. The header counts are the table
// counts less the deleted counts, which is not always what was written (see
// SaveDocument); the loader reads by the header counts and its filters drop what does
// not belong. A short or damaged file is read as far as it goes: nothing is allocated
// from a count the file cannot hold.
#pragma once

#include <string>

#include "core/document.h"
#include "core/progress.h"
#include "core/view_state.h"
#include "core/workfiles.h"
#include "platform/dialogs.h"

namespace tavik {

// Version text written into every saved file.
inline constexpr const char* CurrentFileVersion = "7321153";

// Every live point feature (Kind 11) whose vertex 1 is at exactly 0, 0, 0 gets Deleted.
// DeletedEntityCount is deliberately left as it was, so the header of the next save
// counts such an entity although it is not written.
void PurgeZeroEntities(Document& doc);

// Writes doc.SpcPath: the header, every live point, every live entity whose vertices 1
// and 2 differ, every base-map record with Z 0. The previous file becomes .OLD. The new
// file is written beside the old one and flushed before the renames, so a crash at any
// instant leaves a whole document under .SPC. Then PointCount and EntityCount become
// the numbers written, the deleted counts 0 (the rows are not compacted: the caller
// reloads), and the work files are removed. A failed write shows a message, leaves the
// previous .SPC and the tables as they were, and returns false.
// progress hears of the records written; a save is never stopped half-way.
bool SaveDocument(Document& doc, WorkFiles& wf, ui::Dialogs& dialogs, const ProgressSink& progress = {});

// SaveDocument without the work files: for writing a document that is not the open one
// (the command-line conversion).
bool WriteDocumentFile(Document& doc, ui::Dialogs& dialogs, const ProgressSink& progress = {});

// Reads doc.SpcPath into the tables, with every filter and version rule of the format.
// A file whose three counts are all 0: SpcPath + "檔案沒有內容" under "讀檔動作取消",
// false, tables untouched. Sets MapChanged when it had to drop entities.
// progress hears of the records read, out of the records the file holds.
bool LoadDocument(Document& doc, ui::Dialogs& dialogs, const ProgressSink& progress = {});

// The view steps that close LoadOldDocument and MergeDocument (fitting the view to the
// extent and rebuilding the screen tables) are the map view's: those two routines are
// declared in view/document_view.h. Their file parts are here.

// Reads doc.SpPath (the older format) into the tables: MapType, every point, the items
// as entities, and the items of code 299 as base-map lines. The station is cleared.
bool ReadOldDocument(Document& doc, ui::Dialogs& dialogs, const ProgressSink& progress = {});

// Appends the points and entities of another .SPC, past the open document's reference
// map rows, and rewrites the three work files. A file with no entities: doc.SpcPath +
// "檔案沒有內容" under "合併動作取消", false.
bool MergeDocumentRecords(Document& doc, WorkFiles& wf, const std::string& path, ui::Dialogs& dialogs,
                          const ProgressSink& progress = {});

}  // namespace tavik
