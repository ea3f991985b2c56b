#include "core/docfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "core/app_paths.h"
#include "core/durable_file.h"
#include "core/numbers.h"
#include "core/progress.h"
#include "core/tables.h"
#include "core/text.h"

namespace tavik {

static_assert(std::endian::native == std::endian::little, "the document file is little-endian");

namespace fs = std::filesystem;

namespace {

constexpr std::size_t HeaderBytes = 224;
constexpr std::size_t PointBytes = 24;
constexpr std::size_t EntityBytes = 96;
constexpr std::size_t OldBaseMapBytes = 72;
constexpr std::size_t SpHeaderBytes = 148;
constexpr std::size_t SpItemBytes = 108;

// ---- writing -------------------------------------------------------------------

template <typename T>
char* Put(char* p, T v) {
  std::memcpy(p, &v, sizeof v);
  return p + sizeof v;
}

char* PutText(char* p, const std::string& utf8, std::size_t width) {
  bool ascii = true;
  for (unsigned char c : utf8) ascii = ascii && c < 0x80;
  if (ascii) {
    std::size_t n = std::min(utf8.size(), width);
    std::memcpy(p, utf8.data(), n);
    std::memset(p + n, ' ', width - n);
  } else {
    std::string f = text::FixedField(utf8, width);
    std::memcpy(p, f.data(), width);
  }
  return p + width;
}

// ---- reading -------------------------------------------------------------------

// A file read as records at given offsets, through a window of a few megabytes that
// moves forward as the records are taken: the file is never held whole in memory. A
// record that runs past the end of the file is completed with zeros, as the older
// programs' reads did.
class Bytes {
 public:
  Bytes() = default;
  ~Bytes() {
    if (fd_ >= 0) ::close(fd_);
  }
  Bytes(const Bytes&) = delete;
  Bytes& operator=(const Bytes&) = delete;

  bool Open(const fs::path& path) {
    fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat st {};
    if (fd_ < 0 || ::fstat(fd_, &st) != 0 || !S_ISREG(st.st_mode)) return false;
    size_ = static_cast<uint64_t>(st.st_size);
    return true;
  }

  // n bytes at off (n no more than the window); zero-padded into scratch when short.
  const char* At(uint64_t off, std::size_t n, char* scratch) {
    if (off < start_ || off + n > start_ + filled_) Fill(off);
    if (off >= start_ && off + n <= start_ + filled_) return window_.data() + (off - start_);
    std::memset(scratch, 0, n);
    if (off >= start_ && off < start_ + filled_)
      std::memcpy(scratch, window_.data() + (off - start_), start_ + filled_ - off);
    return scratch;
  }

  // How many records of recBytes from off can be read at all (the last one may be
  // short); never more than count. A count below 0 reads nothing.
  uint64_t Readable(uint64_t off, int32_t count, std::size_t recBytes) const {
    if (count <= 0 || off >= size_) return 0;
    uint64_t avail = (size_ - off + recBytes - 1) / recBytes;
    return std::min<uint64_t>(avail, static_cast<uint64_t>(count));
  }

 private:
  void Fill(uint64_t off) {
    if (window_.empty()) window_.resize(static_cast<std::size_t>(std::clamp<uint64_t>(size_, kMinWindow, kWindow)));
    start_ = off;
    filled_ = 0;
    while (filled_ < window_.size() && off < size_) {
      ssize_t r = ::pread(fd_, window_.data() + filled_, window_.size() - filled_,
                          static_cast<off_t>(start_ + filled_));
      if (r < 0 && errno == EINTR) continue;
      if (r <= 0) break;  // a read error ends the file here
      filled_ += static_cast<std::size_t>(r);
    }
  }

