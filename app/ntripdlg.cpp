#include "app/ntripdlg.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

using tavik::ntrip::Role;

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

NtripDlg::NtripDlg(Role role, tavik::ui::SettingsStore& store, tavik::ui::Dialogs& dialogs,
                   bool receiverPortAvailable, QWidget* parent)
    : QDialog(parent), role_(role), store_(store), dialogs_(dialogs) {
  const bool client = role == Role::Client;
  setObjectName(client ? "NtripClientDlg" : "NtripServerDlg");
  setWindowTitle(client ? "NTRIP 改正資料設定" : "NTRIP 基地站上傳設定");
  const tavik::ntrip::Options o = tavik::ntrip::LoadOptions(store, role);
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  layout->addLayout(form);

  caster_ = new QLineEdit(Q(o.session.host), this);
  caster_->setObjectName("CasterBox");
  caster_->setPlaceholderText("例: 主機名稱或 IP 位址");
  port_ = new QSpinBox(this);
  port_->setObjectName("PortBox");
  port_->setRange(1, 65535);
  port_->setValue(o.session.port);
  auto* casterRow = new QHBoxLayout;
  casterRow->addWidget(caster_, 1);
  casterRow->addWidget(new QLabel("埠號", this));
  casterRow->addWidget(port_);
  form->addRow("NTRIP 主機", casterRow);

  version_ = new QComboBox(this);
  version_->setObjectName("VersionBox");
  version_->addItems({"NTRIP 2.0", "NTRIP 1.0"});
  version_->setCurrentIndex(o.session.version == tavik::ntrip::Version::V1 ? 1 : 0);
  form->addRow("協定版本", version_);

  mount_ = new QComboBox(this);
  mount_->setObjectName("MountBox");
  mount_->setEditable(true);
  mount_->setEditText(Q(o.session.mount));
  mount_->setMinimumContentsLength(24);
  auto* fetch = new QPushButton("取得掛載點列表", this);
  fetch->setObjectName("FetchButton");
  fetch->setVisible(client);
  auto* mountRow = new QHBoxLayout;
  mountRow->addWidget(mount_, 1);
  mountRow->addWidget(fetch);
  form->addRow("掛載點", mountRow);
  sourceLabel_ = new QLabel(this);
  sourceLabel_->setObjectName("SourceLabel");
  sourceLabel_->setWordWrap(true);
  form->addRow("", sourceLabel_);
  sourceLabel_->setVisible(client);  // the server names its own mount point
  connect(fetch, &QPushButton::clicked, this, &NtripDlg::FetchMounts);

  user_ = new QLineEdit(Q(o.session.user), this);
  user_->setObjectName("UserBox");
  password_ = new QLineEdit(Q(o.session.password), this);
  password_->setObjectName("PasswordBox");
  password_->setEchoMode(QLineEdit::Password);
  form->addRow(client ? "帳號" : "帳號 (NTRIP 2.0)", user_);
  form->addRow("密碼", password_);

  if (client) {
    ggaSeconds_ = new QSpinBox(this);
    ggaSeconds_->setObjectName("GgaSecondsBox");
    ggaSeconds_->setRange(0, 3600);
    ggaSeconds_->setSuffix(" 秒");
    ggaSeconds_->setSpecialValueText("不送");
    ggaSeconds_->setValue(o.session.ggaSeconds);
    form->addRow("回傳 GGA 間隔", ggaSeconds_);
    gga_ = new QLineEdit(Q(o.session.gga), this);
    gga_->setObjectName("GgaBox");
    gga_->setPlaceholderText("$GPGGA,... (接收儀有定位時自動使用接收儀的位置)");
    form->addRow("固定 GGA", gga_);
  }

  toComputer_ = new QRadioButton(client ? "改正資料送到電腦的通訊埠" : "讀取電腦的通訊埠", this);
  toComputer_->setObjectName("ComputerPortOption");
  toReceiver_ = new QRadioButton("改正資料送到接收儀的通訊埠", this);
  toReceiver_->setObjectName("ReceiverPortOption");
  toReceiver_->setVisible(client && receiverPortAvailable);
  (client && receiverPortAvailable && o.receiverPort ? toReceiver_ : toComputer_)->setChecked(true);
  comPort_ = new QSpinBox(this);
  comPort_->setObjectName("ComPortBox");
  comPort_->setRange(1, 99);
  comPort_->setPrefix("COM ");
  comPort_->setValue(o.comPort);
  portSettings_ = new QComboBox(this);
  portSettings_->setObjectName("PortSettingsBox");
  portSettings_->setEditable(true);
  portSettings_->addItems({"9600,n,8,1", "19200,n,8,1", "38400,n,8,1", "57600,n,8,1", "115200,n,8,1"});
  portSettings_->setEditText(Q(o.portSettings));
  auto* portRow = new QHBoxLayout;
  portRow->addWidget(toComputer_);
  portRow->addWidget(comPort_);
  portRow->addWidget(portSettings_);
  layout->addLayout(portRow);
  layout->addWidget(toReceiver_);

  auto* row = new QHBoxLayout;
  auto* ok = new QPushButton("確定", this);
  ok->setObjectName("OKButton");
  ok->setDefault(true);
  auto* cancel = new QPushButton("取消", this);
  cancel->setObjectName("CancelButton");
  row->addStretch();
  row->addWidget(ok);
  row->addWidget(cancel);
  layout->addLayout(row);
  connect(ok, &QPushButton::clicked, this, &NtripDlg::accept);
  connect(cancel, &QPushButton::clicked, this, &NtripDlg::reject);

  clock_.start();
  fetchTick_.setInterval(200);
  connect(&fetchTick_, &QTimer::timeout, this, [this] {
    if (fetch_) fetch_->Tick(clock_.elapsed());
  });
}

