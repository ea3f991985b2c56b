#include "basemap/image_list.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/numbers.h"
#include "core/text.h"

namespace tavik::basemap {

namespace {
constexpr const char* Section = "[影像底圖]";
}

std::string ImageListPath(const std::string& documentName) { return documentName + ".IML"; }

bool ReadImageList(const std::string& path, ImageSettings& out, std::string& message) {
  out = ImageSettings{};
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return true;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    message = "無法讀取影像底圖設定檔\r\n" + path;
    return false;
  }
  std::stringstream all;
  all << in.rdbuf();
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  std::istringstream lines(text::FromCp950(all.str()));
  std::string line;
  while (std::getline(lines, line)) {
    line = text::Trim(line);
    const auto eq = line.find('=');
    if (eq == std::string::npos) continue;
    const std::string key = text::Trim(line.substr(0, eq)), value = text::Trim(line.substr(eq + 1));
    if (key == "顯示") {
      out.Shown = num::ParseLenient(value) != 0;
    } else if (key == "亮度") {
      out.Look.Brightness = std::clamp(static_cast<int>(num::ParseLenient(value)), -100, 100);
    } else if (key == "透明度") {
      out.Look.Transparency = std::clamp(static_cast<int>(num::ParseLenient(value)), 0, 100);
    } else if (key == "影像") {
      const auto comma = value.find(',');
      if (comma == std::string::npos) continue;
      ImageEntry e;
      e.Shown = num::ParseLenient(value.substr(0, comma)) != 0;
      std::filesystem::path p(text::Trim(value.substr(comma + 1)));
      if (p.empty()) continue;
      if (p.is_relative()) p = folder / p;
      e.Path = p.string();
      out.Images.push_back(e);
    }
  }
  return true;
}

bool WriteImageList(const std::string& path, const ImageSettings& s, std::string& message) {
  std::error_code ec;
  if (s.Images.empty()) {
    std::filesystem::remove(path, ec);
    return true;
  }
  std::string body = std::string(Section) + "\r\n";
  body += "顯示=" + std::string(s.Shown ? "1" : "0") + "\r\n";
  body += "亮度=" + std::to_string(s.Look.Brightness) + "\r\n";
  body += "透明度=" + std::to_string(s.Look.Transparency) + "\r\n";
  for (const ImageEntry& e : s.Images) body += "影像=" + std::string(e.Shown ? "1" : "0") + "," + e.Path + "\r\n";
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << text::ToCp950(body);
  out.close();
  if (!out) {
    message = std::string(ImageListWriteMessage) + "\r\n" + path;
    return false;
  }
  return true;
}

}  // namespace tavik::basemap
