// SPDX-License-Identifier: Apache-2.0

#include "console/output.h"

#include <sys/ioctl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "console/failure.h"
#include "console/utf8.h"

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

}  // namespace

int write_all(int descriptor, const std::string& text) {
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count = ::write(descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        written += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return 0;
}

bool print(const std::string& text) {
    const int error = write_all(STDOUT_FILENO, text);
    if (error != 0 && error != EPIPE) {
        throw failure(std::string("cannot write to standard output: ") + std::strerror(error));
    }
    return error == 0;
}

void write_error(const std::string& text) {
    write_all(STDERR_FILENO, text);
}

std::string in_quotes(const std::string& name) {
    return "'" + printable(repaired_utf8(name)) + "'";
}

std::string as_shell_word(const std::string& name) {
    constexpr const char* plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%=";
    std::string shown = printable(repaired_utf8(name));
    if (!shown.empty() && shown.find_first_not_of(plain) == std::string::npos) {
        return shown;
    }
    std::string quoted = "'";
    for (const char character : shown) {
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return quoted + '\'';
}

void complain(const std::string& problem) {
    write_error("zebdb-cds: " + printable(repaired_utf8(problem)) + '\n');
}

bool is_terminal(int descriptor) {
    return ::isatty(descriptor) == 1 && environment("TERM") != "dumb";
}

bool is_styled(int descriptor) {
    return is_terminal(descriptor) && environment("NO_COLOR").empty();
}

std::size_t terminal_width(int descriptor) {
    winsize size = {};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}
