#include "app/dlgcadamete.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "geo/point_name.h"

DlgCadaMete::DlgCadaMete(QWidget* parent) : QDialog(parent) {
  setObjectName("DlgCadaMete");
  setWindowTitle("測點屬性");
  auto* col = new QVBoxLayout(this);
  col->addWidget(new QLabel("地籍點名 (記入 MAC 觀測簿):", this));
  name_ = new QLineEdit(this);
  name_->setObjectName("Text1");
  col->addWidget(name_);
  auto* row = new QHBoxLayout;
  auto* point = new QPushButton("存為測點", this);
  point->setObjectName("Command1");
  point->setDefault(true);
  auto* cadastral = new QPushButton("地籍觀測", this);
  cadastral->setObjectName("Command2");
  auto* cancel = new QPushButton("放棄本點", this);
  cancel->setObjectName("Command3");
  row->addWidget(point);
  row->addWidget(cadastral);
  row->addWidget(cancel);
  col->addLayout(row);
  connect(point, &QPushButton::clicked, this, [this] {
    choice_ = 2;
    accept();
  });
  connect(cadastral, &QPushButton::clicked, this, [this] {
    if (name_->text().trimmed().isEmpty()) {
      name_->setFocus();
      return;
    }
    choice_ = 1;
    accept();
  });
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

int16_t DlgCadaMete::Ask(QWidget* parent, std::string& name, std::string& lastName) {
  DlgCadaMete dlg(parent);
  // The next name in the running series of the last one: "界12" after "界11".
  if (!lastName.empty()) {
    std::string prefix;
    int16_t number = 0, width = 1;
    tavik::SplitPointName(lastName, prefix, number, width);
    if (number > 0) dlg.name_->setText(QString::fromStdString(prefix + std::to_string(number + 1)));
  }
  if (dlg.exec() != QDialog::Accepted) return 0;
  name = dlg.name_->text().trimmed().toStdString();
  if (dlg.choice_ == 1) lastName = name;
  return dlg.choice_;
}
