#include "core/instance_lock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/scripted/scripted.h"

namespace fs = std::filesystem;
using tavik::InstanceLock;

TEST(InstanceLock, SecondHolderRefusedUntilFirstLetsGo) {
  const fs::path file = fs::temp_directory_path() / ("tavik_lock_" + std::to_string(::getpid()));
  InstanceLock first, second;
  ASSERT_TRUE(first.Acquire(file));
  EXPECT_FALSE(second.Acquire(file));
  EXPECT_FALSE(second.Held());

  // Another process is refused too.
  pid_t pid = ::fork();
  if (pid == 0) {
    InstanceLock other;
    ::_exit(other.Acquire(file) ? 1 : 0);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

  // The program's own start is refused with the message.
  tavik::ui::ScriptedDialogs dialogs;
  EXPECT_FALSE(tavik::TakeSingleInstance(second, file, dialogs));
  ASSERT_EQ(dialogs.shown.size(), 1u);
  EXPECT_EQ(dialogs.shown[0].text, "您不能開啟兩個TAVIK");
  EXPECT_EQ(dialogs.shown[0].title, "已有一個TAVIK在運作中");

  first.Release();
  EXPECT_TRUE(tavik::TakeSingleInstance(second, file, dialogs));
  EXPECT_EQ(dialogs.shown.size(), 1u);
  fs::remove(file);
}

TEST(InstanceLock, ReleasedWhenTheHolderDies) {
  const fs::path file = fs::temp_directory_path() / ("tavik_lock_dead_" + std::to_string(::getpid()));
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  pid_t pid = ::fork();
  if (pid == 0) {
    InstanceLock held;
    char c = held.Acquire(file) ? 'y' : 'n';
    (void)!::write(ready[1], &c, 1);
    ::pause();
    ::_exit(0);
  }
  char c = 0;
  ASSERT_EQ(::read(ready[0], &c, 1), 1);
  ASSERT_EQ(c, 'y');
  InstanceLock mine;
  EXPECT_FALSE(mine.Acquire(file));
  ::kill(pid, SIGKILL);
  ::waitpid(pid, nullptr, 0);
  EXPECT_TRUE(mine.Acquire(file));
  ::close(ready[0]);
  ::close(ready[1]);
  fs::remove(file);
}
