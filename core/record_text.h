// The comma-separated text form of the work files, the recovery header and
// Software.ini: text in double quotes, booleans as #TRUE# / #FALSE#, numbers in the
// shortest form that reads back to the identical double, lines ended by CR LF.
// Lines are built in UTF-8 and converted to code page 950 when written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik::rec {

// Builds one line of fields.
class LineWriter {
 public:
  LineWriter& Text(std::string_view s);
  LineWriter& Number(double v);
  LineWriter& Integer(int64_t v);
  LineWriter& Bool(bool v);
  // The line with its CR LF.
  std::string Line() const { return line_ + "\r\n"; }
  // The fields without the line end.
  const std::string& Fields() const { return line_; }

 private:
  void Sep();
  std::string line_;
  bool first_ = true;
};

struct Field {
  enum Type { Text, Number, Bool } type = Text;
  std::string text;  // Text: the unquoted text; Number: the digits as written
  double number = 0;
  bool boolean = false;
};

// Splits one line (without its line end) into fields. Fails on an unterminated
// quote, a field that is neither quoted text, a boolean nor a number, or an empty line.
std::optional<std::vector<Field>> ParseLine(std::string_view line);

// Reads a line of exactly the expected field types, "T" text, "N" number, "B" boolean.
// Returns nothing when the count or any type differs: such a line "cannot be read".
std::optional<std::vector<Field>> ParseTyped(std::string_view line, std::string_view types);

// Splits a whole file's text into lines on CR LF, LF or CR. A last line without its
// line end is returned too: it may be torn, and the parser decides.
std::vector<std::string_view> SplitLines(std::string_view text);

}  // namespace tavik::rec
