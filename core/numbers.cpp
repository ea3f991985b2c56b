#include "core/numbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace tavik::num {
namespace {

struct Picture {
  std::string_view prefix, suffix;
  int intZeros = 0;   // '0' in the integer part: minimum integer digits
  int intDigits = 0;  // '0' and '#' in the integer part
  int fracZeros = 0;  // '0' in the fraction: always shown
  int fracDigits = 0; // '0' and '#' in the fraction
  bool point = false;
};

Picture Parse(std::string_view p) {
  Picture pic;
  std::size_t i = 0;
  while (i < p.size() && p[i] != '0' && p[i] != '#' && p[i] != '.') ++i;
  pic.prefix = p.substr(0, i);
  while (i < p.size() && (p[i] == '0' || p[i] == '#')) {
    ++pic.intDigits;
    if (p[i] == '0') ++pic.intZeros;
    ++i;
  }
  if (i < p.size() && p[i] == '.') {
    pic.point = true;
    ++i;
    while (i < p.size() && (p[i] == '0' || p[i] == '#')) {
      ++pic.fracDigits;
      if (p[i] == '0') ++pic.fracZeros;
      ++i;
    }
  }
  pic.suffix = p.substr(i);
  return pic;
}

// Decimal digits of |v| rounded half away from zero to `decimals` places, after first
// taking v to 15 significant digits. Returns integer digits and fraction digits.
void Digits(double v, int decimals, std::string& intPart, std::string& fracPart) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.14e", std::fabs(v));  // 15 significant digits
  // buf: d.dddddddddddddde[+-]xx
  std::string mant;
  mant.push_back(buf[0]);
  for (int k = 2; k < 16; ++k) mant.push_back(buf[k]);
  int exp10 = std::atoi(buf + 17);
  // value = 0.mant * 10^(exp10+1); place the point.
  int pointPos = exp10 + 1;  // digits before the point
  std::string digits = mant;
  if (pointPos <= 0) {
    digits.insert(0, static_cast<std::size_t>(-pointPos), '0');
    pointPos = 0;
  } else if (pointPos > static_cast<int>(digits.size())) {
    digits.append(static_cast<std::size_t>(pointPos) - digits.size(), '0');
  }
  // Keep pointPos + decimals digits, rounding half away from zero.
  std::size_t keep = static_cast<std::size_t>(pointPos + decimals);
  if (keep < digits.size()) {
    bool up = digits[keep] >= '5';
    digits.resize(keep);
    if (up) {
      int k = static_cast<int>(keep) - 1;
      while (k >= 0 && digits[static_cast<std::size_t>(k)] == '9') {
        digits[static_cast<std::size_t>(k)] = '0';
        --k;
      }
      if (k >= 0) {
        ++digits[static_cast<std::size_t>(k)];
      } else {
        digits.insert(digits.begin(), '1');
        ++pointPos;
      }
    }
  } else {
    digits.append(keep - digits.size(), '0');
  }
  intPart = digits.substr(0, static_cast<std::size_t>(pointPos));
  fracPart = digits.substr(static_cast<std::size_t>(pointPos));
  std::size_t nz = intPart.find_first_not_of('0');
  intPart = nz == std::string::npos ? std::string() : intPart.substr(nz);
}

}  // namespace

std::string Format(double value, std::string_view picture) {
  Picture pic = Parse(picture);
  if (!std::isfinite(value)) {
    return std::string(pic.prefix) + (std::isnan(value) ? "NaN" : value > 0 ? "Inf" : "-Inf") +
           std::string(pic.suffix);
  }
  std::string ip, fp;
  Digits(value, pic.fracDigits, ip, fp);
  // Optional fraction digits ('#') drop their trailing zeros.
  while (static_cast<int>(fp.size()) > pic.fracZeros && !fp.empty() && fp.back() == '0') fp.pop_back();
  if (static_cast<int>(ip.size()) < pic.intZeros)
    ip.insert(0, static_cast<std::size_t>(pic.intZeros) - ip.size(), '0');
  bool zero = ip.find_first_not_of('0') == std::string::npos && fp.find_first_not_of('0') == std::string::npos;
  std::string out;
  if (value < 0 && !zero) out.push_back('-');
  out.append(pic.prefix);
  out.append(ip);
  if (pic.point && (!fp.empty() || pic.fracDigits == 0)) {
    out.push_back('.');
    out.append(fp);
  }
  out.append(pic.suffix);
  return out;
}

double RoundHalfEven(double x) {
  if (!std::isfinite(x)) return x;
  return std::nearbyint(x);  // default rounding mode: ties to even
}

double RoundHalfEven(double x, int decimals) {
  if (!std::isfinite(x)) return x;
  // Decide the tie on the decimal text, so that 2.675 (binary just below) is not a tie.
  double scale = std::pow(10.0, decimals);
  double y = x * scale;
  double r = std::nearbyint(y);
  if (std::fabs(y - std::trunc(y)) == 0.5) return r / scale;
  return std::round(y) / scale;
}

int16_t CInt(double x) {
  double r = RoundHalfEven(x);
  if (!(r >= -32768.0)) return std::isnan(r) ? 0 : -32768;
  if (r > 32767.0) return 32767;
  return static_cast<int16_t>(r);
}

int32_t CLng(double x) {
  double r = RoundHalfEven(x);
  if (!(r >= -2147483648.0)) return std::isnan(r) ? 0 : std::numeric_limits<int32_t>::min();
  if (r > 2147483647.0) return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(r);
}

