#include "instruments/decoders.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/text.h"

namespace tavik {

std::vector<std::string> SplitAt(std::string_view s, char sep) {
  std::vector<std::string> out;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= s.size(); ++i) {
    if (i == s.size() || s[i] == sep) {
      out.emplace_back(s.substr(start, i - start));
      start = i + 1;
    }
  }
  return out;
}

std::string Mid(std::string_view s, std::size_t start, std::size_t length) {
  if (start == 0 || start > s.size()) return "";
  return std::string(s.substr(start - 1, length));
}

std::string Right(std::string_view s, std::size_t n) {
  return std::string(n >= s.size() ? s : s.substr(s.size() - n));
}

namespace {

int32_t RoundToLong(double v) { return num::CLng(v); }

// Degrees of a digit group as a number, then minutes and seconds as they stand.
std::string DigitsText(std::string_view deg, std::string_view min, std::string_view sec) {
  return num::Plain(num::ParseLenient(deg)) + "-" + std::string(min) + "-" + std::string(sec);
}

bool StartsWith(std::string_view s, std::string_view prefix) { return s.substr(0, prefix.size()) == prefix; }

}  // namespace

std::string RawAngleText(int32_t raw) {
  std::string digits = std::to_string(raw);
  double degrees = num::Int(raw / 10000.0);
  double minutes = num::Int(num::ParseLenient(Right(digits, 4)) / 100.0);
  return num::Plain(degrees) + "-" + num::Plain(minutes) + "-" + Right(digits, 2);
}

LeicaAnswer DecodeLeica(std::string_view frame) {
  LeicaAnswer a;
  std::vector<std::string> fields = SplitAt(frame, ' ');
  if (fields.size() < 3) return a;
  a.enoughFields = true;
  for (int i = 0; i < 3; ++i) {
    const std::string& f = fields[i];
    std::string word = f.substr(0, 3);
    double value = num::ParseLenient(Right(f, 16));
    if (word == "*31") a.slope = value / 1000;
    else if (word == "*21" || word == "21.") a.hzRaw = RoundToLong(value / 10);
    else if (word == "*22" || word == "22.") a.vRaw = RoundToLong(value / 10);
  }
  return a;
}

TopconAnswer DecodeTopcon(std::string_view frame) {
  TopconAnswer a;
  if (frame.empty()) return a;
  if (frame[0] == '\x06') {
    a.kind = TopconAnswer::Acknowledge;
  } else if (frame[0] == '?') {
    a.kind = TopconAnswer::Distance;
    a.slope = num::ParseLenient(Mid(frame, 3)) / 1000;
    a.vRaw = RoundToLong(num::ParseLenient(Mid(frame, 12)));
    a.hzRaw = RoundToLong(num::ParseLenient(Mid(frame, 20, 7)));
    a.vText = DigitsText(Mid(frame, 12, 3), Mid(frame, 15, 2), Mid(frame, 17, 2));
    a.hzText = DigitsText(Mid(frame, 20, 3), Mid(frame, 23, 2), Mid(frame, 25, 2));
  } else if (frame[0] == '<') {
    a.kind = TopconAnswer::Angles;
    a.slope = 0;
    a.vRaw = RoundToLong(num::ParseLenient(Mid(frame, 2, 7)));
    a.hzRaw = RoundToLong(num::ParseLenient(Mid(frame, 10, 7)));
    a.vText = DigitsText(Mid(frame, 2, 3), Mid(frame, 5, 2), Mid(frame, 7, 2));
    a.hzText = DigitsText(Mid(frame, 10, 3), Mid(frame, 13, 2), Mid(frame, 15, 2));
  }
  return a;
}

TrimbleAnswer DecodeTrimble(std::string_view frame) {
  TrimbleAnswer a;
  std::vector<std::string> lines = SplitAt(frame, '\n');
  if (lines.size() < 4) return a;
  a.enoughLines = true;
  a.hzRaw = RoundToLong(num::ParseLenient(Mid(lines[1], 3)) * 10000);
  a.vRaw = RoundToLong(num::ParseLenient(Mid(lines[2], 3)) * 10000);
  a.slope = num::ParseLenient(Mid(lines[3], 3));
  return a;
}

