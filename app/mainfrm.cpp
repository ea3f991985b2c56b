#include "app/mainfrm.h"

#include <cmath>

#include "core/numbers.h"
#include "geo/formats.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QTextLayout>
#include <QScrollBar>
#include <QStatusBar>
#include <QElapsedTimer>
#include <QProgressBar>
#include <QTextBrowser>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>
#include <QWidget>

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }

// Items that belong to one measure mode only, by control name: the total station's
// set-up, resection, stake-out and reading panels; the receiver's start-up, panel, sky
// plot and Toolbar1 keys.
const std::pair<const char*, const char*> kModeItems[] = {
    {"MainMnuUserDialog", "TS"}, {"MainMnuFit", "TS"},  {"MainMnuResect", "TS"},  {"MainMnuStackOut", "TS"},
    {"MainMnuAutoLink", "TS"},   {"SetupFace2", "TS"},  {"WaitPanel", "TS"},      {"SurveyPanel", "TS"},
    {"mnuGpsInit", "GPS"},       {"GpsPanel", "GPS"},   {"mnuSkyPlot", "GPS"},     {"連接COM1", "GPS"},
    {"接收資料", "GPS"},          {"停止接收", "GPS"}};

// An item may also carry its mode itself, in the property "measureMode".
const char* ModeOf(const QObject* item) {
  const QVariant own = item->property("measureMode");
  if (own.isValid()) return own.toString() == "GPS" ? "GPS" : "TS";
  const QString name = item->objectName();
  for (const auto& [control, mode] : kModeItems)
    if (name == QLatin1String(control)) return mode;
  return nullptr;
}

constexpr const char* kManualFile = "tavik-manual.html";

// OBSBox shows whatever the instrument last said, often a receiver's sentence of two
// hundred characters with no space in it. A plain label cannot break such a line and
// cuts it at the frame's edge; this one breaks it anywhere, shows the lines that fit,
// ends the last with "…" when more is left, and keeps the whole text as its tool tip.
class ObsBoxLabel : public QLabel {
 public:
  using QLabel::QLabel;

 protected:
  void paintEvent(QPaintEvent* e) override {
    QFrame::paintEvent(e);
    const QString all = text();
    if (toolTip() != all) setToolTip(all);
    if (all.isEmpty()) return;
    QPainter p(this);
    p.setPen(palette().color(QPalette::WindowText));
    const QRect r = contentsRect().adjusted(2, 1, -2, -1);
    const QFontMetrics fm(font());
    QTextLayout layout(all, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    const int lines = std::max(1, r.height() / fm.lineSpacing());
    layout.beginLayout();
    int y = r.top();
    for (int n = 0; n < lines; ++n) {
      QTextLine line = layout.createLine();
      if (!line.isValid()) break;
      line.setLineWidth(r.width());
      const bool last = n == lines - 1 && line.textStart() + line.textLength() < all.size();
      if (last) {
        p.drawText(QRect(r.left(), y, r.width(), fm.lineSpacing()), Qt::AlignLeft | Qt::AlignTop,
                   fm.elidedText(all.mid(line.textStart()), Qt::ElideRight, r.width()));
        break;
      }
      p.drawText(QRect(r.left(), y, r.width(), fm.lineSpacing()), Qt::AlignLeft | Qt::AlignTop,
                 all.mid(line.textStart(), line.textLength()));
      y += fm.lineSpacing();
    }
    layout.endLayout();
  }
  // Room for four lines where there is room, one where the frame is crowded; a long
  // text never widens the frame.
  QSize minimumSizeHint() const override { return QSize(0, 22); }
  QSize sizeHint() const override { return QSize(0, 4 * fontMetrics().lineSpacing() + 6); }
};
}  // namespace

