// WriteDxf: the sheet, the tables, the symbol blocks and every point and entity of the
// document, in the order a CAD program reads them. The sheet is laid on a grid of
// 10 cm of paper at the chosen scale; all symbol sizes and text heights are multiples
// of U, the metres of 1 cm of paper.
#include "export/dxf_export.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "core/app_paths.h"
#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/text.h"
#include "export/dxf_writer.h"
#include "geo/area.h"
#include "geo/circle.h"
#include "geo/constants.h"
#include "view/legends.h"

namespace tavik::dxf {
namespace {

int16_t LayerColour(int code) {
  switch (code) {
    case 99: return 5;
    case 168: return 222;
    case 299: return 252;
    case 513: case 514: case 515: return 1;
    case 520: case 521: return 7;
    default: break;
  }
  static constexpr int16_t byHundreds[10] = {7, 7, 7, 2, 1, 6, 1, 3, 4, 5};
  return code >= 0 && code <= 999 ? byHundreds[code / 100] : 7;
}

bool IsBlockCode(int code) {
  // Codes drawn as text, lines or ornamented lines: they have no symbol of their own.
  static constexpr int16_t notSymbols[] = {
      12,  13,  99,  168, 201, 205, 206, 207, 215, 217, 220, 227, 228, 229, 230, 231,
      235, 237, 251, 299, 301, 407, 411, 510, 513, 514, 515, 520, 521, 603, 606, 607,
      613, 623, 723, 725, 801, 802, 811, 812, 814, 817, 818, 820, 834, 901, 905};
  for (int16_t c : notSymbols)
    if (c == code) return false;
  return true;
}

constexpr const char* Caption = "輸出 DXF 圖檔";
constexpr const char* Continuous = "CONTINUOUS";

// Line type of a line, circle or arc of a code.
const char* LineTypeOf(int code) {
  switch (code) {
    case 205: case 725: case 811: case 814: case 839: return "L2X1";
    case 206: return "L24X06";
    case 207: case 411: return "L3X1DX1";
    case 302: return "L25X1";
    case 723: return "DX15";
    case 812: case 820: return "L15X1";
    case 849: case 850: return "L1X1";
    default: return Continuous;
  }
}

// Spacing in U of the symbols repeated along a symbol line; 0 for other codes.
double SymbolSpacing(int code) {
  switch (code) {
    case 408: return 0.15;
    case 211: case 410: case 413: return 0.45;
    case 412: case 622: return 0.5;
    case 414: case 415: return 0.3;
    case 731: return 0.35;
    case 817: return 1;
    case 819: return 0.8;
    default: return 0;
  }
}

// Codes left out of the second, unadorned pass on "STR".
bool SkippedOnStr(int code) {
  switch (code) {
    case 513: case 514: case 520: case 521: case 201: case 205: case 206: case 207: case 231: case 235:
    case 237: case 299:
      return true;
    default:
      return false;
  }
}

bool Live(const Entity& e) { return e.Deleted == kFalse; }

struct Exporter {
  const Document& doc;
  const DxfExportOptions& o;
  DxfStream& out;
  DxfExportResult& result;
  double U = 0, FloorH = 0;
  std::array<std::string, 1000> layer;  // trimmed legend names in code page 950
  std::array<bool, 1000> used{};
  int32_t collinear = 0;    // circles and arcs left out, counted in the first pass only
  bool countCollinear = true;

  const std::string& Layer(int code) const { return layer[code >= 0 && code <= 999 ? code : 999]; }
  std::string Height(double h) const { return num::Format(h, o.HeightDecimals == 3 ? "0.000" : "0.00"); }
  double Raised(double h) const { return h < FloorH ? FloorH : h; }
  static std::string Trimmed(const std::string& name) { return text::ToCp950(text::Trim(name)); }

