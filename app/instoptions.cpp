#include "app/instoptions.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

InstOptions::InstOptions(tavik::InstrumentState& state, tavik::ui::Dialogs& dialogs, tavik::InstOptionsHost& host,
                         tavik::ui::SettingsStore* settings, QWidget* parent)
    : QDialog(parent),
      state_(state),
      port_(settings),
      logic_(state, dialogs, host, port_, timer1_, timer2_) {
  setObjectName("InstOptions");
  setWindowTitle("儀器選單");
  auto* layout = new QVBoxLayout(this);
  tabs_ = new QTabWidget(this);
  tabs_->setObjectName("tbsOptions");
  layout->addWidget(tabs_);

  auto* ts = new QWidget(tabs_);
  ts->setObjectName("picOptions(0)");
  tabs_->addTab(ts, "全站儀");
  for (const char* caption : {"衛星接收儀", "測深儀/姿態儀"}) {
    auto* other = new QWidget(tabs_);
    other->setObjectName(QString("picOptions(%1)").arg(tabs_->count()));
    tabs_->addTab(other, caption);
  }
  auto* grid = new QGridLayout(ts);

  auto* kinds = new QGroupBox("儀器", ts);
  auto* kindsLayout = new QVBoxLayout(kinds);
  auto* group = new QButtonGroup(this);
  for (const tavik::InstOptionRow& r : tavik::InstOptionTable()) {
    auto* b = new QRadioButton(QString::fromUtf8(r.caption), kinds);
    b->setObjectName(r.control);
    kindsLayout->addWidget(b);
    group->addButton(b);
    options_[r.id] = b;
    connect(b, &QRadioButton::clicked, this, [this, id = r.id] {
      logic_.PickOption(id);
      ShowState();
    });
  }
  grid->addWidget(kinds, 0, 0, 6, 1);

  auto* portBox = new QGroupBox("通訊參數", ts);
  auto* portLayout = new QHBoxLayout(portBox);
  combo4_ = new QComboBox(portBox);
  combo4_->setObjectName("Combo4");
  for (int n : tavik::InstOptionsLogic::PortChoices()) combo4_->addItem(QString("COM%1").arg(n), n);
  combo5_ = new QComboBox(portBox);
  combo5_->setObjectName("Combo5");
  for (int b : tavik::InstOptionsLogic::SpeedChoices()) combo5_->addItem(QString::number(b), b);
  portLayout->addWidget(combo4_);
  portLayout->addWidget(new QLabel("鮑率", portBox));
  portLayout->addWidget(combo5_);
  grid->addWidget(portBox, 0, 1);
  connect(combo4_, &QComboBox::activated, this, [this](int i) { logic_.Combo4Click(combo4_->itemData(i).toInt()); });
  connect(combo5_, &QComboBox::activated, this, [this](int i) { logic_.Combo5Click(combo5_->itemData(i).toInt()); });

  auto* mapBox = new QGroupBox(ts);
  auto* mapLayout = new QHBoxLayout(mapBox);
  opt2D_ = new QRadioButton("平面圖", mapBox);
  opt2D_->setObjectName("Opt2D");
  opt3D_ = new QRadioButton("地形圖", mapBox);
  opt3D_->setObjectName("Opt3D");
  auto* help = new QPushButton("說明", mapBox);
  help->setObjectName("Command2");
  mapLayout->addWidget(opt2D_);
  mapLayout->addWidget(opt3D_);
  mapLayout->addWidget(help);
  grid->addWidget(mapBox, 1, 1);
  connect(opt2D_, &QRadioButton::clicked, this, [this] { logic_.Opt2DClick(); });
  connect(opt3D_, &QRadioButton::clicked, this, [this] { logic_.Opt3DClick(); });
  connect(help, &QPushButton::clicked, this, [this] { logic_.Command2Click(); });

  auto* identify = new QPushButton("自動偵測", ts);
  identify->setObjectName("Command1");
  grid->addWidget(identify, 2, 1);
  connect(identify, &QPushButton::clicked, this, [this] { logic_.Command1Click(); });
  label6_ = new QLabel(ts);
  label6_->setObjectName("Label6(1)");
  grid->addWidget(label6_, 3, 1);

  auto* power = new QGroupBox("SRX / SET3110MV", ts);
  auto* powerLayout = new QHBoxLayout(power);
  const std::pair<const char*, const char*> buttons[] = {{"Command3", "開機"}, {"Command5", "關機"}, {"Command4", "ROTA"}};
  for (auto [name, caption] : buttons) {
    auto* b = new QPushButton(caption, power);
    b->setObjectName(name);
    powerLayout->addWidget(b);
    std::string n = name;
    connect(b, &QPushButton::clicked, this, [this, n] {
      if (n == "Command3") logic_.Command3Click();
      else if (n == "Command5") logic_.Command5Click();
      else logic_.Command4Click();
    });
  }
  grid->addWidget(power, 4, 1);

  auto* row = new QHBoxLayout;
  ok_ = new QPushButton("確定", this);
  ok_->setObjectName("cmdOK");
  ok_->setDefault(true);
  auto* cancel = new QPushButton("取消", this);
  cancel->setObjectName("cmdCancel");
  row->addStretch();
  row->addWidget(ok_);
  row->addWidget(cancel);
  layout->addLayout(row);
  connect(ok_, &QPushButton::clicked, this, &InstOptions::accept);
  connect(cancel, &QPushButton::clicked, this, &InstOptions::reject);

  // Bytes and ticks come from the event loop; after each the window shows the logic.
  auto onByte = port_.OnByte;
  port_.OnByte = [this, onByte](char c) {
    onByte(c);
    ShowState();
  };

  logic_.Load();
  tabs_->setCurrentIndex(state.MeasureMode == "GPS" ? 1 : 0);
  ShowState();
}

void InstOptions::ShowState() {
  for (auto& [id, b] : options_) {
    if (logic_.marked == id) b->setChecked(true);
  }
  if (logic_.marked == std::nullopt) {
    for (QButtonGroup* g : findChildren<QButtonGroup*>()) g->setExclusive(false);
    for (auto& [id, b] : options_) b->setChecked(false);
    for (QButtonGroup* g : findChildren<QButtonGroup*>()) g->setExclusive(true);
  }
  combo4_->setCurrentIndex(combo4_->findData(static_cast<int>(state_.PortNumber)));
  int speed = combo5_->findData(static_cast<int>(state_.BaudRate));
  if (speed < 0) {
    combo5_->addItem(QString::number(state_.BaudRate), static_cast<int>(state_.BaudRate));
    speed = combo5_->count() - 1;
  }
  combo5_->setCurrentIndex(speed);
  opt2D_->setChecked(logic_.Opt2D);
  opt3D_->setChecked(logic_.Opt3D);
  label6_->setText(Q(logic_.Label6_1));
  if (logic_.focusOK) ok_->setFocus();
}

void InstOptions::accept() {
  logic_.cmdOKClick();
  QDialog::accept();
}

void InstOptions::reject() {
  logic_.cmdCancelClick();
  QDialog::reject();
}
