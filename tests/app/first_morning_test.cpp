// The first morning in the field on the real window, offscreen, against tavik-sim on a
// pseudo-terminal: a fresh user's folders and settings, the instrument chosen and brought
// back by a restart, a new document in the default work folder, a set-up on two known points, shots
// by the record button and by the space bar, a line drawn by pen, Esc, the wheel, Save,
// Close, and the document opened again from the recent list and from the dialog. The
// window's counts are checked at each step.
#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QWheelEvent>
#include <QtTest>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "app/edit_wiring.h"
#include "app/fitdialog.h"
#include "app/program.h"
#include "app/survey_panel.h"
#include "app/survey_station.h"
#include "core/tables.h"
#include "core/temp_home.h"
#include "instruments/sim_process.h"
#include "platform/scripted/scripted.h"
#include "procedures/observation_pipeline.h"
#include "view/transform.h"
#include "tests/app/paper_point.h"

namespace fs = std::filesystem;

namespace {

struct Prism {
  const char* name;
  double E, N, H;
};
// K1 is the station, B1 the backsight; the others are shot. All lie about the centre a
// new document starts at, so that the shots fall on the screen.
const Prism kStation = {"K1", 280850, 2752650, 50};
const Prism kPrisms[] = {{"B1", 280950, 2752650, 52}, {"P1", 280853, 2752654, 51.2}, {"P2", 280846, 2752647, 49.87}};

// The scene for tavik-sim playing a SET, held on the prism it is told.
std::string Scene() {
  std::ostringstream scene;
  scene << std::fixed << "station " << kStation.E << ' ' << kStation.N << ' ' << kStation.H << " 1.5\norientation 30\n";
  for (const Prism& p : kPrisms) scene << "target " << p.name << ' ' << p.E << ' ' << p.N << ' ' << p.H << " 1.5\n";
  return scene.str();
}

// An environment variable set (or, given a null value, unset) for the life of the object.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const QByteArray& value) : name_(name), had_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name)) {
    Set(value);
  }
  ~ScopedEnv() { Set(had_ ? old_ : QByteArray()); }

 private:
  void Set(const QByteArray& v) { v.isNull() ? (void)qunsetenv(name_) : (void)qputenv(name_, v); }
  const char* name_;
  bool had_;
  QByteArray old_;
};

// The whole program as main() puts it together.
struct Window {
  explicit Window(const tavik::AppPaths& paths) : p(paths, &dialogs), w(p) {
    p.survey->ConnectEditor(w.Editor(), w.Host());
    w.FrameCommands["Measure"] = [this] { tavik::RecButton(p.survey->ctx); };
    p.frm.resize(1100, 760);
    p.frm.show();
    p.Start();
  }
  tavik::ui::ScriptedDialogs dialogs;
  Program p;
  EditWiring w;

  PaperWidget* Paper() { return p.frm.Paper1(); }
  // Each shot asks what the point is: a plain survey point.
  void AnswerPointKind() {
    auto* timer = new QTimer(&p.frm);
    QObject::connect(timer, &QTimer::timeout, [timer] {
      QWidget* w = QApplication::activeModalWidget();
      if (w == nullptr || w->objectName() != "DlgCadaMete") return;
      timer->deleteLater();
      timer->stop();
      QTest::mouseClick(w->findChild<QPushButton*>("Command1"), Qt::LeftButton);
    });
    timer->start(20);
  }
  QPoint At(double E, double N) { return PaperPoint(p, E, N); }
  // The counts shown, after the window has painted what changed.
  QStringList Counts() {
    QTest::qWait(20);
    QStringList c;
    for (int k : {1, 4, 5, 6, 7}) c << p.frm.PanelText(k);
    c << p.frm.LabelText("Label41") << p.frm.LabelText("Label42");
    return c;
  }
  // What the counts must be, from the tables themselves.
  QStringList Expected() {
    const tavik::Document& d = p.app.doc;
    const int points = d.PointCount - d.DeletedPointCount, entities = d.EntityCount - d.DeletedEntityCount;
    return {QString("1 :%1").arg(static_cast<long long>(d.ScaleDenominator)), QString("測點 %1").arg(points),
            QString("圖元 %1").arg(entities), QString("螢幕點 %1").arg(d.ScreenPointCount),
            QString("螢幕圖 %1").arg(d.ScreenEntityCount), QString::number(points), QString::number(entities)};
  }
};

}  // namespace

class FirstMorningTest : public QObject {
  Q_OBJECT

