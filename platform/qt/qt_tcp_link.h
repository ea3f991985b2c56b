// ui::TcpLink over QTcpSocket. The socket works from the event loop of the
// user-interface thread: the host lookup, the connection and every read and write are
// asynchronous, so a slow or silent caster never holds the window.
#pragma once

#include <QObject>
#include <QTcpSocket>

#include "platform/net.h"

namespace tavik::ui {

class QtTcpLink : public QObject, public TcpLink {
  Q_OBJECT
 public:
  explicit QtTcpLink(QObject* parent = nullptr);
  void Connect(const std::string& host, int port) override;
  void Send(std::string_view bytes) override;
  void Close() override;

 private:
  QTcpSocket socket_;
  bool closing_ = false;
};

}  // namespace tavik::ui