  void Insert(const std::string& lay, std::string_view block, double x, double y, double z, bool scaleZ,
              const double* angle = nullptr) {
    out.Pair("  0", "INSERT");
    out.Pair("  8", lay);
    out.Pair("  2", block);
    out.Pair(" 10", x);
    out.Pair(" 20", y);
    out.Pair(" 30", z);
    out.Pair(" 41", U);
    out.Pair(" 42", U);
    if (scaleZ) out.Pair(" 43", U);
    if (angle) out.Pair(" 50", *angle);
  }

  // The Name of a line as stored: its 20 bytes, blanks included, at the line's midpoint.
  void MidpointName(const Entity& e) {
    const double mE = (e.X[0] + e.X[1]) / 2, mN = (e.Y[0] + e.Y[1]) / 2;
    out.Text(Layer(e.Code), "256", mE - 0.2 * U, mN - 0.1 * U, e.Z[0], 0.2 * U, text::FixedField(e.Name, NameBytes));
  }

  void PointFeature(const Entity& e) {
    const std::string& L = Layer(e.Code);
    const double E = e.X[0], N = e.Y[0], H = e.Z[0];
    const bool topo = doc.MapType == 1;
    switch (e.Code) {
      case 517:
        if (!topo) break;
        if (o.PointAsBlock == 1) {
          out.Pair("  0", "INSERT");
          out.Pair("  8", L);
          out.Pair(" 62", "6");
          out.Pair("  2", L);
          out.Pair(" 10", E), out.Pair(" 20", N), out.Pair(" 30", H);
          out.Pair(" 41", U), out.Pair(" 42", U);
        } else {
          out.Pair("  0", "POINT");
          out.Pair("  8", L);
          out.Pair(" 62", "6");
          out.Pair(" 10", E), out.Pair(" 20", N), out.Pair(" 30", H);
        }
        out.Text(L, "256", E + 0.1 * U, N - 0.1 * U, H, 0.2 * U, Height(H));
        return;
      case 99:
        out.Text(L, "256", E - 0.15 * U, N - 0.25 * U, H, 0.2 * U, Trimmed(e.Name));
        return;
      case 13:
        out.Text(L, "256", E, N, H, 0.2 * U, text::ToCp950(AreaLabelText(H, o.AreaUnit)), false);
        return;
      case 168: {
        // Track points named EP carry no label; the others show the name after its
        // two-character prefix.
        if (text::LeftChars(e.Name, 2) == "EP") return;
        std::string rest = e.Name.substr(text::LeftChars(e.Name, 2).size());
        out.Text(L, "256", E - 0.15 * U, N - 0.25 * U, H, 0.2 * U, Trimmed(rest));
        return;
      }
      case 12: case 235: case 301: case 520: case 521:
        out.Text(L, "256", E, N, H, 0.2 * U, Trimmed(e.Name));
        return;
      default:
        break;
    }
    const bool hasBlock = e.Code >= 0 && e.Code <= 999 && IsBlockCode(e.Code);
    Insert(L, hasBlock ? std::string_view(L) : std::string_view("999"), E, N, H, true);
    if (!text::Trim(e.Name).empty()) {
      const double dx = (e.Code >= 872 && e.Code <= 874) ? 0.2 : 0.45;
      out.Text(L, "256", E - dx * U, N - 0.1 * U, H, 0.25 * U, Trimmed(e.Name));
    }
    static const std::string heightSuffix = text::ToCp950("_高程");
    if (e.Code / 100 == 1 && topo)
      out.Text(L + heightSuffix, "7", E - 0.55 * U, N - 0.5 * U, H, 0.25 * U, num::Format(H, "0.000"));
  }

  // Short crossing lines along a line: ticks of 510 and 905 stand on the left side,
  // those of 921 cross to both sides.
  void Ticks(const Entity& e, const std::string& L, double H2) {
    const double spacing = (e.Code == 905 ? 0.5 : 0.2) * U;
    const double tick = (e.Code == 905 ? 0.05 : 0.1) * U;
    const double dE = e.X[1] - e.X[0], dN = e.Y[1] - e.Y[0];
    const double length = std::hypot(dE, dN);
    if (!(length > 0)) return;
    const double cE = dE / length, cN = dN / length;  // along the line
    const double back = e.Code == 921 ? tick : 0;
    for (int64_t k = 0;; ++k) {
      const double s = 0.1 * U + k * spacing;
      if (!(s <= length - spacing / 2)) break;
      const double E = e.X[0] + s * cE, N = e.Y[0] + s * cN;
      const double H = e.Z[0] + (H2 - e.Z[0]) * s / length;
      out.LineEntity(L, Continuous, E + back * cN, N - back * cE, H, E - tick * cN, N + tick * cE, H);
    }
  }

