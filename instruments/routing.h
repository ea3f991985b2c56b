// Which family of protocol an instrument kind speaks, on which main-window channel,
// with which port settings, and the bytes of every request other than a shot.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

enum class Family { Keyin, Set, Leica, Topcon, Trimble, Trimble3600, Pentax };
enum class Channel { Set, Top };

// The family of a kind, by exact comparison; anything not listed talks SET.
Family FamilyOf(std::string_view kind);
// MSComm_TOP for the Leica, Topcon, Trimble and PENTAX families, MSComm_SET otherwise.
Channel ChannelOf(Family family);
// "9600,n,8,1"; GTS211D alone uses even parity and seven bits.
std::string SettingsText(std::string_view kind, int32_t baud);

enum class Request {
  Identify,          // SET "A", Topcon probe "Z32091"
  ReadSerial,        // Leica
  ReadType,          // Leica
  AngleOnly,
  LeaveStakeOut,
  StartTracking,     // Topcon stake-out
  StartStream,       // Trimble stake-out
  StopStream,
  ShotFast,          // SET "Xa"
  ShotFine,          // SET "Xe"
  ShotTracking,      // SET "Xc"
  ReadTrackingCoords,
  PowerOn,
  PowerOff,
  Rotate,
};

// The bytes of a request for a family, CR LF included; nullopt when the family has no
// such request.
std::optional<std::string> RequestBytes(Family family, Request request);

// The shot request of a family ("" for Trimble 3600, which only listens).
std::string ShotBytes(Family family);

}  // namespace tavik
