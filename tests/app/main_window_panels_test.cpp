// The main window's panels on the real window: the display settings take effect on
// Paper1 at once and are remembered; the toolbar buttons show the mode in force however
// it changed; the station panel shows the station a reopened document holds.
#include <QAction>
#include <QApplication>
#include <QStatusBar>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMenu>
#include <QTimer>
#include <QToolBar>
#include <QtTest>

#include "app/edit_wiring.h"
#include "app/frmdispsetup.h"
#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "paper_point.h"
#include "platform/scripted/scripted.h"

namespace {

struct Rig {
  tavik::testing::TempHome home;
  tavik::ui::ScriptedDialogs dialogs;
  Program p{tavik::AppPaths{home.path}, &dialogs};
  EditWiring w{p};
  std::string name;

  Rig() {
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    name = (p.app.paths.WorkFolder() / "顯示").string();
    dialogs.files = {name + ".SPC"};
    p.cycle.New();
    // A document with nothing in it does not open again.
    tavik::AddPoint(p.app.doc, p.app.view, p.app.work, p.app.doc.ViewCentreE + 20, p.app.doc.ViewCentreN + 20, 1);
  }

  // The pressed buttons of both toolbars that stand for a pointer mode (the display
  // switches have their own state).
  QStringList Pressed() const {
    QStringList out;
    for (QToolBar* bar : {w.Toolbar1(), w.Toolbar2()})
      for (QAction* a : bar->actions()) {
        bool unused;
        if (a->isChecked() && !tavik::view::ToggleState(const_cast<EditWiring&>(w).Canvas().display,
                                                         a->objectName().toStdString(), unused))
          out << a->objectName();
      }
    return out;
  }
  void Tool(const char* key) {
    QAction* a = w.Toolbar1()->findChild<QAction*>(key);
    if (!a) a = w.Toolbar2()->findChild<QAction*>(key);
    QVERIFY2(a, key);
    a->trigger();
  }
};

QColor Pixel(const Program& p, double E, double N) {
  return p.frm.Paper1()->Surface().Image().pixelColor(PaperPoint(p, E, N));
}

}  // namespace

class MainWindowPanelsTest : public QObject {
  Q_OBJECT

