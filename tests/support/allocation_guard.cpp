#include "platform/base/audio_thread_scope.h"
#include "support/failing_allocation.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace {

thread_local bool isRefusing = false;

void refuseOnAudioThread(const char* call) noexcept {
    if (isRefusing || !orvane::platform::AudioThreadScope::isOpen()) return;
    isRefusing = true;
    const char* const parts[] = {"An audio thread called ", call, ".\n"};
    for (const char* part : parts)
        if (write(STDERR_FILENO, part, std::strlen(part)) < 0) break;
    std::abort();
}

/// Counts down to the allocation that fails; 0 if none does.
thread_local std::size_t untilFailure = 0;
/// The smallest size that counts.
thread_local std::size_t smallestCounted = 0;

/// Whether this allocation must fail.
bool isTheFailingOne(std::size_t size) noexcept {
    return untilFailure > 0 && size >= smallestCounted && --untilFailure == 0;
}

} // namespace

namespace orvane::test {

FailingAllocation::FailingAllocation(std::size_t nth, std::size_t smallest) {
    untilFailure = nth;
    smallestCounted = smallest;
}

FailingAllocation::~FailingAllocation() {
    untilFailure = 0;
}

bool FailingAllocation::hasHappened() const {
    return untilFailure == 0;
}

} // namespace orvane::test

void* operator new(std::size_t size) {
    refuseOnAudioThread("operator new");
    if (isTheFailingOne(size)) throw std::bad_alloc();
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    refuseOnAudioThread("operator new");
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    refuseOnAudioThread("operator new");
    if (isTheFailingOne(size)) throw std::bad_alloc();
    const auto step = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step - 1) / step * step)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr) refuseOnAudioThread("operator delete");
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    ::operator delete(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    ::operator delete(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    ::operator delete(memory);
}

// A sanitizer replaces malloc; allocations by C++ code are still seen above.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) {
    refuseOnAudioThread("malloc");
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    refuseOnAudioThread("calloc");
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    refuseOnAudioThread("realloc");
    return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    refuseOnAudioThread("aligned_alloc");
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    refuseOnAudioThread("posix_memalign");
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? 12 : 0; // ENOMEM
}

void free(void* memory) {
    if (memory != nullptr) refuseOnAudioThread("free");
    __libc_free(memory);
}

} // extern "C"

#endif
