#include "app/edit_wiring.h"

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QScreen>
#include <QTableWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <tuple>

#include "app/gnss_wiring.h"
#include "app/legmenu.h"
#include "app/survey_station.h"
#include "procedures/observation_pipeline.h"
#include "core/numbers.h"
#include "core/tables.h"
#include "edit/line_edit.h"
#include "edit/modes.h"
#include "view/navigation.h"
#include "view/render.h"
#include "view/screen_tables.h"
#include "view/transform.h"

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

int ButtonValue(Qt::MouseButton b) {
  switch (b) {
    case Qt::LeftButton:
      return tavik::edit::LeftButton;
    case Qt::RightButton:
      return tavik::edit::RightButton;
    case Qt::MiddleButton:
      return tavik::edit::MiddleButton;
    default:
      return 0;
  }
}

int KeyCode(int qtKey) {
  using tavik::edit::Editor;
  if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12) return Editor::KeyF1 + (qtKey - Qt::Key_F1);
  if (qtKey == Qt::Key_Delete) return Editor::KeyDelete;
  if (qtKey == Qt::Key_Escape) return Editor::KeyEscape;
  if (qtKey == Qt::Key_Space) return Editor::KeySpace;
  if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) return 'A' + (qtKey - Qt::Key_A);
  if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) return '0' + (qtKey - Qt::Key_0);
  return 0;
}

}  // namespace

// The window's half of the editor's host.
class EditWiring::WindowHost : public tavik::edit::MapHost {
 public:
  WindowHost(tavik::view::MapCanvas& canvas, EditWiring& w) : MapHost(canvas), w_(w) {}

  void SetPrompt(const std::string& p) override { w_.program_.frm.SetPrompt(p); }
  void SetReadout(const std::string& e, const std::string& n) override { w_.program_.frm.SetReadout(e, n); }
  void ShowStatus(const std::string& s) override { w_.program_.frm.statusBar()->showMessage(Q(s), 8000); }
  void SetCursor(tavik::edit::Cursor c) override {
    using tavik::edit::Cursor;
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (c == Cursor::Pan) shape = Qt::ClosedHandCursor;
    if (c == Cursor::Window || c == Cursor::Draw) shape = Qt::CrossCursor;
    if (c == Cursor::Pick) shape = Qt::PointingHandCursor;
    w_.program_.frm.Paper1()->setCursor(shape);
  }
  void LegendChanged(int16_t code) override { ShowStatus("目前圖例 " + std::to_string(code)); }
  void BaseMapChanged() override {
    MapHost::BaseMapChanged();
    auto& app = w_.program_.app;
    app.BaseMapOn = true;
    w_.display_.ShowBaseMap = tavik::kTrue;
    w_.program_.frm.EnableBaseMapCommands(true);
    w_.program_.cycle.ShowCounts();
  }
  void ShowInquiry(int32_t row, const std::string& text) override {
    QMenu menu(w_.program_.frm.Paper1());
    for (const QString& line : Q(text).split("\r\n")) menu.addAction(line)->setEnabled(false);
    menu.addSeparator();
    auto& ed = w_.Editor();
    QObject::connect(menu.addAction("刪除此圖元"), &QAction::triggered, [&ed, row] { ed.EraseEntityRow(row); });
    QObject::connect(menu.addAction("更改圖例"), &QAction::triggered,
                     [&ed] { ed.StartCommand(tavik::edit::mode::ChangeAtt); });
    QObject::connect(menu.addAction("點名更改"), &QAction::triggered,
                     [&ed] { ed.StartCommand(tavik::edit::mode::PtRename); });
    QObject::connect(menu.addAction("平移複製(OFFSET)"), &QAction::triggered, [&ed, row] { ed.StartOffset(row); });
    const auto& doc = w_.program_.app.doc;
    if (row < static_cast<int32_t>(doc.EntityTable.size()) && doc.EntityTable[row].Kind == tavik::KindLine) {
      QAction* edit = menu.addAction("編輯線段...");
      edit->setObjectName("InquiryEditLine");
      QObject::connect(edit, &QAction::triggered, [this, row] { w_.ShowLineEdit(row); });
    }
    menu.exec(QCursor::pos());
  }
  void FrameCommand(const std::string& key) override { Run(key); }
  void Measure() override { Run("Measure"); }
  std::string MeasureMode() const override { return w_.program_.instruments.inst.MeasureMode; }
  bool HasGpsFix() const override { return w_.program_.gnss && w_.program_.gnss->HasFix(); }
  void ShowManual() override { w_.program_.frm.ShowManual(); }
  void ModeChanged(const std::string& mode) override {
    for (QToolBar* bar : {w_.toolbar1_, w_.toolbar2_}) {
      if (!bar) continue;
      for (QAction* a : bar->actions()) {
        const std::string key = a->objectName().toStdString();
        bool unused;
        if (!a->isCheckable() || tavik::view::ToggleState(w_.display_, key, unused)) continue;
        a->setChecked(key == mode || (mode == "ZoomW" && key == "ZW") || (mode == "SS1" && key == "手動引點"));
      }
    }
  }

