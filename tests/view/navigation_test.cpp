#include "view/navigation.h"

#include <gtest/gtest.h>

#include <cmath>

#include "canvas_fixture.h"

namespace tavik::view {
namespace {

struct NavFixture : CanvasFixture {
  int rebuilds = 0, headers = 0;
  NavFixture() {
    canvas.RebuildScreenTables = [this] { ++rebuilds; };
    canvas.WriteRecoveryHeader = [this] { ++headers; };
    doc.PointTable.push_back({1, 1000, 2000, 0, kFalse});
    doc.PointTable.push_back({2, 1200, 2100, 0, kFalse});
    doc.PointCount = 2;
  }
};

TEST(ViewCommands, EachPushesTheViewAndRunsTheTail) {
  struct Case {
    const char* name;
    bool (*run)(MapCanvas&);
    double scale, E, N;
  } cases[] = {
      {"ZoomIn", ZoomIn, 375, 1000, 2000},
      {"ZoomOut", ZoomOut, 500 / 0.75, 1000, 2000},
      {"ZT", ZT, 500, 1200, 2100},
  };
  for (const Case& c : cases) {
    NavFixture f;
    ASSERT_TRUE(c.run(f.canvas)) << c.name;
    EXPECT_NEAR(f.doc.ScaleDenominator, c.scale, 1e-9) << c.name;
    EXPECT_TRUE(f.doc.ViewCentreE == c.E && f.doc.ViewCentreN == c.N) << c.name;
    EXPECT_TRUE(f.view.ViewHistoryCount == 1 && f.view.ViewHistory[0][0] == 500) << c.name;
    EXPECT_TRUE(f.rebuilds == 1 && f.headers == 1 && f.surface.Count("clear") == 1) << c.name;
    EXPECT_EQ(f.ui.panels[1], "1 :" + std::to_string(static_cast<long>(c.scale))) << c.name;
    EXPECT_TRUE(InScreen(f.view, c.E, c.N));
  }
}

TEST(ViewCommands, WheelZoomKeepsTheGroundUnderThePointerAndStopsAtOne) {
  for (bool in : {true, false}) {
    NavFixture f;
    const float x = 1200 + 100, y = 900 + 500;  // a pixel of the viewport, off its centre
    double E0, N0, E1, N1;
    PaperToWorld(f.doc, f.view, x, y, E0, N0);
    ASSERT_TRUE(ZoomAbout(f.canvas, in, x, y));
    EXPECT_NEAR(f.doc.ScaleDenominator, in ? 375 : 500 / 0.75, 1e-9);
    PaperToWorld(f.doc, f.view, x, y, E1, N1);
    EXPECT_NEAR(E1, E0, 1e-9);
    EXPECT_NEAR(N1, N0, 1e-9);
    EXPECT_TRUE(f.view.ViewHistoryCount == 1 && f.rebuilds == 1 && f.headers == 1 && f.surface.Count("clear") == 1);
  }
  // Zooming in stops at 1 : 1, by the key or the wheel, without a push or a repaint.
  NavFixture one;
  one.doc.ScaleDenominator = 1.2;
  ASSERT_TRUE(ZoomIn(one.canvas));
  EXPECT_EQ(one.doc.ScaleDenominator, 1);
  one.surface.ops.clear();
  EXPECT_FALSE(ZoomIn(one.canvas));
  EXPECT_FALSE(ZoomAbout(one.canvas, true, 0, 0));
  EXPECT_TRUE(one.view.ViewHistoryCount == 1 && one.surface.ops.empty());
}

TEST(ViewCommands, NeedAnOpenDocumentAndTheirData) {
  NavFixture f;
  EXPECT_FALSE(ZC(f.canvas));  // no station
  f.doc.StationSet = kTrue;
  f.doc.StationE = 1100, f.doc.StationN = 2050;
  EXPECT_TRUE(ZC(f.canvas));
  EXPECT_EQ(f.doc.ViewCentreE, 1100);
  f.doc.DocumentName.clear();
  for (auto run : {ZE, ZP, ZS, ZC, ZT, ZoomIn, ZoomOut}) EXPECT_FALSE(run(f.canvas));
  NavFixture empty;
  empty.doc.PointTable.clear();
  EXPECT_FALSE(ZE(empty.canvas));
  EXPECT_FALSE(ZT(empty.canvas));
  EXPECT_EQ(empty.view.ViewHistoryCount, 0);
}

TEST(ViewCommands, ZoomExtentThenPrevious) {
  NavFixture f;
  ASSERT_TRUE(ZE(f.canvas));
  EXPECT_EQ(f.doc.ViewCentreE, 1100);
  EXPECT_EQ(f.doc.ViewCentreN, 2050);
  EXPECT_TRUE(InScreen(f.view, 1000, 2000) && InScreen(f.view, 1200, 2100));
  ASSERT_TRUE(ZP(f.canvas));
  EXPECT_EQ(f.doc.ScaleDenominator, 500);
  EXPECT_EQ(f.doc.ViewCentreE, 1000);
  EXPECT_EQ(f.ui.tips[ButtonZoomPrevious], "前有0幕");
  EXPECT_FALSE(ZP(f.canvas));
}

TEST(ViewCommands, SetScaleAsksAndAcceptsOnlyAPositiveNumber) {
  struct Case {
    std::optional<std::string> answer;
    bool changed;
    double scale;
    std::size_t messages;
  } cases[] = {{" 250.5 ", true, 250.5, 0}, {"0.2", true, 1, 0}, {"", false, 500, 0}, {std::nullopt, false, 500, 0},
               {"abc", false, 500, 1},     {"-5", false, 500, 1}, {"1e300", false, 500, 1}};
  for (const Case& c : cases) {
    NavFixture f;
    f.dialogs.inputs.push_back(c.answer);
    EXPECT_EQ(ZS(f.canvas), c.changed);
    EXPECT_EQ(f.doc.ScaleDenominator, c.scale);
    EXPECT_EQ(f.dialogs.Messages().size(), c.messages);
    EXPECT_EQ(f.view.ViewHistoryCount, c.changed ? 1 : 0);
    ASSERT_FALSE(f.dialogs.shown.empty());
    EXPECT_EQ(f.dialogs.shown[0].text + "|" + f.dialogs.shown[0].title, "新的螢幕圖比例尺:|目前圖面比例尺 1:500");
  }
  // A fitted scale is offered as the whole denominator of the title, not its long fraction.
  NavFixture f;
  f.doc.ScaleDenominator = 771.152136920414;
  ZS(f.canvas);
  EXPECT_EQ(f.dialogs.shown[0].title + "|" + f.dialogs.inputDefaults.at(0), "目前圖面比例尺 1:771|771");
}

TEST(ViewCommands, WindowFitCentresOnTheWindow) {
  NavFixture f;
  std::string mode;
  ZW(mode, f.ui);
  EXPECT_EQ(mode, "ZoomW");
  EXPECT_TRUE(f.ui.pressed[ButtonZoomWindow]);
  ASSERT_TRUE(ZoomWindowFit(f.canvas, 1100, 2000, 1000, 2100));
  EXPECT_EQ(f.doc.ViewCentreE, 1050);
  EXPECT_EQ(f.doc.ViewCentreN, 2050);
  EXPECT_NEAR(f.doc.ScaleDenominator, 100 / (600 / 32.5) * 100, 1e-9);
  EXPECT_FALSE(ZoomWindowFit(f.canvas, NAN, 0, 1, 1));
}

TEST(Pan, DragMovesThePaperWithoutARepaintUntilRelease) {
  NavFixture f;
  PanDrag pan;
  PanStart(f.canvas, pan, 400, 300);
  EXPECT_EQ(f.view.ViewHistoryCount, 1);
  PanMove(f.canvas, pan, 465, 235);  // 65 px right and up: 10 m each at 1 : 500
  EXPECT_TRUE(f.surface.ops.empty());
  EXPECT_NEAR(f.doc.ViewCentreE, 990, 1e-9);
  EXPECT_NEAR(f.doc.ViewCentreN, 1990, 1e-9);
  EXPECT_NEAR(f.ui.paperLeft, -1200 + 65, 1e-3);
  EXPECT_NEAR(f.ui.paperTop, -900 - 65, 1e-3);
  EXPECT_EQ(f.rebuilds, 0);
  PanEnd(f.canvas, pan);
  EXPECT_TRUE(f.surface.Count("clear") == 1 && f.rebuilds == 1 && !pan.active);
  EXPECT_EQ(f.ui.paperLeft, -1200);
}

TEST(Pan, ScrollBarsMoveTheCentreWithoutARepaint) {
  NavFixture f;
  HScrollTo(f.canvas, 100);
  VScrollTo(f.canvas, 0);
  EXPECT_TRUE(f.surface.ops.empty());
  EXPECT_TRUE(f.rebuilds == 2 && f.headers == 2);
  // The viewport reaches the paper's right and top edges.
  EXPECT_NEAR(f.view.ScreenMaxE, f.view.PaperMaxE, 1e-6);
  EXPECT_NEAR(f.view.ScreenMaxN, f.view.PaperMaxN, 1e-6);
  HScrollTo(f.canvas, 101);                                 // out of range: ignored
  EXPECT_EQ(f.rebuilds, 2);
}

TEST(NewRows, AreDrawnOntoThePictureWithoutARepaint) {
  NavFixture f;
  f.Add(KindLine, 301, {990, 2000, 1010, 2000});
  DrawNewEntity(f.canvas, 0);
  DrawNewPoint(f.canvas, 1);
  EXPECT_EQ(f.surface.Count("clear"), 0u);
  EXPECT_EQ(f.surface.Count("line"), 3u);
  DrawNewEntity(f.canvas, 99);  // no such row
  EXPECT_EQ(f.surface.Count("line"), 3u);
}

}  // namespace
}  // namespace tavik::view
