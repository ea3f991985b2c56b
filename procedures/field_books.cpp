#include "procedures/field_books.h"

#include <cmath>
#include <optional>
#include <sstream>

#include "core/numbers.h"
#include "core/text.h"
#include "geo/angles.h"
#include "geo/azimuth.h"
#include "geo/constants.h"
#include "procedures/reduction.h"

namespace tavik::books {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    line = text::Trim(line);
    if (!line.empty()) out.push_back(line);
  }
  return out;
}

std::vector<std::string> Fields(const std::string& line, char sep) {
  std::vector<std::string> out;
  std::string f;
  std::istringstream in(line);
  if (sep == ' ') {
    while (in >> f) out.push_back(f);
    return out;
  }
  while (std::getline(in, f, sep)) out.push_back(text::Trim(f));
  if (!line.empty() && line.back() == sep) out.push_back("");
  return out;
}

// Strict numbers of fields [from, to); nullopt when any is not a number.
std::optional<std::vector<double>> Numbers(const std::vector<std::string>& f, std::size_t from, std::size_t to) {
  std::vector<double> v;
  for (std::size_t i = from; i < to; ++i) {
    const auto n = num::ParseStrict(f[i]);
    if (!n) return std::nullopt;
    v.push_back(*n);
  }
  return v;
}

double OneTurn(double a) {
  while (a < 0) a += TwoPi;
  while (a >= TwoPi) a -= TwoPi;
  return a;
}

// A .MAC angle "ddd.mmss" as the integer DDDMMSS.
std::optional<int32_t> MacAngle(const std::string& s) {
  const std::size_t dot = s.find('.');
  if (dot == std::string::npos || s.size() - dot != 5) return std::nullopt;
  const auto d = num::ParseStrict(s.substr(0, dot)), ms = num::ParseStrict(s.substr(dot + 1));
  if (!d || !ms) return std::nullopt;
  return static_cast<int32_t>(*d * 10000 + (*d < 0 ? -*ms : *ms));
}

struct MacShot {
  std::string name;
  int32_t vRaw;
  std::string slope;  // as "0.000", compared as text
};
struct MacGroup {
  std::string station, backsight;
  std::vector<MacShot> shots;
};

std::vector<MacGroup> ReadMac(const std::string& mac) {
  std::vector<MacGroup> groups;
  for (const std::string& line : Lines(mac)) {
    const auto f = Fields(line, ' ');
    std::optional<int32_t> v;
    if (f.size() >= 4 && MacAngle(f[f.size() - 3]) && (v = MacAngle(f[f.size() - 2])) &&
        num::ParseStrict(f.back())) {
      if (groups.empty()) continue;
      std::string name = f[0];
      for (std::size_t i = 1; i + 3 < f.size(); ++i) name += " " + f[i];
      groups.back().shots.push_back({name, *v, num::Format(*num::ParseStrict(f.back()), "0.000")});
    } else if (f.size() == 2) {
      groups.push_back({f[0], f[1], {}});
    }
  }
  return groups;
}

}  // namespace

ObservationBook ReadObservationBook(const std::string& obs, const std::string& mac, int16_t mapType) {
  ObservationBook book;
  const std::vector<MacGroup> groups = ReadMac(mac);
  std::size_t nextGroup = 0;
  const MacGroup* group = nullptr;
  std::size_t nextShot = 0;

  enum { None, Station, Backsight, Shots } state = None;
  Observation setup;  // the set-up's values, copied into each row
  double orientation = 0, backsightAzimuth = 0;
  for (const std::string& line : Lines(obs)) {
    const auto f = Fields(line, ',');
    if (f.size() == 2 && num::ParseStrict(f[0]) == -99.0) {
      ++setup.setup;
      state = Station;
      continue;
    }
    if (state == Station && f.size() == 5) {
      if (const auto n = Numbers(f, 1, 5)) {
        setup.station = f[0];
        setup.stationE = (*n)[0], setup.stationN = (*n)[1], setup.stationH = (*n)[2], setup.instrumentHeight = (*n)[3];
        state = Backsight;
        continue;
      }
    } else if (state == Backsight && f.size() == 7) {
      if (const auto n = Numbers(f, 1, 7)) {
        Observation o = setup;
        o.backsight = true;
        o.backsightName = o.point = f[0];
        setup.backsightName = f[0];
        o.E = (*n)[0], o.N = (*n)[1], o.H = (*n)[2];
        o.hzRaw = static_cast<int32_t>((*n)[3]), o.vRaw = static_cast<int32_t>((*n)[4]), o.slope = (*n)[5];
        // The orientation of the set-up: the azimuth to the backsight less the reading on it.
        double distance = 0;
        AzimuthDistance(o.stationE, o.stationN, o.E, o.N, distance, backsightAzimuth);
        orientation = OneTurn(backsightAzimuth - PackedToRadians(o.hzRaw));
        o.azimuth = backsightAzimuth;
        o.horizontal = distance;
        o.hasHeight = mapType == 1;
        book.rows.push_back(o);
        // The cadastral book's group of this set-up: the next with the same names.
        group = nullptr, nextShot = 0;
        for (std::size_t g = nextGroup; g < groups.size(); ++g)
          if (groups[g].station == setup.station && groups[g].backsight == text::UpperAscii(setup.backsightName)) {
            group = &groups[g], nextGroup = g + 1;
            break;
          }
        state = Shots;
        continue;
      }
    } else if (state == Shots && f.size() == 5) {
      if (const auto n = Numbers(f, 0, 4)) {
        Observation o = setup;
        o.hzRaw = static_cast<int32_t>((*n)[0]), o.vRaw = static_cast<int32_t>((*n)[1]);
        o.slope = (*n)[2], o.targetHeight = (*n)[3], o.when = f[4];
        double hz = PackedToRadians(o.hzRaw), v = PackedToRadians(o.vRaw);
        FaceAndOrient(hz, v, orientation);
        o.azimuth = OneTurn(hz);
        o.turned = OneTurn(o.azimuth - backsightAzimuth);
        o.horizontal = o.slope * std::cos(v);
        PolarPoint(o.stationE, o.stationN, o.slope, o.azimuth, v, o.E, o.N);
        o.hasHeight = mapType == 1 && o.targetHeight != NoTargetHeight;
        if (o.hasHeight) o.H = o.instrumentHeight + o.stationH + o.slope * std::sin(v) - o.targetHeight;
        if (group && nextShot < group->shots.size() && group->shots[nextShot].vRaw == o.vRaw &&
            group->shots[nextShot].slope == num::Format(o.slope, "0.000"))
          o.point = group->shots[nextShot++].name;
        book.rows.push_back(o);
        continue;
      }
    }
    ++book.skipped;
  }
  return book;
}

