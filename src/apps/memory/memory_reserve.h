// A program that runs out of memory says so and ends with status 2.
#pragma once

namespace zov {

/// Holds the reserve; at a program's start. Nothing where the C library isn't known.
void holdMemoryBack();

/// What is done before the program ends for want of memory; it can't allocate any.
void beforeMemoryEnds(void (*work)());

}  // namespace zov
