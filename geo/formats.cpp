#include "geo/formats.h"

#include "core/numbers.h"

namespace tavik::fmt {

std::string FormatDmsList(int16_t degrees, int16_t minutes, double seconds) {
  return num::Format(degrees, AngleDegrees) + num::Format(minutes, AngleMinutes) +
         num::Format(seconds, AngleSeconds);
}

}  // namespace tavik::fmt
