#include "platform/qt/qt_dialogs.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QStringList>

namespace tavik::ui {

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

QMessageBox::StandardButton ToQt(Answer a) {
  switch (a) {
    case Answer::Ok: return QMessageBox::Ok;
    case Answer::Cancel: return QMessageBox::Cancel;
    case Answer::Yes: return QMessageBox::Yes;
    case Answer::No: return QMessageBox::No;
    case Answer::Retry: return QMessageBox::Retry;
  }
  return QMessageBox::Ok;
}

// One pattern such as "*.SPC" matching any case: "*.[sS][pP][cC]".
QString CaselessPattern(const QString& pattern) {
  const QString p = pattern.trimmed();
  if (p == "*.*" || p == "*") return "*";
  QString out;
  for (QChar c : p) {
    if (c.isLetter() && c.toLower() != c.toUpper()) {
      out += '[';
      out += c.toLower();
      out += c.toUpper();
      out += ']';
    } else {
      out += c;
    }
  }
  return out;
}

}  // namespace

QString QtFilterFromClassic(const std::string& classic) {
  const QStringList parts = Q(classic).split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QStringList patterns;
    for (const QString& p : parts[i + 1].split(';', Qt::SkipEmptyParts)) patterns << CaselessPattern(p);
    filters << parts[i] + " (" + patterns.join(' ') + ")";
  }
  if (parts.size() % 2 == 1 && !parts.back().isEmpty()) filters << parts.back() + " (*)";
  return filters.join(";;");
}

Answer QtDialogs::MsgBox(const std::string& text, const std::string& title, Buttons buttons, Icon icon,
                         std::optional<Answer> defaultButton) {
  QMessageBox box(parent_);
  box.setWindowTitle(Q(title));
  box.setText(Q(text));
  switch (icon) {
    case Icon::None: box.setIcon(QMessageBox::NoIcon); break;
    case Icon::Information: box.setIcon(QMessageBox::Information); break;
    case Icon::Question: box.setIcon(QMessageBox::Question); break;
    case Icon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case Icon::Critical: box.setIcon(QMessageBox::Critical); break;
  }
  QMessageBox::StandardButtons set;
  Answer first = Answer::Ok, escape = Answer::Ok;
  switch (buttons) {
    case Buttons::Ok: set = QMessageBox::Ok; break;
    case Buttons::OkCancel: set = QMessageBox::Ok | QMessageBox::Cancel; escape = Answer::Cancel; break;
    case Buttons::YesNo: set = QMessageBox::Yes | QMessageBox::No; first = Answer::Yes; escape = Answer::No; break;
    case Buttons::YesNoCancel:
      set = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
      first = Answer::Yes;
      escape = Answer::Cancel;
      break;
    case Buttons::RetryCancel:
      set = QMessageBox::Retry | QMessageBox::Cancel;
      first = Answer::Retry;
      escape = Answer::Cancel;
      break;
  }
  box.setStandardButtons(set);
  // The button captions of the Traditional Chinese interface, whatever translations
  // the system has installed.
  const std::pair<QMessageBox::StandardButton, const char*> captions[] = {
      {QMessageBox::Ok, "確定"}, {QMessageBox::Cancel, "取消"}, {QMessageBox::Yes, "是(&Y)"},
      {QMessageBox::No, "否(&N)"}, {QMessageBox::Retry, "重試(&R)"}};
  for (const auto& [b, text] : captions)
    if (QAbstractButton* button = box.button(b)) button->setText(text);
  box.setDefaultButton(ToQt(defaultButton.value_or(first)));
  box.setEscapeButton(ToQt(escape));
  switch (box.exec()) {
    case QMessageBox::Ok: return Answer::Ok;
    case QMessageBox::Cancel: return Answer::Cancel;
    case QMessageBox::Yes: return Answer::Yes;
    case QMessageBox::No: return Answer::No;
    case QMessageBox::Retry: return Answer::Retry;
    default: return escape;  // closed by the window's own button
  }
}

std::optional<std::string> QtDialogs::InputBox(const std::string& prompt, const std::string& title,
                                               const std::string& defaultText) {
  QInputDialog dlg(parent_);
  dlg.setWindowTitle(Q(title));
  dlg.setLabelText(Q(prompt));
  dlg.setTextValue(Q(defaultText));
  dlg.setOkButtonText("確定");
  dlg.setCancelButtonText("取消");
  if (dlg.exec() != QDialog::Accepted) return std::nullopt;
  return dlg.textValue().toStdString();
}

namespace {

std::string RunFileDialog(QWidget* parent, QFileDialog::AcceptMode mode, const std::string& title,
                          const std::string& filter, const std::string& start) {
  QFileDialog dlg(parent, Q(title), Q(start));
  dlg.setAcceptMode(mode);
  // A typed name that does not exist comes back to the program, which says so itself.
  dlg.setFileMode(QFileDialog::AnyFile);
  // The program asks its own questions about existing names, and shows the filters
  // by their classic captions only.
  dlg.setOptions(QFileDialog::DontConfirmOverwrite | QFileDialog::HideNameFilterDetails |
                 QFileDialog::DontUseNativeDialog);
  dlg.setNameFilter(QtFilterFromClassic(filter));
  dlg.setLabelText(QFileDialog::LookIn, "搜尋位置:");
  dlg.setLabelText(QFileDialog::FileName, "檔案名稱:");
  dlg.setLabelText(QFileDialog::FileType, "檔案類型:");
  dlg.setLabelText(QFileDialog::Accept, mode == QFileDialog::AcceptOpen ? "開啟(&O)" : "存檔(&S)");
  dlg.setLabelText(QFileDialog::Reject, "取消");
  if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty()) return "";
  return dlg.selectedFiles().front().toStdString();
}

}  // namespace

std::string QtDialogs::OpenFileName(const std::string& title, const std::string& filter,
                                    const std::string& startFolder) {
  return RunFileDialog(parent_, QFileDialog::AcceptOpen, title, filter, startFolder);
}

std::string QtDialogs::SaveFileName(const std::string& title, const std::string& filter,
                                    const std::string& startPath) {
  return RunFileDialog(parent_, QFileDialog::AcceptSave, title, filter, startPath);
}

}  // namespace tavik::ui
