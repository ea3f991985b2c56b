// The receiver's connect sequences byte for byte, and the link's keys and watchdog over
// fake ports. The expected texts are written out in full here, not built from the
// code's own tables, so a changed letter in a command shows.
#include <gtest/gtest.h>

#include "fake_port.h"
#include "instruments/gnss_link.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {
namespace {

std::string Lines(std::initializer_list<const char*> lines) {
  std::string out;
  for (const char* l : lines) out += std::string(l) + "\r\n";
  return out;
}

const char* kGrs80 = "userdatum 6378137,298.257223563,0,0,0,0,0,0.9999";
const char* kTwd67 = "userdatum 6378160,298.247167556489,0,0,0,0,0,0.9999";

struct View : GnssLinkView {
  std::map<std::string, bool> keys;
  bool receiving = false;
  std::string obsBox = "x", label25_0;
  void EnableToolbarKey(const std::string& key, bool enabled) override { keys[key] = enabled; }
  void SetOBSBoxReceiving(bool r) override { receiving = r; }
  void ClearOBSBox() override { obsBox.clear(); }
  void ShowLabel25_0(const std::string& d) override { label25_0 = d; }
};

struct Rig {
  GnssSetup setup;
  ui::ScriptedDialogs dialogs;
  View view;
  ui::ManualTimer timer;
  FakePort com1, axis3, ceastar, hydroBox, eSea, tss;
  GnssLink link{setup, dialogs, view, timer};
  std::string datum = "TWD97";
  bool documentOpen = true;

