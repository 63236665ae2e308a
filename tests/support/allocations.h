// SPDX-License-Identifier: Apache-2.0

/// What the process, its libraries included, makes with `new`, in test programs that are built with allocations.cpp.
#ifndef TESTS_SUPPORT_ALLOCATIONS_H
#define TESTS_SUPPORT_ALLOCATIONS_H

/// How many objects have been made and not deleted yet, for leaks that the address sanitizer is told to let pass.
long live_allocations();

/// While it lives, the n-th allocation of this thread from now on, counted from 1, finds no memory.
class failing_allocation {
public:
    explicit failing_allocation(long n);
    ~failing_allocation();
    failing_allocation(const failing_allocation&) = delete;
    failing_allocation& operator=(const failing_allocation&) = delete;

    /// Whether there were so many.
    bool fired() const;
};

#endif
