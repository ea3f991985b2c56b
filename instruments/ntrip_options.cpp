#include "instruments/ntrip_options.h"

#include <cstdio>
#include <cstdlib>

namespace tavik::ntrip {

namespace {
constexpr const char* kApp = "TAVIK";
const char* Section(Role r) { return r == Role::Client ? "NtripClient" : "NtripServer"; }

int Number(const std::string& text, int fallback, int lo, int hi) {
  char* end = nullptr;
  const long v = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || v < lo || v > hi) return fallback;
  return static_cast<int>(v);
}
}  // namespace

Options LoadOptions(ui::SettingsStore& store, Role role) {
  Options o;
  const std::string sec = Section(role);
  auto get = [&](const char* key, const std::string& def) { return store.GetSetting(kApp, sec, key, def); };
  Settings& s = o.session;
  s.role = role;
  s.host = get("Caster", "");
  s.port = Number(get("Port", "2101"), 2101, 1, 65535);
  s.version = get("Version", "2") == "1" ? Version::V1 : Version::V2;
  s.mount = get("Mount", "");
  s.user = get("User", "");
  s.password = get("Password", "");
  s.gga = get("Gga", "");
  s.ggaSeconds = Number(get("GgaSeconds", "10"), 10, 0, 3600);
  o.receiverPort = get("ReceiverPort", "0") == "1";
  o.comPort = Number(get("ComPort", "2"), 2, 1, 99);
  o.portSettings = get("PortSettings", "38400,n,8,1");
  return o;
}

void SaveOptions(ui::SettingsStore& store, const Options& o) {
  const Settings& s = o.session;
  const std::string sec = Section(s.role);
  auto put = [&](const char* key, const std::string& value) { store.SaveSetting(kApp, sec, key, value); };
  put("Caster", s.host);
  put("Port", std::to_string(s.port));
  put("Version", s.version == Version::V1 ? "1" : "2");
  put("Mount", s.mount);
  put("User", s.user);
  put("Password", s.password);
  if (s.role == Role::Client) {
    put("Gga", s.gga);
    put("GgaSeconds", std::to_string(s.ggaSeconds));
  }
  put("ReceiverPort", o.receiverPort ? "1" : "0");
  put("ComPort", std::to_string(o.comPort));
  put("PortSettings", o.portSettings);
}

std::string StatusLine(const Session& s, int64_t nowMs) {
  const char* who = s.settings().role == Role::Client ? "NTRIP" : "NTRIP 上傳";
  std::string line = std::string(who) + " " + StateText(s.state());
  if (s.state() == State::Streaming) {
    char rate[48];
    const double bps = s.stats().bytesPerSecond;
    if (bps >= 1000)
      std::snprintf(rate, sizeof rate, " %.1f kB/s", bps / 1000.0);
    else
      std::snprintf(rate, sizeof rate, " %.0f B/s", bps);
    line += rate;
    const int64_t last = s.stats().lastDataMs;
    if (last < 0) {
      line += s.settings().role == Role::Client ? " 尚未收到改正" : " 尚未送出資料";
    } else {
      char age[48];
      std::snprintf(age, sizeof age, " %s %.1f 秒前", s.settings().role == Role::Client ? "改正" : "送出",
                    static_cast<double>(nowMs - last) / 1000.0);
      line += age;
    }
  } else if (!s.LastError().empty()) {
    line += ": " + s.LastError();
  }
  return line;
}

}  // namespace tavik::ntrip