  Rig() {
    link.MSComm1 = &com1;
    link.MSComm_Axis3 = &axis3;
    link.Ceastar = &ceastar;
    link.MSComm2 = &hydroBox;
    link.ESeaSound206 = &eSea;
    link.MSTSSComm = &tss;
    link.DocumentOpen = [this] { return documentOpen; };
    link.GpsDatum = [this] { return datum; };
    setup.CommPortNumber = 4;
    setup.CommBaud = 115200;
  }
};

TEST(GnssConnect, EachKindSendsItsSequence) {
  struct Case {
    const char* legend;
    std::function<void(Rig&)> set;
    std::string written;
  };
  const Case cases[] = {
      {"PP7 ignores corrections, SBAS and IMU",
       [](Rig& r) {
         r.setup.GpsReceiverKind = "PP7";
         r.setup.CorrectionFormat = "CMR";
         r.setup.DiffSbas = -1;
         r.setup.ImuAttached = -1;
       },
       Lines({"serialconfig com1 115200 N 8 1 N on", "FIX NONE", "SLEEP OFF", "interfacemode com2 auto none off",
              "LOG COM1 BESTPOSA ONTIME 1", "LOG COM1 dualantennaheadinga ONTIME 1", "log com1 GPRMC ontime 1",
              "log com1 GPGSV ontime 1", "log com1 GPGSA ontime 7", "log com1 GPGLL ontime 1", kGrs80})},
      {"DL-RT2 always takes RTCA, TWD67 datum",
       [](Rig& r) {
         r.setup.GpsReceiverKind = "DL-RT2";
         r.setup.CorrectionFormat = "CMR+";
         r.datum = "TWD67";
       },
       Lines({"com com1,115200,n,8,1,n,off", "UNFIX", "UNLOGALL", "SLEEP OFF", kTwd67, "accept COM2 RTCA",
              "log com1,PRTKA,ondatetime.time,1", "log com1,GPGGA,ondatetime.time,1",
              "log com1,GPGSV,ondatetime.time,5", "log com1,GPGSA,ondatetime.time,7"})},
      {"DL-4 with SBAS and RTCM",
       [](Rig& r) {
         r.setup.GpsReceiverKind = "DL-4";
         r.setup.CorrectionFormat = "RTCM";
         r.setup.DiffSbas = -1;
       },
       Lines({"COM COM1,115200,N,8,1,N,OFF", "FIX NONE", "SLEEP OFF", "WAASCORRECTION ENABLE", "SBASCONTROL ENABLE",
              "interfacemode com2 rtcm novatel on", "LOG COM1 BESTPOSA ONTIME 1", "log com1 GPRMC ontime 1",
              "log com1 GPGSV ontime 1", "log com1 GPGSA ontime 7", "log com1 GPGLL ontime 1", kGrs80})},
      {"DL-4, unknown format selects RTCMV3, IMU lines before the datum",
       [](Rig& r) {
         r.setup.GpsReceiverKind = "DL-4";
         r.setup.CorrectionFormat = "SPARTN";
         r.setup.ImuAttached = -1;
         r.setup.ImuOffsetX = 0.25;
         r.setup.ImuOffsetY = -1.5;
         r.setup.ImuOffsetZ = 2;
         r.datum = "WGS84";
       },
       Lines({"COM COM1,115200,N,8,1,N,OFF", "FIX NONE", "SLEEP OFF", "interfacemode com2 rtcmv3 novatel on",
              "LOG COM1 BESTPOSA ONTIME 1", "log com1 GPRMC ontime 1", "log com1 GPGSV ontime 1",
              "log com1 GPGSA ontime 7", "log com1 GPGLL ontime 1", "interfacemode aux imu imu off",
              "SETIMUTYPE imu_hg1700_ag17", "SETIMUTOANTOFFSET 0.25 -1.5 2", "LOG COM1 INSPOSA ONTIME 1",
              "UNLOG COM1 BESTPOSA", kGrs80})},
      {"Flexpak with raw logging at 1 s: the period follows the keyword without a blank",
       [](Rig& r) {
         r.setup.GpsReceiverKind = "Flexpak";
         r.setup.CorrectionFormat = "RTCA";
       },
       Lines({"COM COM1,115200,N,8,1,N,OFF", "FIX NONE", "SLEEP OFF", "interfacemode com2 rtca novatel on",
              "LOG COM1 BESTPOSA ONTIME 1", "log com1 GPRMC ontime 1", "log com1 GPGSV ontime 1",
              "log com1 GPGSA ontime 7", "log com1 GPGLL ontime 1", kGrs80, "log com1 RANGECMPA ontime1",
              "log com1 ALMANACA onchanged", "log com1 RAWEPHEMA onchanged", "log com1 IONUTCA onchanged",
              "interfacemode com2 rtca none", "log com1 BESTPOSA ontime 1"})},
      {"Flexpak without raw logging",
       [](Rig& r) {
         r.setup.GpsReceiverKind = "Flexpak";
         r.setup.RawLogOnRover = 0;
         r.setup.RawPeriodSeconds = 0.5;
       },
       Lines({"COM COM1,115200,N,8,1,N,OFF", "FIX NONE", "SLEEP OFF", "interfacemode com2 rtcmv3 novatel on",
              "LOG COM1 BESTPOSA ONTIME 1", "log com1 GPRMC ontime 1", "log com1 GPGSV ontime 1",
              "log com1 GPGSA ontime 7", "log com1 GPGLL ontime 1", kGrs80, "interfacemode com2 rtca none",
              "log com1 BESTPOSA ontime 1"})},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.legend);
    Rig rig;
    c.set(rig);
    rig.link.Toolbar1Click("連接COM1");
    EXPECT_EQ(rig.com1.openedWith, std::vector<std::string>{"COM4 115200,n,8,1"});
    EXPECT_EQ(rig.com1.written, c.written);
    EXPECT_TRUE(rig.timer.enabled);
    EXPECT_EQ(rig.timer.interval, 1000);
    EXPECT_TRUE(rig.view.keys["停止接收"] && rig.view.keys["接收資料"] && rig.view.receiving);
    EXPECT_EQ(rig.view.label25_0, rig.datum);
    EXPECT_TRUE(rig.dialogs.shown.empty());
    // A second connect on the open port sends the whole sequence again without reopening.
    rig.link.Toolbar1Click("連接COM1");
    EXPECT_EQ(rig.com1.opens, 1);
    EXPECT_EQ(rig.com1.written, c.written + c.written);
  }
}

