#include <fstream>
#include <iterator>

#include "core/docfile.h"
#include "core/reference_map.h"
#include "core/text.h"
#include "geo/constants.h"
#include "split_fixture.h"

namespace tavik::cadastre {
namespace {

// The area of the parcel on the kept side of the final cut, the kept side given by its
// azimuth in degrees.
double KeptArea(const Corners& c, const Document& doc, double keptAzimuthDeg) {
  const double a = keptAzimuthDeg / 180 * Pi;
  const double uE = std::sin(a), uN = std::cos(a);
  const double E = doc.SplitLine[0], N = doc.SplitLine[1];
  return ClippedArea(c, E, N, E + uN, N - uE, true);
}

struct ModeCase {
  const char* name;
  const Corners* parcel;
  int option;
  double fraction;
  bool nearTarget;  // false where the scan passes over cuts that meet the boundary four times
};

void PrintTo(const ModeCase& c, std::ostream* os) { *os << c.name; }

class Modes : public SplitFixture, public ::testing::WithParamInterface<ModeCase> {};

TEST_P(Modes, PieceJustAboveTargetAndEqualToAnIndependentClip) {
  const ModeCase& c = GetParam();
  Parcel(*c.parcel);
  const double total = ClippedArea(corners, 0, 0, 0, 1, true) + ClippedArea(corners, 0, 0, 0, 1, false);
  ASSERT_NEAR(split.SplitTotalArea, total, 1e-9);
  Target(total * c.fraction);
  split.form.Text2 = "30";
  split.ChooseOption(c.option);
  ASSERT_TRUE(dialogs.shown.empty()) << dialogs.shown.front().text;
  const double kept[6] = {0, 0, 180, 270, 90, 300};  // the side of the wanted piece, by mode
  EXPECT_GT(split.SplitCutArea, split.SplitTargetArea);
  if (c.nearTarget) {
    EXPECT_LT(split.SplitCutArea - split.SplitTargetArea, 1e-3);
  }
  EXPECT_NEAR(KeptArea(corners, doc, kept[c.option]), split.SplitCutArea, 1e-5);
  EXPECT_EQ(doc.SplitAreaValue, split.SplitCutArea);
  EXPECT_EQ(doc.SplitLineLabelled[2], doc.SplitLine[2]);
}

INSTANTIATE_TEST_SUITE_P(
    Parcels, Modes,
    ::testing::Values(ModeCase{"SquareNorth", &Square, 1, 0.3, true}, ModeCase{"SquareSouth", &Square, 2, 0.3, true},
                      ModeCase{"SquareEast", &Square, 4, 0.7, true}, ModeCase{"SquareAz30", &Square, 5, 0.5, true},
                      ModeCase{"UNorthPassesNotch", &NotchedU, 1, 0.25, false},
                      ModeCase{"USouthBelowNotch", &NotchedU, 2, 0.25, true},
                      ModeCase{"USouthAcrossNotch", &NotchedU, 2, 0.6, false},
                      ModeCase{"UWest", &NotchedU, 3, 0.5, true}, ModeCase{"UAz30", &NotchedU, 5, 0.4, false},
                      ModeCase{"LWest", &ClockwiseL, 3, 0.4, true}, ModeCase{"LEast", &ClockwiseL, 4, 0.4, true},
                      ModeCase{"LNorth", &ClockwiseL, 1, 0.2, true}, ModeCase{"SkewedAz30", &Skewed, 5, 0.35, true},
                      ModeCase{"SkewedSouth", &Skewed, 2, 0.6, true}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(SplitFixture, SquareHalfWestAndTheWholeParcel) {
  Parcel(Square);
  Target(2500);
  split.ChooseOption(3);
  EXPECT_GT(doc.SplitLine[0], 1025);
  EXPECT_LE(doc.SplitLine[0], 1025.000001 + 1e-9);
  EXPECT_GE(split.SplitCutArea, 2500.0);
  EXPECT_EQ(split.form.Text2, "0.0000");  // north to south or back: 0 or 180
  // A target equal to the total passes the box check but is never exceeded: the slide
  // runs off the far side and keeps the whole parcel.
  Target(10000);
  split.ChooseOption(3);
  EXPECT_NEAR(split.SplitCutArea, 10000, 1e-9);
}

TEST_F(SplitFixture, ModeSixKeepsThePieceAgainstTheChosenLine) {
  Parcel(Square);
  AddEntity(doc, view, work, 1, KindLine, 1100, 2000, 0, 1100, 2100, 0, 0, 0, 0, "");  // the east side
  Target(3000);
  split.ChooseOption(6);
  EXPECT_EQ(modes.back(), ModeParallel);
  const auto [x, y] = Pixel(1100, 2050);
  ASSERT_TRUE(split.PickParallelLine(x, y));
  EXPECT_EQ(modes.back(), "");
  EXPECT_NEAR(doc.SplitLine[0], 1070, 1e-5);
  EXPECT_NEAR(KeptArea(corners, doc, 90), split.SplitCutArea, 1e-5);
  // A pick on empty ground clears the option and leaves the mode running.
  split.ChooseOption(6);
  EXPECT_FALSE(split.PickParallelLine(Pixel(1050, 2050).first, Pixel(1050, 2050).second));
  EXPECT_EQ(split.form.Option, 0);
  EXPECT_EQ(modes.back(), ModeParallel);
}

TEST_F(SplitFixture, ModeSevenTurnsAboutTheFootOfThePoint) {
  Parcel(Square);
  Target(3000);
  // The turn starts along the line numbered after the reference map's count plus the
  // edge found, less one; with none there, along the edge itself.
  for (int32_t referenceLines : {0, 1}) {
    SCOPED_TRACE(referenceLines);
    if (referenceLines) AddEntity(doc, view, work, 1, KindLine, 900, 1900, 0, 950, 1900, 0, 0, 0, 0, "");
    doc.ReferenceEntityCount = referenceLines;
    ASSERT_TRUE(split.SplitThroughPointAt(1040, 1990));
    // The pivot is the foot on the south edge; the cut runs through it.
    const double dA1 = std::hypot(doc.SplitLine[0] - 1040, doc.SplitLine[1] - 2000);
    const double dA2 = std::hypot(doc.SplitLine[2] - 1040, doc.SplitLine[3] - 2000);
    EXPECT_LT(std::min(dA1, dA2), 1e-6);
    EXPECT_GT(split.SplitCutArea, 3000);
    EXPECT_LT(split.SplitCutArea - 3000, 0.05);
    const double piece = ClippedArea(corners, doc.SplitLine[0], doc.SplitLine[1], doc.SplitLine[2], doc.SplitLine[3], true);
    EXPECT_NEAR(std::min(piece, 10000 - piece), split.SplitCutArea, 0.05);
  }
  EXPECT_FALSE(split.SplitThroughPointAt(1200, 2300));  // no edge has its foot
}

TEST_F(SplitFixture, ModeEightThroughPointsOutsideTheParcelThenAStep) {
  Parcel(Skewed);
  Target(100);
  split.form.Combo1 = "100";
  split.ChooseOption(8);
  EXPECT_EQ(modes.back(), ModeTwoPoints);
  split.SplitTwoPointsAt(1030, 1950, 1060, 2150);  // both outside, on the infinite line
  const double expected = ClippedArea(corners, 1030, 1950, 1060, 2150, true);
  EXPECT_NEAR(split.SplitCutArea, expected, 1e-6);
  EXPECT_EQ(split.SplitTargetArea, split.SplitCutArea);
  EXPECT_EQ(split.form.Text1, num::Format(expected, "######.0000"));
  const std::string azimuth = split.form.Text2;
  // One step more re-runs the cut as mode 5 along the azimuth in Text2.
  split.Command3();
  EXPECT_NEAR(split.SplitTargetArea, expected + 100, 1e-9);
  EXPECT_GT(split.SplitCutArea, split.SplitTargetArea);
  EXPECT_LT(split.SplitCutArea - split.SplitTargetArea, 1e-3);
  EXPECT_EQ(split.form.Text2, azimuth);
  const double az = num::ParseLenient(azimuth);
  EXPECT_NEAR(KeptArea(corners, doc, az - 90), split.SplitCutArea, 1e-5);
}

TEST_F(SplitFixture, RefusalsOfTheBoxesAndTheGuards) {
  struct Case {
    bool parcel;
    std::string text1, text2;
    int option;
    const char* message;
  };
  const Case cases[] = {
      {false, "100", "", 0, "請先圈出要分割的土地"},
      {true, "abc", "", 0, AreaRangeMessage},
      {true, "10000.5", "", 0, AreaRangeMessage},
      {false, "", "", 3, "請圈選分割土地範圍"},
      {true, "", "", 1, "請輸入分割面積"},
      {true, "100", "", 5, "請輸入方位角"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    dialogs.shown.clear();
    split.SplitTotalArea = split.SplitTargetArea = 0;
    if (c.parcel) Parcel(Square);
    split.form.Text1 = c.text1;
    split.form.Text2 = c.text2;
    split.Text1Done();
    if (c.option) split.ChooseOption(c.option);
    ASSERT_EQ(dialogs.shown.size(), 1u);
    EXPECT_EQ(dialogs.shown[0].text, c.message);
    EXPECT_EQ(split.form.Option, 0);
  }
  split.SplitTotalArea = 0;
  split.Check1Click(true);
  EXPECT_FALSE(split.form.Check1);
  EXPECT_EQ(dialogs.shown.back().title, "尚未指定土地");
}

TEST_F(SplitFixture, HalvingAndTheStepButtons) {
  Parcel(Square);
  split.Check1Click(true);
  EXPECT_EQ(split.form.Text1, "5000.0000");
  EXPECT_FALSE(split.form.AreaBoxesEnabled);
  split.ChooseOption(3);
  split.form.Combo1 = "1000";
  split.Command4();  // tested with the old step of 100, then takes 1000 off
  EXPECT_EQ(split.SplitTargetArea, 4000);
  EXPECT_EQ(split.form.Text3, "6000.0000");
  EXPECT_NEAR(doc.SplitLine[0], 1040, 1e-5);
  split.Command3(), split.Command3(), split.Command3(), split.Command3(), split.Command3();
  EXPECT_EQ(split.SplitTargetArea, 9000);  // the sixth would reach the total
  split.Command3();
  EXPECT_EQ(split.SplitTargetArea, 9000);
}

TEST_F(SplitFixture, TracingSnapsToReferenceCornersAndCloses) {
  Document ref;
  for (std::size_t i = 0; i < Square.size(); ++i) {
    const auto& a = Square[i];
    const auto& b = Square[(i + 1) % Square.size()];
    ref.EntityTable.push_back({static_cast<int32_t>(i + 1), 1, KindLine, {a.first, b.first, 0}, {a.second, b.second, 0}, {}, "", kFalse});
  }
  ref.EntityCount = 4;
  std::string refusal;
  ASSERT_TRUE(LoadReferenceMap(doc, view, work, ref, refusal)) << refusal;
  split.Command1();
  EXPECT_EQ(modes.back(), ModeTrace);
  EXPECT_EQ(doc.CurrentLegend, 266);
  const double near[][2] = {{1001, 1999}, {1099, 2002}, {1099, 2002}, {1100, 2098}, {998, 2100}, {1001, 2001}};
  int taken = 0;
  for (const auto& p : near) {
    const auto [x, y] = Pixel(p[0], p[1]);
    taken += split.TracePick(x, y);
  }
  EXPECT_EQ(taken, 5);  // the same corner twice adds nothing
  EXPECT_FALSE(split.TracePick(Pixel(1050, 2050).first, Pixel(1050, 2050).second));
  EXPECT_EQ(doc.SplitStakeCount, 4);
  EXPECT_EQ(modes.back(), "");
  EXPECT_EQ(split.SplitTotalArea, 10000);
  EXPECT_EQ(split.form.Label1, "界樁4支,\n面積10000.0000㎡");
  ASSERT_EQ(doc.EntityCount, 8);
  EXPECT_EQ(doc.EntityTable[7].Code, 266);
  EXPECT_EQ(doc.EntityTable[7].X[1], 1000);
  EXPECT_EQ(doc.SplitBoundaryEdges[0].size(), 4u);
}

TEST_F(SplitFixture, ApplyOrderStakeFileAndTheLabelLostOnReload) {
  doc.ReferenceMapLoaded = kTrue;
  for (std::size_t i = 0; i < Square.size(); ++i) {
    const auto& a = Square[i];
    const auto& b = Square[(i + 1) % Square.size()];
    AddEntity(doc, view, work, 266, KindLine, a.first, a.second, 0, b.first, b.second, 0, 0, 0, 0, "");
  }
  Parcel(Square);
  Target(2500);
  split.ChooseOption(3);
  const double area = split.SplitCutArea;
  const std::string stakes = (home / "stakes.TXT").string();
  dialogs.files.push_back(stakes);
  split.cmdOutput();
  EXPECT_EQ(dialogs.shown.back().text, stakes + "輸出完畢.");
  std::ifstream in(stakes, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  const char* picture = " ########.000";
  EXPECT_EQ(text.substr(0, text.find('\n') + 1), "A1," + num::Format(doc.SplitLine[0], picture) + "," +
                                                     num::Format(doc.SplitLine[1], picture) + "\r\n");
  EXPECT_NE(text.find("\r\nB4, 1000.000, 2100.000\r\n"), std::string::npos);

  split.cmdApply();
  ASSERT_EQ(doc.EntityCount, 4 + 4 + 1 + 1);
  EXPECT_EQ(doc.EntityTable[7].Code, 266);  // the edges a second time
  EXPECT_EQ(doc.EntityTable[8].Code, 267);
  EXPECT_EQ(doc.EntityTable[9].Code, 266);
  EXPECT_EQ(doc.EntityTable[9].Kind, KindPoint);
  EXPECT_EQ(doc.EntityTable[9].Name, num::Plain(area));
  ASSERT_EQ(doc.PointCount, 2);
  EXPECT_EQ(doc.PointTable[0].E, doc.SplitLine[0]);

  ASSERT_TRUE(SaveDocument(doc, work, dialogs));
  Document back;
  back.SpcPath = doc.SpcPath;
  ASSERT_TRUE(LoadDocument(back, dialogs));
  EXPECT_EQ(back.SplitAreaValue, 0);  // the label went under the boundary code
  EXPECT_EQ(back.SplitStakeCount, 4);
  EXPECT_EQ(back.SplitBoundaryEdges[0].size(), 8u);
  // The split still works on the parcel's own edges, not on the second copy.
  LandSplit again(back, view, work, dialogs);
  again.Open();
  EXPECT_EQ(again.SplitTotalArea, 10000);
  again.form.Text1 = "2500";
  again.Text1Done();
  again.ChooseOption(4);
  EXPECT_NEAR(back.SplitLine[0], 1075, 1e-5);
}

TEST_F(SplitFixture, DamagedParcelsEndQuietly) {
  // All corners on a line, two corners only: no area, every mode ends at once.
  for (const Corners& c : {Corners{{1000, 2000}, {1050, 2000}, {1100, 2000}}, Corners{{1000, 2000}, {1100, 2100}}}) {
    split.SplitTotalArea = 0;
    Parcel(c);
    EXPECT_EQ(split.SplitTotalArea, 0);
    split.SplitTotalArea = 1, split.SplitTargetArea = 0.5;
    for (int option : {1, 3, 4, 5}) split.SplitByDirection(option);
    EXPECT_NEAR(split.SplitCutArea, 0, 1e-9);
  }
  // A boundary that does not close: the chain walk stops instead of running on.
  Cut cut;
  cut.SplitPiece.Add(0, 0, 1, 0), cut.SplitPiece.Add(1, 0, 1, 1), cut.SplitPiece.Add(5, 5, 6, 6);
  cut.SplitPieceCount = 3;
  EXPECT_FALSE(ChainPiece(cut));
  // Coordinates a damaged file may hold.
  Edges e;
  e.Add(NAN, 0, 1, 1), e.Add(1, 1, 0, 1), e.Add(0, 1, NAN, 0);
  EXPECT_EQ(ScanSplit(cut, e, 1, false), 0);
}

TEST_F(SplitFixture, LeftCountsAnEndOnTheLineAsACrossingRightDoesNot) {
  // A pentagon with a corner on the line E = 10 at each side of the part beyond it.
  Edges e;
  e.Add(0, 0, 10, 0), e.Add(10, 0, 20, 5), e.Add(20, 5, 10, 10), e.Add(10, 10, 0, 10), e.Add(0, 10, 0, 0);
  Cut left, right;
  AreaLeftOf(left, e, 10, 0, 10, 10);
  EXPECT_EQ(left.SplitPieceCount, 3 + 2 + 1);  // whole edges, two parts of no length, the cut
  EXPECT_EQ(left.A1N, 0);
  EXPECT_EQ(left.A2N, 10);
  EXPECT_EQ(AreaRightOf(right, e, 10, 0, 10, 10), 0);  // two whole edges, no crossing: no piece
  EXPECT_EQ(right.SplitPieceCount, 2);
  EXPECT_EQ(AreaRightOf(right, e, 15, 0, 15, 10), 12.5);
  // A cut meeting the boundary more than twice measures nothing.
  Edges u;
  for (std::size_t i = 0; i < NotchedU.size(); ++i) {
    const auto& a = NotchedU[i];
    const auto& b = NotchedU[(i + 1) % NotchedU.size()];
    u.Add(a.second, a.first, b.second, b.first);  // turned so the notch opens east
  }
  EXPECT_EQ(AreaLeftOf(left, u, 2040, 0, 2040, 1), 0);
  EXPECT_EQ(left.SplitMultiCross, kTrue);
}

TEST_F(SplitFixture, ReferenceMapComesFirstAndStaysFirst) {
  Document ref;
  ref.PointTable = {{1, 1000, 2000, 5, kFalse}, {2, 1001, 2001, 5, kTrue}, {3, 1002, 2002, 5, kFalse}};
  ref.PointCount = 3;
  ref.EntityTable.push_back({1, 1, KindLine, {1000, 1010, 0}, {2000, 2010, 0}, {}, "界址", kFalse});
  ref.EntityCount = 1;
  std::string refusal;
  AddPoint(doc, view, work, 5, 5, 0);
  EXPECT_FALSE(LoadReferenceMap(doc, view, work, ref, refusal));
  EXPECT_EQ(refusal, ReferenceMapAfterSurveyMessage);
  Document fresh;
  SetDocumentName(fresh, (home / "fresh").string());
  EXPECT_FALSE(LoadReferenceMap(fresh, view, work, Document{}, refusal));
  ASSERT_TRUE(LoadReferenceMap(fresh, view, work, ref, refusal));
  EXPECT_EQ(fresh.ReferencePointCount, 2);
  EXPECT_EQ(fresh.ReferenceEntityCount, 1);
  EXPECT_FALSE(LoadReferenceMap(fresh, view, work, ref, refusal));
  EXPECT_EQ(refusal, ReferenceMapTwiceMessage);
}

}  // namespace
}  // namespace tavik::cadastre
