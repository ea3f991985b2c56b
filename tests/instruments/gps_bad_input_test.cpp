// What a receiver's cable can carry besides good sentences: random bytes, other
// protocols' binary messages, NULs, a sentence of a megabyte, a line cut by a pulled
// cable, and a non-number in each field that a strict reading takes. The receiver must
// keep working, its line buffers must stay bounded, and the GOBS log must hold exactly
// the good sentences, whole.
#include <gtest/gtest.h>

#include <random>

#include "gps_rig.h"

namespace tavik::test {
namespace {

using Port = GpsReceiver::Port;

const char* const kGood[] = {
    "#BESTPOSA,COM1,0,72.5,FINESTEERING,2209,502834.000,02000020,cdba,16248;SOL_COMPUTED,NARROW_INT,"
    "24.12345678901,120.98765432101,101.2345,17.0,WGS84,0.0123,0.0234,0.0346,\"0\",1.0,0.0,14,12,12,11,0,06,00,03*6e",
    "$GPGGA,023045.00,2407.4073,N,12059.2593,E,4,12,0.9,100.123,M,17.0,M,1.0,0000*5C",
    "$PRTKA,1419,336208.00,x,14,x,11,24.5,121.25,88.5,x,x,0.012,0.034,0.056,x,0,4,x,x*1F",
};

TEST(GpsBadInput, GarbageBinaryNulsAndAHugeSentenceLeaveOnlyWholeGoodLines) {
  std::mt19937 rng(20261123);
  auto randomBytes = [&](std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i) s.push_back(static_cast<char>(rng() & 0xff));
    return s;
  };
  // A binary log of the receiver's own protocol (sync bytes AA 44 12) with a "$" inside.
  const std::string binary = std::string("\xAA\x44\x12\x1C\x2A\x00\x00\x20$\x00\r\x01", 12) + randomBytes(200);
  const std::string pieces[] = {
      randomBytes(100000),
      binary,
      std::string(5000, '\0'),
      "$GPGGA," + std::string(1 << 20, '7') + "\r\n",  // a sentence of a megabyte
      "#BESTPOSA," + std::string(GpsReceiver::kMaxLine + 10, ','),
      randomBytes(3000) + "\n",
  };

  for (Port port : {Port::MSComm1, Port::MSComm_Axis3, Port::Ceastar}) {
    SCOPED_TRACE(static_cast<int>(port));
    GpsRig rig(port == Port::MSComm1 ? "DL-4" : "Axis3");
    std::string expected;
    std::size_t largest = 0;
    for (const std::string& junk : pieces) {
      for (std::size_t i = 0; i < junk.size(); i += 4096) {
        rig.rx.Feed(port, junk.data() + i, std::min<std::size_t>(4096, junk.size() - i));
        largest = std::max(largest, rig.rx.LineBuffer(port).size());
      }
      // The line end ends any junk line; a good line follows. The listen-only and the
      // sounder port know GGA only.
      for (const char* good : kGood) {
        std::string line = good;
        if (port != Port::MSComm1 && line.compare(0, 6, "$GPGGA") != 0) continue;
        rig.rx.Feed(port, "\r\n" + line + "\r\n");
        expected += line + "\r\n";
      }
    }
    EXPECT_LE(largest, GpsReceiver::kMaxLine + 2);
    EXPECT_EQ(rig.Gobs(), expected);
    EXPECT_EQ(rig.rx.Panels().Label25[7], num::Format(rig.gps.GpsX, "0.000"));
  }
}

// Every field a strict reading takes, made unreadable in turn: the sentence ends there,
// with no position and no panel written past that field, and the receiver goes on.
TEST(GpsBadInput, ANonNumberInEachStrictFieldAbandonsTheSentence) {
  struct Strict {
    const char* sentence;
    std::vector<std::size_t> fields;
    std::string laterPanel;  // a panel written after every strict field
    bool loggedFirst;        // GOBS takes the line before the first strict reading
  };
  const Strict cases[] = {
      {kGood[0], {6, 11, 12, 13, 16, 17, 18, 9}, "L6", true},
      {kGood[2], {1, 2, 7, 8, 9, 12, 13, 14}, "L6", true},
      {kGood[1], {1, 6, 7, 2, 4, 9}, "pos", true},
      {"#DUALANTENNAHEADINGA,COM1,0,80.0,FINESTEERING,1936,168887.000,02040000,d426,32768;SOL_COMPUTED,NARROW_INT,"
       "1.5,45.5,0.1,0.0,0.25,0.3,\"999\",18,16,16,16,0,01,00,33*1a",
       {12, 15}, "L25_16", false},
  };
  for (const Strict& c : cases) {
    for (std::size_t index : c.fields) {
      for (const char* bad : {"1x", "", "1e999"}) {
        // GGA reads its positions in two parts: an empty one only skips the position,
        // and "1e999" splits into two readable numbers.
        if (c.sentence == kGood[1] && (index == 2 || index == 4) && std::string(bad) != "1x") continue;
        SCOPED_TRACE(std::string(c.sentence).substr(0, 12) + " field " + std::to_string(index) + " '" + bad + "'");
        std::string line = c.sentence, word = bad;
        if (index == 9 && line[0] == '#') word = "16248;" + word;  // the status word after the header
        std::size_t at = 0;
        for (std::size_t i = 0; i < index; ++i) at = line.find(',', at) + 1;
        line.replace(at, line.find_first_of(",*", at) - at, word);

        GpsRig rig;
        rig.rx.Feed(Port::MSComm1, line + "\r\n");
        auto snap = rig.Snapshot();
        EXPECT_EQ(snap["pos"], "");
        EXPECT_EQ(snap[c.laterPanel], "");
        const bool unlogged = c.sentence == kGood[1] && index == 9 && word.empty();  // GGA logs a height only
        EXPECT_EQ(rig.Gobs(), c.loggedFirst && !unlogged ? line + "\r\n" : "");
        // The next good sentence is read as ever.
        rig.rx.Feed(Port::MSComm1, std::string(kGood[1]) + "\r\n");
        EXPECT_EQ(rig.positions.size(), 1u);
      }
    }
  }
}

}  // namespace
}  // namespace tavik::test
