// Import of a DXF of 1,000,000 segments into the base map: the reading through GDAL,
// the rows put in and the base-map journal written whole, as the window does it. The
// drawing mixes single LINEs with LWPOLYLINEs of 100 vertices (half the segments each),
// on seven layers. The peak resident memory of the process is reported beside the time.
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "basemap/vector_import.h"

namespace {

using namespace tavik;
namespace fs = std::filesystem;

constexpr int kSegments = 1000000;

fs::path BenchFolder() {
  static fs::path dir = [] {
    std::string tmpl = (fs::temp_directory_path() / "tavik-bench-XXXXXX").string();
    return fs::path(::mkdtemp(tmpl.data()));
  }();
  return dir;
}

const std::string& BigDxf() {
  static std::string path = [] {
    const std::string p = (BenchFolder() / "segments.dxf").string();
    std::FILE* f = std::fopen(p.c_str(), "wb");
    std::fputs("0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n9\n$DWGCODEPAGE\n3\nANSI_950\n0\nENDSEC\n"
               "0\nSECTION\n2\nENTITIES\n",
               f);
    int made = 0, i = 0;
    for (; made < kSegments / 2; ++i, ++made) {
      const double x = 250000 + (i % 1000) * 1.5, y = 2700000 + (i / 1000) * 1.5;
      std::fprintf(f, "0\nLINE\n8\nL%d\n10\n%.3f\n20\n%.3f\n30\n0.0\n11\n%.3f\n21\n%.3f\n31\n0.0\n", i % 7, x, y,
                   x + 1.2, y + 0.7);
    }
    for (int k = 0; made < kSegments; ++k) {
      std::fprintf(f, "0\nLWPOLYLINE\n8\nP%d\n100\nAcDbEntity\n100\nAcDbPolyline\n90\n101\n70\n0\n", k % 7);
      for (int v = 0; v <= 100; ++v)
        std::fprintf(f, "10\n%.3f\n20\n%.3f\n", 251000 + v * 2.0, 2700000 + k * 0.5 + (v % 2) * 0.3);
      made += 100;
    }
    std::fputs("0\nENDSEC\n0\nEOF\n", f);
    std::fclose(f);
    return p;
  }();
  return path;
}

void BM_ImportMillionSegmentDxf(benchmark::State& state) {
  const std::string& path = BigDxf();
  WorkFiles wf{AppPaths{BenchFolder()}};
  wf.CreateEmpty();
  int64_t rows = 0;
  for (auto _ : state) {
    Document doc;
    basemap::VectorDrawing d;
    std::string message;
    if (basemap::ReadVectorFile(path, {}, d, message) != basemap::ReadResult::Read) {
      state.SkipWithError(message.c_str());
      return;
    }
    basemap::ApplyLayerCodes(d, {}, false);
    basemap::AddToBaseMap(doc, wf, d);
    rows = doc.BaseMapCount;
    benchmark::DoNotOptimize(doc.BaseMapTable.data());
  }
  rusage u{};
  getrusage(RUSAGE_SELF, &u);
  state.counters["rows"] = static_cast<double>(rows);
  state.counters["peak_MB"] = static_cast<double>(u.ru_maxrss) / 1024.0;
}
BENCHMARK(BM_ImportMillionSegmentDxf)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
