#include "instruments/gps_receiver.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <limits>
#include <vector>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/formats.h"
#include "geo/grid.h"

namespace tavik {

namespace {

// Thrown by a reading that fails; caught where the parser was started, so the sentence
// ends where it stands.
struct SentenceAbandoned {};

// The comma-separated fields of a line, as views into it. Reading a field the line does
// not have abandons the sentence, as an index past the end of the split always has.
class Fields {
 public:
  explicit Fields(std::string_view line) {
    std::size_t start = 0;
    for (;;) {
      std::size_t comma = line.find(',', start);
      if (comma == std::string_view::npos) {
        f_.push_back(line.substr(start));
        break;
      }
      f_.push_back(line.substr(start, comma - start));
      start = comma + 1;
    }
  }
  std::size_t Count() const { return f_.size(); }
  std::size_t LastIndex() const { return f_.size() - 1; }
  bool Has(std::size_t i) const { return i < f_.size(); }
  std::string_view operator[](std::size_t i) const {
    if (i >= f_.size()) throw SentenceAbandoned{};
    return f_[i];
  }

 private:
  std::vector<std::string_view> f_;
};

// Strict reading: the field is one number or the sentence is abandoned. A number too
// large for a double fails as an overflow would.
double Strict(std::string_view s) {
  auto v = num::ParseStrict(s);
  if (!v || !std::isfinite(*v)) throw SentenceAbandoned{};
  return *v;
}

// Lenient reading: the longest numeric prefix, else 0.
double Lenient(std::string_view s) {
  double v = num::ParseLenient(s);
  return std::isfinite(v) ? v : 0;
}

int32_t WholeStrict(std::string_view s) { return num::CLng(Strict(s)); }

// Mid(s, n): the text from the n-th character (1-based) on, empty past the end.
std::string Mid(std::string_view s, std::size_t n) {
  return n - 1 < s.size() ? std::string(s.substr(n - 1)) : std::string();
}

std::string_view Head(std::string_view line, std::size_t n) { return line.substr(0, std::min(n, line.size())); }

bool IsAscii(std::string_view s) {
  for (char c : s)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

// Received bytes are code page 950 text (receivers send ASCII); inside they are UTF-8.
std::string Inside(const std::string& received) { return IsAscii(received) ? received : text::FromCp950(received); }

// One text line appended to a log: opened for append, written in one call, closed. A
// write that fails part-way is cut back so that the log never holds a torn line. The
// logs are closed after every line and not synced: a receiver sends up to twenty
// lines a second, and the survey's own journal is what must survive a power cut.
bool AppendTextLine(const std::string& path, std::string_view utf8) {
  if (path.empty()) return false;
  std::string bytes;
  bytes.reserve(utf8.size() + 2);
  for (char c : utf8)
    if (c != '\r' && c != '\n') bytes.push_back(c);  // a line end inside would split the record
  if (!IsAscii(bytes)) bytes = text::ToCp950(bytes);
  bytes += "\r\n";
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  struct stat st {};
  off_t before = ::fstat(fd, &st) == 0 ? st.st_size : -1;
  std::size_t done = 0;
  bool ok = true;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) {
      ok = false;
      break;
    }
    done += static_cast<std::size_t>(n);
  }
  if (!ok && done > 0 && before >= 0 && ::ftruncate(fd, before) != 0) ok = false;
  if (::close(fd) != 0) ok = false;
  return ok;
}

std::string Coord(double v) { return num::Format(v, fmt::Coordinate); }
std::string Degrees(double v) { return num::Format(v, "0.00") + "度"; }

}  // namespace

GpsReceiver::GpsReceiver(GpsState& gps, const GnssSetup& setup, Document& doc, const GpsDatumSettings& datum)
    : gps_(gps), setup_(setup), doc_(doc), datum_(datum) {}

const std::string& GpsReceiver::LineBuffer(Port port) const {
  switch (port) {
    case Port::MSComm1: return Com1LineBuffer;
    case Port::MSComm_Axis3: return Axis3LineBuffer;
    case Port::Ceastar: break;
  }
  return CeastarLineBuffer;
}

