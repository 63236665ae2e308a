// SPDX-License-Identifier: Apache-2.0

/// Which of its calls fail a process that failing_calls.cpp is preloaded into: memory that the process shares with the
/// test that planned it.
#ifndef TESTS_FAULTS_FAULT_PLAN_H
#define TESTS_FAULTS_FAULT_PLAN_H

#include <sys/types.h>

enum class call_kind { allocation, open, read, write, sync, rename, unlink };

struct fault_plan {
    pid_t process;    ///< in which calls count; its children's do not
    call_kind kind;   ///< of the calls that count
    long first;       ///< to fail, counted from 1; 0 for none
    bool also_after;  ///< whether those behind it fail, too
    long calls;       ///< that were made so far
    bool is_known;    ///< to the process
};

/// The variable that tells a process the descriptor of the file that holds its plan.
constexpr const char* fault_plan_variable = "ZEBDB_FAULT_PLAN";

#endif
