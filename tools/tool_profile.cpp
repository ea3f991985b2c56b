// tavik-tool profile and sections: the longitudinal profile and the cross-sections of a
// document's routes, written by the same code as the program's 匯出 menu.
#include <cstdio>
#include <string>

#include "core/numbers.h"
#include "export/profile_dxf.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr const char* ProfileUsage = "DOC.SPC OUT.DXF";
constexpr const char* SectionsUsage = "DOC.SPC OUT.DXF [--interval M]";

int Finish(const dxf::DrawingResult& r) {
  if (!r.ok) return Refuse(r.message);
  std::string line;
  for (char c : r.message) line += c == '\n' ? ' ' : c;
  std::printf("%s\n", line.c_str());
  return 0;
}

int Profile(const Args& args) {
  if (args.size() != 2 || args[0].rfind("--", 0) == 0 || args[1].rfind("--", 0) == 0) {
    std::fprintf(stderr, "usage: tavik-tool profile %s\n", ProfileUsage);
    return 2;
  }
  Document doc;
  if (std::string why = ReadDocument(args[0], doc); !why.empty()) return Refuse("tavik-tool: " + why);
  return Finish(dxf::WriteProfileDxf(doc, args[1]));
}

int Sections(const Args& args) {
  auto usage = [] {
    std::fprintf(stderr, "usage: tavik-tool sections %s\n", SectionsUsage);
    return 2;
  };
  std::vector<std::string> files;
  double interval = 0;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--interval" && i + 1 < args.size()) {
      const auto m = num::ParseStrict(args[++i]);
      if (!m || !(*m > 0) || !(*m < 1e6)) return usage();
      interval = *m;
    } else if (args[i].rfind("--", 0) == 0) {
      return usage();
    } else {
      files.push_back(args[i]);
    }
  }
  if (files.size() != 2) return usage();
  Document doc;
  if (std::string why = ReadDocument(files[0], doc); !why.empty()) return Refuse("tavik-tool: " + why);
  return Finish(dxf::WriteSectionsDxf(doc, interval, files[1]));
}

const Registrar profileCommand({"profile", ProfileUsage, Profile});
const Registrar sectionsCommand({"sections", SectionsUsage, Sections});

}  // namespace
}  // namespace tavik::tool
