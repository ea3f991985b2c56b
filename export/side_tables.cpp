#include "export/side_tables.h"

#include <algorithm>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/text.h"
#include "view/legends.h"

namespace tavik::dxf {

namespace {

// A name goes out bare, as the surveyor typed it; one holding a comma or a quote is
// quoted, so that the columns still line up in a spreadsheet.
std::string NameField(const std::string& name) {
  const std::string t = text::Trim(name);
  if (t.find_first_of(",\"") == std::string::npos) return t;
  std::string q = "\"";
  for (char c : t) {
    if (c == '"') q += '"';
    q += c;
  }
  return q + "\"";
}

std::string Quoted(const std::string& s) {
  std::string q = "\"";
  for (char c : s) {
    if (c == '"') q += '"';
    q += c;
  }
  return q + "\"";
}

TableResult WriteTable(const Document& doc, const std::filesystem::path& dir, const char* file,
                       const char* header, int lowCode, int highCode, const std::string& done) {
  TableResult r;
  r.path = dir / file;
  std::string out = std::string(header) + "\r\n";
  const int32_t rows = std::min<int32_t>(doc.EntityCount, static_cast<int32_t>(doc.EntityTable.size()));
  for (int32_t i = std::max<int32_t>(doc.ReferenceEntityCount, 0); i < rows; ++i) {
    const Entity& e = doc.EntityTable[static_cast<std::size_t>(i)];
    if (e.Deleted != kFalse || e.Code < lowCode || e.Code > highCode) continue;
    out += NameField(e.Name) + "," + num::Plain(e.X[0]) + "," + num::Plain(e.Y[0]) + "," + num::Plain(e.Z[0]) +
           "," + Quoted(view::LegendName(e.Code)) + "\r\n";
    ++r.count;
  }
  if (!io::ReplaceDurably(r.path, text::ToCp950(out))) {
    r.message = "[" + std::string(file) + "] 無法寫入,請確認資料夾可以寫入且檔案未被其它程式開啟.";
    return r;
  }
  r.written = true;
  r.message = done + std::to_string(r.count) + "支樁";
  return r;
}

}  // namespace

TableResult WritePointTableCsv(const Document& doc, const std::filesystem::path& dir) {
  return WriteTable(doc, dir, PointTableFile, "點名,橫座標E,縱座標N,高程H,樁標種類", 110, 199,
                    "[控制點樁位表.CSV] 檔輸出OK!! 總共");
}

TableResult WriteClassTableCsv(const Document& doc, const std::filesystem::path& dir) {
  return WriteTable(doc, dir, ClassTableFile, "編號,橫座標E,縱座標N,高程H,屬性", 601, 638,
                    "[分類樁位表.CSV] 輸出完成!! 總共");
}

}  // namespace tavik::dxf
