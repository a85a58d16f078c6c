#include "embedded/nodes/ImageMemory.h"

#include <algorithm>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace embedded {
namespace {

constexpr std::size_t hugePage = std::size_t{1} << 21;

// Huge pages save most of the time that the first touch of large blocks takes.
std::align_val_t alignmentOf(std::size_t bytes) {
    return std::align_val_t{bytes >= 2 * hugePage ? hugePage : 64};
}

} // namespace

void* ImageMemory::takeFromSystem(std::size_t bytes) {
    void* const block = ::operator new(bytes, alignmentOf(bytes));
#if defined(__linux__)
    if (bytes >= 2 * hugePage) madvise(block, bytes, MADV_HUGEPAGE); // a wish: failing is no loss
#endif
    return block;
}

void ImageMemory::giveToSystem(void* block, std::size_t bytes) noexcept {
    ::operator delete(block, alignmentOf(bytes));
}

ImageMemory::~ImageMemory() {
    keepAtMost(0);
}

void* ImageMemory::take(std::size_t bytes) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = std::find_if(blocks_.rbegin(), blocks_.rend(),
                                    [bytes](const Block& block) { return block.bytes == bytes; });
    void* block = nullptr;
    if (found != blocks_.rend()) {
        block = found->memory;
        blocks_.erase(std::next(found).base());
        kept_ -= bytes;
    } else {
        const std::uint64_t free = room();
        keepAtMost(free > bytes ? free - bytes : 0);
        try {
            block = takeFromSystem(bytes);
        } catch (const std::bad_alloc&) {
            keepAtMost(0);
            block = takeFromSystem(bytes);
        }
    }
    used_ += bytes;
    mostUsed_ = std::max(mostUsed_, used_);
    return block;
}

void ImageMemory::giveBack(void* block, std::size_t bytes) noexcept {
    const std::lock_guard<std::mutex> lock(mutex_);
    used_ -= bytes;
    try {
        blocks_.push_back({block, bytes});
        kept_ += bytes;
    } catch (const std::bad_alloc&) { // no place in the list
        giveToSystem(block, bytes);
    }
    keepAtMost(room());
}

void ImageMemory::keepAtMost(std::uint64_t bytes) noexcept {
    auto block = blocks_.begin();
    for (; block != blocks_.end() && kept_ > bytes; ++block) {
        giveToSystem(block->memory, block->bytes);
        kept_ -= block->bytes;
    }
    blocks_.erase(blocks_.begin(), block);
}

std::uint64_t ImageMemory::bytesUsed() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return used_;
}

std::uint64_t ImageMemory::mostBytesUsed() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return mostUsed_;
}

} // namespace embedded
