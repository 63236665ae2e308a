// SPDX-License-Identifier: Apache-2.0

/// Which of the project's folders may include which, and what breaks that.
#ifndef TESTS_SOURCES_INCLUDES_H
#define TESTS_SOURCES_INCLUDES_H

#include <filesystem>
#include <string>
#include <vector>

struct include_check {
    std::vector<std::string> files;     ///< all that were read, by their path below the root
    std::vector<std::string> problems;  ///< each with the file, the line and the rule
};

/// Reads the #include lines of the sources below `root`, which is laid out like this project.
include_check check_includes(const std::filesystem::path& root);

#endif
