#include <utilkit/base/thread_sync.h>

#include <gtest/gtest.h>

#include <mutex>
#include <thread>

namespace {

bool TryLockFromAnotherThread(VCThreadSync& sync) {
  bool taken = false;
  std::thread other([&] {
    taken = sync.TryLock();
    if (taken) sync.Unlock();
  });
  other.join();
  return taken;
}

TEST(ThreadSyncTest, HeldLockShutsOutOtherThreadsUntilReleased) {
  VCThreadSync sync;
  sync.Lock();
  EXPECT_FALSE(TryLockFromAnotherThread(sync));
  sync.Unlock();
  EXPECT_TRUE(TryLockFromAnotherThread(sync));
}

TEST(ThreadSyncTest, StandardGuardsHoldItForAScope) {
  VCThreadSync sync;
  {
    std::lock_guard<VCThreadSync> hold(sync);
    EXPECT_FALSE(TryLockFromAnotherThread(sync));
  }
  EXPECT_TRUE(TryLockFromAnotherThread(sync));
  {
    std::unique_lock<VCThreadSync> hold(sync, std::try_to_lock);
    EXPECT_TRUE(hold.owns_lock());
    EXPECT_FALSE(TryLockFromAnotherThread(sync));
  }
  EXPECT_TRUE(TryLockFromAnotherThread(sync));
}

}  // namespace
