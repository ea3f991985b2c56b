// Replay of a 100,000-record WAY file at the fastest interval (50 ms): each tick reads
// one line from disk, parses it, refills the panels and moves the position, with the
// view following a rover that leaves the screen now and then (fit, screen tables, the
// recovery header written). The timer is fired back to back, so "records/s" is what the
// replay could sustain; at the fastest interval it is asked for 20 a second, and
// "tick_share" is the part of the 50 ms interval one tick takes.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <string>

#include "core/numbers.h"
#include "platform/scripted/scripted.h"
#include "procedures/replay.h"
#include "view/screen_tables.h"
#include "view/transform.h"

namespace {
namespace fs = std::filesystem;

constexpr int kRecords = 100000;

fs::path MakeWayFile(const fs::path& dir) {
  const fs::path p = dir / "RUN.WAY";
  std::ofstream out(p, std::ios::binary);
  for (int i = 0; i < kRecords; ++i) {
    // A boat sailing a lawn-mower pattern of 200 m lines, a record every 0.5 m.
    const int line = i / 400, step = i % 400;
    const double E = 250000 + (line % 2 ? 200 - step * 0.5 : step * 0.5), N = 2650000 + line * 10;
    out << "2026/11/23,14:05:00,2380," << 100000 + i * 0.05 << "," << tavik::num::Format(E, "0.000") << ","
        << tavik::num::Format(N, "0.000") << ",31.250,0.010,0.012,0.020,27.415,1.8,0.5,3.25,3.5,0.1,0.2,0.3,3.25,"
        << (i % 10 == 0 ? "BM1,12.345" : "") << "\r\n";
  }
  return p;
}

void BM_ReplayFastest(benchmark::State& state) {
  const fs::path dir = fs::temp_directory_path() / ("tavik-replay-bench-" + std::to_string(::getpid()));
  fs::create_directories(dir / "工作目錄");
  const fs::path way = MakeWayFile(dir / "工作目錄");
  tavik::App app{tavik::AppPaths(dir)};
  tavik::SetDocumentName(app.doc, (dir / "工作目錄" / "SITE").string());
  app.doc.ScaleDenominator = 1000;
  app.doc.ViewCentreE = 250100;
  app.doc.ViewCentreN = 2650050;
  tavik::view::ComputeView(app.doc, app.view);
  tavik::GpsState gps;
  tavik::GpsPanels panels;
  tavik::ui::ScriptedDialogs dialogs;
  tavik::ui::ManualTimerFactory timers;

  int64_t played = 0, fits = 0;
  double seconds = 0;
  for (auto _ : state) {
    tavik::RePlayLogic replay(app, gps, panels, dialogs, timers, (dir / "replay").string());
    replay.hooks.FitViewTo = [&](double minE, double minN, double maxE, double maxN, double factor) {
      tavik::Document& doc = app.doc;
      tavik::view::FitScale(doc, app.view, minE, minN, maxE, maxN);
      doc.ScaleDenominator *= factor;
      doc.ViewCentreE = (minE + maxE) / 2;
      doc.ViewCentreN = (minN + maxN) / 2;
      tavik::view::ComputeView(doc, app.view);
      tavik::RebuildScreenPoints(doc, app.view);
      tavik::RebuildScreenEntities(doc, app.view);
      app.work.WriteRecoveryHeader(doc);
      ++fits;
    };
    double markerE = 0;
    replay.hooks.DrawMarker = [&](double E, double) { markerE += E; };
    replay.ChooseFile(way.string());
    replay.Play();
    for (int i = 0; i < 6; ++i) replay.Faster();
    if (replay.Interval() != 50) state.SkipWithError("not at the fastest interval");
    const auto t0 = std::chrono::steady_clock::now();
    while (replay.Running()) replay.Tick();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    played += replay.RecordsPlayed();
    benchmark::DoNotOptimize(markerE);
    replay.End();
  }
  state.counters["records/s"] = played / seconds;
  state.counters["tick_share"] = (seconds / played) / 0.050;
  state.counters["view_fits"] = static_cast<double>(fits) / state.iterations();
  std::error_code ec;
  fs::remove_all(dir, ec);
}
BENCHMARK(BM_ReplayFastest)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