double Int(double x) { return std::floor(x); }
double Fix(double x) { return std::trunc(x); }

namespace {

// Length of the numeric prefix of s (sign, digits, point, digits, exponent), 0 if none.
std::size_t NumericPrefix(std::string_view s) {
  std::size_t i = 0;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) ++i;
  std::size_t digits = 0;
  while (i < s.size() && s[i] >= '0' && s[i] <= '9') { ++i; ++digits; }
  if (i < s.size() && s[i] == '.') {
    ++i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') { ++i; ++digits; }
  }
  if (digits == 0) return 0;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
    std::size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    std::size_t k = j;
    while (k < s.size() && s[k] >= '0' && s[k] <= '9') ++k;
    if (k > j) i = k;
  }
  return i;
}

double ReadNumber(std::string_view s) {
  std::string t(s);
  for (char& c : t)
    if (c == 'd' || c == 'D') c = 'e';
  if (!t.empty() && t[0] == '+') t.erase(0, 1);
  double v = 0;
  auto r = std::from_chars(t.data(), t.data() + t.size(), v);
  if (r.ec == std::errc::result_out_of_range) return t[0] == '-' ? -HUGE_VAL : HUGE_VAL;
  return v;
}

std::string_view StripBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n'))
    s.remove_suffix(1);
  return s;
}

}  // namespace

std::optional<double> ParseStrict(std::string_view text) {
  std::string_view s = StripBlanks(text);
  if (s.empty()) return std::nullopt;
  std::size_t n = NumericPrefix(s);
  if (n == 0 || n != s.size()) return std::nullopt;
  return ReadNumber(s);
}

double ParseLenient(std::string_view text) {
  std::string_view s = StripBlanks(text);
  std::size_t n = NumericPrefix(s);
  return n == 0 ? 0.0 : ReadNumber(s.substr(0, n));
}

std::string RoundTrip(double value) {
  char buf[64];
  auto r = std::to_chars(buf, buf + sizeof buf, value);
  return std::string(buf, r.ptr);
}

std::string Plain(double value) {
  if (value == 0) return "0";
  char buf[64];
  double a = std::fabs(value);
  if (a >= 1e15 || a < 1e-5) {
    std::snprintf(buf, sizeof buf, "%.14E", value);
    return buf;
  }
  std::snprintf(buf, sizeof buf, "%.15g", value);
  std::string s = buf;
  // %.15g can still give 15 digits where the 15-digit value is shorter; nothing more to do.
  return s;
}

namespace {

// Most values of a survey are short decimals (280850.125, 12.5). When the value times
// 10^d is a whole number m for a small d, and m / 10^d gives the value back exactly,
// then m with the point set d places from the right reads back as the value; with no
// more than 15 digits it is also the value rounded to 15 digits (the 15th digit is
// coarser than the spacing of doubles), so it is the general form, found without the
// cost of rounding to a precision. 0 when the value is not such a decimal.
std::size_t ShortDecimalTo(char* out, double value) {
  static constexpr double pow10[11] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
  const double a = std::fabs(value);
  if (!(a >= 1e-4 && a < 1e15)) return 0;
  for (int d = 0; d <= 10; ++d) {
    const double y = a * pow10[d];
    if (y >= 1e15) return 0;
    const double m = std::nearbyint(y);
    if (m / pow10[d] != a) continue;
    char digits[24];
    const auto r = std::to_chars(digits, digits + sizeof digits, static_cast<std::uint64_t>(m));
    const int nd = static_cast<int>(r.ptr - digits);
    char* p = out;
    if (value < 0) *p++ = '-';
    if (d == 0) {
      std::memcpy(p, digits, nd), p += nd;
    } else if (nd > d) {
      std::memcpy(p, digits, nd - d), p += nd - d;
      *p++ = '.';
      std::memcpy(p, digits + nd - d, d), p += d;
    } else {
      *p++ = '0', *p++ = '.';
      for (int z = nd; z < d; ++z) *p++ = '0';
      std::memcpy(p, digits, nd), p += nd;
    }
    return static_cast<std::size_t>(p - out);
  }
  return 0;
}

// The general form into out (room for PrintedMax bytes); returns the length.
std::size_t GeneralTo(char* out, double value) {
  if (value == 0 || !std::isfinite(value)) {
    // Zero of either sign prints as "0"; a value that is not a number has no general
    // form, and a file is better off with a zero than with "nan".
    out[0] = '0';
    return 1;
  }
  if (std::size_t n = ShortDecimalTo(out, value)) return n;
  // to_chars in the general form with 15 digits chooses between fixed and exponent
  // notation exactly as %.15G does, and drops trailing zeros.
  auto r = std::to_chars(out, out + PrintedMax - 2, value, std::chars_format::general, 15);
  for (char* p = out; p != r.ptr; ++p)
    if (*p == 'e') *p = 'E';
  return static_cast<std::size_t>(r.ptr - out);
}

}  // namespace

std::string General(double value) {
  char buf[PrintedMax];
  return std::string(buf, GeneralTo(buf, value));
}

std::size_t PrintTo(char* out, double value) {
  std::size_t n;
  if (value < 0 && std::isfinite(value)) {
    n = GeneralTo(out, value);  // the minus sign takes the blank's place
  } else {
    out[0] = ' ';
    n = 1 + GeneralTo(out + 1, value);
  }
  out[n] = ' ';
  return n + 1;
}

std::string Printed(double value) {
  char buf[PrintedMax];
  return std::string(buf, PrintTo(buf, value));
}

}  // namespace tavik::num
