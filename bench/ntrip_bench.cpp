// Correction latency and throughput of the NTRIP client on the loopback: a caster in a
// thread of this process sends RTCM 3 frames over TCP with the NTRIP 1.0 answer; the
// program's session, over the tool's socket end and poll loop, writes them to a
// pseudo-terminal as it would to the receiver's port. Latency is from just before the
// caster's send to just after our write on the serial side, frame by frame (one frame
// in flight at a time); throughput is with the caster sending as fast as it can.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "instruments/ntrip.h"
#include "platform/posix_tcp.h"

namespace {

using Clock = std::chrono::steady_clock;

std::string Frame(int n) {
  std::string f = "\xd3";
  const std::size_t len = 120;  // a typical MSM message's size
  f += static_cast<char>(len >> 8);
  f += static_cast<char>(len & 0xff);
  for (std::size_t k = 0; k < len; ++k) f += static_cast<char>((n + k) & 0xff);
  const uint32_t crc = tavik::ntrip::Crc24q(reinterpret_cast<const unsigned char*>(f.data()), f.size());
  f += static_cast<char>(crc >> 16);
  f += static_cast<char>(crc >> 8);
  f += static_cast<char>(crc);
  return f;
}

// A listening socket on a free loopback port.
int Listen(int& port) {
  int s = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
  ::listen(s, 1);
  socklen_t len = sizeof a;
  ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &len);
  port = ntohs(a.sin_port);
  return s;
}

// Accepts the client, reads its request and answers as a 1.0 caster.
int Accept(int listener) {
  int c = ::accept(listener, nullptr, nullptr);
  int one = 1;
  ::setsockopt(c, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
  std::string req;
  char buf[1024];
  while (req.find("\r\n\r\n") == std::string::npos) {
    const ssize_t n = ::recv(c, buf, sizeof buf, 0);
    if (n <= 0) break;
    req.append(buf, static_cast<std::size_t>(n));
  }
  ::send(c, "ICY 200 OK\r\n", 12, MSG_NOSIGNAL);
  return c;
}

struct SerialSide {
  int master = -1, slave = -1;
  SerialSide() {
    master = ::posix_openpt(O_RDWR | O_NOCTTY);
    ::grantpt(master);
    ::unlockpt(master);
    slave = ::open(::ptsname(master), O_RDWR | O_NOCTTY);
    termios t{};
    ::tcgetattr(slave, &t);
    ::cfmakeraw(&t);
    ::tcsetattr(slave, TCSANOW, &t);
    ::fcntl(master, F_SETFL, O_NONBLOCK);
  }
  ~SerialSide() {
    ::close(slave);
    ::close(master);
  }
  void Drain() const {
    char buf[65536];
    while (::read(master, buf, sizeof buf) > 0) {
    }
  }
};

int64_t NowMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count();
}

void BM_CorrectionLatency(benchmark::State& st) {
  constexpr int kFrames = 10000;
  const std::string frame = Frame(7);
  for (auto _ : st) {
    int port = 0;
    const int listener = Listen(port);
    SerialSide serial;
    std::atomic<int> delivered{0};
    std::vector<Clock::time_point> sent(kFrames), written(kFrames);
    std::thread caster([&] {
      const int c = Accept(listener);
      for (int i = 0; i < kFrames; ++i) {
        while (delivered.load(std::memory_order_acquire) < i) std::this_thread::yield();
        sent[i] = Clock::now();
        ::send(c, frame.data(), frame.size(), MSG_NOSIGNAL);
      }
      while (delivered.load() < kFrames) std::this_thread::yield();
      ::close(c);
    });
    tavik::ui::PosixTcpLink link;
    tavik::ntrip::Settings s;
    s.host = "127.0.0.1";
    s.port = port;
    s.mount = "BENCH";
    tavik::ntrip::Session session(link, s);
    std::size_t bytes = 0;
    session.OnCorrections = [&](std::string_view b) {
      if (::write(serial.slave, b.data(), b.size()) < 0) return;
      const auto now = Clock::now();
      bytes += b.size();
      while (delivered.load() < kFrames && bytes >= (delivered.load() + 1) * frame.size()) {
        written[delivered.load()] = now;
        delivered.fetch_add(1, std::memory_order_release);
      }
      serial.Drain();
    };
    session.Start(NowMs());
    while (delivered.load() < kFrames) {
      pollfd p{link.Fd(), link.Events(), 0};
      ::poll(&p, 1, 100);
      link.Process(p.revents);
      session.Tick(NowMs());
    }
    caster.join();
    ::close(listener);
    std::vector<double> us(kFrames);
    for (int i = 0; i < kFrames; ++i)
      us[i] = std::chrono::duration<double, std::micro>(written[i] - sent[i]).count();
    std::sort(us.begin(), us.end());
    st.counters["p50_us"] = us[kFrames / 2];
    st.counters["p99_us"] = us[kFrames * 99 / 100];
    st.counters["max_us"] = us.back();
  }
}

void BM_CorrectionThroughput(benchmark::State& st) {
  constexpr std::size_t kBytes = 32u << 20;
  std::string block;
  for (int i = 0; block.size() < 65536; ++i) block += Frame(i);
  int64_t total = 0;
  for (auto _ : st) {
    int port = 0;
    const int listener = Listen(port);
    SerialSide serial;
    std::atomic<bool> done{false};
    std::thread drain([&] {
      while (!done.load()) {
        pollfd p{serial.master, POLLIN, 0};
        ::poll(&p, 1, 50);
        serial.Drain();
      }
    });
    std::thread caster([&] {
      const int c = Accept(listener);
      for (std::size_t sentBytes = 0; sentBytes < kBytes; sentBytes += block.size())
        ::send(c, block.data(), block.size(), MSG_NOSIGNAL);
      ::close(c);
    });
    tavik::ui::PosixTcpLink link;
    tavik::ntrip::Settings s;
    s.host = "127.0.0.1";
    s.port = port;
    s.mount = "BENCH";
    tavik::ntrip::Session session(link, s);
    std::size_t bytes = 0;
    session.OnCorrections = [&](std::string_view b) {
      std::size_t off = 0;
      while (off < b.size()) {
        const ssize_t n = ::write(serial.slave, b.data() + off, b.size() - off);
        if (n <= 0) break;
        off += static_cast<std::size_t>(n);
      }
      bytes += b.size();
    };
    session.Start(NowMs());
    while (bytes < kBytes) {
      pollfd p{link.Fd(), link.Events(), 0};
      ::poll(&p, 1, 100);
      link.Process(p.revents);
      session.Tick(NowMs());
    }
    caster.join();
    done = true;
    drain.join();
    ::close(listener);
    total += static_cast<int64_t>(bytes);
  }
  st.SetBytesProcessed(total);
}

BENCHMARK(BM_CorrectionLatency)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_CorrectionThroughput)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
