#include "instruments/routing.h"

namespace tavik {

Family FamilyOf(std::string_view kind) {
  if (kind == "Keyin") return Family::Keyin;
  if (kind == "GTS22X" || kind == "GTS211D") return Family::Topcon;
  if (kind == "Trimble") return Family::Trimble;
  if (kind == "Trimble3600") return Family::Trimble3600;
  if (kind == "PENTAX") return Family::Pentax;
  // TCR805power is deliberately not here: on the main shot path it talks SET.
  if (kind == "FlexLine" || kind == "TCA1100" || kind == "TCA1100L" || kind == "TCRA1103plus" ||
      kind == "TCR1103")
    return Family::Leica;
  return Family::Set;
}

Channel ChannelOf(Family family) {
  switch (family) {
    case Family::Leica:
    case Family::Topcon:
    case Family::Trimble:
    case Family::Trimble3600:
    case Family::Pentax:
      return Channel::Top;
    default:
      return Channel::Set;
  }
}

std::string SettingsText(std::string_view kind, int32_t baud) {
  return std::to_string(baud) + (kind == "GTS211D" ? ",e,7,1" : ",n,8,1");
}

std::string ShotBytes(Family family) {
  switch (family) {
    case Family::Leica: return "GET/M/WI31/WI21/WI22\r\n";
    case Family::Topcon: return "C067\x03\r\n";
    case Family::Trimble: return "TG\r\n";
    case Family::Pentax: return "a\r\n";
    case Family::Set: return std::string("Xc\r\n\x11\r\n");
    default: return "";
  }
}

std::optional<std::string> RequestBytes(Family family, Request request) {
  const std::string crlf = "\r\n";
  switch (request) {
    case Request::Identify:
      if (family == Family::Set) return "A" + crlf;
      if (family == Family::Topcon) return "Z32091\x03" + crlf;
      break;
    case Request::ReadSerial:
      if (family == Family::Leica) return "GET/I/WI12" + crlf;
      break;
    case Request::ReadType:
      if (family == Family::Leica) return "SET/161/7" + crlf + "GET/I/WI13" + crlf;
      break;
    case Request::AngleOnly:
      if (family == Family::Leica) return "GET/M/WI21/WI22" + crlf;
      if (family == Family::Pentax) return "e" + crlf;
      if (family == Family::Trimble) return "RG" + crlf;
      if (family == Family::Topcon) return "Z12089\x03" + crlf;
      if (family == Family::Set) return std::string(1, '\0') + crlf;
      break;
    case Request::LeaveStakeOut:
      if (family == Family::Set) return "\x12" + crlf;
      if (family == Family::Topcon) return "Z32091\x03" + crlf;
      if (family == Family::Leica) return "c" + crlf;
      break;
    case Request::StartTracking:
      if (family == Family::Topcon) return "Z33090\x03" + crlf;
      break;
    case Request::StartStream:
      if (family == Family::Trimble) return "PG,3=1" + crlf;
      break;
    case Request::StopStream:
      if (family == Family::Trimble) return "PG,3=0" + crlf;
      break;
    case Request::ShotFast:
      if (family == Family::Set) return "Xa" + crlf;
      break;
    case Request::ShotFine:
      if (family == Family::Set) return "Xe" + crlf;
      break;
    case Request::ShotTracking:
      if (family == Family::Set) return "Xc" + crlf;
      break;
    case Request::ReadTrackingCoords:
      if (family == Family::Set) return "Ee" + crlf;
      break;
    case Request::PowerOn:
      if (family == Family::Set) return "*PON" + crlf;
      break;
    case Request::PowerOff:
      if (family == Family::Set) return "*POFF" + crlf;
      break;
    case Request::Rotate:
      if (family == Family::Set) return "*Z" + crlf;
      break;
  }
  return std::nullopt;
}

}  // namespace tavik
