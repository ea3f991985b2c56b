// End to end: the GNSS link and receiving side over the real Qt serial port against
// tavik-sim --gnss on a pseudo-terminal. For each receiver kind: what the receiver
// records of the connect is compared byte for byte with the golden sequence; its
// sentences then move the fix panels and the grid position and fill the GOBS log; and
// after it falls silent the watchdog gives up with its message.
#include <gtest/gtest.h>

#include <QFile>
#include <fstream>
#include <sstream>

#include "instruments/gnss_link.h"
#include "instruments/gps_receiver.h"
#include "instruments/sim_process.h"
#include "platform/qt/serial_port.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {
namespace {

std::string Golden(const std::string& name) {
  if (name.empty()) return "";
  std::ifstream in(std::string(TAVIK_TEST_DATA) + "/instruments/gnss/" + name, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

struct NullView : GnssLinkView {
  bool receiving = false;
  void EnableToolbarKey(const std::string&, bool) override {}
  void SetOBSBoxReceiving(bool r) override { receiving = r; }
  void ClearOBSBox() override {}
  void ShowLabel25_0(const std::string&) override {}
};

struct Rig {
  GnssSetup setup;
  GpsState gps;
  Document doc;
  GpsDatumSettings datum;
  GpsReceiver receiver{gps, setup, doc, datum};
  ui::ScriptedDialogs dialogs;
  NullView view;
  ui::ManualTimer watchdog;
  ui::MemorySettingsStore settings;
  ui::QtSerialPort com1{&settings}, axis3{&settings};
  GnssLink link{setup, dialogs, view, watchdog};

  Rig(const std::string& device, const std::string& folder, const std::string& kind) {
    setenv("TAVIK_COM7", device.c_str(), 1);
    SetDocumentName(doc, folder + "/field");
    setup.GpsReceiverKind = kind;
    setup.CommPortNumber = 7;
    setup.CommBaud = 115200;
    link.MSComm1 = &com1;
    link.MSComm_Axis3 = &axis3;
    link.DocumentOpen = [this] { return doc.IsOpen(); };
    link.GpsDatum = [this] { return datum.GpsDatum; };
    receiver.hooks.StopWatchdog = [this] { link.DataArrived(); };
    com1.OnByte = [this](char c) { receiver.MSComm1_OnComm(c); };
    axis3.OnByte = [this](char c) { receiver.MSComm_Axis3_OnComm(c); };
  }
  std::size_t GobsLines() const {
    QFile f(QString::fromStdString(doc.GobsPath));
    return f.open(QIODevice::ReadOnly) ? static_cast<std::size_t>(f.readAll().count('\n')) : 0;
  }
};

struct KindCase {
  const char* kind;
  const char* golden;  // connect sequence; empty for a listen-only kind
  const char* solution;  // Label8 once the fixed solution is in
  bool egps = false;
  bool twd67 = false;
};

TEST(GnssEndToEnd, EachKindConnectsMovesThePanelsAndTheWatchdogGivesUp) {
  const KindCase cases[] = {
      {"PP7", "pp7.cmds", "解算完成"},
      {"DL-RT2", "dl-rt2.cmds", "最佳解", false, true},
      {"DL-4", "dl-4.cmds", "解算完成"},
      {"DL-4", "dl-4-egps.cmds", "解算完成", true},
      {"Flexpak", "flexpak.cmds", "解算完成"},
      {"Axis3", "", "3D"},
  };
  for (const KindCase& c : cases) {
    SCOPED_TRACE(std::string(c.kind) + (c.egps ? " eGPS" : ""));
    Sim sim(Sim::Gnss{}, c.kind, {"--rate", "20", "--quiet", "150", "--fix", "fixed"});
    ASSERT_FALSE(sim.path.empty());
    Rig rig(sim.path, sim.Folder().toStdString(), c.kind);
    rig.setup.DiffEgps = c.egps ? -1 : 0;
    if (c.twd67) SetDatumTWD67(rig.datum);

    rig.link.Toolbar1Click("連接COM1");
    if (c.egps) {
      // The first stage sends positions to the phone; corrections come with the second.
      EXPECT_EQ(rig.dialogs.shown.size(), 1u);
      ASSERT_TRUE(SpinUntil([&] { return !rig.gps.GpsLine.empty(); }));
      rig.link.Toolbar1Click("接收資料");
    }
    const std::string golden = Golden(c.golden);
    SpinUntil([&] { return sim.Recorded().size() >= golden.size(); }, 3000);
    EXPECT_EQ(sim.Recorded(), golden);

    // The walk moves the grid position; the fixed solution shows; GOBS fills.
    ASSERT_TRUE(SpinUntil([&] { return rig.gps.GpsX != 0 && rig.receiver.Panels().Label8.Caption == c.solution; }))
        << rig.receiver.Panels().Label8.Caption;
    const double x = rig.gps.GpsX, y = rig.gps.GpsY;
    EXPECT_TRUE(SpinUntil([&] { return rig.gps.GpsX != x || rig.gps.GpsY != y; }));
    // On the simulator's 40 m circle around 326158, 2739072 (the receiver's own
    // positions on the TWD67 ellipsoid land within 10 m of that).
    EXPECT_NEAR(rig.gps.GpsX, 326158, 60);
    EXPECT_NEAR(rig.gps.GpsY, 2739072, 60);
    EXPECT_GT(rig.GobsLines(), 3u);
    EXPECT_FALSE(rig.receiver.Panels().Label6.Caption.empty());

    if (c.egps || std::string(c.kind) == "Axis3") {
      // No watchdog on these: stopping closes the port the receiver talks on.
      EXPECT_FALSE(rig.watchdog.enabled);
      rig.link.Toolbar1Click("停止接收");
      EXPECT_FALSE(rig.com1.PortOpen() || rig.axis3.PortOpen());
      continue;
    }
    // The receiver falls silent; a new connect on the open port starts the watchdog,
    // which nothing stops now. Its count went on from the first connect's wait.
    sim.Command("fault silence");
    SpinUntil([] { return false; }, 800);  // what was on the line before the silence is read
    rig.link.Toolbar1Click("連接COM1");
    EXPECT_TRUE(rig.watchdog.enabled);
    SpinUntil([] { return false; }, 1000);
    ASSERT_TRUE(rig.watchdog.enabled) << "a byte came in after the silence";
    while (rig.watchdog.enabled) rig.watchdog.Fire();
    EXPECT_FALSE(rig.com1.PortOpen());
    ASSERT_EQ(rig.dialogs.shown.size(), 1u);
    EXPECT_EQ(rig.dialogs.shown[0].title, "沒有資料進來");
    EXPECT_EQ(rig.dialogs.shown[0].text, "COM7沒反應");
  }
}

TEST(GnssEndToEnd, APulledCableMidLineLeavesTheLogWhole) {
  Sim sim(Sim::Gnss{}, "DL-4", {"--rate", "20", "--quiet", "150", "--fault", "pull@6"});
  Rig rig(sim.path, sim.Folder().toStdString(), "DL-4");
  bool closed = false;
  rig.com1.OnClosed = [&] { closed = true; };
  rig.link.Connect();
  ASSERT_TRUE(SpinUntil([&] { return closed; }));
  EXPECT_FALSE(rig.com1.PortOpen());
  // Every GOBS line is a whole sentence: it starts at "$" or "#" and has its checksum.
  std::ifstream in(rig.doc.GobsPath);
  std::string line;
  int lines = 0;
  while (std::getline(in, line)) {
    ++lines;
    ASSERT_FALSE(line.empty());
    EXPECT_TRUE(line[0] == '$' || line[0] == '#') << line;
    EXPECT_NE(line.find('*'), std::string::npos) << line;
  }
  EXPECT_GT(lines, 5);
}

}  // namespace
}  // namespace tavik::test

namespace tavik::test {
namespace {

TEST(GnssEndToEnd, ACaptureReplayedOnTheListenOnlyPort) {
  // Two epochs of a receiver's capture, saved with bare line feeds as other software
  // writes them; the simulator sends each line with CR LF.
  QTemporaryDir dir;
  const QString capture = dir.filePath("capture.txt");
  QFile f(capture);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  f.write("$GPGGA,032443.00,2445.420000,N,12145.180000,E,1,07,1.4,12.500,M,17.0,M,,*00\n"
          "$GPGSA,A,3,01,02,04,05,07,09,12,,,,,,2.4,1.4,1.9*00\n"
          "$GPGGA,032444.00,2445.421000,N,12145.181000,E,2,07,1.3,12.600,M,17.0,M,,*00\n");
  f.close();
  Sim sim(Sim::Gnss{}, "單型GPS", {"--replay", capture, "--rate", "10"});
  Rig rig(sim.path, sim.Folder().toStdString(), "單型GPS");
  rig.link.Connect();
  ASSERT_TRUE(SpinUntil([&] { return rig.receiver.Panels().Label6.Caption == "DGPS-fix"; }));
  EXPECT_EQ(sim.Recorded(), "");
  EXPECT_EQ(rig.receiver.Panels().Label11.Caption, "1.3");
  EXPECT_EQ(rig.GobsLines(), 3u);
}

}  // namespace
}  // namespace tavik::test
