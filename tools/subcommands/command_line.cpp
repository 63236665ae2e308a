// SPDX-License-Identifier: Apache-2.0

#include "subcommands/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

namespace {

// Without the list of them in the help, where the description tells more.
CLI::Validator one_of(const std::vector<std::string>& choices) {
    return CLI::IsMember(choices).description("");
}

std::string check_not_empty(const std::string& path) {
    return path.empty() ? "the path is empty" : "";
}

}  // namespace

void command_line::argument(const char* name, std::string& value, const std::string& description) {
    note(name, "", description);
    app_->add_option(name, value, description)->required()->type_name("");
}

void command_line::arguments(const char* name, std::vector<std::string>& values, const std::string& description) {
    note(name, "", description);
    app_->add_option(name, values, description)->required()->type_name("");
}

void command_line::required_argument(const char* name, std::string& value, const std::string& description,
                                     const std::vector<std::string>& choices) {
    note(name, "", description, choices);
    app_->add_option(name, value, description)->required()->type_name("")->check(one_of(choices));
}

void command_line::optional_argument(const char* name, std::string& value, const std::string& description) {
    note(name, "", description);
    app_->add_option(name, value, description)->type_name("");
}

void command_line::optional_argument(const char* name, std::string& value, const std::string& description,
                                     const std::vector<std::string>& choices) {
    note(name, "", description, choices);
    app_->add_option(name, value, description)->type_name("")->check(one_of(choices));
}

void command_line::suggested_argument(const char* name, std::string& value, const std::string& description,
                                      const std::vector<std::string>& suggestions) {
    note(name, "", description, suggestions);
    app_->add_option(name, value, description)->type_name("");
}

void command_line::path_option(const char* name, const char* type, std::string& value, const std::string& description,
                               const char* variable) {
    note(name, type, description);
    app_->add_option(name, value, description)
        ->envname(variable)
        ->type_name(type)
        ->capture_default_str()
        ->check(check_not_empty);
}

void command_line::text_option(const char* name, const char* type, std::string& value, const std::string& description) {
    note(name, type, description);
    app_->add_option(name, value, description)->type_name(type)->check([](const std::string& text) {
        return text.empty() ? "it is empty" : "";
    });
}

void command_line::list_option(const char* name, const char* type, std::vector<std::string>& values,
                               const std::string& description) {
    note(name, type, description);
    app_->add_option(name, values, description)->type_name(type)->delimiter(',')->allow_extra_args(false);
}

void command_line::number_option(const char* name, const char* type, unsigned& value, const std::string& description,
                                 unsigned largest) {
    note(name, type, description);
    app_->add_option(name, value, description)
        ->type_name(type)
        ->capture_default_str()
        ->check(CLI::Range(0U, largest).description(""));
}

void command_line::format_option(std::string& value, const std::string& description,
                                 const std::vector<std::string>& choices) {
    note("--format", "FORMAT", description, choices);
    app_->add_option("--format", value, description)
        ->type_name("FORMAT")
        ->capture_default_str()
        ->check(one_of(choices));
}

void command_line::flag(const char* names, bool& value, const std::string& description) {
    note(names, "", description);
    app_->add_flag(names, value, description);
}

void command_line::exclude(const char* name, const char* other) {
    app_->get_option(name)->excludes(app_->get_option(other));
}

void command_line::note(const std::string& names, const std::string& type, const std::string& description,
                        const std::vector<std::string>& choices) {
    declared_->push_back({names, type, description, choices});
}

void command_line::remark(const std::string& text) {
    app_->footer(text + "\n\n" + app_->get_footer());
}

void command_line::footer(const std::string& text) {
    app_->footer(text);
}

bool command_line::has(const char* name) const {
    const std::vector<CLI::Option*>& given = app_->parse_order();
    return std::find(given.begin(), given.end(), app_->get_option(name)) != given.end();
}
