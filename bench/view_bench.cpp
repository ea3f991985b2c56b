// The map view on a large survey: 1,000,000 entities (segments, circles, arcs and
// point symbols of mixed codes) and 200,000 points over 4 km by 3 km. Measures the
// full repaint at the whole extent and at 1 : 500 in the middle, the rebuild of the
// screen entity table, and a pick over the screen tables. The surface only counts what
// it is asked to draw, so the figures are the map view's own work, not the rasteriser's.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>

#include "geo/pick.h"
#include "platform/scripted/scripted.h"
#include "view/canvas.h"
#include "view/extent.h"
#include "view/legends.h"
#include "view/render.h"
#include "view/screen_tables.h"
#include "view/transform.h"

namespace {

using namespace tavik;

class CountingSurface : public ui::Surface {
 public:
  long calls = 0;
  void Clear(ui::Rgb) override { ++calls; }
  void SetPen(ui::Rgb, int, ui::LineStyle) override { ++calls; }
  void SetDrawMode(ui::DrawMode) override { ++calls; }
  void SetFill(bool, ui::Rgb) override { ++calls; }
  void Line(float, float, float, float) override { ++calls; }
  void Circle(float, float, float) override { ++calls; }
  void Arc(float, float, float, double, double) override { ++calls; }
  void SetPixel(float, float, ui::Rgb) override { ++calls; }
  void Text(float, float, const std::string&, ui::Rgb, int) override { ++calls; }
  float Width() const override { return 3200; }
  float Height() const override { return 2400; }
};

struct LargeSurvey {
  Document doc;
  View view;
  LargeSurvey() {
    const double E0 = 250000, N0 = 2650000, W = 4000, H = 3000;
    std::mt19937 rng(7);
    std::uniform_real_distribution<double> e(E0, E0 + W), n(N0, N0 + H), d(-8, 8), r(0.5, 6);
    const auto& glyphs = view::SymbolGlyphCodes();
    const int16_t lineCodes[] = {301, 201, 407, 813, 817, 211, 412, 510, 905, 921, 603, 723, 801, 901, 266};
    doc.EntityTable.reserve(1000000);
    for (int i = 0; i < 1000000; ++i) {
      Entity x;
      x.Number = i + 1;
      const double cE = e(rng), cN = n(rng);
      const int pick = i % 10;
      if (pick < 6) {
        x.Kind = KindLine;
        x.Code = lineCodes[i % 15];
        x.X[0] = cE, x.Y[0] = cN, x.X[1] = cE + d(rng), x.Y[1] = cN + d(rng);
      } else if (pick == 6) {
        x.Kind = KindCircle2;
        x.Code = i % 2 ? 301 : 407;
        x.X[0] = cE, x.Y[0] = cN, x.X[1] = cE + r(rng), x.Y[1] = cN;
      } else if (pick == 7) {
        x.Kind = KindArc3;
        x.Code = i % 3 ? 510 : 813;
        const double rad = r(rng);
        x.X[0] = cE - rad, x.Y[0] = cN, x.X[1] = cE, x.Y[1] = cN + rad, x.X[2] = cE + rad, x.Y[2] = cN;
      } else {
        x.Kind = KindPoint;
        x.Code = static_cast<int16_t>(glyphs[static_cast<std::size_t>(i) % glyphs.size()]);
        if (i % 7 == 0) {
          char name[16];
          std::snprintf(name, sizeof name, "P%d", i);
          x.Code = 99, x.Name = name;
        }
        x.X[0] = cE, x.Y[0] = cN;
      }
      doc.EntityTable.push_back(x);
    }
    doc.EntityCount = static_cast<int32_t>(doc.EntityTable.size());
    doc.PointTable.reserve(200000);
    for (int i = 0; i < 200000; ++i) doc.PointTable.push_back({i + 1, e(rng), n(rng), 10, kFalse});
    doc.PointCount = static_cast<int32_t>(doc.PointTable.size());
    SetDocumentName(doc, "/tmp/bench");
    view::SetViewportSize(view, 1024, 768);
  }
  void WholeExtent() { view::FitWholeExtent(doc, view); }
  void Middle500() {
    doc.ScaleDenominator = 500;
    doc.ViewCentreE = 252000, doc.ViewCentreN = 2651500;
    view::ComputeView(doc, view);
  }
};

LargeSurvey& Survey() {
  static LargeSurvey s;
  return s;
}

void Repaint(benchmark::State& state, bool whole) {
  LargeSurvey& s = Survey();
  whole ? s.WholeExtent() : s.Middle500();
  view::Display display;
  CountingSurface surface;
  ui::ScriptedDialogs dialogs;
  view::MapCanvas canvas(s.doc, s.view, display, surface, view::SilentUi(), dialogs);
  for (auto _ : state) {
    view::RedrawAll(canvas);
    benchmark::DoNotOptimize(surface.calls);
  }
  state.counters["surface_calls"] = static_cast<double>(surface.calls) / static_cast<double>(state.iterations());
}

void BM_RedrawAllWholeExtent(benchmark::State& state) { Repaint(state, true); }
void BM_RedrawAll500Middle(benchmark::State& state) { Repaint(state, false); }

void BM_RebuildScreenEntities500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  for (auto _ : state) benchmark::DoNotOptimize(RebuildScreenEntities(s.doc, s.view));
  state.counters["on_screen"] = s.doc.ScreenEntityCount;
}

// A press that hits nothing: every screen point and every vertex of every screen entity
// is tried, the worst a pick can take.
void PickMiss(benchmark::State& state, bool whole) {
  LargeSurvey& s = Survey();
  whole ? s.WholeExtent() : s.Middle500();
  RebuildScreenPoints(s.doc, s.view);
  RebuildScreenEntities(s.doc, s.view);
  const double x = 5, y = 5;  // a corner of Paper1, off the screen
  for (auto _ : state) {
    int hits = 0;
    for (int32_t i = 0; i < s.doc.ScreenPointCount; ++i) {
      const Point& p = s.doc.ScreenPointTable[static_cast<std::size_t>(i)];
      if (!p.Deleted && PickBoxTest(s.view, s.doc.ScaleDenominator, x, y, 20, p.E, p.N)) ++hits;
    }
    for (int32_t i = 0; i < s.doc.ScreenEntityCount; ++i) {
      const Entity& e = s.doc.ScreenEntityTable[static_cast<std::size_t>(i)];
      if (e.Deleted) continue;
      for (int k = 0; k < 3; ++k)
        if (PickBoxTest(s.view, s.doc.ScaleDenominator, x, y, 20, e.X[k], e.Y[k])) ++hits;
    }
    benchmark::DoNotOptimize(hits);
  }
  state.counters["screen_rows"] = s.doc.ScreenPointCount + s.doc.ScreenEntityCount;
}

void BM_PickScreenTables500(benchmark::State& state) { PickMiss(state, false); }
void BM_PickScreenTablesWholeExtent(benchmark::State& state) { PickMiss(state, true); }

BENCHMARK(BM_RedrawAllWholeExtent)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RedrawAll500Middle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RebuildScreenEntities500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PickScreenTables500)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PickScreenTablesWholeExtent)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
