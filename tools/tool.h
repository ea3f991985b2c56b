// Subcommands of tavik-tool. Each returns the process exit code: 0 done, 1 the input
// could not be used (one line on standard error says why), 2 a usage error.
#pragma once

#include <string>
#include <vector>

#include "core/document.h"

namespace tavik::tool {

using Args = std::vector<std::string>;

struct Command {
  const char* name;
  const char* usage;
  int (*run)(const Args& args);
};

// Each tool_*.cpp registers its commands with a static Registrar.
void Register(const Command& c);
struct Registrar {
  explicit Registrar(const Command& c) { Register(c); }
};

// Reads a .SPC or .SP as the program opens it. Empty on success, else the reason it
// was refused (the program's own message).
std::string ReadDocument(const std::string& path, Document& doc);

// A refusal: the program's own message alone on one line of standard error (its line
// breaks become blanks). Returns the exit code 1.
int Refuse(std::string message);

}  // namespace tavik::tool
