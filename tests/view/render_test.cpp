#include "view/render.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "canvas_fixture.h"
#include "view/decorations.h"
#include "view/legends.h"
#include "view/navigation.h"
#include "view/symbols.h"

namespace tavik::view {
namespace {

using Op = ui::RecordingSurface::Op;
constexpr ui::Rgb kGrey = ui::MakeRgb(124, 124, 124);

bool Has(const std::vector<std::string>& v, const std::string& s) { return std::find(v.begin(), v.end(), s) != v.end(); }

TEST(RedrawAll, DrawsInItsFixedOrder) {
  CanvasFixture f;
  f.Add(KindLine, 201, {990, 1990, 1010, 2010});
  f.doc.PointTable = {{1, 1000, 2000, 5, kFalse}, {2, 1001, 2001, 5, kTrue}};
  f.doc.PointCount = 2;
  f.doc.DeletedPointCount = 1;
  f.doc.StationName = "S1", f.doc.StationSet = kTrue, f.doc.StationE = 1005, f.doc.StationN = 2005;
  f.display.GridOn = true;
  RedrawAll(f.canvas);
  const auto& ops = f.surface.ops;
  ASSERT_FALSE(ops.empty());
  EXPECT_EQ(f.ui.markerStops, 1);
  auto first = [&](auto pred) { return std::find_if(ops.begin(), ops.end(), pred) - ops.begin(); };
  const auto clear = first([](const Op& o) { return o.op == "clear"; });
  const auto entity = first([](const Op& o) { return o.op == "line" && o.colour == LegendColour(201); });
  const auto cross = first([&](const Op& o) { return o.op == "line" && o.colour == kGrey; });
  const auto station = first([](const Op& o) { return o.op == "line" && o.colour == ui::MakeRgb(255, 0, 0); });
  const auto grid = first([](const Op& o) { return o.op == "line" && o.colour == ui::QBColor(8); });
  const auto bar = first([](const Op& o) { return o.op == "line" && o.colour == ScaleBarColour; });
  const long order[] = {clear, entity, cross, station, grid, bar, static_cast<long>(ops.size())};
  for (int i = 0; i < 6; ++i) EXPECT_LT(order[i], order[i + 1]) << i;
  EXPECT_EQ(f.CountColour("line", kGrey), 2u);  // one cross for the one live point: two arms
  EXPECT_EQ(f.ui.panels[4], "測點 1");
  EXPECT_EQ(f.ui.panels[5], "圖元 1");
  EXPECT_EQ(f.ui.labels["Label41"], "2");
}

TEST(RedrawAll, PointFeaturesByCode) {
  struct Case {
    int16_t code;
    const char* name;
    double z;
    std::vector<std::string> texts;  // expected texts, in order
    bool glyph;                      // lines or circles besides the texts
  } cases[] = {
      {13, "", 12.345, {"12.35"}, false},   {168, "45.6", 0, {"45.60"}, false}, {99, " P7 ", 0, {"P7"}, false},
      {110, "T12", 0, {"T12"}, true},       {266, "EP 3.5ha", 0, {"3.5ha"}, false}, {267, "XX12", 0, {}, false},
      {266, "E", 0, {}, false},             {301, "RC3", 0, {"RC3"}, false},       {351, "", 0, {"B"}, true},
      {12, "note", 0, {"note"}, false},      {201, " A1 ", 0, {"A1"}, false},
      {500, "x", 0, {}, false},  // a code with no symbol draws nothing
  };
  for (const Case& c : cases) {
    CanvasFixture f;
    Entity& e = f.Add(KindPoint, c.code, {1000, 2000}, c.name);
    e.Z[0] = c.z;
    DrawEntities(f.canvas);
    EXPECT_EQ(f.Texts(), c.texts) << c.code;
    EXPECT_EQ(f.surface.Count("line") + f.surface.Count("circle") + f.surface.Count("arc") > 0, c.glyph) << c.code;
  }
  // The EP label lies 3 pixels right of the point.
  CanvasFixture f;
  f.Add(KindPoint, 267, {1000, 2000}, "EP9");
  f.Add(KindPoint, 110, {1000, 2000}, "T1");
  DrawEntities(f.canvas);
  ASSERT_EQ(f.Texts(), (std::vector<std::string>{"9", "T1"}));
  EXPECT_NEAR(f.Ops("text")[0].v[0], f.Px(1000, 2000).first + 3, 1e-3);
  // A named point's name follows SwitchPtName; its glyph stays.
  f.surface.ops.clear();
  EXPECT_FALSE(SwitchPtName(f.canvas));
  EXPECT_TRUE(Has(f.Texts(), "9") && !Has(f.Texts(), "T1"));
  EXPECT_GT(f.surface.Count("line"), 0u);
}

TEST(RedrawAll, SegmentsBySpecialCode) {
  CanvasFixture f;
  const auto a = f.Px(990, 1990), b = f.Px(1010, 2010);
  // 266: a plain line at pen width 3, then the pen back to 1.
  f.Add(KindLine, 266, {990, 1990, 1010, 2010});
  DrawEntities(f.canvas);
  {
    const auto& ops = f.surface.ops;
    auto line = std::find_if(ops.begin(), ops.end(), [](const Op& o) { return o.op == "line"; });
    ASSERT_NE(line, ops.end());
    auto pen = std::find_if(std::make_reverse_iterator(line), ops.rend(), [](const Op& o) { return o.op == "pen"; });
    ASSERT_NE(pen, ops.rend());
    EXPECT_EQ(pen->v[0], 3);
    EXPECT_NEAR(line->v[0], a.first, 1e-3);
    EXPECT_NEAR(line->v[3], b.second, 1e-3);
    auto after = std::find_if(line, ops.end(), [](const Op& o) { return o.op == "pen"; });
    ASSERT_NE(after, ops.end());
    EXPECT_EQ(after->v[0], 1);
  }
  // A fresh canvas at 1 : scale with one segment of the code drawn on it.
  auto drawn = [](int16_t code, double E2, double scale = 500) {
    auto g = std::make_unique<CanvasFixture>();
    g->doc.ScaleDenominator = scale;
    ComputeView(g->doc, g->view);
    g->Add(KindLine, code, {990, 2000, E2, 2000});
    DrawEntities(g->canvas);
    return g;
  };
  // 905 and 921 draw one plain line in the reference colour, in their own with that switched off.
  for (int16_t code : {905, 921}) {
    auto g = drawn(code, 1010);
    ASSERT_EQ(g->Ops("line").size(), 1u) << code;
    EXPECT_EQ(g->Ops("line")[0].colour, kGrey);
    g->display.ReferenceEntityColourOn = kFalse;
    g->surface.ops.clear();
    g->canvas.penKnown = false;
    DrawEntities(g->canvas);
    EXPECT_EQ(g->Ops("line")[0].colour, LegendColour(code));
  }
  // 407: the wall's two faces, 0.25 m apart; 813: dashes of 2 m every 3 m.
  const auto wall = drawn(407, 1010)->Ops("line");
  ASSERT_EQ(wall.size(), 2u);
  EXPECT_NEAR(wall[0].v[1] - wall[1].v[1], WallThickness * 32.5 * 100 / 500, 1e-3);
  EXPECT_EQ(drawn(813, 1020, 100)->Ops("line").size(), 10u);
  // Names: 201 at vertex 1, 520 at the middle; other codes keep theirs to themselves.
  {
    CanvasFixture g;
    g.Add(KindLine, 201, {990, 2000, 1010, 2000}, "A-B");
    g.Add(KindLine, 520, {990, 2000, 1010, 2000}, "0K+100");
    g.Add(KindLine, 301, {990, 2000, 1010, 2000}, "hidden");
    DrawEntities(g.canvas);
    const auto texts = g.Ops("text");
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].text, "A-B");
    EXPECT_NEAR(texts[0].v[0], g.Px(990, 2000).first + 3, 1e-3);
    EXPECT_EQ(texts[1].text, "0K+100");
    EXPECT_NEAR(texts[1].v[0], g.Px(1000, 2000).first + 3, 1e-3);
  }
}

