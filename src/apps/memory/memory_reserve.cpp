// What happens when memory runs out. Neither Qt's containers nor ICU nor the drivers survive a
// small allocation that fails: they go on with what they don't have. So a piece of memory is held
// back for that moment. With it the program goes on; when it is used up too, the program says so
// and ends, as one that is killed: what was written is whole, what was begun is undone by the next
// session. Large allocations fail as ever, and those who ask for so much handle it.
//
// Linked into the programs alone. The allocating functions of the C library are found behind these,
// so that whatever is loaded in front of it stays in force.
#include "apps/memory/memory_reserve.h"

#include <cstdlib>

#if defined(__GLIBC__) && !defined(__SANITIZE_ADDRESS__)

#include <dlfcn.h>
#include <errno.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

extern "C" void* __libc_malloc(size_t);
extern "C" void* __libc_calloc(size_t, size_t);
extern "C" void* __libc_realloc(void*, size_t);

namespace {

constexpr size_t ReserveBytes = 4 * 1024 * 1024;
constexpr size_t LargeBytes = 1024 * 1024;

using Malloc = void* (*)(size_t);
using Calloc = void* (*)(size_t, size_t);
using Realloc = void* (*)(void*, size_t);

std::atomic<Malloc> nextMalloc = nullptr;
std::atomic<Calloc> nextCalloc = nullptr;
std::atomic<Realloc> nextRealloc = nullptr;
std::atomic<void*> reserve = nullptr;
std::atomic<void (*)()> lastWork = nullptr;

// The look-up of the C library's functions may itself ask for memory.
thread_local bool looking = false;

template <typename Function>
Function found(std::atomic<Function>& next, const char* name) {
    if (const Function known = next.load(std::memory_order_acquire)) return known;
    looking = true;
    void* symbol = dlsym(RTLD_NEXT, name);
    looking = false;
    Function function = nullptr;
    std::memcpy(&function, &symbol, sizeof function);
    next.store(function, std::memory_order_release);
    return function;
}

[[noreturn]] void end() {
    if (void (*work)() = lastWork.load()) work();
    constexpr int Trouble = 2;
    bool told = true;
    for (const char* part : {const_cast<const char*>(program_invocation_short_name),
                             ": There is not enough memory.\n"})
        told = told && write(STDERR_FILENO, part, std::strlen(part)) >= 0;
    _exit(told ? Trouble : Trouble + 1);
}

/// Asks again with the reserve given back. Null for a large piece that isn't there.
template <typename Ask>
void* withReserve(size_t size, Ask ask) {
    if (size >= LargeBytes) return nullptr;
    std::free(reserve.exchange(nullptr));
    void* memory = ask();
    if (!memory) end();
    return memory;
}

}  // namespace

extern "C" void* malloc(size_t size) {
    if (looking) return __libc_malloc(size);
    const Malloc next = found(nextMalloc, "malloc");
    void* memory = next(size);
    return memory ? memory : withReserve(size, [&] { return next(size); });
}

extern "C" void* calloc(size_t count, size_t size) {
    if (looking) return __libc_calloc(count, size);
    const Calloc next = found(nextCalloc, "calloc");
    void* memory = next(count, size);
    if (memory) return memory;
    size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) return nullptr;
    return withReserve(bytes, [&] { return next(count, size); });
}

extern "C" void* realloc(void* old, size_t size) {
    if (looking) return __libc_realloc(old, size);
    const Realloc next = found(nextRealloc, "realloc");
    void* memory = next(old, size);
    if (memory || size == 0) return memory;
    return withReserve(size, [&] { return next(old, size); });
}

namespace zov {

void holdMemoryBack() {
    void* memory = std::malloc(ReserveBytes);
    // Pages that nobody has written to are no memory yet.
    if (memory) std::memset(memory, 1, ReserveBytes);
    std::free(reserve.exchange(memory));
}

void beforeMemoryEnds(void (*work)()) {
    lastWork = work;
}

}  // namespace zov

#else

namespace zov {

void holdMemoryBack() {}
void beforeMemoryEnds(void (*)()) {}

}  // namespace zov

#endif
