// One running TAVIK per user: the program holds an exclusive flock on a file in its
// data folder for as long as it runs. The kernel drops the lock when the process ends,
// however it ends, so a crash never leaves a stale lock behind.
#pragma once

#include <filesystem>

#include "platform/dialogs.h"

namespace tavik {

class InstanceLock {
 public:
  InstanceLock() = default;
  InstanceLock(const InstanceLock&) = delete;
  InstanceLock& operator=(const InstanceLock&) = delete;
  ~InstanceLock() { Release(); }

  // True when this process now holds the lock; false when another holds it or the
  // file cannot be opened.
  bool Acquire(const std::filesystem::path& file);
  void Release();
  bool Held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// Start-up's first step: takes the lock, or tells the user that TAVIK is already
// running ("您不能開啟兩個TAVIK" under "已有一個TAVIK在運作中") and returns false, in
// which case the program ends.
bool TakeSingleInstance(InstanceLock& lock, const std::filesystem::path& file, ui::Dialogs& dialogs);

}  // namespace tavik
