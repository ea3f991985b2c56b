#include "export/dxf_export.h"

namespace tavik::dxf {

DxfExportResult WriteDxf(const Document&, const DxfExportOptions&, const std::filesystem::path&) {
  DxfExportResult r;
  r.title = "DXF";
  r.message = "DXF export is not built yet";
  return r;
}

}  // namespace tavik::dxf
