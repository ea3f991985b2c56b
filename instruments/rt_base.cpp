#include "instruments/rt_base.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/angles.h"
#include "geo/grid.h"
#include "geo/pick.h"

namespace tavik {

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kPortError = "通訊埠編號有錯";
constexpr const char* kPortErrorTitle = "請檢查通訊埠設定或儀器狀態,--儀器請先開機.";

// The correction logs of the second port, by format, as each generation takes them.
const Lines kDl4Rtca = {"LOG COM2 RTCAREF ONTIME 6", "LOG COM2 RTCAOBS ONTIME 1"};
const Lines kDl4Rtcm = {"LOG COM2 RTCM3 ONTIME 6", "LOG COM2 RTCM22 ONTIME 10 1", "LOG COM2 RTCM1819 ONTIME 1",
                        "LOG COM2 RTCM1 ONTIME 5"};
const Lines kDl4Rtcmv3 = {"LOG COM2 RTCM1004 ONTIME 1",  "LOG COM2 RTCM1012 ONTIME 1",
                          "LOG COM2 RTCM1006 ONTIME 10", "LOG COM2 RTCM1033 ONTIME 10",
                          "LOG COM2 RTCM1019 ONTIME 120", "LOG COM2 RTCM1020 ONTIME 120"};
const Lines kCmrPlus = {"LOG COM2 CMROBS ONTIME 1", "LOG COM2 CMRGLOOBS ONTIME 1", "LOG COM2 CMRPLUS ONTIME 1"};
const Lines kCmr = {"LOG COM2 CMROBS ONTIME 1", "LOG COM2 CMRGLOOBS ONTIME 1", "LOG COM2 CMRREF ONTIME 10"};

struct FormatLines {
  const char* format;
  const char* interfaceLine;
  Lines logs;
};

const std::vector<FormatLines>& Dl4Formats() {
  static const std::vector<FormatLines> t = {
      {"RTCA", "Interfacemode com2 none rtca off", kDl4Rtca},
      {"RTCM", "Interfacemode com2 none rtcm off", kDl4Rtcm},
      {"RTCMV3", "Interfacemode com2 none rtcmv3 off", kDl4Rtcmv3},
      {"RTCMV3_GLO", "Interfacemode com2 none rtcmv3 off", kDl4Rtcmv3},
      {"CMR+", "Interfacemode com2 none cmr off", [] { Lines l = kCmrPlus; l.push_back("groupuse start"); return l; }()},
      {"CMR", "Interfacemode com2 none cmr off", [] { Lines l = kCmr; l.push_back("groupuse start"); return l; }()},
  };
  return t;
}

const std::vector<FormatLines>& Pp7Formats() {
  static const std::vector<FormatLines> t = {
      {"NovAtelX", "Interfacemode com2 none novatelx off", {"LOG COM2 novatelxobs ONTIME 1"}},
      // The interface line says novatelx, though the logs are RTCM: the receiver has always been sent it so.
      {"MSM3",
       "Interfacemode com2 none novatelx off",
       {"LOG COM2 RTCM1006 ONTIME 10", "LOG COM2 RTCM1073 ONTIME 1", "LOG COM2 RTCM1083 ONTIME 1",
        "LOG COM2 RTCM1093 ONTIME 1", "LOG COM2 RTCM1113 ONTIME 1", "LOG COM2 RTCM1123 ONTIME 1"}},
      {"RTCM", "Interfacemode com2 none rtcm off", kDl4Rtcm},
      {"RTCMV3",
       "Interfacemode com2 none rtcmv3 off",
       {"LOG COM2 RTCM1004 ONTIME 1", "LOG COM2 RTCM1006 ONTIME 10", "LOG COM2 RTCM1019 ONTIME 120"}},
      {"RTCMV3_GLO", "Interfacemode com2 none rtcmv3 off", kDl4Rtcmv3},
      {"CMR+", "Interfacemode com2 none cmr off", kCmrPlus},
      {"CMR", "Interfacemode com2 none cmr off", kCmr},
      {"RTCA", "Interfacemode com2 none rtca off", kDl4Rtca},
  };
  return t;
}

const std::vector<std::pair<const char*, Lines>>& DlRt2Formats() {
  static const std::vector<std::pair<const char*, Lines>> t = {
      {"RTCA", {"LOG COM2 RTCAREF ONTIME 10", "LOG COM2 RTCAOBS ONTIME 1"}},
      {"RTCM", {"LOG COM2 RTCM3 ONTIME 10", "LOG COM2 RTCM59 ONTIME 1"}},
      {"CMR", {"LOG COM2 CMRREF ONTIME 10", "LOG COM2 CMROBS ONTIME 1"}},
  };
  return t;
}

const FormatLines* Find(const std::vector<FormatLines>& t, const std::string& format) {
  for (const FormatLines& row : t)
    if (format == row.format) return &row;
  return nullptr;
}

const Lines* Find(const std::vector<std::pair<const char*, Lines>>& t, const std::string& format) {
  for (const auto& row : t)
    if (format == row.first) return &row.second;
  return nullptr;
}

void Append(Lines& out, const Lines& more) { out.insert(out.end(), more.begin(), more.end()); }

}  // namespace

