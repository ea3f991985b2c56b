#include "app/dxfoutput.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }

template <class W>
W* Named(W* w, const char* name) {
  w->setObjectName(name);
  return w;
}
}  // namespace

DXFOutput::DXFOutput(const tavik::Document& doc, tavik::dxf::DxfOutputMemory& memory, int16_t& areaUnit,
                     tavik::ui::Dialogs& dialogs, std::filesystem::path workFolder, std::filesystem::path symbolDir,
                     QWidget* parent)
    : QDialog(parent),
      logic_(doc, memory, areaUnit, dialogs),
      workFolder_(std::move(workFolder)),
      symbolDir_(std::move(symbolDir)) {
  setObjectName("DXFOutput");
  setWindowTitle(tavik::dxf::DXFOutputLogic::Caption);

  txtScale_ = Named(new QLineEdit(Q(logic_.TxtScale), this), "TxtScale");
  auto* scaleRow = new QHBoxLayout;
  scaleRow->addWidget(new QLabel("出圖比例尺: 1/", this));
  scaleRow->addWidget(txtScale_, 1);

  // Spot heights: block or point, and the decimals of their labels.
  auto* frame2 = Named(new QGroupBox("獨立高程點", this), "Frame2");
  option3_ = Named(new QRadioButton("圖塊", frame2), "Option3");
  option4_ = Named(new QRadioButton("點", frame2), "Option4");
  combo1_ = Named(new QComboBox(frame2), "Combo1");
  combo1_->addItems({"2", "3"});
  auto* f2 = new QGridLayout(frame2);
  f2->addWidget(new QLabel("點型式", frame2), 0, 0);
  f2->addWidget(option3_, 0, 1);
  f2->addWidget(option4_, 0, 2);
  f2->addWidget(new QLabel("小數", frame2), 1, 0);
  f2->addWidget(combo1_, 1, 1);
  f2->addWidget(new QLabel("位", frame2), 1, 2);
  frame2->setVisible(logic_.Frame2Visible());

  auto* grid = new QGroupBox("方格", this);
  option5_ = Named(new QRadioButton("不畫方格", grid), "Option5");
  option6_ = Named(new QRadioButton("只畫外框", grid), "Option6");
  option7_ = Named(new QRadioButton("方格", grid), "Option7");
  auto* g = new QHBoxLayout(grid);
  for (auto* o : {option5_, option6_, option7_}) g->addWidget(o);

  auto* labels = new QGroupBox("框上座標", this);
  option1_ = Named(new QRadioButton("標示", labels), "Option1");
  option2_ = Named(new QRadioButton("不標示", labels), "Option2");
  auto* l = new QHBoxLayout(labels);
  l->addWidget(option1_);
  l->addWidget(option2_);

  auto* area = new QGroupBox("面積單位", this);
  option8_ = Named(new QRadioButton("平方公尺", area), "Option8");
  option9_ = Named(new QRadioButton("公頃", area), "Option9");
  option10_ = Named(new QRadioButton("坪", area), "Option10");
  auto* a = new QHBoxLayout(area);
  for (auto* o : {option8_, option9_, option10_}) a->addWidget(o);

  check5_ = Named(new QCheckBox("圖檔報表(TXT)", this), "Check5");

  auto* where = new QGroupBox("資料輸出位置:", this);
  label6_ = Named(new QLabel(where), "Label6");
  label6_->setWordWrap(true);
  label6_->setMinimumWidth(320);
  auto* browse = Named(new QPushButton("瀏覽", where), "Command2");
  auto* w = new QHBoxLayout(where);
  w->addWidget(label6_, 1);
  w->addWidget(browse);

  label4_ = Named(new QLabel(this), "Label4");
  auto* ok = Named(new QPushButton("輸出", this), "OKButton");
  auto* cancel = Named(new QPushButton("結束", this), "CancelButton");
  ok->setDefault(true);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(label4_, 1);
  buttons->addWidget(ok);
  buttons->addWidget(cancel);

  auto* col = new QVBoxLayout(this);
  col->addLayout(scaleRow);
  col->addWidget(frame2);
  col->addWidget(grid);
  col->addWidget(labels);
  col->addWidget(area);
  col->addWidget(check5_);
  col->addWidget(where);
  col->addLayout(buttons);

  Push();
  connect(option5_, &QRadioButton::clicked, this, [this] { Pull(), logic_.Option5(), Push(); });
  connect(option6_, &QRadioButton::clicked, this, [this] { Pull(), logic_.Option6(), Push(); });
  connect(option7_, &QRadioButton::clicked, this, [this] { Pull(), logic_.Option7(), Push(); });
  connect(browse, &QPushButton::clicked, this, [this] {
    Pull();
    logic_.Command2(workFolder_);
    Push();
  });
  connect(ok, &QPushButton::clicked, this, [this] {
    Pull();
    label4_->clear();
    const bool done = logic_.OKButton(symbolDir_);
    Push();
    if (done) accept();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

QString DXFOutput::Outcome() const { return Q(logic_.Label4); }

// The controls into the logic.
void DXFOutput::Pull() {
  auto& o = logic_.options;
  logic_.TxtScale = txtScale_->text().trimmed().toStdString();
  o.PointAsBlock = option4_->isChecked() ? 0 : 1;
  o.HeightDecimals = static_cast<int16_t>(combo1_->currentText().toInt());
  o.GridLabels = option1_->isChecked() ? tavik::kTrue : tavik::kFalse;
  o.WriteReport = check5_->isChecked() ? tavik::kTrue : tavik::kFalse;
  logic_.SetAreaUnit(option9_->isChecked() ? 2 : option10_->isChecked() ? 3 : 1);
}

// The logic onto the controls.
void DXFOutput::Push() {
  const auto& o = logic_.options;
  txtScale_->setText(Q(logic_.TxtScale));
  (o.PointAsBlock == 0 ? option4_ : option3_)->setChecked(true);
  combo1_->setCurrentText(o.HeightDecimals == 3 ? "3" : "2");
  if (o.GridFull != tavik::kFalse)
    option7_->setChecked(true);
  else if (o.GridTicks != tavik::kFalse)
    option6_->setChecked(true);
  else
    option5_->setChecked(true);
  (o.GridLabels != tavik::kFalse ? option1_ : option2_)->setChecked(true);
  option1_->setEnabled(logic_.LabelOptionsEnabled());
  option2_->setEnabled(logic_.LabelOptionsEnabled());
  check5_->setChecked(o.WriteReport != tavik::kFalse);
  (logic_.AreaUnit() == 2 ? option9_ : logic_.AreaUnit() == 3 ? option10_ : option8_)->setChecked(true);
  label6_->setText(Q(logic_.Label6));
  label4_->setText(Q(logic_.Label4));
}
