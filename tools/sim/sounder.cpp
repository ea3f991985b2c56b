#include "tools/sim/sounder.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "tools/sim/args.h"
#include "tools/sim/pty.h"

namespace tavik::sim {
namespace {

std::string Fixed(const char* format, double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, format, v);
  return buf;
}

// Centimetres as five digits, the form of the "A" lines.
std::string Cm5(double metres) { return Fixed("%05.0f", std::fabs(metres) * 100); }

std::string Checksummed(const std::string& body) {
  unsigned char sum = 0;
  for (std::size_t i = 1; i < body.size(); ++i) sum ^= static_cast<unsigned char>(body[i]);
  char buf[8];
  std::snprintf(buf, sizeof buf, "*%02X", sum);
  return body + buf + "\r\n";
}

}  // namespace

bool SounderKindKnown(const std::string& kind) {
  return kind == "E Sea Sound 206" || kind == "Ceastar" || kind == "HydroLite" || kind == "CEEECHO" ||
         kind == "HydroBox" || kind == "TSS_DMS3";
}

std::string SounderFrame(const std::string& kind, const SounderReading& r, long n) {
  if (kind == "E Sea Sound 206") {
    // The depth in characters 5 to 11 of the first field, the second depth in 2 to 8 of
    // the fourth; the motion half follows on its own line.
    return "E001" + Fixed("%7.2f", r.depth) + ",0,0,D" + Fixed("%7.2f", r.depth2) + ",0,01\r\n" + "HR" +
           Fixed("%5.2f", r.heave) + "," + Fixed("%.2f", r.roll) + "," + Fixed("%5.2f", r.pitch) + "\r\n";
  }
  if (kind == "Ceastar") {
    if (n % 2 == 0) return "A " + Cm5(r.depth) + " " + Cm5(r.depth2) + "\r\n";
    return "D," + Fixed("%.0f", r.depth * 100) + "," + Fixed("%.0f", r.depth2 * 100) + "\r\n";
  }
  if (kind == "HydroLite" || kind == "CEEECHO") {
    return Checksummed("$SDDBT," + Fixed("%.1f", r.depth / 0.3048) + ",f," + Fixed("%.2f", r.depth) + ",M," +
                       Fixed("%.1f", r.depth / 1.8288) + ",F");
  }
  if (kind == "HydroBox") {
    if (n % 2 == 0) return Checksummed("$SDDPT," + Fixed("%.2f", r.depth) + ",0.0");
    return "$SDODC,0,0,0,L," + Fixed("%.2f", r.depth2) + "\r\n";
  }
  if (kind == "TSS_DMS3") {
    // ":" and six status characters, pitch in 8 to 13, roll in 15 to 19, heave in 20 to 25.
    return ":00A000" + Fixed("%6.2f", r.pitch) + " " + Fixed("%5.2f", r.roll) + Fixed("%6.2f", r.heave) + "\r\n";
  }
  return {};
}

SounderReading SounderAt(double depth, long n) {
  const double t = n * 0.2;
  SounderReading r;
  r.depth = depth + 0.5 * std::sin(t / 7);
  r.depth2 = r.depth + 0.3;
  r.heave = 0.2 * std::sin(t);
  r.roll = 1.5 * std::sin(t / 3);
  r.pitch = 0.8 * std::cos(t / 2);
  return r;
}

namespace {

const char* kUsage =
    "usage: tavik-sim --sounder 'E Sea Sound 206'|Ceastar|HydroLite|CEEECHO|HydroBox [--depth M]\n"
    "       tavik-sim --motion TSS_DMS3\n"
    "                 [--device PATH] [--rate HZ] [--count N] [--garbage]\n"
    "The device path is the first line. Commands on standard input: depth M, quit.\n";

}  // namespace

int SounderMain(int argc, char** argv) {
  std::string kind, device;
  double depth = 12, rate = 5;
  long count = -1;
  bool garbage = false;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&] { return OptionValue(argc, argv, i, kUsage); };
    if (a == "--sounder" || a == "--motion") kind = value();
    else if (a == "--device") device = value();
    else if (a == "--depth") depth = std::atof(value().c_str());
    else if (a == "--rate") rate = std::atof(value().c_str());
    else if (a == "--count") count = std::atol(value().c_str());
    else if (a == "--garbage") garbage = true;
    else if (a == "--help" || a == "-h") {
      std::cout << kUsage;
      return 0;
    } else {
      std::cerr << "unknown argument " << a << "\n" << kUsage;
      return 2;
    }
  }
  if (!SounderKindKnown(kind)) {
    std::cerr << "unknown device " << kind << "\n" << kUsage;
    return 2;
  }
  if (!(rate > 0)) rate = 5;
  Line line;
  if (!OpenLine(device, line)) return 1;
  std::cout << line.path << std::endl;

  using Clock = std::chrono::steady_clock;
  const auto period = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / rate));
  auto next = Clock::now() + period;
  long n = 0;
  bool stdinOpen = true;
  std::string stdinLine;
  while (count < 0 || n < count) {
    const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(next - Clock::now()).count();
    pollfd fds[1] = {{stdinOpen ? STDIN_FILENO : -1, POLLIN, 0}};
    const int got = poll(fds, 1, wait > 0 ? static_cast<int>(wait) : 0);
    if (got > 0 && (fds[0].revents & (POLLIN | POLLHUP))) {
      char c;
      if (read(STDIN_FILENO, &c, 1) != 1) {
        stdinOpen = false;
        continue;
      }
      if (c != '\n') {
        stdinLine.push_back(c);
        continue;
      }
      std::istringstream words(stdinLine);
      stdinLine.clear();
      std::string cmd;
      words >> cmd;
      if (cmd == "depth") words >> depth;
      else if (cmd == "quit") break;
      else std::cerr << "commands: depth M, quit\n";
      continue;
    }
    if (Clock::now() < next) continue;
    next += period;
    std::string bytes = SounderFrame(kind, SounderAt(depth, n), n);
    // Line noise between frames, as a loose connector gives.
    if (garbage && n % 3 == 1) bytes = "\x7f#~\xff" + bytes.substr(bytes.size() / 2) + bytes;
    if (!WriteAll(line.fd, bytes)) break;
    ++n;
  }
  CloseLine(line);
  return 0;
}

}  // namespace tavik::sim
