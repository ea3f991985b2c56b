// ui::SerialPort over QSerialPort. "COM n" is a device path: $TAVIK_COM<n> when set
// (tests point it at a pseudo-terminal), else the per-user setting "Ports"/"COM<n>",
// else /dev/ttyUSB<n-1>.
//
// What QSerialPort 6.4 does on Linux that shapes this class: a pseudo-terminal is not
// listed, so ports are opened by path; setting the control lines fails there with ENOTTY,
// which is no error for us; one readyRead may bring hundreds of bytes, handed on one at
// a time; and when the other end goes away it reports a read error (not only a resource
// error) over and over until closed, so the first such error closes the port.
#pragma once

#include <QObject>
#include <QSerialPort>
#include <memory>
#include <string>

#include "platform/serial.h"
#include "platform/settings_store.h"

namespace tavik::ui {

// The device path of COM n.
std::string ComDevicePath(int comNumber, SettingsStore* settings);

class QtSerialPort : public QObject, public SerialPort {
  Q_OBJECT
 public:
  explicit QtSerialPort(SettingsStore* settings = nullptr, QObject* parent = nullptr);
  ~QtSerialPort() override;

  bool Open() override;
  void Close() override;
  bool PortOpen() const override;
  void Output(std::string_view bytes) override;
  std::string Error() const override { return error_; }

 private:
  void OnReadyRead();
  void OnError(QSerialPort::SerialPortError e);

  SettingsStore* settings_;
  QSerialPort port_;
  std::string error_;
  std::string pending_;       // bytes read but not yet handed on
  bool delivering_ = false;   // a byte is being handed on (a message box may be open)
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tavik::ui
