#include "instruments/robot_ctrl.h"

#include <cmath>

#include "core/numbers.h"

namespace tavik {

const char* StepCommand(StepButton button) {
  switch (button) {
    case StepButton::DirUp: return "*DHI+0000000VI-0150000";
    case StepButton::DirUp7: return "*DHI+0000000VI-0070000";
    case StepButton::DirDown: return "*DHI+0000000VI+0150000";
    case StepButton::DirDown7: return "*DHI+0000000VI+0070000";
    case StepButton::DirLeft: return "*DHI-0150000VI+0000000";
    case StepButton::DirLeft7: return "*DHI-0070000VI+0000000";
    case StepButton::DirRight: return "*DHI+0150000VI+0000000";
    case StepButton::DirRight7: return "*DHI+0070000VI+0000000";
  }
  return "";
}

RobotCtrl::RobotCtrl(InstrumentState& state, TotalStationLink& link, ui::Dialogs& dialogs, ui::Timer& timer10,
                     ui::SerialPort* gnssPort)
    : state_(state), link_(link), dialogs_(dialogs), timer10_(timer10), gnss_(gnssPort) {
  timer10_.OnTick = [this] { Timer10Tick(); };
}

bool RobotCtrl::Send(const std::string& bytes) {
  bool ok = link_.OpenChannel(Channel::Set) && link_.MSComm_SET && link_.MSComm_SET->PortOpen();
  if (ok) link_.MSComm_SET->Output(bytes);
  if (RefreshPaper) RefreshPaper();
  return ok;
}

void RobotCtrl::CloseGnssPort() {
  if (gnss_ && gnss_->PortOpen()) gnss_->Close();
}

void RobotCtrl::Step(StepButton button) {
  if (!Send(std::string(StepCommand(button)) + "\r")) return;
  // A second step while the first still runs restarts the stop with the new interval.
  timer10_.SetEnabled(false);
  timer10_.SetInterval(2000);
  timer10_.SetEnabled(true);
}

void RobotCtrl::Timer10Tick() {
  timer10_.SetEnabled(false);
  Send("*R\r");
}

void RobotCtrl::EscapeBtm() {
  if (Send("\x12\r\n")) Send("*R\r\n");
}

void RobotCtrl::TurnTo() {
  std::optional<std::string> answer = dialogs_.InputBox(
      "右轉321度12分34秒,請輸入 +3211234\r\n左轉321度12分34秒,請輸入 -3211234\r\n"
      "轉到321度12分34秒,請輸入  3211234\r\n輸入角度=",
      "鏡頭指定轉向", "+0900000");
  if (!answer || answer->empty()) return;
  bool relative = (*answer)[0] == '+' || (*answer)[0] == '-';
  std::string digits = relative ? answer->substr(1) : *answer;
  bool valid = !digits.empty() && digits.size() <= 7;
  for (char c : digits) valid = valid && c >= '0' && c <= '9';
  if (!valid) {
    dialogs_.MsgBox("請輸入七位以內的數字,例如 +3211234", "鏡頭指定轉向");
    return;
  }
  std::string padded = ("0000000" + digits).substr(digits.size());
  std::string command = relative ? "*DHI" + std::string(1, (*answer)[0]) + padded + "VI+0000000\r"
                                 : "*DHA" + padded + "VA0900000\r";
  if (!Send(command)) return;
  timer10_.SetEnabled(false);
  timer10_.SetInterval(7000);
  timer10_.SetEnabled(true);
}

void RobotCtrl::BtmSrchArea() {
  std::optional<std::string> answer =
      dialogs_.InputBox("請輸入搜尋角度(單位:度):\r\n例如範圍25度,則輸入 25", "設定尋標範圍", "25");
  if (!answer || answer->empty()) return;
  std::optional<double> value = num::ParseStrict(*answer);
  if (!value || !std::isfinite(*value)) return;
  double degrees = num::RoundHalfEven(*value);
  if (degrees < 0 || degrees > 360) return;
  Send("*/PA 1,1," + *answer + ".0000,25.0000\r\n");
}

void RobotCtrl::ShotModeClick() {
  struct Row { const char* now; const char* command; const char* next; ui::Rgb colour; };
  static const Row rows[] = {{"連測", "Xc", "快測", 0xff0000},
                             {"快測", "Xa", "精測", 0xff8080},
                             {"精測", "Xe", "連測", 0xffc0c0}};
  for (const Row& r : rows) {
    if (state_.ShotMode != r.now) continue;
    if (Send(std::string(r.command) + "\r\n")) {
      state_.ShotMode = r.next;
      colours.ShotMode = r.colour;
    }
    break;
  }
  CloseGnssPort();
}

void RobotCtrl::PrismModeClick() {
  struct Row { const char* now; const char* command; const char* next; ui::Rgb colour; };
  static const Row rows[] = {{"免稜鏡", "*/PG 0,-30,70", "稜鏡", 0xc000},
                             {"稜鏡", "/C 1", "貼紙", 0xc0ffff},
                             {"貼紙", "*/PG 3,-7,70", "360", 0xc0e0ff},
                             {"360", "/C 2", "免稜鏡", 0xc0c000}};
  for (const Row& r : rows) {
    if (state_.PrismMode != r.now) continue;
    if (Send(std::string(r.command) + "\r\n")) {
      state_.PrismMode = r.next;
      colours.PrismMode = r.colour;
    }
    break;
  }
  CloseGnssPort();
}

void RobotCtrl::LaserOnOffClick() {
  bool off = state_.LaserOnOff == "OFF";
  if (!Send(off ? "*GLON\r\n" : "*GLOFF\r\n")) return;
  state_.LaserOnOff = off ? "ON" : "OFF";
  colours.LaserOnOff = off ? 0xc000 : 0x808080;
}

void RobotCtrl::LaserSWClick() {
  bool guide = state_.LaserSW == "導光";
  if (!Send(guide ? "*/PF,2,2\r\n" : "*/PF,1,2\r\n")) return;
  state_.LaserSW = guide ? "雷射" : "導光";
  colours.LaserSW = guide ? 0xff : 0xffff00;
}

void RobotCtrl::TrkSrhSWClick() {
  bool tracking = state_.TrkSrhSW == "追蹤";
  if (!Send(tracking ? "*/PA 1,0,15.0000,15.0000\r\n" : "*/PA 1,1,15.0000,15.0000\r\n")) return;
  state_.TrkSrhSW = tracking ? "尋標" : "追蹤";
}

void RobotCtrl::TrkSrhOnOffClick() {
  bool off = state_.TrkSrhOnOff == "OFF";
  if (!Send(off ? "*TBON\r" : "*R\r")) return;
  state_.TrkSrhOnOff = off ? "ON" : "OFF";
  colours.TrkSrhOnOff = off ? 0xff00 : 0x808080;
}

}  // namespace tavik
