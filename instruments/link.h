// The serial conversation with a total station (the main window's channels MSComm_SET
// and MSComm_TOP). Requests go out by family; each received byte is gathered into an
// answer, the family's decoder reads it, the instrument state takes the values, the
// common tail checks the face and the horizontal distance, and whoever waits for the
// observation is told, in a fixed order.
//
// There is no request queue and no reply time-out: only the first complete answer or
// the user's stop ends a wait. A stopped shot leaves its wait flag set, so a late
// answer is still delivered. Port failures inside a sender end the sender silently.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "instruments/framer.h"
#include "instruments/instrument_state.h"
#include "instruments/routing.h"
#include "instruments/wait_picture.h"
#include "platform/dialogs.h"
#include "platform/serial.h"

namespace tavik {

// A total-station memory download in progress takes its channel's bytes: the SET
// channel for SOKKIA instruments, MSComm_TOP for a TOPCON dump.
struct TsDownload {
  static constexpr std::size_t kMaxLog = 16u << 20;
  bool Active = false;
  Channel channel = Channel::Set;
  std::string LogBox;
  std::string Label1;
  std::string Folder = ".";          // where the raw text is written at the end mark
  std::string FileName = "$SOK.OBS";
  std::function<void()> StartConversion;
};

class TotalStationLink {
 public:
  TotalStationLink(InstrumentState& state, ui::Dialogs& dialogs);

  // The two main-window channels; not owned.
  ui::SerialPort* MSComm_SET = nullptr;
  ui::SerialPort* MSComm_TOP = nullptr;
  WaitPictureView* view = nullptr;
  WaitPicture picture;
  TsDownload download;

  // The receivers of the four wait flags, run in this order, and the stake-out
  // dialog, which takes the SET channel's lines while it is open.
  struct Receivers {
    std::function<void()> StationShot;  // UserDialog
    std::function<void()> PointShot;    // point reduction
    std::function<void()> FitShot;      // FitDialog distance
    std::function<void()> FitAngle;     // FitDialog angle-only read
    std::function<void(const std::string&)> StakeOutLine;
    // The trajectory tool while it runs: every observation that passed the tail.
    std::function<void()> Tracked;
  } receivers;

  // Windows the link opens or hides.
  struct Hooks {
    std::function<void()> OpenInputHVS;
    std::function<void()> CloseInputHVS;
    std::function<void()> HideCadastralDialog;
  } hooks;

  // Opens a closed channel on PortNumber with the kind's settings; an open one is left
  // as it is. False when the port cannot be opened.
  bool OpenChannel(Channel channel);
  void StartShot();
  void StartShotSet();
  void StartShotTop();
  void StopShot();
  // Writes a request other than a shot on the family's channel; false when the family
  // has no such request or the port failed.
  bool Send(Request request);

  // One received byte of a channel.
  void OnByte(Channel channel, char c);

  const std::string& RxBuffer() const { return framer_.Buffer(); }

  // A dialog with a port of its own reports an instrument's complaint where the link
  // would: the text is added to OBSBox, shown red or black.
  void AppendToOBSBox(const std::string& text, bool red);

 private:
  ui::SerialPort* Port(Channel channel) const { return channel == Channel::Set ? MSComm_SET : MSComm_TOP; }
  static bool Write(ui::SerialPort* port, const std::string& bytes);
  void Refresh();
  void Box(const std::string& text, const std::string& title);
  void Download(char c);
  void OnLeica(const std::string& frame);
  void OnTopcon(const std::string& frame);
  void OnTrimble(const std::string& frame);
  void OnTrimble3600(const std::string& frame);
  void OnPentax(const std::string& frame);
  void TakeRawShot(int32_t hzRaw, int32_t vRaw, double slope);
  void OnSet(const std::string& frame);
  // Face reminder, horizontal-distance test, labels and dispatch. `convert` false when
  // the caller has set ObsHz and ObsV itself; `passed` runs after the distance test.
  void CommonTail(const std::string& failureTitle, bool convert = true,
                  const std::function<void()>& passed = nullptr);
  void Dispatch();

  InstrumentState& state_;
  ui::Dialogs& dialogs_;
  LineFramer framer_;
};

}  // namespace tavik
