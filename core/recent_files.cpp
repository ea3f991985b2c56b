#include "core/recent_files.h"

#include <algorithm>

namespace tavik {

void ReadRecentList(ui::SettingsStore& store, RecentList& list) {
  list.Items.clear();
  for (int k = 1; k <= MaxRecentFiles; ++k) {
    std::string v = store.GetSetting(RecentApp, RecentSection, std::to_string(k), "");
    if (!v.empty() && std::find(list.Items.begin(), list.Items.end(), v) == list.Items.end())
      list.Items.push_back(std::move(v));
  }
}

void AddRecent(RecentList& list, const std::string& name) {
  if (name.empty()) return;
  std::vector<std::string> items{name};
  for (const std::string& s : list.Items) {
    if (s != name && !s.empty() && items.size() < static_cast<std::size_t>(MaxRecentFiles)) items.push_back(s);
  }
  list.Items = std::move(items);
}

void WriteRecentList(ui::SettingsStore& store, const RecentList& list) {
  store.DeleteSection(RecentApp, RecentSection);
  int k = 0;
  for (const std::string& s : list.Items) {
    ++k;
    if (!s.empty()) store.SaveSetting(RecentApp, RecentSection, std::to_string(k), s);
  }
}

void ClearRecentList(ui::SettingsStore& store, RecentList& list) {
  store.DeleteSection(RecentApp, RecentSection);
  list.Items.clear();
}

}  // namespace tavik
