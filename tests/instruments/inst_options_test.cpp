#include <gtest/gtest.h>

#include "fake_port.h"
#include "instruments/inst_options.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {
namespace {

struct RecordingHost : InstOptionsHost {
  std::string mode, kind, serial, mapWord, obsBox;
  std::optional<bool> robot;
  void ShowMeasureMode(const std::string& m) override { mode = m; }
  void ShowRobotPanel(bool inReach) override { robot = inReach; }
  void ShowInstrumentLabels(const std::string& k, const std::string& s) override { kind = k, serial = s; }
  void ShowMapType(const std::string& w) override { mapWord = w; }
  void ShowOBSBox(const std::string& t) override { obsBox = t; }
};

struct OptionsRig {
  InstrumentState state;
  ui::ScriptedDialogs dialogs;
  RecordingHost host;
  FakePort port;
  ui::ManualTimer timer1, timer2;
  std::string sounder = "sounder A";
  InstOptionsLogic dlg{state, dialogs, host, port, timer1, timer2, &sounder};
};

TEST(InstOptions, OptionButtonsStoreTheirKindsAndKindsMarkTheirOption) {
  const std::pair<InstOption, const char*> rows[] = {
      {InstOption::OptHand, "Keyin"},    {InstOption::Option6, "SET3110M/MV"}, {InstOption::Option5, "GTS22X"},
      {InstOption::Option25, "GTS211D"}, {InstOption::Option23, "Trimble3600"}, {InstOption::Option2, "Nikon_Nivo"},
  };
  for (auto [option, kind] : rows) {
    OptionsRig rig;
    rig.state.MeasureMode = "GPS";
    rig.dlg.PickOption(option);
    EXPECT_EQ(rig.state.InstrumentKind, kind);
    EXPECT_EQ(rig.state.MeasureMode, "TS");
    EXPECT_EQ(rig.port.opens, 0);
    EXPECT_EQ(OptionForKind(kind), option);
  }
  // Kinds read from the instrument mark the button of their series.
  const std::pair<const char*, InstOption> read[] = {
      {"TCR805power", InstOption::Option24}, {"TCA1100L", InstOption::Option24}, {"FlexLine", InstOption::Option3},
      {"Nivo3.M", InstOption::Option2},      {"SRX", InstOption::Option4},       {"SET_030R", InstOption::Opt_030R},
      {"SET30R", InstOption::Opt_030R},  // the kind in force at a first start
  };
  for (auto [kind, option] : read) EXPECT_EQ(OptionForKind(kind), option) << kind;
}

TEST(InstOptions, RobotSeriesOnlyWhenNoKindIsSetAndSlowSokkiaSpeedStaysUntilChanged) {
  OptionsRig rig;
  rig.dlg.PickOption(InstOption::Option4);
  EXPECT_EQ(rig.state.InstrumentKind, "SET30R");
  rig.state.InstrumentKind = "";
  rig.dlg.PickOption(InstOption::Option4);
  EXPECT_EQ(rig.state.InstrumentKind, "SRX");
  rig.state.InstrumentSerial = "123";
  rig.dlg.PickOption(InstOption::Opt_030R);
  EXPECT_EQ(rig.state.BaudRate, 1200);
  EXPECT_EQ(rig.state.InstrumentSerial, "");
  rig.dlg.PickOption(InstOption::Option5);
  EXPECT_EQ(rig.state.BaudRate, 1200);
  rig.dlg.Combo5Click(9600);
  rig.dlg.Combo4Click(4);
  EXPECT_EQ(rig.state.BaudRate, 9600);
  EXPECT_EQ(rig.state.PortNumber, 4);
}

TEST(InstOptions, LeicaButtonsAskTheInstrument) {
  OptionsRig rig;
  rig.state.PortNumber = 2;
  rig.dlg.PickOption(InstOption::Option3);
  EXPECT_EQ(rig.state.InstrumentKind, "FlexLine");
  EXPECT_EQ(rig.port.written, "GET/I/WI12\r\n");
  rig.dlg.PickOption(InstOption::Option24);
  EXPECT_EQ(rig.port.closes, 1);
  EXPECT_EQ(rig.port.openedWith, (std::vector<std::string>{"COM2 9600,n,8,1", "COM2 9600,n,8,1"}));
  EXPECT_EQ(rig.port.written, "GET/I/WI12\r\nSET/161/7\r\nGET/I/WI12\r\nGET/I/WI13\r\n");
  EXPECT_EQ(rig.state.InstrumentKind, "FlexLine");
}

TEST(InstOptions, IdentificationProbesSokkiaThenTopconInTurn) {
  OptionsRig rig;
  rig.dlg.Command1Click();
  EXPECT_TRUE(rig.timer2.enabled);
  rig.timer2.Fire();
  EXPECT_EQ(rig.state.InstrumentKind, "SET");
  EXPECT_EQ(rig.port.openedWith, std::vector<std::string>{"COM1 9600,n,8,1"});
  EXPECT_EQ(rig.port.written, "A\r\n");
  rig.timer2.Fire();
  EXPECT_EQ(rig.state.InstrumentKind, "GTS22X");
  EXPECT_EQ(rig.host.obsBox, "自動偵測TOPCON儀器中...");
  rig.timer2.Fire();
  EXPECT_EQ(rig.state.InstrumentKind, "SET");
  EXPECT_EQ(rig.host.obsBox, "自動偵測SOKKIA儀器中...");
  EXPECT_EQ(rig.port.written, "A\r\nZ32091\x03\r\nA\r\n");
  for (int i = 0; i < 10; ++i) rig.timer2.Fire();
  EXPECT_FALSE(rig.timer2.enabled);  // gives up after a few probes
}

TEST(InstOptions, IdentificationAnswers) {
  struct IdCase {
    const char* legend;
    std::string answer;
    const char *kind, *serial;  // expected kind; the probe left "SET"
    bool identified, portClosed;
  };
  const IdCase cases[] = {
      {"comma answer", "A SET30R, 123456 ,1.2,3.4\r\n", "SET30R", "123456", true, false},
      {"acknowledge bytes are ignored", "\x06\x06" "A SRX3,77,1\r\n", "SRX3", "77", true, false},
      {"Leica serial", "*12....+0000000000654321\r\n", "SET", "654321", true, false},
      {"Leica type in the list", "*13....+TCRA1103plus1.0\r\n", "TCRA1103plus", "", true, true},
      {"Leica type not in the list", "*13....+TPS1200abc\r\n", "TPS1200", "", false, false},
      {"OK", "OK\r\n", "SET", "", false, false},
      {"no comma leaves the kind alone", "A SET30R\r\n", "SET", "", false, false},
  };
  for (const IdCase& c : cases) {
    SCOPED_TRACE(c.legend);
    OptionsRig rig;
    rig.dlg.Command1Click();
    rig.timer2.Fire();
    rig.timer1.enabled = true;
    rig.port.Receive(c.answer);
    EXPECT_FALSE(rig.timer2.enabled);
    EXPECT_EQ(rig.state.InstrumentKind, c.kind);
    EXPECT_EQ(rig.state.InstrumentSerial, c.serial);
    EXPECT_EQ(rig.state.InstrumentIdentified != 0, c.identified);
    EXPECT_EQ(!rig.port.open, c.portClosed);
    EXPECT_EQ(rig.dlg.focusOK, c.identified);
    EXPECT_EQ(rig.timer1.enabled, !c.identified);
    if (c.identified) {
      EXPECT_EQ(rig.dlg.Label6_1, std::string("型號") + c.kind + " 序號" + c.serial);
      EXPECT_EQ(rig.host.kind, c.kind);
    }
  }
}

TEST(InstOptions, OkAsksForTheMapTypeOnce) {
  OptionsRig rig;
  rig.dlg.Load();
  rig.dlg.cmdOKClick();
  ASSERT_EQ(rig.dialogs.shown.size(), 1u);
  EXPECT_EQ(rig.dialogs.shown[0].title, "2D/3D");
  EXPECT_EQ(rig.dialogs.shown[0].text, "請指定2D / 3D");
  EXPECT_EQ(rig.state.MapType, 2);
  EXPECT_TRUE(rig.dlg.Opt2D);
  EXPECT_TRUE(rig.dlg.unloaded);
  EXPECT_EQ(rig.host.mode, "TS");

  OptionsRig again;
  again.state.MapType = 2;
  again.dlg.Load();
  again.dlg.Opt3DClick();
  again.dlg.cmdOKClick();
  EXPECT_TRUE(again.dialogs.shown.empty());
  EXPECT_EQ(again.state.MapType, 1);
  EXPECT_EQ(again.host.mapWord, "地形圖");
}

TEST(InstOptions, RobotPanelRule) {
  const std::pair<const char*, bool> rows[] = {
      {" SET3110MV ", true}, {"SET3110M/MV", false}, {"iX-1003", true}, {"ix", false},
      {"DX-103", true},      {"SX", true},           {"NET1200", true}, {"SET30R", false},
  };
  for (auto [kind, robot] : rows) {
    OptionsRig rig;
    rig.state.InstrumentKind = kind;
    rig.state.MapType = 2;
    rig.dlg.Load();
    rig.dlg.cmdOKClick();
    ASSERT_TRUE(rig.host.robot.has_value());
    EXPECT_EQ(*rig.host.robot, robot) << kind;
  }
}

TEST(InstOptions, OkProbesTopconAndClosesThePort) {
  OptionsRig rig;
  rig.state.MapType = 1;
  rig.dlg.Load();
  rig.dlg.PickOption(InstOption::Option25);
  rig.dlg.cmdOKClick();
  EXPECT_EQ(rig.port.openedWith, std::vector<std::string>{"COM1 9600,e,7,1"});
  EXPECT_EQ(rig.port.written, "Z32091\x03\r\n");
  EXPECT_FALSE(rig.port.open);
  EXPECT_EQ(rig.host.kind, "GTS211D");
}

TEST(InstOptions, CancelPutsBackTheChoiceButNotThePort) {
  OptionsRig rig;
  rig.dlg.Load();
  rig.dlg.PickOption(InstOption::Option18);
  rig.dlg.Combo4Click(5);
  rig.sounder = "sounder B";
  rig.dlg.cmdCancelClick();
  EXPECT_EQ(rig.state.InstrumentKind, "SET30R");
  EXPECT_EQ(rig.sounder, "sounder A");
  EXPECT_EQ(rig.state.PortNumber, 5);
  EXPECT_EQ(rig.host.mode, "TS");
  EXPECT_TRUE(rig.dlg.unloaded);
}

TEST(InstOptions, PowerAndRotation) {
  OptionsRig rig;
  rig.dlg.Command3Click();
  EXPECT_EQ(rig.port.written, "");
  rig.timer1.Fire();
  rig.dlg.Command5Click();
  rig.dlg.Command4Click();
  EXPECT_EQ(rig.port.written, "*PON\r\n*POFF\r\n*Z\r\n");
  EXPECT_FALSE(rig.timer1.enabled);
}

}  // namespace
}  // namespace tavik::test

