// Where a world point lies on the map widget of a running program, for tests that click
// or drag on the map. Paper1's picture is three views wide with the view in its middle,
// so the widget position is the paper position less one and a half views.
#pragma once

#include <QPoint>

#include "app/program.h"
#include "core/view_state.h"

inline QPoint PaperPoint(const Program& p, double E, double N) {
  float x, y;
  tavik::WorldToPaper(p.app.view, p.app.doc.ScaleDenominator, E, N, x, y);
  return QPoint(qRound(x - 1.5f * p.app.view.ViewWidthPixels), qRound(y - 1.5f * p.app.view.ViewHeightPixels));
}
