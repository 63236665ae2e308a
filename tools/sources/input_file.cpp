// SPDX-License-Identifier: Apache-2.0

#include "sources/input_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <ios>
#include <istream>
#include <memory>
#include <mutex>
#include <new>
#include <sstream>
#include <string>
#include <thread>

#include "console/failure.h"
#include "console/output.h"
#include "sources/file_format.h"

namespace {

constexpr const char* standard_input_path = "/dev/stdin";

// Ends no XML document, in whatever encoding of one, two or four bytes.
constexpr const char* no_end = "<<<<<<<<";

struct packed_file_closer {
    void operator()(gzFile file) const { ::gzclose(file); }
};
using packed_file = std::unique_ptr<gzFile_s, packed_file_closer>;

std::string size_error(gzFile file) {
    return std::string("it ") + (::gzdirect(file) == 1 ? "" : "was packed by gzip and ") + "holds more than 256 MiB";
}

// Why the last reading gave less than was asked for; empty where that is all there is.
std::string reading_error(gzFile file) {
    const int system_error = errno;
    int error = Z_OK;
    ::gzerror(file, &error);
    switch (error) {
        case Z_OK:
        case Z_STREAM_END:
            return "";
        case Z_ERRNO:
            return std::strerror(system_error);
        case Z_BUF_ERROR:
            return "it was packed by gzip and lacks its end";
        case Z_MEM_ERROR:
            return std::strerror(ENOMEM);
        default:
            return "it was packed by gzip and is damaged";
    }
}

[[noreturn]] void fail(int error) {
    throw failure(std::strerror(error));
}

int open_for_reading(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file == -1) {
        fail(errno);
    }
    return file;
}

// That nobody reads on ends the copying and not the program.
void block_broken_pipe_signal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

void require_open_for_reading() {
    const int flags = ::fcntl(STDIN_FILENO, F_GETFL);
    if (flags == -1 || (flags & O_ACCMODE) == O_WRONLY) {
        throw failure("it is closed");
    }
}

}  // namespace

bool is_standard_input(const std::string& name) {
    return name == "-";
}

std::string input_title(const std::string& name) {
    return is_standard_input(name) ? "standard input" : in_quotes(name);
}

// What went through the pipe that stands for an input which can be read only once.
struct input_file::passed_bytes {
    explicit passed_bytes(std::size_t most) : most_bytes(most) {}

    std::string error() {
        const std::lock_guard<std::mutex> lock(mutex);
        return read_error;
    }

    const std::size_t most_bytes;
    std::mutex mutex;
    std::string content;
    std::string read_error;
};

input_file::input_file(const std::string& name, std::size_t most_bytes_passed) : name_(name), path_(name) {
    if (is_standard_input(name)) {
        require_open_for_reading();
        ::fstat(STDIN_FILENO, &status_);
        // Not everything that standard input may be can be opened by a path: a socket cannot, nor a file that only the
        // program's caller may open, and a file would be read from its start again. So the pipe takes its place.
        const int pipe = pass_on(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3), most_bytes_passed);
        if (::dup2(pipe, STDIN_FILENO) == -1) {
            fail(errno);
        }
        ::close(pipe);
        path_ = standard_input_path;
        return;
    }
    if (::stat(name.c_str(), &status_) != 0) {
        fail(errno);
    }
    if (S_ISDIR(status_.st_mode)) {
        fail(EISDIR);
    }
    const int file = open_for_reading(name);
    if (!S_ISREG(status_.st_mode) || is_packed_file(name)) {
        pipe_ = pass_on(file, most_bytes_passed);
        path_ = "/dev/fd/" + std::to_string(pipe_);
        return;
    }
    ::close(file);
    if (status_.st_size == 0) {
        throw failure("the file is empty");
    }
}

// With nobody to read from the pipe, the copying ends, too.
input_file::~input_file() {
    if (pipe_ != -1) {
        ::close(pipe_);
    }
}

// Gives the end of a pipe to read from what `source` has. The copying ends with the input or with the program.
int input_file::pass_on(int source, std::size_t most_bytes_passed) {
    int ends[2];
    if (source == -1 || ::pipe2(ends, O_CLOEXEC) == -1) {
        fail(errno);
    }
    passed_ = std::make_shared<passed_bytes>(most_bytes_passed);
    std::thread(pass, source, ends[1], passed_).detach();
    return ends[0];
}

// Whether there is more to read and somebody to read it. What is not packed passes as it is.
bool input_file::pass_block(gzFile source, int sink, passed_bytes& passed) {
    char block[1 << 16];
    const int count = ::gzread(source, block, sizeof block);
    const std::string error = reading_error(source);
    const std::string bytes(block, count < 0 ? 0 : static_cast<std::size_t>(count));
    {
        const std::lock_guard<std::mutex> lock(passed.mutex);
        passed.content += bytes;
        passed.read_error = passed.content.size() > passed.most_bytes ? size_error(source) : error;
        if (bytes.empty() || !passed.read_error.empty()) {
            return false;
        }
    }
    return write_all(sink, bytes) == 0;
}

void input_file::pass_all(int source, int sink, passed_bytes& passed) {
    try {
        const packed_file file(::gzdopen(source, "rb"));
        if (file == nullptr) {
            throw std::bad_alloc();
        }
        while (pass_block(file.get(), sink, passed)) {
        }
    } catch (const std::bad_alloc&) {
        const std::lock_guard<std::mutex> lock(passed.mutex);
        passed.read_error = std::strerror(ENOMEM);
    }
}

// Who reads what came before an error must not take it for all.
void input_file::pass(int source, int sink, const std::shared_ptr<passed_bytes>& passed) {
    block_broken_pipe_signal();
    pass_all(source, sink, *passed);
    if (!passed->error().empty()) {
        write_all(sink, no_end);
    }
    ::close(sink);
}

std::string input_file::read_error() const {
    return is_on_disk() ? "" : passed_->error();
}

bool input_file::lacked_memory() const {
    return read_error() == std::strerror(ENOMEM);
}

std::string input_file::read_all() const {
    std::ifstream file(path_, std::ios::binary);
    std::string content;
    char block[1 << 16];
    do {
        file.read(block, sizeof block);
        content.append(block, static_cast<std::size_t>(file.gcount()));
    } while (file);
    if (lacked_memory()) {
        throw lack_of_memory(read_error());
    }
    if (!read_error().empty()) {
        throw failure(read_error());
    }
    return content;
}

std::unique_ptr<std::istream> input_file::read_again() const {
    if (is_on_disk()) {
        return std::make_unique<std::ifstream>(path_);
    }
    const std::lock_guard<std::mutex> lock(passed_->mutex);
    return std::make_unique<std::istringstream>(passed_->content);
}

std::unique_ptr<std::istream> input_file::read_as_it_lies() const {
    if (!is_standard_input(name_) && S_ISREG(status_.st_mode)) {
        return std::make_unique<std::ifstream>(name_, std::ios::binary);
    }
    return read_again();
}
