// ResectDlg, "後方交會": the station from observations of two known points, over the
// dialog's own port. An answer passes the main link's tests (the face-two reminder,
// the horizontal-distance test) and then goes into the slot being measured; Command2
// solves, OKButton stores the station. The solver runs on copies of the slots, so a
// re-solve after a new shot of one point starts again from the readings as received;
// the station's records are written from the solved copies.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/serial.h"
#include "procedures/dialog_conversation.h"
#include "procedures/resection.h"
#include "procedures/survey_context.h"

namespace tavik {

class ResectDlgLogic {
 public:
  // `port`: the dialog's own MSComm_TOP (for the MSComm_TOP families) or MSComm1.
  ResectDlgLogic(SurveyContext& ctx, ui::SerialPort* port);
  ~ResectDlgLogic();

  static constexpr const char* Caption = "後方交會";

  std::vector<std::string> Combo1, Combo2;
  ResectSlot slot[2];
  std::string StationNameText;          // the station's name
  std::string InstrumentHeightText;     // instrument height
  std::string TargetText[2];            // target height on each point
  std::string StatusLabel[2];           // "OK" once a slot has its values
  std::string HzLabel[2], VLabel[2];    // readings, degrees "-" minutes "-" seconds
  std::string HeightNote[2];            // "的高程為0"
  std::string DistanceLabel;            // between the two points
  std::string Option1, Option2, LabelBsz, LabelBsx, LabelBsy;
  std::string Label6, Label17;          // angle closure, coordinate closure
  bool Label18Visible = false;
  std::string Command2Caption = "解算測站座標";
  bool Command2Enabled = true, OKEnabled = false;

  // Combo1 / Combo2 (index 0 / 1). False when refused.
  bool Choose(int index, const std::string& name);
  // A click in mode "RESECT_BS" for point `index`.
  bool Pick(int index, double X, double Y);
  // Command3 / Command6.
  void Measure(int index);
  // Bytes of the dialog's port.
  void OnByte(char c);
  // Command2.
  void Solve();
  // True when the station was stored and the dialog is to close.
  bool OKButton();
  const ResectResult& Result() const { return result_; }

 private:
  void Write(const std::string& bytes);
  void Take(const DialogShot& shot);
  bool PassesLinkTests(const DialogShot& shot);

  SurveyContext& ctx_;
  ui::SerialPort* port_;
  Family family_;
  DialogConversation conversation_;
  int measuring_ = -1;       // the slot whose flag is set
  bool topconAsked_ = false; // "Z32091" sent, "C067" follows its acknowledge
  bool solved_ = false;
  ResectResult result_;
  ResectSlot solvedSlot_[2];  // the slots as the last solve left them
};

}  // namespace tavik
