// The receiving side of the GNSS link: bytes in, GPS state and panels out.
//
// Each port delivers one character per event. A port's line buffer gathers characters
// into a line; the line's first six characters pick its parser from a fixed table; the
// parser fills the GPS state, paints the panels, appends the line to the GOBS log and
// hands one position per sentence to GpsPositionUpdate. No checksum is read, the
// hemisphere letters are ignored (the program works north and east only), and a
// mistyped line is dropped without a word: a field that a strict reading cannot take
// abandons the sentence where it stands, leaving what was already shown.
//
// Three ports feed it: MSComm1 (NovAtel-type and generic receivers, lines start at "$"
// or "#" and end at CR), MSComm_Axis3 (the listen-only kinds "單型GPS" and "Axis3", and
// the depth lines "DT" of a sounder on the same cable) and the Ceastar port (lines end at
// LF). Lines are not length-limited by the protocol, but a run of bytes longer than any
// real sentence is dropped, so that garbage on the line cannot grow memory.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "core/document.h"
#include "geo/datum.h"
#include "instruments/gnss_commands.h"
#include "instruments/gps_panels.h"
#include "instruments/gps_state.h"

namespace tavik {

class GpsReceiver {
 public:
  // A line longer than this is dropped whole: the longest raw logs (#RANGEA with every
  // signal of every constellation) stay well below it.
  static constexpr std::size_t kMaxLine = 256 * 1024;

  enum class Port { MSComm1, MSComm_Axis3, Ceastar };

  // The state, the receiver set-up (kind, sounder), the open document (GOBS path,
  // antenna height, station) and the datum are read at each sentence; none is owned.
  GpsReceiver(GpsState& gps, const GnssSetup& setup, Document& doc, const GpsDatumSettings& datum);

  GpsPanelView* view = nullptr;

  struct Hooks {
    // Any byte on MSComm1 proves the link: the no-data watchdog Timer1(0) is disabled.
    std::function<void()> StopWatchdog;
    // The rest of GpsPositionUpdate (marker, view, stake-out, recording triggers), run
    // after the grid position and its panels are set.
    std::function<void(double Lon, double Lat, double Height)> ContinuePositionUpdate;
    // A whole line of the Ceastar port when the sounder kind is "Ceastar", and the depth
    // sentences "$SDDBT" / "$SMDBT" of that port otherwise.
    std::function<void(const std::string& line)> SounderLine;
    std::function<void(const std::string& line)> DepthSentence;
  } hooks;

  // A headless reader that keeps no GOBS log: appends succeed without a file. Otherwise
  // the log is the open document's GobsPath, and with no document open every sentence
  // that would be logged fails there.
  bool DiscardGobs = false;

  // Receive events, one character each.
  void MSComm1_OnComm(char c);
  void MSComm_Axis3_OnComm(char c);
  void Ceastar_OnComm(char c);
  // A run of received bytes, one event per byte, then one refresh of the windows.
  void Feed(Port port, const char* data, std::size_t size);
  void Feed(Port port, std::string_view bytes) { Feed(port, bytes.data(), bytes.size()); }

  // Dispatch of the line in GpsLine, as the MSComm1 and MSComm_Axis3 handlers do at CR.
  void DispatchCom1();
  void DispatchAxis3();

  // The sentence parsers; all read GpsLine, but POSA_data and GNVTG_data take the line.
  void BESTPOSA_data();
  void DUALANTENNA_data();
  void GPGGA_data();
  void GPGSA_data();
  void GPGSV_data();
  void GPRMC_data();
  void GPGLL_data();
  void INSPOSA_data();
  void PRTKA();
  void POSA_data(const std::string& line);
  void GNVTG_data(const std::string& line);

  // Degrees and metres to the grid and the panels that follow from it; then the hook.
  void GpsPositionUpdate(double Lon, double Lat, double Height);
  // The sky plot from the first Count columns of SatTable and the DOPs.
  void SkyPlotUpdate(int Count);

  const GpsPanels& Panels() const { return panels_; }
  GpsPanels& Panels() { return panels_; }
  const SkyPlot& Sky() const { return sky_; }
  // Shows the panels (and the sky plot when it changed) on the view.
  void Refresh();

  // Stopping reception empties OBSBox.
  void ClearOBSBox();

  // Characters gathered so far on a port, for tests.
  const std::string& LineBuffer(Port port) const;

 private:
  // Runs a parser; a sentence it abandons ends here without a word.
  template <class F> void Run(F&& parser);
  void RawCapture();
  void ShowInOBSBox(const std::string& line);
  void AppendGobs(const std::string& line);  // abandons the sentence when it fails
  void RewriteHead();

  GpsState& gps_;
  const GnssSetup& setup_;
  Document& doc_;
  const GpsDatumSettings& datum_;
  GpsPanels panels_;
  SkyPlot sky_;
  bool skyChanged_ = false;
  bool changed_ = false;

  std::string Com1LineBuffer, Axis3LineBuffer, CeastarLineBuffer;
  // An overlong line is being skipped up to its end.
  bool com1Overflow_ = false, axis3Overflow_ = false, ceastarOverflow_ = false;
};

}  // namespace tavik
