// MainFrm with the whole program behind it, scripted dialogs in front, offscreen; and
// the window alone as the map view sees it.
#include <QAction>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QDialog>
#include <QLabel>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolBar>
#include <QTextBrowser>
#include <QtTest>
#include <cmath>
#include <filesystem>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "core/tables.h"
#include "platform/scripted/scripted.h"
#include "core/temp_home.h"

namespace fs = std::filesystem;

class MainFrmTest : public QObject {
  Q_OBJECT

 private:
  static QStringList MenuCaptions(const QMenuBar* bar) {
    QStringList out;
    for (QAction* a : bar->actions())
      if (a->isVisible()) out << a->text();
    return out;
  }
  static bool Shown(const MainFrm& frm, const char* name) {
    if (QAction* a = frm.findChild<QAction*>(name)) return a->isVisible();
    QWidget* w = frm.findChild<QWidget*>(name);
    return w != nullptr && w->isVisibleTo(w->parentWidget());
  }

 private slots:
  // A short piece of file work shows nothing; a long one shows its counts after half a
  // second, and the bar goes when the work is done.
  void progressBarForLongFileWork() {
    MainFrm frm;
    frm.show();
    tavik::ProgressSink sink = frm.Progress();
    sink(0, 100);
    sink(50, 100);
    sink(100, 100);
    QVERIFY(!frm.ProgressBar()->isVisible());
    sink(0, 3000000);
    sink(16384, 3000000);
    QVERIFY(!frm.ProgressBar()->isVisible());
    QTest::qWait(550);
    sink(1500000, 3000000);
    QVERIFY(frm.ProgressBar()->isVisible());
    QCOMPARE(frm.ProgressBar()->text(), QString("1500000 / 3000000"));
    QCOMPARE(frm.ProgressBar()->value(), 500);
    sink(3000000, 3000000);
    QVERIFY(!frm.ProgressBar()->isVisible());
  }

