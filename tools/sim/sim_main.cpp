// tavik-sim: plays a total station on a pseudo-terminal (or a given serial device).
// It prints the device path for TAVIK's COM port on its first line, then answers the
// family's requests from a scene. Commands on standard input: fire, next, target N,
// fault KIND, pull (the cable is pulled), quit. With --dump FILE the instrument holds a
// memory dump: "fire" (or --auto once) sends the file's bytes as they stand, as the
// instrument's data output would. With --gnss KIND it plays a GNSS
// receiver instead (gnss_main.cpp), with --sounder KIND or --motion TSS_DMS3 a depth
// sounder or the motion sensor (sounder.cpp).
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>

#include "tools/sim/args.h"
#include "tools/sim/instrument.h"
#include "tools/sim/gnss.h"
#include "tools/sim/pty.h"
#include "tools/sim/sounder.h"

namespace {

using namespace tavik::sim;

const char* kUsage =
    "usage: tavik-sim --scene FILE [--family SET|GTS22X|GTS211D|Leica|Trimble|Trimble3600|PENTAX]\n"
    "                 [--device PATH] [--fault KIND[@N]] [--garbage N] [--hold] [--auto MS]\n"
    "                 [--record FILE] [--model NAME] [--serial N] [--dump FILE] [--verbose]\n"
    "faults: e200 tilt garbled half silence face2 disconnect\n"
    "       tavik-sim --gnss KIND ... (tavik-sim --gnss --help)\n"
    "       tavik-sim --sounder KIND | --motion TSS_DMS3 ... (tavik-sim --sounder x --help)\n";

}  // namespace

int main(int argc, char** argv) {
  signal(SIGPIPE, SIG_IGN);
  for (int i = 1; i < argc; ++i)
    if (std::string(argv[i]) == "--gnss") return GnssMain(argc, argv);
  for (int i = 1; i < argc; ++i)
    if (std::string(argv[i]) == "--sounder" || std::string(argv[i]) == "--motion") return SounderMain(argc, argv);
  std::string familyName = "SET", scenePath, device, faultText, recordPath, dumpPath;
  Options options;
  int autoMs = -1;
  bool verbose = false;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto value = [&] { return OptionValue(argc, argv, i, kUsage); };
    if (a == "--family") familyName = value();
    else if (a == "--scene") scenePath = value();
    else if (a == "--device") device = value();
    else if (a == "--fault") faultText = value();
    else if (a == "--garbage") options.garbage = std::atoi(value().c_str());
    else if (a == "--hold") options.hold = true;
    else if (a == "--auto") autoMs = std::atoi(value().c_str());
    else if (a == "--record") recordPath = value();
    else if (a == "--model") options.model = value();
    else if (a == "--serial") options.serial = value();
    else if (a == "--dump") dumpPath = value();
    else if (a == "--verbose") verbose = true;
    else if (a == "--help" || a == "-h") {
      std::cout << kUsage;
      return 0;
    } else {
      std::cerr << "unknown argument " << a << "\n" << kUsage;
      return 2;
    }
  }
  SimFamily family;
  if (!ParseFamily(familyName, family)) {
    std::cerr << "unknown family " << familyName << "\n" << kUsage;
    return 2;
  }
  if (scenePath.empty()) {
    std::cerr << "a scene is needed\n" << kUsage;
    return 2;
  }
  Scene scene;
  std::string error;
  if (!LoadScene(scenePath, scene, error)) {
    std::cerr << scenePath << ": " << error << "\n";
    return 1;
  }
  std::string dump;
  if (!dumpPath.empty()) {
    std::ifstream in(dumpPath, std::ios::binary);
    if (!in) {
      std::cerr << dumpPath << ": cannot be read\n";
      return 1;
    }
    dump.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  Instrument instrument(family, scene, options);
  if (!faultText.empty()) {
    const auto [kind, at] = SplitFaultSpec(faultText);
    Fault f;
    if (!ParseFault(kind, f)) {
      std::cerr << "unknown fault " << kind << "\n" << kUsage;
      return 2;
    }
    instrument.Arm(f, at);
  }

  Line lineEnd;
  if (!OpenLine(device, lineEnd)) return 1;
  const int fd = lineEnd.fd, slave = lineEnd.slave;
  std::cout << lineEnd.path << std::endl;

  std::ofstream record;
  if (!recordPath.empty()) record.open(recordPath, std::ios::binary | std::ios::app);

  auto send = [&](const std::string& bytes) {
    if (bytes.empty()) return true;
    if (verbose) std::cerr << "sim> " << bytes.size() << " bytes\n";
    return WriteAll(fd, bytes);
  };
  auto pull = [&]() {
    if (verbose) std::cerr << "sim: cable pulled\n";
    if (slave >= 0) close(slave);
    close(fd);
    std::exit(0);
  };

  bool stdinOpen = true;
  std::string stdinLine;
  for (;;) {
    pollfd fds[2] = {{fd, POLLIN, 0}, {stdinOpen ? STDIN_FILENO : -1, POLLIN, 0}};
    int n = poll(fds, 2, autoMs > 0 ? autoMs : -1);
    if (n < 0) {
      if (errno == EINTR) continue;
      break;
    }
    if (n == 0) {  // the user fires at the instrument on a fixed beat
      if (!dump.empty()) {
        send(dump);  // the data output is started once
        autoMs = -1;
        continue;
      }
      if (!send(instrument.Fire())) break;
      continue;
    }
    if (fds[0].revents & POLLIN) {
      char buf[512];
      ssize_t got = read(fd, buf, sizeof buf);
      if (got <= 0) {
        if (got < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        break;
      }
      if (record.is_open()) {
        record.write(buf, got);
        record.flush();
      }
      for (ssize_t i = 0; i < got; ++i) {
        if (!send(instrument.Feed(buf[i]))) return 1;
        if (instrument.Disconnecting()) pull();
      }
    } else if (fds[0].revents & (POLLERR | POLLHUP)) {
      usleep(10000);  // nobody on the other end yet
    }
    if (stdinOpen && (fds[1].revents & (POLLIN | POLLHUP))) {
      char c;
      ssize_t got = read(STDIN_FILENO, &c, 1);
      if (got <= 0) {
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
      if (cmd == "fire" && !dump.empty()) {
        send(dump);
      } else if (cmd == "fire") {
        send(instrument.Fire());
        if (instrument.Disconnecting()) pull();
      } else if (cmd == "next") {
        instrument.NextTarget();
      } else if (cmd == "target") {
        if (!instrument.SelectTarget(static_cast<std::size_t>(std::atoi(arg.c_str())))) std::cerr << "no such target\n";
      } else if (cmd == "fault") {
        Fault f;
        if (ParseFault(arg, f)) instrument.Arm(f);
        else std::cerr << "unknown fault " << arg << "\n";
      } else if (cmd == "pull") {
        pull();
      } else if (cmd == "quit") {
        break;
      }
    }
  }
  if (slave >= 0) close(slave);
  close(fd);
  return 0;
}
