// The memory-dump readers: the records of each layout, damaged records counted and
// skipped, and a dump cut at every byte keeping exactly the records before the cut.
#include <gtest/gtest.h>

#include "dump_writer.h"
#include "instruments/memory_dump.h"

namespace tavik::dump {
namespace {

using test::GtsRecord;
using test::SdrHeader;
using test::SdrLine;

std::string SdrJob() {
  return SdrHeader() + SdrLine("10NM", {"JOB1"}) + SdrLine("08KI", {"B1", "2000.000", "1100.000", "52.000", "BS"}) +
         SdrLine("02TP", {"S1", "2000.000", "1000.000", "50.000", "1.500", "STN"}) + SdrLine("03NM", {"1.300"}) +
         SdrLine("07TP", {"S1", "B1", "", "30.0000"}) +
         SdrLine("09F1", {"S1", "P1", "100.000", "90.5000", "45.2500", "301"}) +
         SdrLine("09F1", {"S1", "P2", "12.5", "89.0", "270.0", ""});
}

TEST(MemoryDump, SdrRecordsAndUnits) {
  Dump d = ReadSdr(SdrJob());
  ASSERT_EQ(d.records.size(), 6u);
  EXPECT_EQ(d.skipped, 0u);
  EXPECT_FALSE(d.cut);
  EXPECT_EQ(d.records[0].kind, Record::Coordinates);
  EXPECT_EQ(d.records[0].E, 1100);  // N E Z order by default
  EXPECT_EQ(d.records[1].height, 1.5);
  EXPECT_FALSE(d.records[3].hasAzimuth);
  const Record& p1 = d.records[4];
  EXPECT_EQ(p1.vRaw, 903000);   // 90.5 decimal degrees
  EXPECT_EQ(p1.hzRaw, 451500);  // 45.25 decimal degrees
  EXPECT_EQ(p1.code, "301");
  EXPECT_EQ(d.lastLine, 8u);

  // E N Z order, gons and a horizon-zero vertical circle.
  std::string other = std::string("00NMSDR33 V04-04.02 000023-NOV-26 10:00 21112") + "1\r\n" +
                      "01KI1SET30R          123456SET30R          12345612\r\n" +
                      SdrLine("08KI", {"C1", "1100.000", "2000.000", "52.000"}) +
                      SdrLine("09F1", {"S1", "P3", "10.000", "10.0000", "100.0000"});
  d = ReadSdr(other);
  ASSERT_EQ(d.records.size(), 2u);
  EXPECT_EQ(d.records[0].E, 1100);
  EXPECT_EQ(d.records[0].N, 2000);
  EXPECT_EQ(d.records[1].vRaw, 810000);  // 90 - 9 degrees
  EXPECT_EQ(d.records[1].hzRaw, 900000);
}

TEST(MemoryDump, DamagedRecordsAreCountedAndSkipped) {
  struct Case {
    const char* legend;
    std::string line;
  } cases[] = {
      {"letters in the distance", SdrLine("09F1", {"S1", "P9", "1O0.000", "90", "45"})},
      {"no horizontal angle", SdrLine("09F1", {"S1", "P9", "100.000", "90"})},
      {"noise on the line", std::string("\x7f\x13#@!9\r\n")},
      {"control byte inside", SdrLine("08KI", {"X1", "2000.0\x01", "1000", "0"})},
      {"no point name", SdrLine("08KI", {"", "2000", "1000", "0"})},
  };
  for (const Case& c : cases) {
    Dump d = ReadSdr(SdrHeader() + c.line + SdrLine("08KI", {"OK", "1", "2", "3"}));
    EXPECT_EQ(d.skipped, 1u) << c.legend;
    ASSERT_EQ(d.skippedLines.size(), 1u) << c.legend;
    EXPECT_EQ(d.skippedLines[0], 2u) << c.legend;
    ASSERT_EQ(d.records.size(), 1u) << c.legend;
    EXPECT_EQ(d.records[0].name, "OK") << c.legend;
  }
  const std::string gts = GtsRecord("", "", 1.5, "1", 43.575, 970930, 1314520) + "_+2_ ?+0006X702m0968990+1360970d_*," +
                          GtsRecord("", "", 1.5, "3", 10, 900000, 0);
  Dump d = ReadGts(gts);
  EXPECT_EQ(d.skipped, 1u);
  ASSERT_EQ(d.records.size(), 2u);
  EXPECT_EQ(d.records[1].name, "3");
}

TEST(MemoryDump, GtsRecordsInBothUnits) {
  const std::string text = "_'S1_)1.450_*," + GtsRecord("", "12", 1.54, "1", 43.575, 970930, 1314520) +
                           "1.500_+2_ ?+00064702m0968990+1360970g+00064625t**+00+00111_*0048,";
  Dump d = ReadGts(text);
  ASSERT_EQ(d.records.size(), 3u);
  EXPECT_EQ(d.records[0].kind, Record::Station);
  EXPECT_EQ(d.records[0].name, "S1");
  EXPECT_EQ(d.records[0].height, 1.45);
  const Record& a = d.records[1];
  EXPECT_EQ(a.name, "1");
  EXPECT_EQ(a.code, "12");
  EXPECT_EQ(a.height, 1.54);
  EXPECT_EQ(a.slope, 43.575);
  EXPECT_EQ(a.vRaw, 970930);
  EXPECT_EQ(a.hzRaw, 1314520);
  const Record& b = d.records[2];
  EXPECT_EQ(b.height, 1.5);  // the unmarked height of a continuing record
  EXPECT_EQ(b.vRaw, DegreesToRaw(96.8990 * 0.9));
  EXPECT_EQ(b.hzRaw, DegreesToRaw(136.0970 * 0.9));
}

// A dump cut at any byte keeps the records that were complete before the cut, marks
// the cut when it fell inside a record, and never fails.
TEST(MemoryDump, CutAtEveryByte) {
  struct Case {
    Format format;
    std::string text;
  } cases[] = {
      {Format::Sdr, SdrJob()},
      {Format::Gts, "_'S1_)1.450_*," + GtsRecord("", "12", 1.54, "1", 43.575, 970930, 1314520) +
                        GtsRecord("", "", 1.5, "2", 64.702, 963900, 1360950)},
  };
  for (const Case& c : cases) {
    const Dump full = Read(c.format, c.text);
    for (std::size_t n = 0; n <= c.text.size(); ++n) {
      const Dump part = Read(c.format, c.text.substr(0, n));
      ASSERT_LE(part.records.size(), full.records.size()) << n;
      for (std::size_t i = 0; i < part.records.size(); ++i) {
        EXPECT_EQ(part.records[i].name, full.records[i].name) << n;
        EXPECT_EQ(part.records[i].hzRaw, full.records[i].hzRaw) << n;
      }
      EXPECT_EQ(part.skipped, 0u) << n;
      const char last = n ? c.text[n - 1] : '\n';
      const bool atBoundary = c.format == Format::Sdr ? (last == '\n' || last == '\r')
                                                       : (last == ',' || last == '\n' || last == '\r');
      if (atBoundary) {
        EXPECT_FALSE(part.cut) << n;
      }
    }
  }
}

}  // namespace
}  // namespace tavik::dump
