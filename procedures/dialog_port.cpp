#include "procedures/dialog_port.h"

#include "instruments/routing.h"

namespace tavik {

bool OpenDialogPort(ui::SerialPort* port, const InstrumentState& inst) {
  if (port == nullptr) return false;
  if (port->PortOpen()) return true;
  port->CommPort = inst.PortNumber;
  port->Settings = SettingsText(inst.InstrumentKind, inst.BaudRate);
  return port->Open();
}

bool WriteDialogPort(ui::SerialPort* port, const InstrumentState& inst, const std::string& bytes) {
  if (!OpenDialogPort(port, inst)) return false;
  if (!bytes.empty()) port->Output(bytes);
  return true;
}

void CloseDialogPort(ui::SerialPort* port) {
  if (port != nullptr && port->PortOpen()) port->Close();
}

}  // namespace tavik