  void SymbolLine(const Entity& e, const std::string& L, double H2, double S) {
    if (e.Kind == KindLine) {
      const double dE = e.X[1] - e.X[0], dN = e.Y[1] - e.Y[0];
      const double length = std::hypot(dE, dN);
      // The direction by quadrant, as arctan(dN / dE) turned by Pi where dE <= 0; a
      // vertical line takes the direction it runs in.
      double a = dE > 0 ? std::atan(dN / dE) : dE < 0 ? std::atan(dN / dE) + Pi : (dN >= 0 ? Pi / 2 : ThreePi / 2);
      const double degrees = e.Code == 731 ? 0 : a * RadToDeg;
      for (int64_t k = 0; k * S <= length - 2 * S / 3; ++k) {
        const double s = k * S;
        const double f = length > 0 ? s / length : 0;
        Insert(L, L, e.X[0] + s * std::cos(a), e.Y[0] + s * std::sin(a), e.Z[0] + (H2 - e.Z[0]) * f, true,
               &degrees);
      }
      if (e.Code == 211) MidpointName(e);
      return;
    }
    // An arc: walk it counterclockwise from its start, each symbol turned along the
    // chord to the next step.
    double x1 = e.X[0], y1 = e.Y[0], x3 = e.X[2], y3 = e.Y[2];
    if (Cross3(x1, y1, e.X[1], e.Y[1], x3, y3) < 0) std::swap(x1, x3), std::swap(y1, y3);
    double Ec, Nc, r, start, end;
    if (!ArcFrom3(x1, y1, e.X[1], e.Y[1], x3, y3, Ec, Nc, r, start, end) || !(r > 0)) {
      ++collinear;
      return;
    }
    double sweep = end - start;
    if (sweep < 0) sweep += 360;
    const double step = S / r, a0 = start / RadToDeg, total = sweep / RadToDeg;
    for (int64_t k = 0; k * S <= total * r - 2 * S / 3; ++k) {
      const double a = a0 + k * step;
      const double chord = (a + step / 2) * RadToDeg + 90;
      Insert(L, L, Ec + r * std::cos(a), Nc + r * std::sin(a), e.Z[0], true, &chord);
    }
  }

  // Lines, circles and arcs. `offset` draws the copy of a double line: 0.1 U to the
  // left of a line, or a radius smaller by 0.1 U.
  template <typename Row>
  void Shape(const Row& e, const std::string& L, const char* ltype, double z1, double z2, double offset = 0) {
    switch (e.Kind) {
      case KindLine: {
        double dx = 0, dy = 0;
        if (offset != 0) {
          const double dE = e.X[1] - e.X[0], dN = e.Y[1] - e.Y[0], len = std::hypot(dE, dN);
          if (len > 0) dx = -dN / len * offset, dy = dE / len * offset;
        }
        out.LineEntity(L, ltype, e.X[0] + dx, e.Y[0] + dy, z1, e.X[1] + dx, e.Y[1] + dy, z2);
        return;
      }
      case KindCircle2:
        out.Circle(L, ltype, e.X[0], e.Y[0], z1, std::hypot(e.X[1] - e.X[0], e.Y[1] - e.Y[0]) - offset);
        return;
      case KindCircle3: {
        double Ec, Nc, r;
        if (!CircleCentre3(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], Ec, Nc, r)) {
          collinear += countCollinear;
          return;
        }
        out.Circle(L, ltype, Ec, Nc, z1, r - offset);
        return;
      }
      case KindArc3: {
        double Ec, Nc, r, a1, a2;
        if (!ArcFrom3(e.X[0], e.Y[0], e.X[1], e.Y[1], e.X[2], e.Y[2], Ec, Nc, r, a1, a2)) {
          collinear += countCollinear;
          return;
        }
        out.Arc(L, ltype, Ec, Nc, z1, r - offset, a1, a2);
        return;
      }
      default:
        return;
    }
  }

