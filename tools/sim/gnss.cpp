#include "tools/sim/gnss.h"

#include <algorithm>
#include <cstdarg>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace tavik::sim {

namespace {

constexpr double kPi = 3.14159265358979;
constexpr int kWeek = 2340;
constexpr double kLeapSeconds = 18;

std::string Upper(std::string s) {
  for (char& c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return s;
}

std::string Printf(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Printf(const char* format, ...) {
  char buf[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(buf, sizeof buf, format, args);
  va_end(args);
  return buf;
}

std::vector<std::string> Tokens(const std::string& line) {
  std::vector<std::string> out;
  std::string cur;
  for (char c : line) {
    if (c == ' ' || c == ',') {
      if (!cur.empty()) out.push_back(cur);
      cur.clear();
    } else {
      cur.push_back(c);
    }
  }
  if (!cur.empty()) out.push_back(cur);
  return out;
}

// ddmm.mmmmmm or dddmm.mmmmmm, as NMEA writes a position.
std::string NmeaAngle(double degrees, int degreeDigits) {
  double a = std::fabs(degrees);
  int d = static_cast<int>(a);
  double m = (a - d) * 60;
  return Printf("%0*d%09.6f", degreeDigits, d, m);
}

struct Sat {
  int prn, elevation, azimuth, snr;
};

std::vector<Sat> Satellites(int count, int epoch) {
  std::vector<Sat> out;
  for (int i = 0; i < count; ++i) {
    int elevation = 5 + (i * 37 + 11) % 80;
    int azimuth = (i * 53 + epoch / 10) % 360;
    int snr = elevation < 15 ? 0 : 32 + (i * 7) % 18;
    out.push_back({(i * 5 + 2) % 32 + 1, elevation, azimuth, snr});
  }
  return out;
}

struct FixWords {
  const char *status, *type;
  int ggaQuality, prtkaPosition, prtkaRtk;
  double sigmaN, sigmaE, sigmaH;
};

FixWords Words(GnssFix fix) {
  switch (fix) {
    case GnssFix::None: return {"INSUFFICIENT_OBS", "NONE", 0, 0, 10, 0, 0, 0};
    case GnssFix::Single: return {"SOL_COMPUTED", "SINGLE", 1, 1, 10, 1.214, 0.987, 2.451};
    case GnssFix::Dgps: return {"SOL_COMPUTED", "PSRDIFF", 2, 2, 10, 0.412, 0.386, 0.874};
    case GnssFix::Sbas: return {"SOL_COMPUTED", "WAAS", 9, 5, 10, 0.655, 0.602, 1.123};
    case GnssFix::Float: return {"SOL_COMPUTED", "NARROW_FLOAT", 5, 3, 1, 0.153, 0.141, 0.262};
    case GnssFix::Fixed: return {"SOL_COMPUTED", "NARROW_INT", 4, 4, 0, 0.0112, 0.0097, 0.0213};
  }
  return {"SOL_COMPUTED", "SINGLE", 1, 1, 10, 1, 1, 2};
}

}  // namespace

bool ParseGnssFix(const std::string& name, GnssFix& fix) {
  if (name == "none") fix = GnssFix::None;
  else if (name == "single") fix = GnssFix::Single;
  else if (name == "dgps") fix = GnssFix::Dgps;
  else if (name == "sbas") fix = GnssFix::Sbas;
  else if (name == "float") fix = GnssFix::Float;
  else if (name == "fixed") fix = GnssFix::Fixed;
  else return false;
  return true;
}

bool ParseGnssFault(const std::string& name, GnssFault& fault) {
  if (name == "none") fault = GnssFault::None;
  else if (name == "silence") fault = GnssFault::Silence;
  else if (name == "garbage") fault = GnssFault::Garbage;
  else if (name == "cut") fault = GnssFault::Cut;
  else if (name == "dollar") fault = GnssFault::Dollar;
  else if (name == "fields") fault = GnssFault::Fields;
  else if (name == "south") fault = GnssFault::South;
  else if (name == "pull") fault = GnssFault::Pull;
  else return false;
  return true;
}

bool ParseGnssScene(const std::string& text, std::vector<GnssPosition>& out, std::string& error) {
  std::istringstream in(text);
  std::string line;
  int number = 0;
  out.clear();
  while (std::getline(in, line)) {
    ++number;
    if (auto hash = line.find('#'); hash != std::string::npos) line.erase(hash);
    std::istringstream words(line);
    GnssPosition p;
    if (!(words >> p.lat)) {
      if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
      error = "line " + std::to_string(number) + ": expected LAT LON HEIGHT";
      return false;
    }
    if (!(words >> p.lon >> p.height) || std::fabs(p.lat) > 90 || std::fabs(p.lon) > 180) {
      error = "line " + std::to_string(number) + ": expected LAT LON HEIGHT";
      return false;
    }
    out.push_back(p);
  }
  if (out.empty()) error = "no positions";
  return !out.empty();
}

std::vector<GnssPosition> DefaultGnssScene() {
  const double lat0 = 24.757, lon0 = 121.753, h0 = 12.5;
  std::vector<GnssPosition> out;
  for (int k = 0; k < 8; ++k) {
    double a = k * kPi / 4;
    out.push_back({lat0 + 40 * std::cos(a) / 110770.0, lon0 + 40 * std::sin(a) / (111320.0 * std::cos(lat0 * kPi / 180)),
                   h0 + 0.5 * std::sin(a)});
  }
  return out;
}

std::string NmeaChecksum(const std::string& body) {
  unsigned char x = 0;
  for (char c : body) x ^= static_cast<unsigned char>(c);
  return Printf("%02X", x);
}

std::string NovAtelCrc(const std::string& body) {
  uint32_t crc = 0;
  for (char ch : body) {
    crc ^= static_cast<unsigned char>(ch);
    for (int k = 0; k < 8; ++k) crc = (crc & 1) ? (crc >> 1) ^ 0xEDB88320u : crc >> 1;
  }
  return Printf("%08x", crc);
}

bool LineTime(const std::string& line, double& seconds) {
  std::vector<std::string> f;
  std::string cur;
  for (char c : line) {
    if (c == ',' || c == ';' || c == '*') {
      f.push_back(cur);
      cur.clear();
    } else {
      cur.push_back(c);
    }
  }
  f.push_back(cur);
  auto number = [&](std::size_t i) {
    if (i >= f.size() || f[i].empty()) return false;
    char* end = nullptr;
    seconds = std::strtod(f[i].c_str(), &end);
    return end && *end == '\0';
  };
  auto hms = [&](std::size_t i) {
    if (!number(i) || f[i].size() < 6) return false;
    double v = seconds;
    int hh = static_cast<int>(v / 10000), mm = static_cast<int>(v / 100) % 100;
    seconds = hh * 3600 + mm * 60 + (v - hh * 10000 - mm * 100);
    return true;
  };
  if (line.empty()) return false;
  if (line[0] == '#') return number(6);
  if (line.rfind("$PRTKA", 0) == 0) return number(2);
  if (line.size() >= 6 && line[0] == '$') {
    std::string type = line.substr(3, 3);
    if (type == "GGA" || type == "RMC") return hms(1);
    if (type == "GLL") return hms(5);
  }
  return false;
}

GnssReceiver::GnssReceiver(GnssOptions options, std::vector<GnssPosition> scene)
    : options_(std::move(options)), scene_(std::move(scene)), rng_(options_.seed) {
  if (scene_.empty()) scene_ = DefaultGnssScene();
  position_ = scene_.front();
  seconds_ = 2 * 86400 + 3 * 3600 + 25 * 60;  // Tuesday 03:25 of the week
  if (ListenOnly()) {
    for (const char* t : {"GPGGA", "GPGSA", "GPGSV"}) {
      logs_[t] = 1;
      order_.push_back(t);
    }
  }
}

bool GnssReceiver::ListenOnly() const { return options_.kind == "Axis3" || options_.kind == "單型GPS"; }

void GnssReceiver::Feed(char c) {
  if (c == '\r' || c == '\n') {
    if (!line_.empty()) {
      commands_.push_back(line_);
      Command(line_);
    }
    line_.clear();
    return;
  }
  if (line_.size() < 4096) line_.push_back(c);
}

void GnssReceiver::Command(const std::string& line) {
  std::vector<std::string> t = Tokens(line);
  if (t.empty()) return;
  const std::string verb = Upper(t[0]);
  if (verb == "COM" && t.size() > 1) {
    computerPort_ = Upper(t[1]);
  } else if (verb == "UNFIX" || (verb == "FIX" && t.size() > 1 && Upper(t[1]) == "NONE")) {
    fixed_ = false;
  } else if (verb == "FIX" && t.size() > 4 && Upper(t[1]) == "POSITION") {
    // A base: the receiver stays on the given position (height of the antenna).
    fixed_ = true;
    position_ = {std::atof(t[2].c_str()), std::atof(t[3].c_str()), std::atof(t[4].c_str())};
  } else if (verb == "UNLOGALL") {
    logs_.clear();
    order_.clear();
  } else if (verb == "UNLOG" && t.size() > 2 && Upper(t[1]) == computerPort_) {
    const std::string type = Upper(t[2]);
    logs_.erase(type);
    order_.erase(std::remove(order_.begin(), order_.end(), type), order_.end());
  } else if (verb == "LOG" && t.size() > 3 && Upper(t[1]) == computerPort_) {
    const std::string type = Upper(t[2]);
    std::string trigger = t[3];
    std::string period = t.size() > 4 ? t[4] : "";
    // "ontime1": the period may follow the keyword without a blank.
    for (const char* key : {"ontime", "ONTIME"})
      if (trigger.rfind(key, 0) == 0 && trigger.size() > 6) period = trigger.substr(6);
    int epochs = 0;
    if (Upper(trigger).rfind("ONCHANGED", 0) != 0) epochs = std::max(1, static_cast<int>(std::lround(std::atof(period.c_str()))));
    if (!logs_.count(type)) order_.push_back(type);
    logs_[type] = epochs;
  }
}

void GnssReceiver::Arm(GnssFault fault, int atEpoch) {
  fault_ = fault;
  faultAt_ = epoch_ + std::max(1, atEpoch);
}

void GnssReceiver::Advance() {
  ++epoch_;
  seconds_ += options_.epochSeconds;
  // Ten epochs from one scene position to the next.
  const int steps = 10;
  const std::size_t n = scene_.size();
  const std::size_t k = static_cast<std::size_t>(epoch_ / steps) % n;
  const GnssPosition& a = scene_[k];
  const GnssPosition& b = scene_[(k + 1) % n];
  const double t = (epoch_ % steps) / static_cast<double>(steps);
  if (!fixed_) {
    GnssPosition next{a.lat + (b.lat - a.lat) * t, a.lon + (b.lon - a.lon) * t, a.height + (b.height - a.height) * t};
    const double dn = (next.lat - position_.lat) * 110770.0;
    const double de = (next.lon - position_.lon) * 111320.0 * std::cos(next.lat * kPi / 180);
    if (dn != 0 || de != 0) heading_ = std::fmod(std::atan2(de, dn) * 180 / kPi + 360, 360);
    position_ = next;
  }
  if (epoch_ == faultAt_) {
    if (fault_ == GnssFault::Silence) silent_ = true;
    if (fault_ == GnssFault::Garbage) garbage_ = true;
    if (fault_ == GnssFault::South) south_ = true;
  }
}

std::vector<std::string> GnssReceiver::Due() {
  std::vector<std::string> out;
  for (const std::string& type : order_) {
    auto it = logs_.find(type);
    if (it == logs_.end()) continue;
    const int period = it->second;
    if (period == 0) {
      it->second = -1;  // onchanged: sent once
    } else if (period < 0 || (epoch_ - 1) % period != 0) {
      continue;
    }
    if (type == "BESTPOSA") out.push_back(BestPosA());
    else if (type == "DUALANTENNAHEADINGA") out.push_back(DualAntennaHeadingA());
    else if (type == "INSPOSA") out.push_back(InsPosA());
    else if (type == "PRTKA") out.push_back(Prtka());
    else if (type == "POSA") out.push_back(Posa());
    else if (type == "GPGGA") out.push_back(Gga());
    else if (type == "GPGSA") out.push_back(Gsa());
    else if (type == "GPGSV") for (const std::string& s : Gsv()) out.push_back(s);
    else if (type == "GPRMC") out.push_back(Rmc());
    else if (type == "GPGLL") out.push_back(Gll());
    else if (type == "RANGECMPA" || type == "ALMANACA" || type == "RAWEPHEMA" || type == "IONUTCA") {
      std::string body = type + "," + computerPort_ + ",0,80.0,FINESTEERING," + std::to_string(kWeek) + "," +
                         Seconds() + ",02000000,0000,2724;1,";
      for (int k = 0; k < 24; ++k) body += "0123456789abcdef"[rng_() % 16];
      out.push_back("#" + body + "*" + NovAtelCrc(body));
    }
  }
  return out;
}

std::string GnssReceiver::Epoch() {
  Advance();
  return Emit(Due());
}

std::string GnssReceiver::Lines(const std::vector<std::string>& lines) {
  Advance();
  return Emit(lines);
}

std::string GnssReceiver::Emit(const std::vector<std::string>& lines) {
  if (silent_ || pulled_) return "";
  std::string out;
  const bool oneShot = fault_ != GnssFault::None && epoch_ == faultAt_ && !lines.empty();
  const std::size_t victim = oneShot ? rng_() % lines.size() : lines.size();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string line = lines[i];
    if (garbage_) {
      const int n = 4 + static_cast<int>(rng_() % 20);
      for (int k = 0; k < n; ++k) {
        char c = static_cast<char>(rng_() % 256);
        if (c == '$' || c == '#' || c == '\r' || c == '\n') c = '~';
        out.push_back(c);
      }
    }
    std::string end = "\r\n";
    if (i == victim && line.size() > 2) {
      const std::size_t at = 1 + rng_() % (line.size() - 2);
      switch (fault_) {
        case GnssFault::Cut:
          line.resize(at);
          end.clear();
          break;
        case GnssFault::Dollar: line.insert(at, "$"); break;
        case GnssFault::Fields:
          if (auto comma = line.find(',', at); comma != std::string::npos) {
            auto next = line.find(',', comma + 1);
            line.erase(comma, next == std::string::npos ? std::string::npos : next - comma);
          }
          break;
        case GnssFault::Pull:
          out += line.substr(0, line.size() / 2);
          pulled_ = true;
          return out;
        default: break;
      }
    }
    out += line + end;
  }
  return out;
}

std::string GnssReceiver::Seconds() const { return Printf("%.3f", seconds_); }

std::string GnssReceiver::NovAtelHeader(const std::string& name) const {
  // The last header field is the receiver's software build: four digits on the older
  // generations, five on the newest.
  const char* build = options_.kind == "PP7" ? "16248" : "2724";
  return name + "," + computerPort_ + ",0,85.0,FINESTEERING," + std::to_string(kWeek) + "," + Seconds() +
         ",02000000,cdba," + build;
}

std::string GnssReceiver::BestPosA() const {
  const FixWords w = Words(options_.fix);
  const bool none = options_.fix == GnssFix::None;
  const int used = none ? 0 : 10;
  std::string body = NovAtelHeader("BESTPOSA") + ";" + w.status + "," + w.type + "," +
                     Printf("%.11f,%.11f,%.4f,17.0000,WGS84,%.4f,%.4f,%.4f,\"0\",1.000,0.000,%d,%d,%d,%d,0,00,00,33",
                            none ? 0.0 : position_.lat, none ? 0.0 : position_.lon, none ? 0.0 : position_.height,
                            w.sigmaN, w.sigmaE, w.sigmaH, options_.satellites, used, used, none ? 0 : 8);
  return "#" + body + "*" + NovAtelCrc(body);
}

std::string GnssReceiver::DualAntennaHeadingA() const {
  const FixWords w = Words(options_.fix);
  std::string body = NovAtelHeader("DUALANTENNAHEADINGA") + ";" + w.status + "," + w.type + "," +
                     Printf("1.250000000,%.9f,0.412000000,0.0,0.083000000,0.155000000,\"0\",%d,10,10,8,04,01,00,33",
                            heading_, options_.satellites);
  return "#" + body + "*" + NovAtelCrc(body);
}

std::string GnssReceiver::InsPosA() const {
  std::string body = NovAtelHeader("INSPOSA") + ";" + std::to_string(kWeek) + "," + Seconds() + "," +
                     Printf("%.11f,%.11f,%.4f,INS_SOLUTION_GOOD", position_.lat, position_.lon, position_.height);
  return "#" + body + "*" + NovAtelCrc(body);
}

std::string GnssReceiver::Prtka() const {
  const FixWords w = Words(options_.fix);
  const bool none = options_.fix == GnssFix::None;
  std::string body = Printf("PRTKA,%d,%s,0.000,%d,%d,%d,%.9f,%.9f,%.3f,17.000,61,%.3f,%.3f,%.3f,0,%d,%d,0,0", kWeek,
                            Seconds().c_str(), options_.satellites, none ? 0 : 10, none ? 0 : 8,
                            none ? 0.0 : position_.lat, none ? 0.0 : position_.lon, none ? 0.0 : position_.height,
                            w.sigmaN, w.sigmaE, w.sigmaH, w.prtkaRtk, w.prtkaPosition);
  return "$" + body + "*" + NmeaChecksum(body);
}

std::string GnssReceiver::Posa() const {
  const FixWords w = Words(options_.fix);
  std::string body = Printf("POSA,%d,%s,%.9f,%.9f,%.3f,17.000,61,%.3f,%.3f,%.3f,0", kWeek, Seconds().c_str(),
                            position_.lat, position_.lon, position_.height, w.sigmaN, w.sigmaE, w.sigmaH);
  return "$" + body + "*" + NmeaChecksum(body);
}

namespace {
std::string Utc(double weekSeconds) {
  double day = std::fmod(weekSeconds - kLeapSeconds, 86400);
  int hh = static_cast<int>(day / 3600), mm = static_cast<int>(day / 60) % 60;
  double ss = day - hh * 3600 - mm * 60;
  return Printf("%02d%02d%05.2f", hh, mm, ss);
}
}  // namespace

std::string GnssReceiver::Gga() const {
  const FixWords w = Words(options_.fix);
  const bool none = options_.fix == GnssFix::None;
  std::string body = options_.talker + "GGA," + Utc(seconds_) + ",";
  if (none) {
    body += ",,,,0,00,99.9,,M,,M,,";
  } else {
    body += NmeaAngle(position_.lat, 2) + (south_ ? ",S," : ",N,") + NmeaAngle(position_.lon, 3) +
            (south_ ? ",W," : ",E,") + Printf("%d,%02d,0.9,%.3f,M,17.000,M,1.0,0000", w.ggaQuality, 10, position_.height);
  }
  return "$" + body + "*" + NmeaChecksum(body);
}

std::string GnssReceiver::Gsa() const {
  std::string body = options_.talker + "GSA,M,3";
  int listed = 0;
  for (const Sat& s : Satellites(options_.satellites, epoch_)) {
    if (s.snr == 0 || listed == 12) continue;
    body += Printf(",%02d", s.prn);
    ++listed;
  }
  for (; listed < 12; ++listed) body += ",";
  body += ",1.6,0.9,1.3";
  return "$" + body + "*" + NmeaChecksum(body);
}

std::vector<std::string> GnssReceiver::Gsv() const {
  const std::vector<Sat> sats = Satellites(options_.satellites, epoch_);
  const int total = (static_cast<int>(sats.size()) + 3) / 4;
  std::vector<std::string> out;
  for (int m = 0; m < total; ++m) {
    std::string body = options_.talker + Printf("GSV,%d,%d,%02d", total, m + 1, static_cast<int>(sats.size()));
    for (std::size_t k = static_cast<std::size_t>(m) * 4; k < sats.size() && k < static_cast<std::size_t>(m) * 4 + 4; ++k)
      body += Printf(",%02d,%02d,%03d,%02d", sats[k].prn, sats[k].elevation, sats[k].azimuth, sats[k].snr);
    out.push_back("$" + body + "*" + NmeaChecksum(body));
  }
  return out;
}

std::string GnssReceiver::Rmc() const {
  const bool none = options_.fix == GnssFix::None;
  std::string body = "GPRMC," + Utc(seconds_) + (none ? ",V," : ",A,") + NmeaAngle(position_.lat, 2) +
                     (south_ ? ",S," : ",N,") + NmeaAngle(position_.lon, 3) + (south_ ? ",W," : ",E,") +
                     Printf("1.2,%.1f,241126,,,%c", heading_, none ? 'N' : 'D');
  return "$" + body + "*" + NmeaChecksum(body);
}

std::string GnssReceiver::Gll() const {
  const bool none = options_.fix == GnssFix::None;
  std::string body = "GPGLL," + NmeaAngle(position_.lat, 2) + (south_ ? ",S," : ",N,") + NmeaAngle(position_.lon, 3) +
                     (south_ ? ",W," : ",E,") + Utc(seconds_) + (none ? ",V,N" : ",A,D");
  return "$" + body + "*" + NmeaChecksum(body);
}

}  // namespace tavik::sim
