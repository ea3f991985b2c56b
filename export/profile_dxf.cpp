// Profiles and sections share one chart: a horizontal axis (chainage along the route,
// or offset across it), the ground above a datum line, and the band of stations below.
// Sizes are in U, the metres of drawing to 1 cm of paper at the horizontal scale; the
// heights are drawn exaggerated by the ratio of the two scales.
#include "export/profile_dxf.h"

#include <algorithm>
#include <cmath>

#include "basemap/ground_model.h"
#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/text.h"
#include "export/dxf_writer.h"
#include "export/ground_line.h"
#include "geo/angles.h"
#include "geo/azimuth.h"
#include "geo/formats.h"

namespace tavik::dxf {

std::filesystem::path SectionFilePath(const std::filesystem::path& target) {
  std::filesystem::path p = target;
  return p.replace_extension(".SEC");
}

namespace {

using Runs = std::vector<std::vector<GroundPoint>>;

constexpr double Scales[] = {100, 200, 250, 500, 1000, 2000, 2500, 5000, 10000, 20000, 50000, 100000};

// The smallest usual scale at which `metres` of ground take no more than `paper` metres.
double ScaleFor(double metres, double paper) {
  for (double s : Scales)
    if (metres / s <= paper) return s;
  return Scales[std::size(Scales) - 1];
}

// The smallest round step not below least.
double RoundStep(double least) {
  for (double d : {0.1, 0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0, 50.0, 100.0, 200.0, 500.0, 1000.0, 2000.0, 5000.0})
    if (d >= least) return d;
  return 10000;
}

// The ground height at s along the runs, false where there is none.
bool HeightAt(const Runs& runs, double s, double& H) {
  for (const auto& run : runs) {
    if (s < run.front().s || s > run.back().s) continue;
    auto it = std::lower_bound(run.begin(), run.end(), s, [](const GroundPoint& p, double v) { return p.s < v; });
    if (it == run.begin()) return H = it->H, true;
    const GroundPoint &b = *it, &a = *(it - 1);
    H = b.s > a.s ? a.H + (b.H - a.H) * (s - a.s) / (b.s - a.s) : b.H;
    return true;
  }
  return false;
}

struct Chart {
  std::string title, subtitle;  // UTF-8
  Runs runs;                    // s as the chart's horizontal value
  double xmin = 0, xmax = 0;
  std::vector<double> stations;
  bool chainage = true;         // station labels as chainages, else as offsets
  bool centreLine = false;      // a section's line at offset 0
  std::size_t route = 0;
  double datum = 0, top = 0;    // lowest level of the chart and highest ground

  void Levels() {
    double lo = INFINITY, hi = -INFINITY;
    for (const auto& run : runs)
      for (const auto& p : run) lo = std::min(lo, p.H), hi = std::max(hi, p.H);
    datum = std::floor(lo) - 1;
    top = std::max(hi, datum + 1);
  }
};

// The frame of a chart: the titles' margin on the left, the band below, the titles
// above; in U.
constexpr double Left = 4, Right = 0.5, Band = 3.7, Above = 1.3;
double ChartWidth(const Chart& c, double U) { return (Left + Right) * U + (c.xmax - c.xmin); }
double ChartHeight(const Chart& c, double U, double ex) { return (Band + Above) * U + (c.top - c.datum) * ex; }

struct Layers {
  std::string frame = text::ToCp950("圖框"), ground = text::ToCp950("地面線"), stations = text::ToCp950("樁號"),
              levels = text::ToCp950("高程"), datum = text::ToCp950("基準線"), centre = text::ToCp950("中心線");
  std::vector<LayerRow> Rows() const {
    return {{frame, "  7"}, {ground, "  1"}, {stations, "  7"}, {levels, "  7"}, {datum, "  5"}, {centre, "  3"}};
  }
};

struct Sheet {
  DxfStream& out;
  double U, ex;  // U per cm of paper; heights drawn ex times their size
  Layers L;

  double Width(const Chart& c) const { return ChartWidth(c, U); }
  double Height(const Chart& c) const { return ChartHeight(c, U, ex); }

  void Txt(const std::string& layer, double x, double y, double h, const std::string& utf8, double angle = 0) {
    out.TextAt(layer, "256", x, y, h * U, text::ToCp950(utf8), angle);
  }
  void Line(const std::string& layer, const char* ltype, double x1, double y1, double x2, double y2) {
    out.LineEntity(layer, ltype, x1, y1, 0, x2, y2, 0);
  }

