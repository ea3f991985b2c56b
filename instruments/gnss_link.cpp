#include "instruments/gnss_link.h"

namespace tavik {

GnssLink::GnssLink(GnssSetup& setup, ui::Dialogs& dialogs, GnssLinkView& view, ui::Timer& Timer1_0)
    : setup_(setup), dialogs_(dialogs), view_(view), timer_(Timer1_0) {
  timer_.SetInterval(kWatchdogInterval);
  timer_.OnTick = [this] { Timer1Tick(); };
}

void GnssLink::Toolbar1Click(const std::string& key) {
  if (key == "連接COM1") Connect();
  else if (key == "接收資料") Receive();
  else if (key == "停止接收") Stop();
}

void GnssLink::Connect() {
  if (!DocumentOpen || !DocumentOpen()) return;
  setup_.GpsStopped = 0;
  if (setup_.GpsReceiverKind == "DL-4" && setup_.DiffEgps) {
    EgpsConnect();
    return;
  }
  // This sounder carries the GGA lines on its own port; the receiver is not set up.
  if (setup_.SounderKind == "CEEECHO") {
    StartSounder();
    return;
  }
  CmdPRTKA_Click();
}

bool GnssLink::OpenReceiverPort(ui::SerialPort* port) {
  if (!port) return false;
  if (port->PortOpen()) return true;
  port->CommPort = setup_.CommPortNumber;
  port->Settings = GnssPortSettings(setup_.CommBaud);
  return port->Open();
}

bool GnssLink::Send(const std::vector<std::string>& commands) {
  for (const std::string& c : commands) {
    // A port that went away in the middle of the burst is a write error.
    if (!MSComm1 || !MSComm1->PortOpen()) return false;
    MSComm1->Output(c + "\r\n");
  }
  return true;
}

void GnssLink::CmdPRTKA_Click() {
  const bool listenOnly = ListenOnlyKind(setup_.GpsReceiverKind);
  const std::string datum = GpsDatum ? GpsDatum() : "TWD97";
  if (listenOnly) {
    if (!OpenReceiverPort(MSComm_Axis3)) {
      dialogs_.MsgBox("通訊埠指定錯誤3");
      return;
    }
  } else if (!OpenReceiverPort(MSComm1) || !Send(ConnectSequence(setup_, datum))) {
    dialogs_.MsgBox("通訊埠指定錯誤3");
    return;
  }
  if (!listenOnly && !setup_.DiffEgps) timer_.SetEnabled(true);
  Finish(true);
}

void GnssLink::Finish(bool startSounders) {
  view_.EnableToolbarKey("停止接收", true);
  if (!ListenOnlyKind(setup_.GpsReceiverKind)) view_.EnableToolbarKey("接收資料", true);
  view_.SetOBSBoxReceiving(true);
  view_.ShowLabel25_0(GpsDatum ? GpsDatum() : "TWD97");
  if (!startSounders) return;
  const std::string& s = setup_.SounderKind;
  if (s == "CEEECHO" || s == "Ceastar" || s == "HydroLite") StartSounder();
  else if (s == "HydroBox") StartHydroBox();
  else if (s == "E Sea Sound 206") StartESeaSound();
  if (setup_.MotionSensorKind == "TSS_DMS3") StartMotionSensor();
}

void GnssLink::EgpsConnect() {
  if (!OpenReceiverPort(MSComm1) || !Send(EgpsConnectSequence(setup_))) {
    dialogs_.MsgBox("通訊埠指定錯誤1");
    return;
  }
  Finish(false);
  dialogs_.MsgBox("請稍待..(等收到修正訊號後,才按[接收]鈕)", "步驟提示");
}

void GnssLink::EgpsReceive() {
  const std::string datum = GpsDatum ? GpsDatum() : "TWD97";
  if (!OpenReceiverPort(MSComm1) || !Send(EgpsReceiveSequence(setup_, datum))) {
    dialogs_.MsgBox("通訊埠指定錯誤2");
    return;
  }
  Finish(true);
}

void GnssLink::Receive() {
  if (setup_.GpsReceiverKind == "DL-4" && setup_.DiffEgps) {
    EgpsReceive();
    return;
  }
  setup_.GpsStopped = 0;
  // The port keeps the number and settings of the last connect.
  if (MSComm1 && !MSComm1->PortOpen()) MSComm1->Open();
  view_.EnableToolbarKey("停止接收", true);
  view_.SetOBSBoxReceiving(true);
}

void GnssLink::Stop() {
  // Nothing is sent: the receiver goes on logging to a closed port.
  if (ContinuousRecording && StopContinuousRecording && ContinuousRecording()) StopContinuousRecording();
  timer_.SetEnabled(false);
  ui::SerialPort* port = ListenOnlyKind(setup_.GpsReceiverKind) ? MSComm_Axis3 : MSComm1;
  if (port && port->PortOpen()) port->Close();
  setup_.GpsStopped = -1;
  if (StopReceptionMarker) StopReceptionMarker();
  view_.EnableToolbarKey("停止接收", false);
  view_.SetOBSBoxReceiving(false);
  view_.ClearOBSBox();
}

bool GnssLink::Receiving() const {
  if (setup_.GpsStopped) return false;
  ui::SerialPort* port = ListenOnlyKind(setup_.GpsReceiverKind) ? MSComm_Axis3
                         : setup_.SounderKind == "CEEECHO"      ? Ceastar
                                                                : MSComm1;
  return port && port->PortOpen();
}

void GnssLink::Timer1Tick() {
  if (++WatchdogCount < kWatchdogTicks) return;
  WatchdogCount = 0;
  if (MSComm1 && MSComm1->PortOpen()) MSComm1->Close();
  timer_.SetEnabled(false);
  view_.SetOBSBoxReceiving(false);
  dialogs_.MsgBox("COM" + std::to_string(setup_.CommPortNumber) + "沒反應", "沒有資料進來");
}

void GnssLink::StartDevicePort(ui::SerialPort* port, int16_t number, int32_t baud) {
  // These devices only talk; a port that cannot be opened is passed over without a word.
  if (!port || port->PortOpen()) return;
  port->CommPort = number;
  port->Settings = GnssPortSettings(baud);
  port->Open();
}

void GnssLink::StartSounder() { StartDevicePort(Ceastar, setup_.SounderPort, setup_.SounderBaud); }
void GnssLink::StartHydroBox() { StartDevicePort(MSComm2, setup_.SounderPort, setup_.SounderBaud); }
void GnssLink::StartESeaSound() { StartDevicePort(ESeaSound206, setup_.SounderPort, setup_.SounderBaud); }
void GnssLink::StartMotionSensor() {
  StartDevicePort(MSTSSComm, setup_.MotionSensorPort, setup_.MotionSensorBaud);
}

}  // namespace tavik
