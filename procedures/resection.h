// Two-point distance resection: the station is found from the horizontal distances to
// two known points and the angle between them. Three measurements for two unknowns, so
// the triangle is overdetermined and gives a closure in angle and in coordinates. The
// station is taken to lie to the right of the line from point 1 to point 2; observing
// the points in the other order gives a mirrored station, which the closure reveals.
#pragma once

#include <cstdint>
#include <string>

namespace tavik {

struct ResectSlot {
  std::string Name;
  double E = 0, N = 0, H = 0;
  double Hz = 0;      // horizontal reading, radians
  double V = 0;       // zenith as received; the solver turns it into an elevation
  double Slope = 0;   // slope distance, metres
  double Target = 0;  // target height, metres
};

struct ResectResult {
  enum class Outcome {
    Solved,
    SameSpot,        // the two known points coincide: stops without a word
    SlopeSumShort,   // the two distances do not reach across the known side
    NoTriangle,      // the half-angle rule has no real answer (t >= 1 or below zero)
    ZeroDistance,    // a horizontal distance of 0
  } outcome = Outcome::Solved;
  bool BothHeightsZero = false;  // heights kept but neither point has one
  double H1 = 0, H2 = 0, StationH = 0;
  double D = 0, Az = 0;          // point 1 to point 2
  double G = 0, A = 0, B = 0;    // angles at the station, point 1, point 2
  double Closure = 0;            // angle closure, radians
  double E1 = 0, N1 = 0, E2 = 0, N2 = 0;
  double CoordinateClosure = 0;
  double StationE = 0, StationN = 0;
  double BacksightAzimuth = 0;  // station to point 1
  double OrientationConstant = 0;
};

// Runs the solver. The slots are changed as the steps say: each V becomes an
// elevation, and Hz of slot 2 gains a whole turn when below Hz of slot 1.
// `mapType` 1 keeps heights.
ResectResult SolveResection(ResectSlot& p1, ResectSlot& p2, int16_t mapType, double instrumentHeight);

// The angle closure as shown: degrees "-" minutes "00" "-" seconds "00.0".
std::string ClosureText(double radians);

}  // namespace tavik
