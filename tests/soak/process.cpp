// SPDX-License-Identifier: Apache-2.0

#include "soak/process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::minutes longest_run(2);

/// A file without a name, for what a process prints.
class printed {
public:
    printed() : descriptor_(memfd_create("", MFD_CLOEXEC)) {}
    ~printed() { close(descriptor_); }
    printed(const printed&) = delete;
    printed& operator=(const printed&) = delete;

    int descriptor() const { return descriptor_; }

    std::string text() const {
        std::string all(static_cast<std::size_t>(lseek(descriptor_, 0, SEEK_END)), '\0');
        const ssize_t count = pread(descriptor_, all.data(), all.size(), 0);
        all.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        return all;
    }

private:
    int descriptor_;
};

// In a process group of its own.
pid_t start(std::vector<std::string>& command, const printed& out, const printed& err) {
    std::vector<char*> words;
    std::transform(command.begin(), command.end(), std::back_inserter(words),
                   [](std::string& word) { return word.data(); });
    words.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, out.descriptor(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, err.descriptor(), STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    pid_t child = -1;
    const int error = posix_spawn(&child, words[0], &files, &attributes, words.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error != 0) {
        throw std::runtime_error("cannot start " + command[0]);
    }
    return child;
}

// The status of a process that ends before `deadline`.
std::optional<int> wait_until(pid_t child, moment deadline) {
    for (int status = 0;;) {
        if (waitpid(child, &status, WNOHANG) == child) {
            return status;
        }
        if (steady_clock::now() >= deadline) {
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
}

std::string in_words(const std::vector<std::string>& command) {
    std::string text;
    for (const std::string& word : command) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

}  // namespace

std::string ended_process::last_error_line() const {
    const std::string lines = err.substr(0, err.find_last_not_of('\n') + 1);
    return lines.substr(lines.rfind('\n') + 1);
}

void adopt_orphans() {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
}

ended_process run(std::vector<std::string> command, const std::optional<planned_kill>& kill) {
    const printed out;
    const printed err;
    ended_process ended;
    ended.command = in_words(command);
    ended.start = steady_clock::now();
    const pid_t child = start(command, out, err);
    std::optional<int> status = kill ? wait_until(child, ended.start + kill->after) : std::nullopt;
    if (kill && !status) {
        ::kill(child, kill->signal);
    }
    status = status ? status : wait_until(child, ended.start + longest_run);
    if (!status) {
        ::kill(-child, SIGKILL);
        throw std::runtime_error("does not end: " + ended.command);
    }
    while (waitpid(-child, nullptr, 0) > 0) {
    }
    ended.end = steady_clock::now();
    ended.signal = WIFSIGNALED(*status) ? WTERMSIG(*status) : 0;
    ended.status = WIFSIGNALED(*status) ? 128 + ended.signal : WEXITSTATUS(*status);
    ended.out = out.text();
    ended.err = err.text();
    return ended;
}
