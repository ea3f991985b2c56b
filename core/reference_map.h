// The reference map: another document (the cadastral map, as a rule) laid under the
// open one, read-only, so that new survey data can be drawn and traced against it.
//
// It is not a table of its own. Its points and entities are the first
// ReferencePointCount and ReferenceEntityCount rows of the open document's tables, and
// ReferenceMapLoaded says they are there. The header keeps the counts, and saving keeps
// the order, so the rows stay first across a save and a load; drawing gives them the
// reference colour by their row, and a merge passes over as many first rows of the
// merged file. Everything surveyed later is appended after them.
#pragma once

#include <string>

#include "core/document.h"
#include "core/view_state.h"
#include "core/workfiles.h"

namespace tavik {

// Message when the open document already holds rows of its own: the reference map must
// come first, and putting it under them would renumber and recolour them.
inline constexpr const char* ReferenceMapAfterSurveyMessage =
    "圖檔中已有測量資料,參考圖必須在測量之前讀入:請先開新圖檔,讀入參考圖後再測量";
// Message when a reference map is there already.
inline constexpr const char* ReferenceMapTwiceMessage = "參考圖已經讀入;要換參考圖,請開新圖檔後再讀入";
// Message when the chosen document holds no point and no entity.
inline constexpr const char* ReferenceMapEmptyMessage = "參考圖沒有點位或圖元";

// Why `doc` cannot take a reference map now (the message shown to the user), or "" when
// it can: it must hold none yet, and no point or entity of its own.
std::string ReferenceMapRefusal(const Document& doc);

// Installs the live points and entities of `ref` (in their order, renumbered) as the
// reference map of `doc`: the rows are appended as a block, the points on the screen
// and every entity also to the screen tables (as AddPoint and AddEntity put them), the
// extent grows over the points and the entities' vertices, and the two work files are
// written whole once. Sets ReferenceMapLoaded, the two counts and MapChanged. The base
// map and the header of `ref` are not taken.
//
// Refused (false, `refusal` says why in the words shown to the user, `doc` untouched)
// when `doc` already has a reference map, when it holds any point or entity (deleted
// ones too, until a save drops them), or when `ref` has nothing to give.
// The caller redraws and fits the view.
bool LoadReferenceMap(Document& doc, const View& view, WorkFiles& wf, const Document& ref, std::string& refusal);

}  // namespace tavik
