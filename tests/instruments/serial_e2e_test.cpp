// End to end: TAVIK's serial port (QSerialPort) and link against tavik-sim on a
// pseudo-terminal, for every family. The decoded observation, reduced with the scene's
// own station and orientation, must land on the target within the instrument's
// rounding; a cable pulled in the middle of an answer must close the port cleanly.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "instruments/inst_options.h"
#include "instruments/link.h"
#include "instruments/sim_process.h"
#include "platform/qt/serial_port.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {
namespace {

constexpr double kPi = 3.14159265358979;

// Station (1000, 2000, 50), instrument height 1.5, circle zero at azimuth 30 degrees.
const char* kScene =
    "station 1000 2000 50 1.5\n"
    "orientation 30\n"
    "target T1 1063.214 2087.512 53.871 1.6\n"
    "target T2 912.5 1971.25 47.02 1.2\n";
struct Point { double e, n, h, height; };
const Point kTargets[] = {{1063.214, 2087.512, 53.871, 1.6}, {912.5, 1971.25, 47.02, 1.2}};

struct Rig {
  InstrumentState state;
  ui::ScriptedDialogs dialogs;
  ui::MemorySettingsStore settings;
  ui::QtSerialPort set{&settings}, top{&settings};
  TotalStationLink link{state, dialogs};
  int delivered = 0;

  explicit Rig(const std::string& device) {
    setenv("TAVIK_COM7", device.c_str(), 1);
    state.PortNumber = 7;
    link.MSComm_SET = &set;
    link.MSComm_TOP = &top;
    set.OnByte = [this](char c) { link.OnByte(Channel::Set, c); };
    top.OnByte = [this](char c) { link.OnByte(Channel::Top, c); };
    link.receivers.PointShot = [this] { ++delivered; };
  }
};

// The point the observation reduces to, face one.
Point Reduce(const InstrumentState& s, double targetHeight) {
  double elevation = kPi / 2 - s.ObsV;
  double azimuth = s.ObsHz + 30 * kPi / 180;
  double hd = s.ObsSlope * std::cos(elevation);
  return {1000 + hd * std::sin(azimuth), 2000 + hd * std::cos(azimuth),
          50 + 1.5 + s.ObsSlope * std::sin(elevation) - targetHeight, targetHeight};
}

struct FamilyCase {
  const char *simFamily, *kind;
  double tolerance;  // metres, from the instrument's rounding at about 100 m
};

TEST(SerialEndToEnd, EveryFamilyMeasuresTheScene) {
  const FamilyCase cases[] = {
      {"SET", "SET30R", 0.002},       {"SET", "TCR805power", 0.002},  {"GTS22X", "GTS22X", 0.002},
      {"GTS211D", "GTS211D", 0.002},  {"Leica", "TCRA1103plus", 0.001}, {"Trimble", "Trimble", 0.002},
      {"Trimble3600", "Trimble3600", 0.001}, {"PENTAX", "PENTAX", 0.002},
  };
  for (const FamilyCase& c : cases) {
    SCOPED_TRACE(c.kind);
    Sim sim(c.simFamily, kScene);
    ASSERT_FALSE(sim.path.empty());
    Rig rig(sim.path);
    rig.state.InstrumentKind = c.kind;
    for (int shot = 0; shot < 2; ++shot) {
      rig.state.AwaitPointShot = -1;
      sim.Command(shot == 0 ? "target 0" : "target 1");
      rig.link.StartShot();
      if (std::string(c.kind) == "Trimble3600") {
        ASSERT_TRUE(rig.top.PortOpen());
        sim.Command("fire");
      }
      ASSERT_TRUE(SpinUntil([&] { return rig.delivered == shot + 1; })) << rig.link.picture.OBSBox;
      const Point& t = kTargets[shot];
      Point p = Reduce(rig.state, t.height);
      EXPECT_NEAR(p.e, t.e, c.tolerance);
      EXPECT_NEAR(p.n, t.n, c.tolerance);
      EXPECT_NEAR(p.h, t.h, c.tolerance);
      EXPECT_FALSE(rig.link.picture.MsgObserve);
    }
    EXPECT_TRUE(rig.dialogs.shown.empty());
  }
}

TEST(SerialEndToEnd, MisbehavingInstrumentThenAGoodAnswer) {
  struct Case {
    const char *family, *kind, *fault;
    std::optional<std::vector<std::string>> boxes;  // titles the bad answer raises; nullopt: any
    bool waitStays;                                  // no complete answer: the wait picture stays
  };
  const Case cases[] = {
      {"SET", "SET30R", "e200", std::vector<std::string>{"無法測距"}, false},
      {"SET", "SET30R", "tilt", std::vector<std::string>{"儀器有問題"}, false},
      {"SET", "SET30R", "face2", std::vector<std::string>{"倒鏡提示", "HD資料錯誤"}, false},
      {"GTS22X", "GTS22X", "garbled", std::nullopt, false},
      {"Leica", "FlexLine", "half", std::vector<std::string>{}, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.kind) + " " + c.fault);
    QTemporaryDir dir;
    const QString record = dir.filePath("received.bin");
    Sim sim(c.family, kScene, {"--fault", c.fault, "--record", record});
    Rig rig(sim.path);
    rig.state.InstrumentKind = c.kind;
    rig.state.AwaitPointShot = -1;
    rig.link.StartShot();
    if (c.waitStays) {
      // Half an answer arrives and then nothing: wait for its bytes, however slow the
      // machine, so that the next request cannot overtake them.
      ASSERT_TRUE(SpinUntil([&] { return !rig.link.RxBuffer().empty(); }));
      SpinUntil([] { return false; }, 100);
    } else {
      SpinUntil([&] { return !rig.link.picture.MsgObserve; }, 3000);
    }
    EXPECT_EQ(rig.link.picture.MsgObserve, c.waitStays);
    std::vector<std::string> titles;
    for (const auto& s : rig.dialogs.shown) titles.push_back(s.title);
    if (c.boxes) {
      EXPECT_EQ(titles, *c.boxes);
    }
    EXPECT_EQ(rig.delivered, 0);
    // The next request is answered properly and decoded.
    rig.link.StartShot();
    ASSERT_TRUE(SpinUntil([&] { return rig.delivered == 1; })) << rig.link.picture.OBSBox;
    Point p = Reduce(rig.state, kTargets[0].height);
    EXPECT_NEAR(p.e, kTargets[0].e, 0.002);
    if (std::string(c.family) == "GTS22X") {
      // The simulator saw each request, and TAVIK acknowledged each "?" answer.
      // The last acknowledge leaves after the delivery: give the simulator time to record it.
      const QByteArray request("C067\x03\r\n"), ack("\x06" "006\x03\r\n");
      const QByteArray want = request + ack + request + ack;
      QByteArray got;
      SpinUntil([&] {
        QFile f(record);
        got = f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
        return got.size() >= want.size();
      });
      EXPECT_EQ(got, want);
    }
  }
}

