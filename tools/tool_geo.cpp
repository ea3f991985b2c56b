// Coordinate conversion for the office: longitude and latitude to the grid (g2xy) and
// back (xy2g), one pair from the command line or one pair per line from standard
// input, so that a whole file of points converts in one call. Each output line
// answers the input line of the same number; a line that cannot be converted gives an
// empty output line, a message on standard error, and exit code 1 at the end.
#include <cmath>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "core/numbers.h"
#include "geo/datum.h"
#include "geo/grid.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

struct Options {
  GpsDatumSettings datum;
  std::vector<std::string> numbers;
};

// Reads --datum and --meridian; the rest are the coordinates. nullopt after a usage
// message on standard error.
std::optional<Options> ParseOptions(const char* command, const Args& args) {
  Options o;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--datum" || a == "--meridian") {
      if (i + 1 >= args.size()) {
        std::fprintf(stderr, "tavik-tool %s: %s needs a value\n", command, a.c_str());
        return std::nullopt;
      }
      const std::string& v = args[++i];
      if (a == "--datum" && !SetDatumByName(o.datum, v)) {
        std::fprintf(stderr, "tavik-tool %s: unknown datum '%s' (TWD67, TWD97 or WGS84)\n", command, v.c_str());
        return std::nullopt;
      }
      if (a == "--meridian") {
        if (v != "121" && v != "119") {
          std::fprintf(stderr, "tavik-tool %s: the central meridian is 121 or 119, not '%s'\n", command,
                       v.c_str());
          return std::nullopt;
        }
        o.datum.CentralMeridian = v == "121" ? 121 : 119;
      }
    } else {
      o.numbers.push_back(a);
    }
  }
  if (!o.numbers.empty() && o.numbers.size() != 2) {
    std::fprintf(stderr, "tavik-tool %s: give two coordinates, or none to read pairs from standard input\n",
                 command);
    return std::nullopt;
  }
  return o;
}

// The two numbers of an input line, separated by blanks, tabs or a comma.
bool ReadPair(const std::string& line, double& a, double& b, std::string& why) {
  std::string text = line;
  for (char& c : text)
    if (c == ',' || c == '\t' || c == ';' || c == '\r') c = ' ';
  std::vector<std::string> fields;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == ' ') ++i;
    const std::size_t start = i;
    while (i < text.size() && text[i] != ' ') ++i;
    if (i > start) fields.push_back(text.substr(start, i - start));
  }
  if (fields.size() != 2) {
    why = "expected two numbers, found " + std::to_string(fields.size()) + " fields";
    return false;
  }
  const auto x = num::ParseStrict(fields[0]), y = num::ParseStrict(fields[1]);
  if (!x || !y || !std::isfinite(*x) || !std::isfinite(*y)) {
    why = "not a number: '" + (!x || !std::isfinite(*x) ? fields[0] : fields[1]) + "'";
    return false;
  }
  a = *x;
  b = *y;
  return true;
}

bool ToGrid(const GpsDatumSettings& d, double lon, double lat, std::string& out, std::string& why) {
  if (lat < -90 || lat > 90 || lon < -180 || lon > 360) {
    why = "longitude " + num::Plain(lon) + ", latitude " + num::Plain(lat) + " is not a position on the earth";
    return false;
  }
  double e = 0, n = 0;
  g2xy(d, lon, lat, e, n);
  if (!std::isfinite(e) || !std::isfinite(n)) {
    why = "longitude " + num::Plain(lon) + ", latitude " + num::Plain(lat) + " has no grid position";
    return false;
  }
  char buf[96];
  std::snprintf(buf, sizeof buf, "%.4f %.4f", e, n);
  out = buf;
  return true;
}

bool ToLonLat(const GpsDatumSettings& d, double e, double n, std::string& out, std::string& why) {
  double lon = 0, lat = 0;
  bool failed = false;
  XyToLonLat(d, e, n, lon, lat, failed);
  if (failed) {
    why = "E " + num::Plain(e) + ", N " + num::Plain(n) +
          " cannot be converted to longitude and latitude (無法轉成經緯度.): outside longitude 119.137 to 125.7, "
          "latitude 19.33 to 28.67";
    return false;
  }
  char buf[96];
  std::snprintf(buf, sizeof buf, "%.9f %.9f", lon, lat);
  out = buf;
  return true;
}

using Convert = bool (*)(const GpsDatumSettings&, double, double, std::string&, std::string&);

int Run(const char* command, const Args& args, Convert convert) {
  const auto o = ParseOptions(command, args);
  if (!o) return 2;
  std::string out, why;
  if (!o->numbers.empty()) {
    double a = 0, b = 0;
    if (!ReadPair(o->numbers[0] + " " + o->numbers[1], a, b, why) || !convert(o->datum, a, b, out, why)) {
      std::fprintf(stderr, "tavik-tool %s: %s\n", command, why.c_str());
      return 1;
    }
    std::printf("%s\n", out.c_str());
    return 0;
  }
  int result = 0;
  std::string line;
  for (long number = 1; std::getline(std::cin, line); ++number) {
    double a = 0, b = 0;
    if (line.find_first_not_of(" \t\r") == std::string::npos) {
      std::printf("\n");  // a blank line answers a blank line
    } else if (ReadPair(line, a, b, why) && convert(o->datum, a, b, out, why)) {
      std::printf("%s\n", out.c_str());
    } else {
      std::printf("\n");
      std::fprintf(stderr, "tavik-tool %s: line %ld: %s\n", command, number, why.c_str());
      result = 1;
    }
  }
  return result;
}

int RunG2xy(const Args& args) { return Run("g2xy", args, ToGrid); }
int RunXy2g(const Args& args) { return Run("xy2g", args, ToLonLat); }

Registrar g2xyCommand({"g2xy",
                       "[--datum TWD67|TWD97|WGS84] [--meridian 121|119] [LON LAT]   degrees to grid E N "
                       "(pairs from stdin without LON LAT)",
                       RunG2xy});
Registrar xy2gCommand({"xy2g",
                       "[--datum TWD67|TWD97|WGS84] [--meridian 121|119] [E N]       grid E N to degrees "
                       "(pairs from stdin without E N)",
                       RunXy2g});

}  // namespace
}  // namespace tavik::tool