void GpsReceiver::Feed(Port port, const char* data, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    switch (port) {
      case Port::MSComm1: MSComm1_OnComm(data[i]); break;
      case Port::MSComm_Axis3: MSComm_Axis3_OnComm(data[i]); break;
      case Port::Ceastar: Ceastar_OnComm(data[i]); break;
    }
  }
}

template <class F>
void GpsReceiver::Run(F&& parser) {
  changed_ = true;
  try {
    parser();
  } catch (const SentenceAbandoned&) {
  }
}

void GpsReceiver::Refresh() {
  if (view) {
    view->ShowGpsPanels(panels_);
    if (skyChanged_) view->ShowSkyPlot(sky_);
  }
  skyChanged_ = false;
  changed_ = false;
}

void GpsReceiver::ClearOBSBox() {
  panels_.OBSBox.clear();
  changed_ = true;
  Refresh();
}

void GpsReceiver::ShowInOBSBox(const std::string& line) {
  std::size_t end = line.size();
  while (end > 0 && (line[end - 1] == '\r' || line[end - 1] == '\n')) --end;
  panels_.OBSBox.assign(line, 0, end);
  changed_ = true;
}

void GpsReceiver::AppendGobs(const std::string& line) {
  if (DiscardGobs) return;
  if (!AppendTextLine(doc_.GobsPath, line)) throw SentenceAbandoned{};
}

void GpsReceiver::RawCapture() {
  changed_ = true;
  if (AppendTextLine(gps_.RawPath, gps_.GpsLine)) ++panels_.RawCount;
}

void GpsReceiver::RewriteHead() { gps_.GpsLine.replace(0, 3, "$GP"); }

// ---------------------------------------------------------------------------------------
// Line assembly

void GpsReceiver::MSComm1_OnComm(char c) {
  if (hooks.StopWatchdog) hooks.StopWatchdog();
  if (c == '$' || c == '#') {
    // A line start always wins over whatever was being collected.
    Com1LineBuffer.clear();
    gps_.GpsLine.clear();
    com1Overflow_ = false;
    Com1LineBuffer.push_back(c);
    return;
  }
  if (c == '\r') {
    if (com1Overflow_) {
      com1Overflow_ = false;
      return;
    }
    gps_.GpsLine = Inside(Com1LineBuffer);
    Com1LineBuffer.clear();
    DispatchCom1();
    return;
  }
  if (com1Overflow_) return;
  if (Com1LineBuffer.size() >= kMaxLine) {
    Com1LineBuffer.clear();
    com1Overflow_ = true;
    return;
  }
  Com1LineBuffer.push_back(c);
}

void GpsReceiver::MSComm_Axis3_OnComm(char c) {
  if (c == '$' || c == 'D') {
    Axis3LineBuffer.clear();
    axis3Overflow_ = false;
    Axis3LineBuffer.push_back(c);
    return;
  }
  if (c == '\r') {
    if (axis3Overflow_) {
      axis3Overflow_ = false;
      return;
    }
    gps_.GpsLine = Inside(Axis3LineBuffer);
    Axis3LineBuffer.clear();
    DispatchAxis3();
    return;
  }
  if (axis3Overflow_) return;
  if (Axis3LineBuffer.size() >= kMaxLine) {
    Axis3LineBuffer.clear();
    axis3Overflow_ = true;
    return;
  }
  Axis3LineBuffer.push_back(c);
}

void GpsReceiver::Ceastar_OnComm(char c) {
  if (ceastarOverflow_) {
    if (c == '\n') ceastarOverflow_ = false;
    return;
  }
  if (CeastarLineBuffer.size() >= kMaxLine) {
    CeastarLineBuffer.clear();
    ceastarOverflow_ = c != '\n';
    return;
  }
  CeastarLineBuffer.push_back(c);
  if (c != '\n') return;
  CeastarLineBuffer.push_back('\r');
  std::string line = Inside(CeastarLineBuffer);
  CeastarLineBuffer.clear();
  if (setup_.SounderKind == "Ceastar") {
    if (hooks.SounderLine) hooks.SounderLine(line);
    return;
  }
  std::string_view head = Head(line, 6);
  if (head == "$GPGGA") {
    ShowInOBSBox(line);
    gps_.GpsLine = line;
    Run([&] { GPGGA_data(); });
  } else if (head == "$GNVTG") {
    Run([&] { GNVTG_data(line); });
  } else if (head == "$SDDBT" || head == "$SMDBT") {
    if (hooks.DepthSentence) hooks.DepthSentence(line);
  }
  if (changed_) Refresh();
}

