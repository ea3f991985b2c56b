// The simulated GNSS receiver without its port: command bytes in, sentence bytes out.
//
// It keeps the logs it is told to keep ("LOG COM1 BESTPOSA ONTIME 1",
// "log com1,GPGGA,ondatetime.time,1", "UNLOG ...", "UNLOGALL") for the port that faces
// the computer (COM1, or COM2 once an eGPS "com com2,..." arrives), and at each epoch
// sends the due ones: #BESTPOSA, #DUALANTENNAHEADINGA, #INSPOSA, $PRTKA, GGA, GSA, GSV,
// RMC, GLL, the raw logs of a Flexpak and the $POSA of a base, over a walk of positions
// with a chosen fix. "FIX POSITION lat lon h" holds the position there, as a base does,
// until "FIX none" or "UNFIX".
// The listen-only kinds (Axis3, 單型GPS) get no commands and send GGA, GSA and GSV.
// Instead of the walk it can play the lines of a capture file.
//
// Faults, each armed for one epoch (silence, garbage and south stay on from there):
//   silence  nothing more is sent (the program's no-data watchdog)
//   garbage  random bytes between lines
//   cut      one line ends early, without its line end
//   dollar   a "$" in the middle of a line
//   fields   one line loses a field
//   south    the hemisphere letters say S and W (the numbers stay as they are)
//   pull     the cable is pulled in the middle of a line
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace tavik::sim {

enum class GnssFix { None, Single, Dgps, Sbas, Float, Fixed };
bool ParseGnssFix(const std::string& name, GnssFix& fix);

enum class GnssFault { None, Silence, Garbage, Cut, Dollar, Fields, South, Pull };
bool ParseGnssFault(const std::string& name, GnssFault& fault);

struct GnssPosition {
  double lat = 0, lon = 0, height = 0;  // degrees, metres
};

// Scene: one position a line, "LAT LON HEIGHT" in degrees and metres, '#' comments. The
// walk goes through them in turn, eased over `stepsBetween` epochs, and starts again.
bool ParseGnssScene(const std::string& text, std::vector<GnssPosition>& out, std::string& error);
// Without a scene: a 40 m circle in the Lanyang plain.
std::vector<GnssPosition> DefaultGnssScene();

struct GnssOptions {
  std::string kind = "DL-4";
  GnssFix fix = GnssFix::Fixed;
  double epochSeconds = 1;  // time-stamp step of the synthetic walk
  std::string talker = "GP";  // "GN" sends $GNGGA, $GNGSA, $GNGSV
  int satellites = 14;
  uint32_t seed = 1;
};

class GnssReceiver {
 public:
  GnssReceiver(GnssOptions options, std::vector<GnssPosition> scene);

  // A byte of a command from the computer.
  void Feed(char c);
  // Every complete command line received so far, in order.
  const std::vector<std::string>& Commands() const { return commands_; }
  // The logs now kept, type -> period in epochs (0: once).
  const std::map<std::string, int>& Logs() const { return logs_; }
  // The listen-only kinds talk from the start; the others once commanded.
  bool ListenOnly() const;

  // The bytes of the next epoch of the walk. A pull fault sets Pulled() after half a line.
  std::string Epoch();
  // Lines of a capture, each sent with CR LF, faults applied as in the walk.
  std::string Lines(const std::vector<std::string>& lines);
  void Arm(GnssFault fault, int atEpoch = 1);
  void SetFix(GnssFix fix) { options_.fix = fix; }
  bool Pulled() const { return pulled_; }
  int EpochCount() const { return epoch_; }
  const GnssPosition& Position() const { return position_; }

  // The sentences of one epoch, as a receiver writes them (with checksum, without line end).
  std::string BestPosA() const;
  std::string DualAntennaHeadingA() const;
  std::string InsPosA() const;
  std::string Prtka() const;
  std::string Posa() const;  // the oldest generation's position log
  std::string Gga() const;
  std::string Gsa() const;
  std::vector<std::string> Gsv() const;
  std::string Rmc() const;
  std::string Gll() const;

 private:
  void Command(const std::string& line);
  std::vector<std::string> Due();
  std::string Emit(const std::vector<std::string>& lines);
  void Advance();
  std::string NovAtelHeader(const std::string& name) const;
  std::string Seconds() const;

  GnssOptions options_;
  std::vector<GnssPosition> scene_;
  std::string line_;
  std::vector<std::string> commands_;
  std::map<std::string, int> logs_;
  std::vector<std::string> order_;  // logs in the order they were asked for
  std::string computerPort_ = "COM1";
  GnssPosition position_;
  double heading_ = 0;  // degrees
  int epoch_ = 0;
  double seconds_ = 0;  // of the GPS week
  GnssFault fault_ = GnssFault::None;
  int faultAt_ = 0;
  bool fixed_ = false;  // FIX POSITION: a base on a known position, the walk stops
  bool south_ = false, silent_ = false, garbage_ = false, pulled_ = false;
  std::mt19937 rng_;
};

// Sentence checksums: NMEA's exclusive-or of the characters between '$' and '*', and
// NovAtel's CRC-32 of those between '#' and '*'.
std::string NmeaChecksum(const std::string& body);
std::string NovAtelCrc(const std::string& body);
// The time stamp a capture line carries, in seconds (of the day for NMEA, of the week
// for NovAtel logs and $PRTKA); false when it has none.
bool LineTime(const std::string& line, double& seconds);

}  // namespace tavik::sim

namespace tavik::sim {
// tavik-sim --gnss KIND ...: the receiver on a line (gnss_main.cpp).
int GnssMain(int argc, char** argv);
}  // namespace tavik::sim
