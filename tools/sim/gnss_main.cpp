// tavik-sim --gnss KIND: a GNSS receiver on a pseudo-terminal. It prints the device
// path on its first line, records every byte it is sent (--record), and starts talking
// once the connect sequence is over (a listen-only kind at once): the synthetic walk of
// the sentences it was told to log, or the lines of a capture (--replay) at the pace of
// their own time stamps or at --rate HZ. Commands on standard input: fault KIND,
// fix TYPE, pull, quit.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "tools/sim/args.h"
#include "tools/sim/gnss.h"
#include "tools/sim/pty.h"

namespace tavik::sim {

namespace {

const char* kUsage =
    "usage: tavik-sim --gnss PP7|DL-RT2|DL-4|Flexpak|Axis3|單型GPS [--device PATH] [--record FILE]\n"
    "                 [--replay FILE] [--rate HZ] [--scene FILE] [--fix none|single|dgps|sbas|float|fixed]\n"
    "                 [--fault KIND[@EPOCH]] [--talker GP|GN] [--satellites N] [--quiet MS] [--verbose]\n"
    "faults: silence garbage cut dollar fields south pull\n"
    "scene: one position a line, LAT LON HEIGHT (degrees, metres)\n";

using Clock = std::chrono::steady_clock;

// A capture in epochs: a new epoch starts at a line whose time stamp differs from the
// current one; `gap` is the time from the previous epoch, in seconds (-1: not known).
struct Group {
  std::vector<std::string> lines;
  double gap = -1;
};

std::vector<Group> ReadCapture(std::istream& in) {
  std::vector<Group> out;
  std::string line;
  bool stamped = false;
  double current = 0;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) continue;
    double t = 0;
    const bool has = LineTime(line, t);
    if (out.empty() || (has && (!stamped || t != current))) {
      Group g;
      if (has && stamped) g.gap = t - current;
      out.push_back(g);
    }
    if (has) {
      stamped = true;
      current = t;
    }
    out.back().lines.push_back(line);
  }
  return out;
}

// Writes what the line takes now; a receiver does not wait for a closed port.
void Send(int fd, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return;
    }
    done += static_cast<std::size_t>(n);
  }
}

}  // namespace

