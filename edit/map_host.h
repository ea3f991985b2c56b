// The map-view half of EditHost: pans, zooms, repaints and new marks go to the map view
// through its canvas. The window adds its own half (status texts, popups, cursors, the
// commands of other subsystems) by deriving from this class; tests use it as it stands.
#pragma once

#include <functional>

#include "edit/editor.h"
#include "view/canvas.h"
#include "view/navigation.h"

namespace tavik::edit {

class MapHost : public EditHost {
 public:
  explicit MapHost(view::MapCanvas& canvas) : canvas_(canvas) {}

  void BeginPan(float x, float y) override;
  void MovePan(float anchorX, float anchorY, float x, float y) override;
  void EndPan() override;
  void ZoomWindow(double E1, double N1, double E2, double N2) override;
  void ViewChanged() override;
  void Redraw() override;
  void DrawEntityRow(int32_t row) override;
  void DrawPointRow(int32_t row, bool highlight) override;
  void ViewCommand(const std::string& key) override;
  // Lines drawn into the base map are drawn from then on.
  void BaseMapChanged() override;

  view::MapCanvas& Canvas() { return canvas_; }

  // True when the document's base map is set up to be shown (SwitchBM refuses before);
  // unset, a base map counts as set up.
  std::function<bool()> BaseMapSetUp;

 private:
  view::MapCanvas& canvas_;
  view::PanDrag pan_;
};

}  // namespace tavik::edit
