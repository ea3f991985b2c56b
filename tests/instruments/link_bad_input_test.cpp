// Garbage on the line: random bytes, overlong lines and NULs must not crash the link or
// grow its buffer, and the next good answer must still be decoded.
#include <gtest/gtest.h>

#include <random>

#include "link_test_support.h"

namespace tavik::test {
namespace {

struct GoodAnswer { const char* kind; std::string bytes; };

const GoodAnswer kGood[] = {
    {"SET30R", "0012345 0900000 1234512\r\n"},
    {"FlexLine", "*31..00+0000000000012345 *21.322+0000000012345120 *22.322+0000000009000000 \r\n"},
    {"GTS22X", "?+00012345m0900000+1234512d+00\r\n"},
    {"Trimble", "\r\n7=123.4512\r\n8=90.0000\r\n9=12.345\r\n>"},
    {"PENTAX", "HHD  0123.45.12 ZA  0090.00.00 SD    12.345\r\n"},
};

void ExpectDecodedAfter(const std::string& garbage, const char* legend) {
  for (const GoodAnswer& g : kGood) {
    SCOPED_TRACE(std::string(legend) + " " + g.kind);
    LinkRig rig;
    rig.state.InstrumentKind = g.kind;
    FakePort& port = FamilyOf(g.kind) == Family::Set ? rig.set : rig.top;
    port.open = true;
    std::size_t largest = 0;
    for (char c : garbage) {
      port.Receive(std::string_view(&c, 1));
      largest = std::max(largest, rig.link.RxBuffer().size());
      port.open = true;  // families that close after an answer are reopened by the next request
    }
    EXPECT_LE(largest, LineFramer::kMaxFrame);
    // The request that follows empties the buffer where the family does so; a line end
    // finishes any half line for the others.
    rig.link.StartShot();
    port.Receive(FamilyOf(g.kind) == Family::Trimble ? ">" : "\n");
    rig.delivered.clear();
    rig.state.AwaitPointShot = -1;
    port.open = true;
    port.Receive(g.bytes);
    EXPECT_EQ(rig.delivered, std::vector<std::string>{"point"});
    EXPECT_EQ(rig.state.ObsHzRaw, 1234512);
    EXPECT_DOUBLE_EQ(rig.state.ObsSlope, 12.345);
  }
}

TEST(LinkBadInput, RandomBytesThenOverlongLineAndNuls) {
  std::mt19937 rng(20261121);
  std::string random;
  for (int i = 0; i < 20000; ++i) random.push_back(static_cast<char>(rng() & 0xff));
  ExpectDecodedAfter(random, "random");
  // 5000 bytes with no line end, 3000 NULs, and a half answer cut off.
  ExpectDecodedAfter(std::string(5000, 'x') + std::string(3000, '\0') + "0012345 0900000", "overlong");
}

TEST(LinkBadInput, NulsInsideAnAnswerAreADamagedLine) {
  LinkRig rig;
  rig.set.open = true;
  rig.state.AwaitPointShot = -1;
  std::string damaged = "0012345 09";
  damaged += std::string(2, '\0') + "000 1234512\r\n";
  rig.set.Receive(damaged);
  EXPECT_TRUE(rig.delivered.empty());
  EXPECT_EQ(rig.Boxes(), std::vector<std::string>{"有問題|ER資料錯誤!"});
  rig.set.Receive("0012345 0900000 1234512\r\n");
  EXPECT_EQ(rig.delivered, std::vector<std::string>{"point"});
}

}  // namespace
}  // namespace tavik::test