int GnssMain(int argc, char** argv) {
  GnssOptions options;
  std::string device, recordPath, replayPath, scenePath, faultText;
  double rate = 0;
  int quietMs = 300;
  bool verbose = false;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&] { return OptionValue(argc, argv, i, kUsage); };
    if (a == "--gnss") options.kind = value();
    else if (a == "--device") device = value();
    else if (a == "--record") recordPath = value();
    else if (a == "--replay") replayPath = value();
    else if (a == "--rate") rate = std::atof(value().c_str());
    else if (a == "--scene") scenePath = value();
    else if (a == "--fault") faultText = value();
    else if (a == "--talker") options.talker = value();
    else if (a == "--satellites") options.satellites = std::clamp(std::atoi(value().c_str()), 0, 32);
    else if (a == "--quiet") quietMs = std::atoi(value().c_str());
    else if (a == "--verbose") verbose = true;
    else if (a == "--fix") {
      std::string f = value();
      if (!ParseGnssFix(f, options.fix)) {
        std::cerr << "unknown fix " << f << "\n" << kUsage;
        return 2;
      }
    } else if (a == "--help" || a == "-h") {
      std::cout << kUsage;
      return 0;
    } else {
      std::cerr << "unknown argument " << a << "\n" << kUsage;
      return 2;
    }
  }
  const std::vector<std::string> kinds = {"PP7", "DL-RT2", "DL-4", "Flexpak", "Axis3", "單型GPS"};
  if (std::find(kinds.begin(), kinds.end(), options.kind) == kinds.end()) {
    std::cerr << "unknown receiver kind " << options.kind << "\n" << kUsage;
    return 2;
  }
  if (options.talker != "GP" && options.talker != "GN") {
    std::cerr << "talker is GP or GN\n" << kUsage;
    return 2;
  }
  if (rate < 0 || rate > 1000) {
    std::cerr << "rate out of range\n" << kUsage;
    return 2;
  }
  std::vector<GnssPosition> scene;
  if (!scenePath.empty()) {
    std::ifstream in(scenePath);
    std::stringstream text;
    text << in.rdbuf();
    std::string error;
    if (!in || !ParseGnssScene(text.str(), scene, error)) {
      std::cerr << scenePath << ": " << (in ? error : "cannot be read") << "\n";
      return 1;
    }
  }
  std::vector<Group> capture;
  if (!replayPath.empty()) {
    std::ifstream in(replayPath, std::ios::binary);
    if (!in) {
      std::cerr << replayPath << ": cannot be read\n";
      return 1;
    }
    capture = ReadCapture(in);
  }
  GnssReceiver receiver(options, scene);
  if (!faultText.empty()) {
    const auto [kind, at] = SplitFaultSpec(faultText);
    GnssFault f;
    if (!ParseGnssFault(kind, f)) {
      std::cerr << "unknown fault " << kind << "\n" << kUsage;
      return 2;
    }
    receiver.Arm(f, at);
  }

  Line line;
  if (!OpenLine(device, line)) return 1;
  fcntl(line.fd, F_SETFL, fcntl(line.fd, F_GETFL) | O_NONBLOCK);
  std::cout << line.path << std::endl;
  std::ofstream record;
  if (!recordPath.empty()) record.open(recordPath, std::ios::binary | std::ios::app);

  const double period = rate > 0 ? 1 / rate : 1;
  bool talking = receiver.ListenOnly();
  bool heard = false;
  std::size_t next = 0;  // the next capture epoch
  Clock::time_point lastByte = Clock::now(), due = Clock::now();
  auto ms = [](Clock::duration d) { return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(d).count()); };
  auto quit = [&](int code) {
    CloseLine(line);
    return code;
  };

  bool stdinOpen = true;
  std::string stdinLine;
  for (;;) {
    const Clock::time_point now = Clock::now();
    if (!talking && heard && now - lastByte >= std::chrono::milliseconds(quietMs)) {
      talking = true;
      due = now;
      if (verbose) std::cerr << "sim: connect sequence over, " << receiver.Commands().size() << " commands\n";
    }
    if (talking && now >= due) {
      std::string out;
      if (replayPath.empty()) {
        out = receiver.Epoch();
        due += std::chrono::microseconds(static_cast<long long>(period * 1e6));
      } else if (next < capture.size()) {
        out = receiver.Lines(capture[next].lines);
        ++next;
        double gap = period;
        if (rate <= 0 && next < capture.size() && capture[next].gap >= 0) gap = std::min(capture[next].gap, 10.0);
        due += std::chrono::microseconds(static_cast<long long>(gap * 1e6));
      } else {
        due = now + std::chrono::hours(1);  // the capture is over: the receiver falls silent
        if (verbose) std::cerr << "sim: replay ended\n";
      }
      Send(line.fd, out);
      if (receiver.Pulled()) {
        if (verbose) std::cerr << "sim: cable pulled\n";
        return quit(0);
      }
      continue;
    }
    int timeout = -1;
    if (talking) timeout = std::max(0, ms(due - now));
    else if (heard) timeout = std::max(0, quietMs - ms(now - lastByte));
    pollfd fds[2] = {{line.fd, POLLIN, 0}, {stdinOpen ? STDIN_FILENO : -1, POLLIN, 0}};
    int n = poll(fds, 2, timeout);
    if (n < 0) {
      if (errno == EINTR) continue;
      break;
    }
    if (fds[0].revents & POLLIN) {
      char buf[512];
      ssize_t got = read(line.fd, buf, sizeof buf);
      if (got > 0) {
        if (record.is_open()) {
          record.write(buf, got);
          record.flush();
        }
        for (ssize_t i = 0; i < got; ++i) receiver.Feed(buf[i]);
        heard = heard || !receiver.Commands().empty();
        lastByte = Clock::now();
      }
    } else if (fds[0].revents & (POLLERR | POLLHUP)) {
      usleep(10000);  // nobody on the other end yet
    }
    if (stdinOpen && (fds[1].revents & (POLLIN | POLLHUP))) {
      char c;
      if (read(STDIN_FILENO, &c, 1) <= 0) {
        stdinOpen = false;
        continue;
      }
      if (c != '\n') {
        stdinLine.push_back(c);
        continue;
      }
      std::istringstream words(stdinLine);
      stdinLine.clear();
      std::string cmd, arg;
      words >> cmd >> arg;
      GnssFault f;
      GnssFix fix;
      if (cmd == "fault" && ParseGnssFault(arg, f)) receiver.Arm(f);
      else if (cmd == "fix" && ParseGnssFix(arg, fix)) receiver.SetFix(fix);
      else if (cmd == "pull") return quit(0);
      else if (cmd == "quit") break;
      else std::cerr << "commands: fault KIND, fix TYPE, pull, quit\n";
    }
  }
  return quit(0);
}

}  // namespace tavik::sim
