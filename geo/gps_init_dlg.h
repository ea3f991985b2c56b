// The logic of GpsInitDlg (衛星接收儀啟動設定), the choice of datum and central meridian
// for the GNSS receiver, apart from its window. Choosing an option takes effect at
// once; Cancel puts back what was in force when the dialog opened; OK reports what
// the main window shows and whether the GNSS port must be closed, so that a changed
// datum reaches the receiver at the next connect.
#pragma once

#include <string>

#include "geo/datum.h"
#include "platform/surface.h"

namespace tavik {

// What OKButton asks of the main window.
struct GpsInitOk {
  std::string Label25_0;  // GpsDatum
  ui::Rgb Label25_0Colour = 0;
  std::string Label4;     // the central meridian
  ui::Rgb Label4Colour = 0;
  bool CloseMSComm1 = false;  // the GNSS port was open and is to be closed
};

class GpsInitDlgLogic {
 public:
  static constexpr const char* Caption = "衛星接收儀啟動設定";
  // Option1 .. Option5: three datums, then the meridians 121 and 119.
  static const char* OptionCaption(int index);

  // Opening: the options show the current pair, which is remembered for Cancel.
  explicit GpsInitDlgLogic(GpsDatumSettings& settings);

  bool Option(int index) const;
  // A click on Option1 .. Option5; the datum or meridian changes at once.
  void ChooseOption(int index);
  GpsInitOk OKButton(bool msComm1Open);
  void CancelButton();

 private:
  void ShowPair();

  GpsDatumSettings& settings_;
  GpsDatumSettings remembered_;
  bool option_[6] = {};
};

}  // namespace tavik
