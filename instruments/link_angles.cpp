#include "instruments/link_angles.h"

#include <cmath>

#include "core/numbers.h"

namespace tavik::link_angles {

void PackedToDms(double packed, double& degrees, double& minutes, double& seconds) {
  double a = std::fabs(packed);
  degrees = num::Int(a / 10000);
  minutes = num::Int((a / 10000 - degrees) * 100);
  seconds = (a / 100 - num::Int(a / 100)) * 100;
  if (60 - seconds <= 0.001) {
    minutes += 1;
    seconds = 0;
    if (60 - minutes <= 0) {
      degrees += 1;
      minutes = 0;
    }
  }
  if (packed < 0) degrees = -degrees;
}

double PackedToRadians(double packed) {
  double d, m, s;
  PackedToDms(packed, d, m, s);
  return (d + m / 60 + s / 3600) * 3.14159265358979 / 180;
}

}  // namespace tavik::link_angles
