// End to end: the RTK base over the real Qt serial port against tavik-sim --gnss on a
// pseudo-terminal. For each receiver kind every correction format is started in turn,
// with its raw logging, and then undone; what the receiver records is compared byte for
// byte with the sequence typed from the command lists. The raw lines the receiver then
// sends land in the raw file and are counted.
#include <gtest/gtest.h>

#include <QFile>
#include <fstream>
#include <sstream>

#include "instruments/gps_receiver.h"
#include "instruments/rt_base.h"
#include "instruments/sim_process.h"
#include "platform/qt/serial_port.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {
namespace {

std::string Golden(const std::string& name) {
  std::ifstream in(std::string(TAVIK_TEST_DATA) + "/instruments/gnss/" + name, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::size_t LinesStartingWith(const std::string& path, const std::string& head) {
  std::ifstream in(path);
  std::size_t n = 0;
  for (std::string line; std::getline(in, line);) n += line.rfind(head, 0) == 0 ? 1 : 0;
  return n;
}

struct Step {
  const char* format;
  bool raw = false;  // the raw file (DL-4, DL-RT2) or the receiver's own log (PP7)
  double period = 1;
};

struct KindCase {
  const char* kind;
  const char* golden;
  bool twd67;
  std::vector<Step> steps;
  const char* rawHead;  // what the receiver's raw data look like in the file; none for PP7
};

TEST(RtBaseEndToEnd, EveryKindAndFormatIsSentAsWrittenAndUndone) {
  const KindCase cases[] = {
      {"DL-RT2", "base-dl-rt2.cmds", true, {{"RTCA", true}, {"RTCM", true}, {"CMR", true}}, "$POSA,"},
      {"DL-4",
       "base-dl-4.cmds",
       false,
       {{"RTCA"}, {"RTCM"}, {"RTCMV3", true, 0.5}, {"RTCMV3_GLO"}, {"CMR+"}, {"CMR"}},
       "#RANGECMPA"},
      {"PP7",
       "base-pp7.cmds",
       false,
       {{"NovAtelX"}, {"MSM3", true, 15}, {"RTCM"}, {"RTCMV3"}, {"RTCMV3_GLO"}, {"CMR+"}, {"CMR"}, {"RTCA"}},
       nullptr},
  };
  for (const KindCase& c : cases) {
    SCOPED_TRACE(c.kind);
    Sim sim(Sim::Gnss{}, c.kind, {"--rate", "20", "--quiet", "150"});
    ASSERT_FALSE(sim.path.empty());
    setenv("TAVIK_COM7", sim.path.c_str(), 1);
    GnssSetup setup;
    setup.GpsReceiverKind = c.kind;
    setup.CommPortNumber = 7;
    setup.CommBaud = 115200;
    GpsState gps;
    Document doc;
    SetDocumentName(doc, sim.Folder().toStdString() + "/field");
    View view;
    GpsDatumSettings datum;
    if (c.twd67) SetDatumTWD67(datum);
    GpsReceiver receiver(gps, setup, doc, datum);
    ui::MemorySettingsStore settings;
    ui::QtSerialPort com1(&settings);
    com1.OnByte = [&](char ch) { receiver.MSComm1_OnComm(ch); };
    ui::ScriptedDialogs dialogs;
    RtBaseLogic base(doc, view, gps, setup, receiver.Panels(), datum, dialogs);
    base.MSComm1 = &com1;
    gps.RawPath = sim.Folder().toStdString() + "/base.GPS";

    // The position of the last sentence, the mark's height and the antenna above it.
    base.Source = BaseSource::Received;
    base.XEbox = "326158.000";
    base.YNbox = "2739072.000";
    base.ZHbox = "12.5";
    base.Label13 = "1.52";
    for (const Step& s : c.steps) {
      SCOPED_TRACE(s.format);
      gps.GpsLat = 24.757;
      gps.GpsLon = 121.753;
      base.BaseFormat = s.format;
      base.RawDataCheckFlag = s.raw && c.rawHead ? kTrue : kFalse;
      base.Check1 = s.raw && !c.rawHead ? kTrue : kFalse;
      setup.RawPeriodSeconds = s.period;
      ASSERT_TRUE(base.CmdStart());
      EXPECT_EQ(base.Label10, "24-45-25.2000");
      EXPECT_EQ(base.Label45, "121-45-10.8000");
      EXPECT_EQ(base.Label11, "12.500");
    }
    EXPECT_TRUE(dialogs.shown.empty());
    if (c.rawHead) {
      // The receiver answers the raw logs; each line goes to the raw file and the counter.
      ASSERT_TRUE(SpinUntil([&] { return LinesStartingWith(gps.RawPath, c.rawHead) >= 3; }));
      EXPECT_EQ(static_cast<std::size_t>(receiver.Panels().RawCount), LinesStartingWith(gps.RawPath, ""));
    }
    ASSERT_TRUE(base.Command4());
    EXPECT_EQ(gps.GpsRawLogging, kFalse);
    const std::string golden = Golden(c.golden);
    ASSERT_FALSE(golden.empty());
    SpinUntil([&] { return sim.Recorded().size() >= golden.size(); }, 3000);
    EXPECT_EQ(sim.Recorded(), golden);
    com1.OnByte = nullptr;
    com1.Close();
  }
}

}  // namespace
}  // namespace tavik::test