TEST(RedrawAll, CirclesAndArcsAndTheCollinearArc) {
  CanvasFixture f;
  f.Add(KindCircle2, 301, {1000, 2000, 1003, 2004});         // radius 5 m
  f.Add(KindCircle3, 301, {995, 2000, 1000, 2005, 1005, 2000});  // centre 1000,2000, radius 5 m
  f.Add(KindArc3, 301, {995, 2000, 1000, 2005, 1005, 2000});
  DrawEntities(f.canvas);
  const auto circles = f.Ops("circle");
  ASSERT_EQ(circles.size(), 2u);
  const auto c = f.Px(1000, 2000);
  for (const auto& o : circles)
    for (int i : {0, 1, 2}) EXPECT_NEAR(o.v[i], (std::vector<double>{c.first, c.second, 32.5})[i], 1e-2);
  const auto arcs = f.Ops("arc");
  ASSERT_EQ(arcs.size(), 1u);
  EXPECT_NEAR(arcs[0].v[2], 32.5, 1e-2);
  EXPECT_TRUE(f.dialogs.shown.empty());
  // An arc saved with collinear vertices is reported at every repaint and not drawn.
  CanvasFixture g;
  g.Add(KindArc3, 301, {990, 2000, 1000, 2000, 1010, 2000}).Number = 42;
  RedrawAll(g.canvas);
  RedrawAll(g.canvas);
  const auto messages = g.dialogs.Messages();
  EXPECT_EQ(std::count(messages.begin(), messages.end(), "第42筆圖元三點共線"), 2);
  EXPECT_EQ(g.surface.Count("arc"), 0u);
}

