// The GPS procedures in the main window: the menu entries by measure mode, the target
// picked on the map for the stake-out, and a replay that leaves the surveyor's
// document as it was; and the total-station stake-out that stops autosave.
#include <QAction>
#include <QPushButton>
#include <QToolBar>
#include <QtTest>

#include "app/edit_wiring.h"
#include "app/frmreplay.h"
#include "app/gps_station.h"
#include "app/gpsstackout.h"
#include "app/program.h"
#include "app/survey_station.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class GpsStationTest : public QObject {
  Q_OBJECT

  static QPoint At(Program& p, double E, double N) { return PaperPoint(p, E, N); }

 private slots:
  void stakeOutPickAndReplayInTheWindow() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    GpsStation gps(p, w);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "丙地").string() + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    const double cE = p.app.doc.ViewCentreE, cN = p.app.doc.ViewCentreN;
    QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, cE, cN, 10));
    QVERIFY(tavik::AddEntity(p.app.doc, p.app.view, p.app.work, 201, cE + 3, cN + 2, 11, "T9"));
    p.app.doc.MapChanged = tavik::kTrue;
    p.frm.RedrawPaper();

    // TS mode: no GPS stake-out; the replay says why it will not open.
    QAction* stakeItem = p.frm.findChild<QAction*>("MainMnuGpsStackOut");
    QVERIFY(stakeItem && !stakeItem->isVisible());
    p.frm.findChild<QAction*>("RePlay")->trigger();
    QCOMPARE(dialogs.Messages().back(), std::string("重播為GPS專用功能,儀器需改為GPS才能重播"));
    QVERIFY(!gps.replay());

    p.instruments.inst.MeasureMode = "GPS";
    p.frm.SetMeasureModeMenus("GPS");
    QVERIFY(stakeItem->isVisible());
    QVERIFY(p.frm.findChild<QAction*>("放樣")->isVisible());

    // The target picked on the map: the dialog hides, the click chooses, it comes back.
    stakeItem->trigger();
    QVERIFY(gps.stakeOut());
    gps.stakeOut()->StartPick();
    QVERIFY(!gps.stakeOut()->isVisible());
    QTest::mouseClick(p.frm.Paper1(), Qt::LeftButton, Qt::NoModifier, At(p, cE + 3, cN + 2));
    QVERIFY(gps.stakeOut()->isVisible());
    QCOMPARE(gps.ends.gps->StakeName, std::string("T9"));
    QCOMPARE(gps.stakeOut()->windowTitle(), QString("GPS放樣-T9"));
    gps.stakeOut()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!gps.stakeOut());
    QCOMPARE(gps.ends.gps->StakeActive, tavik::kFalse);

    // A replay while connected is refused; otherwise it runs on an empty map and End
    // brings the document back.
    gps.ends.Connected = [] { return true; };
    p.frm.findChild<QAction*>("RePlay")->trigger();
    QCOMPARE(dialogs.shown.back().title, std::string("錯誤動作"));
    gps.ends.Connected = [] { return false; };
    std::vector<std::pair<double, double>> marker;
    gps.ends.DrawMarker = [&](double E, double N) { marker.emplace_back(E, N); };
    const auto way = p.app.paths.WorkFolder() / "丙地.WAY";
    tavik::testing::WriteBytes(way, "d,t,1,2," + std::to_string(cE + 1) + "," + std::to_string(cN + 1) +
                                        ",3,0,0,0,0,0,0,0,0,0,0,0,x,\r\n");
    p.frm.findChild<QAction*>("RePlay")->trigger();
    FrmRePlay* f = gps.replay();
    QVERIFY(f);
    QVERIFY(f->Logic().ChooseFile(way.string()));
    dialogs.answers = {tavik::ui::Answer::No};
    QTest::mouseClick(f->Command1(0), Qt::LeftButton);
    QCOMPARE(p.app.doc.PointCount, 0);
    QVERIFY(!p.cycle.Timer5().Enabled());
    f->Logic().Tick();
    QCOMPARE(marker.size(), std::size_t{1});
    QTest::mouseClick(f->Command1(2), Qt::LeftButton);
    QCOMPARE(p.app.doc.PointCount, 1);
    QCOMPARE(p.app.doc.EntityTable.back().Name, std::string("T9"));
    QCOMPARE(p.app.doc.MapChanged, tavik::kTrue);
    QCOMPARE(p.frm.PanelText(4), QString("測點 1"));
  }

  // The total-station stake-out with a Trimble, which streams its readings: autosave stops.
  void trimbleStakeOutStopsAutosave() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "丁地").string() + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.cycle.Timer5().Enabled());
    p.instruments.inst.InstrumentKind = "Trimble";
    p.app.doc.StationSet = tavik::kTrue;
    p.survey->OpenStackOut();
    QVERIFY(p.survey->stackOut());
    QVERIFY(!p.cycle.Timer5().Enabled());
  }
};

QTEST_MAIN(GpsStationTest)
#include "gps_station_test.moc"
