#include "instruments/ntrip.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "core/numbers.h"

namespace tavik::ntrip {

namespace {

bool StartsWithNoCase(std::string_view text, std::string_view word) {
  if (text.size() < word.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(text[i])) != std::tolower(static_cast<unsigned char>(word[i])))
      return false;
  return true;
}

std::string Trim(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r')) s.remove_suffix(1);
  return std::string(s);
}

// The value of a header in a block of header lines, "" when absent.
std::string HeaderValue(std::string_view head, std::string_view name) {
  std::size_t at = 0;
  while (at < head.size()) {
    std::size_t end = head.find('\n', at);
    if (end == std::string_view::npos) end = head.size();
    std::string_view line = head.substr(at, end - at);
    if (StartsWithNoCase(line, name) && line.size() > name.size() && line[name.size()] == ':')
      return Trim(line.substr(name.size() + 1));
    at = end + 1;
  }
  return "";
}

// The first line of a text, trimmed, for a one-line message.
std::string FirstLine(std::string_view text) {
  std::size_t start = text.find_first_not_of("\r\n \t");
  if (start == std::string_view::npos) return "";
  text.remove_prefix(start);
  return Trim(text.substr(0, text.find('\n')));
}

// Answers start with one of these words; anything else is not an NTRIP caster.
constexpr std::string_view kAnswerWords[] = {"ICY ", "HTTP/", "SOURCETABLE ", "ERROR", "OK"};

}  // namespace

bool ParseCaster(std::string_view text, std::string& host, int& port) {
  std::size_t colon = text.rfind(':');
  std::string_view h = text, p;
  if (colon != std::string_view::npos) {
    h = text.substr(0, colon);
    p = text.substr(colon + 1);
  }
  if (h.empty() || h.find_first_of(" /\t") != std::string_view::npos) return false;
  int value = 2101;
  if (colon != std::string_view::npos) {
    if (p.empty() || p.size() > 5 || !std::all_of(p.begin(), p.end(), [](char c) { return c >= '0' && c <= '9'; }))
      return false;
    value = std::atoi(std::string(p).c_str());
    if (value < 1 || value > 65535) return false;
  }
  host = std::string(h);
  port = value;
  return true;
}

std::string Base64(std::string_view bytes) {
  static const char table[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  std::size_t i = 0;
  for (; i + 2 < bytes.size(); i += 3) {
    uint32_t v = (uint8_t(bytes[i]) << 16) | (uint8_t(bytes[i + 1]) << 8) | uint8_t(bytes[i + 2]);
    for (int k = 18; k >= 0; k -= 6) out.push_back(table[(v >> k) & 63]);
  }
  if (i < bytes.size()) {
    uint32_t v = uint8_t(bytes[i]) << 16;
    if (i + 1 < bytes.size()) v |= uint8_t(bytes[i + 1]) << 8;
    out.push_back(table[(v >> 18) & 63]);
    out.push_back(table[(v >> 12) & 63]);
    out.push_back(i + 1 < bytes.size() ? table[(v >> 6) & 63] : '=');
    out.push_back('=');
  }
  return out;
}

std::string CheckMount(std::string_view mount) {
  if (mount.empty()) return "請指定掛載點";
  if (mount.size() > 100) return "掛載點名稱太長";
  for (char c : mount) {
    const auto u = static_cast<unsigned char>(c);
    if (u <= ' ' || u >= 0x7f || c == '/' || c == '?' || c == '#' || c == '%')
      return "掛載點名稱 \"" + std::string(mount) + "\" 不可有空白、斜線或特殊字元";
  }
  return "";
}

std::vector<Stream> ParseSourceTable(std::string_view body) {
  std::vector<Stream> out;
  std::size_t at = 0;
  std::vector<std::string_view> f;
  while (at < body.size()) {
    std::size_t end = body.find('\n', at);
    if (end == std::string_view::npos) end = body.size();
    std::string_view line = body.substr(at, end - at);
    at = end + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!StartsWithNoCase(line, "STR;")) continue;
    f.clear();
    std::size_t p = 0;
    while (p <= line.size()) {
      std::size_t q = line.find(';', p);
      if (q == std::string_view::npos) q = line.size();
      f.push_back(line.substr(p, q - p));
      p = q + 1;
    }
    auto field = [&](std::size_t i) { return i < f.size() ? Trim(f[i]) : std::string(); };
    Stream s;
    s.mount = field(1);
    if (s.mount.empty()) continue;
    s.identifier = field(2);
    s.format = field(3);
    s.formatDetails = field(4);
    s.navSystem = field(6);
    s.network = field(7);
    s.country = field(8);
    s.latitude = num::ParseLenient(field(9));
    s.longitude = num::ParseLenient(field(10));
    s.needsGga = field(11) == "1";
    s.authentication = field(15);
    out.push_back(std::move(s));
  }
  return out;
}

