#include "instruments/inst_options.h"

#include "core/numbers.h"
#include "core/text.h"
#include "instruments/decoders.h"
#include "instruments/routing.h"

namespace tavik {

const std::vector<InstOptionRow>& InstOptionTable() {
  static const std::vector<InstOptionRow> table = {
      {InstOption::OptHand, "OptHand", "手輸入觀測值", "Keyin"},
      {InstOption::Option4, "Option4", "SOKKIA 機器人系列", "SRX"},
      {InstOption::Option6, "Option6", "SOKKIA SET3110MV(伺服馬達+影像)", "SET3110M/MV"},
      {InstOption::Option9, "Option9", "SOKKIA NET1200", "NET1200"},
      {InstOption::Option14, "Option14", "SOKKIA SET5A", "SET5A"},
      {InstOption::Opt_030R, "Opt_030R", "SOKKIA 030R系列(鮑率1200)", "SET_030R"},
      {InstOption::Option5, "Option5", "TOPCON(n,8,1) / 中海達 / GPI", "GTS22X"},
      {InstOption::Option25, "Option25", "TOPCON(e,7,1)  SOKKIA SET02 /05(e,7,1)", "GTS211D"},
      {InstOption::Option18, "Option18", "Trimble 600/500/400/4000", "Trimble"},
      {InstOption::Option23, "Option23", "Trimble 3600", "Trimble3600"},
      {InstOption::Option22, "Option22", "PENTAX / LINERTEC", "PENTAX"},
      {InstOption::Option2, "Option2", "Nikon Nivo / Trimble TS662", "Nikon_Nivo"},
      {InstOption::Option3, "Option3", "Leica TS02/TS06/TS09/TC500/600/700/800", "FlexLine"},
      {InstOption::Option24, "Option24", "Leica TPS1000/1100/2000/5000", ""},
  };
  return table;
}

std::optional<InstOption> OptionForKind(std::string_view kind) {
  if (kind == "TCA1100" || kind == "TCA1100L" || kind == "TCRA1103plus" || kind == "TCR1103" ||
      kind == "TCR805power")
    return InstOption::Option24;
  if (kind == "Nivo3.M") return InstOption::Option2;
  if (kind == "SET3110M" || kind == "SET3110MV") return InstOption::Option6;
  // The kind in force at a first start is a SET of the 30R series.
  if (kind == "SET30R") return InstOption::Opt_030R;
  if (kind == "DX-103" || kind == "iX" || kind == "SX") return InstOption::Option4;
  for (const InstOptionRow& r : InstOptionTable())
    if (*r.kind && kind == r.kind) return r.id;
  return std::nullopt;
}

bool KindHasRobotPanel(std::string_view kind) {
  std::string k = text::Trim(kind);
  if (k == "SET3110M" || k == "SET3110MV") return true;
  std::string two = k.substr(0, 2), three = k.substr(0, 3);
  return two == "iX" || two == "DX" || two == "SX" || three == "SRX" || three == "NET";
}

std::vector<int> InstOptionsLogic::PortChoices() { return {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}; }
std::vector<int> InstOptionsLogic::SpeedChoices() { return {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200}; }

InstOptionsLogic::InstOptionsLogic(InstrumentState& state, ui::Dialogs& dialogs, InstOptionsHost& host,
                                   ui::SerialPort& MSComm1, ui::Timer& Timer1, ui::Timer& Timer2,
                                   std::string* sounderKind)
    : state_(state), dialogs_(dialogs), host_(host), port_(MSComm1), timer1_(Timer1), timer2_(Timer2),
      sounderKind_(sounderKind) {
  timer1_.OnTick = [this] { Timer1Tick(); };
  timer2_.OnTick = [this] { Timer2Tick(); };
  port_.OnByte = [this](char c) { OnByte(c); };
}

void InstOptionsLogic::Load() {
  savedMode_ = state_.MeasureMode;
  savedKind_ = state_.InstrumentKind;
  if (sounderKind_) savedSounder_ = *sounderKind_;
  if (gnss) savedReceiver_ = gnss->GpsReceiverKind;
  marked = OptionForKind(state_.InstrumentKind);
  Opt3D = state_.MapType == 1;
  Opt2D = state_.MapType == 2;
  unloaded = false;
  focusOK = false;
}

bool InstOptionsLogic::OpenPort(const std::string& settings) {
  if (port_.PortOpen()) return true;
  port_.CommPort = state_.PortNumber;
  port_.Settings = settings;
  return port_.Open();
}

void InstOptionsLogic::Write(const std::string& bytes) {
  if (port_.PortOpen()) port_.Output(bytes);
}

void InstOptionsLogic::ReopenLeica() {
  if (port_.PortOpen()) port_.Close();
  OpenPort(std::to_string(state_.BaudRate) + ",n,8,1");
}

void InstOptionsLogic::PickOption(InstOption option) {
  state_.MeasureMode = "TS";
  marked = option;
  switch (option) {
    case InstOption::Option4:
      if (state_.InstrumentKind.empty()) state_.InstrumentKind = "SRX";
      return;
    case InstOption::Opt_030R:
      state_.InstrumentKind = "SET_030R";
      state_.BaudRate = 1200;
      state_.InstrumentSerial.clear();
      return;
    case InstOption::Option3:
      state_.InstrumentKind = "FlexLine";
      ReopenLeica();
      Write("GET/I/WI12\r\n");
      return;
    case InstOption::Option24:
      ReopenLeica();
      Write("SET/161/7\r\n");
      Write("GET/I/WI12\r\n");
      Write("GET/I/WI13\r\n");
      return;
    default:
      for (const InstOptionRow& r : InstOptionTable())
        if (r.id == option) state_.InstrumentKind = r.kind;
      return;
  }
}

void InstOptionsLogic::Combo4Click(int port) { state_.PortNumber = static_cast<int16_t>(port); }
void InstOptionsLogic::Combo5Click(int baud) { state_.BaudRate = baud; }

void InstOptionsLogic::Opt2DClick() {
  Opt2D = true;
  Opt3D = false;
  state_.MapType = 2;
  host_.ShowMapType("平面圖");
}

void InstOptionsLogic::Opt3DClick() {
  Opt3D = true;
  Opt2D = false;
  state_.MapType = 1;
  host_.ShowMapType("地形圖");
}

void InstOptionsLogic::Command2Click() {
  dialogs_.MsgBox("地形圖(3D測量),測站需要輸入儀器高,測點需要輸入覘標高.\r\n平面圖(2D測量,沒有Z值),不需儀器高及覘標高.");
}

void InstOptionsLogic::Command1Click() {
  probes_ = 0;
  IdBuffer.clear();
  timer2_.SetInterval(kProbeInterval);
  timer2_.SetEnabled(true);
}

void InstOptionsLogic::Timer2Tick() {
  timer2_.SetEnabled(false);
  if (probes_ == 0) {
    state_.InstrumentKind = "SET";
    OpenPort(std::to_string(state_.BaudRate) + ",n,8,1");
    Write("A\r\n");
  } else {
    ProbeStep();
  }
  // Keep probing, SOKKIA and TOPCON in turn, until an answer line stops the timer.
  if (++probes_ < kProbeCount) timer2_.SetEnabled(true);
}

void InstOptionsLogic::ProbeStep() {
  probeToggle_ = !probeToggle_;
  OpenPort(std::to_string(state_.BaudRate) + ",n,8,1");
  if (!probeToggle_) {
    host_.ShowOBSBox("自動偵測SOKKIA儀器中...");
    state_.InstrumentKind = "SET";
    Write("A\r\n");
  } else {
    host_.ShowOBSBox("自動偵測TOPCON儀器中...");
    state_.InstrumentKind = "GTS22X";
    Write("Z32091\x03\r\n");
  }
}

void InstOptionsLogic::Timer1Tick() {
  timer1_.SetEnabled(false);
  OpenPort(std::to_string(state_.BaudRate) + ",n,8,1");
  Write("*PON\r\n");
}

void InstOptionsLogic::Command3Click() {
  timer1_.SetInterval(kPowerDelay);
  timer1_.SetEnabled(true);
}

void InstOptionsLogic::Command5Click() {
  OpenPort(std::to_string(state_.BaudRate) + ",n,8,1");
  Write("*POFF\r\n");
}

void InstOptionsLogic::Command4Click() {
  OpenPort(std::to_string(state_.BaudRate) + ",n,8,1");
  Write("*Z\r\n");
}

void InstOptionsLogic::OnByte(char c) {
  if (c == '\x06') return;
  if (IdBuffer.size() >= 1024) IdBuffer.clear();
  IdBuffer.push_back(c);
  if (c != '\n') return;
  timer2_.SetEnabled(false);
  std::string head = IdBuffer.substr(0, 3);
  if (head == "*12") {
    state_.InstrumentSerial = num::Plain(num::ParseLenient(Right(IdBuffer, 16)));
    state_.InstrumentIdentified = -1;
    IdBuffer.clear();
  } else if (head == "*13") {
    std::size_t p = IdBuffer.find('T', 3);
    if (p == std::string::npos) return;
    std::string rest = IdBuffer.substr(p);
    std::size_t trimmed = text::Trim(rest).size();
    state_.InstrumentKind = rest.substr(0, trimmed > 3 ? trimmed - 3 : 0);
    const std::string& k = state_.InstrumentKind;
    if (k != "TCR805power" && k != "FlexLine" && k != "TCA1100" && k != "TCA1100L" && k != "TCRA1103plus" &&
        k != "TCR1103")
      return;
    state_.InstrumentIdentified = -1;
    IdBuffer.clear();
    port_.Close();
  } else if (IdBuffer.substr(0, 2) == "OK") {
    IdBuffer.clear();
    return;
  } else {
    std::vector<std::string> f = SplitAt(Mid(IdBuffer, 3), ',');
    IdBuffer.clear();
    if (f.size() < 2) return;
    state_.MeasureMode = "TS";
    state_.InstrumentKind = text::Trim(f[0]);
    state_.InstrumentSerial = text::Trim(f[1]);
    state_.InstrumentIdentified = -1;
  }
  Identified();
}

void InstOptionsLogic::Identified() {
  Label6_1 = "型號" + state_.InstrumentKind + " 序號" + state_.InstrumentSerial;
  marked = OptionForKind(state_.InstrumentKind);
  host_.ShowInstrumentLabels(state_.InstrumentKind, state_.InstrumentSerial);
  focusOK = true;
  timer1_.SetEnabled(false);
}

void InstOptionsLogic::Unload() {
  timer1_.SetEnabled(false);
  timer2_.SetEnabled(false);
  if (port_.PortOpen()) port_.Close();
  unloaded = true;
}

void InstOptionsLogic::cmdOKClick() {
  if (state_.MeasureMode == "TS") {
    if (!Opt2D && !Opt3D) {
      dialogs_.MsgBox("請指定2D / 3D", "2D/3D");
      state_.MapType = 2;
      Opt2D = true;
    } else {
      state_.MapType = Opt3D ? 1 : 2;
    }
    host_.ShowMapType(state_.MapType == 1 ? "地形圖" : "平面圖");
    host_.ShowMeasureMode("TS");
    host_.ShowRobotPanel(KindHasRobotPanel(state_.InstrumentKind));
    if (state_.InstrumentKind == "GTS211D" || state_.InstrumentKind == "GTS22X") {
      if (port_.PortOpen()) port_.Close();
      if (OpenPort(SettingsText(state_.InstrumentKind, state_.BaudRate))) {
        Write("Z32091\x03\r\n");
        port_.Close();
      }
    }
    host_.ShowInstrumentLabels(state_.InstrumentKind, state_.InstrumentSerial);
  } else if (state_.MeasureMode == "GPS") {
    // On eGPS the receiver's ports swap roles; the surveyor must rewire before connecting.
    if (gnss && gnss->GpsReceiverKind == "DL-4" && gnss->DiffEgps)
      dialogs_.MsgBox("您選擇RadianIS + eGPS,儀器的COM2接電腦,用COM1接手機", "注意com port設定");
    host_.ShowMeasureMode("GPS");
    host_.ShowInstrumentLabels(state_.InstrumentKind, state_.InstrumentSerial);
  }
  Unload();
}

void InstOptionsLogic::PickReceiver(const std::string& kind) {
  if (!gnss) return;
  state_.MeasureMode = "GPS";
  state_.InstrumentKind = kind;
  gnss->GpsReceiverKind = kind;
  marked.reset();
}

void InstOptionsLogic::PickDifferential(Differential d) {
  if (!gnss) return;
  gnss->DiffSbas = d == Differential::Sbas ? -1 : 0;
  gnss->DiffEgps = d == Differential::Egps ? -1 : 0;
  gnss->DiffRtk = d == Differential::Rtk ? -1 : 0;
}

std::vector<std::string> InstOptionsLogic::CorrectionFormats() { return {"RTCA", "RTCM", "RTCMV3", "CMR", "CMR+"}; }

void InstOptionsLogic::cmdCancelClick() {
  state_.MeasureMode = savedMode_;
  state_.InstrumentKind = savedKind_;
  if (sounderKind_) *sounderKind_ = savedSounder_;
  if (gnss) gnss->GpsReceiverKind = savedReceiver_;
  host_.ShowMeasureMode(state_.MeasureMode);
  Unload();
}

}  // namespace tavik
