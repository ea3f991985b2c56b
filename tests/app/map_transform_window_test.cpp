// The whole-map transforms from the tools menu on the real window, offscreen: a shift
// typed in the dialog, a fit whose residuals are shown before 確定 applies it, and the
// undo of the menu.
#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>
#include <functional>

#include "app/edit_wiring.h"
#include "app/maptransformdlg.h"
#include "app/program.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"
#include "view/navigation.h"

class MapTransformWindowTest : public QObject {
  Q_OBJECT

  // Runs `step` on the dialog the menu item has opened beside the map, then closes it.
  static void WithDialog(MapTransformStation& station, QAction* item,
                         const std::function<void(MapTransformDlg&)>& step) {
    item->trigger();
    MapTransformDlg* dlg = station.Dialog();
    QVERIFY(dlg && dlg->isVisible());
    step(*dlg);
    if (dlg->isVisible()) dlg->reject();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!station.Dialog());
  }

 private slots:
  void shiftFitAndUndo() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    MapTransformStation station(p, w);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "轉換.SPC").string()};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    auto& doc = p.app.doc;
    const double at[][2] = {{280000, 2750000}, {280100, 2750000}, {280100, 2750100}};
    for (const auto& c : at)
      QVERIFY(tavik::AddPoint(doc, p.app.view, p.app.work, c[0], c[1], 10));

    QAction* open = p.frm.findChild<QAction*>("MainMnuTransform");
    QAction* undo = p.frm.findChild<QAction*>("MainMnuTransformUndo");
    QVERIFY(open && undo && open->isVisible() && p.frm.Menu("MainMnuU")->menuAction()->isVisible());

    WithDialog(station, open, [](MapTransformDlg& d) {
      QVERIFY(!d.findChild<QPushButton*>("Compute")->isEnabled());
      d.findChild<QLineEdit*>("dE")->setText("1.5");
      d.findChild<QLineEdit*>("dH")->setText("-2");
      QTest::mouseClick(d.findChild<QPushButton*>("OK"), Qt::LeftButton);
    });
    QCOMPARE(doc.PointTable[1].E, 280101.5);
    QCOMPARE(doc.PointTable[1].H, 8.0);
    QCOMPARE(int(doc.MapChanged), int(tavik::kTrue));

    // Fit three points back by 1.5 m, one target 2 cm off: the first 確定 shows the
    // residuals, the second applies.
    QString shown;
    WithDialog(station, open, [&shown](MapTransformDlg& d) {
      d.findChild<QTabWidget*>()->setCurrentIndex(2);
      d.SetPair(0, "A", 280001.5, 2750000, 280000, 2750000);
      d.SetPair(1, "B", 280101.5, 2750000, 280100.02, 2750000);
      d.SetPair(2, "C", 280101.5, 2750100, 280100, 2750100);
      QTest::mouseClick(d.findChild<QPushButton*>("OK"), Qt::LeftButton);
      QVERIFY(d.isVisible());
      shown = d.ResultText();
      QTest::mouseClick(d.findChild<QPushButton*>("OK"), Qt::LeftButton);
      QVERIFY(!d.isVisible());
    });
    QVERIFY2(shown.contains("相似轉換") && shown.contains("*最大") && shown.contains("RMS"), qPrintable(shown));
    QVERIFY(std::abs(doc.PointTable[0].E - 280000) < 0.02);

    // One undo takes back the fit exactly; the shift stays.
    undo->trigger();
    QCOMPARE(doc.PointTable[1].E, 280101.5);
    undo->trigger();
    QCOMPARE(dialogs.shown.back().text, std::string(tavik::edit::TransformUndoNoneMessage));

    // Too few pairs: refused with the message, nothing applied.
    WithDialog(station, open, [](MapTransformDlg& d) {
      d.findChild<QTabWidget*>()->setCurrentIndex(2);
      d.SetPair(0, "A", 1, 2, 3, 4);
      QTest::mouseClick(d.findChild<QPushButton*>("OK"), Qt::LeftButton);
      QVERIFY(d.isVisible());
    });
    QCOMPARE(dialogs.shown.back().text, std::string(tavik::edit::FitTooFewMessage));
    QCOMPARE(doc.PointTable[1].E, 280101.5);

    // Pairs picked on the map while the dialog stays open: a survey point, then a target
    // where nothing is to snap to; Esc ends the picking.
    WithDialog(station, open, [&p](MapTransformDlg& d) {
      d.findChild<QTabWidget*>()->setCurrentIndex(2);
      QTest::mouseClick(d.findChild<QPushButton*>("PickPairs"), Qt::LeftButton);
      QCOMPARE(QString::fromStdString(p.edit->Editor().Ptr.ActionMode), QString("MapMoveBmByP"));
      tavik::view::ZE(p.edit->Canvas());
      QWidget* paper = p.frm.Paper1();
      QTest::mouseClick(paper, Qt::LeftButton, {}, PaperPoint(p, 280101.5, 2750000) + QPoint(1, 1));
      QTest::mouseClick(paper, Qt::LeftButton, {}, PaperPoint(p, 280060, 2750040) + QPoint(1, 1));
      auto* table = d.findChild<QTableWidget*>("Pairs");
      QCOMPARE(table->item(0, 1)->text(), QString("280101.500"));
      QVERIFY(std::abs(table->item(0, 3)->text().toDouble() - 280060) < 1);
      QVERIFY(d.isVisible());
      QTest::keyClick(paper, Qt::Key_Escape);
      QCOMPARE(QString::fromStdString(p.edit->Editor().Ptr.ActionMode), QString());
    });
  }
};

QTEST_MAIN(MapTransformWindowTest)
#include "map_transform_window_test.moc"