uint32_t Crc24q(const unsigned char* data, std::size_t size) {
  uint32_t crc = 0;
  for (std::size_t i = 0; i < size; ++i) {
    crc ^= static_cast<uint32_t>(data[i]) << 16;
    for (int k = 0; k < 8; ++k) {
      crc <<= 1;
      if (crc & 0x1000000) crc ^= 0x1864cfb;
    }
  }
  return crc & 0xffffff;
}

void Rtcm3Counter::Feed(const char* data, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    const auto c = static_cast<unsigned char>(data[i]);
    if (frame_.empty()) {
      if (c == 0xd3) frame_.push_back(static_cast<char>(c));
      continue;
    }
    frame_.push_back(static_cast<char>(c));
    const auto* b = reinterpret_cast<const unsigned char*>(frame_.data());
    bool resync = false;
    if (frame_.size() == 3) {
      need_ = 3 + (((b[1] & 3u) << 8) | b[2]) + 3;
      resync = (b[1] & 0xfc) != 0;  // six reserved bits must be zero: not a frame start
    } else if (frame_.size() > 3 && frame_.size() == need_) {
      const uint32_t crc = (uint32_t(b[need_ - 3]) << 16) | (uint32_t(b[need_ - 2]) << 8) | b[need_ - 1];
      if (Crc24q(b, need_ - 3) == crc) {
        ++frames_;
        frame_.clear();
      } else {
        resync = true;
      }
    }
    if (resync) {
      // A false start: the frame may begin at any later byte of what was taken.
      const std::string rest = frame_.substr(1);
      frame_.clear();
      Feed(rest.data(), rest.size());
    }
  }
}

Answer::Kind Answer::Feed(const char* data, std::size_t size, std::string& out) {
  if (kind_ == Kind::Stream) {
    if (chunked_)
      Dechunk(data, size, out);
    else
      out.append(data, size);
    return kind_;
  }
  if (kind_ != Kind::Pending) return kind_;
  if (inHead_) {
    head_.append(data, size);
    return Header(out);
  }
  // Reading the body of a source table or a refusal.
  if (chunked_) {
    std::string plain;
    Dechunk(data, size, plain);
    AddBody(plain.data(), plain.size());
  } else {
    AddBody(data, size);
  }
  return kind_;
}

