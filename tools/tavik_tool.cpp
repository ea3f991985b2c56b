// tavik-tool: office work on TAVIK's files without the program's window.
#include <cstdio>
#include <cstring>
#include <vector>

#include "tools/tool.h"

namespace tavik::tool {
namespace {
std::vector<Command>& Commands() {
  static std::vector<Command> all;
  return all;
}
}  // namespace
void Register(const Command& c) { Commands().push_back(c); }
}  // namespace tavik::tool

int main(int argc, char** argv) {
  using namespace tavik::tool;
  auto usage = [] {
    std::fprintf(stderr, "usage: tavik-tool COMMAND ...\n");
    for (const auto& c : Commands()) std::fprintf(stderr, "  tavik-tool %s %s\n", c.name, c.usage);
  };
  if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
    usage();
    return argc < 2 ? 2 : 0;
  }
  for (const auto& c : Commands()) {
    if (!std::strcmp(argv[1], c.name)) return c.run(Args(argv + 2, argv + argc));
  }
  std::fprintf(stderr, "tavik-tool: unknown command '%s'\n", argv[1]);
  usage();
  return 2;
}
