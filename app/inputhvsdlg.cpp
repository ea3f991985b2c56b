#include "app/inputhvsdlg.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

#include "procedures/keyed_observation.h"

InputHVSDlg::InputHVSDlg(tavik::InstrumentState& inst, tavik::ui::Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), inst_(inst), dialogs_(dialogs) {
  setObjectName("InputHVSDlg");
  setWindowTitle("手輸入觀測值");
  auto* form = new QFormLayout;
  hz_ = new QLineEdit(this);
  hz_->setObjectName("TextHz");
  v_ = new QLineEdit("900000", this);
  v_->setObjectName("TextV");
  slope_ = new QLineEdit(this);
  slope_->setObjectName("TextS");
  form->addRow("水平角 (度分秒,例 1234512)", hz_);
  form->addRow("天頂距 (度分秒,例 901530)", v_);
  form->addRow("斜距 (m)", slope_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText("確定");
  buttons->button(QDialogButtonBox::Cancel)->setText("取消");
  connect(buttons, &QDialogButtonBox::accepted, this, &InputHVSDlg::OnOk);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* col = new QVBoxLayout(this);
  col->addLayout(form);
  col->addWidget(buttons);
  hz_->setFocus();
}

void InputHVSDlg::OnOk() {
  const auto error = tavik::KeyinObservation(inst_, hz_->text().toStdString(), v_->text().toStdString(),
                                             slope_->text().toStdString());
  if (error) {
    dialogs_.MsgBox(error->text, error->title, tavik::ui::Buttons::Ok, tavik::ui::Icon::Exclamation);
    return;
  }
  accept();
}

bool InputHVSDlg::Ask(tavik::InstrumentState& inst, tavik::ui::Dialogs& dialogs, QWidget* parent) {
  InputHVSDlg dlg(inst, dialogs, parent);
  return dlg.exec() == QDialog::Accepted;
}
