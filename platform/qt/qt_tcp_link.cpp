#include "platform/qt/qt_tcp_link.h"

namespace tavik::ui {

QtTcpLink::QtTcpLink(QObject* parent) : QObject(parent) {
  socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
  connect(&socket_, &QTcpSocket::connected, this, [this] {
    socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (OnConnected) OnConnected();
  });
  connect(&socket_, &QTcpSocket::readyRead, this, [this] {
    while (socket_.bytesAvailable() > 0) {
      const QByteArray bytes = socket_.read(65536);
      if (bytes.isEmpty()) break;
      if (OnBytes) OnBytes(bytes.constData(), static_cast<std::size_t>(bytes.size()));
      if (socket_.state() != QAbstractSocket::ConnectedState) break;  // closed by the handler
    }
  });
  // One report per connection: an error (refused, reset, lookup failed) or the peer's
  // close, whichever comes first.
  connect(&socket_, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError) {
    if (closing_) return;
    closing_ = true;
    const std::string why = socket_.errorString().toStdString();
    socket_.abort();
    if (OnClosed) OnClosed(why);
  });
  connect(&socket_, &QTcpSocket::disconnected, this, [this] {
    if (closing_) return;
    closing_ = true;
    if (OnClosed) OnClosed("連線被對方關閉");
  });
}

void QtTcpLink::Connect(const std::string& host, int port) {
  Close();
  closing_ = false;
  socket_.connectToHost(QString::fromStdString(host), static_cast<quint16>(port));
}

void QtTcpLink::Send(std::string_view bytes) {
  if (socket_.state() == QAbstractSocket::ConnectedState)
    socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void QtTcpLink::Close() {
  closing_ = true;
  socket_.abort();
}

}  // namespace tavik::ui