 private:
  void Run(const std::string& key) {
    const auto it = w_.FrameCommands.find(key);
    if (it != w_.FrameCommands.end() && it->second) it->second();
  }
  EditWiring& w_;
};

EditWiring::EditWiring(Program& program)
    : QObject(&program.frm),
      program_(program),
      paper_(program.frm.Paper1()->Surface(), program.app.view) {
  auto& app = program_.app;
  canvas_ = std::make_unique<tavik::view::MapCanvas>(app.doc, app.view, display_, paper_, program_.frm, program_.dialogs);
  canvas_->visibleOnly = true;  // the picture is the size of the window
  canvas_->RebuildScreenTables = [&app] {
    tavik::RebuildScreenPoints(app.doc, app.view);
    tavik::RebuildScreenEntities(app.doc, app.view);
  };
  canvas_->WriteRecoveryHeader = [&app] { app.work.WriteRecoveryHeader(app.doc); };
  host_ = std::make_unique<WindowHost>(*canvas_, *this);
  editor_ = std::make_unique<tavik::edit::Editor>(app.doc, app.view, app.work, program_.dialogs, paper_, *host_);

  auto& cycle = program_.cycle;
  FrameCommands["開新圖"] = [&cycle] { cycle.New(); };
  FrameCommands["開啟舊圖"] = [&cycle] { cycle.Open(); };
  FrameCommands["快速存檔"] = [&cycle] { cycle.Save(); };
  // "輸入角度": a reading typed from the instrument's display, stored as a shot is.
  FrameCommands["輸入角度"] = [this] {
    if (!program_.survey) return;
    tavik::SurveyContext& ctx = program_.survey->ctx;
    if (ctx.window.ShowKeyedObservation()) tavik::ReducePoint(ctx);
  };
  if (GnssWiring* gnss = program_.gnss.get()) {
    for (const char* key : {"連接COM1", "接收資料", "停止接收"})
      FrameCommands[key] = [gnss, k = std::string(key)] { gnss->Toolbar1Click(k); };
  }
  // New, Open, Save and Close end any pointer command and start a fresh view history.
  cycle.hooks.ResetPointer = [this] {
    editor_->Reset();
    tavik::view::ClearViewHistory(program_.app.view, program_.frm);
    documentChanged_ = true;
  };
  host_->BaseMapSetUp = [&app] { return app.BaseMapOn; };
  program_.frm.handlers.Redraw = [this](tavik::ui::Surface&) {
    // The first repaint of a document just opened or recovered shows its base map when
    // the document cycle switched it on; after that only SwitchBM changes it.
    if (documentChanged_ && program_.app.doc.IsOpen()) {
      display_.ShowBaseMap = program_.app.BaseMapOn ? tavik::kTrue : tavik::kFalse;
      documentChanged_ = false;
    }
    canvas_->ResetClip();
    tavik::view::RedrawAll(*canvas_);
    ShowToggles();
  };
  program_.frm.Paper1()->Overlay = [this](QPainter& p) { DrawRubberBand(p); };
  // A scroll bar moves the centre by the fast path while it is held. Paper1 here keeps
  // the visible area only, so letting go runs the full tail and fills the picture again.
  program_.frm.handlers.HScroll = [this](int v) { tavik::view::HScrollTo(*canvas_, v); };
  program_.frm.handlers.VScroll = [this](int v) { tavik::view::VScrollTo(*canvas_, v); };
  program_.frm.handlers.ScrollDone = [this] {
    tavik::view::AfterViewChange(*canvas_);
    program_.frm.Paper1()->update();
  };
  program_.frm.Paper1()->installEventFilter(this);
  program_.frm.installEventFilter(this);
  BuildToolbars();
  BuildMenus();
  program_.edit = this;
}

