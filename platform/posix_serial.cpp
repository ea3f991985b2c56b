#include "platform/posix_serial.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tavik::ui {
namespace {

bool Speed(int baud, speed_t& out) {
  switch (baud) {
    case 1200: out = B1200; return true;
    case 2400: out = B2400; return true;
    case 4800: out = B4800; return true;
    case 9600: out = B9600; return true;
    case 19200: out = B19200; return true;
    case 38400: out = B38400; return true;
    case 57600: out = B57600; return true;
    case 115200: out = B115200; return true;
    default: return false;
  }
}

}  // namespace

PosixSerialPort::PosixSerialPort(std::string path, std::string fixedSettings)
    : path_(std::move(path)), fixed_(std::move(fixedSettings)) {}

PosixSerialPort::~PosixSerialPort() { Close(); }

bool PosixSerialPort::Open() {
  if (fd_ >= 0) return true;
  PortSettings s;
  speed_t speed;
  if (!ParsePortSettings(fixed_.empty() ? Settings : fixed_, s) || !Speed(s.baud, speed)) {
    error_ = "設定錯誤: " + (fixed_.empty() ? Settings : fixed_);
    return false;
  }
  fd_ = ::open(path_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd_ < 0) {
    error_ = std::strerror(errno);
    return false;
  }
  termios t{};
  if (::tcgetattr(fd_, &t) == 0) {
    ::cfmakeraw(&t);
    ::cfsetispeed(&t, speed);
    ::cfsetospeed(&t, speed);
    t.c_cflag &= ~(CSIZE | PARENB | PARODD | CSTOPB);
    t.c_cflag |= (s.dataBits == 7 ? CS7 : CS8) | CLOCAL | CREAD;
    if (s.parity == 'e') t.c_cflag |= PARENB;
    if (s.parity == 'o') t.c_cflag |= PARENB | PARODD;
    if (s.stopBits == 2) t.c_cflag |= CSTOPB;
    ::tcsetattr(fd_, TCSANOW, &t);  // a pseudo-terminal takes what it can
  }
  error_.clear();
  return true;
}

void PosixSerialPort::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

void PosixSerialPort::Output(std::string_view bytes) {
  while (fd_ >= 0 && !bytes.empty()) {
    const ssize_t n = ::write(fd_, bytes.data(), bytes.size());
    if (n < 0 && (errno == EINTR || errno == EAGAIN)) {
      pollfd p{fd_, POLLOUT, 0};
      ::poll(&p, 1, 100);
      continue;
    }
    if (n <= 0) {
      error_ = std::strerror(errno);
      return;
    }
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
}

bool PosixSerialPort::Pump(int ms) {
  if (fd_ < 0) return false;
  pollfd p{fd_, POLLIN, 0};
  const int r = ::poll(&p, 1, ms);
  if (r <= 0) return r == 0 || errno == EINTR;
  char buf[256];
  const ssize_t n = ::read(fd_, buf, sizeof buf);
  if (n <= 0) {
    if (n < 0 && (errno == EAGAIN || errno == EINTR)) return true;
    error_ = n == 0 ? "裝置已關閉" : std::strerror(errno);
    Close();
    if (OnClosed) OnClosed();
    return false;
  }
  for (ssize_t i = 0; i < n && fd_ >= 0; ++i)
    if (OnByte) OnByte(buf[i]);
  return true;
}

}  // namespace tavik::ui
