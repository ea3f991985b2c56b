// The log records byte for byte, as a person checking an .OBS, .STK or .MAC file by
// hand would expect them.
#include <gtest/gtest.h>

#include "core/temp_home.h"
#include "core/text.h"
#include "procedures/observation_log.h"

namespace tavik {
namespace {

using namespace obslog;

TEST(ObservationLog, NumberFormHasItsBlanks) {
  const struct {
    double v;
    const char* want;
  } cases[] = {
      {-99, "-99 "}, {1234512, " 1234512 "}, {0, " 0 "}, {1.5, " 1.5 "}, {-0.25, "-0.25 "},
  };
  for (const auto& c : cases) EXPECT_EQ(NumberForm(c.v), c.want) << c.v;
}

TEST(ObservationLog, ObsRecords) {
  const std::string now = "2026/11/21 08:00:00";
  EXPECT_EQ(SetupMarkLine(now), "-99 , 2026/11/21 08:00:00");
  EXPECT_EQ(StationLine("A1", 280850, 2752650.1234, 100.0005, 1.455), "A1,280850.000,2752650.123,100.001,1.46");
  EXPECT_EQ(BacksightLine("a2", 280950.5, 2752650, 99.25, 900000, 901530, 100.4567),
            "A2,280950.500,2752650.000,99.250, 900000 , 901530 ,100.457");
  // The circle reading keeps at least five digits; the zenith is in number form.
  EXPECT_EQ(ObservationLine(512, 901530, 12.3456, 1.5, now), "00512, 901530 ,12.346,1.50, 2026/11/21 08:00:00");
  EXPECT_EQ(ObservationLine(3595959, 2700000, 0.5, -99, now),
            "3595959, 2700000 ,0.500,-99.00, 2026/11/21 08:00:00");
}

TEST(ObservationLog, StakeLine) {
  // Target, station with instrument height, backsight, readings, target height.
  const StakeRecord r{"P7",    1000.1234, 2000, 50.5,   "A1",   900,      1900, 49,
                      1.5,     " A2  ",   1100, 1900,   450512, 901530,   141.4213, 1.3};
  EXPECT_EQ(StakeLine(r),
            "P7,1000.123,2000.000,50.500,A1,900.000,1900.000,49.000, 1.5 ,A2,1100.000,1900.000,45-05-12.00,"
            "90-15-30,141.421, 1.3 ");
}

TEST(ObservationLog, MacLines) {
  EXPECT_EQ(MacStationLine("A1", "k2"), "A1 K2");
  EXPECT_EQ(MacShotLine(" 界1 ", 1234512, 901530, 12.3456), "界1 123.4512 90.1530 12.346 ");
  // A packed angle of 0 takes the short form: the same number of fields.
  EXPECT_EQ(MacShotLine("界2", 0, 901530, 8), "界2  0.0000 90.1530 8.000 ");
  EXPECT_EQ(MacShotLine("P", 4512, 895959, 1), "P 0.4512 89.5959 1.000 ");
}

TEST(ObservationLog, AppendWritesCp950LinesAndKeepsEarlierOnes) {
  testing::TempHome home;
  const std::string path = (home.path / "x.MAC").string();
  ASSERT_TRUE(AppendLine(path, "測站 A2"));
  ASSERT_TRUE(AppendLine(path, "界1 0.4512"));
  EXPECT_EQ(testing::ReadBytes(path), text::ToCp950("測站 A2") + "\r\n" + text::ToCp950("界1 0.4512") + "\r\n");
  EXPECT_FALSE(AppendLine((home.path / "missing" / "x.OBS").string(), "x"));
  EXPECT_FALSE(AppendLine("", "x"));
}

}  // namespace
}  // namespace tavik
