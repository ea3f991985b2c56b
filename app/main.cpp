// TAVIK: start-up. One instance per user, then the window, the settings, the crash
// check and the recent list, in that order; then the event loop.
#include <QApplication>
#include <QFont>
#include <QScreen>
#include <QTimer>
#include <cstdlib>
#include <cstring>
#include <string>

#include "app/edit_wiring.h"
#include "app/gnss_wiring.h"
#include "app/gps_record_controls.h"
#include "app/gps_station.h"
#include "app/basemap_station.h"
#include "app/image_basemap.h"
#include "app/frmlandsplit.h"
#include "app/maptransformdlg.h"
#include "app/rtbase.h"
#include "app/survey_station.h"
#include "procedures/observation_pipeline.h"
#include "app/program.h"
#include "core/app_paths.h"
#include "core/instance_lock.h"
#include "export/symbol_library.h"
#include "platform/qt/qt_dialogs.h"

int main(int argc, char** argv) {
  QApplication qapp(argc, argv);
  QApplication::setApplicationName("TAVIK");
  QApplication::setFont(QFont("WenQuanYi Zen Hei", 10));
  tavik::ui::InstallQtTranslation();

  // --screenshot FILE.png: show the window, save a picture of it and end without the
  // exit questions (for checking the layout headless). --demo starts as usual.
  // --demo-gnss: the same with a GNSS receiver: GPS mode, the receiver kind of
  // $TAVIK_DEMO_GNSS_KIND (DL-4 when unset) on COM1 at 115200 baud, and a document around
  // the simulator's walk.
  std::string screenshot;
  bool demo = false, demoGnss = false;
  std::string demoScene;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--screenshot") == 0 && i + 1 < argc) screenshot = argv[++i];
    if (std::strcmp(argv[i], "--demo") == 0 || std::strcmp(argv[i], "--demo-gnss") == 0) {
      demo = true;
      demoGnss = std::strcmp(argv[i], "--demo-gnss") == 0;
      if (i + 1 < argc && argv[i + 1][0] != '-') demoScene = argv[++i];
    }
  }

  tavik::AppPaths paths = tavik::AppPaths::FromEnvironment();
  paths.EnsureFolders();
  // The symbol library ships with the program; the data folder gets its own copy, which
  // the surveyor may edit, with whatever blocks it lacks.
  tavik::dxf::InstallSymbolLibrary(paths);

  tavik::InstanceLock lock;
  tavik::ui::QtDialogs refusal;
  if (!tavik::TakeSingleInstance(lock, paths.LockFile(), refusal)) return 1;

  Program program(paths);
  EditWiring edit(program);
  program.survey->ConnectEditor(edit.Editor(), edit.Host());
  LandSplitStation landSplit(program, edit);
  MapTransformStation mapTransform(program, edit);
  BaseMapStation baseMaps(program, edit);
  ImageBaseMap imageBaseMap(program, edit);
  GpsStation gpsStation(program, edit);
  // Stake-out and replay read the receiver's state and panels; each position also
  // refreshes the stake-out window.
  GnssWiring& gnss = *program.gnss;
  gpsStation.ends.gps = &gnss.gps;
  gpsStation.ends.panels = &gnss.receiver.Panels();
  gpsStation.ends.ShowPanels = [&gnss] { gnss.receiver.Refresh(); };
  gpsStation.ends.Connected = [&gnss] { return gnss.MSComm1.PortOpen() || gnss.MSComm_Axis3.PortOpen(); };
  // Recording: the rest of each position update (marker, view, stake-out guidance,
  // triggers), LogButton and its set-up, Timer4 and the sounder ports.
  GpsRecordEnds recordEnds;
  recordEnds.gps = &gnss.gps;
  recordEnds.setup = &gnss.setup;
  recordEnds.receiver = &gnss.receiver;
  recordEnds.MSComm1 = &gnss.MSComm1;
  recordEnds.MSComm_Axis3 = &gnss.MSComm_Axis3;
  recordEnds.MSComm2 = &gnss.MSComm2;
  recordEnds.ESeaSound206 = &gnss.ESeaSound206;
  recordEnds.MSTSSComm = &gnss.MSTSSComm;
  recordEnds.SendToReceiver = [&gnss](const std::string& command) { gnss.MSComm1.Output(command + "\r\n"); };
  recordEnds.ShowPanels = [&gnss] { gnss.receiver.Refresh(); };
  recordEnds.StakeRefresh = [&gpsStation] { gpsStation.StakeRefresh(); };
  recordEnds.DrawStakeMarks = [&gpsStation] { gpsStation.DrawStakeMarks(); };
  GpsRecordControls recording(program, recordEnds);
  recording.WireLink(gnss.link);
  gpsStation.ends.RecordStake = [&recording](double E, double N, double H) { return recording.RecordStake(E, N, H); };
  gpsStation.ends.DrawMarker = [&recording](double E, double N) { recording.ShowMarkerAt(E, N); };
  // The RTK base: after the recording, whose position hook it extends.
  RtBaseStation rtBase(program, edit);
  // Space records a shot, as the record button does.
  edit.FrameCommands["Measure"] = [&program] { tavik::RecButton(program.survey->ctx); };
  // Maximised to the desktop's work area; set by hand too, for desktops without a
  // window manager to honour the request.
  if (QScreen* screen = QGuiApplication::primaryScreen()) program.frm.setGeometry(screen->availableGeometry());
  program.frm.showMaximized();
  program.Start();
  if (demo) {
    // The simulator's scene: given, or $TAVIK_DEMO_SCENE, or the one in the source tree
    // beside the build folder.
    if (demoScene.empty()) {
      const char* env = std::getenv("TAVIK_DEMO_SCENE");
      const char* file = demoGnss ? "/../../tools/sim/demo-gnss.scene" : "/../../tools/sim/demo.scene";
      demoScene = env ? env : (QCoreApplication::applicationDirPath() + file).toStdString();
    }
    if (demoGnss) {
      const char* kind = std::getenv("TAVIK_DEMO_GNSS_KIND");
      program.UseGpsReceiver(kind && *kind ? kind : "DL-4", 1, 115200);
    }
    program.OpenDemo(demoScene);
  }

  if (!screenshot.empty()) {
    QTimer::singleShot(800, &program.frm, [&] {
      const bool saved = program.frm.grab().save(QString::fromStdString(screenshot));
      qapp.exit(saved ? 0 : 2);
    });
  }
  return qapp.exec();
}
