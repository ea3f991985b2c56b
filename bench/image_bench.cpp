// A 20,000 x 20,000 photo under the map: a JPEG-compressed tiled GeoTIFF with six
// overview levels, 0.25 m a pixel (5 km a side), made by GDAL's tools into the
// temporary folder on the first run and never kept in the repository. Measures the first paint of a 1000 x 700 screen (the image opened
// and read cold) at 1 : 1000 and at the whole image, and the repaint after a pan: short
// pans that the kept window serves, and pans of a whole screen that read anew.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "basemap/raster_image.h"
#include "core/view_state.h"

namespace {

using namespace tavik;
namespace fs = std::filesystem;

constexpr int Side = 20000;
constexpr double Pixel = 0.25, West = 250000, North = 2655000;
constexpr int ScreenW = 1000, ScreenH = 700;

const std::string& Photo() {
  static const std::string path = [] {
    const fs::path dir = fs::temp_directory_path() / "tavik-bench-photo";
    const fs::path tif = dir / "photo20k.tif";
    if (fs::exists(tif)) return tif.string();
    fs::create_directories(dir);
    // A 1000 x 1000 pattern, enlarged smoothly to the full size: content that JPEG
    // does not squeeze to nothing.
    const fs::path seed = dir / "seed.ppm";
    if (FILE* f = std::fopen(seed.c_str(), "wb")) {
      std::fprintf(f, "P6\n1000 1000\n255\n");
      unsigned s = 12345;
      for (int i = 0; i < 1000 * 1000 * 3; ++i) {
        s = s * 1103515245u + 12345u;
        std::fputc(static_cast<int>((s >> 16) & 255), f);
      }
      std::fclose(f);
    }
    char ullr[128];
    std::snprintf(ullr, sizeof ullr, "%.2f %.2f %.2f %.2f", West, North, West + Side * Pixel, North - Side * Pixel);
    const std::string make = "gdal_translate -q -outsize 20000 20000 -r bilinear -co TILED=YES -co COMPRESS=JPEG "
                             "-co PHOTOMETRIC=YCBCR -co BIGTIFF=IF_SAFER -a_ullr " + std::string(ullr) + " " +
                             seed.string() + " " + tif.string() +
                             " && gdaladdo -q -r average --config COMPRESS_OVERVIEW JPEG --config "
                             "PHOTOMETRIC_OVERVIEW YCBCR " + tif.string() + " 2 4 8 16 32 64";
    if (std::system(make.c_str()) != 0) std::fprintf(stderr, "could not make %s\n", tif.c_str());
    return tif.string();
  }();
  return path;
}

basemap::RasterView ViewAt(double scale, double centreE, double centreN) {
  basemap::RasterView v;
  v.MetresPerPixel = scale / 100 / PixelsPerCm;
  v.Width = ScreenW, v.Height = ScreenH;
  v.LeftE = centreE - ScreenW / 2.0 * v.MetresPerPixel;
  v.TopN = centreN + ScreenH / 2.0 * v.MetresPerPixel;
  return v;
}

// The whole image on the screen: the scale at which 5 km fill 1000 pixels.
constexpr double WholeScale = Side * Pixel / ScreenW * 100 * PixelsPerCm;

void BM_FirstPaint(benchmark::State& state) {
  const double scale = state.range(0) == 0 ? 1000 : WholeScale;
  std::vector<uint32_t> screen(ScreenW * ScreenH, 0xFFFFFFFFu);
  const basemap::RasterView v = ViewAt(scale, West + 2500, North - 2500);
  for (auto _ : state) {
    std::string message;
    auto img = basemap::RasterImage::Open(Photo(), message);
    if (!img || !img->Render(v, {}, screen.data(), ScreenW, message)) state.SkipWithError(message.c_str());
    benchmark::DoNotOptimize(screen.data());
  }
  state.SetLabel(state.range(0) == 0 ? "1:1000" : "whole image");
}
BENCHMARK(BM_FirstPaint)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Pans across the image at 1 : 1000, `step` pixels at a time, from west to east and
// back, each followed by the image's part of the repaint.
void BM_PanRepaint(benchmark::State& state) {
  const int step = static_cast<int>(state.range(0));
  std::string message;
  auto img = basemap::RasterImage::Open(Photo(), message);
  if (!img) {
    state.SkipWithError(message.c_str());
    return;
  }
  std::vector<uint32_t> screen(ScreenW * ScreenH, 0xFFFFFFFFu);
  const double m = 1000 / 100 / PixelsPerCm;
  double E = West + 500, dir = 1;
  const int readsBefore = img->ReadCount();
  for (auto _ : state) {
    E += dir * step * m;
    if (E > West + Side * Pixel - 500 || E < West + 500) dir = -dir;
    const basemap::RasterView v = ViewAt(1000, E, North - 2500);
    if (!img->Render(v, {}, screen.data(), ScreenW, message)) state.SkipWithError(message.c_str());
    benchmark::DoNotOptimize(screen.data());
  }
  state.counters["reads"] = benchmark::Counter(img->ReadCount() - readsBefore, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_PanRepaint)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
