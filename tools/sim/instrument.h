// The simulated instrument without its port: request bytes in, answer bytes out. It
// answers shots to the current target, identification, turns of a robotic telescope,
// and misbehaves once when told to.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "tools/sim/answers.h"
#include "tools/sim/scene.h"

namespace tavik::sim {

enum class Fault { None, NoPrism, Tilt, Garbled, Half, Silence, FaceTwo, Disconnect };
bool ParseFault(const std::string& name, Fault& fault);

struct Options {
  bool hold = false;        // stay on the current target instead of going to the next after each shot
  int garbage = 0;          // random bytes sent before every answer
  std::string model;        // identification; empty: the family's usual model
  std::string serial = "123456";
  uint32_t seed = 1;
};

class Instrument {
 public:
  Instrument(SimFamily family, Scene scene, Options options);

  // One received byte; returns what the instrument sends back (often nothing).
  std::string Feed(char c);
  // The user fires a measurement at the instrument (the listen-only families).
  std::string Fire();
  // Misbehave at the given shot (1 = the next one).
  void Arm(Fault fault, int atShot = 1);
  void NextTarget();
  bool SelectTarget(std::size_t index);
  // After a Disconnect fault has been played the port must be dropped.
  bool Disconnecting() const { return disconnect_; }
  std::size_t CurrentTarget() const { return current_; }
  double PointingHz() const { return pointHz_; }

 private:
  std::string Command(const std::string& line);
  std::string Shot(bool withDistance);
  void Turn(const std::string& command);
  std::string Garbage(std::size_t n);

  SimFamily family_;
  Scene scene_;
  Options options_;
  std::string line_;
  std::size_t current_ = 0;
  double pointHz_ = 0, pointV_ = 90;
  Fault fault_ = Fault::None;
  int faultIn_ = 0;
  bool disconnect_ = false;
  std::mt19937 rng_;
};

}  // namespace tavik::sim
