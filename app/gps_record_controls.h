// The GPS recording controls of the main window in GPS mode: the toolbar "GpsRecordBar"
// with LogButton (its caption is the recording's state), the continuous-recording
// set-up RecType, 天線高 (CmdIh), 吃水深 (CmdRod) and the reference stake Combo3; Timer4;
// the moving position marker on Paper1; and the sounder and motion-sensor readers on
// their ports. The receiver, its ports and its set-up are the GNSS side's; they come in
// through GpsRecordEnds.
#pragma once

#include <QDialog>
#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

#include "instruments/gnss_link.h"
#include "instruments/gps_receiver.h"
#include "instruments/sounders.h"
#include "platform/serial.h"
#include "procedures/gps_recording.h"
#include "view/gps_marker.h"

class Program;
class QComboBox;
class QToolBar;
class QToolButton;

struct GpsRecordEnds {
  tavik::GpsState* gps = nullptr;
  tavik::GnssSetup* setup = nullptr;
  tavik::GpsReceiver* receiver = nullptr;
  // The receiver's ports (for "請先按[連接GPS]鈕") and the sounder and motion ports.
  tavik::ui::SerialPort *MSComm1 = nullptr, *MSComm_Axis3 = nullptr;
  tavik::ui::SerialPort *MSComm2 = nullptr, *ESeaSound206 = nullptr, *MSTSSComm = nullptr;
  // A command to the receiver on MSComm1, with CR LF.
  std::function<void(const std::string&)> SendToReceiver;
  // The panels changed: paint them.
  std::function<void()> ShowPanels;
  // The GPS stake-out: its guidance for a new position and its marks after a redraw.
  std::function<void()> StakeRefresh, DrawStakeMarks;
};

// RecType (連續記錄設定): time or distance with their combos, the route and link checks,
// and the two off-screen choices.
class RecType : public QDialog {
  Q_OBJECT
 public:
  RecType(tavik::GpsRecorder& rec, tavik::GpsState& gps, QWidget* parent);
  // OKButton: the choices go to the recorder; false (the dialog stays) for a bad interval.
  bool Ok();

 private:
  tavik::GpsRecorder& rec_;
  tavik::GpsState& gps_;
};

class GpsRecordControls : public QObject {
  Q_OBJECT
 public:
  GpsRecordControls(Program& program, const GpsRecordEnds& ends);
  ~GpsRecordControls() override;

  tavik::GpsRecorder& Recorder() { return *rec_; }
  tavik::SounderReader& Sounders() { return *sounders_; }
  QToolButton* LogButton() const { return logButton_; }
  void OpenRecType();
  // The marker is taken off the map (reception stopped).
  void HideMarker();
  // What the receiver link asks of the recording: whether a run is going, stopping it
  // before reception stops, and the marker and Timer4 when reception has stopped.
  void WireLink(tavik::GnssLink& link);
  // RecordObservation(3, -1, E, N, H) for the GPS stake-out.
  bool RecordStake(double E, double N, double H) { return rec_->RecordObservation(3, -1, E, N, H); }
  // The marker at E, N with the present heading rule, for a replay.
  void ShowMarkerAt(double E, double N) { DrawMarker(E, N, rec_->state.PlainMarker != 0, ends_.gps->GpsHeading); }

 private:
  void DrawMarker(double E, double N, bool plain, double heading);
  void ViewChanged();

  Program& program_;
  GpsRecordEnds ends_;
  std::unique_ptr<tavik::GpsRecorder> rec_;
  std::unique_ptr<tavik::SounderReader> sounders_;
  QTimer timer4_;
  QToolBar* bar_ = nullptr;
  QToolButton* logButton_ = nullptr;
  QComboBox* combo3_ = nullptr;
  tavik::view::GpsMarker marker_;
  double markerE_ = 0, markerN_ = 0;
  bool markerWanted_ = false;
};