MainFrm::MainFrm(QWidget* parent) : QMainWindow(parent) {
  setObjectName("MainFrm");
  setWindowTitle("TAVIK");
  auto* central = new QWidget(this);
  auto* row = new QHBoxLayout(central);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  paper_ = new PaperWidget(central);
  paper_->OnResized = [this] {
    if (handlers.Resized)
      handlers.Resized();
    else
      RedrawPaper();
  };
  // Paper1 with its scroll bars HScroll1 and VScroll1, 0 to 100 across the paper.
  auto* board = new QWidget(central);
  auto* grid = new QGridLayout(board);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(0);
  hScroll_ = new QScrollBar(Qt::Horizontal, board);
  hScroll_->setObjectName("HScroll1");
  vScroll_ = new QScrollBar(Qt::Vertical, board);
  vScroll_->setObjectName("VScroll1");
  for (QScrollBar* bar : {hScroll_, vScroll_}) {
    bar->setRange(0, 100);
    bar->setValue(50);
  }
  for (QScrollBar* bar : {hScroll_, vScroll_}) {
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int v) {
      if (settingBars_) return;
      auto& move = bar == hScroll_ ? handlers.HScroll : handlers.VScroll;
      if (move) move(v);
      if (!bar->isSliderDown() && handlers.ScrollDone) handlers.ScrollDone();
    });
    connect(bar, &QScrollBar::sliderReleased, this, [this] {
      if (handlers.ScrollDone) handlers.ScrollDone();
    });
  }
  paper_->setParent(board);
  grid->addWidget(paper_, 0, 0);
  grid->addWidget(vScroll_, 0, 1);
  grid->addWidget(hScroll_, 1, 0);
  row->addWidget(board, 1);
  instFrame_ = new QFrame(central);
  row->addWidget(instFrame_);
  setCentralWidget(central);
  // Every repaint of the map shows the counts as they are now: whatever changed the
  // tables (a shot, a line, an erase, a set-up, a zoom) ends in a repaint.
  paper_->installEventFilter(this);
  BuildMenus();
  BuildInstrumentFrame();
  BuildStatusBar();
  BuildFineMoveToolbar();
  EnableDocumentCommands(false);
  EnableBaseMapCommands(false);
  SetRecentItems({});
  SetPaperEnabled(false);
}

QMenu* MainFrm::AddMenu(const char* name, const QString& caption) {
  QMenu* m = menuBar()->addMenu(caption);
  m->setObjectName(name);
  m->menuAction()->setObjectName(name);
  menus_[name] = m;
  return m;
}

QAction* MainFrm::AddCommand(QMenu* menu, const char* name, const QString& caption, std::function<void()> run) {
  QAction* a = menu->addAction(caption);
  a->setObjectName(name);
  connect(a, &QAction::triggered, this, [run = std::move(run)] {
    if (run) run();
  });
  commands_[name] = a;
  return a;
}

void MainFrm::BuildMenus() {
  QMenu* file = AddMenu("MainMnuFile", "檔案(&F)");
  AddCommand(file, "MainMnuNew", "開新圖檔(&N)...", [this] { if (handlers.New) handlers.New(); })
      ->setShortcut(QKeySequence::New);
  AddCommand(file, "MainMnuOpen", "開啟舊圖檔(&O)...", [this] { if (handlers.Open) handlers.Open(); })
      ->setShortcut(QKeySequence::Open);
  QAction* save = AddCommand(file, "MainMnuSave", "存檔(&S)", [this] { if (handlers.Save) handlers.Save(); });
  save->setShortcut(QKeySequence::Save);
  QAction* saveAs = AddCommand(file, "MainMnuSaveAs", "另存新檔(&A)...", [this] { if (handlers.SaveAs) handlers.SaveAs(); });
  QAction* closeDoc = AddCommand(file, "MainMnuClose", "關閉圖檔(&C)", [this] { if (handlers.Close) handlers.Close(); });
  documentCommands_ = {save, saveAs, closeDoc};
  file->addSeparator();
  for (int k = 1; k <= 5; ++k) {
    const std::string name = "mnuFileItem(" + std::to_string(k) + ")";
    recentItems_[k - 1] = AddCommand(file, name.c_str(), QString(), [this, k] {
      if (handlers.OpenRecent) handlers.OpenRecent(k);
    });
  }
  AddCommand(file, "mnuFileClear", "清除最近使用的檔案清單", [this] {
    if (handlers.ClearRecent) handlers.ClearRecent();
  });
  file->addSeparator();
  AddCommand(file, "MainMnuExit", "結束(&X)", [this] { close(); });

  // The other main menus. Most of their commands are added by the parts of the program
  // that own them; a menu with nothing to offer stays out of the menu bar.
  const std::pair<const char*, const char*> mains[] = {
      {"MainMnuMete", "測量(&M)"},    {"MainMnuEdit", "編輯(&E)"},   {"MainMnuView", "檢視(&V)"},
      {"MainMnuImport", "匯入(&I)"},  {"MainMnuExport", "匯出(&X)"}, {"MainMnuU", "工具(&U)"},
      {"MainMnuBasemap", "底圖(&B)"}, {"MainMnuSetup", "設定(&T)"},  {"MainMnuEnd", "收工(&D)"}};
  for (const auto& [name, caption] : mains) documentMenus_.push_back(AddMenu(name, caption));

  // The base-map tools come with the base maps; until then their items stay hidden, and
  // so does the menu.
  QMenu* bm = menus_["MainMnuBasemap"];
  const std::pair<const char*, const char*> bmCommands[] = {{"BMEraseWindow", "視窗清除底圖"},
                                                            {"BMLockLineCPnt", "鎖定底圖線端點"},
                                                            {"BMLockXLineCPnt", "鎖定底圖線交點"},
                                                            {"BMRemove", "移除底圖"},
                                                            {"BmDispSetup", "底圖顯示設定..."}};
  for (const auto& [name, caption] : bmCommands) {
    QAction* a = AddCommand(bm, name, caption, nullptr);
    a->setVisible(false);
    baseMapCommands_.push_back(a);
  }

  AddCommand(menus_["MainMnuU"], "MainMnuManual", "TAVIK操作手冊\tShift+F1", [this] { ShowManual(); });

  // The day's end: save and close the document, or save and leave the program.
  QMenu* end = menus_["MainMnuEnd"];
  AddCommand(end, "MainMnuEndClose", "存檔並關閉圖檔", [this] {
    if (handlers.Save) handlers.Save();
    if (handlers.Close) handlers.Close();
  });
  AddCommand(end, "MainMnuEndExit", "存檔並結束TAVIK", [this] {
    if (handlers.Save) handlers.Save();
    close();
  });

  for (QMenu* m : documentMenus_) {
    m->installEventFilter(this);
    FitMenu(m);
  }
}

