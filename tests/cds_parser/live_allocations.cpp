// SPDX-License-Identifier: Apache-2.0

#include "live_allocations.h"

#include <dlfcn.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <type_traits>

// A program's own operators stand in for those of its libraries. They pass everything on to the ones they hide, so that
// a sanitizer goes on seeing it.
namespace {

std::atomic<long> live{0};

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

long live_allocations() {
    return live;
}