  // Small enough to stay in the processor's cache between the read and the decoding.
  static constexpr std::size_t kWindow = 256 << 10;
  static constexpr std::size_t kMinWindow = 256;  // at least the largest record
  int fd_ = -1;
  uint64_t size_ = 0;
  std::string window_;
  uint64_t start_ = 0;
  std::size_t filled_ = 0;
};

// A table of a large file is filled once, front to back, right after it is reserved:
// huge pages make that a page fault per 2 MB instead of per 4 KB. Only a hint.
template <typename T>
void PreferHugePages(std::vector<T>& v) {
  constexpr uintptr_t kHuge = 2 << 20;
  const uintptr_t begin = reinterpret_cast<uintptr_t>(v.data());
  const uintptr_t end = begin + v.capacity() * sizeof(T);
  const uintptr_t from = (begin + kHuge - 1) & ~(kHuge - 1);
  if (end > from + kHuge) ::madvise(reinterpret_cast<void*>(from), end - from, MADV_HUGEPAGE);
}

template <typename T>
T Get(const char* p) {
  T v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

// A trimmed fixed field; ASCII names (nearly all of them) skip the converter.
std::string GetText(const char* p, std::size_t width, bool cutAtNul = false) {
  std::string_view raw(p, width);
  if (cutAtNul) {
    auto z = raw.find('\0');
    if (z != std::string_view::npos) raw = raw.substr(0, z);
  }
  auto blank = [](char c) { return c == ' ' || c == '\0' || c == '\t' || c == '\r' || c == '\n'; };
  std::size_t b = 0, e = raw.size();
  while (e > b && blank(raw[e - 1])) --e;
  if (e == 0) return {};  // a blank name, the commonest of all
  while (b < e && blank(raw[b])) ++b;
  // One pass for both questions: any byte above ASCII, any NUL inside the name.
  unsigned char high = 0;
  bool nul = false;
  for (std::size_t i = b; i < e; ++i) {
    high |= static_cast<unsigned char>(raw[i]);
    nul |= raw[i] == '\0';
  }
  if (high & 0x80) return text::ReadFixedField(raw);
  std::string s(raw.data() + b, e - b);
  if (nul) std::replace(s.begin(), s.end(), '\0', ' ');
  return s;
}

void ReadVertices(const char* p, double* X, double* Y, double* Z) {
  for (int k = 0; k < 3; ++k) X[k] = Get<double>(p + 8 * k);
  for (int k = 0; k < 3; ++k) Y[k] = Get<double>(p + 24 + 8 * k);
  if (Z)
    for (int k = 0; k < 3; ++k) Z[k] = Get<double>(p + 48 + 8 * k);
}

// The existing file of that name, whatever the case of its name; the path itself when
// there is none. Documents come from a system whose names ignore case.
fs::path Existing(const std::string& path) {
  fs::path p(path);
  fs::path dir = p.parent_path();
  return AppPaths::Find(dir.empty() ? fs::path(".") : dir, p.filename().string());
}

bool Exists(const fs::path& p) {
  std::error_code ec;
  return fs::exists(p, ec);
}

struct SpcHeader {
  std::string versionText;
  int16_t MapType;
  double ScaleDenominator;
  std::string StationName;
  double InstrumentHeight, TargetHeight, StationE, StationN, StationH, OrientationConstant;
  double ViewCentreE, ViewCentreN, MinE, MaxE, MinN, MaxN;
  int32_t points, entities, baseMap, ReferencePointCount, ReferenceEntityCount, SerialCounter;
  int16_t SplitStakeCount;
  double BacksightE, BacksightN;
  std::string BacksightName;
  int16_t ReferenceMapLoaded;
};

SpcHeader ReadHeader(Bytes& file) {
  char scratch[HeaderBytes];
  const char* p = file.At(0, HeaderBytes, scratch);
  SpcHeader h;
  h.versionText = GetText(p, 8);
  h.MapType = Get<int16_t>(p + 8);
  h.ScaleDenominator = Get<double>(p + 10);
  h.StationName = GetText(p + 18, StationNameBytes);
  h.InstrumentHeight = Get<double>(p + 38);
  h.TargetHeight = Get<double>(p + 46);
  h.StationE = Get<double>(p + 54);
  h.StationN = Get<double>(p + 62);
  h.StationH = Get<double>(p + 70);
  h.OrientationConstant = Get<double>(p + 78);
  h.ViewCentreE = Get<double>(p + 86);
  h.ViewCentreN = Get<double>(p + 94);
  h.MinE = Get<double>(p + 102);
  h.MaxE = Get<double>(p + 110);
  h.MinN = Get<double>(p + 118);
  h.MaxN = Get<double>(p + 126);
  h.points = Get<int32_t>(p + 134);
  h.entities = Get<int32_t>(p + 138);
  h.baseMap = Get<int32_t>(p + 142);
  h.ReferencePointCount = Get<int32_t>(p + 146);
  h.ReferenceEntityCount = Get<int32_t>(p + 150);
  h.SerialCounter = Get<int32_t>(p + 154);
  h.SplitStakeCount = Get<int16_t>(p + 164);
  h.BacksightE = Get<double>(p + 166);
  h.BacksightN = Get<double>(p + 174);
  h.BacksightName = GetText(p + 182, BacksightNameBytes);
  h.ReferenceMapLoaded = Get<int16_t>(p + 222);
  return h;
}

uint64_t CountOf(int32_t n) { return n > 0 ? static_cast<uint64_t>(n) : 0; }

void CannotRead(ui::Dialogs& dialogs, const std::string& path, const std::string& title) {
  dialogs.MsgBox("無法讀取檔案 " + path, title, ui::Buttons::Ok, ui::Icon::Exclamation);
}

void ClearSplitValues(Document& doc) {
  for (auto& c : doc.SplitBoundaryEdges) c.clear();
  for (auto& c : doc.SplitBoundaryVertices) c.clear();
  for (double& v : doc.SplitLine) v = 0;
  for (double& v : doc.SplitLineLabelled) v = 0;
  doc.SplitAreaValue = 0;
  doc.SplitAreaAt[0] = doc.SplitAreaAt[1] = 0;
}

}  // namespace

void PurgeZeroEntities(Document& doc) {
  std::size_t n = std::min<std::size_t>(doc.EntityTable.size(), CountOf(doc.EntityCount));
  for (std::size_t i = 0; i < n; ++i) {
    Entity& e = doc.EntityTable[i];
    if (!e.Deleted && e.Kind == KindPoint && e.X[0] == 0 && e.Y[0] == 0 && e.Z[0] == 0) e.Deleted = kTrue;
  }
}

bool SaveDocument(Document& doc, WorkFiles& wf, ui::Dialogs& dialogs, const ProgressSink& progress) {
  if (!WriteDocumentFile(doc, dialogs, progress)) return false;
  wf.RemoveAll();
  return true;
}

bool WriteDocumentFile(Document& doc, ui::Dialogs& dialogs, const ProgressSink& progress) {
  const std::size_t np = std::min<std::size_t>(doc.PointTable.size(), CountOf(doc.PointCount));
  const std::size_t ne = std::min<std::size_t>(doc.EntityTable.size(), CountOf(doc.EntityCount));
  const std::size_t nb = std::min<std::size_t>(doc.BaseMapTable.size(), CountOf(doc.BaseMapCount));
  ProgressCount count(progress, static_cast<int64_t>(np + ne + nb));
  const fs::path spc = Existing(doc.SpcPath);
  const fs::path old = Existing(doc.OldPath);
  fs::path fresh = spc;
  fresh += "~new";
  auto fail = [&] {
    io::RemoveQuietly(fresh);
    dialogs.MsgBox(doc.SpcPath + " 無法寫入(磁碟已滿或資料夾唯讀),原有的檔案沒有更動", "存檔失敗",
                   ui::Buttons::Ok, ui::Icon::Critical);
    return false;
  };

  // The new file is written beside the old one, through a buffer, record by record.
  io::BufferedFile out(fresh);
  char* h = out.Reserve(HeaderBytes);
  std::memset(h, 0, HeaderBytes);
  PutText(h, CurrentFileVersion, 8);
  Put<int16_t>(h + 8, doc.MapType);
  Put<double>(h + 10, doc.ScaleDenominator);
  PutText(h + 18, doc.StationName, StationNameBytes);
  Put<double>(h + 38, doc.InstrumentHeight);
  Put<double>(h + 46, doc.TargetHeight);
  Put<double>(h + 54, doc.StationE);
  Put<double>(h + 62, doc.StationN);
  Put<double>(h + 70, doc.StationH);
  Put<double>(h + 78, doc.OrientationConstant);
  Put<double>(h + 86, doc.ViewCentreE);
  Put<double>(h + 94, doc.ViewCentreN);
  Put<double>(h + 102, doc.MinE);
  Put<double>(h + 110, doc.MaxE);
  Put<double>(h + 118, doc.MinN);
  Put<double>(h + 126, doc.MaxN);
  // The counts are the table counts less the deleted counts, written once and never
  // corrected: an entity purged or skipped below still counts here.
  Put<int32_t>(h + 134, doc.PointCount - doc.DeletedPointCount);
  Put<int32_t>(h + 138, doc.EntityCount - doc.DeletedEntityCount);
  Put<int32_t>(h + 142, doc.BaseMapCount);
  Put<int32_t>(h + 146, doc.ReferencePointCount);
  Put<int32_t>(h + 150, doc.ReferenceEntityCount);
  Put<int32_t>(h + 154, doc.SerialCounter);
  Put<int16_t>(h + 164, doc.SplitStakeCount);
  Put<double>(h + 166, doc.BacksightE);
  Put<double>(h + 174, doc.BacksightN);
  PutText(h + 182, doc.BacksightName, BacksightNameBytes);
  Put<int16_t>(h + 222, doc.ReferenceMapLoaded);
  out.Commit(HeaderBytes);

  int32_t pointsWritten = 0, entitiesWritten = 0;
  for (std::size_t i = 0; i < np; ++i) {
    count.Add();
    const Point& pt = doc.PointTable[i];
    if (pt.Deleted) continue;
    char* p = out.Reserve(PointBytes);
    p = Put(p, pt.E);
    p = Put(p, pt.N);
    Put(p, pt.H);
    out.Commit(PointBytes);
    ++pointsWritten;
  }
  for (std::size_t i = 0; i < ne; ++i) {
    count.Add();
    const Entity& e = doc.EntityTable[i];
    if (e.Deleted || (e.X[0] == e.X[1] && e.Y[0] == e.Y[1] && e.Z[0] == e.Z[1])) continue;
    char* p = out.Reserve(EntityBytes);
    p = Put(p, e.Code);
    p = Put(p, e.Kind);
    std::memcpy(p, e.X, 24);
    std::memcpy(p + 24, e.Y, 24);
    std::memcpy(p + 48, e.Z, 24);
    PutText(p + 72, e.Name, NameBytes);
    out.Commit(EntityBytes);
    ++entitiesWritten;
  }
  for (std::size_t i = 0; i < nb; ++i) {
    count.Add();
    const BaseMapLine& b = doc.BaseMapTable[i];
    char* p = out.Reserve(EntityBytes);
    p = Put(p, b.Code);
    p = Put(p, b.Kind);
    std::memcpy(p, b.X, 24);
    std::memcpy(p + 24, b.Y, 24);
    std::memset(p + 48, 0, 24);
    PutText(p + 72, b.Name, NameBytes);
    out.Commit(EntityBytes);
  }
  if (!out.Finish()) return fail();

  // Only now, with the new file whole on disk, do the renames.
  if (Exists(spc)) {
    // The previous generation becomes .OLD by a hard link and a rename, so that .SPC
    // itself never disappears; where links are not supported, by a plain rename.
    fs::path oldNew = old;
    oldNew += "~new";
    io::RemoveQuietly(oldNew);
    if (::link(spc.c_str(), oldNew.c_str()) != 0 || ::rename(oldNew.c_str(), old.c_str()) != 0) {
      io::RemoveQuietly(oldNew);
      io::RemoveQuietly(old);
      if (::rename(spc.c_str(), old.c_str()) != 0) return fail();
    }
  } else {
    io::RemoveQuietly(old);
  }
  if (::rename(fresh.c_str(), spc.c_str()) != 0) return fail();
  io::SyncFolder(spc.parent_path().empty() ? fs::path(".") : spc.parent_path());

  doc.PointCount = pointsWritten;
  doc.DeletedPointCount = 0;
  doc.EntityCount = entitiesWritten;
  doc.DeletedEntityCount = 0;
  return true;
}

bool LoadDocument(Document& doc, ui::Dialogs& dialogs, const ProgressSink& progress) {
  Bytes file;
  if (!file.Open(Existing(doc.SpcPath))) {
    CannotRead(dialogs, doc.SpcPath, "讀檔動作取消");
    return false;
  }
  const SpcHeader h = ReadHeader(file);
  if (h.points == 0 && h.entities == 0 && h.baseMap == 0) {
    dialogs.MsgBox(doc.SpcPath + "檔案沒有內容", "讀檔動作取消");
    return false;
  }
  // The version is only ever read as a number; a text that is not one counts as 0.
  const double version = num::ParseLenient(h.versionText);
  const bool tavik722 = h.versionText == "TAVIK722";

  doc.FileVersion = h.versionText;
  doc.MapType = h.MapType;
  doc.ScaleDenominator = h.ScaleDenominator;
  doc.StationName = h.StationName;
  if (!doc.StationName.empty()) doc.StationSet = kTrue;
  doc.InstrumentHeight = h.InstrumentHeight;
  doc.TargetHeight = h.TargetHeight;
  doc.StationE = h.StationE;
  doc.StationN = h.StationN;
  doc.StationH = h.StationH;
  doc.OrientationConstant = h.OrientationConstant;
  doc.ViewCentreE = h.ViewCentreE;
  doc.ViewCentreN = h.ViewCentreN;
  doc.MinE = h.MinE;
  doc.MaxE = h.MaxE;
  doc.MinN = h.MinN;
  doc.MaxN = h.MaxN;
  doc.SerialCounter = h.SerialCounter;
  doc.BacksightE = h.BacksightE;
  doc.BacksightN = h.BacksightN;
  doc.BacksightName = h.BacksightName;
  doc.ReferenceMapLoaded = h.ReferenceMapLoaded;
  ComputeBacksightAzimuth(doc);
  if (doc.ReferenceMapLoaded) {
    doc.ReferencePointCount = h.ReferencePointCount;
    doc.ReferenceEntityCount = h.ReferenceEntityCount;
  }
  if (version >= 7321152) doc.SplitStakeCount = h.SplitStakeCount;

  // Points: a record with E or N exactly 0 is skipped; the others keep their ordinal.
  RowsChanged(doc);
  char scratch[EntityBytes];
  uint64_t off = HeaderBytes;
  uint64_t n = file.Readable(off, h.points, PointBytes);
  const uint64_t entitiesAt = off + CountOf(h.points) * PointBytes;
  const uint64_t baseMapAt = entitiesAt + CountOf(h.entities) * EntityBytes;
  const bool oldRecords = version <= 7221080 || tavik722;
  const std::size_t baseMapBytes = oldRecords ? OldBaseMapBytes : EntityBytes;
  ProgressCount count(progress, static_cast<int64_t>(n + file.Readable(entitiesAt, h.entities, EntityBytes) +
                                                     file.Readable(baseMapAt, h.baseMap, baseMapBytes)));
  doc.PointTable.clear();
  doc.PointTable.reserve(n);
  PreferHugePages(doc.PointTable);
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    const char* r = file.At(off + i * PointBytes, PointBytes, scratch);
    Point p;
    p.E = Get<double>(r);
    p.N = Get<double>(r + 8);
    p.H = Get<double>(r + 16);
    if (p.E == 0 || p.N == 0) continue;
    p.Number = static_cast<int32_t>(i + 1);
    doc.PointTable.push_back(p);
  }
  doc.PointCount = static_cast<int32_t>(doc.PointTable.size());
  doc.DeletedPointCount = 0;

