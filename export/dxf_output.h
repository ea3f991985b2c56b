// DXFOutput, "輸出 DXF 圖檔": the dialog's logic without its window. It holds the
// options as the controls show them, chooses the target file, and runs the export, the
// missing-block messages and the text report in the order the OK button does.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "core/document.h"
#include "export/dxf_export.h"
#include "platform/dialogs.h"

namespace tavik::dxf {

// What outlives the dialog: the output scale, 0 until the first opening makes it 1000.
struct DxfOutputMemory {
  double DxfScale = 0;
};

class DXFOutputLogic {
 public:
  static constexpr const char* Caption = "輸出 DXF 圖檔";
  static constexpr const char* Filter = "DXF檔(*.DXF)|*.DXF";

  // Opening: the remembered scale (1000 the first time), the current area unit, the
  // document's DXF name as target.
  DXFOutputLogic(const Document& doc, DxfOutputMemory& memory, int16_t& areaUnit, ui::Dialogs& dialogs);

  DxfExportOptions options;  // every option but the scale and the area unit
  std::string TxtScale;      // the n of 1:n as typed
  std::string Label6;        // the target file
  std::string Label4;        // the outcome line
  bool Frame2Visible() const { return doc_.MapType != 2; }
  // The label options are usable unless Option5 (no grid) is chosen.
  bool LabelOptionsEnabled() const { return labelsEnabled_; }

  void Option5();  // no grid
  void Option6();  // frame and ticks only
  void Option7();  // full grid
  void SetAreaUnit(int16_t unit) { areaUnit_ = unit; }
  int16_t AreaUnit() const { return areaUnit_; }

  // Command2 "瀏覽": a file dialog starting in the work folder. A name that doesn't end
  // in "DXF" is refused and the target stays.
  void Command2(const std::filesystem::path& workFolder);

  // OKButton "輸出". True when the dialog is to close. symbolDir is the library's folder.
  bool OKButton(const std::filesystem::path& symbolDir);

  // The text report written beside a DXF file: the same name ending in ".TXT".
  static std::filesystem::path ReportPathFor(const std::filesystem::path& dxf);

 private:
  const Document& doc_;
  DxfOutputMemory& memory_;
  int16_t& areaUnit_;
  ui::Dialogs& dialogs_;
  bool labelsEnabled_ = true;
};

}  // namespace tavik::dxf
