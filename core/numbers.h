// Numbers as the surveyor sees them: picture formats for reports, logs and labels,
// reading numbers from typed or received text, and rounding. Every Part of the program
// formats and reads numbers through these few routines so that the same value always
// prints the same way.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavik::num {

// Picture format in the manner of the classic BASIC Format function.
// The picture is: literal prefix, integer digits ('0' always shown, '#' shown only when
// significant), optional '.', fraction digits ('0' or '#'), literal suffix.
//   "0.000"          12.3456  -> "12.346"
//   "#######.0000"   0.5      -> ".5000"
//   " ########.000"  1234.5   -> " 1234.500"
//   "0-" / "00-"     5        -> "5-" / "05-"
//   "0.0000㎡"       1        -> "1.0000㎡"
// The value is first taken to 15 significant digits, as the classic runtime does, then
// rounded half away from zero at the last shown digit. A negative value that rounds to
// zero prints without its sign.
std::string Format(double value, std::string_view picture);

// Rounds to the nearest integer, ties to even (2.5 -> 2, 3.5 -> 4): the rule of the
// classic integer conversions (CInt, CLng) and of Round.
double RoundHalfEven(double x);
// Rounds to the given number of decimals, ties to even.
double RoundHalfEven(double x, int decimals);
// Integer conversions with ties to even, saturating at the type's range.
int16_t CInt(double x);
int32_t CLng(double x);
// Int: the greatest integer not above x (towards minus infinity).
double Int(double x);
// Fix: the integer part, towards zero.
double Fix(double x);

// Strict reading: the whole text (blanks around allowed) must be one decimal number,
// with an optional sign, fraction and exponent. Anything else fails.
std::optional<double> ParseStrict(std::string_view text);

// Lenient reading: the longest numeric prefix after leading blanks, else 0. "12.5m"
// reads 12.5, "abc" reads 0, "" reads 0.
double ParseLenient(std::string_view text);

// The shortest decimal text that reads back to exactly the same double.
std::string RoundTrip(double value);

// A number as plain text: up to 15 significant digits, no exponent for ordinary
// magnitudes, no trailing zeros, "0" for zero. What a log shows for a value given
// "as a plain number".
std::string Plain(double value);

// The general form of a number as the runtime prints it: up to 15 significant digits,
// no trailing zeros, a leading "0" before the point, E notation (mantissa, "E", sign,
// at least two exponent digits) below 1E-04 and from 1E+15 on: 0.5 -> "0.5",
// 280850.125 -> "280850.125", 0.00001 -> "1E-05", 2E15 -> "2E+15", 0 and -0 -> "0".
std::string General(double value);

// A number as a print statement writes it into a file: a blank for a value that is not
// negative (or the minus sign), the general form, and a trailing blank: " 12.5 ",
// "-0.1 ", " 0 ". The classic runtimes write every number this way, and the readers of
// the text files the program writes (DXF among them) trim blanks around a value.
std::string Printed(double value);
// The same into a buffer of at least PrintedMax bytes, without a terminating NUL;
// returns the number of bytes written. For writers of large files.
constexpr std::size_t PrintedMax = 32;
std::size_t PrintTo(char* out, double value);

}  // namespace tavik::num
