// The pen on the real window, offscreen: a rectangle drawn with the mouse, deleted,
// undeleted, saved and read back.
#include <QAction>
#include <QDialog>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableWidget>
#include <QToolBar>
#include <QtTest>
#include <filesystem>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class EditWindowTest : public QObject {
  Q_OBJECT

  static int LiveLines(const tavik::Document& doc) {
    int n = 0;
    for (const auto& e : doc.EntityTable) n += !e.Deleted && e.Kind == tavik::KindLine;
    return n;
  }
  // The widget position of a world point.
  static QPoint At(Program& p, EditWiring&, double E, double N) { return PaperPoint(p, E, N); }
  // True when the window shows the yellow of a rubber band within a pixel of q.
  static bool YellowNear(QWidget* paper, QPoint q) {
    const QImage shown = paper->grab().toImage();
    for (int dx = -1; dx <= 1; ++dx)
      for (int dy = -1; dy <= 1; ++dy)
        if (shown.pixelColor(q + QPoint(dx, dy)) == QColor(255, 255, 0)) return true;
    return false;
  }

 private slots:
  void rectangleDrawnDeletedUndeletedSavedAndReopened() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    const std::string name = (p.app.paths.WorkFolder() / "乙地").string();
    dialogs.files = {name + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());

    // Three surveyed points near the centre of the view.
    const double cE = p.app.doc.ViewCentreE, cN = p.app.doc.ViewCentreN;
    const double pts[3][2] = {{cE - 4, cN - 3}, {cE + 4, cN - 3}, {cE + 4, cN + 3}};
    for (const auto& q : pts) QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, q[0], q[1], 10));
    p.frm.RedrawPaper();
    PaperWidget* paper = p.frm.Paper1();

    p.app.doc.CurrentLegend = 407;
    QAction* rect = w.Toolbar2()->findChild<QAction*>("RECT");
    QVERIFY(rect);
    rect->trigger();
    for (const auto& q : pts) QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, At(p, w, q[0], q[1]));
    QCOMPARE(LiveLines(p.app.doc), 4);
    QVERIFY(dialogs.Messages().empty());

    // Delete the bottom edge, then bring it back with U.
    w.Toolbar2()->findChild<QAction*>("EraseEntity")->trigger();
    QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, At(p, w, cE, cN - 3));
    QCOMPARE(LiveLines(p.app.doc), 3);
    QTest::keyClick(paper, Qt::Key_U);
    QCOMPARE(LiveLines(p.app.doc), 4);

    // The picture shows the wall in its colour where the bottom edge runs.
    p.frm.RedrawPaper();
    const QImage img = paper->Surface().Image();
    const QPoint mid = At(p, w, cE, cN - 3);
    bool inked = false;
    for (int dy = -2; dy <= 2; ++dy) inked |= img.pixelColor(mid.x(), mid.y() + dy) != QColor(Qt::white);
    QVERIFY(inked);
    if (qEnvironmentVariableIsSet("TAVIK_SCREENSHOT")) img.save(qEnvironmentVariable("TAVIK_SCREENSHOT"));

    // A window drawn and cancelled leaves the picture exactly as it was: the rubber
    // rectangle is drawn in yellow over the picture, never into it, and stays there
    // through a repaint.
    w.Toolbar2()->findChild<QAction*>("EraseWindow")->trigger();
    dialogs.answers = {tavik::ui::Answer::Cancel};
    const QPoint a = At(p, w, cE - 6, cN - 5), b = At(p, w, cE + 1, cN + 1);
    QTest::mousePress(paper, Qt::LeftButton, Qt::NoModifier, a);
    QTest::mouseMove(paper, (a + b) / 2);
    QVERIFY(paper->Surface().Image() == img);
    QVERIFY(YellowNear(paper, a));
    p.frm.RedrawPaper();
    QVERIFY(YellowNear(paper, a));
    QTest::mouseMove(paper, b);
    QTest::mouseRelease(paper, Qt::LeftButton, Qt::NoModifier, b);
    QCOMPARE(dialogs.shown.back().title, std::string("刪除窗選資料"));
    QVERIFY(paper->Surface().Image() == img);
    QCOMPARE(LiveLines(p.app.doc), 4);

    QTest::keyClick(paper, Qt::Key_F2);  // the quick save
    QVERIFY(std::filesystem::exists(name + ".SPC"));
    QVERIFY(p.cycle.Close());
    QVERIFY(!p.app.doc.IsOpen());
    p.cycle.OpenFile(name + ".SPC");
    QVERIFY(p.app.doc.IsOpen());
    QCOMPARE(LiveLines(p.app.doc), 4);
    QCOMPARE(p.app.doc.EntityTable[0].Code, int16_t(407));
    QCOMPARE(p.app.doc.PointCount, 3);
    QVERIFY(p.app.doc.UndeleteStack.empty());
  }

  // A small map drawn by pen through the window: a closed wall, a circle, an arc, a
  // numbered pole, a note and a midpoint. TAVIK_SCREENSHOT2 keeps its picture.
  void aSmallMapByPen() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "丙地").string() + ".SPC"};
    p.cycle.New();
    const double cE = p.app.doc.ViewCentreE, cN = p.app.doc.ViewCentreN;
    const double pts[][2] = {{-8, -4}, {0, -4}, {0, 3}, {-8, 3}, {4, 0}, {6, 0}, {3, -5}, {6, -2}, {9, -5}};
    for (const auto& q : pts) QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, cE + q[0], cN + q[1], 5));
    p.frm.RedrawPaper();
    PaperWidget* paper = p.frm.Paper1();
    auto click = [&](int k) {
      QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, At(p, w, cE + pts[k][0], cN + pts[k][1]));
    };
    auto tool = [&](const char* key) { w.Toolbar2()->findChild<QAction*>(key)->trigger(); };

    QTest::keyClick(paper, Qt::Key_J);  // 407 圍牆
    QCOMPARE(p.app.doc.CurrentLegend, int16_t(407));
    tool("Line");
    for (int k = 0; k < 4; ++k) click(k);
    QTest::mouseMove(paper, At(p, w, cE - 4, cN));
    QTest::keyClick(paper, Qt::Key_R);  // a repaint keeps the band from the last vertex
    QVERIFY(YellowNear(paper, At(p, w, cE - 6, cN + 1.5)));
    QTest::keyClick(paper, Qt::Key_C);  // closes the chain
    QCOMPARE(p.app.doc.EntityCount, 4);
    QCOMPARE(w.Editor().Ptr.LineInProgress, tavik::kFalse);

    QTest::keyClick(paper, Qt::Key_H);  // 301 建物
    tool("P2C");
    click(4);
    click(5);
    tool("ARC");
    click(6);
    click(7);
    click(8);
    QTest::keyClick(paper, Qt::Key_Escape);  // ends the arc command: a pole is no arc
    QCOMPARE(w.Editor().Ptr.ActionMode, std::string());
    QTest::keyClick(paper, Qt::Key_O);  // 605 電力桿
    tool("Symbol");
    dialogs.inputs = {"A12"};
    click(5);
    tool("Text");
    dialogs.inputs = {"甲地"};
    QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, At(p, w, cE - 6, cN));
    w.Editor().StartCommand("NP_MidOf");
    QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, At(p, w, cE - 4, cN - 4));
    QCOMPARE(p.app.doc.PointCount, 10);
    // Lines 4, circle and its label, arc, pole, note.
    QCOMPARE(p.app.doc.EntityCount, 9);
    QVERIFY(dialogs.Messages().empty());

    // The toolbar shows the mode pressed; a refused legend leaves nothing pressed.
    p.app.doc.CurrentLegend = 301;
    tool("RECT");
    QVERIFY(w.Toolbar2()->findChild<QAction*>("RECT")->isChecked());
    p.app.doc.CurrentLegend = 110;
    tool("Line");
    QCOMPARE(dialogs.Messages().back(), std::string("目前圖例不能畫線"));
    QVERIFY(!w.Toolbar2()->findChild<QAction*>("Line")->isChecked());
    QVERIFY(w.Toolbar2()->findChild<QAction*>("RECT")->isChecked());
    QTest::keyClick(paper, Qt::Key_Escape);  // ends it, and the button is up again
    QVERIFY(!w.Toolbar2()->findChild<QAction*>("RECT")->isChecked());
    QAction* lead = w.Toolbar1()->findChild<QAction*>("手動引點");
    lead->trigger();  // the lead point waits for its pick, pressed; a second press ends it
    QVERIFY(lead->isChecked());
    QCOMPARE(w.Editor().Ptr.ActionMode, std::string("SS1"));
    lead->trigger();
    QVERIFY(!lead->isChecked());
    QCOMPARE(w.Editor().Ptr.ActionMode, std::string());

    // The keyed angle asks the window for the measure mode: in GPS mode it needs a fix,
    // which no receiver gives here.
    p.instruments.inst.MeasureMode = "GPS";
    w.Toolbar1()->findChild<QAction*>("輸入角度")->trigger();
    QCOMPARE(dialogs.Messages().back(), std::string("請先進入接收資料狀態"));
    p.instruments.inst.MeasureMode = "TS";
    w.Toolbar1()->findChild<QAction*>("輸入角度")->trigger();
    QCOMPARE(dialogs.Messages().back(), std::string("請先擺站"));
    // The notes by menu check the legend as their buttons do.
    p.app.doc.CurrentLegend = 407;
    p.frm.findChild<QAction*>("MainMnuSymb")->trigger();
    QCOMPARE(dialogs.Messages().back(), std::string("目前圖例不能做[實物註記]"));

    // The hot-key window shows every row and every column whole, with no scrolling.
    w.ShowHotKeys();
    auto* keys = p.frm.findChild<QDialog*>("HotKeys");
    QVERIFY(keys && QTest::qWaitForWindowExposed(keys));
    const auto tables = keys->findChildren<QTableWidget*>();
    QCOMPARE(tables.size(), 2);
    for (QTableWidget* t : tables) {
      QVERIFY(!t->verticalScrollBar()->isVisible());
      for (int r = 0; r < t->rowCount(); ++r)
        for (int c = 0; c < t->columnCount(); ++c)
          QVERIFY(t->fontMetrics().horizontalAdvance(t->item(r, c)->text()) < t->columnWidth(c));
      QVERIFY(t->visualItemRect(t->item(t->rowCount() - 1, 0)).bottom() < t->viewport()->height());
    }
    keys->close();

    p.frm.RedrawPaper();
    if (qEnvironmentVariableIsSet("TAVIK_SCREENSHOT2"))
      paper->Surface().Image().save(qEnvironmentVariable("TAVIK_SCREENSHOT2"));
  }
};

QTEST_MAIN(EditWindowTest)
#include "edit_window_test.moc"
