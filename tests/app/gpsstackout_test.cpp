// GPSstackOut's window: the arrow turning as the rover walks, held while it stands, the
// texts beside it; the set-up dialog reaching the target; FrmRePlay's buttons.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>
#include <cmath>

#include "app/frmreplay.h"
#include "app/gpsstackout.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "geo/constants.h"
#include "platform/scripted/scripted.h"

namespace {
// The arrow's tip is drawn in red: the pixel just inside it tells where it points.
bool RedNear(QWidget* w, QPointF p) {
  const QImage img = w->grab().toImage();
  for (int dx = -3; dx <= 3; ++dx)
    for (int dy = -3; dy <= 3; ++dy) {
      const QColor c = img.pixelColor(int(p.x()) + dx, int(p.y()) + dy);
      if (c.red() > 200 && c.green() < 80) return true;
    }
  return false;
}
}  // namespace

class GpsStackOutTest : public QObject {
  Q_OBJECT

 private slots:
  void arrowTurnsAsTheRoverMoves() {
    tavik::Document doc;
    tavik::View view;
    tavik::GpsState gps;
    tavik::ui::ScriptedDialogs dialogs;
    GPSstackOut w(doc, view, gps, dialogs);
    w.resize(240, 360);
    w.show();
    QVERIFY(QTest::qWaitForWindowExposed(&w));
    QCOMPARE(gps.StakeActive, tavik::kTrue);
    QVERIFY(!w.Picture1()->Shown());

    gps.StakeName = "K7";
    gps.StakeX = 100;
    gps.StakeY = 100;
    gps.GpsFixText = "最佳解";
    auto at = [&](double E, double N) {
      gps.GpsPrevX = gps.GpsX;
      gps.GpsPrevY = gps.GpsY;
      gps.GpsX = E;
      gps.GpsY = N;
      w.StakeRefresh();
    };
    // Walking north with the target due east: the arrow points right.
    at(90, 90);
    at(90, 100);
    QVERIFY(w.Picture1()->Shown());
    QCOMPARE(w.windowTitle(), QString("GPS放樣-K7"));
    QVERIFY(std::fabs(w.Picture1()->Angle() - tavik::Pi / 2) < 1e-9);
    const QPointF right = w.Picture1()->Tip();
    QVERIFY(right.x() > w.Picture1()->width() * 0.8);
    QVERIFY(RedNear(w.Picture1(), right));
    QCOMPARE(w.Label9(), QString("10.000"));
    QCOMPARE(w.Label8(), QString("90-00-00"));

    // Turning to walk east, straight at it: the arrow points up.
    at(95, 100);
    QVERIFY(std::fabs(w.Picture1()->Angle()) < 1e-9);
    const QPointF up = w.Picture1()->Tip();
    QVERIFY(up.y() < w.Picture1()->height() * 0.2);
    QVERIFY(RedNear(w.Picture1(), up));
    QVERIFY(!RedNear(w.Picture1(), right));

    // Standing, the best fix's noise of 3 cm backwards does not turn it; the texts follow.
    at(94.97, 100);
    QVERIFY(std::fabs(w.Picture1()->Angle()) < 1e-9);
    QCOMPARE(w.Label9(), QString("5.030"));

    w.close();
    QCOMPARE(gps.StakeActive, tavik::kFalse);
  }

  void setupChoosesANamedPoint() {
    tavik::testing::TempHome home;
    tavik::WorkFiles work{tavik::AppPaths(home.path)};
    tavik::Document doc;
    tavik::View view;
    tavik::GpsState gps;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::AddEntity(doc, view, work, 201, 10, 20, 3, "B5");
    GPSstackOut w(doc, view, gps, dialogs);
    DlgStackSetup dlg(w.Logic(), gps, &w);
    QCOMPARE(dlg.Combo1()->count(), 2);
    dlg.Combo1()->setCurrentText("B5");
    dlg.Text2()->setText("0.5");
    QVERIFY(dlg.Ok());
    QCOMPARE(gps.StakeName, std::string("B5"));
    QCOMPARE(gps.StakeRadius, 0.5);
    dlg.Text2()->setText("x");
    QVERIFY(!dlg.Ok());
  }

  void replayButtonsFollowTheState() {
    tavik::testing::TempHome home;
    tavik::App app{tavik::AppPaths(home.path)};
    tavik::GpsState gps;
    tavik::GpsPanels panels;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::ui::ManualTimerFactory timers;
    std::filesystem::create_directories(app.paths.WorkFolder());
    const auto way = app.paths.WorkFolder() / "A.WAY";
    tavik::testing::WriteBytes(way, "d,t,1,2,10,20,3,0,0,0,0,0,0,0,0,0,0,0,x,\r\n");
    FrmRePlay f(app, gps, panels, dialogs, timers);
    QVERIFY(!f.Command1(3)->isEnabled());
    dialogs.files = {way.string()};
    QTest::mouseClick(f.findChild<QPushButton*>("Command2"), Qt::LeftButton);
    QCOMPARE(f.Text1()->text(), QString::fromStdString(way.string()));
    QTest::mouseClick(f.Command1(0), Qt::LeftButton);
    QVERIFY(!f.Command1(0)->isEnabled());
    QVERIFY(f.Command1(3)->isEnabled());
    QTest::mouseClick(f.Command1(3), Qt::LeftButton);
    QCOMPARE(f.findChild<QLabel*>("Label3")->text(), QString("2"));
    QTest::mouseClick(f.Command1(1), Qt::LeftButton);
    QCOMPARE(f.Command1(1)->text(), QString("繼續"));
    QVERIFY(f.Logic().Replaying());
    f.reject();
    QVERIFY(!f.Logic().Replaying());
  }
};

QTEST_MAIN(GpsStackOutTest)
#include "gpsstackout_test.moc"
