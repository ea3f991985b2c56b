#include "app/basemap_station.h"

#include <QAction>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QProgressDialog>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableWidget>
#include <QVBoxLayout>
#include <filesystem>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/docfile.h"
#include "core/reference_map.h"
#include "core/text.h"
#include "edit/modes.h"
#include "view/document_view.h"

namespace bm = tavik::basemap;

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

constexpr const char* SpcTitle = "SPC 檔作為底圖";
constexpr const char* RemoveTitle = "移除底圖";
// Asked before the whole base map goes: it cannot be had back but by importing again.
constexpr const char* RemoveQuestion = "確定要移除整個底圖嗎?";
constexpr const char* VectorFilter =
    "向量圖檔(*.dxf;*.shp;*.gpkg;*.gml;*.kml)|*.dxf;*.shp;*.gpkg;*.gml;*.kml|DXF(*.dxf)|*.dxf|"
    "Shapefile(*.shp)|*.shp|GeoPackage(*.gpkg)|*.gpkg|所有檔案(*.*)|*.*";

}  // namespace

// ---- The layer codes ------------------------------------------------------------------

LayerCodeDlg::LayerCodeDlg(const bm::VectorDrawing& d, bool reference, QWidget* parent) : QDialog(parent) {
  setObjectName("LayerCodeDlg");
  setWindowTitle("圖層代碼");
  auto* col = new QVBoxLayout(this);
  col->addWidget(new QLabel(reference ? "每個圖層的線與文字要成為哪個圖例代碼 (地籍線要能供土地分割點選):"
                                      : "每個圖層的線與文字要成為哪個圖例代碼:",
                            this));
  table_ = new QTableWidget(static_cast<int>(d.Layers.size()), 4, this);
  table_->setObjectName("LayerCodes");
  table_->setHorizontalHeaderLabels({"圖層", "筆數", "線代碼", "文字代碼"});
  table_->verticalHeader()->hide();
  for (std::size_t i = 0; i < d.Layers.size(); ++i) {
    const int r = static_cast<int>(i);
    const bm::LayerCode c = bm::DefaultLayerCode(d.Layers[i], reference);
    auto* name = new QTableWidgetItem(Q(d.Layers[i].empty() ? std::string("(無名)") : d.Layers[i]));
    name->setData(Qt::UserRole, Q(d.Layers[i]));
    name->setFlags(name->flags() & ~Qt::ItemIsEditable);
    table_->setItem(r, 0, name);
    auto* rows = new QTableWidgetItem(QString::number(d.RowsPerLayer[i]));
    rows->setFlags(rows->flags() & ~Qt::ItemIsEditable);
    table_->setItem(r, 1, rows);
    for (int k = 0; k < 2; ++k) {
      auto* spin = new QSpinBox(table_);
      spin->setRange(reference ? 1 : 0, 999);
      spin->setValue(k == 0 ? c.Line : c.Text);
      table_->setCellWidget(r, 2 + k, spin);
    }
  }
  table_->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
  for (int c = 1; c < 4; ++c) table_->horizontalHeader()->setSectionResizeMode(c, QHeaderView::ResizeToContents);
  col->addWidget(table_);
  auto* buttons = new QDialogButtonBox(this);
  buttons->addButton("確定", QDialogButtonBox::AcceptRole);
  buttons->addButton("取消", QDialogButtonBox::RejectRole);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  col->addWidget(buttons);
  resize(460, 360);
}

bm::LayerCodes LayerCodeDlg::Codes() const {
  bm::LayerCodes codes;
  for (int r = 0; r < table_->rowCount(); ++r) {
    const auto code = [&](int c) { return static_cast<int16_t>(static_cast<QSpinBox*>(table_->cellWidget(r, c))->value()); };
    codes[table_->item(r, 0)->data(Qt::UserRole).toString().toStdString()] = {code(2), code(3)};
  }
  return codes;
}

// ---- The station ----------------------------------------------------------------------

