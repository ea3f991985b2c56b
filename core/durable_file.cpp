#include "core/durable_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tavik::io {

namespace fs = std::filesystem;

namespace {

bool WriteAll(int fd, std::string_view bytes) {
  const char* p = bytes.data();
  std::size_t left = bytes.size();
  while (left > 0) {
    ssize_t n = ::write(fd, p, left);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    p += n;
    left -= static_cast<std::size_t>(n);
  }
  return true;
}

fs::path Folder(const fs::path& path) {
  fs::path dir = path.parent_path();
  return dir.empty() ? fs::path(".") : dir;
}

}  // namespace

bool ReadWholeFile(const fs::path& path, std::string& out) {
  out.clear();
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st {};
  if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
    ::close(fd);
    return false;
  }
  if (st.st_size > 0) out.reserve(static_cast<std::size_t>(st.st_size));
  char buf[1 << 16];
  for (;;) {
    // Read straight into the string's spare room when the size is known.
    if (out.capacity() > out.size()) {
      std::size_t old = out.size();
      out.resize(out.capacity());
      ssize_t n = ::read(fd, out.data() + old, out.size() - old);
      if (n < 0 && errno == EINTR) {
        out.resize(old);
        continue;
      }
      out.resize(old + (n > 0 ? static_cast<std::size_t>(n) : 0));
      if (n < 0) {
        ::close(fd);
        return false;
      }
      if (n == 0) break;
      continue;
    }
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0) {
      if (errno == EINTR) continue;
      ::close(fd);
      return false;
    }
    if (n == 0) break;
    out.append(buf, static_cast<std::size_t>(n));
  }
  ::close(fd);
  return true;
}

bool WriteNewFile(const fs::path& path, std::string_view bytes) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  bool ok = WriteAll(fd, bytes) && ::fsync(fd) == 0;
  if (::close(fd) != 0) ok = false;
  return ok;
}

BufferedFile::BufferedFile(const fs::path& path, std::size_t bufferBytes) : buf_(bufferBytes, '\0') {
  fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  ok_ = fd_ >= 0;
}

BufferedFile::~BufferedFile() {
  if (fd_ >= 0) ::close(fd_);
}

bool BufferedFile::Drain() {
  if (ok_ && used_ > 0) ok_ = WriteAll(fd_, std::string_view(buf_.data(), used_));
  used_ = 0;
  return ok_;
}

char* BufferedFile::Reserve(std::size_t n) {
  if (used_ + n > buf_.size()) Drain();
  return buf_.data() + used_;
}

bool BufferedFile::Finish() {
  Drain();
  if (fd_ < 0) return false;
  if (ok_ && ::fsync(fd_) != 0) ok_ = false;
  if (::close(fd_) != 0) ok_ = false;
  fd_ = -1;
  return ok_;
}

bool AppendDurably(const fs::path& path, std::string_view bytes) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  struct stat st {};
  off_t before = ::fstat(fd, &st) == 0 ? st.st_size : -1;
  bool ok = WriteAll(fd, bytes) && ::fdatasync(fd) == 0;
  if (!ok && before >= 0) {
    // Cut the partial record off, so the next append starts on a clean line.
    if (::ftruncate(fd, before) == 0) ::fdatasync(fd);
  }
  if (::close(fd) != 0) ok = false;
  return ok;
}

bool SyncFolder(const fs::path& dir) {
  int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  bool ok = ::fsync(fd) == 0;
  ::close(fd);
  return ok;
}

bool ReplaceDurably(const fs::path& path, std::string_view bytes) {
  fs::path tmp = path;
  tmp += "~new";
  if (!WriteNewFile(tmp, bytes)) {
    RemoveQuietly(tmp);
    return false;
  }
  if (::rename(tmp.c_str(), path.c_str()) != 0) {
    RemoveQuietly(tmp);
    return false;
  }
  SyncFolder(Folder(path));
  return true;
}

namespace {
fs::path Beside(const fs::path& path) {
  fs::path tmp = path;
  tmp += "~new";
  return tmp;
}
}  // namespace

ReplacingFile::ReplacingFile(const fs::path& path, std::size_t bufferBytes)
    : path_(path), beside_(Beside(path)), file_(beside_, bufferBytes) {}

ReplacingFile::~ReplacingFile() {
  if (!done_) RemoveQuietly(beside_);
}

bool ReplacingFile::Finish() {
  done_ = true;
  if (!file_.Finish() || ::rename(beside_.c_str(), path_.c_str()) != 0) {
    RemoveQuietly(beside_);
    return false;
  }
  SyncFolder(Folder(path_));
  return true;
}

void RemoveQuietly(const fs::path& path) {
  std::error_code ec;
  fs::remove(path, ec);
}

}  // namespace tavik::io
