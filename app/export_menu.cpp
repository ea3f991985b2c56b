#include "app/export_menu.h"

#include <QAction>
#include <QMenu>

#include "app/dxfoutput.h"
#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/numbers.h"
#include "core/text.h"
#include "export/document_report.h"
#include "export/ground_line.h"
#include "export/profile_dxf.h"
#include "export/side_tables.h"
#include "export/symbol_library.h"

ExportMenu::ExportMenu(Program& program) : QObject(&program.frm), program_(program) {
  setObjectName("ExportMenu");
  QMenu* menu = program.frm.Menu("MainMnuExport");
  if (menu == nullptr) return;
  auto add = [&](const char* name, const char* caption, void (ExportMenu::*run)()) {
    QAction* a = menu->addAction(QString::fromUtf8(caption));
    a->setObjectName(name);
    connect(a, &QAction::triggered, this, run);
  };
  add("MainMnuDXFOutput", "輸出 DXF 圖檔...", &ExportMenu::OpenDXFOutput);
  menu->addSeparator();
  add("MainMnuPointTableCsv", "控制點樁位表(CSV)", &ExportMenu::PointTable);
  add("MainMnuClassTableCsv", "分類樁位表(CSV)", &ExportMenu::ClassTable);
  menu->addSeparator();
  add("MainMnuReport", "圖檔報表(TXT)...", &ExportMenu::Report);
  menu->addSeparator();
  add("MainMnuProfileDxf", "縱斷面圖(DXF)...", &ExportMenu::Profile);
  add("MainMnuSectionsDxf", "橫斷面圖(DXF)...", &ExportMenu::Sections);
  menu->addSeparator();
  add("MainMnuObsBook", "觀測手簿(Excel)...", &ExportMenu::ObservationBook);
  add("MainMnuStakeBook", "放樣手簿(Excel)...", &ExportMenu::StakeBook);
}

int16_t& ExportMenu::AreaUnit() {
  return program_.edit ? program_.edit->Editor().Area.AreaUnit : areaUnitAlone_;
}

void ExportMenu::OpenDXFOutput() {
  if (!program_.app.doc.IsOpen()) return;
  DXFOutput dlg(program_.app.doc, memory_, AreaUnit(), program_.dialogs, program_.app.paths.WorkFolder(),
                tavik::dxf::SymbolLibraryFolder(program_.app.paths), &program_.frm);
  if (dlg.exec() == QDialog::Accepted && !dlg.Outcome().isEmpty()) program_.frm.SetPrompt(dlg.Outcome().toStdString());
}

namespace {
// The side tables go into the document's own folder, beside its drawing.
std::filesystem::path DocumentFolder(const tavik::Document& doc) {
  return std::filesystem::path(doc.DocumentName).parent_path();
}
}  // namespace

void ExportMenu::PointTable() {
  if (!program_.app.doc.IsOpen()) return;
  const auto r = tavik::dxf::WritePointTableCsv(program_.app.doc, DocumentFolder(program_.app.doc));
  program_.dialogs.MsgBox(r.message, tavik::dxf::TablesTitle);
}

void ExportMenu::ClassTable() {
  if (!program_.app.doc.IsOpen()) return;
  const auto r = tavik::dxf::WriteClassTableCsv(program_.app.doc, DocumentFolder(program_.app.doc));
  program_.dialogs.MsgBox(r.message, tavik::dxf::TablesTitle);
}

void ExportMenu::Report() {
  const tavik::Document& doc = program_.app.doc;
  if (!doc.IsOpen()) return;
  const std::string path = program_.dialogs.SaveFileName(tavik::dxf::ReportTitle, "文字檔(*.TXT)|*.TXT", doc.TxtPath);
  if (path.empty()) return;
  const std::string why = tavik::dxf::WriteDocumentReport(doc, AreaUnit(), path, tavik::dxf::ReportTimeNow());
  program_.dialogs.MsgBox(why.empty() ? "[" + std::filesystem::path(path).filename().string() + "] 圖檔報表輸出完成" : why,
                          tavik::dxf::TablesTitle);
}

namespace {
constexpr const char* DxfFilter = "DXF檔(*.DXF)|*.DXF";
}  // namespace

void ExportMenu::Profile() {
  const tavik::Document& doc = program_.app.doc;
  if (!doc.IsOpen()) return;
  if (std::string why = tavik::dxf::RouteRefusal(doc); !why.empty()) {
    program_.dialogs.MsgBox(why, tavik::dxf::ProfileTitle);
    return;
  }
  const std::string path = program_.dialogs.SaveFileName(tavik::dxf::ProfileTitle, DxfFilter, doc.DocumentName + "_縱斷面.DXF");
  if (path.empty()) return;
  const auto r = tavik::dxf::WriteProfileDxf(doc, path);
  program_.dialogs.MsgBox(r.message, r.title);
}

void ExportMenu::Sections() {
  const tavik::Document& doc = program_.app.doc;
  if (!doc.IsOpen()) return;
  if (std::string why = tavik::dxf::RouteRefusal(doc); !why.empty()) {
    program_.dialogs.MsgBox(why, tavik::dxf::SectionsTitle);
    return;
  }
  // With section lines drawn the field may stay empty; without, an interval is needed.
  bool drawn = false;
  for (int32_t i = 0; i < doc.EntityCount && i < static_cast<int32_t>(doc.EntityTable.size()); ++i) {
    const tavik::Entity& e = doc.EntityTable[i];
    drawn = drawn || (e.Code == tavik::dxf::CodeSectionLine && e.Kind == tavik::KindLine && !e.Deleted);
  }
  double interval = 0;
  for (;;) {
    const auto answer = program_.dialogs.InputBox(
        "橫斷面間距(公尺):\n(空白:在代碼521的橫斷面線上取橫斷面)", tavik::dxf::SectionsTitle, drawn ? "" : "20");
    if (!answer) return;
    if (tavik::text::Trim(*answer).empty()) break;
    const auto m = tavik::num::ParseStrict(*answer);
    if (m && *m > 0 && *m < 1e6) {
      interval = *m;
      break;
    }
    program_.dialogs.MsgBox("間距必需是大於0的數字", tavik::dxf::SectionsTitle);
  }
  const std::string path = program_.dialogs.SaveFileName(tavik::dxf::SectionsTitle, DxfFilter, doc.DocumentName + "_橫斷面.DXF");
  if (path.empty()) return;
  const auto r = tavik::dxf::WriteSectionsDxf(doc, interval, path);
  program_.dialogs.MsgBox(r.message, r.title);
}

void ExportMenu::ObservationBook() { FieldBook(tavik::sheet::Book::Observation, "_觀測手簿.xlsx"); }
void ExportMenu::StakeBook() { FieldBook(tavik::sheet::Book::Stake, "_放樣手簿.xlsx"); }

void ExportMenu::FieldBook(tavik::sheet::Book book, const char* suffix) {
  const tavik::Document& doc = program_.app.doc;
  if (!doc.IsOpen()) return;
  const std::string path =
      program_.dialogs.SaveFileName(tavik::sheet::SheetTitle, "Excel 活頁簿(*.xlsx)|*.xlsx", doc.DocumentName + suffix);
  if (path.empty()) return;
  const auto r = tavik::sheet::WriteFieldBook(doc, book, path,
                                              tavik::dxf::SymbolLibraryFolder(program_.app.paths));
  std::string text = r.message;
  for (const auto& w : r.warnings) text += "\n" + w;
  program_.dialogs.MsgBox(text, tavik::sheet::SheetTitle);
}
