// Command-line helpers shared by the simulator's devices.
#pragma once

#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>

namespace tavik::sim {

// The value after the option at argv[i] (i moves on to it); a missing value is a usage
// error: the message and the usage text on standard error, exit 2.
inline std::string OptionValue(int argc, char** argv, int& i, const std::string& usage) {
  if (i + 1 >= argc) {
    std::cerr << argv[i] << " needs a value\n" << usage;
    std::exit(2);
  }
  return argv[++i];
}

// "--fault KIND@N": the fault's name and the exchange it strikes at (the first without "@N").
inline std::pair<std::string, int> SplitFaultSpec(const std::string& text) {
  const auto p = text.find('@');
  if (p == std::string::npos) return {text, 1};
  return {text.substr(0, p), std::atoi(text.c_str() + p + 1)};
}

}  // namespace tavik::sim
