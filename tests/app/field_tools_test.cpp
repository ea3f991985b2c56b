// The measure menu's field tools on the real window against tavik-sim on a
// pseudo-terminal: a SOKKIA memory dump downloaded whole, a TOPCON dump whose cable is
// pulled in the middle, and a trajectory tracked across three prisms.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>
#include <filesystem>
#include <fstream>

#include "app/edit_wiring.h"
#include "app/field_tools.h"
#include "app/frmlocus.h"
#include "app/frmtsdownload.h"
#include "app/program.h"
#include "app/survey_station.h"
#include "core/temp_home.h"
#include "geo/constants.h"
#include "instruments/dump_writer.h"
#include "instruments/sim_process.h"
#include "platform/scripted/scripted.h"

namespace fs = std::filesystem;
using namespace tavik::test;
using tavik::Pi;

namespace {

const double kE = 280850, kN = 2752650;

struct Window {
  explicit Window(const fs::path& home) : p(tavik::AppPaths{home}, &dialogs), w(p) {
    p.survey->ConnectEditor(w.Editor(), w.Host());
    p.app.paths.EnsureFolders();
    p.frm.resize(1000, 700);
    p.frm.show();
    p.Start();
    dialogs.files = {(p.app.paths.WorkFolder() / "下載.SPC").string()};
    p.cycle.New();
  }
  void Connect(const std::string& device, const char* kind) {
    qputenv("TAVIK_COM7", QByteArray::fromStdString(device));
    p.instruments.inst.PortNumber = 7;
    p.instruments.inst.InstrumentKind = kind;
  }
  FrmTSDownLoad* OpenDownload() {
    p.frm.findChild<QAction*>("MainMnuTSDownLoad")->trigger();
    return p.fieldTools->download();
  }
  QString Label1(FrmTSDownLoad* d) { return d->findChild<QLabel*>("Label1")->text(); }
  tavik::ui::ScriptedDialogs dialogs;
  Program p;
  EditWiring w;
};

// A scene the simulator needs even when it only plays a dump.
const char* kScene = "station 0 0 0\ntarget T 10 0 0\n";

std::string DumpFile(const QString& folder, const std::string& bytes) {
  const std::string path = (fs::path(folder.toStdString()) / "dump.bin").string();
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

}  // namespace

class FieldToolsTest : public QObject {
  Q_OBJECT

 private slots:
  void sokkiaDumpDownloadedWhole() {
    tavik::testing::TempHome home;
    Window win(home.path);
    QTemporaryDir dir;
    // Station on (kE, kN), backsight due east read at 30 degrees, two shots.
    const std::string sdr = SdrHeader() + SdrLine("02TP", {"S1", Fixed(kN, 3), Fixed(kE, 3), "50.000", "1.500"}) +
                            SdrLine("08KI", {"B1", Fixed(kN, 3), Fixed(kE + 100, 3), "52.000"}) +
                            SdrLine("03NM", {"1.500"}) + SdrLine("07TP", {"S1", "B1", "", "30.0000"}) +
                            SdrLine("09F1", {"S1", "P1", "10.000", "90.0000", "330.0000", "301"}) +
                            SdrLine("09F1", {"S1", "P2", "20.000", "90.0000", "60.0000", ""});
    Sim sim("SET", kScene, {"--dump", QString::fromStdString(DumpFile(dir.path(), "\x02" + sdr + "\x03"))});
    win.Connect(sim.path, "SET30R");
    FrmTSDownLoad* d = win.OpenDownload();
    QVERIFY(d);
    QCOMPARE(d->format(), tavik::dump::Format::Sdr);
    QTest::mouseClick(d->findChild<QPushButton*>("Command1"), Qt::LeftButton);
    sim.Command("fire");
    QTRY_COMPARE_WITH_TIMEOUT(win.Label1(d), QString("下載完畢. 觀測 2 點, 座標 1 點."), 5000);
    const tavik::Document& doc = win.p.app.doc;
    QCOMPARE(doc.PointCount, 3);
    // P1: azimuth 330 + 60 = 30 degrees, 10 m; P2: due south... 60 + 60 = 120 degrees, 20 m.
    QVERIFY(std::abs(doc.PointTable[1].E - (kE + 10 * std::sin(Pi / 6))) < 0.002);
    QVERIFY(std::abs(doc.PointTable[2].N - (kN + 20 * std::cos(2 * Pi / 3))) < 0.002);
    std::ifstream raw(fs::path(doc.DocumentName).parent_path() / "$SOK.OBS", std::ios::binary);
    QCOMPARE(std::string(std::istreambuf_iterator<char>(raw), {}), sdr);
    QVERIFY(win.dialogs.Messages().empty());
  }

