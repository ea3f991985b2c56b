// The land split's cut on a parcel of 60 corners, each mode on its own: a full search
// (four stages, every step re-cutting the whole parcel; mode 7 turning every edge again
// at each step), or the single cut of mode 8.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "cadastre/land_split.h"
#include "core/tables.h"
#include "geo/constants.h"
#include "platform/scripted/scripted.h"

namespace {

struct Scene {
  std::filesystem::path home = std::filesystem::temp_directory_path() / "tavik_split_bench";
  tavik::Document doc;
  tavik::View view;
  tavik::WorkFiles work{tavik::AppPaths{(std::filesystem::create_directories(home), home)}};
  tavik::ui::ScriptedDialogs dialogs;
  tavik::cadastre::LandSplit split{doc, view, work, dialogs};

  // A cadastral-looking parcel: 60 corners on a wobbly ring about 60 m across, in grid
  // coordinates of the usual size.
  Scene() {
    constexpr int n = 60;
    const double cE = 250000, cN = 2650000;
    double E[n + 1], N[n + 1];
    for (int i = 0; i <= n; ++i) {
      const double a = (i % n) * tavik::TwoPi / n;
      const double r = 60 + 7 * std::sin(5 * a) + 3 * std::cos(11 * a);
      E[i] = cE + r * std::sin(a), N[i] = cN + r * 0.8 * std::cos(a);
    }
    for (int i = 0; i < n; ++i) {
      doc.SplitBoundaryEdges[0].push_back(E[i]), doc.SplitBoundaryEdges[1].push_back(N[i]);
      doc.SplitBoundaryEdges[2].push_back(E[i + 1]), doc.SplitBoundaryEdges[3].push_back(N[i + 1]);
      doc.SplitBoundaryVertices[0].push_back(E[i]), doc.SplitBoundaryVertices[1].push_back(N[i]);
    }
    doc.SplitBoundaryVertices[0].push_back(E[0]), doc.SplitBoundaryVertices[1].push_back(N[0]);
    doc.SplitStakeCount = n;
    doc.ReferenceMapLoaded = tavik::kTrue;
    work.CreateEmpty();
    tavik::AddEntity(doc, view, work, 1, tavik::KindLine, cE - 80, cN - 80, 0, cE + 50, cN + 90, 0, 0, 0, 0, "");
    split.Open();
    split.SplitTargetArea = split.SplitTotalArea * 0.37;
    split.form.Text2 = "33.5";
  }
  ~Scene() {
    std::error_code ec;
    std::filesystem::remove_all(home, ec);
  }
};

void BM_SplitMode(benchmark::State& state) {
  Scene s;
  const int mode = static_cast<int>(state.range(0));
  for (auto _ : state) {
    switch (mode) {
      case 6:
        s.split.SplitParallel(1);
        break;
      case 7:
        s.split.SplitThroughPointAt(250000 + 5, 2650000 - 60);
        break;
      case 8:
        s.split.SplitTwoPointsAt(250000 - 100, 2650000 - 20, 250000 + 100, 2650000 + 30);
        s.split.SplitTargetArea = s.split.SplitTotalArea * 0.37;
        break;
      default:
        s.split.SplitByDirection(mode);
        break;
    }
    // A copy: the library's DoNotOptimize marks its argument as written, and a double
    // held in a general register comes back as garbage.
    double area = s.split.SplitCutArea;
    benchmark::DoNotOptimize(area);
  }
  // The result beside the time, so a cut that went wrong shows in the figures.
  state.SetLabel("area " + std::to_string(s.split.SplitCutArea) + " of target " +
                 std::to_string(s.split.SplitTargetArea));
}
BENCHMARK(BM_SplitMode)->DenseRange(1, 8)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
