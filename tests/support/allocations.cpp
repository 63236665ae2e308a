// SPDX-License-Identifier: Apache-2.0

#include "support/allocations.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

// A program's own operators stand in for those of its libraries. A sanitizer goes on seeing what is behind them.
namespace {

std::atomic<long> live{0};

// The allocations of this thread until the one that fails; none fails at 0 and below.
thread_local long until_failure = 0;

bool fails() noexcept {
    return until_failure > 0 && --until_failure == 0;
}

void* counted(void* memory) noexcept {
    live += memory == nullptr ? 0 : 1;
    return memory;
}

void* allocate(std::size_t size) noexcept {
    return fails() ? nullptr : counted(std::malloc(size == 0 ? 1 : size));
}

// What std::pmr asks for, whatever the alignment is.
void* allocate(std::size_t size, std::align_val_t alignment) noexcept {
    const auto boundary = static_cast<std::size_t>(alignment);
    const std::size_t whole = (size + boundary - 1) / boundary * boundary;
    return fails() ? nullptr : counted(std::aligned_alloc(boundary, whole));
}

void* or_throw(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void release(void* memory) noexcept {
    live -= memory == nullptr ? 0 : 1;
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
    return or_throw(allocate(size));
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    return or_throw(allocate(size, alignment));
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}

void operator delete(void* memory) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
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
