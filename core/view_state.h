// The world rectangle the user sees and the paper laid under it. The transform itself
// lives with the map view; the document only needs to know what is on the screen, so
// that new points and entities go straight into the screen tables that picking walks.
#pragma once

#include <cstdint>
#include <vector>

namespace tavik {

struct View {
  float ViewWidthPixels = 800, ViewHeightPixels = 600;
  double ViewWidthCm = 800 / 32.5, ViewHeightCm = 600 / 32.5;
  double ScreenMinE = 0, ScreenMaxE = 0, ScreenMinN = 0, ScreenMaxN = 0;
  double PaperMinE = 0, PaperMaxE = 0, PaperMinN = 0, PaperMaxN = 0;
  std::vector<double> ViewHistory[3];  // scale, E, N of earlier views
  int16_t ViewHistoryCount = 0;

  // Bounds included on both axes.
  bool InScreen(double E, double N) const {
    return E >= ScreenMinE && E <= ScreenMaxE && N >= ScreenMinN && N <= ScreenMaxN;
  }
  bool InPaper(double E, double N) const {
    return E >= PaperMinE && E <= PaperMaxE && N >= PaperMinN && N <= PaperMaxN;
  }
};

// Pixels of the drawing surface per centimetre of paper.
constexpr double PixelsPerCm = 32.5;

// World metres to pixels of Paper1 and back, at scale 1 : scaleDenominator. Pixels are
// single precision, as the surface takes them.
inline void WorldToPaper(const View& v, double scaleDenominator, double E, double N, float& x, float& y) {
  const double u = scaleDenominator / 100;
  x = static_cast<float>((E - v.PaperMinE) / u * PixelsPerCm);
  y = static_cast<float>((v.PaperMaxN - N) / u * PixelsPerCm);
}
inline void PaperToWorld(const View& v, double scaleDenominator, double x, double y, double& E, double& N) {
  const double u = scaleDenominator / 100;
  E = x / PixelsPerCm * u + v.PaperMinE;
  N = v.PaperMaxN - y / PixelsPerCm * u;
}

}  // namespace tavik
