// The RTK base in the main window: its menu entry in GPS mode only, the refusal for a
// receiver kind without a base sequence, the base picked on the map ("BasePt"), the
// averaging fed by the receiver's positions, and the format remembered between runs.
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QtTest>

#include "app/edit_wiring.h"
#include "app/gnss_wiring.h"
#include "app/program.h"
#include "app/rtbase.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class RtBaseTest : public QObject {
  Q_OBJECT

 private slots:
  void menuPickAveragingAndRememberedFormat() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    auto station = std::make_unique<RtBaseStation>(p, w);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "基地").string() + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    const double cE = p.app.doc.ViewCentreE, cN = p.app.doc.ViewCentreN;
    QVERIFY(tavik::AddEntity(p.app.doc, p.app.view, p.app.work, 110, cE + 3, cN + 2, 11.5, "BM7"));
    p.frm.RedrawPaper();

    QAction* item = p.frm.findChild<QAction*>("MainMnuRtBase");
    QVERIFY(item && !item->isVisible());
    p.UseGpsReceiver("Flexpak", 1, 9600);
    p.frm.SetMeasureModeMenus("GPS");
    QVERIFY(item->isVisible());
    item->trigger();
    QVERIFY(!station->dialog());
    QCOMPARE(dialogs.Messages().back(), std::string("接收儀 Flexpak 不能設為基地站"));

    p.UseGpsReceiver("DL-4", 1, 9600);
    item->trigger();
    RTBASE* d = station->dialog();
    QVERIFY(d && d->isVisible());
    // A DL-4 has no NovAtelX; the format of the first run is RTCMV3.
    QVERIFY(!d->Control("Option4")->isEnabled());
    QVERIFY(static_cast<QRadioButton*>(d->Control("Option11"))->isChecked());

    // 圖上選點: the dialog steps aside, the click picks, the dialog is back with the point.
    QTest::mouseClick(static_cast<QRadioButton*>(d->Control("Option3")), Qt::LeftButton);
    QVERIFY(!d->isVisible());
    QTest::mouseClick(p.frm.Paper1(), Qt::LeftButton, Qt::NoModifier, PaperPoint(p, cE + 3, cN + 2));
    QVERIFY(d->isVisible());
    QCOMPARE(d->Text("Text1"), QString("BM7"));
    QCOMPARE(d->Text("ZHbox"), QString("11.500"));

    // Averaging two positions by count: the boxes take the mean, as typed values.
    static_cast<QComboBox*>(d->Control("AverageUnit"))->setCurrentIndex(1);
    static_cast<QSpinBox*>(d->Control("AverageAmount"))->setValue(2);
    QTest::mouseClick(static_cast<QPushButton*>(d->Control("CmdAverage")), Qt::LeftButton);
    tavik::GpsState& gps = p.gnss->gps;
    auto& position = p.gnss->receiver.hooks.ContinuePositionUpdate;
    gps.GpsX = 1000.002, gps.GpsY = 2000, gps.GpsGround = 3;
    position(121, 24, 4);
    QVERIFY(d->Text("LabelAverage").startsWith("平均中 1 筆"));
    gps.GpsX = 1000.006, gps.GpsGround = 3.1;
    position(121, 24, 4);
    QCOMPARE(d->Text("XEbox"), QString("1000.004"));
    QCOMPARE(d->Text("ZHbox"), QString("3.050"));
    QVERIFY(static_cast<QRadioButton*>(d->Control("Option1"))->isChecked());
    QVERIFY(d->Text("LabelAverage").startsWith("平均 2 筆"));

    // A format chosen is offered again by the next run of the program.
    QTest::mouseClick(static_cast<QRadioButton*>(d->Control("Option8")), Qt::LeftButton);
    d->close();
    station.reset();
    RtBaseStation again(p, w);
    p.frm.findChildren<QAction*>("MainMnuRtBase").back()->trigger();
    QVERIFY(again.dialog());
    QCOMPARE(again.dialog()->Logic().BaseFormat, std::string("CMR"));
  }
};

QTEST_MAIN(RtBaseTest)
#include "rtbase_test.moc"
