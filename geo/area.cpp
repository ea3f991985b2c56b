#include "geo/area.h"

#include <cmath>

#include "core/numbers.h"
#include "core/text.h"

namespace tavik {

double ShoelaceArea(const double* E, const double* N, int32_t n) {
  if (n < 3) return 0;
  double sum = 0;
  for (int32_t i = 0; i <= n - 3; ++i) sum += (N[i] - N[i + 2]) * E[i + 1];
  sum += (N[n - 2] - N[0]) * E[n - 1];
  sum += (N[n - 1] - N[1]) * E[0];
  return std::fabs(sum) / 2;
}

void AreaRingReset(AreaRingState& ring) {
  ring.AreaRing[0].clear();
  ring.AreaRing[1].clear();
  ring.AreaRingCount = 0;
}

void AreaRingAdd(AreaRingState& ring, double E, double N) {
  ring.AreaRing[0].resize(ring.AreaRingCount);
  ring.AreaRing[1].resize(ring.AreaRingCount);
  ring.AreaRing[0].push_back(E);
  ring.AreaRing[1].push_back(N);
  ++ring.AreaRingCount;
}

double AreaRingClose(const AreaRingState& ring, double& labelE, double& labelN) {
  const int32_t n = ring.AreaRingCount;
  if (n < 3 || ring.AreaRing[0].size() < static_cast<std::size_t>(n) ||
      ring.AreaRing[1].size() < static_cast<std::size_t>(n))
    return 0;
  double sumE = 0, sumN = 0;
  for (int32_t i = 0; i < n; ++i) {
    sumE += ring.AreaRing[0][i];
    sumN += ring.AreaRing[1][i];
  }
  labelE = sumE / n;
  labelN = sumN / n;
  return ShoelaceArea(ring.AreaRing[0].data(), ring.AreaRing[1].data(), n);
}

std::string AreaLabelText(double squareMetres, int16_t areaUnit) {
  switch (areaUnit) {
    case AreaUnitHectares:
      return num::Format(squareMetres * 0.0001, "0.0000公頃");
    case AreaUnitPing:
      return num::Format(squareMetres * 0.3024996, "0.00坪");
    default:
      return num::Format(squareMetres, "0.0000㎡");
  }
}

std::string FormatAreaLabel(ui::Surface& paper, const View& view, double scaleDenominator, int16_t areaUnit,
                            double E, double N, double squareMetres, int16_t flag) {
  const std::string text = AreaLabelText(squareMetres, areaUnit);
  float x = 0, y = 0;
  WorldToPaper(view, scaleDenominator, E, N, x, y);
  const double length = static_cast<double>(text::CharCount(text));
  // The flag is the text routine's highlight: a new label (-1) stands out in blue, any
  // other in the ordinary text colour.
  const ui::Rgb colour = flag != 0 ? ui::MakeRgb(0, 0, 255) : ui::MakeRgb(0, 0, 0);
  paper.Text(static_cast<float>(x - length * 7 / 2), y - 9, text, colour);
  return text;
}

}  // namespace tavik
