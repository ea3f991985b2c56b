// Changing the tables of the open document: points and entities are only ever appended,
// each at once journalled to the work files; deletion only sets a flag and pushes an
// entry for undelete. Rows go for good only at save and the reload that follows.
#pragma once

#include <cstdint>
#include <string>

#include "core/document.h"
#include "core/view_state.h"
#include "core/workfiles.h"
#include "platform/dialogs.h"

namespace tavik {

// Grows the survey extent to take in (E, N). True when any bound moved.
bool UpdateExtent(Document& doc, double E, double N);

// Sets the extent back to its starting values, which any first point replaces.
void ResetExtent(Document& doc);

// Appends a point (Number = the new PointCount), copies it to the screen table when it
// is on screen, and journals it. The journal line is on disk before the call returns.
// False when the journal could not be written: the point is in the table all the same.
bool AddPoint(Document& doc, const View& view, WorkFiles& wf, double E, double N, double H);

// Appends an entity (Number = the new EntityCount) and its screen copy, and journals it.
// Same return as AddPoint.
bool AddEntity(Document& doc, const View& view, WorkFiles& wf, int16_t Code, int16_t Kind, double X1,
               double Y1, double Z1, double X2, double Y2, double Z2, double X3, double Y3, double Z3,
               const std::string& Name);

// The short form for point features: Kind 11 at (X, Y, Z), vertices 2 and 3 zero.
bool AddEntity(Document& doc, const View& view, WorkFiles& wf, int16_t Code, double X, double Y,
               double Z, const std::string& Name);

// Row of the point or entity with this Number, or -1. Rows added since the last load
// sit at Number - 1; after a load that skipped records the table is searched.
int32_t PointRow(const Document& doc, int32_t number);
int32_t EntityRow(const Document& doc, int32_t number);

// Sets Deleted on the record and its screen copy, raises the deleted count, pushes an
// UndeleteEntry and rewrites the work file. False when there is no such live record.
bool DeletePoint(Document& doc, WorkFiles& wf, int32_t number);
bool DeleteEntity(Document& doc, WorkFiles& wf, int32_t number);

// Pops the newest UndeleteEntry and brings its record back (screen copy too), lowering
// the deleted count and rewriting the work file. With an empty stack: "無刪除資料"
// under "救回刪除的資料", and false.
bool Undelete(Document& doc, WorkFiles& wf, ui::Dialogs& dialogs);

// Rows of the point or entity table were replaced, moved, inserted before others or
// removed (anything but an append): the spatial index is built again when next needed.
inline void RowsChanged(Document& doc) { doc.Index.Invalidate(); }

// Empties every table, count and the undelete stack, the reference-map rows and the
// values derived for the land split: the state of no open document, or of a new one.
// The header values other than those are left for the caller to set.
void ClearTables(Document& doc);

// Azimuth from (sE, sN) to (bE, bN), clockwise from north, never undefined: a
// difference of exactly 0 counts as 0.0001.
double BacksightAzimuthOf(double sE, double sN, double bE, double bN);
// Sets doc.BacksightAzimuth from the station and backsight coordinates.
void ComputeBacksightAzimuth(Document& doc);

}  // namespace tavik
