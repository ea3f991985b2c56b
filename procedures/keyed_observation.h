// InputHVSDlg: a reading typed as a surveyor keys it from the instrument's display —
// horizontal circle and zenith angle as DDDMMSS (1234512 is 123°45'12"), slope
// distance in metres. Accepted values are left in the link state exactly as an
// instrument's answer would leave them, so the same storing path follows.
#pragma once

#include <optional>
#include <string>

#include "geo/angles.h"
#include "instruments/instrument_state.h"

namespace tavik {

struct KeyedError {
  std::string text, title;
};

// Checks the three texts and, when they are good, sets ObsHzRaw, ObsVRaw, ObsHz, ObsV
// and ObsSlope. On a refusal nothing is changed and the message says which field.
std::optional<KeyedError> KeyinObservation(InstrumentState& inst, const std::string& hzText,
                                           const std::string& vText, const std::string& slopeText);

}  // namespace tavik