void MainFrm::BuildInstrumentFrame() {
  instFrame_->setObjectName("InstFrame");
  instFrame_->setFrameShape(QFrame::StyledPanel);
  instFrame_->setFixedWidth(180);
  auto* col = new QVBoxLayout(instFrame_);
  auto add = [&](const char* name, const QString& caption, const QString& text) {
    if (!caption.isEmpty()) col->addWidget(new QLabel(caption, instFrame_));
    auto* l = std::string(name) == "OBSBox" ? new ObsBoxLabel(text, instFrame_) : new QLabel(text, instFrame_);
    l->setObjectName(name);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    l->setMinimumHeight(22);
    l->setWordWrap(true);
    col->addWidget(l);
    labels_[name] = l;
  };
  add("MAPtype", "圖別", "");
  add("Label41", "測點數", "0");
  add("Label42", "圖元數", "0");
  add("OBSBox", "觀測訊息", "");
  col->addStretch(1);
}

void MainFrm::BuildStatusBar() {
  // Each panel is wide enough for the longest text it usually shows.
  const char* widest[11] = {"", "1 :100000", "E 2752650.000", "N 2752650.000", "測點 000000", "圖元 000000",
                            "螢幕點 000000", "螢幕圖 000000", "0000000000", "0000000000", "底圖數目: 000000"};
  for (int k = 1; k <= 10; ++k) {
    auto* l = new QLabel(this);
    l->setObjectName(QString("Panel%1").arg(k));
    l->setMinimumWidth(l->fontMetrics().horizontalAdvance(QString::fromUtf8(widest[k])) + 12);
    l->setFrameShape(QFrame::Panel);
    l->setFrameShadow(QFrame::Sunken);
    // Permanent, so that a prompt or a passing message on the left hides none of them.
    statusBar()->addPermanentWidget(l);
    panels_[k] = l;
  }
  // Panels 8 and 9 carry nothing in this version: they take room only when they have
  // something to show, which leaves the prompt its whole length on a small screen.
  for (int k : {8, 9}) {
    panels_[k]->setMinimumWidth(0);
    panels_[k]->hide();
  }
  progress_ = new QProgressBar(this);
  progress_->setObjectName("FileProgress");
  progress_->setRange(0, 1000);
  progress_->setTextVisible(true);
  progress_->setMaximumWidth(260);
  progress_->hide();
  statusBar()->addWidget(progress_);
  // A passing message (a result, the legend chosen) gives the place back to the prompt of
  // the command still running when it times out.
  connect(statusBar(), &QStatusBar::messageChanged, this, [this](const QString& m) {
    if (m.isEmpty() && !prompt_.isEmpty()) statusBar()->showMessage(prompt_);
  });
}

