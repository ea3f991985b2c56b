// A memory dump into the map: the points land where the instrument saw them, with
// their names and codes, the .OBS log gets the set-up group and one line per shot, and
// the window's message tells a cut or damaged transfer apart from a clean one.
#include <gtest/gtest.h>

#include "../instruments/dump_writer.h"
#include "geo/constants.h"
#include "procedures/ts_download.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

using test::Fixed;
using test::GtsRecord;
using test::SdrHeader;
using test::SdrLine;

struct Target {
  const char* name;
  double E, N, H;
  const char* code;
};
const Target kTargets[] = {{"P1", 1050, 2050, 51.2, "301"}, {"P2", 950.12, 1960, 52.01, "TREE"}};

double Deg(double rad) { return rad * 180 / Pi; }
long Packed(double rad) {
  const long s = std::lround(Deg(rad) * 3600);
  return s / 3600 * 10000 + s / 60 % 60 * 100 + s % 60;
}

struct TsDownloadTest : testing::SurveyFixture {
  const Point* PointNear(double E, double N) {
    for (const Point& p : doc.PointTable)
      if (std::fabs(p.E - E) < 0.002 && std::fabs(p.N - N) < 0.002) return &p;
    return nullptr;
  }
  const Entity* Named(const std::string& name) {
    for (const Entity& e : doc.EntityTable)
      if (e.Name == name) return &e;
    return nullptr;
  }
};

TEST_F(TsDownloadTest, SdrJobWithItsOwnSetUp) {
  // Backsight B1 due east, circle reading 30 degrees on it: orientation 60 degrees.
  const double oc = 60 * Pi / 180;
  std::string text = SdrHeader() + SdrLine("08KI", {"B1", "2000.000", "1100.000", "52.000", "BS"}) +
                     SdrLine("02TP", {"S1", "2000.000", "1000.000", "50.000", "1.500"}) + SdrLine("03NM", {"1.300"}) +
                     SdrLine("07TP", {"S1", "B1", "", "30.000000"});
  for (const Target& t : kTargets) {
    const testing::Reading r = testing::ReadingTo(1000, 2000, 50, 1.5, oc, t.E, t.N, t.H, 1.3);
    text += SdrLine("09F1", {"S1", t.name, Fixed(r.slope, 4), Fixed(Deg(r.v), 7), Fixed(Deg(r.hz), 7), t.code});
  }
  text += SdrLine("08KI", {"C9", "2345.600", "1234.500", "10.000", "113"});

  DownloadResult res = ConvertDump(ctx, dump::Format::Sdr, text, true);
  EXPECT_EQ(res.observations, 2u);
  EXPECT_EQ(res.coordinates, 2u);
  EXPECT_EQ(res.message, "下載完畢. 觀測 2 點, 座標 2 點.");
  EXPECT_EQ(doc.PointCount, 4);
  for (const Target& t : kTargets) {
    const Point* p = PointNear(t.E, t.N);
    ASSERT_NE(p, nullptr) << t.name;
    EXPECT_NEAR(p->H, t.H, 0.002) << t.name;
  }
  ASSERT_NE(Named("P1"), nullptr);
  EXPECT_EQ(Named("P1")->Code, 301);
  EXPECT_EQ(Named("P2")->Code, CodeNamedPoint);  // a code that is no legend number
  EXPECT_EQ(Named("C9")->Code, 113);
  EXPECT_EQ(Named("C9")->X[0], 1234.5);

  const std::vector<std::string> obs = Lines(".OBS");
  ASSERT_EQ(obs.size(), 5u);
  EXPECT_EQ(obs[0], "-99 , 2026/11/21 08:00:00");
  EXPECT_EQ(obs[1], "S1,1000.000,2000.000,50.000,1.50");
  EXPECT_EQ(obs[2].substr(0, 37), "B1,1100.000,2000.000,52.000, 300000 ,");
  const testing::Reading r1 = testing::ReadingTo(1000, 2000, 50, 1.5, oc, 1050, 2050, 51.2, 1.3);
  EXPECT_EQ(obs[3], std::to_string(Packed(r1.hz)) + ", " + std::to_string(Packed(r1.v)) + " ," +
                        Fixed(r1.slope, 3) + ",1.30, 2026/11/21 08:00:00");
  EXPECT_EQ(doc.TargetHeight, 0);  // the present target height is the surveyor's own
}

TEST_F(TsDownloadTest, GtsShotsFromTheSetUpInForce) {
  const double oc = 0.7;
  SetStation(1000, 2000, 50, oc);
  doc.InstrumentHeight = 1.5;
  std::string text;
  for (const Target& t : kTargets) {
    const testing::Reading r = testing::ReadingTo(1000, 2000, 50, 1.5, oc, t.E, t.N, t.H, 1.6);
    text += GtsRecord("", t.code, 1.6, t.name, r.slope, Packed(r.v), Packed(r.hz));
  }
  DownloadResult res = ConvertDump(ctx, dump::Format::Gts, text, true);
  EXPECT_EQ(res.observations, 2u);
  for (const Target& t : kTargets) {
    const Point* p = PointNear(t.E, t.N);
    ASSERT_NE(p, nullptr) << t.name;
    EXPECT_NEAR(p->H, t.H, 0.003) << t.name;
  }
  EXPECT_EQ(Lines(".OBS").size(), 2u);  // the set-up in force has its group already
}

TEST_F(TsDownloadTest, MessagesOfAnImperfectTransfer) {
  const std::string good = SdrHeader() + SdrLine("08KI", {"A1", "2000", "1000", "50"}) +
                           SdrLine("08KI", {"A2", "2010", "1000", "50"});
  struct Case {
    const char* legend;
    std::string text;
    bool complete;
    std::string message;
    int points;
  } cases[] = {
      {"cut inside a record", good + "08KI    A3         20", true,
       "資料傳輸中斷, 已收到的資料已保留. 最後一筆完整的記錄在第 3 行 (點 A2). 觀測 0 點, 座標 2 點.", 2},
      {"stopped before the end mark", good, false,
       "資料傳輸中斷, 已收到的資料已保留. 最後一筆完整的記錄在第 3 行 (點 A2). 觀測 0 點, 座標 2 點.", 2},
      {"nothing complete", "00NMSDR3", false, "資料傳輸中斷, 沒有收到完整的記錄. 觀測 0 點, 座標 0 點.", 0},
      {"a damaged record", good + "08KI#\x05\r\n" + SdrLine("08KI", {"A4", "1", "2", "3"}), true,
       "下載完畢. 觀測 0 點, 座標 3 點. 資料錯誤略過 1 筆 (第 4 行).", 3},
      {"a shot with no station", SdrHeader() + SdrLine("09F1", {"S1", "P1", "10", "90", "0"}), true,
       "下載完畢. 觀測 0 點, 座標 0 點. 1 筆觀測沒有測站或距離, 未計算座標.", 0},
  };
  for (const Case& c : cases) {
    doc.PointTable.clear();
    doc.PointCount = 0;
    DownloadResult res = ConvertDump(ctx, dump::Format::Sdr, c.text, c.complete);
    EXPECT_EQ(res.message, c.message) << c.legend;
    EXPECT_EQ(doc.PointCount, c.points) << c.legend;
  }
}

}  // namespace
}  // namespace tavik