TEST(GnssConnect, EgpsTakesTwoStagesAndNoWatchdog) {
  Rig rig;
  rig.setup.GpsReceiverKind = "DL-4";
  rig.setup.DiffEgps = -1;
  rig.setup.CorrectionFormat = "CMR";
  rig.setup.ImuAttached = -1;
  rig.setup.ImuOffsetZ = 1.2;
  rig.setup.SounderKind = "HydroBox";
  rig.link.Toolbar1Click("連接COM1");
  EXPECT_EQ(rig.com1.written,
            Lines({"com com2,115200,n,8,1,n,off", "FIX none", "SLEEP OFF", "LOG COM1 GPGGA ONTIME 2",
                   "LOG COM2 GPGGA ONTIME 2", "interfacemode aux imu imu off", "SETIMUTYPE imu_hg1700_ag17",
                   "SETIMUTOANTOFFSET 0 0 1.2", "LOG COM2 INSPOSA ONTIME 1"}));
  EXPECT_FALSE(rig.timer.enabled);
  EXPECT_EQ(rig.hydroBox.opens, 0);  // the sounder waits for the second stage
  ASSERT_EQ(rig.dialogs.shown.size(), 1u);
  EXPECT_EQ(rig.dialogs.shown[0].title, "步驟提示");
  EXPECT_EQ(rig.dialogs.shown[0].text, "請稍待..(等收到修正訊號後,才按[接收]鈕)");

  rig.com1.written.clear();
  rig.link.Toolbar1Click("接收資料");
  EXPECT_EQ(rig.com1.written,
            Lines({"com com2,115200,n,8,1,n,off", "FIX none", "SLEEP OFF", "interfacemode com1 cmr novatel on",
                   "log com1 GPGGA ontime 5", "log com2 BESTPOSA ontime 1", "log com2 GPGGA,ondatetime.time,1",
                   "log com2 GPGSA,ondatetime.time,7", "log com2 GPGSV,ondatetime.time,1",
                   "log com2 GPGLL,ondatetime.time,1", "log com2 GPRMC,ondatetime.time,1", "unlog com2 BESTPOSA",
                   kGrs80}));
  EXPECT_FALSE(rig.timer.enabled);
  EXPECT_EQ(rig.hydroBox.openedWith, std::vector<std::string>{"COM2 4800,n,8,1"});

  // A format outside the table sends no correction line in the second stage.
  rig.setup.CorrectionFormat = "SPARTN";
  rig.setup.ImuAttached = 0;
  rig.com1.written.clear();
  rig.link.Receive();
  EXPECT_EQ(rig.com1.written.find("interfacemode"), std::string::npos);
}

