#include "app/frmlandsplit.h"

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "app/edit_wiring.h"
#include "app/program.h"
#include "core/docfile.h"
#include "core/reference_map.h"
#include "core/text.h"
#include "view/document_view.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

frmLandSplit::frmLandSplit(tavik::cadastre::LandSplit& logic, QWidget* parent)
    : QDialog(parent, Qt::Tool | Qt::WindowStaysOnTopHint), logic_(logic) {
  setObjectName("frmLandSplit");
  setWindowTitle("土地分割");
  auto* col = new QVBoxLayout(this);

  auto* areas = new QGridLayout;
  auto box = [&](const char* name, const char* caption, int row) {
    auto* e = new QLineEdit(this);
    e->setObjectName(name);
    areas->addWidget(new QLabel(caption, this), row, 0);
    areas->addWidget(e, row, 1);
    return e;
  };
  text1_ = box("Text1", "分割面積(㎡)", 0);
  text3_ = box("Text3", "剩餘面積(㎡)", 1);
  combo1_ = new QComboBox(this);
  combo1_->setObjectName("Combo1");
  combo1_->setEditable(true);
  combo1_->addItems({"1000", "500", "100", "50", "10", "1"});
  areas->addWidget(new QLabel("面積步進值", this), 2, 0);
  auto* stepRow = new QHBoxLayout;
  stepRow->addWidget(combo1_);
  auto* command3 = new QPushButton("+", this);
  command3->setObjectName("Command3");
  auto* command4 = new QPushButton("-", this);
  command4->setObjectName("Command4");
  // Enter in an area box confirms the box only: no button of this dialog is a default.
  command3->setAutoDefault(false);
  command4->setAutoDefault(false);
  stepRow->addWidget(command3);
  stepRow->addWidget(command4);
  areas->addLayout(stepRow, 2, 1);
  check1_ = new QCheckBox("平分", this);
  check1_->setObjectName("Check1");
  areas->addWidget(check1_, 3, 1);
  col->addLayout(areas);

  auto* modes = new QGroupBox("分割方法", this);
  auto* mcol = new QVBoxLayout(modes);
  static const char* captions[8] = {"方法1 - 水平分割(標的物在上)", "方法2 - 水平分割(標的物在下)",
                                    "方法3 - 垂直分割(標的物在左)", "方法4 - 垂直分割(標的物在右)",
                                    "方法5 - 指定方位角",           "方法6 - 平行某條線",
                                    "方法7 - 指定一個點(必需有1實測點)", "方法8 - 指定兩個點(必需有2實測點)"};
  for (int k = 1; k <= 8; ++k) {
    auto* r = new QRadioButton(captions[k - 1], modes);
    r->setObjectName(QString("Option%1").arg(k));
    // Exclusive by the logic, which may also clear them all.
    r->setAutoExclusive(false);
    options_[static_cast<std::size_t>(k - 1)] = r;
    if (k == 5) {
      auto* row = new QHBoxLayout;
      row->addWidget(r);
      text2_ = new QLineEdit(modes);
      text2_->setObjectName("Text2");
      text2_->setMaximumWidth(110);
      row->addWidget(text2_);
      row->addWidget(new QLabel("度", modes));
      mcol->addLayout(row);
    } else {
      mcol->addWidget(r);
    }
    connect(r, &QRadioButton::clicked, this, [this, k] { Act([this, k] { logic_.ChooseOption(k); }); });
  }
  col->addWidget(modes);

  label1_ = new QLabel(this);
  label1_->setObjectName("Label1");
  label1_->setFrameShape(QFrame::Panel);
  label1_->setFrameShadow(QFrame::Sunken);
  label1_->setMinimumHeight(40);
  col->addWidget(label1_);

  auto* buttons = new QGridLayout;
  auto button = [&](const char* name, const char* caption, int r, int c) {
    auto* b = new QPushButton(caption, this);
    b->setObjectName(name);
    b->setAutoDefault(false);
    buttons->addWidget(b, r, c);
    return b;
  };
  QPushButton* command1 = button("Command1", "圈選土地", 0, 0);
  QPushButton* cmdCancel = button("cmdCancel", "清除重來", 0, 1);
  QPushButton* cmdOutput = button("cmdOutput", "分割點輸出", 0, 2);
  QPushButton* cmdApply = button("cmdApply", "確定", 1, 0);
  QPushButton* command2 = button("Command2", "放棄離開", 1, 2);
  col->addLayout(buttons);

  connect(text1_, &QLineEdit::textEdited, this, [this](const QString& t) {
    logic_.form.Text1 = t.toStdString();
    Act([this] { logic_.AreaTyped(); });
  });
  connect(text3_, &QLineEdit::textEdited, this, [this](const QString& t) {
    logic_.form.Text3 = t.toStdString();
    Act([this] { logic_.AreaTyped(); });
  });
  connect(text2_, &QLineEdit::textEdited, this, [this](const QString& t) {
    logic_.form.Text2 = t.toStdString();
    Act([this] { logic_.AzimuthTyped(); });
  });
  connect(text1_, &QLineEdit::editingFinished, this, [this] { Act([this] { logic_.Text1Done(); }); });
  connect(text3_, &QLineEdit::editingFinished, this, [this] { Act([this] { logic_.Text3Done(); }); });
  connect(combo1_, &QComboBox::currentTextChanged, this, [this](const QString& t) {
    if (!refreshing_) logic_.form.Combo1 = t.toStdString();
  });
  connect(check1_, &QCheckBox::clicked, this, [this](bool on) { Act([this, on] { logic_.Check1Click(on); }); });
  connect(command3, &QPushButton::clicked, this, [this] { Act([this] { logic_.Command3(); }); });
  connect(command4, &QPushButton::clicked, this, [this] { Act([this] { logic_.Command4(); }); });
  connect(command1, &QPushButton::clicked, this, [this] {
    Act([this] { logic_.Command1(); });
    hide();  // out of the way of the corners; the closing pick shows it again
  });
  connect(cmdCancel, &QPushButton::clicked, this, [this] { Act([this] { logic_.cmdCancel(); }); });
  connect(cmdOutput, &QPushButton::clicked, this, [this] { Act([this] { logic_.cmdOutput(); }); });
  connect(cmdApply, &QPushButton::clicked, this, [this] { Act([this] { logic_.cmdApply(); }); });
  connect(command2, &QPushButton::clicked, this, [this] { Act([this] { logic_.Command2(); }); });

  move(100, 125);
  Refresh();
}

