// SPDX-License-Identifier: Apache-2.0

/// The arguments and options of a subcommand.
#ifndef TOOLS_SUBCOMMANDS_COMMAND_LINE_H
#define TOOLS_SUBCOMMANDS_COMMAND_LINE_H

#include <limits>
#include <string>
#include <vector>

namespace CLI {
class App;
}

/// Declares them, each with the variable that gets its value when the command line is read. What a variable holds
/// before is the default. Refers to `app`.
class command_line {
public:
    explicit command_line(CLI::App& app) : app_(&app) {}

    /// Arguments go by their place; the name is for messages.
    void argument(const char* name, std::string& value, const std::string& description);
    void optional_argument(const char* name, std::string& value, const std::string& description);
    void optional_argument(const char* name, std::string& value, const std::string& description,
                           const std::vector<std::string>& choices);
    /// Several, in any order; the names stand in the usage.
    void optional_arguments(const char* names, std::vector<std::string>& values, const std::string& description);

    /// A path, which must not be empty. Where `variable` names an environment variable, its value takes the place of an
    /// option that is not given.
    void path_option(const char* name, const char* type, std::string& value, const std::string& description,
                     const char* variable = "");
    void text_option(const char* name, const char* type, std::string& value, const std::string& description);
    /// Values between commas.
    void list_option(const char* name, const char* type, std::vector<std::string>& values,
                     const std::string& description);
    void number_option(const char* name, const char* type, unsigned& value, const std::string& description,
                       unsigned largest = std::numeric_limits<unsigned>::max());
    void format_option(std::string& value, const std::string& description, const std::vector<std::string>& choices);

    /// `names` are one or several, as in "-q,--quiet".
    void flag(const char* names, bool& value, const std::string& description);

    /// Refuses a command line that has both.
    void exclude(const char* name, const char* other);

    /// Puts a paragraph above what stands at the end of the help.
    void remark(const std::string& text);
    /// Replaces what stands at the end of the help.
    void footer(const std::string& text);

    /// Whether the command line, and not only the environment, had it.
    bool has(const char* name) const;

private:
    CLI::App* app_;
};

#endif