EditWiring::~EditWiring() {
  if (program_.edit == this) program_.edit = nullptr;
}

tavik::edit::EditHost& EditWiring::Host() { return *host_; }

void EditWiring::BuildToolbars() {
  struct B {
    const char* key;
    const char* caption;
  };
  // The receiver's three buttons show in GPS mode only; receive and stop wait for a connect.
  static const B t1[] = {{"開新圖", "開新圖"},
                         {"開啟舊圖", "開啟舊圖"},
                         {"快速存檔", "快速存檔"},
                         {"連接COM1", "連線"},
                         {"接收資料", "接收"},
                         {"停止接收", "切斷連線"},
                         {"輸入座標", "輸入座標"},
                         {"輸入角度", "輸入角度"},
                         {"手動引點", "手動引點"},
                         {"ZE", "全圖"},
                         {"ZP", "前幕"},
                         {"ZW", "窗選"},
                         {"ZS", "比例"},
                         {"ZC", "測站"},
                         {"ZT", "末點"},
                         {"ZoomOut", "縮小"},
                         {"ZoomIn", "放大"},
                         {"SwitchPtName", "點名"},
                         {"SwitchBM", "底圖"},
                         {"DispGrid", "方格"},
                         {"SwitchEle", "高程"},
                         {"垂距開關", "垂距"},
                         {"SwitchBreak", "斷線"},
                         {"SwitchSN", "流水號"}};
  static const B t2[] = {{"Line", "畫線"},          {"RECT", "矩形"},           {"P2C", "兩點圓"},
                         {"P3C", "三點圓"},         {"ARC", "三點弧"},          {"Text", "文字註記"},
                         {"Symbol", "實物註記"},    {"Label", "區塊註記"},      {"EraseP", "刪點"},
                         {"EraseEntity", "刪圖元"}, {"EraseWindow", "窗選刪除"}, {"Undelete", "救回"}};
  program_.frm.addToolBarBreak();
  toolbar1_ = program_.frm.addToolBar("Toolbar1");
  toolbar1_->setObjectName("Toolbar1");
  for (const B& b : t1) {
    QAction* a = toolbar1_->addAction(QString::fromUtf8(b.caption));
    a->setObjectName(QString::fromUtf8(b.key));
    a->setToolTip(QString::fromUtf8(b.key));
    const std::string key = b.key;
    bool unused;
    a->setCheckable(key == "ZW" || key == "手動引點" || tavik::view::ToggleState(display_, key, unused));
    if (key == "接收資料" || key == "停止接收") a->setEnabled(false);
    connect(a, &QAction::triggered, this, [this, key] {
      editor_->Toolbar1Click(key);
      host_->ModeChanged(editor_->Ptr.ActionMode);  // a refused mode must not stay pressed
      ShowToggles();  // a refused toggle must not change its button either
      program_.frm.Paper1()->update();
    });
  }
  ShowToggles();
  tavik::view::ClearViewHistory(program_.app.view, program_.frm);  // 前幕 has nothing to go back to yet
  program_.frm.addToolBarBreak();
  toolbar2_ = program_.frm.addToolBar("Toolbar2");
  toolbar2_->setObjectName("Toolbar2");
  for (const B& b : t2) {
    QAction* a = toolbar2_->addAction(QString::fromUtf8(b.caption));
    a->setObjectName(QString::fromUtf8(b.key));
    a->setCheckable(std::string(b.key) != "Undelete");
    const std::string key = b.key;
    connect(a, &QAction::triggered, this, [this, key] {
      editor_->Toolbar2Click(key);
      host_->ModeChanged(editor_->Ptr.ActionMode);  // a refused mode must not stay pressed
      program_.frm.Paper1()->update();
    });
  }
  AddLegendButton(
      toolbar2_, program_.app.doc, [this] { return editor_->Ptr.ActionMode; }, program_.dialogs,
      [this](int16_t code) { host_->LegendChanged(code); });
}

void EditWiring::ShowToggles() {
  if (!toolbar1_) return;
  for (QAction* a : toolbar1_->actions()) {
    bool on = false;
    if (tavik::view::ToggleState(display_, a->objectName().toStdString(), on)) a->setChecked(on);
  }
}

