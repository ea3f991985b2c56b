#include "export/field_book_sheet.h"

#include <sys/stat.h>
#include <xlsxwriter.h>

#include <cmath>
#include <functional>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/text.h"
#include "export/document_report.h"
#include "export/symbol_library.h"
#include "geo/angles.h"
#include "geo/formats.h"
#include "procedures/field_books.h"

namespace tavik::sheet {
namespace {

namespace fs = std::filesystem;

enum class Kind { Text, Count, Metres, Centimetres, Angle };

// A cell: empty, a number, or a text.
struct Cell {
  enum { Empty, Number, Text } type = Empty;
  double number = 0;
  std::string text;
};
Cell Num(double v) { return {Cell::Number, v, {}}; }
Cell Txt(std::string s) { return {Cell::Text, 0, std::move(s)}; }

std::string RadiansText(double a) {
  int16_t d = 0, m = 0;
  double s = 0;
  RadiansToDms(a, d, m, s);
  return fmt::FormatDmsList(d, m, s);
}
std::string PackedText(int32_t packed) {
  int16_t d = 0, m = 0;
  double s = 0;
  PackedToDms(packed, d, m, s);
  return fmt::FormatDmsList(d, m, s);
}

template <typename Row>
struct Column {
  const char* key;
  const char* title;  // the built-in title, with its unit
  double width;
  Kind kind;
  std::function<Cell(const Row&)> get;
};

using books::Observation;
using books::Stake;

const std::vector<Column<Observation>>& ObservationColumns() {
  using O = const Observation&;
  static const std::vector<Column<Observation>> c = {
      {"setup", "站次", 6, Kind::Count, [](O o) { return Num(o.setup); }},
      {"station", "測站", 10, Kind::Text, [](O o) { return Txt(o.station); }},
      {"backsight", "後視", 10, Kind::Text, [](O o) { return Txt(o.backsightName); }},
      {"point", "點名", 10, Kind::Text, [](O o) { return Txt(o.backsight ? o.point + "(後視)" : o.point); }},
      {"hz", "水平度盤讀數", 13, Kind::Angle, [](O o) { return Txt(PackedText(o.hzRaw)); }},
      {"turned", "水平角", 13, Kind::Angle, [](O o) { return Txt(RadiansText(o.turned)); }},
      {"zenith", "天頂角", 13, Kind::Angle, [](O o) { return Txt(PackedText(o.vRaw)); }},
      {"slope", "斜距(m)", 10, Kind::Metres, [](O o) { return Num(o.slope); }},
      {"horizontal", "平距(m)", 10, Kind::Metres, [](O o) { return Num(o.horizontal); }},
      {"ih", "儀器高(m)", 9, Kind::Centimetres, [](O o) { return o.hasHeight ? Num(o.instrumentHeight) : Cell{}; }},
      {"th", "覘標高(m)", 9, Kind::Centimetres,
       [](O o) { return o.hasHeight && !o.backsight ? Num(o.targetHeight) : Cell{}; }},
      {"e", "橫座標E(m)", 13, Kind::Metres, [](O o) { return Num(o.E); }},
      {"n", "縱座標N(m)", 13, Kind::Metres, [](O o) { return Num(o.N); }},
      {"h", "高程H(m)", 10, Kind::Metres, [](O o) { return o.hasHeight ? Num(o.H) : Cell{}; }},
      {"azimuth", "方位角", 13, Kind::Angle, [](O o) { return Txt(RadiansText(o.azimuth)); }},
      {"time", "觀測時間", 20, Kind::Text, [](O o) { return Txt(o.when); }},
  };
  return c;
}

const std::vector<Column<Stake>>& StakeColumns() {
  using S = const Stake&;
  auto ifTarget = [](double v, S s) { return s.hasTarget ? Num(v) : Cell{}; };
  static const std::vector<Column<Stake>> c = {
      {"source", "放樣方式", 9, Kind::Text, [](S s) { return Txt(s.gps ? "GPS" : "全站儀"); }},
      {"name", "樁號", 12, Kind::Text, [](S s) { return Txt(s.name); }},
      {"te", "設計E(m)", 13, Kind::Metres, [=](S s) { return ifTarget(s.targetE, s); }},
      {"tn", "設計N(m)", 13, Kind::Metres, [=](S s) { return ifTarget(s.targetN, s); }},
      {"e", "放樣E(m)", 13, Kind::Metres, [](S s) { return Num(s.E); }},
      {"n", "放樣N(m)", 13, Kind::Metres, [](S s) { return Num(s.N); }},
      {"h", "放樣H(m)", 10, Kind::Metres, [](S s) { return Num(s.H); }},
      {"de", "差值ΔE(m)", 10, Kind::Metres, [=](S s) { return ifTarget(s.E - s.targetE, s); }},
      {"dn", "差值ΔN(m)", 10, Kind::Metres, [=](S s) { return ifTarget(s.N - s.targetN, s); }},
      {"dist", "偏差(m)", 9, Kind::Metres,
       [=](S s) { return ifTarget(std::hypot(s.E - s.targetE, s.N - s.targetN), s); }},
      {"station", "測站", 10, Kind::Text, [](S s) { return Txt(s.station); }},
      {"backsight", "後視", 10, Kind::Text, [](S s) { return Txt(s.backsightName); }},
      {"hz", "水平角", 13, Kind::Angle, [](S s) { return Txt(s.hz); }},
      {"zenith", "天頂角", 13, Kind::Angle, [](S s) { return Txt(s.v); }},
      {"slope", "斜距(m)", 10, Kind::Metres, [](S s) { return s.hasShot ? Num(s.slope) : Cell{}; }},
      {"ih", "儀器高(m)", 9, Kind::Centimetres, [](S s) { return s.hasShot ? Num(s.instrumentHeight) : Cell{}; }},
      {"th", "覘標高(m)", 9, Kind::Centimetres, [](S s) { return s.hasShot ? Num(s.targetHeight) : Cell{}; }},
      {"se", "σE(m)", 8, Kind::Metres, [](S s) { return s.hasSigma ? Num(s.sigmaE) : Cell{}; }},
      {"sn", "σN(m)", 8, Kind::Metres, [](S s) { return s.hasSigma ? Num(s.sigmaN) : Cell{}; }},
      {"sh", "σH(m)", 8, Kind::Metres, [](S s) { return s.hasSigma ? Num(s.sigmaH) : Cell{}; }},
      {"time", "時間", 20, Kind::Text, [](S s) { return Txt(s.when); }},
  };
  return c;
}

struct Placed {
  std::size_t column;  // index into the book's columns
  std::string title;
  double width;
};

struct Layout {
  std::string title, sheet;
  std::vector<Placed> columns;
};

// Reads a layout; unknown keys and bad lines become warnings. Without a file the
// built-in layout: every column in the order above.
template <typename Row>
Layout ReadLayout(const std::vector<Column<Row>>& cols, const std::string& fileName, const fs::path& dir,
                  const std::string& defaultTitle, std::vector<std::string>& warnings) {
  Layout l{defaultTitle, defaultTitle, {}};
  std::string bytes;
  fs::path file = AppPaths::Find(dir, fileName);
  if (!io::ReadWholeFile(file, bytes)) {
    const fs::path shipped = dxf::ShippedSymbolLibrary();
    file = shipped.empty() ? fs::path() : AppPaths::Find(shipped, fileName);
    if (file.empty() || !io::ReadWholeFile(file, bytes)) {
      warnings.push_back(fileName + "支援檔遺失或遭破壞!!,使用內定的欄位");
      for (std::size_t i = 0; i < cols.size(); ++i) l.columns.push_back({i, cols[i].title, cols[i].width});
      return l;
    }
  }
  const std::string utf8 = text::FromCp950(bytes);
  std::size_t lineNo = 0, pos = 0;
  while (pos < utf8.size()) {
    std::size_t nl = utf8.find('\n', pos);
    if (nl == std::string::npos) nl = utf8.size();
    const std::string line = text::Trim(std::string_view(utf8).substr(pos, nl - pos));
    pos = nl + 1, ++lineNo;
    if (line.empty() || line[0] == ';') continue;
    std::vector<std::string> f;
    for (std::size_t a = 0;;) {
      const std::size_t c = line.find(',', a);
      f.push_back(text::Trim(std::string_view(line).substr(a, c == std::string::npos ? std::string::npos : c - a)));
      if (c == std::string::npos) break;
      a = c + 1;
    }
    const std::string where = fileName + " 第" + std::to_string(lineNo) + "行";
    if (f.size() >= 2 && f[0] == "標題") {
      l.title = f[1];
      continue;
    }
    if (f.size() >= 2 && f[0] == "工作表") {
      if (!f[1].empty()) l.sheet = f[1];
      continue;
    }
    std::size_t k = 0;
    while (k < cols.size() && f[0] != cols[k].key) ++k;
    if (k == cols.size()) {
      warnings.push_back(where + ": 不認得的欄位 [" + f[0] + "],略過");
      continue;
    }
    double width = cols[k].width;
    if (f.size() >= 3 && !f[2].empty()) {
      const auto w = num::ParseStrict(f[2]);
      if (w && *w > 0 && *w <= 255) width = *w;
      else warnings.push_back(where + ": 欄寬 [" + f[2] + "] 不是1到255的數字,使用內定值");
    }
    l.columns.push_back({k, f.size() >= 2 && !f[1].empty() ? f[1] : cols[k].title, width});
  }
  if (l.columns.empty()) {
    warnings.push_back(fileName + " 沒有任何欄位,使用內定的欄位");
    for (std::size_t i = 0; i < cols.size(); ++i) l.columns.push_back({i, cols[i].title, cols[i].width});
  }
  return l;
}

bool ReadOnly(const fs::path& p) {
  struct stat st{};
  return ::stat(p.c_str(), &st) == 0 && (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// Writes the sheet to `beside`; the libxlsxwriter error text when it failed.
template <typename Row>
std::string WriteBook(const fs::path& beside, const Layout& l, const std::vector<Column<Row>>& cols,
                      const std::vector<Row>& rows, const std::string& docName) {
  lxw_workbook* wb = workbook_new(beside.c_str());
  if (!wb) return "workbook";
  // A sheet name Excel refuses (too long, or with []:*?/\) falls back to the title's default.
  std::string name = l.sheet;
  if (workbook_validate_sheet_name(wb, name.c_str()) != LXW_NO_ERROR) name = "Sheet1";
  lxw_worksheet* ws = workbook_add_worksheet(wb, name.c_str());

  lxw_format* title = workbook_add_format(wb);
  format_set_bold(title), format_set_font_size(title, 14);
  lxw_format* head = workbook_add_format(wb);
  format_set_bold(head), format_set_align(head, LXW_ALIGN_CENTER), format_set_align(head, LXW_ALIGN_VERTICAL_CENTER);
  format_set_text_wrap(head), format_set_border(head, LXW_BORDER_THIN), format_set_bg_color(head, 0xD9D9D9);
  lxw_format* formats[5];
  const char* pictures[5] = {nullptr, "0", fmt::Coordinate, "0.00", nullptr};
  for (int k = 0; k < 5; ++k) {
    formats[k] = workbook_add_format(wb);
    format_set_border(formats[k], LXW_BORDER_THIN);
    if (pictures[k]) format_set_num_format(formats[k], pictures[k]);
    if (k == static_cast<int>(Kind::Angle)) format_set_align(formats[k], LXW_ALIGN_RIGHT);
  }

  const lxw_col_t last = static_cast<lxw_col_t>(l.columns.size() - 1);
  worksheet_merge_range(ws, 0, 0, 0, last, l.title.c_str(), title);
  const std::string info = "圖檔: " + docName + "    輸出時間: " + dxf::ReportTimeNow();
  worksheet_write_string(ws, 1, 0, info.c_str(), nullptr);
  worksheet_set_row(ws, 2, 30, nullptr);
  for (std::size_t c = 0; c < l.columns.size(); ++c) {
    const lxw_col_t col = static_cast<lxw_col_t>(c);
    worksheet_set_column(ws, col, col, l.columns[c].width, nullptr);
    worksheet_write_string(ws, 2, col, l.columns[c].title.c_str(), head);
  }
  for (std::size_t r = 0; r < rows.size(); ++r) {
    const lxw_row_t row = static_cast<lxw_row_t>(r + 3);
    for (std::size_t c = 0; c < l.columns.size(); ++c) {
      const Column<Row>& col = cols[l.columns[c].column];
      lxw_format* f = formats[static_cast<int>(col.kind)];
      const Cell v = col.get(rows[r]);
      const lxw_col_t x = static_cast<lxw_col_t>(c);
      if (v.type == Cell::Number && std::isfinite(v.number)) worksheet_write_number(ws, row, x, v.number, f);
      else if (v.type == Cell::Text && !v.text.empty()) worksheet_write_string(ws, row, x, v.text.c_str(), f);
      else worksheet_write_blank(ws, row, x, f);
    }
  }
  worksheet_freeze_panes(ws, 3, 0);
  const lxw_error e = workbook_close(wb);
  return e == LXW_NO_ERROR ? std::string() : lxw_strerror(e);
}

std::string ReadLog(const std::string& path) {
  std::string bytes;
  if (path.empty() || !io::ReadWholeFile(path, bytes)) return {};
  return text::FromCp950(bytes);
}

}  // namespace

SheetResult WriteFieldBook(const Document& doc, Book book, const fs::path& target, const fs::path& layoutDir) {
  SheetResult r;
  const std::string docName = fs::path(doc.DocumentName).filename().string();
  std::error_code ec;
  if (fs::exists(target, ec) && ReadOnly(target)) {
    r.message = "[" + target.string() + "] 是唯讀檔,無法覆寫.\n請另選檔名,或取消唯讀後再試.";
    return r;
  }
  const fs::path beside = target.string() + "~new";
  std::string failed;
  int skipped = 0;
  if (book == Book::Observation) {
    const auto b = books::ReadObservationBook(ReadLog(doc.ObsPath), ReadLog(doc.MacPath), doc.MapType);
    if (b.rows.empty()) {
      r.message = "[" + fs::path(doc.ObsPath).filename().string() + "] 沒有全站儀的觀測紀錄,沒有輸出任何檔案.";
      return r;
    }
    const Layout l = ReadLayout(ObservationColumns(), ObservationLayout, layoutDir, "觀測手簿", r.warnings);
    failed = WriteBook(beside, l, ObservationColumns(), b.rows, docName);
    r.rows = static_cast<int>(b.rows.size()), skipped = b.skipped;
  } else {
    const auto b = books::ReadStakeBook(ReadLog(doc.StkPath), ReadLog(doc.GstkPath), doc);
    if (b.rows.empty()) {
      r.message = "[" + fs::path(doc.StkPath).filename().string() + "] 與 [" + fs::path(doc.GstkPath).filename().string() +
                  "] 沒有放樣紀錄,沒有輸出任何檔案.";
      return r;
    }
    const Layout l = ReadLayout(StakeColumns(), StakeLayout, layoutDir, "放樣手簿", r.warnings);
    failed = WriteBook(beside, l, StakeColumns(), b.rows, docName);
    r.rows = static_cast<int>(b.rows.size()), skipped = b.skipped;
  }
  if (!failed.empty() || (fs::rename(beside, target, ec), ec)) {
    io::RemoveQuietly(beside);
    r.message = "無法建立 [" + target.string() + "],\n請確認資料夾存在且可以寫入後再試.";
    r.warnings.clear();
    return r;
  }
  io::SyncFolder(target.parent_path().empty() ? fs::path(".") : target.parent_path());
  if (skipped > 0) r.warnings.push_back(std::to_string(skipped) + " 行不是完整的紀錄,略過");
  r.ok = true;
  r.message = "[" + target.filename().string() + "] 輸出完成, 共 " + std::to_string(r.rows) + " 筆";
  return r;
}

}  // namespace tavik::sheet
