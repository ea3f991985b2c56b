// The wait picture of the main window while a total station measures: the picture
// MsgObserve, the text box OBSBox, and the angle and distance labels. The link keeps
// their contents here; the window shows them through WaitPictureView.
#pragma once

#include <string>

namespace tavik {

struct WaitPicture {
  bool MsgObserve = false;  // the picture is shown
  std::string OBSBox;
  bool OBSBoxRed = false;   // text colour: red after a damaged PENTAX answer, else black
  std::string Label29;      // horizontal angle
  std::string LabelZA;      // zenith angle
  std::string LabelS;       // slope distance
  std::string Label45;      // horizontal distance
  bool CmdSTOPEnabled = false;
  bool RecButtonEnabled = true;
};

class WaitPictureView {
 public:
  virtual ~WaitPictureView() = default;
  virtual void ShowWaitPicture(const WaitPicture& picture) = 0;
};

}  // namespace tavik
