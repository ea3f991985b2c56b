#include "app/stackout.h"

#include <QFont>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/mainfrm.h"
#include "procedures/control_points.h"
#include "view/transform.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
QLabel* Big(QWidget* parent, const char* name) {
  auto* l = new QLabel(parent);
  l->setObjectName(name);
  QFont f = l->font();
  f.setPointSize(f.pointSize() + 6);
  f.setBold(true);
  l->setFont(f);
  return l;
}
}  // namespace

StackOut::StackOut(tavik::SurveyContext& ctx, std::unique_ptr<tavik::ui::SerialPort> port, QWidget* parent)
    : QDialog(parent), ctx_(ctx), port_(std::move(port)) {
  setObjectName("StackOut");
  setWindowTitle(tavik::StackOutLogic::Caption);
  logic_ = std::make_unique<tavik::StackOutLogic>(ctx, port_.get());
  if (port_) {
    port_->OnByte = [this](char c) {
      logic_->OnByte(c);
      Push();
    };
  }
  name_ = new QLineEdit(this);
  name_->setObjectName("TargetName");
  name_->setPlaceholderText("放樣點名 (Enter)");
  label4_ = Big(this, "Label4");
  label5_ = new QLabel(this);
  label5_->setObjectName("Label5");
  label6_ = new QPushButton(this);
  label6_->setObjectName("Label6");
  label6_->setToolTip("再轉一次到放樣方向");
  label8_ = Big(this, "Label8");
  label9_ = Big(this, "Label9");
  labelS_ = new QLabel(this);
  labelS_->setObjectName("LabelS");
  label45_ = new QLabel(this);
  label45_->setObjectName("Label45");
  label29_ = new QLabel(this);
  label29_->setObjectName("Label29");
  labelZA_ = new QLabel(this);
  labelZA_->setObjectName("LabelZA");
  auto* form = new QFormLayout;
  form->addRow("點名", name_);
  form->addRow("放樣點", label4_);
  form->addRow("平距", label5_);
  form->addRow("水平角", label6_);
  form->addRow("前後", label8_);
  form->addRow("左右", label9_);
  form->addRow("斜距", labelS_);
  form->addRow("平距(測)", label45_);
  form->addRow("水平角(測)", label29_);
  form->addRow("天頂距(測)", labelZA_);
  auto* pick = new QPushButton("點選", this);
  pick->setObjectName("Command1");
  readTS_ = new QPushButton(this);
  readTS_->setObjectName("ReadTS");
  command18_ = new QPushButton("停止", this);
  command18_->setObjectName("Command18");
  command2_ = new QPushButton("記錄", this);
  command2_->setObjectName("Command2");
  command5_ = new QPushButton("離開", this);
  command5_->setObjectName("Command5");
  auto* row = new QHBoxLayout;
  for (QPushButton* b : {pick, readTS_, command18_, command2_, command5_}) {
    b->setAutoDefault(false);
    row->addWidget(b);
  }
  auto* col = new QVBoxLayout(this);
  col->addLayout(form);
  col->addLayout(row);
  connect(name_, &QLineEdit::returnPressed, this, &StackOut::PickByName);
  connect(pick, &QPushButton::clicked, this, [this] {
    if (StartPick) {
      StartPick("STKOUT");
    } else {
      PickByName();
    }
  });
  connect(label6_, &QPushButton::clicked, this, [this] { logic_->Turn(); });
  connect(readTS_, &QPushButton::clicked, this, [this] {
    logic_->ReadTS();
    Push();
  });
  connect(command18_, &QPushButton::clicked, this, [this] {
    logic_->Command18();
    Push();
  });
  connect(command2_, &QPushButton::clicked, this, [this] {
    logic_->Command2();
    Push();
  });
  connect(command5_, &QPushButton::clicked, this, [this] {
    logic_->Command5();
    accept();
  });
  logic_->Load();
  Push();
}

StackOut::~StackOut() { logic_.reset(); }

void StackOut::reject() {
  logic_->Command5();
  QDialog::reject();
}

// The target typed by name: the named point's pixel goes through the same search as a
// click on the map, so the order and the checks are the same.
void StackOut::PickByName() {
  const auto p = tavik::FindNamedPoint(ctx_.doc, name_->text().toStdString());
  if (!p) {
    ctx_.dialogs.MsgBox("放樣的點必需要有點名", "沒有資料");
    return;
  }
  float x = 0, y = 0;
  tavik::WorldToPaper(ctx_.view, ctx_.doc.ScaleDenominator, p->E, p->N, x, y);
  Pick(x + 1, y + 1);
}

void StackOut::Pick(double x, double y) {
  logic_->ChooseTarget(x, y);
  Push();
}

void StackOut::SetLine(const std::string& line) {
  logic_->SetLine(line);
  Push();
}

void StackOut::Push() {
  const tavik::StackOutLogic& l = *logic_;
  readTS_->setText(Q(l.ReadTSCaption));
  readTS_->setEnabled(l.ReadTSEnabled);
  command18_->setEnabled(l.Command18Enabled);
  command2_->setEnabled(l.Command2Enabled);
  command5_->setEnabled(l.Command5Enabled);
  label4_->setText(Q(l.Label4));
  label5_->setText(Q(l.Label5));
  label6_->setText(Q(MainFrm::AngleText(l.Label6)));
  label8_->setText(Q(l.Label8));
  label9_->setText(Q(l.Label9));
  labelS_->setText(Q(l.LabelS));
  label45_->setText(Q(l.Label45));
  label29_->setText(Q(MainFrm::AngleText(l.Label29)));
  labelZA_->setText(Q(MainFrm::AngleText(l.LabelZA)));
  if (QWidget* w = findChild<QWidget*>(Q(l.Focus))) w->setFocus();
}
