// What the GNSS link shows: the status panels of the main window and the sky plot. The
// receiver keeps their contents here as plain values, and the windows draw them through
// GpsPanelView, so that a capture read without any window (tests, tavik-tool) leaves
// exactly the texts the surveyor would have seen.
//
// Colours are 24-bit blue-green-red values, as the panels have always been written.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tavik {

namespace colour {
constexpr uint32_t Red = 0xFF;
constexpr uint32_t Yellow = 0xFFFF;
constexpr uint32_t Green = 0xFF00;
constexpr uint32_t Blue = 0xFF0000;
constexpr uint32_t White = 0xFFFFFF;
constexpr uint32_t Black = 0;
constexpr uint32_t ButtonFace = 0x8000000F;  // the system's button-face colour, not an RGB value
}  // namespace colour

struct PanelLabel {
  std::string Caption;
  uint32_t BackColor = colour::ButtonFace;
  uint32_t ForeColor = colour::Black;
};

// The panels of MainFrm that the GNSS link writes. Label25 is an array of value labels;
// the indices are those of the window: 0 datum, 3 N sigma, 7 E, 8 N, 9 E sigma,
// 10 height sigma, 15 heading, 16 heading sigma.
struct GpsPanels {
  PanelLabel Label6;   // 定位: the fix
  PanelLabel Label8;   // 解算: the solution
  PanelLabel Label11;  // RTK common satellites, or HDOP once a GGA has been seen
  PanelLabel Label12;  // 有效衛星: satellites used
  std::string Label1_1 = "RTK共同衛星";  // the caption of Label11
  bool Label1_1Centred = false;
  std::array<std::string, 17> Label25;
  std::string Label3;   // 距前點: distance from the last record
  std::string Label10;  // 距離: distance from the station
  std::string Label18;  // GPS高程
  std::string Label22;  // 地盤高
  std::array<std::string, 2> Label21;  // the two depth labels; with an IMU, the inertial status
  // The raw line display. Its colours belong to the link: black with white text while
  // receiving, white with black text when stopped.
  std::string OBSBox;
  // The number in the RTK base dialog's Label6: raw lines written to RawPath.
  int32_t RawCount = 0;
};

// The sky plot window (FormSkyPlot). The plot is 333.333 units across with the zenith at
// its centre (166.5, 166.5) and the horizon 150 units out; y grows downwards.
struct SkyPlot {
  static constexpr double Size = 333.333;
  static constexpr double MarkerSize = 20;  // each marker is a circle of 20 by 20 units
  static constexpr const char* ListHeader = " 星號       高度       方位角     雜訊比";

  struct Marker {
    int16_t Prn = 0;
    double X = 0, Y = 0;  // centre; the PRN label stands at (X - 8, Y - 7)
    bool Used = false;    // signal-to-noise not 0: filled green, else white
  };
  struct ListRow {
    int16_t Prn = 0, Elevation = 0, Azimuth = 0, Snr = 0;
    bool Used = false;  // shown on a white background
  };

  std::vector<Marker> Markers;  // the markers named "Shp" 0, 1, ...
  std::vector<ListRow> Lists;   // the four lists beside the plot, one row per marker
  std::string Label4_2;         // 現有衛星: satellites in view, as the GSV says
  std::string Label4_3;         // 可用衛星: green markers
  std::string LabelPDOP, LabelHDOP, LabelVDOP;
};

// Implemented by the main window (the panels) and the sky plot window. Called after
// each received line that changed something; tests and the headless reader use none.
class GpsPanelView {
 public:
  virtual ~GpsPanelView() = default;
  virtual void ShowGpsPanels(const GpsPanels& panels) = 0;
  virtual void ShowSkyPlot(const SkyPlot& plot) = 0;
};

}  // namespace tavik
