#include "sources/library_log.h"

#include <algorithm>

namespace {

constexpr const char* database_prefix = "inventory database: ";
constexpr const char* file_prefix = "CDS XML ERROR: ";
constexpr const char* loader_prefix = "CDS PARSER: ";
constexpr const char* no_component = "failed to parse the CDS XML file";
constexpr const char* nameless_node = "CDS XML ERROR: Unexpected node '";

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

}  // namespace

log_tap::log_tap(progress* line) : line_(line) {
    vonk_log::set_sink(take, this);
}

log_tap::~log_tap() {
    vonk_log::set_sink(nullptr, nullptr);
}

std::string log_tap::cause() const {
    if (last_error_ == no_component) {
        return "its root element is not 'component', so it is no CDS file";
    }
    if (last_error_ == nameless_node) {
        return "Unexpected node without a name, as a CDATA section is";
    }
    std::string text = without_prefix(database_error_.empty() ? last_error_ : database_error_);
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

bool log_tap::is_grammar_error() const {
    const std::string text = without_prefix(last_error_);
    return begins_with(text, "Unexpected node") || begins_with(text, "empty setting");
}

bool log_tap::has_line(const std::string& beginning) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&beginning](const std::string& line) { return begins_with(line, beginning); });
}

void log_tap::take(void* tap, vonk_log::level at, const char* text) {
    auto& self = *static_cast<log_tap*>(tap);
    self.lines_.emplace_back(text);
    if (at == vonk_log::level::error && !begins_with(text, refresh_failed)) {
        self.last_error_ = text;
        if (self.database_error_.empty() && begins_with(text, database_prefix)) {
            self.database_error_ = text;
        }
    }
    const auto write = [at, text] { vonk_log::write(at, text); };
    if (self.line_ == nullptr) {
        write();
    } else {
        self.line_->stand_aside(write);
    }
}