Answer::Kind Answer::Header(std::string& out) {
  // Not even the start of an NTRIP answer: say so at once rather than waiting for a
  // line end that binary garbage may never bring.
  bool known = false;
  for (std::string_view w : kAnswerWords) {
    const std::size_t n = std::min(w.size(), head_.size());
    if (StartsWithNoCase(std::string_view(head_).substr(0, n), w.substr(0, n))) known = true;
  }
  if (!known) {
    statusText_ = "";
    return kind_ = Kind::Refused;
  }
  const std::size_t lineEnd = head_.find("\r\n");
  if (lineEnd == std::string::npos) {
    if (head_.size() > kMaxHeader) return kind_ = Kind::Refused;
    return kind_;
  }
  const std::string first = head_.substr(0, lineEnd);
  // NTRIP 1.0 "ICY 200 OK" (and the bare "OK" some casters give a server): the stream
  // follows the status line directly.
  if (StartsWithNoCase(first, "ICY 200") || first == "OK") {
    status_ = 200;
    statusText_ = first;
    kind_ = Kind::Stream;
    inHead_ = false;
    out.append(head_, lineEnd + 2, std::string::npos);
    head_.clear();
    return kind_;
  }
  if (StartsWithNoCase(first, "ERROR")) {
    statusText_ = first;
    return kind_ = Kind::Refused;
  }
  const bool http = StartsWithNoCase(first, "HTTP/");
  const bool table = StartsWithNoCase(first, "SOURCETABLE ");
  if (!http && !table) return kind_ = Kind::Refused;
  // Headers up to the empty line.
  std::size_t headEnd = head_.find("\r\n\r\n");
  std::size_t skip = 4;
  if (headEnd == std::string::npos) {
    headEnd = head_.find("\n\n");
    skip = 2;
  }
  if (headEnd == std::string::npos) {
    if (head_.size() > kMaxHeader) return kind_ = Kind::Refused;
    return kind_;
  }
  const std::string headers = head_.substr(lineEnd + 2, headEnd - lineEnd - 2);
  std::string rest = head_.substr(headEnd + skip);
  head_.clear();
  inHead_ = false;
  if (http) {
    ParseStatus(first);
  } else {
    status_ = 200;
    statusText_ = first;
  }
  chunked_ = StartsWithNoCase(HeaderValue(headers, "Transfer-Encoding"), "chunked");
  const std::string length = HeaderValue(headers, "Content-Length");
  if (!length.empty()) contentLength_ = std::atoll(length.c_str());
  table_ = table || StartsWithNoCase(HeaderValue(headers, "Content-Type"), "gnss/sourcetable");
  if (status_ == 200 && !table_) {
    kind_ = Kind::Stream;
    if (chunked_)
      Dechunk(rest.data(), rest.size(), out);
    else
      out += rest;
    return kind_;
  }
  if (status_ == 0) statusText_ = first;
  // A source table or a refusal: its body follows.
  if (chunked_) {
    std::string plain;
    Dechunk(rest.data(), rest.size(), plain);
    AddBody(plain.data(), plain.size());
  } else {
    AddBody(rest.data(), rest.size());
  }
  return kind_;
}

void Answer::AddBody(const char* data, std::size_t size) {
  const std::size_t before = body_.size();
  const std::size_t limit = table_ ? kMaxTable : 4096;
  body_.append(data, std::min(size, limit - std::min(limit, body_.size())));
  if (table_) {
    const std::size_t from = before > 20 ? before - 20 : 0;
    if (body_.find("ENDSOURCETABLE", from) != std::string::npos) tableDone_ = true;
  }
  const bool lengthDone = contentLength_ >= 0 && static_cast<long long>(body_.size()) >= contentLength_;
  if (table_ && (tableDone_ || lengthDone || chunk_ == Chunk::Done)) {
    tableDone_ = true;
    kind_ = Kind::Table;
  } else if (table_ && body_.size() >= kMaxTable) {
    statusText_ = "source table too large";
    kind_ = Kind::Refused;
  } else if (!table_ && (lengthDone || body_.size() >= limit || chunk_ == Chunk::Done)) {
    kind_ = Kind::Refused;
  }
}

void Answer::ParseStatus(const std::string& first) {
  const std::size_t sp = first.find(' ');
  status_ = sp == std::string::npos ? 0 : std::atoi(first.c_str() + sp + 1);
  statusText_ = sp == std::string::npos ? first : Trim(std::string_view(first).substr(sp + 1));
  // "401 Unauthorized" reads better as the reason alone after the number.
  const std::string code = std::to_string(status_);
  if (status_ != 0 && statusText_.compare(0, code.size(), code) == 0) statusText_ = Trim(statusText_.substr(code.size()));
}

Answer::Kind Answer::Finish() {
  if (kind_ != Kind::Pending) return kind_;
  if (inHead_) {
    // The caster closed before the empty line that ends the headers (a bare
    // "HTTP/1.0 401 Unauthorized" line, say): its status line still says why.
    const std::string first = FirstLine(head_);
    if (StartsWithNoCase(first, "HTTP/"))
      ParseStatus(first);
    else if (StartsWithNoCase(first, "ERROR"))
      statusText_ = first;
    return kind_ = Kind::Refused;
  }
  if (table_ && !body_.empty()) return kind_ = Kind::Table;
  return kind_ = Kind::Refused;
}