tavik::ProgressSink MainFrm::Progress() {
  struct Clock {
    QElapsedTimer started, lastShown;
    bool busyCursor = false;
  };
  auto clock = std::make_shared<Clock>();
  return [this, clock](int64_t done, int64_t total) {
    if (done == 0 || !clock->started.isValid()) clock->started.start();
    if (done >= total) {
      clock->started.invalidate();
      if (!clock->busyCursor) return;
      // The bar goes at once, not when the work that follows the file is done too.
      progress_->hide();
      statusBar()->repaint();
      QApplication::restoreOverrideCursor();
      clock->busyCursor = false;
      return;
    }
    if (clock->started.elapsed() < 500) return;
    // Ten times a second is enough for the eye and costs the work little.
    if (progress_->isVisible() && clock->lastShown.isValid() && clock->lastShown.elapsed() < 100) return;
    clock->lastShown.start();
    progress_->setValue(static_cast<int>(total > 0 ? done * 1000 / total : 0));
    progress_->setFormat(QString("%1 / %2").arg(done).arg(total));
    if (!progress_->isVisible()) {
      progress_->show();
      if (statusBar()->layout()) statusBar()->layout()->activate();
    }
    if (!clock->busyCursor) QApplication::setOverrideCursor(Qt::WaitCursor);
    clock->busyCursor = true;
    // The event loop is not run here: a timer, a serial event or a queued call let in
    // could add to or save the very tables being read or written, and a key or a click
    // could start another command. Instead every window of the program is painted at
    // once, so that the bar moves and a window uncovered meanwhile does not stay blank;
    // what was pressed meanwhile waits until the work is done.
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (!w->isVisible()) continue;
      w->update();
      for (QWidget* child : w->findChildren<QWidget*>())
        if (child->isVisible()) child->update();
      // Only the window's own paint request is taken from the queue.
      QCoreApplication::sendPostedEvents(w, QEvent::UpdateRequest);
    }
  };
}

void MainFrm::BuildFineMoveToolbar() {
  QToolBar* bar = addToolBar("微調");
  bar->setObjectName("FineMoveToolbar");
  combo1_ = new QComboBox(bar);
  combo1_->setObjectName("Combo1");
  combo1_->addItems({"1cm", "5cm", "10cm", "20cm", "25cm", "50cm", "1m", "2m", "3m", "4m", "5m"});
  combo1_->setToolTip("微調平移量");
  combo2_ = new QComboBox(bar);
  combo2_->setObjectName("Combo2");
  combo2_->addItems({"1秒", "30秒", "1分", "10分", "15分", "30分", "1度", "2度", "3度", "5度", "10度", "15度"});
  combo2_->setToolTip("微調旋轉量");
  bar->addWidget(new QLabel(" 平移 ", bar));
  bar->addWidget(combo1_);
  bar->addWidget(new QLabel(" 旋轉 ", bar));
  bar->addWidget(combo2_);
  // The steps are remembered, but the whole-map shifts and turns they serve are not in
  // this version: the bar stays hidden.
  bar->hide();
}

void MainFrm::SelectFineSteps(const std::string& shift, const std::string& rotation) {
  // A text not in the list (a damaged or older settings file) leaves the first step.
  combo1_->setCurrentIndex(std::max(0, combo1_->findText(Q(shift))));
  combo2_->setCurrentIndex(std::max(0, combo2_->findText(Q(rotation))));
}

void MainFrm::SetCaption(const std::string& caption) { setWindowTitle(Q(caption)); }

void MainFrm::EnableDocumentCommands(bool enabled) {
  for (QMenu* m : documentMenus_) m->menuAction()->setEnabled(enabled);
  for (QAction* a : documentCommands_) a->setEnabled(enabled);
}

void MainFrm::EnableBaseMapCommands(bool enabled) {
  for (QAction* a : baseMapCommands_) a->setEnabled(enabled);
}

void MainFrm::SetPanel(int index, const std::string& text) {
  if (index < 1 || index > 10) return;
  panels_[index]->setText(Q(text));
  if (index == 8 || index == 9) panels_[index]->setVisible(!text.empty());
}

void MainFrm::SetLabel41(const std::string& text) { labels_["Label41"]->setText(Q(text)); }
void MainFrm::SetLabel42(const std::string& text) { labels_["Label42"]->setText(Q(text)); }
void MainFrm::SetLabel(const std::string& name, const std::string& text) {
  auto it = labels_.find(name);
  if (it != labels_.end()) it->second->setText(Q(text));
}

