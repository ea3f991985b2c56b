// The program's settings store. The toolkit's own INI store escapes a space in a
// section name ("[Used%20Files]"), so the program keeps its TAVIK.ini with the plain
// INI store of the platform layer, which writes the section as it is named.
#pragma once

#include "platform/ini_store.h"

namespace tavik::ui {

using QtSettingsStore = IniSettingsStore;

}  // namespace tavik::ui
