#include "tools/sim/answers.h"

#include <cmath>
#include <cstdio>

namespace tavik::sim {

namespace {

std::string Printf(const char* format, auto... args) {
  char buf[256];
  std::snprintf(buf, sizeof buf, format, args...);
  return buf;
}

long long Millimetres(double metres) { return std::llround(metres * 1000); }

// D.MMSS as Trimble writes angles.
std::string TrimbleAngle(double degrees) {
  long long p = PackedDigits(degrees, 0);
  return Printf("%lld.%04lld", p / 10000, p % 10000);
}

}  // namespace

bool ParseFamily(const std::string& name, SimFamily& family) {
  if (name == "SET") family = SimFamily::Set;
  else if (name == "GTS22X") family = SimFamily::Gts22x;
  else if (name == "GTS211D") family = SimFamily::Gts211d;
  else if (name == "Leica") family = SimFamily::Leica;
  else if (name == "Trimble") family = SimFamily::Trimble;
  else if (name == "Trimble3600") family = SimFamily::Trimble3600;
  else if (name == "PENTAX") family = SimFamily::Pentax;
  else return false;
  return true;
}

std::string ShotAnswer(SimFamily family, const Reading& r, bool withDistance) {
  double slope = withDistance ? r.slope : 0;
  switch (family) {
    case SimFamily::Set:
      // Status digit, then millimetres in seven digits, zenith and horizontal DDDMMSS.
      return Printf("0%07lld %07lld %07lld\r\n", Millimetres(slope) % 10000000, PackedDigits(r.zenith, 0),
                    PackedDigits(r.hz, 0));
    case SimFamily::Gts22x:
    case SimFamily::Gts211d:
      if (!withDistance)
        return Printf("<%07lld+%07lldd\r\n", PackedDigits(r.zenith, 0), PackedDigits(r.hz, 0));
      return Printf("?+%08lldm%07lld+%07lldd+00\r\n", Millimetres(slope), PackedDigits(r.zenith, 0),
                    PackedDigits(r.hz, 0));
    case SimFamily::Leica: {
      // GSI16 words; angles in DDDMMSS with tenths of a second.
      std::string angles = Printf("*21.322+%016lld *22.322+%016lld ", PackedDigits(r.hz, 1),
                                  PackedDigits(r.zenith, 1));
      if (!withDistance) return angles + "\r\n";
      return Printf("*31..00+%016lld ", Millimetres(slope)) + angles + "\r\n";
    }
    case SimFamily::Trimble: {
      std::string s = "\r\n7=" + TrimbleAngle(r.hz) + "\r\n8=" + TrimbleAngle(r.zenith) + "\r\n";
      if (withDistance) s += Printf("9=%.3f\r\n", slope);
      return s + ">";
    }
    case SimFamily::Trimble3600: {
      // Fixed columns: "SD" at 44, distance 46-57, "Hz" at 59, degrees 61-67, minutes and
      // seconds 69-72, tenths at 73, "V1" at 75, degrees 77-79, 81-84, tenths at 85.
      std::string line(86, ' ');
      auto put = [&](int pos, const std::string& text) { line.replace(pos - 1, text.size(), text); };
      long long hz = PackedDigits(r.hz, 1), v = PackedDigits(r.zenith, 1);
      put(1, "1");
      put(44, "SD");
      put(46, Printf("%12.3f", slope));
      put(59, "Hz");
      put(61, Printf("%7lld.%04lld%lld", hz / 100000, (hz / 10) % 10000, hz % 10));
      put(75, "V1");
      put(77, Printf("%3lld.%04lld%lld", v / 100000, (v / 10) % 10000, v % 10));
      return line + "\r\n";
    }
    case SimFamily::Pentax: {
      long long hz = PackedDigits(r.hz, 0), v = PackedDigits(r.zenith, 0);
      return Printf("HHD  %04lld.%02lld.%02lld ZA  %04lld.%02lld.%02lld SD %9.3f\r\n", hz / 10000, (hz / 100) % 100,
                    hz % 100, v / 10000, (v / 100) % 100, v % 100, slope);
    }
  }
  return "";
}

std::string NoPrismAnswer(SimFamily family) {
  switch (family) {
    case SimFamily::Set: return "E200 0000000 0000000\r\n";
    case SimFamily::Leica: return "@E139\r\n";
    case SimFamily::Pentax: return "E 200\r\n";
    default: return "";
  }
}

std::string TiltAnswer(SimFamily family) {
  switch (family) {
    case SimFamily::Set: return "0000000 E115 0000000\r\n";
    case SimFamily::Leica: return "@E541\r\n";
    default: return "";
  }
}

}  // namespace tavik::sim
