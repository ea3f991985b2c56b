// Printing the map: 檔案 → 列印... and 預覽列印.... FrmPrint chooses the scale, the
// sheet (A4 or A3, upright or across), the title block's texts and where the print goes
// (a printer of this computer or a PDF file); the sheet is painted by the map view's
// own repaint through a surface on the printer's page, with a frame and a title block.
#pragma once

#include <QDialog>
#include <string>

#include "core/document.h"
#include "platform/dialogs.h"
#include "view/display.h"
#include "view/print_layout.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPainter;
class QPrinter;
class QRadioButton;
class Program;

namespace tavik::ui {
class SettingsStore;
}

// Where a print goes: a printer by name, or a PDF file when `pdfPath` is set.
struct PrintTarget {
  std::string printer;
  std::string pdfPath;
};

// Sets the printer's sheet: size, orientation, no margins of its own (the layout keeps
// its own).
void SetUpPrinter(QPrinter& printer, const tavik::view::PrintOptions& options);

// Paints the whole sheet (map, frame, title block) with a painter open on `printer`.
void PaintSheet(QPainter& painter, const QPrinter& printer, tavik::Document& doc, const tavik::view::Display& display,
                const tavik::view::PrintOptions& options, tavik::ui::Dialogs& dialogs);

// Prints the sheet. A printer that is not there, or a PDF file that cannot be written,
// is told in a message and nothing is printed; false then.
bool PrintSheet(const PrintTarget& target, tavik::Document& doc, const tavik::view::Display& display,
                const tavik::view::PrintOptions& options, tavik::ui::Dialogs& dialogs);

// The printers of this computer, the default first; empty when there are none.
QStringList PrinterNames();

class FrmPrint : public QDialog {
  Q_OBJECT
 public:
  // `preview`: the dialog leads to the preview rather than to the printer.
  FrmPrint(const tavik::Document& doc, tavik::ui::SettingsStore& store, bool preview, QWidget* parent = nullptr);

  // The choice; false with a message when the scale is no number in range.
  bool Read(tavik::view::PrintOptions& options, PrintTarget& target, tavik::ui::Dialogs& dialogs) const;
  // Keeps the sheet, the names and the PDF file for the next print.
  void Remember() const;

 private:
  tavik::ui::SettingsStore& store_;
  QComboBox* scale_;
  QComboBox* sheet_;
  QRadioButton* portrait_;
  QRadioButton* landscape_;
  QLineEdit* title_;
  QLineEdit* surveyor_;
  QLineEdit* company_;
  QComboBox* target_;
  QLineEdit* pdfPath_;
  QLabel* noPrinter_;
};

// 列印... and 預覽列印... in the 檔案 menu, enabled while a document is open.
void AddPrintCommands(Program& program);
