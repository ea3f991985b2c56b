#include "geo/datum.h"

namespace tavik {
namespace {

// a² of TWD97, written as a literal in the constants below.
constexpr double A2TWD97 = 40680631590769;

void LoadGrs80(GpsDatumSettings& s) {
  s.EllipsoidA = 6378137;
  s.EllipsoidB = s.EllipsoidA * (1 - 1 / 298.257223563);
  s.EllipsoidE2 = (A2TWD97 - s.EllipsoidB * s.EllipsoidB) / A2TWD97;
  s.EllipsoidEP2 = (A2TWD97 - s.EllipsoidB * s.EllipsoidB) / (s.EllipsoidB * s.EllipsoidB);
  s.EllipsoidEP2Alt = s.EllipsoidE2 / (1 - s.EllipsoidE2);
}

void LoadTwd67(GpsDatumSettings& s) {
  s.EllipsoidA = 6378160;
  s.EllipsoidB = 6356774.7192;
  s.EllipsoidE2 = 272340154939.7578 / 40680924985600;
  s.EllipsoidEP2 = 272340154939.7578 / 40408584830660.24;
  s.EllipsoidEP2Alt = s.EllipsoidE2 / (1 - s.EllipsoidE2);
}

}  // namespace

GpsDatumSettings::GpsDatumSettings() { LoadGrs80(*this); }

void SetDatumTWD67(GpsDatumSettings& s) {
  LoadTwd67(s);
  s.GpsDatum = "TWD67";
}

void SetDatumTWD97(GpsDatumSettings& s) {
  LoadGrs80(s);
  s.GpsDatum = "TWD97";
}

void SetDatumWGS84(GpsDatumSettings& s) {
  LoadGrs80(s);
  s.GpsDatum = "WGS84";
}

void LoadStoredDatum(GpsDatumSettings& s, const std::string& storedDatum, double storedMeridian) {
  if (storedDatum == "TWD97") {
    LoadGrs80(s);
  } else {
    LoadTwd67(s);
  }
  s.GpsDatum = storedDatum;
  s.CentralMeridian = storedMeridian;
}

bool SetDatumByName(GpsDatumSettings& s, const std::string& name) {
  if (name == "TWD67") SetDatumTWD67(s);
  else if (name == "TWD97") SetDatumTWD97(s);
  else if (name == "WGS84") SetDatumWGS84(s);
  else return false;
  return true;
}

}  // namespace tavik
