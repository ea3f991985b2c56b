// tavik-tool render: hands over to tavik-render, the Qt companion that sits in the same
// folder. tavik-tool itself links no Qt, so the drawing runs in that program.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tools/tool.h"

namespace tavik::tool {
namespace {

int Render(const Args& args) {
  if (args.size() < 2) {
    std::fprintf(stderr, "usage: tavik-tool render FILE.SPC OUT.png [--size WxH] [--scale N] [--centre E,N]\n");
    return 2;
  }
  std::error_code ec;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::filesystem::path renderer = (ec ? std::filesystem::path(".") : self.parent_path()) / "tavik-render";
  std::vector<std::string> all = {renderer.string()};
  all.insert(all.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& a : all) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::fflush(nullptr);
  execv(renderer.c_str(), argv.data());
  std::fprintf(stderr, "tavik-tool: cannot run %s: %s (the renderer is built with the Qt program)\n",
               renderer.c_str(), std::strerror(errno));
  return 1;
}

const Registrar kRender({"render", "FILE.SPC OUT.png [--size WxH] [--scale N] [--centre E,N]", Render});

}  // namespace
}  // namespace tavik::tool
