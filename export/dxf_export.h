// DXF drawing of the open document for a CAD program: a hand-assembled R12-style text
// file with its own line types, one layer per legend code in use, the block of each map
// symbol read from the symbol library, a sheet frame with grid and coordinate labels,
// and every point and entity, ornamented so that the drawing looks like the map on the
// tablet. Text is code page 950.
//
// The writer shows nothing itself: it returns what the dialog shows (the refusal, the
// names of missing library files, the text of Label4), so the window and tavik-tool
// run the same export.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "core/document.h"

namespace tavik::dxf {

// The options of the DXFOutput dialog, with its defaults.
struct DxfExportOptions {
  double DxfScale = 1000;        // n of the output scale 1:n (TxtScale)
  int16_t PointAsBlock = 1;      // 1: spot heights (code 517) as INSERT, 0 as POINT
  int16_t HeightDecimals = 2;    // 3: heights as "0.000", anything else "0.00"
  int16_t GridFull = kTrue;      // Option7 方格: every grid line
  int16_t GridTicks = kTrue;     // Option6 只畫外框: the frame and its ticks
  int16_t GridLabels = kTrue;    // Option1 標示 / Option2 不標示: coordinates on the frame
  int16_t WriteReport = kFalse;  // Check5: the caller writes the text report afterwards
  int16_t AreaUnit = 1;          // 1 m², 2 hectares, 3 ping: the current unit of area labels
  std::string symbolDir;         // the folder holding <code>.dxf and 999.dxf
};

// The three grid buttons. Option5 (no grid) clears all three flags, Option6 (frame only)
// sets the frame and clears the full grid, Option7 (grid) sets the grid and its labels.
inline void SetGridNone(DxfExportOptions& o) { o.GridFull = o.GridTicks = o.GridLabels = kFalse; }
inline void SetGridFrame(DxfExportOptions& o) { o.GridTicks = kTrue, o.GridFull = kFalse; }
inline void SetGridFull(DxfExportOptions& o) { o.GridFull = o.GridLabels = kTrue; }

struct DxfExportResult {
  bool ok = false;
  // When refused: the message box to show (lines joined by "\n") and its title; nothing
  // was written and an existing file at the target is untouched.
  std::string message;
  std::string title;
  // Each symbol-library file that was missing, as the message to show for it: the file
  // name followed by "支援檔遺失或遭破壞!!". The export went on without that block.
  std::vector<std::string> missingSymbols;
  // Other messages of a finished export, each shown in a box (circles and arcs through
  // three collinear points, which were left out).
  std::vector<std::string> warnings;
  // When written: the text for Label4, "1/1000 DXF檔輸出完成".
  std::string label4;
};

// WriteDxf: the whole export of `doc` to `target`. The file is written beside the target
// and renamed over it only when complete, so a failed export leaves the old file as it
// was.
DxfExportResult WriteDxf(const Document& doc, const DxfExportOptions& options, const std::filesystem::path& target);

}  // namespace tavik::dxf
