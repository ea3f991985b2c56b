// MainFrm as the map view's window side: Toolbar1 buttons by index, the scroll bars,
// and Paper1 shifted by the pan's fast path.
#include <QAction>
#include <QScrollBar>
#include <QTest>
#include <QToolBar>

#include "app/mainfrm.h"

class MainFrmViewUiTest : public QObject {
  Q_OBJECT
 private slots:
  void ToolbarButtonsByIndex() {
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
    frm.SetToolbarPressed(tavik::view::ButtonGrid, false);
    QVERIFY(!grid->isChecked());
    frm.SetToolbarButton(99, false);  // no such button: nothing happens
  }
  void ScrollBarsReportOnlyTheUsersMoves() {
    MainFrm frm;
    int moved = -1, done = 0;
    frm.handlers.HScroll = [&moved](int v) { moved = v; };
    frm.handlers.ScrollDone = [&done] { ++done; };
    frm.SetScrollBars(30, 70);
    auto* h = frm.findChild<QScrollBar*>("HScroll1");
    auto* v = frm.findChild<QScrollBar*>("VScroll1");
    QVERIFY(h && v);
    QCOMPARE(h->value(), 30);
    QCOMPARE(v->value(), 70);
    QCOMPARE(moved, -1);
    h->triggerAction(QAbstractSlider::SliderSingleStepAdd);
    QCOMPARE(moved, 31);
    QCOMPARE(done, 1);
  }
};

QTEST_MAIN(MainFrmViewUiTest)
#include "mainfrm_view_ui_test.moc"
