#include <utilkit/base/thread_sync.h>

void VCThreadSync::Lock() noexcept {
  m_mutex.lock();
}

bool VCThreadSync::TryLock() noexcept {
  return m_mutex.try_lock();
}

void VCThreadSync::Unlock() noexcept {
  m_mutex.unlock();
}
