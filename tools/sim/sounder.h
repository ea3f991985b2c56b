// The talk of the depth sounders and the motion sensor, frame by frame. The devices
// are never asked anything: each sends its frames on its own beat.
#pragma once

#include <string>

namespace tavik::sim {

struct SounderReading {
  double depth = 0, depth2 = 0;        // metres
  double heave = 0, roll = 0, pitch = 0;
};

// False for a kind the simulator does not know.
bool SounderKindKnown(const std::string& kind);

// The bytes of frame number `n` of the device (some devices alternate two forms).
// Kinds: "E Sea Sound 206", "Ceastar", "HydroLite", "CEEECHO", "HydroBox", "TSS_DMS3".
std::string SounderFrame(const std::string& kind, const SounderReading& r, long n);

// The reading at frame n of a gently rolling boat over a bottom of `depth` metres.
SounderReading SounderAt(double depth, long n);

int SounderMain(int argc, char** argv);

}  // namespace tavik::sim
