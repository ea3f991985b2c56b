#include "core/text.h"

#include <iconv.h>

#include <cerrno>
#include <stdexcept>

namespace tavik::text {
namespace {

bool AllAscii(std::string_view s) {
  for (unsigned char c : s)
    if (c >= 0x80) return false;
  return true;
}

// One converter per direction and thread, opened on first use.
class Converter {
 public:
  Converter(const char* to, const char* from) : cd_(iconv_open(to, from)) {
    if (cd_ == reinterpret_cast<iconv_t>(-1))
      throw std::runtime_error(std::string("iconv cannot convert ") + from + " to " + to);
  }
  ~Converter() { iconv_close(cd_); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  // Converts, replacing each unconvertible or invalid input unit by '?'.
  // unitOf tells how many input bytes a bad unit spans.
  template <typename UnitLength>
  std::string Run(std::string_view in, UnitLength unitOf) {
    std::string out;
    out.reserve(in.size() * 2 + 8);
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    char* src = const_cast<char*>(in.data());
    std::size_t left = in.size();
    char buf[256];
    while (left > 0) {
      char* dst = buf;
      std::size_t room = sizeof buf;
      std::size_t r = iconv(cd_, &src, &left, &dst, &room);
      out.append(buf, static_cast<std::size_t>(dst - buf));
      if (r == static_cast<std::size_t>(-1)) {
        if (errno == E2BIG) continue;
        // EILSEQ or EINVAL: skip one bad unit.
        std::size_t skip = unitOf(std::string_view(src, left));
        if (skip > left) skip = left;
        src += skip;
        left -= skip;
        out.push_back('?');
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
      }
    }
    return out;
  }

 private:
  iconv_t cd_;
};

std::size_t Utf8UnitLength(std::string_view s) {
  unsigned char c = static_cast<unsigned char>(s[0]);
  std::size_t n = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
  if (c >= 0x80 && c < 0xC0) n = 1;
  for (std::size_t i = 1; i < n; ++i)
    if (i >= s.size() || (static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) return i;
  return n;
}

std::size_t Cp950UnitLength(std::string_view s) {
  unsigned char c = static_cast<unsigned char>(s[0]);
  return (c >= 0x81 && c <= 0xFE && s.size() >= 2) ? 2 : 1;
}

}  // namespace

std::string ToCp950(std::string_view utf8) {
  if (AllAscii(utf8)) return std::string(utf8);
  thread_local Converter conv("CP950", "UTF-8");
  return conv.Run(utf8, Utf8UnitLength);
}

std::string FromCp950(std::string_view cp950) {
  if (AllAscii(cp950)) return std::string(cp950);
  thread_local Converter conv("UTF-8", "CP950");
  return conv.Run(cp950, Cp950UnitLength);
}

std::string_view CutCp950(std::string_view cp950, std::size_t maxBytes) {
  std::size_t i = 0;
  while (i < cp950.size()) {
    unsigned char c = static_cast<unsigned char>(cp950[i]);
    std::size_t w = (c >= 0x81 && c <= 0xFE) ? 2 : 1;
    if (i + w > maxBytes || i + w > cp950.size()) break;
    i += w;
  }
  return cp950.substr(0, i);
}

std::string FixedField(std::string_view utf8, std::size_t width) {
  std::string bytes = ToCp950(utf8);
  std::string out(CutCp950(bytes, width));
  out.resize(width, ' ');
  return out;
}

std::string ReadFixedField(std::string_view bytes, bool cutAtNul) {
  if (cutAtNul) {
    auto z = bytes.find('\0');
    if (z != std::string_view::npos) bytes = bytes.substr(0, z);
  }
  // NUL padding counts as blank, as it does for the trim of the older programs' files.
  std::string s = FromCp950(bytes);
  for (char& c : s)
    if (c == '\0') c = ' ';
  return Trim(s);
}

std::size_t Cp950Length(std::string_view utf8) { return ToCp950(utf8).size(); }

std::size_t CharCount(std::string_view utf8) {
  std::size_t n = 0;
  for (unsigned char c : utf8)
    if ((c & 0xC0) != 0x80) ++n;
  return n;
}

std::string LeftChars(std::string_view utf8, std::size_t n) {
  std::size_t i = 0, chars = 0;
  while (i < utf8.size()) {
    if ((static_cast<unsigned char>(utf8[i]) & 0xC0) != 0x80) {
      if (chars == n) break;
      ++chars;
    }
    ++i;
  }
  return std::string(utf8.substr(0, i));
}

std::string Trim(std::string_view s) {
  auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  std::size_t b = 0, e = s.size();
  while (b < e && blank(s[b])) ++b;
  while (e > b && blank(s[e - 1])) --e;
  return std::string(s.substr(b, e - b));
}

std::string UpperAscii(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && UpperAscii(a) == UpperAscii(b);
}

}  // namespace tavik::text
