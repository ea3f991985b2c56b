#include "view/screen_tables.h"

#include <gtest/gtest.h>

#include <random>

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

// The rows a plain walk of the tables takes, as Number and Deleted pairs in order.
template <typename Row>
std::vector<std::pair<int32_t, int16_t>> Keys(const std::vector<Row>& rows) {
  std::vector<std::pair<int32_t, int16_t>> k;
  for (const Row& r : rows) k.emplace_back(r.Number, r.Deleted);
  return k;
}

// A random survey with the awkward rows a real one has (vertices left at 0, 0, circles
// larger than the survey, collinear arcs, far strays), a thousand random views, and the
// table changed between views in every way the program changes it: the screen tables
// from the index must be the plain walk's, row for row.
TEST(ScreenTables, IndexedRebuildsEqualThePlainWalk) {
  TempHome home;
  WorkFiles wf{AppPaths{home.path}};
  std::mt19937 rng(17);
  std::uniform_real_distribution<double> u(0, 1);
  auto E = [&] { return 250000 + 4000 * u(rng); };
  auto N = [&] { return 2650000 + 3000 * u(rng); };
  auto randomEntity = [&] {
    const double e = E(), n = N(), r = u(rng) < 0.01 ? 5000 * u(rng) : 10 * u(rng);
    switch (static_cast<int>(u(rng) * 6)) {
      case 0: return Make(KindPoint, {e, n});
      case 1: return Make(KindCircle2, {e, n, e + r, n});
      case 2: return Make(KindCircle3, {e - r, n, e, n + r, e + r, n});
      case 3: return Make(KindArc3, {e - r, n, e, n - r, u(rng) < 0.1 ? e - r : e + r, n});
      case 4: return Make(KindLine, {e, n, u(rng) < 0.02 ? 0.0 : e + 20 * u(rng), n + 20 * u(rng)});
      default: return Make(KindLine, {e, n, e + 5 * u(rng), n - 5 * u(rng)});
    }
  };
  // Appended as a merge does, without the journal (a journalled append is case 0 below).
  auto appendEntity = [&](Document& d) {
    Entity x = randomEntity();
    x.Number = ++d.EntityCount;
    d.EntityTable.push_back(x);
  };
  Document d;
  for (int i = 0; i < 1500; ++i) appendEntity(d);
  for (int i = 0; i < 1000; ++i) d.PointTable.push_back({++d.PointCount, u(rng) < 0.005 ? 1000 : E(), N(), 0, kFalse});

  auto plain = [&](auto&& keep, const auto& table, int32_t count) {
    std::remove_cvref_t<decltype(table)> out;
    for (int32_t i = 0; i < count; ++i)
      if (keep(table[static_cast<std::size_t>(i)])) out.push_back(table[static_cast<std::size_t>(i)]);
    return Keys(out);
  };
  for (int view = 0; view < 1000; ++view) {
    // Centre anywhere near the survey or off it; sizes from a few metres to all of it.
    const double cE = 249000 + 6000 * u(rng), cN = 2649000 + 5000 * u(rng);
    const double half = std::pow(10, 0.3 + 3.7 * u(rng));
    const View v = view % 97 == 0 ? Screen(-10, 10, -10, 10) : Screen(cE - half, cE + half, cN - half * 0.75, cN + half * 0.75);
    RebuildScreenPoints(d, v);
    RebuildScreenEntities(d, v);
    ASSERT_EQ(Keys(d.ScreenPointTable), plain([&](const Point& p) { return !p.Deleted && v.InScreen(p.E, p.N); },
                                              d.PointTable, d.PointCount)) << "view " << view;
    ASSERT_EQ(Keys(d.ScreenEntityTable),
              plain([&](const Entity& e) { return EntityReachesScreen(e, v); }, d.EntityTable, d.EntityCount))
        << "view " << view;

    switch (view % 8) {
      case 0: {  // appended past the index
        const Entity x = randomEntity();
        AddEntity(d, v, wf, x.Code, x.Kind, x.X[0], x.Y[0], 0, x.X[1], x.Y[1], 0, x.X[2], x.Y[2], 0, "");
        AddPoint(d, v, wf, cE, cN, 0);
        break;
      }
      case 1:  // deleted and brought back: only the flag changes
      case 2:
        d.EntityTable[static_cast<std::size_t>(view / 8 % d.EntityCount)].Deleted = view % 8 == 1 ? kTrue : kFalse;
        d.PointTable[static_cast<std::size_t>(view / 8 % d.PointCount)].Deleted = view % 8 == 1 ? kTrue : kFalse;
        break;
      case 3: {  // a vertex moved in place, as an edit does, and said so
        const int32_t row = view % d.EntityCount;
        d.EntityTable[static_cast<std::size_t>(row)].X[0] = cE;
        d.EntityTable[static_cast<std::size_t>(row)].Y[0] = cN;
        d.Index.Entities.RowWritten(row);
        break;
      }
      case 4: {  // the whole map shifted, as a transform does
        for (auto& p : d.PointTable) p.E += 7;
        for (auto& e : d.EntityTable) for (double& x : e.X) x += 7;
        RowsChanged(d);
        break;
      }
      case 5: {  // reference rows put in front by code that forgot to say so
        Entity x = randomEntity();
        d.EntityTable.insert(d.EntityTable.begin(), x);
        ++d.EntityCount;
        for (int32_t i = 0; i < d.EntityCount; ++i) d.EntityTable[static_cast<std::size_t>(i)].Number = i + 1;
        break;
      }
      case 6: for (int i = 0; i < 5000 && view == 998; ++i) appendEntity(d); break;  // a burst of appends
      default: break;
    }
  }
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
