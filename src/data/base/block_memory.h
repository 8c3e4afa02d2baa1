// The memory of row stores: blocks that grow often and get large. On Linux large
// ones reserve address space ahead, so that growing copies nothing, in huge pages,
// so that a fault brings two megabytes; elsewhere malloc does.
#pragma once

#include <cstddef>

#if defined(__GNUC__)
#define ZOV_ALWAYS_INLINE [[gnu::always_inline]] inline
#else
#define ZOV_ALWAYS_INLINE inline
#endif

namespace zov {

/// `block` (null: a new one) with room for `newBytes`, of which the first `oldBytes` stay; smaller
/// is allowed. Throws std::bad_alloc, and then the block is as it was.
void* resizeBlock(void* block, std::size_t oldBytes, std::size_t newBytes);
/// `bytes`: the size of the last resizeBlock().
void freeBlock(void* block, std::size_t bytes) noexcept;

/// Has the processor fetch a line of memory that will be needed soon. A hint: whatever the address
/// is, nothing but time changes. Functions that do nothing else must be inline, since GCC takes
/// them for functions without an effect, and leaves calls of them out.
ZOV_ALWAYS_INLINE void prefetchMemory(const void* at) {
#if defined(__GNUC__)
    __builtin_prefetch(at);
#else
    static_cast<void>(at);
#endif
}

}  // namespace zov
