// A document at 1:1000 centred on (1050, 2050), journal in a temporary folder, scripted
// dialogs, and a parcel given by its corners as a loaded document holds it. Areas are
// checked against a half-plane clip of the parcel computed here, apart from the scan.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "cadastre/land_split.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "platform/scripted/scripted.h"
#include "view/transform.h"

namespace tavik::cadastre {

using Corners = std::vector<std::pair<double, double>>;

// The area of the part of the polygon on the side of the line through (E1, N1) and
// (E2, N2) that lies to the left looking from point 1 to point 2 (`left`), or right.
inline double ClippedArea(const Corners& poly, double E1, double N1, double E2, double N2, bool left) {
  const double dE = E2 - E1, dN = N2 - N1;
  auto side = [&](const std::pair<double, double>& p) {
    const double s = dE * (p.second - N1) - dN * (p.first - E1);
    return left ? s : -s;
  };
  Corners out;
  for (std::size_t i = 0; i < poly.size(); ++i) {
    const auto& a = poly[i];
    const auto& b = poly[(i + 1) % poly.size()];
    const double sa = side(a), sb = side(b);
    if (sa >= 0) out.push_back(a);
    if ((sa >= 0) != (sb >= 0)) {
      const double t = sa / (sa - sb);
      out.push_back({a.first + t * (b.first - a.first), a.second + t * (b.second - a.second)});
    }
  }
  double twice = 0;
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto& a = out[i];
    const auto& b = out[(i + 1) % out.size()];
    twice += a.first * b.second - b.first * a.second;
  }
  return std::abs(twice) / 2;
}

class SplitFixture : public ::testing::Test {
 protected:
  SplitFixture()
      : home(std::filesystem::temp_directory_path() /
             ("tavik_split_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()))),
        work(MakePaths(home)),
        split(doc, view, work, dialogs) {
    work.CreateEmpty();
    SetDocumentName(doc, (home / "map").string());
    doc.ScaleDenominator = 1000, doc.ViewCentreE = 1050, doc.ViewCentreN = 2050;
    view::SetViewportSize(view, 1600, 1200);
    view::ComputeView(doc, view);
    split.SetActionMode = [this](const std::string& m) { modes.push_back(m); };
  }
  ~SplitFixture() override {
    std::error_code ec;
    std::filesystem::remove_all(home, ec);
  }
  static AppPaths MakePaths(const std::filesystem::path& h) {
    std::filesystem::create_directories(h);
    return AppPaths{h};
  }
  // The parcel as the loader leaves it: edges, corners closed by the first one again.
  void Parcel(const Corners& c) {
    corners = c;
    for (auto& v : doc.SplitBoundaryEdges) v.clear();
    for (auto& v : doc.SplitBoundaryVertices) v.clear();
    for (std::size_t i = 0; i < c.size(); ++i) {
      const auto& a = c[i];
      const auto& b = c[(i + 1) % c.size()];
      doc.SplitBoundaryEdges[0].push_back(a.first), doc.SplitBoundaryEdges[1].push_back(a.second);
      doc.SplitBoundaryEdges[2].push_back(b.first), doc.SplitBoundaryEdges[3].push_back(b.second);
      doc.SplitBoundaryVertices[0].push_back(a.first), doc.SplitBoundaryVertices[1].push_back(a.second);
    }
    doc.SplitBoundaryVertices[0].push_back(c.front().first), doc.SplitBoundaryVertices[1].push_back(c.front().second);
    doc.SplitStakeCount = static_cast<int16_t>(c.size());
    doc.ReferenceMapLoaded = kTrue;
    split.Open();
  }
  void Target(double area) {
    split.form.Text1 = num::Plain(area);
    split.Text1Done();
  }
  // Pixel of Paper1 for a world point, as the pointer reports it (hot spot one pixel off).
  std::pair<double, double> Pixel(double E, double N) const {
    float x = 0, y = 0;
    WorldToPaper(view, doc.ScaleDenominator, E, N, x, y);
    return {x + 1, y + 1};
  }

  std::filesystem::path home;
  Document doc;
  View view;
  WorkFiles work;
  ui::ScriptedDialogs dialogs;
  LandSplit split;
  Corners corners;
  std::vector<std::string> modes;
};

inline const Corners Square{{1000, 2000}, {1100, 2000}, {1100, 2100}, {1000, 2100}};
// A U open to the north: horizontal cuts between N 2020 and 2060 meet the boundary four times.
inline const Corners NotchedU{{1000, 2000}, {1060, 2000}, {1060, 2060}, {1040, 2060},
                              {1040, 2020}, {1020, 2020}, {1020, 2060}, {1000, 2060}};
// An L, listed clockwise.
inline const Corners ClockwiseL{{1000, 2000}, {1000, 2080}, {1030, 2080}, {1030, 2030}, {1090, 2030}, {1090, 2000}};
inline const Corners Skewed{{1000, 2000}, {1090, 2015}, {1075, 2095}, {1010, 2070}};

}  // namespace tavik::cadastre
