// Opening a dialog's own port the way the main link opens its channels: the shared
// port number, the kind's settings text, one byte at a time.
#pragma once

#include <string>

#include "instruments/instrument_state.h"
#include "platform/serial.h"

namespace tavik {

// Opens the port when closed. False when it cannot be opened (the sender then ends
// silently, as every sender does on a port failure).
bool OpenDialogPort(ui::SerialPort* port, const InstrumentState& inst);
// Writes, opening first; false on failure.
bool WriteDialogPort(ui::SerialPort* port, const InstrumentState& inst, const std::string& bytes);
void CloseDialogPort(ui::SerialPort* port);

}  // namespace tavik