  void Figure(const Entity& e) {
    const std::string& L = Layer(e.Code);
    const double H2 = Raised(e.Z[1]);
    switch (e.Code) {
      case 407: case 813:
        Shape(e, L, Continuous, e.Z[0], H2);
        Shape(e, L, e.Code == 407 ? "L1X1" : "DX2", e.Z[0], H2, 0.1 * U);
        if (e.Code == 407 && e.Kind == KindLine) MidpointName(e);
        return;
      case 510: case 905: case 921:
        if (e.Kind != KindLine) break;
        Shape(e, L, Continuous, e.Z[0], H2);
        Ticks(e, L, H2);
        return;
      default:
        if (double S = SymbolSpacing(e.Code); S > 0 && (e.Kind == KindLine || e.Kind == KindArc3)) {
          SymbolLine(e, L, H2, S * U);
          return;
        }
        break;
    }
    Shape(e, L, LineTypeOf(e.Code), e.Z[0], H2);
    if (e.Kind == KindLine) MidpointName(e);
  }

  void Header(double E0, double N0, double E1, double N1) {
    WriteHeader(out, U, E0, N0, E1, N1, doc.MinE, doc.MinN, doc.MaxE, doc.MaxN);
  }

  void Tables() {
    std::vector<LayerRow> rows = {{text::ToCp950("圖框"), "  7"}, {"PTS", " 2"}, {"STR", " -2"}};
    if (doc.MapType == 1) rows.push_back({text::ToCp950("所有高程"), " -6"});
    for (int code = 0; code <= 999; ++code) {
      if (!used[code]) continue;
      const bool off = code == 513 || code == 514 || code == 515 || code == 520 || code == 521 || code == 299;
      rows.push_back({layer[code], num::Printed(off ? -LayerColour(code) : LayerColour(code))});
    }
    WriteTables(out, U, rows);
  }

  // Copies a symbol-library file line by line, the first `skip` lines dropped. False
  // when the file is missing or cannot be read.
  template <typename Before>
  bool CopySymbol(const std::filesystem::path& file, int skip, Before before) {
    std::string bytes;
    if (!io::ReadWholeFile(file, bytes)) {
      result.missingSymbols.push_back(file.string() + "支援檔遺失或遭破壞!!");
      return false;
    }
    std::size_t pos = 0;
    for (int i = 0; i < skip && pos < bytes.size(); ++i) {
      std::size_t nl = bytes.find('\n', pos);
      pos = nl == std::string::npos ? bytes.size() : nl + 1;
    }
    before();
    while (pos < bytes.size()) {
      std::size_t nl = bytes.find('\n', pos);
      std::size_t endLine = nl == std::string::npos ? bytes.size() : nl;
      std::string_view line(bytes.data() + pos, endLine - pos);
      if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
      out.Line(line);
      pos = nl == std::string::npos ? bytes.size() : nl + 1;
    }
    return true;
  }

  void Blocks() {
    out.Pair("  0", "SECTION");
    out.Pair("  2", "BLOCKS");
    const std::filesystem::path dir = o.symbolDir;
    for (int code = 0; code <= 999; ++code) {
      // 817 is cleared with the codes that have no symbol of their own, yet its lines
      // repeat its block; a drawing that inserts a block it doesn't define is refused by
      // CAD programs, so the block goes in whenever the code is used.
      if (!used[code] || (!IsBlockCode(code) && SymbolSpacing(code) == 0)) continue;
      CopySymbol(AppPaths::Find(dir, std::to_string(code) + ".dxf"), 6, [&] {
        out.Pair("  0", "BLOCK");
        out.Pair("  8", layer[code]);
        out.Pair("  2", layer[code]);
        out.Pair(" 62", static_cast<double>(LayerColour(code)));
      });
    }
    CopySymbol(AppPaths::Find(dir, "999.dxf"), 0, [] {});
    out.Pair("  0", "ENDSEC");
  }