TEST(RedrawAll, ReferenceRowsKeepTheGreyPenForDecorations) {
  CanvasFixture f;
  f.Add(KindLine, 817, {990, 2000, 1010, 2000});
  f.Add(KindLine, 817, {990, 2010, 1010, 2010});
  f.doc.ReferenceEntityCount = 1;
  DrawEntities(f.canvas);
  const auto lines = f.Ops("line");
  EXPECT_GT(lines.size(), 10u);  // each railway gets its crossbars over the plain line
  const auto y0 = f.Px(0, 2000).second;
  for (const auto& o : lines) EXPECT_EQ(o.colour, std::fabs(o.v[1] - y0) < 10 ? kGrey : LegendColour(817));
  // Codes that print their name take the reference colour in the reference part.
  CanvasFixture g;
  g.Add(KindPoint, 301, {1000, 2000}, "RC");
  g.Add(KindPoint, 301, {1000, 2000}, "BK");
  g.doc.ReferenceEntityCount = 1;
  DrawEntities(g.canvas);
  const auto t = g.Ops("text");
  ASSERT_EQ(t.size(), 2u);
  EXPECT_EQ(t[0].colour, kGrey);
  EXPECT_EQ(t[1].colour, LegendColour(301));
}

TEST(RedrawAll, SkipsDeletedHiddenAndUnknownRows) {
  CanvasFixture f;
  f.Add(KindLine, 301, {990, 2000, 1010, 2000}).Deleted = kTrue;
  f.Add(KindLine, 513, {990, 2000, 1010, 2000});
  f.Add(KindLine, 521, {990, 2000, 1010, 2000});
  f.Add(42, 301, {990, 2000, 1010, 2000});
  f.Add(KindPoint, 1234, {1000, 2000}, "n");
  f.display.ShowBreakLines = kFalse;
  DrawEntities(f.canvas);
  EXPECT_EQ(f.surface.Count("line") + f.surface.Count("text") + f.surface.Count("circle"), 0u);
  EXPECT_TRUE(SwitchBreak(f.canvas));
  f.surface.ops.clear();
  DrawEntities(f.canvas);
  EXPECT_EQ(f.surface.Count("line"), 2u);
}

