#include "app/maptransformdlg.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include "app/edit_wiring.h"
#include "app/mainfrm.h"
#include "app/program.h"
#include "core/numbers.h"
#include "edit/modes.h"
#include "platform/dialogs.h"

namespace {

constexpr const char* Title = "整圖轉換";
constexpr int PairRows = 12;
enum Tab { TabShift, TabRotate, TabPoints, TabLines };

QString Q(const std::string& s) { return QString::fromStdString(s); }

// A typed number; an empty box counts as `empty` when that is given.
std::optional<double> Number(const QLineEdit* box, std::optional<double> empty = std::nullopt) {
  const std::string t = box->text().trimmed().toStdString();
  if (t.empty()) return empty;
  return tavik::num::ParseStrict(t);
}

}  // namespace

MapTransformDlg::MapTransformDlg(tavik::ui::Dialogs& dialogs, QWidget* parent) : QDialog(parent), dialogs_(dialogs) {
  setObjectName("MapTransformDlg");
  setWindowTitle(Title);
  auto* col = new QVBoxLayout(this);
  tabs_ = new QTabWidget(this);
  col->addWidget(tabs_);
  auto box = [this](const char* name) {
    auto* e = new QLineEdit(this);
    e->setObjectName(name);
    connect(e, &QLineEdit::textEdited, this, [this] { Invalidate(); });
    return e;
  };

  auto* shift = new QWidget;
  auto* sf = new QFormLayout(shift);
  sf->addRow("E 方向平移(m)", dE_ = box("dE"));
  sf->addRow("N 方向平移(m)", dN_ = box("dN"));
  sf->addRow("高程加減(m)", dH_ = box("dH"));
  tabs_->addTab(shift, "平移");

  auto* rotate = new QWidget;
  auto* rf = new QFormLayout(rotate);
  rf->addRow("旋轉角(度,順時針為正)", angle_ = box("Angle"));
  rf->addRow("旋轉中心 E", aboutE_ = box("AboutE"));
  rf->addRow("旋轉中心 N", aboutN_ = box("AboutN"));
  tabs_->addTab(rotate, "旋轉");

  auto* points = new QWidget;
  auto* pc = new QVBoxLayout(points);
  pairs_ = new QTableWidget(PairRows, 5, points);
  pairs_->setObjectName("Pairs");
  pairs_->setHorizontalHeaderLabels({"點名", "工作圖 E", "工作圖 N", "目標 E", "目標 N"});
  pairs_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  connect(pairs_, &QTableWidget::itemChanged, this, [this] { Invalidate(); });
  pc->addWidget(pairs_);
  auto* pickPairs = new QPushButton("在圖上點選點對(先工作圖點,再目標點)", points);
  pickPairs->setObjectName("PickPairs");
  connect(pickPairs, &QPushButton::clicked, this, [this] {
    pickRow_ = -1;
    if (StartPick) StartPick(tavik::edit::mode::MapMoveBmByP);
  });
  pc->addWidget(pickPairs);
  model_ = new QComboBox(points);
  model_->setObjectName("Model");
  model_->addItems({"相似轉換(四參數)", "仿射轉換(六參數)"});
  connect(model_, &QComboBox::currentIndexChanged, this, [this] { Invalidate(); });
  pc->addWidget(model_);
  tabs_->addTab(points, "點位套合");

  auto* lines = new QWidget;
  auto* lg = new QGridLayout(lines);
  const char* rows[] = {"工作圖線頭", "工作圖線尾", "目標線頭", "目標線尾"};
  lg->addWidget(new QLabel("E", lines), 0, 1);
  lg->addWidget(new QLabel("N", lines), 0, 2);
  for (int r = 0; r < 4; ++r) {
    lg->addWidget(new QLabel(rows[r], lines), r + 1, 0);
    for (int c = 0; c < 2; ++c) {
      line_[r * 2 + c] = box(("Line" + std::to_string(r * 2 + c)).c_str());
      lg->addWidget(line_[r * 2 + c], r + 1, c + 1);
    }
  }
  lineScale_ = new QCheckBox("依線長縮放(線尾對線尾)", lines);
  lineScale_->setObjectName("LineScale");
  connect(lineScale_, &QCheckBox::toggled, this, [this] { Invalidate(); });
  lg->addWidget(lineScale_, 5, 0, 1, 3);
  auto* pickLines = new QPushButton("在圖上點選兩線", lines);
  pickLines->setObjectName("PickLines");
  connect(pickLines, &QPushButton::clicked, this, [this] {
    if (StartPick) StartPick(tavik::edit::mode::MapMoveByLine2);
  });
  lg->addWidget(pickLines, 6, 0, 1, 3);
  tabs_->addTab(lines, "兩線套合");
  connect(tabs_, &QTabWidget::currentChanged, this, [this] { Invalidate(); });

  baseMap_ = new QCheckBox("底圖一併轉換", this);
  baseMap_->setObjectName("WithBaseMap");
  col->addWidget(baseMap_);
  result_ = new QPlainTextEdit(this);
  result_->setObjectName("Result");
  result_->setReadOnly(true);
  result_->setMinimumHeight(120);
  col->addWidget(result_);

  auto* buttons = new QDialogButtonBox(this);
  auto* compute = buttons->addButton("計算", QDialogButtonBox::ActionRole);
  compute->setObjectName("Compute");
  ok_ = buttons->addButton("確定", QDialogButtonBox::AcceptRole);
  ok_->setObjectName("OK");
  buttons->addButton("取消", QDialogButtonBox::RejectRole)->setObjectName("Cancel");
  connect(compute, &QPushButton::clicked, this, [this] { Compute(); });
  // Only a fit has anything to compute before it is applied.
  compute->setEnabled(false);
  connect(tabs_, &QTabWidget::currentChanged, compute,
          [compute](int tab) { compute->setEnabled(tab == TabPoints || tab == TabLines); });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  col->addWidget(buttons);
  resize(640, 520);
}

