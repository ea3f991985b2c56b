#include "core/instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace tavik {

bool InstanceLock::Acquire(const std::filesystem::path& file) {
  if (fd_ >= 0) return true;
  int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    ::close(fd);
    return false;
  }
  fd_ = fd;
  return true;
}

void InstanceLock::Release() {
  if (fd_ < 0) return;
  ::flock(fd_, LOCK_UN);
  ::close(fd_);
  fd_ = -1;
}

bool TakeSingleInstance(InstanceLock& lock, const std::filesystem::path& file, ui::Dialogs& dialogs) {
  if (lock.Acquire(file)) return true;
  dialogs.MsgBox("您不能開啟兩個TAVIK", "已有一個TAVIK在運作中", ui::Buttons::Ok, ui::Icon::Exclamation);
  return false;
}

}  // namespace tavik