// ---------------------------------------------------------------------------------------
// Dispatch

void GpsReceiver::DispatchCom1() {
  std::string_view head = Head(gps_.GpsLine, 6);
  if (head == "#BESTP") {
    ShowInOBSBox(gps_.GpsLine);
    Run([&] { BESTPOSA_data(); });
  } else if (head == "#DUALA") {
    Run([&] { DUALANTENNA_data(); });
  } else if (head == "$GPGGA") {
    Run([&] { GPGGA_data(); });
  } else if (head == "$GNGGA" || head == "$INGGA") {
    RewriteHead();
    Run([&] { GPGGA_data(); });
  } else if (head == "$GPGSV") {
    Run([&] { GPGSV_data(); });
  } else if (head == "$GNGSV") {
    ShowInOBSBox(gps_.GpsLine);
    RewriteHead();
    Run([&] { GPGSV_data(); });
  } else if (head == "$GPGSA") {
    Run([&] { GPGSA_data(); });
  } else if (head == "$GNGSA") {
    RewriteHead();
    Run([&] { GPGSA_data(); });
  } else if (head == "#INSPO") {
    Run([&] { INSPOSA_data(); });
  } else if (head == "$GPRMC") {
    Run([&] { GPRMC_data(); });
  } else if (head == "$INRMC") {
    RewriteHead();
    Run([&] { GPRMC_data(); });
  } else if (head == "$GPGLL") {
    Run([&] { GPGLL_data(); });
  } else if (head == "$ALMA," || head == "$REPA," || head == "$RGEA," || head == "#RANGE" || head == "#ALMAN" ||
             head == "#RAWEP" || head == "#IONUT") {
    RawCapture();
  } else if (head == "$POSA,") {
    ShowInOBSBox(gps_.GpsLine);
    if (gps_.GpsRawLogging) RawCapture();
    Run([&] { POSA_data(gps_.GpsLine); });
  } else if (head == "$PRTKA") {
    ShowInOBSBox(gps_.GpsLine);
    Run([&] { PRTKA(); });
  }
  if (changed_) Refresh();
}

void GpsReceiver::DispatchAxis3() {
  const std::string& line = gps_.GpsLine;
  std::string_view head = Head(line, 6);
  if (head.substr(0, 3) == "DTE" || head.substr(0, 3) == "DT ") {
    // The depth in centimetres in the last five characters.
    std::string_view last5 = std::string_view(line).substr(line.size() > 5 ? line.size() - 5 : 0);
    gps_.SounderDepth = Lenient(last5) / 100;
    panels_.Label21[0] = head[2] == 'E' ? std::string("Error") : num::Plain(gps_.SounderDepth);
    changed_ = true;
  } else if (head == "$GPGGA") {
    ShowInOBSBox(line);
    Run([&] { GPGGA_data(); });
  } else if (head == "$GPGSV") {
    Run([&] { GPGSV_data(); });
  } else if (head == "$GPGSA") {
    Run([&] { GPGSA_data(); });
  }
  if (changed_) Refresh();
}

// ---------------------------------------------------------------------------------------
// NovAtel logs

