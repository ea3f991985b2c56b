// The recording controls in the main window: shown in GPS mode only; a distance run
// started with LogButton records the walk into the map and the WAY file while the
// marker moves on Paper1, and the sounder's port feeds the depth into the records.
#include <QAction>
#include <QToolBar>
#include <QToolButton>
#include <QtTest>
#include <cmath>

#include "app/gps_record_controls.h"
#include "app/mainfrm.h"
#include "app/paper.h"
#include "app/program.h"
#include "core/temp_home.h"
#include "instruments/fake_port.h"
#include "platform/scripted/scripted.h"

namespace {

std::string Gga(double lat, double lon) {
  const double latMin = (lat - std::floor(lat)) * 60, lonMin = (lon - std::floor(lon)) * 60;
  char line[160];
  std::snprintf(line, sizeof line, "$GPGGA,120000.00,%02d%08.5f,N,%03d%08.5f,E,4,14,0.8,41.250,M,17.0,M,1.0,0000*00\r",
                static_cast<int>(lat), latMin, static_cast<int>(lon), lonMin);
  return line;
}

}  // namespace

class GpsRecordControlsTest : public QObject {
  Q_OBJECT

 private slots:
  void distanceRunInTheWindow() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    tavik::GpsState gps;
    tavik::GnssSetup setup;
    setup.SounderKind = "HydroBox";
    tavik::GpsReceiver rx(gps, setup, p.app.doc, p.gpsDatum);
    tavik::test::FakePort com1, hydro;
    com1.OnByte = [&](char c) { rx.MSComm1_OnComm(c); };
    GpsRecordEnds ends;
    ends.gps = &gps;
    ends.setup = &setup;
    ends.receiver = &rx;
    ends.MSComm1 = &com1;
    ends.MSComm2 = &hydro;
    GpsRecordControls controls(p, ends);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "河道").string() + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());

    auto* bar = p.frm.findChild<QToolBar*>("GpsRecordBar");
    QVERIFY(bar && !bar->isVisible());
    p.instruments.inst.MeasureMode = "GPS";
    p.frm.SetMeasureModeMenus("GPS");
    QVERIFY(bar->isVisible());

    // Not connected yet.
    controls.LogButton()->click();
    QCOMPARE(dialogs.Messages().back(), std::string("請先按[連接GPS]鈕"));
    com1.open = hydro.open = true;
    QVERIFY(controls.Recorder().RecTypeOk("Dist", "2"));
    QCOMPARE(controls.LogButton()->text(), QString("連續記錄,每2公尺"));
    dialogs.inputs = {std::string("1.8"), std::string("0.4")};  // antenna height, draft
    controls.LogButton()->click();
    QCOMPARE(controls.LogButton()->text(), QString("暫停連續記錄"));
    QVERIFY(controls.LogButton()->isChecked());

    // Walk 36 m east in 0.6 m steps, the sounder speaking between positions.
    const double step = 0.6 / (111320 * std::cos(24.7 * 3.14159265358979 / 180));
    QImage before = p.frm.Paper1()->Surface().Image().copy();
    for (int i = 0; i < 60; ++i) {
      hydro.Receive("$SDDPT,6.25,0.0\n");
      com1.Receive(Gga(24.7, 121.75 + i * step));
    }
    controls.LogButton()->click();
    QCOMPARE(controls.LogButton()->text(), QString("連續記錄,每2公尺"));
    // 0, then every 2.4 m: 15 records over 35.4 m.
    QCOMPARE(p.app.doc.PointCount, 15);
    QCOMPARE(p.app.doc.PointTable[0].H, 41.25 - 1.8 - 0.4 - 6.25);
    QVERIFY(p.app.doc.MapChanged);
    QVERIFY(p.frm.Paper1()->Surface().Image() != before);  // marker and points drawn
    QFile way(QString::fromStdString(p.app.doc.WayPath));
    QVERIFY(way.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = way.readAll().split('\n');
    QCOMPARE(lines.size(), 16);  // 15 lines and the empty rest
    QVERIFY(lines[0].contains(",1.8,0.4,6.25,0,"));
    if (qEnvironmentVariableIsSet("TAVIK_SHOT")) p.frm.grab().save(qEnvironmentVariable("TAVIK_SHOT"));
  }
};

QTEST_MAIN(GpsRecordControlsTest)
#include "gps_record_controls_test.moc"
