// Save and load of a large document against a plain write and read of the same bytes
// in the same run, and the cost of one journalled AddPoint (its line flushed to disk).
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/docfile.h"
#include "core/durable_file.h"
#include "core/tables.h"
#include "platform/scripted/scripted.h"

namespace {

using namespace tavik;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr int kRecords = 1000000;

fs::path BenchFolder() {
  static fs::path dir = [] {
    std::string tmpl = (fs::temp_directory_path() / "tavik-bench-XXXXXX").string();
    return fs::path(::mkdtemp(tmpl.data()));
  }();
  return dir;
}

// 1,000,000 points and 1,000,000 entities; one name in ten is Chinese.
Document& BigDocument() {
  static Document doc = [] {
    Document d;
    SetDocumentName(d, (BenchFolder() / "big").string());
    d.PointTable.reserve(kRecords);
    d.EntityTable.reserve(kRecords);
    for (int i = 0; i < kRecords; ++i) {
      Point p;
      p.Number = i + 1;
      p.E = 280000 + i * 0.013;
      p.N = 2750000 + i * 0.017;
      p.H = i * 0.001;
      d.PointTable.push_back(p);
      Entity e;
      e.Number = i + 1;
      e.Code = static_cast<int16_t>(1 + i % 999);
      e.Kind = i % 2 ? KindLine : KindPoint;
      e.X[0] = p.E, e.Y[0] = p.N, e.Z[0] = p.H;
      e.X[1] = p.E + 1, e.Y[1] = p.N + 1;
      char name[32];
      std::snprintf(name, sizeof name, i % 10 ? "P%d" : "界樁%d", i);
      e.Name = name;
      d.EntityTable.push_back(std::move(e));
    }
    d.PointCount = d.EntityCount = kRecords;
    return d;
  }();
  return doc;
}

double Seconds(Clock::time_point a, Clock::time_point b) { return std::chrono::duration<double>(b - a).count(); }

void BM_SaveDocument(benchmark::State& state) {
  Document& doc = BigDocument();
  ui::ScriptedDialogs dialogs;
  double saved = 0, plain = 0;
  std::string bytes;
  for (auto _ : state) {
    Document d = doc;  // the save shrinks the counts; each round starts from the same tables
    auto t0 = Clock::now();
    if (!WriteDocumentFile(d, dialogs)) state.SkipWithError("save failed");
    auto t1 = Clock::now();
    state.PauseTiming();
    io::ReadWholeFile(d.SpcPath, bytes);
    state.ResumeTiming();
    auto t2 = Clock::now();
    io::WriteNewFile(BenchFolder() / "plain.bin", bytes);
    auto t3 = Clock::now();
    state.SetIterationTime(Seconds(t0, t1));
    saved += Seconds(t0, t1);
    plain += Seconds(t2, t3);
  }
  state.counters["plain_write_ms"] = plain / state.iterations() * 1000;
  state.counters["ratio"] = saved / plain;
  state.counters["MB"] = bytes.size() / 1e6;
}
BENCHMARK(BM_SaveDocument)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_LoadDocument(benchmark::State& state) {
  ui::ScriptedDialogs dialogs;
  Document saved = BigDocument();
  WriteDocumentFile(saved, dialogs);
  double loaded = 0, plain = 0;
  std::string bytes;
  for (auto _ : state) {
    Document d;
    SetDocumentName(d, saved.DocumentName);
    auto t0 = Clock::now();
    if (!LoadDocument(d, dialogs)) state.SkipWithError("load failed");
    auto t1 = Clock::now();
    io::ReadWholeFile(d.SpcPath, bytes);
    benchmark::DoNotOptimize(bytes.data());
    auto t2 = Clock::now();
    state.SetIterationTime(Seconds(t0, t1));
    loaded += Seconds(t0, t1);
    plain += Seconds(t1, t2);
    if (d.PointCount != kRecords || d.EntityCount != kRecords) state.SkipWithError("records lost");
  }
  state.counters["plain_read_ms"] = plain / state.iterations() * 1000;
  state.counters["ratio"] = loaded / plain;
}
BENCHMARK(BM_LoadDocument)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_AddPointJournalled(benchmark::State& state) {
  fs::path home = BenchFolder() / "home";
  fs::create_directories(home);
  WorkFiles wf{AppPaths{home}};
  wf.CreateEmpty();
  Document d;
  View view;
  double e = 280000;
  for (auto _ : state) {
    if (!AddPoint(d, view, wf, e, 2750000.125, 12.5)) state.SkipWithError("journal failed");
    e += 0.25;
  }
}
BENCHMARK(BM_AddPointJournalled)->Unit(benchmark::kMicrosecond);

// The floor under the journalled AddPoint: the same open-append-flush-close of a line of
// the same length, with nothing else.
void BM_PlainAppendFlushed(benchmark::State& state) {
  fs::path file = BenchFolder() / "plain-append";
  const std::string line = "1,280000,2750000.125,12.5,#FALSE#\r\n";
  for (auto _ : state) io::AppendDurably(file, line);
}
BENCHMARK(BM_PlainAppendFlushed)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::error_code ec;
  fs::remove_all(BenchFolder(), ec);
  return 0;
}
