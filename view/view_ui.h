// What the map view changes outside the picture: status panels, toolbar buttons and
// their tool tips, the scroll bars, the position of Paper1 under Board and the blinking
// live marker. The Qt window implements it; tests record it; the command-line renderer
// takes the silent default, whose every method does nothing.
#pragma once

#include <string>

namespace tavik::view {

class ViewUi {
 public:
  virtual ~ViewUi() = default;
  // Panels of StatusBar1, counted from 1.
  virtual void SetStatusPanel(int /*panel*/, const std::string& /*text*/) {}
  // A named label of the main window ("Label41", "Label42").
  virtual void SetLabel(const std::string& /*name*/, const std::string& /*text*/) {}
  // Buttons of Toolbar1, counted from 1.
  virtual void SetToolbarButton(int /*index*/, bool /*enabled*/) {}
  virtual void SetToolbarPressed(int /*index*/, bool /*pressed*/) {}
  virtual void SetToolbarToolTip(int /*index*/, const std::string& /*text*/) {}
  // Paper1's top-left corner relative to Board, in pixels.
  virtual void PlacePaper(float /*left*/, float /*top*/) {}
  // HScroll1 and VScroll1, 0..100.
  virtual void SetScrollBars(int /*h*/, int /*v*/) {}
  virtual void StopLiveMarker() {}
};

// A shared instance of the silent default.
ViewUi& SilentUi();

// Toolbar1 buttons the view reads or sets.
constexpr int ButtonZoomPrevious = 19;
constexpr int ButtonZoomWindow = 13;
constexpr int ButtonElevations = 27;
constexpr int ButtonGrid = 26;

}  // namespace tavik::view
