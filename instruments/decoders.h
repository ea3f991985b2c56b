// Pure decoders: one complete answer frame of a total-station family in, the values it
// carries out. They change nothing; the link (link.h) applies the result to the
// instrument state. Positions in the comments count from 1, as the instruments'
// manuals do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

// Splits at every occurrence of sep; n separators give n + 1 fields.
std::vector<std::string> SplitAt(std::string_view s, char sep);
// 1-based substring; out-of-range parts are empty, as the classic Mid does.
std::string Mid(std::string_view s, std::size_t start, std::size_t length = std::string::npos);
std::string Right(std::string_view s, std::size_t n);

// DDDMMSS shown as degrees "-" minutes "-" the last two digits as they stand.
std::string RawAngleText(int32_t raw);

// Leica GSI words "*31..", "*21.."/"21.", "*22.."/"22." among the first three
// blank-separated fields. Fewer than three fields: nothing is valid.
struct LeicaAnswer {
  bool enoughFields = false;
  std::optional<double> slope;  // metres
  std::optional<int32_t> hzRaw, vRaw;
};
LeicaAnswer DecodeLeica(std::string_view frame);

// Topcon: "?" a distance answer, "<" an angle answer, 0x06 the instrument's
// acknowledge; anything else is not an answer.
struct TopconAnswer {
  enum Kind { Other, Acknowledge, Distance, Angles } kind = Other;
  double slope = 0;
  int32_t hzRaw = 0, vRaw = 0;
  std::string hzText, vText;  // for the labels
};
TopconAnswer DecodeTopcon(std::string_view frame);

// Trimble: the lines up to the ">" prompt; lines 1 to 3 carry "7=", "8=", "9=" values,
// angles as D.MMSS, distance in metres.
struct TrimbleAnswer {
  bool enoughLines = false;
  int32_t hzRaw = 0, vRaw = 0;
  double slope = 0;
};
TrimbleAnswer DecodeTrimble(std::string_view frame);

// Trimble 3600 fixed columns. Angles keep their tenth of a second (DDDMMSS.s).
struct Trimble3600Answer {
  bool v2 = false;  // the instrument uses a vertical-angle convention not accepted
  std::optional<double> slope;
  double hz = 0, v = 0;
};
Trimble3600Answer DecodeTrimble3600(std::string_view frame);

// PENTAX "HHD" lines with fixed columns.
struct PentaxAnswer {
  bool valid = false;
  int32_t hzRaw = 0, vRaw = 0;
  double slope = 0;
};
PentaxAnswer DecodePentax(std::string_view frame);

// SET lines: slope distance in millimetres, zenith, horizontal angle; or the
// identification answer "A..."; or a comma-separated tracking line with "Ee"; or an
// error code "E...".
enum class SetError { None, NoPrism, Tilt, Unknown, BadDistance };
struct SetAnswer {
  enum Kind { Short, Tracking, FewFields, Error, Observation } kind = Short;
  std::optional<std::string> identification;  // text for OBSBox when the line starts "A"
  SetError error = SetError::None;
  std::optional<double> slope;  // set once the distance field has been read
  int32_t hzRaw = 0, vRaw = 0;
  std::string hzText, vText;
};
SetAnswer DecodeSet(std::string_view frame);

}  // namespace tavik