TEST(GnssConnect, RefusalsAndListenOnlyKinds) {
  {
    SCOPED_TRACE("no document: nothing, silently");
    Rig rig;
    rig.documentOpen = false;
    rig.setup.GpsStopped = -1;
    rig.link.Connect();
    EXPECT_EQ(rig.com1.opens, 0);
    EXPECT_EQ(rig.setup.GpsStopped, -1);
    EXPECT_TRUE(rig.dialogs.shown.empty());
  }
  for (auto [kind, message] : {std::pair{"PP7", "通訊埠指定錯誤3"}, std::pair{"Axis3", "通訊埠指定錯誤3"}}) {
    SCOPED_TRACE(std::string("port refused: ") + kind);
    Rig rig;
    rig.setup.GpsReceiverKind = kind;
    rig.com1.refuseOpen = rig.axis3.refuseOpen = true;
    rig.link.Connect();
    EXPECT_EQ(rig.dialogs.Messages(), std::vector<std::string>{message});
    EXPECT_FALSE(rig.timer.enabled);
    EXPECT_FALSE(rig.view.keys["停止接收"]);
  }
  {
    SCOPED_TRACE("eGPS stages tell their port errors apart");
    Rig rig;
    rig.setup.GpsReceiverKind = "DL-4";
    rig.setup.DiffEgps = -1;
    rig.com1.refuseOpen = true;
    rig.link.Connect();
    rig.link.Receive();
    EXPECT_EQ(rig.dialogs.Messages(), (std::vector<std::string>{"通訊埠指定錯誤1", "通訊埠指定錯誤2"}));
  }
  for (const char* kind : {"單型GPS", "Axis3"}) {
    SCOPED_TRACE(kind);
    Rig rig;
    rig.setup.GpsReceiverKind = kind;
    rig.setup.SounderKind = "Ceastar";
    rig.setup.MotionSensorKind = "TSS_DMS3";
    rig.link.Connect();
    EXPECT_EQ(rig.axis3.openedWith, std::vector<std::string>{"COM4 115200,n,8,1"});
    EXPECT_EQ(rig.com1.opens + rig.axis3.written.size(), 0u);
    EXPECT_FALSE(rig.timer.enabled);
    EXPECT_TRUE(rig.view.keys["停止接收"]);
    EXPECT_EQ(rig.view.keys.count("接收資料"), 0u);
    EXPECT_EQ(rig.ceastar.openedWith, std::vector<std::string>{"COM2 4800,n,8,1"});
    EXPECT_EQ(rig.tss.openedWith, std::vector<std::string>{"COM3 9600,n,8,1"});
    EXPECT_TRUE(rig.link.Receiving());  // positions come on the listening port
    rig.link.Stop();
    EXPECT_FALSE(rig.axis3.open);
    EXPECT_FALSE(rig.link.Receiving());
  }
  {
    SCOPED_TRACE("CEEECHO: the sounder alone, GGA comes on its port");
    Rig rig;
    rig.setup.SounderKind = "CEEECHO";
    rig.link.Connect();
    EXPECT_EQ(rig.com1.opens, 0);
    EXPECT_EQ(rig.ceastar.opens, 1);
    EXPECT_TRUE(rig.link.Receiving());
  }
}

TEST(GnssConnect, WatchdogAndStop) {
  Rig rig;
  rig.setup.GpsReceiverKind = "DL-4";
  rig.link.Connect();
  // Data after 5 s stops the timer but keeps the count: the next wait is 15 s.
  for (int i = 0; i < 5; ++i) rig.timer.Fire();
  rig.link.DataArrived();
  EXPECT_FALSE(rig.timer.enabled);
  EXPECT_EQ(rig.link.WatchdogCount, 5);
  EXPECT_TRUE(rig.link.Receiving());
  rig.link.Stop();
  EXPECT_FALSE(rig.link.Receiving());
  EXPECT_FALSE(rig.com1.open);
  EXPECT_EQ(rig.setup.GpsStopped, -1);
  EXPECT_FALSE(rig.view.keys["停止接收"]);
  EXPECT_FALSE(rig.view.receiving);
  EXPECT_EQ(rig.view.obsBox, "");
  EXPECT_EQ(rig.com1.written.find("UNLOG"), std::string::npos);  // stopping sends nothing

  rig.link.Connect();
  EXPECT_EQ(rig.setup.GpsStopped, 0);
  for (int i = 0; i < 14; ++i) rig.timer.Fire();
  EXPECT_TRUE(rig.com1.open);
  EXPECT_TRUE(rig.dialogs.shown.empty());
  rig.timer.Fire();
  EXPECT_FALSE(rig.com1.open);
  EXPECT_FALSE(rig.timer.enabled);
  EXPECT_FALSE(rig.view.receiving);
  EXPECT_FALSE(rig.link.Receiving());  // a silent receiver gives no fix
  EXPECT_EQ(rig.link.WatchdogCount, 0);
  ASSERT_EQ(rig.dialogs.shown.size(), 1u);
  EXPECT_EQ(rig.dialogs.shown[0].title, "沒有資料進來");
  EXPECT_EQ(rig.dialogs.shown[0].text, "COM4沒反應");

  // Receive opens the port again with the settings it kept.
  rig.link.Receive();
  EXPECT_EQ(rig.com1.openedWith.back(), "COM4 115200,n,8,1");
  EXPECT_TRUE(rig.view.receiving);
}

}  // namespace
}  // namespace tavik::test