namespace tavik::test {
namespace {

TEST(InstOptions, GnssTabSwitchesToGpsAndWarnsOfTheEgpsWiring) {
  OptionsRig rig;
  GnssSetup gnss;
  rig.dlg.gnss = &gnss;
  rig.dlg.Load();
  rig.dlg.PickReceiver("DL-4");
  rig.dlg.PickDifferential(InstOptionsLogic::Differential::Egps);
  EXPECT_EQ(rig.state.MeasureMode, "GPS");
  EXPECT_EQ(rig.state.InstrumentKind, "DL-4");
  EXPECT_EQ(std::tuple(gnss.DiffSbas, gnss.DiffEgps, gnss.DiffRtk), std::tuple(int16_t{0}, int16_t{-1}, int16_t{0}));
  rig.dlg.cmdOKClick();
  EXPECT_EQ(rig.host.mode, "GPS");
  ASSERT_EQ(rig.dialogs.shown.size(), 1u);
  EXPECT_EQ(rig.dialogs.shown[0].title, "注意com port設定");
  EXPECT_EQ(rig.dialogs.shown[0].text, "您選擇RadianIS + eGPS,儀器的COM2接電腦,用COM1接手機");
  EXPECT_EQ(rig.state.MapType, 0);  // the plan-or-topographic question is the total station's

  // Another receiver on eGPS gets no warning; Cancel puts the mode and kind back.
  rig.dialogs.shown.clear();
  rig.dlg.Load();
  rig.dlg.PickReceiver("PP7");
  rig.dlg.cmdOKClick();
  EXPECT_TRUE(rig.dialogs.shown.empty());
  rig.dlg.Load();
  rig.dlg.PickOption(InstOption::Option5);
  rig.dlg.cmdCancelClick();
  EXPECT_EQ(rig.state.MeasureMode, "GPS");
  EXPECT_EQ(gnss.GpsReceiverKind, "PP7");
}

}  // namespace
}  // namespace tavik::test