NtripDlg::~NtripDlg() = default;

tavik::ntrip::Options NtripDlg::Read() const {
  tavik::ntrip::Options o;
  tavik::ntrip::Settings& s = o.session;
  s.role = role_;
  s.host = caster_->text().trimmed().toStdString();
  s.port = port_->value();
  s.version = version_->currentIndex() == 1 ? tavik::ntrip::Version::V1 : tavik::ntrip::Version::V2;
  // A listed item carries its mount point; a typed one is the text itself.
  const int at = mount_->findText(mount_->currentText());
  s.mount = (at >= 0 && mount_->itemData(at).isValid() ? mount_->itemData(at).toString() : mount_->currentText().trimmed())
                .toStdString();
  s.user = user_->text().toStdString();
  s.password = password_->text().toStdString();
  if (ggaSeconds_) s.ggaSeconds = ggaSeconds_->value();
  if (gga_) s.gga = gga_->text().trimmed().toStdString();
  o.receiverPort = toReceiver_->isVisible() && toReceiver_->isChecked();
  o.comPort = comPort_->value();
  o.portSettings = portSettings_->currentText().trimmed().toStdString();
  return o;
}

void NtripDlg::FetchMounts() {
  tavik::ntrip::Settings s = Read().session;
  s.mount.clear();  // the request for the source table
  if (s.host.empty()) {
    sourceLabel_->setText("請先輸入 NTRIP 主機");
    return;
  }
  fetch_.reset();
  fetchLink_ = std::make_unique<tavik::ui::QtTcpLink>();
  fetch_ = std::make_unique<tavik::ntrip::Session>(*fetchLink_, s);
  sourceLabel_->setText("讀取掛載點列表...");
  fetch_->OnSourceTable = [this](const std::vector<tavik::ntrip::Stream>& streams) {
    const QString typed = mount_->currentText();
    mount_->clear();
    for (const tavik::ntrip::Stream& st : streams) {
      QString text = Q(st.mount);
      if (!st.identifier.empty() || !st.format.empty())
        text += "  (" + Q(st.identifier) + (st.format.empty() ? "" : ", " + Q(st.format)) + ")";
      if (st.needsGga) text += "  [需 GGA]";
      mount_->addItem(text, Q(st.mount));
    }
    // The mount point typed or kept stays chosen; with none, the first of the list.
    const int keep = typed.isEmpty() ? 0 : mount_->findData(typed);
    if (keep >= 0 && keep < mount_->count())
      mount_->setCurrentIndex(keep);
    else
      mount_->setEditText(typed);
    sourceLabel_->setText(QString("共 %1 個掛載點").arg(streams.size()));
  };
  fetch_->OnStateChanged = [this] {
    const tavik::ntrip::State st = fetch_->state();
    if (st == tavik::ntrip::State::Failed || st == tavik::ntrip::State::Retrying) {
      sourceLabel_->setText(Q(fetch_->LastError()));
      // No retry for a list asked for by hand: the user asks again.
      QTimer::singleShot(0, this, [this] {
        if (fetch_ && fetch_->state() != tavik::ntrip::State::Stopped) fetch_->Stop();
      });
    }
  };
  fetch_->Start(clock_.elapsed());
  fetchTick_.start();
}

void NtripDlg::accept() {
  const tavik::ntrip::Options o = Read();
  std::string why;
  if (o.session.host.empty()) why = "請輸入 NTRIP 主機";
  if (why.empty()) why = tavik::ntrip::CheckMount(o.session.mount);
  if (!why.empty()) {
    dialogs_.MsgBox(why, "NTRIP", tavik::ui::Buttons::Ok, tavik::ui::Icon::Exclamation);
    return;
  }
  tavik::ntrip::SaveOptions(store_, o);
  QDialog::accept();
}
