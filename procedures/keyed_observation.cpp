#include "procedures/keyed_observation.h"

#include <cmath>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/angles.h"

namespace tavik {

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
