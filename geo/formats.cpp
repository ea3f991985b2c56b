#include "geo/formats.h"

#include "core/numbers.h"

namespace tavik::fmt {

std::string FormatDmsList(int16_t degrees, int16_t minutes, double seconds) {
  return num::Format(degrees, AngleDegrees) + num::Format(minutes, AngleMinutes) +
         num::Format(seconds, AngleSeconds);
}

std::string FormatChainage(double metres) {
  const double cm = num::RoundHalfEven(metres * 100);
  const double km = num::Int(cm / 100000);
  return num::Format(km, "0") + "+" + num::Format((cm - km * 100000) / 100, "000.00");
}

}  // namespace tavik::fmt
