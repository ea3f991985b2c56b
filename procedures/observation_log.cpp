#include "procedures/observation_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/angles.h"

namespace tavik::obslog {
namespace {

std::string F3(double v) { return num::Format(v, "0.000"); }
std::string F2(double v) { return num::Format(v, "0.00"); }

// A DDDMMSS reading split as degrees, minutes and seconds digits: 1234512 -> 123, 45, 12.
struct RawParts {
  std::string deg, min, sec;
};
RawParts SplitRaw(int32_t raw) {
  const int64_t a = raw < 0 ? -static_cast<int64_t>(raw) : raw;
  RawParts p;
  p.deg = std::to_string(a / 10000);
  if (raw < 0) p.deg.insert(0, "-");
  p.min = num::Format(static_cast<double>((a / 100) % 100), "00");
  p.sec = num::Format(static_cast<double>(a % 100), "00");
  return p;
}

}  // namespace

std::string NumberForm(double value) {
  std::string s = num::Plain(value);
  if (!(value < 0)) s.insert(0, " ");
  return s + " ";
}

std::string NowText() {
  std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y/%m/%d %H:%M:%S", &tm);
  return buf;
}

std::string SetupMarkLine(const std::string& dateTime) { return NumberForm(-99) + ", " + dateTime; }

std::string StationLine(const std::string& stationName, double E, double N, double H,
                        double instrumentHeight) {
  return stationName + "," + F3(E) + "," + F3(N) + "," + F3(H) + "," + F2(instrumentHeight);
}

std::string BacksightLine(const std::string& backsightName, double E, double N, double H,
                          int32_t hzRaw, int32_t vRaw, double slope) {
  return text::UpperAscii(backsightName) + "," + F3(E) + "," + F3(N) + "," + F3(H) + "," +
         NumberForm(hzRaw) + "," + NumberForm(vRaw) + "," + F3(slope);
}

std::string ObservationLine(int32_t hzRaw, int32_t vRaw, double slope, double targetHeight,
                            const std::string& dateTime) {
  return num::Format(hzRaw, "00000") + "," + NumberForm(vRaw) + "," + F3(slope) + "," +
         F2(targetHeight) + ", " + dateTime;
}

std::string StakeLine(const StakeRecord& r) {
  int16_t d = 0, m = 0;
  double s = 0;
  PackedToDms(r.HzRaw, d, m, s);
  const RawParts v = SplitRaw(r.VRaw);
  return r.TargetName + "," + F3(r.E) + "," + F3(r.N) + "," + F3(r.H) + "," + r.StationName + "," +
         F3(r.StationE) + "," + F3(r.StationN) + "," + F3(r.StationH) + "," +
         NumberForm(r.InstrumentHeight) + "," + text::Trim(r.BacksightName) + "," + F3(r.BacksightE) +
         "," + F3(r.BacksightN) + "," + num::Format(d, "0") + "-" + num::Format(m, "00") + "-" +
         num::Format(s, "0.00") + "," + v.deg + "-" + v.min + "-" + v.sec + "," + F3(r.Slope) + "," +
         NumberForm(r.TargetHeight);
}

std::string MacStationLine(const std::string& stationName, const std::string& backsightName) {
  return stationName + " " + text::UpperAscii(backsightName);
}

std::string MacShotLine(const std::string& pointName, int32_t packedTurned, int32_t vRaw, double slope) {
  const RawParts v = SplitRaw(vRaw);
  const std::string vText = v.deg + "." + v.min + v.sec;
  const std::string name = text::Trim(pointName);
  if (packedTurned == 0) return name + "  0.0000 " + vText + " " + F3(slope) + " ";
  const RawParts h = SplitRaw(packedTurned);
  return name + " " + h.deg + "." + h.min + h.sec + " " + vText + " " + F3(slope) + " ";
}

bool AppendLine(const std::string& path, const std::string& lineUtf8) {
  if (path.empty()) return false;
  const std::string bytes = text::ToCp950(lineUtf8) + "\r\n";
  const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  std::size_t done = 0;
  bool ok = true;
  while (done < bytes.size()) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      ok = false;
      break;
    }
    done += static_cast<std::size_t>(n);
  }
  if (ok && ::fdatasync(fd) != 0) ok = false;
  if (::close(fd) != 0) ok = false;
  return ok;
}

}  // namespace tavik::obslog
