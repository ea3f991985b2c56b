// The Qt ends of the platform interfaces (the settings store is plain C++, tested with
// the platform layer).
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeView>
#include <QtTest>
#include <filesystem>

#include "core/temp_home.h"
#include "platform/qt/image_surface.h"
#include "platform/qt/qt_dialogs.h"
#include "platform/qt/qt_timer.h"

using namespace tavik::ui;

class PlatformQtTest : public QObject {
  Q_OBJECT

 private:
  static int CountNonWhite(const QImage& img) {
    int n = 0;
    for (int y = 0; y < img.height(); ++y)
      for (int x = 0; x < img.width(); ++x) n += img.pixel(x, y) != qRgb(255, 255, 255);
    return n;
  }

 // Runs `act` on the modal dialog as soon as it is up; saves a picture of it when
  // TAVIK_SHOTS names a folder (for looking at the dialogs by eye).
  template <class Act>
  static void WhenModal(const char* shot, Act act) {
    QTimer::singleShot(0, [shot, act] {
      QWidget* w = nullptr;
      QTRY_VERIFY_WITH_TIMEOUT((w = QApplication::activeModalWidget()) != nullptr, 3000);
      if (const char* dir = std::getenv("TAVIK_SHOTS")) w->grab().save(QString(dir) + "/" + shot + ".png");
      act(w);
    });
  }

 private slots:
  void messageBoxButtonsAndDefaults() {
    QtDialogs d;
    struct Case {
      std::optional<Answer> def;
      Qt::Key key;
      Answer expect;
    } cases[] = {
        {std::nullopt, Qt::Key_Return, Answer::Yes},  // the first button is the default
        {Answer::No, Qt::Key_Return, Answer::No},
        {Answer::Yes, Qt::Key_Escape, Answer::Cancel},
    };
    for (const auto& c : cases) {
      QStringList captions;
      QString title, text;
      WhenModal("msgbox", [&](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        QVERIFY(box);
        title = box->windowTitle();
        text = box->text();
        for (QAbstractButton* b : box->buttons()) captions << b->text();
        QTest::keyClick(box, c.key);
      });
      const Answer a = d.MsgBox("是否存檔?", "螢幕的圖尚未存檔", Buttons::YesNoCancel, Icon::Question, c.def);
      QCOMPARE(int(a), int(c.expect));
      QCOMPARE(title, QString("螢幕的圖尚未存檔"));
      QCOMPARE(text, QString("是否存檔?"));
      captions.sort();
      QStringList want{"是(&Y)", "否(&N)", "取消"};
      want.sort();
      QCOMPARE(captions, want);
    }
  }

  void fileDialogShowsClassicFiltersAndReturnsTheName() {
    tavik::testing::TempHome home;
    for (const char* f : {"a.spc", "b.SPC", "c.Spc", "d.txt"}) tavik::testing::WriteBytes(home.path / f, "x");
    QtDialogs d;
    QStringList filters, shown, columns, kinds;
    const QString typed = QString::fromStdString((home.path / "新圖.SPC").string());
    WhenModal("filedialog", [&](QWidget* w) {
      auto* dlg = qobject_cast<QFileDialog*>(w);
      QVERIFY(dlg);
      auto* types = dlg->findChild<QComboBox*>("fileTypeCombo");
      QVERIFY(types);
      for (int i = 0; i < types->count(); ++i) filters << types->itemText(i);
      // The first filter shows the documents whatever the case of their extension.
      auto* model = dlg->findChild<QFileSystemModel*>();
      QVERIFY(model);
      const QModelIndex dir = model->index(QString::fromStdString(home.path.string()));
      QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(dir), 3, 3000);
      for (int r = 0; r < model->rowCount(dir); ++r) shown << model->index(r, 0, dir).data().toString();
      // The list speaks Chinese and names the file types itself, not by the system's
      // descriptions (which take an .SPC for a certificate bundle).
      auto* list = dlg->findChild<QTreeView*>("treeView");
      QVERIFY(list);
      for (int c = 0; c < 4; ++c) columns << list->model()->headerData(c, Qt::Horizontal).toString();
      const QModelIndex root = list->rootIndex();
      for (int r = 0; r < list->model()->rowCount(root); ++r) kinds << list->model()->index(r, 2, root).data().toString();
      QVERIFY(dlg->testOption(QFileDialog::DontUseNativeDialog));
      QCOMPARE(dlg->labelText(QFileDialog::FileName), QString("檔案名稱:"));
      auto* name = dlg->findChild<QLineEdit*>("fileNameEdit");
      QVERIFY(name);
      name->setText(typed);
      QMetaObject::invokeMethod(dlg, "accept");
    });
    const std::string got = d.SaveFileName("開新圖檔", "Map 7.22(*.SPC)|*.SPC|所有檔案(*.*)|*.*", home.path.string());
    QCOMPARE(filters, QStringList({"Map 7.22(*.SPC)", "所有檔案(*.*)"}));
    shown.sort();
    QCOMPARE(shown, QStringList({"a.spc", "b.SPC", "c.Spc"}));
    QCOMPARE(columns, QStringList({"名稱", "大小", "類型", "修改日期"}));
    QCOMPARE(kinds, QStringList({"TAVIK 圖檔", "TAVIK 圖檔", "TAVIK 圖檔"}));
    QCOMPARE(QString::fromStdString(got), typed);

