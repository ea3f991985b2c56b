#include "view/extent.h"

#include <algorithm>
#include <cmath>

#include "view/transform.h"

namespace tavik::view {
namespace {

struct Box {
  double minE = StartMinE, maxE = StartMaxE, minN = StartMinN, maxN = StartMaxN;
  bool any = false;
  void Add(double E, double N) {
    if (!std::isfinite(E) || !std::isfinite(N)) return;
    if (E < minE) minE = E;
    if (E > maxE) maxE = E;
    if (N < minN) minN = N;
    if (N > maxN) maxN = N;
    any = true;
  }
};

// The vertices that carry the shape of each kind; a circle by centre and point adds
// its bounding square.
template <class Row>
void AddShape(Box& total, const Row& r) {
  // A row with any unusable coordinate is left out whole, as the repaint skips it.
  Box box;
  switch (r.Kind) {
    case KindPoint:
      box.Add(r.X[0], r.Y[0]);
      break;
    case KindLine:
      box.Add(r.X[0], r.Y[0]);
      box.Add(r.X[1], r.Y[1]);
      break;
    case KindCircle2: {
      const double radius = std::hypot(r.X[1] - r.X[0], r.Y[1] - r.Y[0]);
      if (std::isfinite(radius)) {
        box.Add(r.X[0] - radius, r.Y[0] - radius);
        box.Add(r.X[0] + radius, r.Y[0] + radius);
      }
      break;
    }
    case KindCircle3:
    case KindArc3:
      for (int i = 0; i < 3; ++i) box.Add(r.X[i], r.Y[i]);
      break;
    default:
      return;
  }
  const int used = r.Kind == KindPoint ? 1 : r.Kind == KindLine || r.Kind == KindCircle2 ? 2 : 3;
  for (int i = 0; i < used; ++i)
    if (!std::isfinite(r.X[i]) || !std::isfinite(r.Y[i])) return;
  if (!box.any) return;
  total.Add(box.minE, box.minN);
  total.Add(box.maxE, box.maxN);
}

}  // namespace

bool ExtentOfLiveData(Document& doc) {
  Box box;
  for (const Point& p : doc.PointTable)
    if (!p.Deleted) box.Add(p.E, p.N);
  for (const Entity& e : doc.EntityTable)
    if (!e.Deleted) AddShape(box, e);
  for (int32_t i = 0; i < doc.BaseMapCount && i < static_cast<int32_t>(doc.BaseMapTable.size()); ++i)
    AddShape(box, doc.BaseMapTable[static_cast<std::size_t>(i)]);
  if (!box.any) return false;
  doc.MinE = box.minE;
  doc.MaxE = box.maxE;
  doc.MinN = box.minN;
  doc.MaxN = box.maxN;
  return true;
}

double WholeExtentMargin(double pixels) {
  const double margin = std::max(40.0, pixels / 10);
  return std::min(margin, pixels / 4);
}

bool FitWholeExtent(Document& doc, View& view, ViewUi& ui) {
  if (!ExtentOfLiveData(doc)) return false;
  doc.ViewCentreE = (doc.MinE + doc.MaxE) / 2;
  doc.ViewCentreN = (doc.MinN + doc.MaxN) / 2;
  // Fit the extent into the view less a margin at each side, by widening it about its
  // middle in the ratio of the view to the view less its margins.
  const double w = view.ViewWidthPixels, h = view.ViewHeightPixels;
  const double growE = w > 0 ? w / (w - 2 * WholeExtentMargin(w)) : 1;
  const double growN = h > 0 ? h / (h - 2 * WholeExtentMargin(h)) : 1;
  const double halfE = (doc.MaxE - doc.MinE) / 2 * growE, halfN = (doc.MaxN - doc.MinN) / 2 * growN;
  FitScale(doc, view, doc.ViewCentreE - halfE, doc.ViewCentreN - halfN, doc.ViewCentreE + halfE,
           doc.ViewCentreN + halfN, ui);
  ComputeView(doc, view, ui);
  if (doc.ScaleDenominator == 1) {
    doc.MinE = view.PaperMinE;
    doc.MaxE = view.PaperMaxE;
    doc.MinN = view.PaperMinN;
    doc.MaxN = view.PaperMaxN;
  }
  return true;
}

}  // namespace tavik::view
