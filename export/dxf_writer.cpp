#include "export/dxf_writer.h"

#include <cmath>

#include "geo/circle.h"
#include "geo/constants.h"

namespace tavik::dxf {

void DxfStream::Text(std::string_view layer, std::string_view colour, double x, double y, double z, double height,
                     std::string_view text, bool hasZ) {
  Pair("  0", "TEXT");
  Pair("  8", layer);
  Pair(" 62", colour);
  Pair(" 10", x);
  Pair(" 20", y);
  if (withZ_ && hasZ) Pair(" 30", z);
  Pair(" 40", height);
  Pair(" 50", "  0");
  Pair("1", text);
}

void DxfStream::TextAt(std::string_view layer, std::string_view colour, double x, double y, double height,
                       std::string_view text, double angle) {
  Pair("  0", "TEXT");
  Pair("  8", layer);
  Pair(" 62", colour);
  Pair(" 10", x);
  Pair(" 20", y);
  Pair(" 40", height);
  Pair(" 50", angle);
  Pair("1", text);
}

void DxfStream::LineEntity(std::string_view layer, std::string_view ltype, double x1, double y1, double z1,
                           double x2, double y2, double z2) {
  Pair("  0", "LINE");
  Pair("  8", layer);
  Pair("  6", ltype);
  Pair(" 10", x1);
  Pair(" 20", y1);
  if (withZ_) Pair(" 30", z1);
  Pair(" 11", x2);
  Pair(" 21", y2);
  if (withZ_) Pair(" 31", z2);
}

void DxfStream::Circle(std::string_view layer, std::string_view ltype, double x, double y, double z, double r) {
  Pair("  0", "CIRCLE");
  Pair("  8", layer);
  Pair("  6", ltype);
  Pair(" 10", x);
  Pair(" 20", y);
  if (withZ_) Pair(" 30", z);
  Pair(" 40", r);
}

void DxfStream::Arc(std::string_view layer, std::string_view ltype, double x, double y, double z, double r,
                    double a1, double a2) {
  Pair("  0", "ARC");
  Pair("  8", layer);
  Pair("  6", ltype);
  Pair(" 10", x);
  Pair(" 20", y);
  if (withZ_) Pair(" 30", z);
  Pair(" 40", r);
  Pair(" 50", a1);
  Pair(" 51", a2);
}

void WriteHeader(DxfStream& out, double U, double E0, double N0, double E1, double N1, double limMinE,
                 double limMinN, double limMaxE, double limMaxN) {
  out.Pair("  0", "SECTION");
  out.Pair("  2", "HEADER");
  auto var = [&](const char* name) { out.Pair("  9", name); };
  // The release and the code page come first and last: a reader that finds no
  // release takes the file for a recent one with UTF-8 text and garbles every
  // Chinese name (LibreCAD then shows nothing at all); the code page spares the
  // reader a guess.
  var("$ACADVER"), out.Pair("  1", "AC1009");
  var("$EXTMIN"), out.Pair(" 10", E0), out.Pair(" 20", N0);
  var("$EXTMAX"), out.Pair(" 10", E1), out.Pair(" 20", N1);
  var("$LIMMIN"), out.Pair(" 10", limMinE), out.Pair(" 20", limMinN);
  var("$LIMMAX"), out.Pair(" 10", limMaxE), out.Pair(" 20", limMaxN);
  var("$LTSCALE"), out.Pair(" 40", U);
  var("$INSBASE"), out.Pair(" 10", "0"), out.Pair(" 20", "0");
  var("$OSMODE"), out.Pair(" 70", "   8");
  var("$TEXTSIZE"), out.Pair(" 40", U * 0.2);
  var("$TEXTSTYLE"), out.Pair("  7", "STANDARD");
  var("$ANGBASE"), out.Pair(" 50", " 0.0");
  var("$ANGDIR"), out.Pair(" 70", "   0");
  var("$MENU"), out.Pair("  1", "acad");
  var("$DWGCODEPAGE"), out.Pair("  3", "ANSI_950");
  out.Pair("  0", "ENDSEC");
}

void WriteTables(DxfStream& out, double U, const std::vector<LayerRow>& layers) {
  out.Pair("  0", "SECTION");
  out.Pair("  2", "TABLES");
  out.Pair("  0", "TABLE");
  out.Pair("  2", "LTYPE");
  out.Pair(" 70", "  9");  // one less than the rows below; CAD programs count the rows
  struct LineType {
    const char* name;
    const char* description;
    const char* items;
    double total;
    double dashes[4];
  };
  static const char* const dashes = "___ ___ ___ ___ ___ ___ ___ ___ ___ ___ ___ ___ ";
  const LineType types[] = {
      {"CONTINUOUS", "solid line", "  0", 0, {}},
      {"L1X1", "- - - - - - - - - - - - - - - - - - - - - - - -", "  2", 0.2, {0.1, -0.1}},
      {"L24X06", dashes, "  2", 0.3, {0.24, -0.06}},
      {"L9X1", dashes, "  2", 1, {0.9, -0.1}},
      {"L25X1", dashes, "  2", 0.35, {0.25, -0.1}},
      {"L3X1DX1", "___ . ___ . ___ . ___ . ___ . ___ . ___ . ___ . ", "  4", 0.5, {0.3, -0.1, 0.0, -0.1}},
      {"L2X1", "__ __ __ __ __ __ __ __ __ __ __ __ __ __ __ __ ", "  2", 0.3, {0.2, -0.1}},
      {"DX15", ".  .  .  .  .  .  .  .  .  .  .  .  .  .  .  .  ", "  2", 0.15, {0.0, -0.15}},
      {"DX2", ".   .   .   .   .   .   .   .   .   .   .   .   ", "  2", 0.2, {0.0, -0.2}},
      {"L15X1", "__ __ __ __ __ __ __ __ __ __ __ __ ", "  2", 0.25, {0.15, -0.1}},
  };
  for (const auto& t : types) {
    out.Pair("  0", "LTYPE");
    out.Pair("  2", t.name);
    out.Pair(" 70", "  64");
    out.Pair("  3", t.description);
    out.Pair(" 72", "  65");
    out.Pair(" 73", t.items);
    const int n = t.items[2] - '0';
    if (n == 0)
      out.Pair(" 40", "0.0");
    else
      out.Pair(" 40", t.total);
    for (int i = 0; i < n; ++i) out.Pair(" 49", t.dashes[i]);
  }
  out.Pair("  0", "ENDTAB");

  out.Pair("  0", "TABLE");
  out.Pair("  2", "LAYER");
  out.Pair(" 70", "1000");
  for (const LayerRow& l : layers) {
    out.Pair("  0", "LAYER");
    out.Pair("  2", l.name);
    out.Pair(" 70", "  64");
    out.Pair(" 62", l.colour);
    out.Pair("  6", "CONTINUOUS");
  }
  out.Pair("  0", "ENDTAB");

  out.Pair("  0", "TABLE");
  out.Pair("  2", "STYLE");
  out.Pair(" 70", "     1");
  out.Pair("  0", "STYLE");
  out.Pair("  2", "STANDARD");
  out.Pair(" 70", "     0");
  out.Pair(" 40", "0.0");
  out.Pair(" 41", " 1");
  out.Pair(" 50", "0.0");
  out.Pair(" 71", "     0");
  out.Pair(" 42", U * 0.2);
  out.Pair("  3", "TXT.SHX");
  out.Pair("  4 ", "chineset.shx");
  out.Pair("  0", "ENDTAB");
  out.Pair("  0", "ENDSEC");
}

std::string CannotCreateMessage(const std::filesystem::path& target) {
  std::error_code ec;
  return std::filesystem::exists(target, ec)
             ? "有一個同名檔案存在,且被其它程式開啟中...\n請先關閉 [" + target.string() + "] 後再試."
             : "無法建立 [" + target.string() + "],\n請確認資料夾存在且可以寫入後再試.";
}

std::string CannotWriteMessage(const std::filesystem::path& target) {
  return "無法寫入 [" + target.string() + "],\n請確認磁碟空間與寫入權限後再試.";
}

namespace {

// The cross term of the three points; 0 exactly when they are collinear.
double Turn(double x1, double y1, double x2, double y2, double x3, double y3) {
  return (x2 - x1) * (y3 - y2) - (x3 - x2) * (y2 - y1);
}

double Degrees(double dy, double dx) {
  double a = std::atan2(dy, dx) * RadToDeg;
  return a < 0 ? a + 360 : a;
}

bool Centre(double& E1, double& N1, double& E2, double& N2, double& E3, double& N3, double& Ec, double& Nc) {
  if (!(Turn(E1, N1, E2, N2, E3, N3) != 0)) return false;  // collinear, or not numbers at all
  SeparationNudge(E1, N1, E2, N2, E3, N3);
  tavik::CircleCentre3(E1, N1, E2, N2, E3, N3, Ec, Nc);
  return std::isfinite(Ec) && std::isfinite(Nc);
}

}  // namespace

bool CircleCentre3(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc,
                   double& radius) {
  if (!Centre(E1, N1, E2, N2, E3, N3, Ec, Nc)) return false;
  radius = std::hypot(E1 - Ec, N1 - Nc);
  return true;
}

bool ArcFrom3(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc,
              double& radius, double& start, double& end) {
  const bool clockwise = Turn(E1, N1, E2, N2, E3, N3) < 0;
  if (!Centre(E1, N1, E2, N2, E3, N3, Ec, Nc)) return false;
  radius = std::hypot(E2 - Ec, N2 - Nc);
  start = Degrees(N1 - Nc, E1 - Ec);
  end = Degrees(N3 - Nc, E3 - Ec);
  if (clockwise) std::swap(start, end);
  return true;
}

}  // namespace tavik::dxf
