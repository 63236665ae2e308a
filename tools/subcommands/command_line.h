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

/// One that is declared, for who writes about all of them.
struct declared_option {
    std::string names;  ///< as in "-q,--quiet"; without dashes for an argument
    std::string type;   ///< as in "PATH"; empty for a flag
    std::string description;
    std::vector<std::string> choices;  ///< the values that it takes; empty for any
};

/// Declares them, each with the variable that gets its value when the command line is read. What a variable holds
/// before is the default. Refers to `app`.
class command_line {
public:
    /// Notes what is declared in `declared`, too, and refers to it.
    command_line(CLI::App& app, std::vector<declared_option>& declared) : app_(&app), declared_(&declared) {}

    /// Arguments go by their place; the name is for messages.
    void argument(const char* name, std::string& value, const std::string& description);
    /// One or several.
    void arguments(const char* name, std::vector<std::string>& values, const std::string& description);
    void required_argument(const char* name, std::string& value, const std::string& description,
                           const std::vector<std::string>& choices);
    void optional_argument(const char* name, std::string& value, const std::string& description);
    void optional_argument(const char* name, std::string& value, const std::string& description,
                           const std::vector<std::string>& choices);
    /// An optional one that may be something else than the `suggestions`.
    void suggested_argument(const char* name, std::string& value, const std::string& description,
                            const std::vector<std::string>& suggestions);

    /// A path, which must not be empty. Where `variable` names an environment variable, its value takes the place of an
    /// option that is not given.
    void path_option(const char* name, const char* type, std::string& value, const std::string& description,
                     const char* variable = "");
    /// A text, which must not be empty.
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
    void note(const std::string& names, const std::string& type, const std::string& description,
              const std::vector<std::string>& choices = {});

    CLI::App* app_;
    std::vector<declared_option>* declared_;
};

#endif
