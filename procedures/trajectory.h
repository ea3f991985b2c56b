// Trajectory measurement: a total station tracks a moving prism and each tracked
// position becomes a vertex of a line under the current legend. Positions are reduced
// from the set-up in force as a shot is, stored by AddSurveyPoint (so each vertex is a
// point and an .OBS line), and joined to the vertex before; a position closer than the
// minimum spacing to the last vertex is passed over, so that a prism standing still
// does not pile up points.
#pragma once

#include <cstdint>

#include "procedures/survey_context.h"

namespace tavik {

class Trajectory {
 public:
  explicit Trajectory(SurveyContext& ctx) : ctx_(ctx) {}

  // Starts a new line; false with the set-up message when there is no station.
  bool Start();
  void Stop() { running_ = false; }
  bool Running() const { return running_; }

  // The observation just delivered by the link (ObsSlope, ObsHz, ObsV). True when it
  // became a vertex.
  bool Take();

  double SpacingCm = 100;  // minimum distance between vertices, centimetres
  int32_t Vertices() const { return vertices_; }

 private:
  SurveyContext& ctx_;
  bool running_ = false;
  bool haveLast_ = false;
  double lastE_ = 0, lastN_ = 0, lastH_ = 0;
  int32_t vertices_ = 0;
};

}  // namespace tavik
