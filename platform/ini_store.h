// The per-user settings store as INI files of our own: one file per application name
// (TAVIK.ini) in the data folder, "[Section]" lines and "key=value" lines, UTF-8. A
// section keeps its name as it stands, spaces and all ("[Used Files]"). Files written
// by earlier versions through the toolkit's store read the same: a percent-escaped
// section name ("[Used%20Files]") is decoded, and a quoted value is unquoted with its
// backslash escapes. Lines starting with ";" or "#" are comments. Every change rewrites
// the file whole, through a temporary file, and comments are not kept.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "platform/settings_store.h"

namespace tavik::ui {

// One INI file in memory: sections in file order, keys in file order within each.
struct IniData {
  struct Section {
    std::string name;
    std::vector<std::pair<std::string, std::string>> keys;
  };
  std::vector<Section> sections;

  static IniData Parse(const std::string& text);
  std::string Text() const;
  Section* Find(const std::string& section);
};

class IniSettingsStore : public SettingsStore {
 public:
  explicit IniSettingsStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

  std::string GetSetting(const std::string& app, const std::string& section, const std::string& key,
                         const std::string& defaultValue) override;
  void SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                   const std::string& value) override;
  void DeleteSection(const std::string& app, const std::string& section) override;
  std::vector<std::pair<std::string, std::string>> GetAllSettings(const std::string& app,
                                                                  const std::string& section) override;

  std::filesystem::path File(const std::string& app) const { return folder_ / (app + ".ini"); }

 private:
  IniData Read(const std::string& app) const;
  void Write(const std::string& app, const IniData& data) const;
  std::filesystem::path folder_;
};

}  // namespace tavik::ui
