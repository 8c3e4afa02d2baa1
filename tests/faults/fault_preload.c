// Makes one system call of a program fail, or kills the program at it. Put in front of a program by
// LD_PRELOAD; environment variables say what happens:
//   ZOV_FAULT_CALL   open, read, pread, write, pwrite, fsync, rename, ftruncate, mmap or malloc
//   ZOV_FAULT_AT     the call that fails, from 1; 0 counts only
//   ZOV_FAULT_ERRNO  its error as a number, or "kill": the process ends there and then
//   ZOV_FAULT_LASTS  set: all calls behind that one fail as well
//   ZOV_FAULT_PATH   count only calls on files whose path holds this text (not for malloc)
//   ZOV_FAULT_NOTE   a file that gets the number of calls at the program's end
// fdatasync counts as fsync, renameat2, link and linkat as rename, calloc and realloc as malloc.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

enum Call { NoCall, Open, Read, Pread, Write, Pwrite, Fsync, Rename, Ftruncate, Mmap, Malloc };

static enum Call wanted = NoCall;
static long failAt = 0;
static int failWith = EIO;
static int killThere = 0;
static int lasts = 0;
static const char* pathPart = NULL;
static const char* noteFile = NULL;
static atomic_long calls = 0;

extern void* __libc_malloc(size_t);
extern void* __libc_calloc(size_t, size_t);
extern void* __libc_realloc(void*, size_t);

__attribute__((constructor)) static void begin(void) {
    static const char* const names[] = {"",      "open",   "read",      "pread", "write", "pwrite",
                                        "fsync", "rename", "ftruncate", "mmap",  "malloc"};
    const char* call = getenv("ZOV_FAULT_CALL");
    const char* at = getenv("ZOV_FAULT_AT");
    const char* error = getenv("ZOV_FAULT_ERRNO");
    if (!call) return;
    failAt = at ? atol(at) : 0;
    killThere = error && strcmp(error, "kill") == 0;
    failWith = error && !killThere ? atoi(error) : EIO;
    lasts = getenv("ZOV_FAULT_LASTS") != NULL;
    pathPart = getenv("ZOV_FAULT_PATH");
    noteFile = getenv("ZOV_FAULT_NOTE");
    for (int i = 1; i <= Malloc; ++i)
        if (strcmp(call, names[i]) == 0) wanted = (enum Call)i;
}

__attribute__((destructor)) static void end(void) {
    if (wanted == NoCall || !noteFile) return;
    wanted = NoCall;
    char text[32];
    const int length = snprintf(text, sizeof text, "%ld\n", atomic_load(&calls));
    const int file = (int)syscall(SYS_openat, AT_FDCWD, noteFile, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0) return;
    if (syscall(SYS_write, file, text, (size_t)length) < 0) return;
    syscall(SYS_close, file);
}

// Whether this is the one.
static int strikes(void) {
    const long call = atomic_fetch_add(&calls, 1) + 1;
    if (call != failAt && !(lasts && failAt > 0 && call > failAt)) return 0;
    if (killThere) syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    errno = failWith;
    return 1;
}

static int concernsPath(const char* path) {
    return !pathPart || (path && strstr(path, pathPart));
}

static int concernsFile(int file) {
    if (!pathPart) return 1;
    char link[64], path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const long length = syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
    if (length < 0) return 0;
    path[length] = 0;
    return strstr(path, pathPart) != NULL;
}

static int failsOnPath(enum Call call, const char* path) {
    return wanted == call && concernsPath(path) && strikes();
}
static int failsOnFile(enum Call call, int file) {
    return wanted == call && concernsFile(file) && strikes();
}

#define REAL(type, name, ...)                        \
    static type (*real)(__VA_ARGS__) = NULL;         \
    if (!real) real = (type(*)(__VA_ARGS__))dlsym(RTLD_NEXT, name)

