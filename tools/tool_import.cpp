// tavik-tool import: a CAD or GIS drawing (or another .SPC) put under a document as its
// base map, or made the reference map of an empty survey, by the same code the program
// runs, written to a new document. Coordinates are taken in, or converted to, TWD97
// two-degree grid about 121 degrees. A summary goes to standard output.
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "basemap/vector_import.h"
#include "core/docfile.h"
#include "core/reference_map.h"
#include "core/text.h"
#include "platform/scripted/scripted.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr const char* ImportUsage =
    "import (DOC.SPC | --new) IN.(DXF|SHP|GPKG|GML|KML|SPC|...) OUT.SPC [--as basemap|reference] "
    "[--layer-code LAYER=CODE ...]\n"
    "      --new: a new empty document; IN becomes its reference map unless --as basemap\n"
    "      --layer-code: the legend code (1 to 999) of the layer's lines and texts";

int Usage(const std::string& why) {
  std::fprintf(stderr, "tavik-tool import: %s\nusage: tavik-tool %s\n", why.c_str(), ImportUsage);
  return 2;
}

struct ScratchHome {
  std::filesystem::path path;
  ScratchHome() {
    std::random_device rd;
    path = std::filesystem::temp_directory_path() / ("tavik-import-" + std::to_string(rd()));
    std::filesystem::create_directories(path);
  }
  ~ScratchHome() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

std::string Extension(const std::string& path) {
  return text::UpperAscii(std::filesystem::path(path).extension().string());
}

int Import(const Args& args) {
  std::vector<std::string> files;
  bool fresh = false;
  std::string as;
  basemap::LayerCodes codes;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--new") {
      fresh = true;
    } else if (a == "--as" || a == "--layer-code") {
      if (i + 1 >= args.size()) return Usage(a + " needs a value");
      const std::string& v = args[++i];
      if (a == "--as") {
        if (v != "basemap" && v != "reference") return Usage("--as is basemap or reference");
        as = v;
      } else {
        std::string layer;
        int16_t code = 0;
        if (!basemap::ParseLayerCode(v, layer, code)) return Usage("--layer-code takes LAYER=CODE, CODE 1 to 999");
        codes[layer] = {code, code};
      }
    } else if (!a.empty() && a[0] == '-' && a.size() > 1) {
      return Usage("unknown option " + a);
    } else {
      files.push_back(a);
    }
  }
  if (files.size() != (fresh ? 2u : 3u)) return Usage(fresh ? "IN and OUT.SPC expected after --new" : "DOC.SPC, IN and OUT.SPC expected");
  const std::string& in = files[fresh ? 0 : 1];
  const std::string& out = files.back();
  if (Extension(out) != ".SPC") return Usage("OUT.SPC must end in .SPC");
  if (!fresh && std::filesystem::absolute(out).lexically_normal() == std::filesystem::absolute(files[0]).lexically_normal())
    return Usage("OUT.SPC must name another file: the input document is never changed");
  const bool reference = as.empty() ? fresh : as == "reference";

  Document doc;
  if (!fresh)
    if (std::string why = ReadDocument(files[0], doc); !why.empty()) return Refuse(why);
  if (reference)
    if (std::string why = ReferenceMapRefusal(doc); !why.empty()) return Refuse(why);

  basemap::VectorDrawing drawing;
  const std::string inExt = Extension(in);
  Document source;
  const bool spc = inExt == ".SPC" || inExt == ".SP";
  if (spc) {
    if (std::string why = ReadDocument(in, source); !why.empty()) return Refuse(why);
    drawing = basemap::DocumentAsBaseMap(source);
  } else {
    std::string message;
    basemap::VectorImportOptions opts;
    if (basemap::ReadVectorFile(in, opts, drawing, message) != basemap::ReadResult::Read) return Refuse(message);
    basemap::ApplyLayerCodes(drawing, codes, reference);
  }

  int64_t kinds[4] = {0, 0, 0, 0};  // segments, arcs, circles, texts and points
  for (const auto& b : drawing.Rows)
    ++kinds[b.Kind == KindLine ? 0 : b.Kind == KindArc3 ? 1 : b.Kind == KindCircle2 || b.Kind == KindCircle3 ? 2 : 3];
  const auto rows = static_cast<int64_t>(drawing.Rows.size());

  ScratchHome scratch;
  WorkFiles work{AppPaths{scratch.path}};
  work.CreateEmpty();
  View view;
  std::filesystem::path o(out);
  SetDocumentName(doc, (o.parent_path() / o.stem()).string());
  doc.SpcPath = out;
  if (reference) {
    std::string refusal;
    const bool ok = spc ? LoadReferenceMap(doc, view, work, source, refusal)
                        : basemap::ImportReferenceMap(doc, view, work, drawing, refusal);
    if (!ok) return Refuse(refusal);
  } else {
    basemap::AddToBaseMap(doc, work, drawing);
  }
  ui::ScriptedDialogs dialogs;
  if (!WriteDocumentFile(doc, dialogs))
    return Refuse(dialogs.shown.empty() ? out + " 無法寫入" : dialogs.shown.back().text);

  if (!drawing.Converted.empty()) std::printf("%s\n", drawing.Converted.c_str());
  std::printf("%s: %lld rows (segments %lld, arcs %lld, circles %lld, texts and points %lld)\n",
              reference ? "reference" : "basemap", static_cast<long long>(rows), static_cast<long long>(kinds[0]),
              static_cast<long long>(kinds[1]), static_cast<long long>(kinds[2]), static_cast<long long>(kinds[3]));
  if (!spc) {
    for (std::size_t i = 0; i < drawing.Layers.size(); ++i) {
      const std::string& name = drawing.Layers[i];
      const auto it = codes.find(name);
      const basemap::LayerCode c = it != codes.end() ? it->second : basemap::DefaultLayerCode(name, reference);
      std::printf("layer %s: %lld rows, code %d, text code %d\n", name.c_str(),
                  static_cast<long long>(drawing.RowsPerLayer[i]), c.Line, c.Text);
    }
  }
  if (drawing.Skipped > 0) std::printf("skipped: %lld\n", static_cast<long long>(drawing.Skipped));
  std::printf("basemap total: %d\n", doc.BaseMapCount);
  return 0;
}

const Registrar import({"import", ImportUsage + 7, Import});

}  // namespace
}  // namespace tavik::tool