void Answer::Dechunk(const char* data, std::size_t size, std::string& out) {
  std::size_t i = 0;
  while (i < size && chunk_ != Chunk::Done) {
    switch (chunk_) {
      case Chunk::Size: {
        const char c = data[i++];
        if (c != '\n') {
          if (sizeLine_.size() < 64) sizeLine_.push_back(c);
          break;
        }
        const std::string hex = Trim(sizeLine_.substr(0, sizeLine_.find(';')));
        sizeLine_.clear();
        if (hex.empty()) break;  // a stray empty line between chunks
        char* end = nullptr;
        const unsigned long long n = std::strtoull(hex.c_str(), &end, 16);
        if (end == hex.c_str() || *end != '\0') {
          // Not a chunk size: the stream cannot be followed any further.
          chunk_ = Chunk::Done;
          if (kind_ == Kind::Stream) kind_ = Kind::Refused;
          statusText_ = "bad chunk";
          break;
        }
        chunkLeft_ = static_cast<std::size_t>(n);
        chunk_ = n == 0 ? Chunk::Done : Chunk::Data;
        break;
      }
      case Chunk::Data: {
        const std::size_t take = std::min(chunkLeft_, size - i);
        out.append(data + i, take);
        i += take;
        chunkLeft_ -= take;
        if (chunkLeft_ == 0) chunk_ = Chunk::End;
        break;
      }
      case Chunk::End:
        if (data[i++] == '\n') chunk_ = Chunk::Size;
        break;
      case Chunk::Done: break;
    }
  }
}

int BackoffMs(int attempt) {
  if (attempt <= 1) return 1000;
  if (attempt >= 7) return 60000;
  return std::min(60000, 1000 << (attempt - 1));
}

namespace {
std::string Auth(const Settings& s) {
  if (s.user.empty() && s.password.empty()) return "";
  return "Authorization: Basic " + Base64(s.user + ":" + s.password) + "\r\n";
}
}  // namespace

std::string ClientRequest(const Settings& s) {
  std::string r = "GET /" + s.mount;
  if (s.version == Version::V1) {
    r += " HTTP/1.0\r\nUser-Agent: " + s.agent + "\r\nAccept: */*\r\n";
  } else {
    r += " HTTP/1.1\r\nHost: " + s.host + ":" + std::to_string(s.port) +
         "\r\nNtrip-Version: Ntrip/2.0\r\nUser-Agent: " + s.agent + "\r\n";
  }
  r += "Connection: close\r\n" + Auth(s) + "\r\n";
  return r;
}

std::string ServerRequest(const Settings& s) {
  if (s.version == Version::V1)
    return "SOURCE " + s.password + " /" + s.mount + "\r\nSource-Agent: " + s.agent + "\r\nSTR: \r\n\r\n";
  return "POST /" + s.mount + " HTTP/1.1\r\nHost: " + s.host + ":" + std::to_string(s.port) +
         "\r\nNtrip-Version: Ntrip/2.0\r\nUser-Agent: " + s.agent + "\r\n" + Auth(s) +
         "Content-Type: gnss/data\r\nTransfer-Encoding: chunked\r\nConnection: close\r\n\r\n";
}

std::string WithNmeaChecksum(std::string_view sentence) {
  while (!sentence.empty() && (sentence.back() == '\r' || sentence.back() == '\n')) sentence.remove_suffix(1);
  const std::size_t star = sentence.find('*');
  std::string body(sentence.substr(0, star));
  unsigned sum = 0;
  for (std::size_t i = body.empty() || body[0] != '$' ? 0 : 1; i < body.size(); ++i) sum ^= static_cast<unsigned char>(body[i]);
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X", sum & 0xff);
  return body + tail;
}

std::string StateText(State s) {
  switch (s) {
    case State::Stopped: return "停止";
    case State::Connecting: return "連線中";
    case State::Waiting: return "等待回應";
    case State::Streaming: return "已連線";
    case State::Retrying: return "等待重新連線";
    case State::Failed: return "失敗";
  }
  return "";
}

