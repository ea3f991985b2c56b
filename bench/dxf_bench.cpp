// DXF export of a large document against a plain write of the same number of bytes in
// the same run: what the formatting, the ornaments and the code-page text cost above
// the disk.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/durable_file.h"
#include "export/dxf_export.h"
#include "export/symbol_library.h"

namespace {

using namespace tavik;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr int kEntities = 1000000;
constexpr int kPoints = 200000;

fs::path BenchFolder() {
  static fs::path dir = [] {
    std::string tmpl = (fs::temp_directory_path() / "tavik-bench-XXXXXX").string();
    return fs::path(::mkdtemp(tmpl.data()));
  }();
  return dir;
}

// A day's map blown up: 200,000 shots over 2 km square and 1,000,000 entities of the
// usual mix. Segments of 5 to 20 m: plain walls and fences, dashed and double lines,
// banks with ticks, walls and hedges with repeated symbols; named point symbols, spot
// heights, circles and arcs. One name in ten is Chinese.
const Document& BigDocument() {
  static Document doc = [] {
    Document d;
    d.PointTable.reserve(kPoints);
    for (int i = 0; i < kPoints; ++i) {
      Point p;
      p.Number = i + 1;
      p.E = 280000 + (i % 1000) * 2.0;
      p.N = 2750000 + (i / 1000) * 10.0;
      p.H = 20 + (i % 97) * 0.37;
      d.PointTable.push_back(p);
    }
    d.PointCount = kPoints;
    d.MinE = 280000, d.MaxE = 281998, d.MinN = 2750000, d.MaxN = 2751990;
    static const struct { int16_t code, kind; } mix[20] = {
        {301, KindLine}, {301, KindLine}, {301, KindLine}, {211, KindLine}, {205, KindLine},
        {302, KindLine}, {510, KindLine}, {921, KindLine}, {408, KindLine}, {407, KindLine},
        {813, KindLine}, {723, KindLine}, {801, KindLine}, {605, KindPoint}, {110, KindPoint},
        {517, KindPoint}, {99, KindPoint}, {301, KindArc3}, {930, KindCircle3}, {407, KindCircle2}};
    d.EntityTable.reserve(kEntities);
    for (int i = 0; i < kEntities; ++i) {
      Entity e;
      e.Number = i + 1;
      e.Code = mix[i % 20].code;
      e.Kind = mix[i % 20].kind;
      const double E = 280000 + (i % 997) * 2.003, N = 2750000 + (i / 997) * 1.987, L = 5 + (i % 16);
      e.X[0] = E, e.Y[0] = N, e.Z[0] = 21.5;
      e.X[1] = E + L * 0.6, e.Y[1] = N + L * 0.8, e.Z[1] = 22;
      e.X[2] = E + L * 1.2, e.Y[2] = N, e.Z[2] = 22.5;
      char name[32];
      std::snprintf(name, sizeof name, i % 10 ? "P%d" : "界樁%d", i % 100000);
      e.Name = i % 3 ? "" : name;
      d.EntityTable.push_back(std::move(e));
    }
    d.EntityCount = kEntities;
    return d;
  }();
  return doc;
}

double Seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

void BM_WriteDxf(benchmark::State& state) {
  const Document& doc = BigDocument();
  dxf::DxfExportOptions options;
  options.symbolDir = dxf::ShippedSymbolLibrary().string();
  const fs::path target = BenchFolder() / "big.DXF", plainFile = BenchFolder() / "plain.bin";
  double exported = 0, plain = 0;
  std::string bytes;
  for (auto _ : state) {
    auto t0 = Clock::now();
    if (!dxf::WriteDxf(doc, options, target).ok) state.SkipWithError("export failed");
    auto t1 = Clock::now();
    state.PauseTiming();
    io::ReadWholeFile(target, bytes);
    state.ResumeTiming();
    auto t2 = Clock::now();
    io::WriteNewFile(plainFile, bytes);
    auto t3 = Clock::now();
    state.SetIterationTime(Seconds(t0, t1));
    exported += Seconds(t0, t1);
    plain += Seconds(t2, t3);
  }
  state.counters["plain_write_ms"] = plain / state.iterations() * 1000;
  state.counters["ratio"] = exported / plain;
  state.counters["MB"] = bytes.size() / 1e6;
}
BENCHMARK(BM_WriteDxf)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::error_code ec;
  fs::remove_all(BenchFolder(), ec);
  return 0;
}
