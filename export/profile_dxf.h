// Longitudinal profiles and cross-sections as DXF drawings, and the section file.
//
// A profile follows a route (a run of `Code` 520 segments) and shows the ground under
// it; cross-sections stand across the route at the `Code` 521 lines or at a chosen
// interval. Heights come from the ground model of the surveyed points (a Delaunay
// triangulation, see basemap/ground_model.h). Each drawing is a chart on a sheet with a
// frame: the ground line drawn with the heights exaggerated, the datum line with its
// level, a height scale, and a band below with the chainage (or offset) and ground
// level at each station; the horizontal and vertical scales are written in the title.
//
// The section file (.SEC, text, code page 950, CR LF) holds the numbers of the
// sections for design programs:
//   SEC,<route count>,<section count>
//   S,<name>,<route name>,<chainage>,<E>,<N>,<azimuth d-mm-ss.ss>,<point count>
//   <offset>,<height>          (point count lines; offsets negative to the left)
// The azimuth is that of the section line from left to right, E and N its point on the
// route, so every offset can be put back on the map. Places with no ground are left
// out. All numbers "0.000".
#pragma once

#include <filesystem>
#include <string>

#include "core/document.h"

namespace tavik::dxf {

constexpr const char* ProfileTitle = "縱斷面圖";
constexpr const char* SectionsTitle = "橫斷面圖";

struct DrawingResult {
  bool ok = false;
  std::string title;    // the message box's title
  std::string message;  // why nothing was written, or what was written
};

// Why the document can have no profile or section at all (no route, or a plan map with
// no heights), as the message to show; empty when it may. The writers check it too.
std::string RouteRefusal(const Document& doc);

// The profile of every route of the document, one chart each.
DrawingResult WriteProfileDxf(const Document& doc, const std::filesystem::path& target);

// Cross-sections at the 521 lines (interval 0) or every `interval` metres along each
// route; the drawing at target and the section file beside it (SectionFilePath).
DrawingResult WriteSectionsDxf(const Document& doc, double interval, const std::filesystem::path& target);

// target with the extension .SEC.
std::filesystem::path SectionFilePath(const std::filesystem::path& target);

}  // namespace tavik::dxf
