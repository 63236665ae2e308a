// SPDX-License-Identifier: Apache-2.0

#include "console/time_text.h"

#include <time.h>  // NOLINT(modernize-deprecated-headers): timegm() is not of C++

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <regex>
#include <string>

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::seconds;

static_assert(sizeof(std::time_t) == 8, "a time of 32 bits ends in 2038");

// Of the years 0 to 9999.
constexpr std::time_t first_second = -62'167'219'200;
constexpr std::time_t last_second = 253'402'300'799;

std::string formatted(std::time_t time, const char* format) {
    std::tm parts = {};
    char text[64];
    if (::gmtime_r(&time, &parts) == nullptr || std::strftime(text, sizeof text, format, &parts) == 0) {
        return "";
    }
    return text;
}

int number(const std::string& digits) {
    return static_cast<int>(std::strtol(digits.c_str(), nullptr, 10));
}

// Of the digits behind the point; what is finer is cut off.
microseconds fraction(std::string digits) {
    digits.resize(6, '0');
    return microseconds(number(digits));
}

moment moment_at(std::time_t second, microseconds fraction) {
    return moment(seconds(second) + fraction);
}

}  // namespace

std::string time_text(std::time_t time) {
    return formatted(time, "%Y-%m-%d %H:%M:%S UTC");
}

std::string rfc3339_text(std::time_t time) {
    return formatted(time, "%04Y-%m-%dT%H:%M:%SZ");
}

std::string rfc3339_text(moment time) {
    const std::time_t second = second_of(time);
    const auto fraction = duration_cast<microseconds>(time.time_since_epoch() - seconds(second)).count();
    std::string text = rfc3339_text(second);
    if (fraction != 0) {
        char digits[16];
        std::snprintf(digits, sizeof digits, ".%06d", static_cast<int>(fraction));
        text.insert(text.size() - 1, digits);
    }
    return text;
}

std::optional<moment> rfc3339_time(const std::string& text) {
    static const std::regex form(
        "(\\d{4})-(\\d\\d)-(\\d\\d)[Tt ](\\d\\d):(\\d\\d):(\\d\\d)(?:\\.(\\d{1,9}))?(?:[Zz]|([+-])(\\d\\d):(\\d\\d))");
    std::smatch found;
    if (!std::regex_match(text, found, form)) {
        return std::nullopt;
    }
    std::tm parts = {};
    parts.tm_year = number(found[1]) - 1900;
    parts.tm_mon = number(found[2]) - 1;
    parts.tm_mday = number(found[3]);
    parts.tm_hour = number(found[4]);
    parts.tm_min = number(found[5]);
    parts.tm_sec = number(found[6]);
    const std::tm written = parts;
    const std::time_t local = ::timegm(&parts);
    // A day that the month does not have is one of another month.
    const bool is_in_calendar = parts.tm_mon == written.tm_mon && parts.tm_hour == written.tm_hour &&
                                parts.tm_min == written.tm_min && parts.tm_sec == written.tm_sec;
    const std::time_t hours = number(found[9]);
    const std::time_t minutes = number(found[10]);
    if (!is_in_calendar || hours > 23 || minutes > 59) {
        return std::nullopt;
    }
    const std::time_t offset = (hours * 60 + minutes) * 60;
    return moment_at(found[8] == "-" ? local + offset : local - offset, fraction(found[7]));
}

std::optional<moment> moment_of(const std::timespec& time) {
    if (time.tv_sec < first_second || time.tv_sec > last_second) {
        return std::nullopt;
    }
    return moment_at(time.tv_sec, microseconds(time.tv_nsec / 1000));
}

std::time_t second_of(moment time) {
    return std::chrono::floor<seconds>(time).time_since_epoch().count();
}
