// GpsInitDlg, 衛星接收儀啟動設定: the window over GpsInitDlgLogic. Two groups of option
// buttons, datum and central meridian, with OK and Cancel. Each click goes straight to
// the logic, which changes the datum at once; closing the window by its frame counts
// as Cancel.
#pragma once

#include <QDialog>
#include <array>
#include <functional>

#include "geo/gps_init_dlg.h"

class MainFrm;
class QRadioButton;
namespace tavik {
struct SoftwareIni;
}

class GpsInitDlg : public QDialog {
  Q_OBJECT
 public:
  // `msComm1Open` tells OK whether the GNSS port is open; `onOk` carries the result to
  // the main window (labels, closing the port).
  GpsInitDlg(tavik::GpsDatumSettings& settings, std::function<bool()> msComm1Open,
             std::function<void(const tavik::GpsInitOk&)> onOk, QWidget* parent = nullptr);

  QRadioButton* Option(int index) const { return options_[index]; }

 public slots:
  void accept() override;  // OKButton
  void reject() override;  // CancelButton

 private:
  void ShowOptions();

  tavik::GpsInitDlgLogic logic_;
  std::function<bool()> msComm1Open_;
  std::function<void(const tavik::GpsInitOk&)> onOk_;
  std::array<QRadioButton*, 6> options_{};
};

// The menu entry under 設定: opens the dialog on `settings`; OK writes the pair into the
// remembered settings and shows it in Label25(0) and Label4 where the window has them.
// `afterOk` lets the receiver follow (its datum label, closing its port).
void AddGpsInitCommand(MainFrm& frm, tavik::GpsDatumSettings& settings, tavik::SoftwareIni& ini,
                       std::function<bool()> msComm1Open,
                       std::function<void(const tavik::GpsInitOk&)> afterOk = nullptr);
