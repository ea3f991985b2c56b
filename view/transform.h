// The paper model of the map view. The screen is a sheet of drawing paper at 32.5
// pixels to the centimetre; the view is a scale denominator and a centre. Paper1, the
// picture, is four viewports wide and high with the viewport at its middle, so a pan
// only moves Paper1 under Board until the pan ends.
#pragma once

#include "core/document.h"
#include "core/view_state.h"
#include "view/view_ui.h"

namespace tavik::view {

// Paper and screen rectangles from ScaleDenominator and the view centre; places Paper1
// at -1.5 viewports and computes the screen rectangle.
void ComputeView(const Document& doc, View& view, ViewUi& ui = SilentUi());
void ComputeScreen(const Document& doc, View& view);

// Sets the size of the visible area (Board) in pixels and its size in paper centimetres.
void SetViewportSize(View& view, float widthPixels, float heightPixels);

// The scale at which the rectangle spanned by the two corners fills the viewport; never
// below 1. Shows the scale in status panel 1.
void FitScale(Document& doc, const View& view, double E1, double N1, double E2, double N2,
              ViewUi& ui = SilentUi());

// Appends a view to the history and tells Toolbar1 button 19 how many are kept.
void PushView(View& view, double scale, double E, double N, ViewUi& ui = SilentUi());
// Takes the last view back into doc; false when the history is empty.
bool PopView(Document& doc, View& view, ViewUi& ui = SilentUi());
// Empties the history (New, Open, Save).
void ClearViewHistory(View& view, ViewUi& ui = SilentUi());

// Pixels of Paper1 for world coordinates at the document's scale, and back.
inline void WorldToPaper(const Document& doc, const View& view, double E, double N, float& x, float& y) {
  tavik::WorldToPaper(view, doc.ScaleDenominator, E, N, x, y);
}
inline void PaperToWorld(const Document& doc, const View& view, double x, double y, double& E, double& N) {
  tavik::PaperToWorld(view, doc.ScaleDenominator, x, y, E, N);
}
inline bool InPaper(const View& view, double E, double N) { return view.InPaper(E, N); }
inline bool InScreen(const View& view, double E, double N) { return view.InScreen(E, N); }

// The position of Paper1 under Board that shows the present centre without a repaint.
void PaperOffsetForCentre(const Document& doc, const View& view, float& left, float& top);

// Scroll bar values for the present centre, and the centre for a bar value.
void ScrollValues(const Document& doc, const View& view, int& h, int& v);
double CentreFromHScroll(const View& view, int value);
double CentreFromVScroll(const View& view, int value);

// The text of the scale in status panel 1: "1 :" and the whole scale.
std::string ScaleText(double scale);

}  // namespace tavik::view
