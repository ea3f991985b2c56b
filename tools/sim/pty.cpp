#include "tools/sim/pty.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace tavik::sim {

void MakeRaw(int fd) {
  termios t{};
  if (tcgetattr(fd, &t) != 0) return;
  cfmakeraw(&t);
  tcsetattr(fd, TCSANOW, &t);
}

bool WriteAll(int fd, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0) {
      if (errno == EINTR || errno == EAGAIN) {
        usleep(1000);
        continue;
      }
      return false;
    }
    done += static_cast<std::size_t>(n);
  }
  return true;
}

bool OpenLine(const std::string& device, Line& line) {
  if (device.empty()) {
    line.fd = posix_openpt(O_RDWR | O_NOCTTY);
    if (line.fd < 0 || grantpt(line.fd) != 0 || unlockpt(line.fd) != 0) {
      std::perror("posix_openpt");
      return false;
    }
    line.path = ptsname(line.fd);
    // Holding the slave open keeps the line alive while TAVIK closes and reopens its
    // port, and lets us make it raw from the start.
    line.slave = open(line.path.c_str(), O_RDWR | O_NOCTTY);
    if (line.slave >= 0) MakeRaw(line.slave);
    return true;
  }
  line.fd = open(device.c_str(), O_RDWR | O_NOCTTY);
  if (line.fd < 0) {
    std::perror(device.c_str());
    return false;
  }
  MakeRaw(line.fd);
  line.path = device;
  return true;
}

void CloseLine(Line& line) {
  if (line.slave >= 0) close(line.slave);
  if (line.fd >= 0) close(line.fd);
  line.slave = line.fd = -1;
}

}  // namespace tavik::sim
