// The simulated receiver's own behaviour that the end-to-end runs rely on: the logs it
// keeps from the commands of each dialect, the field counts of its sentences (the
// program drops a sentence with one field too many or too few), its faults, and the
// time stamps by which a capture is paced.
#include <gtest/gtest.h>

#include <algorithm>

#include "tools/sim/gnss.h"

namespace tavik::sim {
namespace {

std::size_t LastIndex(const std::string& line) { return static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')); }

void SendLines(GnssReceiver& r, std::initializer_list<const char*> commands) {
  for (const char* c : commands) {
    for (const char* p = c; *p; ++p) r.Feed(*p);
    r.Feed('\r');
    r.Feed('\n');
  }
}

TEST(SimGnss, KeepsTheLogsOfEachDialect) {
  GnssOptions o;
  o.kind = "DL-RT2";
  GnssReceiver rt2(o, {});
  SendLines(rt2, {"com com1,9600,n,8,1,n,off", "UNLOGALL", "log com1,PRTKA,ondatetime.time,1",
                  "log com1,GPGGA,ondatetime.time,1", "log com1,GPGSV,ondatetime.time,5"});
  EXPECT_EQ(rt2.Logs(), (std::map<std::string, int>{{"PRTKA", 1}, {"GPGGA", 1}, {"GPGSV", 5}}));

  // eGPS: the computer is on COM2; what goes to COM1 is the phone's.
  o.kind = "DL-4";
  GnssReceiver egps(o, {});
  SendLines(egps, {"com com2,9600,n,8,1,n,off", "LOG COM1 GPGGA ONTIME 2", "LOG COM2 GPGGA ONTIME 2",
                   "log com2 BESTPOSA ontime 1", "unlog com2 BESTPOSA", "log com1 RANGECMPA ontime1"});
  EXPECT_EQ(egps.Logs(), (std::map<std::string, int>{{"GPGGA", 2}}));

  o.kind = "Flexpak";
  GnssReceiver flex(o, {});
  SendLines(flex, {"log com1 RANGECMPA ontime1", "log com1 ALMANACA onchanged", "LOG COM1 BESTPOSA ONTIME 1",
                   "UNLOG COM1 BESTPOSA"});
  EXPECT_EQ(flex.Logs(), (std::map<std::string, int>{{"RANGECMPA", 1}, {"ALMANACA", 0}}));
  std::string first = flex.Epoch(), second = flex.Epoch();
  EXPECT_NE(first.find("#ALMANACA"), std::string::npos);
  EXPECT_EQ(second.find("#ALMANACA"), std::string::npos);  // onchanged: once
  EXPECT_NE(second.find("#RANGECMPA"), std::string::npos);

  o.kind = "Axis3";
  GnssReceiver axis3(o, {});
  EXPECT_TRUE(axis3.ListenOnly());
  EXPECT_EQ(axis3.Logs().size(), 3u);
}

TEST(SimGnss, ABaseStaysOnItsFixedPositionUntilUnfixed) {
  GnssOptions o;
  o.kind = "DL-RT2";
  GnssReceiver r(o, {});
  SendLines(r, {"UNLOGALL", "log com1 posa ontime 1", "FIX POSITION 24.5 121.25 13.75"});
  for (int k = 0; k < 12; ++k) EXPECT_EQ(r.Epoch().rfind("$POSA,2340,", 0), 0u);
  EXPECT_EQ(r.Position().lat, 24.5);
  EXPECT_EQ(r.Position().height, 13.75);
  SendLines(r, {"UNFIX"});
  r.Epoch();
  EXPECT_NE(r.Position().lat, 24.5);
}

TEST(SimGnss, SentencesHaveTheFieldCountsTheProgramExpects) {
  GnssOptions o;
  o.kind = "PP7";
  GnssReceiver r(o, {});
  r.Epoch();
  EXPECT_EQ(LastIndex(r.BestPosA()), 29u);
  EXPECT_NE(r.BestPosA().find(",16248;SOL_COMPUTED,NARROW_INT,"), std::string::npos);
  EXPECT_EQ(LastIndex(r.DualAntennaHeadingA()), 25u);
  EXPECT_EQ(LastIndex(r.Prtka()), 19u);
  EXPECT_EQ(LastIndex(r.InsPosA()), 14u);
  EXPECT_GE(LastIndex(r.Rmc()), 11u);
  EXPECT_GE(LastIndex(r.Gll()), 6u);
  EXPECT_EQ(LastIndex(r.Gsa()), 17u);
  // 14 satellites in four GSV messages; GGA's position in NMEA degrees and minutes.
  EXPECT_EQ(r.Gsv().size(), 4u);
  EXPECT_EQ(r.Gsv()[0].substr(0, 14), "$GPGSV,4,1,14,");
  EXPECT_EQ(r.Gga().substr(17, 9), "2445.4410");
  EXPECT_EQ(NmeaChecksum("GPGLL,4916.45,N,12311.12,W,225444,A"), "31");
}

TEST(SimGnss, FaultsBreakLinesAsTold) {
  GnssOptions o;
  o.kind = "Axis3";
  struct Case {
    GnssFault fault;
    std::function<void(const std::string& normal, const std::string& faulty, GnssReceiver& r)> check;
  };
  const Case cases[] = {
      {GnssFault::Cut, [](const std::string& n, const std::string& f, GnssReceiver&) {
         EXPECT_LT(f.size(), n.size());
         EXPECT_EQ(std::count(f.begin(), f.end(), '\r'), std::count(n.begin(), n.end(), '\r') - 1);
       }},
      {GnssFault::Dollar, [](const std::string& n, const std::string& f, GnssReceiver&) {
         EXPECT_EQ(std::count(f.begin(), f.end(), '$'), std::count(n.begin(), n.end(), '$') + 1);
       }},
      {GnssFault::Fields, [](const std::string& n, const std::string& f, GnssReceiver&) {
         EXPECT_LT(std::count(f.begin(), f.end(), ','), std::count(n.begin(), n.end(), ','));
       }},
      {GnssFault::South, [](const std::string&, const std::string& f, GnssReceiver&) {
         EXPECT_NE(f.find(",S,"), std::string::npos);
         EXPECT_NE(f.find(",W,"), std::string::npos);
       }},
      {GnssFault::Pull, [](const std::string&, const std::string& f, GnssReceiver& r) {
         EXPECT_TRUE(r.Pulled());
         EXPECT_NE(f.back(), '\n');
       }},
  };
  for (const Case& c : cases) {
    GnssReceiver normal(o, {}), faulty(o, {});
    faulty.Arm(c.fault, 1);
    const std::string n = normal.Epoch(), f = faulty.Epoch();
    c.check(n, f, faulty);
  }
  GnssReceiver quiet(o, {});
  quiet.Arm(GnssFault::Silence, 2);
  EXPECT_FALSE(quiet.Epoch().empty());
  EXPECT_TRUE(quiet.Epoch().empty());
  EXPECT_TRUE(quiet.Epoch().empty());
}

TEST(SimGnss, LineTimeOfEachSentence) {
  const std::pair<const char*, double> cases[] = {
      {"$GPGGA,032443.50,2445.4,N,12145.1,E,4,10,0.9,12.5,M,17,M,1,0*00", 3 * 3600 + 24 * 60 + 43.5},
      {"$GPGLL,2445.4,N,12145.1,E,010203.00,A,D*00", 3723},
      {"#BESTPOSA,COM1,0,85.0,FINESTEERING,2340,185101.000,02000000,cdba,2724;SOL_COMPUTED", 185101},
      {"$PRTKA,2340,185101.500,0.000,14", 185101.5},
  };
  for (auto [line, want] : cases) {
    double t = -1;
    EXPECT_TRUE(LineTime(line, t)) << line;
    EXPECT_DOUBLE_EQ(t, want) << line;
  }
  double t = 0;
  EXPECT_FALSE(LineTime("$GPGSV,4,1,14,03,16,000,32", t));
}

}  // namespace
}  // namespace tavik::sim
