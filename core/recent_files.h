// The recent-file list of the File menu, kept in the settings store under application
// "TAVIK", section "Used Files": key "1".."5", value a document's name without its
// extension. The newest entry comes first and no name appears twice.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/settings_store.h"

namespace tavik {

constexpr int16_t MaxRecentFiles = 5;
inline constexpr const char* RecentApp = "TAVIK";
inline constexpr const char* RecentSection = "Used Files";

struct RecentList {
  std::vector<std::string> Items;  // shown items, newest first; RecentCount is Items.size()
  int16_t RecentCount() const { return static_cast<int16_t>(Items.size()); }
};

// Reads the section: the values of keys "1".."5" in that order, empty ones left out.
void ReadRecentList(ui::SettingsStore& store, RecentList& list);

// Puts `name` first; the earlier entries follow in order without the one equal to it,
// and the list is cut to five.
void AddRecent(RecentList& list, const std::string& name);

// Deletes the section and saves each non-empty item under its number.
void WriteRecentList(ui::SettingsStore& store, const RecentList& list);

// The clear-list command: the section is deleted and the list emptied.
void ClearRecentList(ui::SettingsStore& store, RecentList& list);

}  // namespace tavik
