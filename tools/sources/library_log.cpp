#include "sources/library_log.h"

#include <algorithm>

#include "console/utf8.h"

namespace {

constexpr const char* database_prefix = "inventory database: ";
constexpr const char* file_prefix = "CDS XML ERROR: ";
constexpr const char* loader_prefix = "CDS PARSER: ";

// What a refresh logs on top of the cause.
constexpr const char* refresh_failed = "parse_aim return error";

bool begins_with(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

std::string without_prefix(std::string text) {
    for (const std::string prefix : {database_prefix, file_prefix, loader_prefix}) {
        if (begins_with(text, prefix)) {
            return text.substr(prefix.size());
        }
    }
    return text;
}

bool is_cause(const log_line& line) {
    return line.at == vonk_log::level::error && !begins_with(line.text, refresh_failed);
}

bool is_about_database(const log_line& line) {
    return is_cause(line) && begins_with(line.text, database_prefix);
}

// Empty when there is none.
std::string last_error(const std::vector<log_line>& lines) {
    const auto last = std::find_if(lines.rbegin(), lines.rend(), is_cause);
    return last == lines.rend() ? "" : last->text;
}

// Of the errors of the database the first; those behind it are its consequences.
std::string deciding_error(const std::vector<log_line>& lines) {
    const auto first = std::find_if(lines.begin(), lines.end(), is_about_database);
    return first == lines.end() ? last_error(lines) : first->text;
}

}  // namespace

library_log::library_log(log_display display) : display_(display) {
    vonk_log::set_sink(take, this);
}

library_log::library_log(progress& line) : library_log(log_display::shown) {
    progress_ = &line;
}

library_log::~library_log() {
    vonk_log::set_sink(nullptr, nullptr);
}

std::string library_log::cause() const {
    std::string text = without_prefix(deciding_error(lines_));
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

bool library_log::has_database_error() const {
    return std::any_of(lines_.begin(), lines_.end(), is_about_database);
}

void library_log::take(void* log, vonk_log::level at, const char* text) {
    auto& self = *static_cast<library_log*>(log);
    self.lines_.push_back({at, repaired_utf8(text)});
    if (self.display_ == log_display::hidden) {
        return;
    }
    const auto write = [at, text] { vonk_log::write(at, text); };
    if (self.progress_ == nullptr) {
        write();
    } else {
        self.progress_->stand_aside(write);
    }
}
