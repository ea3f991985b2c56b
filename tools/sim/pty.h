// The simulator's end of the line: a pseudo-terminal (whose other end TAVIK opens as a
// COM port) or a given serial device, made raw.
#pragma once

#include <string>

namespace tavik::sim {

struct Line {
  int fd = -1;     // what the simulator reads and writes
  int slave = -1;  // the pseudo-terminal's other end, held open (-1 for a device)
  std::string path;  // what TAVIK opens
};

// Opens a pseudo-terminal when `device` is empty; false with a message on standard error.
bool OpenLine(const std::string& device, Line& line);
void CloseLine(Line& line);
void MakeRaw(int fd);
bool WriteAll(int fd, const std::string& bytes);

}  // namespace tavik::sim
