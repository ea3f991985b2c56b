// Every family's answers as byte streams: each case is fed whole and again split in two
// at every byte boundary, and must come out the same.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/temp_home.h"
#include "link_test_support.h"

namespace tavik::test {
namespace {

constexpr double kPi = 3.14159265358979;

// A Trimble 3600 record: blanks with the given columns (1-based) filled in.
std::string Columns(std::initializer_list<std::pair<int, const char*>> parts) {
  std::string line(86, ' ');
  for (auto [pos, text] : parts) line.replace(pos - 1, std::string(text).size(), text);
  return line + "\r\n";
}
const std::string k3600 = Columns({{1, "1001"}, {44, "SD"}, {46, "      12.345"}, {59, "Hz"}, {61, "    123"},
                                   {68, "."}, {69, "4512"}, {73, "3"}, {75, "V1"}, {77, " 90"}, {80, "."},
                                   {81, "0000"}, {85, "0"}});
const std::string k3600V2 = Columns({{44, "SD"}, {46, "      12.345"}, {59, "Hz"}, {61, "    123"}, {69, "4512"},
                                     {73, "3"}, {75, "V2"}, {77, " 90"}, {81, "0000"}, {85, "0"}});

struct Case {
  const char *legend, *kind;
  std::string bytes;
  // Set-up before the answer: an angle-only read waits instead of a point shot.
  double priorSlope = 0;
  bool fitAngle = false, faceWarning = true;
  const char* shotMode = "快測";
  // Expected; delivered is "point", "angle" or "" for none.
  const char* delivered = "";
  std::vector<std::string> boxes = {};
  double slope = 0;
  int32_t hz = 0, v = 0;
  const char *label29 = nullptr, *labelZA = nullptr, *obsBoxEnds = nullptr;
  bool waitShown = false;  // MsgObserve still on
  std::string setWritten = "", topWritten = "";
  bool topClosed = false;
};

const std::string kLeica =
    "*31..00+0000000000012345 *21.322+0000000012345120 *22.322+0000000009000000 \r\n";
const std::string kLeicaAngles = "*21.322+0000000012345120 *22.322+0000000009000000 \r\n";
const std::string kAck = std::string("\x06") + "006\x03\r\n";
const std::string kStop = "\x12\r\n";

const std::vector<Case>& Cases() {
  static const std::vector<Case> cases = {
      // Leica
      {.legend = "Leica distance and angles", .kind = "FlexLine", .bytes = kLeica, .delivered = "point",
       .slope = 12.345, .hz = 1234512, .v = 900000, .label29 = "123-45-12", .labelZA = "90-0-00"},
      {.legend = "Leica GSI16 words without the star", .kind = "TCA1100",
       .bytes = "*31..00+0000000000012345 21.322+0000000012345120 22.322+0000000009000000\r\n",
       .delivered = "point", .slope = 12.345, .hz = 1234512, .v = 900000},
      {.legend = "Leica distance word has no unstarred form", .kind = "TCR1103",
       .bytes = "31..00+0000000000012345 *21.322+0000000012345120 *22.322+0000000009000000 \r\n",
       .priorSlope = 0, .slope = 0, .hz = 1234512, .v = 900000},
      {.legend = "Leica two fields: ignored, the wait stays", .kind = "FlexLine",
       .bytes = "*21.322+0000000012345120 *22.322+0000000009000000\r\n", .waitShown = true},
      {.legend = "Leica angle-only read keeps the previous distance", .kind = "TCRA1103plus",
       .bytes = kLeicaAngles, .priorSlope = 25, .fitAngle = true, .delivered = "angle", .slope = 25,
       .hz = 1234512, .v = 900000},
      {.legend = "Leica angle-only read after a start fails the distance test", .kind = "FlexLine",
       .bytes = kLeicaAngles, .fitAngle = true, .boxes = {"資料錯誤|平距值錯誤."}, .hz = 1234512, .v = 900000,
       .obsBoxEnds = " 距離值錯誤."},
      {.legend = "Leica zero distance stops silently", .kind = "FlexLine",
       .bytes = "*31..00+0000000000000000 *21.322+0000000012345120 *22.322+0000000009000000 \r\n",
       .hz = 1234512, .v = 900000},
      // Topcon
      {.legend = "Topcon distance answer", .kind = "GTS22X", .bytes = "?+00012345m0900000+1234512d+00\r\n",
       .delivered = "point", .slope = 12.345, .hz = 1234512, .v = 900000, .label29 = "123-45-12",
       .labelZA = "90-00-00", .topWritten = kAck, .topClosed = true},
      {.legend = "Topcon angle answer always fails the distance test", .kind = "GTS211D",
       .bytes = "<0900000+1234512d\r\n", .priorSlope = 30, .fitAngle = true, .boxes = {"資料錯誤|平距值錯誤."},
       .slope = 0, .hz = 1234512, .v = 900000, .label29 = "123-45-12", .topWritten = kAck, .topClosed = true},
      {.legend = "Topcon acknowledge is not acknowledged", .kind = "GTS22X",
       .bytes = "\x06" "0900000+1234512d\r\n", .waitShown = true},
      {.legend = "Topcon unknown line dropped", .kind = "GTS22X", .bytes = "X+00012345m0900000+1234512d\r\n",
       .waitShown = true},
      // Trimble
      {.legend = "Trimble prompt ends the answer", .kind = "Trimble",
       .bytes = "\r\n7=123.4512\r\n8=90.0000\r\n9=12.345\r\n>", .delivered = "point", .slope = 12.345,
       .hz = 1234512, .v = 900000, .label29 = "123-45-12", .labelZA = "90-0-00"},
      {.legend = "Trimble three lines ignored", .kind = "Trimble", .bytes = "7=123.4512\n8=90.0000\n>",
       .waitShown = true},
      // Trimble 3600
      {.legend = "Trimble 3600 columns with tenths", .kind = "Trimble3600", .bytes = k3600,
       .delivered = "point", .slope = 12.345, .hz = 1234512, .v = 900000, .label29 = "123-45-12.3",
       .labelZA = "90-00-00.0"},
      {.legend = "Trimble 3600 V2 never delivers", .kind = "Trimble3600", .bytes = k3600V2,
       .boxes = {"TAVIK|垂直角定義錯誤"}, .waitShown = true},
      // PENTAX
      {.legend = "PENTAX HHD line", .kind = "PENTAX", .bytes = "HHD  0123.45.12 ZA  0090.00.00 SD    12.345\r\n",
       .delivered = "point", .slope = 12.345, .hz = 1234512, .v = 900000, .label29 = "123-45-12", .topClosed = true},
      {.legend = "PENTAX damaged line", .kind = "PENTAX", .bytes = "HD  0123.45.12\r\n",
       .obsBoxEnds = "資料錯誤!!(資料不全)", .topClosed = true},
      // SET
      {.legend = "SET line, status digit dropped", .kind = "SET30R", .bytes = "90012345 0900000 1234512\r\n",
       .delivered = "point", .slope = 12.345, .hz = 1234512, .v = 900000, .label29 = "123-45-12",
       .labelZA = "90-00-00", .setWritten = kStop},
      {.legend = "SET only the last seven distance digits", .kind = "TCR805power",
       .bytes = "12345678901 0900000 1234512\r\n", .delivered = "point", .slope = 5678.901, .hz = 1234512,
       .v = 900000, .setWritten = kStop},
      {.legend = "SET continuous mode is not stopped", .kind = "SRX", .bytes = "0012345 0900000 1234512\r\n",
       .shotMode = "連測", .delivered = "point", .slope = 12.345, .hz = 1234512, .v = 900000},
      {.legend = "SET 8 characters dropped", .kind = "SET30R", .bytes = "123 456\n", .setWritten = kStop},
      {.legend = "SET 9 characters, two fields, dropped", .kind = "SET30R", .bytes = "1234 678\n",
       .setWritten = kStop},
      {.legend = "SET E200 in field 0: no prism", .kind = "SET30R", .bytes = "E200 0900000 1234512\r\n",
       .boxes = {"無法測距|被測物反射不良或找不到稜鏡."}, .obsBoxEnds = " 被測物反射不良或找不到稜鏡.", .setWritten = kStop},
      {.legend = "SET E200 in field 1 is an unknown error", .kind = "SET30R", .bytes = "0012345 E200 1234512\r\n",
       .boxes = {"有問題|ER資料錯誤!"}, .obsBoxEnds = " 不明原因,導致資料錯誤.", .setWritten = kStop},
      {.legend = "SET tilt E117 in field 1", .kind = "SET30R", .bytes = "0012345 E117 1234512\r\n",
       .boxes = {"儀器有問題|儀器傾斜超出補償範圍, 請整平後再測."}, .setWritten = kStop},
      {.legend = "SET tilt E114 in field 2", .kind = "SET30R", .bytes = "0012345 0900000 E114\r\n",
       .boxes = {"儀器有問題|儀器傾斜超出補償範圍, 請整平後再測."}, .setWritten = kStop},
      {.legend = "SET distance not a number", .kind = "SET30R", .bytes = "00a2345 0900000 1234512\r\n",
       .boxes = {"有問題|ER資料錯誤!"}, .setWritten = kStop},
      {.legend = "SET angle not a number keeps the distance read", .kind = "SET30R",
       .bytes = "0012345 09x0000 1234512\r\n", .boxes = {"有問題|ER資料錯誤!"}, .slope = 12.345, .setWritten = kStop},
      {.legend = "SET distance below 1 cm", .kind = "SET30R", .bytes = "0000009 0900000 1234512\r\n",
       .boxes = {"SD資料錯誤|斜距值錯誤."}, .slope = 0.009, .obsBoxEnds = " 距離值錯誤.", .setWritten = kStop},
      {.legend = "SET 1 cm passes, HD near the zenith fails", .kind = "SET30R",
       .bytes = "0000010 0000030 1234512\r\n", .boxes = {"HD資料錯誤|平距值錯誤."}, .slope = 0.01,
       .hz = 1234512, .v = 30, .setWritten = kStop},
      {.legend = "SET zenith of exactly pi: no face reminder", .kind = "SET30R",
       .bytes = "0012345 1800000 0000000\r\n", .boxes = {"HD資料錯誤|平距值錯誤."}, .slope = 12.345, .v = 1800000,
       .setWritten = kStop},
      {.legend = "SET zenith one second past pi: face reminder", .kind = "SET30R",
       .bytes = "0012345 1800001 0000000\r\n",
       .boxes = {"倒鏡提示|提醒您: 儀器目前是倒鏡狀態", "HD資料錯誤|平距值錯誤."}, .slope = 12.345, .v = 1800001, .setWritten = kStop},
      {.legend = "SET face two without the reminder", .kind = "SET30R", .bytes = "0012345 2700000 0000000\r\n",
       .faceWarning = false, .boxes = {"HD資料錯誤|平距值錯誤."}, .slope = 12.345, .v = 2700000, .setWritten = kStop},
      {.legend = "SET tracking line sets the zenith only", .kind = "SET30R",
       .bytes = "Ee,1000.000,2000.000,100.000,90.0010\r\n", .v = 900010, .setWritten = kStop},
      {.legend = "SET identification", .kind = "SET30R", .bytes = "A SET30R,123456,1.23,2.34\r\n",
       .obsBoxEnds = " 儀器型號:SOKKIA SET30R  序號:123456  軔體版本:1.23  測距版本:2.34", .setWritten = kStop},
  };
  return cases;
}

TEST(LinkAnswers, EveryFamilyWholeAndSplitAtEveryByte) {
  for (const Case& c : Cases()) {
    for (std::size_t split = 0; split <= c.bytes.size(); ++split) {
      SCOPED_TRACE(std::string(c.legend) + " split at " + std::to_string(split));
      LinkRig rig;
      rig.state.InstrumentKind = c.kind;
      rig.state.ObsSlope = c.priorSlope;
      rig.state.FaceWarning = c.faceWarning ? -1 : 0;
      rig.state.ShotMode = c.shotMode;
      (c.fitAngle ? rig.state.AwaitFitAngle : rig.state.AwaitPointShot) = -1;
      rig.set.open = rig.top.open = true;
      rig.link.picture.MsgObserve = true;
      FakePort& port = FamilyOf(c.kind) == Family::Set ? rig.set : rig.top;
      port.Receive(std::string_view(c.bytes).substr(0, split));
      port.Receive(std::string_view(c.bytes).substr(split));
      const WaitPicture& pic = rig.link.picture;
      ASSERT_EQ(rig.delivered, *c.delivered ? std::vector<std::string>{c.delivered} : std::vector<std::string>{});
      ASSERT_EQ(rig.Boxes(), c.boxes);
      ASSERT_DOUBLE_EQ(rig.state.ObsSlope, c.slope);
      ASSERT_EQ(rig.state.ObsHzRaw, c.hz);
      ASSERT_EQ(rig.state.ObsVRaw, c.v);
      ASSERT_EQ(pic.MsgObserve, c.waitShown);
      if (c.label29) { ASSERT_EQ(pic.Label29, c.label29); }
      if (c.labelZA) { ASSERT_EQ(pic.LabelZA, c.labelZA); }
      if (c.obsBoxEnds) { ASSERT_TRUE(pic.OBSBox.ends_with(c.obsBoxEnds)) << pic.OBSBox; }
      ASSERT_EQ(rig.set.written, c.setWritten);
      ASSERT_EQ(rig.top.written, c.topWritten);
      ASSERT_EQ(rig.top.open, !c.topClosed);
    }
  }
}

TEST(LinkAnswers, HorizontalDistanceLabelAndTenthsKeptInRadians) {
  LinkRig rig;
  rig.state.AwaitPointShot = -1;
  rig.set.open = true;
  rig.set.Receive("0100000 0600000 0000000\r\n");  // 100 m at a zenith of 60 degrees
  EXPECT_EQ(rig.link.picture.LabelS, "100.000");
  EXPECT_EQ(rig.link.picture.Label45, "86.603");
  EXPECT_NEAR(rig.state.ObsV, kPi / 3, 1e-12);
  LinkRig trimble;
  trimble.state.InstrumentKind = "Trimble3600";
  trimble.state.AwaitPointShot = -1;
  trimble.top.open = true;
  trimble.top.Receive(k3600);
  EXPECT_NEAR(trimble.state.ObsHz, (123 + 45 / 60.0 + 12.3 / 3600) * kPi / 180, 1e-12);
}

TEST(LinkAnswers, FailedDistanceTestLeavesTheFlagSet) {
  LinkRig rig;
  rig.state.AwaitPointShot = -1;
  rig.set.open = true;
  rig.set.Receive("0000010 0000030 1234512\r\n");
  EXPECT_TRUE(rig.delivered.empty());
  EXPECT_EQ(rig.state.AwaitPointShot, -1);
  rig.set.Receive("0012345 0900000 1234512\r\n");
  EXPECT_EQ(rig.delivered, std::vector<std::string>{"point"});
  EXPECT_EQ(rig.state.AwaitPointShot, 0);
}

TEST(LinkAnswers, DispatchOrderEachFlagClearedBeforeItsReceiver) {
  LinkRig rig;
  std::vector<std::string> seen;
  auto probe = [&](const char* name) {
    return [&, name] {
      seen.push_back(std::string(name) + ":" + std::to_string(rig.state.AwaitStationShot) +
                     std::to_string(rig.state.AwaitPointShot) + std::to_string(rig.state.AwaitFitShot) +
                     std::to_string(rig.state.AwaitFitAngle));
    };
  };
  rig.link.receivers.StationShot = probe("station");
  rig.link.receivers.PointShot = probe("point");
  rig.link.receivers.FitShot = probe("fit");
  rig.link.receivers.FitAngle = probe("angle");
  rig.state.AwaitStationShot = rig.state.AwaitPointShot = rig.state.AwaitFitShot = rig.state.AwaitFitAngle = -1;
  rig.set.open = true;
  rig.set.Receive("0012345 0900000 1234512\r\n");
  EXPECT_EQ(seen, (std::vector<std::string>{"station:0-1-1-1", "point:00-1-1", "fit:000-1", "angle:0000"}));
}

TEST(LinkAnswers, StakeOutTakesTheSetLines) {
  LinkRig rig;
  rig.state.StakeOutActive = -1;
  rig.state.AwaitPointShot = -1;
  rig.set.open = true;
  rig.set.Receive("0012345 0900000 1234512\r\nshort\r\n");
  EXPECT_EQ(rig.stakeOut, std::vector<std::string>{"0012345 0900000 1234512\r\n"});
  EXPECT_TRUE(rig.delivered.empty());
  EXPECT_EQ(rig.set.written, "");  // no stop while staking out
}

TEST(LinkAnswers, DownloadTakesTheSetChannel) {
  LinkRig rig;
  testing::TempHome folder;
  bool converted = false;
  rig.link.download.Active = true;
  rig.link.download.Folder = folder.path.string();
  rig.link.download.StartConversion = [&] { converted = true; };
  rig.set.open = true;
  rig.set.Receive("old\x02" "0012345 0900000 1234512\r\nline 2\r\n\x03");
  EXPECT_EQ(rig.link.download.Label1, "下載完畢.");
  EXPECT_TRUE(converted);
  EXPECT_TRUE(rig.delivered.empty());
  EXPECT_EQ(testing::ReadBytes(folder.path / "$SOK.OBS"), "0012345 0900000 1234512\r\nline 2\r\n");
}

}  // namespace
}  // namespace tavik::test
