// The named points a set-up can stand on: entities whose legend is one of the
// control-point codes, listed for the station and backsight choices, and the search of
// a chosen name among the live entities.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/document.h"

namespace tavik {

bool IsControlPointCode(int16_t code);

// Trimmed names of the live control-point entities, in table order.
std::vector<std::string> ControlPointNames(const Document& doc);

struct NamedPoint {
  std::string Name;
  double E = 0, N = 0, H = 0;
};
// The first live entity whose trimmed name equals `name`.
std::optional<NamedPoint> FindNamedPoint(const Document& doc, const std::string& name);

}  // namespace tavik
