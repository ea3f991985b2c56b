// A survey context over fresh state: an open document in a temporary folder, scripted
// dialogs, a window that records what the commands asked of it, and a link whose
// writes are recorded per channel.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/record_text.h"
#include "core/tables.h"
#include "core/text.h"
#include "core/temp_home.h"
#include "geo/constants.h"
#include "platform/scripted/scripted.h"
#include "platform/serial.h"
#include "procedures/keyed_observation.h"
#include "procedures/survey_context.h"

namespace tavik::testing {

class RecordingWindow : public SurveyWindow {
 public:
  std::map<std::string, std::string> texts;
  std::map<std::string, bool> enabled;
  std::vector<std::string> calls;  // drawing and view calls, in order
  std::deque<int16_t> cadastralChoices;  // empty: 2 (only the point)
  std::deque<std::string> cadastralNames;
  // Keyed dialog answers: hz, v, slope texts; empty: cancelled.
  std::deque<std::vector<std::string>> keyed;
  InstrumentState* inst = nullptr;
  int linkCount = 0;

  void SetText(const std::string& c, const std::string& t) override { texts[c] = t; }
  void SetEnabled(const std::string& c, bool e) override { enabled[c] = e; }
  void DrawPointMark(int32_t n, double, double) override { calls.push_back("mark " + std::to_string(n)); }
  void DrawHeightText(double, double, const std::string& t) override { calls.push_back("height " + t); }
  void DrawSymbol(int16_t code, double, double, double, const std::string& name) override {
    calls.push_back("symbol " + std::to_string(code) + " " + name);
  }
  void DrawStationMark(double, double) override { calls.push_back("station"); }
  void DrawTargetMark(double, double, int16_t code, const std::string& name) override {
    calls.push_back("target " + std::to_string(code) + " " + name);
  }
  void EraseTargetMark() override { calls.push_back("erase target"); }
  void FitViewTo(double, double, double, double, double factor) override {
    calls.push_back("fit " + std::to_string(factor));
  }
  void FitViewToExtent() override { calls.push_back("fit extent"); }
  void RedrawAll() override { calls.push_back("redraw"); }
  void Refresh() override {}
  void StartBlink(double, double) override { calls.push_back("blink"); }
  void StopBlink() override { calls.push_back("unblink"); }
  void LinkPoints(double, double, double, double, double, double) override { ++linkCount; }
  void SafetySave() override {}
  int16_t ShowCadastralDialog(std::string& name) override {
    int16_t c = 2;
    if (!cadastralChoices.empty()) {
      c = cadastralChoices.front();
      cadastralChoices.pop_front();
    }
    if (c == 1 && !cadastralNames.empty()) {
      name = cadastralNames.front();
      cadastralNames.pop_front();
    }
    return c;
  }
  void UnloadCadastralDialog() override {}
  bool ShowKeyedObservation() override;
};

inline bool RecordingWindow::ShowKeyedObservation() {
  if (keyed.empty()) return false;
  const std::vector<std::string> k = keyed.front();
  keyed.pop_front();
  return !KeyinObservation(*inst, k[0], k[1], k[2]).has_value();
}

// Readings an instrument on (sE, sN, sH) with the given orientation constant would give
// for a target: circle reading, zenith (face one), slope distance.
struct Reading {
  double hz, v, slope;
};
inline Reading ReadingTo(double sE, double sN, double sH, double ih, double oc, double tE, double tN, double tH,
                         double th) {
  const double dE = tE - sE, dN = tN - sN, dH = (tH + th) - (sH + ih);
  double az = std::atan2(dE, dN);
  if (az < 0) az += 2 * Pi;
  double hz = az - oc;
  while (hz < 0) hz += 2 * Pi;
  while (hz >= 2 * Pi) hz -= 2 * Pi;
  const double hd = std::sqrt(dE * dE + dN * dN);
  return {hz, Pi / 2 - std::atan2(dH, hd), std::sqrt(hd * hd + dH * dH)};
}

// Writes of the link, per channel.
struct RecordedLink {
  std::string set, top;
  std::string obsBox;  // what the dialogs added to OBSBox
  bool obsBoxRed = false;
  int shots = 0;
  std::vector<Request> requests;
};

struct SurveyFixture : public ::testing::Test {
  TempHome home;
  Document doc;
  View view;
  WorkFiles work{AppPaths{home.path}};
  InstrumentState inst;
  SurveyState survey;
  ui::ScriptedDialogs dialogs;
  RecordingWindow window;
  RecordedLink link;
  SurveyContext ctx{doc, view, work, inst, survey, dialogs, window, [] { return std::string("2026/11/21 08:00:00"); }, {}};

  SurveyFixture() {
    window.inst = &inst;
    SetDocumentName(doc, (home.path / "field").string());
    work.CreateEmpty();
    view.ScreenMinE = view.ScreenMinN = view.PaperMinE = 0;
    view.ScreenMaxE = view.ScreenMaxN = view.PaperMaxN = 1e7;
    ctx.link.StartShot = [this] { ++link.shots; };
    ctx.link.Send = [this](Request r) { link.requests.push_back(r); return true; };
    ctx.link.Write = [this](Channel c, const std::string& b) {
      (c == Channel::Set ? link.set : link.top) += b;
      return true;
    };
    ctx.link.Close = [](Channel) {};
    ctx.link.AppendOBSBox = [this](const std::string& t, bool red) {
      link.obsBox += t;
      link.obsBoxRed = red;
    };
  }

  std::string File(const std::string& ext) { return ReadBytes(doc.DocumentName + ext); }
  // The lines of a log, without their CR LF, as UTF-8.
  std::vector<std::string> Lines(const std::string& ext) {
    const std::string bytes = File(ext);
    std::vector<std::string> out;
    for (std::string_view l : rec::SplitLines(bytes)) out.push_back(text::FromCp950(l));
    return out;
  }
  void SetStation(double E, double N, double H, double oc) {
    doc.StationName = "S1";
    doc.StationE = E;
    doc.StationN = N;
    doc.StationH = H;
    doc.OrientationConstant = oc;
    doc.StationSet = kTrue;
  }
  // The instrument on (1000, 2000, 50), 1.5 high, its circle zero at azimuth trueOc,
  // reads the target (tE, tN, tH) under a prism th high. The packed readings only go
  // to the logs.
  double trueOc = 0;
  void Deliver(double tE, double tN, double tH, double th) {
    const Reading r = ReadingTo(1000, 2000, 50, 1.5, trueOc, tE, tN, tH, th);
    inst.ObsHz = r.hz;
    inst.ObsV = r.v;
    inst.ObsSlope = r.slope;
    inst.ObsHzRaw = 1234512;
    inst.ObsVRaw = 901530;
  }
  void AddControl(const std::string& name, double E, double N, double H, int16_t code = 113) {
    AddEntity(doc, view, work, code, E, N, H, name);
  }
};

}  // namespace tavik::testing