  // Entities.
  off = entitiesAt;
  n = file.Readable(off, h.entities, EntityBytes);
  doc.EntityTable.clear();
  doc.EntityTable.reserve(n);
  PreferHugePages(doc.EntityTable);
  doc.DeletedEntityCount = 0;
  ClearSplitValues(doc);
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    const char* r = file.At(off + i * EntityBytes, EntityBytes, scratch);
    const int16_t code = Get<int16_t>(r), kind = Get<int16_t>(r + 2);
    if (code < 1 || code > 999 || kind == 0) continue;
    Entity& e = doc.EntityTable.emplace_back();
    e.Code = code;
    e.Kind = kind;
    ReadVertices(r + 4, e.X, e.Y, e.Z);
    e.Name = GetText(r + 76, NameBytes);
    e.Number = static_cast<int32_t>(doc.EntityTable.size());
    if (e.Code == CodeSplitBoundary && e.Kind == KindLine) {
      for (int k = 0; k < 2; ++k) {
        doc.SplitBoundaryEdges[2 * k].push_back(e.X[k]);
        doc.SplitBoundaryEdges[2 * k + 1].push_back(e.Y[k]);
      }
      doc.SplitBoundaryVertices[0].push_back(e.X[0]);
      doc.SplitBoundaryVertices[1].push_back(e.Y[0]);
    }
    if (e.X[0] == e.X[1] && e.Y[0] == e.Y[1]) {
      e.Deleted = kTrue;
      ++doc.DeletedEntityCount;
      doc.MapChanged = kTrue;
    }
    if (e.Code == CodeSplitLine && e.Kind == KindLine) {
      doc.SplitLine[0] = e.X[0];
      doc.SplitLine[1] = e.Y[0];
      doc.SplitLine[2] = e.X[1];
      doc.SplitLine[3] = e.Y[1];
    } else if (e.Code == CodeSplitLine && e.Kind == KindPoint) {
      std::copy(doc.SplitLine, doc.SplitLine + 4, doc.SplitLineLabelled);
      doc.SplitAreaValue = num::ParseLenient(e.Name);
      doc.SplitAreaAt[0] = e.X[0];
      doc.SplitAreaAt[1] = e.Y[0];
    }
  }
  doc.EntityCount = static_cast<int32_t>(doc.EntityTable.size());
  if (!doc.SplitBoundaryEdges[0].empty()) {
    doc.SplitBoundaryVertices[0].push_back(doc.SplitBoundaryEdges[2].back());
    doc.SplitBoundaryVertices[1].push_back(doc.SplitBoundaryEdges[3].back());
  }

