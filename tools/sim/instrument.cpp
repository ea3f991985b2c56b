#include "tools/sim/instrument.h"

#include <cmath>
#include <cstdlib>

namespace tavik::sim {

bool ParseFault(const std::string& name, Fault& fault) {
  if (name == "none") fault = Fault::None;
  else if (name == "e200" || name == "noprism") fault = Fault::NoPrism;
  else if (name == "tilt") fault = Fault::Tilt;
  else if (name == "garbled") fault = Fault::Garbled;
  else if (name == "half") fault = Fault::Half;
  else if (name == "silence") fault = Fault::Silence;
  else if (name == "face2") fault = Fault::FaceTwo;
  else if (name == "disconnect") fault = Fault::Disconnect;
  else return false;
  return true;
}

Instrument::Instrument(SimFamily family, Scene scene, Options options)
    : family_(family), scene_(std::move(scene)), options_(std::move(options)), rng_(options_.seed) {
  if (options_.model.empty()) {
    switch (family_) {
      case SimFamily::Set: options_.model = "SET30R"; break;
      case SimFamily::Leica: options_.model = "TCRA1103plus"; break;
      default: options_.model = "SIM"; break;
    }
  }
  if (!scene_.targets.empty()) pointHz_ = Measure(scene_, scene_.targets[0]).hz;
}

void Instrument::Arm(Fault fault, int atShot) {
  fault_ = fault;
  faultIn_ = atShot < 1 ? 1 : atShot;
}

void Instrument::NextTarget() {
  if (!scene_.targets.empty()) current_ = (current_ + 1) % scene_.targets.size();
}

bool Instrument::SelectTarget(std::size_t index) {
  if (index >= scene_.targets.size()) return false;
  current_ = index;
  return true;
}

std::string Instrument::Garbage(std::size_t n) {
  std::string g;
  for (std::size_t i = 0; i < n; ++i) {
    char c = static_cast<char>(rng_() & 0xff);
    if (c == '\n' || c == '>') c = '#';  // garbage that never ends a frame by itself
    g.push_back(c);
  }
  return g;
}

std::string Instrument::Feed(char c) {
  if (c != '\r' && c != '\n') {
    if (line_.size() < 4096) line_.push_back(c);
    return "";
  }
  std::string line;
  line.swap(line_);
  while (!line.empty() && line.back() == '\x03') line.pop_back();
  if (line.empty()) return "";
  return Command(line);
}

std::string Instrument::Fire() { return Shot(true); }

std::string Instrument::Command(const std::string& line) {
  switch (family_) {
    case SimFamily::Set:
      if (line == "\x11") return Shot(true);
      if (line == std::string(1, '\0')) return Shot(false);
      if (line == "A") return "A " + options_.model + "," + options_.serial + ",1.10,2.20\r\n";
      if (line == "Ee") {
        const Target& t = scene_.targets[current_];
        char buf[160];
        std::snprintf(buf, sizeof buf, "Ee,%.3f,%.3f,%.3f,%.4f\r\n", t.e, t.n, t.h,
                      PackedDigits(Measure(scene_, t).zenith, 0) / 10000.0);
        return buf;
      }
      if (line.rfind("*DH", 0) == 0) Turn(line);
      return "";
    case SimFamily::Gts22x:
    case SimFamily::Gts211d:
      if (line == "C067") return Shot(true);
      if (line == "Z12089") return Shot(false);
      if (line == "Z32091") return std::string("\x06") + "006\x03\r\n";
      return "";
    case SimFamily::Leica:
      if (line == "GET/M/WI31/WI21/WI22") return Shot(true);
      if (line == "GET/M/WI21/WI22") return Shot(false);
      if (line == "GET/I/WI12") {
        char buf[64];
        std::snprintf(buf, sizeof buf, "*12....+%016lld \r\n", std::atoll(options_.serial.c_str()));
        return buf;
      }
      // The type word ends with a three-character code after the model name.
      if (line == "GET/I/WI13") return "*13....+" + options_.model + " 10\r\n";
      return "";
    case SimFamily::Trimble:
      if (line == "TG") return Shot(true);
      if (line == "RG") return Shot(false);
      return "";
    case SimFamily::Pentax:
      if (line == "a") return Shot(true);
      if (line == "e") return Shot(false);
      return "";
    case SimFamily::Trimble3600:
      return "";
  }
  return "";
}

std::string Instrument::Shot(bool withDistance) {
  Fault fault = Fault::None;
  if (fault_ != Fault::None && --faultIn_ == 0) {
    fault = fault_;
    fault_ = Fault::None;
  }
  Reading r = Measure(scene_, scene_.targets[current_]);
  if (fault == Fault::FaceTwo) r = FaceTwo(r);
  std::string answer = ShotAnswer(family_, r, withDistance);
  switch (fault) {
    case Fault::NoPrism: answer = NoPrismAnswer(family_); break;
    case Fault::Tilt: answer = TiltAnswer(family_); break;
    case Fault::Silence: answer.clear(); break;
    case Fault::Half: answer.resize(answer.size() / 2); break;
    case Fault::Disconnect:
      answer.resize(answer.size() / 2);
      disconnect_ = true;
      break;
    case Fault::Garbled:
      if (answer.size() > 6) answer.replace(2, answer.size() / 3, Garbage(answer.size() / 3));
      break;
    default: break;
  }
  if (withDistance && !options_.hold && fault == Fault::None) NextTarget();
  if (options_.garbage > 0 && !answer.empty()) answer = Garbage(options_.garbage) + "\r\n" + answer;
  return answer;
}

void Instrument::Turn(const std::string& command) {
  // "*DHI+dddmmssVI+dddmmss" turns by, "*DHAdddmmssVAdddmmss" turns to.
  auto packed = [](const std::string& digits) {
    long v = std::atol(digits.c_str());
    bool neg = v < 0;
    v = std::labs(v);
    double deg = v / 10000 + (v / 100 % 100) / 60.0 + (v % 100) / 3600.0;
    return neg ? -deg : deg;
  };
  bool relative = command.rfind("*DHI", 0) == 0;
  std::size_t vpos = command.find('V');
  if (vpos == std::string::npos || vpos + 2 > command.size()) return;
  double h = packed(command.substr(4, vpos - 4));
  double v = packed(command.substr(vpos + 2));
  if (relative) {
    pointHz_ += h;
    pointV_ += v;
  } else {
    pointHz_ = h;
    pointV_ = v;
  }
  pointHz_ = std::fmod(std::fmod(pointHz_, 360) + 360, 360);
  // The telescope now looks at the nearest target.
  double best = 1e9;
  for (std::size_t i = 0; i < scene_.targets.size(); ++i) {
    double d = std::fabs(Measure(scene_, scene_.targets[i]).hz - pointHz_);
    d = std::min(d, 360 - d);
    if (d < best) best = d, current_ = i;
  }
}

}  // namespace tavik::sim