const std::vector<BaseFormatOption>& BaseFormatOptions() {
  static const std::vector<BaseFormatOption> options = {
      {"Option11", "RTCMV3(GPS only)", "RTCMV3"}, {"Option10", "RTCMV3(雙星)", "RTCMV3_GLO"},
      {"Option9", "CMR+(雙星)", "CMR+"},          {"Option8", "CMR(雙星)", "CMR"},
      {"Option7", "RTCM(雙星)", "RTCM"},          {"Option6", "RTCA(雙星)", "RTCA"},
      {"Option5", "RTCMV3 MSM3(全星系)", "MSM3"}, {"Option4", "NovAtelX(全星系)", "NovAtelX"},
  };
  return options;
}

bool BaseKind(const std::string& kind) { return kind == "PP7" || kind == "DL-RT2" || kind == "DL-4"; }

bool BaseFormatSupported(const std::string& kind, const std::string& format) {
  if (kind == "PP7") return Find(Pp7Formats(), format) != nullptr;
  if (kind == "DL-4") return Find(Dl4Formats(), format) != nullptr;
  if (kind == "DL-RT2") return Find(DlRt2Formats(), format) != nullptr;
  return false;
}

const std::vector<double>& RawPeriods() {
  static const std::vector<double> periods = {0.1, 0.5, 1, 2, 3, 5, 10, 15};
  return periods;
}

std::string FixPositionLine(double lat, double lon, double height) {
  return "FIX POSITION " + num::Plain(lat) + " " + num::Plain(lon) + " " + num::Plain(height);
}

std::vector<std::string> BaseSequence(const BaseStart& s) {
  const std::string fix = FixPositionLine(s.lat, s.lon, s.height + s.antennaHeight);
  const std::string baud = std::to_string(s.baud);
  Lines out;
  if (s.kind == "DL-RT2") {
    // The oldest generation's first port always goes to 9600 as a base.
    out = {"com1 9600,n,8,1,n,off", "SLEEP OFF",  "UNFIX", "UNLOGALL", DatumLine(s.datum), "unlog com1 prtka",
           "log com1 posa ontime 1", fix};
    if (const Lines* f = Find(DlRt2Formats(), s.format)) Append(out, *f);
  } else if (s.kind == "DL-4") {
    out = {"com com1 " + baud + ",n,8,1,n,off", "FIX none", "SLEEP OFF", DatumLine(s.datum)};
    if (auto* f = Find(Dl4Formats(), s.format)) {
      out.push_back(f->interfaceLine);
      out.push_back(fix);
      Append(out, f->logs);
    }
    if (s.rawToFile) {
      // The period follows the keyword with no blank, as the receiver has always been sent it.
      Append(out, {"log com1 rangecmpa ontime" + num::Plain(s.rawPeriod), "log com1 almanaca onchanged",
                   "log com1 rawephema onchanged", "log com1 ionutca onchanged"});
    }
  } else if (s.kind == "PP7") {
    out = {"com com1 " + baud + ",n,8,1,n,off", "FIX none", "SLEEP OFF", DatumLine(s.datum),
           "serialconfig com2 38400 N 8 1 N on"};
    if (auto* f = Find(Pp7Formats(), s.format)) {
      out.push_back(f->interfaceLine);
      out.push_back(fix);
      Append(out, f->logs);
    }
    out.push_back("groupuse start");
    if (s.rawInReceiver)
      Append(out, {"FILECONFIG OPEN", "log file rangecmp2b ontime " + num::Plain(s.rawPeriod)});
  }
  return out;
}

