// SPDX-License-Identifier: Apache-2.0

// Runs a command, its output dropped, and prints what it took: microseconds of real time, microseconds of the
// processor's, its children's with them, and peak memory in kB. It is a program of its own since a process begins with
// the peak of the one that started it.

#include <fcntl.h>
#include <sys/resource.h>  // IWYU pragma: keep
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int not_started = 127;

template <class Time>
long long microseconds(const Time& time) {
    return 1000000LL * time.tv_sec + time.tv_usec;
}

[[noreturn]] void become(char** command) {
    const int nowhere = ::open("/dev/null", O_WRONLY);
    if (nowhere != -1 && ::dup2(nowhere, STDOUT_FILENO) != -1) {
        ::execvp(command[0], command);
    }
    std::perror(command[0]);
    ::_exit(not_started);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs("usage: process_cost COMMAND [ARGUMENT]...\n", stderr);
        return EXIT_FAILURE;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        become(argv + 1);
    }
    int status = 0;
    rusage usage = {};
    if (child == -1 || ::wait4(child, &status, 0, &usage) == -1) {
        std::perror("process_cost");
        return EXIT_FAILURE;
    }
    const auto real = std::chrono::steady_clock::now() - start;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "process_cost: %s failed\n", argv[1]);
        return EXIT_FAILURE;
    }
    std::printf("%lld %lld %ld\n",
                static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(real).count()),
                microseconds(usage.ru_utime) + microseconds(usage.ru_stime), usage.ru_maxrss);
    return EXIT_SUCCESS;
}
