// What the observation pipeline keeps between shots: the point just reduced, the one
// before it, the history of the last three points that the shape keys and the
// automatic link work from, the guard that keeps one observation from being stored
// twice, and the choices of the cadastral dialog. One instance lives in the
// application object beside the Document; tests make fresh ones.
#pragma once

#include <cstdint>
#include <string>

#include "core/document.h"

namespace tavik {

struct SurveyState {
  double LastE = 0, LastN = 0, LastH = 0;
  double PrevE = 0, PrevN = 0, PrevH = 0;
  // Index 0 newest, 1 previous, 2 the one before.
  double PointHistoryE[3] = {0, 0, 0};
  double PointHistoryN[3] = {0, 0, 0};
  double PointHistoryH[3] = {0, 0, 0};
  // Flags kept beside the history by the shape keys; every new point clears them.
  int16_t PointHistoryFlags[6] = {0, 0, 0, 0, 0, 0};
  int16_t PointAdded = kFalse;
  double StoredLastE = 0, StoredLastN = 0, StoredLastH = 0;
  int16_t AutoLink = kFalse;
  int16_t CadastralChoice = 0;  // 0 cancelled, 1 a MAC attribute, 2 only a legend symbol
  std::string CadastralPointName;
  std::string StakeTargetName;
  // Display setting: the stake-out may take the point observed last as its target.
  int16_t StakeLastObserved = kFalse;
  // A legend chosen for the next point; storing a point uses it up.
  int16_t CurrentLegendActive = kFalse;
  // Height of the backsight of the set-up in force; not kept in the document file.
  double BacksightH = 0;
};

}  // namespace tavik
