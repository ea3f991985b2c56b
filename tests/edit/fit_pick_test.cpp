// Pairs for the fitting dialog picked on the map: survey picks must hit the survey,
// targets snap to the nearest base-map vertex or survey point within the pick square
// (about 0.3 m at 1:100 here) or stay where the pen touched.
#include "edit_fixture.h"

namespace tavik::edit {
namespace {

using FitPicks = EditFixture;

TEST_F(FitPicks, PairsAlternateSurveyAndTargetUntilTheRightButton) {
  Pt(1000, 2000);
  Pt(1000.1, 2000.1);  // close beside: the nearer one is taken
  BaseMapLine b;
  b.Kind = KindLine, b.X[0] = 1005, b.Y[0] = 2003, b.X[1] = 1005.2, b.Y[1] = 2003.2;
  doc.BaseMapTable = {b};
  doc.BaseMapCount = 1;
  std::vector<Editor::FitPick> got;
  ed.OnFitPick = [&got](const Editor::FitPick& p) { got.push_back(p); };
  ed.StartCommand(mode::MapMoveBmByP);

  struct Step {
    double E, N;
    bool taken, snapped;
    double wantE, wantN;
  } steps[] = {
      {1003, 2003, false, false, 0, 0},                 // survey pick off the survey: refused
      {1000.08, 2000.07, true, true, 1000.1, 2000.1},   // nearest of two points
      {1005.17, 2003.22, true, true, 1005.2, 2003.2},   // nearest base-map vertex
      {1000.02, 2000.01, true, true, 1000, 2000},       // next pair
      {1010.5, 2010.25, true, false, 1010.5, 2010.25},  // nothing near: where the pen touched
  };
  for (const Step& s : steps) {
    const std::size_t before = got.size();
    Click(s.E, s.N);
    ASSERT_EQ(before + (s.taken ? 1 : 0), got.size()) << s.E;
    if (!s.taken) continue;
    EXPECT_EQ(s.snapped, got.back().Snapped);
    EXPECT_NEAR(s.wantE, got.back().E, 1e-3);
    EXPECT_NEAR(s.wantN, got.back().N, 1e-3);
    EXPECT_EQ(static_cast<int>(before), got.back().Step);
  }
  EXPECT_EQ(got[0].Label, "2");  // the survey point's number
  EXPECT_EQ(ed.Ptr.ActionMode, mode::MapMoveBmByP);
  RightClick(1000, 2000);
  EXPECT_EQ(ed.Ptr.ActionMode, "");
  EXPECT_TRUE(host.plugged.empty());  // the editor's own mode, not handed on
}

TEST_F(FitPicks, TwoLinesTakeFourPicksThenEnd) {
  Line(1000, 2000, 0, 1010, 2000, 0);
  std::vector<Editor::FitPick> got;
  ed.OnFitPick = [&got](const Editor::FitPick& p) { got.push_back(p); };
  ed.StartCommand(mode::MapMoveByLine2);
  for (const auto& [E, N] : {std::pair{1000.05, 2000.0}, {1009.9, 2000.05}, {1001, 2001}, {1011, 2001}}) Click(E, N);
  ASSERT_EQ(4u, got.size());
  EXPECT_NEAR(1010, got[1].E, 1e-9);  // the line's end, not the click
  EXPECT_FALSE(got[2].Snapped);
  EXPECT_EQ(ed.Ptr.ActionMode, "");
}

}  // namespace
}  // namespace tavik::edit
