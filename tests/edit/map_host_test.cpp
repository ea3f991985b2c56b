// The editor over the real map view: what reaches the picture.
#include "edit/map_host.h"
#include "edit_fixture.h"
#include "view/display.h"

namespace tavik::edit {
namespace {

class OnTheMap : public EditFixture {
 protected:
  view::Display display;
  view::MapCanvas canvas{doc, view, display, surface, view::SilentUi(), dialogs};
  MapHost mapHost{canvas};
  Editor editor{doc, view, work, dialogs, surface, mapHost};

  std::size_t Lines() const { return surface.Count("line"); }
};

TEST_F(OnTheMap, ARectangleIsDrawnStraightAwayAndGoesWithItsDeletion) {
  Pt(1000, 2000);
  Pt(1010, 2000);
  Pt(1010, 2010);
  editor.Toolbar2Click(mode::RECT);
  for (const auto& p : std::vector<Point>(doc.PointTable)) editor.ClickAt(LeftButton, p.E, p.N);
  ASSERT_EQ(Live(KindLine).size(), 4u);
  EXPECT_EQ(surface.Count("clear"), 0u);  // drawn onto the picture, no repaint
  EXPECT_GE(Lines(), 4u);

  editor.Toolbar2Click(mode::EraseEntity);
  surface.ops.clear();
  editor.ClickAt(LeftButton, 1005, 2000);
  EXPECT_EQ(Live(KindLine).size(), 3u);
  EXPECT_EQ(surface.Count("clear"), 1u);  // the repaint takes the line off the picture
  const std::size_t withThree = Lines();
  editor.KeyDown('U', false);
  EXPECT_EQ(Live(KindLine).size(), 4u);
  EXPECT_GT(Lines(), 2 * withThree - 1);  // the next repaint has one line more
}

TEST_F(OnTheMap, ZoomWindowAndPanChangeTheView) {
  editor.Toolbar1Click("ZW");
  editor.MouseDownAt(LeftButton, 995, 1995);
  editor.MouseMoveAt(LeftButton, 1000, 2000);
  editor.MouseUpAt(LeftButton, 1005, 2005);
  EXPECT_NEAR(doc.ViewCentreE, 1000, 0.05);
  EXPECT_LT(doc.ScaleDenominator, 100);
  EXPECT_EQ(view.ViewHistoryCount, 1);

  const double scale = doc.ScaleDenominator;
  float x, y;
  WorldToPaper(view, doc.ScaleDenominator, 1000, 2000, x, y);
  editor.MouseDown(LeftButton, 0, x, y);
  editor.MouseMove(LeftButton, 0, x + 65, y);
  editor.MouseUp(LeftButton, 0, x + 65, y);
  EXPECT_EQ(doc.ScaleDenominator, scale);
  EXPECT_LT(doc.ViewCentreE, 1000);  // the map followed the pointer to the right
  EXPECT_EQ(view.ViewHistoryCount, 2);

  // A window of no size gives scale one.
  editor.Toolbar1Click("ZW");
  EXPECT_EQ(editor.Ptr.ActionMode, mode::ZoomW);
  editor.MouseDownAt(LeftButton, 1002, 2003);
  editor.MouseUpAt(LeftButton, 1002, 2003);
  EXPECT_EQ(doc.ScaleDenominator, 1);
  EXPECT_NEAR(doc.ViewCentreE, 1002, 0.05);
  EXPECT_EQ(editor.Ptr.ActionMode, "");
}

TEST_F(OnTheMap, ModesOfLaterSubsystemsTakeTheirPlugs) {
  std::vector<std::pair<PlugEvent, double>> got;
  mapHost.Plugs["STKOUT"] = [&](PlugEvent ev, double E, double) {
    got.emplace_back(ev, E);
    return true;
  };
  editor.StartCommand("STKOUT");
  editor.ClickAt(LeftButton, 1003, 2000);
  ASSERT_EQ(got.size(), 2u);
  EXPECT_EQ(got[0].first, PlugEvent::Press);
  EXPECT_NEAR(got[0].second, 1003, 0.05);
  EXPECT_EQ(got[1].first, PlugEvent::Release);
  // A mode nobody plugged in yet: nothing happens, nothing is said.
  editor.StartCommand("LD_Opt7");
  editor.ClickAt(LeftButton, 1003, 2000);
  editor.ClickAt(RightButton, 1003, 2000);
  EXPECT_TRUE(dialogs.shown.empty());
  EXPECT_EQ(doc.EntityCount, 0);
  EXPECT_EQ(editor.Ptr.ActionMode, "LD_Opt7");
}

}  // namespace
}  // namespace tavik::edit
