// The symbol library: one DXF block per legend code, in symb/<code>.dxf, which the DXF
// export copies into its BLOCKS section, and symb/999.dxf, the block of an unknown code.
//
// Each file is the text of one BLOCK in code page 950, one item a line. The export drops
// its first six lines ("  0", "BLOCK", "  8", layer, "  2", name) and writes its own in
// their place with the legend's layer, name and colour, then copies the rest; 999.dxf is
// copied whole. The drawing is the map's own glyph of the code (or the mark a decorated
// line repeats), scaled so that one block unit is 1 cm of paper: the export inserts it
// with the scale DxfUnit (the metres of 1 cm at the sheet's scale), so a symbol prints the
// same size at every scale, as it does on the screen.
//
// The library ships with the program and is copied into the data folder's symb/ at the
// first start, where the surveyor may edit or replace a block; the export reads it from
// there, or from the shipped copy while the data folder has none (tavik-tool on a fresh
// machine).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "core/app_paths.h"

namespace tavik::dxf {

// Block units (1 cm of paper) per pixel of the screen glyph: a glyph 14 pixels across
// prints 2.8 mm wide, and a 10-pixel character 2 mm high like the export's own labels.
constexpr double SymbolPixel = 0.02;

// The code of the default block, whose file is copied whole.
constexpr int DefaultBlockCode = 999;

// Every code with a file in the library, ascending, 999 last: the codes with a map glyph,
// the codes whose lines repeat a mark, and an empty block for each other legend code the
// export asks for, so that no legend in use draws the missing-file message.
const std::vector<int>& SymbolLibraryCodes();

// The file text of a code's block in code page 950, lines ended by "\n"; "" for a code
// outside the library.
std::string SymbolBlockFile(int code);

// The file name of a code in the library, "<code>.dxf".
std::string SymbolFileName(int code);

// The library that ships with the program: beside the executable, in the installed
// share/tavik/symb, or in the source tree the program was built from. Empty when none
// of them holds 999.dxf.
std::filesystem::path ShippedSymbolLibrary();

// Where the export reads the library: the data folder's symb/ when it holds the library
// (999.dxf is there), else the shipped one.
std::filesystem::path SymbolLibraryFolder(const AppPaths& paths);

// Copies every file of the shipped library (the blocks and the workbook layouts, *.tpl)
// that the data folder's symb/ lacks; the surveyor's own files are never overwritten.
// Returns the number copied, -1 when the shipped library is not found or a copy fails.
int InstallSymbolLibrary(const AppPaths& paths);

// Writes the whole library into a folder (the generator of the shipped files). False
// when a file cannot be written.
bool WriteSymbolLibrary(const std::filesystem::path& dir);

}  // namespace tavik::dxf
