#include "sources/input_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "console/failure.h"
#include "console/output.h"

namespace {

[[noreturn]] void fail(int error) {
    throw failure(std::strerror(error));
}

constexpr const char* standard_input = "-";
constexpr const char* standard_input_path = "/dev/stdin";

// 0 at the end of the input or when nobody wants more of it, else the system's error.
int copy(int from, int to) {
    char block[1 << 16];
    for (;;) {
        const ssize_t count = ::read(from, block, sizeof block);
        if (count <= 0) {
            return count == 0 ? 0 : errno;
        }
        for (ssize_t written = 0; written < count;) {
            const ssize_t part = ::write(to, block + written, static_cast<std::size_t>(count - written));
            if (part < 0) {
                return 0;
            }
            written += part;
        }
    }
}

// Not everything that standard input may be can be opened by a path: a socket cannot, nor a file that only the
// program's caller may open, and a file would be read from its start again. So it is copied into a pipe that takes its
// place. The copying ends with the input or with the program.
void put_pipe_before_standard_input(const std::shared_ptr<std::atomic<int>>& read_error) {
    int ends[2];
    const int source = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
    if (source == -1 || ::pipe2(ends, O_CLOEXEC) == -1 || ::dup2(ends[0], STDIN_FILENO) == -1) {
        fail(errno);
    }
    ::close(ends[0]);
    std::thread([source, sink = ends[1], read_error] {
        *read_error = copy(source, sink);
        ::close(sink);
    }).detach();
}

// A regular file is opened rather than asked whether it could be. Nothing else is: a pipe can be opened only once.
void require_readable(const std::string& path, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) {
        fail(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        return;
    }
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file == -1) {
        fail(errno);
    }
    ::close(file);
    if (status.st_size == 0) {
        throw failure("the file is empty");
    }
}

void require_open_for_reading() {
    const int flags = ::fcntl(STDIN_FILENO, F_GETFL);
    if (flags == -1 || (flags & O_ACCMODE) == O_WRONLY) {
        throw failure("it is closed");
    }
}

}  // namespace

std::string input_title(const std::string& name) {
    return name == standard_input ? "standard input" : in_quotes(name);
}

input_file::input_file(const std::string& name)
    : path_(name == standard_input ? standard_input_path : name), read_error_(std::make_shared<std::atomic<int>>(0)) {
    if (name == standard_input) {
        require_open_for_reading();
        ::fstat(STDIN_FILENO, &status_);
        put_pipe_before_standard_input(read_error_);
        return;
    }
    if (::stat(name.c_str(), &status_) != 0) {
        fail(errno);
    }
    require_readable(name, status_);
}

bool input_file::can_be_read_again() const {
    return path_ != standard_input_path && S_ISREG(status_.st_mode);
}
