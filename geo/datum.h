// The three datums the program knows and the ellipsoid constants each loads. There is
// no datum shift anywhere: choosing a datum changes the ellipsoid only, and the GNSS
// receiver is told the same ellipsoid with all shifts zero. TWD97 and WGS84 load the
// same numbers and differ only in the name.
#pragma once

#include <string>

namespace tavik {

struct GpsDatumSettings {
  std::string GpsDatum = "TWD97";  // "TWD67", "TWD97" or "WGS84"
  double CentralMeridian = 121;    // degrees: 121 for the main island, 119 for Penghu
  double EllipsoidA = 0;           // semi-major axis, metres
  double EllipsoidB = 0;           // semi-minor axis, metres
  double EllipsoidE2 = 0;          // first eccentricity squared
  double EllipsoidEP2 = 0;         // second eccentricity squared, what g2xy reads
  double EllipsoidEP2Alt = 0;      // e² / (1 - e²), kept beside it

  GpsDatumSettings();  // TWD97 and 121, the first-start defaults
};

void SetDatumTWD67(GpsDatumSettings& s);
void SetDatumTWD97(GpsDatumSettings& s);
void SetDatumWGS84(GpsDatumSettings& s);

// Loads a stored pair at start-up. Only "TWD97" loads its own constants; every other
// name, "WGS84" among them, loads the TWD67 constants and keeps its text. A WGS84 user
// gets the right ellipsoid back only by choosing the datum again in GpsInitDlg.
void LoadStoredDatum(GpsDatumSettings& s, const std::string& storedDatum, double storedMeridian);

// Chooses a datum by name as the dialog does (TWD67, TWD97, WGS84); false for any other.
bool SetDatumByName(GpsDatumSettings& s, const std::string& name);

}  // namespace tavik
