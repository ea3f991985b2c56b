#include "instruments/memory_dump.h"

#include <cctype>
#include <cmath>
#include <optional>

#include "core/numbers.h"
#include "core/text.h"
#include "instruments/decoders.h"

namespace tavik::dump {
namespace {

// A printable record: anything below a blank (other than a tab) or DEL is damage on
// the line, since both formats are plain text.
bool Printable(std::string_view s) {
  for (unsigned char c : s)
    if ((c < 0x20 && c != '\t') || c == 0x7f) return false;
  return true;
}

std::optional<double> Number(std::string_view s) { return num::ParseStrict(text::Trim(s)); }

void Kept(Dump& d, Record r) {
  d.lastLine = r.line;
  d.lastName = r.name;
  d.records.push_back(std::move(r));
}

void Skip(Dump& d, std::size_t line) {
  ++d.skipped;
  d.skippedLines.push_back(line);
}

// Splits at CR or LF; the flag tells whether the text ended with a line end.
std::vector<std::string> Lines(std::string_view text, bool& endedWithBreak) {
  std::vector<std::string> out;
  std::string cur;
  endedWithBreak = true;
  for (char c : text) {
    if (c == '\r' || c == '\n') {
      if (!cur.empty()) out.push_back(std::move(cur));
      cur.clear();
      endedWithBreak = true;
    } else {
      cur.push_back(c);
      endedWithBreak = false;
    }
  }
  if (!cur.empty()) out.push_back(std::move(cur));
  return out;
}

}  // namespace

int32_t DegreesToRaw(double degrees) {
  const bool neg = degrees < 0;
  const int32_t s = num::CLng(std::fabs(degrees) * 3600);
  const int32_t raw = s / 3600 * 10000 + s / 60 % 60 * 100 + s % 60;
  return neg ? -raw : raw;
}

Dump ReadSdr(std::string_view text) {
  Dump d;
  bool endedWithBreak = true;
  std::vector<std::string> lines = Lines(text, endedWithBreak);
  // The header's units; degrees, N E Z and zenith angles until told otherwise.
  bool gons = false, enz = false, horizonZero = false;
  auto angle = [&](std::string_view field) -> std::optional<int32_t> {
    std::optional<double> v = Number(field);
    if (!v) return std::nullopt;
    return DegreesToRaw(gons ? *v * 0.9 : *v);
  };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string& line = lines[i];
    const std::size_t at = i + 1;
    if (i + 1 == lines.size() && !endedWithBreak) {
      d.cut = true;  // the last line never finished
      break;
    }
    if (line.size() < 4 || !Printable(line) || !std::isdigit(static_cast<unsigned char>(line[0])) ||
        !std::isdigit(static_cast<unsigned char>(line[1]))) {
      Skip(d, at);
      continue;
    }
    const std::string type = line.substr(0, 2);
    auto field = [&](std::size_t start, std::size_t length = 16) { return Mid(line, start, length); };
    Record r;
    r.line = at;
    if (type == "00") {
      gons = Mid(line, 41, 1) == "2";
      enz = Mid(line, 45, 1) == "2";
      continue;
    }
    if (type == "01") {
      horizonZero = Mid(line, 51, 1) == "2";
      continue;
    }
    if (type == "02" || type == "08") {
      std::optional<double> a = Number(field(21)), b = Number(field(37)), h = Number(field(53));
      r.name = text::Trim(field(5));
      if (r.name.empty() || !a || !b) {
        Skip(d, at);
        continue;
      }
      r.N = enz ? *b : *a;
      r.E = enz ? *a : *b;
      r.H = h.value_or(0);
      r.hasCoordinates = true;
      if (type == "02") {
        r.kind = Record::Station;
        std::optional<double> hi = Number(field(69));
        r.height = hi.value_or(0);
        r.hasHeight = hi.has_value();
        r.code = text::Trim(field(85));
      } else {
        r.kind = Record::Coordinates;
        r.code = text::Trim(field(69));
      }
      Kept(d, std::move(r));
    } else if (type == "03") {
      std::optional<double> th = Number(field(5));
      if (!th) {
        Skip(d, at);
        continue;
      }
      r.kind = Record::TargetHeight;
      r.height = *th;
      r.hasHeight = true;
      Kept(d, std::move(r));
    } else if (type == "07") {
      r.kind = Record::Backsight;
      r.station = text::Trim(field(5));
      r.backsight = r.name = text::Trim(field(21));
      std::optional<int32_t> hz = angle(field(53));
      if (r.station.empty() || r.backsight.empty() || !hz) {
        Skip(d, at);
        continue;
      }
      r.hzRaw = *hz;
      if (std::optional<int32_t> az = angle(field(37))) {
        r.hasAzimuth = true;
        r.azimuthRaw = *az;
      }
      Kept(d, std::move(r));
    } else if (type == "09") {
      r.kind = Record::Observation;
      r.station = text::Trim(field(5));
      r.name = text::Trim(field(21));
      std::optional<double> sd = Number(field(37));
      std::optional<double> va = Number(field(53));
      std::optional<int32_t> ha = angle(field(69));
      if (r.name.empty() || !sd || !va || !ha) {
        Skip(d, at);
        continue;
      }
      double v = gons ? *va * 0.9 : *va;
      if (horizonZero) v = 90 - v;
      r.slope = *sd;
      r.vRaw = DegreesToRaw(v);
      r.hzRaw = *ha;
      r.code = text::Trim(field(85));
      Kept(d, std::move(r));
    }
  }
  return d;
}

