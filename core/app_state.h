// The process-wide state of the running program in one place: the open document, the
// view, the remembered settings, the recent list, the work-file journal and the few
// values of the document cycle. The program holds one App and passes it by reference;
// tests make fresh ones over a temporary data folder.
#pragma once

#include <cstdint>

#include "core/app_paths.h"
#include "core/document.h"
#include "core/recent_files.h"
#include "core/settings_links.h"
#include "core/software_ini.h"
#include "core/view_state.h"
#include "core/workfiles.h"

namespace tavik {

struct App {
  explicit App(AppPaths p) : paths(std::move(p)), work(paths) {}

  AppPaths paths;
  Document doc;
  View view;
  SoftwareIni ini;
  SettingsLinks settings;  // where each value of `ini` lives while the program runs
  RecentList recent;
  WorkFiles work;

  int16_t DocumentFormat = 1;    // 1 .SPC, 2 .SP
  int16_t MinutesSinceSave = 0;  // autosave: minutes with changes since the last save
  double LastE = 0, LastN = 0;   // view centre of the last closed document
  bool BaseMapOn = false;
};

}  // namespace tavik