  // During long file work the windows are painted again and nothing else runs: no timer,
  // no queued call, no click that could start another command; the cursor says busy.
  void windowsRepaintButNothingRunsDuringFileWork() {
    MainFrm frm;
    frm.show();
    QVERIFY(QTest::qWaitForWindowExposed(&frm));
    struct Seen : QObject {
      int paints = 0, presses = 0;
      bool eventFilter(QObject*, QEvent* e) override {
        paints += e->type() == QEvent::Paint;
        presses += e->type() == QEvent::MouseButtonPress;
        return false;
      }
    } seen;
    frm.Paper1()->installEventFilter(&seen);
    int ran = 0;
    QTimer::singleShot(0, &frm, [&] { ++ran; });
    QTimer tick;
    connect(&tick, &QTimer::timeout, &frm, [&] { ++ran; });
    tick.start(1);
    const QPointF at(20, 20);
    QCoreApplication::postEvent(frm.Paper1(), new QMouseEvent(QEvent::MouseButtonPress, at, frm.Paper1()->mapToGlobal(at),
                                                              Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    tavik::ProgressSink sink = frm.Progress();
    sink(0, 1000);
    QElapsedTimer clock;
    clock.start();
    for (int64_t k = 0; clock.elapsed() < 800; ++k) sink(1 + k % 998, 1000);
    QVERIFY(seen.paints >= 2);
    QCOMPARE(ran + seen.presses, 0);
    QVERIFY(QApplication::overrideCursor() != nullptr);
    sink(1000, 1000);
    QVERIFY(QApplication::overrideCursor() == nullptr);
  }

  void menusAndCaptionsBeforeADocument() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.Start();
    QCOMPARE(p.frm.windowTitle(), QString("TAVIK"));
    // Every menu shown offers at least one item.
    QCOMPARE(MenuCaptions(p.frm.menuBar()), QStringList({"檔案(&F)", "測量(&M)", "編輯(&E)", "檢視(&V)", "匯入(&I)",
                                                         "匯出(&X)", "工具(&U)", "底圖(&B)", "設定(&T)", "收工(&D)"}));
    for (QAction* m : p.frm.menuBar()->actions()) {
      if (!m->isVisible()) continue;
      int items = 0;
      for (QAction* a : m->menu()->actions()) items += a->isVisible() && !a->isSeparator();
      QVERIFY2(items > 0, qPrintable(m->text()));
    }
    // The points on base-map lines are offered, and wait for a base map.
    for (const char* bm : {"BMLockLineCPnt", "BMLockXLineCPnt"})
      QVERIFY2(p.frm.Command(bm)->isVisible() && !p.frm.Command(bm)->isEnabled(), bm);
    QVERIFY(p.frm.findChild<QAction*>("ImportOBS"));
    QCOMPARE(p.frm.findChild<QAction*>("ImportOBS")->parent(), p.frm.Menu("MainMnuImport"));
    const std::pair<const char*, const char*> file[] = {
        {"MainMnuNew", "開新圖檔(&N)..."}, {"MainMnuOpen", "開啟舊圖檔(&O)..."}, {"MainMnuSave", "存檔(&S)"},
        {"MainMnuSaveAs", "另存新檔(&A)..."}, {"MainMnuClose", "關閉圖檔(&C)"}, {"MainMnuExit", "結束(&X)"}};
    for (const auto& [name, caption] : file) {
      QAction* a = p.frm.Command(name);
      QVERIFY2(a, name);
      QCOMPARE(a->text(), QString(caption));
    }
    // Without a document only New, Open and Exit are offered.
    QVERIFY(p.frm.Command("MainMnuNew")->isEnabled());
    QVERIFY(p.frm.Command("MainMnuOpen")->isEnabled());
    QVERIFY(!p.frm.Command("MainMnuSave")->isEnabled());
    QVERIFY(!p.frm.Command("MainMnuClose")->isEnabled());
    for (const char* m : {"MainMnuMete", "MainMnuEdit", "MainMnuView", "MainMnuImport", "MainMnuExport", "MainMnuU",
                          "MainMnuBasemap", "MainMnuSetup", "MainMnuEnd"}) {
      QVERIFY2(p.frm.Menu(m), m);
      QVERIFY2(!p.frm.Menu(m)->menuAction()->isEnabled(), m);
    }
    for (int k = 1; k <= 5; ++k)
      QVERIFY(!p.frm.Command("mnuFileItem(" + std::to_string(k) + ")")->isVisible());
    QCOMPARE(p.frm.PanelText(1), QString("1 :200"));
  }

  void panelsFollowTheDocumentAndItsMode() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "丙地.SPC").string()};
    p.cycle.New();

    // A change of the tables shows in every count at the next repaint, before any save.
    QVERIFY(tavik::AddEntity(p.app.doc, p.app.view, p.app.work, 301, tavik::KindLine, 280850, 2752650, 5, 280860,
                             2752660, 5, 0, 0, 0, ""));
    p.frm.Paper1()->update();
    QTRY_COMPARE(p.frm.LabelText("Label42"), QString("1"));
    QCOMPARE(p.frm.PanelText(5), QString("圖元 1"));
    QCOMPARE(p.frm.PanelText(7), QString("螢幕圖 1"));
    QVERIFY(tavik::DeleteEntity(p.app.doc, p.app.work, 1));
    p.frm.RedrawPaper();
    QCOMPARE(p.frm.PanelText(5), QString("圖元 0"));
    QCOMPARE(p.frm.PanelText(7), QString("螢幕圖 0"));
    // So does the scale when a set-up fits the view to its points.
    p.survey->panel()->FitViewTo(280800, 2752600, 281000, 2752700, 1.2);
    QVERIFY(p.app.doc.ScaleDenominator > 100);
    QCOMPARE(p.frm.PanelText(1), QString("1 :%1").arg(static_cast<long long>(p.app.doc.ScaleDenominator)));

    // The prompt and the pointer's readout hide neither the scale nor the counts.
    p.frm.SetPrompt("請點選第一點");
    p.frm.SetReadout("280850.000", "2752650.000");
    QCOMPARE(p.frm.PanelText(2), QString("E 280850.000"));
    QCOMPARE(p.frm.PanelText(3), QString("N 2752650.000"));
    QCOMPARE(p.frm.statusBar()->currentMessage(), QString("請點選第一點"));
    p.frm.statusBar()->showMessage("目前圖例 301", 10);  // a passing message
    QTRY_COMPARE(p.frm.statusBar()->currentMessage(), QString("請點選第一點"));
    QVERIFY(p.frm.findChild<QLabel*>("Panel1")->isVisible());
    QVERIFY(p.frm.findChild<QLabel*>("Panel5")->isVisible());

    // The measure mode shows its own items only.
    for (const char* mode : {"GPS", "TS"}) {
      p.frm.SetMeasureModeMenus(mode);
      const bool ts = std::string(mode) == "TS";
      for (const char* item : {"MainMnuFit", "MainMnuResect", "MainMnuStackOut", "SurveyPanel", "WaitPanel"})
        QVERIFY2(Shown(p.frm, item) == ts, item);
      QVERIFY(Shown(p.frm, "mnuGpsInit") == !ts);
    }

    // Close takes the old document's marks with it: no station, no blinking point.
    SurveyPanel& panel = *p.survey->panel();
    panel.SetText("LabelStaName", "K1");
    panel.DrawStationMark(280850, 2752650);
    panel.StartBlink(280855, 2752655);
    p.app.doc.MapChanged = tavik::kFalse;
    QVERIFY(p.cycle.Close());
    QVERIFY(!panel.Blinking());
    QCOMPARE(panel.Text("LabelStaName"), QString());
    QCOMPARE(p.frm.PanelText(2), QString());
    QCOMPARE(p.frm.LabelText("MAPtype"), QString());
    QCOMPARE(p.frm.LabelText("Label42"), QString("0"));
    dialogs.files = {(p.app.paths.WorkFolder() / "丁地.SPC").string()};
    p.cycle.New();
    const QImage& img = p.frm.Paper1()->Surface().Image();
    int blue = 0;
    for (int y = 0; y < img.height(); ++y)
      for (int x = 0; x < img.width(); ++x) blue += img.pixel(x, y) == qRgb(0, 0, 255);
    QCOMPARE(blue, 0);
  }

  void anglesInOneForm() {
    const std::pair<const char*, const char*> cases[] = {
        {"15-0-00", "15-00-00.00"},      {"15-00-00", "15-00-00.00"}, {"123-45-12.3", "123-45-12.30"},
        {"0-5-7", "0-05-07.00"},         {"", ""},                    {"測站A-1的高程為0", "測站A-1的高程為0"},
        {"A-1-2", "A-1-2"},              {"1234512", "1234512"}};
    for (const auto& [in, out] : cases) QCOMPARE(QString::fromStdString(MainFrm::AngleText(in)), QString(out));
  }

  void manualOpensFromTheToolsMenu() {
    QVERIFY2(!MainFrm::ManualPath().isEmpty(), "the manual is not beside the program nor in the source tree");
    MainFrm frm;
    frm.Command("MainMnuManual")->trigger();
    auto* dlg = frm.findChild<QDialog*>("Manual");
    QVERIFY(dlg);
    QCOMPARE(dlg->windowTitle(), QString("TAVIK操作手冊"));
    auto* text = dlg->findChild<QTextBrowser*>("ManualText");
    QVERIFY(text->toPlainText().contains("模擬器"));
    frm.Command("MainMnuManual")->trigger();  // a second call raises the same window
    QCOMPARE(frm.findChildren<QDialog*>("Manual").size(), 1);
  }

  void damagedScaleDoesNotBringTheWindowDown() {
    // A document whose scale is no usable number (as a damaged file may hold) goes
    // through save, reload and the view without ending the program.
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    p.app.paths.EnsureFolders();
    p.Start();
    for (double scale : {1e300, -5.0, 0.0, std::nan("")}) {
      dialogs.files = {(p.app.paths.WorkFolder() / "bad.SPC").string()};
      dialogs.answers = {tavik::ui::Answer::Yes};
      p.cycle.New();
      QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, 280850, 2752650, 5));
      p.app.doc.MapChanged = tavik::kTrue;
      p.app.doc.ScaleDenominator = scale;
      p.frm.Command("MainMnuSave")->trigger();
      QVERIFY(p.frm.PanelText(1).startsWith("1 :"));
      QVERIFY(p.cycle.Close());
    }
  }

  // The map view's side of the window: Toolbar1's buttons by their index, and scroll
  // bars that report the user's moves but not the program's own placing.
  void toolbarAndScrollBarsForTheView() {
    MainFrm frm;
    QToolBar* bar = frm.addToolBar("Toolbar1");
    QAction* zp = bar->addAction("前幕");
    zp->setObjectName("ZP");
    QAction* grid = bar->addAction("方格");
    grid->setObjectName("DispGrid");
    frm.SetToolbarButton(tavik::view::ButtonZoomPrevious, false);
    frm.SetToolbarToolTip(tavik::view::ButtonZoomPrevious, "前有0幕");
    QVERIFY(!zp->isEnabled());
    QCOMPARE(zp->toolTip(), QString("前有0幕"));
    frm.SetToolbarPressed(tavik::view::ButtonGrid, true);
    QVERIFY(grid->isChecked());
    frm.SetToolbarButton(99, false);  // no such button: nothing happens

    int moved = -1, done = 0;
    frm.handlers.HScroll = [&moved](int v) { moved = v; };
    frm.handlers.ScrollDone = [&done] { ++done; };
    frm.SetScrollBars(30, 70);
    auto* h = frm.findChild<QScrollBar*>("HScroll1");
    QCOMPARE(h->value(), 30);
    QCOMPARE(frm.findChild<QScrollBar*>("VScroll1")->value(), 70);
    QCOMPARE(moved, -1);
    h->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    QCOMPARE(moved, 31);
    QCOMPARE(done, 1);
  }

  void recentItemsSurviveARestart() {
    tavik::testing::TempHome home;
    const tavik::AppPaths paths{home.path};
    paths.EnsureFolders();
    const std::string name = (paths.WorkFolder() / "r").string();
    {
      tavik::ui::ScriptedDialogs dialogs;
      Program p(paths, &dialogs);
      p.Start();
      dialogs.files = {name + ".SPC"};
      p.cycle.New();
      QVERIFY(p.frm.close());
    }
    tavik::ui::ScriptedDialogs dialogs;
    Program p(paths, &dialogs);
    p.Start();
    QVERIFY(p.frm.Command("mnuFileItem(1)")->isVisible());
    QCOMPARE(p.frm.Command("mnuFileItem(1)")->data().toString(), QString::fromStdString(name));
    QVERIFY(!p.frm.Command("mnuFileItem(2)")->isVisible());
    p.frm.Command("mnuFileClear")->trigger();
    QVERIFY(!p.frm.Command("mnuFileItem(1)")->isVisible());
  }
};

QTEST_MAIN(MainFrmTest)
#include "mainfrm_test.moc"
