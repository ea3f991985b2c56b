// ui::SerialPort over a POSIX serial device, for tavik-tool (which has no Qt): the
// device is named by its path, opened raw with the speed, parity, data and stop bits of
// the settings text, and read by the caller's loop through Pump, which hands each byte
// to OnByte as the program's port does.
#pragma once

#include <string>

#include "platform/serial.h"

namespace tavik::ui {

class PosixSerialPort : public SerialPort {
 public:
  // `fixedSettings`, when given, is used whatever Settings the link sets: the tool's
  // own choice of line settings for a device that does not use the family's usual ones.
  explicit PosixSerialPort(std::string path, std::string fixedSettings = "");
  ~PosixSerialPort() override;

  bool Open() override;
  void Close() override;
  bool PortOpen() const override { return fd_ >= 0; }
  void Output(std::string_view bytes) override;
  std::string Error() const override { return error_; }

  // Waits up to `ms` milliseconds for bytes and delivers what came. False when the port
  // is closed or went away.
  bool Pump(int ms);

 private:
  std::string path_, fixed_, error_;
  int fd_ = -1;
};

}  // namespace tavik::ui
