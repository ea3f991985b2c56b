// Circles and arcs through three points: the centre, the point halfway along an arc,
// an arc drawn on Paper1, and arcs and circles sampled into chains of vertices for
// picking and export.
//
// All tests are exact comparisons on doubles. CircleCentre3 itself divides without
// looking; the routines that call it first nudge equal coordinates apart by 0.0001 so
// that the division is defined.
#pragma once

#include <cstdint>
#include <vector>

#include "core/view_state.h"
#include "platform/dialogs.h"
#include "platform/surface.h"

namespace tavik {

// Centre of the circle through three points. No test: the caller keeps E1 and E2 apart.
void CircleCentre3(double E1, double N1, double E2, double N2, double E3, double N3, double& Ec, double& Nc);

// The cross value whose sign tells the turn from point 1 over 2 to 3 (0: collinear).
double Cross3(double E1, double N1, double E2, double N2, double E3, double N3);

// Pulls equal coordinates apart by 0.0001, in the fixed order E1=E2, E2=E3, E1=E3,
// N1=N2, N2=N3, N1=N3, moving the second of each pair.
void SeparationNudge(double& E1, double& N1, double& E2, double& N2, double& E3, double& N3);

// Azimuth of (E, N) seen from the centre. For dE exactly 0 neither branch applies and
// `azimuth` keeps what it held.
void CentreAzimuth(double Ec, double Nc, double E, double N, double& azimuth);

// The point at half the sweep of the arc from 1 over 2 to 3. With mapType 1 its height
// is the mean of H1 and H3 where both are above 0, else whichever is above 0, else Hm
// is left as it was. Collinear points: "錯誤:三點共線." and false.
bool ArcMidPoint(ui::Dialogs& dialogs, int16_t mapType, double E1, double N1, double H1, double E2, double N2,
                 double E3, double N3, double H3, double& Em, double& Nm, double& Hm);

// Draws the arc from 1 over 2 to 3 on the surface with its current pen; `lengthPixels`
// receives its length on the paper. An arc that passes the surface's zero angle is
// drawn as two arcs. Collinear points: "錯誤:三點共線." and false.
bool DrawArc3(ui::Surface& paper, ui::Dialogs& dialogs, const View& view, double scaleDenominator, double E1,
              double N1, double E2, double N2, double E3, double N3, double& lengthPixels);

// The number of chord steps for a whole circle of this radius: Int(radius / 30) * 6 + 18,
// at least 36.
int32_t CircleSteps(double radius);

// A closed chain round the circle: CircleSteps(radius) vertices from north clockwise,
// and the first repeated at the end.
void SampleCircle(double Ec, double Nc, double radius, std::vector<double>& E, std::vector<double>& N);

// A chain along the arc from 1 over 2 to 3, at the circle's step, its last vertex exactly
// on the arc's end. Int(sweep / step) + 1 vertices. The points are taken as they stand,
// not nudged: collinear points, and points 1 and 2 with the same E (no centre), leave
// the arrays untouched and say nothing.
void SampleArc3(double E1, double N1, double E2, double N2, double E3, double N3, std::vector<double>& E,
                std::vector<double>& N);

}  // namespace tavik
