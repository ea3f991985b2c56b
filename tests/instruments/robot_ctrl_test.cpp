#include <gtest/gtest.h>

#include "instruments/robot_ctrl.h"
#include "link_test_support.h"

namespace tavik::test {
namespace {

struct RobotRig : LinkRig {
  ui::ManualTimer timer10;
  FakePort gnss;
  RobotCtrl robot{state, link, dialogs, timer10, &gnss};
  int refreshed = 0;
  RobotRig() { robot.RefreshPaper = [this] { ++refreshed; }; }
};

TEST(RobotCtrl, StepButtonsWriteWithCrAndStopAfterTwoSeconds) {
  const std::pair<StepButton, const char*> rows[] = {
      {StepButton::DirUp, "*DHI+0000000VI-0150000\r"},    {StepButton::DirUp7, "*DHI+0000000VI-0070000\r"},
      {StepButton::DirDown, "*DHI+0000000VI+0150000\r"},  {StepButton::DirDown7, "*DHI+0000000VI+0070000\r"},
      {StepButton::DirLeft, "*DHI-0150000VI+0000000\r"},  {StepButton::DirLeft7, "*DHI-0070000VI+0000000\r"},
      {StepButton::DirRight, "*DHI+0150000VI+0000000\r"}, {StepButton::DirRight7, "*DHI+0070000VI+0000000\r"},
  };
  for (auto [button, bytes] : rows) {
    RobotRig rig;
    rig.state.PortNumber = 2;
    rig.robot.Step(button);
    EXPECT_EQ(rig.set.written, bytes);
    EXPECT_EQ(rig.set.openedWith, std::vector<std::string>{"COM2 9600,n,8,1"});
    EXPECT_TRUE(rig.timer10.enabled);
    EXPECT_EQ(rig.timer10.interval, 2000);
    EXPECT_EQ(rig.refreshed, 1);
    rig.timer10.Fire();
    EXPECT_EQ(rig.set.written, std::string(bytes) + "*R\r");
    EXPECT_FALSE(rig.timer10.enabled);
  }
}

TEST(RobotCtrl, TurnTo) {
  const std::pair<std::optional<std::string>, std::string> rows[] = {
      {"+3211234", "*DHI+3211234VI+0000000\r"},
      {"-5", "*DHI-0000005VI+0000000\r"},
      {"3211234", "*DHA3211234VA0900000\r"},
      {"123", "*DHA0000123VA0900000\r"},  // under one degree: the digits fill from the seconds
      {"", ""},
      {std::nullopt, ""},
  };
  for (const auto& [answer, bytes] : rows) {
    RobotRig rig;
    rig.dialogs.inputs.push_back(answer);
    rig.robot.TurnTo();
    EXPECT_EQ(rig.set.written, bytes);
    EXPECT_EQ(rig.timer10.enabled, !bytes.empty());
    if (!bytes.empty()) { EXPECT_EQ(rig.timer10.interval, 7000); }
  }
  RobotRig rig;
  rig.dialogs.inputs.push_back("+12x");
  rig.robot.TurnTo();
  EXPECT_EQ(rig.set.written, "");
  EXPECT_EQ(rig.dialogs.shown.back().kind, "msg");
  EXPECT_EQ(rig.dialogs.shown.front().title, "鏡頭指定轉向");
  // A step after a turn restarts the timer with its own interval.
  rig.dialogs.inputs.push_back("+10");
  rig.robot.TurnTo();
  EXPECT_EQ(rig.timer10.interval, 7000);
  rig.robot.Step(StepButton::DirLeft7);
  EXPECT_EQ(rig.timer10.interval, 2000);
  EXPECT_TRUE(rig.timer10.enabled);
}

TEST(RobotCtrl, SearchRange) {
  const std::pair<std::string, std::string> rows[] = {
      {"25", "*/PA 1,1,25.0000,25.0000\r\n"}, {"360", "*/PA 1,1,360.0000,25.0000\r\n"},
      {"0", "*/PA 1,1,0.0000,25.0000\r\n"},   {"361", ""}, {"-1", ""}, {"wide", ""}, {"", ""},
  };
  for (const auto& [answer, bytes] : rows) {
    RobotRig rig;
    rig.dialogs.inputs.push_back(answer);
    rig.robot.BtmSrchArea();
    EXPECT_EQ(rig.set.written, bytes) << answer;
  }
}

TEST(RobotCtrl, EscapeStopsTheInstrument) {
  RobotRig rig;
  rig.robot.EscapeBtm();
  EXPECT_EQ(rig.set.written, "\x12\r\n*R\r\n");
}

struct CycleStep { std::string written; const char* caption; std::optional<ui::Rgb> colour; };

void ExpectCycle(void (RobotCtrl::*click)(), std::string InstrumentState::*caption,
                 std::optional<ui::Rgb> RobotCtrl::Colours::*colour, const std::vector<CycleStep>& steps,
                 bool closesGnss) {
  RobotRig rig;
  rig.gnss.open = true;
  std::string written;
  for (const CycleStep& s : steps) {
    (rig.robot.*click)();
    written += s.written;
    EXPECT_EQ(rig.set.written, written);
    EXPECT_EQ(rig.state.*caption, s.caption);
    if (colour) { EXPECT_EQ(rig.robot.colours.*colour, s.colour); }
  }
  EXPECT_EQ(rig.gnss.open, !closesGnss);
}

TEST(RobotCtrl, CyclingButtons) {
  ExpectCycle(&RobotCtrl::ShotModeClick, &InstrumentState::ShotMode, &RobotCtrl::Colours::ShotMode,
              {{"Xa\r\n", "精測", 0xff8080}, {"Xe\r\n", "連測", 0xffc0c0}, {"Xc\r\n", "快測", 0xff0000}}, true);
  ExpectCycle(&RobotCtrl::PrismModeClick, &InstrumentState::PrismMode, &RobotCtrl::Colours::PrismMode,
              {{"*/PG 0,-30,70\r\n", "稜鏡", 0xc000},
               {"/C 1\r\n", "貼紙", 0xc0ffff},
               {"*/PG 3,-7,70\r\n", "360", 0xc0e0ff},
               {"/C 2\r\n", "免稜鏡", 0xc0c000}},
              true);
  ExpectCycle(&RobotCtrl::LaserOnOffClick, &InstrumentState::LaserOnOff, &RobotCtrl::Colours::LaserOnOff,
              {{"*GLON\r\n", "ON", 0xc000}, {"*GLOFF\r\n", "OFF", 0x808080}}, false);
  ExpectCycle(&RobotCtrl::LaserSWClick, &InstrumentState::LaserSW, &RobotCtrl::Colours::LaserSW,
              {{"*/PF,1,2\r\n", "導光", 0xffff00}, {"*/PF,2,2\r\n", "雷射", 0xff}}, false);
  ExpectCycle(&RobotCtrl::TrkSrhSWClick, &InstrumentState::TrkSrhSW, nullptr,
              {{"*/PA 1,0,15.0000,15.0000\r\n", "尋標", {}}, {"*/PA 1,1,15.0000,15.0000\r\n", "追蹤", {}}}, false);
  ExpectCycle(&RobotCtrl::TrkSrhOnOffClick, &InstrumentState::TrkSrhOnOff, &RobotCtrl::Colours::TrkSrhOnOff,
              {{"*TBON\r", "ON", 0xff00}, {"*R\r", "OFF", 0x808080}}, false);
}

TEST(RobotCtrl, FailedWriteKeepsTheCaption) {
  RobotRig rig;
  rig.set.refuseOpen = true;
  rig.robot.ShotModeClick();
  rig.robot.LaserOnOffClick();
  rig.robot.Step(StepButton::DirUp);
  EXPECT_EQ(rig.state.ShotMode, "快測");
  EXPECT_EQ(rig.state.LaserOnOff, "OFF");
  EXPECT_FALSE(rig.robot.colours.ShotMode.has_value());
  EXPECT_FALSE(rig.timer10.enabled);
  EXPECT_TRUE(rig.dialogs.shown.empty());
}

}  // namespace
}  // namespace tavik::test
