// SPDX-License-Identifier: Apache-2.0

#include "sources/library_log.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>

#include <vonk_log_workstation.h>
#include <zeb_db_workstation.h>

#include "console/output.h"
#include "console/progress.h"
#include "console/utf8.h"
#include "sources/database_file.h"

namespace {

std::string on_one_line(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

}  // namespace

bool log_goes_to_a_terminal() {
    return !vonk_log::goes_to_syslog() && is_terminal(STDERR_FILENO);
}

library_log::library_log(log_display display) : display_(display) {
    vonk_log::set_sink(take, this);
    zeb_db_forget_failure();
}

library_log::library_log(progress& line, log_display display) : library_log(display) {
    progress_ = &line;
}

library_log::~library_log() {
    vonk_log::set_sink(nullptr, nullptr);
}

std::optional<std::string> library_log::database_failure() const {
    const zeb_db_failure_t* failed = zeb_db_first_failure();
    if (failed == nullptr) {
        return std::nullopt;
    }
    return with_advice(failed->code, on_one_line(failed->text));
}

std::string library_log::problem() const {
    if (const auto failed = database_failure()) {
        return *failed;
    }
    const auto error = std::find_if(lines_.begin(), lines_.end(),
                                    [](const log_line& line) { return line.at == vonk_log::level::error; });
    return error == lines_.end() ? "" : on_one_line(error->text);
}

bool library_log::is_shown(vonk_log::level at) const {
    switch (display_) {
        case log_display::shown:
            return true;
        case log_display::problems:
            return at != vonk_log::level::info;
        case log_display::errors:
            return at == vonk_log::level::error;
        case log_display::hidden:
            break;
    }
    return false;
}

void library_log::take(void* log, vonk_log::level at, const char* text) {
    auto& self = *static_cast<library_log*>(log);
    self.lines_.push_back({at, repaired_utf8(text)});
    if (!self.is_shown(at)) {
        return;
    }
    const std::string shown = printable_lines(text);
    const auto write = [at, &shown] { vonk_log::write(at, shown.c_str()); };
    if (self.progress_ == nullptr) {
        write();
    } else {
        self.progress_->stand_aside(write);
    }
}
