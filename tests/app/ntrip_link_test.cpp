// The NTRIP client of the main window over Qt's sockets, against str2str as the caster:
// the settings dialog lists the caster's mount points, the menu item starts the client,
// corrections reach the port while the window keeps its events, the status line says
// what is going on, and a wrong password stops it with the caster's reason.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QSpinBox>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include "app/mainfrm.h"
#include "app/ntrip_link.h"
#include "app/ntripdlg.h"
#include "platform/ini_store.h"
#include "platform/scripted/scripted.h"

namespace {

// The port the corrections go to: what was written, and nothing else.
class CapturePort : public tavik::ui::SerialPort {
 public:
  explicit CapturePort(std::string& sink) : sink_(sink) {}
  bool Open() override { return open_ = true; }
  void Close() override { open_ = false; }
  bool PortOpen() const override { return open_; }
  void Output(std::string_view b) override { sink_.append(b); }
  std::string Error() const override { return ""; }

 private:
  std::string& sink_;
  bool open_ = false;
};

int FreePort() {
  QTcpServer s;
  s.listen(QHostAddress::LocalHost, 0);
  return s.serverPort();
}

}  // namespace

class NtripLinkTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    if (QStandardPaths::findExecutable("str2str").isEmpty()) QSKIP("str2str (Debian package rtklib) is not installed");
    port_ = FreePort();
    caster_.start("str2str", {"-out", QString("ntripc://user:pass@:%1/RTCM32").arg(port_)});
    QVERIFY(caster_.waitForStarted());
    QTest::qWait(500);
  }
  void cleanupTestCase() {
    caster_.kill();
    caster_.waitForFinished();
  }

  void mountsListedThenCorrectionsFlowThenAWrongPassword() {
    QTemporaryDir home;
    tavik::ui::IniSettingsStore store(home.path().toStdString());
    tavik::ui::ScriptedDialogs dialogs;
    MainFrm frm;
    NtripLink ntrip(frm, dialogs, store);
    std::string written;
    ntrip.MakePort = [&] { return std::make_unique<CapturePort>(written); };

    // Without settings the item refuses with a message and stays unchecked.
    QAction* run = frm.findChild<QAction*>("mnuNtripClient");
    QVERIFY(run);
    run->trigger();
    QVERIFY(!run->isChecked());
    QCOMPARE(dialogs.Messages().back(), std::string("請先在 NTRIP 設定中輸入 NTRIP 主機"));

    {
      NtripDlg dlg(tavik::ntrip::Role::Client, store, dialogs, false);
      dlg.findChild<QLineEdit*>("CasterBox")->setText("127.0.0.1");
      dlg.findChild<QSpinBox*>("PortBox")->setValue(port_);
      dlg.findChild<QLineEdit*>("UserBox")->setText("user");
      dlg.findChild<QLineEdit*>("PasswordBox")->setText("pass");
      dlg.FetchMounts();
      QTRY_COMPARE(dlg.SourceLabel()->text(), QString("共 1 個掛載點"));
      QCOMPARE(dlg.MountBox()->itemData(0).toString(), QString("RTCM32"));
      dlg.accept();
    }
    QCOMPARE(store.GetSetting("TAVIK", "NtripClient", "Mount", ""), std::string("RTCM32"));

    run->trigger();
    QVERIFY(run->isChecked());
    auto* status = frm.findChild<QLabel*>("NtripClientStatus");
    QTRY_VERIFY(status->text().startsWith("NTRIP 已連線"));
    const std::string bytes = "\xd3\x00\x04" "abcd" "xyz" "\x00\x01\x02\xff";
    for (int i = 0; i < 20 && written.empty(); ++i) {
      caster_.write(bytes.data(), static_cast<qint64>(bytes.size()));
      QTest::qWait(100);
    }
    QVERIFY(!written.empty());
    QCOMPARE(written.size() % bytes.size(), std::size_t(0));
    QCOMPARE(written.substr(0, bytes.size()), bytes);
    QTRY_VERIFY(status->text().contains("秒前"));

    // The caster refuses a wrong password: stopped, unchecked, the reason shown once.
    store.SaveSetting("TAVIK", "NtripClient", "Password", "wrong");
    run->trigger();  // off
    QVERIFY(!run->isChecked());
    QVERIFY(status->isHidden());
    run->trigger();  // on again, with the wrong password
    QTRY_VERIFY(!run->isChecked());
    QTRY_VERIFY(!dialogs.Messages().empty() && dialogs.Messages().back().find("401") != std::string::npos);
    QVERIFY(status->text().contains("失敗"));
  }

 private:
  QProcess caster_;
  int port_ = 0;
};

QTEST_MAIN(NtripLinkTest)
#include "ntrip_link_test.moc"