TEST(RedrawAll, BadGeometryNeverReachesTheSurface) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  CanvasFixture f;
  f.Add(KindLine, 301, {nan, 2000, 1010, 2000});
  f.Add(KindLine, 817, {1000, 2000, 1e300, 2000});     // runs off to the far end of the world
  f.Add(KindLine, 407, {-1e15, 1999, 1e15, 2001});
  f.Add(KindLine, 813, {-1e15, 1999, 1e15, 2001});
  f.Add(KindCircle2, 301, {1000, 2000, 1000, 2000});   // radius 0
  f.Add(KindCircle2, 301, {1000, 2000 + 1e9, 1000, 2000});  // radius 1e9 m through the view
  f.Add(KindCircle3, 301, {1000, 2000, 1000, 2000, 1000, 2000});
  f.Add(KindArc3, 905, {1000, 2000 - 1e9, 1000 + 1e9, 2000, 1000, 2000 + 1e9});
  f.Add(KindArc3, 301, {inf, 2000, 1000, nan, 1000, 2000});
  f.Add(KindPoint, 310, {nan, nan});
  f.Add(KindPoint, 168, {1000, 2000}, "abc");
  f.doc.PointTable.push_back({1, inf, 2000, 0, kFalse});
  f.doc.PointTable.push_back({2, 1000, 2000, nan, kFalse});
  f.display.ElevationsOn = true;
  f.display.GridOn = true;
  RedrawAll(f.canvas);
  for (const auto& o : f.surface.ops)
    for (double v : o.v) {
      EXPECT_TRUE(std::isfinite(v)) << o.op;
      if (o.op == "line" || o.op == "text") {
        EXPECT_LT(std::fabs(v), 1e5) << o.op;
      }
    }
  // The huge circle still shows as chords across the view.
  EXPECT_GT(f.surface.Count("line"), 10u);
}

TEST(RedrawAll, GridEvery100MetresUntil15000) {
  CanvasFixture f;
  f.display.GridOn = true;
  RedrawAll(f.canvas);
  // Paper 4 x 800 px at 1 : 500 is 492 m wide (E 754 to 1246) and 4 x 600 px is 369 m
  // high (N 1815 to 2185).
  EXPECT_EQ(f.CountColour("line", ui::QBColor(8)), 5u + 3u);
  f.surface.ops.clear();
  f.doc.ScaleDenominator = 15000;
  AfterViewChange(f.canvas);
  EXPECT_FALSE(f.display.GridOn);
  EXPECT_FALSE(f.ui.pressed[ButtonGrid]);
  EXPECT_EQ(f.CountColour("line", ui::QBColor(8)), 0u);
}

TEST(ScaleBar, LengthAndLabel) {
  struct Case {
    double scale, metres;
    const char* label;
  } cases[] = {{50, 0, "50cm"}, {60, 1, "1m"}, {1234, 10, "10m"}, {99999, 900, "900m"}};
  for (const Case& c : cases) {
    EXPECT_EQ(ScaleBarLabel(c.scale), c.label) << c.scale;
    if (c.scale > 50) { EXPECT_EQ(ScaleBarMetres(c.scale), c.metres) << c.scale; }
  }
  CanvasFixture f;
  DrawScaleBar(f.canvas);
  const auto lines = f.Ops("line");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0].colour, ScaleBarColour);
  EXPECT_NEAR(lines[0].v[0], 1.5 * 800 + 65, 1e-2);
  EXPECT_NEAR(lines[0].v[1], 2.5 * 600 - 32.5, 1e-2);
  EXPECT_NEAR(lines[0].v[2] - lines[0].v[0], 32.5, 1e-2);  // 5 m at 1 : 500
}