  // Base map: 72-byte records without Z in files of an old version.
  off = baseMapAt;
  const std::size_t bytes = baseMapBytes;
  n = file.Readable(off, h.baseMap, bytes);
  doc.BaseMapTable.clear();
  doc.BaseMapTable.reserve(n);
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    const char* r = file.At(off + i * bytes, bytes, scratch);
    BaseMapLine b;
    b.Number = static_cast<int32_t>(i + 1);
    b.Code = Get<int16_t>(r);
    b.Kind = Get<int16_t>(r + 2);
    ReadVertices(r + 4, b.X, b.Y, oldRecords ? nullptr : b.Z);
    b.Name = GetText(r + (oldRecords ? 52 : 76), NameBytes);
    doc.BaseMapTable.push_back(std::move(b));
  }
  doc.BaseMapCount = static_cast<int32_t>(doc.BaseMapTable.size());

  doc.ScreenPointTable.clear();
  doc.ScreenPointCount = 0;
  doc.ScreenEntityTable.clear();
  doc.ScreenEntityCount = 0;
  return true;
}

bool ReadOldDocument(Document& doc, ui::Dialogs& dialogs, const ProgressSink& progress) {
  Bytes file;
  if (!file.Open(Existing(doc.SpPath))) {
    CannotRead(dialogs, doc.SpPath, "讀檔動作取消");
    return false;
  }
  char scratch[std::max(SpHeaderBytes, SpItemBytes)];
  const char* h = file.At(0, SpHeaderBytes, scratch);
  const int16_t mapType = Get<int16_t>(h);
  const int32_t points = Get<int32_t>(h + 132);
  const int32_t items = Get<int32_t>(h + 140);

  ClearTables(doc);
  doc.StationSet = kFalse;
  doc.StationName.clear();
  doc.MapType = mapType;

  uint64_t off = SpHeaderBytes;
  uint64_t n = file.Readable(off, points, PointBytes);
  const uint64_t itemsAt = off + CountOf(points) * PointBytes;
  // The items are read twice: once for the entities, once for the base map.
  ProgressCount count(progress, static_cast<int64_t>(n + 2 * file.Readable(itemsAt, items, SpItemBytes)));
  doc.PointTable.reserve(n);
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    const char* r = file.At(off + i * PointBytes, PointBytes, scratch);
    Point p;
    p.Number = static_cast<int32_t>(i + 1);
    p.E = Get<double>(r);
    p.N = Get<double>(r + 8);
    p.H = Get<double>(r + 16);
    doc.PointTable.push_back(p);
  }
  doc.PointCount = static_cast<int32_t>(doc.PointTable.size());

  // Item record: CodeText (6 bytes), Kind, X[3], Y[3], Z[3], Name (20 bytes), and 8
  // bytes that nothing reads. Code 299 marks a line of the base map.
  off = itemsAt;
  n = file.Readable(off, items, SpItemBytes);
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    const char* r = file.At(off + i * SpItemBytes, SpItemBytes, scratch);
    const double code = num::ParseLenient(GetText(r, 6, true));
    if (code == 299) continue;
    Entity e;
    e.Number = static_cast<int32_t>(doc.EntityTable.size() + 1);
    e.Code = num::CInt(code);
    e.Kind = Get<int16_t>(r + 6);
    ReadVertices(r + 8, e.X, e.Y, e.Z);
    e.Name = GetText(r + 80, NameBytes, true);
    if (e.Name == "\"\"") e.Name.clear();
    doc.EntityTable.push_back(std::move(e));
  }
  doc.EntityCount = static_cast<int32_t>(doc.EntityTable.size());
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    const char* r = file.At(off + i * SpItemBytes, SpItemBytes, scratch);
    if (num::ParseLenient(GetText(r, 6, true)) != 299) continue;
    BaseMapLine b;
    b.Number = static_cast<int32_t>(doc.BaseMapTable.size() + 1);
    b.Code = 0;
    b.Kind = KindLine;
    ReadVertices(r + 8, b.X, b.Y, nullptr);
    doc.BaseMapTable.push_back(std::move(b));
  }
  doc.BaseMapCount = static_cast<int32_t>(doc.BaseMapTable.size());
  return true;
}

