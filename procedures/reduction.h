// Turning a circle reading, a zenith angle and a slope distance into E, N and H.
// The same few steps serve the survey shot, the set-up dialogs, the resection and the
// stake-out guide, each with its own small differences (which face rule, whether the
// horizontal reading is turned for face two), so they are kept here as separate
// pieces that the callers put together in their own order.
#pragma once

#include <cstdint>

namespace tavik {

// Zenith angle to elevation angle: below pi it is face one (pi/2 - v), otherwise face
// two (v - 3pi/2); pi itself counts as face two.
double ElevationOf(double zenith);

// The survey shot's face handling and orientation, in place: zenith becomes elevation,
// a face-two reading is turned through half a circle, then the orientation constant is
// added and one whole turn taken off when above it. No test for a negative sum.
void FaceAndOrient(double& hz, double& v, double orientationConstant);

// Circle reading plus orientation constant, one turn off when above 2pi: an azimuth.
double OrientReading(double hz, double orientationConstant);

// E and N of a shot from the station along azimuth `azimuth` and elevation `elevation`,
// with E or N nudged by 0.0001 when it equals the station's exactly.
void PolarPoint(double stationE, double stationN, double slope, double azimuth, double elevation,
                double& E, double& N);

// Azimuth of a pair by the set-up rule: a difference of exactly 0 becomes 0.0001, then
// pi/2 - atan(dN/dE) for positive dE, 3pi/2 - atan(dN/dE) otherwise.
double PairAzimuth(double dE, double dN);
// The stake-out's form of the same rule, which has no replacement of zero differences.
double PairAzimuthNoNudge(double dE, double dN);

// The angle turned from the backsight for the cadastral book: the raw circle reading in
// radians plus the orientation constant minus the backsight azimuth, brought into one
// turn, split into degrees, minutes and seconds and packed as the integer DDDMMSS.
int32_t TurnedAnglePacked(int32_t hzRaw, double orientationConstant, double backsightAzimuth);

}  // namespace tavik
