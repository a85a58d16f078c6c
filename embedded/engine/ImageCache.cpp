#include "embedded/engine/ImageCache.h"

#include <utility>

namespace embedded {

std::shared_ptr<const Image> ImageCache::find(const ImageKey& key) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto place = places_.find(key);
    if (place == places_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, place->second);
    place->second->lastUse = ++time_;
    return place->second->image;
}

void ImageCache::insert(const ImageKey& key, std::shared_ptr<const Image> image, const void* owner) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto [place, isNew] = places_.emplace(key, entries_.end());
    if (!isNew) return;
    try {
        entries_.push_front({key, std::move(image), owner, ++time_});
    } catch (...) {
        places_.erase(place);
        throw;
    }
    place->second = entries_.begin();
}

void ImageCache::giveUp(std::uint64_t bytes) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::uint64_t freed = 0;
    for (auto entry = entries_.end(); entry != entries_.begin() && freed < bytes;) {
        --entry;
        if (entry->image.use_count() > 1) continue;
        freed += entry->image->bytes();
        entry = erase(entry);
    }
}

void ImageCache::giveUpAllOf(const void* owner) {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (auto entry = entries_.begin(); entry != entries_.end();)
        entry = entry->owner == owner ? erase(entry) : std::next(entry);
    lastRuns_.erase(owner);
}

std::uint64_t ImageCache::now() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return time_;
}

void ImageCache::giveUpUnused(const void* owner, std::uint64_t since, std::uint64_t keptBytes) {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::uint64_t unused = 0;
    for (auto entry = entries_.begin(); entry != entries_.end();) {
        const bool isUnused = entry->owner == owner && entry->lastUse <= since;
        if (isUnused) unused += entry->image->bytes();
        entry = isUnused && unused > keptBytes ? erase(entry) : std::next(entry);
    }
}

std::set<ImageKey> ImageCache::lastRun(const void* owner) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto run = lastRuns_.find(owner);
    return run == lastRuns_.end() ? std::set<ImageKey>() : run->second;
}

void ImageCache::setLastRun(const void* owner, std::set<ImageKey> computed) {
    const std::lock_guard<std::mutex> lock(mutex_);
    lastRuns_[owner] = std::move(computed);
}

ImageCache::Entries::iterator ImageCache::erase(Entries::iterator entry) {
    places_.erase(entry->key);
    return entries_.erase(entry);
}

} // namespace embedded
