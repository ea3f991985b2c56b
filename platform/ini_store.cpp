#include "platform/ini_store.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace tavik::ui {

namespace fs = std::filesystem;

namespace {

std::string Trim(const std::string& s) {
  const auto b = s.find_first_not_of(" \t\r");
  if (b == std::string::npos) return "";
  return s.substr(b, s.find_last_not_of(" \t\r") - b + 1);
}

int Hex(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// "%20" and its kin, as the toolkit's store escaped section names.
std::string PercentDecoded(const std::string& s) {
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '%' && i + 2 < s.size() && Hex(s[i + 1]) >= 0 && Hex(s[i + 2]) >= 0) {
      out += static_cast<char>(Hex(s[i + 1]) * 16 + Hex(s[i + 2]));
      i += 2;
    } else {
      out += s[i];
    }
  }
  return out;
}

void AppendUtf8(std::string& out, unsigned code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

// A value as stored: a quoted one loses its quotes and its backslash escapes.
std::string ValueOf(const std::string& raw) {
  if (raw.size() < 2 || raw.front() != '"' || raw.back() != '"') return raw;
  std::string out;
  for (std::size_t i = 1; i + 1 < raw.size(); ++i) {
    if (raw[i] != '\\' || i + 2 >= raw.size()) {
      out += raw[i];
      continue;
    }
    const char c = raw[++i];
    switch (c) {
      case 'n': out += '\n'; break;
      case 'r': out += '\r'; break;
      case 't': out += '\t'; break;
      case 'x': {
        unsigned code = 0;
        while (i + 2 < raw.size() && Hex(raw[i + 1]) >= 0) code = code * 16 + static_cast<unsigned>(Hex(raw[++i]));
        AppendUtf8(out, code & 0xFFFF);
        break;
      }
      default: out += c;
    }
  }
  return out;
}

// Quoted only where the plain form would not read back: spaces at an end, a quote at
// the start, a line break or a backslash inside.
std::string Stored(const std::string& v) {
  const bool plain = v == Trim(v) && (v.empty() || v.front() != '"') &&
                     v.find_first_of("\r\n\\") == std::string::npos;
  if (plain) return v;
  std::string out = "\"";
  for (char c : v) {
    if (c == '"' || c == '\\') out += '\\', out += c;
    else if (c == '\n') out += "\\n";
    else if (c == '\r') out += "\\r";
    else out += c;
  }
  return out + "\"";
}

}  // namespace

IniData IniData::Parse(const std::string& text) {
  IniData d;
  Section* current = nullptr;
  std::size_t at = 0;
  while (at <= text.size()) {
    std::size_t end = text.find('\n', at);
    if (end == std::string::npos) end = text.size();
    const std::string line = Trim(text.substr(at, end - at));
    at = end + 1;
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    if (line.front() == '[' && line.back() == ']') {
      const std::string name = PercentDecoded(line.substr(1, line.size() - 2));
      current = d.Find(name);
      if (!current) {
        d.sections.push_back({name, {}});
        current = &d.sections.back();
      }
      continue;
    }
    const auto eq = line.find('=');
    if (eq == std::string::npos) continue;
    if (!current) {
      d.sections.push_back({"General", {}});
      current = &d.sections.back();
    }
    const std::string key = Trim(line.substr(0, eq));
    const std::string value = ValueOf(Trim(line.substr(eq + 1)));
    auto it = std::find_if(current->keys.begin(), current->keys.end(), [&](const auto& kv) { return kv.first == key; });
    if (it != current->keys.end()) it->second = value;
    else current->keys.emplace_back(key, value);
  }
  return d;
}

std::string IniData::Text() const {
  std::string out;
  for (const Section& s : sections) {
    if (s.keys.empty()) continue;
    if (!out.empty()) out += "\n";
    out += "[" + s.name + "]\n";
    for (const auto& [k, v] : s.keys) out += k + "=" + Stored(v) + "\n";
  }
  return out;
}

IniData::Section* IniData::Find(const std::string& section) {
  for (Section& s : sections)
    if (s.name == section) return &s;
  return nullptr;
}

IniData IniSettingsStore::Read(const std::string& app) const {
  std::ifstream in(File(app), std::ios::binary);
  return IniData::Parse(std::string(std::istreambuf_iterator<char>(in), {}));
}

void IniSettingsStore::Write(const std::string& app, const IniData& data) const {
  std::error_code ec;
  fs::create_directories(folder_, ec);
  const fs::path file = File(app);
  fs::path tmp = file;
  tmp += ".new";
  {
    std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
    out << data.Text();
    if (!out) {
      out.close();
      fs::remove(tmp, ec);
      return;
    }
  }
  fs::rename(tmp, file, ec);
  if (ec) fs::remove(tmp, ec);
}

std::string IniSettingsStore::GetSetting(const std::string& app, const std::string& section, const std::string& key,
                                         const std::string& defaultValue) {
  IniData d = Read(app);
  if (const IniData::Section* s = d.Find(section)) {
    for (const auto& [k, v] : s->keys)
      if (k == key) return v;
  }
  return defaultValue;
}

void IniSettingsStore::SaveSetting(const std::string& app, const std::string& section, const std::string& key,
                                   const std::string& value) {
  IniData d = Read(app);
  IniData::Section* s = d.Find(section);
  if (!s) {
    d.sections.push_back({section, {}});
    s = &d.sections.back();
  }
  auto it = std::find_if(s->keys.begin(), s->keys.end(), [&](const auto& kv) { return kv.first == key; });
  if (it != s->keys.end()) it->second = value;
  else s->keys.emplace_back(key, value);
  Write(app, d);
}

void IniSettingsStore::DeleteSection(const std::string& app, const std::string& section) {
  IniData d = Read(app);
  const auto before = d.sections.size();
  d.sections.erase(std::remove_if(d.sections.begin(), d.sections.end(),
                                  [&](const IniData::Section& s) { return s.name == section; }),
                   d.sections.end());
  if (d.sections.size() != before) Write(app, d);
}

std::vector<std::pair<std::string, std::string>> IniSettingsStore::GetAllSettings(const std::string& app,
                                                                                 const std::string& section) {
  IniData d = Read(app);
  std::vector<std::pair<std::string, std::string>> out;
  if (const IniData::Section* s = d.Find(section)) out = s->keys;
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace tavik::ui