 private slots:
  void firstMorning() {
    tavik::testing::TempHome home;
    // A fresh user with the default folders, in a home of the test's own, so nothing
    // lands in the real one.
    fs::create_directories(home.path / "user");
    ScopedEnv user("HOME", QByteArray::fromStdString((home.path / "user").string())), data("TAVIK_HOME", {}),
        xdg("XDG_DATA_HOME", {});
    const tavik::AppPaths paths = tavik::AppPaths::FromEnvironment();
    QVERIFY(paths.EnsureFolders());
    QCOMPARE(paths.WorkFolder(), home.path / "user" / "TAVIK" / "工作目錄");
    tavik::test::Sim sim("SET", Scene());
    QVERIFY(!sim.path.empty());
    ScopedEnv com7("TAVIK_COM7", QByteArray::fromStdString(sim.path));

    // The instrument is chosen once; the next start brings it back.
    {
      Window first(paths);
      first.p.instruments.inst.InstrumentKind = "SET30R";
      first.p.instruments.inst.PortNumber = 7;
      first.p.instruments.inst.BaudRate = 9600;
      QVERIFY(first.p.frm.close());
    }
    Window win(paths);
    Program& p = win.p;
    tavik::ui::ScriptedDialogs& dialogs = win.dialogs;
    QCOMPARE(p.instruments.inst.PortNumber, int16_t(7));
    QCOMPARE(p.instruments.inst.InstrumentKind, std::string("SET30R"));

    // New in the default work folder.
    const std::string name = (p.app.paths.WorkFolder() / "晨測").string();
    dialogs.files = {name + ".SPC"};
    p.frm.Command("MainMnuNew")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    QCOMPARE(p.frm.windowTitle(), QString::fromStdString("TAVIK - " + name + ".SPC"));
    QCOMPARE(win.Counts(), QStringList({"1 :100", "測點 0", "圖元 0", "螢幕點 0", "螢幕圖 0", "0", "0"}));
    QCOMPARE(p.frm.PanelText(10), QString("底圖數目: 0"));
    QCOMPARE(p.frm.LabelText("MAPtype"), QString("地形圖"));
    QCOMPARE(p.frm.Command("mnuFileItem(1)")->text(), QString::fromStdString("&1 " + name));

    // Two known points, then the set-up on them with the backsight's distance measured.
    for (int k : {0, 1}) {
      const Prism& c = k == 0 ? kStation : kPrisms[0];
      QVERIFY(tavik::AddEntity(p.app.doc, p.app.view, p.app.work, 113, c.E, c.N, c.H, c.name));
    }
    p.frm.findChild<QAction*>("MainMnuFit")->trigger();
    FitDialog* fit = p.survey->fitDialog();
    QVERIFY(fit);
    fit->findChild<QComboBox*>("Combo1")->setCurrentText("K1");
    fit->findChild<QComboBox*>("Combo2")->setCurrentText("B1");
    fit->findChild<QLineEdit*>("Text4")->setText("1.5");
    fit->findChild<QLineEdit*>("Text3")->setText("1.5");
    sim.Command("target 0");
    QTest::mouseClick(fit->findChild<QPushButton*>("Command3"), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(p.instruments.inst.AwaitFitShot == tavik::kFalse, 5000);
    QTest::mouseClick(fit->findChild<QPushButton*>("OKButton"), Qt::LeftButton);
    QTRY_VERIFY(p.survey->fitDialog() == nullptr);
    QCOMPARE(p.app.doc.StationSet, tavik::kTrue);
    QCOMPARE(p.survey->panel()->Text("LabelStaName"), QString("K1"));
    QCOMPARE(win.Counts(), win.Expected());

    // Two shots: the record button, then the space bar.
    for (int i : {1, 2}) {
      sim.Command("target " + std::to_string(i));
      dialogs.inputs.push_back("1.5");
      const int32_t before = p.app.doc.PointCount;
      win.AnswerPointKind();
      if (i == 1)
        QTest::mouseClick(p.survey->panel()->findChild<QPushButton*>("RecButton"), Qt::LeftButton);
      else
        QTest::keyClick(win.Paper(), Qt::Key_Space);
      QTRY_COMPARE_WITH_TIMEOUT(p.app.doc.PointCount, before + 1, 5000);
      const tavik::Point& shot = p.app.doc.PointTable[before];
      QVERIFY(std::abs(shot.E - kPrisms[i].E) < 0.003 && std::abs(shot.N - kPrisms[i].N) < 0.003);
      QCOMPARE(win.Counts(), win.Expected());
      QCOMPARE(p.frm.LabelText("Label41"), QString::number(i));
      QVERIFY(p.survey->panel()->Blinking());
    }

    // A line from shot to shot by pen; Esc ends the command and the legend picker works again.
    win.w.Toolbar2()->findChild<QAction*>("Line")->trigger();
    QTest::mouseClick(win.Paper(), Qt::LeftButton, Qt::NoModifier, win.At(kPrisms[1].E, kPrisms[1].N));
    QTest::mouseClick(win.Paper(), Qt::LeftButton, Qt::NoModifier, win.At(kPrisms[2].E, kPrisms[2].N));
    QTest::keyClick(win.Paper(), Qt::Key_Escape);
    QCOMPARE(win.w.Editor().Ptr.ActionMode, std::string());
    const int32_t entities = p.app.doc.EntityCount;
    QCOMPARE(entities, 3);  // two known points and the line
    QCOMPARE(win.Counts(), win.Expected());

    // Shift+F1 on the map opens the manual, not the hot-key window.
    QTest::keyClick(win.Paper(), Qt::Key_F1, Qt::ShiftModifier);
    auto* manual = p.frm.findChild<QDialog*>("Manual");
    QVERIFY(manual && manual->windowTitle() == "TAVIK操作手冊");
    QVERIFY(!p.frm.findChild<QDialog*>("HotKeys"));
    manual->close();

    // The pointer's readout has a panel of its own; the scale and the counts stay.
    QTest::mouseMove(win.Paper(), win.At(280851, 2752651));
    QVERIFY(p.frm.PanelText(2).startsWith("E "));
    QVERIFY(p.frm.PanelText(1).startsWith("1 :"));

    // The wheel zooms about the pointer.
    const double scale = p.app.doc.ScaleDenominator;
    const QPoint at = win.At(280851, 2752651);
    QWheelEvent wheel(at, win.Paper()->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(win.Paper(), &wheel);
    QVERIFY(p.app.doc.ScaleDenominator < scale);
    QCOMPARE(win.Counts(), win.Expected());

    // Save, Close, and back from the recent list and from the dialog.
    QTest::keyClick(win.Paper(), Qt::Key_F2);  // the quick save
    QCOMPARE(p.frm.LabelText("OBSBox"), QString("幾秒前已經存檔"));
    QVERIFY(fs::exists(name + ".SPC") && fs::exists(name + ".OBS"));
    QCOMPARE(win.Counts(), win.Expected());
    p.frm.Command("MainMnuClose")->trigger();
    QVERIFY(!p.app.doc.IsOpen());
    QCOMPARE(p.frm.windowTitle(), QString("TAVIK"));
    QCOMPARE(p.survey->panel()->Text("LabelStaName"), QString());
    QVERIFY(!p.survey->panel()->Blinking());
    QCOMPARE(win.Counts().mid(1), QStringList({"測點 0", "圖元 0", "螢幕點 0", "螢幕圖 0", "0", "0"}));

    p.frm.Command("mnuFileItem(1)")->trigger();
    QVERIFY(p.app.doc.IsOpen());
    QCOMPARE(p.app.doc.PointCount, 2);
    QCOMPARE(p.app.doc.EntityCount, 3);
    QCOMPARE(win.Counts(), win.Expected());
    p.frm.Command("MainMnuClose")->trigger();
    dialogs.files = {name + ".SPC"};
    p.frm.Command("MainMnuOpen")->trigger();
    QCOMPARE(p.app.doc.PointCount, 2);
    QCOMPARE(win.Counts(), win.Expected());
    QVERIFY(dialogs.Messages().empty());

    // A change, then the end of the day: Cancel keeps the program and its journal, Yes
    // saves and lets it go.
    QVERIFY(tavik::AddPoint(p.app.doc, p.app.view, p.app.work, 280852, 2752652, 50));
    p.app.doc.MapChanged = tavik::kTrue;
    dialogs.answers = {tavik::ui::Answer::Cancel};
    QVERIFY(!p.frm.close());
    QVERIFY(fs::exists(p.app.paths.TempP0()));
    dialogs.answers = {tavik::ui::Answer::Yes};
    QVERIFY(p.frm.close());
    QVERIFY(!fs::exists(p.app.paths.TempP0()));
  }
};

QTEST_MAIN(FirstMorningTest)
#include "first_morning_test.moc"
