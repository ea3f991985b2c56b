// The prefix and running number of a point name, which auto-naming increments.
#pragma once

#include <cstdint>
#include <string>

namespace tavik {

// "P7" gives prefix "P", number 7, width 1; "P12345" gives "P", 2345, 4 (the number is
// read from at most the last four characters); "ABC" gives "ABC", 0, 1; a name that
// begins with a digit ("12A") has neither: "", 0, 1. Characters, not bytes, are counted.
void SplitPointName(const std::string& name, std::string& prefix, int16_t& number, int16_t& width);

}  // namespace tavik