 private slots:
  void displaySettingsTakeEffectAtOnceAndAreRemembered() {
    Rig r;
    Program& p = r.p;
    const double cE = p.app.doc.ViewCentreE, cN = p.app.doc.ViewCentreN;
    QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, cE, cN, 5));
    p.frm.RedrawPaper();
    QCOMPARE(Pixel(p, cE + 2, cN), QColor(Qt::white));
    const QColor mark = Pixel(p, cE, cN);
    QVERIFY(mark != QColor(Qt::white));

    QAction* command = p.frm.findChild<QAction*>("MainMnuDispSetup");
    QVERIFY(command && command->isVisible());
    QVERIFY(p.frm.Menu("MainMnuSetup")->actions().contains(command));
    // The dialog as a user fills it: marks off, grid on, larger texts and a dark paper.
    QTimer::singleShot(0, [&] {
      auto* dlg = p.frm.findChild<FrmDispSetup*>("FrmDispSetup");
      QVERIFY(dlg);
      dlg->findChild<QCheckBox*>("chkMarks")->setChecked(false);
      dlg->findChild<QCheckBox*>("chkGrid")->setChecked(true);
      dlg->findChild<QCheckBox*>("chkStakeLastObserved")->setChecked(true);
      dlg->findChild<QDoubleSpinBox*>("txtTextScale")->setValue(2);
      dlg->findChild<QDoubleSpinBox*>("txtLineScale")->setValue(3);
      dlg->SetBackground(tavik::ui::MakeRgb(0, 32, 64));
      dlg->accept();
    });
    command->trigger();
    const QColor dark(0, 32, 64);
    QCOMPARE(Pixel(p, cE + 2, cN), dark);
    QCOMPARE(Pixel(p, cE, cN), dark);  // no mark
    QVERIFY(r.w.Toolbar1()->findChild<QAction*>("DispGrid")->isChecked());
    QCOMPARE(p.survey->survey.StakeLastObserved, tavik::kTrue);  // the stake-out may pick it now

    // Cancel changes nothing.
    QTimer::singleShot(0, [&] {
      auto* dlg = p.frm.findChild<FrmDispSetup*>("FrmDispSetup");
      QVERIFY(dlg);
      dlg->findChild<QCheckBox*>("chkMarks")->setChecked(true);
      dlg->reject();
    });
    command->trigger();
    QCOMPARE(Pixel(p, cE, cN), dark);

    // Kept in Software.ini and the settings store, and back at the next start.
    QVERIFY(p.cycle.Close());
    QVERIFY(p.frm.close());
    Program again(tavik::AppPaths{r.home.path}, &r.dialogs);
    EditWiring w(again);
    again.Start();
    const tavik::view::Display& d = w.Canvas().display;
    QCOMPARE(d.ShowPointMarks, false);
    QCOMPARE(d.GridOn, true);
    QCOMPARE(d.TextScale, 2.0);
    QCOMPARE(d.LineWidthScale, 3.0);
    QCOMPARE(d.Background, tavik::ui::MakeRgb(0, 32, 64));
    QCOMPARE(again.app.ini.PointMarkStyle, int16_t{1});
    QVERIFY(w.Toolbar1()->findChild<QAction*>("DispGrid")->isChecked());
  }

  // Each way a mode changes leaves exactly its button pressed, or none.
  void toolbarButtonsFollowTheMode() {
    Rig r;
    PaperWidget* paper = r.p.frm.Paper1();
    const QStringList none;
    r.Tool("Line");
    QCOMPARE(r.Pressed(), QStringList{"Line"});
    r.Tool("EraseP");  // another command takes over
    QCOMPARE(r.Pressed(), QStringList{"EraseP"});
    r.Tool("EraseP");  // a second press ends it
    QCOMPARE(r.Pressed(), none);
    r.Tool("ZW");
    QCOMPARE(r.Pressed(), QStringList{"ZW"});
    QTest::keyClick(paper, Qt::Key_Escape);
    QCOMPARE(r.Pressed(), none);
    r.Tool("手動引點");
    QCOMPARE(r.Pressed(), QStringList{"手動引點"});
    r.p.frm.findChild<QAction*>("MainMnu_MidOf")->trigger();  // a menu command has no button
    QCOMPARE(r.Pressed(), none);
    // A finished window zoom.
    r.Tool("ZW");
    const double cE = r.p.app.doc.ViewCentreE, cN = r.p.app.doc.ViewCentreN;
    const QPoint a = PaperPoint(r.p, cE - 5, cN - 5), b = PaperPoint(r.p, cE + 5, cN + 5);
    QTest::mousePress(paper, Qt::LeftButton, Qt::NoModifier, a);
    QTest::mouseMove(paper, b);
    QTest::mouseRelease(paper, Qt::LeftButton, Qt::NoModifier, b);
    QCOMPARE(r.p.app.doc.IsOpen(), true);
    QCOMPARE(r.Pressed(), none);
    // Closing and opening a document end the command in force.
    r.p.cycle.Save();
    r.Tool("Line");
    QVERIFY(r.p.cycle.Close());
    QCOMPARE(r.Pressed(), none);
    r.p.cycle.OpenFile(r.name + ".SPC");
    QVERIFY(r.p.app.doc.IsOpen());
    r.Tool("RECT");
    QCOMPARE(r.Pressed(), QStringList{"RECT"});
    r.p.cycle.Save();
    QCOMPARE(r.Pressed(), none);
  }

  // At the tablet's 1366 x 768 and at 1920 x 1080, with the program's font, every
  // status panel shows its widest usual text whole, and a long prompt fits beside them.
  void statusPanelsReadable_data() {
    QTest::addColumn<QSize>("screen");
    QTest::newRow("tablet") << QSize(1366, 768);
    QTest::newRow("desktop") << QSize(1920, 1080);
  }
  void statusPanelsReadable() {
    QFETCH(QSize, screen);
    QApplication::setFont(QFont("WenQuanYi Zen Hei", 10));
    Rig r;
    MainFrm& frm = r.p.frm;
    frm.resize(screen);
    frm.SetPanel(1, "1 :100000");
    frm.SetReadout("2752650.000", "2752650.000");
    for (int k : {4, 5, 6, 7}) frm.SetPanel(k, std::string(k % 2 ? "圖元 " : "測點 ") + "99999");
    frm.SetPanel(10, "底圖數目: 99999");
    const QString prompt = "選點順序:先點選工作圖的兩點,再點選底圖上對應的兩點.";
    frm.SetPrompt(prompt.toStdString());
    QApplication::processEvents();
    int used = 0;
    for (QLabel* l : frm.statusBar()->findChildren<QLabel*>()) {
      if (!l->isVisible() || !l->objectName().startsWith("Panel")) continue;
      QVERIFY2(l->contentsRect().width() >= l->fontMetrics().horizontalAdvance(l->text()),
               qPrintable(l->objectName() + " " + l->text()));
      used += l->width();
    }
    QVERIFY(frm.statusBar()->width() - used >= frm.statusBar()->fontMetrics().horizontalAdvance(prompt) + 20);
  }

  void stationPanelAfterReopening() {
    Rig r;
    tavik::Document& doc = r.p.app.doc;
    doc.StationName = "S1";
    doc.StationSet = tavik::kTrue;
    doc.StationH = 12.5;
    doc.InstrumentHeight = 1.45;
    r.p.cycle.Save();
    QVERIFY(r.p.cycle.Close());
    SurveyPanel* panel = r.p.survey->panel();
    QCOMPARE(panel->Text("LabelStaName"), QString());
    r.p.cycle.OpenFile(r.name + ".SPC");
    QVERIFY(doc.IsOpen());
    QCOMPARE(panel->Text("LabelStaName"), QString("S1"));
    QCOMPARE(panel->Text("LabelSZ"), QString("12.500"));
    QCOMPARE(panel->Text("LabelIH"), QString("1.450"));
  }
};

QTEST_MAIN(MainWindowPanelsTest)
#include "main_window_panels_test.moc"
