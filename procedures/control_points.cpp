#include "procedures/control_points.h"

#include "core/text.h"

namespace tavik {

bool IsControlPointCode(int16_t code) {
  switch (code) {
    case 110: case 112: case 113: case 114: case 120: case 121: case 130: case 131: case 141: case 199:
      return true;
    default:
      return false;
  }
}

std::vector<std::string> ControlPointNames(const Document& doc) {
  std::vector<std::string> names;
  for (const Entity& e : doc.EntityTable) {
    if (e.Deleted != kFalse || !IsControlPointCode(e.Code)) continue;
    std::string n = text::Trim(e.Name);
    if (!n.empty()) names.push_back(std::move(n));
  }
  return names;
}

std::optional<NamedPoint> FindNamedPoint(const Document& doc, const std::string& name) {
  const std::string wanted = text::Trim(name);
  if (wanted.empty()) return std::nullopt;
  for (const Entity& e : doc.EntityTable) {
    if (e.Deleted != kFalse) continue;
    if (text::Trim(e.Name) == wanted) return NamedPoint{wanted, e.X[0], e.Y[0], e.Z[0]};
  }
  return std::nullopt;
}

}  // namespace tavik
