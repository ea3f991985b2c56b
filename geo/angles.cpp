#include "geo/angles.h"

#include <cmath>
#include <string>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/constants.h"

namespace tavik {

int16_t Int16Floor(double x) {
  if (std::isnan(x)) return 0;
  const double f = std::floor(x);
  if (f <= INT16_MIN) return INT16_MIN;
  if (f >= INT16_MAX) return INT16_MAX;
  return static_cast<int16_t>(f);
}

double DmsToRadians(int16_t degrees, int16_t minutes, double seconds) {
  return (degrees + minutes / 60.0 + seconds / 3600) * Pi / 180;
}

void PackedToDms(double packed, int16_t& degrees, int16_t& minutes, double& seconds) {
  const double a = std::fabs(packed);
  degrees = Int16Floor(a / 10000);
  minutes = Int16Floor((a / 10000 - degrees) * 100);
  seconds = (a / 100 - num::Int(a / 100)) * 100;
  if (60 - seconds <= 0.001) {
    minutes = static_cast<int16_t>(minutes + 1);
    seconds = 0;
    if (60 - minutes <= 0) {
      degrees = static_cast<int16_t>(degrees + 1);
      minutes = 0;
    }
  }
  if (packed < 0) degrees = static_cast<int16_t>(-degrees);
}

double PackedToRadians(double packed) {
  int16_t d = 0, m = 0;
  double s = 0;
  PackedToDms(packed, d, m, s);
  return DmsToRadians(d, m, s);
}

void RadiansToDms(double radians, int16_t& degrees, int16_t& minutes, double& seconds) {
  const double d = radians * RadToDeg;
  degrees = Int16Floor(d);
  const double m = (d - degrees) * 60;
  minutes = Int16Floor(m);
  seconds = (m - minutes) * 60;
  if (seconds > 59.4 && seconds < 60) {
    seconds = 0;
    minutes = static_cast<int16_t>(minutes + 1);
  }
  if (minutes == 60) {
    minutes = 0;
    degrees = static_cast<int16_t>(degrees + 1);
  }
}

double DegreesToRadians(double degrees) { return degrees / 180 * Pi; }

double DegreesToSeconds(double x) {
  const double degrees = num::Int(x);
  const double minutes = num::Int((x - degrees) * 60);
  const double seconds = ((x - degrees) * 60 - minutes) * 60;
  return degrees * 3600 + minutes * 60 + seconds;
}

void DegreesToDms(double x, int16_t& degrees, int16_t& minutes, double& seconds) {
  const double d = num::Int(x);
  const double m = num::Int((x - d) * 60);
  double s = ((x - d) * 60 - m) * 60;
  degrees = Int16Floor(d);
  minutes = Int16Floor(m);
  if (s > 59.99 && s < 60) {
    s = 0;
    minutes = static_cast<int16_t>(minutes + 1);
    if (minutes == 60) {
      minutes = 0;
      degrees = static_cast<int16_t>(degrees + 1);
    }
  }
  seconds = s;
}

void DmsToPacked(int16_t degrees, int16_t minutes, double seconds, double& packed) {
  std::string text = std::to_string(degrees);
  if (minutes < 10) text += "0";
  text += std::to_string(minutes);
  if (seconds < 10) text += "0";
  text += num::Plain(seconds);
  packed = num::ParseLenient(text);
}

std::optional<double> ReadPackedAngle(const std::string& t) {
  const std::string s = text::Trim(t);
  if (s.empty() || s[0] == '-' || s[0] == '+') return std::nullopt;
  const std::optional<double> v = num::ParseStrict(s);
  if (!v || !std::isfinite(*v) || *v < 0) return std::nullopt;
  const double whole = std::floor(*v);
  const double seconds = std::fmod(whole, 100) + (*v - whole);
  const double minutes = std::fmod(std::floor(whole / 100), 100);
  const double degrees = std::floor(whole / 10000);
  if (seconds >= 60 || minutes >= 60 || degrees >= 360) return std::nullopt;
  return *v;
}

}  // namespace tavik
