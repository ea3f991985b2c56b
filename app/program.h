// The running program: the application state, the Qt ends of the platform, the main
// window and the document cycle, wired together. main() makes one; the window tests
// make one over a temporary data folder with scripted dialogs.
#pragma once

#include <memory>

#include "app/instrument_link.h"
#include "app/mainfrm.h"
#include "core/app_state.h"
#include "core/frame.h"
#include "geo/datum.h"
#include "platform/qt/qt_dialogs.h"
#include "platform/qt/qt_settings_store.h"
#include "platform/qt/qt_timer.h"

class GnssWiring;
class SurveyStation;

class EditWiring;
class FieldTools;
class ExportMenu;
class NtripLink;

class Program {
 public:
  // `dialogs` replaces the Qt message boxes and file dialogs when given (tests).
  explicit Program(tavik::AppPaths paths, tavik::ui::Dialogs* dialogs = nullptr);

  // Start-up from the window's load on: defaults, settings, crash check, recent list.
  // The remembered settings reach the parts made by then (the pen on the map too, when
  // it is made before the start).
  void Start();

  tavik::App app;
  MainFrm frm;
  tavik::ui::QtDialogs qtDialogs;
  tavik::ui::Dialogs& dialogs;
  tavik::ui::QtSettingsStore store;
  tavik::ui::QtTimerFactory timers;
  tavik::DocumentCycle cycle;
  tavik::GpsDatumSettings gpsDatum;  // datum and meridian of the GNSS conversion
  InstrumentLink instruments{frm, dialogs, &store};  // the total station: state, ports, link, robotic panel
  // Set-up, shots, resection and stake-out.
  std::unique_ptr<SurveyStation> survey;
  // Memory download and trajectory measurement (owned by the window).
  FieldTools* fieldTools = nullptr;
  // The GNSS receiver: set-up, ports, watchdog, receiving side, panel and sky plot.
  std::unique_ptr<GnssWiring> gnss;
  // The pen on the map (pointer machine, keys, toolbars), once made; other parts plug
  // their pointer modes into edit->Host().Plugs and start them with edit->Editor().
  EditWiring* edit = nullptr;
  // The 匯出 menu: DXF drawing, CSV side tables, text report (owned by the window).
  ExportMenu* exports = nullptr;
  // Corrections over the network: the rover's NTRIP client and the base's NTRIP server.
  std::unique_ptr<NtripLink> ntrip;

  ~Program();
  // --demo: a fresh demo document from the simulator's scene file, opened at once.
  void OpenDemo(const std::string& scenePath);
  // GPS mode with this receiver, as the options dialog would leave it.
  void UseGpsReceiver(const std::string& kind, int16_t port, int32_t baud);

 private:
  // Where each value of Software.ini lives in the running program.
  void LinkSettings();
};
