// Memory of images that is used again. A fresh page costs the system more time than a kernel needs to fill
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

namespace embedded {

// Safe from any thread. Images hold it by std::shared_ptr, so it outlives them.
class ImageMemory {
public:
    // Keeps at most this many bytes that no image uses.
    explicit ImageMemory(std::size_t mostKept)
        : mostKept_(mostKept) {}
    ~ImageMemory();
    ImageMemory(const ImageMemory&) = delete;
    ImageMemory& operator=(const ImageMemory&) = delete;

    // Aligned to 64 bytes at least. Throws std::bad_alloc, after everything kept was given away.
    void* take(std::size_t bytes);
    void giveBack(void* block, std::size_t bytes) noexcept;

    // In use by images, and kept for the next ones.
    std::uint64_t bytesUsed() const;
    std::uint64_t mostBytesUsed() const; // since it was made
    std::uint64_t bytesKept() const;

    static void* takeFromSystem(std::size_t bytes);
    static void giveToSystem(void* block, std::size_t bytes) noexcept;

private:
    struct Block {
        void* memory;
        std::size_t bytes;
    };

    void giveAwayUntil(std::size_t kept) noexcept; // with the lock held

    mutable std::mutex mutex_;
    std::vector<Block> blocks_; // kept, the oldest first
    std::size_t mostKept_;
    std::size_t kept_ = 0;
    std::uint64_t used_ = 0;
    std::uint64_t mostUsed_ = 0;
};

} // namespace embedded
