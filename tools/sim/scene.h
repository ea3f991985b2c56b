// What the simulated instrument sees: its own station, the orientation of its
// horizontal circle and a list of targets, and the true angles and distance to each.
//
// Scene file, one item a line, '#' starts a comment:
//   station E N H [instrument height]
//   orientation DEGREES      azimuth of the circle's zero (azimuth minus circle reading)
//   target NAME E N H [target height]
#pragma once

#include <string>
#include <vector>

namespace tavik::sim {

struct Target {
  std::string name;
  double e = 0, n = 0, h = 0, height = 0;
};

struct Scene {
  double e = 0, n = 0, h = 0, instrumentHeight = 0;
  double orientation = 0;  // degrees
  std::vector<Target> targets;
};

// What a perfect instrument reads on a target: circle reading and zenith in degrees,
// slope distance in metres.
struct Reading {
  double hz = 0, zenith = 0, slope = 0;
};

// Reads a scene; on a bad line returns false and says why in `error`.
bool ParseScene(const std::string& text, Scene& scene, std::string& error);
bool LoadScene(const std::string& path, Scene& scene, std::string& error);
Reading Measure(const Scene& scene, const Target& target);
// The same reading taken in face two.
Reading FaceTwo(const Reading& r);

// An angle in degrees as the integer DDDMMSS with `decimals` decimals of the seconds
// kept as further digits (1234512 for 123°45'12", 12345123 with one decimal).
long long PackedDigits(double degrees, int decimals);

}  // namespace tavik::sim
