// The small per-user store of application / section / key = value settings, where the
// recent-file list lives.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tavik::ui {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;
  virtual std::string GetSetting(const std::string& app, const std::string& section, const std::string& key,
                                 const std::string& defaultValue = "") = 0;
  virtual void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                           const std::string& value) = 0;
  virtual void DeleteSection(const std::string& app, const std::string& section) = 0;
  // All keys of a section with their values, in key order.
  virtual std::vector<std::pair<std::string, std::string>> GetAllSettings(const std::string& app,
                                                                          const std::string& section) = 0;
};

}  // namespace tavik::ui
