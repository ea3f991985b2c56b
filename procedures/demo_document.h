// The demo document of a first survey without an instrument: the simulator's scene
// (its station and prisms) as named control points, so that a new user can set up on
// two of them with FitDialog, shoot the others and stake one out.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "procedures/control_points.h"

namespace tavik {

struct DemoScene {
  NamedPoint Station{"K1", 1000, 2000, 50};
  double InstrumentHeight = 1.5;
  std::vector<NamedPoint> Targets;
};

// Reads the simulator's scene text: "station E N H IH", "target NAME E N H TH" lines,
// "#" comments. nullopt when there is no station line or a line cannot be read.
std::optional<DemoScene> ReadDemoScene(const std::string& text);

// The scene shipped with the simulator, for when its file is not at hand.
DemoScene DefaultDemoScene();

// Writes a topographic document at `spcPath` holding the station (named "K1") and every
// target as a control point of legend 113, with the view on their middle.
bool WriteDemoDocument(const DemoScene& scene, const std::string& spcPath, ui::Dialogs& dialogs);

}  // namespace tavik
