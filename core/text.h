// Text at the file boundary. Inside the program every string is UTF-8; every file the
// surveyor keeps (documents, logs, settings, drawings) holds code page 950 (Big5).
// Conversion goes through glibc iconv "CP950": Qt's codec of that name is a different
// IBM table that loses characters such as the euro sign and 碁, so it is never used.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavik::text {

// UTF-8 to code page 950. A character with no CP950 code becomes '?'.
std::string ToCp950(std::string_view utf8);

// Code page 950 to UTF-8. A byte sequence that is not CP950 becomes '?' per bad byte,
// so a damaged name never stops a load.
std::string FromCp950(std::string_view cp950);

// Cuts CP950 bytes to at most maxBytes without splitting a double-byte character.
// Scans forward from the start: lead bytes are 0x81-0xFE and take two bytes, and the
// second byte may look like ASCII, so a backward scan cannot tell where characters begin.
std::string_view CutCp950(std::string_view cp950, std::size_t maxBytes);

// A fixed-width text field of a binary record: the UTF-8 text in CP950, cut to at most
// width bytes on a character boundary, padded on the right with blanks to exactly width.
std::string FixedField(std::string_view utf8, std::size_t width);

// Reads a fixed-width field back: CP950 to UTF-8, cut at the first NUL when asked,
// trimmed of blanks on both sides.
std::string ReadFixedField(std::string_view bytes, bool cutAtNul = false);

// Length of the text in CP950 bytes (a Chinese character counts two).
std::size_t Cp950Length(std::string_view utf8);

// Number of characters (code points) in UTF-8 text; what the interface calls a length.
std::size_t CharCount(std::string_view utf8);

// The first n characters of UTF-8 text.
std::string LeftChars(std::string_view utf8, std::size_t n);

// Blanks (space, tab, CR, LF) removed from both ends.
std::string Trim(std::string_view s);

std::string UpperAscii(std::string_view s);
bool EqualsNoCase(std::string_view a, std::string_view b);

}  // namespace tavik::text
