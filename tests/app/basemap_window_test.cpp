// Backgrounds on the real window, offscreen: a DXF through 匯入底圖 into the base map,
// part of it cleared by a window dragged on the map, the rest removed; a drawing made
// the reference map of a new survey with its layers given codes.
#include <QAction>
#include <QtTest>

#include "app/basemap_station.h"
#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class BaseMapWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void importEraseRemoveAndReference() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    BaseMapStation station(p, w);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();

    // Three segments 10 m long, 20 m apart, on layer 地籍 (code page 950).
    const std::string dxf = (p.app.paths.WorkFolder() / "底圖.dxf").string();
    {
      std::string t = "0\nSECTION\n2\nENTITIES\n";
      for (int i = 0; i < 3; ++i)
        t += "0\nLINE\n8\n\xA6\x61\xC4\x79\n10\n" + std::to_string(280000 + 20 * i) + "\n20\n2750000\n11\n" +
             std::to_string(280010 + 20 * i) + "\n21\n2750000\n";
      tavik::testing::WriteBytes(dxf, t + "0\nENDSEC\n0\nEOF\n");
    }
    dialogs.files = {(p.app.paths.WorkFolder() / "現況.SPC").string()};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());

    dialogs.files = {dxf};
    p.frm.findChild<QAction*>("MainMnuImportBaseMap")->trigger();
    QCOMPARE(p.app.doc.BaseMapCount, 3);
    QCOMPARE(p.frm.PanelText(10), QString("底圖數目: 3"));
    QAction* erase = p.frm.Command("BMEraseWindow");
    QAction* remove = p.frm.Command("BMRemove");
    QVERIFY(erase->isVisible() && erase->isEnabled() && remove->isVisible() && remove->isEnabled());

    // A window around the middle segment only.
    erase->trigger();
    auto* paper = p.frm.Paper1();
    const QPoint a = PaperPoint(p, 280018, 2749998), b = PaperPoint(p, 280032, 2750002);
    QTest::mousePress(paper, Qt::LeftButton, Qt::NoModifier, a);
    QTest::mouseMove(paper, b);
    QTest::mouseRelease(paper, Qt::LeftButton, Qt::NoModifier, b);
    QCOMPARE(p.app.doc.BaseMapCount, 2);
    QCOMPARE(p.app.doc.BaseMapTable[1].X[0], 280040.0);

    dialogs.answers = {tavik::ui::Answer::No};
    remove->trigger();
    QCOMPARE(p.app.doc.BaseMapCount, 2);
    remove->trigger();  // answered yes
    QCOMPARE(p.app.doc.BaseMapCount, 0);
    QVERIFY(!remove->isEnabled());

    // The same drawing as the reference map of this still empty survey, its layer
    // made boundary lines by the code choice.
    std::vector<std::string> layers;
    station.ChooseLayerCodes = [&](tavik::basemap::VectorDrawing& d, bool reference) {
      layers = d.Layers;
      tavik::basemap::ApplyLayerCodes(d, {{"地籍", {207, 235}}}, reference);
      return true;
    };
    dialogs.files = {dxf};
    p.frm.findChild<QAction*>("MainMnuImportReference")->trigger();
    QCOMPARE(layers, std::vector<std::string>{"地籍"});
    QCOMPARE(p.app.doc.ReferenceMapLoaded, tavik::kTrue);
    QCOMPARE(p.app.doc.ReferenceEntityCount, 3);
    QCOMPARE(p.app.doc.EntityTable[2].Code, int16_t{207});
  }
};

QTEST_MAIN(BaseMapWindowTest)
#include "basemap_window_test.moc"
