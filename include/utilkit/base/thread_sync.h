// VCThreadSync: a lock that serialises threads around shared state.
//
// A plain (non-recursive) mutual-exclusion lock: a thread that holds it must
// not lock it again. It also has the lower-case lock/unlock/try_lock names,
// so std::lock_guard and std::scoped_lock can hold it for a scope.
//
//   VCThreadSync logLock;
//   {
//     std::lock_guard<VCThreadSync> hold(logLock);
//     WriteLog(text);
//   }
//
// Ownership: not copyable or movable; it must outlive every thread using it
// and must not be destroyed while locked.
#pragma once

#include <mutex>

#include <utilkit/base/export.h>

class UTILKIT_API VCThreadSync {
 public:
  VCThreadSync() = default;
  VCThreadSync(const VCThreadSync&) = delete;
  VCThreadSync& operator=(const VCThreadSync&) = delete;

  // Waits until the lock is free and takes it. A lock the system refuses
  // (only through misuse, such as locking it twice) ends the process.
  void Lock() noexcept;
  // Takes the lock if it is free; false (at once) when another thread holds it.
  bool TryLock() noexcept;
  // Releases the lock; only the holding thread may call it.
  void Unlock() noexcept;

  void lock() noexcept { Lock(); }
  bool try_lock() noexcept { return TryLock(); }
  void unlock() noexcept { Unlock(); }

 private:
  std::mutex m_mutex;
};