TEST(SerialEndToEnd, PulledCableMidAnswerClosesThePort) {
  Sim sim("SET", kScene, {"--fault", "disconnect"});
  Rig rig(sim.path);
  int closed = 0;
  rig.set.OnClosed = [&] { ++closed; };
  rig.state.AwaitPointShot = -1;
  rig.link.StartShot();
  ASSERT_TRUE(SpinUntil([&] { return closed > 0; }));
  EXPECT_FALSE(rig.set.PortOpen());
  EXPECT_EQ(rig.delivered, 0);
  // The program goes on: the half answer waits in the buffer, and the stop still completes.
  SpinUntil([] { return false; }, 200);
  EXPECT_EQ(closed, 1);
  rig.link.StopShot();
  EXPECT_TRUE(rig.link.picture.RecButtonEnabled);
}

TEST(SerialEndToEnd, IdentificationOfSokkiaAndLeica) {
  struct Case { const char* simFamily; bool leica; const char* kind; };
  for (const Case& c : {Case{"SET", false, "SET3110MV"}, Case{"Leica", true, "TCA1100L"}}) {
    SCOPED_TRACE(c.kind);
    Sim sim(c.simFamily, kScene, {"--model", c.kind, "--serial", "778899"});
    Rig rig(sim.path);
    struct : InstOptionsHost {
      void ShowMeasureMode(const std::string&) override {}
      void ShowRobotPanel(bool) override {}
      void ShowInstrumentLabels(const std::string&, const std::string&) override {}
      void ShowMapType(const std::string&) override {}
      void ShowOBSBox(const std::string&) override {}
    } host;
    ui::ManualTimer timer1, timer2;
    InstrumentState& state = rig.state;
    ui::QtSerialPort& port = rig.set;  // the dialog takes the port over
    InstOptionsLogic dlg(state, rig.dialogs, host, port, timer1, timer2);
    if (c.leica) {
      dlg.PickOption(InstOption::Option24);
      ASSERT_TRUE(SpinUntil([&] { return !port.PortOpen(); }));  // the type word closes the port
      EXPECT_EQ(state.InstrumentSerial, "778899");
    } else {
      dlg.Command1Click();
      timer2.Fire();
      ASSERT_TRUE(SpinUntil([&] { return dlg.focusOK; }));
      EXPECT_EQ(dlg.Label6_1, std::string("型號") + c.kind + " 序號778899");
    }
    EXPECT_EQ(state.InstrumentKind, c.kind);
    EXPECT_TRUE(state.InstrumentIdentified);
  }
}

}  // namespace
}  // namespace tavik::test
