#include "core/recent_files.h"

#include <gtest/gtest.h>

#include "platform/scripted/scripted.h"

using namespace tavik;
using Items = std::vector<std::string>;

TEST(RecentFiles, NewestFirstNoDuplicatesAtMostFive) {
  struct Case {
    const char* legend;
    Items before;
    std::string added;
    Items after;
  } cases[] = {
      {"first entry", {}, "/w/a", {"/w/a"}},
      {"goes first", {"/w/a", "/w/b"}, "/w/c", {"/w/c", "/w/a", "/w/b"}},
      {"present moves to the front", {"/w/a", "/w/b", "/w/c"}, "/w/b", {"/w/b", "/w/a", "/w/c"}},
      {"already first", {"/w/a", "/w/b"}, "/w/a", {"/w/a", "/w/b"}},
      {"sixth drops the oldest", {"1", "2", "3", "4", "5"}, "6", {"6", "1", "2", "3", "4"}},
      {"present in a full list", {"1", "2", "3", "4", "5"}, "5", {"5", "1", "2", "3", "4"}},
      {"empty name ignored", {"1"}, "", {"1"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.legend);
    RecentList l{c.before};
    AddRecent(l, c.added);
    EXPECT_EQ(l.Items, c.after);
    EXPECT_EQ(l.RecentCount(), static_cast<int16_t>(c.after.size()));
  }
}

// Written under TAVIK / Used Files by number, the whole section at once; read back in
// number order, gaps, duplicates and keys past five left out.
TEST(RecentFiles, StoredUnderTavikUsedFilesByNumber) {
  ui::MemorySettingsStore store;
  store.SaveSetting("TAVIK", "Used Files", "9", "stale");
  WriteRecentList(store, RecentList{{"/w/甲", "/w/b"}});
  EXPECT_EQ(store.GetAllSettings("TAVIK", "Used Files"),
            (std::vector<std::pair<std::string, std::string>>{{"1", "/w/甲"}, {"2", "/w/b"}}));

  for (auto [k, v] : {std::pair{"2", ""}, {"3", "/c"}, {"4", "/w/甲"}, {"6", "/f"}})
    store.SaveSetting("TAVIK", "Used Files", k, v);
  RecentList back;
  ReadRecentList(store, back);
  EXPECT_EQ(back.Items, (Items{"/w/甲", "/c"}));

  ClearRecentList(store, back);
  EXPECT_TRUE(back.Items.empty());
  EXPECT_TRUE(store.GetAllSettings("TAVIK", "Used Files").empty());
}
