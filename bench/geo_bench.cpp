// The grid conversion's speed: g2xy over a million positions against PROJ's
// transverse Mercator (proj_trans_generic) on the same positions and ellipsoid, and
// the time of one bisection inverse.
#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstdio>
#include <random>
#include <vector>

#include "geo/grid.h"

namespace {

constexpr std::size_t Positions = 1000000;

struct Sample {
  std::vector<double> lon, lat;
  Sample() : lon(Positions), lat(Positions) {
    std::mt19937_64 rng(97);
    std::uniform_real_distribution<double> lonD(120.0, 122.0), latD(21.9, 25.3);
    for (std::size_t i = 0; i < Positions; ++i) {
      lon[i] = lonD(rng);
      lat[i] = latD(rng);
    }
  }
};

const Sample& Positions1M() {
  static const Sample s;
  return s;
}

void BM_g2xy(benchmark::State& state) {
  const Sample& s = Positions1M();
  tavik::GpsDatumSettings datum;
  std::vector<double> e(Positions), n(Positions);
  for (auto _ : state) {
    for (std::size_t i = 0; i < Positions; ++i) tavik::g2xy(datum, s.lon[i], s.lat[i], e[i], n[i]);
    benchmark::DoNotOptimize(e.data());
    benchmark::DoNotOptimize(n.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * Positions));
}
BENCHMARK(BM_g2xy)->Unit(benchmark::kMillisecond);

void BM_ProjTmerc(benchmark::State& state) {
  const Sample& s = Positions1M();
  tavik::GpsDatumSettings datum;
  PJ_CONTEXT* ctx = proj_context_create();
  char def[400];
  std::snprintf(def, sizeof def,
                "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad "
                "+step +proj=tmerc +lat_0=0 +lon_0=121 +k=0.9999 +x_0=250000 +y_0=0 +a=%.17g +b=%.17g",
                datum.EllipsoidA, datum.EllipsoidB);
  PJ* pj = proj_create(ctx, def);
  if (!pj) {
    state.SkipWithError("PROJ did not accept the transverse Mercator definition");
    proj_context_destroy(ctx);
    return;
  }
  std::vector<double> x(Positions), y(Positions);
  for (auto _ : state) {
    state.PauseTiming();
    x = s.lon;  // converted in place
    y = s.lat;
    state.ResumeTiming();
    proj_trans_generic(pj, PJ_FWD, x.data(), sizeof(double), Positions, y.data(), sizeof(double), Positions,
                       nullptr, 0, 0, nullptr, 0, 0);
    benchmark::DoNotOptimize(x.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * Positions));
  proj_destroy(pj);
  proj_context_destroy(ctx);
}
BENCHMARK(BM_ProjTmerc)->Unit(benchmark::kMillisecond);

void BM_XyToLonLat(benchmark::State& state) {
  tavik::GpsDatumSettings datum;
  const Sample& s = Positions1M();
  std::vector<double> e(1000), n(1000);
  for (std::size_t i = 0; i < e.size(); ++i) tavik::g2xy(datum, s.lon[i], s.lat[i], e[i], n[i]);
  std::size_t i = 0;
  for (auto _ : state) {
    double lon = 0, lat = 0;
    bool failed = false;
    tavik::XyToLonLat(datum, e[i], n[i], lon, lat, failed);
    benchmark::DoNotOptimize(lon);
    benchmark::DoNotOptimize(lat);
    i = (i + 1) % e.size();
  }
}
BENCHMARK(BM_XyToLonLat)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
