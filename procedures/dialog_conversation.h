// The resection and stake-out dialogs talk to the instrument over a port of their own.
// The answers are those of the main link and are read by the same decoders; what
// differs is where the values go. An answer of the families that test the distance
// before going on (Leica, Trimble, Trimble 3600, PENTAX) is dropped without a word when
// it carries none, as the main link drops it. This gathers a dialog port's bytes into answers and
// turns each into a shot or an event the dialog acts on.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/framer.h"
#include "instruments/routing.h"
#include "procedures/survey_context.h"

namespace tavik {

struct DialogShot {
  double Slope = 0;            // metres; 0 when the answer carried none
  int32_t HzRaw = 0, VRaw = 0; // DDDMMSS
  double Hz = 0, V = 0;        // radians
  std::string HzText, VText;   // degrees "-" minutes "-" seconds
};

struct DialogAnswer {
  enum Kind {
    None,         // nothing complete yet, or a line to drop
    Acknowledge,  // Topcon's acknowledge byte
    Shot,         // an observation
    Tracking,     // SET "Ee" line: only the zenith (VRaw)
    Error,        // the instrument reported a problem, see below
  } kind = None;
  DialogShot shot;
  // An error: a message box Title / Text when Boxed, and Appended added to the main
  // window's OBSBox, in red when Red (the damaged PENTAX answer, which has no box).
  std::string Title, Text, Appended;
  bool Boxed = true, Red = false;
  // Bytes the dialog owes the instrument at once (Topcon's acknowledge of an answer).
  std::string Reply;
};

class DialogConversation {
 public:
  explicit DialogConversation(Family family) : family_(family) {}
  DialogAnswer Feed(char c);
  void Clear() { framer_.Clear(); }
  Family family() const { return family_; }

 private:
  Family family_;
  LineFramer framer_;
};

// Shows an error answer as the main link would: the box, then the text added to
// OBSBox.
void ShowAnswerError(SurveyContext& ctx, const DialogAnswer& a);

// Decodes one complete SET line for a dialog (also used for the lines the main link
// hands to the stake-out dialog).
DialogAnswer DecodeSetForDialog(const std::string& line);

}  // namespace tavik
