// The GNSS receiver in the window: the sky plot drawing the satellites a receiver
// reported, and GPS mode's toolbar keys driving a receiver on a pseudo-terminal into
// the fix panels.
#include <fcntl.h>
#include <unistd.h>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QToolBar>
#include <QtTest>
#include <cstdlib>

#include "app/edit_wiring.h"
#include "app/formskyplot.h"
#include "app/gnss_wiring.h"
#include "app/program.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"

namespace {

// Runs the event loop for a while, reading what TAVIK wrote to the pseudo-terminal.
QByteArray Spin(int fd, int ms) {
  QByteArray got;
  QElapsedTimer t;
  t.start();
  while (t.elapsed() < ms) {
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    char buf[512];
    ssize_t n = read(fd, buf, sizeof buf);
    if (n > 0) got.append(buf, n);
  }
  return got;
}

bool GreenNear(const QImage& image, QPointF centre) {
  for (int dx : {-5, -4, 4, 5})
    for (int dy : {-2, 0, 2})
      if (image.pixelColor((centre + QPointF(dx, dy)).toPoint()) == QColor(0, 255, 0)) return true;
  return false;
}

}  // namespace

class GnssWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void skyPlotDrawsTheSatellitesOfTheReceiver() {
    tavik::GpsState gps;
    tavik::GnssSetup setup;
    tavik::Document doc;
    tavik::GpsDatumSettings datum;
    tavik::GpsReceiver receiver(gps, setup, doc, datum);
    receiver.DiscardGobs = true;
    // Zenith, east horizon, south at 45 degrees without a signal, west at 30, and a
    // fifth in the second message.
    receiver.Feed(tavik::GpsReceiver::Port::MSComm1,
                  "$GPGSA,M,3,01,02,04,05,,,,,,,,,2.1,1.2,1.7*00\r"
                  "$GPGSV,2,1,05,01,90,000,40,02,00,090,35,03,45,180,00,04,30,270,20*00\r"
                  "$GPGSV,2,2,05,05,60,045,30*00\r");
    FormSkyPlot form;
    form.resize(700, 420);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    form.ShowSkyPlot(receiver.Sky());
    QCOMPARE(form.windowTitle(), QString("衛星分佈圖"));

    const QImage image = form.Canvas()->grab().toImage();
    struct Expect {
      double x, y;
      bool green;
    };
    const Expect markers[] = {{166.5, 166.833, true},           // PRN 1 at the zenith
                              {316.5, 166.833, true},           // PRN 2 on the eastern horizon
                              {166.5, 166.833 + 75, false},     // PRN 3, south, no signal
                              {166.5 - 100, 166.833, true}};    // PRN 4, west at 30 degrees
    for (const Expect& m : markers)
      QCOMPARE(GreenNear(image, form.Canvas()->ToPixels(m.x, m.y)), m.green);
    // The no-signal marker is drawn all the same: its black ring stands 10 units out.
    const QPointF ring = form.Canvas()->ToPixels(166.5, 166.833 + 75 - 10);
    bool dark = false;
    for (int dy = -2; dy <= 2; ++dy) dark = dark || image.pixelColor(ring.toPoint() + QPoint(0, dy)).lightness() < 128;
    QVERIFY(dark);

    QCOMPARE(form.findChild<QLabel*>("Label4(3)")->text(), QString("4"));
    QCOMPARE(form.findChild<QLabel*>("LabelPDOP")->text().toDouble(), 2.1);
    QCOMPARE(form.findChild<QLabel*>("LabelVDOP")->text().toDouble(), 1.7);
    QCOMPARE(form.List(0)->count(), 5);
    QCOMPARE(form.List(3)->item(2)->text(), QString("0"));
    QVERIFY(form.List(3)->item(2)->background() != QBrush(Qt::white));
    QCOMPARE(form.List(3)->item(1)->background(), QBrush(Qt::white));
  }

  void gpsModeConnectsReceivesAndStops() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.frm.show();
    p.Start();
    int pty = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    grantpt(pty);
    unlockpt(pty);
    setenv("TAVIK_COM7", ptsname(pty), 1);
    p.UseGpsReceiver("DL-4", 7, 115200);

    auto key = [&](const char* name) { return p.frm.findChild<QAction*>(name); };
    QCOMPARE(key("連接COM1")->text(), QString("連線"));
    QCOMPARE(key("接收資料")->text(), QString("接收"));
    QCOMPARE(key("停止接收")->text(), QString("切斷連線"));
    QVERIFY(key("連接COM1")->isVisible() && !key("停止接收")->isEnabled());
    QVERIFY(p.frm.findChild<QWidget*>("GpsPanel")->isVisible());
    QVERIFY(!p.frm.findChild<QWidget*>("WaitPanel")->isVisible());

    // Without a document nothing happens, silently.
    key("連接COM1")->trigger();
    QVERIFY(!p.gnss->MSComm1.PortOpen());
    QVERIFY(dialogs.shown.empty());

    dialogs.files = {(p.app.paths.WorkFolder() / "衛星").string() + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    key("連接COM1")->trigger();
    const QByteArray sent = Spin(pty, 200);
    QVERIFY(sent.startsWith("COM COM1,115200,N,8,1,N,OFF\r\nFIX NONE\r\n"));
    QVERIFY(sent.endsWith("userdatum 6378137,298.257223563,0,0,0,0,0,0.9999\r\n"));
    QVERIFY(key("停止接收")->isEnabled() && key("接收資料")->isEnabled());
    QVERIFY(p.gnss->Timer1_0.Enabled());
    // The keyed angle needs a fix: connected is not enough, a fix is, and stopping ends it.
    QAction* keyed = w.Toolbar1()->findChild<QAction*>("輸入角度");
    auto keyedOpens = [&] {
      QString opened;
      QTimer::singleShot(0, [&] {
        if (QWidget* m = QApplication::activeModalWidget()) {
          opened = m->objectName();
          m->close();
        }
      });
      const std::size_t said = dialogs.shown.size();
      keyed->trigger();
      if (dialogs.shown.size() > said) return dialogs.shown.back().text == "請先進入接收資料狀態" ? QString("refused") : QString();
      return opened;
    };
    QCOMPARE(keyedOpens(), QString("refused"));

    const char* gga = "$GPGGA,032443.00,2445.420000,N,12145.180000,E,4,12,0.8,12.500,M,17.0,M,1.0,0000*00\r\n";
    (void)!write(pty, gga, strlen(gga));
    Spin(pty, 300);
    QVERIFY(!p.gnss->Timer1_0.Enabled());
    QCOMPARE(p.gnss->Label("Label6")->text(), QString("RTK-fix"));
    QCOMPARE(p.gnss->Label("Label1(1)")->text(), QString("HDOP"));
    QCOMPARE(p.gnss->Label("Label11")->text(), QString("0.8"));
    QVERIFY(p.gnss->Label("Label25(7)")->text().startsWith("3261"));
    auto* box = p.frm.findChild<QLabel*>("OBSBox");
    QVERIFY(box->styleSheet().contains("background-color: rgb(0,0,0)"));
    QCOMPARE(keyedOpens(), QString("InputHVSDlg"));

    key("停止接收")->trigger();
    QVERIFY(!p.gnss->MSComm1.PortOpen());
    QVERIFY(!key("停止接收")->isEnabled());
    QCOMPARE(box->text(), QString());
    QVERIFY(box->styleSheet().contains("background-color: rgb(255,255,255)"));
    QCOMPARE(keyedOpens(), QString("refused"));
    close(pty);
  }
};

QTEST_MAIN(GnssWindowTest)
#include "gnss_window_test.moc"
