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
    // What no image uses is kept for the next one, as long as everything together stays within the budget.
    explicit ImageMemory(std::uint64_t budget)
        : budget_(budget) {}
    ~ImageMemory();
    ImageMemory(const ImageMemory&) = delete;
    ImageMemory& operator=(const ImageMemory&) = delete;

    // Aligned to 64 bytes at least. Throws std::bad_alloc, after everything kept was given away.
    void* take(std::size_t bytes);
    void giveBack(void* block, std::size_t bytes) noexcept;

    // By images, not counting what is kept for the next ones.
    std::uint64_t bytesUsed() const;
    std::uint64_t mostBytesUsed() const; // since it was made

    static void* takeFromSystem(std::size_t bytes);
    static void giveToSystem(void* block, std::size_t bytes) noexcept;

private:
    struct Block {
        void* memory;
        std::size_t bytes;
    };

    void keepAtMost(std::uint64_t bytes) noexcept; // with the lock held
    std::uint64_t room() const { return budget_ > used_ ? budget_ - used_ : 0; }

    mutable std::mutex mutex_;
    std::vector<Block> blocks_; // kept, the oldest first
    const std::uint64_t budget_;
    std::uint64_t kept_ = 0;
    std::uint64_t used_ = 0;
    std::uint64_t mostUsed_ = 0;
};

} // namespace embedded
