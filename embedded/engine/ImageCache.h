// Images of earlier runs, so that a run need not compute again what has not changed. Shared by the handles of
// a context.
#pragma once

#include "embedded/engine/ImageKey.h"
#include "embedded/nodes/Image.h"

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>

namespace embedded {

// Safe from any thread.
class ImageCache {
public:
    // Null when there is none. What was found or put in last is given up last.
    std::shared_ptr<const Image> find(const ImageKey& key);
    void insert(const ImageKey& key, std::shared_ptr<const Image> image, const void* owner);

    // Gives up images that nobody else holds until at least this many bytes are free.
    void giveUp(std::uint64_t bytes);
    void giveUpAllOf(const void* owner);

    // Of the owner's images that were not used since that time, only so many bytes are kept.
    std::uint64_t now() const;
    void giveUpUnused(const void* owner, std::uint64_t since, std::uint64_t keptBytes);

    // What belonged to the last run of the owner.
    std::set<ImageKey> lastRun(const void* owner) const;
    void setLastRun(const void* owner, std::set<ImageKey> computed);

private:
    struct Entry {
        ImageKey key;
        std::shared_ptr<const Image> image;
        const void* owner;
        std::uint64_t lastUse;
    };
    using Entries = std::list<Entry>;

    Entries::iterator erase(Entries::iterator entry);

    mutable std::mutex mutex_;
    Entries entries_; // the one used last is at the front
    std::map<ImageKey, Entries::iterator> places_;
    std::map<const void*, std::set<ImageKey>> lastRuns_; // by owner
    std::uint64_t time_ = 0;                             // counts uses
};

} // namespace embedded
