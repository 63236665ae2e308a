// SPDX-License-Identifier: Apache-2.0

// A subcommand that is written, but not in the table of them, would be compiled or not and never run.

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#include "sources/project_files.h"

using testing::ContainsRegex;

namespace {

std::vector<std::string> definitions_in(const std::string& text) {
    static const std::regex definition("\naction (define_\\w+)\\(command_line& arguments\\) \\{");
    std::vector<std::string> names;
    for (std::sregex_iterator found(text.begin(), text.end(), definition), end; found != end; ++found) {
        names.push_back((*found)[1]);
    }
    return names;
}

}  // namespace

TEST(Subcommands, AreAllInTheTable) {
    const std::string table = text_of("tools/subcommands/subcommand.cpp");
    std::size_t defined = 0;
    for (const std::string& file : files_below("tools/subcommands")) {
        for (const std::string& name : definitions_in(text_of(file))) {
            EXPECT_THAT(table, ContainsRegex("\n    \\{\"[^{}]*[ \n]" + name + ",[ \n]")) << file;
            ++defined;
        }
    }
    EXPECT_GT(defined, 1u);
}