namespace {

// The measurement field of a GTS record, in the positions of the instrument's answer.
bool ReadGtsMeasurement(const std::string& m, Record& r) {
  auto angle = [&](std::size_t start, char unit) -> std::optional<int32_t> {
    const std::string digits = Mid(m, start, 7);
    if (digits.size() != 7 || digits.find_first_not_of("0123456789") != std::string::npos) return std::nullopt;
    const double v = std::stod(digits);
    if (unit == 'g') return DegreesToRaw(v / 10000 * 0.9);
    if (unit != 'd') return std::nullopt;
    if (static_cast<int32_t>(v) / 100 % 100 >= 60 || static_cast<int32_t>(v) % 100 >= 60) return std::nullopt;
    return static_cast<int32_t>(v);
  };
  if (!m.empty() && m[0] == '?') {
    const std::string sd = Mid(m, 3, 8);
    if (Mid(m, 11, 1) != "m" || sd.size() != 8 || sd.find_first_not_of("0123456789") != std::string::npos)
      return false;
    const char unit = Mid(m, 27, 1).empty() ? ' ' : Mid(m, 27, 1)[0];
    std::optional<int32_t> v = angle(12, unit), hz = angle(20, unit);
    if (!v || !hz) return false;
    r.slope = std::stod(sd) / 1000;
    r.vRaw = *v;
    r.hzRaw = *hz;
    return true;
  }
  if (!m.empty() && m[0] == '<') {
    const char unit = Mid(m, 17, 1).empty() ? ' ' : Mid(m, 17, 1)[0];
    std::optional<int32_t> v = angle(2, unit), hz = angle(10, unit);
    if (!v || !hz) return false;
    r.slope = 0;
    r.vRaw = *v;
    r.hzRaw = *hz;
    return true;
  }
  return false;
}

}  // namespace

Dump ReadGts(std::string_view text) {
  Dump d;
  // Records end at a comma; line breaks between them are only layout.
  std::vector<std::string> records;
  std::string cur;
  bool endedWithComma = true;
  for (char c : text) {
    if (c == '\r' || c == '\n') continue;
    if (c == ',') {
      records.push_back(std::move(cur));
      cur.clear();
      endedWithComma = true;
    } else {
      cur.push_back(c);
      endedWithComma = false;
    }
  }
  if (!cur.empty()) records.push_back(std::move(cur));
  for (std::size_t i = 0; i < records.size(); ++i) {
    const std::string& rec = records[i];
    const std::size_t at = i + 1;
    if (rec.empty()) continue;
    // A record without its end marker at the very end of the text was cut off.
    const bool last = i + 1 == records.size() && !endedWithComma;
    if (last && rec.find("_*") == std::string::npos) {
      d.cut = true;
      break;
    }
    if (!Printable(rec)) {
      Skip(d, at);
      continue;
    }
    std::vector<std::string> parts = SplitAt(rec, '_');
    Record r;
    r.line = at;
    bool bad = false, measured = false;
    std::string stationName;
    // Text before the first marker: the target height of a continuing record.
    if (!parts[0].empty()) {
      std::optional<double> th = Number(parts[0]);
      if (!th) bad = true;
      else r.height = *th, r.hasHeight = true;
    }
    for (std::size_t p = 1; p < parts.size() && !bad; ++p) {
      const std::string& part = parts[p];
      if (part.empty()) continue;
      const std::string value = part.substr(1);
      switch (part[0]) {
        case '\'': stationName = text::Trim(value); break;
        case '(': r.code = text::Trim(value); break;
        case ')':
          if (!text::Trim(value).empty()) {
            std::optional<double> h = Number(value);
            if (!h) bad = true;
            else r.height = *h, r.hasHeight = true;
          }
          break;
        case '+': r.name = text::Trim(value); break;
        case ' ':
          measured = ReadGtsMeasurement(value, r);
          if (!measured) bad = true;
          break;
        case '*': break;
        default: bad = true; break;
      }
    }
    if (bad || (measured && r.name.empty())) {
      Skip(d, at);
      continue;
    }
    if (measured) {
      r.kind = Record::Observation;
      r.station = stationName;
    } else if (!stationName.empty()) {
      r.kind = Record::Station;
      r.name = stationName;
    } else {
      continue;  // nothing for the map
    }
    Kept(d, std::move(r));
  }
  return d;
}

}  // namespace tavik::dump