void GpsReceiver::BESTPOSA_data() {
  Fields f(gps_.GpsLine);
  if (f.LastIndex() != 29) return;
  gps_.GpsLineCopy = gps_.GpsLine;
  AppendGobs(gps_.GpsLineCopy);
  if (setup_.GpsReceiverKind == "Axis3") return;

  gps_.GpsSeconds = Strict(f[6]);
  gps_.GpsLat = Strict(f[11]);
  gps_.GpsLon = Strict(f[12]);
  gps_.GpsHeight = Strict(f[13]);
  gps_.GpsSigmaN = Strict(f[16]);
  panels_.Label25[3] = Coord(gps_.GpsSigmaN);
  gps_.GpsSigmaE = Strict(f[17]);
  panels_.Label25[9] = Coord(gps_.GpsSigmaE);
  gps_.GpsSigmaH = Strict(f[18]);
  panels_.Label25[10] = Coord(gps_.GpsSigmaH);

  // Solution status: the word after the header's semicolon in field 9. Older firmware
  // writes a four-digit last header field ("2724;SOL_COMPUTED"), current firmware five
  // ("16248;SOL_COMPUTED"); a field without a semicolon is read from its 6th character.
  std::string_view f9 = f[9];
  std::size_t semi = f9.find(';');
  std::string_view word = semi != std::string_view::npos ? f9.substr(semi + 1) : f9.substr(std::min<std::size_t>(5, f9.size()));
  PanelLabel& l8 = panels_.Label8;
  if (word == "SOL_COMPUTED") {
    l8.Caption = "解算完成";
    l8.ForeColor = colour::Blue;
  } else if (word == "INSUFFICIENT_OBS") {
    l8.Caption = "觀測不足";
  } else if (word == "NO_CONVERGENCE") {
    l8.Caption = "未收歛";
  } else if (word == "PENDING") {
    l8.Caption = "座標無效";
  } else if (word == "COLD_START") {
    l8.Caption = "冷機啟動中";
  } else {
    // Older firmware gives some states as numbers; a word that is neither abandons.
    double n = Strict(word);
    if (n == 4) l8.Caption = "誤差過大";
    else if (n == 5) l8.Caption = "距離過大";
    else if (n == 7) l8.Caption = "高程過大";
  }

  PanelLabel& l6 = panels_.Label6;
  l6.BackColor = colour::ButtonFace;
  l6.ForeColor = colour::Black;
  struct Type { const char* word; const char* text; bool redYellow, blueWhite; };
  static const Type kTypes[] = {
      {"NONE", "尚未解出", false, false},       {"FIXEDPOS", "基站模式", true, false},
      {"SINGLE", "單點定位", false, false},     {"WAAS", "WAAS", false, true},
      {"2", "基站狀態", false, false},          {"3", "高程固定", false, false},
      {"L1_FLOAT", "L1浮點解", false, false},   {"IONOFREE_FLOAT", "弱浮點解", false, false},
      {"NARROW_FLOAT", "佳浮點解", false, false}, {"NARROW_INT", "最佳解", true, false},
  };
  std::string_view type = f[10];
  for (const Type& t : kTypes) {
    if (type != t.word) continue;
    gps_.GpsFixText = t.text;
    l6.Caption = gps_.GpsFixText;
    if (t.redYellow) {
      l6.BackColor = colour::Red;
      l6.ForeColor = colour::Yellow;
    } else if (t.blueWhite) {
      l6.BackColor = colour::Blue;
      l6.ForeColor = colour::White;
    }
    break;
  }
  panels_.Label12.Caption = std::string(f[22]);
  panels_.Label11.Caption = std::string(f[25]);
  gps_.GpsHasFix = type != "NONE" ? kTrue : kFalse;
  GpsPositionUpdate(gps_.GpsLon, gps_.GpsLat, gps_.GpsHeight);
}