bool MapTransformDlg::WithBaseMap() const { return baseMap_->isChecked(); }

void MapTransformDlg::SetPair(int row, const std::string& name, double E, double N, double TE, double TN) {
  if (row < 0 || row >= PairRows) return;
  const double v[] = {E, N, TE, TN};
  pairs_->setItem(row, 0, new QTableWidgetItem(Q(name)));
  for (int c = 0; c < 4; ++c) pairs_->setItem(row, c + 1, new QTableWidgetItem(Q(tavik::num::Plain(v[c]))));
}

void MapTransformDlg::TakePick(const tavik::edit::Editor::FitPick& p) {
  auto cell = [this](int row, int col, const std::string& text) {
    pairs_->setItem(row, col, new QTableWidgetItem(Q(text)));
  };
  if (tabs_->currentIndex() == TabLines) {
    if (p.Step < 0 || p.Step > 3) return;
    line_[p.Step * 2]->setText(Q(tavik::num::Format(p.E, "0.000")));
    line_[p.Step * 2 + 1]->setText(Q(tavik::num::Format(p.N, "0.000")));
  } else if (p.Step % 2 == 0) {
    // A survey point starts the first row with no survey coordinates.
    pickRow_ = -1;
    for (int r = 0; r < PairRows && pickRow_ < 0; ++r) {
      const QTableWidgetItem* e = pairs_->item(r, 1);
      if (!e || e->text().trimmed().isEmpty()) pickRow_ = r;
    }
    if (pickRow_ < 0) {
      dialogs_.MsgBox("點對表已滿", Title);
      return;
    }
    cell(pickRow_, 0, p.Label);
    cell(pickRow_, 1, tavik::num::Format(p.E, "0.000"));
    cell(pickRow_, 2, tavik::num::Format(p.N, "0.000"));
  } else if (pickRow_ >= 0) {
    cell(pickRow_, 3, tavik::num::Format(p.E, "0.000"));
    cell(pickRow_, 4, tavik::num::Format(p.N, "0.000"));
  }
  Invalidate();
}

QString MapTransformDlg::ResultText() const { return result_->toPlainText(); }

void MapTransformDlg::Invalidate() {
  if (!fit_) return;
  fit_.reset();
  result_->clear();
}

std::vector<tavik::edit::FitPair> MapTransformDlg::Pairs(std::string& bad) const {
  std::vector<tavik::edit::FitPair> out;
  for (int r = 0; r < PairRows; ++r) {
    double v[4];
    int filled = 0;
    for (int c = 0; c < 4; ++c) {
      const QTableWidgetItem* it = pairs_->item(r, c + 1);
      const std::string t = it ? it->text().trimmed().toStdString() : "";
      if (t.empty()) continue;
      const auto x = tavik::num::ParseStrict(t);
      if (!x) {
        bad = "第" + std::to_string(r + 1) + "列的座標不是數字";
        return {};
      }
      v[c] = *x, ++filled;
    }
    if (filled == 0) continue;
    if (filled < 4) {
      bad = "第" + std::to_string(r + 1) + "列的座標不完整";
      return {};
    }
    const QTableWidgetItem* name = pairs_->item(r, 0);
    const std::string label = name && !name->text().trimmed().isEmpty() ? name->text().trimmed().toStdString()
                                                                          : std::to_string(out.size() + 1);
    out.push_back({v[0], v[1], v[2], v[3], label});
  }
  return out;
}

