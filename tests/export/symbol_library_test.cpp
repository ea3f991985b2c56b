// The shipped symbol library: the files in symb/ are exactly what the generator makes of
// the map's glyphs (so a glyph changed on the map can't leave the drawing behind), and the
// export finds the library in the data folder or, on a fresh machine, the shipped one.
#include <gtest/gtest.h>

#include <set>

#include "core/temp_home.h"
#include "export/symbol_library.h"
#include "view/legends.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;
namespace fs = std::filesystem;

TEST(SymbolLibrary, ShippedFilesAreTheGeneratedOnes) {
  const fs::path shipped = fs::path(TAVIK_TEST_DATA).parent_path().parent_path() / "symb";
  std::set<std::string> want;
  for (int code : dxf::SymbolLibraryCodes()) {
    want.insert(dxf::SymbolFileName(code));
    EXPECT_EQ(ReadBytes(shipped / dxf::SymbolFileName(code)), dxf::SymbolBlockFile(code))
        << code << ": run tavik-tool symbols symb";
  }
  // The workbook layouts beside the blocks are written by hand.
  for (const auto& f : fs::directory_iterator(shipped)) {
    if (f.path().extension() != ".dxf") continue;
    EXPECT_TRUE(want.count(f.path().filename().string())) << f.path() << " is not made by the generator";
  }
  // Every glyph of the map has its block, and so has the default.
  for (int code : view::SymbolGlyphCodes()) EXPECT_TRUE(want.count(dxf::SymbolFileName(code))) << code;
  EXPECT_TRUE(want.count("999.dxf"));
  EXPECT_EQ(dxf::SymbolBlockFile(1000), "");
}

TEST(SymbolLibrary, FoundInTheDataFolderOnceInstalledAndNeverOverwritten) {
  TempHome home;
  AppPaths paths(home.path);
  ASSERT_TRUE(paths.EnsureFolders());
  // A fresh machine: the data folder has no library yet, the export reads the shipped one.
  const fs::path shipped = dxf::ShippedSymbolLibrary();
  ASSERT_FALSE(shipped.empty());
  EXPECT_EQ(dxf::SymbolLibraryFolder(paths), shipped);

  // The surveyor's own block stays as it is; everything missing is copied, the two
  // workbook layouts with the blocks.
  WriteBytes(paths.Symb() / "351.dxf", "mine");
  const int n = static_cast<int>(dxf::SymbolLibraryCodes().size());
  EXPECT_EQ(dxf::InstallSymbolLibrary(paths), n - 1 + 2);
  EXPECT_TRUE(fs::exists(paths.Symb() / "PoleBook0.tpl"));
  EXPECT_EQ(ReadBytes(paths.Symb() / "351.dxf"), "mine");
  EXPECT_EQ(ReadBytes(paths.Symb() / "999.dxf"), ReadBytes(shipped / "999.dxf"));
  EXPECT_EQ(dxf::SymbolLibraryFolder(paths), paths.Symb());

  // A block deleted by hand comes back at the next start; nothing else is touched.
  fs::remove(paths.Symb() / "602.dxf");
  EXPECT_EQ(dxf::InstallSymbolLibrary(paths), 1);
  EXPECT_TRUE(fs::exists(paths.Symb() / "602.dxf"));
}
