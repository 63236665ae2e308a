// SPDX-License-Identifier: Apache-2.0

// The command zebdb-cds: prepares the process and runs the subcommand that the command line names.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include "change_detection/private_view.h"
#include "console/output.h"
#include "subcommands/exit_status.h"
#include "subcommands/run.h"

namespace {

// A descriptor that the caller closed would be given to the next file opened, and messages would be written into it.
// What is opened here instead refuses what the closed one would have refused.
void occupy_standard_descriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) == -1) {
            ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

int fail_for_want_of_memory() {
    std::fputs("zebdb-cds: out of memory\n", stderr);
    return status_failed;
}

// A library that finds no way on may end the process with 1, as libpci does, which means that the answer is no.
bool is_finished = false;

void fail_unless_finished() {
    if (!is_finished) {
        ::_exit(status_failed);
    }
}

// What is destroyed may need memory, as JSON values do, and then nothing can catch that there is none.
[[noreturn]] void end_uncaught() {
    const std::exception_ptr uncaught = std::current_exception();
    if (uncaught == nullptr) {
        std::abort();
    }
    try {
        std::rethrow_exception(uncaught);
    } catch (const std::bad_alloc&) {
        ::_exit(fail_for_want_of_memory());
    } catch (...) {
        std::abort();
    }
}

int run_to_the_end(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return fail_for_want_of_memory();
    } catch (const std::exception& problem) {
        complain(problem.what());
        return status_failed;
    }
}

// Earlier than the libraries' own objects are made, which stand in the program and need memory.
__attribute__((constructor(101))) void prepare_for_want_of_memory() {
    std::set_terminate(end_uncaught);
}

}  // namespace

int main(int argc, char** argv) {
    occupy_standard_descriptors();
    std::atexit(fail_unless_finished);
    ::signal(SIGPIPE, SIG_IGN);  // a reader that has seen enough must not cut a load short
    std::setlocale(LC_CTYPE, "");
    remember_command_line(argc, argv);
    const int status = run_to_the_end(argc, argv);
    is_finished = true;
    return status;
}
