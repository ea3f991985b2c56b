// The per-user settings store on QSettings. Each application name gets its own INI
// file in the given folder (the program's data folder), sections are groups, keys keep
// their text.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/settings_store.h"

class QSettings;

namespace tavik::ui {

class QtSettingsStore : public SettingsStore {
 public:
  explicit QtSettingsStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

  std::string GetSetting(const std::string& app, const std::string& section, const std::string& key,
                         const std::string& defaultValue) override;
  void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                   const std::string& value) override;
  void DeleteSection(const std::string& app, const std::string& section) override;
  std::vector<std::pair<std::string, std::string>> GetAllSettings(const std::string& app,
                                                                  const std::string& section) override;

 private:
  std::unique_ptr<QSettings> Open(const std::string& app) const;
  std::filesystem::path folder_;
};

}  // namespace tavik::ui
