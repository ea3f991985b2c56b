// A GNSS receiving side over a temporary folder (GOBS and raw files), with the position
// updates it hands on recorded, and a flat snapshot of state and panels for table tests.
#pragma once

#include <array>
#include <cstdio>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/temp_home.h"
#include "instruments/gps_receiver.h"

namespace tavik::test {

struct GpsRig {
  std::optional<testing::TempHome> home;  // the GOBS and raw files, unless a folder is given
  GpsState gps;
  GnssSetup setup;
  Document doc;
  GpsDatumSettings datum;
  GpsReceiver rx{gps, setup, doc, datum};
  std::vector<std::array<double, 3>> positions;  // Lon, Lat, Height of each update passed on

  // Runs that share a folder append to the same files; each rig sees what it appended.
  explicit GpsRig(const std::string& kind = "DL-4", const std::filesystem::path* folder = nullptr) {
    if (!folder) folder = &home.emplace().path;
    setup.GpsReceiverKind = kind;
    doc.GobsPath = (*folder / "T.GOBS").string();
    gps.RawPath = (*folder / "T.GPS").string();
    gobsStart_ = Read(doc.GobsPath).size();
    rawStart_ = Read(gps.RawPath).size();
    rx.hooks.ContinuePositionUpdate = [this](double lon, double lat, double h) { positions.push_back({lon, lat, h}); };
  }

  static std::string Read(const std::string& path) {
    std::string bytes;
    io::ReadWholeFile(path, bytes);
    return bytes;
  }
  std::string Gobs() const { return Read(doc.GobsPath).substr(gobsStart_); }
  std::string Raw() const { return Read(gps.RawPath).substr(rawStart_); }

  static std::string Colours(const PanelLabel& l) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%X/%X", l.BackColor, l.ForeColor);
    return buf;
  }

  // Everything a table case may name, as text.
  std::map<std::string, std::string> Snapshot() const {
    const GpsPanels& p = rx.Panels();
    auto n = [](double v) { return num::RoundTrip(v); };
    std::string pos;
    for (const auto& q : positions) pos += n(q[0]) + " " + n(q[1]) + " " + n(q[2]) + ";";
    std::string gobs = Gobs();
    for (std::size_t i; (i = gobs.find("\r\n")) != std::string::npos;) gobs.replace(i, 2, "|");
    return {
        {"L6", p.Label6.Caption},   {"L6c", Colours(p.Label6)},   {"L8", p.Label8.Caption},
        {"L8c", Colours(p.Label8)}, {"L11", p.Label11.Caption},   {"L12", p.Label12.Caption},
        {"L1_1", p.Label1_1},       {"L25_3", p.Label25[3]},      {"L25_9", p.Label25[9]},
        {"L25_10", p.Label25[10]},  {"L25_15", p.Label25[15]},    {"L25_16", p.Label25[16]},
        {"L25_7", p.Label25[7]},    {"L21_0", p.Label21[0]},      {"L21_1", p.Label21[1]},
        {"OBS", p.OBSBox},  {"fix", gps.GpsFixText},      {"hasfix", std::to_string(gps.GpsHasFix)},
        {"sec", n(gps.GpsSeconds)},
        {"week", std::to_string(gps.GpsWeek)},                    {"lat", n(gps.GpsLat)},
        {"lon", n(gps.GpsLon)},     {"h", n(gps.GpsHeight)},      {"sE", n(gps.GpsSigmaE)},
        {"sN", n(gps.GpsSigmaN)},   {"sH", n(gps.GpsSigmaH)},     {"heading", n(gps.GpsHeading)},
        {"dop", n(gps.GpsPDOP) + " " + n(gps.GpsHDOP) + " " + n(gps.GpsVDOP)},
        {"gobs", gobs},             {"raw", Raw()},
        {"rawcount", std::to_string(p.RawCount)},                {"pos", pos},
        {"depth", n(gps.SounderDepth)},                          {"L4_2", rx.Sky().Label4_2},
        {"L4_3", rx.Sky().Label4_3}, {"markers", std::to_string(rx.Sky().Markers.size())},
    };
  }

 private:
  std::size_t gobsStart_ = 0, rawStart_ = 0;
};

}  // namespace tavik::test
