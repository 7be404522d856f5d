#pragma once

#include <pthread.h>

// Part of Platform.h. Inline, because the containers take a mutex around operations of a few instructions.

namespace Platform
{

inline bool WaitMutex(MutexHandle mutex)
{
    return mutex && pthread_mutex_lock(static_cast<pthread_mutex_t *>(mutex)) == 0;
}

inline void ReleaseMutexHold(MutexHandle mutex)
{
    if (mutex)
        pthread_mutex_unlock(static_cast<pthread_mutex_t *>(mutex));
}

} // namespace Platform
