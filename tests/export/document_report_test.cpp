// The text report of a document, as a surveyor reads it: code page 950, the survey's own
// rows counted apart from the reference map, and what was drawn summed by legend code.
#include <gtest/gtest.h>

#include "core/temp_home.h"
#include "export/document_report.h"
#include "export/peer.h"
#include "geo/area.h"

using namespace tavik;

TEST(DocumentReport, SaysWhatTheOfficeAsksOfTheDaysMap) {
  Document d;
  SetDocumentName(d, "/data/東區");
  d.ScaleDenominator = 500;
  d.PointTable = {{1, 9, 9, 99, kFalse}, {2, 100, 200, 10.5, kFalse}, {3, 1, 2, -9999, kFalse}, {4, 1, 2, 12, kTrue}};
  d.PointCount = 4;
  d.ReferencePointCount = 1;
  auto entity = [](int16_t code, int16_t kind, std::vector<double> e, std::vector<double> n, const char* name = "") {
    Entity x{0, code, kind, {}, {}, {}, name, kFalse};
    for (std::size_t i = 0; i < e.size(); ++i) x.X[i] = e[i], x.Y[i] = n[i];
    return x;
  };
  d.EntityTable = {entity(110, KindPoint, {9}, {9}, "REF"), entity(110, KindPoint, {100}, {200}, "三角A"),
                   entity(301, KindLine, {0, 3}, {0, 4}), entity(301, KindLine, {3, 3}, {4, 10}),
                   entity(407, KindArc3, {1, 0, -1}, {0, 1, 0}), entity(301, KindLine, {0, 100}, {0, 0})};
  d.EntityTable[1].Z[0] = 12.5;
  d.EntityTable[5].Deleted = kTrue;
  d.EntityCount = 6;
  d.ReferenceEntityCount = 1;
  d.StationSet = kTrue;
  d.StationName = "S1";
  d.BacksightAzimuth = 3.14159265358979 / 2;
  d.SplitStakeCount = 3;
  d.SplitAreaValue = 1234.5;

  const std::string r = dxf::DocumentReportText(d, AreaUnitSquareMetres, "2026/11/23 14:00:00");
  for (const char* part : {"圖檔名稱: /data/東區.SPC", "報表時間: 2026/11/23 14:00:00", "圖面比例: 1/500",
                           // the reference map's rows are counted apart, deleted rows noted
                           "測點: 2 點(另有 1 點已刪除", "圖元: 4 筆(另有 1 筆已刪除", "參考圖: 1 點, 1 筆圖元",
                           "高程範圍: 10.500 ~ 10.500", "測站: S1", "後視方位角: 90-00-00.00", "分割樁數: 3",
                           "分割面積: 1234.5000㎡",
                           // control points of the survey only, with the trimmed legend name
                           "三角A                      100.000       200.000     12.500  三角點\r\n",
                           // two live segments of 301, 5 m and 6 m; a half circle of 407, radius 1
                           "301   建物_房屋_牆壁         0       2     0     0        11.000\r\n",
                           "407   圍牆                   0       0     0     1         3.142\r\n"})
    EXPECT_NE(r.find(part), std::string::npos) << part << "\n" << r;
  EXPECT_EQ(r.find("REF"), std::string::npos);

  // On disk in code page 950, read back by Python; a folder that isn't there is refused.
  tavik::testing::TempHome home;
  const auto path = home.path / "東區.TXT";
  ASSERT_EQ(dxf::WriteDocumentReport(d, AreaUnitPing, path, "t"), "");
  EXPECT_EQ(tavik::testing::RunPeer("/usr/bin/python3 -c \"import sys; sys.stdout.write(open(sys.argv[1], "
                                    "encoding='cp950', newline='').read())\" '" + path.string() + "'"),
            dxf::DocumentReportText(d, AreaUnitPing, "t"));
  EXPECT_NE(dxf::WriteDocumentReport(d, 1, home.path / "none" / "x.TXT", "t"), "");
}
