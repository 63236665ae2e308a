// SPDX-License-Identifier: Apache-2.0

/// Tells somebody who waits how far a load has come.
#ifndef TOOLS_CONSOLE_PROGRESS_H
#define TOOLS_CONSOLE_PROGRESS_H

#include <sys/stat.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

/// A line on standard error that says how much of a file has been read and, once that is done, that its rows are being
/// stored; it is gone when the object is. There is none for a small file, or when standard error is no terminal.
class progress {
public:
    explicit progress(const struct stat& file);
    ~progress();
    progress(const progress&) = delete;
    progress& operator=(const progress&) = delete;

    /// Takes the line away while `write` writes to standard error.
    template <class Write>
    void stand_aside(Write write) {
        const std::lock_guard<std::mutex> lock(mutex_);
        clear();
        write();
    }

private:
    void start();
    void run();
    void draw();
    void clear();
    std::string text();

    struct stat file_;
    bool read_ = false;   // to its end
    bool open_ = false;   // when that was looked at last
    bool drawn_ = false;  // the line stands there
    bool done_ = false;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::thread thread_;
};

#endif
