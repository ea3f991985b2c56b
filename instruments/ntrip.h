// Corrections over the network: an NTRIP client that brings a caster's correction
// stream to the rover, and an NTRIP server that pushes the base receiver's stream to a
// caster's mount point. Both speak NTRIP 1.0 (ICY answers, SOURCE) and 2.0 (HTTP/1.1
// with Ntrip-Version and chunked transfer).
//
// Everything here is bytes and milliseconds: the connection is a ui::TcpLink and the
// time comes in with each call, so the program (Qt sockets on the user-interface
// thread) and tavik-tool (a poll loop) run this same code, and tests drive it by hand.
// The correction bytes are handed on untouched; the RTCM 3 framing is only looked at
// to count frames.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/net.h"

namespace tavik::ntrip {

enum class Version { V1, V2 };

// "HOST:PORT"; the port alone may be left out (2101). False on a malformed text.
bool ParseCaster(std::string_view text, std::string& host, int& port);
std::string Base64(std::string_view bytes);
// A mount point travels in the request line: at most 100 characters of the URL-safe
// set; a space or control character would break the request (empty when fine,
// else the refusal).
std::string CheckMount(std::string_view mount);

// One STR line of a source table (the fields a surveyor chooses by).
struct Stream {
  std::string mount, identifier, format, formatDetails, navSystem, network, country;
  double latitude = 0, longitude = 0;
  bool needsGga = false;  // the caster wants the rover's position (network RTK)
  std::string authentication;
};
// The STR lines of a source table body; CAS, NET, comments and broken lines are skipped.
std::vector<Stream> ParseSourceTable(std::string_view body);

// Counts RTCM 3 frames (0xD3, 10-bit length, CRC-24Q) in a byte stream split anywhere.
class Rtcm3Counter {
 public:
  void Feed(const char* data, std::size_t size);
  int64_t Frames() const { return frames_; }

 private:
  std::string frame_;
  std::size_t need_ = 0;
  int64_t frames_ = 0;
};
uint32_t Crc24q(const unsigned char* data, std::size_t size);

// The caster's answer to a request, fed as it arrives: the status line and headers,
// then the stream (de-chunked), a source table, or a refusal.
class Answer {
 public:
  enum class Kind { Pending, Stream, Table, Refused };
  // Takes bytes; stream bytes after the header go to `out` (appended).
  Kind Feed(const char* data, std::size_t size, std::string& out);
  // The connection ended: a source table or a refusal body read to the end is complete.
  Kind Finish();
  Kind kind() const { return kind_; }
  int Status() const { return status_; }
  const std::string& StatusText() const { return statusText_; }
  const std::string& Body() const { return body_; }  // source table or refusal text
  // Nothing at all came before the connection ended.
  bool Silent() const { return inHead_ && head_.empty(); }
  static constexpr std::size_t kMaxHeader = 16 * 1024;
  static constexpr std::size_t kMaxTable = 8 * 1024 * 1024;

 private:
  Kind Header(std::string& out);
  void ParseStatus(const std::string& first);
  void Dechunk(const char* data, std::size_t size, std::string& out);
  void AddBody(const char* data, std::size_t size);

  Kind kind_ = Kind::Pending;
  bool inHead_ = true;
  std::string head_;
  int status_ = 0;
  std::string statusText_, body_;
  bool chunked_ = false, table_ = false, tableDone_ = false;
  long long contentLength_ = -1;
  // Chunked decoding: reading a size line, chunk data, or the CR LF after it.
  enum class Chunk { Size, Data, End, Done } chunk_ = Chunk::Size;
  std::string sizeLine_;
  std::size_t chunkLeft_ = 0;
};

// The wait before reconnection number n (1, 2, 4 ... 60 s, then 60 s on).
int BackoffMs(int attempt);

enum class Role { Client, Server };

struct Settings {
  Role role = Role::Client;
  Version version = Version::V2;
  std::string host;
  int port = 2101;
  std::string mount, user, password;
  std::string gga;          // client: the rover's GGA sentence, sent up every ggaSeconds
  int ggaSeconds = 0;       // 0: never
  std::string agent = "NTRIP TAVIK/1.0";
};

std::string ClientRequest(const Settings& s);  // GET of the mount point ("" mount: the source table)
std::string ServerRequest(const Settings& s);  // SOURCE (1.0) or POST (2.0)

enum class State { Stopped, Connecting, Waiting /* for the answer */, Streaming, Retrying, Failed };

struct Stats {
  int64_t bytes = 0;       // correction bytes handed on (client) or pushed (server)
  int64_t frames = 0;      // RTCM 3 frames among them
  int reconnects = 0;      // connections made again after a drop
  double bytesPerSecond = 0;
  int64_t lastDataMs = -1; // when the last correction bytes came, -1 never
};

// One NTRIP connection kept alive: it connects, sends the request, reads the answer,
// hands on the stream, and after a drop waits by BackoffMs and connects again. A
// refusal of the caster (password, mount point, not NTRIP at all) stops it in Failed,
// since asking again would only be refused again. Tick() must come at least every
// second: it drives the waits, the GGA upload, the rate, and the rule that a
// connection silent for 60 s (a half-open TCP connection sends nothing and never
// closes) is dropped.
class Session {
 public:
  Session(ui::TcpLink& link, Settings settings);
  ~Session();
  void Start(int64_t nowMs);
  void Stop();
  void Tick(int64_t nowMs);
  // Server: bytes from the base receiver. They go up only while streaming; older
  // corrections are of no use to anyone, so nothing is kept while disconnected.
  void Push(std::string_view bytes, int64_t nowMs);
  // Client: the rover's latest GGA sentence (without or with CR LF).
  void SetGga(const std::string& sentence);

  State state() const { return state_; }
  const Stats& stats() const { return stats_; }
  const std::string& LastError() const { return lastError_; }
  // Ever streamed since Start: a failure to connect before that means the caster is
  // not reachable at all, which tavik-tool reports and ends on.
  bool EverStreamed() const { return everStreamed_; }
  const Settings& settings() const { return s_; }

  // Correction bytes from the caster, untouched (client).
  std::function<void(std::string_view)> OnCorrections;
  // The source table, when the caster answered the request with one (client), parsed.
  std::function<void(const std::vector<Stream>&)> OnSourceTable;
  std::function<void()> OnStateChanged;

  static constexpr int kSilenceMs = 60000;
  static constexpr int kConnectTimeoutMs = 15000;

 private:
  void Connected();
  void Bytes(const char* data, std::size_t size);
  void Closed(const std::string& why);
  void Answered(Answer::Kind kind);
  void Drop(const std::string& why);
  void Fail(const std::string& why);
  void Set(State s);
  void SendChunk(std::string_view bytes);
  std::string Where() const;

  ui::TcpLink& link_;
  Settings s_;
  State state_ = State::Stopped;
  Stats stats_;
  std::string lastError_;
  Answer answer_;
  Rtcm3Counter counter_;
  std::string scratch_;
  int64_t now_ = 0, since_ = 0, lastRx_ = 0, retryAt_ = 0, lastGga_ = 0;
  int64_t windowStart_ = 0, windowBytes_ = 0;
  int attempt_ = 0;
  bool everStreamed_ = false;
};

// An NMEA sentence with its checksum made again ("$GNGGA" read as "$GPGGA" no longer
// matches the one the receiver sent), without the line end.
std::string WithNmeaChecksum(std::string_view sentence);

// The texts for the state display.
std::string StateText(State s);

}  // namespace tavik::ntrip
