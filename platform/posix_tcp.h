// ui::TcpLink over plain POSIX sockets, for tavik-tool (which has no Qt). The socket is
// non-blocking; the caller's poll loop asks for Fd() and Events() and hands the result
// to Process(), which runs the callbacks. The host name is looked up with a blocking
// getaddrinfo, which a command-line tool can afford.
#pragma once

#include <string>

#include "platform/net.h"

namespace tavik::ui {

class PosixTcpLink : public TcpLink {
 public:
  ~PosixTcpLink() override;
  void Connect(const std::string& host, int port) override;
  void Send(std::string_view bytes) override;
  void Close() override;

  int Fd() const { return fd_; }
  // The poll events wanted now (POLLIN, and POLLOUT while connecting or with bytes
  // waiting to go).
  short Events() const;
  void Process(short revents);

 private:
  void Fail(const std::string& why);
  int fd_ = -1;
  bool connecting_ = false;
  std::string pending_;  // bytes the socket did not take yet
  std::string failure_;  // a failure found inside Connect, reported by the next Process
};

}  // namespace tavik::ui
