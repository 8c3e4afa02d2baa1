// The memory of row stores: blocks that grow often and get large. On Linux large
// ones come straight from the system, so that growing moves page tables instead of
// bytes and new pages arrive many at a time; elsewhere malloc does.
#pragma once

#include <cstddef>

namespace zov {

/// `block` (null: a new one) with room for `newBytes`, of which the first `oldBytes` stay; smaller
/// is allowed. Throws std::bad_alloc, and then the block is as it was.
void* resizeBlock(void* block, std::size_t oldBytes, std::size_t newBytes);
/// `bytes`: the size of the last resizeBlock().
void freeBlock(void* block, std::size_t bytes) noexcept;

}  // namespace zov
