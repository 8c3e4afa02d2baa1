#include "data/base/block_memory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

// The address sanitizer sees overruns only in memory that malloc gave.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
#define ZOV_PAGED_BLOCKS
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace zov {
namespace {

void* resizeSmall(void* block, std::size_t bytes) {
    void* moved = std::realloc(block, bytes ? bytes : 1);
    if (!moved) throw std::bad_alloc();
    return moved;
}

}  // namespace

#ifdef ZOV_PAGED_BLOCKS

namespace {

constexpr std::size_t LargeBlock = 256 * 1024;

std::size_t wholePages(std::size_t bytes) {
    static const std::size_t page = std::size_t(sysconf(_SC_PAGESIZE));
    return (bytes + page - 1) / page * page;
}

// Faulting pages in one by one costs several times their zeroing, most of all in virtual machines.
void touchPages(void* block, std::size_t from, std::size_t to) {
#ifdef MADV_POPULATE_WRITE
    if (to > from) madvise(static_cast<char*>(block) + from, to - from, MADV_POPULATE_WRITE);
#else
    (void)block, (void)from, (void)to;
#endif
}

}  // namespace

void* resizeBlock(void* block, std::size_t oldBytes, std::size_t newBytes) {
    const bool wasLarge = block && oldBytes >= LargeBlock;
    const bool isLarge = newBytes >= LargeBlock;
    if (!wasLarge && !isLarge) return resizeSmall(block, newBytes);
    if (!isLarge) {
        void* small = resizeSmall(nullptr, newBytes);
        std::memcpy(small, block, newBytes);
        freeBlock(block, oldBytes);
        return small;
    }
    const std::size_t wanted = wholePages(newBytes);
    if (wasLarge) {
        const std::size_t had = wholePages(oldBytes);
        void* moved = wanted == had ? block : mremap(block, had, wanted, MREMAP_MAYMOVE);
        if (moved == MAP_FAILED) throw std::bad_alloc();
        touchPages(moved, had, wanted);
        return moved;
    }
    void* fresh = mmap(nullptr, wanted, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (fresh == MAP_FAILED) throw std::bad_alloc();
    touchPages(fresh, 0, wanted);
    if (block) {
        std::memcpy(fresh, block, oldBytes);
        std::free(block);
    }
    return fresh;
}

void freeBlock(void* block, std::size_t bytes) noexcept {
    if (block && bytes >= LargeBlock)
        munmap(block, wholePages(bytes));
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
