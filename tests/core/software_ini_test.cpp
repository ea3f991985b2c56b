#include "core/software_ini.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/record_text.h"
#include "core/text.h"
#include "temp_home.h"

namespace fs = std::filesystem;
using namespace tavik;

using tavik::testing::ReadBytes;
using tavik::testing::TempHome;
using tavik::testing::WriteBytes;

namespace {

std::vector<std::string> SplitText(const std::string& all) {
  std::vector<std::string> out;
  for (auto l : rec::SplitLines(all)) out.emplace_back(l);
  return out;
}

// The written file's lines, converted back to UTF-8.
std::vector<std::string> Lines(const fs::path& p) { return SplitText(text::FromCp950(ReadBytes(p))); }

// The first n lines, line `at` replaced by `with`, each ended by CR LF.
std::string Join(const std::vector<std::string>& lines, std::size_t n, std::size_t at = SIZE_MAX,
                 const std::string& with = "") {
  std::string s;
  for (std::size_t i = 0; i < n; ++i) s += (i == at ? with : lines[i]) + "\r\n";
  return s;
}

class SoftwareIniFile : public ::testing::Test {
 protected:
  TempHome d;
  const fs::path f = d.path / "Software.ini";
};

}  // namespace

TEST_F(SoftwareIniFile, WritesSeventyFourCp950LinesWithDefaults) {
  ASSERT_TRUE(WriteSoftwareIni(f, SoftwareIni{}));
  const std::string bytes = ReadBytes(f);
  // Every line ends in CR LF and the title is in code page 950, not UTF-8.
  EXPECT_EQ(bytes.find("\r\n"), bytes.find('\n') - 1);
  EXPECT_NE(bytes.find(text::ToCp950("宜蘭縣釣魚台地政事務所-戶地測量觀測記簿")), std::string::npos);
  const auto lines = Lines(f);
  ASSERT_EQ(lines.size(), 74u);
  EXPECT_EQ(lines[0], "\"TS\"");
  EXPECT_EQ(lines[6], "9600");
  EXPECT_EQ(lines[11], "#FALSE#");
  EXPECT_EQ(lines[36], "\"TWD97\"");
  EXPECT_EQ(lines[50], "\"每5秒\"");
  EXPECT_EQ(lines[73], "\"宜蘭縣釣魚台地政事務所-戶地測量觀測記簿\"");
}

TEST_F(SoftwareIniFile, ChangedValuesReadBackExactly) {
  SoftwareIni a;
  a.MeasureMode = "GPS";
  a.PortNumber = 7;
  a.BaudRate = 115200;
  a.ImuOffset[1] = -0.1234567890123;
  a.AutoNamePrefix = "碁A";
  a.TextScale = 0.3f;
  a.RefColourInUse = false;
  a.ObservationBookTitle = "新北市地政事務所, 戶地";  // a comma inside the quotes
  ASSERT_TRUE(WriteSoftwareIni(f, a));
  SoftwareIni b;
  ASSERT_EQ(ReadSoftwareIni(f, b), IniReadResult::Read);
  EXPECT_EQ(SoftwareIniText(b), SoftwareIniText(a));
  EXPECT_EQ(b.ImuOffset[1], a.ImuOffset[1]);
  EXPECT_EQ(b.TextScale, 0.3f);
  EXPECT_EQ(b.AutoNamePrefix, "碁A");
}

// A file with any other count than 74 is deleted at start and the defaults stand; the
// next exit writes a whole new one.
TEST_F(SoftwareIniFile, WrongCountDeletesFileAndKeepsDefaults) {
  SoftwareIni changed;
  changed.MeasureMode = "GPS";
  changed.PortNumber = 4;
  const auto lines = SplitText(SoftwareIniText(changed));
  struct Case {
    const char* legend;
    std::string body;
  } cases[] = {
      {"73 values", Join(lines, 73)},
      {"75 values", Join(lines, 74) + "\"x\"\r\n"},
      {"empty file", ""},
      {"74 values with a text where a count belongs", Join(lines, 74, 5, "\"one\"")},
      {"74 values with a port beyond 16 bits", Join(lines, 74, 5, "70000")},
      {"garbage line", Join(lines, 74, 0, "\"T\x01\"") + "\"unclosed\r\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.legend);
    WriteBytes(f, text::ToCp950(c.body));
    SoftwareIni ini;
    EXPECT_EQ(ReadSoftwareIni(f, ini), IniReadResult::Deleted);
    EXPECT_FALSE(fs::exists(f));
    EXPECT_EQ(SoftwareIniText(ini), SoftwareIniText(SoftwareIni{}));
    // Next exit.
    ASSERT_TRUE(WriteSoftwareIni(f, ini));
    EXPECT_EQ(Lines(f).size(), 74u);
  }
}

TEST_F(SoftwareIniFile, ValuesMayShareLinesAndBlankLinesAreIgnored) {
  // The count is of values, not of lines: two values on one line still count as two.
  std::string s;
  int k = 0;
  const std::string all = SoftwareIniText(SoftwareIni{});
  for (auto l : rec::SplitLines(all)) {
    s += std::string(l) + (k++ % 2 == 0 ? "," : "\r\n");
  }
  WriteBytes(f, text::ToCp950(s + "\r\n\r\n"));
  SoftwareIni ini;
  EXPECT_EQ(ReadSoftwareIni(f, ini), IniReadResult::Read);
  EXPECT_TRUE(fs::exists(f));
}

TEST_F(SoftwareIniFile, MissingFileIsLeftAloneAndUnwritablePlaceFails) {
  SoftwareIni ini;
  ini.PortNumber = 9;
  EXPECT_EQ(ReadSoftwareIni(d.path / "none.ini", ini), IniReadResult::Missing);
  EXPECT_EQ(ini.PortNumber, 9);
  // symb is a plain file here, so nothing can be written under it, even by root.
  WriteBytes(d.path / "symb", "x");
  EXPECT_FALSE(WriteSoftwareIni(d.path / "symb" / "Software.ini", SoftwareIni{}));
  EXPECT_EQ(ReadBytes(d.path / "symb"), "x");
}
