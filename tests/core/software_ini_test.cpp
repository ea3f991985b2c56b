#include "core/software_ini.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/record_text.h"
#include "core/text.h"

namespace fs = std::filesystem;
using namespace tavik;

namespace {

struct TempDir {
  fs::path path;
  TempDir() {
    path = fs::temp_directory_path() / ("tavik_ini_" + std::to_string(::getpid()) + "_" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(path);
    fs::create_directories(path);
  }
  ~TempDir() { fs::remove_all(path); }
};

std::string ReadBytes(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteBytes(const fs::path& p, const std::string& bytes) {
  std::ofstream out(p, std::ios::binary);
  out << bytes;
}

// The written file's lines, converted back to UTF-8.
std::vector<std::string> Lines(const fs::path& p) {
  std::vector<std::string> out;
  const std::string utf8 = text::FromCp950(ReadBytes(p));
  for (auto l : rec::SplitLines(utf8)) out.emplace_back(l);
  return out;
}

}  // namespace

TEST(SoftwareIni, WritesSeventyFourCp950LinesWithDefaults) {
  TempDir d;
  const fs::path f = d.path / "Software.ini";
  ASSERT_TRUE(WriteSoftwareIni(f, SoftwareIni{}));
  const std::string bytes = ReadBytes(f);
  // Every line ends in CR LF and the title is in code page 950, not UTF-8.
  EXPECT_EQ(bytes.find("\r\n"), bytes.find('\n') - 1);
  EXPECT_NE(bytes.find(text::ToCp950("宜蘭縣釣魚台地政事務所-戶地測量觀測記簿")), std::string::npos);
  const auto lines = Lines(f);
  ASSERT_EQ(lines.size(), 74u);
  EXPECT_EQ(lines[0], "\"TS\"");
  EXPECT_EQ(lines[1], "\"SET30R\"");
  EXPECT_EQ(lines[5], "1");
  EXPECT_EQ(lines[6], "9600");
  EXPECT_EQ(lines[11], "#FALSE#");
  EXPECT_EQ(lines[32], "301");
  EXPECT_EQ(lines[35], "5");
  EXPECT_EQ(lines[36], "\"TWD97\"");
  EXPECT_EQ(lines[37], "121");
  EXPECT_EQ(lines[49], "\"RTCMV3\"");
  EXPECT_EQ(lines[50], "\"每5秒\"");
  EXPECT_EQ(lines[66], "124");
  EXPECT_EQ(lines[68], "124");
  EXPECT_EQ(lines[73], "\"宜蘭縣釣魚台地政事務所-戶地測量觀測記簿\"");
}

TEST(SoftwareIni, ChangedValuesReadBackExactly) {
  TempDir d;
  const fs::path f = d.path / "Software.ini";
  SoftwareIni a;
  a.MeasureMode = "GPS";
  a.InstrumentKind = "DL-4";
  a.PortNumber = 7;
  a.BaudRate = 115200;
  a.ImuOffset[1] = -0.1234567890123;
  a.AutoNamePrefix = "碁A";
  a.AutoSaveMinutes = 0;
  a.CentralMeridian = 119;
  a.PointFeatureDisplay = 0.3f;
  a.RefColourInUse = false;
  a.FineRotationStep = "30秒";
  a.ObservationBookTitle = "新北市地政事務所, 戶地";  // a comma inside the quotes
  ASSERT_TRUE(WriteSoftwareIni(f, a));
  SoftwareIni b;
  ASSERT_EQ(ReadSoftwareIni(f, b), IniReadResult::Read);
  EXPECT_EQ(SoftwareIniText(b), SoftwareIniText(a));
  EXPECT_EQ(b.ImuOffset[1], a.ImuOffset[1]);
  EXPECT_EQ(b.PointFeatureDisplay, 0.3f);
  EXPECT_EQ(b.AutoNamePrefix, "碁A");
}

// A file with any other count than 74 is deleted at start and the defaults stand; the
// next exit writes a whole new one.
TEST(SoftwareIni, WrongCountDeletesFileAndKeepsDefaults) {
  TempDir d;
  const fs::path f = d.path / "Software.ini";
  SoftwareIni changed;
  changed.MeasureMode = "GPS";
  changed.PortNumber = 4;
  const auto lines = [&] {
    std::vector<std::string> v;
    const std::string all = SoftwareIniText(changed);
    for (auto l : rec::SplitLines(all)) v.emplace_back(l);
    return v;
  }();
  struct Case {
    const char* legend;
    std::string body;
  } cases[] = {
      {"73 values", [&] { std::string s; for (int i = 0; i < 73; ++i) s += lines[i] + "\r\n"; return s; }()},
      {"75 values", [&] { std::string s; for (auto& l : lines) s += l + "\r\n"; return s + "\"x\"\r\n"; }()},
      {"empty file", ""},
      {"74 values with a text where a count belongs",
       [&] { std::string s; for (int i = 0; i < 74; ++i) s += (i == 5 ? "\"one\"" : lines[i]) + "\r\n"; return s; }()},
      {"74 values with a port beyond 16 bits",
       [&] { std::string s; for (int i = 0; i < 74; ++i) s += (i == 5 ? "70000" : lines[i]) + "\r\n"; return s; }()},
      {"garbage line", [&] { std::string s; for (auto& l : lines) s += l + "\r\n"; s[3] = '\x01'; return s + "\"unclosed\r\n"; }()},
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

TEST(SoftwareIni, ValuesMayShareLinesAndBlankLinesAreIgnored) {
  // The count is of values, not of lines: two values on one line still count as two.
  TempDir d;
  const fs::path f = d.path / "Software.ini";
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

TEST(SoftwareIni, MissingFileIsLeftAlone) {
  TempDir d;
  SoftwareIni ini;
  ini.PortNumber = 9;
  EXPECT_EQ(ReadSoftwareIni(d.path / "none.ini", ini), IniReadResult::Missing);
  EXPECT_EQ(ini.PortNumber, 9);
}

TEST(SoftwareIni, UnwritablePlaceReportsFailure) {
  // symb is a plain file here, so nothing can be written under it, even by root.
  TempDir d;
  WriteBytes(d.path / "symb", "x");
  EXPECT_FALSE(WriteSoftwareIni(d.path / "symb" / "Software.ini", SoftwareIni{}));
  EXPECT_EQ(ReadBytes(d.path / "symb"), "x");
}
