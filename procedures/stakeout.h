// StackOut, "放樣": guides the rod to a target picked on the map. The circle reading
// and the distance to the target are computed, a motorised instrument can be turned
// there, and each observation of the repeating loop tells how far to move along the
// line of sight and how far to turn. The reached position can be recorded.
//
// The MSComm_TOP families talk over the dialog's own port; the SET family stays on
// the main window's MSComm_SET, whose lines the link hands to SetLine while the
// dialog is open (StakeOutActive).
#pragma once

#include <string>

#include "platform/serial.h"
#include "procedures/dialog_conversation.h"
#include "procedures/survey_context.h"

namespace tavik {

class StackOutLogic {
 public:
  StackOutLogic(SurveyContext& ctx, ui::SerialPort* port);
  ~StackOutLogic();

  static constexpr const char* Caption = "放樣";
  // The main window's toolbar: refuses without a station, otherwise closes the main
  // MSComm_TOP and marks the stake-out open. False when refused.
  static bool CanOpen(SurveyContext& ctx);

  // Controls.
  std::string ReadTSCaption = "觀測";
  bool ReadTSEnabled = false, Command18Enabled = false, Command2Enabled = true, Command5Enabled = true;
  std::string Label4, Label5, Label6, Label8, Label9;
  std::string LabelS, Label45, Label29, LabelZA;
  std::string Focus;

  // The target.
  double StakeTargetE = 0, StakeTargetN = 0, StakeTargetH = 0;
  int16_t StakeTargetCode = 0;
  double TargetCircle = 0;
  bool TargetChosen = false;
  double StakeSlope = 0, StakeHz = 0, StakeV = 0;

  // Dialog opening, per family.
  void Load();
  // A click at pixel (X, Y) in mode "STKOUT". False when nothing was chosen.
  bool ChooseTarget(double X, double Y);
  // The robotic turn to TargetCircle (also a click on Label6).
  void Turn();
  void ReadTS();
  void Command18();
  void Command2();
  void Command5();
  // Bytes of the dialog's own port.
  void OnByte(char c);
  // A line of the SET channel, handed on by the link.
  void SetLine(const std::string& line);

 private:
  void Write(const std::string& bytes);
  void WriteSet(const std::string& bytes);
  void StopFamily();
  void TakeShot(const DialogShot& shot);
  void RunGuide(double hz, double v, double slope);
  bool SetTarget(double E, double N, double H, int16_t code, const std::string& name);

  SurveyContext& ctx_;
  ui::SerialPort* port_;
  Family family_;
  DialogConversation conversation_;
};

}  // namespace tavik