BaseMapStation::BaseMapStation(Program& program, EditWiring& edit)
    : QObject(&program.frm), program_(program), edit_(edit) {
  MainFrm& frm = program_.frm;
  auto& doc = program_.app.doc;
  if (QMenu* import = frm.Menu("MainMnuImport")) {
    const std::pair<const char*, const char*> items[] = {
        {"MainMnuImportBaseMap", "匯入底圖 (DXF/SHP/GPKG/GML/KML)..."},
        {"MainMnuImportReference", "匯入參考圖 (DXF/SHP/GPKG/GML/KML)..."},
        {"MainMnuImportSpcBaseMap", "SPC 檔作為底圖..."}};
    std::vector<QAction*> made;
    for (const auto& [name, caption] : items) {
      auto* a = new QAction(caption, import);
      a->setObjectName(name);
      import->addAction(a);
      made.push_back(a);
    }
    connect(made[0], &QAction::triggered, this, [this] { ImportBaseMap(); });
    connect(made[1], &QAction::triggered, this, [this] { ImportReference(); });
    connect(made[2], &QAction::triggered, this, [this] { ImportSpcBaseMap(); });
    connect(import, &QMenu::aboutToShow, this, [made, &doc] {
      for (QAction* a : made) a->setEnabled(doc.IsOpen());
    });
  }
  if (QAction* remove = frm.Command("BMRemove")) {
    connect(remove, &QAction::triggered, this, [this] { RemoveAll(); });
    remove->setVisible(true);
  }
  if (QAction* window = frm.Command("BMEraseWindow")) {
    connect(window, &QAction::triggered, this, [this] {
      if (program_.app.doc.IsOpen() && program_.app.doc.BaseMapCount > 0)
        edit_.Editor().StartCommand(tavik::edit::mode::BMEraseWindow);
    });
    window->setVisible(true);
  }
  // The window's two corners: the press, then the release.
  edit_.Host().Plugs[tavik::edit::mode::BMEraseWindow] = [this](tavik::edit::PlugEvent e, double E, double N) {
    if (e == tavik::edit::PlugEvent::Press) {
      cornerE_ = E, cornerN_ = N;
      return true;
    }
    if (e != tavik::edit::PlugEvent::Release) return false;
    auto& app = program_.app;
    if (bm::EraseBaseMapWindow(app.doc, app.work, cornerE_, cornerN_, E, N) > 0) BaseMapChanged();
    return true;
  };

  ChooseLayerCodes = [this](bm::VectorDrawing& d, bool reference) {
    LayerCodeDlg dlg(d, reference, &program_.frm);
    if (dlg.exec() != QDialog::Accepted) return false;
    bm::ApplyLayerCodes(d, dlg.Codes(), reference);
    return true;
  };
}

std::string BaseMapStation::AskFile(const char* title) const {
  return program_.dialogs.OpenFileName(title, VectorFilter, program_.app.paths.WorkFolder().string());
}

bool BaseMapStation::Read(const std::string& path, const char* title, bm::VectorDrawing& d) {
  QProgressDialog progress(Q(std::string("讀取 ") + std::filesystem::path(path).filename().string()), "取消", 0, 1000,
                           &program_.frm);
  progress.setObjectName("ImportProgress");
  progress.setWindowTitle(title);
  progress.setWindowModality(Qt::WindowModal);
  progress.setMinimumDuration(500);
  progress.setAutoReset(false);
  progress.setAutoClose(false);
  QElapsedTimer sinceEvents;
  sinceEvents.start();
  bm::VectorImportOptions opts;
  opts.Grid.Datum = program_.gpsDatum.GpsDatum == "TWD67" ? "TWD67" : "TWD97";
  opts.Grid.CentralMeridian = program_.gpsDatum.CentralMeridian;
  opts.Progress = [&progress](int64_t done, int64_t total) {
    progress.setValue(static_cast<int>(total > 0 ? std::min<int64_t>(done * 1000 / total, 999) : 0));
  };
  // The rows are gathered apart from the document, so letting the events in here (the
  // cancel button's click among them) cannot meet a half-filled table.
  opts.Cancelled = [&] {
    if (sinceEvents.elapsed() >= 50) {
      QCoreApplication::processEvents();
      sinceEvents.restart();
    }
    return progress.wasCanceled();
  };
  std::string message;
  const bm::ReadResult r = bm::ReadVectorFile(path, opts, d, message);
  progress.close();
  if (r == bm::ReadResult::Cancelled) {
    program_.frm.statusBar()->showMessage(Q(bm::ImportCancelledMessage), 5000);
    return false;
  }
  if (r == bm::ReadResult::Failed) {
    program_.dialogs.MsgBox(message, title);
    return false;
  }
  return true;
}

