// The 匯出 menu on an open document: the side tables land beside the document, the
// report where the file dialog says, each with its message.
#include <QAction>
#include <QtTest>
#include <filesystem>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"
#include "procedures/observation_log.h"

namespace fs = std::filesystem;

class ExportMenuTest : public QObject {
  Q_OBJECT

 private slots:
  void tablesAndReportFromTheMenu() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.Start();
    const fs::path folder = p.app.paths.WorkFolder();
    dialogs.files = {(folder / "丙地.SPC").string()};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    const double E = p.app.doc.ViewCentreE, N = p.app.doc.ViewCentreN;
    QVERIFY(tavik::AddEntity(p.app.doc, p.app.view, p.app.work, 602, E + 1, N, 11, "M1"));
    dialogs.shown.clear();

    auto trigger = [&p](const char* name) {
      QAction* a = p.frm.findChild<QAction*>(name);
      QVERIFY2(a && a->isVisible(), name);
      a->trigger();
    };
    trigger("MainMnuClassTableCsv");
    QCOMPARE(dialogs.Messages(), std::vector<std::string>({"[分類樁位表.CSV] 輸出完成!! 總共1支樁"}));
    QCOMPARE(dialogs.shown.back().title, std::string("檔案輸出"));
    QVERIFY(fs::exists(folder / "分類樁位表.CSV"));

    dialogs.files = {(folder / "日報.TXT").string()};
    trigger("MainMnuReport");
    QCOMPARE(dialogs.shown.back().text, std::string("[日報.TXT] 圖檔報表輸出完成"));
    QVERIFY(fs::file_size(folder / "日報.TXT") > 0);
    QVERIFY(p.frm.findChild<QAction*>("MainMnuDXFOutput")->isVisible());
    QVERIFY(p.frm.findChild<QAction*>("MainMnuPointTableCsv")->isVisible());
  }

  // Profile and sections: refused with its reason while the map has no route, then
  // written where the file dialog says once a route crosses the surveyed ground.
  void profileAndSectionsFromTheMenu() {
    tavik::testing::TempHome home;
    tavik::ui::ScriptedDialogs dialogs;
    Program p(tavik::AppPaths{home.path}, &dialogs);
    EditWiring w(p);
    p.app.paths.EnsureFolders();
    p.Start();
    const fs::path folder = p.app.paths.WorkFolder();
    dialogs.files = {(folder / "路.SPC").string()};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    const double E = p.app.doc.ViewCentreE, N = p.app.doc.ViewCentreN;
    for (int i = 0; i < 5; ++i)
      for (int j = 0; j < 5; ++j) QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, E + 10 * i, N + 10 * j, 100 + i));
    dialogs.shown.clear();
    p.frm.findChild<QAction*>("MainMnuProfileDxf")->trigger();
    QCOMPARE(dialogs.shown.size(), std::size_t(1));
    QVERIFY(dialogs.shown.back().text.find("沒有縱斷面線") != std::string::npos);

    QVERIFY(tavik::AddEntity(p.app.doc, p.app.view, p.app.work, 520, tavik::KindLine, E, N + 15, 0, E + 40, N + 15, 0,
                             0, 0, 0, "A"));
    dialogs.files = {(folder / "p.DXF").string()};
    p.frm.findChild<QAction*>("MainMnuProfileDxf")->trigger();
    QVERIFY2(dialogs.shown.back().text.rfind("縱斷面圖輸出完成", 0) == 0, dialogs.shown.back().text.c_str());
    QVERIFY(fs::file_size(folder / "p.DXF") > 0);

    // A bad interval is asked again; the sections go with their section file.
    dialogs.inputs = {std::string("abc"), std::string("20")};
    dialogs.files = {(folder / "s.DXF").string()};
    p.frm.findChild<QAction*>("MainMnuSectionsDxf")->trigger();
    QVERIFY2(dialogs.shown.back().text.rfind("橫斷面圖輸出完成: 3 個橫斷面", 0) == 0, dialogs.shown.back().text.c_str());
    QVERIFY(fs::exists(folder / "s.SEC"));

    // The observation book: nothing to write before a shot, a workbook after one.
    dialogs.files = {(folder / "b.xlsx").string()};
    p.frm.findChild<QAction*>("MainMnuObsBook")->trigger();
    QVERIFY(dialogs.shown.back().text.find("沒有全站儀的觀測紀錄") != std::string::npos);
    QVERIFY(!fs::exists(folder / "b.xlsx"));
    for (const char* line : {"-99 , 2026/11/23 09:00:00", "A1,0.000,0.000,100.000,1.50", "A2,0.000,10.000,100.000, 0 , 900000 ,10.000",
                             " 900000, 900000 ,10.000,1.50, 2026/11/23 09:01:00"})
      QVERIFY(tavik::obslog::AppendLine(p.app.doc.ObsPath, line));
    dialogs.files = {(folder / "b.xlsx").string()};
    p.frm.findChild<QAction*>("MainMnuObsBook")->trigger();
    QCOMPARE(dialogs.shown.back().text, std::string("[b.xlsx] 輸出完成, 共 2 筆"));
    QVERIFY(fs::file_size(folder / "b.xlsx") > 0);
  }
};

QTEST_MAIN(ExportMenuTest)
#include "export_menu_test.moc"
