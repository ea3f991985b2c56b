#include "instruments/link.h"

#include <cmath>
#include <fstream>

#include "core/numbers.h"
#include "geo/angles.h"
#include "geo/constants.h"
#include "instruments/decoders.h"

namespace tavik {

namespace {
const char* const kMeasuring = "儀器觀測中...";
}  // namespace

TotalStationLink::TotalStationLink(InstrumentState& state, ui::Dialogs& dialogs)
    : state_(state), dialogs_(dialogs) {}

bool TotalStationLink::Write(ui::SerialPort* port, const std::string& bytes) {
  if (!port || !port->PortOpen()) return false;
  port->Output(bytes);
  return true;
}

void TotalStationLink::Refresh() {
  if (view) view->ShowWaitPicture(picture);
}

void TotalStationLink::AppendToOBSBox(const std::string& text, bool red) {
  picture.OBSBox += text;
  picture.OBSBoxRed = red;
  Refresh();
}

void TotalStationLink::Box(const std::string& text, const std::string& title) {
  Refresh();
  dialogs_.MsgBox(text, title);
}

bool TotalStationLink::OpenChannel(Channel channel) {
  ui::SerialPort* port = Port(channel);
  if (!port) return false;
  if (port->PortOpen()) return true;
  port->CommPort = state_.PortNumber;
  port->Settings = SettingsText(channel == Channel::Set ? "" : state_.InstrumentKind, state_.BaudRate);
  return port->Open();
}

void TotalStationLink::StartShot() {
  Family family = FamilyOf(state_.InstrumentKind);
  if (family == Family::Keyin) {
    if (hooks.OpenInputHVS) hooks.OpenInputHVS();
  } else if (ChannelOf(family) == Channel::Top) {
    StartShotTop();
  } else {
    StartShotSet();
  }
}

void TotalStationLink::StartShotSet() {
  bool wasOpen = MSComm_SET && MSComm_SET->PortOpen();
  if (!OpenChannel(Channel::Set)) return;
  if (!wasOpen) {
    picture.OBSBox.clear();
    framer_.Clear();
  }
  Write(MSComm_SET, ShotBytes(Family::Set));
  picture.OBSBox = kMeasuring;
  picture.MsgObserve = true;
  Refresh();
}

void TotalStationLink::StartShotTop() {
  if (hooks.HideCadastralDialog) hooks.HideCadastralDialog();
  Family family = FamilyOf(state_.InstrumentKind);
  ui::SerialPort* top = MSComm_TOP;
  if (!top) return;
  switch (family) {
    case Family::Leica:
      if (!OpenChannel(Channel::Top)) return;
      picture.OBSBox.clear();
      framer_.Clear();
      break;
    case Family::Topcon:
      // The Topcon port is closed after every answer and opened afresh for each request.
      if (top->PortOpen()) top->Close();
      top->CommPort = state_.PortNumber;
      top->Settings = SettingsText(state_.InstrumentKind, state_.BaudRate);
      if (!top->Open()) return;
      picture.OBSBox.clear();
      framer_.Clear();
      break;
    case Family::Trimble:
    case Family::Trimble3600:
    case Family::Pentax: {
      bool wasOpen = top->PortOpen();
      if (!OpenChannel(Channel::Top)) return;
      if (!wasOpen) {
        picture.OBSBox.clear();
        framer_.Clear();
      }
      break;
    }
    default:
      return;
  }
  std::string bytes = ShotBytes(family);
  if (!bytes.empty()) Write(top, bytes);
  picture.OBSBox = kMeasuring;
  picture.MsgObserve = true;
  Refresh();
}

void TotalStationLink::StopShot() {
  Family family = FamilyOf(state_.InstrumentKind);
  bool setOpen = MSComm_SET && MSComm_SET->PortOpen();
  bool topOpen = MSComm_TOP && MSComm_TOP->PortOpen();
  bool ok = true;
  if (!setOpen && !topOpen) {
    // The stop needs a way out even when nothing is open.
    if (MSComm_SET) {
      MSComm_SET->CommPort = state_.PortNumber;
      MSComm_SET->Settings = std::to_string(state_.BaudRate) + ",n,8,1";
      ok = MSComm_SET->Open();
    } else {
      ok = false;
    }
  }
  if (ok) {
    switch (family) {
      case Family::Keyin:
        if (hooks.CloseInputHVS) hooks.CloseInputHVS();
        picture.OBSBox.clear();
        break;
      case Family::Leica:
        if (Write(MSComm_TOP, "c\r\n")) {
          MSComm_TOP->Close();
          picture.OBSBox.clear();
        }
        break;
      case Family::Topcon:
        picture.OBSBox.clear();
        break;
      case Family::Trimble:
        // Written on the SET channel, which Trimble doesn't use; kept as it always was.
        if (Write(MSComm_SET, "TG\r\n") && MSComm_TOP && MSComm_TOP->PortOpen()) MSComm_TOP->Close();
        break;
      default:
        Write(MSComm_SET, "\x12\r\n");
        break;
    }
  }
  picture.CmdSTOPEnabled = false;
  picture.RecButtonEnabled = true;
  Refresh();
}

bool TotalStationLink::Send(Request request) {
  Family family = FamilyOf(state_.InstrumentKind);
  std::optional<std::string> bytes = RequestBytes(family, request);
  if (!bytes) return false;
  Channel channel = ChannelOf(family);
  if (!OpenChannel(channel)) return false;
  return Write(Port(channel), *bytes);
}

void TotalStationLink::Download(char c) {
  if (c == '\x02') {
    download.LogBox.clear();
    download.Label1.clear();
  } else if (c == '\x03') {
    download.Label1 = "下載完畢.";
    std::ofstream out(download.Folder + "/" + download.FileName, std::ios::binary | std::ios::trunc);
    out << download.LogBox;
    out.close();
    if (download.StartConversion) download.StartConversion();
  } else if (download.LogBox.size() < TsDownload::kMaxLog) {
    download.LogBox.push_back(c);
  }
}

void TotalStationLink::OnByte(Channel channel, char c) {
  if (download.Active && channel == download.channel) {
    Download(c);
    return;
  }
  Family family = channel == Channel::Set ? Family::Set : FamilyOf(state_.InstrumentKind);
  if (family == Family::Pentax) picture.OBSBoxRed = false;
  std::optional<std::string> frame = framer_.Feed(c, family == Family::Trimble ? '>' : '\n');
  picture.OBSBox = frame ? *frame : framer_.Buffer();
  if (frame) {
    switch (family) {
      case Family::Leica: OnLeica(*frame); break;
      case Family::Topcon: OnTopcon(*frame); break;
      case Family::Trimble: OnTrimble(*frame); break;
      case Family::Trimble3600: OnTrimble3600(*frame); break;
      case Family::Pentax: OnPentax(*frame); break;
      case Family::Set:
        if (channel == Channel::Set) OnSet(*frame);
        break;
      default: break;
    }
  }
  Refresh();
}

void TotalStationLink::OnLeica(const std::string& frame) {
  LeicaAnswer a = DecodeLeica(frame);
  if (!a.enoughFields) return;
  if (a.slope) state_.ObsSlope = *a.slope;
  if (a.hzRaw) state_.ObsHzRaw = *a.hzRaw;
  if (a.vRaw) state_.ObsVRaw = *a.vRaw;
  picture.MsgObserve = false;
  if (!state_.AwaitFitAngle && state_.ObsSlope <= 0) return;
  picture.Label29 = RawAngleText(state_.ObsHzRaw);
  picture.LabelZA = RawAngleText(state_.ObsVRaw);
  CommonTail("資料錯誤");
}

void TotalStationLink::OnTopcon(const std::string& frame) {
  TopconAnswer a = DecodeTopcon(frame);
  if (a.kind == TopconAnswer::Other || a.kind == TopconAnswer::Acknowledge) return;
  Write(MSComm_TOP, "\x06" "006\x03\r\n");
  if (MSComm_TOP) MSComm_TOP->Close();
  picture.OBSBox = frame;
  picture.MsgObserve = false;
  state_.ObsSlope = a.slope;
  state_.ObsVRaw = a.vRaw;
  state_.ObsHzRaw = a.hzRaw;
  picture.Label29 = a.hzText;
  picture.LabelZA = a.vText;
  // No zero-distance test here: an angle answer always fails the horizontal distance.
  CommonTail("資料錯誤");
}

void TotalStationLink::OnTrimble(const std::string& frame) {
  TrimbleAnswer a = DecodeTrimble(frame);
  if (!a.enoughLines) return;
  picture.MsgObserve = false;
  TakeRawShot(a.hzRaw, a.vRaw, a.slope);
}

void TotalStationLink::OnTrimble3600(const std::string& frame) {
  Trimble3600Answer a = DecodeTrimble3600(frame);
  if (a.v2) {
    Box("垂直角定義錯誤", "TAVIK");
    return;
  }
  if (a.slope) state_.ObsSlope = *a.slope;
  picture.MsgObserve = false;
  if (!state_.AwaitFitAngle && state_.ObsSlope <= 0) return;
  auto text = [](double packed) {
    int16_t d, m;
    double s;
    PackedToDms(packed, d, m, s);
    return num::Plain(d) + "-" + num::Format(m, "00") + "-" + num::Format(s, "00.0");
  };
  picture.Label29 = text(a.hz);
  picture.LabelZA = text(a.v);
  // Tenths of a second are kept in radians; the raw integers follow the distance test.
  state_.ObsHz = PackedToRadians(a.hz);
  state_.ObsV = PackedToRadians(a.v);
  CommonTail("資料錯誤", false, [&] {
    state_.ObsHzRaw = num::CLng(a.hz);
    state_.ObsVRaw = num::CLng(a.v);
  });
}

void TotalStationLink::OnPentax(const std::string& frame) {
  if (MSComm_TOP) MSComm_TOP->Close();
  picture.MsgObserve = false;
  PentaxAnswer a = DecodePentax(frame);
  if (!a.valid) {
    picture.OBSBoxRed = true;
    picture.OBSBox += "資料錯誤!!(資料不全)";
    return;
  }
  TakeRawShot(a.hzRaw, a.vRaw, a.slope);
}

// The end of the families that answer with both raw angles and a slope distance: an
// answer without a distance is dropped unless only the angle was asked for.
void TotalStationLink::TakeRawShot(int32_t hzRaw, int32_t vRaw, double slope) {
  state_.ObsHzRaw = hzRaw;
  state_.ObsVRaw = vRaw;
  state_.ObsSlope = slope;
  if (!state_.AwaitFitAngle && state_.ObsSlope <= 0) return;
  picture.Label29 = RawAngleText(state_.ObsHzRaw);
  picture.LabelZA = RawAngleText(state_.ObsVRaw);
  CommonTail("資料錯誤");
}

void TotalStationLink::OnSet(const std::string& frame) {
  // Outside continuous mode the instrument is told to stop after each answer.
  if (state_.ShotMode != "連測" && !state_.StakeOutActive) Write(MSComm_SET, "\x12\r\n");
  picture.MsgObserve = false;
  if (frame.size() < 9) return;
  if (state_.StakeOutActive) {
    if (receivers.StakeOutLine) receivers.StakeOutLine(frame);
    return;
  }
  SetAnswer a = DecodeSet(frame);
  if (a.identification) picture.OBSBox = *a.identification;
  if (a.slope) state_.ObsSlope = *a.slope;
  switch (a.kind) {
    case SetAnswer::Tracking:
      state_.ObsVRaw = a.vRaw;
      return;
    case SetAnswer::Short:
    case SetAnswer::FewFields:
      return;
    case SetAnswer::Error:
      switch (a.error) {
        case SetError::NoPrism:
          picture.OBSBox += " 被測物反射不良或找不到稜鏡.";
          Box("被測物反射不良或找不到稜鏡.", "無法測距");
          break;
        case SetError::Tilt:
          picture.OBSBox += " 儀器傾斜超出補償範圍, 請整平後再測.";
          Box("儀器傾斜超出補償範圍, 請整平後再測.", "儀器有問題");
          break;
        case SetError::BadDistance:
          picture.OBSBox += " 距離值錯誤.";
          Box("斜距值錯誤.", "SD資料錯誤");
          break;
        default:
          picture.OBSBox += " 不明原因,導致資料錯誤.";
          Box("ER資料錯誤!", "有問題");
          break;
      }
      return;
    case SetAnswer::Observation:
      break;
  }
  state_.ObsVRaw = a.vRaw;
  state_.ObsHzRaw = a.hzRaw;
  picture.Label29 = a.hzText;
  picture.LabelZA = a.vText;
  CommonTail("HD資料錯誤");
}

void TotalStationLink::CommonTail(const std::string& failureTitle, bool convert,
                                  const std::function<void()>& passed) {
  if (convert) {
    state_.ObsHz = PackedToRadians(state_.ObsHzRaw);
    state_.ObsV = PackedToRadians(state_.ObsVRaw);
  }
  if (state_.ObsV > Pi && state_.FaceWarning) Box("提醒您: 儀器目前是倒鏡狀態", "倒鏡提示");
  double hd = state_.ObsSlope * std::cos(Pi / 2 - state_.ObsV);
  if (hd < 0.01) {
    picture.OBSBox += " 距離值錯誤.";
    framer_.Clear();
    Box("平距值錯誤.", failureTitle);
    return;
  }
  if (passed) passed();
  picture.LabelS = num::Format(state_.ObsSlope, "0.000");
  picture.Label45 = num::Format(hd, "0.000");
  Refresh();
  Dispatch();
}

void TotalStationLink::Dispatch() {
  if (state_.AwaitStationShot) {
    state_.AwaitStationShot = 0;
    if (receivers.StationShot) receivers.StationShot();
  }
  if (state_.AwaitPointShot) {
    state_.AwaitPointShot = 0;
    if (receivers.PointShot) receivers.PointShot();
  }
  if (state_.AwaitFitShot) {
    state_.AwaitFitShot = 0;
    if (receivers.FitShot) receivers.FitShot();
  }
  if (state_.AwaitFitAngle) {
    state_.AwaitFitAngle = 0;
    if (receivers.FitAngle) receivers.FitAngle();
  }
  if (receivers.Tracked) receivers.Tracked();
}

}  // namespace tavik
