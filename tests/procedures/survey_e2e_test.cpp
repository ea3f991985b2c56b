// End to end: the survey commands over TAVIK's real serial port against tavik-sim on a
// pseudo-terminal. A new document, a set-up on two known points with FitDialog, ten
// shots at the scene's prisms, a save; the saved document and the logs must agree with
// the scene. And a resection whose first shot comes back in face two.
#include <gtest/gtest.h>

#include <cstdio>

#include "core/docfile.h"
#include "core/numbers.h"
#include "instruments/link.h"
#include "instruments/sim_process.h"
#include "platform/qt/serial_port.h"
#include "procedures/fit_dialog.h"
#include "procedures/observation_pipeline.h"
#include "procedures/resect_dialog.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

struct Prism {
  const char* name;
  double E, N, H, height;
};
// Target 0 is the backsight B1; the other ten are shot.
const Prism kPrisms[] = {
    {"B1", 1100, 2000, 52, 1.5},        {"T1", 1050, 2050, 51.2, 1.5},    {"T2", 1080.5, 1990.25, 49.87, 1.5},
    {"T3", 1012.34, 1925.66, 50.45, 1.3}, {"T4", 950.12, 1960, 52.01, 1.3}, {"T5", 975, 2075.5, 48.3, 1.3},
    {"T6", 1120.7, 2101.3, 55.02, 2},   {"T7", 890.44, 2010.9, 46.7, 2},  {"T8", 1003, 2140.25, 50, 1.5},
    {"T9", 1031.5, 1880.8, 49.1, 1.5},  {"T10", 940.06, 1899.99, 51.75, 1.5},
};

using test::Sim;
using test::SpinUntil;

// The scene of the prisms from a station at (1000, 2000, 50), circle zero at 30 degrees.
std::string Scene() {
  std::string scene = "station 1000 2000 50 1.5\norientation 30\n";
  char line[96];
  for (const Prism& p : kPrisms) {
    std::snprintf(line, sizeof line, "target %s %.3f %.3f %.3f %.3f\n", p.name, p.E, p.N, p.H, p.height);
    scene += line;
  }
  return scene;
}

struct SurveyEndToEnd : testing::SurveyFixture {
  ui::MemorySettingsStore settings;
  ui::QtSerialPort set{&settings}, top{&settings};
  TotalStationLink tsLink{inst, dialogs};

  void Connect(const std::string& device, const char* kind) {
    setenv("TAVIK_COM8", device.c_str(), 1);
    inst.PortNumber = 8;
    inst.InstrumentKind = kind;
    tsLink.MSComm_SET = &set;
    tsLink.MSComm_TOP = &top;
    set.OnByte = [this](char c) { tsLink.OnByte(Channel::Set, c); };
    top.OnByte = [this](char c) { tsLink.OnByte(Channel::Top, c); };
    ctx.link.StartShot = [this] { tsLink.StartShot(); };
    tsLink.receivers.PointShot = [this] { ReducePoint(ctx); };
  }

