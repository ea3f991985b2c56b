// The screen tables: copies of what lies on the screen, walked by every pick so that a
// pick on a large survey answers at once. Every view change rebuilds both before the
// user can pick again; AddPoint and AddEntity append to them directly.
#pragma once

#include <cstdint>

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

}  // namespace tavik
