#include "embedded/engine/ImageCache.h"

#include <utility>

namespace embedded {

std::shared_ptr<const Image> ImageCache::find(const ImageKey& key) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto place = places_.find(key);
    if (place == places_.end()) return nullptr;
    entries_.splice(entries_.begin(), entries_, place->second);
    return place->second->image;
}

void ImageCache::insert(const ImageKey& key, std::shared_ptr<const Image> image, const void* owner) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto [place, isNew] = places_.emplace(key, entries_.end());
    if (!isNew) return;
    try {
        entries_.push_front({key, std::move(image), owner});
    } catch (...) {
        places_.erase(place);
        throw;
    }
    place->second = entries_.begin();
    bytes_ += entries_.front().image->bytes();
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
}

std::uint64_t ImageCache::bytes() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return bytes_;
}

ImageCache::Entries::iterator ImageCache::erase(Entries::iterator entry) {
    bytes_ -= entry->image->bytes();
    places_.erase(entry->key);
    return entries_.erase(entry);
}

} // namespace embedded
