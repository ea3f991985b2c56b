// The legend picker: nine tabs of the picker's codes, a press sets CurrentLegend, the
// short form only takes 235 and 201, and LegendButton refuses while a command runs.
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QToolBar>

#include "app/legmenu.h"
#include "platform/scripted/scripted.h"
#include "view/legends.h"

class LegMenuTest : public QObject {
  Q_OBJECT
 private slots:
  void TabsAndButtons() {
    tavik::Document doc;
    LegMenu menu(nullptr, doc);
    QCOMPARE(menu.windowTitle(), QString("九大地類--圖例選單"));
    auto* tabs = menu.findChild<QTabWidget*>("SSTab1");
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 9);
    QCOMPARE(menu.findChildren<QPushButton*>(QRegularExpression("^Btn")).size(),
             static_cast<qsizetype>(tavik::view::MenuCodes().size()));
    auto* tree = menu.findChild<QPushButton*>("Btn700_707");
    QVERIFY(tree);
    QCOMPARE(tree->text(), QString("獨立樹"));
    int16_t told = 0;
    menu.OnPicked = [&told](int16_t c) { told = c; };
    QTest::mouseClick(tree, Qt::LeftButton);
    QCOMPARE(doc.CurrentLegend, static_cast<int16_t>(707));
    QCOMPARE(told, static_cast<int16_t>(707));

    // Every tab in sight at once, and on every page one grid of equal buttons (to the
    // pixel the layout gives the odd cell when it shares out the width).
    menu.show();
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    QTabBar* bar = tabs->tabBar();
    QVERIFY(bar->tabRect(8).right() <= bar->width());
    QSize size;
    for (int t = 0; t < tabs->count(); ++t) {
      tabs->setCurrentIndex(t);
      QCoreApplication::processEvents();
      for (auto* b : tabs->widget(t)->findChildren<QPushButton*>()) {
        if (!size.isValid()) size = b->size();
        QVERIFY2(std::abs(b->width() - size.width()) <= 1 && b->height() == size.height(),
                 qPrintable(b->objectName()));
      }
    }
  }
  void ShortFormTakesOnlyTwoCodes() {
    tavik::Document doc;
    LegMenu menu(nullptr, doc, true);
    QTest::mouseClick(menu.findChild<QPushButton*>("Btn300_310"), Qt::LeftButton);
    QCOMPARE(doc.CurrentLegend, static_cast<int16_t>(301));
    QTest::mouseClick(menu.findChild<QPushButton*>("Btn200_235"), Qt::LeftButton);
    QCOMPARE(doc.CurrentLegend, static_cast<int16_t>(235));
  }
  void ButtonRefusesDuringACommand() {
    tavik::Document doc;
    tavik::ui::ScriptedDialogs dialogs;
    QToolBar bar;
    AddLegendButton(&bar, doc, [] { return std::string("Line"); }, dialogs, nullptr);
    auto* action = bar.findChild<QAction*>("LegendButton");
    QVERIFY(action);
    action->trigger();
    QCOMPARE(dialogs.Messages().size(), static_cast<std::size_t>(1));
    QCOMPARE(QString::fromStdString(dialogs.Messages()[0]), QString("有動作在進行時,不能改圖例."));
    QCOMPARE(doc.CurrentLegend, static_cast<int16_t>(301));
  }
};

QTEST_MAIN(LegMenuTest)
#include "legmenu_test.moc"
