#include "app/print_map.h"

#include <QAction>
#include <QComboBox>
#include <QDate>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/numbers.h"
#include "platform/qt/painter_surface.h"
#include "platform/settings_store.h"
#include "view/transform.h"

namespace {

using tavik::view::PrintOptions;

QString Q(const std::string& s) { return QString::fromStdString(s); }

constexpr const char* kApp = "TAVIK";
constexpr const char* kSection = "Print";
const QString kPdf = "PDF 檔案";

// The texts of the title block, in tenths of a millimetre.
constexpr int kTitleTextSize = 35;
constexpr double kCaptionWidthMm = 22;

void PaintTitleBlock(QPainter& p, const tavik::view::PrintLayout& l, const PrintOptions& o) {
  const auto rows = tavik::view::TitleRows(o);
  const QRectF box(l.titleBlock.x, l.titleBlock.y, l.titleBlock.w, l.titleBlock.h);
  p.fillRect(box, Qt::white);
  p.setPen(QPen(Qt::black, 0.35));
  p.drawRect(box);
  const double rowHeight = (box.height() - 4) / static_cast<double>(rows.size());
  p.drawLine(QPointF(box.left() + kCaptionWidthMm, box.top()), QPointF(box.left() + kCaptionWidthMm, box.bottom()));
  QFont f("WenQuanYi Zen Hei");
  f.setPixelSize(kTitleTextSize);
  p.save();
  p.scale(0.1, 0.1);
  p.setFont(f);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double top = box.top() + 2 + rowHeight * static_cast<double>(i);
    const QRectF caption(box.left() + 2, top, kCaptionWidthMm - 3, rowHeight);
    const QRectF value(box.left() + kCaptionWidthMm + 2, top, box.width() - kCaptionWidthMm - 4, rowHeight);
    auto tenth = [](const QRectF& r) { return QRectF(r.x() * 10, r.y() * 10, r.width() * 10, r.height() * 10); };
    p.drawText(tenth(caption), Qt::AlignLeft | Qt::AlignVCenter, Q(rows[i].first));
    p.drawText(tenth(value), Qt::AlignLeft | Qt::AlignVCenter, Q(rows[i].second));
  }
  p.restore();
  for (std::size_t i = 1; i < rows.size(); ++i) {
    const double y = box.top() + 2 + rowHeight * static_cast<double>(i);
    p.setPen(QPen(Qt::black, 0.15));
    p.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
  }
}

// The document's name as the title block shows it: its file name without the folder.
std::string DocumentTitle(const tavik::Document& doc) {
  return QFileInfo(Q(doc.DocumentName)).fileName().toStdString();
}

}  // namespace

void SetUpPrinter(QPrinter& printer, const PrintOptions& o) {
  printer.setPageSize(QPageSize(o.sheet == tavik::view::Sheet::A3 ? QPageSize::A3 : QPageSize::A4));
  printer.setPageOrientation(o.landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
  printer.setFullPage(true);
  printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
  printer.setDocName(Q(o.title));
}

void PaintSheet(QPainter& p, const QPrinter& printer, tavik::Document& doc, const tavik::view::Display& display,
                const PrintOptions& o, tavik::ui::Dialogs& dialogs) {
  const tavik::view::PrintLayout l = tavik::view::LayOutSheet(o, doc.ViewCentreE, doc.ViewCentreN);
  p.save();
  // From here on the painter counts millimetres from the sheet's corner.
  const double dotsPerMm = printer.resolution() / 25.4;
  p.scale(dotsPerMm, dotsPerMm);
  p.save();
  p.translate(l.map.x, l.map.y);
  p.setClipRect(QRectF(0, 0, l.map.w, l.map.h));
  // The map view's pixels: 32.5 to the centimetre.
  const double pixelsPerMm = tavik::PixelsPerCm / 10;
  p.scale(1 / pixelsPerMm, 1 / pixelsPerMm);
  tavik::ui::PainterSurface surface(p, static_cast<float>(l.map.w * pixelsPerMm),
                                    static_cast<float>(l.map.h * pixelsPerMm));
  tavik::view::PaintPrintMap(doc, display, o, l, surface, dialogs);
  p.restore();
  p.setPen(QPen(Qt::black, 0.5));
  p.setBrush(Qt::NoBrush);
  p.drawRect(QRectF(l.map.x, l.map.y, l.map.w, l.map.h));
  PaintTitleBlock(p, l, o);
  p.restore();
}

QStringList PrinterNames() {
  QStringList names = QPrinterInfo::availablePrinterNames();
  const QString def = QPrinterInfo::defaultPrinterName();
  if (!def.isEmpty() && names.removeAll(def) > 0) names.prepend(def);
  return names;
}

bool PrintSheet(const PrintTarget& target, tavik::Document& doc, const tavik::view::Display& display,
                const PrintOptions& o, tavik::ui::Dialogs& dialogs) {
  QPrinter printer(QPrinter::HighResolution);
  if (!target.pdfPath.empty()) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(Q(target.pdfPath));
  } else {
    const QPrinterInfo info = QPrinterInfo::printerInfo(Q(target.printer));
    if (target.printer.empty() || info.isNull()) {
      dialogs.MsgBox("找不到印表機" + (target.printer.empty() ? std::string() : "「" + target.printer + "」") +
                         ",請確認印表機已連接並開機,或改印成 PDF 檔案。",
                     "列印", tavik::ui::Buttons::Ok, tavik::ui::Icon::Exclamation);
      return false;
    }
    printer.setPrinterName(info.printerName());
    printer.setOutputFormat(QPrinter::NativeFormat);
  }
  SetUpPrinter(printer, o);
  QPainter p;
  if (!p.begin(&printer)) {
    dialogs.MsgBox(target.pdfPath.empty() ? "印表機「" + target.printer + "」無法列印,請檢查印表機。"
                                          : "無法寫入 PDF 檔案 " + target.pdfPath,
                   "列印", tavik::ui::Buttons::Ok, tavik::ui::Icon::Exclamation);
    return false;
  }
  PaintSheet(p, printer, doc, display, o, dialogs);
  return p.end();
}