void EditWiring::DrawRubberBand(QPainter& p) const {
  const tavik::edit::PointerState& ptr = editor_->Ptr;
  if (!program_.app.doc.IsOpen() || ptr.Panning) return;
  auto visible = [this](double x, double y) { return QPointF(x - paper_.Dx(), y - paper_.Dy()); };
  p.setPen(QPen(QColor(255, 255, 0), 1));
  p.setBrush(Qt::NoBrush);
  if (ptr.Windowing) {
    p.drawRect(QRectF(visible(ptr.DragAnchorX, ptr.DragAnchorY), visible(ptr.DragNowX, ptr.DragNowY)).normalized());
    return;
  }
  // A chain of lines, or the ring of an area query, runs from its last vertex to the pointer.
  const std::vector<double>* from = nullptr;
  std::size_t last = 0;
  if (ptr.LineInProgress && ptr.ChainCount > 0 &&
      ptr.ChainPoints[1].size() >= static_cast<std::size_t>(ptr.ChainCount)) {
    from = ptr.ChainPoints;
    last = static_cast<std::size_t>(ptr.ChainCount) - 1;
  } else if (ptr.ActionMode == tavik::edit::mode::QAREA && !editor_->Area.AreaRing[1].empty()) {
    from = editor_->Area.AreaRing;
    last = editor_->Area.AreaRing[1].size() - 1;
  }
  if (!from || from[0].size() <= last) return;
  float x = 0, y = 0;
  tavik::WorldToPaper(program_.app.view, program_.app.doc.ScaleDenominator, from[0][last], from[1][last], x, y);
  p.drawLine(visible(x, y), visible(ptr.PointerX, ptr.PointerY));
}

void EditWiring::BuildMenus() {
  QMenu* edit = program_.frm.Menu("MainMnuEdit");
  if (edit) {
    struct M {
      const char* name;
      const char* caption;
      const char* mode;
    };
    static const M items[] = {{"MainMnu_MidOf", "線段中點", "NP_MidOf"},
                              {"MainMnu_Devide", "均分線段", "NP_DevideTo"},
                              {"MainMnu_PerOf", "垂足點", "NP_PerOf"},
                              {"MainMnu_IntOf", "兩線交點", "NP_IntOf"},
                              {"MainMnu_Extend", "延伸交點", "NP_Extend"},
                              {"MainMnuQX2LineMark", "在兩線交點產生新點", "QX2LineMark"},
                              {"MainMnuPointProject", "投影到線上", "PointProject"},
                              {"MainMnuQX2Line", "查詢兩線交點", "QX2Line"},
                              {"MainMnuQDis", "查詢距離方位", "QDIS"},
                              {"MainMnuQArea", "查詢面積", "QAREA"},
                              {"MainMnuTrim", "兩線修剪延伸", "LineTrim"}};
    edit->addSeparator();
    for (const M& m : items) {
      QAction* a = edit->addAction(QString::fromUtf8(m.caption));
      a->setObjectName(m.name);
      const std::string mode = m.mode;
      connect(a, &QAction::triggered, this, [this, mode] { editor_->StartCommand(mode); });
    }
    edit->addSeparator();
    // The two notes by menu, with the legend check of their buttons.
    for (const auto& [name, caption, key] : {std::tuple{"MainMnuLabl", "區塊註記", "Label"},
                                             std::tuple{"MainMnuSymb", "實物註記", "Symbol"}}) {
      QAction* a = edit->addAction(QString::fromUtf8(caption));
      a->setObjectName(name);
      const std::string k = key;
      connect(a, &QAction::triggered, this, [this, k] {
        editor_->Toolbar2Click(k);
        host_->ModeChanged(editor_->Ptr.ActionMode);
      });
    }
    QAction* u = edit->addAction("救回刪除的資料(U)");
    u->setObjectName("MainMnuUndelete");
    connect(u, &QAction::triggered, this, [this] { editor_->Undelete(); });
    QAction* undo = edit->addAction("復原圖元編輯");
    undo->setObjectName("MainMnuEditUndo");
    undo->setShortcut(QKeySequence::Undo);
    connect(undo, &QAction::triggered, this, [this] { editor_->UndoEdit(); });
  }
  // The hand-drawn base map, and points made on base-map lines for the pen to join.
  if (QMenu* bm = program_.frm.Menu("MainMnuBasemap")) {
    QAction* draw = new QAction("手繪底圖線", bm);
    draw->setObjectName("MainMnuBaseLine");
    bm->insertAction(bm->actions().isEmpty() ? nullptr : bm->actions().first(), draw);
    connect(draw, &QAction::triggered, this, [this] { editor_->StartCommand(tavik::edit::mode::BaseLine); });
  }
  for (const auto& [name, mode] : {std::pair{"BMLockLineCPnt", tavik::edit::mode::BM_MakeP},
                                   std::pair{"BMLockXLineCPnt", tavik::edit::mode::BM_XLineMakeP}}) {
    if (QAction* a = program_.frm.Command(name)) {
      a->setVisible(true);
      connect(a, &QAction::triggered, this, [this, m = mode] { editor_->StartCommand(m); });
    }
  }
  QMenu* setup = program_.frm.Menu("MainMnuSetup");
  if (setup) {
    QAction* a = setup->addAction("自動點名");
    a->setObjectName("AutoNaming");
    a->setCheckable(true);
    connect(a, &QAction::toggled, this, [this](bool on) { editor_->Names.AutoNaming = on; });
  }
  QMenu* view = program_.frm.Menu("MainMnuView");
  if (view) {
    QAction* pan = view->addAction("平移圖面");
    pan->setObjectName("MainMnuPan");
    connect(pan, &QAction::triggered, this, [this] { editor_->StartCommand(tavik::edit::mode::PAN); });
    QAction* a = view->addAction("快捷鍵速覽");
    a->setObjectName("MainMnuHotKeys");
    connect(a, &QAction::triggered, this, [this] { ShowHotKeys(); });
  }
}

