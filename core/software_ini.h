// \symb\Software.ini: the program's 74 remembered settings, one value a line in the
// work-file text form, code page 950. The file is all or nothing: it is read only when
// it holds exactly 74 values of the right types, otherwise it is deleted and the
// defaults stand; it is written whole at exit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace tavik {

struct SoftwareIni {
  std::string MeasureMode = "TS";              // 1  "TS" or "GPS"
  std::string InstrumentKind = "SET30R";       // 2
  std::string InstrumentSerial;                // 3
  std::string SounderKind;                     // 4
  std::string MotionSensorKind;                // 5
  int16_t PortNumber = 1;                      // 6
  int32_t BaudRate = 9600;                     // 7
  int16_t SounderPort = 2;                     // 8
  int32_t SounderBaud = 4800;                  // 9
  int16_t MotionSensorPort = 3;                // 10
  int32_t MotionSensorBaud = 9600;             // 11
  bool ImuAttached = false;                    // 12
  double ImuOffset[3] = {0, 0, 0};             // 13-15 IMU centre to antenna
  double InstrumentHeight = 0;                 // 16
  double TargetHeight = 0;                     // 17
  double TrajectoryIntervalCm = 100;           // 18
  bool MainWindowLoadOption = false;           // 19
  bool ShowPointNames = true;                  // 20 SwitchPtName, shared by Toolbar1 and Toolbar3
  bool AutoNameOn = false;                     // 21
  std::string AutoNamePrefix;                  // 22
  int16_t AutoNameNext = 1;                    // 23
  int16_t AutoNameDigits = 3;                  // 24
  int16_t PointMarkStyle = 0;                  // 25 FrmDispSetup: 0 a cross at every point, 1 none
  double DxfTextScale = 1;                     // 26
  int16_t AreaUnit = 1;                        // 27 1 m², 2 hectares, 3 ping
  double SectionDistanceScale = 1000;          // 28
  bool SectionOption29 = false;                // 29
  double SectionHeightScale = 100;             // 30
  int16_t SectionSetting31 = 0;                // 31
  int16_t SectionSetting32 = 0;                // 32
  int16_t CurrentLegend = 301;                 // 33
  std::string CadaMeteText1;                   // 34 DlgCadaMete
  std::string CadaMeteText2;                   // 35
  int16_t AutoSaveMinutes = 5;                 // 36 0 is off
  std::string GpsDatum = "TWD97";              // 37
  double CentralMeridian = 121;                // 38 degrees
  int16_t ElevationDisplay = 0;                // 39 FrmDispSetup, drawing elevations
  float TextScale = 1;                         // 40 FrmDispSetup: size of the map's texts, a factor
  bool BoatMark = false;                       // 41 InstOptions: boat with heading or plain mark
  std::string RecordMode;                      // 42 "", "Time" or "Dist"
  double RecordInterval = 1;                   // 43
  bool RecTypeCheck1 = false;                  // 44 tested by Timer4
  bool RecTypeCheck2 = false;                  // 45
  bool RecTypeCheck3 = false;                  // 46
  bool RecTypeOption1 = false;                 // 47 also the mark's behaviour at the sheet's edge
  bool RecTypeOption2 = false;                 // 48
  bool DiffSbas = false;                       // 49
  std::string CorrectionFormat = "RTCMV3";     // 50
  std::string GgaRate = "每5秒";               // 51 Combo13 of InstOptions
  bool DiffEgps = false;                       // 52
  bool DiffThird = false;                      // 53
  bool PushMovesBaseMap = false;               // 54
  bool BmSetting55 = false;                    // 55 BmSetup
  int32_t BaseMapLineColour = 0xA0A000;        // 56 0x00BBGGRR, dark cyan
  int32_t BaseMapTextColour = 0x787800;        // 57
  bool BmSetting58 = false;                    // 58
  bool BmSetting59 = false;                    // 59
  bool BmSetting60 = false;                    // 60
  double LineWidthScale = 1;                   // 61 FrmDispSetup: width of every pen, a factor
  bool GridOn = false;                         // 62 FrmDispSetup: DispGrid
  bool RefSetting63 = false;                   // 63 DlgOpenRef
  bool RefSetting64 = false;                   // 64
  bool RefSetting65 = false;                   // 65
  bool RefColourInUse = true;                  // 66
  int32_t RefRed = 124;                        // 67
  int32_t RefGreen = 124;                      // 68
  int32_t RefBlue = 124;                       // 69
  std::string FineShiftStep = "1cm";           // 70 Combo1
  std::string FineRotationStep = "1秒";        // 71 Combo2
  bool StakeOption72 = false;                  // 72 DlgStackSetup
  double StakeDistance73 = 0.1;                // 73 DlgStackSetup
  std::string ObservationBookTitle = "宜蘭縣釣魚台地政事務所-戶地測量觀測記簿";  // 74
};

constexpr std::size_t SoftwareIniValueCount = 74;

enum class IniReadResult { Missing, Read, Deleted };

// Reads the file into `ini`. A file of any count other than 74, or with a value of the
// wrong type, is deleted and `ini` keeps what it held (the defaults at start-up).
IniReadResult ReadSoftwareIni(const std::filesystem::path& file, SoftwareIni& ini);

// Writes all 74 values, replacing the file whole. False when it cannot be written.
bool WriteSoftwareIni(const std::filesystem::path& file, const SoftwareIni& ini);

// The file's text in UTF-8 (before conversion to code page 950), for tests and tools.
std::string SoftwareIniText(const SoftwareIni& ini);

}  // namespace tavik
