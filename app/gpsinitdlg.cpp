#include "app/gpsinitdlg.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QLabel>
#include <QMenu>
#include <QVBoxLayout>

#include "app/mainfrm.h"
#include "core/software_ini.h"

GpsInitDlg::GpsInitDlg(tavik::GpsDatumSettings& settings, std::function<bool()> msComm1Open,
                       std::function<void(const tavik::GpsInitOk&)> onOk, QWidget* parent)
    : QDialog(parent), logic_(settings), msComm1Open_(std::move(msComm1Open)), onOk_(std::move(onOk)) {
  setObjectName("GpsInitDlg");
  setWindowTitle(QString::fromUtf8(tavik::GpsInitDlgLogic::Caption));
  auto* layout = new QVBoxLayout(this);
  // Two groups, so that a datum and a meridian are each chosen once.
  QGroupBox* groups[2] = {new QGroupBox(this), new QGroupBox(this)};
  for (QGroupBox* g : groups) {
    g->setLayout(new QVBoxLayout);
    layout->addWidget(g);
  }
  auto* datumButtons = new QButtonGroup(this);
  auto* meridianButtons = new QButtonGroup(this);
  for (int i = 1; i <= 5; ++i) {
    auto* b = new QRadioButton(QString::fromUtf8(tavik::GpsInitDlgLogic::OptionCaption(i)), this);
    b->setObjectName(QString("Option%1").arg(i));
    groups[i <= 3 ? 0 : 1]->layout()->addWidget(b);
    (i <= 3 ? datumButtons : meridianButtons)->addButton(b, i);
    options_[i] = b;
    connect(b, &QRadioButton::clicked, this, [this, i] {
      logic_.ChooseOption(i);
      ShowOptions();
    });
  }
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
  connect(ok, &QPushButton::clicked, this, &GpsInitDlg::accept);
  connect(cancel, &QPushButton::clicked, this, &GpsInitDlg::reject);
  ShowOptions();
}

void GpsInitDlg::ShowOptions() {
  for (QButtonGroup* g : findChildren<QButtonGroup*>()) g->setExclusive(false);
  for (int i = 1; i <= 5; ++i) options_[i]->setChecked(logic_.Option(i));
  for (QButtonGroup* g : findChildren<QButtonGroup*>()) g->setExclusive(true);
}

void GpsInitDlg::accept() {
  const tavik::GpsInitOk ok = logic_.OKButton(msComm1Open_ && msComm1Open_());
  if (onOk_) onOk_(ok);
  QDialog::accept();
}

void GpsInitDlg::reject() {
  logic_.CancelButton();
  QDialog::reject();
}

void AddGpsInitCommand(MainFrm& frm, tavik::GpsDatumSettings& settings, tavik::SoftwareIni& ini,
                       std::function<bool()> msComm1Open,
                       std::function<void(const tavik::GpsInitOk&)> afterOk) {
  QMenu* setup = frm.Menu("MainMnuSetup");
  if (!setup) return;
  QAction* a = setup->addAction(QString::fromUtf8("衛星接收儀啟動設定..."));
  a->setObjectName("mnuGpsInit");
  QObject::connect(a, &QAction::triggered, &frm, [&frm, &settings, &ini, msComm1Open, afterOk] {
    auto show = [&frm](const char* name, const std::string& text, tavik::ui::Rgb colour) {
      if (auto* l = frm.findChild<QLabel*>(name)) {
        l->setText(QString::fromStdString(text));
        l->setStyleSheet(QString("color: rgb(%1,%2,%3)")
                             .arg(tavik::ui::RedOf(colour))
                             .arg(tavik::ui::GreenOf(colour))
                             .arg(tavik::ui::BlueOf(colour)));
      }
    };
    GpsInitDlg dlg(settings, msComm1Open, [&](const tavik::GpsInitOk& ok) {
      ini.GpsDatum = settings.GpsDatum;
      ini.CentralMeridian = settings.CentralMeridian;
      show("Label25(0)", ok.Label25_0, ok.Label25_0Colour);
      show("Label4", ok.Label4, ok.Label4Colour);
      if (afterOk) afterOk(ok);
    }, &frm);
    dlg.exec();
  });
}
