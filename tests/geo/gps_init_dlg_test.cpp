// GpsInitDlg without its window: options at opening, immediate effect, OK and Cancel.
#include <gtest/gtest.h>

#include "geo/gps_init_dlg.h"

namespace tavik {
namespace {

std::string Options(const GpsInitDlgLogic& d) {
  std::string s;
  for (int i = 1; i <= 5; ++i) s += d.Option(i) ? '1' : '0';
  return s;
}

TEST(GpsInitDlg, OpensOnTheCurrentPair) {
  struct Case {
    const char* datum;
    double meridian;
    const char* options;
  } cases[] = {{"TWD97", 121, "01010"}, {"TWD67", 119, "10001"}, {"WGS84", 121, "00110"}, {"other", 120, "00000"}};
  for (const auto& c : cases) {
    GpsDatumSettings s;
    LoadStoredDatum(s, c.datum, c.meridian);
    GpsInitDlgLogic dlg(s);
    EXPECT_EQ(c.options, Options(dlg)) << c.datum;
  }
}

TEST(GpsInitDlg, ChoosingWgs84AfterStartUpGivesItsEllipsoidAndOkReports) {
  GpsDatumSettings s;
  LoadStoredDatum(s, "WGS84", 121);  // start-up: TWD67 constants under the WGS84 name
  ASSERT_EQ(6378160, s.EllipsoidA);
  GpsInitDlgLogic dlg(s);
  dlg.ChooseOption(3);
  EXPECT_EQ(6378137, s.EllipsoidA);
  dlg.ChooseOption(5);
  EXPECT_EQ(119, s.CentralMeridian);
  EXPECT_EQ("00101", Options(dlg));
  const GpsInitOk ok = dlg.OKButton(true);
  EXPECT_EQ("WGS84", ok.Label25_0);
  EXPECT_EQ(ui::MakeRgb(0, 0, 255), ok.Label25_0Colour);
  EXPECT_EQ("119", ok.Label4);
  EXPECT_EQ(ui::MakeRgb(255, 0, 0), ok.Label4Colour);
  EXPECT_TRUE(ok.CloseMSComm1);

  GpsInitDlgLogic again(s);
  again.ChooseOption(4);
  const GpsInitOk ok2 = again.OKButton(false);
  EXPECT_EQ("121", ok2.Label4);
  EXPECT_NE(ok.Label4Colour, ok2.Label4Colour);
  EXPECT_FALSE(ok2.CloseMSComm1);
}

TEST(GpsInitDlg, CancelPutsBackThePairAsItWas) {
  GpsDatumSettings s;
  LoadStoredDatum(s, "WGS84", 121);
  const GpsDatumSettings before = s;
  GpsInitDlgLogic dlg(s);
  dlg.ChooseOption(1);
  dlg.ChooseOption(5);
  EXPECT_EQ("TWD67", s.GpsDatum);
  dlg.CancelButton();
  EXPECT_EQ("WGS84", s.GpsDatum);
  EXPECT_EQ(121, s.CentralMeridian);
  EXPECT_EQ(before.EllipsoidA, s.EllipsoidA);  // nothing changed, constants included
  EXPECT_EQ("00110", Options(dlg));
}

}  // namespace
}  // namespace tavik
