// The sounder and motion-sensor readers, fed as the devices send, whole and split at
// every byte; the Ceastar lines come through the receiver's own Ceastar port.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/numbers.h"
#include "instruments/sounders.h"
#include "gps_rig.h"

namespace tavik {
namespace {

enum class In { ESea, Hydro, Tss, Ceastar };

struct Case {
  const char* name;
  const char* kind;  // SounderKind
  In port;
  std::string bytes;
  // Depth, depth 2, heave, roll, pitch, then Label21(0) and SounderLine.
  const char* expect;
};

// Every value starts at 9 so that "unchanged" and "set to 0" differ.
const Case kCases[] = {
    {"ESeaPair", "E Sea Sound 206", In::ESea,
     "E001 12.345,a,b,D 45.678,x,01\r\nHR 0.12,1.5,-0.75\r\n",
     "12.345 45.678 0.12 1.5 -0.75|12.345|E001 12.345,a,b,D 45.678,x,01HR 0.12,1.5,-0.75"},
    {"ESeaHrFirst", "E Sea Sound 206", In::ESea, "HR 0.12,1.5,-0.75\r\n", "9 9 9 9 9||HR 0.12,1.5,-0.75"},
    {"ESeaNoMotion", "E Sea Sound 206", In::ESea, "E001   1.5,a,b,D   2.5,x,0\r\nHX\r\nHR\r\n",
     "1.5 2.5 9 9 9|1.5|E001   1.5,a,b,D   2.5,x,0HR"},
    {"ESeaShort", "E Sea Sound 206", In::ESea, "E001   1.5,a\r\nHR\r\n", "1.5 9 9 9 9|1.5|E001   1.5,aHR"},
    {"CeastarA", "Ceastar", In::Ceastar, " A 01234 05678\r\n", "12.34 56.78 9 9 9|12.34|"},
    {"CeastarComma", "Ceastar", In::Ceastar, "D,1234,567x\r\n", "12.34 5.67 9 9 9|12.34|"},
    {"OtherKindDbt", "HydroLite", In::Ceastar, "$SDDBT,40.4,f,12.3,M,6.7,F*1A\r\n", "12.3 9 9 9 9|12.3|"},
    {"OtherKindSmdbt", "CEEECHO", In::Ceastar, "$SMDBT,1,f,2.25,M\r\n", "2.25 9 9 9 9|2.25|"},
    {"HydroOdcB", "HydroBox", In::Hydro, "$SDODC,a,b,c,B,7.5\r\n", "7.5 9 9 9 9|7.5|$SDODC,a,b,c,B,7.5\r"},
    {"HydroOdcOther", "HydroBox", In::Hydro, "$SDODC,a,b,c,L,8.5\n", "9 8.5 9 9 9|9|$SDODC,a,b,c,L,8.5"},
    {"HydroDpt", "HydroBox", In::Hydro, "$SDDPT,3.25,0.5*00\r\n", "3.25 9 9 9 9|3.25|$SDDPT,3.25,0.5*00\r"},
    {"HydroDbt", "HydroBox", In::Hydro, "$SDDBT,1,f,2.5,M\r\n", "2.5 9 9 9 9|2.5|$SDDBT,1,f,2.5,M\r"},
    {"HydroHRow", "HydroBox", In::Hydro, "DPT H 9.75\r\n", "9.75 9 9 9 9|9.75|DPT H 9.75\r"},
    {"HydroStray", "HydroBox", In::Hydro, "garbage\r\n", "9 0 9 9 9|9|garbage\r"},
    {"HydroOtherKind", "Ceastar", In::Hydro, "$SDDPT,3.25\r\n", "9 9 9 9 9||"},
    {"Tss25", "", In::Tss, ":00A000 -1.25  2.50  0.33\r\n", "9 9 0.33 2.5 -1.25||"},
    {"Tss24", "", In::Tss, ":00A000 -1.25  2.50 0.33\r\n", "9 9 9 9 9||"},
    {"TssRestart", "", In::Tss, ":00A0:00A000 -1.25  2.50  0.33\r", "9 9 0.33 2.5 -1.25||"},
    {"TssGarbage", "", In::Tss, "\xff\xfe\r\r:\r", "9 9 9 9 9||"},
};

std::string Play(const Case& c, std::size_t split) {
  test::GpsRig rig;
  rig.setup.SounderKind = c.kind;
  GpsState& g = rig.gps;
  g.SounderDepth = g.SounderDepth2 = g.Heave = g.Roll = g.Pitch = 9;
  GpsPanels& panels = rig.rx.Panels();
  SounderReader reader(g, panels, rig.setup);
  rig.rx.hooks.SounderLine = [&](const std::string& l) { reader.CeastarLine(l); };
  rig.rx.hooks.DepthSentence = [&](const std::string& l) { reader.DepthSentence(l); };
  auto feed = [&](std::string_view part) {
    switch (c.port) {
      case In::ESea: reader.Feed(SounderReader::Port::ESeaSound206, part); break;
      case In::Hydro: reader.Feed(SounderReader::Port::MSComm2, part); break;
      case In::Tss: reader.Feed(SounderReader::Port::MSTSSComm, part); break;
      case In::Ceastar: rig.rx.Feed(GpsReceiver::Port::Ceastar, part); break;
    }
  };
  std::string_view all = c.bytes;
  feed(all.substr(0, split));
  feed(all.substr(split));
  auto n = [](double v) { return num::Plain(v); };
  return n(g.SounderDepth) + " " + n(g.SounderDepth2) + " " + n(g.Heave) + " " + n(g.Roll) + " " + n(g.Pitch) +
         "|" + panels.Label21[0] + "|" + g.SounderLine;
}

TEST(Sounders, EachDeviceSplitAtEveryByte) {
  for (const Case& c : kCases) {
    for (std::size_t split = 0; split <= c.bytes.size(); ++split)
      ASSERT_EQ(Play(c, split), c.expect) << c.name << " split at " << split;
  }
}

TEST(Sounders, NoiseDoesNotGrowTheBuffers) {
  test::GpsRig rig;
  rig.setup.SounderKind = "HydroBox";
  SounderReader reader(rig.gps, rig.rx.Panels(), rig.setup);
  std::string noise(3 * SounderReader::kMaxLine, 'x');
  for (auto port : {SounderReader::Port::ESeaSound206, SounderReader::Port::MSComm2, SounderReader::Port::MSTSSComm})
    reader.Feed(port, noise);
  reader.Feed(SounderReader::Port::MSComm2, "\n$SDDPT,4.5\n");
  EXPECT_EQ(rig.gps.SounderDepth, 4.5);
}

}  // namespace
}  // namespace tavik