Session::Session(ui::TcpLink& link, Settings settings) : link_(link), s_(std::move(settings)) {
  link_.OnConnected = [this] { Connected(); };
  link_.OnBytes = [this](const char* d, std::size_t n) { Bytes(d, n); };
  link_.OnClosed = [this](const std::string& why) { Closed(why); };
}

Session::~Session() {
  link_.OnConnected = nullptr;
  link_.OnBytes = nullptr;
  link_.OnClosed = nullptr;
  link_.Close();
}

std::string Session::Where() const { return s_.host + ":" + std::to_string(s_.port); }

void Session::Set(State s) {
  if (state_ == s) return;
  state_ = s;
  if (OnStateChanged) OnStateChanged();
}

void Session::Start(int64_t nowMs) {
  now_ = since_ = windowStart_ = nowMs;
  attempt_ = 0;
  everStreamed_ = false;
  lastError_.clear();
  stats_ = Stats{};
  answer_ = Answer{};
  Set(State::Connecting);
  link_.Connect(s_.host, s_.port);
}

void Session::Stop() {
  link_.Close();
  Set(State::Stopped);
}

void Session::SetGga(const std::string& sentence) {
  s_.gga = sentence;
  while (!s_.gga.empty() && (s_.gga.back() == '\r' || s_.gga.back() == '\n')) s_.gga.pop_back();
}

void Session::Connected() {
  if (state_ != State::Connecting) return;
  answer_ = Answer{};
  link_.Send(s_.role == Role::Client ? ClientRequest(s_) : ServerRequest(s_));
  // A network RTK caster picks the stream by the rover's position, so the GGA goes up
  // with the request.
  if (s_.role == Role::Client && !s_.gga.empty()) {
    link_.Send(s_.gga + "\r\n");
    lastGga_ = now_;
  }
  since_ = lastRx_ = now_;
  Set(State::Waiting);
}

void Session::Bytes(const char* data, std::size_t size) {
  if (state_ != State::Waiting && state_ != State::Streaming) return;
  lastRx_ = now_;
  if (state_ == State::Streaming && s_.role == Role::Server) return;  // casters say nothing more
  scratch_.clear();
  const Answer::Kind before = answer_.kind();
  const Answer::Kind k = answer_.Feed(data, size, scratch_);
  if (before == Answer::Kind::Pending && k != Answer::Kind::Pending) Answered(k);
  if (state_ == State::Streaming && k == Answer::Kind::Refused) {
    Drop("NTRIP 串流格式錯誤,重新連線");
    return;
  }
  if (!scratch_.empty() && state_ == State::Streaming && s_.role == Role::Client) {
    stats_.bytes += static_cast<int64_t>(scratch_.size());
    windowBytes_ += static_cast<int64_t>(scratch_.size());
    stats_.lastDataMs = now_;
    counter_.Feed(scratch_.data(), scratch_.size());
    stats_.frames = counter_.Frames();
    attempt_ = 0;
    if (OnCorrections) OnCorrections(scratch_);
  }
}

void Session::Answered(Answer::Kind k) {
  if (k == Answer::Kind::Stream) {
    if (everStreamed_) ++stats_.reconnects;
    everStreamed_ = true;
    if (s_.role == Role::Server) attempt_ = 0;
    lastError_.clear();
    Set(State::Streaming);
    return;
  }
  if (k == Answer::Kind::Table) {
    std::vector<Stream> streams = ParseSourceTable(answer_.Body());
    link_.Close();
    if (s_.role == Role::Client && s_.mount.empty()) {
      if (OnSourceTable) OnSourceTable(streams);
      Set(State::Stopped);
      return;
    }
    // A 1.0 caster answers an unknown mount point with its source table.
    std::string list;
    for (const Stream& s : streams) list += (list.empty() ? "" : ", ") + s.mount;
    if (OnSourceTable) OnSourceTable(streams);
    Fail("NTRIP 主機沒有掛載點 \"" + s_.mount + "\";可用的掛載點: " + (list.empty() ? "(無)" : list));
    return;
  }
  // Refused.
  std::string why;
  const int status = answer_.Status();
  const std::string text = FirstLine(answer_.Body());
  if (status == 401 || status == 403)
    why = "NTRIP 主機拒絕帳號或密碼: " + std::to_string(status) + " " + answer_.StatusText();
  else if (status == 404)
    why = "NTRIP 主機沒有掛載點 \"" + s_.mount + "\": 404 " + answer_.StatusText();
  else if (status != 0)
    why = "NTRIP 主機拒絕要求: " + std::to_string(status) + " " + answer_.StatusText();
  else if (StartsWithNoCase(answer_.StatusText(), "ERROR"))
    why = "NTRIP 主機拒絕要求: " + answer_.StatusText();
  else
    why = "NTRIP 主機的回應無法辨識,這不是 NTRIP 主機嗎? (" + Where() + ")";
  if (!text.empty() && status != 0) why += " (" + text.substr(0, 200) + ")";
  link_.Close();
  Fail(why);
}

