// Runs tavik-tool as a separate process, as a surveyor's script would: standard output
// and standard error go to files in the test's folder and come back with the exit code.
#pragma once

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/temp_home.h"

namespace tavik::testing {

struct ToolRun {
  int exit = -1;
  std::string out, err;
};

// `args` goes through the shell as it stands: quote paths with Quoted.
inline ToolRun RunTool(const std::filesystem::path& folder, const std::string& args) {
  const std::string out = (folder / "stdout").string(), err = (folder / "stderr").string();
  const std::string cmd = std::string(TAVIK_BIN_DIR) + "/tools/tavik-tool " + args + " >'" + out + "' 2>'" + err + "'";
  const int status = std::system(cmd.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadBytes(out), ReadBytes(err)};
}

inline std::string Quoted(const std::string& s) { return "'" + s + "'"; }

}  // namespace tavik::testing