  // The chart with its frame's lower left corner at ox, oy.
  void Draw(const Chart& c, double ox, double oy) {
    const double w = Width(c), h = Height(c);
    auto X = [&](double s) { return ox + Left * U + (s - c.xmin); };
    const double b0 = oy + 0.5 * U, b1 = b0 + 1.6 * U, yd = b1 + 1.6 * U;
    auto Y = [&](double H) { return yd + (H - c.datum) * ex; };
    const char* solid = "CONTINUOUS";

    Line(L.frame, solid, ox, oy, ox + w, oy);
    Line(L.frame, solid, ox + w, oy, ox + w, oy + h);
    Line(L.frame, solid, ox + w, oy + h, ox, oy + h);
    Line(L.frame, solid, ox, oy + h, ox, oy);
    Txt(L.frame, ox + 0.3 * U, oy + h - 0.6 * U, 0.35, c.title);
    Txt(L.frame, ox + 0.3 * U, oy + h - 1.05 * U, 0.25, c.subtitle);

    // The band: chainages (or offsets) below, ground levels above them.
    for (double y : {b0, b1}) Line(L.frame, solid, ox + 0.2 * U, y, X(c.xmax), y);
    Line(L.frame, solid, ox + 0.2 * U, b0, ox + 0.2 * U, yd);
    Txt(L.frame, ox + 0.4 * U, b0 + 0.65 * U, 0.3, c.chainage ? "樁號" : "距中心");
    Txt(L.frame, ox + 0.4 * U, b1 + 0.65 * U, 0.3, "地面高");
    Line(L.datum, solid, ox + 0.2 * U, yd, X(c.xmax), yd);
    Txt(L.datum, ox + 0.4 * U, yd + 0.1 * U, 0.25, "基準高 " + num::Format(c.datum, fmt::Level));

    // The height scale on the left edge of the chart.
    const double step = RoundStep(U / ex);
    Line(L.levels, solid, X(c.xmin), yd, X(c.xmin), Y(c.top));
    for (double k = 1; c.datum + k * step <= c.top + 1e-9; ++k) {
      const double H = c.datum + k * step, y = Y(H);
      Line(L.levels, solid, X(c.xmin) - 0.15 * U, y, X(c.xmin), y);
      Txt(L.levels, X(c.xmin) - 1.3 * U, y - 0.1 * U, 0.2, num::Format(H, fmt::Level));
    }

    // Stations: a line up to the ground, the chainage and the level in the band.
    double last = -INFINITY;
    for (double s : c.stations) {
      if (X(s) - last < 0.35 * U) continue;
      last = X(s);
      double H;
      const bool known = HeightAt(c.runs, s, H);
      Line(L.stations, solid, X(s), b0, X(s), known ? Y(H) : yd);
      const std::string label = c.chainage ? fmt::FormatChainage(s) : num::Format(s, fmt::Level);
      Txt(L.stations, X(s) + 0.25 * U, b0 + 0.1 * U, 0.2, label, 90);
      Txt(L.levels, X(s) + 0.25 * U, b1 + 0.1 * U, 0.2, known ? num::Format(H, fmt::Level) : "-", 90);
    }
    if (c.centreLine) Line(L.centre, "L2X1", X(0), b0, X(0), Y(c.top));

    for (const auto& run : c.runs)
      for (std::size_t i = 1; i < run.size(); ++i)
        Line(L.ground, solid, X(run[i - 1].s), Y(run[i - 1].H), X(run[i].s), Y(run[i].H));
  }
};

std::string ScaleText(double s) { return "1:" + num::General(s); }

// Writes the charts placed at their corners on one sheet.
DrawingResult WriteSheet(const std::vector<Chart>& charts, const std::vector<std::array<double, 2>>& at, double U,
                         double ex, const std::filesystem::path& target, const char* title) {
  DrawingResult r;
  r.title = title;
  io::ReplacingFile file(target);
  if (!file.Ok()) {
    r.message = CannotCreateMessage(target);
    return r;
  }
  DxfStream out(file, false);
  Sheet sheet{out, U, ex, {}};
  double E0 = INFINITY, N0 = INFINITY, E1 = -INFINITY, N1 = -INFINITY;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    E0 = std::min(E0, at[i][0]), N0 = std::min(N0, at[i][1]);
    E1 = std::max(E1, at[i][0] + sheet.Width(charts[i])), N1 = std::max(N1, at[i][1] + sheet.Height(charts[i]));
  }
  WriteHeader(out, U, E0, N0, E1, N1, E0, N0, E1, N1);
  WriteTables(out, U, sheet.L.Rows());
  out.Pair("  0", "SECTION");
  out.Pair("  2", "ENTITIES");
  for (std::size_t i = 0; i < charts.size(); ++i) sheet.Draw(charts[i], at[i][0], at[i][1]);
  out.Pair("  0", "ENDSEC");
  out.Pair("  0", "EOF");
  if (!file.Finish()) {
    r.message = CannotWriteMessage(target);
    return r;
  }
  r.ok = true;
  return r;
}

std::string RouteRefusal(const std::vector<Route>& routes, int16_t mapType) {
  if (routes.empty()) return "圖上沒有縱斷面線(圖例代碼520),\n請先以代碼520畫出路線中心線後再試.";
  if (mapType != 1) return "平面圖(2D)沒有高程,無法繪製斷面圖.";
  return {};
}

// The checks every drawing makes first; empty when the ground model stands.
std::string GroundRefusal(const Document& doc, const std::vector<Route>& routes, const basemap::GroundModel& g) {
  if (std::string why = RouteRefusal(routes, doc.MapType); !why.empty()) return why;
  if (!g.Ok()) return "有高程的測點不足三點(或全在一直線上),\n無法建立地形模型.";
  return {};
}

}  // namespace

