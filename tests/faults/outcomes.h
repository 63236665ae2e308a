// SPDX-License-Identifier: Apache-2.0

/// Makes each call of a process fail in turn, and tells what came of it.
#ifndef TESTS_FAULTS_OUTCOMES_H
#define TESTS_FAULTS_OUTCOMES_H

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "faults/fault_plan.h"

/// A process whose calls fail.
struct subject {
    std::vector<std::string> command;        ///< the program and its arguments
    std::string database;                    ///< whose rows tell the outcome; empty for a process that writes none
    std::function<void()> prepare;           ///< makes its files what they are to be before each run
    std::set<std::string> outcomes;          ///< that are allowed
    std::set<std::string> lasting_outcomes;  ///< that are allowed besides when the calls that follow fail, too
    std::set<std::string> file_outcomes;     ///< that are allowed besides when it is no allocation that fails
};

/// Fails the calls of one kind: each alone, and all from each on. The test fails for an outcome that is not allowed.
/// Without faults, the process has to end with `status`. Prints how often each outcome came: the exit status, whether
/// there was a message, and which inventory there is or whether the output is that of a process that nothing disturbs.
///
/// The variable ZEBDB_FAULTS is how many places to try, spread evenly over all calls; "all" for every call.
void expect_outcomes(const subject& tried, int status, call_kind kind);

#endif
