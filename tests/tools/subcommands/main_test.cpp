// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <string>

#include "support/built.h"
#include "support/cds_hardware.h"
#include "tools/subcommands/command_test.h"

class Process : public command_test {
protected:
    /// What stands behind the first three descriptors of a command that was started with these redirections, and how
    /// it is open: 0 for reading, 1 for writing.
    std::string standard_descriptors(const std::string& redirections) const {
        return run("mkfifo pipe; echo >file; zebdb-cds dump pipe " + redirections + R"sh( &
            exec 9>pipe  # goes on when the command has opened it
            for descriptor in 0 1 2; do
                echo $(basename "$(readlink /proc/$!/fd/$descriptor)") \
                    $(sed -n 's/^flags:.*\(.\)$/\1/p' /proc/$!/fdinfo/$descriptor)
            done
            exec 9>&-
            wait
            rm pipe)sh")
            .out;
    }
};

TEST_F(Process, KeepsTheDescriptorsThatItIsGiven) {
    EXPECT_EQ(standard_descriptors("<file >file 2>file"), "file 0\nfile 1\nfile 1\n");
}

TEST_F(Process, LetsNoFileTakeTheDescriptorThatItsCallerClosed) {
    EXPECT_EQ(standard_descriptors("<&- >file 2>file"), "null 1\nfile 1\nfile 1\n");
    EXPECT_EQ(standard_descriptors("<file >&- 2>file"), "file 0\nnull 0\nfile 1\n");
    EXPECT_EQ(standard_descriptors("<file >file 2>&-"), "file 0\nfile 1\nnull 0\n");
    EXPECT_EQ(standard_descriptors("<file >file 2>&- 3<file"), "file 0\nfile 1\nnull 0\n");
    EXPECT_EQ(standard_descriptors("<&- >&- 2>&-"), "null 1\nnull 0\nnull 0\n");
}

// What it calls ends the process.
class EndedProcess : public command_test {
protected:
    EndedProcess() { write("server.xml", cds_file(processor("CPU 1"))); }

    command_result load_failing(const std::string& failure) const {
        return run_preloaded(built::failing_insert, "FAILING_TABLE=Processor FAILURE='" + failure + "'",
                             "sh -c 'ulimit -c 0; exec zebdb-cds load server.xml'");
    }
};

TEST_F(EndedProcess, HasFailedWhateverStatusALibraryEndedItWith) {
    EXPECT_EQ(load_failing("exit").status, 2);
}

TEST_F(EndedProcess, SaysThatNothingCouldCatchAWantOfMemory) {
    const command_result result = load_failing("no memory");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.last_error_line(), "zebdb-cds: out of memory");
}

TEST_F(EndedProcess, IsAbortedWhereThereIsAnotherReason) {
    constexpr int aborted = 128 + 6;
    EXPECT_EQ(load_failing("exception").status, aborted);
    EXPECT_EQ(load_failing("terminate").status, aborted);
}
