#include "geo/gps_init_dlg.h"

#include "core/numbers.h"

namespace tavik {

const char* GpsInitDlgLogic::OptionCaption(int index) {
  switch (index) {
    case 1: return "TWD67 ( 台灣地區虎子山1967年地球原子)";
    case 2: return "TWD97 (台灣地區虎子山1997年地球原子)";
    case 3: return "WGS84 (全球衛星定位系統1984年地球原子)";
    case 4: return "121度 (台灣本島)";
    case 5: return "119度(澎湖群島)";
    default: return "";
  }
}

GpsInitDlgLogic::GpsInitDlgLogic(GpsDatumSettings& settings) : settings_(settings), remembered_(settings) {
  ShowPair();
}

void GpsInitDlgLogic::ShowPair() {
  option_[1] = settings_.GpsDatum == "TWD67";
  option_[2] = settings_.GpsDatum == "TWD97";
  option_[3] = settings_.GpsDatum == "WGS84";
  option_[4] = settings_.CentralMeridian == 121;
  option_[5] = settings_.CentralMeridian == 119;
}

bool GpsInitDlgLogic::Option(int index) const { return index >= 1 && index <= 5 && option_[index]; }

void GpsInitDlgLogic::ChooseOption(int index) {
  switch (index) {
    case 1: SetDatumTWD67(settings_); break;
    case 2: SetDatumTWD97(settings_); break;
    case 3: SetDatumWGS84(settings_); break;
    case 4: settings_.CentralMeridian = 121; break;
    case 5: settings_.CentralMeridian = 119; break;
    default: return;
  }
  ShowPair();
}

GpsInitOk GpsInitDlgLogic::OKButton(bool msComm1Open) {
  GpsInitOk ok;
  ok.Label25_0 = settings_.GpsDatum;
  ok.Label25_0Colour = ui::MakeRgb(0, 0, 255);
  ok.Label4 = num::Plain(settings_.CentralMeridian);
  ok.Label4Colour = settings_.CentralMeridian == 119 ? ui::MakeRgb(255, 0, 0) : ui::MakeRgb(0, 0, 0);
  ok.CloseMSComm1 = msComm1Open;
  return ok;
}

// The whole settings go back, constants included, so that Cancel changes nothing.
void GpsInitDlgLogic::CancelButton() {
  settings_ = remembered_;
  ShowPair();
}

}  // namespace tavik
