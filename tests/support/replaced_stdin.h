// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_REPLACED_STDIN_H
#define TESTS_SUPPORT_REPLACED_STDIN_H

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>

/// Has the process read a file by standard input as long as it lives, or nothing, where that is closed.
class replaced_stdin {
public:
    /// Null has it closed.
    explicit replaced_stdin(const char* path) : usual_(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)) {
        const int file = open(path == nullptr ? "/dev/null" : path, O_RDONLY | O_CLOEXEC);
        if (usual_ == -1 || file == -1 || dup2(file, STDIN_FILENO) == -1) {
            throw std::runtime_error("standard input cannot be replaced");
        }
        close(file);
        if (path == nullptr) {
            close(STDIN_FILENO);
        }
    }
    ~replaced_stdin() {
        dup2(usual_, STDIN_FILENO);
        close(usual_);
    }
    replaced_stdin(const replaced_stdin&) = delete;
    replaced_stdin& operator=(const replaced_stdin&) = delete;

private:
    int usual_;
};

#endif
