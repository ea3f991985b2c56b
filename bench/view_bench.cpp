// The map view on a large survey: 1,000,000 entities (segments, circles, arcs and
// point symbols of mixed codes) and 200,000 points over 4 km by 3 km. Measures the
// full repaint at the whole extent and at 1 : 500 in the middle, the rebuild of the
// screen tables (through the spatial index, against the plain walk of every row in the
// same run, and the index's grid against an R-tree over the same boxes), and a pick over
// the screen tables. The counting surface only counts what it is asked to draw (the map
// view's own work); the image surface is Paper1's own picture, rasterised by Qt. The
// references in the same run: the repaint walking every row, and a picture surface that
// opens a painter for every figure, as Paper1's did before it kept one open.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <cstdio>
#include <random>

#include "core/tables.h"
#include "platform/qt/image_surface.h"
#include "view/navigation.h"
#include "view/offset_surface.h"

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
namespace fs = std::filesystem;

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
  RebuildScreenEntities(s.doc, s.view);  // the index is built once, after the load
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

// The rows a rebuild would take without the index: every row tested.
void BM_PlainWalkEntities500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  for (auto _ : state) {
    std::vector<Entity> out;
    for (const Entity& e : s.doc.EntityTable)
      if (EntityReachesScreen(e, s.view)) out.push_back(e);
    benchmark::DoNotOptimize(out.data());
  }
}

void BM_RebuildScreenPoints500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  RebuildScreenPoints(s.doc, s.view);
  for (auto _ : state) benchmark::DoNotOptimize(RebuildScreenPoints(s.doc, s.view));
  state.counters["on_screen"] = s.doc.ScreenPointCount;
}

void BM_PlainWalkPoints500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  for (auto _ : state) {
    std::vector<Point> out;
    for (const Point& p : s.doc.PointTable)
      if (!p.Deleted && s.view.InScreen(p.E, p.N)) out.push_back(p);
    benchmark::DoNotOptimize(out.data());
  }
}

// The first rebuild after a load builds the index: what that costs once.
void BM_BuildIndexAndRebuild500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  for (auto _ : state) {
    RowsChanged(s.doc);
    RebuildScreenPoints(s.doc, s.view);
    RebuildScreenEntities(s.doc, s.view);
  }
}

// An R-tree over the same boxes the grid holds, packed by sort-tile-recursive, for the
// choice between the two: its build and its query for the same screen.
class PackedRTree {
 public:
  static constexpr std::size_t Fan = 16;
  void Build(std::vector<std::pair<Box, int32_t>> items) {
    levels_.clear();
    std::vector<Node> level;
    Pack(items, level, [](const std::pair<Box, int32_t>& it) { return Node{it.first, it.second, 0}; });
    leaves_ = level.size();
    levels_.push_back(level);
    while (levels_.back().size() > 1) {
      std::vector<std::pair<Box, int32_t>> up;
      const auto& below = levels_.back();
      for (std::size_t i = 0; i < below.size(); ++i) up.push_back({below[i].box, static_cast<int32_t>(i)});
      std::vector<Node> next;
      PackGroups(up, next);
      levels_.push_back(next);
    }
  }
  void Query(const Box& r, std::vector<int32_t>& out) const {
    out.clear();
    if (levels_.empty() || levels_.back().empty()) return;
    Visit(levels_.size() - 1, 0, levels_.back().size(), r, out);
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
  }