void EditWiring::ShowLineEdit(int32_t row) {
  auto& doc = program_.app.doc;
  if (row < 0 || row >= static_cast<int32_t>(doc.EntityTable.size())) return;
  const tavik::edit::Editor::LineEditValues shown = editor_->LineEditText(row);
  QDialog dlg(&program_.frm);
  dlg.setObjectName("LineEdit");
  dlg.setWindowTitle(tavik::edit::LineEditTitle);
  auto* form = new QFormLayout(&dlg);
  const tavik::Entity& e = doc.EntityTable[row];
  auto at = [](double E, double N) {
    return Q("E " + tavik::num::Format(E, "0.000") + "   N " + tavik::num::Format(N, "0.000"));
  };
  form->addRow("起點(不動):", new QLabel(at(e.X[0], e.Y[0]), &dlg));
  auto* endLabel = new QLabel(at(e.X[1], e.Y[1]), &dlg);
  form->addRow("終點:", endLabel);
  auto field = [&](const char* name, const char* caption, const std::string& value) {
    auto* f = new QLineEdit(Q(value), &dlg);
    f->setObjectName(name);
    form->addRow(caption, f);
    return f;
  };
  QLineEdit* length = field("LineLength", "長度(m):", shown.Length);
  QLineEdit* azimuth = field("LineAzimuth", "方位角(度-分-秒):", shown.Azimuth);
  QLineEdit* name = field("LineName", "名稱:", shown.Name);
  QLineEdit* code = field("LineCode", "圖例代碼:", shown.Code);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dlg);
  buttons->button(QDialogButtonBox::Ok)->setText("確定");
  buttons->button(QDialogButtonBox::Cancel)->setText("取消");
  form->addRow(buttons);
  connect(buttons, &QDialogButtonBox::rejected, &dlg, &QDialog::reject);
  connect(buttons, &QDialogButtonBox::accepted, &dlg, [&] {
    const std::string refused = editor_->EditLine(
        row, {length->text().toStdString(), azimuth->text().toStdString(), name->text().toStdString(),
              code->text().toStdString()});
    if (!refused.empty()) {
      program_.dialogs.MsgBox(refused, tavik::edit::LineEditTitle);
      return;
    }
    dlg.accept();
  });
  dlg.exec();
  program_.frm.Paper1()->update();
}

