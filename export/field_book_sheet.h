// The field books as Excel workbooks for the office: the observation book (the .OBS
// log with the names of the .MAC book) and the stake-out book (.STK and .GSTK), one
// sheet each, written with libxlsxwriter. A title, the document and the time of
// writing, a header row of column titles with their units, the rows with fixed number
// formats (coordinates and distances to the millimetre, heights of instrument and
// target to the centimetre, angles as degrees-minutes-seconds text), and the header
// frozen so that it stays in view while scrolling.
//
// Which columns, in which order and under which titles, comes from a layout in the
// symbol folder that the surveyor may edit: symb/Macbook0.tpl for the observation book
// and symb/PoleBook0.tpl for the stake-out book. A layout is text in code page 950:
//   ; a comment
//   標題,<title of the sheet's first row>
//   工作表,<name of the sheet>
//   <column key>,<column title>[,<width in characters>]
// The column keys are listed in the shipped layouts; a line with an unknown key is
// passed over with a warning. When the layout is missing the built-in one is used.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/document.h"

namespace tavik::sheet {

enum class Book { Observation, Stake };

constexpr const char* SheetTitle = "匯出 Excel 手簿";
constexpr const char* ObservationLayout = "Macbook0.tpl";
constexpr const char* StakeLayout = "PoleBook0.tpl";

struct SheetResult {
  bool ok = false;
  std::string message;                // the box's text: what was written, or why nothing was
  std::vector<std::string> warnings;  // layout lines passed over, a layout missing, log lines skipped
  int rows = 0;
};

// Writes the book of doc's logs to target (.xlsx). The layout is read from layoutDir,
// else from the shipped symbol library, else the built-in one is used. The file
// is written beside the target and renamed over it only when whole; a target marked
// read-only is refused and left as it was.
SheetResult WriteFieldBook(const Document& doc, Book book, const std::filesystem::path& target,
                           const std::filesystem::path& layoutDir);

}  // namespace tavik::sheet
