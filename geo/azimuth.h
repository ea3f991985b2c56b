// Bearing and distance between two points, the foot of a perpendicular, and the small
// helpers that go with them. Azimuth runs clockwise from north (+N) in 0 to 2π; the
// axis cases are tested before the arctangent, all by exact comparison with 0, so a
// line one micrometre off vertical takes the arctangent branch.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tavik {

void AzimuthDistance(double E1, double N1, double E2, double N2, double& distance, double& azimuth);
// The distance is taken in space, but along a grid axis the plain |dN| or |dE| is
// reported, dropping the height difference, as the program always has.
void AzimuthDistance3(double E1, double N1, double H1, double E2, double N2, double H2, double& distance,
                      double& azimuth);
// For values that may be empty (an empty value reads as 0).
void AzimuthDistanceVar(std::optional<double> E1, std::optional<double> N1, std::optional<double> E2,
                        std::optional<double> N2, double& distance, double& azimuth);

inline double MaxOf(double a, double b) { return a > b ? a : b; }
inline double MinOf(double a, double b) { return a > b ? b : a; }

// Pairs ascending by the first coordinate, by a plain bubble sort, in place.
// pairs[0] holds the first coordinates, pairs[1] the second; count rows are sorted.
void SortPairs(std::vector<double> (&pairs)[2], int32_t count);

// The foot of the perpendicular found by the last FootOnSegment call.
struct Foot {
  double FootE = 0, FootN = 0, FootH = 0;
};

// Foot of the perpendicular from P onto the line through points 1 and 2, computed by
// bearings. E1, E2 and N1, N2 are in-out: they come back sorted in ascending pairs.
// True when the foot lies within the sorted bounds, bounds included, with no tolerance.
bool FootOnSegment(double PE, double PN, double& E1, double& N1, double& E2, double& N2, Foot& foot);
// The same, and with mapType 1 (heights kept) also FootH from H1, H2.
bool FootOnSegment3(double PE, double PN, double& E1, double& N1, double H1, double& E2, double& N2,
                    double H2, int16_t mapType, Foot& foot);

}  // namespace tavik
