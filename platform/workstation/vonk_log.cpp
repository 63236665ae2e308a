// The log on a workstation: standard error, or the system's log when VONK_LOG=syslog.

#include <vonk_log.h>

#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace vonk_log {
namespace {

struct level {
    const char* name;
    int priority;
};

constexpr level error_level = {"ERROR", LOG_ERR};
constexpr level warning_level = {"WARNING", LOG_WARNING};
constexpr level info_level = {"INFO", LOG_INFO};

bool wants_syslog() {
    const char* target = std::getenv("VONK_LOG");
    return target != nullptr && std::strcmp(target, "syslog") == 0;
}

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) {
        return format;
    }
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, arguments);
    text.pop_back();
    return text;
}

// One write a line, so that the lines of several processes do not mix.
void write_line(const level& at, const std::string& text) {
    const std::string line = std::string(at.name) + ": " + text + (!text.empty() && text.back() == '\n' ? "" : "\n");
    std::fwrite(line.data(), 1, line.size(), stderr);
}

__attribute__((format(printf, 2, 0))) void log(const level& at, const char* format, va_list arguments) {
    const std::string text = formatted(format, arguments);
    if (wants_syslog()) {
        syslog(LOG_USER | at.priority, "%s", text.c_str());
    } else {
        write_line(at, text);
    }
}

}  // namespace

void logErr(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(error_level, format, arguments);
    va_end(arguments);
}

void logWarn(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(warning_level, format, arguments);
    va_end(arguments);
}

void logInfo(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(info_level, format, arguments);
    va_end(arguments);
}

}  // namespace vonk_log
