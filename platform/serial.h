// A serial port as the instrument links use it: opened by "COM n" with a settings text
// such as "9600,n,8,1", written to, and read one byte at a time on the user-interface
// thread. A port that vanishes closes itself and says so through OnClosed.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tavik::ui {

struct PortSettings {
  int baud = 9600;
  char parity = 'n';  // n, e, o, m, s
  int dataBits = 8;
  int stopBits = 1;
};

// Parses "9600,n,8,1"; false on a malformed text.
bool ParsePortSettings(std::string_view text, PortSettings& out);

class SerialPort {
 public:
  virtual ~SerialPort() = default;
  int CommPort = 1;              // COM number
  std::string Settings = "9600,n,8,1";
  // Opens CommPort with Settings. On failure returns false and sets Error().
  virtual bool Open() = 0;
  virtual void Close() = 0;
  virtual bool PortOpen() const = 0;
  virtual void Output(std::string_view bytes) = 0;
  virtual std::string Error() const = 0;
  std::function<void(char)> OnByte;    // each received byte, in order
  std::function<void()> OnClosed;      // the port went away (cable pulled, adapter unplugged)
};

}  // namespace tavik::ui