FrmPrint::FrmPrint(const tavik::Document& doc, tavik::ui::SettingsStore& store, bool preview, QWidget* parent)
    : QDialog(parent), store_(store) {
  setObjectName("FrmPrint");
  setWindowTitle(preview ? "預覽列印" : "列印");
  auto* col = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  scale_ = new QComboBox(this);
  scale_->setObjectName("cboScale");
  scale_->setEditable(true);
  for (int s : {100, 200, 250, 500, 600, 1000, 1200, 2000, 2500, 5000, 10000}) scale_->addItem(QString::number(s));
  // The screen's scale first offered, as a whole number.
  const double now = doc.ScaleDenominator >= 1 && std::isfinite(doc.ScaleDenominator) ? std::round(doc.ScaleDenominator) : 500;
  scale_->setCurrentText(Q(tavik::num::Plain(now)));
  auto* scaleRow = new QHBoxLayout;
  scaleRow->addWidget(new QLabel("1 :", this));
  scaleRow->addWidget(scale_, 1);
  form->addRow("比例尺", scaleRow);

  sheet_ = new QComboBox(this);
  sheet_->setObjectName("cboSheet");
  sheet_->addItems({"A4", "A3"});
  sheet_->setCurrentText(Q(store.GetSetting(kApp, kSection, "Sheet", "A4")));
  form->addRow("紙張", sheet_);
  auto* orientation = new QHBoxLayout;
  portrait_ = new QRadioButton("直印", this);
  portrait_->setObjectName("optPortrait");
  landscape_ = new QRadioButton("橫印", this);
  landscape_->setObjectName("optLandscape");
  (store.GetSetting(kApp, kSection, "Landscape", "0") == "1" ? landscape_ : portrait_)->setChecked(true);
  orientation->addWidget(portrait_);
  orientation->addWidget(landscape_);
  orientation->addStretch(1);
  form->addRow("方向", orientation);

  title_ = new QLineEdit(Q(DocumentTitle(doc)), this);
  title_->setObjectName("txtTitle");
  form->addRow("圖名", title_);
  surveyor_ = new QLineEdit(Q(store.GetSetting(kApp, kSection, "Surveyor")), this);
  surveyor_->setObjectName("txtSurveyor");
  form->addRow("測量員", surveyor_);
  company_ = new QLineEdit(Q(store.GetSetting(kApp, kSection, "Company")), this);
  company_->setObjectName("txtCompany");
  form->addRow("公司", company_);

  target_ = new QComboBox(this);
  target_->setObjectName("cboTarget");
  target_->addItems(PrinterNames());
  target_->addItem(kPdf);
  form->addRow("印到", target_);
  noPrinter_ = new QLabel("這台電腦沒有可用的印表機,可印成 PDF 檔案。", this);
  noPrinter_->setObjectName("lblNoPrinter");
  noPrinter_->setStyleSheet("color: #b00000;");
  noPrinter_->setVisible(target_->count() == 1);
  form->addRow(noPrinter_);
  auto* pdfRow = new QHBoxLayout;
  pdfPath_ = new QLineEdit(Q(doc.DocumentName + ".pdf"), this);
  pdfPath_->setObjectName("txtPdfPath");
  auto* browse = new QPushButton("瀏覽...", this);
  pdfRow->addWidget(pdfPath_, 1);
  pdfRow->addWidget(browse);
  form->addRow("PDF 檔名", pdfRow);
  connect(browse, &QPushButton::clicked, this, [this] {
    const QString f = QFileDialog::getSaveFileName(this, "PDF 檔名", pdfPath_->text(), "PDF (*.pdf)");
    if (!f.isEmpty()) pdfPath_->setText(f);
  });
  auto showPdf = [this] { pdfPath_->setEnabled(target_->currentText() == kPdf); };
  connect(target_, &QComboBox::currentIndexChanged, this, showPdf);
  showPdf();
  col->addLayout(form);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(preview ? "預覽" : "列印");
  buttons->button(QDialogButtonBox::Cancel)->setText("取消");
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  col->addWidget(buttons);
  setMinimumWidth(420);
}

