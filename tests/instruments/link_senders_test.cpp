// What each sender writes, byte for byte, on which channel and with which settings.
#include <gtest/gtest.h>

#include "instruments/routing.h"
#include "link_test_support.h"

namespace tavik::test {
namespace {

TEST(LinkSenders, StartShotPerKind) {
  struct ShotCase {
    const char *kind, *channel, *settings;  // channel "SET" or "TOP"
    std::string written;
  };
  const ShotCase cases[] = {
      {"SET30R", "SET", "COM3 4800,n,8,1", std::string("Xc\r\n\x11\r\n")},
      {"a model read from the instrument", "SET", "COM3 4800,n,8,1", std::string("Xc\r\n\x11\r\n")},
      {"GTS22X", "TOP", "COM3 4800,n,8,1", "C067\x03\r\n"},
      {"GTS211D", "TOP", "COM3 4800,e,7,1", "C067\x03\r\n"},
      {"FlexLine", "TOP", "COM3 4800,n,8,1", "GET/M/WI31/WI21/WI22\r\n"},
      {"Trimble", "TOP", "COM3 4800,n,8,1", "TG\r\n"},
      {"Trimble3600", "TOP", "COM3 4800,n,8,1", ""},
      {"PENTAX", "TOP", "COM3 4800,n,8,1", "a\r\n"},
  };
  for (const ShotCase& c : cases) {
    SCOPED_TRACE(c.kind);
    LinkRig rig;
    rig.state.InstrumentKind = c.kind;
    rig.state.PortNumber = 3;
    rig.state.BaudRate = 4800;
    rig.link.picture.OBSBox = "old";
    rig.link.StartShot();
    FakePort& used = std::string(c.channel) == "SET" ? rig.set : rig.top;
    FakePort& other = &used == &rig.set ? rig.top : rig.set;
    ASSERT_EQ(used.openedWith, std::vector<std::string>{c.settings});
    EXPECT_EQ(used.written, c.written);
    EXPECT_EQ(other.opens, 0);
    EXPECT_EQ(rig.link.picture.OBSBox, "儀器觀測中...");
    EXPECT_TRUE(rig.link.picture.MsgObserve);
  }
}

TEST(LinkSenders, KeyinOpensTheInputDialogInsteadOfAPortAndStopUnloadsIt) {
  LinkRig rig;
  int opened = 0, closed = 0;
  rig.link.hooks.OpenInputHVS = [&] { ++opened; };
  rig.link.hooks.CloseInputHVS = [&] { ++closed; };
  rig.state.InstrumentKind = "Keyin";
  rig.link.StartShot();
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(rig.set.opens + rig.top.opens, 0);
  rig.link.picture.OBSBox = "x";
  rig.link.StopShot();
  EXPECT_EQ(closed, 1);
  EXPECT_EQ(rig.link.picture.OBSBox, "");
}

TEST(LinkSenders, OpenPortIsNeverReconfiguredExceptTopcon) {
  LinkRig rig;
  rig.state.InstrumentKind = "PENTAX";
  rig.link.StartShot();
  rig.state.BaudRate = 1200;
  rig.link.StartShot();
  EXPECT_EQ(rig.top.opens, 1);
  EXPECT_EQ(rig.top.written, "a\r\na\r\n");

  rig.state.InstrumentKind = "GTS22X";
  rig.link.StartShot();
  EXPECT_EQ(rig.top.closes, 1);
  EXPECT_EQ(rig.top.openedWith.back(), "COM1 1200,n,8,1");
}

TEST(LinkSenders, BufferEmptiedOnlyWhenTheSetPortHadToOpen) {
  LinkRig rig;
  rig.set.open = true;
  rig.set.Receive("0012");
  rig.link.StartShotSet();
  EXPECT_EQ(rig.link.RxBuffer(), "0012");
  rig.set.open = false;
  rig.link.StartShotSet();
  EXPECT_EQ(rig.link.RxBuffer(), "");
}

TEST(LinkSenders, APortThatWillNotOpenEndsTheSenderQuietlyAndTheStopStillCompletes) {
  LinkRig rig;
  rig.set.refuseOpen = true;
  rig.link.picture.OBSBox = "before";
  rig.link.StartShot();
  EXPECT_EQ(rig.link.picture.OBSBox, "before");
  EXPECT_FALSE(rig.link.picture.MsgObserve);
  rig.link.picture.CmdSTOPEnabled = true;
  rig.link.picture.RecButtonEnabled = false;
  rig.link.StopShot();
  EXPECT_FALSE(rig.link.picture.CmdSTOPEnabled);
  EXPECT_TRUE(rig.link.picture.RecButtonEnabled);
  EXPECT_TRUE(rig.dialogs.shown.empty());
}

TEST(LinkSenders, StopShotPerFamily) {
  struct StopCase {
    const char* kind;
    bool setOpen, topOpen;
    std::string setWritten, topWritten;
    bool topOpenAfter, obsBoxEmptied;
  };
  const StopCase cases[] = {
      {"SET30R", true, false, "\x12\r\n", "", false, false},
      {"PENTAX", false, true, "", "", true, false},  // SET is closed: the stop has nowhere to go
      {"Trimble3600", true, true, "\x12\r\n", "", true, false},
      {"FlexLine", false, true, "", "c\r\n", false, true},
      {"GTS22X", false, false, "", "", false, true},
      {"Trimble", true, true, "TG\r\n", "", false, false},
      {"Trimble", false, false, "TG\r\n", "", false, false},  // SET opened just for the stop
  };
  for (const StopCase& c : cases) {
    SCOPED_TRACE(std::string(c.kind) + (c.setOpen ? " set" : "") + (c.topOpen ? " top" : ""));
    LinkRig rig;
    rig.state.InstrumentKind = c.kind;
    rig.set.open = c.setOpen;
    rig.top.open = c.topOpen;
    rig.link.picture.OBSBox = "儀器觀測中...";
    rig.link.picture.CmdSTOPEnabled = true;
    rig.link.picture.RecButtonEnabled = false;
    rig.link.StopShot();
    EXPECT_EQ(rig.set.written, c.setWritten);
    EXPECT_EQ(rig.top.written, c.topWritten);
    EXPECT_EQ(rig.top.open, c.topOpenAfter);
    EXPECT_EQ(rig.link.picture.OBSBox.empty(), c.obsBoxEmptied);
    EXPECT_FALSE(rig.link.picture.CmdSTOPEnabled);
    EXPECT_TRUE(rig.link.picture.RecButtonEnabled);
    if (!c.setOpen && !c.topOpen) { EXPECT_EQ(rig.set.openedWith, std::vector<std::string>{"COM1 9600,n,8,1"}); }
  }
}

TEST(LinkSenders, OtherRequestsTable) {
  struct Row { const char* kind; Request request; std::optional<std::string> bytes; };
  const Row rows[] = {
      {"SET30R", Request::Identify, "A\r\n"}, {"GTS22X", Request::Identify, "Z32091\x03\r\n"},
      {"FlexLine", Request::Identify, std::nullopt}, {"FlexLine", Request::ReadSerial, "GET/I/WI12\r\n"},
      {"TCA1100", Request::ReadType, "SET/161/7\r\nGET/I/WI13\r\n"},
      {"FlexLine", Request::AngleOnly, "GET/M/WI21/WI22\r\n"}, {"PENTAX", Request::AngleOnly, "e\r\n"},
      {"Trimble", Request::AngleOnly, "RG\r\n"}, {"GTS211D", Request::AngleOnly, "Z12089\x03\r\n"},
      {"SET30R", Request::AngleOnly, std::string("\0\r\n", 3)}, {"Trimble3600", Request::AngleOnly, std::nullopt},
      {"SET30R", Request::LeaveStakeOut, "\x12\r\n"}, {"GTS22X", Request::LeaveStakeOut, "Z32091\x03\r\n"},
      {"TCR1103", Request::LeaveStakeOut, "c\r\n"}, {"GTS22X", Request::StartTracking, "Z33090\x03\r\n"},
      {"Trimble", Request::StartStream, "PG,3=1\r\n"}, {"Trimble", Request::StopStream, "PG,3=0\r\n"},
      {"SRX", Request::ReadTrackingCoords, "Ee\r\n"}, {"SRX", Request::ShotFast, "Xa\r\n"},
      {"SRX", Request::ShotFine, "Xe\r\n"},  {"SRX", Request::ShotTracking, "Xc\r\n"},
      {"SRX", Request::PowerOn, "*PON\r\n"}, {"SRX", Request::PowerOff, "*POFF\r\n"}, {"SRX", Request::Rotate, "*Z\r\n"},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(r.kind);
    LinkRig rig;
    rig.state.InstrumentKind = r.kind;
    EXPECT_EQ(rig.link.Send(r.request), r.bytes.has_value());
    EXPECT_EQ(rig.set.written + rig.top.written, r.bytes.value_or(""));
    if (r.bytes) { EXPECT_EQ(ChannelOf(FamilyOf(r.kind)) == Channel::Set ? rig.set.written : rig.top.written, *r.bytes); }
  }
}

TEST(LinkSenders, RoutingListsAreExact) {
  EXPECT_EQ(FamilyOf("TCR805power"), Family::Set);
  EXPECT_EQ(FamilyOf("TCA1100L"), Family::Leica);
  EXPECT_EQ(FamilyOf("tca1100"), Family::Set);
  EXPECT_EQ(FamilyOf("Keyin"), Family::Keyin);
  EXPECT_EQ(FamilyOf("GTS211D "), Family::Set);
  EXPECT_EQ(ChannelOf(Family::Trimble3600), Channel::Top);
}

}  // namespace
}  // namespace tavik::test