 private:
  struct Node {
    Box box;
    int32_t first;  // a leaf's row, or the first child in the level below
    int32_t count;  // children (0 for a leaf entry)
  };
  static bool Meets(const Box& b, const Box& r) {
    return b.MinE <= r.MaxE && b.MaxE >= r.MinE && b.MinN <= r.MaxN && b.MaxN >= r.MinN;
  }
  static void Tile(std::vector<std::pair<Box, int32_t>>& items) {
    auto cE = [](const auto& a) { return a.first.MinE + a.first.MaxE; };
    auto cN = [](const auto& a) { return a.first.MinN + a.first.MaxN; };
    std::sort(items.begin(), items.end(), [&](const auto& a, const auto& b) { return cE(a) < cE(b); });
    const std::size_t pages = (items.size() + Fan - 1) / Fan;
    const std::size_t slice = Fan * static_cast<std::size_t>(std::ceil(std::sqrt(double(pages))));
    for (std::size_t i = 0; i < items.size(); i += slice)
      std::sort(items.begin() + i, items.begin() + std::min(items.size(), i + slice),
                [&](const auto& a, const auto& b) { return cN(a) < cN(b); });
  }
  template <typename Make>
  static void Pack(std::vector<std::pair<Box, int32_t>>& items, std::vector<Node>& out, Make make) {
    Tile(items);
    for (const auto& it : items) out.push_back(make(it));
  }
  void PackGroups(std::vector<std::pair<Box, int32_t>>& items, std::vector<Node>& out) {
    // Children are kept in the order of the level below, so a group is a run there.
    (void)items;
    const auto& below = levels_.back();
    for (std::size_t i = 0; i < below.size(); i += Fan) {
      Node n{below[i].box, static_cast<int32_t>(i), static_cast<int32_t>(std::min(Fan, below.size() - i))};
      for (int32_t k = 1; k < n.count; ++k) {
        const Box& b = below[i + static_cast<std::size_t>(k)].box;
        n.box = {std::min(n.box.MinE, b.MinE), std::min(n.box.MinN, b.MinN), std::max(n.box.MaxE, b.MaxE),
                 std::max(n.box.MaxN, b.MaxN)};
      }
      out.push_back(n);
    }
  }
  void Visit(std::size_t level, std::size_t from, std::size_t count, const Box& r, std::vector<int32_t>& out) const {
    const auto& nodes = levels_[level];
    for (std::size_t i = from; i < from + count; ++i) {
      if (!Meets(nodes[i].box, r)) continue;
      if (level == 0) out.push_back(nodes[i].first);
      else Visit(level - 1, static_cast<std::size_t>(nodes[i].first), static_cast<std::size_t>(nodes[i].count), r, out);
    }
  }
  std::vector<std::vector<Node>> levels_;
  std::size_t leaves_ = 0;
};

std::vector<std::pair<Box, int32_t>> EntityItems(const Document& doc) {
  std::vector<std::pair<Box, int32_t>> items;
  std::vector<Box> boxes;
  for (std::size_t i = 0; i < doc.EntityTable.size(); ++i) {
    boxes.clear();
    EntityBoxes(doc.EntityTable[i], boxes);
    for (const Box& b : boxes) items.push_back({b, static_cast<int32_t>(i)});
  }
  return items;
}

Box ScreenOf(const View& v) { return {v.ScreenMinE, v.ScreenMinN, v.ScreenMaxE, v.ScreenMaxN}; }

void BM_RTreeBuild(benchmark::State& state) {
  LargeSurvey& s = Survey();
  for (auto _ : state) {
    PackedRTree t;
    t.Build(EntityItems(s.doc));
    benchmark::DoNotOptimize(&t);
  }
}

void BM_GridBuild(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  for (auto _ : state) {
    s.doc.Index.Entities.Invalidate();
    RebuildScreenEntities(s.doc, s.view);
  }
}

// Candidates for the screen at 1 : 500, in row order, each once.
void BM_RTreeQuery500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  PackedRTree t;
  t.Build(EntityItems(s.doc));
  std::vector<int32_t> rows;
  for (auto _ : state) t.Query(ScreenOf(s.view), rows);
  state.counters["candidates"] = static_cast<double>(rows.size());
}

void BM_GridQuery500(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  RebuildScreenEntities(s.doc, s.view);
  std::vector<int32_t> rows;
  for (auto _ : state) s.doc.Index.Entities.Query(ScreenOf(s.view), rows);
  state.counters["candidates"] = static_cast<double>(rows.size());
}

