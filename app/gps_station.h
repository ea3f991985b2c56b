// The GPS field procedures of the main window: the stake-out window GPSstackOut (the
// menu entry and Toolbar1's key "放樣" in GPS mode, the pick "GPSSTKOUT" on Paper1) and
// the replay dialog FrmRePlay (the 測量 menu's 重播, which refuses in TS mode and while a
// receiver is connected).
//
// The receiver, its panels and the recording belong to the GNSS side of the program;
// what these procedures need of them comes in through GpsEnds.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <string>

#include "instruments/gps_panels.h"
#include "instruments/gps_state.h"

class Program;
class EditWiring;
class GPSstackOut;
class FrmRePlay;

struct GpsEnds {
  tavik::GpsState* gps = nullptr;
  tavik::GpsPanels* panels = nullptr;
  // The panels changed: paint them.
  std::function<void()> ShowPanels;
  // A receiver port is open.
  std::function<bool()> Connected;
  // RecordObservation(3, -1, E, N, H): the stake-out point and its GSTK line; false
  // when nothing was stored.
  std::function<bool(double E, double N, double H)> RecordStake;
  // The position marker at E, N.
  std::function<void(double E, double N)> DrawMarker;
  // CmdIh, CmdRod and Combo3 of the recording controls; unset, the controls of the
  // main window by those names are written.
  std::function<void(const std::string& control, const std::string& text)> SetText;
};

class GpsStation : public QObject {
  Q_OBJECT
 public:
  GpsStation(Program& program, EditWiring& edit);
  ~GpsStation() override;

  GpsEnds ends;

  void OpenStakeOut();
  void OpenRePlay();
  // A position arrived while a target is set.
  void StakeRefresh();
  // The stake-out marks again after a full redraw of the map.
  void DrawStakeMarks();

  GPSstackOut* stakeOut() const { return stakeOut_; }
  FrmRePlay* replay() const { return replay_; }

 private:
  void ViewChanged();
  // The recording controls by name (CmdIh, CmdRod, Combo3), when the program has them.
  QString ControlText(const std::string& control) const;
  void SetControlText(const std::string& control, const QString& text);

  Program& program_;
  EditWiring& edit_;
  GPSstackOut* stakeOut_ = nullptr;
  FrmRePlay* replay_ = nullptr;
  tavik::GpsState spareGps_;
  tavik::GpsPanels sparePanels_;
};
