// ntrip-client and ntrip-server: the program's NTRIP client and server from the command
// line, for field support (is the caster reachable, are corrections coming). Both run
// the program's own session over a plain socket in a poll loop; the corrections are
// written as they arrive, unbuffered. A run ends with exit 0 after --seconds or on
// SIGINT or SIGTERM, with a summary on standard error; a caster that cannot be reached
// or that refuses ends it with the reason as one line and exit 1. After corrections
// have once flowed, a drop is not an end: the session reconnects as the program's does.
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

#include "instruments/ntrip.h"
#include "platform/posix_tcp.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

volatile std::sig_atomic_t g_stop = 0;
void OnSignal(int) { g_stop = 1; }

int64_t NowMs() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

int Usage(const char* text) {
  std::fprintf(stderr, "usage: tavik-tool %s\n", text);
  return 2;
}

// A serial device in raw mode, so that no byte is translated on the way; a file or
// pipe is used as it is.
int OpenDevice(const std::string& path, int flags) {
  const int fd = ::open(path.c_str(), flags | O_NOCTTY | O_CLOEXEC, 0644);
  if (fd >= 0 && ::isatty(fd)) {
    termios t{};
    if (::tcgetattr(fd, &t) == 0) {
      ::cfmakeraw(&t);
      ::tcsetattr(fd, TCSANOW, &t);
    }
  }
  return fd;
}

bool WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && errno == EAGAIN) {
      pollfd p{fd, POLLOUT, 0};
      ::poll(&p, 1, 100);
      continue;
    }
    if (n <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

struct Common {
  ntrip::Settings settings;
  int seconds = 0;  // 0: until a signal
  std::string device;
};

// Reads the options both commands share; `extra` takes the others. False after a
// usage message.
template <class Extra>
bool ParseCommon(const Args& args, const char* usage, const char* deviceFlag, Common& c, Extra extra) {
  bool caster = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (i + 1 >= args.size()) {
      Usage(usage);
      return false;
    }
    const std::string& v = args[++i];
    if (a == "--caster") {
      if (!ntrip::ParseCaster(v, c.settings.host, c.settings.port)) {
        std::fprintf(stderr, "tavik-tool: the caster is HOST:PORT, not '%s'\n", v.c_str());
        return false;
      }
      caster = true;
    } else if (a == "--mount") {
      c.settings.mount = v;
    } else if (a == "--seconds") {
      char* end = nullptr;
      const long n = std::strtol(v.c_str(), &end, 10);
      if (*end != '\0' || n <= 0) {
        std::fprintf(stderr, "tavik-tool: --seconds takes a whole number above 0, not '%s'\n", v.c_str());
        return false;
      }
      c.seconds = static_cast<int>(n);
    } else if (a == deviceFlag) {
      c.device = v;
    } else if (!extra(a, v)) {
      Usage(usage);
      return false;
    }
  }
  if (!caster || c.settings.mount.empty() || c.device.empty()) {
    Usage(usage);
    return false;
  }
  return true;
}

void Summary(const ntrip::Session& s) {
  const ntrip::Stats& st = s.stats();
  std::fprintf(stderr, "bytes %lld, frames %lld, reconnects %d\n", static_cast<long long>(st.bytes),
               static_cast<long long>(st.frames), st.reconnects);
}

// The loop both commands share. `input` is polled only while streaming (the server's
// source); `onInput` reads it and returns false at its end.
int Run(ntrip::Session& session, ui::PosixTcpLink& link, int seconds, int input,
        const std::function<bool(int64_t)>& onInput, const bool& outputFailed) {
  std::signal(SIGINT, OnSignal);
  std::signal(SIGTERM, OnSignal);
  std::signal(SIGPIPE, SIG_IGN);
  const int64_t start = NowMs();
  session.Start(start);
  bool inputDone = false;
  while (!g_stop) {
    const int64_t now = NowMs();
    if (seconds > 0 && now - start >= int64_t(seconds) * 1000) break;
    pollfd fds[2] = {{link.Fd(), link.Events(), 0}, {input, POLLIN, 0}};
    const bool reading = input >= 0 && !inputDone && session.state() == ntrip::State::Streaming;
    ::poll(fds, reading ? 2 : 1, 100);
    const int64_t after = NowMs();
    session.Tick(after);
    link.Process(fds[0].revents);
    if (outputFailed) return Refuse("無法寫出改正資料: " + std::string(std::strerror(errno)));
    if (reading && (fds[1].revents & (POLLIN | POLLHUP | POLLERR)) && !onInput(after)) inputDone = true;
    if (session.state() == ntrip::State::Failed) return Refuse(session.LastError());
    if (session.state() == ntrip::State::Retrying && !session.EverStreamed()) return Refuse(session.LastError());
    if (inputDone && link.Events() == POLLIN) break;  // the source ended and all went up
  }
  Summary(session);
  return 0;
}

