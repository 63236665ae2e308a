// SPDX-License-Identifier: Apache-2.0

// Preloaded into a program, makes calls of the C library fail as a fault_plan tells: there is no memory, the disk fails
// or is full. Standard error never fails, so that the program's message can be read.

// Each function of the C library has the name that it is called by.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdio.h>
#include <sys/mman.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>

#include "faults/fault_plan.h"

// What the C library's own functions are called within it.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {

// Allocations of several threads may be counted as one. No test plans faults for threads that compete.
fault_plan* plan = nullptr;

__attribute__((constructor)) void take_plan() {
    const char* descriptor = std::getenv(fault_plan_variable);
    if (descriptor == nullptr) {
        return;
    }
    void* shared = mmap(nullptr, sizeof(fault_plan), PROT_READ | PROT_WRITE, MAP_SHARED, std::atoi(descriptor), 0);
    if (shared != MAP_FAILED && static_cast<fault_plan*>(shared)->process == getpid()) {
        plan = static_cast<fault_plan*>(shared);
        plan->is_known = true;
    }
}

// Whether this call fails; then with `error`.
bool fails(call_kind kind, int error) {
    if (plan == nullptr || plan->kind != kind) {
        return false;
    }
    const long call = ++plan->calls;
    if (plan->first == 0 || call < plan->first || (call > plan->first && !plan->also_after)) {
        return false;
    }
    errno = error;
    return true;
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The third argument of open(), where there is one.
int mode_of(int flags, va_list arguments) {
    return (flags & (O_CREAT | __O_TMPFILE)) == 0 ? 0 : va_arg(arguments, int);
}

}  // namespace

void* malloc(std::size_t size) {
    return fails(call_kind::allocation, ENOMEM) ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    return fails(call_kind::allocation, ENOMEM) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    return fails(call_kind::allocation, ENOMEM) ? nullptr : __libc_realloc(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return fails(call_kind::allocation, ENOMEM) ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

// Each of these functions takes the place of the C library's function of that name.
#define REPLACE(kind, error, failure, result, name, parameters, arguments) \
    extern "C" result name parameters {                                    \
        static const auto call = next<result parameters>(#name);           \
        return fails(call_kind::kind, error) ? failure : call arguments;   \
    }
#define REPLACE_OPEN(name)                                                 \
    extern "C" int name(const char* path, int flags, ...) {                \
        static const auto call = next<int(const char*, int, ...)>(#name);  \
        va_list arguments;                                                 \
        va_start(arguments, flags);                                        \
        const int mode = mode_of(flags, arguments);                        \
        va_end(arguments);                                                 \
        return fails(call_kind::open, EIO) ? -1 : call(path, flags, mode); \
    }
#define REPLACE_WRITE(result, failure, name, parameters, file, arguments)                             \
    extern "C" result name parameters {                                                               \
        static const auto call = next<result parameters>(#name);                                      \
        return (file) != STDERR_FILENO && fails(call_kind::write, ENOSPC) ? failure : call arguments; \
    }

REPLACE_OPEN(open)
REPLACE_OPEN(open64)
REPLACE(open, EIO, nullptr, FILE*, fopen, (const char* path, const char* mode), (path, mode))
REPLACE(open, EIO, nullptr, FILE*, fopen64, (const char* path, const char* mode), (path, mode))

REPLACE(read, EIO, -1, ssize_t, read, (int file, void* data, std::size_t size), (file, data, size))
REPLACE(read, EIO, -1, ssize_t, pread, (int file, void* data, std::size_t size, off_t at), (file, data, size, at))
REPLACE(read, EIO, -1, ssize_t, pread64, (int file, void* data, std::size_t size, off64_t at), (file, data, size, at))
REPLACE(read, EIO, 0, std::size_t, fread, (void* data, std::size_t size, std::size_t count, FILE* file),
        (data, size, count, file))
REPLACE(read, EIO, -1, ssize_t, getline, (char** line, std::size_t* size, FILE* file), (line, size, file))

REPLACE_WRITE(ssize_t, -1, write, (int file, const void* data, std::size_t size), file, (file, data, size))
REPLACE_WRITE(ssize_t, -1, writev, (int file, const iovec* parts, int count), file, (file, parts, count))
REPLACE_WRITE(ssize_t, -1, pwrite, (int file, const void* data, std::size_t size, off_t at), file,
              (file, data, size, at))
REPLACE_WRITE(ssize_t, -1, pwrite64, (int file, const void* data, std::size_t size, off64_t at), file,
              (file, data, size, at))
REPLACE_WRITE(int, -1, ftruncate, (int file, off_t size), file, (file, size))
REPLACE_WRITE(int, -1, ftruncate64, (int file, off64_t size), file, (file, size))
REPLACE_WRITE(std::size_t, 0, fwrite, (const void* data, std::size_t size, std::size_t count, FILE* file), fileno(file),
              (data, size, count, file))

REPLACE(sync, EIO, -1, int, fsync, (int file), (file))
REPLACE(sync, EIO, -1, int, fdatasync, (int file), (file))
REPLACE(rename, EIO, -1, int, rename, (const char* from, const char* to), (from, to))
REPLACE(unlink, EIO, -1, int, unlink, (const char* path), (path))
REPLACE(unlink, EIO, -1, int, remove, (const char* path), (path))
