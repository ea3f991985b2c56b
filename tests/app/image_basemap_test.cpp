// An image under the map in the real window, offscreen: imported from 匯入, drawn under
// the survey in Paper1's picture, hidden by 底圖's toggle, found again from the side
// file when the document is opened another time, and taken along by a Save As.
#include <QAction>
#include <QMenu>
#include <QtTest>
#include <cstdio>

#include "app/edit_wiring.h"
#include "app/image_basemap.h"
#include "app/program.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "export/peer.h"
#include "platform/scripted/scripted.h"
#include "tests/app/paper_point.h"

class ImageBaseMapTest : public QObject {
  Q_OBJECT

 private slots:
  void importShowHideAndRemember() {
    tavik::testing::TempHome home;
    // A 200 x 100 m orange photo at 0.5 m a pixel, north-west corner (280000, 2750100).
    const std::string tif = (home.path / "photo.tif").string();
    int rc = -1;
    tavik::testing::RunPeer("gdal_create -q -of GTiff -outsize 400 200 -bands 3 -burn 250 -burn 140 -burn 20 "
                            "-a_ullr 280000 2750100 280200 2750000 " + tif + " 2>&1", &rc);
    QCOMPARE(rc, 0);

    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    ImageBaseMap images(p, w);
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    const std::string spc = (p.app.paths.WorkFolder() / "航照.SPC").string();
    dialogs.files = {spc};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, 280100, 2750050, 10));
    w.Host().ZoomWindow(279950, 2749950, 280250, 2750150);

    // Imported by its menu item; the picture shows it under the point.
    dialogs.files = {tif};
    QAction* import = p.frm.findChild<QAction*>("ImportImage");
    QVERIFY(import && import->isVisible());
    import->trigger();
    const QImage& picture = p.frm.Paper1()->Surface().Image();
    const QPoint at = PaperPoint(p, 280050, 2750030);
    QCOMPARE(picture.pixel(at), qRgb(250, 140, 20));
    QVERIFY(std::filesystem::exists(tavik::basemap::ImageListPath(p.app.doc.DocumentName)));

    // 底圖 > 顯示影像底圖 hides it; the setting belongs to the document.
    QAction* show = p.frm.findChild<QAction*>("BmImageShow");
    QVERIFY(show && p.frm.Command("BmDispSetup")->isVisible());
    show->trigger();
    QCOMPARE(picture.pixel(at), qRgb(255, 255, 255));
    images.SetShown(true);

    // Saved, closed and opened again: the image comes back from the side file.
    p.cycle.Save();
    QVERIFY(p.cycle.Close());
    p.cycle.OpenFile(spc);
    QVERIFY(p.app.doc.IsOpen());
    w.Host().Redraw();
    QCOMPARE(images.Settings().Images.size(), std::size_t(1));
    QVERIFY(images.Image(0));
    QCOMPARE(p.frm.Paper1()->Surface().Image().pixel(PaperPoint(p, 280050, 2750030)), qRgb(250, 140, 20));

    // A file that is no image: the message, and the list unchanged.
    dialogs.files = {spc};
    import->trigger();
    QVERIFY(dialogs.shown.back().text.rfind(tavik::basemap::ImageOpenMessage, 0) == 0);
    QCOMPARE(images.Settings().Images.size(), std::size_t(1));

    // Saved under another name, the document takes its images along.
    dialogs.files = {(p.app.paths.WorkFolder() / "航照二.SPC").string()};
    p.frm.Command("MainMnuSaveAs")->trigger();
    QVERIFY(p.app.doc.DocumentName.ends_with("航照二"));
    QVERIFY(std::filesystem::exists(tavik::basemap::ImageListPath(p.app.doc.DocumentName)));
    QCOMPARE(images.Settings().Images.size(), std::size_t(1));
  }
};

QTEST_MAIN(ImageBaseMapTest)
#include "image_basemap_test.moc"
