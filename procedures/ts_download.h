// Turning a total station's memory dump into the map: each observation is reduced from
// its station as a shot of the record button would be and stored by AddSurveyPoint,
// with its line in the .OBS log; each coordinate record becomes a point; every named
// point also gets a named point feature so that its name and code stay on the map.
// Stations and back bearings in the dump set up the reduction and write the .OBS
// set-up group; a dump without them is reduced from the set-up in force.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "instruments/memory_dump.h"
#include "procedures/survey_context.h"

namespace tavik {

struct DownloadResult {
  std::size_t observations = 0;  // stored from observations
  std::size_t coordinates = 0;   // stored from coordinate records
  std::size_t unreduced = 0;     // observations without a known station
  std::size_t skipped = 0;       // damaged records
  bool cut = false;              // the transfer stopped inside the dump
  std::string message;           // for the download window's label
};

// `complete` false when the transfer ended without its end mark (stopped by the
// surveyor, or the port went away).
DownloadResult ConvertDump(SurveyContext& ctx, dump::Format format, std::string_view text, bool complete);

// The legend of a downloaded point: its code when that is a legend number (1 to 999),
// else the named-point legend.
int16_t DownloadCode(const std::string& code);

}  // namespace tavik
