#pragma once

#include <pthread.h>

#include <cstddef>

namespace orvane::test {

/// While it lives, the process cannot start threads, because there is no address space for their stacks.
class NoThreads final {
  public:
    NoThreads() {
        pthread_getattr_default_np(&before);
        pthread_attr_t endless;
        pthread_attr_init(&endless);
        pthread_attr_setstacksize(&endless, std::size_t{1} << 46U);
        pthread_setattr_default_np(&endless);
        pthread_attr_destroy(&endless);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before);
        pthread_attr_destroy(&before);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

  private:
    pthread_attr_t before{};
};

} // namespace orvane::test