std::string RouteRefusal(const Document& doc) { return RouteRefusal(RoutesOf(doc), doc.MapType); }

DrawingResult WriteProfileDxf(const Document& doc, const std::filesystem::path& target) {
  DrawingResult r;
  r.title = ProfileTitle;
  const std::vector<Route> routes = RoutesOf(doc);
  const basemap::GroundModel g(SurveyHeights(doc));
  if (std::string why = GroundRefusal(doc, routes, g); !why.empty()) return r.message = why, r;

  std::vector<Chart> charts;
  double longest = 0, relief = 0;
  for (std::size_t i = 0; i < routes.size(); ++i) {
    Chart c;
    c.runs = GroundAlong(g, routes[i].vertices);
    if (c.runs.empty()) continue;
    c.title = std::string(ProfileTitle) + " " + (routes[i].name.empty() ? "路線" + std::to_string(i + 1) : routes[i].name);
    c.xmax = routes[i].Length();
    c.route = i;
    c.Levels();
    longest = std::max(longest, c.xmax), relief = std::max(relief, c.top - c.datum);
    charts.push_back(std::move(c));
  }
  if (charts.empty()) return r.message = "縱斷面線附近沒有測點,\n無法內插地面高程,沒有輸出任何檔案.", r;

  // About a metre of paper for the longest route; heights exaggerated at most tenfold,
  // the relief kept within 20 cm of paper.
  const double H = ScaleFor(longest, 1.0);
  double V = H;
  for (double s : Scales)
    if (s >= H / 10 && s <= H && relief / s <= 0.2) {
      V = s;
      break;
    }
  const double U = H / 100, ex = H / V, step = RoundStep(2 * U);
  std::vector<std::array<double, 2>> at;
  double y = 0;
  for (Chart& c : charts) {
    const Route& route = routes[c.route];
    c.subtitle = "水平比例尺 " + ScaleText(H) + "  垂直比例尺 " + ScaleText(V);
    // Stations at every round step, at each bend of the route and at its end.
    for (double s = 0; s < c.xmax; s += step) c.stations.push_back(s);
    double done = 0;
    for (std::size_t v = 1; v < route.vertices.size(); ++v) {
      done += std::hypot(route.vertices[v].E - route.vertices[v - 1].E, route.vertices[v].N - route.vertices[v - 1].N);
      c.stations.push_back(done);
    }
    std::sort(c.stations.begin(), c.stations.end());
    at.push_back({0, y});
    y += ChartHeight(c, U, ex) + U;
  }
  r = WriteSheet(charts, at, U, ex, target, ProfileTitle);
  if (r.ok) r.message = "縱斷面圖輸出完成\n水平比例尺 " + ScaleText(H) + ", 垂直比例尺 " + ScaleText(V);
  return r;
}

