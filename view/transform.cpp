#include "view/transform.h"

#include <cmath>

#include "core/numbers.h"

namespace tavik::view {

ViewUi& SilentUi() {
  static ViewUi silent;
  return silent;
}

void SetViewportSize(View& view, float widthPixels, float heightPixels) {
  view.ViewWidthPixels = widthPixels;
  view.ViewHeightPixels = heightPixels;
  view.ViewWidthCm = widthPixels / PixelsPerCm;
  view.ViewHeightCm = heightPixels / PixelsPerCm;
}

void ComputeView(const Document& doc, View& view, ViewUi& ui) {
  const double u = doc.ScaleDenominator / 100;
  view.PaperMinE = doc.ViewCentreE - (2 * view.ViewWidthPixels / PixelsPerCm) * u;
  view.PaperMaxE = view.PaperMinE + (4 * view.ViewWidthPixels / PixelsPerCm) * u;
  view.PaperMaxN = doc.ViewCentreN + (2 * view.ViewHeightPixels / PixelsPerCm) * u;
  view.PaperMinN = view.PaperMaxN - (4 * view.ViewHeightPixels / PixelsPerCm) * u;
  ui.PlacePaper(-1.5f * view.ViewWidthPixels, -1.5f * view.ViewHeightPixels);
  ComputeScreen(doc, view);
}

void ComputeScreen(const Document& doc, View& view) {
  const double u = doc.ScaleDenominator / 100;
  view.ScreenMinE = doc.ViewCentreE - u * view.ViewWidthCm / 2;
  view.ScreenMaxE = view.ScreenMinE + u * view.ViewWidthCm;
  view.ScreenMaxN = doc.ViewCentreN + u * view.ViewHeightCm / 2;
  view.ScreenMinN = view.ScreenMaxN - u * view.ViewHeightCm;
}

void FitScale(Document& doc, const View& view, double E1, double N1, double E2, double N2, ViewUi& ui) {
  const double a = std::fabs(E2 - E1) / view.ViewWidthCm * 100;
  const double b = std::fabs(N2 - N1) / view.ViewHeightCm * 100;
  double scale = a > b ? a : b;
  // A NaN corner would poison every later transform: treat it as a single spot.
  if (std::isnan(a) || std::isnan(b) || !(scale >= 1)) scale = 1;
  doc.ScaleDenominator = scale;
  ui.SetStatusPanel(1, "1 :" + num::Plain(scale));
}

static void ShowHistoryCount(const View& view, ViewUi& ui) {
  ui.SetToolbarButton(ButtonZoomPrevious, view.ViewHistoryCount > 0);
  ui.SetToolbarToolTip(ButtonZoomPrevious, "前有" + std::to_string(view.ViewHistoryCount) + "幕");
}

void PushView(View& view, double scale, double E, double N, ViewUi& ui) {
  view.ViewHistory[0].push_back(scale);
  view.ViewHistory[1].push_back(E);
  view.ViewHistory[2].push_back(N);
  // The count is a 16-bit counter; the stack itself keeps growing past it.
  if (view.ViewHistoryCount < INT16_MAX) ++view.ViewHistoryCount;
  ShowHistoryCount(view, ui);
}

bool PopView(Document& doc, View& view, ViewUi& ui) {
  if (view.ViewHistoryCount <= 0 || view.ViewHistory[0].empty()) {
    ShowHistoryCount(view, ui);
    return false;
  }
  doc.ScaleDenominator = view.ViewHistory[0].back();
  doc.ViewCentreE = view.ViewHistory[1].back();
  doc.ViewCentreN = view.ViewHistory[2].back();
  for (auto& column : view.ViewHistory) column.pop_back();
  if (view.ViewHistory[0].size() < static_cast<std::size_t>(view.ViewHistoryCount))
    view.ViewHistoryCount = static_cast<int16_t>(view.ViewHistory[0].size());
  ShowHistoryCount(view, ui);
  return true;
}

void ClearViewHistory(View& view, ViewUi& ui) {
  for (auto& column : view.ViewHistory) column.clear();
  view.ViewHistoryCount = 0;
  ShowHistoryCount(view, ui);
}

void PaperOffsetForCentre(const Document& doc, const View& view, float& left, float& top) {
  const double u = doc.ScaleDenominator / 100;
  left = static_cast<float>(-((doc.ViewCentreE - view.PaperMinE) / u * PixelsPerCm - view.ViewWidthPixels / 2.0));
  top = static_cast<float>(-((view.PaperMaxN - doc.ViewCentreN) / u * PixelsPerCm - view.ViewHeightPixels / 2.0));
}

static int ClampBar(double value) {
  if (!(value > 0)) return 0;
  if (value > 100) return 100;
  return static_cast<int>(num::CLng(value));
}

void ScrollValues(const Document& doc, const View& view, int& h, int& v) {
  const double eighthE = (view.PaperMaxE - view.PaperMinE) / 8;
  const double loE = view.PaperMinE + eighthE, hiE = view.PaperMaxE - eighthE;
  const double eighthN = (view.PaperMaxN - view.PaperMinN) / 8;
  const double loN = view.PaperMinN + eighthN, hiN = view.PaperMaxN - eighthN;
  h = hiE > loE ? ClampBar((doc.ViewCentreE - loE) / (hiE - loE) * 100) : 50;
  v = hiN > loN ? ClampBar(100 - (doc.ViewCentreN - loN) / (hiN - loN) * 100) : 50;
}

double CentreFromHScroll(const View& view, int value) {
  const double eighth = (view.PaperMaxE - view.PaperMinE) / 8;
  const double lo = view.PaperMinE + eighth, hi = view.PaperMaxE - eighth;
  return lo + (hi - lo) / 100 * value;
}

double CentreFromVScroll(const View& view, int value) {
  const double eighth = (view.PaperMaxN - view.PaperMinN) / 8;
  const double lo = view.PaperMinN + eighth, hi = view.PaperMaxN - eighth;
  return lo + (hi - lo) / 100 * (100 - value);
}

std::string ScaleText(double scale) {
  const double whole = num::Int(scale);
  if (!std::isfinite(whole)) return "1 :" + num::Plain(scale);
  return "1 :" + num::Plain(whole);
}

}  // namespace tavik::view
