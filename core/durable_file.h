// Files that must survive a power cut on the field tablet. Whole-file reads and writes
// in one go (no per-field system calls), appends that reach the disk before the call
// returns, and replacement by write-beside-then-rename so that a crash at any instant
// leaves either the old file or the new one, never a half-written one.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tavik::io {

// Reads the whole file. False when it cannot be opened or read.
bool ReadWholeFile(const std::filesystem::path& path, std::string& out);

// Writes bytes to a new file (truncating any old one) and flushes it to disk.
bool WriteNewFile(const std::filesystem::path& path, std::string_view bytes);

// A new file written through a buffer of its own, flushed to disk by Finish. For large
// files built record by record: no copy of the whole file is held in memory.
class BufferedFile {
 public:
  explicit BufferedFile(const std::filesystem::path& path, std::size_t bufferBytes = 1 << 20);
  ~BufferedFile();
  BufferedFile(const BufferedFile&) = delete;
  BufferedFile& operator=(const BufferedFile&) = delete;

  // Room for n bytes (n no more than the buffer), to be filled and then committed.
  char* Reserve(std::size_t n);
  void Commit(std::size_t n) { used_ += n; }
  // Writes what is left, flushes to disk and closes. False when anything failed.
  bool Finish();
  // False once the file could not be opened or a write failed.
  bool Ok() const { return ok_; }

 private:
  bool Drain();
  int fd_ = -1;
  bool ok_ = true;
  std::string buf_;
  std::size_t used_ = 0;
};

// A large file that replaces `path` only when it is complete: written record by record
// into path + "~new" beside it, then flushed and renamed over path by Finish. When the
// object goes without a successful Finish the beside file is removed and path keeps
// its old content.
class ReplacingFile {
 public:
  explicit ReplacingFile(const std::filesystem::path& path, std::size_t bufferBytes = 1 << 20);
  ~ReplacingFile();
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  bool Ok() const { return file_.Ok(); }
  char* Reserve(std::size_t n) { return file_.Reserve(n); }
  void Commit(std::size_t n) { file_.Commit(n); }
  // Writes the rest, flushes, renames over path and flushes the folder.
  bool Finish();

 private:
  std::filesystem::path path_, beside_;
  BufferedFile file_;
  bool done_ = false;
};

// Opens for append (creating the file), appends, flushes the data to disk and closes.
// When the write fails part-way the file is cut back to its old length, so a failed
// record never leaves a torn line in the middle of a journal.
bool AppendDurably(const std::filesystem::path& path, std::string_view bytes);

// Replaces path by a file holding bytes: writes path + "~new" beside it, flushes it,
// renames it over path and flushes the folder. On failure path is untouched.
bool ReplaceDurably(const std::filesystem::path& path, std::string_view bytes);

// Flushes a folder's entries (renames, new files) to disk.
bool SyncFolder(const std::filesystem::path& dir);

// Removes a file; a missing file is not an error, nor is any other failure reported.
void RemoveQuietly(const std::filesystem::path& path);

}  // namespace tavik::io
