// Everything a survey command works on, gathered by reference: the document and its
// view, the journal, the instrument link state, the pipeline's own state, the dialogs
// and the main window. The application object builds one; tests build one over fresh
// state and scripted ends.
#pragma once

#include <functional>
#include <string>

#include "core/document.h"
#include "core/view_state.h"
#include "core/workfiles.h"
#include "instruments/instrument_state.h"
#include "instruments/routing.h"
#include "platform/dialogs.h"
#include "procedures/survey_state.h"
#include "procedures/survey_window.h"

namespace tavik {

struct SurveyContext {
  Document& doc;
  View& view;
  WorkFiles& work;
  InstrumentState& inst;
  SurveyState& survey;
  ui::Dialogs& dialogs;
  SurveyWindow& window;
  // Present date and time as the logs write it; tests fix it.
  std::function<std::string()> now;
  // The main window's total-station link, as the survey commands use it.
  struct LinkActions {
    // The shot request of the chosen family (StartShotTop or StartShotSet).
    std::function<void()> StartShot;
    // A request other than a shot on the family's channel (the angle-only read...).
    std::function<bool(Request)> Send;
    // Raw bytes on a main-window channel, opening it first when closed.
    std::function<bool(Channel, const std::string&)> Write;
    std::function<void(Channel)> Close;
    // Timer10: a one-shot that repeats a request to a robotic instrument ("*R").
    std::function<void(int milliseconds)> StartTimer10;
    // The main window's autosave timer, stopped while a Trimble streams.
    std::function<void(bool enabled)> EnableTimer5;
    // The horizontal reading as the link's label Label29 shows it.
    std::function<std::string()> Label29;
    // Adds text to what OBSBox shows, in red when `red` (else black).
    std::function<void(const std::string& text, bool red)> AppendOBSBox;
  } link;
};

}  // namespace tavik
