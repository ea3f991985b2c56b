// Angle forms as the link needs them: DDDMMSS (with or without tenths) to radians and
// to its three parts.
#pragma once

namespace tavik::link_angles {

void PackedToDms(double packed, double& degrees, double& minutes, double& seconds);
double PackedToRadians(double packed);

}  // namespace tavik::link_angles
