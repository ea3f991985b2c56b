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

// An angle in three parts as a list shows it: "123-45-30.50".
std::string FormatDmsList(int16_t degrees, int16_t minutes, double seconds);

}  // namespace tavik::fmt
