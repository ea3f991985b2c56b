// The resection and stake-out dialogs talk to the instrument over a port of their own.
// The answers are those of the main link and are read by the same decoders; what
// differs is where the values go. This gathers a dialog port's bytes into answers and
// turns each into a shot or an event the dialog acts on.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instruments/framer.h"
#include "instruments/routing.h"

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
    Error,        // the instrument reported a problem: Title, Text
  } kind = None;
  DialogShot shot;
  std::string Title, Text;
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

// Decodes one complete SET line for a dialog (also used for the lines the main link
// hands to the stake-out dialog).
DialogAnswer DecodeSetForDialog(const std::string& line);

}  // namespace tavik
