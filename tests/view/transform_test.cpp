#include "view/transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "recording_ui.h"
#include "view/extent.h"

namespace tavik::view {
namespace {

struct Fixture {
  Document doc;
  View view;
  RecordingUi ui;
  Fixture(double scale, double E, double N, float w = 800, float h = 600) {
    doc.ScaleDenominator = scale;
    doc.ViewCentreE = E;
    doc.ViewCentreN = N;
    SetViewportSize(view, w, h);
    ComputeView(doc, view, ui);
  }
};

TEST(ComputeView, RectanglesFollowThePaperModel) {
  struct Case {
    double scale, E, N;
    float w, h;
  } cases[] = {{500, 280850, 2752650, 800, 600}, {1, 0, 0, 1000, 700}, {25000, 170000.5, 2540000.25, 1600, 1200}};
  for (const Case& c : cases) {
    Fixture f(c.scale, c.E, c.N, c.w, c.h);
    const double u = c.scale / 100;
    // Paper: four viewports about the centre; screen: one viewport.
    EXPECT_DOUBLE_EQ(f.view.PaperMinE, c.E - 2 * c.w / 32.5 * u);
    EXPECT_NEAR(f.view.PaperMaxN - f.view.PaperMinN, 4 * c.h / 32.5 * u, 1e-9 * c.N + 1e-9);
    EXPECT_NEAR(f.view.ScreenMaxE - f.view.ScreenMinE, c.w / 32.5 * u, 1e-6);
    EXPECT_EQ(f.ui.paperLeft, -1.5f * c.w);
    // The screen's corners land at the viewport's corners inside Paper1.
    float x, y;
    WorldToPaper(f.doc, f.view, f.view.ScreenMinE, f.view.ScreenMaxN, x, y);
    EXPECT_NEAR(x, 1.5 * c.w, 1e-2 * 1.5 * c.w);
    EXPECT_NEAR(y, 1.5 * c.h, 1e-2 * 1.5 * c.h);
    // Bounds are included on both axes.
    EXPECT_TRUE(InScreen(f.view, f.view.ScreenMinE, f.view.ScreenMinN));
    EXPECT_TRUE(InPaper(f.view, f.view.PaperMaxE, f.view.PaperMaxN));
    EXPECT_FALSE(InPaper(f.view, f.view.PaperMaxE + 0.001 * u, c.N));
    EXPECT_FALSE(InScreen(f.view, c.E, f.view.ScreenMinN - 0.001 * u));
  }
}

TEST(Transform, RoundTripsWithinAFractionOfAPixel) {
  Fixture f(500, 280850, 2752650);
  const double pts[][2] = {{280700.123, 2752790.456}, {281000, 2752500}, {280850.0001, 2752650.0001}};
  for (const auto& p : pts) {
    float x, y;
    WorldToPaper(f.doc, f.view, p[0], p[1], x, y);
    double E, N;
    PaperToWorld(f.doc, f.view, x, y, E, N);
    // Pixels are single precision: the world error stays under a hundredth of a pixel.
    EXPECT_NEAR(E, p[0], 5.0 / 32.5 / 100);
    EXPECT_NEAR(N, p[1], 5.0 / 32.5 / 100);
  }
  // Paper pixels to world and back are exact in doubles for whole pixels.
  double E, N;
  PaperToWorld(f.doc, f.view, 1600, 1200, E, N);  // the centre of Paper1
  EXPECT_NEAR(E, 280850, 1e-6);
  EXPECT_NEAR(N, 2752650, 1e-6);
}

TEST(FitScale, TakesTheGreaterAxisAndNeverGoesBelowOne) {
  struct Case {
    double E1, N1, E2, N2, want;
  } cases[] = {
      {0, 0, 800 / 32.5, 0, 100},         // exactly one viewport wide at 1:100
      {0, 0, 10, 600 / 32.5 * 5, 500},    // height governs
      {100, 100, 0, 0, 100 / (600 / 32.5) * 100},  // corners in any order
      {5, 5, 5, 5, 1},                    // a single spot
      {0, 0, 0.01, 0.01, 1},              // below 1
  };
  for (const Case& c : cases) {
    Fixture f(1000, 0, 0);
    FitScale(f.doc, f.view, c.E1, c.N1, c.E2, c.N2, f.ui);
    EXPECT_NEAR(f.doc.ScaleDenominator, c.want, 1e-9);
    EXPECT_EQ(f.ui.panels[1].rfind("1 :", 0), 0u);
  }
  Fixture f(1000, 0, 0);
  FitScale(f.doc, f.view, 0, 0, NAN, 5, f.ui);
  EXPECT_EQ(f.doc.ScaleDenominator, 1);
}

TEST(FitWholeExtent, CoversLiveDataOnly) {
  Fixture f(500, 0, 0);
  f.doc.PointTable.push_back({1, 100, 200, 0, kFalse});
  f.doc.PointTable.push_back({2, 900000, 900000, 0, kTrue});  // deleted: ignored
  auto add = [&](int16_t kind, double E1, double N1, double E2, double N2) {
    Entity e;
    e.Kind = kind;
    e.X[0] = E1, e.Y[0] = N1, e.X[1] = E2, e.Y[1] = N2;
    f.doc.EntityTable.push_back(e);
  };
  add(KindLine, 150, 210, 300, 260);
  add(KindCircle2, 120, 220, 120, 250);  // radius 30
  add(KindLine, NAN, 5, 0, 0);           // its other vertex, 0,0, goes with it
  ASSERT_TRUE(FitWholeExtent(f.doc, f.view, f.ui));
  EXPECT_EQ(std::vector<double>({f.doc.MinE, f.doc.MaxE, f.doc.MinN, f.doc.MaxN}), std::vector<double>({90, 300, 190, 260}));
  EXPECT_EQ(f.doc.ViewCentreE, 195);
  EXPECT_EQ(f.doc.ViewCentreN, 225);
  // The outermost corners keep a margin from the edges of the 800 x 600 view, on the
  // tighter axis exactly, so that marks and names beside them are not cut.
  EXPECT_EQ(WholeExtentMargin(800), 80);
  EXPECT_EQ(WholeExtentMargin(600), 60);
  EXPECT_EQ(WholeExtentMargin(100), 25);
  float left, top, right, bottom;
  WorldToPaper(f.doc, f.view, 90, 260, left, top);
  WorldToPaper(f.doc, f.view, 300, 190, right, bottom);
  left -= 1200, right -= 1200, top -= 900, bottom -= 900;  // the viewport starts 1.5 views in
  EXPECT_TRUE(left >= 79.99 && right <= 720.01 && top >= 59.99 && bottom <= 540.01) << left << " " << right;
  EXPECT_TRUE(std::fabs(left - 80) < 1e-3 || std::fabs(top - 60) < 1e-3);
  // A single point (scale 1, the paper as the extent) is the old-document load's test.
  Document empty;
  View v;
  EXPECT_FALSE(FitWholeExtent(empty, v));
  EXPECT_EQ(empty.ScaleDenominator, 100);
}

TEST(ViewHistory, PushAndPopKeepOrderAndTellTheButton) {
  Fixture f(500, 1, 2);
  PushView(f.view, 500, 1, 2, f.ui);
  PushView(f.view, 250, 3, 4, f.ui);
  EXPECT_EQ(f.ui.tips[ButtonZoomPrevious], "前有2幕");
  EXPECT_TRUE(f.ui.enabled[ButtonZoomPrevious]);
  ASSERT_TRUE(PopView(f.doc, f.view, f.ui));
  EXPECT_EQ(f.doc.ScaleDenominator, 250);
  EXPECT_EQ(f.doc.ViewCentreE, 3);
  EXPECT_EQ(f.ui.tips[ButtonZoomPrevious], "前有1幕");
  ASSERT_TRUE(PopView(f.doc, f.view, f.ui));
  EXPECT_EQ(f.doc.ViewCentreN, 2);
  EXPECT_FALSE(f.ui.enabled[ButtonZoomPrevious]);
  EXPECT_FALSE(PopView(f.doc, f.view, f.ui));
  EXPECT_EQ(f.doc.ScaleDenominator, 500);  // unchanged by the empty pop

  for (int i = 0; i < 1000; ++i) PushView(f.view, i + 1, i, i, f.ui);
  EXPECT_EQ(f.view.ViewHistoryCount, 1000);
  ClearViewHistory(f.view, f.ui);
  EXPECT_EQ(f.view.ViewHistoryCount, 0);
  EXPECT_FALSE(PopView(f.doc, f.view, f.ui));
}

TEST(Panning, ScrollBarsAndCentreAgree) {
  // The fast path's offset of Paper1 is the drag test's; here the bars.
  Fixture f(1000, 5000, 7000);
  int h, v;
  ScrollValues(f.doc, f.view, h, v);
  EXPECT_TRUE(h == 50 && v == 50) << h << "," << v;
  // Bar values map back onto the centre.
  for (int value : {0, 25, 50, 100}) {
    const double E = CentreFromHScroll(f.view, value);
    const double N = CentreFromVScroll(f.view, value);
    f.doc.ViewCentreE = E, f.doc.ViewCentreN = N;
    ScrollValues(f.doc, f.view, h, v);
    EXPECT_EQ(h, value);
    EXPECT_EQ(v, value);
  }
  EXPECT_LT(CentreFromVScroll(f.view, 100), CentreFromVScroll(f.view, 0));  // N rises upward
}

}  // namespace
}  // namespace tavik::view
