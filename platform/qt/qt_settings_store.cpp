#include "platform/qt/qt_settings_store.h"

#include <QSettings>
#include <QString>
#include <QStringList>
#include <algorithm>

namespace tavik::ui {

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }
}  // namespace

std::unique_ptr<QSettings> QtSettingsStore::Open(const std::string& app) const {
  const std::filesystem::path file = folder_ / (app + ".ini");
  return std::make_unique<QSettings>(QString::fromStdString(file.string()), QSettings::IniFormat);
}

std::string QtSettingsStore::GetSetting(const std::string& app, const std::string& section,
                                        const std::string& key, const std::string& defaultValue) {
  auto s = Open(app);
  s->beginGroup(Q(section));
  return s->value(Q(key), Q(defaultValue)).toString().toStdString();
}

void QtSettingsStore::SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                                  const std::string& value) {
  auto s = Open(app);
  s->beginGroup(Q(section));
  s->setValue(Q(key), Q(value));
  s->endGroup();
  s->sync();
}

void QtSettingsStore::DeleteSection(const std::string& app, const std::string& section) {
  auto s = Open(app);
  s->remove(Q(section));
  s->sync();
}

std::vector<std::pair<std::string, std::string>> QtSettingsStore::GetAllSettings(const std::string& app,
                                                                                 const std::string& section) {
  auto s = Open(app);
  s->beginGroup(Q(section));
  std::vector<std::pair<std::string, std::string>> out;
  for (const QString& k : s->childKeys()) out.emplace_back(k.toStdString(), s->value(k).toString().toStdString());
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace tavik::ui