TEST(Marks, PointAndStation) {
  CanvasFixture f;
  DrawPointMark(f.canvas, 0, 1000, 2000, true);
  const auto p = f.Px(1000, 2000);
  const auto lines = f.Ops("line");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_NEAR(lines[0].v[0], p.first - 4, 1e-3);
  EXPECT_NEAR(lines[0].v[2], p.first + 4, 1e-3);
  const auto rings = f.Ops("circle");
  ASSERT_EQ(rings.size(), 2u);
  EXPECT_EQ(rings[0].colour, ui::MakeRgb(0, 0, 255));
  EXPECT_TRUE(rings[0].v[2] == 0.6f && rings[1].v[2] == 1.1f);
  f.surface.ops.clear();
  DrawPointMark(f.canvas, 0, 1000, 2000, false, true);
  for (const auto& o : f.Ops("line")) EXPECT_EQ(o.colour, f.display.Background);
  f.surface.ops.clear();
  DrawPointMark(f.canvas, 0, 1e7, 2000, false);  // off the paper
  EXPECT_EQ(f.surface.Count("line"), 0u);

  f.surface.ops.clear();
  DrawStationMark(f.canvas, 1000, 2000, false);
  const auto legs = f.Ops("line");
  ASSERT_EQ(legs.size(), 3u);
  const double ends[3][2] = {{-7, 17}, {0, 22}, {7, 17}};
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR(legs[i].v[2] - p.first, ends[i][0], 1e-3);
    EXPECT_NEAR(legs[i].v[3] - p.second, ends[i][1], 1e-3);
  }
}

TEST(Symbols, EveryGlyphIsSmallAndTheBridgesShareOne) {
  std::map<std::string, int> seen;
  for (int code : SymbolGlyphCodes()) {
    CanvasFixture f;
    f.canvas.SetPen(0);
    f.surface.ops.clear();
    ASSERT_TRUE(DrawSymbol(f.canvas, -1, code, 1000, 1000, "")) << code;
    std::string signature;
    for (const auto& o : f.surface.ops) {
      if (o.op == "pen" || o.op == "fill") continue;
      signature += o.op + o.text;
      for (std::size_t i = 0; i < o.v.size(); ++i) {
        if (o.op == "arc" && i >= 3) continue;
        const double d = o.v[i] - 1000;
        if ((o.op == "circle" || o.op == "arc") && i == 2) {
          EXPECT_LE(o.v[i], 9) << code;
        } else if (o.op != "text" || i < 2) {
          EXPECT_LE(std::fabs(d), 10) << code;
        }
        signature += "," + std::to_string(static_cast<int>(std::lround(d * 10)));
      }
      signature += ";";
    }
    EXPECT_FALSE(signature.empty()) << code;
    const int glyph = GlyphOf(code);
    auto [it, fresh] = seen.emplace(signature, glyph);
    if (!fresh) {
      EXPECT_EQ(it->second, glyph) << code << " looks like " << it->second;
    }
  }
  EXPECT_EQ(GlyphOf(835), GlyphOf(832));
  EXPECT_EQ(seen.size(), 115u);
}

TEST(Symbols, BusStopIsARingAndOneCharacter) {
  CanvasFixture f;
  DrawSymbol(f.canvas, -1, 351, 500, 400, "");
  const auto circles = f.Ops("circle"), texts = f.Ops("text");
  ASSERT_TRUE(circles.size() == 1 && texts.size() == 1);
  EXPECT_EQ(circles[0].v, (std::vector<double>{500, 400, 7}));
  EXPECT_EQ(texts[0].v[0], 497);
  EXPECT_EQ(texts[0].v[1], 395);
}

TEST(BaseMap, DrawnOnlyWhenSwitchedOnAndSetUp) {
  CanvasFixture f;
  EXPECT_FALSE(SwitchBM(f.canvas, true));
  EXPECT_EQ(f.dialogs.Messages(), std::vector<std::string>{"這張圖中沒有底圖"});
  BaseMapLine b, note;
  b.Kind = KindLine, b.X[0] = 990, b.Y[0] = 2000, b.X[1] = 1010, b.Y[1] = 2000;
  note.Kind = KindPoint, note.Code = 12, note.X[0] = 1000, note.Y[0] = 2000, note.Name = "BM";
  f.doc.BaseMapTable = {b, note};
  f.doc.BaseMapCount = 2;
  EXPECT_FALSE(SwitchBM(f.canvas, false));
  EXPECT_EQ(f.dialogs.Messages().back(), "底圖要顯示前,請先設定底圖");
  EXPECT_TRUE(f.surface.ops.empty());
  RedrawAll(f.canvas);
  EXPECT_FALSE(Has(f.Texts(), "BM"));
  EXPECT_TRUE(SwitchBM(f.canvas, true));
  EXPECT_TRUE(Has(f.Texts(), "BM"));
  EXPECT_EQ(f.CountColour("line", f.display.BaseMapLineColour), 1u);
  EXPECT_EQ(f.dialogs.Messages().size(), 2u);
}

