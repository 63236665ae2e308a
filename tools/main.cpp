// SPDX-License-Identifier: Apache-2.0

// The command zebdb-cds: prepares the process and runs the subcommand that the command line names.

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <clocale>
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

}  // namespace

int main(int argc, char** argv) {
    occupy_standard_descriptors();
    ::signal(SIGPIPE, SIG_IGN);  // a reader that has seen enough must not cut a load short
    std::setlocale(LC_CTYPE, "");
    remember_command_line(argc, argv);
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        complain("out of memory");
        return status_failed;
    } catch (const std::exception& problem) {
        complain(problem.what());
        return status_failed;
    }
}
