// The two side tables that go to the office with the drawing: the control points and the
// classified stakes, as CSV in code page 950, one line per live entity of the survey
// (the reference map's rows are not the survey's).
#pragma once

#include <filesystem>
#include <string>

#include "core/document.h"

namespace tavik::dxf {

constexpr const char* PointTableFile = "控制點樁位表.CSV";
constexpr const char* ClassTableFile = "分類樁位表.CSV";
constexpr const char* TablesTitle = "檔案輸出";

struct TableResult {
  bool written = false;
  int count = 0;                // rows written
  std::filesystem::path path;   // the file
  std::string message;          // the box's text: the count when written, else why not
};

// 控制點樁位表.CSV in dir: header "點名,橫座標E,縱座標N,高程H,樁標種類", then each entity
// with a code from 110 to 199: the trimmed name, E, N, H and the legend name in quotes.
TableResult WritePointTableCsv(const Document& doc, const std::filesystem::path& dir);

// 分類樁位表.CSV in dir: header "編號,橫座標E,縱座標N,高程H,屬性", codes 601 to 638.
TableResult WriteClassTableCsv(const Document& doc, const std::filesystem::path& dir);

}  // namespace tavik::dxf
