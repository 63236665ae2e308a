// SPDX-License-Identifier: Apache-2.0

#include "console/progress.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <exception>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>

#include "console/output.h"

namespace {

constexpr off_t large_file = off_t{4} << 20;
constexpr std::chrono::milliseconds redraw_interval(100);
constexpr const char* erase_line = "\r\033[K";

// How far the process has read the file; nothing while it does not have it open.
std::optional<off_t> position_in(const struct stat& file) {
    std::optional<off_t> furthest;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
        struct stat status = {};
        if (::stat(entry.path().c_str(), &status) != 0 || status.st_dev != file.st_dev ||
            status.st_ino != file.st_ino) {
            continue;
        }
        std::ifstream info("/proc/self/fdinfo" / entry.path().filename());
        std::string label;
        off_t position = 0;
        if (info >> label >> position && position >= furthest.value_or(0)) {
            furthest = position;
        }
    }
    return furthest;
}

std::string megabytes(off_t bytes) {
    return std::to_string((bytes + (1 << 19)) >> 20) + " MiB";
}

}  // namespace

progress::progress(const struct stat& file) : file_(file) {
    if (S_ISREG(file.st_mode) && file.st_size >= large_file && is_terminal(STDERR_FILENO)) {
        start();
    }
}

// Without a thread there is no line.
void progress::start() {
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::exception&) {
        return;
    }
}

progress::~progress() {
    if (!thread_.joinable()) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        done_ = true;
    }
    wake_.notify_one();
    thread_.join();
    clear();
}

// The line goes no further when memory is out, or the process's own files cannot be listed.
void progress::run() {
    std::unique_lock<std::mutex> lock(mutex_);
    try {
        do {
            draw();
        } while (!wake_.wait_for(lock, redraw_interval, [this] { return done_; }));
    } catch (const std::exception&) {
        return;
    }
}

void progress::draw() {
    write_error(erase_line + text());
    drawn_ = true;
}

void progress::clear() {
    if (drawn_) {
        write_error(erase_line);
        drawn_ = false;
    }
}

std::string progress::text() {
    const std::optional<off_t> position = position_in(file_);
    read_ = read_ || position >= file_.st_size || (open_ && !position);  // what copies a file closes it at its end
    open_ = position.has_value();
    if (read_) {
        return "storing rows ...";
    }
    const off_t percent = position.value_or(0) * 100 / file_.st_size;
    return "reading " + megabytes(file_.st_size) + ": " + std::to_string(percent) + " %";
}
