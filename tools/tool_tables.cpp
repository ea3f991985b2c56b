// tavik-tool tables / report / symbols: the CSV side tables and the text report of a
// document, as the program writes them, and the symbol library the program ships.
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/app_paths.h"
#include "export/document_report.h"
#include "export/side_tables.h"
#include "export/symbol_library.h"
#include "geo/area.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

namespace fs = std::filesystem;

int Usage(const char* text) {
  std::fprintf(stderr, "usage: tavik-tool %s\n", text);
  return 2;
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "%s\n", message.c_str());
  return 1;
}

int Tables(const Args& args) {
  if (args.empty() || args.size() > 2) return Usage("tables DOC.SPC [DIR]");
  Document doc;
  if (std::string why = ReadDocument(args[0], doc); !why.empty()) return Fail(why);
  const fs::path dir = args.size() > 1 ? fs::path(args[1]) : fs::current_path();
  for (auto write : {dxf::WritePointTableCsv, dxf::WriteClassTableCsv}) {
    const dxf::TableResult r = write(doc, dir);
    if (!r.written) return Fail(r.message);
    std::printf("%s\n", r.message.c_str());
  }
  return 0;
}

int Report(const Args& args) {
  if (args.empty() || args.size() > 2) return Usage("report DOC.SPC [OUT.TXT]");
  Document doc;
  if (std::string why = ReadDocument(args[0], doc); !why.empty()) return Fail(why);
  const std::string when = dxf::ReportTimeNow();
  if (args.size() == 1) {
    // The file's CR LF line ends stay in the file; a terminal gets plain lines.
    std::string text = dxf::DocumentReportText(doc, AreaUnitSquareMetres, when);
    std::erase(text, '\r');
    std::fputs(text.c_str(), stdout);
    return 0;
  }
  if (std::string why = dxf::WriteDocumentReport(doc, AreaUnitSquareMetres, args[1], when); !why.empty())
    return Fail(why);
  return 0;
}

int Symbols(const Args& args) {
  if (args.size() != 1) return Usage("symbols DIR");
  if (!dxf::WriteSymbolLibrary(args[0])) return Fail(args[0] + ": 無法寫入圖例符號檔");
  std::printf("%zu\n", dxf::SymbolLibraryCodes().size());
  return 0;
}

const Registrar kTables({"tables", "DOC.SPC [DIR]   控制點樁位表.CSV and 分類樁位表.CSV into DIR", Tables});
const Registrar kReport({"report", "DOC.SPC [OUT.TXT]   the text report of the document", Report});
const Registrar kSymbols({"symbols", "DIR   write the symbol library (symb/<code>.dxf) into DIR", Symbols});

}  // namespace
}  // namespace tavik::tool
