#include "core/workfiles.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/record_text.h"
#include "core/text.h"

namespace tavik {

namespace fs = std::filesystem;

WorkFiles::WorkFiles(AppPaths paths) : paths_(std::move(paths)) {}

bool WorkFiles::CreateEmpty() {
  bool ok = io::WriteNewFile(paths_.TempP0(), "");
  ok = io::WriteNewFile(paths_.TempS0(), "") && ok;
  ok = io::WriteNewFile(paths_.TempBM(), "") && ok;
  io::SyncFolder(paths_.Home);
  pointBehind_ = entityBehind_ = false;
  bothJournals_ = ok;
  return ok;
}

void WorkFiles::RemoveAll() {
  io::RemoveQuietly(paths_.TempP0());
  io::RemoveQuietly(paths_.TempS0());
  io::RemoveQuietly(paths_.TempBM());
  pointBehind_ = entityBehind_ = false;
  bothJournals_ = false;
}

void WorkFiles::EnsureBothJournals() {
  if (bothJournals_) return;
  // An append of nothing creates a missing file and leaves an existing one alone.
  bothJournals_ = io::AppendDurably(paths_.TempP0(), "") && io::AppendDurably(paths_.TempS0(), "");
  io::SyncFolder(paths_.Home);
}

namespace {
// A name read from a damaged document may hold line breaks or other control bytes; in
// the journal they would split the record and end the recovery there.
std::string OneLine(const std::string& s) {
  std::string out = s;
  for (char& c : out)
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  return out;
}
}  // namespace

std::string PointWorkLine(const Point& p) {
  rec::LineWriter w;
  w.Integer(p.Number).Number(p.E).Number(p.N).Number(p.H).Bool(p.Deleted != 0);
  return w.Fields();
}

std::string EntityWorkLine(const Entity& e) {
  rec::LineWriter w;
  w.Integer(e.Number).Integer(e.Code).Integer(e.Kind);
  for (int v = 0; v < 3; ++v) w.Number(e.X[v]).Number(e.Y[v]).Number(e.Z[v]);
  w.Text(OneLine(e.Name)).Bool(e.Deleted != 0);
  return w.Fields();
}

std::string BaseMapWorkLine(const BaseMapLine& b) {
  rec::LineWriter w;
  w.Integer(b.Number).Integer(b.Code).Integer(b.Kind);
  for (int v = 0; v < 3; ++v) w.Number(b.X[v]).Number(b.Y[v]);
  w.Text(OneLine(b.Name));
  return w.Fields();
}

namespace {

std::string FileLine(const std::string& utf8Fields) { return text::ToCp950(utf8Fields) + "\r\n"; }

template <typename Row, typename LineOf>
std::string AllLines(const std::vector<Row>& rows, int32_t count, LineOf lineOf) {
  std::string out;
  std::size_t n = std::min<std::size_t>(rows.size(), count > 0 ? static_cast<std::size_t>(count) : 0);
  out.reserve(n * 64);
  for (std::size_t i = 0; i < n; ++i) {
    out += text::ToCp950(lineOf(rows[i]));
    out += "\r\n";
  }
  return out;
}

// An integral number field within the range of the target type, else nothing.
template <typename Int>
bool AsInt(const rec::Field& f, Int& out) {
  double v = f.number;
  if (!(v == std::floor(v)) || v < static_cast<double>(std::numeric_limits<Int>::min()) ||
      v > static_cast<double>(std::numeric_limits<Int>::max()))
    return false;
  out = static_cast<Int>(v);
  return true;
}

bool ParsePointLine(std::string_view line, Point& p) {
  auto f = rec::ParseTyped(line, "NNNNB");
  if (!f || !AsInt((*f)[0], p.Number)) return false;
  p.E = (*f)[1].number;
  p.N = (*f)[2].number;
  p.H = (*f)[3].number;
  p.Deleted = (*f)[4].boolean ? kTrue : kFalse;
  return true;
}

bool ParseEntityLine(std::string_view line, Entity& e) {
  auto f = rec::ParseTyped(line, "NNNNNNNNNNNNTB");
  if (!f) return false;
  const auto& v = *f;
  if (!AsInt(v[0], e.Number) || !AsInt(v[1], e.Code) || !AsInt(v[2], e.Kind)) return false;
  for (int k = 0; k < 3; ++k) {
    e.X[k] = v[3 + 3 * k].number;
    e.Y[k] = v[4 + 3 * k].number;
    e.Z[k] = v[5 + 3 * k].number;
  }
  e.Name = text::Trim(text::FromCp950(v[12].text));
  e.Deleted = v[13].boolean ? kTrue : kFalse;
  return true;
}

// Reads lines until the first that cannot be read. A missing file reads as empty.
// `clean` tells whether every line was read and the file ends with a line end, so that
// an appended line starts a line of its own.
template <typename Row, typename Parse>
std::vector<Row> ReadJournal(const fs::path& path, Parse parse, bool& clean) {
  std::vector<Row> rows;
  std::string bytes;
  clean = true;
  if (!io::ReadWholeFile(path, bytes)) return rows;
  const auto lines = rec::SplitLines(bytes);
  for (std::string_view line : lines) {
    Row r;
    if (!parse(line, r)) break;
    rows.push_back(std::move(r));
  }
  clean = rows.size() == lines.size() && (bytes.empty() || bytes.back() == '\n');
  return rows;
}

}  // namespace

bool WorkFiles::AppendPointWorkFile(const Point& p) {
  EnsureBothJournals();
  bool ok = io::AppendDurably(paths_.TempP0(), FileLine(PointWorkLine(p)));
  if (!ok) pointBehind_ = true;
  return ok;
}

bool WorkFiles::AppendEntityWorkFile(const Entity& e) {
  EnsureBothJournals();
  bool ok = io::AppendDurably(paths_.TempS0(), FileLine(EntityWorkLine(e)));
  if (!ok) entityBehind_ = true;
  return ok;
}

bool WorkFiles::AppendBaseMapWorkFile(const BaseMapLine& b) {
  return io::AppendDurably(paths_.TempBM(), FileLine(BaseMapWorkLine(b)));
}

bool WorkFiles::WritePointWorkFile(const Document& doc) {
  EnsureBothJournals();
  bool ok = io::ReplaceDurably(paths_.TempP0(), AllLines(doc.PointTable, doc.PointCount, PointWorkLine));
  pointBehind_ = !ok;
  return ok;
}

bool WorkFiles::WriteEntityWorkFile(const Document& doc) {
  EnsureBothJournals();
  bool ok = io::ReplaceDurably(paths_.TempS0(), AllLines(doc.EntityTable, doc.EntityCount, EntityWorkLine));
  entityBehind_ = !ok;
  return ok;
}

bool WorkFiles::WriteBaseMapWorkFile(const Document& doc) {
  return io::ReplaceDurably(paths_.TempBM(), AllLines(doc.BaseMapTable, doc.BaseMapCount, BaseMapWorkLine));
}

bool WorkFiles::WriteRecoveryHeader(const Document& doc) {
  std::string out;
  auto text = [&](const std::string& s) { out += FileLine(rec::LineWriter().Text(s).Fields()); };
  auto number = [&](double v) { out += FileLine(rec::LineWriter().Number(v).Fields()); };
  auto boolean = [&](int16_t v) { out += FileLine(rec::LineWriter().Bool(v != 0).Fields()); };
  text(doc.DocumentName);
  number(doc.MapType);
  number(doc.ScaleDenominator);
  boolean(doc.StationSet);
  text(doc.StationName);
  for (double v : {doc.StationE, doc.StationN, doc.StationH, doc.OrientationConstant, doc.ViewCentreE,
                   doc.ViewCentreN, doc.MinE, doc.MaxE, doc.MinN, doc.MaxN})
    number(v);
  // The twenty-first line is the cadastral serial counter: a recovered document goes on
  // numbering its book where it stood instead of starting again.
  for (int32_t v : {doc.PointCount, doc.DeletedPointCount, doc.EntityCount, doc.DeletedEntityCount,
                    doc.BaseMapCount, doc.SerialCounter})
    number(v);
  return io::ReplaceDurably(paths_.InsuranceTV(), out);
}

bool WorkFiles::ReadRecoveryHeader(Document& doc) {
  std::string bytes;
  if (!io::ReadWholeFile(paths_.InsuranceTV(), bytes)) return false;
  auto lines = rec::SplitLines(bytes);
  static constexpr std::string_view kTypes = "TNNBTNNNNNNNNNNNNNNNN";  // 21 values
  std::vector<rec::Field> v;
  for (std::size_t i = 0; i < kTypes.size() && i < lines.size(); ++i) {
    auto f = rec::ParseTyped(lines[i], kTypes.substr(i, 1));
    if (!f) break;
    v.push_back((*f)[0]);
  }
  if (v.size() < 20) return false;
  Document d = std::move(doc);
  int16_t mapType;
  int32_t counts[6] = {0, 0, 0, 0, 0, d.SerialCounter};
  bool ok = AsInt(v[1], mapType);
  for (int k = 0; k < 6 && 15 + k < static_cast<int>(v.size()); ++k) ok = ok && AsInt(v[15 + k], counts[k]);
  if (!ok) {
    doc = std::move(d);
    return false;
  }
  SetDocumentName(d, text::FromCp950(v[0].text));
  d.MapType = mapType;
  d.ScaleDenominator = v[2].number;
  d.StationSet = v[3].boolean ? kTrue : kFalse;
  d.StationName = text::Trim(text::FromCp950(v[4].text));
  double* targets[] = {&d.StationE,    &d.StationN,    &d.StationH, &d.OrientationConstant, &d.ViewCentreE,
                       &d.ViewCentreN, &d.MinE,        &d.MaxE,     &d.MinN,                &d.MaxN};
  for (int k = 0; k < 10; ++k) *targets[k] = v[5 + k].number;
  d.PointCount = counts[0];
  d.DeletedPointCount = counts[1];
  d.EntityCount = counts[2];
  d.DeletedEntityCount = counts[3];
  d.BaseMapCount = counts[4];
  d.SerialCounter = counts[5];
  doc = std::move(d);
  return true;
}

WorkFiles::CrashState WorkFiles::Check() const {
  std::error_code e1, e2;
  fs::path s = paths_.TempS0(), p = paths_.TempP0();
  if (!fs::is_regular_file(s, e1) || !fs::is_regular_file(p, e2)) return CrashState::None;
  auto ss = fs::file_size(s, e1), ps = fs::file_size(p, e2);
  if (!e1 && !e2 && ss == 0 && ps == 0) return CrashState::BothEmpty;
  return CrashState::Recoverable;
}

bool RecoverFromWorkFiles(Document& doc, WorkFiles& wf, ui::Dialogs& dialogs) {
  switch (wf.Check()) {
    case WorkFiles::CrashState::None:
      return false;
    case WorkFiles::CrashState::BothEmpty:
      wf.RemoveAll();
      return false;
    case WorkFiles::CrashState::Recoverable:
      break;
  }
  const AppPaths& paths = wf.Paths();
  const bool haveHeader = wf.ReadRecoveryHeader(doc);
  if (!haveHeader) {
    // The journals carry no document name, and a document without one can be neither
    // saved nor closed: the records come back under a name in the work folder, to be
    // saved under a proper one with Save As.
    SetDocumentName(doc, (paths.WorkFolder() / "RECOVERED").string());
  }

  bool pointsClean = true, entitiesClean = true;
  doc.Index.Invalidate();
  doc.PointTable = ReadJournal<Point>(paths.TempP0(), ParsePointLine, pointsClean);
  const int32_t pointsRead = static_cast<int32_t>(doc.PointTable.size());
  if (haveHeader && pointsRead != 0 && pointsRead != doc.PointCount)
    dialogs.MsgBox("建議放棄這個檔案!", "有" + std::to_string(doc.PointCount - pointsRead) + "個點資料毀損");
  doc.PointCount = pointsRead;

  doc.EntityTable = ReadJournal<Entity>(paths.TempS0(), ParseEntityLine, entitiesClean);
  const int32_t entitiesRead = static_cast<int32_t>(doc.EntityTable.size());
  if (haveHeader && entitiesRead != 0 && entitiesRead != doc.EntityCount)
    dialogs.MsgBox("建議放棄這個檔案!", "有" + std::to_string(doc.EntityCount - entitiesRead) + "個圖元資料毀損");
  doc.EntityCount = entitiesRead;

  // The deleted counts are the header's. A damaged journal may hold fewer rows than
  // the header counted as deleted; the count is kept within the rows read, so that the
  // live count shown and saved never goes below zero.
  doc.DeletedPointCount = std::clamp(doc.DeletedPointCount, int32_t{0}, pointsRead);
  doc.DeletedEntityCount = std::clamp(doc.DeletedEntityCount, int32_t{0}, entitiesRead);
  // The base map is not journalled back: its table is empty, and so is its count.
  doc.BaseMapTable.clear();
  doc.BaseMapCount = 0;
  doc.ScreenPointTable.clear();
  doc.ScreenPointCount = 0;
  doc.ScreenEntityTable.clear();
  doc.ScreenEntityCount = 0;
  doc.UndeleteStack.clear();
  // What came back exists in no document file yet.
  if (pointsRead > 0 || entitiesRead > 0) doc.MapChanged = kTrue;

  // The journals stay as they are, except one that ends in a torn or unreadable line:
  // it is written again from what was read, so that the next record appended starts a
  // line of its own and is not lost with the torn one at a later recovery.
  if (!pointsClean) wf.WritePointWorkFile(doc);
  if (!entitiesClean) wf.WriteEntityWorkFile(doc);
  return true;
}

}  // namespace tavik
