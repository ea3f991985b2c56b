// Reading what a total station sends when its job memory is dumped over the cable: the
// SOKKIA SDR33 records and the TOPCON GTS raw stream. The text in is what arrived,
// possibly cut anywhere or damaged on the line; the records out are the ones that read
// cleanly, in order, with a count of those that did not and the place the text stopped.
//
// SDR33: one record per line, fixed columns of 16 characters after a four-character
// head (two digits of record type, two letters of derivation):
//   00NM  header: angle unit at column 41 (1 degrees, 2 gons), coordinate order at 45
//         (1 N E Z, 2 E N Z)
//   01KI  instrument: zero of the vertical angle at column 51 (1 zenith, 2 horizon)
//   02..  station: name, two coordinates, elevation, instrument height, description
//   03NM  target height
//   07..  back bearing: station, backsight, azimuth, circle reading
//   08..  coordinates: name, two coordinates, elevation, code
//   09..  observation: station, point, slope distance, vertical angle, horizontal
//         angle, code
// Other record types (job, notes, instrument details) carry nothing for the map and
// are passed over. Angles in degrees are decimal degrees.
//
// GTS: records separated by commas; inside a record each field begins with "_" and a
// marker: "'" station name, "(" code, ")" target height, "+" point name, " " the
// measurement, "*" the record's end. A record that follows a comma may begin with its
// target height without a marker. The measurement has the positions of the
// instrument's answer: "?" sign, slope distance in millimetres, "m", zenith angle
// (7 digits), sign, horizontal angle (7 digits), unit "d" (DDDMMSS) or "g" (gon, four
// decimals); "<" starts an angle-only measurement.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavik::dump {

enum class Format { Sdr, Gts };

struct Record {
  enum Kind { Station, Backsight, TargetHeight, Observation, Coordinates } kind = Observation;
  std::size_t line = 0;  // where it stood in the text, from 1 (SDR lines, GTS records)
  std::string name;      // station, point, or coordinate point
  std::string code;
  std::string station;   // the station of an observation, the backsight's station
  std::string backsight;
  bool hasCoordinates = false;  // a station with E, N, H
  double E = 0, N = 0, H = 0;
  double height = 0;  // instrument height of a station, target height of a shot
  bool hasHeight = false;
  double slope = 0;            // metres
  int32_t hzRaw = 0, vRaw = 0;  // DDDMMSS, the zenith angle in vRaw
  bool hasAzimuth = false;     // a back bearing with its azimuth
  int32_t azimuthRaw = 0;
};

struct Dump {
  std::vector<Record> records;
  std::size_t skipped = 0;                 // damaged records left out
  std::vector<std::size_t> skippedLines;
  // The text ended inside a record (no line end after it): that record is not read.
  bool cut = false;
  std::size_t lastLine = 0;  // the last record read cleanly, 0 when none
  std::string lastName;      // its point or station name
};

Dump ReadSdr(std::string_view text);
Dump ReadGts(std::string_view text);
inline Dump Read(Format format, std::string_view text) {
  return format == Format::Sdr ? ReadSdr(text) : ReadGts(text);
}

// A decimal angle in degrees as the integer DDDMMSS, seconds rounded.
int32_t DegreesToRaw(double degrees);

}  // namespace tavik::dump
