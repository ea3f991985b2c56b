// The lines of a DXF file and its four entity writers. A DXF text file is pairs of
// lines, a group code and a value. Group codes go out as the literal texts the export
// uses, with their padding ("  0", " 10"); real values in the printed form of
// num::Printed (" 12.5 "); every line ends in CR LF. Text arrives here already in code
// page 950.
#pragma once

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/durable_file.h"
#include "core/numbers.h"

namespace tavik::dxf {

class DxfStream {
 public:
  // withZ: the map keeps heights (MapType 1), so the writers give " 30" and " 31".
  DxfStream(io::ReplacingFile& file, bool withZ) : file_(file), withZ_(withZ) {}

  void Line(std::string_view s) {
    char* p = file_.Reserve(s.size() + 2);
    std::memcpy(p, s.data(), s.size());
    p[s.size()] = '\r';
    p[s.size() + 1] = '\n';
    file_.Commit(s.size() + 2);
  }
  void Number(double v) {
    char* p = file_.Reserve(num::PrintedMax + 2);
    std::size_t n = num::PrintTo(p, v);
    p[n] = '\r';
    p[n + 1] = '\n';
    file_.Commit(n + 2);
  }
  void Pair(std::string_view code, std::string_view value) { Line(code), Line(value); }
  void Pair(std::string_view code, double value) { Line(code), Number(value); }

  bool WithZ() const { return withZ_; }

  // WriteText. hasZ false leaves " 30" out whatever the map type (area labels).
  void Text(std::string_view layer, std::string_view colour, double x, double y, double z, double height,
            std::string_view text, bool hasZ = true);
  // A text of a plane drawing (no height), turned by angle degrees counterclockwise.
  void TextAt(std::string_view layer, std::string_view colour, double x, double y, double height,
              std::string_view text, double angle = 0);
  // WriteLine, WriteCircle, WriteArc; angles in degrees.
  void LineEntity(std::string_view layer, std::string_view ltype, double x1, double y1, double z1, double x2,
                  double y2, double z2);
  void Circle(std::string_view layer, std::string_view ltype, double x, double y, double z, double r);
  void Arc(std::string_view layer, std::string_view ltype, double x, double y, double z, double r, double a1,
           double a2);

 private:
  io::ReplacingFile& file_;
  bool withZ_;
};

// The HEADER section of a drawing whose sheet runs from E0, N0 to E1, N1, with the
// limits the map's own extent, for U metres of drawing to 1 cm of paper.
void WriteHeader(DxfStream& out, double U, double E0, double N0, double E1, double N1, double limMinE,
                 double limMinN, double limMaxE, double limMaxN);

// One row of the LAYER table: its name in code page 950 and its colour as the group's
// value text (a negative colour is a layer switched off).
struct LayerRow {
  std::string name;
  std::string colour;
};
// The TABLES section: the line types the drawings use, the given layers and the text
// style sized for U.
void WriteTables(DxfStream& out, double U, const std::vector<LayerRow>& layers);

// The messages of a drawing that could not be written to target.
std::string CannotCreateMessage(const std::filesystem::path& target);
std::string CannotWriteMessage(const std::filesystem::path& target);

// CircleCentre3: the circumcentre of three points and the radius to the first. The
// points are collinear when (x2 - x1)(y3 - y2) - (x3 - x2)(y2 - y1) is exactly 0; then
// nothing is computed and the result is false. Equal E or N values are pulled apart by
// 0.0001 first, so that the closed form never divides by zero.
bool CircleCentre3(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc,
                   double& radius);

// ArcFrom3: the same centre, the radius to the second point, and the angles in degrees
// (counterclockwise from +E, 0 to 360) from the centre to the first and third points.
// A DXF arc runs counterclockwise from its start to its end angle; for points that run
// clockwise the two angles are given exchanged, so the arc drawn is the one through the
// middle point.
bool ArcFrom3(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc,
              double& radius, double& start, double& end);

}  // namespace tavik::dxf