StakeBook ReadStakeBook(const std::string& stk, const std::string& gstk, const Document& doc) {
  StakeBook book;
  const int32_t entities = std::min<int32_t>(doc.EntityCount, static_cast<int32_t>(doc.EntityTable.size()));
  const int32_t points = std::min<int32_t>(doc.PointCount, static_cast<int32_t>(doc.PointTable.size()));
  // The target of a name: the first live named point feature that is not the stake
  // itself (recording a stake adds a feature of the same name where it was reached),
  // else the survey point numbered so.
  auto target = [&](Stake& s) {
    for (int32_t i = 0; i < entities; ++i) {
      const Entity& e = doc.EntityTable[i];
      if (e.Deleted != kFalse || e.Kind != KindPoint || text::Trim(e.Name) != s.name) continue;
      if (std::abs(e.X[0] - s.E) < 0.0005 && std::abs(e.Y[0] - s.N) < 0.0005) continue;
      s.hasTarget = true, s.targetE = e.X[0], s.targetN = e.Y[0];
      return;
    }
    const auto n = num::ParseStrict(s.name);
    if (!n || *n != std::floor(*n) || *n < 1) return;
    for (int32_t i = 0; i < points; ++i)
      if (doc.PointTable[i].Number == *n && doc.PointTable[i].Deleted == kFalse) {
        s.hasTarget = true, s.targetE = doc.PointTable[i].E, s.targetN = doc.PointTable[i].N;
        return;
      }
  };
  for (const std::string& line : Lines(stk)) {
    const auto f = Fields(line, ',');
    std::optional<std::vector<double>> a, b, c, d;
    if (f.size() != 16 || !(a = Numbers(f, 1, 4)) || !(b = Numbers(f, 5, 9)) || !(c = Numbers(f, 10, 12)) ||
        !(d = Numbers(f, 14, 16))) {
      ++book.skipped;
      continue;
    }
    Stake s;
    s.name = f[0];
    s.E = (*a)[0], s.N = (*a)[1], s.H = (*a)[2];
    s.station = f[4], s.instrumentHeight = (*b)[3], s.backsightName = f[9];
    s.hz = f[12], s.v = f[13], s.slope = (*d)[0], s.targetHeight = (*d)[1];
    s.hasShot = true;
    if (s.name != "NoName") target(s);
    book.rows.push_back(s);
  }
  for (const std::string& line : Lines(gstk)) {
    const auto f = Fields(line, ',');
    std::optional<std::vector<double>> a, b;
    if (f.size() != 11 || !(a = Numbers(f, 1, 7)) || !(b = Numbers(f, 9, 11))) {
      ++book.skipped;
      continue;
    }
    Stake s;
    s.gps = true;
    s.name = f[0];
    s.E = (*a)[0], s.N = (*a)[1], s.H = (*a)[2];
    s.sigmaE = (*a)[3], s.sigmaN = (*a)[4], s.sigmaH = (*a)[5], s.hasSigma = true;
    s.when = f[7] + " " + f[8];
    s.hasTarget = true, s.targetE = s.E - (*b)[0], s.targetN = s.N - (*b)[1];
    book.rows.push_back(s);
  }
  return book;
}

}  // namespace tavik::books
