// The three work files and the recovery header: a journal of what was measured since
// the last save, kept so that a crash on the field tablet loses no observation.
//
// TEMPP0 holds a line per point, TEMPS0 a line per entity, TEMPBM a line per base-map
// record, all in the comma-separated text form of core/record_text.h, in code page 950,
// ended by CR LF. AddPoint and AddEntity append one line each and the line is on disk
// before they return. Commands that change rows already written rewrite the whole file
// (beside the old one, then a rename). Insurance.TV carries the header values and the
// counts, so that a start-up after a crash can tell how much of the journal arrived.
#pragma once

#include <string>

#include "core/app_paths.h"
#include "core/document.h"
#include "platform/dialogs.h"

namespace tavik {

class WorkFiles {
 public:
  explicit WorkFiles(AppPaths paths);

  // A new document: the three files created empty. False when any cannot be made.
  bool CreateEmpty();
  // Save, open and close: the three files removed, errors ignored.
  void RemoveAll();

  // One line appended and flushed to disk. False (disk full, folder gone) leaves the
  // file as it was; the caller keeps the record in its table and may warn. The first
  // append after a save or an open also creates the other journal empty: start-up
  // recovers only when both are there, and a point measured after a save must not be
  // lost for want of an entity.
  bool AppendPointWorkFile(const Point& p);
  bool AppendEntityWorkFile(const Entity& e);
  // One base-map record drawn by hand, appended to TEMPBM.
  bool AppendBaseMapWorkFile(const BaseMapLine& b);

  // The whole file rewritten from the table, deleted rows included with their flag.
  bool WritePointWorkFile(const Document& doc);
  bool WriteEntityWorkFile(const Document& doc);
  bool WriteBaseMapWorkFile(const Document& doc);

  // Insurance.TV: one value a line, in the order DocumentName, MapType,
  // ScaleDenominator, StationSet, StationName, StationE, StationN, StationH,
  // OrientationConstant, ViewCentreE, ViewCentreN, MinE, MaxE, MinN, MaxN, PointCount,
  // DeletedPointCount, EntityCount, DeletedEntityCount, BaseMapCount, SerialCounter.
  bool WriteRecoveryHeader(const Document& doc);
  // Restores those values (and the document's paths). False when the file is missing or
  // any of its first twenty lines cannot be read; doc is then untouched. The serial
  // counter of the last line is taken when present.
  bool ReadRecoveryHeader(Document& doc);

  enum class CrashState {
    None,        // TEMPS0 or TEMPP0 missing: nothing to recover
    BothEmpty,   // both present and empty: a new document with nothing measured
    Recoverable  // a journal with records in it
  };
  CrashState Check() const;

  // A journal append failed since the file was last written whole: the file lacks
  // records the table has, and the next addition should rewrite it instead.
  bool PointJournalBehind() const { return pointBehind_; }
  bool EntityJournalBehind() const { return entityBehind_; }

  const AppPaths& Paths() const { return paths_; }

 private:
  void EnsureBothJournals();

  AppPaths paths_;
  bool bothJournals_ = false;
  bool pointBehind_ = false;
  bool entityBehind_ = false;
};

// The line forms, without the line end, in UTF-8 (exposed for the tools and tests).
std::string PointWorkLine(const Point& p);
std::string EntityWorkLine(const Entity& e);
std::string BaseMapWorkLine(const BaseMapLine& b);

// Start-up after a crash, when Check() says Recoverable: the recovery header (name,
// header values and counts), then the point and entity journals read line by line up
// to the first line that cannot be read (a torn last line is simply where the reading
// stops). A count that differs from the header's is reported: "建議放棄這個檔案!"
// under "有" + n + "個點資料毀損" (or "個圖元資料毀損"). The base-map journal is not
// read back. The header is left as it is; a journal is rewritten only when it ends in
// a line that could not be read. False when there was nothing to recover (both
// journals empty: they are removed).
bool RecoverFromWorkFiles(Document& doc, WorkFiles& wf, ui::Dialogs& dialogs);

}  // namespace tavik
