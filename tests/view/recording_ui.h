// A ViewUi that keeps what the view told the window, for assertions.
#pragma once

#include <map>
#include <string>

#include "view/view_ui.h"

namespace tavik::view {

struct RecordingUi : ViewUi {
  std::map<int, std::string> panels, tips;
  std::map<std::string, std::string> labels;
  std::map<int, bool> enabled, pressed;
  float paperLeft = 0, paperTop = 0;
  int placed = 0, h = -1, v = -1, markerStops = 0;
  void SetStatusPanel(int p, const std::string& t) override { panels[p] = t; }
  void SetLabel(const std::string& n, const std::string& t) override { labels[n] = t; }
  void SetToolbarButton(int i, bool e) override { enabled[i] = e; }
  void SetToolbarPressed(int i, bool p) override { pressed[i] = p; }
  void SetToolbarToolTip(int i, const std::string& t) override { tips[i] = t; }
  void PlacePaper(float l, float t) override { paperLeft = l, paperTop = t, ++placed; }
  void SetScrollBars(int hh, int vv) override { h = hh, v = vv; }
  void StopLiveMarker() override { ++markerStops; }
};

}  // namespace tavik::view
