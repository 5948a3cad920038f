#include "platform/lv2/urid_map.h"

#include <functional>
#include <mutex>
#include <new>

namespace orvane::platform::lv2 {

UridMap::~UridMap() {
    for (LV2_URID urid = 1; urid <= last; ++urid)
        delete entries[urid].load();
}

UridMap::Entry* UridMap::find(const Bucket& bucket, std::string_view uri) noexcept {
    Entry* entry = bucket.load(std::memory_order_acquire);
    while (entry != nullptr && entry->uri != uri)
        entry = entry->next;
    return entry;
}

LV2_URID UridMap::map(std::string_view uri) noexcept try {
    Bucket& bucket = buckets[std::hash<std::string_view>()(uri) % buckets.size()];
    if (const Entry* const known = find(bucket, uri)) return known->urid;

    auto made = std::make_unique<Entry>(Entry{std::string(uri)});
    const std::scoped_lock lock(adding);
    if (const Entry* const known = find(bucket, uri)) return known->urid;
    if (last == capacity) return 0;
    made->urid = ++last;
    made->next = bucket.load(std::memory_order_relaxed);
    Entry* const entry = made.release();
    entries[entry->urid].store(entry, std::memory_order_release);
    bucket.store(entry, std::memory_order_release);
    return entry->urid;
} catch (const std::bad_alloc&) {
    return 0;
}

const char* UridMap::unmap(LV2_URID urid) const noexcept {
    if (urid == 0 || urid > capacity) return nullptr;
    const Entry* const entry = entries[urid].load(std::memory_order_acquire);
    return entry == nullptr ? nullptr : entry->uri.c_str();
}

} // namespace orvane::platform::lv2
