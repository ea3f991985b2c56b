#include "geo/point_name.h"

#include <vector>

#include "core/numbers.h"

namespace tavik {
namespace {

// The name cut into its UTF-8 characters.
std::vector<std::string> Characters(const std::string& s) {
  std::vector<std::string> out;
  for (std::size_t i = 0; i < s.size();) {
    std::size_t n = 1;
    const unsigned char c = static_cast<unsigned char>(s[i]);
    if (c >= 0xF0) n = 4;
    else if (c >= 0xE0) n = 3;
    else if (c >= 0xC0) n = 2;
    if (i + n > s.size()) n = s.size() - i;
    out.push_back(s.substr(i, n));
    i += n;
  }
  return out;
}

bool IsDigit(const std::string& ch) { return ch.size() == 1 && ch[0] >= '0' && ch[0] <= '9'; }

}  // namespace

void SplitPointName(const std::string& name, std::string& prefix, int16_t& number, int16_t& width) {
  prefix.clear();
  number = 0;
  width = 1;
  const std::vector<std::string> chars = Characters(name);
  if (chars.empty() || IsDigit(chars[0])) return;
  std::size_t i = 0;  // 0-based position of the first digit
  while (i < chars.size() && !IsDigit(chars[i])) prefix += chars[i++];
  if (i == chars.size()) return;
  const std::size_t remaining = chars.size() - i;
  width = static_cast<int16_t>(remaining > 4 ? 4 : remaining);
  std::string digits;
  for (std::size_t k = remaining > 4 ? chars.size() - 4 : i; k < chars.size(); ++k) digits += chars[k];
  number = num::CInt(num::ParseLenient(digits));
}

}  // namespace tavik