bool MergeDocumentRecords(Document& doc, WorkFiles& wf, const std::string& path, ui::Dialogs& dialogs,
                          const ProgressSink& progress) {
  Bytes file;
  if (!file.Open(Existing(path))) {
    CannotRead(dialogs, path, "合併動作取消");
    return false;
  }
  const SpcHeader h = ReadHeader(file);
  if (h.entities == 0) {
    // The name shown is the open document's, as it always was.
    dialogs.MsgBox(doc.SpcPath + "檔案沒有內容", "合併動作取消");
    return false;
  }
  char scratch[EntityBytes];
  RowsChanged(doc);  // the tables are cut back to their counts before the appends
  uint64_t off = HeaderBytes;
  uint64_t n = file.Readable(off, h.points, PointBytes);
  const uint64_t entitiesAt = off + CountOf(h.points) * PointBytes;
  ProgressCount count(progress, static_cast<int64_t>(n + file.Readable(entitiesAt, h.entities, EntityBytes)));
  doc.PointTable.resize(std::min<std::size_t>(doc.PointTable.size(), CountOf(doc.PointCount)));
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    if (i < CountOf(doc.ReferencePointCount)) continue;
    const char* r = file.At(off + i * PointBytes, PointBytes, scratch);
    Point p;
    p.Number = ++doc.PointCount;
    p.E = Get<double>(r);
    p.N = Get<double>(r + 8);
    p.H = Get<double>(r + 16);
    doc.PointTable.push_back(p);
  }
  off = entitiesAt;
  n = file.Readable(off, h.entities, EntityBytes);
  doc.EntityTable.resize(std::min<std::size_t>(doc.EntityTable.size(), CountOf(doc.EntityCount)));
  for (uint64_t i = 0; i < n; ++i) {
    count.Add();
    if (i < CountOf(doc.ReferenceEntityCount)) continue;
    const char* r = file.At(off + i * EntityBytes, EntityBytes, scratch);
    Entity e;
    e.Number = ++doc.EntityCount;
    e.Code = Get<int16_t>(r);
    e.Kind = Get<int16_t>(r + 2);
    ReadVertices(r + 4, e.X, e.Y, e.Z);
    e.Name = GetText(r + 76, NameBytes);
    doc.EntityTable.push_back(std::move(e));
  }
  doc.MapChanged = kTrue;
  wf.WritePointWorkFile(doc);
  wf.WriteEntityWorkFile(doc);
  wf.WriteBaseMapWorkFile(doc);
  return true;
}

}  // namespace tavik
