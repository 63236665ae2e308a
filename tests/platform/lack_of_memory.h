// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_PLATFORM_LACK_OF_MEMORY_H
#define TESTS_PLATFORM_LACK_OF_MEMORY_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <zeb_db_workstation.h>

#include "support/allocations.h"

/// What a call gave while its n-th allocation found no memory, if it made so many.
struct call_without_memory {
    int code;
    bool fired;
};

template <class Call>
call_without_memory call_failing(long n, Call call) {
    const failing_allocation memory(n);
    const int code = call();
    return {code, memory.fired()};
}

/// Calls again and again, each time after `prepare`, so that each of the allocations of `call` finds no memory once. It
/// has to give SQLITE_NOMEM each time, and `otherwise` in the end, when none is left to fail.
template <class Call, class Prepare>
void expect_lack_of_memory_told(int otherwise, Call call, Prepare prepare) {
    long n = 0;
    call_without_memory came = {};
    do {
        prepare();
        zeb_db_forget_failure();
        came = call_failing(++n, call);
        EXPECT_EQ(came.code, came.fired ? SQLITE_NOMEM : otherwise) << "allocation " << n;
        EXPECT_EQ(zeb_db_first_failure() == nullptr, came.code == SQLITE_OK) << "allocation " << n;
    } while (came.fired);
    EXPECT_GT(n, 1) << "nothing was allocated";
}

template <class Call>
void expect_lack_of_memory_told(int otherwise, Call call) {
    expect_lack_of_memory_told(otherwise, call, [] {});
}

#endif
