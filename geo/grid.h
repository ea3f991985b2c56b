// Latitude and longitude to the 2-degree transverse Mercator grid (scale 0.9999 on the
// central meridian, false easting 250000 m, no false northing), and back.
//
// The forward conversion is the classical hand-calculation series with the longitude
// difference in units of 10000 arc-seconds, kept term by term as the program has
// always computed it, down to two settled details of its authors: the false easting
// carries a correction of -0.0009 m, and the fifth meridian-arc coefficient has the
// denominator 16834. Both move results far less than a millimetre.
//
// The inverse is no formula: it is a bisection of a box of longitudes and latitudes
// that calls the forward conversion until the box's corners bracket the target within
// 0.0001 m on each axis.
#pragma once

#include "geo/datum.h"

namespace tavik {

// x / 180 * π with the program's π.
double DegToRad(double x);
// Decimal degrees to arc-seconds through whole degrees and minutes taken towards
// minus infinity, so a negative angle comes out right.
double DegToArcSeconds(double x);

// Lon, Lat in decimal degrees to E, N in metres, on the datum and meridian of `s`.
void g2xy(const GpsDatumSettings& s, double Lon, double Lat, double& E, double& N);

// How many rounds of halving the inverse may take before it gives up. A position
// inside the search box settles in well under a hundred.
constexpr int XyToLonLatMaxRounds = 500;

// E, N in metres to Lon, Lat in decimal degrees, such that g2xy of the result lies
// within 0.0001 m of E and N on each axis. Failed is set, and Lon and Lat are left as
// they were, when the position lies outside the search box (longitude 119.137 to
// 125.7, latitude 19.33 to 28.67), the search does not settle in its rounds, or its
// result cannot be brought within that distance.
void XyToLonLat(const GpsDatumSettings& s, double E, double N, double& Lon, double& Lat, bool& Failed);

}  // namespace tavik