int NtripClient(const Args& args) {
  const char* usage = "ntrip-client --caster HOST:PORT --mount M [--user U:P] [--gga \"$GPGGA,...\"] "
                      "[--seconds N] --to DEVICE|-";
  Common c;
  c.settings.role = ntrip::Role::Client;
  c.settings.ggaSeconds = 10;
  const bool ok = ParseCommon(args, usage, "--to", c, [&](const std::string& a, const std::string& v) {
    if (a == "--user") {
      const std::size_t colon = v.find(':');
      c.settings.user = v.substr(0, colon);
      c.settings.password = colon == std::string::npos ? "" : v.substr(colon + 1);
      return true;
    }
    if (a == "--gga") {
      c.settings.gga = v;
      return true;
    }
    return false;
  });
  if (!ok) return 2;
  if (std::string why = ntrip::CheckMount(c.settings.mount); !why.empty()) return Refuse(why);
  const int out = c.device == "-" ? 1 : OpenDevice(c.device, O_WRONLY | O_CREAT);
  if (out < 0) return Refuse("無法開啟 " + c.device + ": " + std::strerror(errno));
  ui::PosixTcpLink link;
  ntrip::Session session(link, c.settings);
  bool outputFailed = false;
  session.OnCorrections = [&](std::string_view bytes) {
    if (!outputFailed && !WriteAll(out, bytes)) outputFailed = true;
  };
  const int rc = Run(session, link, c.seconds, -1, nullptr, outputFailed);
  if (out != 1) ::close(out);
  return rc;
}

int NtripServer(const Args& args) {
  const char* usage = "ntrip-server --caster HOST:PORT --mount M [--password P] [--seconds N] --from DEVICE|-";
  Common c;
  c.settings.role = ntrip::Role::Server;
  c.settings.version = ntrip::Version::V1;  // a password alone is the 1.0 SOURCE login
  const bool ok = ParseCommon(args, usage, "--from", c, [&](const std::string& a, const std::string& v) {
    if (a != "--password") return false;
    c.settings.password = v;
    return true;
  });
  if (!ok) return 2;
  if (std::string why = ntrip::CheckMount(c.settings.mount); !why.empty()) return Refuse(why);
  const int in = c.device == "-" ? 0 : OpenDevice(c.device, O_RDONLY | O_NONBLOCK);
  if (in < 0) return Refuse("無法開啟 " + c.device + ": " + std::strerror(errno));
  ui::PosixTcpLink link;
  ntrip::Session session(link, c.settings);
  const bool outputFailed = false;
  const int rc = Run(
      session, link, c.seconds, in,
      [&](int64_t now) {
        char buf[4096];
        const ssize_t n = ::read(in, buf, sizeof buf);
        if (n > 0) session.Push(std::string_view(buf, static_cast<std::size_t>(n)), now);
        return n > 0 || (n < 0 && (errno == EAGAIN || errno == EINTR));
      },
      outputFailed);
  if (in != 0) ::close(in);
  return rc;
}

const Registrar kClient({"ntrip-client",
                         "--caster HOST:PORT --mount M [--user U:P] [--gga \"$GPGGA,...\"] [--seconds N] --to DEVICE|-",
                         NtripClient});
const Registrar kServer({"ntrip-server",
                         "--caster HOST:PORT --mount M [--password P] [--seconds N] --from DEVICE|-", NtripServer});

}  // namespace
}  // namespace tavik::tool
