#include <cstdlib>

#include "platform/serial.h"
#include "platform/surface.h"

namespace tavik::ui {

Rgb QBColor(int index) {
  static const Rgb table[16] = {
      MakeRgb(0, 0, 0),       MakeRgb(0, 0, 128),     MakeRgb(0, 128, 0),     MakeRgb(0, 128, 128),
      MakeRgb(128, 0, 0),     MakeRgb(128, 0, 128),   MakeRgb(128, 128, 0),   MakeRgb(192, 192, 192),
      MakeRgb(128, 128, 128), MakeRgb(0, 0, 255),     MakeRgb(0, 255, 0),     MakeRgb(0, 255, 255),
      MakeRgb(255, 0, 0),     MakeRgb(255, 0, 255),   MakeRgb(255, 255, 0),   MakeRgb(255, 255, 255)};
  return table[index & 15];
}

bool ParsePortSettings(std::string_view text, PortSettings& out) {
  PortSettings s;
  std::string parts[4];
  int n = 0;
  for (char c : text) {
    if (c == ',') {
      if (++n > 3) return false;
    } else if (c != ' ') {
      parts[n].push_back(c);
    }
  }
  if (n != 3) return false;
  char* end = nullptr;
  long baud = std::strtol(parts[0].c_str(), &end, 10);
  if (parts[0].empty() || *end || baud <= 0) return false;
  if (parts[1].size() != 1) return false;
  char p = static_cast<char>(parts[1][0] | 0x20);
  if (p != 'n' && p != 'e' && p != 'o' && p != 'm' && p != 's') return false;
  if (parts[2] != "5" && parts[2] != "6" && parts[2] != "7" && parts[2] != "8") return false;
  if (parts[3] != "1" && parts[3] != "2" && parts[3] != "1.5") return false;
  s.baud = static_cast<int>(baud);
  s.parity = p;
  s.dataBits = parts[2][0] - '0';
  s.stopBits = parts[3] == "2" ? 2 : 1;
  out = s;
  return true;
}

}  // namespace tavik::ui