bool FrmPrint::Read(PrintOptions& o, PrintTarget& t, tavik::ui::Dialogs& dialogs) const {
  const auto scale = tavik::num::ParseStrict(scale_->currentText().trimmed().toStdString());
  if (!scale || !(*scale >= tavik::view::MinPrintScale && *scale <= tavik::view::MaxPrintScale)) {
    dialogs.MsgBox("比例尺請輸入 1 到 1000000 之間的數字", "列印");
    return false;
  }
  o.scale = *scale;
  o.sheet = sheet_->currentText() == "A3" ? tavik::view::Sheet::A3 : tavik::view::Sheet::A4;
  o.landscape = landscape_->isChecked();
  o.title = title_->text().trimmed().toStdString();
  o.surveyor = surveyor_->text().trimmed().toStdString();
  o.company = company_->text().trimmed().toStdString();
  o.date = QDate::currentDate().toString("yyyy/MM/dd").toStdString();
  t = PrintTarget{};
  if (target_->currentText() == kPdf) {
    t.pdfPath = pdfPath_->text().trimmed().toStdString();
    if (t.pdfPath.empty()) {
      dialogs.MsgBox("請輸入 PDF 檔名", "列印");
      return false;
    }
  } else {
    t.printer = target_->currentText().toStdString();
  }
  return true;
}

void FrmPrint::Remember() const {
  store_.SaveSetting(kApp, kSection, "Sheet", sheet_->currentText().toStdString());
  store_.SaveSetting(kApp, kSection, "Landscape", landscape_->isChecked() ? "1" : "0");
  store_.SaveSetting(kApp, kSection, "Surveyor", surveyor_->text().trimmed().toStdString());
  store_.SaveSetting(kApp, kSection, "Company", company_->text().trimmed().toStdString());
}

namespace {

void RunPrint(Program& program, bool preview) {
  tavik::Document& doc = program.app.doc;
  if (!doc.IsOpen() || !program.edit) return;
  FrmPrint dlg(doc, program.store, preview, &program.frm);
  PrintOptions o;
  PrintTarget t;
  for (;;) {
    if (dlg.exec() != QDialog::Accepted) return;
    if (dlg.Read(o, t, program.dialogs)) break;
  }
  dlg.Remember();
  const tavik::view::Display& display = program.edit->Canvas().display;
  if (!preview) {
    if (PrintSheet(t, doc, display, o, program.dialogs) && !t.pdfPath.empty())
      program.frm.SetOBSBox("已印成 " + t.pdfPath);
    return;
  }
  QPrinter printer(QPrinter::HighResolution);
  if (t.pdfPath.empty() && !QPrinterInfo::printerInfo(Q(t.printer)).isNull()) {
    printer.setPrinterName(Q(t.printer));
  } else {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(Q(t.pdfPath));
  }
  SetUpPrinter(printer, o);
  QPrintPreviewDialog view(&printer, &program.frm);
  view.setObjectName("PrintPreview");
  view.setWindowTitle("預覽列印");
  view.resize(program.frm.size() * 0.9);
  QObject::connect(&view, &QPrintPreviewDialog::paintRequested, &view, [&](QPrinter* target) {
    QPainter p(target);
    PaintSheet(p, *target, doc, display, o, program.dialogs);
  });
  view.exec();
}

}  // namespace

void AddPrintCommands(Program& program) {
  QMenu* file = program.frm.Menu("MainMnuFile");
  QAction* closeDoc = program.frm.Command("MainMnuClose");
  if (!file || !closeDoc) return;
  const QList<QAction*> actions = file->actions();
  const qsizetype at = actions.indexOf(closeDoc);
  QAction* before = at >= 0 && at + 1 < actions.size() ? actions[at + 1] : nullptr;
  QAction* sep = new QAction(file);
  sep->setSeparator(true);
  file->insertAction(before, sep);
  QAction* print = new QAction("列印(&P)...", file);
  print->setObjectName("MainMnuPrint");
  print->setShortcut(QKeySequence::Print);
  QAction* preview = new QAction("預覽列印(&V)...", file);
  preview->setObjectName("MainMnuPrintPreview");
  file->insertAction(before, print);
  file->insertAction(before, preview);
  QObject::connect(print, &QAction::triggered, &program.frm, [&program] { RunPrint(program, false); });
  QObject::connect(preview, &QAction::triggered, &program.frm, [&program] { RunPrint(program, true); });
  program.frm.AddDocumentCommand(print);
  program.frm.AddDocumentCommand(preview);
}
