// GpsInitDlg's window: captions, clicks reaching the datum, OK and Cancel.
#include <QRadioButton>
#include <QtTest>

#include "app/gpsinitdlg.h"

class GpsInitDlgTest : public QObject {
  Q_OBJECT

 private slots:
  void openingStateThenClickAndCancel() {
    tavik::GpsDatumSettings s;
    GpsInitDlg dlg(s, nullptr, nullptr);
    QCOMPARE(dlg.windowTitle(), QString("衛星接收儀啟動設定"));
    QVERIFY(dlg.Option(2)->isChecked() && dlg.Option(4)->isChecked() && !dlg.Option(1)->isChecked());
    // A click reaches the datum at once; Cancel puts back what was there.
    QTest::mouseClick(dlg.Option(1), Qt::LeftButton);
    QCOMPARE(s.GpsDatum, std::string("TWD67"));
    QCOMPARE(s.EllipsoidA, 6378160.0);
    dlg.reject();
    QCOMPARE(s.GpsDatum, std::string("TWD97"));
    QCOMPARE(s.EllipsoidA, 6378137.0);
  }

  void okReportsToTheWindow() {
    tavik::GpsDatumSettings s;
    tavik::GpsInitOk seen;
    bool called = false;
    GpsInitDlg dlg(s, [] { return true; }, [&](const tavik::GpsInitOk& ok) {
      seen = ok;
      called = true;
    });
    QTest::mouseClick(dlg.Option(5), Qt::LeftButton);
    QVERIFY(dlg.Option(5)->isChecked());
    QVERIFY(!dlg.Option(4)->isChecked());
    dlg.accept();
    QVERIFY(called);
    QCOMPARE(seen.Label4, std::string("119"));
    QCOMPARE(seen.Label25_0, std::string("TWD97"));
    QVERIFY(seen.CloseMSComm1);
    QCOMPARE(s.CentralMeridian, 119.0);
  }
};

QTEST_MAIN(GpsInitDlgTest)
#include "gpsinitdlg_test.moc"
