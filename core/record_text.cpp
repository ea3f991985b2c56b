#include "core/record_text.h"

#include <limits>

#include "core/numbers.h"

namespace tavik::rec {

void LineWriter::Sep() {
  if (!first_) line_.push_back(',');
  first_ = false;
}

LineWriter& LineWriter::Text(std::string_view s) {
  Sep();
  line_.push_back('"');
  // A double quote cannot be written inside a quoted field of this form; it becomes a
  // single quote so that the line still reads back.
  for (char c : s) line_.push_back(c == '"' ? '\'' : c);
  line_.push_back('"');
  return *this;
}

LineWriter& LineWriter::Number(double v) {
  Sep();
  line_ += num::RoundTrip(v);
  return *this;
}

LineWriter& LineWriter::Integer(int64_t v) {
  Sep();
  line_ += std::to_string(v);
  return *this;
}

LineWriter& LineWriter::Bool(bool v) {
  Sep();
  line_ += v ? "#TRUE#" : "#FALSE#";
  return *this;
}

namespace {
std::optional<double> NonFinite(std::string_view raw) {
  bool minus = !raw.empty() && raw[0] == '-';
  if (minus) raw.remove_prefix(1);
  if (raw == "nan") return minus ? -std::numeric_limits<double>::quiet_NaN() : std::numeric_limits<double>::quiet_NaN();
  if (raw == "inf") return minus ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
  return std::nullopt;
}
}  // namespace

std::optional<std::vector<Field>> ParseLine(std::string_view line) {
  std::vector<Field> out;
  std::size_t i = 0;
  if (line.empty()) return std::nullopt;
  for (;;) {
    while (i < line.size() && line[i] == ' ') ++i;
    Field f;
    if (i < line.size() && line[i] == '"') {
      std::size_t end = line.find('"', i + 1);
      if (end == std::string_view::npos) return std::nullopt;
      f.type = Field::Text;
      f.text = std::string(line.substr(i + 1, end - i - 1));
      i = end + 1;
    } else {
      std::size_t end = line.find(',', i);
      if (end == std::string_view::npos) end = line.size();
      std::string_view raw = line.substr(i, end - i);
      while (!raw.empty() && raw.back() == ' ') raw.remove_suffix(1);
      if (raw == "#TRUE#" || raw == "#FALSE#") {
        f.type = Field::Bool;
        f.boolean = raw == "#TRUE#";
      } else {
        auto v = num::ParseStrict(raw);
        // Number() writes a value that is not finite as "nan" or "inf"; read it back, so
        // that one such value does not make its whole line unreadable.
        if (!v) v = NonFinite(raw);
        if (!v) return std::nullopt;
        f.type = Field::Number;
        f.number = *v;
      }
      f.text = std::string(raw);
      i = end;
    }
    out.push_back(std::move(f));
    while (i < line.size() && line[i] == ' ') ++i;
    if (i == line.size()) break;
    if (line[i] != ',') return std::nullopt;
    ++i;
  }
  return out;
}

std::optional<std::vector<Field>> ParseTyped(std::string_view line, std::string_view types) {
  auto f = ParseLine(line);
  if (!f || f->size() != types.size()) return std::nullopt;
  for (std::size_t k = 0; k < types.size(); ++k) {
    Field::Type want = types[k] == 'T' ? Field::Text : types[k] == 'B' ? Field::Bool : Field::Number;
    if ((*f)[k].type != want) return std::nullopt;
  }
  return f;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' || text[i] == '\n') {
      lines.push_back(text.substr(start, i - start));
      if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
      start = i + 1;
    }
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  return lines;
}

}  // namespace tavik::rec
