// The GNSS receiver link of the main window: the three toolbar keys in GPS mode
// (connect, receive, stop), the ports MSComm1 and MSComm_Axis3 with the sounder and
// motion-sensor ports that go with them, and the one-second no-data watchdog Timer1(0).
//
// Commands are written in one burst, each followed by CR LF, with no pacing and no
// reading of acknowledgements: a receiver that rejects a command is seen only in the
// fix panels, and one that does not answer at all only by the watchdog, 20 seconds
// after the connect. The bytes that come back go to the sentence parsers through the
// receive handlers set by the program.
#pragma once

#include <functional>
#include <string>

#include "instruments/gnss_commands.h"
#include "platform/dialogs.h"
#include "platform/serial.h"
#include "platform/timer.h"

namespace tavik {

// The main window as the link needs it.
class GnssLinkView {
 public:
  virtual ~GnssLinkView() = default;
  // Toolbar1's buttons by key: "接收資料", "停止接收".
  virtual void EnableToolbarKey(const std::string& key, bool enabled) = 0;
  // OBSBox black with white text while receiving, white with black text otherwise.
  virtual void SetOBSBoxReceiving(bool receiving) = 0;
  virtual void ClearOBSBox() = 0;
  virtual void ShowLabel25_0(const std::string& datum) = 0;
};

class GnssLink {
 public:
  static constexpr int kWatchdogInterval = 1000;  // ms
  static constexpr int kWatchdogTicks = 20;       // silent seconds before giving up

  GnssLink(GnssSetup& setup, ui::Dialogs& dialogs, GnssLinkView& view, ui::Timer& Timer1_0);

  // Ports of the main window, set by the program; the sounder and motion ports may stay unset.
  ui::SerialPort* MSComm1 = nullptr;
  ui::SerialPort* MSComm_Axis3 = nullptr;
  ui::SerialPort* Ceastar = nullptr;       // Ceastar, HydroLite, CEEECHO
  ui::SerialPort* MSComm2 = nullptr;       // HydroBox
  ui::SerialPort* ESeaSound206 = nullptr;  // E Sea Sound 206
  ui::SerialPort* MSTSSComm = nullptr;     // TSS_DMS3

  // What the link asks of the rest of the program.
  std::function<bool()> DocumentOpen;            // connect needs an open document
  std::function<std::string()> GpsDatum;         // "TWD97", "TWD67", "WGS84"
  std::function<bool()> ContinuousRecording;     // LogButton reads "暫停連續記錄"
  std::function<void()> StopContinuousRecording;
  std::function<void()> StopReceptionMarker;     // redraw the position marker, stop Timer4, marker not drawn

  int16_t WatchdogCount = 0;  // ticks of Timer1(0) so far; kept when data arrives

  // Toolbar1 in GPS mode.
  void Toolbar1Click(const std::string& key);
  void Connect();  // 連接COM1
  void Receive();  // 接收資料
  void Stop();     // 停止接收
  void CmdPRTKA_Click();
  void EgpsConnect();
  void EgpsReceive();

  // Positions are coming in: the surveyor has not stopped reception and the port that
  // carries them is open (MSComm_Axis3 for the listen-only kinds, the sounder's port
  // when a CEEECHO sounder carries the GGA lines, MSComm1 otherwise).
  bool Receiving() const;

  // A byte came in on MSComm1: the link is alive, the watchdog stops (its count stays).
  void DataArrived() { timer_.SetEnabled(false); }
  void Timer1Tick();

  // The sounder and motion sensor: each opens its port once, on its own number and speed.
  void StartSounder();
  void StartHydroBox();
  void StartESeaSound();
  void StartMotionSensor();

 private:
  // Opens the receiver's port if it is not open; false when it cannot be opened.
  bool OpenReceiverPort(ui::SerialPort* port);
  bool Send(const std::vector<std::string>& commands);
  void Finish(bool startSounders);
  void StartDevicePort(ui::SerialPort* port, int16_t number, int32_t baud);

  GnssSetup& setup_;
  ui::Dialogs& dialogs_;
  GnssLinkView& view_;
  ui::Timer& timer_;
};

}  // namespace tavik
