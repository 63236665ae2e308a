// SPDX-License-Identifier: Apache-2.0

/// For file names that stand in a shell's command.
#ifndef TESTS_SUPPORT_QUOTED_H
#define TESTS_SUPPORT_QUOTED_H

#include <string>

/// One word to a shell, whatever is in it: the project may lie in a folder whose name has blanks or quotes.
inline std::string quoted(const std::string& word) {
    std::string quoted = "'";
    for (const char c : word) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + '\'';
}

#endif
