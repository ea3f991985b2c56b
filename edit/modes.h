// The ActionMode keys: the text that says what the next pointer action on Paper1 means.
#pragma once

#include <string>
#include <string_view>

namespace tavik::edit::mode {

// Drawing (Toolbar2 and the F keys).
inline const std::string Line = "Line";
inline const std::string RECT = "RECT";
inline const std::string P2C = "P2C";
inline const std::string P3C = "P3C";
inline const std::string ARC = "ARC";
inline const std::string Text = "Text";
inline const std::string Symbol = "Symbol";
inline const std::string Label = "Label";

// Entity editing.
inline const std::string EraseP = "EraseP";
inline const std::string EraseEntity = "EraseEntity";
inline const std::string EraseWindow = "EraseWindow";
inline const std::string ChangeAtt = "ChangeAtt";
inline const std::string PtRename = "PtRename";
inline const std::string OFFSET = "OFFSET";
// Two lines cut or extended to their crossing.
inline const std::string LineTrim = "LineTrim";

// Inquiries and new-point constructions.
inline const std::string QDIS = "QDIS";
inline const std::string QAREA = "QAREA";
inline const std::string QX2Line = "QX2Line";
inline const std::string QX2LineMark = "QX2LineMark";
inline const std::string NP_MidOf = "NP_MidOf";
inline const std::string NP_DevideTo = "NP_DevideTo";
inline const std::string NP_Extend = "NP_Extend";
inline const std::string NP_PerOf = "NP_PerOf";
inline const std::string NP_IntOf = "NP_IntOf";
inline const std::string PointProject = "PointProject";

// View.
inline const std::string ZoomW = "ZoomW";
inline const std::string PAN = "PAN";

// Keyed observations: a point led off a picked point by a typed bearing and distance.
inline const std::string SS1 = "SS1";

// Modes of other subsystems, handed to the host.
inline const std::string MapMoveFree = "MapMoveFree";
inline const std::string MapRotateFree = "MapRotateFree";
inline const std::string MatchRotFixP = "MatchRotFixP";
inline const std::string BaseRotFixP = "BaseRotFixP";
inline const std::string MatchRotStep = "MatchRotStep";
inline const std::string MatchSftStep = "MatchSftStep";
inline const std::string MapMoveP = "MapMoveP";
inline const std::string MapMoveCoordPos = "MapMoveCoordPos";
inline const std::string MapMoveLine = "MapMoveLine";
inline const std::string MapMoveByLine2 = "MapMoveByLine2";
inline const std::string MapMoveBmByP = "MapMoveBmByP";
inline const std::string BaseMoveBmByP = "BaseMoveBmByP";
inline const std::string BaseLine = "BaseLine";
inline const std::string BM_MakeP = "BM_MakeP";
inline const std::string BM_XLineMakeP = "BM_XLineMakeP";
inline const std::string BMEraseWindow = "BMEraseWindow";

}  // namespace tavik::edit::mode

namespace tavik::edit {

// Line, rectangle, circles, arc, notes and symbols.
bool IsDrawingMode(std::string_view m);
// NP_MidOf, NP_DevideTo, NP_Extend, NP_PerOf, NP_IntOf, PointProject (one or two clicks);
// QX2Line and QX2LineMark take a window instead.
bool IsConstructionMode(std::string_view m);
// A mode whose pointer events belong to a subsystem built elsewhere: whole-map transforms
// by hand, map matching, base map, station set-up, resection, stake-out, RTK base, land split.
bool IsPluggedMode(std::string_view m);
// A mode that takes a window dragged on the map: EraseWindow, ZoomW, BMEraseWindow,
// QX2Line, QX2LineMark.
bool IsWindowMode(std::string_view m);
// The prompt shown when the mode starts, "" for none.
std::string PromptOf(std::string_view m);

}  // namespace tavik::edit
