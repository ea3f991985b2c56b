#include "procedures/import_obs.h"

#include <filesystem>

#include "core/text.h"

namespace tavik {

bool ImportOBS(ui::Dialogs& dialogs, const std::string& startFolder) {
  const std::string name = dialogs.OpenFileName("匯入OBS檔", "Map 7.22(*.OBS)|*.OBS", startFolder);
  if (name.empty()) return false;
  std::error_code ec;
  if (!std::filesystem::exists(name, ec)) {
    dialogs.MsgBox("檔案不存在!");
    return false;
  }
  const std::string upper = text::UpperAscii(name);
  if (upper.size() < 3 || upper.substr(upper.size() - 3) != "OBS") {
    dialogs.MsgBox("必需是TAVIK的OBS格式檔", "檔案格式或檔案型別不符", ui::Buttons::Ok, ui::Icon::Critical);
    return false;
  }
  return true;
}

}  // namespace tavik
