#include "procedures/keyed_observation.h"

#include <cmath>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/angles.h"

namespace tavik {

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

std::optional<KeyedError> KeyinObservation(InstrumentState& inst, const std::string& hzText,
                                           const std::string& vText, const std::string& slopeText) {
  const std::optional<double> hz = ReadPackedAngle(hzText);
  if (!hz) return KeyedError{"水平角請以度分秒輸入,例如123度45分12秒輸入1234512", "水平角錯誤"};
  const std::optional<double> v = ReadPackedAngle(vText);
  if (!v) return KeyedError{"天頂距請以度分秒輸入,例如90度15分30秒輸入901530", "天頂距錯誤"};
  const std::optional<double> slope = num::ParseStrict(text::Trim(slopeText));
  if (!slope || !std::isfinite(*slope)) return KeyedError{"斜距請輸入數字(公尺)", "斜距錯誤"};
  if (*slope <= 0) return KeyedError{"斜距必須大於0", "斜距錯誤"};
  inst.ObsHzRaw = num::CLng(*hz);
  inst.ObsVRaw = num::CLng(*v);
  inst.ObsHz = PackedToRadians(*hz);
  inst.ObsV = PackedToRadians(*v);
  inst.ObsSlope = *slope;
  return std::nullopt;
}

}  // namespace tavik
