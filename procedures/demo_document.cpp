#include "procedures/demo_document.h"

#include <algorithm>
#include <sstream>

#include "core/docfile.h"
#include "core/document.h"
#include "core/numbers.h"
#include "core/record_text.h"
#include "core/text.h"

namespace tavik {

std::optional<DemoScene> ReadDemoScene(const std::string& content) {
  DemoScene scene;
  bool station = false;
  for (std::string_view raw : rec::SplitLines(content)) {
    const std::string line = text::Trim(raw);
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    std::string word;
    in >> word;
    if (word == "station") {
      if (!(in >> scene.Station.E >> scene.Station.N >> scene.Station.H >> scene.InstrumentHeight))
        return std::nullopt;
      station = true;
    } else if (word == "target") {
      NamedPoint p;
      double th = 0;
      if (!(in >> p.Name >> p.E >> p.N >> p.H >> th)) return std::nullopt;
      scene.Targets.push_back(p);
    }
  }
  if (!station) return std::nullopt;
  return scene;
}

DemoScene DefaultDemoScene() {
  return *ReadDemoScene(
      "station 1000.000 2000.000 50.000 1.500\n"
      "target P1 1050.000 2050.000 51.200 1.500\n"
      "target P2 1080.500 1990.250 49.870 1.500\n"
      "target P3 1012.340 1925.660 50.450 1.500\n"
      "target P4 950.120 1960.000 52.010 1.500\n"
      "target P5 975.000 2075.500 48.300 1.500\n");
}

bool WriteDemoDocument(const DemoScene& scene, const std::string& spcPath, ui::Dialogs& dialogs) {
  Document doc;
  std::string name = spcPath;
  if (name.size() > 4 && text::EqualsNoCase(name.substr(name.size() - 4), ".SPC")) name.resize(name.size() - 4);
  SetDocumentName(doc, name);
  doc.MapType = 1;
  std::vector<NamedPoint> points{scene.Station};
  points.insert(points.end(), scene.Targets.begin(), scene.Targets.end());
  for (const NamedPoint& p : points) {
    Entity e;
    e.Number = static_cast<int32_t>(doc.EntityTable.size()) + 1;
    e.Code = 113;
    e.Kind = KindPoint;
    e.X[0] = p.E;
    e.Y[0] = p.N;
    e.Z[0] = p.H;
    e.Name = p.Name;
    doc.EntityTable.push_back(e);
    doc.MinE = std::min(doc.MinE, p.E);
    doc.MaxE = std::max(doc.MaxE, p.E);
    doc.MinN = std::min(doc.MinN, p.N);
    doc.MaxN = std::max(doc.MaxN, p.N);
  }
  doc.EntityCount = static_cast<int32_t>(doc.EntityTable.size());
  doc.ViewCentreE = (doc.MinE + doc.MaxE) / 2;
  doc.ViewCentreN = (doc.MinN + doc.MaxN) / 2;
  doc.ScaleDenominator = 1000;
  doc.InstrumentHeight = scene.InstrumentHeight;
  doc.TargetHeight = 1.5;
  return WriteDocumentFile(doc, dialogs);
}

}  // namespace tavik
