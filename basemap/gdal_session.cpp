#include "basemap/gdal_session.h"

#include <cpl_error.h>
#include <gdal.h>
#include <ogr_api.h>

#include <mutex>

namespace tavik::basemap {

namespace {

thread_local std::string last_error;

void CPL_STDCALL KeepError(CPLErr level, CPLErrorNum, const char* message) {
  if (level >= CE_Failure && message != nullptr) last_error = message;
}

}  // namespace

void EnsureGdal() {
  static std::once_flag once;
  std::call_once(once, [] {
    // Code page 950 DXF is read by its $DWGCODEPAGE; the rest stays as GDAL decides.
    GDALAllRegister();
    CPLSetErrorHandler(KeepError);
  });
}

std::string TakeGdalError() {
  std::string e;
  e.swap(last_error);
  return e;
}

}  // namespace tavik::basemap
