// A continuous GPS run: 12,000 positions at 20 a second (ten minutes of walking at
// 1.4 m/s) through the receiver's byte path, the rest of the position update with the
// map following at the same scale, recording by distance every metre (journal and WAY
// line on disk), and the marker drawn on Paper1's own raster picture over a survey of
// 20,000 entities. Each position is timed from its first byte to the marker drawn (p50,
// p99, p99.9 and the worst, in milliseconds), and as a whole, the record included.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <vector>

#include "core/tables.h"
#include "core/workfiles.h"
#include "instruments/gps_receiver.h"
#include "platform/qt/image_surface.h"
#include "platform/scripted/scripted.h"
#include "procedures/gps_recording.h"
#include "view/canvas.h"
#include "view/gps_marker.h"
#include "view/render.h"
#include "view/screen_tables.h"
#include "view/transform.h"
#include "view/offset_surface.h"

namespace {

using namespace tavik;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

class NoWindow : public SurveyWindow {
 public:
  void SetText(const std::string&, const std::string&) override {}
  void SetEnabled(const std::string&, bool) override {}
  void DrawPointMark(int32_t, double, double) override {}
  void DrawHeightText(double, double, const std::string&) override {}
  void DrawSymbol(int16_t, double, double, double, const std::string&) override {}
  void DrawStationMark(double, double) override {}
  void DrawTargetMark(double, double, int16_t, const std::string&) override {}
  void EraseTargetMark() override {}
  void FitViewTo(double, double, double, double, double) override {}
  void FitViewToExtent() override {}
  void RedrawAll() override {}
  void Refresh() override {}
  void StartBlink(double, double) override {}
  void StopBlink() override {}
  void LinkPoints(double, double, double, double, double, double) override {}
  void SafetySave() override {}
  int16_t ShowCadastralDialog(std::string&) override { return 2; }
  void UnloadCadastralDialog() override {}
  bool ShowKeyedObservation() override { return false; }
};

std::string Gga(double lat, double lon, int i) {
  const double latMin = (lat - std::floor(lat)) * 60, lonMin = (lon - std::floor(lon)) * 60;
  char body[160];
  std::snprintf(body, sizeof body, "GPGGA,%02d%02d%05.2f,%02d%08.5f,N,%03d%08.5f,E,4,14,0.8,41.250,M,17.0,M,1.0,0000",
                (i / 72000) % 24, (i / 1200) % 60, (i % 1200) * 0.05, static_cast<int>(lat), latMin,
                static_cast<int>(lon), lonMin);
  unsigned char sum = 0;
  for (const char* p = body; *p; ++p) sum ^= static_cast<unsigned char>(*p);
  char line[200];
  std::snprintf(line, sizeof line, "$%s*%02X\r\n", body, sum);
  return line;
}

void BM_ContinuousRun20Hz(benchmark::State& state) {
  const fs::path home = fs::temp_directory_path() / "tavik-gps-record-bench";
  fs::remove_all(home);
  fs::create_directories(home);

  // The walk: 0.07 m an epoch, turning gently, in the Lanyang plain.
  std::vector<std::string> sentences;
  double lat = 24.7, lon = 121.75, course = 0.3;
  std::mt19937 rng(3);
  std::uniform_real_distribution<double> turn(-0.02, 0.02);
  for (int i = 0; i < 12000; ++i) {
    course += turn(rng);
    lat += 0.07 * std::cos(course) / 110770;
    lon += 0.07 * std::sin(course) / (111320 * std::cos(lat * 3.14159265358979 / 180));
    sentences.push_back(Gga(lat, lon, i));
  }

  std::vector<double> ms, whole;
  ms.reserve(12000);
  whole.reserve(12000);
  for (auto _ : state) {
    state.PauseTiming();
    fs::remove_all(home / "run");
    fs::create_directories(home / "run");
    Document doc;
    View view;
    SetDocumentName(doc, (home / "run" / "walk").string());
    WorkFiles work{AppPaths{home / "run"}};
    work.CreateEmpty();
    // A survey around the walk to repaint when the view moves.
    std::mt19937 r(7);
    std::uniform_real_distribution<double> e(320000, 321200), n(2732000, 2733200), d(-8, 8);
    for (int i = 0; i < 20000; ++i) {
      Entity x;
      x.Number = i + 1;
      x.Kind = KindLine;
      x.Code = i % 2 ? 301 : 201;
      x.X[0] = e(r), x.Y[0] = n(r), x.X[1] = x.X[0] + d(r), x.Y[1] = x.Y[0] + d(r);
      doc.EntityTable.push_back(x);
    }
    doc.EntityCount = static_cast<int32_t>(doc.EntityTable.size());
    view::SetViewportSize(view, 1024, 768);
    doc.ScaleDenominator = 500;

    ui::ImageSurface image(1024, 768);
    view::OffsetSurface surface(image, -1.5f * 1024, -1.5f * 768);
    view::Display display;
    ui::ScriptedDialogs dialogs;
    view::MapCanvas canvas(doc, view, display, surface, view::SilentUi(), dialogs);
    canvas.visibleOnly = true;
    canvas.ResetClip();
    view::GpsMarker marker;
    InstrumentState inst;
    inst.MeasureMode = "GPS";
    SurveyState survey;
    NoWindow window;
    SurveyContext ctx{doc, view, work, inst, survey, dialogs, window, {}, {}};
    GpsState gps;
    GnssSetup setup;
    GpsDatumSettings datum;
    GpsReceiver rx(gps, setup, doc, datum);
    GpsRecorder rec(ctx, gps, setup, rx.Panels());
    gps.OffScreenShift = kTrue;  // the map follows at the same scale
    rec.hooks.PortOpen = [] { return true; };
    rec.hooks.ViewChanged = [&] {
      view::ComputeView(doc, view);
      canvas.ResetClip();
      RebuildScreenPoints(doc, view);
      RebuildScreenEntities(doc, view);
      work.WriteRecoveryHeader(doc);
      view::RedrawAll(canvas);
      view::ForgetGpsMarker(marker);
    };
    Clock::time_point start;
    rec.hooks.DrawMarker = [&](double E, double N, bool plain, double heading) {
      float x = 0, y = 0;
      WorldToPaper(view, doc.ScaleDenominator, E, N, x, y);
      view::MoveGpsMarker(surface, marker, x, y, plain, heading);
      ms.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    };
    rx.hooks.ContinuePositionUpdate = [&](double, double, double) { rec.ContinuePositionUpdate(); };
    doc.InstrumentHeight = 1.8;
    // Start at the first position so that the view begins on the walk.
    rx.Feed(GpsReceiver::Port::MSComm1, sentences[0]);
    doc.ViewCentreE = gps.GpsX;
    doc.ViewCentreN = gps.GpsY;
    rec.hooks.ViewChanged();
    rec.RecTypeOk("Dist", "1");
    rec.LogButton_Click();
    ms.clear();
    whole.clear();
    state.ResumeTiming();
    for (const std::string& s : sentences) {
      start = Clock::now();
      rx.Feed(GpsReceiver::Port::MSComm1, s);
      whole.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    state.PauseTiming();
    state.counters["records"] = doc.PointCount;
    state.ResumeTiming();
  }
  std::sort(ms.begin(), ms.end());
  std::sort(whole.begin(), whole.end());
  auto at = [](const std::vector<double>& v, double q) {
    return v.empty() ? 0 : v[static_cast<std::size_t>(q * (v.size() - 1))];
  };
  state.counters["positions"] = static_cast<double>(ms.size());
  state.counters["p50_ms"] = at(ms, 0.5);
  state.counters["p99_ms"] = at(ms, 0.99);
  state.counters["p999_ms"] = at(ms, 0.999);
  state.counters["max_ms"] = ms.empty() ? 0 : ms.back();
  // The whole position, the record (journal and WAY line on disk) included.
  state.counters["whole_p50_ms"] = at(whole, 0.5);
  state.counters["whole_p99_ms"] = at(whole, 0.99);
  state.counters["whole_max_ms"] = whole.empty() ? 0 : whole.back();
  fs::remove_all(home);
}

BENCHMARK(BM_ContinuousRun20Hz)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
