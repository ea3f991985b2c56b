// The GNSS receive path over a 10 MB capture of a receiver's mixed output: line
// assembly one character at a time, dispatch, parsing, panels in memory, the grid
// conversion of each position, and a GOBS append (open, write, close) on a real file
// for every accepted sentence, with the raw logs of the RTK base going to their own
// file. The serial line brings at most 11.5 KB a second at 115200 baud; the "headroom"
// counter says how many times faster than that the path runs.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "instruments/gps_receiver.h"

namespace {

constexpr double kSerialBytesPerSecond = 115200.0 / 10;  // 8 data bits, a start and a stop bit

std::string Fixed(double v, int decimals) {
  char buf[48];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

// One second of a rover's talk, as the kinds send it, with a little line noise, and now
// and then a raw range log that the base's raw capture takes.
std::string Epoch(int i, std::mt19937& rng) {
  double sec = 336000 + i, lat = 24.1 + i * 1e-7, lon = 120.9 + i * 1.3e-7, h = 100 + (i % 50) * 0.01;
  std::string latNmea = "24" + Fixed((lat - 24) * 60, 5), lonNmea = "120" + Fixed((lon - 120) * 60, 5);
  std::string hhmmss = Fixed(20000 + i % 4000, 2);
  std::string e;
  e += "#BESTPOSA,COM1,0,72.5,FINESTEERING,2209," + Fixed(sec, 3) + ",02000020,cdba,16248;SOL_COMPUTED,NARROW_INT," +
       Fixed(lat, 11) + "," + Fixed(lon, 11) + "," + Fixed(h, 4) +
       ",17.0000,WGS84,0.0123,0.0234,0.0346,\"0\",1.000,0.000,14,12,12,11,0,06,00,03*6eb3e1c5\r\n";
  e += "#DUALANTENNAHEADINGA,COM1,0,80.0,FINESTEERING,2209," + Fixed(sec, 3) +
       ",02040000,d426,16248;SOL_COMPUTED,NARROW_INT,1.5," + Fixed(i % 360 + 0.5, 4) +
       ",0.1,0.0,0.25,0.3,\"999\",18,16,16,16,0,01,00,33*1a2b3c4d\r\n";
  e += "$GNGGA," + hhmmss + "," + latNmea + ",N," + lonNmea + ",E,4,12,0.9," + Fixed(h, 3) + ",M,17.0,M,1.0,0000*5C\r\n";
  e += "$GPRMC," + hhmmss + ",A," + latNmea + ",N," + lonNmea + ",E,0.0,0.0,231126,,,D*1F\r\n";
  e += "$GPGSA,A,3,01,02,04,05,06,07,08,09,10,11,,,1.8,0.9,1.5*33\r\n";
  e += "$GPGSV,3,1,12,01,90,000,45,02,10,090,40,03,45,180,00,04,30,270,35*70\r\n";
  e += "$GPGSV,3,2,12,05,10,010,30,06,20,020,31,07,30,030,32,08,40,040,33*71\r\n";
  e += "$GPGSV,3,3,12,09,50,050,34,10,60,060,35,11,70,070,36,12,80,080,37*72\r\n";
  e += "$GPGLL," + latNmea + ",N," + lonNmea + ",E," + hhmmss + ",A,D*3A\r\n";
  e += "$PRTKA,2209," + Fixed(sec, 2) + ",x,14,x,11," + Fixed(lat, 9) + "," + Fixed(lon, 9) + "," + Fixed(h, 3) +
       ",x,x,0.012,0.034,0.056,x,0,4,x,x*1F\r\n";
  if (i % 10 == 0) {
    e += "#RANGEA,COM1,0,63.5,FINESTEERING,2209," + Fixed(sec, 3) + ",00000000,5103,16248;24";
    for (int s = 0; s < 24; ++s)
      e += ",12,0,22345678.123,0.045,-117654321.123,0.012,-1234.567,45.6,1234.5,08109c04";
    e += "*1234abcd\r\n";
  }
  for (int k = 0; k < 3; ++k) e += static_cast<char>(' ' + rng() % 90);  // noise between epochs
  return e;
}

struct Capture {
  std::string bytes;
  int64_t lines = 0;
};

const Capture& TenMegabytes() {
  static const Capture capture = [] {
    Capture c;
    std::mt19937 rng(20261123);
    for (int i = 0; c.bytes.size() < 10u * 1024 * 1024; ++i) c.bytes += Epoch(i, rng);
    for (char ch : c.bytes) c.lines += ch == '\r';
    return c;
  }();
  return capture;
}

void Receive(benchmark::State& st, bool gobs) {
  const Capture& capture = TenMegabytes();
  std::filesystem::path folder = std::filesystem::temp_directory_path() / "tavik-gnss-bench";
  std::filesystem::create_directories(folder);
  tavik::GpsState gps;
  tavik::GnssSetup setup;
  setup.GpsReceiverKind = "PP7";
  tavik::Document doc;
  tavik::GpsDatumSettings datum;
  doc.GobsPath = (folder / "BENCH.GOBS").string();
  gps.RawPath = (folder / "BENCH.GPS").string();
  tavik::GpsReceiver rx(gps, setup, doc, datum);
  rx.DiscardGobs = !gobs;
  int64_t positions = 0;
  rx.hooks.ContinuePositionUpdate = [&](double, double, double) { ++positions; };
  double seconds = 0;
  for (auto _ : st) {
    st.PauseTiming();
    std::filesystem::remove(doc.GobsPath);
    std::filesystem::remove(gps.RawPath);
    st.ResumeTiming();
    auto start = std::chrono::steady_clock::now();
    rx.Feed(tavik::GpsReceiver::Port::MSComm1, capture.bytes);
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  benchmark::DoNotOptimize(positions);
  const double bytes = static_cast<double>(st.iterations()) * static_cast<double>(capture.bytes.size());
  st.SetBytesProcessed(static_cast<int64_t>(bytes));
  st.SetItemsProcessed(st.iterations() * capture.lines);  // sentences
  st.counters["us_per_sentence"] = seconds * 1e6 / static_cast<double>(st.iterations() * capture.lines);
  st.counters["headroom"] = bytes / seconds / kSerialBytesPerSecond;
  std::filesystem::remove_all(folder);
}

void BM_ReceiveMixedCaptureWithGobs(benchmark::State& st) { Receive(st, true); }
void BM_ReceiveMixedCaptureParsingOnly(benchmark::State& st) { Receive(st, false); }

BENCHMARK(BM_ReceiveMixedCaptureWithGobs)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ReceiveMixedCaptureParsingOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
BENCHMARK_MAIN();
