// The screen tables: copies of what lies on the screen, walked by every pick so that a
// pick on a large survey answers at once. Every view change rebuilds both before the
// user can pick again; AddPoint and AddEntity append to them directly.
//
// The rebuilds look only at the rows the document's spatial index (core/spatial_index.h)
// gives for the screen, plus the rows appended since it was built, and apply the same
// exact test to each in row order: the tables are what a walk of every row would make.
// The repaint takes its rows from the same index, for the paper.
// The index is built on the first rebuild after a load or any change that forgot it.
#pragma once

#include <cstdint>
#include <vector>

#include "core/document.h"
#include "core/view_state.h"

namespace tavik {

// Copies every live point inside the screen rectangle. Returns ScreenPointCount, which
// the window shows as "螢幕點 " + n.
int32_t RebuildScreenPoints(Document& doc, const View& view);

// Copies every entity that reaches into the screen: any of its three vertices on screen
// (unused vertices at 0, 0 take part), or else a sample of its arc or circle. Deleted
// entities keep their copy: each pick tests the flag. Returns ScreenEntityCount
// ("螢幕圖 " + n).
int32_t RebuildScreenEntities(Document& doc, const View& view);

// The test RebuildScreenEntities applies to one entity.
bool EntityReachesScreen(const Entity& e, const View& view);

// The boxes the spatial index finds an entity by: whatever of it can be InScreen (a
// vertex, a sample of its arc or circle) and whatever of it the repaint draws (a whole
// segment, the circle of an arc) lies in one. An arc on a line is found everywhere: the
// repaint reports it wherever it lies.
void EntityBoxes(const Entity& e, std::vector<Box>& boxes);

// The rows of PointTable or EntityTable that may reach into a world box, for a repaint:
// ascending, each once, the rows appended since the index was built included. A row
// reaches into the box when one of its EntityBoxes (a point: its E, N) meets it, bounds
// included. False, with rows empty, when the box covers so much of the map that a walk
// of every row is the cheaper way.
bool PointRowsNear(Document& doc, const Box& box, std::vector<int32_t>& rows);
bool EntityRowsNear(Document& doc, const Box& box, std::vector<int32_t>& rows);

}  // namespace tavik
