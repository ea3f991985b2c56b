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

TEST(RecentFiles, StoredUnderTavikUsedFilesByNumber) {
  ui::MemorySettingsStore store;
  store.SaveSetting("TAVIK", "Used Files", "9", "stale");  // removed by the whole-section rewrite
  RecentList l{{"/w/甲", "/w/b"}};
  WriteRecentList(store, l);
  const auto all = store.GetAllSettings("TAVIK", "Used Files");
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0], (std::pair<std::string, std::string>{"1", "/w/甲"}));
  EXPECT_EQ(all[1], (std::pair<std::string, std::string>{"2", "/w/b"}));

  RecentList back;
  ReadRecentList(store, back);
  EXPECT_EQ(back.Items, l.Items);

  ClearRecentList(store, back);
  EXPECT_TRUE(back.Items.empty());
  EXPECT_TRUE(store.GetAllSettings("TAVIK", "Used Files").empty());
}

TEST(RecentFiles, ReadSkipsGapsAndKeepsOnlyFive) {
  ui::MemorySettingsStore store;
  store.SaveSetting("TAVIK", "Used Files", "1", "/a");
  store.SaveSetting("TAVIK", "Used Files", "3", "/c");
  store.SaveSetting("TAVIK", "Used Files", "4", "/a");  // a duplicate written by hand
  store.SaveSetting("TAVIK", "Used Files", "6", "/f");
  RecentList l;
  ReadRecentList(store, l);
  EXPECT_EQ(l.Items, (Items{"/a", "/c"}));
}
