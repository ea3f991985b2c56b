#include "core/software_ini.h"

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>
#include <system_error>
#include <vector>

#include "core/record_text.h"
#include "core/text.h"

namespace tavik {

namespace fs = std::filesystem;

namespace {

// Calls f on every value in file order. The one list that both reading and writing use.
template <class Ini, class F>
void Visit(Ini& s, F&& f) {
  f(s.MeasureMode), f(s.InstrumentKind), f(s.InstrumentSerial), f(s.SounderKind), f(s.MotionSensorKind);
  f(s.PortNumber), f(s.BaudRate), f(s.SounderPort), f(s.SounderBaud), f(s.MotionSensorPort);
  f(s.MotionSensorBaud), f(s.ImuAttached), f(s.ImuOffset[0]), f(s.ImuOffset[1]), f(s.ImuOffset[2]);
  f(s.InstrumentHeight), f(s.TargetHeight), f(s.TrajectoryIntervalCm), f(s.MainWindowLoadOption);
  f(s.ShowPointNames), f(s.AutoNameOn), f(s.AutoNamePrefix), f(s.AutoNameNext), f(s.AutoNameDigits);
  f(s.PointMarkStyle), f(s.DxfTextScale), f(s.AreaUnit), f(s.SectionDistanceScale), f(s.SectionOption29);
  f(s.SectionHeightScale), f(s.SectionSetting31), f(s.SectionSetting32), f(s.CurrentLegend);
  f(s.CadaMeteText1), f(s.CadaMeteText2), f(s.AutoSaveMinutes), f(s.GpsDatum), f(s.CentralMeridian);
  f(s.ElevationDisplay), f(s.TextScale), f(s.BoatMark), f(s.RecordMode), f(s.RecordInterval);
  f(s.RecTypeCheck1), f(s.RecTypeCheck2), f(s.RecTypeCheck3), f(s.RecTypeOption1), f(s.RecTypeOption2);
  f(s.DiffSbas), f(s.CorrectionFormat), f(s.GgaRate), f(s.DiffEgps), f(s.DiffThird), f(s.PushMovesBaseMap);
  f(s.BmSetting55), f(s.BaseMapLineColour), f(s.BaseMapTextColour), f(s.BmSetting58), f(s.BmSetting59);
  f(s.BmSetting60), f(s.LineWidthScale), f(s.GridOn), f(s.RefSetting63), f(s.RefSetting64);
  f(s.RefSetting65), f(s.RefColourInUse), f(s.RefRed), f(s.RefGreen), f(s.RefBlue), f(s.FineShiftStep);
  f(s.FineRotationStep), f(s.StakeOption72), f(s.StakeDistance73), f(s.ObservationBookTitle);
}

struct Writer {
  std::string out;
  void Put(rec::LineWriter& w) { out += w.Line(); }
  void operator()(const std::string& v) { rec::LineWriter w; w.Text(v); Put(w); }
  void operator()(bool v) { rec::LineWriter w; w.Bool(v); Put(w); }
  void operator()(int16_t v) { rec::LineWriter w; w.Integer(v); Put(w); }
  void operator()(int32_t v) { rec::LineWriter w; w.Integer(v); Put(w); }
  void operator()(double v) { rec::LineWriter w; w.Number(v); Put(w); }
  void operator()(float v) { rec::LineWriter w; w.Number(v); Put(w); }
};

// Assigns the fields in order. A value of the wrong type or out of its type's range
// marks the whole file bad; the target is then thrown away by the caller.
struct Reader {
  const std::vector<rec::Field>& fields;
  std::size_t next = 0;
  bool ok = true;

  const rec::Field* Take() { return next < fields.size() ? &fields[next++] : nullptr; }
  // A number, or a boolean read as a number (-1 / 0), as the classic runtime allows.
  bool Number(double& v) {
    const rec::Field* f = Take();
    if (!f) return false;
    if (f->type == rec::Field::Number) v = f->number;
    else if (f->type == rec::Field::Bool) v = f->boolean ? -1 : 0;
    else return false;
    return std::isfinite(v);
  }
  template <class Int>
  void ReadInt(Int& out) {
    double v = 0;
    if (!Number(v) || v != std::floor(v) || v < std::numeric_limits<Int>::min() ||
        v > std::numeric_limits<Int>::max()) {
      ok = false;
      return;
    }
    out = static_cast<Int>(v);
  }
  void operator()(std::string& v) {
    const rec::Field* f = Take();
    if (!f || f->type == rec::Field::Bool) { ok = false; return; }
    v = f->text;
  }
  void operator()(bool& v) {
    const rec::Field* f = Take();
    if (!f) { ok = false; return; }
    if (f->type == rec::Field::Bool) v = f->boolean;
    else if (f->type == rec::Field::Number) v = f->number != 0;
    else ok = false;
  }
  void operator()(int16_t& v) { ReadInt(v); }
  void operator()(int32_t& v) { ReadInt(v); }
  void operator()(double& v) {
    double d = 0;
    if (Number(d)) v = d; else ok = false;
  }
  void operator()(float& v) {
    double d = 0;
    if (Number(d) && std::fabs(d) <= std::numeric_limits<float>::max()) v = static_cast<float>(d);
    else ok = false;
  }
};

void Remove(const fs::path& file) {
  std::error_code ec;
  fs::remove(file, ec);
}

}  // namespace

std::string SoftwareIniText(const SoftwareIni& ini) {
  Writer w;
  Visit(ini, w);
  return w.out;
}

IniReadResult ReadSoftwareIni(const fs::path& file, SoftwareIni& ini) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return IniReadResult::Missing;
  std::ostringstream buf;
  buf << in.rdbuf();
  in.close();
  const std::string utf8 = text::FromCp950(buf.str());

  // Count the values first: every field of every line counts, as a value-by-value
  // reader would see them. A line that does not parse makes the count meaningless.
  std::vector<rec::Field> fields;
  bool parsed = true;
  for (std::string_view line : rec::SplitLines(utf8)) {
    if (text::Trim(line).empty()) continue;
    auto f = rec::ParseLine(line);
    if (!f) {
      parsed = false;
      break;
    }
    fields.insert(fields.end(), f->begin(), f->end());
  }
  if (parsed && fields.size() == SoftwareIniValueCount) {
    SoftwareIni read = ini;
    Reader r{fields};
    Visit(read, r);
    if (r.ok) {
      ini = std::move(read);
      return IniReadResult::Read;
    }
  }
  Remove(file);
  return IniReadResult::Deleted;
}

bool WriteSoftwareIni(const fs::path& file, const SoftwareIni& ini) {
  const std::string bytes = text::ToCp950(SoftwareIniText(ini));
  std::error_code ec;
  if (file.has_parent_path()) fs::create_directories(file.parent_path(), ec);
  fs::path tmp = file;
  tmp += ".new";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    if (!out) return false;
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.flush();
    if (!out) {
      out.close();
      Remove(tmp);
      return false;
    }
  }
  fs::rename(tmp, file, ec);
  if (ec) {
    Remove(tmp);
    return false;
  }
  return true;
}

}  // namespace tavik