  void Frame(double E0, double N0, double E1, double N1, int cols, int rows) {
    const std::string F = text::ToCp950("圖框");
    const double z = FloorH, step = o.DxfScale / 10, tick = 0.2 * U;
    if (o.GridTicks) {
      out.LineEntity(F, Continuous, E0, N0, z, E1, N0, z);
      out.LineEntity(F, Continuous, E1, N0, z, E1, N1, z);
      out.LineEntity(F, Continuous, E1, N1, z, E0, N1, z);
      out.LineEntity(F, Continuous, E0, N1, z, E0, N0, z);
      for (int i = 0; i <= cols; ++i) {
        const double E = i * step + E0;
        out.LineEntity(F, Continuous, E, N0, z, E, N0 + tick, z);
        out.LineEntity(F, Continuous, E, N1, z, E, N1 - tick, z);
      }
      for (int i = 0; i <= rows; ++i) {
        const double N = i * step + N0;
        out.LineEntity(F, Continuous, E0, N, z, E0 + tick, N, z);
        out.LineEntity(F, Continuous, E1, N, z, E1 - tick, N, z);
      }
    }
    if (o.GridFull) {
      for (int i = 0; i <= cols; ++i) out.LineEntity(F, Continuous, i * step + E0, N0, z, i * step + E0, N1, z);
      for (int i = 0; i <= rows; ++i) out.LineEntity(F, Continuous, E0, i * step + N0, z, E1, i * step + N0, z);
    }
    if (o.GridLabels) {
      for (int i = 0; i <= cols; ++i)
        out.Text(F, "7", i * step + E0 - U, N0 - U * 0.6, z, U * 0.4, num::General(i * step + E0));
      for (int i = 0; i <= rows; ++i)
        out.Text(F, "7", E0 - U * 2.7, i * step + N0 - U * 0.1, z, U * 0.4, num::General(i * step + N0));
    }
  }
};

}  // namespace

