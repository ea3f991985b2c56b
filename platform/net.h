// A TCP connection as the NTRIP client and server use it: asked to connect, written to,
// and reporting what happens through callbacks on the thread that drives it (the
// user-interface thread in the program, the poll loop in tavik-tool). Nothing here
// blocks: Connect returns at once and OnConnected or OnClosed follows later.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tavik::ui {

class TcpLink {
 public:
  virtual ~TcpLink() = default;
  // Starts a connection; a link already open is closed first, without OnClosed.
  virtual void Connect(const std::string& host, int port) = 0;
  virtual void Send(std::string_view bytes) = 0;
  // Closes at once, without OnClosed.
  virtual void Close() = 0;
  std::function<void()> OnConnected;
  std::function<void(const char* data, std::size_t size)> OnBytes;
  // The connection failed or ended: refused, unreachable, reset, or closed by the peer.
  std::function<void(const std::string& why)> OnClosed;
};

}  // namespace tavik::ui
