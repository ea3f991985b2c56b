// The printed sheet read back by an independent reader: the PDF is rasterised by
// pdftoppm and the picture checked where the layout puts the map's lines, the frame and
// the title block. A printer that is not there and a PDF that cannot be written are
// refused with a message.
#include <QImage>
#include <QProcess>
#include <QtTest>
#include <filesystem>

#include "app/print_map.h"
#include "core/temp_home.h"
#include "platform/scripted/scripted.h"

namespace fs = std::filesystem;
using tavik::view::PrintOptions;
using tavik::view::Sheet;

namespace {

constexpr double kE = 281000, kN = 2752000;  // the screen's centre
constexpr int kDpi = 100;

tavik::Document TwoLines() {
  tavik::Document d;
  tavik::SetDocumentName(d, "/tmp/測試圖");
  d.ViewCentreE = kE;
  d.ViewCentreN = kN;
  d.ScaleDenominator = 333;  // the screen's own scale, which the print leaves alone
  auto line = [&](double e1, double n1, double e2, double n2) {
    tavik::Entity e;
    e.Number = static_cast<int32_t>(d.EntityTable.size()) + 1;
    e.Code = 301;
    e.Kind = tavik::KindLine;
    e.X[0] = e1, e.Y[0] = n1, e.X[1] = e2, e.Y[1] = n2;
    d.EntityTable.push_back(e);
  };
  line(kE - 40, kN + 20, kE + 40, kN + 20);  // across, 20 m north of the centre
  line(kE + 60, kN - 30, kE + 60, kN - 10);  // upright, 60 m east
  d.EntityCount = 2;
  return d;
}

QImage Rasterise(const fs::path& pdf) {
  const fs::path stem = pdf.parent_path() / "page";
  QProcess p;
  p.start("pdftoppm", {"-r", QString::number(kDpi), "-png", "-singlefile", QString::fromStdString(pdf.string()),
                       QString::fromStdString(stem.string())});
  if (!p.waitForFinished(60000) || p.exitCode() != 0) return {};
  return QImage(QString::fromStdString(stem.string() + ".png"));
}

// Pixels of the picture at a place on the sheet, in millimetres.
QPoint At(double xMm, double yMm) {
  return QPoint(static_cast<int>(xMm * kDpi / 25.4), static_cast<int>(yMm * kDpi / 25.4));
}

bool Inked(const QImage& img, double xMm, double yMm) {
  // Within a pixel or so of the place: lines are a third of a millimetre wide.
  const QPoint c = At(xMm, yMm);
  for (int dx = -1; dx <= 1; ++dx)
    for (int dy = -1; dy <= 1; ++dy)
      if (qGray(img.pixel(c.x() + dx, c.y() + dy)) < 200) return true;
  return false;
}

int InkIn(const QImage& img, double x1, double y1, double x2, double y2) {
  const QPoint a = At(x1, y1), b = At(x2, y2);
  int n = 0;
  for (int x = a.x(); x <= b.x(); ++x)
    for (int y = a.y(); y <= b.y(); ++y) n += qGray(img.pixel(x, y)) < 128;
  return n;
}

}  // namespace

class PrintTest : public QObject {
  Q_OBJECT

 private slots:
  void sheetAtItsScaleWithTitleBlock_data() {
    QTest::addColumn<int>("sheet");
    QTest::addColumn<bool>("landscape");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");
    QTest::newRow("A4 upright 1:1000") << 0 << false << 1000.0 << 210.0 << 297.0;
    QTest::newRow("A3 across 1:500") << 1 << true << 500.0 << 420.0 << 297.0;
  }
  void sheetAtItsScaleWithTitleBlock() {
    QFETCH(int, sheet);
    QFETCH(bool, landscape);
    QFETCH(double, scale);
    QFETCH(double, width);
    QFETCH(double, height);
    tavik::testing::TempHome home;
    const fs::path pdf = home.path / "sheet.pdf";
    tavik::Document doc = TwoLines();
    tavik::view::Display display;
    display.Background = tavik::ui::MakeRgb(0, 0, 0);  // the screen's black paper prints white
    PrintOptions o;
    o.sheet = sheet == 1 ? Sheet::A3 : Sheet::A4;
    o.landscape = landscape;
    o.scale = scale;
    o.title = "測試圖";
    o.date = "2026/11/23";
    o.surveyor = "王小明";
    o.company = "宜蘭測量公司";
    tavik::ui::ScriptedDialogs dialogs;
    QVERIFY(PrintSheet({"", pdf.string()}, doc, display, o, dialogs));
    QVERIFY(dialogs.shown.empty());
    QCOMPARE(doc.ScaleDenominator, 333.0);
    const QImage img = Rasterise(pdf);
    QVERIFY2(!img.isNull(), "pdftoppm read no page");
    QVERIFY(std::abs(img.width() - At(width, 0).x()) <= 2);
    QVERIFY(std::abs(img.height() - At(0, height).y()) <= 2);

    // The frame's centre is the screen's centre; a metre of ground is 1000 / scale mm.
    const double cx = width / 2, cy = height / 2, mm = 1000 / scale;
    for (double e = -38; e <= 38; e += 4) QVERIFY2(Inked(img, cx + e * mm, cy - 20 * mm), "the line across");
    for (double n = -28; n <= -12; n += 4) QVERIFY2(Inked(img, cx + 60 * mm, cy - n * mm), "the upright line");
    QVERIFY(!Inked(img, cx, cy - 25 * mm));
    QVERIFY(!Inked(img, cx + 50 * mm, cy + 20 * mm));
    QVERIFY(qGray(img.pixel(At(cx - 10, cy + 10))) > 250);  // white paper, whatever the screen's

    // The frame 10 mm in from the edges, and the title block in its lower right corner:
    // 100 mm wide, five rows of text.
    QVERIFY(Inked(img, 10, cy) && Inked(img, width - 10, cy) && Inked(img, cx, 10) && Inked(img, cx, height - 10));
    const double left = width - 10 - 100, top = height - 10 - (5 * 7 + 4);
    QVERIFY(Inked(img, left, top + 10) && Inked(img, left + 50, top));
    for (int row = 0; row < 5; ++row) {
      const double y = top + 2 + row * 7;
      QVERIFY2(InkIn(img, left + 2, y + 1, left + 20, y + 6) > 10, "caption");
      QVERIFY2(InkIn(img, left + 24, y + 1, left + 60, y + 6) > 10, "value");
    }
  }

  void refusedWithAMessage() {
    tavik::Document doc = TwoLines();
    tavik::view::Display display;
    PrintOptions o;
    tavik::ui::ScriptedDialogs dialogs;
    QVERIFY(!PrintSheet({"不存在的印表機", ""}, doc, display, o, dialogs));
    QVERIFY(!PrintSheet({"", "/nonexistent-folder/x.pdf"}, doc, display, o, dialogs));
    QCOMPARE(dialogs.Messages().size(), std::size_t{2});
    QVERIFY(QString::fromStdString(dialogs.Messages()[0]).startsWith("找不到印表機「不存在的印表機」"));
    QCOMPARE(dialogs.Messages()[1], std::string("無法寫入 PDF 檔案 /nonexistent-folder/x.pdf"));
    QVERIFY(!fs::exists("/nonexistent-folder/x.pdf"));
  }
};

QTEST_MAIN(PrintTest)
#include "print_test.moc"
