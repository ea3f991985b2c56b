// Areas: the surveyors' shoelace sum, the ring of vertices picked by the interactive
// area measure, and the area label in the unit the user chose. Areas are never rounded
// in computation; only the label's format rounds them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/view_state.h"
#include "platform/surface.h"

namespace tavik {

// Square metres, hectares, ping (坪, factor 0.3024996).
constexpr int16_t AreaUnitSquareMetres = 1;
constexpr int16_t AreaUnitHectares = 2;
constexpr int16_t AreaUnitPing = 3;

// The ring and the unit of areas, held with the application's other state.
struct AreaRingState {
  std::vector<double> AreaRing[2];  // E, N of each vertex picked
  int16_t AreaRingCount = 0;
  int16_t AreaUnit = AreaUnitSquareMetres;  // set to 1 at program start
};

// |Σ E(i) * (N(i-1) - N(i+1))| / 2, summed in the fixed order the program always used
// (inner vertices first, then the last, then the first). 0 for fewer than 3 vertices.
double ShoelaceArea(const double* E, const double* N, int32_t n);

void AreaRingReset(AreaRingState& ring);
void AreaRingAdd(AreaRingState& ring, double E, double N);
// The area of the ring, and where its label goes: the plain average of the vertices
// (not the centroid of the figure). With fewer than 3 vertices the area is 0 and the
// label position is left as it was.
double AreaRingClose(const AreaRingState& ring, double& labelE, double& labelN);

// The label text for an area in square metres: "0.0000㎡", "0.0000公頃" or "0.00坪".
std::string AreaLabelText(double squareMetres, int16_t areaUnit);

// Draws the label centred on (E, N): left edge X - length * 7 / 2, reference Y - 9 in
// pixels, length in characters. The flag goes to the text drawing as its highlight:
// -1 draws the label highlighted (blue), 0 in the text colour (black). Returns the text.
std::string FormatAreaLabel(ui::Surface& paper, const View& view, double scaleDenominator, int16_t areaUnit,
                            double E, double N, double squareMetres, int16_t flag);

}  // namespace tavik