DrawingResult WriteSectionsDxf(const Document& doc, double interval, const std::filesystem::path& target) {
  DrawingResult r;
  r.title = SectionsTitle;
  const std::vector<Route> routes = RoutesOf(doc);
  const basemap::GroundModel g(SurveyHeights(doc));
  if (std::string why = GroundRefusal(doc, routes, g); !why.empty()) return r.message = why, r;
  const std::vector<SectionLine> lines = SectionLines(doc, routes, interval);
  if (lines.empty()) return r.message = "圖上沒有橫斷面線(圖例代碼521),\n請指定橫斷面間距後再試.", r;

  std::vector<Chart> charts;
  std::vector<const SectionLine*> used;
  double width = 0, relief = 0;
  for (const SectionLine& l : lines) {
    Chart c;
    c.runs = GroundAlong(g, {l.left, l.right});
    if (c.runs.empty()) continue;
    for (auto& run : c.runs)
      for (auto& p : run) p.s -= l.centre;
    const double len = std::hypot(l.right.E - l.left.E, l.right.N - l.left.N);
    c.xmin = -l.centre, c.xmax = len - l.centre;
    c.chainage = false, c.centreLine = true;
    const std::string at = fmt::FormatChainage(l.chainage);
    c.title = "橫斷面 " + (l.name.empty() || l.name == at ? at : l.name + " " + at);
    c.Levels();
    width = std::max(width, len), relief = std::max(relief, c.top - c.datum);
    charts.push_back(std::move(c));
    used.push_back(&l);
  }
  if (charts.empty()) return r.message = "橫斷面線附近沒有測點,\n無法內插地面高程,沒有輸出任何檔案.", r;

  // Sections undistorted, each within 30 cm of paper across and 10 cm high.
  const double S = std::max(ScaleFor(width, 0.3), ScaleFor(relief, 0.1));
  const double U = S / 100, step = RoundStep(1.5 * U);
  std::vector<std::array<double, 2>> at;
  double cellW = 0, cellH = 0;
  for (Chart& c : charts) {
    c.subtitle = "比例尺 " + ScaleText(S);
    for (double s = std::ceil(c.xmin / step) * step; s <= c.xmax; s += step) c.stations.push_back(s);
    for (const auto& run : c.runs) c.stations.push_back(run.front().s), c.stations.push_back(run.back().s);
    std::sort(c.stations.begin(), c.stations.end());
    cellW = std::max(cellW, ChartWidth(c, U) + U), cellH = std::max(cellH, ChartHeight(c, U, 1) + U);
  }
  constexpr std::size_t PerColumn = 5;
  for (std::size_t i = 0; i < charts.size(); ++i)
    at.push_back({static_cast<double>(i / PerColumn) * cellW, -static_cast<double>(i % PerColumn) * cellH});

  // The section file first, into memory: the drawing and the file go out together.
  std::string sec = "SEC," + std::to_string(routes.size()) + "," + std::to_string(charts.size()) + "\r\n";
  auto F = [](double v) { return num::Format(v, fmt::Coordinate); };
  for (std::size_t i = 0; i < charts.size(); ++i) {
    const SectionLine& l = *used[i];
    const double len = std::hypot(l.right.E - l.left.E, l.right.N - l.left.N);
    const PlanPoint c{l.left.E + (l.right.E - l.left.E) * l.centre / len, l.left.N + (l.right.N - l.left.N) * l.centre / len};
    int16_t d = 0, m = 0;
    double s = 0;
    double dist = 0, azimuth = 0;
    AzimuthDistance(l.left.E, l.left.N, l.right.E, l.right.N, dist, azimuth);
    RadiansToDms(azimuth, d, m, s);
    std::size_t count = 0;
    std::string rows;
    for (const auto& run : charts[i].runs)
      for (const auto& p : run) rows += F(p.s) + "," + F(p.H) + "\r\n", ++count;
    const std::string& rn = routes[l.route].name;
    sec += "S," + (l.name.empty() ? fmt::FormatChainage(l.chainage) : l.name) + "," +
           (rn.empty() ? "路線" + std::to_string(l.route + 1) : rn) + "," + F(l.chainage) + "," + F(c.E) + "," +
           F(c.N) + "," + fmt::FormatDmsList(d, m, s) + "," + std::to_string(count) + "\r\n" + rows;
  }

  r = WriteSheet(charts, at, U, 1, target, SectionsTitle);
  if (!r.ok) return r;
  const std::filesystem::path secPath = SectionFilePath(target);
  if (!io::ReplaceDurably(secPath, text::ToCp950(sec))) {
    r.ok = false;
    r.message = CannotCreateMessage(secPath);
    return r;
  }
  r.message = "橫斷面圖輸出完成: " + std::to_string(charts.size()) + " 個橫斷面, 比例尺 " + ScaleText(S);
  if (charts.size() < lines.size())
    r.message += "\n" + std::to_string(lines.size() - charts.size()) + " 個橫斷面附近沒有測點,未輸出";
  r.message += "\n橫斷面檔 [" + secPath.filename().string() + "]";
  return r;
}

}  // namespace tavik::dxf
