#include "app/instoptions.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDoubleValidator>
#include <QLineEdit>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "core/numbers.h"

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

InstOptions::InstOptions(tavik::InstrumentState& state, tavik::ui::Dialogs& dialogs, tavik::InstOptionsHost& host,
                         tavik::ui::SettingsStore* settings, tavik::GnssSetup* gnss, QWidget* parent)
    : QDialog(parent),
      state_(state),
      port_(settings),
      logic_(state, dialogs, host, port_, timer1_, timer2_),
      gnss_(gnss) {
  logic_.gnss = gnss;
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
  if (gnss_) {
    BuildGnssTab(tabs_->widget(1));
    auto* tab = tabs_->widget(2);
    auto* layout = new QHBoxLayout(tab);
    layout->addWidget(BuildDevice(tab, "測深儀", "Sounder", {"CEEECHO", "Ceastar", "HydroLite", "HydroBox", "E Sea Sound 206"},
                                  gnss_->SounderKind, gnss_->SounderPort, gnss_->SounderBaud, sounder_));
    layout->addWidget(BuildDevice(tab, "姿態儀", "Motion", {"TSS_DMS3"}, gnss_->MotionSensorKind,
                                  gnss_->MotionSensorPort, gnss_->MotionSensorBaud, motion_));
    ShowDevice(sounder_, gnss_->SounderKind, gnss_->SounderPort, gnss_->SounderBaud);
    ShowDevice(motion_, gnss_->MotionSensorKind, gnss_->MotionSensorPort, gnss_->MotionSensorBaud);
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

void InstOptions::BuildGnssTab(QWidget* tab) {
  auto* grid = new QGridLayout(tab);
  auto* kinds = new QGroupBox("接收儀", tab);
  auto* kindsLayout = new QVBoxLayout(kinds);
  receiverGroup_ = new QButtonGroup(this);
  auto* group = receiverGroup_;
  for (const std::string& kind : tavik::GnssReceiverKinds()) {
    auto* b = new QRadioButton(Q(kind), kinds);
    b->setObjectName(Q("OptGps(" + kind + ")"));
    kindsLayout->addWidget(b);
    group->addButton(b);
    receivers_[kind] = b;
    connect(b, &QRadioButton::clicked, this, [this, kind] {
      logic_.PickReceiver(kind);
      ShowState();
    });
  }
  grid->addWidget(kinds, 0, 0, 4, 1);

  auto* portBox = new QGroupBox("通訊參數", tab);
  auto* portLayout = new QHBoxLayout(portBox);
  gpsPort_ = new QComboBox(portBox);
  gpsPort_->setObjectName("GpsPortCombo");
  for (int n : tavik::InstOptionsLogic::PortChoices()) gpsPort_->addItem(QString("COM%1").arg(n), n);
  gpsBaud_ = new QComboBox(portBox);
  gpsBaud_->setObjectName("GpsBaudCombo");
  for (int b : tavik::InstOptionsLogic::SpeedChoices()) gpsBaud_->addItem(QString::number(b), b);
  portLayout->addWidget(gpsPort_);
  portLayout->addWidget(new QLabel("鮑率", portBox));
  portLayout->addWidget(gpsBaud_);
  grid->addWidget(portBox, 0, 1);
  connect(gpsPort_, &QComboBox::activated, this,
          [this](int i) { gnss_->CommPortNumber = static_cast<int16_t>(gpsPort_->itemData(i).toInt()); });
  connect(gpsBaud_, &QComboBox::activated, this, [this](int i) { gnss_->CommBaud = gpsBaud_->itemData(i).toInt(); });

  auto* diffBox = new QGroupBox("差分方式", tab);
  auto* diffLayout = new QHBoxLayout(diffBox);
  const std::pair<const char*, const char*> diffs[] = {{"Option7", "SBAS差分"}, {"Option19", "eGPS"}, {"Option21", "RTK"}};
  for (int i = 0; i < 3; ++i) {
    differential_[i] = new QRadioButton(diffs[i].second, diffBox);
    differential_[i]->setObjectName(diffs[i].first);
    diffLayout->addWidget(differential_[i]);
    connect(differential_[i], &QRadioButton::clicked, this, [this, i] {
      logic_.PickDifferential(static_cast<tavik::InstOptionsLogic::Differential>(i));
    });
  }
  correction_ = new QComboBox(diffBox);
  correction_->setObjectName("CorrectionCombo");
  for (const std::string& f : tavik::InstOptionsLogic::CorrectionFormats()) correction_->addItem(Q(f));
  diffLayout->addWidget(new QLabel("修正訊號格式", diffBox));
  diffLayout->addWidget(correction_);
  connect(correction_, &QComboBox::activated, this,
          [this](int i) { gnss_->CorrectionFormat = correction_->itemText(i).toStdString(); });
  grid->addWidget(diffBox, 1, 1);

  auto* imuBox = new QGroupBox(tab);
  auto* imuLayout = new QHBoxLayout(imuBox);
  check3_ = new QCheckBox("IMU中心與天線偏移量", imuBox);
  check3_->setObjectName("Check3");
  imuLayout->addWidget(check3_);
  connect(check3_, &QCheckBox::toggled, this, [this](bool on) { gnss_->ImuAttached = on ? -1 : 0; });
  double* targets[3] = {&gnss_->ImuOffsetX, &gnss_->ImuOffsetY, &gnss_->ImuOffsetZ};
  for (int i = 0; i < 3; ++i) {
    offsets_[i] = new QLineEdit(imuBox);
    offsets_[i]->setObjectName(QString("TextImu(%1)").arg(i));
    offsets_[i]->setValidator(new QDoubleValidator(offsets_[i]));
    offsets_[i]->setMaximumWidth(70);
    imuLayout->addWidget(offsets_[i]);
    double* target = targets[i];
    connect(offsets_[i], &QLineEdit::textEdited, this, [this, target, i] {
      *target = tavik::num::ParseLenient(offsets_[i]->text().toStdString());
    });
  }
  grid->addWidget(imuBox, 2, 1);
  ShowGnss();
}

QWidget* InstOptions::BuildDevice(QWidget* tab, const char* title, const char* name,
                                  const std::vector<std::string>& kinds, std::string& kind, int16_t& port,
                                  int32_t& baud, DeviceControls& controls) {
  auto* box = new QGroupBox(title, tab);
  auto* layout = new QVBoxLayout(box);
  auto* group = new QButtonGroup(box);
  std::vector<std::string> all{""};
  all.insert(all.end(), kinds.begin(), kinds.end());
  for (const std::string& k : all) {
    auto* b = new QRadioButton(k.empty() ? QString("無") : Q(k), box);
    b->setObjectName(Q(std::string("Opt") + name + "(" + k + ")"));
    layout->addWidget(b);
    group->addButton(b);
    controls.kinds[k] = b;
    connect(b, &QRadioButton::clicked, this, [&kind, k] { kind = k; });
  }
  auto* row = new QHBoxLayout;
  controls.port = new QComboBox(box);
  controls.port->setObjectName(Q(std::string(name) + "PortCombo"));
  for (int n : tavik::InstOptionsLogic::PortChoices()) controls.port->addItem(QString("COM%1").arg(n), n);
  controls.baud = new QComboBox(box);
  controls.baud->setObjectName(Q(std::string(name) + "BaudCombo"));
  for (int b : tavik::InstOptionsLogic::SpeedChoices()) controls.baud->addItem(QString::number(b), b);
  row->addWidget(controls.port);
  row->addWidget(new QLabel("鮑率", box));
  row->addWidget(controls.baud);
  layout->addLayout(row);
  layout->addStretch();
  QComboBox* portCombo = controls.port;
  QComboBox* baudCombo = controls.baud;
  connect(portCombo, &QComboBox::activated, this,
          [&port, portCombo](int i) { port = static_cast<int16_t>(portCombo->itemData(i).toInt()); });
  connect(baudCombo, &QComboBox::activated, this, [&baud, baudCombo](int i) { baud = baudCombo->itemData(i).toInt(); });
  return box;
}

void InstOptions::ShowDevice(const DeviceControls& controls, const std::string& kind, int16_t port, int32_t baud) {
  auto marked = controls.kinds.find(kind);
  if (marked != controls.kinds.end()) marked->second->setChecked(true);
  controls.port->setCurrentIndex(controls.port->findData(static_cast<int>(port)));
  int speed = controls.baud->findData(static_cast<int>(baud));
  if (speed < 0) {
    controls.baud->addItem(QString::number(baud), static_cast<int>(baud));
    speed = controls.baud->count() - 1;
  }
  controls.baud->setCurrentIndex(speed);
}

void InstOptions::MarkReceiver() {
  receiverGroup_->setExclusive(false);
  for (auto& [kind, b] : receivers_) b->setChecked(state_.MeasureMode == "GPS" && kind == gnss_->GpsReceiverKind);
  receiverGroup_->setExclusive(true);
}

void InstOptions::ShowGnss() {
  if (!gnss_) return;
  MarkReceiver();
  gpsPort_->setCurrentIndex(gpsPort_->findData(static_cast<int>(gnss_->CommPortNumber)));
  int speed = gpsBaud_->findData(static_cast<int>(gnss_->CommBaud));
  if (speed < 0) {
    gpsBaud_->addItem(QString::number(gnss_->CommBaud), static_cast<int>(gnss_->CommBaud));
    speed = gpsBaud_->count() - 1;
  }
  gpsBaud_->setCurrentIndex(speed);
  int format = correction_->findText(Q(gnss_->CorrectionFormat));
  if (format < 0) {
    correction_->addItem(Q(gnss_->CorrectionFormat));
    format = correction_->count() - 1;
  }
  correction_->setCurrentIndex(format);
  differential_[0]->setChecked(gnss_->DiffSbas != 0);
  differential_[1]->setChecked(gnss_->DiffEgps != 0);
  differential_[2]->setChecked(gnss_->DiffRtk != 0);
  check3_->setChecked(gnss_->ImuAttached != 0);
  const double values[3] = {gnss_->ImuOffsetX, gnss_->ImuOffsetY, gnss_->ImuOffsetZ};
  for (int i = 0; i < 3; ++i) offsets_[i]->setText(Q(tavik::num::Plain(values[i])));
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
  if (gnss_) {
    // A total-station pick leaves GPS mode: no receiver stays marked.
    MarkReceiver();
  }
}

void InstOptions::accept() {
  logic_.cmdOKClick();
  QDialog::accept();
}

void InstOptions::reject() {
  logic_.cmdCancelClick();
  QDialog::reject();
}