Trimble3600Answer DecodeTrimble3600(std::string_view frame) {
  Trimble3600Answer a;
  if (Mid(frame, 75, 2) == "V2") {
    a.v2 = true;
    return a;
  }
  if (Mid(frame, 44, 2) == "SD") a.slope = num::ParseLenient(Mid(frame, 46, 12));
  if (Mid(frame, 59, 2) == "Hz")
    a.hz = num::ParseLenient(Mid(frame, 61, 7) + Mid(frame, 69, 4) + "." + Mid(frame, 73, 1));
  if (Mid(frame, 75, 2) == "V1")
    a.v = num::ParseLenient(Mid(frame, 77, 3) + Mid(frame, 81, 4) + "." + Mid(frame, 85, 1));
  return a;
}

PentaxAnswer DecodePentax(std::string_view frame) {
  PentaxAnswer a;
  if (!StartsWith(frame, "HHD")) return a;
  a.valid = true;
  a.hzRaw = RoundToLong(num::ParseLenient(Mid(frame, 6, 4) + Mid(frame, 11, 2) + Mid(frame, 14, 2)));
  a.vRaw = RoundToLong(num::ParseLenient(Mid(frame, 21, 4) + Mid(frame, 26, 2) + Mid(frame, 29, 2)));
  a.slope = num::ParseLenient(Mid(frame, 35));
  return a;
}

SetAnswer DecodeSet(std::string_view frame) {
  SetAnswer a;
  if (frame.size() < 9) return a;

  if (frame[0] == 'A') {
    std::string_view line = frame;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
    std::vector<std::string> f = SplitAt(line, ',');
    f.resize(std::max<std::size_t>(f.size(), 4));
    std::string model = f[0].size() > 2 ? f[0].substr(2) : "";
    a.identification = " 儀器型號:SOKKIA " + model + "  序號:" + f[1] + "  軔體版本:" + f[2] + "  測距版本:" + f[3];
  }

  // A tracking line: "Ee" anywhere before the line end, comma separated, zenith in field 4.
  if (frame.size() >= 2 && frame.substr(0, frame.size() - 1).find("Ee") != std::string_view::npos) {
    std::vector<std::string> f = SplitAt(frame, ',');
    a.kind = SetAnswer::Tracking;
    a.vRaw = f.size() > 4 ? RoundToLong(num::ParseLenient(f[4]) * 10000) : 0;
    return a;
  }

  std::vector<std::string> f = SplitAt(text::Trim(frame), ' ');
  if (f.size() < 3) {
    a.kind = SetAnswer::FewFields;
    return a;
  }
  if (StartsWith(f[0], "E") || StartsWith(f[1], "E") || StartsWith(f[2], "E")) {
    a.kind = SetAnswer::Error;
    if (StartsWith(f[0], "E200")) a.error = SetError::NoPrism;
    else if (StartsWith(f[1], "E115") || StartsWith(f[1], "E117") || StartsWith(f[2], "E116") ||
             StartsWith(f[2], "E114"))
      a.error = SetError::Tilt;
    else a.error = SetError::Unknown;
    return a;
  }
  // A leading status digit makes the distance field longer than its seven digits.
  std::string distance = f[0].size() > 7 ? Right(f[0], 7) : f[0];
  std::optional<double> mm = num::ParseStrict(distance);
  if (!mm) {
    a.kind = SetAnswer::Error;
    a.error = SetError::Unknown;
    return a;
  }
  a.slope = *mm / 1000;
  if (*a.slope < 0.01) {
    a.kind = SetAnswer::Error;
    a.error = SetError::BadDistance;
    return a;
  }
  std::optional<double> v = num::ParseStrict(f[1]);
  std::optional<double> hz = num::ParseStrict(f[2]);
  if (!v || !hz || std::abs(*v) > 2147483647.0 || std::abs(*hz) > 2147483647.0) {
    a.kind = SetAnswer::Error;
    a.error = SetError::Unknown;
    return a;
  }
  a.kind = SetAnswer::Observation;
  a.vRaw = RoundToLong(*v);
  a.hzRaw = RoundToLong(*hz);
  a.hzText = DigitsText(f[2].substr(0, 3), Mid(f[2], 4, 2), Right(f[2], 2));
  a.vText = DigitsText(f[1].substr(0, 3), Mid(f[1], 4, 2), Right(f[1], 2));
  return a;
}

}  // namespace tavik
