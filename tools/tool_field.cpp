// Field support at the instrument: "shoot" sends one measurement request of a family
// through the program's own total-station link and prints what the link made of the
// answer; "identify" asks with each family's identification request in turn and says
// which family answered. Both talk to a serial device given by its path.
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "core/text.h"
#include "instruments/decoders.h"
#include "instruments/framer.h"
#include "instruments/link.h"
#include "platform/posix_serial.h"
#include "tools/tool.h"

namespace tavik::tool {
namespace {

constexpr int kShotWaitMs = 15000;   // a shot at a far prism takes a few seconds
constexpr int kProbeWaitMs = 1200;   // an identification answer comes at once

// The families by the names the field uses, each with the instrument kind that selects it.
struct FamilyName {
  const char* name;
  const char* kind;
};
const FamilyName kFamilies[] = {{"SET", "SET30R"},         {"SOKKIA", "SET30R"},   {"GTS22X", "GTS22X"},
                                {"GTS211D", "GTS211D"},   {"TOPCON", "GTS22X"},   {"Leica", "FlexLine"},
                                {"Trimble", "Trimble"},   {"Trimble3600", "Trimble3600"}, {"PENTAX", "PENTAX"}};

std::string FamilyList() {
  std::string s;
  for (const FamilyName& f : kFamilies) s += (s.empty() ? "" : ", ") + std::string(f.name);
  return s;
}

int Usage(const char* command, const std::string& why, const char* args) {
  std::fprintf(stderr, "tavik-tool %s: %s\nusage: tavik-tool %s %s\n", command, why.c_str(), command, args);
  return 2;
}

// The message boxes of the link, kept for the end.
class CollectedDialogs : public ui::Dialogs {
 public:
  std::vector<std::string> messages;
  ui::Answer MsgBox(const std::string& text, const std::string&, ui::Buttons, ui::Icon,
                    std::optional<ui::Answer>) override {
    messages.push_back(text);
    return ui::Answer::Ok;
  }
  std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::string OpenFileName(const std::string&, const std::string&, const std::string&) override { return ""; }
  std::string SaveFileName(const std::string&, const std::string&, const std::string&) override { return ""; }
};

// Pumps the port until `done` or `ms` have passed; false when the port went away.
template <class Done>
bool PumpUntil(ui::PosixSerialPort& port, int ms, Done done) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
  while (!done()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) return true;
    if (!port.Pump(static_cast<int>(left.count() < 100 ? left.count() : 100))) return false;
  }
  return true;
}

constexpr const char* kShootArgs = "--family F --port DEV [--settings 9600,n,8,1]";

int Shoot(const Args& args) {
  std::string family, device, settings;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a != "--family" && a != "--port" && a != "--settings") return Usage("shoot", "unknown argument " + a, kShootArgs);
    if (i + 1 >= args.size()) return Usage("shoot", a + " needs a value", kShootArgs);
    (a == "--family" ? family : a == "--port" ? device : settings) = args[++i];
  }
  if (family.empty() || device.empty()) return Usage("shoot", "--family and --port are needed", kShootArgs);
  const FamilyName* f = nullptr;
  for (const FamilyName& k : kFamilies)
    if (family == k.name) f = &k;
  if (f == nullptr) return Usage("shoot", "unknown family '" + family + "' (" + FamilyList() + ")", kShootArgs);
  ui::PortSettings parsed;
  if (!settings.empty() && !ui::ParsePortSettings(settings, parsed))
    return Usage("shoot", "the settings are speed,parity,data,stop, not '" + settings + "'", kShootArgs);

  InstrumentState state;
  state.InstrumentKind = f->kind;
  if (!settings.empty()) state.BaudRate = parsed.baud;
  CollectedDialogs dialogs;
  TotalStationLink link(state, dialogs);
  // One device serves both channels: the family decides which one the link uses.
  ui::PosixSerialPort port(device, settings);
  link.MSComm_SET = &port;
  link.MSComm_TOP = &port;
  const Channel channel = ChannelOf(FamilyOf(state.InstrumentKind));
  port.OnByte = [&](char c) { link.OnByte(channel, c); };
  bool delivered = false;
  state.AwaitPointShot = kTrue;
  link.receivers.PointShot = [&] { delivered = true; };
  // A family that only listens is fired at the instrument itself.
  if (FamilyOf(state.InstrumentKind) == Family::Trimble3600) std::fprintf(stderr, "請在儀器上按測距鍵.\n");
  link.StartShot();
  if (!port.PortOpen()) return Refuse("無法開啟 " + device + ": " + port.Error());
  const std::size_t boxesBefore = dialogs.messages.size();
  const bool alive = PumpUntil(port, kShotWaitMs, [&] { return delivered || dialogs.messages.size() > boxesBefore; });
  // A face-two reminder comes before the observation it belongs to.
  if (!delivered && alive && !dialogs.messages.empty()) PumpUntil(port, 300, [&] { return delivered; });
  if (!delivered) {
    // A SET instrument is told to stop, as the program's stop command does.
    if (channel == Channel::Set && port.PortOpen()) link.StopShot();
    if (!dialogs.messages.empty()) return Refuse(dialogs.messages.back());
    return Refuse(alive ? "儀器沒有回應" : "通訊中斷: " + port.Error());
  }
  for (const std::string& m : dialogs.messages) std::fprintf(stderr, "%s\n", m.c_str());
  const WaitPicture& p = link.picture;
  std::printf("水平角 %s\n天頂角 %s\n斜距 %s\n平距 %s\n", p.Label29.c_str(), p.LabelZA.c_str(), p.LabelS.c_str(),
              p.Label45.c_str());
  return 0;
}

