#include "platform/posix_tcp.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace tavik::ui {

PosixTcpLink::~PosixTcpLink() { Close(); }

void PosixTcpLink::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
  connecting_ = false;
  pending_.clear();
  failure_.clear();
}

void PosixTcpLink::Connect(const std::string& host, int port) {
  Close();
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int rc = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (rc != 0) {
    failure_ = ::gai_strerror(rc);
    return;
  }
  for (addrinfo* a = found; a; a = a->ai_next) {
    fd_ = ::socket(a->ai_family, a->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, a->ai_protocol);
    if (fd_ < 0) continue;
    int one = 1;
    ::setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    if (::connect(fd_, a->ai_addr, a->ai_addrlen) == 0 || errno == EINPROGRESS) {
      connecting_ = true;
      break;
    }
    failure_ = std::strerror(errno);
    ::close(fd_);
    fd_ = -1;
  }
  ::freeaddrinfo(found);
  if (fd_ >= 0) failure_.clear();
}

void PosixTcpLink::Fail(const std::string& why) {
  Close();
  if (OnClosed) OnClosed(why);
}

short PosixTcpLink::Events() const {
  if (fd_ < 0) return 0;
  if (connecting_) return POLLOUT;
  return static_cast<short>(POLLIN | (pending_.empty() ? 0 : POLLOUT));
}

void PosixTcpLink::Send(std::string_view bytes) {
  if (fd_ < 0 || connecting_) {
    pending_.append(bytes);
    return;
  }
  if (pending_.empty()) {
    const ssize_t n = ::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (n == static_cast<ssize_t>(bytes.size())) return;
    if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
      failure_ = std::strerror(errno);
      return;
    }
    bytes.remove_prefix(n > 0 ? static_cast<std::size_t>(n) : 0);
  }
  pending_.append(bytes);
}

void PosixTcpLink::Process(short revents) {
  if (!failure_.empty()) {
    const std::string why = failure_;
    Fail(why);
    return;
  }
  if (fd_ < 0) return;
  if (connecting_) {
    if (!(revents & (POLLOUT | POLLERR | POLLHUP))) return;
    int err = 0;
    socklen_t len = sizeof err;
    ::getsockopt(fd_, SOL_SOCKET, SO_ERROR, &err, &len);
    if (err != 0) {
      Fail(std::strerror(err));
      return;
    }
    connecting_ = false;
    if (OnConnected) OnConnected();
    return;
  }
  if ((revents & POLLOUT) && !pending_.empty()) {
    const ssize_t n = ::send(fd_, pending_.data(), pending_.size(), MSG_NOSIGNAL);
    if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
      Fail(std::strerror(errno));
      return;
    }
    if (n > 0) pending_.erase(0, static_cast<std::size_t>(n));
  }
  if (revents & (POLLIN | POLLERR | POLLHUP)) {
    char buf[16384];
    const ssize_t n = ::recv(fd_, buf, sizeof buf, 0);
    if (n > 0) {
      if (OnBytes) OnBytes(buf, static_cast<std::size_t>(n));
    } else if (n == 0) {
      Fail("連線被對方關閉");
    } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
      Fail(std::strerror(errno));
    }
  }
}

}  // namespace tavik::ui