template <typename F>
void frmLandSplit::Act(F f) {
  f();
  Refresh();
  if (PaperChanged) PaperChanged();
}

void frmLandSplit::Refresh() {
  refreshing_ = true;
  const tavik::cadastre::SplitForm& f = logic_.form;
  auto set = [](QLineEdit* e, const std::string& s) {
    if (e->text() != Q(s)) e->setText(Q(s));
  };
  set(text1_, f.Text1);
  set(text2_, f.Text2);
  set(text3_, f.Text3);
  text1_->setEnabled(f.AreaBoxesEnabled);
  text3_->setEnabled(f.AreaBoxesEnabled);
  if (combo1_->currentText() != Q(f.Combo1)) combo1_->setCurrentText(Q(f.Combo1));
  check1_->setChecked(f.Check1);
  label1_->setText(Q(f.Label1));
  for (int k = 1; k <= 8; ++k) Option(k)->setChecked(f.Option == k);
  refreshing_ = false;
}

// ---- The station ---------------------------------------------------------------------

LandSplitStation::LandSplitStation(Program& program, EditWiring& edit)
    : QObject(&program.frm), program_(program), edit_(edit) {
  MainFrm& frm = program_.frm;
  auto& doc = program_.app.doc;
  if (QMenu* file = frm.Menu("MainMnuFile")) {
    auto* a = new QAction("讀入參考圖...", file);
    a->setObjectName("MainMnuReference");
    file->insertAction(frm.Command("MainMnuSave"), a);
    connect(a, &QAction::triggered, this, [this] { OpenReferenceMap(); });
    connect(file, &QMenu::aboutToShow, a, [a, &doc] { a->setEnabled(doc.IsOpen()); });
  }
  if (QMenu* tools = frm.Menu("MainMnuU")) {
    auto* a = new QAction("土地分割...", tools);
    a->setObjectName("MainMnuSplit");
    tools->insertAction(frm.Command("MainMnuManual"), a);
    connect(a, &QAction::triggered, this, [this] { OpenSplit(); });
    connect(tools, &QMenu::aboutToShow, a, [a, &doc] { a->setEnabled(doc.IsOpen()); });
  }

  using tavik::edit::PlugEvent;
  for (const char* m : {tavik::cadastre::ModeTrace, tavik::cadastre::ModeParallel, tavik::cadastre::ModeThroughPoint,
                        tavik::cadastre::ModeTwoPoints}) {
    const std::string mode = m;
    edit_.Host().Plugs[mode] = [this, mode](PlugEvent e, double E, double N) {
      if (e != PlugEvent::Press || !logic_) return false;
      float x = 0, y = 0;
      tavik::WorldToPaper(program_.app.view, program_.app.doc.ScaleDenominator, E, N, x, y);
      // The pick tests shift the pointer one pixel back to its hot spot.
      const double px = x + 1, py = y + 1;
      auto& l = *logic_;
      if (mode == tavik::cadastre::ModeTrace) l.TracePick(px, py);
      if (mode == tavik::cadastre::ModeParallel) l.PickParallelLine(px, py);
      if (mode == tavik::cadastre::ModeThroughPoint) l.PickPivotPoint(px, py);
      if (mode == tavik::cadastre::ModeTwoPoints) l.PickTwoPoints(px, py);
      if (dialog_) dialog_->Refresh();
      PaperChanged();
      return true;
    };
  }
}

