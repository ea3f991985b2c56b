// Editing lines with the mouse on the real window, offscreen: two lines trimmed to their
// crossing from the edit menu, then one lengthened through the right-click popup.
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class LineEditWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void trimThenLengthenThroughThePopup() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "丙地").string() + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    auto& doc = p.app.doc;
    const double cE = doc.ViewCentreE, cN = doc.ViewCentreN;
    QVERIFY(tavik::AddEntity(doc, p.app.view, p.app.work, 301, tavik::KindLine, cE - 5, cN, 0, cE + 5, cN, 0, 0, 0, 0, ""));
    QVERIFY(tavik::AddEntity(doc, p.app.view, p.app.work, 301, tavik::KindLine, cE + 2, cN - 4, 0, cE + 2, cN + 4, 0, 0,
                             0, 0, ""));
    p.frm.RedrawPaper();
    PaperWidget* paper = p.frm.Paper1();

    QAction* trim = p.frm.findChild<QAction*>("MainMnuTrim");
    QVERIFY(trim);
    trim->trigger();
    QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, PaperPoint(p, cE - 3, cN));
    QTest::mouseClick(paper, Qt::LeftButton, Qt::NoModifier, PaperPoint(p, cE + 2, cN + 2));
    const tavik::Entity& a = doc.EntityTable[0];
    const tavik::Entity& b = doc.EntityTable[1];
    QCOMPARE(a.X[1], cE + 2);
    QCOMPARE(b.Y[0], cN);
    QCOMPARE(b.Y[1], cN + 4);
    // The cut-off part of the bar is gone from the picture.
    const QPoint gone = PaperPoint(p, cE + 4, cN);
    const QImage img = paper->Surface().Image();
    for (int dy = -2; dy <= 2; ++dy) QCOMPARE(img.pixelColor(gone.x(), gone.y() + dy), QColor(Qt::white));
    QTest::keyClick(paper, Qt::Key_Escape);

    // Right-click the bar, choose 編輯線段..., type a length of 20 and accept.
    bool edited = false;
    QTimer::singleShot(100, [&] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      QVERIFY(menu);
      QAction* item = menu->findChild<QAction*>("InquiryEditLine");
      QVERIFY(item);
      QTimer::singleShot(100, [&] {
        auto* dlg = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        QVERIFY(dlg && dlg->objectName() == "LineEdit");
        dlg->findChild<QLineEdit*>("LineLength")->setText("20");
        dlg->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        edited = true;
      });
      menu->setActiveAction(item);
      QTest::keyClick(menu, Qt::Key_Return);
    });
    QTest::mouseClick(paper, Qt::RightButton, Qt::NoModifier, PaperPoint(p, cE - 3, cN));
    QTRY_VERIFY(edited);
    QVERIFY(qAbs(a.X[1] - (cE + 15)) < 1e-6);
    QVERIFY(qAbs(a.Y[1] - cN) < 1e-6);
    QCOMPARE(a.X[0], cE - 5);
    QVERIFY(dialogs.Messages().empty());

    // One undo puts the trimmed bar back as it was before the popup.
    p.frm.findChild<QAction*>("MainMnuEditUndo")->trigger();
    QCOMPARE(a.X[1], cE + 2);
  }
};

QTEST_MAIN(LineEditWindowTest)
#include "line_edit_window_test.moc"
