// Runs an independent reader (python with csv, ezdxf, ...) and gives its standard output.
#pragma once

#include <cstdio>
#include <string>

namespace tavik::testing {

inline std::string RunPeer(const std::string& command, int* exitCode = nullptr) {
  std::string out;
  FILE* p = ::popen(command.c_str(), "r");
  if (!p) return out;
  char buf[4096];
  for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
  const int status = ::pclose(p);
  if (exitCode) *exitCode = status;
  return out;
}

}  // namespace tavik::testing
