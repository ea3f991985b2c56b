#include "core/app_paths.h"

#include <cstdlib>
#include <system_error>

#include "core/text.h"

namespace tavik {

namespace fs = std::filesystem;

AppPaths AppPaths::FromEnvironment() {
  AppPaths p;
  const char* h = std::getenv("HOME");
  const bool hasHome = h && *h;
  if (const char* home = std::getenv("TAVIK_HOME"); home && *home) {
    p.Home = home;
    return p;
  }
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg) {
    p.Home = fs::path(xdg) / "tavik";
  } else if (hasHome) {
    p.Home = fs::path(h) / ".local" / "share" / "tavik";
  } else {
    p.Home = fs::temp_directory_path() / "tavik";
  }
  if (hasHome) p.Documents = fs::path(h) / "TAVIK";
  return p;
}

bool AppPaths::EnsureFolders() const {
  std::error_code ec;
  fs::create_directories(Home, ec);
  if (ec) return false;
  fs::create_directories(Symb(), ec);
  if (ec) return false;
  fs::create_directories(WorkFolder(), ec);
  return !ec;
}

fs::path AppPaths::Find(const fs::path& dir, const std::string& name) {
  fs::path exact = dir / name;
  std::error_code ec;
  if (fs::exists(exact, ec)) return exact;
  for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
    if (text::EqualsNoCase(it->path().filename().string(), name)) return it->path();
  }
  return exact;
}

}  // namespace tavik
