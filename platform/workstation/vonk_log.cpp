// SPDX-License-Identifier: Apache-2.0

#include "vonk_log_workstation.h"

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace vonk_log {
namespace {

struct level_names {
    const char* prefix;
    int priority;
};

// In the order of the levels.
constexpr level_names names[] = {
    {"ERROR: ", LOG_ERR},
    {"WARNING: ", LOG_WARNING},
    {"INFO: ", LOG_INFO},
};

sink current_sink = nullptr;
void* current_context = nullptr;

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) {
        return format;
    }
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

__attribute__((format(printf, 2, 0))) void log(level at, const char* format, va_list arguments) {
    if (current_sink != nullptr) {
        current_sink(current_context, at, formatted(format, arguments).c_str());
        return;
    }
    try {
        write(at, formatted(format, arguments).c_str());
    } catch (const std::bad_alloc&) {
        std::fputs("ERROR: no memory for a line of the log\n", stderr);
    }
}

bool is_control(unsigned char byte) {
    return (byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7F;
}

// The control characters of the upper half, as UTF-8 has them.
bool is_upper_control(const std::string& text, std::size_t place) {
    const auto byte_at = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    return byte_at(place) == 0xC2 && byte_at(place + 1) >= 0x80 && byte_at(place + 1) < 0xA0;
}

// Texts come from files that anybody may have written: none of them steers a terminal that shows UTF-8.
std::string harmless(const std::string& text) {
    std::string shown;
    for (std::size_t place = 0; place < text.size(); ++place) {
        const bool upper = is_upper_control(text, place);
        place += upper ? 1 : 0;
        const auto byte = static_cast<unsigned char>(text[place]);
        if (upper || is_control(byte)) {
            char escape[5];
            std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(byte));
            shown += escape;
        } else {
            shown += text[place];
        }
    }
    return shown;
}

}  // namespace

void set_sink(sink taken_by, void* context) {
    current_sink = taken_by;
    current_context = context;
}

bool goes_to_syslog() {
    const char* target = std::getenv("VONK_LOG");
    return target != nullptr && std::strcmp(target, "syslog") == 0;
}

void write(level at, const char* text) {
    const level_names& name = names[static_cast<int>(at)];
    if (goes_to_syslog()) {
        syslog(LOG_USER | name.priority, "%s", text);
        return;
    }
    std::string line = name.prefix + harmless(text);
    if (line.back() != '\n') {
        line += '\n';
    }
    std::fwrite(line.data(), 1, line.size(), stderr);  // whole, so that the lines of several processes do not mix
}

void logErr(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(level::error, format, arguments);
    va_end(arguments);
}

void logWarn(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(level::warning, format, arguments);
    va_end(arguments);
}

void logInfo(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(level::info, format, arguments);
    va_end(arguments);
}

}  // namespace vonk_log
