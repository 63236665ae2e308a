#ifndef TESTS_SUPPORT_TEMPORARY_FILE_H
#define TESTS_SUPPORT_TEMPORARY_FILE_H

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

#include <unistd.h>

/// A file with a name of its own in the working directory, which is the build folder's; removed at the end.
class temporary_file {
public:
    explicit temporary_file(const std::string& content) {
        const int descriptor = mkstemp(path_.data());
        if (descriptor == -1) {
            throw std::runtime_error("cannot create a temporary file in the working directory");
        }
        close(descriptor);
        std::ofstream(path_) << content;
    }
    ~temporary_file() { unlink(path_.c_str()); }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;

    const char* path() const { return path_.c_str(); }

private:
    std::string path_ = "temporary_XXXXXX";
};

#endif