DxfExportResult WriteDxf(const Document& doc, const DxfExportOptions& options, const std::filesystem::path& target) {
  DxfExportResult result;
  result.title = Caption;
  const int32_t refP = doc.ReferencePointCount, refE = doc.ReferenceEntityCount;
  if ((doc.PointCount == 0 && doc.EntityCount == 0) || (doc.PointCount == refP && doc.EntityCount == refE)) {
    result.message = "這是一個空檔案,沒有內容可以輸出";
    return result;
  }
  const double U = options.DxfScale / 100;
  const int32_t points = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size()));
  const int32_t entities = std::min<int32_t>(doc.EntityCount, static_cast<int32_t>(doc.EntityTable.size()));

  // The lowest surveyed height puts the frame and every raised vertex on the ground of
  // the survey rather than at sea level; heights of -30 and below mean "no height".
  double FloorH = 0;
  if (doc.MapType == 1) {
    bool any = false;
    for (int32_t i = std::max(refP, 0); i < points; ++i) {
      const Point& p = doc.PointTable[i];
      if (p.Deleted || p.H <= -30) continue;
      if (!any || p.H < FloorH) FloorH = p.H;
      any = true;
    }
  }

  // The sheet: whole cells of 10 cm of paper around the extents.
  const double cell = 10 * U;
  double E0 = num::RoundHalfEven(doc.MinE / cell) * cell;
  if (doc.MinE - E0 < 0) E0 -= cell;
  double N0 = num::RoundHalfEven(doc.MinN / cell) * cell;
  if (doc.MinN - N0 < 0) N0 -= cell;
  const double cols = num::RoundHalfEven((doc.MaxE - E0) / cell + 0.5);
  const double rows = num::RoundHalfEven((doc.MaxN - N0) / cell + 0.5);
  if (!(cols >= -32768 && cols <= 32767 && rows >= -32768 && rows <= 32767)) {
    result.title = "比例尺太大...";
    result.message = "比例尺太大,以致方格數超過32767,\n 請改變比例尺後再試.";
    return result;
  }
  const double E1 = cols * cell + E0, N1 = rows * cell + N0;

  io::ReplacingFile file(target);
  if (!file.Ok()) {
    result.message = CannotCreateMessage(target);
    return result;
  }
  DxfStream out(file, doc.MapType == 1);
  Exporter x{doc, options, out, result, U, FloorH, {}, {}, 0};
  for (int code = 0; code <= 999; ++code) {
    std::string name = text::Trim(view::LegendName(code));
    // A code the legend list doesn't know still needs a layer name a CAD program takes.
    x.layer[code] = name.empty() ? std::to_string(code) : text::ToCp950(name);
  }
  for (int32_t i = std::max(refE, 0); i < entities; ++i) {
    const Entity& e = doc.EntityTable[i];
    if (Live(e) && e.Code >= 0 && e.Code <= 999) x.used[e.Code] = true;
  }

  x.Header(E0, N0, E1, N1);
  x.Tables();
  x.Blocks();

  out.Pair("  0", "SECTION");
  out.Pair("  2", "ENTITIES");
  x.Frame(E0, N0, E1, N1, static_cast<int>(cols), static_cast<int>(rows));

  const std::string heights = text::ToCp950("所有高程");
  for (int32_t i = std::max(refP, 0); i < points; ++i) {
    const Point& p = doc.PointTable[i];
    if (p.Deleted || p.H < FloorH) continue;
    out.Pair("  0", "POINT");
    out.Pair("  8", "PTS");
    out.Pair(" 10", p.E);
    out.Pair(" 20", p.N);
    if (doc.MapType == 1) {
      out.Pair(" 30", p.H);
      out.Text(heights, "256", p.E + 0.1 * U, p.N - 0.1 * U, p.H, 0.2 * U, x.Height(p.H));
    }
  }

  for (int32_t i = std::max(refE, 0); i < entities; ++i) {
    const Entity& e = doc.EntityTable[i];
    if (!Live(e)) continue;
    if (e.Kind == KindPoint)
      x.PointFeature(e);
    else
      x.Figure(e);
  }

  x.countCollinear = false;
  // Every line, circle and arc once more, plain, so that the ornaments can be switched off.
  for (int32_t i = 0; i < entities; ++i) {
    const Entity& e = doc.EntityTable[i];
    if (!Live(e) || e.Kind == KindPoint || SkippedOnStr(e.Code)) continue;
    x.Shape(e, "STR", Continuous, x.Raised(e.Z[0]), x.Raised(e.Z[1]));
  }

  const std::string base = text::ToCp950("底圖"), baseText = text::ToCp950("底圖文字");
  const int32_t baseRows = std::min<int32_t>(doc.BaseMapCount, static_cast<int32_t>(doc.BaseMapTable.size()));
  for (int32_t i = 0; i < baseRows; ++i) {
    const BaseMapLine& b = doc.BaseMapTable[i];
    if (b.Kind == KindLine)
      x.Shape(b, base, Continuous, 0, 0);
    else if (b.Kind == KindArc3)
      x.Shape(b, base, Continuous, b.Z[0], b.Z[0]);
    else if (b.Kind == KindPoint)
      out.Text(baseText, "256", b.X[0] + 0.1 * U, b.Y[0] - 0.1 * U, b.Z[0], 0.2 * U, Exporter::Trimmed(b.Name));
  }
  out.Pair("  0", "ENDSEC");
  out.Pair("  0", "EOF");

  if (x.collinear > 0)
    result.warnings.push_back("錯誤:三點共線.\n" + std::to_string(x.collinear) + " 個圓或弧未輸出");
  if (!file.Finish()) {
    result.message = CannotWriteMessage(target);
    result.missingSymbols.clear();
    result.warnings.clear();
    return result;
  }
  result.ok = true;
  result.label4 = "1/" + num::General(U * 100) + " DXF檔輸出完成";
  return result;
}

}  // namespace tavik::dxf
