// The four forms of an angle and the conversions between them: radians (all
// computation), decimal degrees, three parts (degrees and minutes as int16, seconds as
// double) and PackedDms, one double dddmmss.ss whose sign is the sign of the angle.
//
// The three routines that split an angle into parts round the seconds up into the
// next minute at different thresholds on purpose: PackedToDms within 0.001 of 60 (60
// and above included), RadiansToDms in the open range 59.4 to 60 (a coarse rounding to
// the whole second for display), DegreesToDms in the open range 59.99 to 60.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tavik {

// (degrees + minutes / 60 + seconds / 3600) * Pi / 180. The degrees carry the sign
// alone: -10° 30' is -9.5°.
double DmsToRadians(int16_t degrees, int16_t minutes, double seconds);
double PackedToRadians(double packed);
void RadiansToDms(double radians, int16_t& degrees, int16_t& minutes, double& seconds);
// x / 180 * Pi, the division first.
double DegreesToRadians(double degrees);
double DegreesToSeconds(double degrees);
void DegreesToDms(double x, int16_t& degrees, int16_t& minutes, double& seconds);
// Joins the parts as text and reads the text back: 123, 4, 5.25 gives 1230405.25.
void DmsToPacked(int16_t degrees, int16_t minutes, double seconds, double& packed);
void PackedToDms(double packed, int16_t& degrees, int16_t& minutes, double& seconds);

// A DDDMMSS text read as a packed angle, as a surveyor keys it from an instrument's
// display: digits with an optional fraction of a second, minutes and seconds below 60,
// degrees below 360. nullopt otherwise.
std::optional<double> ReadPackedAngle(const std::string& text);

// Int(x) into a 16-bit integer, held at the ends of its range instead of overflowing,
// so that a damaged value gives a wrong angle rather than a fault.
int16_t Int16Floor(double x);

}  // namespace tavik
