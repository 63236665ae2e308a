// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_SCRATCH_FILE_H
#define TESTS_SUPPORT_SCRATCH_FILE_H

#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>

/// A file with a name of its own in the working directory; it is gone when the object is.
class scratch_file {
public:
    explicit scratch_file(const std::string& content) {
        const int descriptor = mkstemp(path_.data());
        if (descriptor == -1) {
            throw std::runtime_error("no file can be made in the working directory");
        }
        close(descriptor);
        std::ofstream(path_, std::ios::binary) << content;
    }
    ~scratch_file() { unlink(path_.c_str()); }
    scratch_file(const scratch_file&) = delete;
    scratch_file& operator=(const scratch_file&) = delete;

    const char* path() const { return path_.c_str(); }

private:
    std::string path_ = "scratch-XXXXXX";
};

#endif
