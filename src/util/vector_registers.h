// A remedy for slow vector code behind calls into Qt. On processors with wide AES
// instructions qHash of a text (every QHash with texts as keys, Qt 6.4) returns
// with the upper halves of the vector registers in use. From then on each SSE
// instruction of the thread, and of threads that it starts, has to keep them, and
// waits for the register's former value (Intel's optimization manual, "Mixing
// Intel AVX code with Intel SSE code"). A loop that reads a million rows
// takes a quarter more time.
#pragma once

namespace zov {

/// Gives the upper halves up, which nobody relies on between two calls. Costs nothing worth
/// counting; to be called before work on many rows, not for each of them.
inline void releaseWideRegisters() {
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__AVX__)
    if (__builtin_cpu_supports("avx")) asm volatile("vzeroupper");
#endif
}

}  // namespace zov
