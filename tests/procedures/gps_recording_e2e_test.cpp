// End to end over pseudo-terminals: tavik-sim plays a listen-only GNSS receiver walking
// east at 1.5 m an epoch and a HydroBox sounder beside it, on two real serial ports;
// TAVIK records by distance every 5 m. The WAY file, the points on the map and the
// depths in the records must agree with the walk.
#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <cstdlib>

#include "core/numbers.h"
#include "instruments/gps_receiver.h"
#include "instruments/sim_process.h"
#include "instruments/sounders.h"
#include "platform/qt/serial_port.h"
#include "procedures/gps_recording.h"
#include "survey_fixture.h"

namespace tavik {
namespace {

using test::SpinUntil;

std::vector<std::string> Split(const std::string& s) {
  std::vector<std::string> out(1);
  for (char c : s) {
    if (c == ',') out.emplace_back();
    else out.back() += c;
  }
  return out;
}

// A simulator child with its own arguments; the device path is its first line.
class Device {
 public:
  explicit Device(const QStringList& args) {
    test::QtApp();
    process_.start(TAVIK_BIN_DIR "/tools/sim/tavik-sim", args);
    process_.waitForStarted(5000);
    SpinUntil([&] { return process_.canReadLine() || process_.state() == QProcess::NotRunning; });
    path = process_.readLine().trimmed().toStdString();
  }
  ~Device() {
    process_.kill();
    process_.waitForFinished(2000);
  }
  std::string path;

 private:
  QProcess process_;
};

struct GpsRecordingE2E : testing::SurveyFixture {};

TEST_F(GpsRecordingE2E, WalkWithASounderRecordedByDistance) {
  // Due east from 24.5 N 121.7 E; the simulator walks each 15 m leg in ten epochs.
  QTemporaryDir dir;
  const QString scenePath = dir.filePath("walk.txt");
  {
    std::string scene;
    const double step = 15 / (111320 * std::cos(24.5 * 3.14159265358979 / 180));
    for (int i = 0; i < 30; ++i) scene += "24.5 " + num::Plain(121.7 + i * step) + " 40\n";
    QFile f(scenePath);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(scene.c_str());
  }
  Device gnss({"--gnss", "Axis3", "--scene", scenePath, "--rate", "10"});
  Device sounder({"--sounder", "HydroBox", "--depth", "8", "--rate", "40"});
  ASSERT_FALSE(gnss.path.empty());
  ASSERT_FALSE(sounder.path.empty());
  setenv("TAVIK_COM8", gnss.path.c_str(), 1);
  setenv("TAVIK_COM9", sounder.path.c_str(), 1);

  inst.MeasureMode = "GPS";
  doc.InstrumentHeight = 2;
  doc.TargetHeight = 0.5;
  GpsState gps;
  GnssSetup setup;
  setup.GpsReceiverKind = "Axis3";
  setup.SounderKind = "HydroBox";
  GpsDatumSettings datum;
  GpsReceiver rx(gps, setup, doc, datum);
  SounderReader depths(gps, rx.Panels(), setup);
  GpsRecorder rec(ctx, gps, setup, rx.Panels());
  std::vector<std::pair<double, double>> positions;
  rx.hooks.ContinuePositionUpdate = [&](double, double, double) {
    positions.push_back({gps.GpsX, gps.GpsY});
    rec.ContinuePositionUpdate();
  };

  ui::QtSerialPort axis3, mscomm2;
  axis3.CommPort = 8;
  mscomm2.CommPort = 9;
  mscomm2.Settings = GnssPortSettings(4800);
  axis3.OnByte = [&](char c) { rx.MSComm_Axis3_OnComm(c); };
  mscomm2.OnByte = [&](char c) { depths.MSComm2_OnComm(c); };
  ASSERT_TRUE(mscomm2.Open()) << mscomm2.Error();
  ASSERT_TRUE(SpinUntil([&] { return gps.SounderDepth != 0; }));
  ASSERT_TRUE(axis3.Open()) << axis3.Error();
  rec.hooks.PortOpen = [&] { return axis3.PortOpen(); };

  ASSERT_TRUE(rec.RecTypeOk("Dist", "5"));
  rec.LogButton_Click();
  positions.clear();
  ASSERT_TRUE(rec.Running());
  // The walk starts wherever the simulator is; take 20 consecutive positions of it.
  ASSERT_TRUE(SpinUntil([&] { return positions.size() >= 20; }, 15000));
  rec.LogButton_Click();
  axis3.Close();
  mscomm2.Close();

  const std::vector<std::string> way = Lines(".WAY");
  ASSERT_EQ(way.size(), static_cast<std::size_t>(doc.PointCount));
  ASSERT_GE(way.size(), 4u);
  // The records are exactly the positions received that lay more than 5 m from the
  // record before (the first one whatever), in the order received.
  std::vector<std::pair<double, double>> expected;
  for (const auto& q : positions) {
    if (expected.size() == way.size()) break;
    if (expected.empty() || std::hypot(q.first - expected.back().first, q.second - expected.back().second) > 5)
      expected.push_back(q);
  }
  ASSERT_EQ(expected.size(), way.size());
  for (std::size_t i = 0; i < way.size(); ++i) {
    EXPECT_EQ(doc.PointTable[i].E, expected[i].first) << i;
    EXPECT_EQ(doc.PointTable[i].N, expected[i].second) << i;
  }
  for (std::size_t i = 0; i < way.size(); ++i) {
    const auto f = Split(way[i]);
    ASSERT_EQ(f.size(), 20u) << way[i];
    EXPECT_EQ(f[19], "");  // no reference: the line ends with a comma
    const Point& p = doc.PointTable[i];
    EXPECT_EQ(f[4], num::Format(p.E, "0.000"));
    EXPECT_EQ(f[5], num::Format(p.N, "0.000"));
    // Ground = 40 - antenna 2 - draft 0.5 - the depth that came with the position.
    EXPECT_NEAR(p.H, 37.5 - 8, 0.6) << way[i];
    EXPECT_EQ(f[11], "2");
    EXPECT_EQ(f[12], "0.5");
    // A fresh depth arrives between any two records at these rates.
    EXPECT_NEAR(num::ParseLenient(f[13]), 8, 0.6) << way[i];
  }
}

}  // namespace
}  // namespace tavik
