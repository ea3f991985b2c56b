// The land split on the real window, offscreen: a cadastral map read as the reference
// map from the file menu, a parcel traced on it with the mouse, a cut by area and its
// commit.
#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

#include "app/edit_wiring.h"
#include "app/frmlandsplit.h"
#include "app/program.h"
#include "core/docfile.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class LandSplitWindowTest : public QObject {
  Q_OBJECT

  // The widget position of a world point.
  static QPoint At(Program& p, double E, double N) { return PaperPoint(p, E, N); }

 private slots:
  void parcelTracedCutAndCommitted() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    LandSplitStation station(p, w);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();

    // The cadastral map: a block of two parcels, 100 by 100 and 60 by 100.
    const std::string ref = (p.app.paths.WorkFolder() / "地籍圖.SPC").string();
    {
      tavik::WorkFiles wf(tavik::AppPaths{home.path / "ref"});
      std::filesystem::create_directories(home.path / "ref");
      tavik::View v;
      tavik::Document d;
      tavik::SetDocumentName(d, ref.substr(0, ref.size() - 4));
      const double c[][4] = {{280000, 2750000, 280100, 2750000}, {280100, 2750000, 280100, 2750100},
                             {280100, 2750100, 280000, 2750100}, {280000, 2750100, 280000, 2750000},
                             {280100, 2750000, 280160, 2750000}, {280160, 2750000, 280160, 2750100},
                             {280160, 2750100, 280100, 2750100}};
      for (const auto& l : c) tavik::AddEntity(d, v, wf, 1, tavik::KindLine, l[0], l[1], 0, l[2], l[3], 0, 0, 0, 0, "");
      QVERIFY(tavik::SaveDocument(d, wf, dialogs));
    }
    // Refused while no document is open: the item is greyed.
    dialogs.files = {(p.app.paths.WorkFolder() / "分割.SPC").string()};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    dialogs.files = {ref};
    QAction* reference = p.frm.findChild<QAction*>("MainMnuReference");
    QVERIFY(reference);
    reference->trigger();
    QCOMPARE(int(p.app.doc.ReferenceMapLoaded), int(tavik::kTrue));
    QCOMPARE(p.app.doc.ReferenceEntityCount, 7);
    reference->trigger();  // a second one is refused with a message
    QCOMPARE(dialogs.shown.back().title, std::string("讀入參考圖"));
    p.frm.RedrawPaper();

    QAction* splitItem = p.frm.findChild<QAction*>("MainMnuSplit");
    QVERIFY(splitItem && splitItem->isVisible());
    splitItem->trigger();
    frmLandSplit* dlg = station.Dialog();
    QVERIFY(dlg && dlg->isVisible());
    QVERIFY(dlg->windowFlags() & Qt::WindowStaysOnTopHint);
    QCOMPARE(dlg->pos(), QPoint(100, 125));

    // Trace the west parcel with the mouse, a few pixels off each corner.
    QTest::mouseClick(dlg->findChild<QPushButton*>("Command1"), Qt::LeftButton);
    QCOMPARE(w.Editor().Ptr.ActionMode, std::string("LD"));
    PaperWidget* paper = p.frm.Paper1();
    const double corners[][2] = {{280000, 2750000}, {280100, 2750000}, {280100, 2750100}, {280000, 2750100}, {280000, 2750000}};
    for (const auto& c : corners) QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, At(p, c[0], c[1]) + QPoint(3, -2));
    QCOMPARE(w.Editor().Ptr.ActionMode, std::string());
    QVERIFY(dlg->isVisible());
    QCOMPARE(dlg->findChild<QLabel*>("Label1")->text(), QString("界樁4支,\n面積10000.0000㎡"));

    // 2500 m² to the east, then commit.
    dlg->Text1()->setFocus();
    QTest::keyClicks(dlg->Text1(), "2500");
    QTest::keyClick(dlg->Text1(), Qt::Key_Return);
    QCOMPARE(dlg->Text3()->text(), QString("7500.0000"));
    QTest::mouseClick(dlg->Option(4), Qt::LeftButton);
    QVERIFY(dlg->Option(4)->isChecked());
    QVERIFY(std::abs(p.app.doc.SplitLine[0] - 280075) < 1e-5);
    QVERIFY(std::abs(p.app.doc.SplitLine[2] - 280075) < 1e-5);
    if (qEnvironmentVariableIsSet("TAVIK_SCREENSHOT")) p.frm.grab().save(qEnvironmentVariable("TAVIK_SCREENSHOT"));
    const int entities = p.app.doc.EntityCount;
    QTest::mouseClick(dlg->findChild<QPushButton*>("cmdApply"), Qt::LeftButton);
    QTRY_VERIFY(station.Dialog() == nullptr);
    QCOMPARE(p.app.doc.EntityCount, entities + 4 + 2);
    QCOMPARE(p.app.doc.PointCount, 2);
    QCOMPARE(p.app.doc.EntityTable.back().Code, int16_t(266));
  }
};

QTEST_MAIN(LandSplitWindowTest)
#include "land_split_window_test.moc"
