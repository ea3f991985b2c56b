// The command sequences that turn a GNSS receiver into a rover. Each receiver
// generation speaks its own dialect (older `com`/`accept`/`log com1,X,ondatetime.time,n`,
// then `COM`/`interfacemode`/`LOG COM1 X ONTIME n`, the newest `serialconfig`), and the
// receivers take the text as it is: spelling and letter case are part of the protocol.
// The builders return the commands without their line end; the link writes each one
// followed by CR LF.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

// The receiver set-up chosen in the instrument options, with the sounder and motion
// sensor that go with it.
struct GnssSetup {
  std::string GpsReceiverKind = "DL-4";  // PP7, DL-RT2, DL-4, Flexpak, 單型GPS, Axis3
  int16_t CommPortNumber = 1;
  int32_t CommBaud = 9600;
  std::string CorrectionFormat = "RTCMV3";  // RTCA, RTCM, RTCMV3, CMR, CMR+
  int16_t DiffSbas = 0;                     // the three are one choice of three
  int16_t DiffEgps = 0;
  int16_t DiffRtk = -1;
  int16_t ImuAttached = 0;
  double ImuOffsetX = 0, ImuOffsetY = 0, ImuOffsetZ = 0;  // IMU centre to antenna, metres
  int16_t RawLogOnRover = -1;  // a Flexpak rover also logs raw ranges
  double RawPeriodSeconds = 1;
  std::string SounderKind;       // CEEECHO, Ceastar, HydroLite, HydroBox, E Sea Sound 206 or empty
  std::string MotionSensorKind;  // TSS_DMS3 or empty
  int16_t SounderPort = 2;
  int32_t SounderBaud = 4800;
  int16_t MotionSensorPort = 3;
  int32_t MotionSensorBaud = 9600;
  int16_t GpsStopped = 0;  // reception stopped by the user
};

// The receiver kinds offered, in the order the options dialog lists them.
const std::vector<std::string>& GnssReceiverKinds();
// 單型GPS and Axis3 are only listened to, on MSComm_Axis3; all others are NovAtel-type
// receivers on MSComm1.
bool ListenOnlyKind(const std::string& kind);
// "9600,n,8,1": every GNSS, sounder and motion port runs without parity, 8 data bits, 1 stop bit.
std::string GnssPortSettings(int32_t baud);

// "userdatum ..." for the datum of the grid conversion (TWD67's ellipsoid, else GRS80).
std::string DatumLine(const std::string& gpsDatum);
// Where the rover takes corrections on its second port; an unknown format gives RTCMV3.
std::string CorrectionLine(const std::string& correctionFormat);
// The same for the second eGPS stage, on the first port; nothing for an unknown format.
std::optional<std::string> EgpsCorrectionLine(const std::string& correctionFormat);

// The connect sequence of the kind (none for the listen-only kinds, and not for a
// DL-4 on eGPS, which has its own two stages).
std::vector<std::string> ConnectSequence(const GnssSetup& setup, const std::string& gpsDatum);
// eGPS: the first stage sends positions to the phone, the second takes corrections.
std::vector<std::string> EgpsConnectSequence(const GnssSetup& setup);
std::vector<std::string> EgpsReceiveSequence(const GnssSetup& setup, const std::string& gpsDatum);

}  // namespace tavik
