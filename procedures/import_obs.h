// ImportOBS: the menu item that takes an .OBS file back in. The checks on the chosen
// file are made; the reading itself reads no record in this version, so importing
// changes nothing in the map.
#pragma once

#include <string>

#include "platform/dialogs.h"

namespace tavik {

// True when a file passed the checks (the map is then to be redrawn whole).
bool ImportOBS(ui::Dialogs& dialogs, const std::string& startFolder);

}  // namespace tavik
