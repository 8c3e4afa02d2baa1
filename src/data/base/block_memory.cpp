#include "data/base/block_memory.h"

#include <cstdlib>
#include <cstring>
#include <new>

// The address sanitizer sees overruns only in memory that malloc gave.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__) && __SIZEOF_POINTER__ == 8
#define ZOV_RESERVED_BLOCKS
#include <sys/mman.h>

#include <cstdint>
#endif

namespace zov {
namespace {

void* resizeSmall(void* block, std::size_t bytes) {
    void* moved = std::realloc(block, bytes ? bytes : 1);
    if (!moved) throw std::bad_alloc();
    return moved;
}

}  // namespace

#ifdef ZOV_RESERVED_BLOCKS

namespace {

constexpr std::size_t LargeBlock = std::size_t(2) << 20;
constexpr std::size_t HugePage = std::size_t(2) << 20;
constexpr std::size_t SmallPage = 4096;
constexpr std::size_t FirstReservation = std::size_t(16) << 20;

bool isLarge(std::size_t bytes) {
    return bytes >= LargeBlock;
}

/// Address space for a block of this size; only touched pages of it take memory. A block grows four
/// times before it moves, and the size tells the reservation, so nothing else is kept.
std::size_t reservationFor(std::size_t bytes) {
    std::size_t reserved = FirstReservation;
    while (reserved < bytes) reserved *= 4;
    return reserved;
}

char* reserve(std::size_t bytes) {
    void* region = mmap(nullptr, bytes + HugePage, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (region == MAP_FAILED) throw std::bad_alloc();
    // Cut to a huge page's border on both sides: one fault then brings two megabytes.
    char* const start = static_cast<char*>(region);
    const std::size_t before =
        (HugePage - reinterpret_cast<std::uintptr_t>(start) % HugePage) % HugePage;
    if (before) munmap(start, before);
    if (before != HugePage) munmap(start + before + bytes, HugePage - before);
    madvise(start + before, bytes, MADV_HUGEPAGE);
    return start + before;
}

}  // namespace

void* resizeBlock(void* block, std::size_t oldBytes, std::size_t newBytes) {
    const bool wasLarge = block && isLarge(oldBytes);
    if (!wasLarge && !isLarge(newBytes)) return resizeSmall(block, newBytes);
    if (!wasLarge) {
        char* fresh = reserve(reservationFor(newBytes));
        if (block) std::memcpy(fresh, block, oldBytes < newBytes ? oldBytes : newBytes);
        std::free(block);
        return fresh;
    }
    if (!isLarge(newBytes)) {
        void* small = resizeSmall(nullptr, newBytes);
        std::memcpy(small, block, newBytes);
        freeBlock(block, oldBytes);
        return small;
    }
    char* const start = static_cast<char*>(block);
    const std::size_t had = reservationFor(oldBytes);
    const std::size_t wanted = reservationFor(newBytes);
    if (wanted > had) {
        char* fresh = reserve(wanted);
        if (mremap(block, had, had, MREMAP_MAYMOVE | MREMAP_FIXED, fresh) == MAP_FAILED) {
            munmap(fresh, wanted);
            throw std::bad_alloc();
        }
        return fresh;
    }
    if (wanted < had) munmap(start + wanted, had - wanted);
    if (newBytes < oldBytes) {
        const std::size_t kept = (newBytes + SmallPage - 1) / SmallPage * SmallPage;
        if (kept < wanted) madvise(start + kept, wanted - kept, MADV_DONTNEED);
    }
    return block;
}

void freeBlock(void* block, std::size_t bytes) noexcept {
    if (block && isLarge(bytes))
        munmap(block, reservationFor(bytes));
    else
        std::free(block);
}

#else

void* resizeBlock(void* block, std::size_t, std::size_t newBytes) {
    return resizeSmall(block, newBytes);
}

void freeBlock(void* block, std::size_t) noexcept {
    std::free(block);
}

#endif

}  // namespace zov