constexpr const char* kIdentifyArgs = "--port DEV";

// One probe: the request of a family, and the first answer it gets back.
struct Probe {
  const char* family;  // as "shoot --family" takes it
  Family requestFamily;
  Request request;
  const char* settings;
  char terminator;
};

int Identify(const Args& args) {
  std::string device;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] != "--port") return Usage("identify", "unknown argument " + args[i], kIdentifyArgs);
    if (i + 1 >= args.size()) return Usage("identify", "--port needs a value", kIdentifyArgs);
    device = args[++i];
  }
  if (device.empty()) return Usage("identify", "--port is needed", kIdentifyArgs);

  // Something that talks unasked (an instrument fired at, or one that streams).
  std::string unasked;
  {
    ui::PosixSerialPort port(device, "9600,n,8,1");
    if (!port.Open()) return Refuse("無法開啟 " + device + ": " + port.Error());
    port.OnByte = [&](char c) {
      if (unasked.size() < 256) unasked.push_back(c);
    };
    PumpUntil(port, 500, [] { return false; });
  }
  const Probe probes[] = {
      {"SET", Family::Set, Request::Identify, "9600,n,8,1", '\n'},
      {"GTS22X", Family::Topcon, Request::Identify, "9600,n,8,1", '\n'},
      {"GTS211D", Family::Topcon, Request::Identify, "9600,e,7,1", '\n'},
      {"Leica", Family::Leica, Request::ReadType, "9600,n,8,1", '\n'},
      {"Trimble", Family::Trimble, Request::AngleOnly, "9600,n,8,1", '>'},
      {"PENTAX", Family::Pentax, Request::AngleOnly, "9600,n,8,1", '\n'},
  };
  for (const Probe& probe : probes) {
    ui::PosixSerialPort port(device, probe.settings);
    if (!port.Open()) return Refuse("無法開啟 " + device + ": " + port.Error());
    LineFramer framer;
    std::optional<std::string> answer;
    bool acknowledged = false;
    port.OnByte = [&](char c) {
      if (c == '\x06' && framer.Buffer().empty()) acknowledged = true;
      if (!answer) answer = framer.Feed(c, probe.terminator);
    };
    port.Output(*RequestBytes(probe.requestFamily, probe.request));
    PumpUntil(port, kProbeWaitMs, [&] { return answer.has_value(); });
    if (!answer) continue;
    const std::string line = text::Trim(*answer);
    std::string said;
    switch (probe.requestFamily) {
      case Family::Set: {
        if (line.empty() || line[0] != 'A') continue;
        SetAnswer a = DecodeSet(*answer);
        said = a.identification ? text::Trim(*a.identification) : line;
        break;
      }
      case Family::Topcon:
        if (!acknowledged) continue;
        said = "TOPCON";
        break;
      case Family::Leica: {
        if (line.rfind("*13", 0) != 0) continue;
        const std::size_t plus = line.find('+');
        said = plus == std::string::npos ? line : text::Trim(line.substr(plus + 1));
        break;
      }
      case Family::Trimble:
        if (!DecodeTrimble(*answer).enoughLines) continue;
        break;
      case Family::Pentax:
        if (!DecodePentax(*answer).valid) continue;
        break;
      default:
        continue;
    }
    std::printf("%s%s%s\n", probe.family, said.empty() ? "" : " ", said.c_str());
    return 0;
  }
  if (!unasked.empty()) {
    std::printf("Trimble3600 儀器自行送出資料: %s\n", text::Trim(unasked.substr(0, unasked.find('\n'))).c_str());
    return 0;
  }
  return Refuse("沒有儀器回應");
}

const Registrar shootCommand({"shoot", "--family F --port DEV [--settings 9600,n,8,1]   one measurement of the instrument",
                              Shoot});
const Registrar identifyCommand({"identify", "--port DEV   which instrument family answers on the port", Identify});

}  // namespace
}  // namespace tavik::tool
