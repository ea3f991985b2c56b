// The arc through three world points as the surface draws it: centre, radius and the
// counterclockwise sweep in surface angles, taken the same way as the arc routine of the
// geometry library so that decorations lie on the drawn arc.
#pragma once

namespace tavik::view {

struct ArcGeometry {
  double Ec = 0, Nc = 0, radius = 0;
  double a1 = 0, a2 = 0;  // surface angles, radians from +E counterclockwise; a2 may be below a1
  double Sweep() const;   // counterclockwise from a1 to a2, 0 .. 2π
};

// False for collinear or unusable points.
bool ArcThrough(double E1, double N1, double E2, double N2, double E3, double N3, ArcGeometry& arc);

// The circle through three points (Kind 73): centre and radius to vertex 1.
bool CircleThrough(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc,
                   double& radius);

}  // namespace tavik::view
