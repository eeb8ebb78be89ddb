// Mutual exclusion for providers.
#pragma once

#include "OW_config.h"

#include <mutex>

namespace OpenWBEM {

// Recursive: the owning thread may acquire it again and releases it as often.
class OW_COMMON_API Mutex {
public:
    Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void acquire() { m_mutex.lock(); }
    void release() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

} // namespace OpenWBEM
