#include "export/document_report.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <map>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/text.h"
#include "geo/angles.h"
#include "geo/area.h"
#include "geo/formats.h"
#include "view/legends.h"

namespace tavik::dxf {

namespace {

constexpr double kPi = 3.14159265358979;

std::string Coord(double v) { return std::isfinite(v) ? num::Format(v, fmt::Coordinate) : "-"; }

// Left-justified in a column of the given width, counting a Chinese character as two
// columns the way a fixed-width font on a Big5 system shows it.
std::string Col(const std::string& s, std::size_t width) {
  std::string out = s;
  for (std::size_t w = text::Cp950Length(s); w < width; ++w) out += ' ';
  return out;
}
// Right-justified likewise.
std::string RCol(const std::string& s, std::size_t width) {
  std::string pad;
  for (std::size_t w = text::Cp950Length(s); w < width; ++w) pad += ' ';
  return pad + s;
}

std::string Azimuth(double radians) {
  if (!std::isfinite(radians)) return "-";
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(radians, d, m, s);
  return fmt::FormatDmsList(d, m, s);
}

bool HasHeight(double h) { return std::isfinite(h) && h > -30; }

struct CodeSummary {
  int points = 0, lines = 0, circles = 0, arcs = 0;
  double length = 0;  // of the segments, metres
};

double ArcLength(const Entity& e) {
  // The circle through the three vertices; the sweep from 1 over 2 to 3.
  const double x1 = e.X[0], y1 = e.Y[0], x2 = e.X[1], y2 = e.Y[1], x3 = e.X[2], y3 = e.Y[2];
  const double d = 2 * (x1 * (y2 - y3) + x2 * (y3 - y1) + x3 * (y1 - y2));
  if (d == 0) return std::hypot(x3 - x1, y3 - y1);
  const double s1 = x1 * x1 + y1 * y1, s2 = x2 * x2 + y2 * y2, s3 = x3 * x3 + y3 * y3;
  const double cx = (s1 * (y2 - y3) + s2 * (y3 - y1) + s3 * (y1 - y2)) / d;
  const double cy = (s1 * (x3 - x2) + s2 * (x1 - x3) + s3 * (x2 - x1)) / d;
  const double r = std::hypot(x1 - cx, y1 - cy);
  auto norm = [](double a) { return a < 0 ? a + 2 * kPi : a; };
  const double a1 = std::atan2(y1 - cy, x1 - cx), a2 = std::atan2(y2 - cy, x2 - cx), a3 = std::atan2(y3 - cy, x3 - cx);
  double sweep = norm(a3 - a1);
  if (norm(a2 - a1) > sweep) sweep = 2 * kPi - sweep;  // the arc runs clockwise
  return r * sweep;
}

}  // namespace

std::string ReportTimeNow() {
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y/%m/%d %H:%M:%S", &tm);
  return buf;
}

std::string DocumentReportText(const Document& doc, int16_t areaUnit, const std::string& when) {
  std::string out;
  auto line = [&out](const std::string& s) {
    out += s.substr(0, s.find_last_not_of(' ') + 1) + "\r\n";
  };
  auto rule = [&line] { line(std::string(72, '-')); };

  line(std::string("TAVIK ") + ReportTitle);
  rule();
  line("圖檔名稱: " + (doc.IsOpen() ? doc.DocumentName + ".SPC" : std::string("(未命名)")));
  line("報表時間: " + when);
  line("圖形種類: " + std::string(doc.MapType == 2 ? "2 平面圖(不含高程)" : "1 地形圖(含高程)"));
  line("圖面比例: 1/" + num::Plain(doc.ScaleDenominator));
  const int32_t points = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size()));
  const int32_t entities = std::min<int32_t>(doc.EntityCount, static_cast<int32_t>(doc.EntityTable.size()));
  const int32_t refPoints = std::clamp<int32_t>(doc.ReferencePointCount, 0, points);
  const int32_t refEntities = std::clamp<int32_t>(doc.ReferenceEntityCount, 0, entities);
  if (doc.MinE <= doc.MaxE && doc.MinN <= doc.MaxN) {
    line("測區範圍: E " + Coord(doc.MinE) + " ~ " + Coord(doc.MaxE) + "   N " + Coord(doc.MinN) + " ~ " +
         Coord(doc.MaxN));
  } else {
    line("測區範圍: (無)");
  }

  // Counts of the survey's own rows; the reference map is counted apart.
  int livePoints = 0, deletedPoints = 0, liveEntities = 0, deletedEntities = 0;
  double lowH = 0, highH = 0;
  bool anyH = false;
  for (int32_t i = refPoints; i < points; ++i) {
    const Point& p = doc.PointTable[static_cast<std::size_t>(i)];
    if (p.Deleted != kFalse) {
      ++deletedPoints;
      continue;
    }
    ++livePoints;
    if (HasHeight(p.H)) {
      if (!anyH || p.H < lowH) lowH = p.H;
      if (!anyH || p.H > highH) highH = p.H;
      anyH = true;
    }
  }
  std::map<int, CodeSummary> byCode;
  for (int32_t i = refEntities; i < entities; ++i) {
    const Entity& e = doc.EntityTable[static_cast<std::size_t>(i)];
    if (e.Deleted != kFalse) {
      ++deletedEntities;
      continue;
    }
    ++liveEntities;
    CodeSummary& s = byCode[e.Code];
    switch (e.Kind) {
      case KindPoint: ++s.points; break;
      case KindLine:
        ++s.lines;
        if (const double l = std::hypot(e.X[1] - e.X[0], e.Y[1] - e.Y[0]); std::isfinite(l)) s.length += l;
        break;
      case KindCircle2:
      case KindCircle3: ++s.circles; break;
      case KindArc3:
        ++s.arcs;
        if (const double l = ArcLength(e); std::isfinite(l)) s.length += l;
        break;
      default: break;
    }
  }

  line("");
  line("[數量]");
  line("測點: " + std::to_string(livePoints) + " 點" +
       (deletedPoints ? "(另有 " + std::to_string(deletedPoints) + " 點已刪除,存檔時移除)" : std::string()));
  line("圖元: " + std::to_string(liveEntities) + " 筆" +
       (deletedEntities ? "(另有 " + std::to_string(deletedEntities) + " 筆已刪除,存檔時移除)" : std::string()));
  if (refPoints > 0 || refEntities > 0)
    line("參考圖: " + std::to_string(refPoints) + " 點, " + std::to_string(refEntities) + " 筆圖元");
  if (doc.BaseMapCount > 0) line("底圖: " + std::to_string(doc.BaseMapCount) + " 筆");
  line("流水號: " + std::to_string(doc.SerialCounter));
  if (doc.MapType != 2) {
    line(anyH ? "高程範圍: " + Coord(lowH) + " ~ " + Coord(highH) : std::string("高程範圍: (無高程)"));
  }

  line("");
  line("[測站與後視]");
  if (doc.StationSet != kFalse) {
    line("測站: " + Col(text::Trim(doc.StationName), 20) + " E " + Coord(doc.StationE) + "  N " +
         Coord(doc.StationN) + "  H " + Coord(doc.StationH));
    line("後視: " + Col(text::Trim(doc.BacksightName), 20) + " E " + Coord(doc.BacksightE) + "  N " +
         Coord(doc.BacksightN));
    line("後視方位角: " + Azimuth(doc.BacksightAzimuth) + "   方向常數: " + Azimuth(doc.OrientationConstant));
    line("儀器高: " + Coord(doc.InstrumentHeight) + "   稜鏡高: " + Coord(doc.TargetHeight));
  } else {
    line("(尚未設站)");
  }

  line("");
  line("[土地分割]");
  line("分割樁數: " + std::to_string(doc.SplitStakeCount));
  if (doc.SplitAreaValue != 0 && std::isfinite(doc.SplitAreaValue)) {
    line("分割面積: " + AreaLabelText(doc.SplitAreaValue, areaUnit) + "   標示位置 E " + Coord(doc.SplitAreaAt[0]) +
         "  N " + Coord(doc.SplitAreaAt[1]));
  } else {
    line("分割面積: (無)");
  }

  line("");
  line("[控制點]");
  line(Col("點名", 20) + RCol("橫座標E", 14) + RCol("縱座標N", 14) + RCol("高程H", 11) + "  樁標種類");
  int controls = 0;
  for (int32_t i = refEntities; i < entities; ++i) {
    const Entity& e = doc.EntityTable[static_cast<std::size_t>(i)];
    if (e.Deleted != kFalse || e.Code < 110 || e.Code > 199) continue;
    line(Col(text::Trim(e.Name), 20) + RCol(Coord(e.X[0]), 14) + RCol(Coord(e.Y[0]), 14) +
         RCol(HasHeight(e.Z[0]) ? Coord(e.Z[0]) : "-", 11) + "  " + text::Trim(view::LegendName(e.Code)));
    ++controls;
  }
  line("共 " + std::to_string(controls) + " 點");

  line("");
  line("[圖例統計]");
  line(Col("代碼", 6) + Col("圖例名稱", 16) + RCol("點", 8) + RCol("線段", 8) + RCol("圓", 6) + RCol("弧", 6) +
       RCol("長度(m)", 14));
  for (const auto& [code, s] : byCode) {
    std::string name = text::Trim(view::LegendName(code));
    if (name.empty()) name = "(無名稱)";
    line(Col(std::to_string(code), 6) + Col(name, 16) + RCol(std::to_string(s.points), 8) +
         RCol(std::to_string(s.lines), 8) + RCol(std::to_string(s.circles), 6) + RCol(std::to_string(s.arcs), 6) +
         RCol(s.lines + s.arcs ? Coord(s.length) : "", 14));
  }
  rule();
  return out;
}

std::string WriteDocumentReport(const Document& doc, int16_t areaUnit, const std::filesystem::path& path,
                                const std::string& when) {
  if (!io::ReplaceDurably(path, text::ToCp950(DocumentReportText(doc, areaUnit, when))))
    return "[" + path.filename().string() + "] 無法寫入,請確認資料夾可以寫入且檔案未被其它程式開啟.";
  return {};
}

}  // namespace tavik::dxf
