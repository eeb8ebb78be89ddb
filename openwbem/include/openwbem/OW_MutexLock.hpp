// Holds a Mutex for a scope.
#pragma once

#include "OW_Mutex.hpp"
#include "OW_config.h"

namespace OpenWBEM {

// The mutex must outlive the lock.
class OW_COMMON_API MutexLock {
public:
    explicit MutexLock(Mutex& mutex) : m_mutex(mutex), m_locked(true) { m_mutex.acquire(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;
    ~MutexLock() { release(); }

    // Each does nothing when it is already so.
    void lock() {
        if (!m_locked) {
            m_mutex.acquire();
            m_locked = true;
        }
    }
    void release() {
        if (m_locked) {
            m_locked = false;
            m_mutex.release();
        }
    }

private:
    Mutex& m_mutex;
    bool m_locked;
};

} // namespace OpenWBEM
