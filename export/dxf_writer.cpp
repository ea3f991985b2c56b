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
