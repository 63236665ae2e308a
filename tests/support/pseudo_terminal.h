// SPDX-License-Identifier: Apache-2.0

#ifndef TESTS_SUPPORT_PSEUDO_TERMINAL_H
#define TESTS_SUPPORT_PSEUDO_TERMINAL_H

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

/// As long as it lives, one of the process's descriptors is a terminal that understands control sequences.
class pseudo_terminal {
public:
    explicit pseudo_terminal(int descriptor, unsigned short columns = 80)
        : descriptor_(descriptor), usual_(dup(descriptor)), reader_(posix_openpt(O_RDWR | O_NOCTTY)) {
        if (grantpt(reader_) != 0 || unlockpt(reader_) != 0) {
            throw std::runtime_error("no terminal can be made");
        }
        const int terminal = open(ptsname(reader_), O_RDWR | O_NOCTTY);
        termios settings = {};
        tcgetattr(terminal, &settings);
        cfmakeraw(&settings);
        tcsetattr(terminal, TCSANOW, &settings);
        const winsize size = {24, columns, 0, 0};
        ioctl(terminal, TIOCSWINSZ, &size);
        dup2(terminal, descriptor_);
        close(terminal);
        setenv("TERM", "xterm", 1);
        unsetenv("NO_COLOR");
        unsetenv("COLUMNS");
    }
    ~pseudo_terminal() {
        leave();
        close(reader_);
    }
    pseudo_terminal(const pseudo_terminal&) = delete;
    pseudo_terminal& operator=(const pseudo_terminal&) = delete;

    /// Waits until so many more of these texts have been written, for ten seconds at most.
    void await(const std::string& text, int times = 1) {
        std::size_t place = seen_.size();
        while (times > 0) {
            const std::size_t found = seen_.find(text, place);
            if (found != std::string::npos) {
                place = found + text.size();
                --times;
            } else if (pollfd ready = {reader_, POLLIN, 0}; poll(&ready, 1, 10'000) != 1 || !read_more()) {
                return;
            }
        }
    }

    /// All that was written. The descriptor is what it was from then on.
    std::string text() {
        leave();
        while (read_more()) {
        }
        return seen_;
    }

private:
    void leave() {
        if (usual_ != -1) {
            dup2(usual_, descriptor_);
            close(usual_);
            usual_ = -1;
        }
    }
    bool read_more() {
        char block[4096];
        const ssize_t count = read(reader_, block, sizeof block);
        seen_.append(block, count > 0 ? static_cast<std::size_t>(count) : 0);
        return count > 0;
    }

    int descriptor_;
    int usual_;
    int reader_;
    std::string seen_;
};

#endif
