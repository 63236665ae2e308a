// SPDX-License-Identifier: Apache-2.0

#include "support/allocations.h"

#include <dlfcn.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <type_traits>

// A program's own operators stand in for those of its libraries. They pass everything on to the ones they hide, so that
// a sanitizer goes on seeing it.
namespace {

std::atomic<long> live{0};

// The allocations of this thread until the one that fails; none fails at 0 and below.
thread_local long until_failure = 0;

template <class Function>
Function* hidden_by_ours(const char* symbol) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

void release(void* memory) noexcept {
    static auto* const hidden_delete = hidden_by_ours<void(void*)>("_ZdlPv");
    live -= memory == nullptr ? 0 : 1;
    hidden_delete(memory);
}

}  // namespace

void* operator new(std::size_t size) {
    constexpr bool size_is_long = std::is_same_v<std::size_t, unsigned long>;
    static auto* const hidden_new = hidden_by_ours<void*(std::size_t)>(size_is_long ? "_Znwm" : "_Znwj");
    if (until_failure > 0 && --until_failure == 0) {
        throw std::bad_alloc();
    }
    void* const memory = hidden_new(size);
    ++live;
    return memory;
}

void operator delete(void* memory) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

failing_allocation::failing_allocation(long n) {
    until_failure = n;
}

failing_allocation::~failing_allocation() {
    until_failure = 0;
}

bool failing_allocation::fired() const {
    return until_failure == 0;
}

long live_allocations() {
    return live;
}
