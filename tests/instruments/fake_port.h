// A serial port for the link's tests: it records every open and every byte written,
// can be told to refuse opening, and hands received bytes to OnByte as the real port
// would, in chunks of any size.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/serial.h"

namespace tavik::test {

class FakePort : public ui::SerialPort {
 public:
  bool open = false;
  bool refuseOpen = false;
  int opens = 0, closes = 0;
  std::vector<std::string> openedWith;  // "COMn settings" at each open
  std::string written;

  bool Open() override {
    if (refuseOpen) return false;
    open = true;
    ++opens;
    openedWith.push_back("COM" + std::to_string(CommPort) + " " + Settings);
    return true;
  }
  void Close() override {
    if (open) ++closes;
    open = false;
  }
  bool PortOpen() const override { return open; }
  void Output(std::string_view bytes) override { written.append(bytes); }
  std::string Error() const override { return refuseOpen ? "refused" : ""; }
  void Receive(std::string_view bytes) {
    for (char c : bytes)
      if (OnByte) OnByte(c);
  }
};

}  // namespace tavik::test