void GpsReceiver::PRTKA() {
  Fields f(gps_.GpsLine);
  if (f.LastIndex() != 19) return;
  AppendGobs(gps_.GpsLine);
  double week = num::Fix(Strict(f[1]));
  gps_.GpsWeek = week >= std::numeric_limits<int32_t>::max()   ? std::numeric_limits<int32_t>::max()
                 : week <= std::numeric_limits<int32_t>::min() ? std::numeric_limits<int32_t>::min()
                                                               : static_cast<int32_t>(week);
  gps_.GpsSeconds = Strict(f[2]);
  gps_.GpsLat = Strict(f[7]);
  gps_.GpsLon = Strict(f[8]);
  gps_.GpsHeight = Strict(f[9]);
  gps_.GpsSigmaE = Strict(f[13]);
  panels_.Label25[9] = Coord(gps_.GpsSigmaE);
  gps_.GpsSigmaN = Strict(f[12]);
  panels_.Label25[3] = Coord(gps_.GpsSigmaN);
  gps_.GpsSigmaH = Strict(f[14]);
  panels_.Label25[10] = Coord(gps_.GpsSigmaH);

  PanelLabel& l6 = panels_.Label6;
  std::string_view status = f[17];
  if (status == "0") {
    gps_.GpsFixText = "沒有資料";
  } else if (status == "1") {
    gps_.GpsFixText = "單點定位";
    l6.ForeColor = colour::Black;
  } else if (status == "2") {
    gps_.GpsFixText = "DGPS";
  } else if (status == "3") {
    gps_.GpsFixText = "RT20";
  } else if (status == "4") {
    gps_.GpsFixText = "RT2";
    l6.ForeColor = colour::Red;
  } else if (status == "5") {
    gps_.GpsFixText = "WAAS";
  }
  l6.Caption = gps_.GpsFixText;

  // The solution text by field 16, for the two RTK fix types only.
  static const char* const kRt20[] = {"最佳解", "一般解", "參考解成型", "觀測量不夠", "變方過大",
                                      "殘差過大", "座標差過大", "負數解", "沒有差分"};
  static const char* const kRt2[] = {"最佳解",     "寬徑解",   "收歛解",   "一般解",
                                     "參考解成型", "觀測量不夠", "變方過大", "殘差過大",
                                     "座標差過大", "負數解",   "沒有差分"};
  PanelLabel& l8 = panels_.Label8;
  std::string solution = "沒有差分";
  std::string_view code = f[16];
  auto pick = [&](const char* const* table, int size) {
    for (int i = 0; i < size; ++i)
      if (code == std::to_string(i)) solution = table[i];
  };
  if (gps_.GpsFixText == "RT20") {
    pick(kRt20, 9);
  } else if (gps_.GpsFixText == "RT2") {
    l8.BackColor = colour::ButtonFace;
    l8.ForeColor = colour::Black;
    pick(kRt2, 11);
    if (code == "0") {
      l8.BackColor = colour::Red;
      l8.ForeColor = colour::Yellow;
    }
  }
  l8.Caption = solution;
  panels_.Label12.Caption = std::string(f[4]);
  panels_.Label11.Caption = std::string(f[6]);
  gps_.GpsHasFix = status.size() == 1 && status[0] >= '1' && status[0] <= '5' ? kTrue : kFalse;
  GpsPositionUpdate(gps_.GpsLon, gps_.GpsLat, gps_.GpsHeight);
}

void GpsReceiver::DUALANTENNA_data() {
  Fields f(gps_.GpsLine);
  if (f.LastIndex() != 25) return;
  double heading = Strict(f[12]);
  if (heading == 0) {
    gps_.GpsHeading = 0;  // no heading: the position update derives a course
    return;
  }
  gps_.GpsHeading = DegToRad(heading);
  panels_.Label25[15] = Degrees(heading);
  panels_.Label25[16] = Degrees(Strict(f[15]));
}

void GpsReceiver::INSPOSA_data() {
  AppendGobs(gps_.GpsLine);
  Fields f(gps_.GpsLine);
  if (f.LastIndex() != 14) return;
  // The inertial status word, shown in the two depth labels.
  panels_.Label21[0] = Mid(f[14], 5);
  panels_.Label21[1] = Mid(f[14], 14);
}

void GpsReceiver::POSA_data(const std::string& line) {
  panels_.Label6.Caption = "單點定位";
  Fields f(line);
  (void)f[3];
  (void)f[4];
  double v = Lenient(line);  // 0 for a line that begins with "$"
  gps_.GpsHeight = v;
  gps_.GpsSigmaE = v;
  gps_.GpsSigmaN = v;
  panels_.Label25[9] = num::Plain(gps_.GpsSigmaE);
  panels_.Label25[3] = num::Plain(gps_.GpsSigmaN);
  panels_.Label25[10] = num::Plain(gps_.GpsSigmaH);
  panels_.Label25[7] = Coord(gps_.GpsX);
  panels_.Label25[8] = Coord(gps_.GpsY);
}

// ---------------------------------------------------------------------------------------
// NMEA sentences

