// The number pictures the whole program prints with, so that a value shows the same
// way in every report, log line and dialog.
#pragma once

#include <cstdint>
#include <string>

namespace tavik::fmt {

constexpr const char* Coordinate = "0.000";         // coordinates, heights, plane distances
constexpr const char* DistanceMm = "0.000m";        // a distance with its unit
constexpr const char* DistanceCm = "0.00m";
constexpr const char* AngleDegrees = "0-";          // angle in a list: 123-45-30.50
constexpr const char* AngleMinutes = "00-";
constexpr const char* AngleSeconds = "00.00";
constexpr const char* SplitArea = "#######.0000";   // areas in the land split dialog
constexpr const char* SplitAreaUnit = "########.0000㎡";
constexpr const char* SplitAzimuth = "###.0000";    // azimuth in decimal degrees there
constexpr const char* SplitCoordinate = " ########.000";  // coordinates in its output, with the blank
constexpr const char* Level = "0.00";                // levels and offsets on profile and section drawings

// An angle in three parts as a list shows it: "123-45-30.50".
std::string FormatDmsList(int16_t degrees, int16_t minutes, double seconds);

// A chainage along a route as the drawings label it: kilometres "+" metres to the
// centimetre, 1020.456 -> "1+020.46", 0 -> "0+000.00".
std::string FormatChainage(double metres);

}  // namespace tavik::fmt
