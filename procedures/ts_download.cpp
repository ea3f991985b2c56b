#include "procedures/ts_download.h"

#include <cmath>
#include <map>

#include "core/numbers.h"
#include "core/tables.h"
#include "core/text.h"
#include "geo/angles.h"
#include "procedures/observation_log.h"
#include "procedures/observation_pipeline.h"
#include "procedures/reduction.h"

namespace tavik {

int16_t DownloadCode(const std::string& code) {
  std::optional<double> v = num::ParseStrict(code);
  if (v && *v >= 1 && *v <= 999 && *v == std::floor(*v)) return static_cast<int16_t>(*v);
  return CodeNamedPoint;
}

namespace {

struct Place {
  double E = 0, N = 0, H = 0;
};

// The set-up the dump's observations are reduced from.
struct SetUp {
  bool known = false;
  std::string name;
  Place at;
  double instrumentHeight = 0;
  double orientation = 0;
  bool logged = false;  // its .OBS set-up group is written
};

void NamedPoint(SurveyContext& ctx, const dump::Record& r, double E, double N, double H) {
  if (r.name.empty()) return;
  const int16_t code = DownloadCode(r.code);
  AddEntity(ctx.doc, ctx.view, ctx.work, code, E, N, H, r.name);
  ctx.window.DrawSymbol(code, E, N, H, r.name);
}

void LogSetUp(SurveyContext& ctx, SetUp& s, const std::string& backsight, const Place& bs, int32_t hzRaw) {
  obslog::AppendLine(ctx.doc.ObsPath, obslog::SetupMarkLine(LogNow(ctx)));
  obslog::AppendLine(ctx.doc.ObsPath, obslog::StationLine(s.name, s.at.E, s.at.N, s.at.H, s.instrumentHeight));
  obslog::AppendLine(ctx.doc.ObsPath, obslog::BacksightLine(backsight, bs.E, bs.N, bs.H, hzRaw, 0, 0));
  s.logged = true;
}

std::string LineList(const std::vector<std::size_t>& lines) {
  std::string out;
  for (std::size_t i = 0; i < lines.size() && i < 5; ++i) out += (i ? ", " : "") + std::to_string(lines[i]);
  if (lines.size() > 5) out += ", ...";
  return out;
}

}  // namespace

DownloadResult ConvertDump(SurveyContext& ctx, dump::Format format, std::string_view text, bool complete) {
  Document& doc = ctx.doc;
  InstrumentState& inst = ctx.inst;
  // Columns count the instrument's bytes; names and codes are code page 950 text.
  dump::Dump d = dump::Read(format, text);
  for (dump::Record& r : d.records) {
    for (std::string* t : {&r.name, &r.code, &r.station, &r.backsight}) *t = text::FromCp950(*t);
  }
  d.lastName = text::FromCp950(d.lastName);
  DownloadResult result;
  result.skipped = d.skipped;
  result.cut = d.cut || !complete;

  SetUp setup;
  if (doc.StationSet != kFalse) {
    setup.known = true;
    setup.name = doc.StationName;
    setup.at = {doc.StationE, doc.StationN, doc.StationH};
    setup.instrumentHeight = doc.InstrumentHeight;
    setup.orientation = doc.OrientationConstant;
    setup.logged = true;  // the set-up in force has its group in the log already
  }
  std::map<std::string, Place> known;  // named places of the dump, for stations and backsights
  const double keptTargetHeight = doc.TargetHeight;
  double targetHeight = doc.TargetHeight;
  const std::string keptMode = inst.MeasureMode;
  inst.MeasureMode = "TS";

  for (const dump::Record& r : d.records) {
    switch (r.kind) {
      case dump::Record::Station: {
        SetUp next;
        next.name = r.name;
        next.instrumentHeight = r.hasHeight ? r.height : setup.instrumentHeight;
        if (r.hasCoordinates) {
          // Until its back bearing comes, the circle is taken to read azimuths.
          next.known = true;
          next.at = {r.E, r.N, r.H};
          known[r.name] = next.at;
        } else if (auto k = known.find(r.name); k != known.end()) {
          next.known = true;
          next.at = k->second;
        } else {
          // A station by name only stands where the set-up in force stands.
          next.known = setup.known;
          next.at = setup.at;
          next.orientation = setup.orientation;
        }
        setup = next;
        break;
      }
      case dump::Record::Backsight: {
        auto bs = known.find(r.backsight);
        Place bsAt = bs != known.end() ? bs->second : Place{};
        double azimuth = 0;
        bool oriented = true;
        if (r.hasAzimuth) azimuth = PackedToRadians(r.azimuthRaw);
        else if (bs != known.end() && setup.known) azimuth = PairAzimuth(bsAt.E - setup.at.E, bsAt.N - setup.at.N);
        else oriented = false;
        if (oriented) setup.orientation = azimuth - PackedToRadians(r.hzRaw);
        if (setup.known) LogSetUp(ctx, setup, r.backsight, bsAt, r.hzRaw);
        break;
      }
      case dump::Record::TargetHeight:
        targetHeight = r.height;
        break;
      case dump::Record::Coordinates: {
        ctx.window.DrawPointMark(doc.PointCount + 1, r.E, r.N);
        AddPoint(doc, ctx.view, ctx.work, r.E, r.N, r.H);
        known[r.name] = {r.E, r.N, r.H};
        NamedPoint(ctx, r, r.E, r.N, r.H);
        ++result.coordinates;
        break;
      }
      case dump::Record::Observation: {
        if (r.hasHeight) targetHeight = r.height;
        if (!setup.known || r.slope <= 0) {
          ++result.unreduced;
          break;
        }
        if (!setup.logged) LogSetUp(ctx, setup, "", Place{}, 0);
        inst.ObsSlope = r.slope;
        inst.ObsHzRaw = r.hzRaw;
        inst.ObsVRaw = r.vRaw;
        inst.ObsHz = PackedToRadians(r.hzRaw);
        inst.ObsV = PackedToRadians(r.vRaw);
        double hz = inst.ObsHz, v = inst.ObsV, E = 0, N = 0;
        FaceAndOrient(hz, v, setup.orientation);
        PolarPoint(setup.at.E, setup.at.N, r.slope, hz, v, E, N);
        double H = 0;
        if (doc.MapType == 1)
          H = targetHeight == NoTargetHeight
                  ? NoHeight
                  : setup.instrumentHeight + setup.at.H + r.slope * std::sin(v) - targetHeight;
        doc.TargetHeight = targetHeight;  // the observation's line logs it
        ctx.survey.PointAdded = kFalse;
        ctx.survey.CadastralChoice = 2;
        ctx.survey.CadastralPointName.clear();
        AddSurveyPoint(ctx, 1, true, E, N, H);
        known[r.name] = {E, N, H};
        NamedPoint(ctx, r, E, N, H);
        ++result.observations;
        break;
      }
    }
  }
  doc.TargetHeight = keptTargetHeight;
  inst.MeasureMode = keptMode;
  if (result.observations + result.coordinates > 0) {
    doc.MapChanged = kTrue;
    ctx.window.SafetySave();
    ctx.window.FitViewToExtent();
  }

  std::string& m = result.message;
  if (result.cut) {
    m = d.lastLine ? "資料傳輸中斷, 已收到的資料已保留. 最後一筆完整的記錄在第 " + std::to_string(d.lastLine) +
                         (format == dump::Format::Sdr ? " 行" : " 筆") +
                         (d.lastName.empty() ? std::string() : " (點 " + d.lastName + ")") + "."
                   : std::string("資料傳輸中斷, 沒有收到完整的記錄.");
  } else {
    m = "下載完畢.";
  }
  m += " 觀測 " + std::to_string(result.observations) + " 點, 座標 " + std::to_string(result.coordinates) + " 點.";
  if (result.skipped)
    m += " 資料錯誤略過 " + std::to_string(result.skipped) + " 筆 (第 " + LineList(d.skippedLines) +
         (format == dump::Format::Sdr ? " 行)." : " 筆).");
  if (result.unreduced) m += " " + std::to_string(result.unreduced) + " 筆觀測沒有測站或距離, 未計算座標.";
  return result;
}

}  // namespace tavik
