#include "platform/base/unfair_lock.h"

#include <system_error>

namespace orvane::platform {

UnfairLock::UnfairLock() {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    const int status = pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    if (status != 0) throw std::system_error(status, std::generic_category(), "Could not make a lock");
}

UnfairLock::~UnfairLock() {
    pthread_mutex_destroy(&mutex);
}

} // namespace orvane::platform