TEST(Toggles, HeightsDifferencesAndNumbersOutliveTheRepaint) {
  // Three points of a topographic map, one without a height, and a station at H 10.
  auto fixture = [](int16_t mapType) {
    auto f = std::make_unique<CanvasFixture>();
    f->doc.MapType = mapType;
    f->doc.PointTable = {{7, 1000, 2000, 12.345, kFalse}, {8, 1010, 2000, 7.5, kFalse}, {9, 990, 2000, NoHeight, kFalse}};
    f->doc.StationSet = kTrue, f->doc.StationH = 10;
    // A control point keyed in by name carries its height on the feature; a note, and a
    // named point placed without a height, do not.
    f->Add(KindPoint, 114, {1005, 2010}, "K1").Z[0] = 20.5;
    f->Add(KindPoint, 12, {1005, 2015}, "note").Z[0] = 3;
    f->Add(KindPoint, 131, {1005, 2020}, "V1");
    return f;
  };
  // Heights are on from the start: what a shot draws beside its point stays.
  auto fresh = fixture(1);
  RedrawAll(fresh->canvas);
  EXPECT_EQ(fresh->CountColour("text", HeightColour), 3u);

  struct Case {
    const char* key;
    bool (*toggle)(MapCanvas&);
    int16_t mapType;
    std::vector<std::string> texts;
    ui::Rgb colour;
  } cases[] = {
      {"SwitchEle", SwitchEle, 1, {"12.345", "7.500", "20.500"}, HeightColour},
      {"SwitchEle", SwitchEle, 2, {}, HeightColour},  // a plan keeps no heights
      {"垂距開關", SwitchVertical, 1, {"+2.345", "-2.500", "+10.500"}, VerticalColour},
      {"SwitchSN", SwitchSN, 2, {"7", "8", "9"}, RunningNumberColour},
  };
  for (const Case& c : cases) {
    auto f = fixture(c.mapType);
    f->display.ElevationsOn = false;
    bool on = true;
    ASSERT_TRUE(ToggleState(f->display, c.key, on) && !on) << c.key;
    EXPECT_TRUE(c.toggle(f->canvas)) << c.key;
    ASSERT_TRUE(ToggleState(f->display, c.key, on) && on) << c.key;
    auto shown = [&] {
      std::vector<std::string> t;
      for (const auto& o : f->Ops("text"))
        if (o.colour == c.colour) t.push_back(o.text);
      return t;
    };
    for (int repaint = 0; repaint < 2; ++repaint) {
      EXPECT_EQ(shown(), c.texts) << c.key << " " << repaint;
      f->surface.ops.clear();
      RedrawAll(f->canvas);
    }
    f->surface.ops.clear();
    EXPECT_FALSE(c.toggle(f->canvas)) << c.key;
    EXPECT_TRUE(shown().empty()) << c.key;
  }
  // The height stands where a new shot draws it, six pixels right of the mark and five up.
  auto f = fixture(1);
  f->display.ElevationsOn = false;
  SwitchEle(f->canvas);
  EXPECT_TRUE(f->ui.pressed[ButtonElevations]);
  const auto p = f->Px(1000, 2000);
  const auto texts = f->Ops("text");
  const auto height = *std::find_if(texts.begin(), texts.end(), [](const auto& o) { return o.colour == HeightColour; });
  EXPECT_NEAR(height.v[0], p.first + 6, 1e-3);
  EXPECT_NEAR(height.v[1], p.second - 5 - HeightTextSize, 1e-3);
  // Without a station there is no difference to show.
  f->doc.StationSet = kFalse;
  SwitchEle(f->canvas);
  SwitchVertical(f->canvas);
  EXPECT_EQ(f->CountColour("text", VerticalColour), 0u);
}

}  // namespace
}  // namespace tavik::view
