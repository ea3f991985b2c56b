#include "instruments/gnss_commands.h"

#include "core/numbers.h"

namespace tavik {

namespace {

std::string Baud(const GnssSetup& s) { return std::to_string(s.CommBaud); }

// The four IMU lines share the offset line; the last one differs by generation and port.
void ImuLines(const GnssSetup& s, std::vector<std::string>& out) {
  out.push_back("interfacemode aux imu imu off");
  out.push_back("SETIMUTYPE imu_hg1700_ag17");
  out.push_back("SETIMUTOANTOFFSET " + num::Plain(s.ImuOffsetX) + " " + num::Plain(s.ImuOffsetY) + " " +
                num::Plain(s.ImuOffsetZ));
}

}  // namespace

const std::vector<std::string>& GnssReceiverKinds() {
  static const std::vector<std::string> kinds = {"PP7", "DL-RT2", "DL-4", "Flexpak", "單型GPS", "Axis3"};
  return kinds;
}

bool ListenOnlyKind(const std::string& kind) { return kind == "單型GPS" || kind == "Axis3"; }

std::string GnssPortSettings(int32_t baud) { return std::to_string(baud) + ",n,8,1"; }

std::string DatumLine(const std::string& gpsDatum) {
  if (gpsDatum == "TWD67") return "userdatum 6378160,298.247167556489,0,0,0,0,0,0.9999";
  return "userdatum 6378137,298.257223563,0,0,0,0,0,0.9999";
}

std::string CorrectionLine(const std::string& f) {
  if (f == "RTCA") return "interfacemode com2 rtca novatel on";
  if (f == "RTCM") return "interfacemode com2 rtcm novatel on";
  if (f == "CMR" || f == "CMR+") return "interfacemode com2 cmr novatel on";
  return "interfacemode com2 rtcmv3 novatel on";
}

std::optional<std::string> EgpsCorrectionLine(const std::string& f) {
  if (f == "RTCM") return "interfacemode com1 rtcm novatel on";
  if (f == "RTCMV3") return "interfacemode com1 rtcmv3 novatel on";
  if (f == "CMR" || f == "CMR+") return "interfacemode com1 cmr novatel on";
  if (f == "RTCA") return "interfacemode com1 rtca novatel on";
  return std::nullopt;
}

std::vector<std::string> ConnectSequence(const GnssSetup& s, const std::string& gpsDatum) {
  const std::string& kind = s.GpsReceiverKind;
  std::vector<std::string> out;
  if (kind == "PP7") {
    // The newest generation: no corrections, SBAS or IMU lines whatever the options say.
    out = {"serialconfig com1 " + Baud(s) + " N 8 1 N on",
           "FIX NONE",
           "SLEEP OFF",
           "interfacemode com2 auto none off",
           "LOG COM1 BESTPOSA ONTIME 1",
           "LOG COM1 dualantennaheadinga ONTIME 1",
           "log com1 GPRMC ontime 1",
           "log com1 GPGSV ontime 1",
           "log com1 GPGSA ontime 7",
           "log com1 GPGLL ontime 1",
           DatumLine(gpsDatum)};
  } else if (kind == "DL-RT2") {
    // The oldest generation takes RTCA only, whatever format is chosen.
    out = {"com com1," + Baud(s) + ",n,8,1,n,off",
           "UNFIX",
           "UNLOGALL",
           "SLEEP OFF",
           DatumLine(gpsDatum),
           "accept COM2 RTCA",
           "log com1,PRTKA,ondatetime.time,1",
           "log com1,GPGGA,ondatetime.time,1",
           "log com1,GPGSV,ondatetime.time,5",
           "log com1,GPGSA,ondatetime.time,7"};
  } else if (kind == "DL-4" || kind == "Flexpak") {
    out = {"COM COM1," + Baud(s) + ",N,8,1,N,OFF", "FIX NONE", "SLEEP OFF"};
    if (s.DiffSbas) {
      out.push_back("WAASCORRECTION ENABLE");
      out.push_back("SBASCONTROL ENABLE");
    }
    out.push_back(CorrectionLine(s.CorrectionFormat));
    out.push_back("LOG COM1 BESTPOSA ONTIME 1");
    out.push_back("log com1 GPRMC ontime 1");
    out.push_back("log com1 GPGSV ontime 1");
    out.push_back("log com1 GPGSA ontime 7");
    out.push_back("log com1 GPGLL ontime 1");
    if (s.ImuAttached) {
      // With an IMU the inertial solution replaces the GNSS one.
      ImuLines(s, out);
      out.push_back("LOG COM1 INSPOSA ONTIME 1");
      out.push_back("UNLOG COM1 BESTPOSA");
    }
    out.push_back(DatumLine(gpsDatum));
    if (kind == "Flexpak") {
      if (s.RawLogOnRover) {
        // The period follows the keyword with no blank, as the receiver has always been sent it.
        out.push_back("log com1 RANGECMPA ontime" + num::Plain(s.RawPeriodSeconds));
        out.push_back("log com1 ALMANACA onchanged");
        out.push_back("log com1 RAWEPHEMA onchanged");
        out.push_back("log com1 IONUTCA onchanged");
      }
      // A Flexpak ends with corrections on its second port switched off again.
      out.push_back("interfacemode com2 rtca none");
      out.push_back("log com1 BESTPOSA ontime 1");
    }
  }
  return out;
}

std::vector<std::string> EgpsConnectSequence(const GnssSetup& s) {
  std::vector<std::string> out = {"com com2," + Baud(s) + ",n,8,1,n,off", "FIX none", "SLEEP OFF",
                                  "LOG COM1 GPGGA ONTIME 2", "LOG COM2 GPGGA ONTIME 2"};
  if (s.ImuAttached) {
    ImuLines(s, out);
    out.push_back("LOG COM2 INSPOSA ONTIME 1");
  }
  return out;
}

std::vector<std::string> EgpsReceiveSequence(const GnssSetup& s, const std::string& gpsDatum) {
  std::vector<std::string> out = {"com com2," + Baud(s) + ",n,8,1,n,off", "FIX none", "SLEEP OFF"};
  if (auto line = EgpsCorrectionLine(s.CorrectionFormat)) out.push_back(*line);
  for (const char* l : {"log com1 GPGGA ontime 5", "log com2 BESTPOSA ontime 1", "log com2 GPGGA,ondatetime.time,1",
                        "log com2 GPGSA,ondatetime.time,7", "log com2 GPGSV,ondatetime.time,1",
                        "log com2 GPGLL,ondatetime.time,1", "log com2 GPRMC,ondatetime.time,1"})
    out.push_back(l);
  if (s.ImuAttached) out.push_back("unlog com2 BESTPOSA");
  out.push_back(DatumLine(gpsDatum));
  return out;
}

}  // namespace tavik
