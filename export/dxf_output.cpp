#include "export/dxf_output.h"

#include <unistd.h>

#include <cmath>
#include <system_error>

#include "core/numbers.h"
#include "core/text.h"
#include "export/document_report.h"

namespace tavik::dxf {

namespace fs = std::filesystem;

DXFOutputLogic::DXFOutputLogic(const Document& doc, DxfOutputMemory& memory, int16_t& areaUnit, ui::Dialogs& dialogs)
    : doc_(doc), memory_(memory), areaUnit_(areaUnit), dialogs_(dialogs) {
  if (memory_.DxfScale == 0) memory_.DxfScale = 1000;
  TxtScale = num::Plain(memory_.DxfScale);
  Label6 = doc.DxfPath;
}

void DXFOutputLogic::Option5() {
  SetGridNone(options);
  labelsEnabled_ = false;
}

void DXFOutputLogic::Option6() {
  SetGridFrame(options);
  labelsEnabled_ = true;
}

void DXFOutputLogic::Option7() {
  SetGridFull(options);
  labelsEnabled_ = true;
}

void DXFOutputLogic::Command2(const fs::path& workFolder) {
  const std::string chosen = dialogs_.SaveFileName(Caption, Filter, workFolder.string());
  if (chosen.empty()) return;
  if (chosen.size() < 3 || chosen.compare(chosen.size() - 3, 3, "DXF") != 0) {
    dialogs_.MsgBox("檔案格式或檔案型別不符", "檔名錯誤");
    return;
  }
  Label6 = chosen;
}

fs::path DXFOutputLogic::ReportPathFor(const fs::path& dxf) {
  fs::path p = dxf;
  return p.replace_extension(".TXT");
}

bool DXFOutputLogic::OKButton(const fs::path& symbolDir) {
  const std::optional<double> scale = num::ParseStrict(TxtScale);
  if (!scale || !(*scale > 0) || !std::isfinite(*scale)) {
    dialogs_.MsgBox("出圖比例尺必須是大於 0 的數字", Caption);
    return false;
  }
  memory_.DxfScale = *scale;
  const fs::path target = Label6;
  if (target.empty()) {
    dialogs_.MsgBox("請先以 [瀏覽] 選擇輸出的檔案", Caption);
    return false;
  }
  std::error_code ec;
  if (fs::exists(target, ec)) {
    if (dialogs_.MsgBox("檔案己經存在,是否覆蓋?", "檔名重覆", ui::Buttons::YesNo, ui::Icon::Question) !=
        ui::Answer::Yes)
      return false;
    // The new file is written beside the old one and renamed over it, so that a refused
    // or failed export keeps the old drawing; what matters here is that the old one may
    // go, which its folder decides.
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (::access(folder.c_str(), W_OK) != 0) {
      dialogs_.MsgBox("有一個同名檔案存在,且被其它程式開啟中...\n請先關閉 [" + target.filename().string() +
                          "] 後再重新輸出.",
                      "檔名重覆");
      return false;
    }
  }
  Label4.clear();
  DxfExportOptions o = options;
  o.DxfScale = memory_.DxfScale;
  o.AreaUnit = areaUnit_;
  o.symbolDir = symbolDir.string();
  const DxfExportResult r = WriteDxf(doc_, o, target);
  for (const std::string& missing : r.missingSymbols) dialogs_.MsgBox(missing, Caption);
  if (!r.ok) {
    dialogs_.MsgBox(r.message, r.title.empty() ? Caption : r.title);
    return false;
  }
  for (const std::string& warning : r.warnings) dialogs_.MsgBox(warning, Caption);
  Label4 = r.label4;
  if (options.WriteReport != kFalse) {
    const std::string why = WriteDocumentReport(doc_, areaUnit_, ReportPathFor(target), ReportTimeNow());
    if (!why.empty()) dialogs_.MsgBox(why, Caption);
  }
  return true;
}

}  // namespace tavik::dxf
