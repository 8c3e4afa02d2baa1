// The memory of row stores: blocks that grow often and get large. On Linux large
// ones reserve address space ahead, so that growing copies nothing, in huge pages,
// so that a fault brings two megabytes; elsewhere malloc does.
#pragma once

#include <cstddef>

namespace zov {

/// `block` (null: a new one) with room for `newBytes`, of which the first `oldBytes` stay; smaller
/// is allowed. Throws std::bad_alloc, and then the block is as it was.
void* resizeBlock(void* block, std::size_t oldBytes, std::size_t newBytes);
/// `bytes`: the size of the last resizeBlock().
void freeBlock(void* block, std::size_t bytes) noexcept;

}  // namespace zov
