// tavik-tool sheet: the observation book or the stake-out book of a document as an
// Excel workbook, written by the same code as the program's 匯出 menu, with the layouts
// of the symbol folder.
#include <cstdio>
#include <string>

#include "core/app_paths.h"
#include "export/field_book_sheet.h"
#include "export/symbol_library.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr const char* SheetUsage = "DOC.SPC OUT.xlsx [--book obs|stake]";

int Sheet(const Args& args) {
  std::vector<std::string> files;
  sheet::Book book = sheet::Book::Observation;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--book" && i + 1 < args.size() && (args[i + 1] == "obs" || args[i + 1] == "stake")) {
      book = args[++i] == "obs" ? sheet::Book::Observation : sheet::Book::Stake;
    } else if (args[i].rfind("--", 0) == 0) {
      files.clear();
      break;
    } else {
      files.push_back(args[i]);
    }
  }
  if (files.size() != 2) {
    std::fprintf(stderr, "usage: tavik-tool sheet %s\n", SheetUsage);
    return 2;
  }
  Document doc;
  if (std::string why = ReadDocument(files[0], doc); !why.empty()) return Refuse("tavik-tool: " + why);
  const auto r = sheet::WriteFieldBook(doc, book, files[1], dxf::SymbolLibraryFolder(AppPaths::FromEnvironment()));
  if (!r.ok) return Refuse(r.message);
  for (const auto& w : r.warnings) std::fprintf(stderr, "%s\n", w.c_str());
  std::printf("%s\n", r.message.c_str());
  return 0;
}

const Registrar sheetCommand({"sheet", SheetUsage, Sheet});

}  // namespace
}  // namespace tavik::tool