void BaseMapStation::ImportBaseMap() {
  auto& app = program_.app;
  if (!app.doc.IsOpen()) return;
  const std::string path = AskFile(bm::ImportTitle);
  if (path.empty()) return;
  bm::VectorDrawing d;
  if (!Read(path, bm::ImportTitle, d)) return;
  bm::ApplyLayerCodes(d, {}, false);
  const std::string converted = d.Converted;
  edit_.Editor().Reset();
  bm::AddToBaseMap(app.doc, app.work, d);
  BaseMapChanged();
  edit_.Host().ViewCommand("ZE");
  if (!converted.empty()) program_.dialogs.MsgBox(converted, bm::ImportTitle);
}

void BaseMapStation::ImportReference() {
  auto& app = program_.app;
  if (!app.doc.IsOpen()) return;
  if (const std::string why = tavik::ReferenceMapRefusal(app.doc); !why.empty()) {
    program_.dialogs.MsgBox(why, bm::ReferenceImportTitle);
    return;
  }
  const std::string path = AskFile(bm::ReferenceImportTitle);
  if (path.empty()) return;
  bm::VectorDrawing d;
  if (!Read(path, bm::ReferenceImportTitle, d)) return;
  if (!ChooseLayerCodes || !ChooseLayerCodes(d, true)) return;
  std::string refusal;
  edit_.Editor().Reset();
  // Checked again: a point may have come in from the instrument while the file was read.
  if (!bm::ImportReferenceMap(app.doc, app.view, app.work, d, refusal)) {
    program_.dialogs.MsgBox(refusal, bm::ReferenceImportTitle);
    return;
  }
  edit_.Host().ViewCommand("ZE");
  program_.cycle.ShowCounts();
  program_.frm.Paper1()->update();
  if (!d.Converted.empty()) program_.dialogs.MsgBox(d.Converted, bm::ReferenceImportTitle);
}

void BaseMapStation::ImportSpcBaseMap() {
  auto& app = program_.app;
  if (!app.doc.IsOpen()) return;
  const std::string path = program_.dialogs.OpenFileName(
      SpcTitle, "SPC圖檔(*.SPC)|*.SPC|舊版圖檔(*.SP)|*.SP|所有檔案(*.*)|*.*", app.paths.WorkFolder().string());
  if (path.empty()) return;
  tavik::Document src;
  tavik::View scratch;
  const std::filesystem::path p(path);
  tavik::SetDocumentName(src, (p.parent_path() / p.stem()).string());
  bool read = false;
  if (tavik::text::UpperAscii(p.extension().string()) == ".SP") {
    src.SpPath = path;
    read = tavik::LoadOldDocument(src, scratch, program_.dialogs);
  } else {
    src.SpcPath = path;
    read = tavik::LoadDocument(src, program_.dialogs);
  }
  if (!read) return;  // the reader said why
  bm::VectorDrawing d = bm::DocumentAsBaseMap(src);
  if (d.Rows.empty()) {
    program_.dialogs.MsgBox(bm::NothingToImportMessage, SpcTitle);
    return;
  }
  edit_.Editor().Reset();
  bm::AddToBaseMap(app.doc, app.work, d);
  BaseMapChanged();
  edit_.Host().ViewCommand("ZE");
}

void BaseMapStation::RemoveAll() {
  auto& app = program_.app;
  if (!app.doc.IsOpen() || app.doc.BaseMapCount == 0) return;
  if (program_.dialogs.MsgBox(RemoveQuestion, RemoveTitle, tavik::ui::Buttons::YesNo, tavik::ui::Icon::Question) !=
      tavik::ui::Answer::Yes)
    return;
  edit_.Editor().Reset();
  bm::RemoveBaseMap(app.doc, app.work);
  BaseMapChanged();
}

// The base map grew or shrank: shown when there is one, its commands offered as far as
// there is anything for them, the counts and the picture brought up to date.
void BaseMapStation::BaseMapChanged() {
  auto& app = program_.app;
  app.BaseMapOn = app.doc.BaseMapCount > 0;
  edit_.Canvas().display.ShowBaseMap = app.BaseMapOn ? tavik::kTrue : tavik::kFalse;
  program_.frm.EnableBaseMapCommands(app.BaseMapOn);
  program_.cycle.ShowCounts();
  edit_.Host().ViewChanged();
}