void GpsReceiver::GPGGA_data() {
  gps_.GpsLineCopy = gps_.GpsLine;
  Fields f(gps_.GpsLineCopy);
  if (!f[2].empty() && !f[4].empty() && !f[9].empty()) AppendGobs(gps_.GpsLineCopy);
  gps_.GpsSeconds = Strict(f[1]);

  PanelLabel& l6 = panels_.Label6;
  int32_t satellites = WholeStrict(f[7]);
  panels_.Label12.Caption = std::to_string(satellites);
  if (satellites > 0 && satellites < 4) {
    l6.ForeColor = colour::Red;
    l6.Caption = "衛星數不夠";
  }
  panels_.Label1_1 = "HDOP";
  panels_.Label1_1Centred = true;
  panels_.Label11.Caption = std::string(f[8]);
  sky_.LabelHDOP = panels_.Label11.Caption;
  skyChanged_ = true;

  // The quality code overwrites the satellite warning, except for codes it does not know.
  const int32_t quality = WholeStrict(f[6]);
  gps_.GpsHasFix = kFalse;
  switch (quality) {
    case 0: l6.Caption = "沒有GPS訊號"; l6.ForeColor = colour::Red; break;
    case 1: l6.Caption = "GPS-fix"; l6.ForeColor = colour::Black; break;
    case 2: l6.Caption = "DGPS-fix"; l6.ForeColor = colour::Blue; break;
    case 4: l6.Caption = "RTK-fix"; l6.ForeColor = colour::Blue; break;
    case 5: l6.Caption = "RTK-float"; l6.ForeColor = colour::Black; break;
    case 9: l6.Caption = "WAAS"; l6.ForeColor = colour::Blue; break;
    default: break;
  }

  std::string_view lat = f[2], lon = f[4];
  if (lat.empty() || lon.empty()) return;
  // ddmm.mmmm and dddmm.mmmm; the hemisphere letters are not read.
  double latDeg = Strict(Head(lat, 2)) + Strict(lat.substr(std::min<std::size_t>(2, lat.size()))) / 60;
  double lonDeg = Strict(Head(lon, 3)) + Strict(lon.substr(std::min<std::size_t>(3, lon.size()))) / 60;
  gps_.GpsHeight = Strict(f[9]);
  gps_.GpsHasFix = quality > 0 ? kTrue : kFalse;
  GpsPositionUpdate(lonDeg, latDeg, gps_.GpsHeight);
}

void GpsReceiver::GPGSA_data() {
  const std::string& line = gps_.GpsLine;
  if (line.empty() || line[0] != '$') return;
  Fields f(line);
  if (setup_.GpsReceiverKind == "Axis3") {
    std::string_view mode = f[2];
    if (mode == "1") {
      panels_.Label8.Caption = "無法定位";
      return;
    }
    if (mode == "2") panels_.Label8.Caption = "2D";
    else if (mode == "3") panels_.Label8.Caption = "3D";
  }
  gps_.GpsPDOP = Lenient(f[15]);
  gps_.GpsHDOP = Lenient(f[16]);
  gps_.GpsVDOP = Lenient(f[17]);
  AppendGobs(line);
}

void GpsReceiver::GPGSV_data() {
  const std::string& line = gps_.GpsLine;
  if (line.empty() || line[0] != '$') return;
  AppendGobs(line);
  Fields f(line);
  std::string_view message = f[2];
  int base = message == "1" ? 0 : message == "2" ? 4 : message == "3" ? 8 : -1;
  if (base == 0) gps_.SatStoredCount = 0;
  if (base >= 0) {
    // Up to four satellites of four fields each; a shorter message ends at its last field.
    for (std::size_t k = 0; k < 4; ++k) {
      bool whole = true;
      for (std::size_t row = 0; row < 4 && whole; ++row) {
        std::size_t i = 4 * k + 4 + row;
        if (!f.Has(i)) whole = false;
        else gps_.SatTable[row][base + k] = num::CInt(Lenient(f[i]));
      }
      if (!whole) break;
      ++gps_.SatStoredCount;
    }
  }
  // Satellites in view, and the plot of as many of them as are kept.
  double inView = Lenient(f[3]);
  sky_.Label4_2 = num::Plain(inView);
  SkyPlotUpdate(inView > 12 ? 12 : num::CInt(inView));
}