  void Run(const char* family, const char* kind) {
    Sim sim(family, Scene());
    ASSERT_FALSE(sim.path.empty());
    Connect(sim.path, kind);
    AddControl("K1", 1000, 2000, 50);
    AddControl("B1", 1100, 2000, 52);

    FitDialogLogic fit(ctx);
    tsLink.receivers.FitShot = [&] { fit.DistanceReceiver(); };
    ASSERT_TRUE(fit.ChooseStation("K1"));
    ASSERT_TRUE(fit.ChooseBacksight("B1"));
    fit.Text4 = "1.5";
    fit.Text3 = "1.5";
    sim.Command("target 0");
    fit.Command3();
    ASSERT_TRUE(SpinUntil([&] { return inst.AwaitFitShot == kFalse; })) << tsLink.picture.OBSBox;
    ASSERT_TRUE(fit.OKButton());

    for (int i = 1; i <= 10; ++i) {
      sim.Command("target " + std::to_string(i));
      dialogs.inputs.push_back(num::Plain(kPrisms[i].height));
      const int32_t before = doc.PointCount;
      RecButton(ctx);
      ASSERT_TRUE(SpinUntil([&] { return doc.PointCount == before + 1; })) << i << tsLink.picture.OBSBox;
    }
    ASSERT_TRUE(SaveDocument(doc, work, dialogs));

    Document back;
    SetDocumentName(back, doc.DocumentName);
    ASSERT_TRUE(LoadDocument(back, dialogs));
    ASSERT_EQ(back.PointCount, 10);
    for (int i = 1; i <= 10; ++i) {
      SCOPED_TRACE(kPrisms[i].name);
      EXPECT_NEAR(back.PointTable[i - 1].E, kPrisms[i].E, 0.003);
      EXPECT_NEAR(back.PointTable[i - 1].N, kPrisms[i].N, 0.003);
      EXPECT_NEAR(back.PointTable[i - 1].H, kPrisms[i].H, 0.003);
    }
    EXPECT_EQ(back.StationName, "K1");
    EXPECT_EQ(back.StationSet, kTrue);
    EXPECT_EQ(File(".MAC"), "K1 B1\r\n");
    const auto obs = Lines(".OBS");
    ASSERT_EQ(obs.size(), 3u + 10);
    EXPECT_EQ(obs[1], "K1,1000.000,2000.000,50.000,1.50");
    EXPECT_EQ(obs[2].substr(0, 28), "B1,1100.000,2000.000,52.000,");
    for (int i = 1; i <= 10; ++i)
      EXPECT_EQ(obs[2 + i].substr(obs[2 + i].size() - 25), num::Format(kPrisms[i].height, "0.00") +
                                                                 ", 2026/11/21 08:00:00");
  }
};

// T1 then B1 from the unknown station: the instrument's first answer is in face two.
// It is refused with the reminder and the distance message, the point is observed
// again, and the station and its orientation come out as the scene has them.
TEST_F(SurveyEndToEnd, ResectionRefusesTheFaceTwoShot) {
  Sim sim("SET", Scene(), {"--fault", "face2@1"});
  ASSERT_FALSE(sim.path.empty());
  Connect(sim.path, "SET30R");
  AddControl("T1", kPrisms[1].E, kPrisms[1].N, kPrisms[1].H);
  AddControl("B1", kPrisms[0].E, kPrisms[0].N, kPrisms[0].H);
  ui::QtSerialPort own{&settings};
  ResectDlgLogic dlg(ctx, &own);
  ASSERT_TRUE(dlg.Choose(0, "T1"));
  ASSERT_TRUE(dlg.Choose(1, "B1"));
  dlg.StationNameText = "R1";
  dlg.InstrumentHeightText = "1.5";
  dlg.TargetText[0] = dlg.TargetText[1] = "1.5";
  sim.Command("target 1");
  dlg.Measure(0);
  ASSERT_TRUE(SpinUntil([&] { return dialogs.shown.size() == 2; }));
  EXPECT_EQ(dialogs.shown[0].title, "倒鏡提示");
  EXPECT_EQ(dialogs.shown[1].text, "平距值錯誤.");
  EXPECT_EQ(dlg.StatusLabel[0], "");
  dlg.Measure(0);
  ASSERT_TRUE(SpinUntil([&] { return dlg.StatusLabel[0] == "OK"; }));
  sim.Command("target 0");
  dlg.Measure(1);
  ASSERT_TRUE(SpinUntil([&] { return dlg.StatusLabel[1] == "OK"; }));
  dlg.Solve();
  ASSERT_TRUE(dlg.OKButton());
  EXPECT_EQ(dialogs.shown.size(), 2u);
  EXPECT_NEAR(doc.StationE, 1000, 0.01);
  EXPECT_NEAR(doc.StationN, 2000, 0.01);
  EXPECT_NEAR(doc.StationH, 50, 0.01);
  EXPECT_NEAR(doc.OrientationConstant, 30 * Pi / 180, 1e-4);
}

TEST_F(SurveyEndToEnd, SetFamily) { Run("SET", "SET30R"); }
TEST_F(SurveyEndToEnd, TopconFamily) { Run("GTS22X", "GTS22X"); }

}  // namespace
}  // namespace tavik
