// The text report of a document, as a surveyor reads it: code page 950, the survey's own
// rows counted apart from the reference map, and what was drawn summed by legend code.
#include <gtest/gtest.h>

#include "core/temp_home.h"
#include "core/text.h"
#include "export/document_report.h"
#include "export/peer.h"
#include "geo/area.h"

using namespace tavik;
using tavik::testing::RunPeer;
using tavik::testing::TempHome;

namespace {

Entity Make(int16_t code, int16_t kind, std::initializer_list<double> xy, const std::string& name = "") {
  Entity e;
  e.Code = code;
  e.Kind = kind;
  auto it = xy.begin();
  for (int i = 0; i < 3 && it != xy.end(); ++i) {
    e.X[i] = *it++;
    e.Y[i] = *it++;
  }
  e.Name = name;
  return e;
}

Document Survey() {
  Document d;
  SetDocumentName(d, "/data/東區");
  d.ScaleDenominator = 500;
  d.PointTable = {{1, 9, 9, 99, kFalse}, {2, 100, 200, 10.5, kFalse}, {3, 101, 201, -9999, kFalse},
                  {4, 102, 202, 12.25, kTrue}};
  d.PointCount = 4;
  d.ReferencePointCount = 1;
  d.EntityTable = {Make(110, KindPoint, {9, 9}, "REF"), Make(110, KindPoint, {100, 200}, "三角A"),
                   Make(301, KindLine, {0, 0, 3, 4}), Make(301, KindLine, {3, 4, 3, 10}),
                   Make(407, KindArc3, {1, 0, 0, 1, -1, 0}), Make(301, KindLine, {0, 0, 100, 0})};
  d.EntityTable[1].Z[0] = 12.5;
  d.EntityTable[5].Deleted = kTrue;
  d.EntityCount = 6;
  d.ReferenceEntityCount = 1;
  d.StationSet = kTrue;
  d.StationName = "S1";
  d.StationE = 100;
  d.StationN = 200;
  d.StationH = 10.5;
  d.BacksightName = "S2";
  d.BacksightAzimuth = 3.14159265358979 / 2;
  d.SplitStakeCount = 3;
  d.SplitAreaValue = 1234.5;
  return d;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(DocumentReport, SaysWhatTheOfficeAsksOfTheDaysMap) {
  const std::string r = dxf::DocumentReportText(Survey(), AreaUnitSquareMetres, "2026/11/23 14:00:00");
  for (const char* part : {"圖檔名稱: /data/東區.SPC", "報表時間: 2026/11/23 14:00:00", "圖面比例: 1/500",
                           // the reference map's rows are counted apart, deleted rows noted
                           "測點: 2 點(另有 1 點已刪除", "圖元: 4 筆(另有 1 筆已刪除", "參考圖: 1 點, 1 筆圖元",
                           "高程範圍: 10.500 ~ 10.500", "測站: S1", "後視方位角: 90-00-00.00", "分割樁數: 3",
                           "分割面積: 1234.5000㎡"})
    EXPECT_TRUE(Has(r, part)) << part << "\n" << r;
  // Control points: the survey's only, with coordinates and the trimmed legend name.
  EXPECT_TRUE(Has(r, "三角A")) << r;
  EXPECT_TRUE(Has(r, "100.000       200.000     12.500  三角點\r\n")) << r;
  EXPECT_FALSE(Has(r, "REF"));
  // Two live segments of 301, 5 m and 6 m; one half circle of 407 of radius 1.
  EXPECT_TRUE(Has(r, "301   建物_房屋_牆壁         0       2     0     0        11.000\r\n")) << r;
  EXPECT_TRUE(Has(r, "407   圍牆                   0       0     0     1         3.142\r\n")) << r;
}

TEST(DocumentReport, WrittenInCodePage950) {
  TempHome home;
  const auto path = home.path / "東區.TXT";
  ASSERT_EQ(dxf::WriteDocumentReport(Survey(), AreaUnitPing, path, "t"), "");
  const std::string back = RunPeer("/usr/bin/python3 -c \"import sys; sys.stdout.write(open(sys.argv[1], "
                                   "encoding='cp950', newline='').read())\" '" + path.string() + "'");
  EXPECT_EQ(back, dxf::DocumentReportText(Survey(), AreaUnitPing, "t"));
  EXPECT_TRUE(Has(back, "坪")) << back;
  EXPECT_NE(dxf::WriteDocumentReport(Survey(), 1, home.path / "none" / "x.TXT", "t"), "");
}