std::vector<std::string> BaseUndoSequence(int32_t baud) {
  return {"FILECONFIG CLOSE",
          "com com1 " + std::to_string(baud) + ",n,8,1,n,off",
          "FIX none",
          "UNLOGALL",
          "SLEEP OFF",
          "log com1 bestposa ontime 1",
          "log com1,GPGSV,ondatetime.time,5",
          "log com1,GPGSA,ondatetime.time,7"};
}

std::string DegreesDmsText(double degrees) {
  int16_t d = 0, m = 0;
  double s = 0;
  DegreesToDms(degrees, d, m, s);
  return num::Format(d, "0-") + num::Format(m, "00-") + num::Format(s, "00.0000");
}

// ---------------------------------------------------------------------------------------
// Averaging

void PositionAverager::Start(Until until, double target, double nowSeconds) {
  *this = PositionAverager();
  until_ = until;
  target_ = target;
  start_ = nowSeconds;
  running_ = true;
}

bool PositionAverager::Add(double E, double N, double H, double nowSeconds) {
  if (!running_) return false;
  if (Tick(nowSeconds)) return true;
  ++count_;
  const double v[3] = {E, N, H};
  for (int k = 0; k < 3; ++k) {
    const double d = v[k] - mean_[k];
    mean_[k] += d / count_;
    m2_[k] += d * (v[k] - mean_[k]);
  }
  if (until_ == Until::Count && count_ >= target_) running_ = false;
  return !running_;
}

bool PositionAverager::Tick(double nowSeconds) {
  if (!running_ || until_ != Until::Seconds || nowSeconds - start_ < target_) return false;
  running_ = false;
  return true;
}

double PositionAverager::Sigma(int axis) const {
  return count_ < 2 ? 0 : std::sqrt(m2_[axis] / (count_ - 1));
}

std::string PositionAverager::StatusText(double nowSeconds) const {
  std::string s = running_ ? "平均中 " : "平均 ";
  s += std::to_string(count_) + " 筆";
  if (running_ && until_ == Until::Seconds)
    s += " " + num::Format(std::max(0.0, target_ - Elapsed(nowSeconds)), "0") + " 秒後停";
  s += "  σE " + num::Format(SigmaE(), "0.000") + " σN " + num::Format(SigmaN(), "0.000") + " σH " +
       num::Format(SigmaH(), "0.000") + " m";
  return s;
}

// ---------------------------------------------------------------------------------------
// The dialog

RtBaseLogic::RtBaseLogic(Document& doc, const View& view, GpsState& gps, GnssSetup& setup, GpsPanels& panels,
                         const GpsDatumSettings& datum, ui::Dialogs& dialogs)
    : doc_(doc), view_(view), gps_(gps), setup_(setup), panels_(panels), datum_(datum), dialogs_(dialogs) {
  Label13 = num::Plain(doc.InstrumentHeight);
}

void RtBaseLogic::FillBoxes(double E, double N, double H) {
  XEbox = num::Format(E, "0.000");
  YNbox = num::Format(N, "0.000");
  ZHbox = num::Format(H, "0.000");
}

