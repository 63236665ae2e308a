// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_CAPTURED_STDERR_H
#define TESTS_SUPPORT_CAPTURED_STDERR_H

#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

/// Takes what the process writes to standard error as long as it lives.
class captured_stderr {
public:
    captured_stderr() : file_(std::tmpfile()), usual_(dup(STDERR_FILENO)) {
        if (file_ == nullptr || usual_ == -1 || dup2(fileno(file_), STDERR_FILENO) == -1) {
            throw std::runtime_error("standard error cannot be captured");
        }
    }
    ~captured_stderr() {
        dup2(usual_, STDERR_FILENO);
        close(usual_);
        std::fclose(file_);
    }
    captured_stderr(const captured_stderr&) = delete;
    captured_stderr& operator=(const captured_stderr&) = delete;

    /// What was written up to now.
    std::string text() const {
        std::string read;
        std::rewind(file_);
        for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) {
            read += static_cast<char>(c);
        }
        return read;
    }

private:
    std::FILE* file_;
    int usual_;
};

#endif