void MainFrm::SetOBSBox(const std::string& text) { labels_["OBSBox"]->setText(Q(text)); }
void MainFrm::SetMAPtype(const std::string& text) { labels_["MAPtype"]->setText(Q(text)); }

void MainFrm::SetRecentItems(const std::vector<std::string>& items) {
  for (std::size_t k = 0; k < recentItems_.size(); ++k) {
    QAction* a = recentItems_[k];
    const bool used = k < items.size();
    // "&1 " gives each item its keyboard accelerator, as the classic File menu does.
    a->setText(used ? QString("&%1 %2").arg(k + 1).arg(Q(items[k])) : QString());
    a->setData(used ? Q(items[k]) : QString());
    a->setVisible(used);
  }
}

void MainFrm::SetMeasureModeMenus(const std::string& mode) {
  measureMode_ = mode == "GPS" ? "GPS" : "TS";
  instFrame_->setToolTip(measureMode_ == "GPS" ? "GPS 測量" : "全測站測量");
  for (QAction* a : findChildren<QAction*>()) ApplyMeasureMode(a);
  for (QWidget* w : findChildren<QWidget*>()) ApplyMeasureMode(w);
}

void MainFrm::ApplyMeasureMode(QObject* item) const {
  const char* mode = ModeOf(item);
  if (mode == nullptr) return;
  const bool shown = measureMode_ == mode;
  if (auto* a = qobject_cast<QAction*>(item)) {
    if (a->isVisible() != shown) a->setVisible(shown);
  } else if (auto* w = qobject_cast<QWidget*>(item)) {
    if (w->isVisibleTo(w->parentWidget()) != shown) w->setVisible(shown);
  }
}

void MainFrm::FitMenu(QMenu* menu) {
  if (fitting_) return;
  fitting_ = true;
  bool offers = false;
  for (QAction* a : menu->actions()) {
    ApplyMeasureMode(a);
    offers = offers || (a->isVisible() && !a->isSeparator());
  }
  menu->menuAction()->setVisible(offers);
  fitting_ = false;
}

bool MainFrm::eventFilter(QObject* watched, QEvent* event) {
  if (watched == paper_ && event->type() == QEvent::Paint) {
    if (handlers.ShowCounts) handlers.ShowCounts();
  } else if (auto* menu = qobject_cast<QMenu*>(watched)) {
    const QEvent::Type t = event->type();
    if (t == QEvent::ActionAdded || t == QEvent::ActionChanged || t == QEvent::ActionRemoved) FitMenu(menu);
  }
  return QMainWindow::eventFilter(watched, event);
}

void MainFrm::SetPrompt(const std::string& text) {
  prompt_ = Q(text);
  statusBar()->showMessage(prompt_);
}

void MainFrm::SetReadout(const std::string& e, const std::string& n) {
  panels_[2]->setText(e.empty() ? QString() : Q("E " + e));
  panels_[3]->setText(n.empty() ? QString() : Q("N " + n));
}

QString MainFrm::ManualPath() {
  const QString here = QCoreApplication::applicationDirPath();
  QStringList places = {here + "/" + kManualFile, here + "/../share/tavik/" + kManualFile};
#ifdef TAVIK_MANUAL_SOURCE
  places << QString::fromUtf8(TAVIK_MANUAL_SOURCE);
#endif
  for (const QString& p : places)
    if (QFileInfo::exists(p)) return QDir::cleanPath(p);
  return QString();
}

std::string MainFrm::AngleText(const std::string& reading) {
  const QStringList parts = Q(reading).split('-');
  if (parts.size() != 3) return reading;
  std::optional<double> v[3];
  for (int i = 0; i < 3; ++i) v[i] = tavik::num::ParseStrict(parts[i].trimmed().toStdString());
  if (!v[0] || !v[1] || !v[2] || *v[0] < 0 || *v[0] > 999 || *v[1] < 0 || *v[1] >= 100) return reading;
  return tavik::fmt::FormatDmsList(static_cast<int16_t>(*v[0]), static_cast<int16_t>(*v[1]), *v[2]);
}

