// GDAL is set up once per process: every driver registered, its error messages caught
// instead of printed, so that a damaged file reaches the user as one clear message.
#pragma once

#include <string>

namespace tavik::basemap {

// Registers GDAL's drivers on the first call; later calls do nothing. Thread-safe.
void EnsureGdal();

// The last error GDAL reported on this thread, empty when none; cleared by the call.
std::string TakeGdalError();

}  // namespace tavik::basemap
