// Trajectory measurement: tracked positions become points joined into one line, and
// positions closer than the spacing to the last vertex are passed over.
#include <gtest/gtest.h>

#include "procedures/trajectory.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

struct TrajectoryTest : testing::SurveyFixture {
  Trajectory track{ctx};
};

TEST_F(TrajectoryTest, SpacingDecidesTheVertices) {
  EXPECT_FALSE(track.Start());
  EXPECT_EQ(dialogs.Messages().back(), "請先設定測站位置");
  SetStation(1000, 2000, 50, 0);
  doc.InstrumentHeight = 1.5;
  doc.TargetHeight = 1.5;
  ASSERT_TRUE(track.Start());
  track.SpacingCm = 50;
  struct Step {
    double E, N;
    bool vertex;
  } steps[] = {
      {1010, 2010, true},     {1010.3, 2010, false},  // 30 cm: too close
      {1010.5, 2010, true},   {1010.5, 2010.49, false}, {1011, 2011, true},
  };
  for (const Step& s : steps) {
    Deliver(s.E, s.N, 50, 1.5);
    EXPECT_EQ(track.Take(), s.vertex) << s.E << " " << s.N;
  }
  EXPECT_EQ(track.Vertices(), 3);
  EXPECT_EQ(doc.PointCount, 3);
  EXPECT_EQ(window.linkCount, 2);
  EXPECT_NEAR(doc.PointTable[2].E, 1011, 1e-6);
  EXPECT_NEAR(doc.PointTable[2].H, 50, 1e-6);
  EXPECT_EQ(Lines(".OBS").size(), 3u);
  track.Stop();
  Deliver(1020, 2020, 50, 1.5);
  EXPECT_FALSE(track.Take());
}

}  // namespace
}  // namespace tavik