void RtBaseLogic::Command2() { FillBoxes(gps_.GpsX, gps_.GpsY, gps_.GpsGround); }

bool RtBaseLogic::PickBase(double X, double Y) {
  constexpr double box = 20;
  auto take = [&](double E, double N, double H, const std::string& name) {
    doc_.StationE = E;
    doc_.StationN = N;
    doc_.StationH = H;
    doc_.StationSet = kTrue;
    doc_.StationName = name;
    Text1 = name;
    FillBoxes(E, N, H);
    return true;
  };
  for (const Entity& e : doc_.ScreenEntityTable) {
    if (e.Deleted != kFalse || e.Kind != KindPoint || text::Trim(e.Name).empty()) continue;
    if (PickBoxTest(view_, doc_.ScaleDenominator, X, Y, box, e.X[0], e.Y[0]))
      return take(e.X[0], e.Y[0], e.Z[0], text::Trim(e.Name));
  }
  for (const Point& p : doc_.ScreenPointTable) {
    if (p.Deleted != kFalse) continue;
    if (PickBoxTest(view_, doc_.ScaleDenominator, X, Y, box, p.E, p.N)) return take(p.E, p.N, p.H, "NoName");
  }
  dialogs_.MsgBox("沒有找到資料", "沒有資料");
  return false;
}

bool RtBaseLogic::Command3() {
  const std::optional<std::string> a = dialogs_.InputBox("請輸入天線高", "天線高", Label13);
  if (!a || a->empty()) return false;
  const std::optional<double> v = num::ParseStrict(*a);
  if (!v) return false;
  if (*v < 0) {
    dialogs_.MsgBox("天線高不得為負值");
    return false;
  }
  Label13 = num::Plain(*v);
  return true;
}

bool RtBaseLogic::Command1() {
  std::string path = dialogs_.SaveFileName("RAW 檔案", RawFilter, WorkFolder);
  if (path.empty()) return false;
  // A name typed without an extension gets the raw files' own.
  if (std::filesystem::path(path).extension().empty()) path += ".GPS";
  std::error_code ec;
  if (std::filesystem::exists(path, ec)) {
    if (dialogs_.MsgBox("此檔已經存在,是否覆蓋?", "發現同名檔", ui::Buttons::YesNo, ui::Icon::Question) !=
        ui::Answer::Yes)
      return false;
    // Raw lines are appended: an overwritten file starts empty.
    std::ofstream(path, std::ios::binary | std::ios::trunc);
  }
  gps_.RawPath = path;
  panels_.RawCount = 0;
  return true;
}

bool RtBaseLogic::OpenPort() {
  if (!MSComm1) return false;
  if (MSComm1->PortOpen()) return true;
  MSComm1->CommPort = setup_.CommPortNumber;
  MSComm1->Settings = GnssPortSettings(setup_.CommBaud);
  return MSComm1->Open();
}

bool RtBaseLogic::Send(const std::vector<std::string>& commands) {
  for (const std::string& c : commands) {
    if (!MSComm1 || !MSComm1->PortOpen()) return false;
    MSComm1->Output(c + "\r\n");
  }
  return true;
}

