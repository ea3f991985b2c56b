// The simulator's own behaviour that the end-to-end runs don't reach: robotic turns
// choosing the target, identification, the tracking line and the scene file's errors.
#include <gtest/gtest.h>

#include "tools/sim/instrument.h"

namespace tavik::sim {
namespace {

std::string FeedAll(Instrument& inst, const std::string& bytes) {
  std::string out;
  for (char c : bytes) out += inst.Feed(c);
  return out;
}

Scene FourTargets() {
  Scene s;
  std::string error;
  // North, east, south and west of the station, circle zero at north.
  EXPECT_TRUE(ParseScene("station 0 0 0\ntarget N 0 100 0\ntarget E 100 0 0\ntarget S 0 -100 0\n"
                         "target W -100 0 0\n", s, error)) << error;
  return s;
}

TEST(SimInstrument, TurnsAimAtTheNearestTarget) {
  Options held;
  held.hold = true;
  Instrument inst(SimFamily::Set, FourTargets(), held);
  EXPECT_EQ(FeedAll(inst, "*DHA0880000VA0900000\r"), "");
  EXPECT_EQ(inst.CurrentTarget(), 1u);  // east
  FeedAll(inst, "*DHI+0150000VI+0000000\r*DHI+0150000VI+0000000\r");
  EXPECT_DOUBLE_EQ(inst.PointingHz(), 118);
  EXPECT_EQ(inst.CurrentTarget(), 1u);
  FeedAll(inst, "*DHI+0700000VI+0000000\r");
  EXPECT_EQ(inst.CurrentTarget(), 2u);  // south at 180
  FeedAll(inst, "*DHI-2000000VI+0000000\r");
  EXPECT_DOUBLE_EQ(inst.PointingHz(), 348);
  EXPECT_EQ(inst.CurrentTarget(), 0u);
  EXPECT_EQ(FeedAll(inst, std::string("\x11\r\n")), "00100000 0900000 0000000\r\n");
}

TEST(SimInstrument, IdentificationAndTracking) {
  Options setOptions;
  setOptions.model = "SRX5";
  setOptions.serial = "42";
  Instrument set(SimFamily::Set, FourTargets(), setOptions);
  EXPECT_EQ(FeedAll(set, "A\r\n"), "A SRX5,42,1.10,2.20\r\n");
  EXPECT_EQ(FeedAll(set, "Ee\r\n"), "Ee,0.000,100.000,0.000,90.0000\r\n");
  Options leicaOptions;
  leicaOptions.serial = "654321";
  Instrument leica(SimFamily::Leica, FourTargets(), leicaOptions);
  EXPECT_EQ(FeedAll(leica, "GET/I/WI12\r\n"), "*12....+0000000000654321 \r\n");
  EXPECT_EQ(FeedAll(leica, "GET/I/WI13\r\n"), "*13....+TCRA1103plus 10\r\n");
  Instrument topcon(SimFamily::Gts22x, FourTargets(), Options{});
  EXPECT_EQ(FeedAll(topcon, "Z32091\x03\r\n"), "\x06" "006\x03\r\n");
}

TEST(SimInstrument, ShotsWalkTheTargetsAndFaultsPlayOnce) {
  Instrument inst(SimFamily::Pentax, FourTargets(), Options{});
  inst.Arm(Fault::FaceTwo, 2);
  EXPECT_EQ(FeedAll(inst, "a\r\n"), "HHD  0000.00.00 ZA  0090.00.00 SD   100.000\r\n");
  EXPECT_EQ(FeedAll(inst, "a\r\n"), "HHD  0270.00.00 ZA  0270.00.00 SD   100.000\r\n");  // east, face two
  EXPECT_EQ(FeedAll(inst, "a\r\n"), "HHD  0090.00.00 ZA  0090.00.00 SD   100.000\r\n");  // the fault stayed on it
}

TEST(SimInstrument, SceneErrorsNameTheLine) {
  Scene s;
  std::string error;
  EXPECT_FALSE(ParseScene("station 1 2 3\ntarget P1 4 five 6\n", s, error));
  EXPECT_EQ(error, "line 2: cannot read \"target P1 4 five 6\"");
  EXPECT_FALSE(ParseScene("station 1 2 3\n", s, error));
  EXPECT_EQ(error, "the scene has no target");
}

}  // namespace
}  // namespace tavik::sim
