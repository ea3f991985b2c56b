// The GNSS receiving side, sentence by sentence: each case is the bytes of one or more
// lines on a port and the state, panels and logs they must leave. Every case is fed
// whole and again split at every byte boundary, and must leave the same snapshot.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "geo/grid.h"
#include "gps_rig.h"

namespace tavik::test {
namespace {

using Port = GpsReceiver::Port;
using Expect = std::vector<std::pair<std::string, std::string>>;

std::string N(double v) { return num::RoundTrip(v); }

// A #BESTPOSA line with the given last header field and status, position type and position.
std::string Bestpos(const std::string& field9, const std::string& type, const std::string& lat = "24.12345678901",
                    const std::string& lon = "120.98765432101") {
  return "#BESTPOSA,COM1,0,83.5,FINESTEERING,1419,336208.000,00000040,6145," + field9 + "," + type + "," + lat + "," +
         lon + ",101.2345,17.0000,WGS84,0.0123,0.0234,0.0346,\"0\",1.000,0.000,14,12,12,11,0,06,00,03*6eb3e1c5";
}
const std::string kBestOld = Bestpos("2724;SOL_COMPUTED", "NARROW_INT");
const std::string kBestNew = Bestpos("16248;SOL_COMPUTED", "NARROW_INT");
const std::string kBestPos = "120.98765432101 24.12345678901 101.2345;";
const std::string kGga = "$GPGGA,023045.00,2407.4073,N,12059.2593,E,4,12,0.9,100.123,M,17.0,M,1.0,0000*5C";
const std::string kGgaPos = N(120 + 59.2593 / 60) + " " + N(24 + 7.4073 / 60) + " 100.123;";
std::string Prtka(const std::string& rtk, const std::string& fix) {
  return "$PRTKA,1419,336208.00,x,14,x,11,24.5,121.25,88.5,x,x,0.012,0.034,0.056,x," + rtk + "," + fix + ",x,x*1F";
}
const std::string kDual =
    "#DUALANTENNAHEADINGA,COM1,0,80.0,FINESTEERING,1936,168887.000,02040000,d426,32768;SOL_COMPUTED,NARROW_INT,"
    "1.5,45.5,0.1,0.0,0.25,0.3,\"999\",18,16,16,16,0,01,00,33*1a2b3c4d";
const std::string kGsa = "$GPGSA,A,3,01,02,04,05,06,07,08,09,10,11,,,1.8,0.9,1.5*33";
const std::string kGsv[4] = {
    "$GPGSV,4,1,14,01,90,000,45,02,00,090,40,03,45,180,00,04,30,270,35*70",
    "$GPGSV,4,2,14,05,10,010,30,06,20,020,31,07,30,030,32,08,40,040,33*71",
    "$GPGSV,4,3,14,09,50,050,34,10,60,060,35,11,70,070,36,12,80,080,*72",
    "$GPGSV,4,4,14,13,15,100,20,14,25,200,21*73",
};
const std::string kInspos =
    "#INSPOSA,COM1,0,73.0,FINESTEERING,1541,487970.000,00000000,54e2,4293;1541,487970.000,24.1,121.1,100.0,"
    "INS_SOLUTION_GOOD*hh";

struct Case {
  const char* legend;
  std::string bytes;
  Expect expect;
  const char* kind = "DL-4";
  Port port = Port::MSComm1;
};

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases = {
      // NovAtel logs.
      {"bestpos older firmware", kBestOld + "\r\n",
       {{"sec", "336208"}, {"lat", "24.12345678901"}, {"lon", "120.98765432101"}, {"h", "101.2345"},
        {"L25_3", "0.012"}, {"L25_9", "0.023"}, {"L25_10", "0.035"}, {"L8", "解算完成"}, {"L8c", "8000000F/FF0000"},
        {"L6", "最佳解"}, {"L6c", "FF/FFFF"}, {"fix", "最佳解"}, {"hasfix", "-1"}, {"L12", "14"}, {"L11", "11"}, {"OBS", kBestOld},
        {"gobs", kBestOld + "|"}, {"pos", kBestPos}}},
      {"bestpos current firmware", kBestNew + "\r\n",
       {{"L8", "解算完成"}, {"L6", "最佳解"}, {"gobs", kBestNew + "|"}, {"pos", kBestPos}}},
      {"bestpos no solution yet", Bestpos("2724;INSUFFICIENT_OBS", "NONE", "0.0", "0.0") + "\r\n",
       {{"L8", "觀測不足"}, {"L6", "尚未解出"}, {"L6c", "8000000F/0"}, {"pos", ""}, {"hasfix", "0"}}},
      {"bestpos fix then none: the fix is gone", kBestOld + "\r\n" + Bestpos("2724;INSUFFICIENT_OBS", "NONE") + "\r\n",
       {{"fix", "尚未解出"}, {"hasfix", "0"}}},
      {"bestpos status as a number", Bestpos("2724;5", "WAAS") + "\r\n",
       {{"L8", "距離過大"}, {"L6", "WAAS"}, {"L6c", "FF0000/FFFFFF"}, {"pos", kBestPos}}},
      {"bestpos unknown status abandons after the sigmas", Bestpos("16248;INTEGRITY_WARNING", "NARROW_INT") + "\r\n",
       {{"gobs", Bestpos("16248;INTEGRITY_WARNING", "NARROW_INT") + "|"}, {"L25_10", "0.035"}, {"L8", ""}, {"L6", ""},
        {"pos", ""}}},
      {"bestpos unknown type keeps the fix text, resets colours",
       Bestpos("2724;SOL_COMPUTED", "FIXEDPOS") + "\r\n" + Bestpos("2724;SOL_COMPUTED", "PPP") + "\r\n",
       {{"fix", "基站模式"}, {"L6", "基站模式"}, {"L6c", "8000000F/0"}}},
      {"bestpos with 29 or 31 fields is ignored",
       kBestOld.substr(0, kBestOld.rfind(',')) + "\r\n" + kBestOld + ",x\r\n",
       {{"gobs", ""}, {"OBS", kBestOld + ",x"}, {"L8", ""}, {"pos", ""}}},
      {"bestpos on Axis3 is only logged", kBestOld + "\r\n",
       {{"gobs", kBestOld + "|"}, {"sec", "0"}, {"L8", ""}, {"pos", ""}}, "Axis3"},
      {"prtka RT2 best", Prtka("0", "4") + "\r\n",
       {{"week", "1419"}, {"sec", "336208"}, {"L25_9", "0.034"}, {"L25_3", "0.012"}, {"L25_10", "0.056"},
        {"fix", "RT2"}, {"L6", "RT2"}, {"L6c", "8000000F/FF"}, {"L8", "最佳解"}, {"L8c", "FF/FFFF"},
        {"L12", "14"}, {"L11", "11"}, {"pos", "121.25 24.5 88.5;"}, {"gobs", Prtka("0", "4") + "|"}}},
      {"prtka RT20 and single", Prtka("1", "3") + "\r\n",
       {{"fix", "RT20"}, {"L8", "一般解"}, {"L8c", "8000000F/0"}}},
      {"prtka single has no differential", Prtka("0", "1") + "\r\n",
       {{"fix", "單點定位"}, {"L8", "沒有差分"}, {"hasfix", "-1"}}},
      {"prtka without data after a fix", Prtka("0", "4") + "\r\n" + Prtka("0", "0") + "\r\n",
       {{"fix", "沒有資料"}, {"hasfix", "0"}}},
      {"prtka with 19 fields is ignored", Prtka("0", "4").substr(0, Prtka("0", "4").rfind(',')) + "\r\n",
       {{"gobs", ""}, {"fix", ""}, {"pos", ""}}},
      {"dual antenna heading", kDual + "\r\n",
       {{"heading", N(45.5 / 180 * 3.14159265358979)}, {"L25_15", "45.50度"}, {"L25_16", "0.25度"}, {"gobs", ""}}},
      {"insposa status in the depth labels", kInspos + "\r\n",
       {{"gobs", kInspos + "|"}, {"L21_0", "SOLUTION_GOOD*hh"}, {"L21_1", "GOOD*hh"}}},
      {"posa", "$POSA,1,2,3,4\r\n", {{"L6", "單點定位"}, {"h", "0"}, {"L25_9", "0"}, {"raw", ""}, {"OBS", "$POSA,1,2,3,4"}}},
      {"raw capture", "#RANGEA,COM1,0,1*aa\r\n$ALMA,1*bb\r\n",
       {{"raw", "#RANGEA,COM1,0,1*aa\r\n$ALMA,1*bb\r\n"}, {"rawcount", "2"}, {"gobs", ""}}},
      // NMEA.
      {"gga rtk fix", kGga + "\r\n",
       {{"sec", "23045"}, {"L6", "RTK-fix"}, {"hasfix", "-1"}, {"L6c", "8000000F/FF0000"}, {"L12", "12"}, {"L11", "0.9"},
        {"L1_1", "HDOP"}, {"h", "100.123"}, {"pos", kGgaPos}, {"gobs", kGga + "|"}, {"lat", "0"}}},
      {"gga from a multi-constellation receiver is logged as $GPGGA", "$GN" + kGga.substr(3) + "\r\n",
       {{"gobs", kGga + "|"}, {"pos", kGgaPos}}},
      {"gga southern and western letters are not read",
       "$GPGGA,023045.00,2407.4073,S,12059.2593,W,4,12,0.9,100.123,M,17.0,M,1.0,0000*5C\r\n", {{"pos", kGgaPos}}},
      {"gga without position", "$GPGGA,023045.00,,,,,0,00,99.99,,,,,,*48\r\n",
       {{"L6", "沒有GPS訊號"}, {"L6c", "8000000F/FF"}, {"L12", "0"}, {"L11", "99.99"}, {"gobs", ""}, {"pos", ""}}},
      {"gga fix, then a quality 0 position", kGga + "\r\n" + "$GPGGA,1,2407.4,N,12059.2,E,0,5,2.5,10,M,,,,*00\r\n",
       {{"L6", "沒有GPS訊號"}, {"hasfix", "0"}}},
      {"gga fix, then no position", kGga + "\r\n" + "$GPGGA,023045.00,,,,,0,00,99.99,,,,,,*48\r\n", {{"hasfix", "0"}}},
      {"gga 3 satellites, quality 1", "$GPGGA,1,2407.4,N,12059.2,E,1,3,2.5,10,M,,,,*00\r\n", {{"L6", "GPS-fix"}}},
      {"gga 3 satellites, quality 3 keeps the warning", "$GPGGA,1,2407.4,N,12059.2,E,3,3,2.5,10,M,,,,*00\r\n",
       {{"L6", "衛星數不夠"}, {"L6c", "8000000F/FF"}}},
      {"gsa", kGsa + "\r\n", {{"dop", "1.8 0.9 1.5"}, {"gobs", kGsa + "|"}}},
      {"code page 950 text reaches GOBS as it came", "$GNGSV,1,1,00,\xA4\xA4*00\r\n",
       {{"OBS", "$GNGSV,1,1,00,中*00"}, {"gobs", "$GPGSV,1,1,00,\xA4\xA4*00|"}}},
      {"gsv series of 14", kGsv[0] + "\r\n" + kGsv[1] + "\r\n" + kGsv[2] + "\r\n" + kGsv[3] + "\r\n",
       {{"markers", "12"}, {"L4_2", "14"}, {"L4_3", "10"}}},
      {"rmc valid only, gll", "$GPRMC,023045.00,A,2407.4,N,12059.2,E,0.0,0.0,231126,,,D*1\r\n"
                              "$GPRMC,023046.00,V,,,,,,,231126,,,N*2\r\n$GPGLL,2407.4,N,12059.2,E,023045.00,A,D*3\r\n",
       {{"gobs", "$GPRMC,023045.00,A,2407.4,N,12059.2,E,0.0,0.0,231126,,,D*1|$GPGLL,2407.4,N,12059.2,E,023045.00,A,D*3|"}}},
      // Line assembly.
      {"a line start inside a line restarts it", "$GPGGA,0230#garbage$GPG" + kGga.substr(4) + "\r\n",
       {{"pos", kGgaPos}, {"gobs", kGga + "|"}}},
      {"empty lines, unknown heads and a cut line", "\r\r\n$GNRMC,1,A*00\r\nxyz\r\n" + kGga.substr(0, 40),
       {{"gobs", ""}, {"L6", ""}, {"pos", ""}}},
      // The listen-only port: depths and GGA, no head rewrite.
      {"axis3 depth and gga", "DT 01234\r\n" + kGga + "\r\n$GNGSA,A,3,,,,,,,,,,,,,1,1,1*0\r\n",
       {{"depth", "12.34"}, {"L21_0", "12.34"}, {"pos", kGgaPos}, {"OBS", kGga}, {"gobs", kGga + "|"}},
       "Axis3",
       Port::MSComm_Axis3},
      {"axis3 sounder error", "DTE00150\r\n", {{"depth", "1.5"}, {"L21_0", "Error"}}, "Axis3", Port::MSComm_Axis3},
      {"axis3 gsa without a fix", "$GPGSA,A,1,,,,,,,,,,,,,99,99,99*0\r\n", {{"L8", "無法定位"}, {"gobs", ""}},
       "Axis3", Port::MSComm_Axis3},
      // The sounder port: lines end at LF.
      {"ceastar gga and vtg", kGga + "\n$GNVTG,0.0,T,,M,0.0,N,0.0,K,D*1\n",
       {{"pos", kGgaPos}, {"OBS", kGga}, {"gobs", kGga + "|"}, {"L8", "差分定位"}}, "DL-4", Port::Ceastar},
  };
  return cases;
}

void Check(const Case& c, const std::map<std::string, std::string>& got) {
  for (const auto& [key, want] : c.expect) {
    ASSERT_TRUE(got.count(key)) << key;
    EXPECT_EQ(got.at(key), want) << c.legend << ": " << key;
  }
}

TEST(GpsReceiver, SentenceTableWholeAndSplitAtEveryByte) {
  for (const Case& c : Cases()) {
    SCOPED_TRACE(c.legend);
    GpsRig whole(c.kind);
    whole.rx.Feed(c.port, c.bytes);
    auto expected = whole.Snapshot();
    Check(c, expected);
    testing::TempHome folder;  // one for all the split runs
    for (std::size_t at = 1; at < c.bytes.size(); ++at) {
      GpsRig split(c.kind, &folder.path);
      split.rx.Feed(c.port, c.bytes.data(), at);
      split.rx.Feed(c.port, c.bytes.data() + at, c.bytes.size() - at);
      ASSERT_EQ(split.Snapshot(), expected) << "split at " << at;
    }
  }
}

TEST(GpsReceiver, SkyPlotKeepsTwelveAndPlacesMarkersByElevationAndAzimuth) {
  GpsRig rig;
  for (const auto& s : kGsv) rig.rx.Feed(Port::MSComm1, s + "\r\n");
  // The fourth message stores nothing: column 0 still holds PRN 1.
  EXPECT_EQ(rig.gps.SatTable[0][0], 1);
  EXPECT_EQ(rig.gps.SatStoredCount, 12);
  const auto& m = rig.rx.Sky().Markers;
  ASSERT_EQ(m.size(), 12u);
  // The zenith, the eastern horizon, 45 degrees up in the south (signal-to-noise 0).
  EXPECT_NEAR(std::hypot(m[0].X - 166.5, m[0].Y - 166.833), 0, 1e-9);
  EXPECT_NEAR(std::hypot(m[1].X - 316.5, m[1].Y - 166.833), 0, 1e-9);
  EXPECT_NEAR(std::hypot(m[2].X - 166.5, m[2].Y - 166.833 - 75), 0, 1e-9);
  EXPECT_EQ((std::vector<bool>{m[2].Used, m[3].Used, m[11].Used}), (std::vector<bool>{false, true, false}));
  // A message one satellite short keeps what it read.
  rig.rx.Feed(Port::MSComm1, "$GPGSV,1,1,03,21,10,010,30,22,20,020,31,23,30,030,32*70\r\n");
  EXPECT_EQ(rig.gps.SatStoredCount, 3);
  EXPECT_EQ(rig.rx.Sky().Markers.size(), 3u);
  EXPECT_EQ(rig.gps.SatTable[0][3], 4);  // column 3 is left from before
}

TEST(GpsReceiver, PositionUpdateSetsGridGroundAndDistances) {
  GpsRig rig;
  rig.doc.InstrumentHeight = 1.5;
  rig.rx.Feed(Port::MSComm1, kGga + "\r\n");
  double e = 0, n = 0;
  g2xy(rig.datum, 120 + 59.2593 / 60, 24 + 7.4073 / 60, e, n);
  const GpsPanels& p = rig.rx.Panels();
  EXPECT_EQ(std::make_pair(rig.gps.GpsX, rig.gps.GpsY), std::make_pair(e, n));
  EXPECT_EQ((std::vector<std::string>{p.Label22, p.Label18, p.Label25[7], p.Label3, p.Label10}),
            (std::vector<std::string>{"98.623", "100.123", num::Format(e, "0.000"), "", ""}));

  // With a sounder, a station 50 m away and a last record 5 m away.
  rig.setup.SounderKind = "HydroLite";
  rig.gps.SounderDepth = 3.25;
  rig.doc.TargetHeight = 0.5;
  rig.doc.StationSet = -1;
  rig.doc.StationE = e - 30;
  rig.doc.StationN = n - 40;
  rig.gps.LastRecordedX = e - 3;
  rig.gps.LastRecordedY = n + 4;
  rig.rx.Feed(Port::MSComm1, kGga + "\r\n");
  EXPECT_EQ(rig.gps.GpsPrevX, e);
  EXPECT_EQ(rig.gps.GpsGround, 100.123 - 1.5 - 0.5 - 3.25);
  EXPECT_EQ(p.Label3 + " " + p.Label10, "5.000 50.00");
}

TEST(GpsReceiver, WatchdogViewAndNoDocument) {
  struct View : GpsPanelView {
    int panels = 0, sky = 0;
    void ShowGpsPanels(const GpsPanels&) override { ++panels; }
    void ShowSkyPlot(const SkyPlot&) override { ++sky; }
  } view;
  GpsRig rig;
  int stops = 0;
  rig.rx.hooks.StopWatchdog = [&] { ++stops; };
  rig.rx.view = &view;
  rig.rx.Feed(Port::MSComm1, "xy\r\n" + kGga + "\r\n" + kGsv[0] + "\r\n");
  EXPECT_EQ(stops, static_cast<int>(4 + kGga.size() + 2 + kGsv[0].size() + 2));
  EXPECT_EQ(view.panels, 2);  // the garbage line changed nothing
  EXPECT_EQ(view.sky, 2);     // GGA writes LabelHDOP of the plot, GSV redraws it

  // With no document open there is no GOBS log, and every sentence fails there.
  rig.doc.GobsPath.clear();
  rig.rx.Feed(Port::MSComm1, kBestNew + "\r\n" + kGga + "\r\n");
  EXPECT_EQ(rig.rx.Panels().Label8.Caption, "");
  EXPECT_EQ(rig.positions.size(), 1u);  // the first GGA's
}

}  // namespace
}  // namespace tavik::test