bool RtBaseLogic::CmdStart() {
  if (text::Trim(XEbox).empty() || text::Trim(YNbox).empty() || text::Trim(ZHbox).empty()) {
    dialogs_.MsgBox("動作錯誤! 要有座標才能啟動.", "沒有座標資料");
    return false;
  }
  if (Source != BaseSource::Received) {
    double lon = 0, lat = 0;
    bool failed = false;
    XyToLonLat(datum_, num::ParseLenient(XEbox), num::ParseLenient(YNbox), lon, lat, failed);
    if (failed) {
      dialogs_.MsgBox("無法轉成經緯度.", "輸入的座標有錯");
      return false;
    }
    gps_.GpsLon = lon;
    gps_.GpsLat = lat;
  }
  if (gps_.GpsLat == 0 || gps_.GpsLon == 0) {
    // Only 自動接收 gets here: no position sentence has come in yet.
    dialogs_.MsgBox("還沒有收到GPS定位資料.", "沒有經緯度");
    return false;
  }
  const std::optional<double> ih = num::ParseStrict(Label13);
  const std::optional<double> h = num::ParseStrict(ZHbox);
  if (!ih || !h) {
    dialogs_.MsgBox(!h ? "高程H要是數字." : "天線高要是數字.", "輸入的座標有錯");
    return false;
  }
  doc_.InstrumentHeight = *ih;
  gps_.GpsHeight = *h;
  doc_.StationH = *h;
  if (BaseFormat.empty()) {
    dialogs_.MsgBox("請指定訊號格式.", "沒有訊號格式");
    return false;
  }
  if (!OpenPort()) {
    dialogs_.MsgBox(kPortError, kPortErrorTitle);
    return false;
  }
  BaseStart s;
  s.kind = setup_.GpsReceiverKind;
  s.baud = setup_.CommBaud;
  s.datum = datum_.GpsDatum;
  s.format = BaseFormat;
  s.lat = gps_.GpsLat;
  s.lon = gps_.GpsLon;
  s.height = gps_.GpsHeight;
  s.antennaHeight = doc_.InstrumentHeight;
  s.rawToFile = RawDataCheckFlag != 0 && !gps_.RawPath.empty();
  s.rawInReceiver = Check1 != 0;
  s.rawPeriod = setup_.RawPeriodSeconds;
  if (!Send(BaseSequence(s))) {
    dialogs_.MsgBox(kPortError, kPortErrorTitle);
    return false;
  }
  // The oldest generation's raw data are its position logs, captured as they come in.
  if (s.kind == "DL-RT2" && RawDataCheckFlag) gps_.GpsRawLogging = kTrue;

  Label15 = Text1;
  Label45 = DegreesDmsText(gps_.GpsLon);
  Label10 = DegreesDmsText(gps_.GpsLat);
  Label11 = num::Format(gps_.GpsHeight, "0.000");
  Label13 = num::Plain(doc_.InstrumentHeight);
  gps_.GpsHeight = 0;
  doc_.StationH = 0;
  Started = true;
  if (CheckMkPt && hooks.MarkBase) hooks.MarkBase(num::ParseLenient(XEbox), num::ParseLenient(YNbox));
  return true;
}

bool RtBaseLogic::Command4() {
  if (!OpenPort() || !Send(BaseUndoSequence(setup_.CommBaud))) {
    dialogs_.MsgBox(kPortError);
    return false;
  }
  // The receiver logs nothing raw any more.
  gps_.GpsRawLogging = kFalse;
  Started = false;
  return true;
}

void RtBaseLogic::StopBaseLogging(GpsState& gps, ui::SerialPort* port) {
  if (!gps.GpsRawLogging || !port) return;
  if (port->PortOpen()) {
    port->Output("unlogall\r\n");
    port->Close();
  }
  gps.GpsRawLogging = kFalse;
}

void RtBaseLogic::StartAveraging(PositionAverager::Until until, double target, double nowSeconds) {
  Averager.Start(until, target, nowSeconds);
}

bool RtBaseLogic::PositionArrived(double nowSeconds) {
  if (!Averager.Running()) return false;
  if (!Averager.Add(gps_.GpsX, gps_.GpsY, gps_.GpsGround, nowSeconds)) return false;
  StopAveraging();
  return true;
}

bool RtBaseLogic::AveragingTick(double nowSeconds) {
  if (!Averager.Tick(nowSeconds)) return false;
  StopAveraging();
  return true;
}

void RtBaseLogic::StopAveraging() {
  Averager.Stop();
  if (Averager.Count() == 0) return;
  FillBoxes(Averager.MeanE(), Averager.MeanN(), Averager.MeanH());
  Source = BaseSource::Typed;
}

}  // namespace tavik
