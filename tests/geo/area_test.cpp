// The shoelace sum, the area ring and the area label.
#include <gtest/gtest.h>

#include "geo/area.h"
#include "platform/scripted/scripted.h"

namespace tavik {
namespace {

TEST(ShoelaceArea, EitherDirectionGivesTheSameArea) {
  const double e[] = {0, 40, 40, 10}, n[] = {0, 0, 30, 30};  // trapezium: (40 + 30) / 2 * 30
  const double er[] = {10, 40, 40, 0}, nr[] = {30, 30, 0, 0};
  EXPECT_EQ(1050, ShoelaceArea(e, n, 4));
  EXPECT_EQ(1050, ShoelaceArea(er, nr, 4));
  EXPECT_EQ(0, ShoelaceArea(e, n, 2));
}

TEST(AreaRing, CloseGivesAreaAndVertexAverage) {
  AreaRingState ring;
  AreaRingAdd(ring, 0, 0);
  AreaRingAdd(ring, 10, 0);
  double le = -1, ln = -1;
  EXPECT_EQ(0, AreaRingClose(ring, le, ln));  // two vertices: nothing computed
  EXPECT_EQ(-1, le);
  const double more[][2] = {{10, 10}, {0, 10}, {0, 5}};
  for (const auto& p : more) AreaRingAdd(ring, p[0], p[1]);
  // (0, 5) lies on an edge: it moves the average, not the area.
  EXPECT_EQ(100, AreaRingClose(ring, le, ln));
  EXPECT_DOUBLE_EQ(4, le);
  EXPECT_DOUBLE_EQ(5, ln);
  AreaRingReset(ring);
  EXPECT_EQ(0, ring.AreaRingCount);
  EXPECT_TRUE(ring.AreaRing[0].empty());
}

TEST(AreaLabelText, UnitsAndRounding) {
  struct Case {
    double area;
    int16_t unit;
    const char* want;
  } cases[] = {
      {1, AreaUnitPing, "0.30坪"},
      {1234.56789, AreaUnitSquareMetres, "1234.5679㎡"},
      {12345.6, AreaUnitHectares, "1.2346公頃"},
      {100, AreaUnitPing, "30.25坪"},  // 30.24996 rounds by the format only
  };
  for (const auto& c : cases) EXPECT_EQ(c.want, AreaLabelText(c.area, c.unit));
}

TEST(FormatAreaLabel, CentredOnThePointInPixels) {
  View v;
  v.PaperMinE = 1000;
  v.PaperMaxN = 2000;
  ui::RecordingSurface paper;
  // At 1:100, 1 m is 32.5 pixels: (1010, 1990) lies at pixel (325, 325).
  EXPECT_EQ("0.30坪", FormatAreaLabel(paper, v, 100, AreaUnitPing, 1010, 1990, 1, -1));
  ASSERT_EQ(1u, paper.Count("text"));
  const auto op = paper.ops.back();
  EXPECT_EQ("0.30坪", op.text);
  EXPECT_FLOAT_EQ(325 - 5 * 7 / 2.0, op.v[0]);  // five characters
  EXPECT_FLOAT_EQ(325 - 9, op.v[1]);
  // The flag is the highlight: -1 blue, 0 the black of ordinary text (never the white
  // of the paper).
  EXPECT_EQ(ui::MakeRgb(0, 0, 255), op.colour);
  FormatAreaLabel(paper, v, 100, AreaUnitPing, 1010, 1990, 1, 0);
  EXPECT_EQ(ui::MakeRgb(0, 0, 0), paper.ops.back().colour);
}

}  // namespace
}  // namespace tavik
