// tavik-tool dxf: the DXF drawing of a document, written by the same export as the
// program's 輸出 DXF 圖檔 dialog, with the dialog's options and defaults.
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/app_paths.h"
#include "core/numbers.h"
#include "export/dxf_export.h"
#include "export/symbol_library.h"
#include "geo/area.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr const char* DxfUsage =
    "DOC.SPC OUT.DXF [--scale N] [--point-as block|point] [--height-decimals 2|3] "
    "[--grid full|frame|none] [--grid-labels on|off] [--area-unit m2|ha|ping]";

int Usage() {
  std::fprintf(stderr, "usage: tavik-tool dxf %s\n", DxfUsage);
  return 2;
}

// One message box as one line of standard error.
void Say(const std::string& message) {
  std::string line;
  for (char c : message)
    if (c != '\n') line += c;
  std::fprintf(stderr, "%s\n", line.c_str());
}

int Dxf(const Args& args) {
  std::vector<std::string> files;
  dxf::DxfExportOptions o;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a.rfind("--", 0) != 0) {
      files.push_back(a);
      continue;
    }
    if (i + 1 >= args.size()) return Usage();
    const std::string& v = args[++i];
    if (a == "--scale") {
      auto n = num::ParseStrict(v);
      if (!n || !(*n > 0)) return Usage();
      o.DxfScale = *n;
    } else if (a == "--point-as" && (v == "block" || v == "point")) {
      o.PointAsBlock = v == "block" ? 1 : 0;
    } else if (a == "--height-decimals" && (v == "2" || v == "3")) {
      o.HeightDecimals = v == "3" ? 3 : 2;
    } else if (a == "--grid" && (v == "full" || v == "frame" || v == "none")) {
      if (v == "none") dxf::SetGridNone(o);
      if (v == "frame") dxf::SetGridFrame(o);
    } else if (a == "--grid-labels" && (v == "on" || v == "off")) {
      o.GridLabels = v == "on" ? kTrue : kFalse;
    } else if (a == "--area-unit" && (v == "m2" || v == "ha" || v == "ping")) {
      o.AreaUnit = v == "m2" ? AreaUnitSquareMetres : v == "ha" ? AreaUnitHectares : AreaUnitPing;
    } else {
      return Usage();
    }
  }
  if (files.size() != 2) return Usage();
  // With no grid the label buttons are disabled: no labels whatever was asked.
  if (!o.GridFull && !o.GridTicks) o.GridLabels = kFalse;

  Document doc;
  if (std::string why = ReadDocument(files[0], doc); !why.empty()) {
    Say("tavik-tool: " + why);
    return 1;
  }
  o.symbolDir = dxf::SymbolLibraryFolder(AppPaths::FromEnvironment()).string();
  dxf::DxfExportResult r = dxf::WriteDxf(doc, o, files[1]);
  if (!r.ok) {
    Say(r.message);
    return 1;
  }
  for (const auto& m : r.missingSymbols) Say(m);
  for (const auto& m : r.warnings) Say(m);
  std::printf("%s\n", r.label4.c_str());
  return 0;
}

const Registrar dxfCommand({"dxf", DxfUsage, Dxf});

}  // namespace
}  // namespace tavik::tool
