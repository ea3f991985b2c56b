// The instrument state shared by the options dialog, the total-station link and the
// robotic panel: one plain struct, held by the application object and passed by
// reference. Start values are those of a fresh program start.
#pragma once

#include <cstdint>
#include <string>

namespace tavik {

struct InstrumentState {
  // Choice of instrument (the options dialog).
  std::string MeasureMode = "TS";        // "TS" or "GPS"
  std::string InstrumentKind = "SET30R";  // family selector, compared exactly
  std::string InstrumentSerial;
  int16_t InstrumentIdentified = 0;
  int16_t PortNumber = 1;
  int32_t BaudRate = 9600;
  int16_t MapType = 0;  // 1 topographic (heights kept), 2 plan; 0 until chosen

  // The last observation.
  double ObsSlope = 0;
  int32_t ObsHzRaw = 0;
  int32_t ObsVRaw = 0;
  double ObsHz = 0;
  double ObsV = 0;
  int16_t FaceWarning = -1;

  // Who waits for the next answer.
  int16_t AwaitPointShot = 0;
  int16_t AwaitStationShot = 0;
  int16_t AwaitFitShot = 0;
  int16_t AwaitFitAngle = 0;
  int16_t StakeOutActive = 0;

  // Captions of the robotic panel's cycling buttons: the only record of the
  // instrument's modes. ShotMode also decides whether an answer is followed by a stop.
  std::string ShotMode = "快測";
  std::string PrismMode = "免稜鏡";
  std::string LaserOnOff = "OFF";
  std::string LaserSW = "雷射";
  std::string TrkSrhOnOff = "OFF";
  std::string TrkSrhSW = "追蹤";
};

}  // namespace tavik
