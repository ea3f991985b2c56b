#include "platform/qt/serial_port.h"

#include <cstdlib>

namespace tavik::ui {

std::string ComDevicePath(int comNumber, SettingsStore* settings) {
  std::string key = "COM" + std::to_string(comNumber);
  if (const char* env = std::getenv(("TAVIK_" + key).c_str()); env && *env) return env;
  std::string fallback = "/dev/ttyUSB" + std::to_string(comNumber - 1);
  if (settings) return settings->GetSetting("TAVIK", "Ports", key, fallback);
  return fallback;
}

QtSerialPort::QtSerialPort(SettingsStore* settings, QObject* parent) : QObject(parent), settings_(settings) {
  connect(&port_, &QSerialPort::readyRead, this, &QtSerialPort::OnReadyRead);
  connect(&port_, &QSerialPort::errorOccurred, this, &QtSerialPort::OnError);
}

QtSerialPort::~QtSerialPort() {
  *alive_ = false;
  port_.close();
}

bool QtSerialPort::Open() {
  if (port_.isOpen()) return true;
  PortSettings s;
  if (!ParsePortSettings(Settings, s)) {
    error_ = "bad port settings: " + Settings;
    return false;
  }
  port_.setPortName(QString::fromStdString(ComDevicePath(CommPort, settings_)));
  port_.setBaudRate(s.baud);
  port_.setDataBits(static_cast<QSerialPort::DataBits>(s.dataBits));
  port_.setStopBits(s.stopBits == 2 ? QSerialPort::TwoStop : QSerialPort::OneStop);
  switch (s.parity) {
    case 'e': port_.setParity(QSerialPort::EvenParity); break;
    case 'o': port_.setParity(QSerialPort::OddParity); break;
    case 'm': port_.setParity(QSerialPort::MarkParity); break;
    case 's': port_.setParity(QSerialPort::SpaceParity); break;
    default: port_.setParity(QSerialPort::NoParity); break;
  }
  port_.setFlowControl(QSerialPort::NoFlowControl);
  if (!port_.open(QIODevice::ReadWrite)) {
    error_ = port_.errorString().toStdString();
    return false;
  }
  error_.clear();
  pending_.clear();
  return true;
}

void QtSerialPort::Close() {
  pending_.clear();
  if (port_.isOpen()) port_.close();
}

bool QtSerialPort::PortOpen() const { return port_.isOpen(); }

void QtSerialPort::Output(std::string_view bytes) {
  if (!port_.isOpen()) return;
  port_.write(bytes.data(), static_cast<qint64>(bytes.size()));
  // Requests are a few bytes; push them out now so that a close right after a write
  // (the Topcon probe) does not lose them.
  port_.flush();
}

void QtSerialPort::OnReadyRead() {
  QByteArray data = port_.readAll();
  pending_.append(data.constData(), static_cast<std::size_t>(data.size()));
  // A message box raised while a byte is handed on runs its own event loop; bytes that
  // arrive meanwhile wait here and follow in order once it closes.
  if (delivering_) return;
  delivering_ = true;
  std::shared_ptr<bool> alive = alive_;
  std::size_t i = 0;
  while (*alive && i < pending_.size()) {
    char c = pending_[i++];
    if (OnByte) OnByte(c);
    if (*alive && !port_.isOpen()) break;  // the receiver closed the port: the rest is gone
  }
  if (!*alive) return;
  if (port_.isOpen()) pending_.erase(0, i);
  else pending_.clear();
  delivering_ = false;
}

void QtSerialPort::OnError(QSerialPort::SerialPortError e) {
  if (e != QSerialPort::ReadError && e != QSerialPort::ResourceError) return;
  if (!port_.isOpen()) return;
  error_ = port_.errorString().toStdString();
  Close();
  if (OnClosed) OnClosed();
}

}  // namespace tavik::ui