bool MapTransformDlg::Compute() {
  fit_.reset();
  result_->clear();
  const int tab = tabs_->currentIndex();
  if (tab != TabPoints && tab != TabLines) return false;
  std::vector<tavik::edit::FitPair> pairs;
  tavik::edit::FitResult r;
  if (tab == TabPoints) {
    std::string bad;
    pairs = Pairs(bad);
    if (!bad.empty()) {
      dialogs_.MsgBox(bad, Title);
      return false;
    }
    r = tavik::edit::FitPoints(pairs, model_->currentIndex() == 1 ? tavik::edit::FitModel::Affine
                                                                  : tavik::edit::FitModel::Similarity);
  } else {
    double v[8];
    for (int k = 0; k < 8; ++k) {
      const auto x = Number(line_[k]);
      if (!x) {
        dialogs_.MsgBox("請輸入兩條線的線頭與線尾座標", Title);
        return false;
      }
      v[k] = *x;
    }
    r = tavik::edit::FitLines(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], lineScale_->isChecked());
    pairs = {{v[0], v[1], v[4], v[5], "線頭"}, {v[2], v[3], v[6], v[7], "線尾"}};
  }
  if (!r.Ok) {
    dialogs_.MsgBox(r.Message, Title);
    return false;
  }
  QStringList text;
  for (const auto& l : tavik::edit::FitReport(r, pairs)) text << Q(l);
  result_->setPlainText(text.join("\n"));
  fit_ = r;
  return true;
}

void MapTransformDlg::accept() {
  const int tab = tabs_->currentIndex();
  if (tab == TabShift) {
    const auto e = Number(dE_, 0.0), n = Number(dN_, 0.0), h = Number(dH_, 0.0);
    if (!e || !n || !h) {
      dialogs_.MsgBox("平移量請輸入數字", Title);
      return;
    }
    transform_ = tavik::edit::PlaneTransform::Shift(*e, *n, *h);
  } else if (tab == TabRotate) {
    const auto a = Number(angle_), e = Number(aboutE_), n = Number(aboutN_);
    if (!a || !e || !n) {
      dialogs_.MsgBox("請輸入旋轉角與旋轉中心的 E N 座標", Title);
      return;
    }
    transform_ = tavik::edit::PlaneTransform::Rotation(*a, *e, *n);
  } else {
    // A fit is applied only once its residuals have been shown: the first 確定
    // computes, the second accepts.
    if (!fit_) {
      Compute();
      return;
    }
    transform_ = fit_->Transform;
  }
  QDialog::accept();
}

MapTransformStation::MapTransformStation(Program& program, EditWiring& edit)
    : QObject(&program.frm), program_(program), edit_(edit) {
  MainFrm& frm = program_.frm;
  auto& doc = program_.app.doc;
  if (QMenu* tools = frm.Menu("MainMnuU")) {
    auto* open = new QAction("整圖轉換(平移、旋轉、套合)...", tools);
    open->setObjectName("MainMnuTransform");
    tools->insertAction(frm.Command("MainMnuManual"), open);
    connect(open, &QAction::triggered, this, [this] { Open(); });
    auto* undo = new QAction("復原整圖轉換", tools);
    undo->setObjectName("MainMnuTransformUndo");
    tools->insertAction(frm.Command("MainMnuManual"), undo);
    connect(undo, &QAction::triggered, this, [this] { Undo(); });
    connect(tools, &QMenu::aboutToShow, this, [this, open, undo, &doc] {
      open->setEnabled(doc.IsOpen());
      undo->setEnabled(doc.IsOpen() && undo_.Valid && undo_.DocumentName == doc.DocumentName);
    });
  }
}

void MapTransformStation::Open() {
  if (!program_.app.doc.IsOpen()) return;
  if (dlg_) {
    dlg_->raise();
    dlg_->activateWindow();
    return;
  }
  dlg_ = new MapTransformDlg(program_.dialogs, &program_.frm);
  tavik::edit::Editor& ed = edit_.Editor();
  dlg_->StartPick = [&ed](const std::string& mode) { ed.StartCommand(mode); };
  ed.OnFitPick = [this](const tavik::edit::Editor::FitPick& p) {
    if (dlg_) dlg_->TakePick(p);
  };
  connect(dlg_, &QDialog::accepted, this, [this] {
    if (dlg_) Apply(dlg_->Transform(), dlg_->WithBaseMap());
  });
  connect(dlg_, &QDialog::finished, this, [this, &ed] {
    // A pick still running has nowhere to go once the dialog is gone.
    const std::string& m = ed.Ptr.ActionMode;
    if (m == tavik::edit::mode::MapMoveBmByP || m == tavik::edit::mode::MapMoveByLine2) ed.StartCommand("");
    ed.OnFitPick = nullptr;
    if (dlg_) dlg_->deleteLater();
  });
  dlg_->show();
  dlg_->raise();
}

bool MapTransformStation::Apply(const tavik::edit::PlaneTransform& t, bool withBaseMap) {
  auto& app = program_.app;
  std::string message;
  edit_.Editor().Reset();
  const bool done = tavik::edit::ApplyMapTransform(app.doc, app.view, app.work, t, withBaseMap, &undo_, message);
  if (!message.empty()) program_.dialogs.MsgBox(message, Title);
  if (done) Redraw();
  return done;
}

void MapTransformStation::Undo() {
  auto& app = program_.app;
  std::string message;
  edit_.Editor().Reset();
  const bool done = tavik::edit::UndoMapTransform(app.doc, app.view, app.work, undo_, message);
  if (!message.empty()) program_.dialogs.MsgBox(message, Title);
  if (done) Redraw();
}

void MapTransformStation::Redraw() { edit_.Host().ViewChanged(); }