    WhenModal("filedialog-cancel", [](QWidget* w) { qobject_cast<QDialog*>(w)->reject(); });
    QCOMPARE(d.OpenFileName("開啟舊圖檔", "Map 7.22(*.SPC)|*.SPC", home.path.string()), std::string());
  }

  void filtersMatchAnyCase() {
    QCOMPARE(QtFilterFromClassic("Map 7.22(*.SPC)|*.SPC|所有檔案(*.*)|*.*"),
             QString("Map 7.22(*.SPC) (*.[sS][pP][cC]);;所有檔案(*.*) (*)"));
    QCOMPARE(QtFilterFromClassic("Map 7.22(*.SPC)|*.SPC|MAP (*.SP)|*.sp|所有檔案(*.*)|*.*"),
             QString("Map 7.22(*.SPC) (*.[sS][pP][cC]);;MAP (*.SP) (*.[sS][pP]);;所有檔案(*.*) (*)"));
    QCOMPARE(QtFilterFromClassic("DXF(*.dxf)|*.dxf;*.dwg"), QString("DXF(*.dxf) (*.[dD][xX][fF] *.[dD][wW][gG])"));
    QCOMPARE(FileTypeText("甲地.spc", false), QString("TAVIK 圖檔"));
    QCOMPARE(FileTypeText("x.pdf", false), QString("PDF 檔"));
    QCOMPARE(FileTypeText("工作目錄", true), QString("資料夾"));
  }

  void invertedFiguresDrawnTwiceVanish() {
    ImageSurface s(200, 150);
    s.Clear(MakeRgb(255, 255, 255));
    s.SetPen(MakeRgb(255, 0, 0), 1, LineStyle::Solid);
    s.Line(10, 10, 190, 140);
    const QImage base = s.Image().copy();
    QVERIFY(CountNonWhite(base) > 150);
    QCOMPARE(QColor(base.pixel(10, 10)), QColor(255, 0, 0));

    s.SetDrawMode(DrawMode::Invert);
    for (int pass = 0; pass < 2; ++pass) {
      s.Line(5, 140, 195, 20);
      s.Circle(100, 75, 40);
      s.Arc(100, 75, 60, 0.3, 2.5);
      s.Line(20, 20, 180, 20);
      if (pass == 0) QVERIFY(s.Image() != base);
    }
    QVERIFY(s.Image() == base);
  }

  void textInChineseAndBadCoordinatesAreSafe() {
    ImageSurface s(120, 40);
    s.Clear(MakeRgb(255, 255, 255));
    s.Text(2, 2, "測點 12", MakeRgb(0, 0, 0), 16);
    QVERIFY(CountNonWhite(s.Image()) > 40);
    const QImage before = s.Image().copy();
    s.Line(std::nanf(""), 0, 10, 10);
    s.Line(0, 0, 1e30f, 1e30f);
    s.Circle(10, 10, -5);
    s.Arc(10, 10, 0, 0, 1);
    s.SetPixel(-1, 500, MakeRgb(0, 0, 0));
    QVERIFY(s.Image() == before);
  }

  void timerTicksFromTheEventLoop() {
    QtTimerFactory f;
    auto t = f.CreateTimer();
    int ticks = 0;
    t->OnTick = [&] { ++ticks; };
    t->SetInterval(10);
    QCOMPARE(t->Interval(), 10);
    QVERIFY(!t->Enabled());
    QTest::qWait(40);
    QCOMPARE(ticks, 0);
    t->SetEnabled(true);
    QTRY_VERIFY_WITH_TIMEOUT(ticks >= 2, 2000);
    t->SetEnabled(false);
    const int stopped = ticks;
    QTest::qWait(40);
    QCOMPARE(ticks, stopped);
  }
};

QTEST_MAIN(PlatformQtTest)
#include "platform_qt_test.moc"
