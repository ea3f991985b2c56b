// TAVIK.ini: the section names as they stand, values that read back whatever they
// hold, and the files the toolkit's store wrote before.
#include "platform/ini_store.h"

#include <gtest/gtest.h>

#include "core/temp_home.h"

using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;
using tavik::ui::IniSettingsStore;

TEST(IniStore, WritesTheSectionAsNamedAndValuesReadBack) {
  TempHome home;
  IniSettingsStore store(home.path);
  const std::string awkward[] = {"/home/u/TAVIK/工作目錄/甲地", "  lead and trail  ", "\"quoted\" a,b;c=d",
                                 "back\\slash", "two\nlines", ""};
  int k = 0;
  for (const std::string& v : awkward) store.SaveSetting("TAVIK", "Used Files", std::to_string(++k), v);
  store.SaveSetting("TAVIK", "Ports", "COM1", "/dev/ttyS0");
  store.SaveSetting("TAVIK", "Used Files", "1", "/w/乙");  // replaces in place

  const std::string text = ReadBytes(home.path / "TAVIK.ini");
  EXPECT_EQ(text.rfind("[Used Files]\n1=/w/乙\n", 0), 0u) << text;
  EXPECT_NE(text.find("\n[Ports]\nCOM1=/dev/ttyS0\n"), std::string::npos) << text;

  IniSettingsStore again(home.path);
  k = 1;
  for (std::size_t i = 1; i < std::size(awkward); ++i)
    EXPECT_EQ(again.GetSetting("TAVIK", "Used Files", std::to_string(++k), "?"), awkward[i]) << i;
  EXPECT_EQ(again.GetSetting("TAVIK", "Used Files", "9", "none"), "none");
  EXPECT_EQ(again.GetAllSettings("TAVIK", "Used Files").size(), std::size(awkward));

  again.DeleteSection("TAVIK", "Used Files");
  EXPECT_TRUE(store.GetAllSettings("TAVIK", "Used Files").empty());
  EXPECT_EQ(ReadBytes(home.path / "TAVIK.ini"), "[Ports]\nCOM1=/dev/ttyS0\n");
}

// A file of an earlier version: the section escaped, values quoted with escapes, a
// comment the user added; the next write gives the section its plain name.
TEST(IniStore, ReadsAFileOfTheToolkitsStore) {
  TempHome home;
  WriteBytes(home.path / "TAVIK.ini",
             "[Ports]\r\n; my adapter\r\nCOM1=/dev/ttyACM0\r\n\r\n[Used%20Files]\r\n"
             "1=\"/home/u/TAVIK/\\x5de5\\x4f5c/a,b \\\"q\\\" \\\\x\"\r\n2=/home/u/工作目錄/乙\r\n");
  IniSettingsStore store(home.path);
  EXPECT_EQ(store.GetSetting("TAVIK", "Used Files", "1", ""), "/home/u/TAVIK/工作/a,b \"q\" \\x");
  EXPECT_EQ(store.GetSetting("TAVIK", "Used Files", "2", ""), "/home/u/工作目錄/乙");
  EXPECT_EQ(store.GetSetting("TAVIK", "Ports", "COM1", ""), "/dev/ttyACM0");
  store.SaveSetting("TAVIK", "Used Files", "3", "/w/丙");
  const std::string text = ReadBytes(home.path / "TAVIK.ini");
  EXPECT_NE(text.find("[Used Files]\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("%20"), std::string::npos) << text;
  EXPECT_EQ(store.GetSetting("TAVIK", "Used Files", "1", ""), "/home/u/TAVIK/工作/a,b \"q\" \\x");
}
