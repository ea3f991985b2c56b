// Memory dumps written for the tests from the published record layouts, not from our
// reader: SDR33 lines of a four-character head and 16-character columns, and GTS
// records with their markers and the instrument's measurement positions.
#pragma once

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <string>

namespace tavik::test {

// One SDR33 line: the head ("09F1") and its 16-character columns, CR LF ended.
inline std::string SdrLine(const std::string& head, std::initializer_list<std::string> columns) {
  std::string line = head;
  for (const std::string& c : columns) {
    std::string f = c.substr(0, 16);
    line += f + std::string(16 - f.size(), ' ');
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line + "\r\n";
}

// The header: degrees, metres, N E Z order unless `enz`.
inline std::string SdrHeader(bool enz = false) {
  return std::string("00NM") + "SDR33 V04-04.02 " + "0000" + "23-NOV-26 10:00 " + "111" + (enz ? "12" : "11") +
         "1\r\n";
}

inline std::string Fixed(double v, int decimals) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

// A GTS record: station name, code, target height, point name, and the measurement
// (slope in metres, zenith and horizontal angle as DDDMMSS), comma ended.
inline std::string GtsRecord(const std::string& station, const std::string& code, double targetHeight,
                             const std::string& name, double slope, long vRaw, long hzRaw) {
  char m[96];
  std::snprintf(m, sizeof m, "?+%08ldm%07ld+%07ldd+%08ldt**+00+00111", std::lround(slope * 1000), vRaw, hzRaw,
                std::lround(slope * 1000));
  return "_'" + station + "_(" + code + "_)" + Fixed(targetHeight, 3) + "_+" + name + "_ " + m + "_*,\r\n";
}

}  // namespace tavik::test
