// GPS stake-out: walks the rover to a target point. GPSstackOut ("GPS-放樣") shows the
// distance and azimuth to the target and an arrow relative to the direction of travel;
// DlgStackSetup ("選放樣點") chooses the target and the alarm circle. Each position of
// the receiver refreshes the guidance; storing records the reached position as a point
// with the target's name and appends a GSTK line.
//
// The target lives in the GPS state (StakeName, StakeX, StakeY, StakeCode, StakeRadius,
// StakeActive), which the position update reads to keep target and rover on the screen.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/view_state.h"
#include "instruments/gps_state.h"
#include "platform/dialogs.h"

namespace tavik {

// The guidance of one position: distance and azimuth to the target, and whether the
// arrow turns. Pure arithmetic, shared by the window and its tests.
struct StakeGuidance {
  double Course = 0;      // C: metres moved since the previous position
  double Distance = 0;    // D: metres to the target
  double Azimuth = 0;     // B: radians, position to target
  double Relative = 0;    // R = B - A in 0 to 2π
  bool TurnArrow = false; // the rover has really moved for its fix, or the fix is of no kind listed
  bool Beep = false;      // inside the alarm circle (strictly)
  std::string Label9;     // D in "0.000"
  std::string Label8;     // B as "D-MM-SS"
};

// The least movement that turns the arrow for a fix text; 0 for a text not listed, which
// turns the arrow with every position.
double ArrowThreshold(const std::string& fixText);

StakeGuidance StakeGuide(double prevE, double prevN, double E, double N, double targetE, double targetN,
                         double radius, const std::string& fixText);

// What the stake-out asks of the program around it.
struct GpsStakeHooks {
  // The stake-out record: RecordObservation(3, -1, E, N, H) adds the point and appends
  // the GSTK line. False when nothing was stored.
  std::function<bool(double E, double N, double H)> RecordObservation;
  // Adds the named KindPoint entity and draws its symbol.
  std::function<void(int16_t code, double E, double N, double H, const std::string& name)> AddNamedEntity;
  // The target mark on the map (the total-station stake-out's mark), and its removal.
  std::function<void(double E, double N, int16_t code, const std::string& name)> DrawTargetMark;
  std::function<void()> EraseTargetMark;
  // The view centre and scale were set back: the picture and the screen tables are
  // made again.
  std::function<void()> ViewChanged;
  // A short sound (the alarm circle).
  std::function<void()> Beep;
};

class GpsStakeOutLogic {
 public:
  static constexpr const char* Caption = "GPS-放樣";
  static constexpr int16_t CodeNoEntity = 131;

  GpsStakeOutLogic(Document& doc, const View& view, GpsState& gps, ui::Dialogs& dialogs);
  ~GpsStakeOutLogic();

  GpsStakeHooks hooks;

  // Opening: StakeActive is set and the view of the moment is kept.
  void Load();
  // The window closes: StakeActive cleared, the kept view back, the map redrawn.
  void Unload();

  // DlgStackSetup. The names offered in Combo1: the trimmed names of the live named
  // point entities, each once, in table order.
  std::vector<std::string> TargetNames() const;
  // OK with a name chosen in Combo1 (empty: the target stays as picked), the radius
  // typed in Text2 and the naming choice (Option2: ask for a new name when storing).
  // False after a message when the radius is not a positive number.
  bool Setup(const std::string& combo1, const std::string& text2, bool askNewName);
  // The pointer event of "GPSSTKOUT" at pixel (X, Y) of Paper1. False after "沒選到放樣資料".
  bool PickTarget(double X, double Y);

  // One position (from the position update, when StakeName isn't empty).
  void StakeRefresh();
  // Command2: stores the reached position. Command5, 結束: clears the target.
  void Command2();
  void Command5();

  // What the window shows.
  std::string WindowTitle() const;
  std::string Label8, Label9;
  double ArrowAngle = 0;  // R of the last turn, radians clockwise from the top
  bool ArrowShown = false;
  bool AskNewName = false;  // Option2 of the set-up

 private:
  void TakeTarget(double E, double N, double H, int16_t code, const std::string& name);

  Document& doc_;
  const View& view_;
  GpsState& gps_;
  ui::Dialogs& dialogs_;
  bool loaded_ = false;
  double keptE_ = 0, keptN_ = 0, keptScale_ = 0;
};

}  // namespace tavik
