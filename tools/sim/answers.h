// Each family's answers as the instrument sends them, from a reading, with the
// instrument's own rounding.
#pragma once

#include <string>

#include "tools/sim/scene.h"

namespace tavik::sim {

enum class SimFamily { Set, Gts22x, Gts211d, Leica, Trimble, Trimble3600, Pentax };

// "SET", "GTS22X", "GTS211D", "Leica", "Trimble", "Trimble3600", "PENTAX"; false if unknown.
bool ParseFamily(const std::string& name, SimFamily& family);

// A distance shot (withDistance) or an angle-only read.
std::string ShotAnswer(SimFamily family, const Reading& r, bool withDistance);
// The instrument's "no prism" and "tilt out of range" answers ("" where the family
// simply stays silent).
std::string NoPrismAnswer(SimFamily family);
std::string TiltAnswer(SimFamily family);

}  // namespace tavik::sim
