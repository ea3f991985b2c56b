// The GNSS receiver in the running program: the receiver set-up, the GPS state, the
// ports MSComm1 and MSComm_Axis3 with the sounder and motion-sensor ports, the no-data
// watchdog Timer1(0), the link that answers Toolbar1's three GPS keys, the receiving
// side that turns bytes into the panels, the GPS panel in the instrument frame and the
// sky plot window FormSkyPlot.
//
// Bytes reach the receiver one at a time, as the ports deliver them; the panels are
// repainted once after each burst, not after every byte.
#pragma once

#include <QObject>
#include <map>
#include <memory>
#include <string>

#include "instruments/gnss_link.h"
#include "instruments/gps_receiver.h"
#include "platform/qt/qt_timer.h"
#include "platform/qt/serial_port.h"

class FormSkyPlot;
class Program;
class QLabel;
class QWidget;

class GnssWiring : public QObject, public tavik::GnssLinkView, public tavik::GpsPanelView {
  Q_OBJECT
 public:
  explicit GnssWiring(Program& program);
  ~GnssWiring() override;

  tavik::GnssSetup setup;
  tavik::GpsState gps;
  tavik::ui::QtSerialPort MSComm1, MSComm_Axis3, Ceastar, MSComm2, ESeaSound206, MSTSSComm;
  tavik::ui::QtTimer Timer1_0;
  tavik::GpsReceiver receiver;
  tavik::GnssLink link;

  // Toolbar1's keys "連接COM1", "接收資料", "停止接收".
  void Toolbar1Click(const std::string& key);
  // Reception is on and its last position carried a solution.
  bool HasFix() const;
  // The document is closing or the program ends: every GNSS port lets go.
  void CloseAll();
  FormSkyPlot* SkyPlotWindow() const { return sky_; }
  void ShowSkyPlotWindow();
  QLabel* Label(const std::string& name) const;
  // The datum and the central meridian (red when it is 119) beside the fix panels.
  void ShowDatum();

  // GnssLinkView.
  void EnableToolbarKey(const std::string& key, bool enabled) override;
  void SetOBSBoxReceiving(bool receiving) override;
  void ClearOBSBox() override;
  void ShowLabel25_0(const std::string& datum) override;
  // GpsPanelView.
  void ShowGpsPanels(const tavik::GpsPanels& panels) override;
  void ShowSkyPlot(const tavik::SkyPlot& plot) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildPanel();
  void Received();  // a byte was handed to the receiver: repaint after the burst
  void PortLost(tavik::ui::SerialPort& port);

  Program& program_;
  QWidget* panel_ = nullptr;
  std::map<std::string, QLabel*> labels_;
  FormSkyPlot* sky_ = nullptr;
  bool refreshPending_ = false;
  bool obsReceiving_ = false;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};
