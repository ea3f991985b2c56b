// What the program remembers of its NTRIP client and server between runs (in the
// per-user settings store, sections "NtripClient" and "NtripServer"), and the one line
// of state the main window shows for a running session.
#pragma once

#include <cstdint>
#include <string>

#include "instruments/ntrip.h"
#include "platform/settings_store.h"

namespace tavik::ntrip {

struct Options {
  Settings session;
  // Client: where the corrections go; server: where the base's bytes come from. The
  // receiver's own port is the GNSS link's; otherwise a port of the computer.
  bool receiverPort = false;
  int comPort = 2;
  std::string portSettings = "38400,n,8,1";
};

Options LoadOptions(ui::SettingsStore& store, Role role);
void SaveOptions(ui::SettingsStore& store, const Options& o);

// "NTRIP 已連線 1.2 kB/s 改正 0.4 秒前", or the state with the last error.
std::string StatusLine(const Session& s, int64_t nowMs);

}  // namespace tavik::ntrip