void EditWiring::ShowHotKeys() {
  auto* dlg = new QDialog(&program_.frm);
  dlg->setObjectName("HotKeys");
  dlg->setWindowTitle("快捷鍵速覽");
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  auto* layout = new QHBoxLayout(dlg);
  // Two tables side by side, each sized to show every row and column whole: the legend
  // letters, and the other keys.
  std::vector<QStringList> legends, others;
  for (const auto& row : tavik::edit::Editor::HotKeyTable()) {
    if (row[1].empty())
      others.push_back({Q(row[0]), Q(row[2])});
    else
      legends.push_back({Q(row[0]), Q(row[1]), Q(row[2])});
  }
  int tallest = 0;
  auto addTable = [&](const char* name, const QStringList& header, const std::vector<QStringList>& rows) {
    auto* table = new QTableWidget(static_cast<int>(rows.size()), static_cast<int>(header.size()), dlg);
    table->setObjectName(name);
    table->setHorizontalHeaderLabels(header);
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionMode(QAbstractItemView::NoSelection);
    table->setFocusPolicy(Qt::NoFocus);
    table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (int r = 0; r < table->rowCount(); ++r)
      for (int c = 0; c < table->columnCount(); ++c)
        table->setItem(r, c, new QTableWidgetItem(rows[static_cast<std::size_t>(r)][c]));
    table->resizeColumnsToContents();
    // Rows as low as the text allows, so the 24 legend letters fit a small screen too.
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setMinimumSectionSize(1);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 4);
    int width = 2 * table->frameWidth();
    for (int c = 0; c < table->columnCount(); ++c) {
      table->setColumnWidth(c, table->columnWidth(c) + 12);
      width += table->columnWidth(c);
    }
    int height = table->horizontalHeader()->sizeHint().height() + 2 * table->frameWidth();
    for (int r = 0; r < table->rowCount(); ++r) height += table->rowHeight(r);
    table->setFixedWidth(width);
    table->setMinimumHeight(std::min(height, 700));
    tallest = std::max(tallest, height);
    layout->addWidget(table, 0, Qt::AlignTop);
  };
  addTable("HotKeyLegends", {"按鍵", "圖例", "名稱"}, legends);
  addTable("HotKeyOthers", {"按鍵", "作用"}, others);
  const QRect screen = program_.frm.screen() ? program_.frm.screen()->availableGeometry() : QRect(0, 0, 1024, 768);
  dlg->resize(dlg->sizeHint().width(), std::min(tallest + 2 * layout->contentsMargins().top(), screen.height() - 60));
  dlg->show();
}

bool EditWiring::eventFilter(QObject* watched, QEvent* event) {
  auto& frm = program_.frm;
  PaperWidget* paper = frm.Paper1();
  if (watched == paper) {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseMove:
      case QEvent::MouseButtonRelease: {
        if (!program_.app.doc.IsOpen()) return false;
        auto* me = static_cast<QMouseEvent*>(event);
        const float x = static_cast<float>(me->position().x()) + paper_.Dx();
        const float y = static_cast<float>(me->position().y()) + paper_.Dy();
        const int shift = me->modifiers().testFlag(Qt::ShiftModifier) ? 1 : 0;
        if (event->type() == QEvent::MouseButtonPress)
          editor_->MouseDown(ButtonValue(me->button()), shift, x, y);
        else if (event->type() == QEvent::MouseButtonRelease)
          editor_->MouseUp(ButtonValue(me->button()), shift, x, y);
        else
          editor_->MouseMove(ButtonValue(me->button()), shift, x, y);
        paper->update();
        return true;
      }
      case QEvent::Wheel: {
        // Each notch (120 eighths of a degree) zooms one step about the pointer; a
        // finer wheel adds its turns up to a notch. Not while a drag holds the view.
        if (!program_.app.doc.IsOpen()) return false;
        auto* we = static_cast<QWheelEvent*>(event);
        if (editor_->Ptr.Panning || editor_->Ptr.Windowing) return true;
        wheelDelta_ += we->angleDelta().y();
        const float x = static_cast<float>(we->position().x()) + paper_.Dx();
        const float y = static_cast<float>(we->position().y()) + paper_.Dy();
        for (; wheelDelta_ >= 120; wheelDelta_ -= 120) tavik::view::ZoomAbout(*canvas_, true, x, y);
        for (; wheelDelta_ <= -120; wheelDelta_ += 120) tavik::view::ZoomAbout(*canvas_, false, x, y);
        paper->update();
        return true;
      }
      default:
        break;
    }
  }
  if ((watched == paper || watched == &frm) && event->type() == QEvent::KeyPress) {
    auto* ke = static_cast<QKeyEvent*>(event);
    if (ke->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) return false;
    if (!program_.app.doc.IsOpen()) return false;
    const int key = KeyCode(ke->key());
    bool taken = key != 0 && editor_->KeyDown(key, ke->modifiers().testFlag(Qt::ShiftModifier));
    const QString text = ke->text();
    if (text.size() == 1 && text[0].unicode() < 128) taken = editor_->KeyPress(static_cast<char>(text[0].unicode())) || taken;
    paper->update();
    return taken;
  }
  return false;
}