LandSplitStation::~LandSplitStation() = default;

void LandSplitStation::PaperChanged() { program_.frm.Paper1()->update(); }

void LandSplitStation::OpenSplit() {
  auto& app = program_.app;
  if (!app.doc.IsOpen()) return;
  if (dialog_) {
    dialog_->show();
    dialog_->raise();
    return;
  }
  if (!tavik::cadastre::LandSplit::CanOpen(app.doc, program_.dialogs)) return;
  logic_ = std::make_unique<tavik::cadastre::LandSplit>(app.doc, app.view, app.work, program_.dialogs);
  auto& l = *logic_;
  l.Paper = &edit_.Canvas().surface;
  l.AreaUnit = edit_.Editor().Area.AreaUnit;
  l.WorkFolder = app.paths.WorkFolder().string();
  l.SetActionMode = [this](const std::string& mode) {
    if (mode.empty())
      edit_.Editor().Reset();
    else
      edit_.Editor().StartCommand(mode);
  };
  l.ShowDialog = [this] {
    if (dialog_) dialog_->show(), dialog_->raise();
  };
  l.Redraw = [this] { program_.frm.RedrawPaper(); };
  l.ShowCounts = [this] { program_.cycle.ShowCounts(); };
  l.Close = [this] {
    if (dialog_) dialog_->close();
  };
  l.Open();
  dialog_ = new frmLandSplit(l, &program_.frm);
  dialog_->PaperChanged = [this] { PaperChanged(); };
  dialog_->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog_, &QObject::destroyed, this, [this] {
    dialog_ = nullptr;
    const std::string& m = edit_.Editor().Ptr.ActionMode;
    if (m.rfind("LD", 0) == 0) edit_.Editor().Reset();
    logic_.reset();
  });
  dialog_->show();
  dialog_->move(100, 125);
  dialog_->raise();
}

void LandSplitStation::OpenReferenceMap() {
  auto& app = program_.app;
  if (!app.doc.IsOpen()) return;
  const std::string title = "讀入參考圖";
  if (const std::string why = tavik::ReferenceMapRefusal(app.doc); !why.empty()) {
    program_.dialogs.MsgBox(why, title);
    return;
  }
  const std::string path = program_.dialogs.OpenFileName(
      title, "SPC圖檔(*.SPC)|*.SPC|舊版圖檔(*.SP)|*.SP|所有檔案(*.*)|*.*", app.paths.WorkFolder().string());
  if (path.empty()) return;
  tavik::Document ref;
  tavik::View scratch;
  const std::filesystem::path p(path);
  tavik::SetDocumentName(ref, (p.parent_path() / p.stem()).string());
  const std::string ext = tavik::text::UpperAscii(p.extension().string());
  bool read = false;
  if (ext == ".SP") {
    ref.SpPath = path;
    read = tavik::LoadOldDocument(ref, scratch, program_.dialogs, program_.cycle.hooks.Progress);
  } else {
    ref.SpcPath = path;
    read = tavik::LoadDocument(ref, program_.dialogs, program_.cycle.hooks.Progress);
  }
  if (!read) return;  // the reader said why
  std::string refusal;
  if (!tavik::LoadReferenceMap(app.doc, app.view, app.work, ref, refusal)) {
    program_.dialogs.MsgBox(refusal, title);
    return;
  }
  edit_.Host().ViewCommand("ZE");
  program_.cycle.ShowCounts();
  PaperChanged();
}