static int modeOf(int flags, va_list* rest) {
    return (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(*rest, int) : 0;
}

#define OPEN(name)                                   \
    int name(const char* path, int flags, ...) {     \
        va_list rest;                                \
        va_start(rest, flags);                       \
        const int mode = modeOf(flags, &rest);       \
        va_end(rest);                                \
        if (failsOnPath(Open, path)) return -1;      \
        REAL(int, #name, const char*, int, ...);     \
        return real(path, flags, mode);              \
    }
OPEN(open)
OPEN(open64)

#define OPENAT(name)                                         \
    int name(int folder, const char* path, int flags, ...) { \
        va_list rest;                                        \
        va_start(rest, flags);                               \
        const int mode = modeOf(flags, &rest);               \
        va_end(rest);                                        \
        if (failsOnPath(Open, path)) return -1;              \
        REAL(int, #name, int, const char*, int, ...);        \
        return real(folder, path, flags, mode);              \
    }
OPENAT(openat)
OPENAT(openat64)

ssize_t read(int file, void* bytes, size_t size) {
    if (failsOnFile(Read, file)) return -1;
    REAL(ssize_t, "read", int, void*, size_t);
    return real(file, bytes, size);
}
ssize_t write(int file, const void* bytes, size_t size) {
    if (failsOnFile(Write, file)) return -1;
    REAL(ssize_t, "write", int, const void*, size_t);
    return real(file, bytes, size);
}
#define PREAD(name, offset)                                            \
    ssize_t name(int file, void* bytes, size_t size, offset at) {      \
        if (failsOnFile(Pread, file)) return -1;                       \
        REAL(ssize_t, #name, int, void*, size_t, offset);              \
        return real(file, bytes, size, at);                            \
    }
PREAD(pread, off_t)
PREAD(pread64, off64_t)
#define PWRITE(name, offset)                                           \
    ssize_t name(int file, const void* bytes, size_t size, offset at) { \
        if (failsOnFile(Pwrite, file)) return -1;                      \
        REAL(ssize_t, #name, int, const void*, size_t, offset);        \
        return real(file, bytes, size, at);                            \
    }
PWRITE(pwrite, off_t)
PWRITE(pwrite64, off64_t)

#define SYNC(name)                                \
    int name(int file) {                          \
        if (failsOnFile(Fsync, file)) return -1;  \
        REAL(int, #name, int);                    \
        return real(file);                        \
    }
SYNC(fsync)
SYNC(fdatasync)

int rename(const char* from, const char* to) {
    if (failsOnPath(Rename, to)) return -1;
    REAL(int, "rename", const char*, const char*);
    return real(from, to);
}
int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    if (failsOnPath(Rename, to)) return -1;
    REAL(int, "renameat2", int, const char*, int, const char*, unsigned);
    return real(fromFolder, from, toFolder, to, flags);
}
int link(const char* from, const char* to) {
    if (failsOnPath(Rename, to)) return -1;
    REAL(int, "link", const char*, const char*);
    return real(from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    if (failsOnPath(Rename, to)) return -1;
    REAL(int, "linkat", int, const char*, int, const char*, int);
    return real(fromFolder, from, toFolder, to, flags);
}

#define TRUNCATE(name, offset)                        \
    int name(int file, offset size) {                 \
        if (failsOnFile(Ftruncate, file)) return -1;  \
        REAL(int, #name, int, offset);                \
        return real(file, size);                      \
    }
TRUNCATE(ftruncate, off_t)
TRUNCATE(ftruncate64, off64_t)

#define MMAP(name, offset)                                                            \
    void* name(void* place, size_t size, int protection, int flags, int file, offset at) { \
        if (wanted == Mmap && file >= 0 && failsOnFile(Mmap, file)) return MAP_FAILED; \
        REAL(void*, #name, void*, size_t, int, int, int, offset);                     \
        return real(place, size, protection, flags, file, at);                        \
    }
MMAP(mmap, off_t)
MMAP(mmap64, off64_t)

void* malloc(size_t size) {
    if (wanted == Malloc && strikes()) return NULL;
    return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
    if (wanted == Malloc && strikes()) return NULL;
    return __libc_calloc(count, size);
}
void* realloc(void* block, size_t size) {
    if (wanted == Malloc && strikes()) return NULL;
    return __libc_realloc(block, size);
}
