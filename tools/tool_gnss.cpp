// The office check of a receiver's raw log: the bytes of a capture go through the
// receive path of the receiver kind exactly as they would come from the port, with the
// GPS state and the panels in memory, and every position that reaches the grid prints
// one CSV row with what the panels showed at that moment.
//
// Receivers end their lines with CR LF, but files saved by other software often have LF
// alone; in a file, a line feed that follows no carriage return therefore ends the line
// too (a CR is fed before it). The port path itself is unchanged.
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "core/document.h"
#include "core/numbers.h"
#include "geo/datum.h"
#include "instruments/gnss_commands.h"
#include "instruments/gps_receiver.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr const char* kArgs = "[--kind KIND] [--datum TWD97|TWD67|WGS84] [--meridian 121|119] [--gobs OUT] FILE|-";
constexpr const char* kUsage =
    "[--kind KIND] [--datum TWD97|TWD67|WGS84] [--meridian 121|119] [--gobs OUT] FILE|-   a receiver's capture as "
    "CSV, one row per position (--gobs: its GOBS log)";

int Usage(const std::string& why) {
  std::fprintf(stderr, "tavik-tool gnss: %s\nusage: tavik-tool gnss %s\n", why.c_str(), kArgs);
  return 2;
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "tavik-tool gnss: %s\n", message.c_str());
  return 1;
}

// A CSV text field, quoted only when it must be.
void AppendText(std::string& out, const std::string& s) {
  if (s.find_first_of(",\"\r\n") == std::string::npos) {
    out += s;
    return;
  }
  out += '"';
  for (char c : s) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

int Gnss(const Args& args) {
  GnssSetup setup;
  setup.GpsReceiverKind = "DL-4";
  GpsDatumSettings datum;
  std::string gobsPath, input;
  bool haveInput = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "--kind" || a == "--datum" || a == "--meridian" || a == "--gobs") {
      if (i + 1 >= args.size()) return Usage(a + " needs a value");
      const std::string& v = args[++i];
      if (a == "--kind") {
        bool known = false;
        for (const std::string& k : GnssReceiverKinds()) known = known || k == v;
        if (!known) {
          std::string kinds;
          for (const std::string& k : GnssReceiverKinds()) kinds += (kinds.empty() ? "" : ", ") + k;
          return Usage("unknown receiver kind '" + v + "' (" + kinds + ")");
        }
        setup.GpsReceiverKind = v;
      } else if (a == "--datum") {
        if (!SetDatumByName(datum, v)) return Usage("unknown datum '" + v + "' (TWD67, TWD97 or WGS84)");
      } else if (a == "--meridian") {
        if (v != "121" && v != "119") return Usage("the central meridian is 121 or 119, not '" + v + "'");
        datum.CentralMeridian = v == "121" ? 121 : 119;
      } else {
        gobsPath = v;
      }
    } else if (!haveInput && (a == "-" || a.empty() || a[0] != '-')) {
      input = a;
      haveInput = true;
    } else {
      return Usage(haveInput ? "more than one capture given" : "unknown option '" + a + "'");
    }
  }
  if (!haveInput) return Usage("no capture given");

  std::FILE* in = input == "-" ? stdin : std::fopen(input.c_str(), "rb");
  if (!in) return Fail(input + ": " + std::strerror(errno));
  struct stat st {};
  if (::fstat(::fileno(in), &st) == 0 && S_ISDIR(st.st_mode)) {
    std::fclose(in);
    return Fail(input + ": " + std::strerror(EISDIR));
  }

  GpsState gps;
  Document doc;  // no open map: no station, antenna height 0
  GpsReceiver rx(gps, setup, doc, datum);
  if (gobsPath.empty()) {
    rx.DiscardGobs = true;
  } else {
    // A fresh log of this capture, then one append per accepted sentence.
    std::FILE* g = std::fopen(gobsPath.c_str(), "wb");
    if (!g || std::fclose(g) != 0) {
      if (in != stdin) std::fclose(in);
      return Fail(gobsPath + ": " + std::strerror(errno));
    }
    doc.GobsPath = gobsPath;
  }

  std::string out = "seconds,lat,lon,height,E,N,fix,solution,satellites,label11,sigmaE,sigmaN,sigmaH\n";
  auto flush = [&] {
    std::fwrite(out.data(), 1, out.size(), stdout);
    out.clear();
  };
  rx.hooks.ContinuePositionUpdate = [&](double lon, double lat, double) {
    const GpsPanels& p = rx.Panels();
    auto number = [&](double v) {
      out += num::RoundTrip(v);
      out += ',';
    };
    number(gps.GpsSeconds);
    number(lat);
    number(lon);
    number(gps.GpsHeight);
    number(gps.GpsX);
    number(gps.GpsY);
    for (const std::string* s : {&p.Label6.Caption, &p.Label8.Caption, &p.Label12.Caption, &p.Label11.Caption}) {
      AppendText(out, *s);
      out += ',';
    }
    number(gps.GpsSigmaE);
    number(gps.GpsSigmaN);
    out += num::RoundTrip(gps.GpsSigmaH);
    out += '\n';
    if (out.size() > (1 << 16)) flush();
  };

  const GpsReceiver::Port port = ListenOnlyKind(setup.GpsReceiverKind) ? GpsReceiver::Port::MSComm_Axis3
                                                                       : GpsReceiver::Port::MSComm1;
  static char buf[1 << 16];
  std::string chunk;
  bool afterCr = false;
  std::size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, in)) > 0) {
    chunk.clear();
    for (std::size_t i = 0; i < n; ++i) {
      if (buf[i] == '\n' && !afterCr) chunk += '\r';
      afterCr = buf[i] == '\r';
      chunk += buf[i];
    }
    rx.Feed(port, chunk);
  }
  const int readError = std::ferror(in) ? errno : 0;
  if (in != stdin) std::fclose(in);
  flush();
  if (readError) return Fail(input + ": " + std::strerror(readError));
  return 0;
}

const Registrar gnssCommand({"gnss", kUsage, Gnss});

}  // namespace
}  // namespace tavik::tool
