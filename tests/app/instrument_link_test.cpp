// The total-station link in the window: the options dialog's buttons reaching the
// state, the robotic panel writing on the serial port, and an answer reaching the wait
// picture. The instrument end is a pseudo-terminal held by the test.
#include <fcntl.h>
#include <unistd.h>

#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>
#include <cstdlib>

#include "app/instoptions.h"
#include "app/instrument_link.h"
#include "app/mainfrm.h"
#include "app/robotctrl.h"
#include "platform/scripted/scripted.h"

namespace {

class Pty {
 public:
  Pty() {
    fd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    grantpt(fd);
    unlockpt(fd);
    setenv("TAVIK_COM1", ptsname(fd), 1);
  }
  ~Pty() { close(fd); }
  // What TAVIK wrote, after letting the event loop run.
  QByteArray ReadFor(int ms) {
    QByteArray got;
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms) {
      QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
      char buf[256];
      ssize_t n = read(fd, buf, sizeof buf);
      if (n > 0) got.append(buf, n);
    }
    return got;
  }
  void Write(const char* s) { (void)!write(fd, s, strlen(s)); }
  int fd;
};

QString LabelText(MainFrm& frm, const char* name) {
  auto* l = frm.findChild<QLabel*>(name);
  return l ? l->text() : QString("(none)");
}

}  // namespace

class InstrumentLinkTest : public QObject {
  Q_OBJECT

 private slots:
  void optionsDialogButtonsReachTheState() {
    MainFrm frm;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::ui::MemorySettingsStore store;
    InstrumentLink il(frm, dialogs, &store);
    InstOptions dlg(il.inst, dialogs, il, &store);
    QCOMPARE(dlg.windowTitle(), QString("儀器選單"));
    QVERIFY(dlg.Option(tavik::InstOption::Option4)->text() == QString("SOKKIA 機器人系列"));
    QTest::mouseClick(dlg.Option(tavik::InstOption::Option25), Qt::LeftButton);
    QCOMPARE(il.inst.InstrumentKind, std::string("GTS211D"));
    QTest::mouseClick(dlg.findChild<QRadioButton*>("Opt3D"), Qt::LeftButton);
    QCOMPARE(LabelText(frm, "MAPtype"), QString("地形圖"));
    QTest::mouseClick(dlg.Option(tavik::InstOption::Option6), Qt::LeftButton);
    dlg.accept();
    QCOMPARE(il.inst.MapType, int16_t(1));
    QCOMPARE(LabelText(frm, "Label23"), QString("SET3110M/MV"));
    QVERIFY(il.RobotPanel()->isHidden());
    QAction* face = frm.findChild<QAction*>("SetupFace2");
    QVERIFY(face && face->isChecked());
    face->trigger();
    QCOMPARE(il.inst.FaceWarning, int16_t(0));
  }

  // The sounder tab shows the stored devices and writes a new choice into the set-up.
  void sounderTabShowsAndSetsTheDevices() {
    MainFrm frm;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::ui::MemorySettingsStore store;
    InstrumentLink il(frm, dialogs, &store);
    tavik::GnssSetup setup;
    setup.SounderKind = "HydroBox";
    setup.SounderPort = 4;
    setup.MotionSensorBaud = 19200;
    InstOptions dlg(il.inst, dialogs, il, &store, &setup);
    QVERIFY(dlg.findChild<QRadioButton*>("OptSounder(HydroBox)")->isChecked());
    QVERIFY(dlg.findChild<QRadioButton*>("OptMotion()")->isChecked());
    auto* port = dlg.findChild<QComboBox*>("SounderPortCombo");
    QCOMPARE(port->currentText(), QString("COM4"));
    QCOMPARE(dlg.findChild<QComboBox*>("MotionBaudCombo")->currentText(), QString("19200"));
    dlg.findChild<QRadioButton*>("OptSounder()")->click();
    dlg.findChild<QRadioButton*>("OptMotion(TSS_DMS3)")->click();
    port->setCurrentIndex(port->findText("COM2"));
    emit port->activated(port->currentIndex());
    QCOMPARE(setup.SounderKind, std::string());
    QCOMPARE(setup.MotionSensorKind, std::string("TSS_DMS3"));
    QCOMPARE(setup.SounderPort, int16_t(2));
  }

  void robotPanelWritesOnTheSetPort() {
    Pty pty;
    MainFrm frm;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::ui::MemorySettingsStore store;
    InstrumentLink il(frm, dialogs, &store);
    il.ShowRobotPanel(true);
    QTest::mouseClick(il.RobotPanel()->Button("DirUp"), Qt::LeftButton);
    QCOMPARE(pty.ReadFor(150), QByteArray("*DHI+0000000VI-0150000\r"));
    QTest::mouseClick(il.RobotPanel()->Button("ShotMode"), Qt::LeftButton);
    QCOMPARE(pty.ReadFor(150), QByteArray("Xa\r\n"));
    QCOMPARE(il.RobotPanel()->Button("ShotMode")->text(), QString("精測"));
  }

  void answerReachesTheWaitPicture() {
    Pty pty;
    MainFrm frm;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::ui::MemorySettingsStore store;
    InstrumentLink il(frm, dialogs, &store);
    bool stopEnabled = true;
    il.ShowButtons = [&](bool stop, bool) { stopEnabled = stop; };
    il.link.StartShot();
    QVERIFY(!frm.findChild<QLabel*>("MsgObserve")->isHidden());
    QCOMPARE(pty.ReadFor(150), QByteArray("Xc\r\n\x11\r\n"));
    pty.Write("0012345 0900000 1234512\r\n");
    QByteArray stop = pty.ReadFor(200);
    QCOMPARE(stop, QByteArray("\x12\r\n"));
    QVERIFY(frm.findChild<QLabel*>("MsgObserve")->isHidden());
    QCOMPARE(LabelText(frm, "Label29"), QString("123-45-12.00"));
    QCOMPARE(LabelText(frm, "LabelS"), QString("12.345"));
    QCOMPARE(LabelText(frm, "Label45"), QString("12.345"));
    il.link.StopShot();
    QVERIFY(!stopEnabled);
  }

  void optionsDialogCanIdentifyOnThePortTheLinkHeld() {
    Pty pty;
    MainFrm frm;
    tavik::ui::ScriptedDialogs dialogs;
    tavik::ui::MemorySettingsStore store;
    InstrumentLink il(frm, dialogs, &store);
    il.link.StartShot();
    QVERIFY(il.MSComm_SET.PortOpen());
    pty.ReadFor(50);
    QByteArray written;
    QTimer::singleShot(0, [&] {
      if (auto* dlg = qobject_cast<InstOptions*>(QApplication::activeModalWidget())) {
        dlg->Logic().Command5Click();  // 關機, on the dialog's own port
        written = pty.ReadFor(150);
        dlg->reject();
      }
    });
    il.OpenInstOptions();
    QCOMPARE(written, QByteArray("*POFF\r\n"));
  }
};

QTEST_MAIN(InstrumentLinkTest)
#include "instrument_link_test.moc"
