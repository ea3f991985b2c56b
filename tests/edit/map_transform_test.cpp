// Whole-map transforms and fitting: known transforms recovered from points they moved,
// residuals against a computation made here, and a transform of the document that the
// journals carry through a crash and one undo puts back bit for bit.
#include <cmath>

#include "edit/map_transform.h"
#include "edit_fixture.h"

namespace tavik::edit {
namespace {

constexpr double Deg = 3.14159265358979 / 180;

// Survey points about a site, not on one line; the site on the TWD97 grid or at a
// local origin.
const double kE[] = {12.345, 310.1, -129.45, 150.0, 420.75};
const double kN[] = {20.5, 105.25, 400.0, -120.125, 333.3};
constexpr double kGridE = 250000, kGridN = 2650000;

std::vector<FitPair> PairsThrough(const PlaneTransform& t, int count, double E0 = kGridE, double N0 = kGridN) {
  std::vector<FitPair> pairs;
  for (int i = 0; i < count; ++i) {
    // Computed here from the definition of a clockwise similarity or an affine map.
    const double e = E0 + kE[i], n = N0 + kN[i];
    pairs.push_back({e, n, t.A * e + t.B * n + t.C, t.D * e + t.F * n + t.G, "P" + std::to_string(i + 1)});
  }
  return pairs;
}

TEST(FitPoints, RecoversKnownSimilarityAndAffine) {
  const double s = 1.000123, a = 12.3456 * Deg;
  PlaneTransform similar;
  similar.A = s * std::cos(a), similar.B = s * std::sin(a), similar.C = -1234.5;
  similar.D = -s * std::sin(a), similar.F = s * std::cos(a), similar.G = 876.25;
  PlaneTransform affine;
  affine.A = 1.0002, affine.B = 0.0031, affine.C = 412.5, affine.D = -0.0027, affine.F = 0.9991, affine.G = -95.75;

  struct Case {
    PlaneTransform t;
    FitModel model;
    int pairs;
    bool redundant;
  } cases[] = {{similar, FitModel::Similarity, 2, false},
               {similar, FitModel::Similarity, 5, true},
               {similar, FitModel::Affine, 5, true},  // a similarity is an affine map too
               {affine, FitModel::Affine, 3, false},
               {affine, FitModel::Affine, 5, true}};
  for (const auto& c : cases)
    for (const bool grid : {false, true}) {
      SCOPED_TRACE(std::to_string(c.pairs) + " pairs, model " + std::to_string(static_cast<int>(c.model)) +
                   (grid ? " on the grid" : " local"));
      const auto r = FitPoints(PairsThrough(c.t, c.pairs, grid ? kGridE : 0, grid ? kGridN : 0), c.model);
      ASSERT_TRUE(r.Ok) << r.Message;
      EXPECT_NEAR(r.Transform.A, c.t.A, 1e-9);
      EXPECT_NEAR(r.Transform.B, c.t.B, 1e-9);
      EXPECT_NEAR(r.Transform.D, c.t.D, 1e-9);
      EXPECT_NEAR(r.Transform.F, c.t.F, 1e-9);
      // The shift is the image of the origin: millions of metres from grid points, where
      // a coordinate's last bit is already half a nanometre, so there the points are
      // checked instead.
      if (!grid) {
        EXPECT_NEAR(r.Transform.C, c.t.C, 1e-9);
        EXPECT_NEAR(r.Transform.G, c.t.G, 1e-9);
      }
      EXPECT_LT(r.Rms, grid ? 2e-9 : 1e-9);
      EXPECT_EQ(r.Redundant, c.redundant);
      EXPECT_EQ(r.Message.empty(), c.redundant) << r.Message;
    }
  const auto r = FitPoints(PairsThrough(similar, 3), FitModel::Similarity);
  EXPECT_NEAR(r.Scale, s, 1e-12);
  EXPECT_NEAR(r.RotationDegrees, 12.3456, 1e-9);
  // The same turn built from its parts, and a rotation keeps its centre.
  const auto built = PlaneTransform::Similarity(s, 12.3456, 0, 0);
  EXPECT_NEAR(built.B, similar.B, 1e-15);
  double E = 250000, N = 2650000;
  PlaneTransform::Rotation(33, E, N).Apply(E, N);
  EXPECT_EQ(E, 250000);
  EXPECT_EQ(N, 2650000);
  // A quarter turn clockwise takes north to east.
  E = 0, N = 10;
  PlaneTransform::Rotation(90, 0, 0).Apply(E, N);
  EXPECT_NEAR(E, 10, 1e-12);
  EXPECT_NEAR(N, 0, 1e-12);
}

TEST(FitPoints, ResidualsRmsAndTheWorstPair) {
  // A shift of 10, 20 with one target pushed 5 cm off.
  std::vector<FitPair> pairs;
  for (int i = 0; i < 4; ++i) pairs.push_back({kGridE + kE[i], kGridN + kN[i], kGridE + kE[i] + 10, kGridN + kN[i] + 20, ""});
  pairs[2].TE += 0.05;
  const auto r = FitPoints(pairs, FitModel::Similarity);
  ASSERT_TRUE(r.Ok);
  // The residuals of the fitted transform, worked out here.
  double sum = 0;
  int worst = -1;
  double worstV = -1;
  for (int i = 0; i < 4; ++i) {
    const auto& t = r.Transform;
    const double vE = pairs[i].TE - (t.A * pairs[i].E + t.B * pairs[i].N + t.C);
    const double vN = pairs[i].TN - (t.D * pairs[i].E + t.F * pairs[i].N + t.G);
    EXPECT_NEAR(r.ResidualE[i], vE, 1e-9);
    EXPECT_NEAR(r.ResidualN[i], vN, 1e-9);
    sum += vE * vE + vN * vN;
    if (std::hypot(vE, vN) > worstV) worstV = std::hypot(vE, vN), worst = i;
  }
  EXPECT_NEAR(r.Rms, std::sqrt(sum / 4), 1e-12);
  EXPECT_EQ(r.Worst, worst);
  // The residuals of a least-squares similarity sum to nothing.
  EXPECT_NEAR(r.ResidualE[0] + r.ResidualE[1] + r.ResidualE[2] + r.ResidualE[3], 0, 1e-9);
  const auto lines = FitReport(r, pairs);
  ASSERT_EQ(lines.size(), 6u);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(lines[1 + i].find("*最大") != std::string::npos, i == worst) << lines[1 + i];
}

TEST(FitPoints, RefusesWhatCannotBeSolved) {
  const FitPair a{0, 0, 10, 10, ""}, b{100, 0, 110, 10, ""}, c{200, 0, 210, 10, ""}, d{0, 100, 10, 110, ""};
  struct Case {
    std::vector<FitPair> pairs;
    FitModel model;
    std::string message;
  } cases[] = {
      {{}, FitModel::Similarity, FitTooFewMessage},
      {{a}, FitModel::Similarity, FitTooFewMessage},
      {{a, b}, FitModel::Affine, FitTooFewAffineMessage},
      {{a, b, c}, FitModel::Affine, FitCollinearMessage},
      {{a, b, {0, 0, 50, 50, ""}}, FitModel::Similarity, std::string(FitCoincidentMessage) + "(第1對與第3對)"},
      {{a, b, {5, 5, 110, 10, ""}}, FitModel::Similarity, std::string(FitCoincidentMessage) + "(第2對與第3對)"},
      {{{0, 0, 0, 0, ""}, {100, 0, 100, 100, ""}, {0, 100, 50, 50, ""}, {50, 50, 25, 25, ""}},  // targets on a line
       FitModel::Affine, FitCollinearMessage},
  };
  for (const auto& c : cases) {
    const auto r = FitPoints(c.pairs, c.model);
    EXPECT_FALSE(r.Ok);
    EXPECT_EQ(r.Message, c.message);
  }
}

TEST(FitLines, HeadOnHeadAndAlongTheTarget) {
  // Survey line 100 m due north; target 50 m towards the east, starting elsewhere.
  const auto kept = FitLines(0, 0, 0, 100, 1000, 2000, 1050, 2000, false);
  ASSERT_TRUE(kept.Ok);
  EXPECT_NEAR(kept.RotationDegrees, 90, 1e-12);
  EXPECT_NEAR(kept.Residual[0], 0, 1e-9);
  EXPECT_NEAR(kept.ResidualE[1], -50, 1e-9);  // the tail lies 50 m on along the target line
  EXPECT_NEAR(kept.ResidualN[1], 0, 1e-9);
  const auto scaled = FitLines(0, 0, 0, 100, 1000, 2000, 1050, 2000, true);
  EXPECT_NEAR(scaled.Scale, 0.5, 1e-15);
  EXPECT_LT(scaled.Rms, 1e-9);
  EXPECT_FALSE(FitLines(5, 5, 5, 5, 0, 0, 1, 1, true).Ok);
}

class MapTransformDoc : public EditFixture {
 protected:
  // Two reference rows, then the survey: points, a line, an arc, a point feature, a
  // deleted point, and a base-map line.
  void Fill() {
    Pt(900, 1900, 1), Line(900, 1900, 1, 910, 1900, 1);
    doc.ReferencePointCount = 1, doc.ReferenceEntityCount = 1, doc.ReferenceMapLoaded = kTrue;
    Pt(1000, 2000, 10), Pt(1010, 2005, NoHeight), Pt(995, 1990, 12);
    Line(1000, 2000, 10, 1010, 2005, 11);
    ASSERT_TRUE(AddEntity(doc, view, work, 301, KindArc3, 1000, 2000, 1, 1005, 2004, 2, 1010, 2005, 3, ""));
    ASSERT_TRUE(AddEntity(doc, view, work, CodeNamedPoint, 1000, 2000, 10, "A1"));
    ASSERT_TRUE(DeletePoint(doc, work, 4));
    BaseMapLine b;
    b.Number = 1, b.Code = 301, b.Kind = KindLine, b.X[0] = 990, b.Y[0] = 1995, b.X[1] = 1020, b.Y[1] = 1995;
    doc.BaseMapTable.push_back(b), doc.BaseMapCount = 1;
    doc.StationSet = kTrue, doc.StationE = 1000, doc.StationN = 2000, doc.BacksightE = 1010, doc.BacksightN = 2010;
    ComputeBacksightAzimuth(doc);
    doc.OrientationConstant = 1.0;
    doc.MapChanged = kFalse;
  }
};

TEST_F(MapTransformDoc, SurveyRowsMoveJournalledAndOneUndoPutsThemBack) {
  Fill();
  const Document before = doc;
  MapTransformUndo undo;
  std::string message;
  const auto t = PlaneTransform::Rotation(30, 1000, 2000);
  struct Case {
    PlaneTransform t;
    bool withBaseMap;
  } cases[] = {{PlaneTransform::Shift(12.5, -3.25, 1.5), false}, {t, true}};
  for (const auto& c : cases) {
    ASSERT_TRUE(ApplyMapTransform(doc, view, work, c.t, c.withBaseMap, &undo, message)) << message;
    EXPECT_EQ(message, "");
    EXPECT_EQ(doc.MapChanged, kTrue);

    // Reference rows untouched; survey rows moved, deleted ones too; unknown heights stay.
    EXPECT_EQ(doc.PointTable[0].E, 900);
    EXPECT_EQ(doc.EntityTable[0].X[1], 910);
    for (int32_t i = 1; i < doc.PointCount; ++i) {
      double E = before.PointTable[i].E, N = before.PointTable[i].N;
      c.t.Apply(E, N);
      EXPECT_EQ(doc.PointTable[i].E, E);
      EXPECT_EQ(doc.PointTable[i].N, N);
    }
    EXPECT_EQ(doc.PointTable[2].H, NoHeight);
    EXPECT_EQ(doc.PointTable[1].H, 10 + c.t.DH);
    EXPECT_EQ(doc.EntityTable[2].Z[2], 3 + c.t.DH);  // the arc's third vertex moves too
    EXPECT_EQ(doc.EntityTable[3].X[1], 0);            // the point feature's unused vertex does not
    EXPECT_EQ(doc.BaseMapTable[0].X[0] != 990, c.withBaseMap);
    // The set-up turned with the map: the orientation by the turn.
    const double turn = c.withBaseMap ? 30 * Deg : 0;
    EXPECT_NEAR(std::remainder(doc.OrientationConstant - 1.0 - turn, 2 * 3.14159265358979), 0, 1e-12);

    // A crash now: the journals bring back the moved rows.
    Document back;
    WorkFiles again(work.Paths());
    ASSERT_TRUE(RecoverFromWorkFiles(back, again, dialogs));
    ASSERT_EQ(back.PointCount, doc.PointCount);
    for (int32_t i = 0; i < doc.PointCount; ++i) EXPECT_NEAR(back.PointTable[i].E, doc.PointTable[i].E, 1e-6);
    for (int32_t i = 0; i < doc.EntityCount; ++i) EXPECT_NEAR(back.EntityTable[i].Y[0], doc.EntityTable[i].Y[0], 1e-6);
    EXPECT_EQ(back.PointTable[3].Deleted, kTrue);

    // One undo restores exactly; a second has nothing left.
    ASSERT_TRUE(UndoMapTransform(doc, view, work, undo, message)) << message;
    for (int32_t i = 0; i < doc.PointCount; ++i) {
      EXPECT_EQ(doc.PointTable[i].E, before.PointTable[i].E);
      EXPECT_EQ(doc.PointTable[i].N, before.PointTable[i].N);
      EXPECT_EQ(doc.PointTable[i].H, before.PointTable[i].H);
    }
    for (int32_t i = 0; i < doc.EntityCount; ++i)
      for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(doc.EntityTable[i].X[k], before.EntityTable[i].X[k]);
        EXPECT_EQ(doc.EntityTable[i].Z[k], before.EntityTable[i].Z[k]);
      }
    EXPECT_EQ(doc.BaseMapTable[0].X[0], 990);
    EXPECT_EQ(doc.OrientationConstant, 1.0);
    EXPECT_EQ(doc.StationE, 1000);
    EXPECT_EQ(doc.MinE, before.MinE);
    EXPECT_FALSE(UndoMapTransform(doc, view, work, undo, message));
    EXPECT_EQ(message, TransformUndoNoneMessage);
  }
}

TEST_F(MapTransformDoc, UndoRefusedOnceTheMapHasGrownAndNothingToMoveIsSaid) {
  Fill();
  MapTransformUndo undo;
  std::string message;
  ASSERT_TRUE(ApplyMapTransform(doc, view, work, PlaneTransform::Shift(1, 1), false, &undo, message));
  Pt(1003, 2003, 0);
  const double moved = doc.PointTable[1].E;
  EXPECT_FALSE(UndoMapTransform(doc, view, work, undo, message));
  EXPECT_EQ(message, TransformUndoChangedMessage);
  EXPECT_EQ(doc.PointTable[1].E, moved);

  // Only the reference map: nothing of the survey to move.
  doc.PointCount = 1, doc.EntityCount = 1, doc.PointTable.resize(1), doc.EntityTable.resize(1);
  EXPECT_FALSE(ApplyMapTransform(doc, view, work, PlaneTransform::Shift(1, 1), false, &undo, message));
  EXPECT_EQ(message, TransformEmptyMessage);
  EXPECT_EQ(doc.PointTable[0].E, 900);
}

}  // namespace
}  // namespace tavik::edit
