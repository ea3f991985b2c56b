#include "tools/sim/scene.h"

#include <cmath>
#include <fstream>
#include <sstream>

namespace tavik::sim {

namespace {
constexpr double kPi = 3.14159265358979323846;

double Normalize(double degrees) {
  double d = std::fmod(degrees, 360.0);
  return d < 0 ? d + 360.0 : d;
}
}  // namespace

bool ParseScene(const std::string& text, Scene& scene, std::string& error) {
  Scene s;
  std::istringstream in(text);
  std::string line;
  int number = 0;
  while (std::getline(in, line)) {
    ++number;
    if (auto hash = line.find('#'); hash != std::string::npos) line.erase(hash);
    std::istringstream words(line);
    std::string key;
    if (!(words >> key)) continue;
    bool ok = true;
    if (key == "station") {
      ok = static_cast<bool>(words >> s.e >> s.n >> s.h);
      if (ok && !(words >> s.instrumentHeight)) s.instrumentHeight = 0;
    } else if (key == "orientation") {
      ok = static_cast<bool>(words >> s.orientation);
    } else if (key == "target") {
      Target t;
      ok = static_cast<bool>(words >> t.name >> t.e >> t.n >> t.h);
      if (ok && !(words >> t.height)) t.height = 0;
      if (ok) s.targets.push_back(t);
    } else {
      ok = false;
    }
    if (!ok) {
      error = "line " + std::to_string(number) + ": cannot read \"" + line + "\"";
      return false;
    }
  }
  if (s.targets.empty()) {
    error = "the scene has no target";
    return false;
  }
  scene = s;
  return true;
}

bool LoadScene(const std::string& path, Scene& scene, std::string& error) {
  std::ifstream in(path);
  if (!in) {
    error = "cannot open " + path;
    return false;
  }
  std::stringstream text;
  text << in.rdbuf();
  return ParseScene(text.str(), scene, error);
}

Reading Measure(const Scene& scene, const Target& target) {
  double de = target.e - scene.e, dn = target.n - scene.n;
  double dh = (target.h + target.height) - (scene.h + scene.instrumentHeight);
  double hd = std::hypot(de, dn);
  Reading r;
  r.slope = std::hypot(hd, dh);
  double azimuth = Normalize(std::atan2(de, dn) * 180 / kPi);
  r.hz = Normalize(azimuth - scene.orientation);
  r.zenith = std::atan2(hd, dh) * 180 / kPi;
  return r;
}

Reading FaceTwo(const Reading& r) {
  Reading f = r;
  f.hz = Normalize(r.hz + 180);
  f.zenith = 360 - r.zenith;
  return f;
}

long long PackedDigits(double degrees, int decimals) {
  double scale = std::pow(10.0, decimals);
  long long units = std::llround(std::fabs(degrees) * 3600 * scale);  // seconds in the last unit
  long long perDegree = static_cast<long long>(3600 * scale), perMinute = static_cast<long long>(60 * scale);
  long long d = units / perDegree, m = (units % perDegree) / perMinute, s = units % perMinute;
  long long packed = (d * 10000 + m * 100) * static_cast<long long>(scale) + s;
  return degrees < 0 ? -packed : packed;
}

}  // namespace tavik::sim