  void topconDumpCutByThePulledCable() {
    tavik::testing::TempHome home;
    Window win(home.path);
    tavik::Document& doc = win.p.app.doc;
    doc.StationSet = tavik::kTrue;
    doc.StationE = kE;
    doc.StationN = kN;
    doc.StationH = 50;
    doc.InstrumentHeight = 1.5;
    QTemporaryDir dir;
    const std::string gts = GtsRecord("", "", 1.5, "1", 10, 900000, 0) + GtsRecord("", "", 1.5, "2", 10, 900000, 900000) +
                            "_'_(_)1.500_+3_ ?+000100";
    Sim sim("GTS22X", kScene, {"--dump", QString::fromStdString(DumpFile(dir.path(), gts))});
    win.Connect(sim.path, "GTS22X");
    FrmTSDownLoad* d = win.OpenDownload();
    QCOMPARE(d->format(), tavik::dump::Format::Gts);
    QTest::mouseClick(d->findChild<QPushButton*>("Command1"), Qt::LeftButton);
    sim.Command("fire");
    QTRY_COMPARE_WITH_TIMEOUT(win.p.instruments.link.download.LogBox.size(), gts.size(), 5000);
    sim.Command("pull");
    const QString cut = "資料傳輸中斷, 已收到的資料已保留. 最後一筆完整的記錄在第 2 筆 (點 2). 觀測 2 點, 座標 0 點.";
    QTRY_COMPARE_WITH_TIMEOUT(win.Label1(d), cut, 5000);
    QCOMPARE(win.dialogs.Messages(), std::vector<std::string>{cut.toStdString()});
    QCOMPARE(doc.PointCount, 2);
    QVERIFY(std::abs(doc.PointTable[1].E - (kE + 10)) < 0.001);
    QVERIFY(fs::exists(fs::path(doc.DocumentName).parent_path() / "$GTS.OBS"));
  }

  void trajectoryAcrossThreePrisms() {
    tavik::testing::TempHome home;
    Window win(home.path);
    tavik::Document& doc = win.p.app.doc;
    doc.StationSet = tavik::kTrue;
    doc.StationE = kE;
    doc.StationN = kN;
    doc.StationH = 50;
    doc.OrientationConstant = 0;
    win.p.app.doc.MapType = 2;
    const std::string scene = "station " + Fixed(kE, 3) + " " + Fixed(kN, 3) + " 50 1.5\n" + "target A " +
                              Fixed(kE + 5, 3) + " " + Fixed(kN, 3) + " 50 1.5\ntarget B " + Fixed(kE + 6, 3) + " " +
                              Fixed(kN, 3) + " 50 1.5\ntarget C " + Fixed(kE + 6.2, 3) + " " + Fixed(kN, 3) +
                              " 50 1.5\n";
    Sim sim("SET", scene, {"--auto", "150"});
    win.Connect(sim.path, "SET30R");
    win.p.fieldTools->TrajectorySpacingCm = 50;
    win.p.frm.findChild<QAction*>("MainMnuLocusStart")->trigger();
    FrmLocus* locus = win.p.fieldTools->locus();
    QVERIFY(locus && locus->Running());
    QVERIFY(!win.p.frm.findChild<QAction*>("MainMnuLocusStart")->isEnabled());
    for (int t : {0, 1, 2}) {
      sim.Command("target " + std::to_string(t));
      QTest::qWait(400);
    }
    // C is 20 cm from B: no vertex of its own.
    QTRY_COMPARE_WITH_TIMEOUT(locus->Track().Vertices(), 2, 3000);
    QTest::qWait(300);
    QCOMPARE(locus->Track().Vertices(), 2);
    win.p.frm.findChild<QAction*>("MainMnuLocusStop")->trigger();
    QVERIFY(!locus->Running());
    QCOMPARE(win.p.instruments.inst.ShotMode, std::string("快測"));
    QCOMPARE(doc.PointCount, 2);
    QCOMPARE(doc.EntityCount, 1);  // the segment from A to B
    QCOMPARE(doc.EntityTable[0].Kind, tavik::KindLine);
    QCOMPARE(doc.EntityTable[0].Code, doc.CurrentLegend);
  }
};

QTEST_MAIN(FieldToolsTest)
#include "field_tools_test.moc"