// Paper1's picture as it was drawn before it kept one painter open: a painter for
// every figure. Only the reference for the figures below.
class PainterPerFigureSurface : public ui::Surface {
 public:
  explicit PainterPerFigureSurface(QImage& image) : image_(image) { pen_.setCosmetic(true); }
  void Clear(ui::Rgb c) override { image_.fill(ui::ImageSurface::ToQColor(c)); }
  void SetPen(ui::Rgb c, int width, ui::LineStyle) override {
    pen_.setColor(ui::ImageSurface::ToQColor(c));
    pen_.setWidth(std::max(1, width));
  }
  void SetDrawMode(ui::DrawMode) override {}
  void SetFill(bool filled, ui::Rgb c) override { brush_ = filled ? QBrush(ui::ImageSurface::ToQColor(c)) : QBrush(); }
  void Line(float x1, float y1, float x2, float y2) override {
    QPainter p(&image_);
    p.setPen(pen_);
    p.drawLine(QPointF(x1, y1), QPointF(x2, y2));
  }
  void Circle(float cx, float cy, float r) override {
    QPainter p(&image_);
    p.setPen(pen_);
    p.setBrush(brush_);
    p.drawEllipse(QPointF(cx, cy), r, r);
  }
  void Arc(float cx, float cy, float r, double a1, double a2) override {
    QPainter p(&image_);
    p.setPen(pen_);
    p.drawArc(QRectF(cx - r, cy - r, 2 * r, 2 * r), static_cast<int>(a1 * 180 / 3.14159265358979 * 16),
              static_cast<int>((a2 - a1) * 180 / 3.14159265358979 * 16));
  }
  void SetPixel(float x, float y, ui::Rgb c) override {
    if (image_.rect().contains(static_cast<int>(x), static_cast<int>(y)))
      image_.setPixel(static_cast<int>(x), static_cast<int>(y), ui::ImageSurface::ToQColor(c).rgb());
  }
  void Text(float x, float y, const std::string& utf8, ui::Rgb c, int pixelSize) override {
    QPainter p(&image_);
    p.setPen(ui::ImageSurface::ToQColor(c));
    QFont f = font_;
    f.setPixelSize(pixelSize);
    p.setFont(f);
    p.drawText(QRectF(x, y, 1e5, 1e5), Qt::AlignLeft | Qt::AlignTop | Qt::TextDontClip, QString::fromStdString(utf8));
  }
  float Width() const override { return static_cast<float>(image_.width()); }
  float Height() const override { return static_cast<float>(image_.height()); }

 private:
  QImage& image_;
  QPen pen_;
  QBrush brush_;
  QFont font_{"WenQuanYi Zen Hei"};
};

// The program's way (the index, one painter) or the reference (every row, a painter per
// figure).
enum class Way { Program, Reference };

// The repaint into Paper1's own picture (Qt's raster engine), the size of a tablet's
// screen.
void RepaintImage(benchmark::State& state, bool whole, Way way) {
  LargeSurvey& s = Survey();
  whole ? s.WholeExtent() : s.Middle500();
  view::Display display;
  ui::ImageSurface image(1024, 768);
  QImage plain(1024, 768, QImage::Format_RGB32);
  PainterPerFigureSurface perFigure(plain);
  ui::Surface& target = way == Way::Program ? static_cast<ui::Surface&>(image) : perFigure;
  view::OffsetSurface surface(target, -1.5f * 1024, -1.5f * 768);  // the visible area, as the program keeps it
  ui::ScriptedDialogs dialogs;
  view::MapCanvas canvas(s.doc, s.view, display, surface, view::SilentUi(), dialogs);
  canvas.visibleOnly = true;
  canvas.ResetClip();
  for (auto _ : state) {
    view::RedrawAll(canvas, way == Way::Program ? view::RowWalk::Indexed : view::RowWalk::Every);
    benchmark::DoNotOptimize(image.Image().constBits());
  }
}
void BM_RedrawAllImageWholeExtent(benchmark::State& state) { RepaintImage(state, true, Way::Program); }
void BM_RedrawAllImage500Middle(benchmark::State& state) { RepaintImage(state, false, Way::Program); }
void BM_RedrawAllImage500MiddleReference(benchmark::State& state) { RepaintImage(state, false, Way::Reference); }