void MainFrm::ShowManual() {
  if (auto* open = findChild<QDialog*>("Manual")) {
    open->raise();
    open->activateWindow();
    return;
  }
  const QString path = ManualPath();
  auto* dlg = new QDialog(this);
  dlg->setObjectName("Manual");
  dlg->setWindowTitle("TAVIK操作手冊");
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  auto* layout = new QVBoxLayout(dlg);
  auto* text = new QTextBrowser(dlg);
  text->setObjectName("ManualText");
  text->setOpenExternalLinks(true);
  if (path.isEmpty())
    text->setPlainText("找不到操作手冊檔案 " + QString(kManualFile) + ",請確認它與 TAVIK 放在同一個資料夾。");
  else
    text->setSource(QUrl::fromLocalFile(path));
  layout->addWidget(text);
  dlg->resize(760, 820);
  dlg->show();
}

void MainFrm::keyPressEvent(QKeyEvent* e) {
  // With a document open the map's keys take Shift+F1 first and open the same window.
  if (e->key() == Qt::Key_F1 && e->modifiers() == Qt::ShiftModifier) {
    ShowManual();
    return;
  }
  QMainWindow::keyPressEvent(e);
}

void MainFrm::ClearPaper() {
  paper_->Surface().Clear(tavik::ui::MakeRgb(255, 255, 255));
  paper_->update();
  // The map type and the pointer's place were the old document's; the next one sets
  // its own when it is taken up.
  SetMAPtype("");
  SetReadout("", "");
  emit paperCleared();
}

void MainFrm::SetPaperEnabled(bool enabled) { paper_->setEnabled(enabled); }

void MainFrm::RedrawPaper() {
  if (handlers.Redraw)
    handlers.Redraw(paper_->Surface());
  else
    paper_->Surface().Clear(tavik::ui::MakeRgb(255, 255, 255));
  paper_->update();
  if (handlers.ShowCounts) handlers.ShowCounts();
}

void MainFrm::ShowInstrumentFrame() { instFrame_->show(); }

QMenu* MainFrm::Menu(const std::string& name) const {
  auto it = menus_.find(name);
  return it == menus_.end() ? nullptr : it->second;
}

QAction* MainFrm::Command(const std::string& name) const {
  auto it = commands_.find(name);
  return it == commands_.end() ? nullptr : it->second;
}

void MainFrm::AddDocumentCommand(QAction* a) {
  a->setEnabled(commands_["MainMnuSave"]->isEnabled());
  documentCommands_.push_back(a);
  if (!a->objectName().isEmpty()) commands_[a->objectName().toStdString()] = a;
}

QString MainFrm::PanelText(int index) const {
  return index >= 1 && index <= 10 ? panels_[index]->text() : QString();
}

QString MainFrm::LabelText(const std::string& name) const {
  auto it = labels_.find(name);
  return it == labels_.end() ? QString() : it->second->text();
}

void MainFrm::closeEvent(QCloseEvent* e) {
  // The close waits for the exit routine: it may ask to save, and Cancel keeps the
  // program running with its work files.
  if (handlers.Exit && !handlers.Exit()) {
    e->ignore();
    return;
  }
  e->accept();
}

// Toolbar1's buttons by their index, as the map view names them.
QAction* MainFrm::ToolbarButton(int index) const {
  const char* key = nullptr;
  switch (index) {
    case tavik::view::ButtonZoomWindow: key = "ZW"; break;
    case tavik::view::ButtonZoomPrevious: key = "ZP"; break;
    case tavik::view::ButtonGrid: key = "DispGrid"; break;
    case tavik::view::ButtonElevations: key = "SwitchEle"; break;
    default: return nullptr;
  }
  return findChild<QAction*>(key);
}

void MainFrm::SetToolbarButton(int index, bool enabled) {
  if (QAction* a = ToolbarButton(index)) a->setEnabled(enabled);
}

void MainFrm::SetToolbarPressed(int index, bool pressed) {
  if (QAction* a = ToolbarButton(index)) {
    a->setCheckable(true);
    a->setChecked(pressed);
  }
}

void MainFrm::SetToolbarToolTip(int index, const std::string& text) {
  if (QAction* a = ToolbarButton(index)) a->setToolTip(QString::fromStdString(text));
}

void MainFrm::PlacePaper(float left, float top) {
  // Paper1 keeps the visible area only; its resting place is -1.5 viewports.
  const float w = static_cast<float>(paper_->width()), h = static_cast<float>(paper_->height());
  paper_->SetShift(static_cast<int>(std::lround(left + 1.5f * w)), static_cast<int>(std::lround(top + 1.5f * h)));
}

void MainFrm::SetScrollBars(int h, int v) {
  settingBars_ = true;
  hScroll_->setValue(h);
  vScroll_->setValue(v);
  settingBars_ = false;
}