void GpsReceiver::GPRMC_data() {
  const std::string& line = gps_.GpsLine;
  if (line.size() < 7 || line[0] != '$' || line[6] != ',') return;
  Fields f(line);
  if (f.Count() < 12 || f[2] != "A") return;
  AppendGobs(line);
}

void GpsReceiver::GPGLL_data() {
  const std::string& line = gps_.GpsLine;
  if (line.size() < 7 || line[0] != '$' || line[6] != ',') return;
  if (Fields(line).Count() < 7) return;
  AppendGobs(line);
}

void GpsReceiver::GNVTG_data(const std::string& line) {
  if (line.empty() || line[0] != '$') return;
  Fields f(line);
  std::string_view mode = f[9];
  if (mode.empty()) return;
  switch (mode[0]) {
    case 'A': panels_.Label8.Caption = "單點定位"; break;
    case 'D': panels_.Label8.Caption = "差分定位"; break;
    case 'E': panels_.Label8.Caption = "測試資料"; break;
    case 'M': panels_.Label8.Caption = "手輸資料"; break;
    case 'N': panels_.Label8.Caption = "無效資料"; break;
    default: break;
  }
}

// ---------------------------------------------------------------------------------------
// Sky plot and position

void GpsReceiver::SkyPlotUpdate(int Count) {
  sky_.Markers.clear();
  sky_.Lists.clear();
  int used = 0;
  for (int i = 0; i < Count && i < 17; ++i) {
    SkyPlot::Marker m;
    m.Prn = gps_.SatTable[0][i];
    double elevation = gps_.SatTable[1][i], azimuth = gps_.SatTable[2][i] / 57.2957795130823;
    double r = (90 - elevation) * 150 / 90;
    m.X = r * std::sin(azimuth) + 166.5;
    m.Y = SkyPlot::Size - (r * std::cos(azimuth) + 166.5);
    m.Used = gps_.SatTable[3][i] != 0;
    if (m.Used) ++used;
    sky_.Markers.push_back(m);
    sky_.Lists.push_back({gps_.SatTable[0][i], gps_.SatTable[1][i], gps_.SatTable[2][i], gps_.SatTable[3][i], m.Used});
  }
  sky_.Label4_3 = std::to_string(used);
  sky_.LabelPDOP = num::Plain(gps_.GpsPDOP);
  sky_.LabelHDOP = num::Plain(gps_.GpsHDOP);
  sky_.LabelVDOP = num::Plain(gps_.GpsVDOP);
  skyChanged_ = true;
  changed_ = true;
}

void GpsReceiver::GpsPositionUpdate(double Lon, double Lat, double Height) {
  if (!(Lon > 0 && Lat > 0)) return;
  gps_.GpsPrevX = gps_.GpsX;
  gps_.GpsPrevY = gps_.GpsY;
  g2xy(datum_, Lon, Lat, gps_.GpsX, gps_.GpsY);
  if (gps_.GpsX == 0 && gps_.GpsY == 0) return;
  changed_ = true;

  if (gps_.LastRecordedX != 0) {
    double dx = gps_.GpsX - gps_.LastRecordedX, dy = gps_.GpsY - gps_.LastRecordedY;
    panels_.Label3 = Coord(std::sqrt(dx * dx + dy * dy));
  }
  gps_.GpsGround = setup_.SounderKind.empty()
                       ? Height - doc_.InstrumentHeight
                       : Height - doc_.InstrumentHeight - doc_.TargetHeight - gps_.SounderDepth;
  panels_.Label22 = Coord(gps_.GpsGround);
  panels_.Label25[7] = Coord(gps_.GpsX);
  panels_.Label25[8] = Coord(gps_.GpsY);
  panels_.Label18 = Coord(Height);
  if (doc_.StationSet) {
    double dx = gps_.GpsX - doc_.StationE, dy = gps_.GpsY - doc_.StationN;
    panels_.Label10 = num::Format(std::sqrt(dx * dx + dy * dy), "0.00");
  }
  if (hooks.ContinuePositionUpdate) hooks.ContinuePositionUpdate(Lon, Lat, Height);
}

}  // namespace tavik
