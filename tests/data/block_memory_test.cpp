// The memory of row stores keeps what was written, whichever way its blocks grow and shrink.
#include "data/base/block_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace zov {
namespace {

constexpr size_t MB = size_t(1) << 20;

// A byte that tells its place, so that a page too few or one moved shows.
unsigned char patternAt(size_t place) {
    return static_cast<unsigned char>(place * 31 + place / 4096);
}

TEST(BlockMemory, KeepsItsBytesAcrossEverySize) {
    // Around the sizes at which a block becomes a large one, and at which its room is used up.
    const size_t sizes[] = {
        1,           4096,         MB,          2 * MB - 1, 2 * MB,      2 * MB + 1,
        5 * MB + 77, 16 * MB,      16 * MB + 1, 70 * MB,    20 * MB - 5, 3 * MB + 1,
        17 * MB,     2 * MB + 123, 100,         0,          6 * MB,      64 * MB + 4095};
    unsigned char* block = nullptr;
    size_t had = 0;
    for (const size_t size : sizes) {
        block = static_cast<unsigned char*>(resizeBlock(block, had, size));
        const size_t kept = std::min(had, size);
        size_t wrong = 0;
        for (size_t i = 0; i < kept; ++i) wrong += block[i] != patternAt(i);
        ASSERT_EQ(wrong, 0u) << "from " << had << " to " << size << " bytes";
        for (size_t i = kept; i < size; ++i) block[i] = patternAt(i);
        had = size;
    }
    freeBlock(block, had);
    freeBlock(nullptr, 0);
}

TEST(BlockMemory, TooMuchIsAFailureThatKeepsTheBlock) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer ends the program instead";
#endif
    auto* block = static_cast<unsigned char*>(resizeBlock(nullptr, 0, 3 * MB));
    std::fill_n(block, 3 * MB, 0x5A);
    EXPECT_THROW(resizeBlock(block, 3 * MB, size_t(1) << 60), std::bad_alloc);
    EXPECT_EQ(std::count(block, block + 3 * MB, 0x5A), ptrdiff_t(3 * MB));
    freeBlock(block, 3 * MB);
}

}  // namespace
}  // namespace zov
