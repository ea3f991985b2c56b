#include "platform/qt/qt_dialogs.h"

#include <QAbstractButton>
#include <QDateTime>
#include <QDir>
#include <QUrl>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QIdentityProxyModel>
#include <QInputDialog>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QStringList>
#include <QHeaderView>
#include <QToolButton>
#include <QTreeView>
#include <QTranslator>

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

QString FileTypeText(const QString& fileName, bool folder) {
  if (folder) return "資料夾";
  const QString ext = QFileInfo(fileName).suffix().toUpper();
  static const std::pair<const char*, const char*> known[] = {
      {"SPC", "TAVIK 圖檔"},    {"SP", "舊版圖檔"},   {"OLD", "前一版圖檔"}, {"OBS", "觀測記錄"},
      {"MAC", "觀測記簿"},      {"STK", "放樣記錄"},  {"WAY", "GPS 記錄"},   {"GSTK", "GPS 放樣記錄"},
      {"GOBS", "GPS 原始記錄"}, {"DXF", "DXF 圖檔"},  {"CSV", "CSV 表格"},   {"TXT", "文字檔"}};
  for (const auto& [e, text] : known)
    if (ext == QLatin1String(e)) return QString::fromUtf8(text);
  return ext.isEmpty() ? QString("檔案") : ext + " 檔";
}

bool InstallQtTranslation() {
  auto* t = new QTranslator(qApp);
  if (t->load(QLocale(QLocale::Chinese, QLocale::TraditionalHanScript, QLocale::Taiwan), "qtbase", "_",
              QLibraryInfo::path(QLibraryInfo::TranslationsPath)) &&
      QCoreApplication::installTranslator(t))
    return true;
  delete t;
  return false;
}

namespace {

// The file list with Chinese column captions and the program's own names for the file
// types, in place of the system's descriptions (which call an .SPC a certificate bundle).
class FileListNames : public QIdentityProxyModel {
 public:
  using QIdentityProxyModel::QIdentityProxyModel;
  QVariant headerData(int section, Qt::Orientation o, int role) const override {
    static const char* captions[] = {"名稱", "大小", "類型", "修改日期"};
    if (o == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < 4)
      return QString::fromUtf8(captions[section]);
    return QIdentityProxyModel::headerData(section, o, role);
  }
  QVariant data(const QModelIndex& index, int role) const override {
    const auto* files = qobject_cast<const QFileSystemModel*>(sourceModel());
    if (files == nullptr || role != Qt::DisplayRole || index.column() == 0) return QIdentityProxyModel::data(index, role);
    const QModelIndex source = mapToSource(index.siblingAtColumn(0));
    const bool folder = files->isDir(source);
    switch (index.column()) {
      case 1: {
        if (folder) return QString();
        const double size = static_cast<double>(files->size(source));
        if (size < 1024) return QString("%1 位元組").arg(files->size(source));
        if (size < 1024 * 1024) return QString("%1 KB").arg(size / 1024, 0, 'f', 1);
        return QString("%1 MB").arg(size / (1024 * 1024), 0, 'f', 1);
      }
      case 2: return FileTypeText(files->fileName(source), folder);
      case 3: return files->lastModified(source).toString("yyyy/MM/dd HH:mm");
      default: return QIdentityProxyModel::data(index, role);
    }
  }
};

std::string RunFileDialog(QWidget* parent, QFileDialog::AcceptMode mode, const std::string& title,
                          const std::string& filter, const std::string& start) {
  QFileDialog dlg(parent, Q(title));
  // Qt's own dialog, the same on every desktop, so that it speaks the program's language
  // and shows the filters as given. The program asks its own questions about existing
  // names.
  dlg.setOptions(QFileDialog::DontConfirmOverwrite | QFileDialog::HideNameFilterDetails |
                 QFileDialog::DontUseNativeDialog);
  dlg.setProxyModel(new FileListNames(&dlg));
  dlg.setAcceptMode(mode);
  // A typed name that does not exist comes back to the program, which says so itself.
  dlg.setFileMode(QFileDialog::AnyFile);
  dlg.setNameFilter(QtFilterFromClassic(filter));
  const QFileInfo startInfo(Q(start));
  if (start.empty() || startInfo.isDir()) {
    dlg.setDirectory(Q(start));
  } else {
    dlg.setDirectory(startInfo.absolutePath());
    dlg.selectFile(startInfo.fileName());
  }
  // The places beside the list: the folder the dialog starts in and the user's home.
  dlg.setSidebarUrls({QUrl::fromLocalFile(dlg.directory().absolutePath()), QUrl::fromLocalFile(QDir::homePath())});
  dlg.resize(820, 480);
  if (auto* list = dlg.findChild<QTreeView*>("treeView")) {
    const int widths[] = {300, 100, 110, 140};
    for (int c = 0; c < 4; ++c) list->header()->resizeSection(c, widths[c]);
  }
  dlg.setLabelText(QFileDialog::LookIn, "搜尋位置:");
  dlg.setLabelText(QFileDialog::FileName, "檔案名稱:");
  dlg.setLabelText(QFileDialog::FileType, "檔案類型:");
  dlg.setLabelText(QFileDialog::Accept, mode == QFileDialog::AcceptOpen ? "開啟(&O)" : "存檔(&S)");
  dlg.setLabelText(QFileDialog::Reject, "取消");
  const std::pair<const char*, const char*> tips[] = {
      {"backButton", "上一個"},         {"forwardButton", "下一個"},      {"toParentButton", "上一層資料夾"},
      {"newFolderButton", "建立新資料夾"}, {"listModeButton", "清單檢視"}, {"detailModeButton", "詳細資料檢視"}};
  for (const auto& [name, tip] : tips)
    if (auto* b = dlg.findChild<QToolButton*>(name)) b->setToolTip(QString::fromUtf8(tip));
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
