#include "app/resectdlg.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "app/mainfrm.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

ResectDlg::ResectDlg(tavik::SurveyContext& ctx, std::unique_ptr<tavik::ui::SerialPort> port, QWidget* parent)
    : QDialog(parent), port_(std::move(port)) {
  setObjectName("ResectDlg");
  setWindowTitle(tavik::ResectDlgLogic::Caption);
  logic_ = std::make_unique<tavik::ResectDlgLogic>(ctx, port_.get());
  if (port_) {
    port_->OnByte = [this](char c) {
      logic_->OnByte(c);
      Push();
    };
  }
  auto* grid = new QGridLayout;
  grid->addWidget(new QLabel("第一點", this), 0, 1);
  grid->addWidget(new QLabel("第二點", this), 0, 2);
  const char* rows[] = {"點名", "覘標高", "", "水平角", "天頂距", "狀態"};
  for (int r = 0; r < 6; ++r) grid->addWidget(new QLabel(rows[r], this), r + 1, 0);
  for (int i = 0; i < 2; ++i) {
    combo_[i] = new QComboBox(this);
    combo_[i]->setObjectName(i == 0 ? "Combo1" : "Combo2");
    combo_[i]->addItem("");
    for (const auto& n : logic_->Combo1) combo_[i]->addItem(Q(n));
    target_[i] = new QLineEdit(Q(logic_->TargetText[i]), this);
    auto* measure = new QPushButton("觀測", this);
    measure->setObjectName(i == 0 ? "Command3" : "Command6");
    measure->setAutoDefault(false);
    hz_[i] = new QLabel(this);
    v_[i] = new QLabel(this);
    status_[i] = new QLabel(this);
    note_[i] = new QLabel(this);
    grid->addWidget(combo_[i], 1, i + 1);
    grid->addWidget(target_[i], 2, i + 1);
    grid->addWidget(measure, 3, i + 1);
    grid->addWidget(hz_[i], 4, i + 1);
    grid->addWidget(v_[i], 5, i + 1);
    grid->addWidget(status_[i], 6, i + 1);
    grid->addWidget(note_[i], 7, i + 1);
    auto* pick = new QPushButton("框選", this);
    pick->setObjectName(i == 0 ? "Command1" : "Command4");
    pick->setAutoDefault(false);
    grid->addWidget(pick, 8, i + 1);
    connect(pick, &QPushButton::clicked, this, [this, i] { if (StartPick) StartPick(i); });
    connect(combo_[i], &QComboBox::currentTextChanged, this, [this, i](const QString& t) {
      if (t.isEmpty()) return;
      if (!logic_->Choose(i, t.toStdString())) combo_[i]->setCurrentIndex(0);
      Push();
    });
    connect(measure, &QPushButton::clicked, this, [this, i] {
      Pull();
      logic_->Measure(i);
      Push();
    });
  }
  name_ = new QLineEdit(Q(logic_->StationNameText), this);
  name_->setObjectName("StationName");
  ih_ = new QLineEdit(Q(logic_->InstrumentHeightText), this);
  ih_->setObjectName("InstrumentHeight");
  distance_ = new QLabel(this);
  option1_ = new QLabel(this);
  option2_ = new QLabel(this);
  bsx_ = new QLabel(this);
  bsy_ = new QLabel(this);
  bsz_ = new QLabel(this);
  label6_ = new QLabel(this);
  label17_ = new QLabel(this);
  label18_ = new QLabel("角度 閉合差:", this);
  auto* form = new QFormLayout;
  form->addRow("已知邊長", distance_);
  form->addRow("測站點名", name_);
  form->addRow("儀器高", ih_);
  form->addRow("第一解 H", option1_);
  form->addRow("第二解 H", option2_);
  form->addRow("採用均值 H", bsz_);
  form->addRow("測站 E", bsx_);
  form->addRow("測站 N", bsy_);
  form->addRow(label18_, label6_);
  form->addRow("", label17_);
  solve_ = new QPushButton(this);
  solve_->setObjectName("Command2");
  ok_ = new QPushButton("確定", this);
  ok_->setObjectName("OKButton");
  auto* cancel = new QPushButton("放棄", this);
  auto* row = new QHBoxLayout;
  for (QPushButton* b : {solve_, ok_, cancel}) {
    b->setAutoDefault(false);
    row->addWidget(b);
  }
  auto* col = new QVBoxLayout(this);
  col->addLayout(grid);
  col->addLayout(form);
  col->addLayout(row);
  connect(solve_, &QPushButton::clicked, this, [this] {
    Pull();
    logic_->Solve();
    Push();
  });
  connect(ok_, &QPushButton::clicked, this, [this] {
    Pull();
    if (logic_->OKButton()) accept();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  Push();
}

ResectDlg::~ResectDlg() { logic_.reset(); }

void ResectDlg::Pick(int slot, double x, double y) {
  if (logic_->Pick(slot, x, y)) {
    const QSignalBlocker block(combo_[slot]);
    combo_[slot]->setCurrentText(QString::fromStdString(logic_->slot[slot].Name));
  }
  Push();
}

void ResectDlg::Pull() {
  logic_->StationNameText = name_->text().toStdString();
  logic_->InstrumentHeightText = ih_->text().toStdString();
  for (int i = 0; i < 2; ++i) logic_->TargetText[i] = target_[i]->text().toStdString();
}

void ResectDlg::Push() {
  const tavik::ResectDlgLogic& l = *logic_;
  for (int i = 0; i < 2; ++i) {
    hz_[i]->setText(Q(MainFrm::AngleText(l.HzLabel[i])));
    v_[i]->setText(Q(MainFrm::AngleText(l.VLabel[i])));
    status_[i]->setText(Q(l.StatusLabel[i]));
    note_[i]->setText(Q(l.HeightNote[i]));
  }
  distance_->setText(Q(l.DistanceLabel));
  option1_->setText(Q(l.Option1));
  option2_->setText(Q(l.Option2));
  bsz_->setText(Q(l.LabelBsz));
  bsx_->setText(Q(l.LabelBsx));
  bsy_->setText(Q(l.LabelBsy));
  label6_->setText(Q(MainFrm::AngleText(l.Label6)));
  label18_->setVisible(l.Label18Visible);
  label17_->setText(Q(l.Label17));
  solve_->setText(Q(l.Command2Caption));
  solve_->setEnabled(l.Command2Enabled);
  ok_->setEnabled(l.OKEnabled);
}
