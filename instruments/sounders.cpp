#include "instruments/sounders.h"

#include <cmath>
#include <vector>

#include "core/numbers.h"
#include "core/text.h"

namespace tavik {
namespace {

// A field the reader needs is missing: the line is read no further.
struct MissingField {};

double Val(std::string_view s) {
  const double v = num::ParseLenient(s);
  return std::isfinite(v) ? v : 0;
}

// n characters from the 1-based position p; shorter or empty past the end.
std::string_view Mid(std::string_view s, std::size_t p, std::size_t n = std::string_view::npos) {
  if (p == 0 || p - 1 >= s.size()) return {};
  return s.substr(p - 1, n);
}

std::vector<std::string_view> Split(std::string_view s) {
  std::vector<std::string_view> out;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = s.find(',', start);
    if (comma == std::string_view::npos) {
      out.push_back(s.substr(start));
      return out;
    }
    out.push_back(s.substr(start, comma - start));
    start = comma + 1;
  }
}

std::string_view Field(const std::vector<std::string_view>& f, std::size_t i) {
  if (i >= f.size()) throw MissingField{};
  return f[i];
}

// Devices send ASCII; anything else is taken as code page 950 text.
std::string Inside(const std::string& bytes) {
  for (char c : bytes)
    if (static_cast<unsigned char>(c) >= 0x80) return text::FromCp950(bytes);
  return bytes;
}

// Appends c to a line buffer unless the buffer is full; a full buffer is dropped.
void Gather(std::string& buffer, char c, std::size_t max) {
  if (buffer.size() >= max) buffer.clear();
  buffer.push_back(c);
}

}  // namespace

void SounderReader::ShowDepths() {
  panels_.Label21[0] = num::Plain(gps_.SounderDepth);
  panels_.Label21[1] = num::Plain(gps_.SounderDepth2);
}

void SounderReader::Done() {
  if (Changed) Changed();
}

void SounderReader::Feed(Port port, std::string_view bytes) {
  for (char c : bytes) {
    switch (port) {
      case Port::ESeaSound206: ESeaSound206_OnComm(c); break;
      case Port::MSComm2: MSComm2_OnComm(c); break;
      case Port::MSTSSComm: MSTSSComm_OnComm(c); break;
    }
  }
}

void SounderReader::ESeaSound206_OnComm(char c) {
  Gather(eseaBuffer_, c, kMaxLine);
  if (c != '\n') return;
  eseaBuffer_.resize(eseaBuffer_.size() >= 2 ? eseaBuffer_.size() - 2 : 0);  // CR LF
  const std::string line = Inside(eseaBuffer_);
  eseaBuffer_.clear();
  if (line.starts_with("E")) eseaFirstHalf_ = line;
  if (line.starts_with("HR")) {
    gps_.SounderLine = eseaFirstHalf_ + line;
    panels_.OBSBox = gps_.SounderLine;
    ESeaSoundParse(gps_.SounderLine);
    Done();
  }
}

void SounderReader::ESeaSoundParse(const std::string& line) {
  if (!line.starts_with("E")) return;
  const auto f = Split(line);
  try {
    gps_.SounderDepth = Val(Mid(Field(f, 0), 5, 7));
    gps_.SounderDepth2 = Val(Mid(Field(f, 3), 2, 7));
    ShowDepths();
    if (Mid(Field(f, 5), 3, 2) == "HR") {
      gps_.Heave = Val(Mid(f[5], 5, 5));
      gps_.Roll = Val(Field(f, 6));
      gps_.Pitch = Val(Mid(Field(f, 7), 1, 5));
    }
  } catch (const MissingField&) {
    ShowDepths();
  }
}

void SounderReader::CeastarLine(const std::string& line) {
  const std::string t = text::Trim(line);
  if (t.starts_with("A")) {
    gps_.SounderDepth = Val(Mid(t, 3, 5)) / 100;
    gps_.SounderDepth2 = Val(Mid(t, 9, 5)) / 100;
  } else {
    const auto f = Split(line);
    try {
      gps_.SounderDepth = Val(Field(f, 1)) / 100;
      gps_.SounderDepth2 = Val(Field(f, 2)) / 100;
    } catch (const MissingField&) {
    }
  }
  ShowDepths();
  Done();
}

void SounderReader::DepthSentence(const std::string& line) {
  const auto f = Split(line);
  if (f.size() < 4) return;
  gps_.SounderDepth = Val(f[3]);
  ShowDepths();
  Done();
}

void SounderReader::MSComm2_OnComm(char c) {
  if (c != '\n') {
    Gather(hydroBuffer_, c, kMaxLine);
    return;
  }
  const std::string line = Inside(hydroBuffer_);
  hydroBuffer_.clear();
  if (setup_.SounderKind != "HydroBox") return;
  gps_.SounderLine = line;
  HydroBoxParse(line);
  Done();
}

void SounderReader::HydroBoxParse(const std::string& line) {
  const auto f = Split(line);
  const std::string_view head = f[0];
  try {
    if (head == "$SDODC") {
      if (Field(f, 4) == "B")
        gps_.SounderDepth = Val(Field(f, 5));
      else
        gps_.SounderDepth2 = Val(Field(f, 5));
    } else if (head == "$SDDPT") {
      gps_.SounderDepth = Val(Field(f, 1));
    } else if (head == "$SDDBT") {
      gps_.SounderDepth = Val(Field(f, 3));
    } else if (Mid(line, 5, 1) == "H") {
      gps_.SounderDepth = Val(Mid(line, 7));
    } else {
      gps_.SounderDepth2 = Val(Mid(line, 7));
    }
  } catch (const MissingField&) {
  }
  ShowDepths();
}

void SounderReader::MSTSSComm_OnComm(char c) {
  if (c == ':') {
    tssBuffer_ = ":";
    return;
  }
  if (c == '\r') {
    if (tssBuffer_.size() >= 25) {
      gps_.Pitch = Val(Mid(tssBuffer_, 8, 6));
      gps_.Roll = Val(Mid(tssBuffer_, 15, 5));
      gps_.Heave = Val(Mid(tssBuffer_, 20, 6));
      Done();
    }
    tssBuffer_.clear();
    return;
  }
  Gather(tssBuffer_, c, kMaxLine);
}

}  // namespace tavik