// A complete view change at 1 : 500 into the picture: pan by half a screen, zoom in,
// zoom out, each with its whole tail (view, repaint, both screen tables, recovery
// header). The time is per change. The reference runs the same tail with the repaint of
// every row on the painter-per-figure surface.
void ViewChange(benchmark::State& state, Way way) {
  LargeSurvey& s = Survey();
  s.Middle500();
  view::Display display;
  ui::ImageSurface image(1024, 768);
  QImage plain(1024, 768, QImage::Format_RGB32);
  PainterPerFigureSurface perFigure(plain);
  ui::Surface& target = way == Way::Program ? static_cast<ui::Surface&>(image) : perFigure;
  view::OffsetSurface surface(target, -1.5f * 1024, -1.5f * 768);
  ui::ScriptedDialogs dialogs;
  const fs::path home = fs::temp_directory_path() / "tavik-view-bench";
  fs::create_directories(home);
  WorkFiles wf{AppPaths{home}};
  view::MapCanvas canvas(s.doc, s.view, display, surface, view::SilentUi(), dialogs);
  canvas.RebuildScreenTables = [&] {
    RebuildScreenPoints(s.doc, s.view);
    RebuildScreenEntities(s.doc, s.view);
  };
  canvas.WriteRecoveryHeader = [&] { wf.WriteRecoveryHeader(s.doc); };
  canvas.visibleOnly = true;
  canvas.RebuildScreenTables();
  auto tail = [&] {
    if (way == Way::Program) return view::AfterViewChange(canvas);
    view::ComputeView(s.doc, s.view);
    canvas.ResetClip();
    view::RedrawAll(canvas, view::RowWalk::Every);
    canvas.RebuildScreenTables();
    canvas.WriteRecoveryHeader();
  };
  int step = 0;
  for (auto _ : state) {
    switch (step++ % 4) {
      case 0:
      case 2: {
        // Half a screen one way, then back.
        s.doc.ViewCentreE += (step % 4 == 1 ? -512 : 512) / canvas.PixelsPerMetre();
        tail();
        break;
      }
      case 1: s.doc.ScaleDenominator *= 0.75; tail(); break;
      default: s.doc.ScaleDenominator /= 0.75; tail(); break;
    }
  }
  std::error_code ec;
  fs::remove_all(home, ec);
}
void BM_ViewChange500(benchmark::State& state) { ViewChange(state, Way::Program); }
void BM_ViewChange500Reference(benchmark::State& state) { ViewChange(state, Way::Reference); }

// One frame of a drag pan: the centre follows the pointer and Paper1's window shows the
// picture moved (the screen's own copy of the window filled and the picture laid on it),
// with nothing redrawn; at 60 frames a second a frame may take 16.7 ms.
void BM_DragPanFrame(benchmark::State& state) {
  LargeSurvey& s = Survey();
  s.Middle500();
  view::Display display;
  ui::ImageSurface image(1024, 768);
  view::OffsetSurface surface(image, -1.5f * 1024, -1.5f * 768);
  ui::ScriptedDialogs dialogs;
  view::MapCanvas canvas(s.doc, s.view, display, surface, view::SilentUi(), dialogs);
  canvas.visibleOnly = true;
  canvas.ResetClip();
  view::RedrawAll(canvas);
  QImage window(1024, 768, QImage::Format_RGB32);
  view::PanDrag pan;
  view::PanStart(canvas, pan, 512, 384);
  int dx = 0;
  for (auto _ : state) {
    dx = (dx + 7) % 300;
    view::PanMove(canvas, pan, 512.f + static_cast<float>(dx), 384);
    QPainter p(&window);
    p.fillRect(window.rect(), Qt::white);
    p.drawImage(dx, 0, image.Image());
  }
  view::PanEnd(canvas, pan);
}

BENCHMARK(BM_RedrawAllWholeExtent)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RedrawAll500Middle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RebuildScreenEntities500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainWalkEntities500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RebuildScreenPoints500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainWalkPoints500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BuildIndexAndRebuild500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RTreeBuild)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridQuery500)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RTreeQuery500)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RedrawAllImageWholeExtent)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RedrawAllImage500Middle)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RedrawAllImage500MiddleReference)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ViewChange500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ViewChange500Reference)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DragPanFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PickScreenTables500)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PickScreenTablesWholeExtent)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  // Paper1's picture needs the toolkit's painting, not a window: the offscreen platform.
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
