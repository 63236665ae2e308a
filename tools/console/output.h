// SPDX-License-Identifier: Apache-2.0

/// Where the program writes: data to standard output, everything else to standard error.
#ifndef TOOLS_CONSOLE_OUTPUT_H
#define TOOLS_CONSOLE_OUTPUT_H

#include <cstddef>
#include <string>

/// Writes `text` to standard output. A reader that closed its end is no error, but gives false; anything else that
/// keeps the text from being written is a failure.
bool print(const std::string& text);

/// Writes `text` to standard error as it is.
void write_error(const std::string& text);

/// Writes all of `text`. 0, or the system's error.
int write_all(int descriptor, const std::string& text);

/// How messages show a name: in quotes, on one line whatever is in it.
std::string in_quotes(const std::string& name);

/// `name` as a word of a command that may be typed, in quotes where a shell would take it for something else.
std::string as_shell_word(const std::string& name);

/// Writes "zebdb-cds: " and `problem` to standard error, as one line whatever is in it.
void complain(const std::string& problem);

/// Whether `descriptor` is a terminal that understands control sequences.
bool is_terminal(int descriptor);

/// Whether text for people may be styled there: a terminal, and NO_COLOR is not set.
bool is_styled(int descriptor);

/// How many characters fit into a line of the terminal behind `descriptor`; 0 when that is unknown.
std::size_t terminal_width(int descriptor);

#endif