void Session::Closed(const std::string& why) {
  if (state_ == State::Connecting) {
    Drop("無法連線到 NTRIP 主機 " + Where() + ": " + why);
  } else if (state_ == State::Waiting) {
    const bool silent = answer_.Silent();
    const Answer::Kind k = answer_.Finish();
    if (silent)
      Drop("NTRIP 主機 " + Where() + " 沒有回應就中斷連線");
    else
      Answered(k);
  } else if (state_ == State::Streaming) {
    Drop("NTRIP 連線中斷: " + why);
  }
}

void Session::Drop(const std::string& why) {
  lastError_ = why;
  link_.Close();
  ++attempt_;
  retryAt_ = now_ + BackoffMs(attempt_);
  stats_.bytesPerSecond = 0;
  Set(State::Retrying);
}

void Session::Fail(const std::string& why) {
  lastError_ = why;
  link_.Close();
  Set(State::Failed);
}

void Session::SendChunk(std::string_view bytes) {
  if (s_.version == Version::V1) {
    link_.Send(bytes);
    return;
  }
  char size[24];
  std::snprintf(size, sizeof size, "%zx\r\n", bytes.size());
  std::string chunk = size;
  chunk.append(bytes);
  chunk += "\r\n";
  link_.Send(chunk);
}

void Session::Push(std::string_view bytes, int64_t nowMs) {
  now_ = nowMs;
  if (s_.role != Role::Server || state_ != State::Streaming || bytes.empty()) return;
  SendChunk(bytes);
  stats_.bytes += static_cast<int64_t>(bytes.size());
  windowBytes_ += static_cast<int64_t>(bytes.size());
  stats_.lastDataMs = nowMs;
  counter_.Feed(bytes.data(), bytes.size());
  stats_.frames = counter_.Frames();
}

void Session::Tick(int64_t nowMs) {
  now_ = nowMs;
  if (nowMs - windowStart_ >= 1000) {
    stats_.bytesPerSecond = static_cast<double>(windowBytes_) * 1000.0 / static_cast<double>(nowMs - windowStart_);
    windowBytes_ = 0;
    windowStart_ = nowMs;
  }
  switch (state_) {
    case State::Retrying:
      if (nowMs >= retryAt_) {
        answer_ = Answer{};
        since_ = nowMs;
        Set(State::Connecting);
        link_.Connect(s_.host, s_.port);
      }
      break;
    case State::Connecting:
      if (nowMs - since_ >= kConnectTimeoutMs) Drop("無法連線到 NTRIP 主機 " + Where() + ": 逾時");
      break;
    case State::Waiting:
      if (nowMs - since_ >= kConnectTimeoutMs) Closed("逾時");
      break;
    case State::Streaming:
      if (s_.role == Role::Client && nowMs - lastRx_ >= kSilenceMs) {
        Drop("NTRIP 主機 60 秒沒有送資料,重新連線");
        break;
      }
      if (s_.role == Role::Client && s_.ggaSeconds > 0 && !s_.gga.empty() &&
          nowMs - lastGga_ >= int64_t(s_.ggaSeconds) * 1000) {
        link_.Send(s_.gga + "\r\n");
        lastGga_ = nowMs;
      }
      break;
    case State::Stopped:
    case State::Failed: break;
  }
}

}  // namespace tavik::ntrip
