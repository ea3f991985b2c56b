#include "view/screen_tables.h"

#include <gtest/gtest.h>

#include "core/docfile.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "view/document_view.h"

using namespace tavik;
using tavik::testing::ByteWriter;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

View Screen(double minE, double maxE, double minN, double maxN) {
  View v;
  v.ScreenMinE = minE, v.ScreenMaxE = maxE, v.ScreenMinN = minN, v.ScreenMaxN = maxN;
  return v;
}

Entity Make(int16_t kind, std::initializer_list<double> xy) {
  Entity e;
  e.Code = 301;
  e.Kind = kind;
  int k = 0;
  for (auto it = xy.begin(); it != xy.end(); it += 2, ++k) e.X[k] = *it, e.Y[k] = *(it + 1);
  return e;
}

}  // namespace

TEST(ScreenTables, EntityReachesScreenByVertexOrBySampledCurve) {
  const View v = Screen(1000, 1100, 2000, 2100);
  struct Case {
    const char* what;
    Entity e;
    bool reaches;
  } cases[] = {
      {"segment with a vertex on the edge", Make(KindLine, {1100, 2100, 5000, 5000}), true},
      {"segment crossing without a vertex inside", Make(KindLine, {900, 2050, 1200, 2050}), false},
      {"point feature outside", Make(KindPoint, {999.999, 2050}), false},
      {"circle by centre passing through", Make(KindCircle2, {1050, 1900, 1050, 2050}), true},
      {"circle by centre round the screen", Make(KindCircle2, {1050, 1500, 1050, 2500}), false},
      {"circle through three points crossing", Make(KindCircle3, {990, 2050, 1050, 1990, 1110, 2050}), true},
      {"circle through three points round it", Make(KindCircle3, {950, 2050, 1050, 1950, 1150, 2050}), false},
      {"arc over the screen", Make(KindArc3, {950, 1960, 963.3974596, 2010, 1150, 1960}), true},
      {"the other half of that circle", Make(KindArc3, {950, 1960, 1050, 1860, 1150, 1960}), false},
      {"collinear arc", Make(KindArc3, {900, 1900, 950, 1950, 990, 1990}), false},
  };
  for (const auto& c : cases) EXPECT_EQ(EntityReachesScreen(c.e, v), c.reaches) << c.what;
  // Unused vertices at 0, 0 take part when the screen holds the origin.
  EXPECT_TRUE(EntityReachesScreen(Make(KindPoint, {500, 500}), Screen(-10, 10, -10, 10)));
}

TEST(ScreenTables, RebuildsKeepDeletedEntitiesButNotDeletedPoints) {
  TempHome home;
  WorkFiles wf{AppPaths{home.path}};
  Document d;
  View wide = Screen(0, 1e9, 0, 1e9);
  for (double at : {10, 20, 500}) AddPoint(d, wide, wf, at, at, 0);
  AddEntity(d, wide, wf, 99, 10, 10, 0, "a");
  AddEntity(d, wide, wf, 99, 500, 500, 0, "b");
  DeletePoint(d, wf, 2);
  DeleteEntity(d, wf, 1);
  const View v = Screen(1, 100, 1, 100);
  ASSERT_EQ(RebuildScreenPoints(d, v), 1);
  EXPECT_EQ(d.ScreenPointTable[0].Number, 1);
  ASSERT_EQ(RebuildScreenEntities(d, v), 1);
  EXPECT_TRUE(d.ScreenEntityTable[0].Number == 1 && d.ScreenEntityTable[0].Deleted == kTrue);
  EXPECT_EQ(d.ScreenEntityCount, static_cast<int32_t>(d.ScreenEntityTable.size()));
}

TEST(DocumentView, MergeZoomsToTheWholeExtentAndRebuilds) {
  TempHome home;
  AppPaths paths{home.path};
  WorkFiles wf{paths};
  ui::ScriptedDialogs dialogs;
  ByteWriter f;
  f.Text("7321153", 8).Zeros(126).Put<int32_t>(1).Put<int32_t>(1).Zeros(224 - 142);
  f.Put(281500.0).Put(2751500.0).Put(1.0);
  f.Put<int16_t>(301).Put<int16_t>(21).Put(281400.0).Put(281600.0).Put(0.0).Put(2751400.0).Put(2751600.0);
  f.Zeros(32).Text("m", 20);
  WriteBytes(home.path / "other.SPC", f.bytes);

  Document d;
  SetDocumentName(d, (home.path / "open").string());
  View v;
  AddPoint(d, v, wf, 281000, 2751000, 0);
  const double scaleBefore = d.ScaleDenominator;
  ASSERT_TRUE(MergeDocument(d, v, wf, (home.path / "other.SPC").string(), dialogs));
  EXPECT_TRUE(d.PointCount == 2 && d.EntityCount == 1 && d.ScreenPointCount == 2 && d.ScreenEntityCount == 1);
  EXPECT_TRUE(v.ViewHistoryCount == 1 && v.ViewHistory[0][0] == scaleBefore);
  EXPECT_EQ(d.ViewCentreE, 281300);
  EXPECT_EQ(d.ViewCentreN, 2751300);
  EXPECT_TRUE(std::filesystem::exists(paths.TempBM()));
  Document fromHeader;
  ASSERT_TRUE(wf.ReadRecoveryHeader(fromHeader));
  EXPECT_EQ(fromHeader.PointCount, 2);
}

TEST(DocumentView, OldDocumentOfOnePointGetsScaleOneAndThePaperAsExtent) {
  TempHome home;
  ui::ScriptedDialogs dialogs;
  ByteWriter f;
  f.Put<int16_t>(1).Zeros(130).Put<int32_t>(1).Zeros(4).Put<int32_t>(0).Zeros(4);
  f.Put(281000.0).Put(2751000.0).Put(5.0);
  Document d;
  SetDocumentName(d, (home.path / "one").string());
  WriteBytes(d.SpPath, f.bytes);
  View v;
  ASSERT_TRUE(LoadOldDocument(d, v, dialogs));
  EXPECT_EQ(d.ScaleDenominator, 1);
  EXPECT_EQ(d.ViewCentreE, 281000);
  EXPECT_EQ(d.MinE, v.PaperMinE);
  EXPECT_EQ(d.MaxN, v.PaperMaxN);
  EXPECT_LT(d.MinE, 281000);
}
