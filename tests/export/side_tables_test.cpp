// The CSV side tables, read back by Python's csv module in code page 950.
#include <gtest/gtest.h>

#include "core/temp_home.h"
#include "export/peer.h"
#include "export/side_tables.h"
#include "view/legends.h"

using namespace tavik;
using tavik::testing::ReadBytes;
using tavik::testing::RunPeer;
using tavik::testing::TempHome;

namespace {

Entity Stake(int16_t code, const std::string& name, double e, double n, double h, bool deleted = false) {
  Entity x;
  x.Code = code;
  x.Kind = KindPoint;
  x.X[0] = e;
  x.Y[0] = n;
  x.Z[0] = h;
  x.Name = name;
  x.Deleted = deleted ? kTrue : kFalse;
  return x;
}

Document Survey() {
  Document d;
  // Two rows of a reference map first: never the survey's own.
  d.EntityTable = {Stake(110, "REF1", 1, 2, 3), Stake(601, "REF2", 1, 2, 3),
                   Stake(110, " 三角A ", 281000.125, 2751000.5, 12.345),
                   Stake(199, "T,1", -0.5, 2751001, -9999),
                   Stake(109, "below", 1, 1, 1), Stake(200, "above", 1, 1, 1),
                   Stake(113, "gone", 1, 1, 1, true),
                   Stake(601, "電1", 281002, 2751002, 0.25), Stake(638, "油\"9\"", 3, 4, 5),
                   Stake(639, "x", 1, 1, 1)};
  d.EntityCount = static_cast<int32_t>(d.EntityTable.size());
  d.ReferenceEntityCount = 2;
  return d;
}

// Every row as the csv module reads it, fields joined by "|", one row a line.
std::string ReadCsv(const std::filesystem::path& file) {
  return RunPeer("/usr/bin/python3 -c \"import csv,sys\n"
                 "for r in csv.reader(open(sys.argv[1], encoding='cp950', newline='')): print('|'.join(r))\" '" +
                 file.string() + "'");
}

}  // namespace

TEST(SideTables, BothTablesReadBackByAnIndependentCsvReader) {
  TempHome home;
  const Document d = Survey();
  const dxf::TableResult p = dxf::WritePointTableCsv(d, home.path);
  ASSERT_TRUE(p.written) << p.message;
  EXPECT_EQ(p.count, 2);
  EXPECT_EQ(p.message, "[控制點樁位表.CSV] 檔輸出OK!! 總共2支樁");
  EXPECT_EQ(ReadCsv(home.path / "控制點樁位表.CSV"), "點名|橫座標E|縱座標N|高程H|樁標種類\n"
                                                 "三角A|281000.125|2751000.5|12.345|" + view::LegendName(110) + "\n"
                                                 "T,1|-0.5|2751001|-9999|" + view::LegendName(199) + "\n");

  const dxf::TableResult c = dxf::WriteClassTableCsv(d, home.path);
  ASSERT_TRUE(c.written) << c.message;
  EXPECT_EQ(c.message, "[分類樁位表.CSV] 輸出完成!! 總共2支樁");
  EXPECT_EQ(ReadCsv(home.path / "分類樁位表.CSV"),
            "編號|橫座標E|縱座標N|高程H|屬性\n"
            "電1|281002|2751002|0.25|" + view::LegendName(601) + "\n"
            "油\"9\"|3|4|5|" + view::LegendName(638) + "\n");
}

// Where the file cannot be made (a folder that isn't there, a folder standing in the
// file's place) the surveyor gets a message naming the file, and nothing is half written.
TEST(SideTables, AnUnwritableTargetGivesAMessage) {
  TempHome home;
  std::filesystem::create_directory(home.path / dxf::ClassTableFile);
  for (const auto& [dir, write] : {std::pair{home.path / "none", &dxf::WritePointTableCsv},
                                   std::pair{home.path, &dxf::WriteClassTableCsv}}) {
    const dxf::TableResult r = write(Survey(), dir);
    EXPECT_FALSE(r.written);
    EXPECT_NE(r.message.find("無法寫入"), std::string::npos) << r.message;
  }
  EXPECT_TRUE(std::filesystem::is_directory(home.path / dxf::ClassTableFile));
  EXPECT_FALSE(std::filesystem::exists(home.path / "none"));
}
