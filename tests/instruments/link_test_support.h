// A link wired to fake ports, scripted dialogs and recording receivers, as each test
// of the total-station link needs it.
#pragma once

#include <string>
#include <vector>

#include "fake_port.h"
#include "instruments/link.h"
#include "platform/scripted/scripted.h"

namespace tavik::test {

struct LinkRig {
  InstrumentState state;
  ui::ScriptedDialogs dialogs;
  FakePort set, top;
  TotalStationLink link{state, dialogs};
  std::vector<std::string> delivered;  // receivers run, in order
  std::vector<std::string> stakeOut;

  LinkRig() {
    link.MSComm_SET = &set;
    link.MSComm_TOP = &top;
    set.OnByte = [this](char c) { link.OnByte(Channel::Set, c); };
    top.OnByte = [this](char c) { link.OnByte(Channel::Top, c); };
    link.receivers.StationShot = [this] { delivered.push_back("station"); };
    link.receivers.PointShot = [this] { delivered.push_back("point"); };
    link.receivers.FitShot = [this] { delivered.push_back("fit"); };
    link.receivers.FitAngle = [this] { delivered.push_back("angle"); };
    link.receivers.StakeOutLine = [this](const std::string& line) { stakeOut.push_back(line); };
  }

  // "title|text" of each box shown.
  std::vector<std::string> Boxes() const {
    std::vector<std::string> out;
    for (const auto& s : dialogs.shown)
      if (s.kind == "msg") out.push_back(s.title + "|" + s.text);
    return out;
  }
};

}  // namespace tavik::test
